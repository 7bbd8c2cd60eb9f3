// Signals and file changes of all kinds in random order: the grab goes on, and nothing is lost.
//
// KX_STORM_SIGNALS and KX_STORM_SEED in the environment make it longer, or another one.
#include "live_frames.h"
#include "scene_session.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

namespace {

using kxtest::LiveGrab;
using kxtest::SceneSession;
using Json = nlohmann::json;

constexpr unsigned kSeed = 20240229;

unsigned fromEnvironment(const char* name, unsigned otherwise)
{
    const char* const text = std::getenv(name);
    return text == nullptr ? otherwise : static_cast<unsigned>(std::stoul(text));
}

std::size_t openFiles(pid_t process)
{
    const std::filesystem::directory_iterator files("/proc/" + std::to_string(process) + "/fd");
    return static_cast<std::size_t>(std::distance(begin(files), end(files)));
}

std::size_t threads(pid_t process)
{
    const std::filesystem::directory_iterator tasks("/proc/" + std::to_string(process) + "/task");
    return static_cast<std::size_t>(std::distance(begin(tasks), end(tasks)));
}

class Storm {
public:
    Storm(LiveGrab& grab, unsigned seed) : grab_(grab), random_(seed) {}

    /// Does one thing to the grab, and lets none to three frames pass.
    void strike()
    {
        switch (pick(6)) {
        case 0:
            grab_.signal(SIGHUP);
            break;
        case 1:
            grab_.signal(SIGUSR1);
            break;
        case 2:
            grab_.signal(SIGUSR2);
            break;
        case 3:
            grab_.writeConfiguration(configuration());
            break;
        case 4:
            grab_.renameConfiguration(configuration());
            break;
        default: // both at once, or a mistake
            grab_.writeConfiguration(pick(2) == 0 ? configuration() : "[region]\nwidth = \n");
            grab_.signal(SIGHUP);
            break;
        }
        if (const unsigned frames = pick(4); frames > 0) {
            grab_.waitForMoreFrames(frames);
        }
    }

    /// Live keys, and now and then another size or format, which stays for a while.
    std::string configuration()
    {
        if (pick(5) == 0) {
            geometry_ = "[region]\nwidth = " + std::to_string(16 * (1 + pick(4))) + "\n";
            if (pick(4) == 0) {
                geometry_ += "[format]\npixel_format = \"mono12\"\n";
            }
        }
        std::string text = geometry_ + "[log]\nlevel = \"info\"\n[acquisition]\ngain = \"" +
                           std::to_string(pick(4)) + " dB\"\n";
        if (pick(3) == 0) {
            text += "[lut]\ncurve = \"gamma 1." + std::to_string(pick(9)) + "\"\n";
        }
        return text;
    }

private:
    unsigned pick(unsigned count) { return static_cast<unsigned>(random_() % count); }

    LiveGrab& grab_;
    std::mt19937 random_;
    std::string geometry_;
};

void waitForGain(LiveGrab& grab, double gain)
{
    grab.waitForFrame("8-bit frame of " + std::to_string(gain) + " dB", [gain](const Json& frame) {
        return std::abs(frame["gain_db"].get<double>() - gain) < 0.01 && frame["codec"] == "MONO8T";
    });
}

class SessionStorm : public testing::Test {
protected:
    explicit SessionStorm(const std::string& camera = "")
        : session_(kxtest::GreyLight([](unsigned x, unsigned y) { return 20000 + 30 * (x + y); }),
                   kxtest::slowCamera(camera))
    {
        session_.configuration = "[log]\nlevel = \"info\"\n";
        session_.set("output.format=raw");
    }

    static void rage(LiveGrab& grab, unsigned signals)
    {
        const unsigned seed = fromEnvironment("KX_STORM_SEED", kSeed);
        Storm storm(grab, seed);
        grab.waitForMoreFrames(3);
        const std::size_t files = openFiles(grab.process().pid());
        const std::size_t threadsBefore = threads(grab.process().pid());
        for (unsigned i = 0; i < fromEnvironment("KX_STORM_SIGNALS", signals); ++i) {
            storm.strike();
        }
        grab.waitForMoreFrames(1);
        EXPECT_LE(openFiles(grab.process().pid()), files + 4); // pictures that are being written
        EXPECT_LE(threads(grab.process().pid()), threadsBefore);
    }

    SceneSession session_;
};

TEST_F(SessionStorm, SignalsInAnyOrderLoseNothing)
{
    LiveGrab grab(session_);
    rage(grab, 200);

    // It still does what it is told, and has come back to eight bits from any pass.
    grab.writeConfiguration("[log]\nlevel = \"info\"\n[acquisition]\ngain = \"9 dB\"\n");
    grab.signal(SIGHUP);
    waitForGain(grab, 9);
    grab.writeConfiguration("[log]\nlevel = \"info\"\n[acquisition]\ngain = \"10 dB\"\n");
    waitForGain(grab, 10);
    EXPECT_EQ(grab.finish(SIGTERM), 0) << grab.process().standardError();
    EXPECT_GT(kxtest::expectNothingLost(session_), 0U);

    const std::string log = grab.process().standardOutput();
    for (const char* part :
         {"processing SIGUSR1...", "processing SIGUSR2...", "...Switching to 12-bit mode",
          "...Switching back to 8-bit mode...", "images, reconfiguration...",
          "dynamic reconfiguration...", "continue operation with new LUT"}) {
        EXPECT_NE(log.find(part), std::string::npos) << part;
    }
}

/// Passes begin and never come to their end, for want of a table.
class SessionStormWithoutLut : public SessionStorm {
protected:
    SessionStormWithoutLut() : SessionStorm("lut.supported = false") {}
};

TEST_F(SessionStormWithoutLut, ThePassesThatNeverEndLoseNothingAndTheGrabDoesEnd)
{
    LiveGrab grab(session_);
    rage(grab, 60);
    EXPECT_EQ(grab.finish(SIGINT), 0) << grab.process().standardError();
    kxtest::expectNothingLost(session_);
    const std::string log = grab.process().standardOutput();
    EXPECT_NE(log.find("...Switching to 12-bit mode"), std::string::npos);
    EXPECT_EQ(log.find("a new LUT was dynamically calculated..."), std::string::npos);
}

} // namespace
