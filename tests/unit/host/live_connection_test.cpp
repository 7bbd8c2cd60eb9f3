// One connection to the live page: what it waits for, and for how long.
#include "live/live_connection.h"

#include <gtest/gtest.h>

#include <array>

#include <poll.h>
#include <sys/socket.h>

namespace kxhost {
namespace {

using namespace std::chrono_literals;
using Clock = LiveConnection::Clock;

constexpr const char* kGet = "GET / HTTP/1.1\r\nHost: a\r\n\r\n";
const Clock::time_point kStart{};

std::array<int, 2> connected()
{
    std::array<int, 2> ends{};
    EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0, ends.data()), 0);
    return ends;
}

/// Both ends of a connection; the time is what the test says.
class LiveConnectionTest : public testing::Test {
protected:
    void say(const std::string& text)
    {
        ASSERT_EQ(send(client_.number(), text.data(), text.size(), MSG_NOSIGNAL),
                  static_cast<ssize_t>(text.size()));
    }

    HttpAnswer answer_ = HttpReply{200, "text/plain", "hello", {}};
    HttpEngine engine_{[this](const HttpRequest&) { return answer_; }};
    const std::array<int, 2> ends_ = connected();
    const Descriptor client_{ends_[0], "no socket"};
    LiveConnection connection_{ends_[1], engine_, kStart};
};

TEST_F(LiveConnectionTest, ARequestHasFiveSecondsHoweverItTrickles)
{
    EXPECT_EQ(connection_.events(), POLLIN);
    EXPECT_EQ(connection_.deadline(), kStart + 5s);
    say("GET / HT");
    connection_.proceed(kStart + 4s);
    EXPECT_TRUE(connection_.isReading());
    EXPECT_EQ(connection_.deadline(), kStart + 5s);
    connection_.expire(kStart + 5s);
    EXPECT_TRUE(connection_.isOver());
}

TEST_F(LiveConnectionTest, AReplyThatIsNotReadHasTenSeconds)
{
    answer_ = HttpReply{200, "text/plain", std::string(8'000'000, 'x'), {}};
    say(kGet);
    connection_.proceed(kStart + 1s);
    EXPECT_EQ(connection_.events(), POLLOUT);
    EXPECT_EQ(connection_.deadline(), kStart + 11s);
    connection_.proceed(kStart + 9s); // nothing has been read meanwhile
    EXPECT_EQ(connection_.deadline(), kStart + 11s);
    connection_.expire(kStart + 11s);
    EXPECT_TRUE(connection_.isOver());
}

TEST_F(LiveConnectionTest, WhoHasItsReplyHasASecondToHangUp)
{
    say(kGet);
    connection_.proceed(kStart + 1s);
    EXPECT_EQ(connection_.events(), POLLIN);
    EXPECT_EQ(connection_.deadline(), kStart + 2s);
    connection_.expire(kStart + 2s);
    EXPECT_TRUE(connection_.isOver());
}

TEST_F(LiveConnectionTest, WhoGoesOnSendingBehindItsReplyIsLetGoBeforeThat)
{
    say(kGet);
    connection_.proceed(kStart);
    for (int sent = 0; sent < 65536; sent += 2048) {
        ASSERT_FALSE(connection_.isOver()) << sent;
        say(std::string(2048, 'x'));
        connection_.proceed(kStart);
    }
    EXPECT_FALSE(connection_.isOver());
    say("x");
    connection_.proceed(kStart);
    EXPECT_TRUE(connection_.isOver());
}

TEST_F(LiveConnectionTest, WhoIsToldToWaitWaitsNoLongerThanThat)
{
    answer_ = HttpLater{25s};
    say(kGet);
    connection_.proceed(kStart + 1s);
    EXPECT_TRUE(connection_.isWaiting());
    EXPECT_EQ(connection_.deadline(), kStart + 26s);
    connection_.askAgain(false, kStart + 20s); // something else has happened
    EXPECT_TRUE(connection_.isWaiting());
    EXPECT_EQ(connection_.deadline(), kStart + 26s);
    answer_ = HttpReply{200, "text/plain", "now", {}};
    connection_.expire(kStart + 26s);
    std::array<char, 1000> reply{};
    ASSERT_GT(recv(client_.number(), reply.data(), reply.size() - 1, 0), 0);
    EXPECT_TRUE(std::string(reply.data()).ends_with("now"));
}

TEST_F(LiveConnectionTest, WhoHangsUpWhileItWaitsIsForgotten)
{
    answer_ = HttpLater{25s};
    say(kGet);
    connection_.proceed(kStart);
    EXPECT_EQ(connection_.events(), POLLRDHUP);
    connection_.proceed(kStart);
    EXPECT_TRUE(connection_.isOver());
}

} // namespace
} // namespace kxhost
