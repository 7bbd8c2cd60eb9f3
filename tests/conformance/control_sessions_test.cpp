// Sessions in a row, each with a control thread and a word on its way: they leave nothing behind.
#include "io_fixture.h"
#include "process_resources.h"
#include "sanitizer.h"
#include "system_calls.h"

#include <algorithm>

using kxtest::command;
using kxtest::host;
using kxtest::journal;
using kxtest::kGpio0;
using kxtest::kGpio1;
using kxtest::processResources;
using kxtest::ProcessResources;
using kxtest::RealTime;
using kxtest::reply;
using kxtest::waitUntil;
using testing::SizeIs;

namespace {

class ControlSessionsTest : public kxtest::PluginTest {
public:
    ~ControlSessionsTest() override { kxtest::setRealTime(RealTime::refused); }

protected:
    ControlSessionsTest()
    {
        gKxLogLevelLib = 3;
        kxtest::setRealTime(RealTime::granted);
        plugIn({kxtest::CameraText()});
        host().onCall = [](std::string_view name) {
            // A frame comes: the first waits for the word to be taken up.
            if (name == "KxGi__HaltStop") {
                waitUntil([] { return !journal().logsWith("enqueue gpio cmd").empty(); });
            }
        };
        host().config.fnum = 2;
    }

    /// Ends while the word is sent, or while its reply is waited for; long words have to be
    /// cancelled.
    static void session(unsigned number)
    {
        const auto bits = static_cast<int>(1 + number % 32);
        host().config.iobox = {command(kGpio0, bits, static_cast<int>(number)),
                               reply(kGpio1, 100, 12)};
        ASSERT_EQ(run(), 0);
        ASSERT_THAT(journal().logsWith("scenario is completed"), SizeIs(1));
        ASSERT_THAT(journal().logsWith("Stopping grab ctrl thread"), SizeIs(1));
        // What the tests themselves keep.
        journal().clear();
        host().exports.clear();
        host().frames.clear();
    }
    static ProcessResources after(unsigned sessions)
    {
        for (unsigned number = 0; number < sessions && !HasFatalFailure(); ++number) {
            session(number);
        }
        return processResources();
    }
};

TEST_F(ControlSessionsTest, LeaveNothingBehind)
{
    if (!kxtest::kMayCancel) {
        GTEST_SKIP() << kxtest::kMayNotCancel;
    }
    // The first ones fill what is kept for the life of the process.
    const ProcessResources before = after(16);
    const ProcessResources later = after(kxtest::sessionsToRun(32));
    EXPECT_EQ(later.threads, before.threads);
    EXPECT_EQ(later.descriptors, before.descriptors);
    EXPECT_LE(later.heapBytes, before.heapBytes + 4096);
}

TEST_F(ControlSessionsTest, OneThreadCoversTheRestartsOfAPass)
{
    host().onCall = nullptr;
    host().calcLut = [](const void*, std::uint32_t bits, std::uint32_t* cdf) {
        std::fill_n(cdf, std::size_t{1} << bits, 1U);
    };
    host().getLut = [](std::uint32_t bits, const std::uint32_t*, std::uint16_t* lut) {
        std::fill_n(lut, std::size_t{1} << bits, std::uint16_t{1});
    };
    host().checkSignal = [poll = 0]() mutable { return ++poll == 2 ? 4 : 0; };
    host().config.fnum = 6;
    ASSERT_EQ(run(), 0);
    EXPECT_EQ(journal().count("Camera.StartCapture"), 3U); // 8 bits, 12 bits, 8 bits
    EXPECT_EQ(journal().count("pthread_create"), 1U);
    EXPECT_THAT(journal().logsWith("Stopping grab ctrl thread"), SizeIs(testing::Le(1U)));
    EXPECT_THAT(journal().logsWith("ctrl thread loop is done"), SizeIs(1));
}

} // namespace
