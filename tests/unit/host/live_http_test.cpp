// One HTTP request and its reply, as text.
#include "live/live_http.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace kxhost {
namespace {

using namespace std::chrono_literals;

/// An engine whose handler keeps the request and gives a set answer.
class LiveHttp : public testing::Test {
protected:
    std::string answer(const std::string& head)
    {
        return std::get<std::string>(engine_.answer(head, true));
    }
    static std::string statusLine(const std::string& reply)
    {
        return reply.substr(0, reply.find('\r'));
    }

    HttpAnswer answer_ = HttpReply{200, "text/plain", "hello", {{"X-More", "yes"}}};
    HttpRequest seen_;
    int calls_ = 0;
    HttpEngine engine_{[this](const HttpRequest& request) {
        ++calls_;
        seen_ = request;
        return answer_;
    }};
};

TEST_F(LiveHttp, ARequestIsReadAndItsReplyWritten)
{
    const std::string reply = answer("GET /a%20b?c=d HTTP/1.1\r\nHost: here\r\nX-One: 1\r\n\r\n");
    EXPECT_EQ(seen_.method, "GET");
    EXPECT_EQ(seen_.path, "/a b");
    EXPECT_EQ(seen_.header("host"), "here");
    EXPECT_EQ(seen_.header("x-oNE"), "1");
    EXPECT_EQ(statusLine(reply), "HTTP/1.1 200 OK");
    EXPECT_NE(reply.find("\r\nContent-Type: text/plain\r\n"), std::string::npos) << reply;
    EXPECT_NE(reply.find("\r\nContent-Length: 5\r\n"), std::string::npos) << reply;
    EXPECT_NE(reply.find("\r\nConnection: close\r\n"), std::string::npos) << reply;
    EXPECT_NE(reply.find("\r\nX-More: yes\r\n"), std::string::npos) << reply;
    EXPECT_TRUE(reply.ends_with("\r\n\r\nhello")) << reply;
}

TEST_F(LiveHttp, HeadersThatAreMissingOrDoubleHaveNoValue)
{
    answer("GET / HTTP/1.1\r\nHost: a\r\nhost: b\r\n\r\n");
    EXPECT_EQ(seen_.count("HOST"), 2U);
    EXPECT_EQ(seen_.header("Host"), std::nullopt);
    EXPECT_EQ(seen_.count("Origin"), 0U);
    EXPECT_EQ(seen_.header("Origin"), std::nullopt);
}

TEST_F(LiveHttp, WhatIsNoRequestIsRefusedHere)
{
    for (const char* head : {"nonsense\r\n\r\n", "GET /\r\n\r\n", "GET / HTTP/9.9\r\n\r\n",
                             "FETCH / HTTP/1.1\r\nHost: a\r\n\r\n"}) {
        EXPECT_EQ(statusLine(answer(head)), "HTTP/1.1 400 Bad Request") << head;
    }
    EXPECT_EQ(statusLine(answer("GET /" + std::string(9000, 'a') + " HTTP/1.1\r\n\r\n")),
              "HTTP/1.1 414 URI Too Long");
    EXPECT_EQ(calls_, 0);
}

TEST_F(LiveHttp, ABodyIsLeftAlone)
{
    const std::string reply = answer(
        "POST /a HTTP/1.1\r\nHost: a\r\nContent-Length: 5000\r\nExpect: 100-continue\r\n\r\n");
    EXPECT_EQ(statusLine(reply), "HTTP/1.1 200 OK");
    EXPECT_EQ(calls_, 1);
}

TEST_F(LiveHttp, RepliesAreNeitherCutNorCompressed)
{
    const std::string reply = answer(
        "GET / HTTP/1.1\r\nHost: a\r\nRange: bytes=1-2\r\nAccept-Encoding: gzip, br\r\n\r\n");
    EXPECT_EQ(statusLine(reply), "HTTP/1.1 200 OK");
    EXPECT_TRUE(reply.ends_with("\r\n\r\nhello")) << reply;
}

TEST_F(LiveHttp, RangesAreNotReadAtAll)
{
    // The library's reader of ranges refuses this one, and overflows a small stack with a long one.
    for (const char* range : {"Range: bytes=99999999999999999999-\r\n", "rAnGe:bytes=x\r\n",
                              "X-Cut: \nRange: bytes=x\r\n"}) {
        const std::string reply =
            answer(std::string("GET / HTTP/1.1\r\nHost: a\r\n") + range + "X-One: 1\r\n\r\n");
        EXPECT_EQ(statusLine(reply), "HTTP/1.1 200 OK") << range;
        EXPECT_EQ(seen_.count("Range"), 0U);
        EXPECT_EQ(seen_.header("X-One"), "1");
    }
    answer("GET / HTTP/1.1\r\nHost: a\r\nRanges: b\r\nX-Range: c\r\n\r\n");
    EXPECT_EQ(seen_.header("Ranges"), "b");
    EXPECT_EQ(seen_.header("X-Range"), "c");
}

TEST_F(LiveHttp, AReplyMayComeLater)
{
    answer_ = HttpLater{7ms};
    const auto later = engine_.answer("GET / HTTP/1.1\r\nHost: a\r\n\r\n", false);
    EXPECT_EQ(std::get<HttpLater>(later).atMost, 7ms);
    EXPECT_FALSE(seen_.isLastTry);
    answer_ = HttpReply{200, "text/plain", "now", {}};
    EXPECT_TRUE(answer("GET / HTTP/1.1\r\nHost: a\r\n\r\n").ends_with("now"));
    EXPECT_TRUE(seen_.isLastTry);
}

TEST(LiveHttpEngine, AnExceptionIsADefectAndNotTold)
{
    HttpEngine engine([](const HttpRequest&) -> HttpAnswer { throw std::runtime_error("secret"); });
    const auto answer = engine.answer("GET / HTTP/1.1\r\nHost: a\r\n\r\n", true);
    const auto reply = std::get<std::string>(answer);
    EXPECT_TRUE(reply.starts_with("HTTP/1.1 500 ")) << reply;
    EXPECT_EQ(reply.find("secret"), std::string::npos) << reply;
}

} // namespace
} // namespace kxhost
