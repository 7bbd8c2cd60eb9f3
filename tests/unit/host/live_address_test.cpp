// Where the live page is served: what --live takes and what it means.
#include "live/live_address.h"

#include <gtest/gtest.h>

namespace kxhost {
namespace {

TEST(LiveAddress, APortIsOneOfThisComputer)
{
    EXPECT_EQ(parseLiveAddress("8080"), (LiveAddress{"127.0.0.1", 8080, false, true}));
    EXPECT_EQ(parseLiveAddress("0")->port, 0);
    EXPECT_EQ(parseLiveAddress("65535")->port, 65535);
}

TEST(LiveAddress, AHostIsAnAddressInNumbersOrThisComputer)
{
    EXPECT_EQ(parseLiveAddress("localhost:1"), (LiveAddress{"127.0.0.1", 1, false, true}));
    EXPECT_EQ(parseLiveAddress("127.5.0.1:1"), (LiveAddress{"127.5.0.1", 1, false, true}));
    EXPECT_EQ(parseLiveAddress("0.0.0.0:8080"), (LiveAddress{"0.0.0.0", 8080, false, false}));
    EXPECT_EQ(parseLiveAddress("192.168.1.7:80"), (LiveAddress{"192.168.1.7", 80, false, false}));
    EXPECT_EQ(parseLiveAddress("[::1]:9"), (LiveAddress{"::1", 9, true, true}));
    EXPECT_EQ(parseLiveAddress("[::]:9"), (LiveAddress{"::", 9, true, false}));
    EXPECT_EQ(parseLiveAddress("[2001:db8::1]:9"), (LiveAddress{"2001:db8::1", 9, true, false}));
}

TEST(LiveAddress, AnythingElseIsNone)
{
    for (const char* text : {"",
                             "x",
                             "-1",
                             "65536",
                             "80 ",
                             " 80",
                             "+80",
                             "0x50",
                             ":80",
                             "127.0.0.1",
                             "127.0.0.1:",
                             "::1:80",
                             "[::1]",
                             "[::1]80",
                             "[::1:80",
                             "[]:80",
                             "[127.0.0.1]:80",
                             "*:80",
                             "[::1]:x",
                             "example.org:80",
                             "127.1:80",
                             "128.0.0.256:80",
                             "LOCALHOST:80",
                             "[fe80::1%lo]:80"}) {
        EXPECT_EQ(parseLiveAddress(text), std::nullopt) << text;
    }
}

TEST(LiveAddress, OthersThanLoopbackAreNotTakenForIt)
{
    EXPECT_FALSE(parseLiveAddress("126.255.255.255:1")->isLoopback);
    EXPECT_TRUE(parseLiveAddress("127.255.255.255:1")->isLoopback);
    EXPECT_FALSE(parseLiveAddress("128.0.0.1:1")->isLoopback);
    // Connections to this computer's IPv4 addresses may come in there.
    EXPECT_FALSE(parseLiveAddress("[::ffff:127.0.0.1]:1")->isLoopback);
}

TEST(LiveAddress, ItsUrlCanBeClicked)
{
    EXPECT_EQ(urlOf(*parseLiveAddress("8080")), "http://127.0.0.1:8080/");
    EXPECT_EQ(urlOf(*parseLiveAddress("[::1]:8080")), "http://[::1]:8080/");
}

} // namespace
} // namespace kxhost
