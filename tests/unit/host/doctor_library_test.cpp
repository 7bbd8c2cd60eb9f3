// What is said of the camera library; session tests load real ones.
#include "doctor/doctor_library.h"
#include "doctor_fixture.h"

#include <gtest/gtest.h>

namespace kxhost {
namespace {

using Outcome = LibraryFacts::Outcome;

Check loaded(const std::string& path)
{
    LibraryFacts facts;
    facts.outcome = Outcome::kLoaded;
    facts.path = path;
    return judgeLibrary(facts);
}

Check refused(ExitCode code, const std::string& folder = "")
{
    LibraryFacts facts;
    facts.outcome = Outcome::kRefused;
    facts.exitCode = code;
    facts.reason = "Why.";
    facts.unseenFolder = folder;
    return judgeLibrary(facts);
}

TEST(DoctorLibrary, TheReleaseIsInTheNameOfTheFile)
{
    EXPECT_EQ(releaseOf("/usr/lib/libflycapture.so.2.13.3.31"), "2.13.3.31");
    EXPECT_EQ(releaseOf("/usr/lib/libflycapture.so.2"), "");
    EXPECT_EQ(releaseOf("/usr/lib/libother.so.2.13"), "");
    EXPECT_EQ(releaseOf(""), "");
}

TEST(DoctorLibrary, LoadedOnesAreShownWithReleaseAndPath)
{
    const Check check = loaded("/usr/lib/libflycapture.so.2.13.3.31");
    EXPECT_EQ(check.verdict, Verdict::kOk);
    EXPECT_EQ(check.found, "2.13.3.31");
    EXPECT_EQ(check.note, "/usr/lib/libflycapture.so.2.13.3.31");
    EXPECT_EQ(loaded("/usr/lib/libflycapture.so.2").verdict, Verdict::kOk);
    EXPECT_EQ(loaded("/usr/lib/libflycapture.so.2").found,
              "of a release that its name does not tell");
}

TEST(DoctorLibrary, ANewerReleaseIsAWarning)
{
    EXPECT_EQ(loaded("libflycapture.so.2.13.99").verdict, Verdict::kOk);
    EXPECT_EQ(loaded("libflycapture.so.2.14.0").verdict, Verdict::kWarn);
    EXPECT_EQ(loaded("libflycapture.so.3.0").verdict, Verdict::kWarn);
    EXPECT_EQ(loaded("libflycapture.so.2.9.3").verdict, Verdict::kOk)
        << "the plug-in would not have loaded if it was built for later ones";
}

TEST(DoctorLibrary, TheSimulationIsCalledSo)
{
    LibraryFacts facts;
    facts.outcome = Outcome::kLoaded;
    facts.simulated = true;
    facts.path = "/sim/libflycapture.so.2";
    EXPECT_EQ(judgeLibrary(facts).found, "simulated cameras");
    EXPECT_EQ(judgeLibrary(facts).verdict, Verdict::kOk);
}

TEST(DoctorLibrary, RefusedOnesAreFailuresWithTheirReason)
{
    const Check none = refused(kExitNoLibrary);
    EXPECT_EQ(none.verdict, Verdict::kFail);
    EXPECT_EQ(none.found, "not loaded");
    EXPECT_EQ(none.note, "Why.");
    EXPECT_EQ(none.command, "");
    EXPECT_EQ(refused(kExitNoLibrary, "/usr/local/lib").command,
              "echo /usr/local/lib | sudo tee /etc/ld.so.conf.d/flycapture.conf && sudo ldconfig");
    LibraryFacts searched;
    searched.outcome = Outcome::kRefused;
    searched.exitCode = kExitNoLibrary;
    searched.searched = true;
    EXPECT_EQ(judgeLibrary(searched).command, "kxhost doctor --camera-library FILE");
    const Check old = refused(kExitLibraryAge);
    EXPECT_EQ(old.found, "of another release than the plug-in");
    EXPECT_EQ(old.command.find("cmake --preset release -DFLYCAPTURE2_ROOT=/usr"), 0U);
    EXPECT_EQ(refused(kExitPlugin).verdict, Verdict::kFail);
    EXPECT_EQ(refused(kExitPlugin).command, "");
}

TEST(DoctorLibrary, ACrashIsAFailureAndAHangIsNotKnown)
{
    LibraryFacts facts;
    facts.outcome = Outcome::kCrashed;
    EXPECT_EQ(judgeLibrary(facts).verdict, Verdict::kFail);
    EXPECT_EQ(judgeLibrary(facts).found, "crashed while it was loaded");
    facts.outcome = Outcome::kHung;
    EXPECT_EQ(judgeLibrary(facts).verdict, Verdict::kUnknown);
}

TEST(DoctorLibrary, IsTriedInAProcessOfItsOwn)
{
    PluginChoice choice;
    choice.plugin = "/no/such/plug-in.so";
    const LibraryFacts missing = readLibrary(choice, Tree());
    EXPECT_EQ(missing.outcome, Outcome::kRefused);
    EXPECT_EQ(missing.exitCode, kExitPlugin);
    EXPECT_EQ(missing.reason, "The plug-in /no/such/plug-in.so does not exist.");
}

TEST(DoctorLibrary, OneThatTheLoaderDoesNotLookAtIsFound)
{
    const kxtest::FakeTree fake;
    PluginChoice choice;
    choice.plugin = "/proc/self/exe"; // is there, and is looked at after the library
    EXPECT_EQ(readLibrary(choice, fake.tree()).unseenFolder, "");
    fake.file("/usr/local/lib/libflycapture.so.2", "");
    const LibraryFacts facts = readLibrary(choice, fake.tree());
    if (facts.exitCode != kExitNoLibrary) {
        GTEST_SKIP() << "this computer has the maker's library";
    }
    EXPECT_EQ(facts.unseenFolder, "/usr/local/lib");
    EXPECT_TRUE(facts.searched);
    choice.simulate = true;
    EXPECT_FALSE(readLibrary(choice, fake.tree()).searched);
}

} // namespace
} // namespace kxhost
