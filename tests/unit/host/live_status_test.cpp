// What the live page says of a grab, as JSON.
#include "live/live_status.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace kxhost {
namespace {

using Json = nlohmann::ordered_json;

class LiveStatusTest : public testing::Test {
protected:
    Json status() const
    {
        return statusJson({facts_, counts_, signals_, tick_, losses_, frame_, notices_, end_});
    }
    std::string state() const { return status()["state"]; }

    LiveFacts facts_{"camera.toml", "pictures", 0, 16, 1234};
    GrabCounts counts_;
    PendingSignals signals_;
    LiveTick tick_;
    LiveLosses losses_;
    LiveFrame frame_;
    std::vector<Notice> notices_;
    std::optional<LiveEnd> end_;
};

TEST_F(LiveStatusTest, TheStateIsWhatMattersMost)
{
    EXPECT_EQ(state(), "waiting");
    counts_.retrieved = 1;
    EXPECT_EQ(state(), "starting");
    counts_.capturing = true;
    EXPECT_EQ(state(), "grabbing");
    counts_.away = true;
    EXPECT_EQ(state(), "lost");
    counts_.over = true;
    EXPECT_EQ(state(), "finishing");
    counts_.over = false;
    signals_.post(kFinishTerminate);
    EXPECT_EQ(state(), "finishing");
    end_ = LiveEnd{5, "Lost."};
    EXPECT_EQ(state(), "ended");
}

TEST_F(LiveStatusTest, BeforeTheFirstFrameThereAreNoValues)
{
    const Json now = status();
    EXPECT_EQ(now["picture"], Json());
    EXPECT_EQ(now["frames"]["wanted"], Json());
    EXPECT_EQ(now["frames"]["exported"], 0);
    EXPECT_EQ(now["losses"], (Json{{"causes", Json::object()}, {"latest", Json::array()}}));
    EXPECT_EQ(now["pending"], Json::array());
    EXPECT_EQ(now["notices"], Json::array());
    EXPECT_EQ(now["end"], Json());
    EXPECT_EQ(now["process"], 1234);
    EXPECT_EQ(now["configuration"], "camera.toml");
    EXPECT_EQ(now["folder"], "pictures");
}

TEST_F(LiveStatusTest, FramesAndQueueAreCounted)
{
    facts_.frames = 500;
    counts_.exported = 90;
    counts_.retrieved = 99;
    counts_.lost = 8;
    counts_.missing = 3;
    counts_.overBudget = 2;
    counts_.longestUs = 4567;
    counts_.framePeriodUs = 5000;
    counts_.tables = 4;
    tick_ = {{.accepted = 90, .written = 80, .failed = 1, .bytes = 12345, .deepest = 11}, 198.5};
    EXPECT_EQ(status()["frames"], (Json{{"exported", 90},
                                        {"wanted", 500},
                                        {"arrived", 99},
                                        {"per_second", 198.5},
                                        {"period_us", 5000},
                                        {"lost", 9},
                                        {"failed_retrievals", 3},
                                        {"over_budget", 2},
                                        {"longest_us", 4567}}));
    EXPECT_EQ(status()["queue"], (Json{{"waiting", 9},
                                       {"deepest", 11},
                                       {"places", 16},
                                       {"written", 80},
                                       {"not_written", 1},
                                       {"bytes", 12345}}));
    EXPECT_EQ(status()["tables"], 4);
}

TEST_F(LiveStatusTest, LossesHaveTheWordsOfTheLedger)
{
    CauseCounts causes;
    causes[FrameCause::kCameraSkipped] = 3;
    losses_.causes = causes;
    losses_.causes[FrameCause::kQueueFull] = 1;
    losses_.latest = {{17, 1000, 41, causes}, {18, 2000, {}, causes}};
    const Json losses = status()["losses"];
    EXPECT_EQ(losses["causes"], (Json{{"camera_skipped", 3}, {"queue_full", 1}}));
    EXPECT_EQ(losses["latest"][0], (Json{{"before_frame", 17},
                                         {"timestamp_us", 1000},
                                         {"frame_counter", 41},
                                         {"causes", {{"camera_skipped", 3}}}}));
    EXPECT_EQ(losses["latest"][1]["frame_counter"], Json());
}

TEST_F(LiveStatusTest, ThePictureHasTheValuesOfItsFrame)
{
    frame_.number = 12;
    frame_.info = {Instance::kRaw, 640, 480, "MONO8T", 777};
    frame_.values.gainDb = 1.5F;
    frame_.values.frameCounter = 99;
    frame_.values.configuration = 2;
    EXPECT_EQ(status()["picture"], (Json{{"frame", 12},
                                         {"width", 640},
                                         {"height", 480},
                                         {"codec", "MONO8T"},
                                         {"timestamp_us", 777},
                                         {"frame_counter", 99},
                                         {"gain_db", 1.5},
                                         {"exposure_us", Json()},
                                         {"configuration", 2}}));
}

TEST_F(LiveStatusTest, WhatWasAskedForAndToldIsListed)
{
    signals_.post(kLut);
    signals_.post(kReload);
    notices_ = {{3, 5000, "Reloaded."}};
    EXPECT_EQ(status()["pending"], (Json{"reload", "lut"}));
    EXPECT_EQ(status()["notices"],
              (Json::array({Json{{"number", 3}, {"time_us", 5000}, {"text", "Reloaded."}}})));
}

TEST_F(LiveStatusTest, TheEndHasItsCodeAndReason)
{
    end_ = LiveEnd{7, "Too many."};
    const Json end = {{"ended", true}, {"exit_code", 7}, {"reason", "Too many."}};
    EXPECT_EQ(status()["end"], end);
    EXPECT_EQ(endJson(end_), end);
    EXPECT_EQ(endJson({}), (Json{{"ended", false}}));
}

} // namespace
} // namespace kxhost
