// What a service manager is told of a grab, and when.
#include "grab/service_status.h"
#include "notify_listener.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include <unistd.h>

namespace kxhost {
namespace {

using Told = std::vector<std::string>;

constexpr std::uint64_t kSecondUs = 1'000'000;

class ServiceStatusTest : public testing::Test {
protected:
    /// What an update at this time tells; status lines are left out.
    Told update(double seconds)
    {
        status_.update(exported_, static_cast<std::uint64_t>(seconds * kSecondUs));
        return newly();
    }
    Told newly()
    {
        const Told& all = listener_.received();
        Told told;
        for (; seen_ < all.size(); ++seen_) {
            if (!all[seen_].starts_with("STATUS=")) {
                told.push_back(all[seen_]);
            }
        }
        return told;
    }
    void watch(std::uint64_t us)
    {
        std::destroy_at(&status_);
        std::construct_at(&status_, socket_, us, counts_, signals_, ProgressLine(counts_, 0, 0));
    }

    kxtest::NotifyListener listener_;
    NotifySocket socket_{listener_.address()};
    GrabCounts counts_;
    PendingSignals signals_;
    ExportTotals exported_;
    ServiceStatus status_{socket_, std::nullopt, counts_, signals_, ProgressLine(counts_, 0, 0)};
    std::size_t seen_ = 0;
};

TEST_F(ServiceStatusTest, ReadyComesWithTheFirstFrameAndOnce)
{
    counts_.passes = 3;
    counts_.capturing = true;
    EXPECT_EQ(update(1), Told());
    counts_.retrieved = 1;
    EXPECT_EQ(update(2), Told{"READY=1"});
    counts_.retrieved = 2;
    EXPECT_EQ(update(3), Told());
}

TEST_F(ServiceStatusTest, AReloadIsOverWithAFrameBehindItsTakeover)
{
    counts_.retrieved = 1;
    update(1);
    signals_.post(kReload);
    EXPECT_EQ(update(2), Told{"RELOADING=1\nMONOTONIC_USEC=2000000"});
    counts_.retrieved = 5;
    EXPECT_EQ(update(3), Told()) << "frames of the old configuration";
    signals_.acted(kReload);
    EXPECT_EQ(update(4), Told()) << "no frame of the new one yet";
    EXPECT_EQ(update(5), Told());
    counts_.retrieved = 6;
    EXPECT_EQ(update(6), Told{"READY=1"});
    EXPECT_EQ(update(7), Told());
}

TEST_F(ServiceStatusTest, AReloadThatWasTakenOverBetweenTwoLooksIsTold)
{
    counts_.retrieved = 1;
    update(1);
    signals_.post(kReload);
    signals_.acted(kReload);
    EXPECT_EQ(update(2).size(), 1U);
    counts_.retrieved = 2;
    EXPECT_EQ(update(3), Told{"READY=1"});
}

TEST_F(ServiceStatusTest, AReloadBeforeTheFirstFrameOnlyPutsReadyOff)
{
    signals_.post(kReload);
    EXPECT_EQ(update(1), Told());
    counts_.retrieved = 1;
    EXPECT_EQ(update(2), Told());
    signals_.acted(kReload);
    update(3);
    counts_.retrieved = 2;
    EXPECT_EQ(update(4), Told{"READY=1"});
}

TEST_F(ServiceStatusTest, StoppingIsToldOnceAndLast)
{
    counts_.retrieved = 1;
    update(1);
    signals_.post(kFinishTerminate);
    EXPECT_EQ(update(2), Told{"STOPPING=1"});
    EXPECT_EQ(update(3), Told());
    status_.end("Finished as asked by a signal.");
    EXPECT_EQ(newly(), Told());
    EXPECT_EQ(listener_.received().back(), "STATUS=Finished as asked by a signal.");
}

TEST_F(ServiceStatusTest, WritingTheRestIsGivenTimeAsLongAsItMoves)
{
    const Told more = {"EXTEND_TIMEOUT_USEC=60000000"};
    counts_.retrieved = 9;
    update(1);
    exported_.written = 1;
    EXPECT_EQ(update(2), Told()) << "nobody has asked for the end";
    signals_.post(kFinishTerminate);
    EXPECT_EQ(update(3), Told{"STOPPING=1"});
    EXPECT_EQ(update(4), Told()) << "a disk that hangs";
    exported_.written = 2;
    EXPECT_EQ(update(5), more);
    EXPECT_EQ(update(6), Told());
    exported_.failed = 1;
    EXPECT_EQ(update(7), more);
}

TEST_F(ServiceStatusTest, AGrabThatEndsBeforeTheFirstLookWasReady)
{
    counts_.retrieved = 5;
    status_.end("Finished.");
    EXPECT_EQ(listener_.received(), (Told{"READY=1", "STOPPING=1", "STATUS=Finished."}));
}

TEST_F(ServiceStatusTest, AGrabWithoutAFrameNeverWas)
{
    status_.end("There is no camera on the buses.");
    EXPECT_EQ(listener_.received(),
              (Told{"STOPPING=1", "STATUS=There is no camera on the buses."}));
}

TEST_F(ServiceStatusTest, TheStatusComesOnceASecond)
{
    update(1);
    update(1.999999);
    EXPECT_EQ(listener_.received(), Told{"STATUS=waiting for a camera"});
    update(2);
    EXPECT_EQ(listener_.received().size(), 2U);
    counts_.retrieved = 10;
    counts_.exported = 9;
    signals_.post(kFinishInterrupt);
    update(3);
    EXPECT_EQ(listener_.received().back(),
              "STATUS=finishing  9 frames  10.0 fps  0 lost  0 queued");
}

TEST_F(ServiceStatusTest, SignsOfLifeComeOnlyWhenSomethingMoves)
{
    watch(4 * kSecondUs);
    EXPECT_EQ(update(1), Told{"WATCHDOG=1"}) << "it has come this far";
    EXPECT_EQ(update(2), Told()) << "nothing has moved";
    EXPECT_EQ(update(9), Told());
    const auto moves = [&] { return update(10) == Told{"WATCHDOG=1"} && update(11).empty(); };
    counts_.passes = 1;
    EXPECT_TRUE(moves()) << "a camera is looked for";
    counts_.missing = 1;
    EXPECT_TRUE(moves()) << "a wait for a frame ended";
    exported_.written = 1;
    EXPECT_TRUE(moves()) << "a picture was written";
    exported_.failed = 1;
    EXPECT_TRUE(moves()) << "or was tried to";
    counts_.exported = 1;
    counts_.capturing = true;
    EXPECT_EQ(update(12), Told());
    counts_.retrieved = 1;
    EXPECT_EQ(update(13), (Told{"READY=1", "WATCHDOG=1"}));
}

TEST_F(ServiceStatusTest, WithoutAWatchdogThereAreNoSignsOfLife)
{
    counts_.passes = 1;
    EXPECT_EQ(update(1), Told());
}

TEST_F(ServiceStatusTest, LooksAreOftenEnoughForTheWatchdog)
{
    EXPECT_EQ(status_.tickMs(), 1000);
    watch(60 * kSecondUs);
    EXPECT_EQ(status_.tickMs(), 1000);
    watch(4 * kSecondUs);
    EXPECT_EQ(status_.tickMs(), 1000);
    watch(2 * kSecondUs);
    EXPECT_EQ(status_.tickMs(), 500);
    watch(1);
    EXPECT_EQ(status_.tickMs(), 1);
}

TEST(Watchdog, IsGivenByTheEnvironment)
{
    const auto with = [](const char* period, const std::string& process) {
        period == nullptr ? unsetenv("WATCHDOG_USEC") : setenv("WATCHDOG_USEC", period, 1);
        process.empty() ? unsetenv("WATCHDOG_PID") : setenv("WATCHDOG_PID", process.c_str(), 1);
        return watchdogOfEnvironment();
    };
    EXPECT_EQ(with("5000000", ""), 5000000U);
    EXPECT_EQ(with("5000000", std::to_string(getpid())), 5000000U);
    EXPECT_EQ(with("5000000", std::to_string(getpid() + 1)), std::nullopt);
    EXPECT_EQ(with(nullptr, ""), std::nullopt);
    for (const char* garbled : {"", "0", "x", "5s", "-1"}) {
        EXPECT_EQ(with(garbled, ""), std::nullopt) << garbled;
    }
}

} // namespace
} // namespace kxhost
