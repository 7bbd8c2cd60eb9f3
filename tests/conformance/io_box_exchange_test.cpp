// The control thread's functions and a simulated I/O box on the camera's pins: words go out and
// come back.
#include "io_fixture.h"

#include <rapidcheck/gtest.h>

using kxtest::command;
using kxtest::host;
using kxtest::journal;
using kxtest::kGpio0;
using kxtest::kGpio1;
using kxtest::reply;

namespace {

constexpr unsigned kSerial = 1000;

/// The test is the thread: it makes a pass each 2.1 ms of the simulation's clock.
class IoBoxExchangeTest : public kxtest::CameraTest {
protected:
    IoBoxExchangeTest() { connectBox("none"); }

    void connectBox(const std::string& misbehaviour)
    {
        kxtest::CameraText camera;
        camera.serial = kSerial;
        camera.extra = "[[camera.io_box]]\n"
                       "listens_on = 0\n"
                       "answers_on = 1\n"
                       "misbehaviour = \"" +
                       misbehaviour + "\"\n";
        connect(camera);
        gKxLogLevelLib = 2;
    }
    /// Sends a command and waits for its reply, or for the end of its time.
    void exchange(unsigned bits, std::uint32_t word)
    {
        constexpr std::uint64_t kLoopUs = 2100;
        constexpr int kPolls = 3000;
        cam_->rxBits = cam_->rxData = 0;
        host().config.iobox = {command(kGpio0, static_cast<int>(bits), static_cast<int>(word)),
                               reply(kGpio1, kPolls, -1)};
        proc_->ProcParametrizeCamOutLines(cam_.get());
        EXPECT_TRUE(KxPGrey::CCamCtrlThread::DoGpioCfg(cam_.get()));
        cam_->ioCfgPending = false;
        while (!KxPGrey::CCamCtrlThread::DoGpioProc(cam_.get())) {
            fcsim::advanceClock(kLoopUs);
        }
    }
    static std::vector<fcsim::IoBoxEntry> heard() { return fcsim::takeBoxLog(kSerial, 0); }
};

RC_GTEST_FIXTURE_PROP(IoBoxExchangeTest, AnyWordOfUpTo30BitsComesBack, (std::uint32_t word))
{
    RC_PRE(word != kxtest::kUnset);
    const auto bits = *rc::gen::inRange(1U, 31U);
    exchange(bits, word);
    const auto log = heard();
    RC_ASSERT(log.size() == 1U);
    RC_ASSERT(log[0].verdict == fcsim::IoBoxVerdict::good);
    RC_ASSERT(log[0].bits == bits + bits % 2);
    RC_ASSERT(log[0].word == word % (1U << bits) << bits % 2);
    RC_ASSERT(cam_->rxBits == log[0].bits);
    RC_ASSERT(cam_->rxData == log[0].word);
}

TEST_F(IoBoxExchangeTest, EachFaultOfTheBoxIsNoWord)
{
    const std::vector<std::pair<const char*, const char*>> faults = {
        {"wrong_parity", "is rejected (too short), parity - FAIL"},
        {"short_pulses", "data waiting is timed out - got 0 bits"},
        {"silence", "initial waiting is timed out"},
    };
    for (const auto& [fault, message] : faults) {
        connectBox(fault);
        exchange(12, 0x2A7);
        EXPECT_EQ(cam_->rxBits, 0U) << fault;
        EXPECT_EQ(journal().logsWith(message).size(), 1U) << fault;
        ASSERT_EQ(heard().size(), 1U);
        // The pins are free for the next command.
        EXPECT_EQ(cam_->ioPinState[0].pinFree + cam_->ioPinState[1].pinFree, 2);
    }
}

TEST_F(IoBoxExchangeTest, HalfAReplyIsAnotherWordWhenItsParityFits)
{
    // Four of eight symbols are left; the receiver takes the last of them for the parity.
    connectBox("truncated");
    exchange(14, 0b11'11'00'00'11'11'01);
    EXPECT_EQ(cam_->rxBits, 6U);
    EXPECT_EQ(cam_->rxData, 0b11'11'00U);
}

} // namespace
