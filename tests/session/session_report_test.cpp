// The report of a grab: written whatever the end, refused beforehand, true to the summary.
#include "live_grab.h"

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <regex>
#include <string>

namespace {

using kxtest::busWith;
using kxtest::busWithFault;
using kxtest::Finished;
using kxtest::GrabSession;
using kxtest::TestSensor;
using Json = nlohmann::json;

constexpr int kFine = 0;
constexpr int kConfiguration = 3;
constexpr int kCamera = 5;
constexpr int kExport = 6;
constexpr int kPlugin = 8;

/// A grab with a report.
class SessionReport : public testing::Test {
protected:
    SessionReport() { session_.arguments = {"--report", path_}; }

    std::string page() const { return kxtest::readText(path_); }
    bool says(const std::string& part) const { return page().find(part) != std::string::npos; }
    /// What the page holds for programs under this name; -1 = nothing.
    long value(const std::string& id) const
    {
        const std::string text = page();
        std::smatch match;
        const std::regex data("<data id=\"" + id + "\" value=\"([0-9]+)\">");
        return std::regex_search(text, match, data) ? std::stol(match[1]) : -1;
    }

    GrabSession session_;
    const std::string path_ = session_.folder().file("report.html");
};

TEST_F(SessionReport, TellsOfAGrabThatWentWell)
{
    const Finished finished = session_.run();
    EXPECT_EQ(finished.code, kFine);
    EXPECT_EQ(finished.err, "");
    EXPECT_TRUE(says("Finished, no frame lost"));
    EXPECT_TRUE(says("<dd>Tester TST-1, serial 424242</dd>"));
    EXPECT_TRUE(says("64 × 48 pixels, MONO8T"));
    EXPECT_EQ(value("exit-code"), kFine);
    EXPECT_EQ(value("ledger-delivered"), 5);
    EXPECT_TRUE(page().ends_with("</html>\n"));
}

TEST_F(SessionReport, ItsLedgerIsThatOfTheSummary)
{
    session_.bus = busWithFault("kind = \"lose\"\nframe = 3\ncount = 2\n");
    EXPECT_EQ(session_.run().code, kFine);
    const Json ledger = session_.summary()["ledger"];
    EXPECT_EQ(value("ledger-values"), ledger["values"]);
    EXPECT_EQ(value("ledger-delivered"), ledger["delivered"]);
    ASSERT_GE(ledger["causes"].size(), 2U);
    for (const auto& [cause, count] : ledger["causes"].items()) {
        EXPECT_EQ(value("ledger-" + cause), count) << cause;
    }
    EXPECT_TRUE(says("Finished, with 2 frames lost"));
}

TEST_F(SessionReport, IsWrittenWhenTheCameraIsLost)
{
    session_.bus = busWith(TestSensor(), R"(detach_throws = "device is gone"

[[camera.fault]]
kind = "detach"
frame = 4
)");
    session_.set("grab.frames=100");
    session_.arguments.insert(session_.arguments.end(), {"--reconnect", "no"});
    EXPECT_EQ(session_.run().code, kCamera);
    EXPECT_TRUE(says("Failed: the camera failed or was lost"));
    EXPECT_EQ(value("exit-code"), kCamera);
    EXPECT_EQ(value("ledger-delivered"), 3);
}

TEST_F(SessionReport, IsWrittenWhenTheGrabIsTerminated)
{
    kxtest::LiveGrab grab(session_);
    grab.waitForMoreFrames(3);
    EXPECT_EQ(grab.finish(SIGTERM), kFine);
    EXPECT_TRUE(says("Finished as asked by a signal."));
    EXPECT_EQ(value("ledger-delivered"), session_.summary()["ledger"]["delivered"]);
}

TEST_F(SessionReport, IsWrittenWhenTheGrabNeverBegan)
{
    session_.set("acquisition.frame_rat=5");
    EXPECT_EQ(session_.run().code, kConfiguration);
    EXPECT_TRUE(says("Failed: the configuration was refused"));
    session_.settings = {};
    session_.arguments.insert(session_.arguments.end(),
                              {"--plugin", session_.folder().file("no.so")});
    EXPECT_EQ(session_.run().code, kPlugin);
    EXPECT_TRUE(says("Failed: the plug-in could not be loaded"));
}

TEST_F(SessionReport, IsRefusedBeforeTheCameraIsTouchedWhenItCannotBeWritten)
{
    session_.arguments = {"--report", session_.folder().file("nowhere/report.html")};
    const Finished finished = session_.run();
    EXPECT_EQ(finished.code, kExport);
    EXPECT_EQ(finished.err, "kxhost: Cannot write " +
                                session_.folder().file("nowhere/report.html") +
                                ": No such file or directory.\n");
    EXPECT_EQ(session_.summary()["passes"], 0);
    EXPECT_EQ(session_.summary()["exit_code"], kExport);
}

TEST_F(SessionReport, MayGoIntoTheFolderOfThePictures)
{
    session_.arguments = {"--report", session_.output("report.html")};
    EXPECT_EQ(session_.run().code, kFine);
    EXPECT_TRUE(std::filesystem::exists(session_.output("report.html")));
}

TEST_F(SessionReport, FailsTheGrabWhenItCannotBeWrittenAtTheEnd)
{
    session_.set("output.format=none");
    session_.filesMayGrowTo = 8000; // the page has more
    const Finished finished = session_.run();
    EXPECT_EQ(finished.code, kExport);
    EXPECT_EQ(finished.err, "kxhost: Cannot write " + path_ + ": File too large.\n");
    EXPECT_FALSE(std::filesystem::exists(path_));
    EXPECT_EQ(session_.summary()["exit_code"], kExport);
    EXPECT_EQ(session_.summary()["exported"]["written"], 5);
}

TEST_F(SessionReport, HasPicturesThoughNoneAreWritten)
{
    session_.set("output.format=none");
    EXPECT_EQ(session_.run().code, kFine);
    EXPECT_TRUE(says("alt=\"Frame 5, "));
    EXPECT_TRUE(says("Histogram of frame 1:"));
}

TEST_F(SessionReport, NoNameFromOutsideBecomesMarkup)
{
    const std::string evil = "<script>alert(1)</script>";
    std::string& bus = session_.bus;
    bus.replace(bus.find(kxtest::kModel), std::string(kxtest::kModel).size(), evil);
    session_.outputFolder = session_.folder().file("<img src=x onerror=alert(1)>");
    EXPECT_EQ(session_.run().code, kFine);
    EXPECT_TRUE(says("<dd>&lt;script&gt;alert(1)&lt;/script&gt;, serial 424242</dd>"));
    EXPECT_FALSE(says("<script"));
    EXPECT_FALSE(says("<img src=x"));
}

} // namespace
