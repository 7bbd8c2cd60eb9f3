// Which configuration made a frame: what the metadata says, against what the picture shows.
#include "live_frames.h"
#include "picture_levels.h"
#include "scene_session.h"

#include <gtest/gtest.h>

#include <map>

namespace {

using kxtest::LiveGrab;
using kxtest::SceneSession;
using Json = nlohmann::json;

/// The scene has this level at 8 ms.
constexpr double kLevelAt8ms = 51;

std::string configured(bool isLong)
{
    return isLong ? "[acquisition]\nexposure = \"16 ms\"\n"
                  : "[acquisition]\nexposure = \"8 ms\"\n";
}

/// Of a configuration by its number: they take turns.
double levelOf(unsigned number)
{
    return number % 2 == 1 ? kLevelAt8ms : 2 * kLevelAt8ms;
}

/// A camera that keeps its pace, 30 frames a second.
void keepPace(SceneSession& session)
{
    const auto replace = [&](const std::string& what, const std::string& by) {
        const std::size_t at = session.bus.find(what);
        ASSERT_NE(at, std::string::npos) << session.bus;
        session.bus.replace(at, what.size(), by);
    };
    replace("frame_rate = 4.", "frame_rate = 30.");
    replace("paced = false", "paced = true");
}

class SessionGeneration : public testing::TestWithParam<bool> {
protected:
    SessionGeneration()
    {
        session_.configuration = configured(false);
        if (GetParam()) {
            keepPace(session_);
        }
    }

    SceneSession session_{kxtest::GreyLight([](unsigned, unsigned) { return 13107; }),
                          kxtest::slowCamera()};
};

TEST_P(SessionGeneration, NoFrameCarriesTheNumberOfSettingsThatItWasNotMadeWith)
{
    constexpr unsigned kLast = 5;
    LiveGrab grab(session_);
    grab.waitForMoreFrames(3);
    for (unsigned number = 2; number <= kLast; ++number) {
        grab.writeConfiguration(configured(number % 2 == 0));
        grab.waitForFrame("frame of configuration " + std::to_string(number),
                          [&](const Json& frame) { return frame["configuration"] == number; });
    }
    grab.waitForMoreFrames(3);
    EXPECT_EQ(grab.finish(), 0) << grab.process().standardError();

    std::map<unsigned, unsigned> unsure; // frames by the number that they may have
    unsigned last = 0;
    for (const Json& frame : session_.frames()) {
        const unsigned number = frame["configuration"];
        EXPECT_GE(number, last) << frame;
        last = number;
        const double level = kxtest::meanLevel(session_.picture(frame));
        if (frame.contains("configuration_next")) {
            EXPECT_GT(frame["configuration_next"], number);
            ++unsure[frame["configuration_next"].get<unsigned>()];
            EXPECT_TRUE(std::abs(level - levelOf(number)) < 1 ||
                        std::abs(level - levelOf(number + 1)) < 1)
                << frame;
        } else {
            EXPECT_NEAR(level, levelOf(number), 1) << frame;
        }
    }
    EXPECT_EQ(last, kLast);
    for (unsigned number = 2; number <= kLast; ++number) {
        EXPECT_GE(unsure[number], 1U) << number;
        EXPECT_LE(unsure[number], 16U) << number;
    }
}

TEST_P(SessionGeneration, ChangesAreInTheFirstRecordBehindThemAndInTheSummary)
{
    LiveGrab grab(session_);
    grab.waitForMoreFrames(3);
    grab.writeConfiguration(configured(true));
    grab.waitForFrame("frame of the second configuration",
                      [](const Json& frame) { return frame["configuration"] == 2; });
    EXPECT_EQ(grab.finish(), 0) << grab.process().standardError();

    std::vector<Json> changes;
    for (const Json& frame : session_.frames()) {
        if (frame.contains("configuration_changes")) {
            for (const Json& change : frame["configuration_changes"]) {
                EXPECT_EQ(change["number"], frame.value("configuration_next", 1U)) << frame;
                changes.push_back(change);
            }
        }
    }
    ASSERT_EQ(changes.size(), 2U);
    EXPECT_EQ(Json(changes), session_.summary()["configurations"]);
    EXPECT_EQ(changes[0]["kind"], "start");
    EXPECT_EQ(changes[0]["changed"]["acquisition.exposure"], "8000 us");
    EXPECT_EQ(changes[1]["kind"], "live");
    EXPECT_EQ(changes[1]["changed"], Json::parse(R"({"acquisition.exposure": "16000 us"})"));
    EXPECT_LT(changes[0]["at_us"], changes[1]["at_us"]);
}

INSTANTIATE_TEST_SUITE_P(Cameras, SessionGeneration, testing::Bool(),
                         [](const auto& each) { return each.param ? "Paced" : "Unpaced"; });

} // namespace
