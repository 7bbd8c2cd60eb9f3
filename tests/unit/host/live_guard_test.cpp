// Who may see the live page and press its buttons.
#include "live/live_guard.h"

#include <gtest/gtest.h>

namespace kxhost {
namespace {

using Headers = std::vector<std::pair<std::string, std::string>>;

constexpr const char* kToken = "correct-horse-battery";
const LiveRights kLoopback{true, ""};
const LiveRights kWithToken{false, kToken};

HttpRequest request(const std::string& method, const std::string& path, Headers headers)
{
    return {method, path, std::move(headers), true};
}

/// The status of the refusal; 0 = it may go on.
int refused(const HttpRequest& request, const LiveRights& rights)
{
    const std::optional<HttpReply> refusal = refusalOf(request, rights);
    return refusal ? refusal->status : 0;
}

int refusedGet(Headers headers, const LiveRights& rights = kLoopback)
{
    return refused(request("GET", "/status.json", std::move(headers)), rights);
}

int refusedPost(Headers headers, const LiveRights& rights = kLoopback)
{
    return refused(request("POST", "/finish", std::move(headers)), rights);
}

TEST(LiveGuard, ThisComputersNamesAreAnswered)
{
    for (const char* host : {"127.0.0.1", "127.0.0.1:8080", "localhost", "localhost:1", "[::1]",
                             "[::1]:8080", "localhost:9000" /* near end of a tunnel */,
                             "127.5.0.1:8080" /* --live takes these as well */, "[0:0::1]:80"}) {
        EXPECT_EQ(refusedGet({{"Host", host}}), 0) << host;
    }
}

TEST(LiveGuard, ANameThatSomebodyBoundToThisComputerIsRefused)
{
    for (const char* host :
         {"evil.example", "evil.example:8080", "127.0.0.1.evil.example", "",
          "localhost.evil.example:80", "128.0.0.2", "[::2]:80", "[::1", ":80", "::1",
          "[::ffff:127.0.0.1]", "0.0.0.0:80", "192.168.1.7", "localhost.", "127.1", "8080", "[]"}) {
        EXPECT_EQ(refusedGet({{"Host", host}}), 403) << host;
    }
    EXPECT_EQ(refusedGet({}), 403);
    EXPECT_EQ(refusedGet({{"Host", "localhost"}, {"host", "evil.example"}}), 403);
}

TEST(LiveGuard, TheRefusalSaysWhy)
{
    const auto refusal = refusalOf(request("GET", "/", {{"Host", "evil.example"}}), kLoopback);
    EXPECT_EQ(refusal->body,
              "{\"error\":\"This page answers to localhost and loopback addresses only.\"}\n");
    EXPECT_EQ(refusal->type, "application/json");
}

TEST(LiveGuard, PagesOfOtherOriginsCannotPress)
{
    EXPECT_EQ(refusedPost({{"Host", "localhost:80"}, {"Origin", "http://localhost:80"}}), 0);
    EXPECT_EQ(refusedPost({{"Host", "localhost:80"}, {"Origin", "https://localhost:80"}}), 0);
    for (const char* origin : {"http://evil.example", "http://localhost", "http://localhost:81",
                               "http://127.0.0.1:80", "null", "", "file://", "localhost:80"}) {
        EXPECT_EQ(refusedPost({{"Host", "localhost:80"}, {"Origin", origin}}), 403) << origin;
    }
    EXPECT_EQ(refusedPost({{"Host", "localhost:80"},
                           {"Origin", "http://localhost:80"},
                           {"origin", "http://evil.example"}}),
              403);
}

TEST(LiveGuard, WhatABrowserSaysOfTheSiteCounts)
{
    for (const char* site : {"cross-site", "same-site", "", "x"}) {
        EXPECT_EQ(refusedPost({{"Host", "localhost"}, {"Sec-Fetch-Site", site}}), 403) << site;
        EXPECT_EQ(refusedGet({{"Host", "localhost"}, {"Sec-Fetch-Site", site}}), 403) << site;
    }
    for (const char* site : {"same-origin", "none"}) {
        EXPECT_EQ(refusedPost({{"Host", "localhost"}, {"Sec-Fetch-Site", site}}), 0) << site;
    }
    EXPECT_EQ(refusedPost({{"Host", "localhost"}}), 0) << "programs do not say";
}

TEST(LiveGuard, LinksMayLeadToThePage)
{
    const Headers link = {{"Host", "localhost"}, {"Sec-Fetch-Site", "cross-site"}};
    EXPECT_EQ(refused(request("GET", "/", link), kLoopback), 0);
    EXPECT_EQ(refused(request("POST", "/", link), kLoopback), 403);
}

TEST(LiveGuard, NoBodyIsTaken)
{
    EXPECT_EQ(refusedPost({{"Host", "localhost"}, {"Content-Length", "0"}}), 0);
    EXPECT_EQ(refusedPost({{"Host", "localhost"}, {"Content-Length", "1"}}), 413);
    EXPECT_EQ(refusedPost({{"Host", "localhost"}, {"Content-Length", "999999999999"}}), 413);
    EXPECT_EQ(refusedPost({{"Host", "localhost"}, {"Transfer-Encoding", "chunked"}}), 413);
    EXPECT_EQ(
        refusedPost({{"Host", "localhost"}, {"Content-Length", "0"}, {"content-length", "9"}}),
        413);
}

TEST(LiveGuard, WithATokenItIsAskedForAndCompared)
{
    const auto asked = refusalOf(request("GET", "/status.json", {{"Host", "lab:80"}}), kWithToken);
    ASSERT_TRUE(asked);
    EXPECT_EQ(asked->status, 401);
    EXPECT_EQ(asked->headers, (Headers{{"WWW-Authenticate", "Bearer"}}));
    const auto shown = [](const std::string& value) {
        return refusedGet({{"Host", "lab:80"}, {"Authorization", value}}, kWithToken);
    };
    EXPECT_EQ(shown(std::string("Bearer ") + kToken), 0);
    EXPECT_EQ(shown("Bearer correct-horse-batterx"), 403);
    EXPECT_EQ(shown("Bearer correct-horse-batter"), 403);
    EXPECT_EQ(shown(std::string("Bearer ") + kToken + "y"), 403);
    EXPECT_EQ(shown("Bearer "), 403);
    EXPECT_EQ(shown("Basic Y29ycmVjdA=="), 401);
    EXPECT_EQ(shown(kToken), 401);
}

TEST(LiveGuard, WithATokenOtherNamesAreAnsweredAndOtherSitesAreNot)
{
    const std::pair<std::string, std::string> token = {"Authorization",
                                                       std::string("Bearer ") + kToken};
    EXPECT_EQ(refusedPost({{"Host", "lab:80"}, token}, kWithToken), 0);
    EXPECT_EQ(refusedPost({{"Host", "lab:80"}, {"Origin", "http://lab:80"}, token}, kWithToken), 0);
    EXPECT_EQ(refusedPost({{"Host", "lab:80"}, {"Origin", "http://evil"}, token}, kWithToken), 403);
    EXPECT_EQ(refusedPost({token}, kWithToken), 403) << "no Host";
}

TEST(LiveGuard, AnEmptyPageIsShownToAllAndATokenMayGuardThisComputerToo)
{
    EXPECT_EQ(refused(request("GET", "/", {{"Host", "lab:80"}}), kWithToken), 0);
    const LiveRights both{true, kToken};
    EXPECT_EQ(refusedGet({{"Host", "localhost"}}, both), 401);
    EXPECT_EQ(refusedGet({{"Host", "lab"}, {"Authorization", "Bearer " + both.token}}, both), 403);
}

TEST(LiveGuard, SecretsAreTheSameWhenEachCharacterIs)
{
    EXPECT_TRUE(isSameSecret("abc", "abc"));
    for (const char* given : {"", "ab", "abcd", "abd", "xbc", "abcabc", "ABC"}) {
        EXPECT_FALSE(isSameSecret(given, "abc")) << given;
    }
    EXPECT_FALSE(isSameSecret("", "")) << "no secret opens nothing";
    EXPECT_FALSE(isSameSecret("a", ""));
}

} // namespace
} // namespace kxhost
