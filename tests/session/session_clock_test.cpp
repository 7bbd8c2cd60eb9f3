// kxhost clock: the real program measures the clock of a simulated camera, and a grab that takes
// its advice has time stamps that do not run away.
#include "grab_session.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <csignal>
#include <thread>

namespace {

using kxtest::Finished;
using kxtest::kxhostPath;
using kxtest::Process;
using kxtest::TemporaryFolder;
using Json = nlohmann::json;

constexpr int kNoClock = 14;
constexpr double kDriftPpm = -5000;
constexpr double kNsPerPpm = 1000;

/// A camera with a slow clock and frames in time.
std::string busOf(const std::string& more = "")
{
    kxtest::TestSensor sensor;
    sensor.frameRate = 100;
    sensor.paced = true;
    sensor.noise = false;
    return kxtest::busWith(sensor, "clock.drift_ppm = -5000.0\nscene.kind = \"none\"\n"
                                   "delivery.jitter_us = 300.0\ndelivery.spike_share = 0.01\n"
                                   "delivery.spike_us = 3000.0\n" +
                                       more);
}

class SessionClock : public testing::Test {
protected:
    /// The command, with the camera of this bus.
    std::vector<std::string> words(const std::vector<std::string>& arguments,
                                   const std::string& bus = busOf()) const
    {
        kxtest::writeText(folder_.file("bus.toml"), bus);
        std::vector<std::string> all = {kxhostPath(), "clock",
                                        "--simulate=" + folder_.file("bus.toml")};
        all.insert(all.end(), arguments.begin(), arguments.end());
        return all;
    }
    Finished run(const std::vector<std::string>& arguments, const std::string& bus = busOf()) const
    {
        return kxtest::run(words(arguments, bus));
    }

    TemporaryFolder folder_;
};

/// How far the reported rate is off, in its uncertainties. They hold in 95 of 100 runs, and are
/// honest about a computer that is busy; four of them, which are more than eight standard
/// deviations of six degrees of freedom, practically always.
double offBy(const Json& report)
{
    const double error = report["rate_ns_per_s"].get<double>() - kDriftPpm * kNsPerPpm;
    return std::abs(error) / report["uncertainty_ns_per_s"].get<double>();
}

TEST_F(SessionClock, FindsTheDriftOfTheCamera)
{
    const Finished finished = run({"--seconds", "3", "--json", "--quiet"});
    ASSERT_EQ(finished.code, 0) << finished.err;
    EXPECT_EQ(finished.err, "");
    const Json report = Json::parse(finished.out);
    EXPECT_EQ(report["exit_code"], 0);
    EXPECT_EQ(report["reason"], "Finished.");
    EXPECT_GE(report["seconds"].get<double>(), 2.5);
    EXPECT_LT(report["seconds"].get<double>(), 20);
    EXPECT_LT(offBy(report), 4) << finished.out;
    EXPECT_LT(report["uncertainty_ns_per_s"], -kDriftPpm * kNsPerPpm / 2) << "a drift is seen";
    EXPECT_EQ(report["clock_correction"], -std::llround(report["rate_ns_per_s"].get<double>()));
}

/// The exported time stamps' own rate, against the true starts of the exposures: frames come each
/// 10 ms of the camera's clock, that is 10.05 ms of this computer's.
double driftPpmOf(const kxtest::GrabSession& session)
{
    const std::vector<Json> frames = session.frames();
    const auto span = [&](const char* key) {
        return frames.back()[key].get<double>() - frames.front()[key].get<double>();
    };
    const double trueUs = span("frame_counter") * 10'000 / (1 + kDriftPpm * 1e-6);
    return (span("timestamp_us") / trueUs - 1) * 1e6;
}

TEST_F(SessionClock, ItsAdviceKeepsTheCamerasClockInStep)
{
    const Finished finished = run({"--seconds", "3"});
    ASSERT_EQ(finished.code, 0) << finished.err;
    const std::size_t advice = finished.out.find("[timestamps]\n");
    ASSERT_NE(advice, std::string::npos) << finished.out;
    const auto driftWith = [&](const std::string& configuration) {
        kxtest::GrabSession session;
        session.bus = busOf();
        session.configuration = configuration;
        session.settings = {"grab.frames=100", "output.format=none"};
        EXPECT_EQ(session.run().code, 0);
        return driftPpmOf(session);
    };
    // Within a second the watch over the camera's pace does not step in yet.
    EXPECT_NEAR(driftWith("[timestamps]\nclock_correction = \"1 ns/s\"\n"), kDriftPpm, 1000);
    EXPECT_NEAR(driftWith(finished.out.substr(advice)), 0, 1000);
}

TEST_F(SessionClock, TheReportIsForPeopleUnlessAskedOtherwise)
{
    const Finished finished = run({"--seconds", "1", "--set", "log.level=info"});
    ASSERT_EQ(finished.code, 0) << finished.err;
    EXPECT_TRUE(finished.out.starts_with("frames    ")) << "no log:\n" << finished.out;
    for (const char* part :
         {"\nrate      the camera's clock is slow by ", "\noffset    ", "\nresidual  median ",
          "\nwander    not looked for", "clock_correction"}) { // or that one is to look longer
        EXPECT_NE(finished.out.find(part), std::string::npos) << part << " in:\n" << finished.out;
    }
    EXPECT_NE(finished.err.find("Init timings: "), std::string::npos) << "the log is there";
}

TEST_F(SessionClock, NeitherFramesNorAFolderOfTheConfigurationCount)
{
    const std::string output = folder_.file("out");
    const Finished finished = run({"--seconds", "1", "--json", "--quiet", "--set", "grab.frames=3",
                                   "--set", "output.folder=" + output});
    ASSERT_EQ(finished.code, 0) << finished.err;
    EXPECT_GT(Json::parse(finished.out)["frames"], 16);
    EXPECT_FALSE(std::filesystem::exists(output));
}

TEST_F(SessionClock, AnInterruptEndsItWithWhatThereIs)
{
    Process process(words({"--seconds", "86400", "--json", "--set", "log.level=info"}));
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    // The first line of progress comes after seconds of frames.
    while (process.standardError().find(" frames ") == std::string::npos) {
        ASSERT_LT(std::chrono::steady_clock::now(), limit) << process.standardError();
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    process.signal(SIGINT);
    EXPECT_EQ(process.wait(), 0) << process.standardError();
    const Json report = Json::parse(process.standardOutput());
    EXPECT_EQ(report["reason"], "Finished as asked by a signal.");
    EXPECT_GE(report["frames"], 16);
    EXPECT_LT(offBy(report), 4) << process.standardOutput();
}

TEST_F(SessionClock, TooFewFramesTellNothing)
{
    kxtest::TestSensor slow;
    slow.frameRate = 5;
    slow.paced = true;
    const Finished finished = run({"--seconds", "1", "--json", "-q"}, kxtest::busWith(slow));
    EXPECT_EQ(finished.code, kNoClock);
    EXPECT_TRUE(finished.err.starts_with(
        "kxhost: There is no clock to report: too few frames to tell a clock's rate: "))
        << finished.err;
    const Json report = Json::parse(finished.out);
    EXPECT_EQ(report["exit_code"], kNoClock);
    EXPECT_FALSE(report.contains("rate_ns_per_s"));
}

TEST_F(SessionClock, ACameraWithoutTimeStampsIsToldSo)
{
    const Finished finished =
        run({"--seconds", "1", "--quiet"}, busOf("embedded = [\"frameCounter\"]\n"));
    EXPECT_EQ(finished.code, kNoClock);
    EXPECT_EQ(finished.out, "");
    EXPECT_NE(finished.err.find("kxhost: There is no clock to report: the camera embeds no time "
                                "stamp in its images, its time stays at 0 us.\n"),
              std::string::npos)
        << finished.err;
}

TEST_F(SessionClock, ACameraThatIsLostEndsItWithWhatThereIs)
{
    const Finished finished =
        run({"--seconds", "60", "--json", "--quiet"},
            busOf("detach_throws = \"gone\"\n[[camera.fault]]\nkind = \"detach\"\nframe = 60\n"
                  "count = 1000\n"));
    EXPECT_EQ(finished.code, 5) << finished.err;
    const Json report = Json::parse(finished.out);
    EXPECT_EQ(report["exit_code"], 5);
    EXPECT_GE(report["frames"], 16);
    EXPECT_NE(finished.err.find("kxhost: The camera was lost"), std::string::npos) << finished.err;
}

TEST_F(SessionClock, NoCameraIsTheSameAsForAGrab)
{
    const Finished finished = run({"--wait", "0"}, "");
    EXPECT_EQ(finished.code, 4);
    EXPECT_EQ(finished.err, "kxhost: There is no camera on the buses.\n");
    EXPECT_EQ(finished.out, "");
}

TEST_F(SessionClock, AnInterruptBeforeACameraCameIsNoSuccess)
{
    Process process(words({"--json"}, ""));
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (process.standardError().find("waiting for a camera") == std::string::npos) {
        ASSERT_LT(std::chrono::steady_clock::now(), limit);
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    process.signal(SIGTERM);
    EXPECT_EQ(process.wait(), kNoClock);
    EXPECT_EQ(Json::parse(process.standardOutput())["exit_code"], kNoClock);
}

TEST_F(SessionClock, AMistakeOfTheConfigurationEndsItBeforeACameraIsTouched)
{
    const Finished finished = run({"--json", "--set", "timestamps.clock_correction=5"});
    EXPECT_EQ(finished.code, 3);
    EXPECT_NE(finished.err.find("timestamps.clock_correction"), std::string::npos) << finished.err;
    EXPECT_EQ(Json::parse(finished.out)["exit_code"], 3);
    EXPECT_EQ(run({"--set", "timestamps.clock_correction=5"}).out, "");
}

TEST_F(SessionClock, ALibraryThatIsNotThereIsNamed)
{
    const Finished finished =
        kxtest::run({kxhostPath(), "clock", "--json", "--camera-library", "/no/such.so"});
    EXPECT_EQ(finished.code, 9);
    EXPECT_NE(finished.err.find("/no/such.so"), std::string::npos) << finished.err;
    EXPECT_EQ(Json::parse(finished.out)["exit_code"], 9);
}

TEST_F(SessionClock, TheTimeIsWithinOneSecondAndADay)
{
    for (const std::string seconds : {"0", "86401", "-1", "x"}) {
        const Finished finished = run({"--seconds", seconds});
        EXPECT_EQ(finished.code, 2) << seconds;
        EXPECT_NE(finished.err.find("--seconds"), std::string::npos) << finished.err;
    }
}

TEST_F(SessionClock, ItsHelpTeaches)
{
    const Finished finished = kxtest::run({kxhostPath(), "clock", "--help"});
    EXPECT_EQ(finished.code, 0);
    for (const char* part : {"--seconds", "--json", "clock_correction", "Examples", "Exit codes"}) {
        EXPECT_NE(finished.out.find(part), std::string::npos) << part;
    }
}

} // namespace
