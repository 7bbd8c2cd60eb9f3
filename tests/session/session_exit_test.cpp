// How kxhost ends: each exit code, with its one sentence.
#include "grab_session.h"

#include <gtest/gtest.h>

namespace {

using kxtest::busWith;
using kxtest::busWithFault;
using kxtest::Finished;
using kxtest::GrabSession;
using kxtest::kxhostPath;
using kxtest::TestSensor;

constexpr int kFine = 0;
constexpr int kUsage = 2;
constexpr int kConfiguration = 3;
constexpr int kNoCamera = 4;
constexpr int kCamera = 5;
constexpr int kExport = 6;
constexpr int kLosses = 7;
constexpr int kPlugin = 8;
constexpr int kNoLibrary = 9;

/// Exactly one line, which is a sentence of kxhost.
void expectOneSentence(const std::string& text, const std::string& part)
{
    EXPECT_TRUE(text.starts_with("kxhost: ")) << text;
    EXPECT_TRUE(text.ends_with(".\n")) << text;
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1) << text;
    EXPECT_NE(text.find(part), text.npos) << text;
}

TEST(SessionExit, FineWhenTheFramesAreWritten)
{
    GrabSession session;
    const Finished finished = session.run();
    EXPECT_EQ(finished.code, kFine);
    EXPECT_EQ(finished.err, "");
    EXPECT_EQ(session.summary()["exit_code"], kFine);
    EXPECT_EQ(session.frames().size(), 5U);
    EXPECT_EQ(finished.out, "");
    kxtest::expectBalance(session);
}

TEST(SessionExit, TheSummaryIsPrintedUnlessAskedToBeQuiet)
{
    GrabSession session;
    session.quiet = false;
    const Finished finished = session.run();
    EXPECT_EQ(finished.code, kFine);
    EXPECT_NE(finished.out.find("retrieved 6 frames"), std::string::npos) << finished.out;
    EXPECT_NE(finished.out.find("lost      0"), std::string::npos) << finished.out;
}

TEST(SessionExit, UsageWhenAnOptionIsUnknown)
{
    EXPECT_EQ(kxtest::run({kxhostPath(), "grab", "--nonsense"}).code, kUsage);
    EXPECT_EQ(kxtest::run({kxhostPath()}).code, kUsage);
    EXPECT_EQ(kxtest::run({kxhostPath(), "grib"}).code, kUsage);
}

TEST(SessionExit, ConfigurationWhenAKeyIsWrong)
{
    GrabSession session;
    session.set("acquisition.frame_rat=5");
    const Finished finished = session.run();
    EXPECT_EQ(finished.code, kConfiguration);
    EXPECT_NE(finished.err.find("frame_rate"), std::string::npos) << finished.err;
    EXPECT_FALSE(std::filesystem::exists(session.output()));
    EXPECT_EQ(session.summary()["exit_code"], kConfiguration);
}

TEST(SessionExit, NoCameraWhenTheBusStaysEmpty)
{
    GrabSession session;
    session.bus = "";
    session.arguments = {"--wait", "0"};
    const Finished finished = session.run();
    EXPECT_EQ(finished.code, kNoCamera) << finished.err;
    expectOneSentence(finished.err, "camera");
    EXPECT_EQ(session.summary()["exit_code"], kNoCamera);
    EXPECT_EQ(session.summary()["retrieved"], 0);
    EXPECT_FALSE(std::filesystem::exists(session.output())) << "an empty folder for each start";
    std::filesystem::create_directories(session.output());
    EXPECT_EQ(session.run().code, kNoCamera);
    EXPECT_TRUE(std::filesystem::exists(session.output())) << "somebody else's folder";
}

TEST(SessionExit, AGrabThatNeverBeganHasNothingToCount)
{
    GrabSession session;
    session.quiet = false;
    session.bus = "";
    session.arguments = {"--wait", "0"};
    const Finished finished = session.run();
    EXPECT_EQ(finished.code, kNoCamera) << finished.err;
    EXPECT_EQ(finished.out.find("retrieved"), std::string::npos) << finished.out;
    EXPECT_EQ(session.summary()["retrieved"], 0);
}

TEST(SessionExit, NoCameraWhenOnlyOthersAreThere)
{
    GrabSession session;
    session.set("camera.serial=1");
    session.arguments = {"--wait", "0"};
    EXPECT_EQ(session.run().code, kNoCamera);
}

TEST(SessionExit, WaitingRepeatsTheLookForACamera)
{
    GrabSession session;
    session.bus = "";
    session.arguments = {"--wait", "0.6"};
    EXPECT_EQ(session.run().code, kNoCamera);
    EXPECT_GE(session.summary()["passes"].get<int>(), 2);
}

TEST(SessionExit, CameraWhenItLeavesTheBus)
{
    GrabSession session;
    session.bus = busWith(TestSensor(), R"(detach_throws = "device is gone"

[[camera.fault]]
kind = "detach"
frame = 4
)");
    session.set("grab.frames=100");
    session.arguments = {"--reconnect", "no"};
    const Finished finished = session.run();
    EXPECT_EQ(finished.code, kCamera) << finished.err;
    expectOneSentence(finished.err, "lost");
    kxtest::expectBalance(session);
    EXPECT_EQ(session.frames().size(), 3U); // frames 0 to 3 arrived; the first is not exported
}

TEST(SessionExit, CameraWhenItIsNotPowered)
{
    GrabSession session;
    session.bus = busWith(TestSensor(), "power = { behaviour = \"timeout\" }");
    const Finished finished = session.run();
    EXPECT_EQ(finished.code, kCamera) << finished.err;
    expectOneSentence(finished.err, "power");
}

/// A bus whose camera's library throws where it is configured.
std::string busThatThrows(const std::string& operation)
{
    return busWith(TestSensor(), "[[camera.call_fault]]\noperation = \"" + operation +
                                     "\"\ncount = 0\nthrows = \"library gave up\"\n");
}

TEST(SessionExit, CameraWhenItsLibraryThrowsBeforeTheFirstFrame)
{
    GrabSession session;
    session.set("output.overwrite=true");
    // The second is called also where the cameras are asked who they are, ahead of the grab.
    for (const char* const operation : {"SetFormat7Configuration", "GetCameraInfo"}) {
        for (const char* const reconnect : {"no", "forever"}) {
            session.bus = busThatThrows(operation);
            session.arguments = {"--reconnect", reconnect};
            const Finished finished = session.run();
            EXPECT_EQ(finished.code, kCamera) << operation << " " << reconnect;
            EXPECT_EQ(finished.err,
                      "kxhost: The camera library or the driver threw: library gave up.\n");
            EXPECT_EQ(session.summary()["reason"],
                      "The camera library or the driver threw: library gave up.");
        }
    }
}

TEST(SessionExit, CameraWhenItsLibraryThrowsInAList)
{
    const kxtest::TemporaryFolder folder;
    kxtest::writeText(folder.file("bus.toml"), busThatThrows("GetCameraInfo"));
    const Finished finished =
        kxtest::run({kxhostPath(), "list", "--simulate=" + folder.file("bus.toml")});
    EXPECT_EQ(finished.code, kCamera);
    EXPECT_EQ(finished.err, "kxhost: The camera library or the driver threw: library gave up.\n");
}

TEST(SessionExit, ExportWhenTheFolderCannotBeMade)
{
    GrabSession session;
    kxtest::writeText(session.folder().file("file"), "");
    session.outputFolder = session.folder().file("file") + "/out";
    const Finished finished = session.run();
    EXPECT_EQ(finished.code, kExport);
    expectOneSentence(finished.err, "Cannot create the folder");
    EXPECT_EQ(session.summary()["exit_code"], kExport);
}

TEST(SessionExit, ExportWhenFramesOfAnEarlierGrabAreThere)
{
    GrabSession session;
    ASSERT_EQ(session.run().code, kFine);
    const Finished again = session.run();
    EXPECT_EQ(again.code, kExport);
    expectOneSentence(again.err, "earlier grab");
    session.set("output.overwrite=true");
    EXPECT_EQ(session.run().code, kFine);
}

TEST(SessionExit, ExportWhenTheDiskIsFull)
{
    GrabSession session;
    session.set("output.format=raw");
    session.set("grab.frames=0");  // until the export fails
    session.filesMayGrowTo = 2000; // a picture has 3072 bytes
    const Finished finished = session.run();
    EXPECT_EQ(finished.code, kExport) << finished.err;
    expectOneSentence(finished.err, "File too large");
    EXPECT_TRUE(session.pictures().empty()); // no half-written picture
    EXPECT_TRUE(session.frames().empty());
}

TEST(SessionExit, ExportWhenTheSummaryCannotBeWritten)
{
    const kxtest::TemporaryFolder folder;
    const std::string summary = folder.file("nowhere/summary.json");
    const Finished finished = kxtest::run({kxhostPath(), "grab", "--simulate", "--frames", "1",
                                           "--output", folder.file("out"), "--summary", summary});
    EXPECT_EQ(finished.code, kExport);
    EXPECT_EQ(finished.err, "kxhost: Cannot write " + summary + ": No such file or directory.\n");
    EXPECT_FALSE(std::filesystem::exists(folder.file("out"))) << "known before there are frames";
}

TEST(SessionExit, ExportWhenTheSummaryDoesNotFit)
{
    GrabSession session;
    session.settings = {"grab.frames=1", "output.format=none", "output.metadata=false"};
    session.filesMayGrowTo = 500;
    const Finished finished = session.run();
    EXPECT_EQ(finished.code, kExport) << finished.err;
    EXPECT_EQ(finished.err, "kxhost: Cannot write " + session.folder().file("summary.json") +
                                ": File too large.\n");
    EXPECT_FALSE(std::filesystem::exists(session.folder().file("summary.json")));
}

TEST(SessionExit, LossesWhenThereAreMoreThanAllowed)
{
    GrabSession session;
    session.bus = busWithFault("kind = \"lose\"\nframe = 3\ncount = 2\n");
    session.arguments = {"--max-losses", "1"};
    const Finished finished = session.run();
    EXPECT_EQ(finished.code, kLosses) << finished.err;
    expectOneSentence(finished.err, "2 frames were lost");
    session.set("output.overwrite=true");
    session.arguments = {"--max-losses", "2"};
    EXPECT_EQ(session.run().code, kFine);
}

TEST(SessionExit, PluginWhenItIsMissing)
{
    GrabSession session;
    session.arguments = {"--plugin", session.folder().file("no.so")};
    const Finished finished = session.run();
    EXPECT_EQ(finished.code, kPlugin);
    expectOneSentence(finished.err, "no.so");
    EXPECT_EQ(session.summary()["exit_code"], kPlugin);
}

TEST(SessionExit, LibraryWhenItIsMissing)
{
    const Finished finished =
        kxtest::run({kxhostPath(), "grab", "--camera-library", "/nowhere/libflycapture.so.2"});
    EXPECT_EQ(finished.code, kNoLibrary);
    expectOneSentence(finished.err, "/nowhere/libflycapture.so.2");
}

} // namespace
