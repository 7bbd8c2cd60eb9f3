// Datagrams to a service manager: where they go, and what becomes of those that nobody takes.
#include "grab/notify_socket.h"
#include "notify_listener.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace kxhost {
namespace {

using kxtest::NotifyListener;

TEST(NotifySocket, SendsToAPathAndToAnAbstractName)
{
    for (const auto kind : {NotifyListener::Kind::kPath, NotifyListener::Kind::kAbstract}) {
        NotifyListener listener(kind);
        const NotifySocket socket(listener.address());
        EXPECT_TRUE(socket.isThere());
        EXPECT_TRUE(socket.send("READY=1\nSTATUS=fine"));
        EXPECT_TRUE(socket.send("STOPPING=1"));
        EXPECT_EQ(listener.received(),
                  (std::vector<std::string>{"READY=1\nSTATUS=fine", "STOPPING=1"}));
    }
}

TEST(NotifySocket, WithoutAManagerNothingIsSaid)
{
    testing::internal::CaptureStderr();
    const NotifySocket socket("");
    EXPECT_FALSE(socket.isThere());
    EXPECT_FALSE(socket.send("READY=1"));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(NotifySocket, AManagerThatIsGoneIsToldOnce)
{
    testing::internal::CaptureStderr();
    const NotifySocket socket("/no/such/socket");
    EXPECT_FALSE(socket.send("READY=1"));
    EXPECT_FALSE(socket.send("READY=1"));
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "kxhost: Cannot tell the service manager at /no/such/socket: No such file or "
              "directory.\n");
}

TEST(NotifySocket, WhatIsNoAddressIsTold)
{
    for (const std::string& address : {std::string("relative"), "/" + std::string(107, 'x')}) {
        testing::internal::CaptureStderr();
        EXPECT_FALSE(NotifySocket(address).send("READY=1"));
        EXPECT_NE(testing::internal::GetCapturedStderr().find("not supported"), std::string::npos);
    }
}

TEST(NotifySocket, AManagerThatDoesNotReadHoldsNothingUp)
{
    const NotifyListener listener;
    const NotifySocket socket(listener.address());
    testing::internal::CaptureStderr();
    int sent = 0;
    while (sent < 100000 && socket.send("STATUS=x")) {
        ++sent;
    }
    EXPECT_LT(sent, 100000) << "the queue of a socket has an end";
    EXPECT_NE(testing::internal::GetCapturedStderr(), "");
}

TEST(NotifySocket, TheEnvironmentNamesIt)
{
    setenv("NOTIFY_SOCKET", "@manager", 1);
    EXPECT_TRUE(managerOfEnvironment().isThere());
    unsetenv("NOTIFY_SOCKET");
    EXPECT_FALSE(managerOfEnvironment().isThere());
}

TEST(NotifySocket, AStatusIsOneLine)
{
    EXPECT_EQ(statusLine("two\nlines"), "STATUS=two lines");
}

} // namespace
} // namespace kxhost
