// Sessions with the C library as it is: a control thread in real time, words and replies on the
// line, stopped at every stage, and a camera that is pulled out.
#include "control/sim_control.h"
#include "journal.h"
#include "kx_log.h"
#include "kx_pg_cthr.h"
#include "kx_pg_proc.h"
#include "kx_pg_shared.h"
#include "process_resources.h"
#include "recording_host.h"
#include "sanitizer.h"
#include "stdout_capture.h"
#include "test_bus.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <string>
#include <vector>

using KxPGrey::CCamCtrlThread;
using KxPGrey::CExCam;
using kxtest::host;
using kxtest::journal;
using kxtest::processResources;
using kxtest::ProcessResources;
using kxtest::StdoutCapture;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;

namespace {

constexpr unsigned kSerial = 1000;
constexpr int kGpio0 = 9;
constexpr int kGpio1 = 10;
constexpr int kFinish = 1;
/// Twice the time of a short command and its reply. A processor that stands still for longer than
/// a pulse costs a word, so none is insisted on.
constexpr std::size_t kFramesForAnswer = 120;

template <typename Condition>
void waitUntil(const Condition& reached)
{
    while (!reached()) {
        const timespec moment = {0, 1'000'000};
        nanosleep(&moment, nullptr);
    }
}

/// Where a session ends.
enum class Stage { started, sends, answered };

class RealTimeSessionsTest : public testing::Test {
public:
    ~RealTimeSessionsTest() override
    {
        gKxLogLevelLib = gKxLogModeLib = 0;
        host().reset();
    }

protected:
    RealTimeSessionsTest()
    {
        host().reset();
        fcsim::reset();
        kxtest::CameraText camera;
        camera.serial = kSerial;
        camera.sensor = "width = 160, height = 120, colour = false, frame_rate = 100.0";
        camera.extra = "scene = { kind = \"none\" }\n"
                       "[[camera.io_box]]\n"
                       "listens_on = 0\n"
                       "answers_on = 1\n";
        EXPECT_EQ(fcsim::loadBus(kxtest::busText({camera}), "test bus"), "");
    }
    void SetUp() override
    {
        CExCam camera;
        CCamCtrlThread thread;
        thread.CtrlThreadStart(&camera);
        if (!camera.ctrlThread) {
            GTEST_SKIP() << "real-time threads are not allowed here";
        }
    }

    /// All that is said until the session has ended.
    static void say(unsigned level)
    {
        gKxLogLevelLib = level;
        gKxLogModeLib = kxlog::kToStdout;
    }
    void connect(CExCam& camera)
    {
        FlyCapture2::BusManager bus;
        ASSERT_EQ(bus.GetCameraFromIndex(0, &guid_), FlyCapture2::PGRERROR_OK);
        ASSERT_EQ(camera.Connect(&guid_), FlyCapture2::PGRERROR_OK);
        ASSERT_EQ(camera.GetCameraInfo(&info_), FlyCapture2::PGRERROR_OK);
    }
    /// A session that sends this word and is told to finish at this stage. Returns its result.
    int session(Stage end, int bits, int word)
    {
        CExCam camera;
        connect(camera);
        host().config.iobox = {{.pin = kGpio0, .mode = 1, .inv = 0, .src = 5, .par = {bits, word}},
                               {.pin = kGpio1, .mode = 2, .inv = 0, .src = 5, .par = {2000, 12}}};
        host().checkSignal = [end] { return isReached(end) ? kFinish : 0; };
        const int result = KxPgProc(kKxPGreyOther, guid_, &camera, &info_);
        static_cast<void>(fcsim::takeTransitions(kSerial, 0));
        static_cast<void>(camera.Disconnect());
        return result;
    }
    static bool isReached(Stage stage)
    {
        switch (stage) {
        case Stage::started:
            return true;
        case Stage::sends:
            return !fcsim::takeTransitions(kSerial, 0).empty();
        case Stage::answered:
            return wordLeft() || host().exports.size() == kFramesForAnswer;
        }
        return true;
    }
    /// Whether a received word has left with a frame.
    static bool wordLeft()
    {
        const auto& exports = host().exports;
        return std::any_of(exports.begin(), exports.end(), [](const kxtest::Export& one) {
            return one.numbers.contains(14) && one.numbers.at(14) != 0;
        });
    }
    /// What the tests themselves keep, with its memory: how many frames come is a matter of time.
    static void forget()
    {
        journal().clear();
        host().exports = decltype(host().exports)();
        host().frames = decltype(host().frames)();
    }
    ProcessResources after(unsigned sessions)
    {
        constexpr unsigned kKinds = 4;
        for (unsigned number = 0; number < sessions && !HasFailure(); ++number) {
            const auto word = static_cast<int>(number % 4);
            switch (number % kKinds) {
            case 0:
                EXPECT_EQ(session(Stage::started, 2, word), 0);
                break;
            case 1:
                EXPECT_EQ(session(Stage::sends, 2, word), 0);
                break;
            case 2:
                EXPECT_EQ(session(Stage::answered, 2, word), 0);
                break;
            default: // longer than the 0.4 s in which a thread has to stop
                EXPECT_EQ(session(Stage::sends, 32, word), 0);
                break;
            }
            forget();
        }
        return processResources();
    }

    FlyCapture2::PGRGuid guid_;
    FlyCapture2::CameraInfo info_;
};

TEST_F(RealTimeSessionsTest, LeaveNothingBehind)
{
    if (!kxtest::kMayCancel) {
        GTEST_SKIP() << kxtest::kMayNotCancel;
    }
    const ProcessResources before = after(4);
    const ProcessResources later = after(kxtest::sessionsToRun(8));
    EXPECT_EQ(later.threads, before.threads);
    EXPECT_EQ(later.descriptors, before.descriptors);
    EXPECT_LE(later.heapBytes, before.heapBytes + 4096);
}

TEST_F(RealTimeSessionsTest, AThreadThatSendsALongWordIsCancelled)
{
    if (!kxtest::kMayCancel) {
        GTEST_SKIP() << kxtest::kMayNotCancel;
    }
    std::vector<std::string> lines;
    // The word takes a second; if this thread is held up as long, it comes too late.
    constexpr int kAttempts = 5;
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        StdoutCapture output;
        say(3);
        const int result = session(Stage::sends, 32, -2);
        say(0);
        lines = output.lines();
        ASSERT_EQ(result, 0);
        if (std::none_of(lines.begin(), lines.end(), [](const std::string& text) {
                return text.find("sent data") != std::string::npos;
            })) {
            break;
        }
    }
    EXPECT_THAT(lines, Contains(HasSubstr("grab ctrl thread new: policy=1 prio=98")));
    EXPECT_THAT(lines, Contains(HasSubstr("Stopping grab ctrl thread...")));
    EXPECT_THAT(lines, Contains(HasSubstr("Cancelling grab ctrl thread...")));
    EXPECT_THAT(lines, Not(Contains(HasSubstr("ctrl thread loop is done"))));
}

TEST_F(RealTimeSessionsTest, ACameraThatIsPulledOutEndsTheThread)
{
    StdoutCapture output;
    say(3);
    {
        CExCam camera;
        connect(camera);
        CCamCtrlThread thread;
        thread.CtrlThreadStart(&camera);
        waitUntil([&] { return KxPGrey::shared::look(camera.ctrlThreadRunning); });
        fcsim::setAttached(kSerial, false);
        waitUntil([&] { return !KxPGrey::shared::look(camera.ctrlThreadRunning); });
    }
    say(0);
    const auto lines = output.lines();
    EXPECT_THAT(lines, Contains(HasSubstr("device detach is detected by ctrl thread...")));
    EXPECT_THAT(lines, Not(Contains(HasSubstr("Stopping grab ctrl thread..."))));
}

TEST_F(RealTimeSessionsTest, ACameraThatIsPulledOutWhileItGrabsAndSendsEndsTheSession)
{
    if (!kxtest::kMayCancel) {
        GTEST_SKIP() << kxtest::kMayNotCancel;
    }
    host().onCall = [](std::string_view name) {
        if (name == "KxSc__ProcExport" && isReached(Stage::sends)) {
            fcsim::setAttached(kSerial, false);
        }
    };
    const ProcessResources before = processResources();
    EXPECT_LT(session(Stage::answered, 32, 1), 0);
    EXPECT_EQ(processResources().threads, before.threads);
}

} // namespace
