// What there is to ask the live page for: pictures, histogram, status, buttons, the end.
#include "live/live_routes.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cerrno>
#include <chrono>
#include <csignal>

namespace kxhost {
namespace {

using namespace std::chrono_literals;
using Json = nlohmann::ordered_json;

class LiveRoutesTest : public testing::Test {
protected:
    HttpAnswer ask(const std::string& method, const std::string& path, bool isLastTry = true)
    {
        return routes_.handle({method, path, {{"Host", "localhost"}}, isLastTry});
    }
    HttpReply get(const std::string& path) { return std::get<HttpReply>(ask("GET", path)); }
    HttpReply press(const std::string& word)
    {
        return std::get<HttpReply>(ask("POST", "/" + word));
    }
    static Json json(const HttpReply& reply) { return Json::parse(reply.body); }

    /// A frame of 4 x 2 pixels comes through the queue.
    void frameComes(std::uint64_t number, std::uint8_t level)
    {
        const std::vector<std::uint8_t> pixels(8, level);
        const FrameInfo info{Instance::kRaw, 4, 2, "MONO8T", number};
        tap_.look({number, info, pixels, values_});
    }

    /// The time stands still but for this.
    static void timePasses(std::chrono::milliseconds time) { now_ += time; }

    static inline LiveTap::Clock::time_point now_{1h};
    ScenarioValues values_; ///< of frames that come
    PendingSignals signals_;
    GrabCounts counts_;
    std::vector<int> raised_;
    int error_ = 0; ///< of raising
    std::optional<LiveEnd> end_;
    LiveTap tap_{[] { return now_; }};
    LivePicture picture_{tap_};
    LiveSteering steering_{signals_, counts_, [this](int signal) {
                               raised_.push_back(signal);
                               return error_;
                           }};
    LiveRoutes routes_{{true, ""},
                       {picture_, steering_,
                        [] {
                            return Json{{"state", "x"}};
                        },
                        [this] { return end_; }}};
};

TEST_F(LiveRoutesTest, EveryReplyIsProtected)
{
    for (const char* path : {"/", "/status.json", "/frame.png", "/nothing"}) {
        const HttpReply reply = get(path);
        const auto value = [&](const std::string& name) {
            std::string all;
            for (const auto& [key, each] : reply.headers) {
                all += key == name ? each : "";
            }
            return all;
        };
        EXPECT_EQ(value("Cache-Control"), "no-store") << path;
        EXPECT_EQ(value("X-Content-Type-Options"), "nosniff") << path;
        EXPECT_EQ(value("X-Frame-Options"), "DENY") << path;
        EXPECT_EQ(value("Referrer-Policy"), "no-referrer") << path;
        EXPECT_EQ(value("Cross-Origin-Resource-Policy"), "same-origin") << path;
        EXPECT_TRUE(value("Content-Security-Policy").starts_with("default-src 'none'; ")) << path;
        EXPECT_EQ(value("Access-Control-Allow-Origin"), "") << path;
    }
}

TEST_F(LiveRoutesTest, ThePageRunsItsOwnScriptOnlyAndHasANewSecretEachTime)
{
    const HttpReply page = get("/");
    EXPECT_EQ(page.status, 200);
    EXPECT_EQ(page.type, "text/html; charset=utf-8");
    const std::string policy = page.headers.front().second;
    const std::size_t at = policy.find("script-src 'nonce-") + 18;
    const std::string nonce = policy.substr(at, policy.find('\'', at) - at);
    EXPECT_EQ(nonce.size(), 32U);
    EXPECT_NE(page.body.find("<script nonce=\"" + nonce + "\">"), std::string::npos);
    EXPECT_NE(page.body.find("<style nonce=\"" + nonce + "\">"), std::string::npos);
    EXPECT_EQ(page.body.find("NONCE"), std::string::npos);
    EXPECT_EQ(page.body.find("http"), std::string::npos) << "nothing comes from elsewhere";
    EXPECT_EQ(get("/").headers.front().second.find(nonce), std::string::npos);
}

TEST_F(LiveRoutesTest, WhatIsNotThereIsSaid)
{
    EXPECT_EQ(get("/nothing").status, 404);
    EXPECT_EQ(get("/../etc/passwd").status, 404);
    EXPECT_EQ(get("//").status, 404);
    EXPECT_EQ(press("explode").status, 404);
    EXPECT_EQ(get("/status.json").body, "{\"state\":\"x\"}\n");
}

TEST_F(LiveRoutesTest, LookingDoesNothingAndPressingTakesPost)
{
    for (const char* path : {"/finish", "/reload", "/lut", "/lut12"}) {
        const HttpReply reply = get(path);
        EXPECT_EQ(reply.status, 405);
        EXPECT_EQ(reply.headers.front(), (std::pair<std::string, std::string>{"Allow", "POST"}));
    }
    for (const char* method : {"POST", "PUT", "DELETE", "OPTIONS", "HEAD"}) {
        const HttpReply reply = std::get<HttpReply>(ask(method, "/status.json"));
        EXPECT_EQ(reply.status, 405);
        EXPECT_EQ(reply.headers.front(), (std::pair<std::string, std::string>{"Allow", "GET"}));
    }
    EXPECT_TRUE(raised_.empty());
}

TEST_F(LiveRoutesTest, WhoMayNotAskGetsNothing)
{
    const HttpReply reply =
        std::get<HttpReply>(routes_.handle({"POST", "/finish", {{"Host", "evil"}}, true}));
    EXPECT_EQ(reply.status, 403);
    EXPECT_TRUE(raised_.empty());
}

TEST_F(LiveRoutesTest, EachButtonIsTheSignalOfItsWord)
{
    for (const auto& [word, signal] : {std::pair{"reload", SIGHUP},
                                       {"lut", SIGUSR1},
                                       {"lut12", SIGUSR2},
                                       {"reload", SIGHUP},
                                       {"finish", SIGTERM}}) {
        raised_.clear();
        const HttpReply reply = press(word);
        EXPECT_EQ(reply.status, 202) << word;
        EXPECT_EQ(json(reply), (Json{{"asked", word}}));
        EXPECT_EQ(raised_, std::vector<int>{signal}) << word;
    }
}

TEST_F(LiveRoutesTest, AGrabFinishesOnce)
{
    EXPECT_EQ(press("finish").status, 202);
    for (const char* word : {"finish", "reload", "lut", "lut12"}) {
        const HttpReply reply = press(word);
        EXPECT_EQ(reply.status, 409) << word;
        EXPECT_EQ(json(reply)["error"], "The grab is finishing.");
    }
    EXPECT_EQ(raised_, std::vector<int>{SIGTERM}) << "a second one would lose frames";
}

TEST_F(LiveRoutesTest, AfterASignalFromElsewhereTooItFinishesOnce)
{
    signals_.post(kFinishInterrupt);
    EXPECT_EQ(press("finish").status, 409);
    EXPECT_TRUE(raised_.empty());
}

TEST_F(LiveRoutesTest, WhileTheLastFramesAreWrittenNoButtonDoesAnything)
{
    counts_.over = true;
    for (const char* word : {"finish", "reload", "lut", "lut12"}) {
        EXPECT_EQ(press(word).status, 409) << word;
    }
    EXPECT_TRUE(raised_.empty());
}

TEST_F(LiveRoutesTest, ASignalThatCannotBeSentIsSaid)
{
    error_ = EPERM;
    const HttpReply reply = press("finish");
    EXPECT_EQ(reply.status, 500);
    EXPECT_EQ(json(reply)["error"], "Cannot send the signal: Operation not permitted.");
    error_ = 0;
    EXPECT_EQ(press("finish").status, 202) << "it may be tried again";
}

TEST_F(LiveRoutesTest, AFrameIsAskedForWhenSomebodyLooks)
{
    EXPECT_FALSE(tap_.wantsPixels());
    EXPECT_EQ(std::get<HttpLater>(ask("GET", "/frame.png", false)).atMost, 1000ms);
    EXPECT_TRUE(tap_.wantsPixels());
    frameComes(5, 200);
    const HttpReply reply = get("/frame.png");
    EXPECT_EQ(reply.status, 200);
    EXPECT_EQ(reply.type, "image/png");
    EXPECT_TRUE(reply.body.starts_with("\x89PNG")) << reply.body.substr(0, 4);
    EXPECT_EQ(reply.headers.front(), (std::pair<std::string, std::string>{"X-Frame-Number", "5"}));
    EXPECT_NE(reply.headers[1].first, "X-Frame-Counter") << "the camera does not count";
}

TEST_F(LiveRoutesTest, APictureHasTheCamerasNumberOfIt)
{
    values_.frameCounter = 77;
    ask("GET", "/frame.png", false);
    frameComes(5, 200);
    EXPECT_EQ(get("/frame.png").headers[1],
              (std::pair<std::string, std::string>{"X-Frame-Counter", "77"}));
}

TEST_F(LiveRoutesTest, WhoLooksTogetherSharesAPictureAndALaterOneIsNew)
{
    ask("GET", "/frame.png", false);
    frameComes(5, 200);
    const std::string first = get("/frame.png").body;
    EXPECT_EQ(get("/frame.png").body, first);
    EXPECT_FALSE(tap_.wantsPixels()) << "the picture is of this moment";
    timePasses(199ms);
    EXPECT_EQ(get("/frame.png").body, first);
    EXPECT_FALSE(tap_.wantsPixels());
    timePasses(1ms);
    EXPECT_TRUE(std::holds_alternative<HttpLater>(ask("GET", "/frame.png", false)));
    frameComes(9, 20);
    EXPECT_NE(get("/frame.png").body, first);
    EXPECT_EQ(picture_.shown().number, 9U);
}

TEST_F(LiveRoutesTest, AFrameThatNobodyFetchedInTimeIsNotShown)
{
    ask("GET", "/frame.png", false);
    frameComes(5, 200);
    timePasses(500ms);
    EXPECT_TRUE(std::holds_alternative<HttpLater>(ask("GET", "/frame.png", false)));
    EXPECT_TRUE(tap_.wantsPixels());
    frameComes(99, 200);
    EXPECT_EQ(get("/frame.png").headers.front().second, "99");
}

TEST_F(LiveRoutesTest, AFrameThatIsFetchedInTimeIsShown)
{
    ask("GET", "/frame.png", false);
    frameComes(5, 200);
    timePasses(499ms);
    EXPECT_EQ(get("/frame.png").headers.front().second, "5");
}

TEST_F(LiveRoutesTest, WithoutFramesThereIsNoPicture)
{
    for (const char* path : {"/frame.png", "/histogram.json"}) {
        const HttpReply reply = get(path);
        EXPECT_EQ(reply.status, 503) << path;
        EXPECT_EQ(json(reply)["error"], "No frame has come.");
        EXPECT_EQ(reply.headers.front(), (std::pair<std::string, std::string>{"Retry-After", "1"}));
    }
}

TEST_F(LiveRoutesTest, TheHistogramIsOfTheFrameThatIsShown)
{
    ask("GET", "/frame.png", false);
    frameComes(5, 200);
    get("/frame.png");
    const Json histogram = json(get("/histogram.json"));
    EXPECT_EQ(histogram["frame"], 5);
    EXPECT_EQ(histogram["levels"], 256);
    ASSERT_EQ(histogram["channels"].size(), 1U);
    const Json& grey = histogram["channels"][0];
    EXPECT_EQ(grey["name"], "grey");
    EXPECT_EQ(grey["pixels"], 8);
    EXPECT_EQ(grey["darkest"], 0);
    EXPECT_EQ(grey["brightest"], 0);
    EXPECT_EQ(grey["bins"].size(), 256U);
    EXPECT_EQ(grey["bins"][200], 8);
}

TEST_F(LiveRoutesTest, AColourFrameHasThreeHistogramsMadeNowAndThen)
{
    const std::vector<std::uint8_t> pixels = {255, 9, 9, 0};
    const FrameInfo info{Instance::kRaw, 2, 2, "BayerRG8T", 1};
    tap_.ask();
    tap_.look({1, info, pixels, {}});
    get("/frame.png");
    const Json histogram = json(get("/histogram.json"));
    ASSERT_EQ(histogram["channels"].size(), 3U);
    EXPECT_EQ(histogram["channels"][0]["name"], "red");
    EXPECT_EQ(histogram["channels"][0]["brightest"], 1);
    EXPECT_EQ(histogram["channels"][1]["bins"][9], 2);
    EXPECT_EQ(histogram["channels"][2]["darkest"], 1);
    timePasses(499ms);
    ask("GET", "/frame.png", false);
    frameComes(2, 7);
    get("/frame.png");
    EXPECT_EQ(json(get("/histogram.json"))["frame"], 1) << "counting all pixels takes its time";
    timePasses(1ms);
    EXPECT_EQ(json(get("/histogram.json"))["frame"], 2);
}

TEST_F(LiveRoutesTest, WhoWaitsForTheEndIsTold)
{
    EXPECT_EQ(std::get<HttpLater>(ask("GET", "/end.json", false)).atMost, 25s);
    EXPECT_EQ(json(get("/end.json")), (Json{{"ended", false}}));
    end_ = LiveEnd{5, "Lost."};
    const auto reply = std::get<HttpReply>(ask("GET", "/end.json", false));
    EXPECT_EQ(json(reply), (Json{{"ended", true}, {"exit_code", 5}, {"reason", "Lost."}}));
}

} // namespace
} // namespace kxhost
