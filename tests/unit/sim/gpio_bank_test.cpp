// GPIO pins of a simulated camera: control registers, lines driven by hand, and a box that answers.
#include "line_fixture.h"
#include "sim_fixture.h"

#include <atomic>
#include <cstdio>
#include <thread>
#include <vector>

#include <unistd.h>

using namespace FlyCapture2;
using fcsim::LineTransition;

namespace {

constexpr unsigned kPin0 = 0x1110;
constexpr unsigned kPin1 = 0x1120;
constexpr unsigned kOutput = 0x80010000;
constexpr unsigned kInput = 0x80000000;
const char* const kBox = "[[camera.io_box]]\nlistens_on = 0\nanswers_on = 1\n";

class GpioBankTest : public SimTest {
protected:
    unsigned read(unsigned address)
    {
        unsigned value = 0;
        EXPECT_EQ(camera.ReadRegister(address, &value).GetType(), PGRERROR_OK);
        return value;
    }
    void write(unsigned address, unsigned value)
    {
        ASSERT_EQ(camera.WriteRegister(address, value).GetType(), PGRERROR_OK);
    }
    /// Drives pin 0 as a camera's program does, and waits until the frame is surely over.
    void send(std::uint32_t word, unsigned bits)
    {
        write(kPin0, kOutput);
        const line::Plan plan =
            line::sent(line::symbolsOf(word, bits), 2000, false, fcsim::nowUs() + 1000);
        for (const LineTransition& transition : plan) {
            fcsim::advanceClock(transition.atUs - fcsim::nowUs());
            write(kPin0, kOutput | (transition.level ? 1U : 0U));
        }
        fcsim::advanceClock(82'000);
    }
};

TEST_F(GpioBankTest, EachPinHasItsRegister)
{
    connect();
    for (unsigned pin = 0; pin < 4; ++pin) {
        EXPECT_EQ(read(kPin0 + 16 * pin), kInput);
    }
    EXPECT_EQ(read(0x1150), 0U);
}

TEST_F(GpioBankTest, APinThatIsNotThereReadsZero)
{
    ASSERT_EQ(fcsim::loadBus("[[camera]]\nmodel = \"T\"\nserial = 7001\ninterface = \"usb3\"\n"
                             "gpio_pins = 1\n[camera.sensor]\nwidth = 64\nheight = 32\n",
                             "test.toml"),
              "");
    EXPECT_EQ(fcsim::peekRegister(kSerial, kPin0), kInput);
    EXPECT_EQ(fcsim::peekRegister(kSerial, kPin1), 0U);
}

TEST_F(GpioBankTest, AnOutputHasTheLevelThatWasWritten)
{
    connect();
    write(kPin0, 0x00010001);
    EXPECT_EQ(read(kPin0), kOutput | 1U);
    write(kPin0, 0x00010000);
    EXPECT_EQ(read(kPin0), kOutput);
}

TEST_F(GpioBankTest, OtherBitsAndOtherModesAreKept)
{
    connect();
    for (const unsigned value : {0x00020001U, 0x00040000U, 0x000F0001U, 0x7FF1FFFFU}) {
        write(kPin0, value);
        EXPECT_EQ(read(kPin0), kInput | value);
    }
}

TEST_F(GpioBankTest, APinWithoutItsPresenceBitDrivesNothing)
{
    connect("[camera.registers]\n\"0x1110\" = 0\n");
    write(kPin0, kOutput | 1U);
    EXPECT_EQ(read(kPin0), 0x00010001U);
    EXPECT_TRUE(fcsim::takeTransitions(kSerial, 0).empty());
}

TEST_F(GpioBankTest, AnInputReadsItsLine)
{
    connect();
    write(kPin1, 0x00000001); // the level bit of an input is not for writing
    EXPECT_EQ(read(kPin1), kInput);
    fcsim::drivePin(kSerial, 1, true);
    EXPECT_EQ(read(kPin1), kInput | 1U);
    EXPECT_EQ(fcsim::peekRegister(kSerial, kPin1), kInput | 1U);
    fcsim::drivePin(kSerial, 1, false);
    EXPECT_EQ(read(kPin1), kInput);
    fcsim::drivePin(kSerial, 1, true);
    fcsim::releasePin(kSerial, 1);
    EXPECT_EQ(read(kPin1), kInput);
}

TEST_F(GpioBankTest, AnInputMayBePulledHigh)
{
    connect("[camera.registers]\n\"0x1120\" = 0x80000001\n");
    EXPECT_EQ(read(kPin1), kInput | 1U);
    fcsim::drivePin(kSerial, 1, false);
    EXPECT_EQ(read(kPin1), kInput);
}

TEST_F(GpioBankTest, ALineMayFollowAPlan)
{
    connect();
    fcsim::drivePin(kSerial, 1, {{kStartUs + 10, true}, {kStartUs + 20, false}});
    EXPECT_EQ(read(kPin1), kInput);
    fcsim::advanceClock(10);
    EXPECT_EQ(read(kPin1), kInput | 1U);
    fcsim::advanceClock(10);
    EXPECT_EQ(read(kPin1), kInput);
}

TEST_F(GpioBankTest, TransitionsOfOutputsAreRecorded)
{
    connect();
    write(kPin0, kOutput); // as it was: none
    fcsim::advanceClock(5);
    write(kPin0, kOutput | 1U);
    write(kPin0, kOutput | 1U);
    fcsim::advanceClock(7);
    write(kPin0, 0x80020000); // no output: none
    write(kPin0, kOutput);
    const std::vector<LineTransition> expected{{kStartUs + 5, true}, {kStartUs + 12, false}};
    EXPECT_EQ(fcsim::takeTransitions(kSerial, 0), expected);
    EXPECT_TRUE(fcsim::takeTransitions(kSerial, 0).empty());
    EXPECT_TRUE(fcsim::takeTransitions(kSerial, 1).empty());
    EXPECT_TRUE(fcsim::takeTransitions(kSerial, 4).empty());
}

TEST_F(GpioBankTest, TheNewestTransitionsAreKept)
{
    connect();
    for (unsigned i = 0; i < 5000; ++i) {
        fcsim::advanceClock(1);
        write(kPin0, kOutput | (i % 2 == 0 ? 1U : 0U));
    }
    const auto transitions = fcsim::takeTransitions(kSerial, 0);
    ASSERT_EQ(transitions.size(), 4096U);
    EXPECT_EQ(transitions.back().atUs, kStartUs + 5000);
}

TEST_F(GpioBankTest, AWriteTakesEffectAtTheEndOfItsRegisterTime)
{
    ASSERT_EQ(fcsim::loadBus("[[camera]]\nmodel = \"T\"\nserial = 7001\ninterface = \"usb3\"\n"
                             "register_time_us = 45\n[camera.sensor]\nwidth = 64\nheight = 32\n",
                             "test.toml"),
              "");
    ASSERT_EQ(camera.Connect(nullptr).GetType(), PGRERROR_OK);
    write(kPin0, kOutput | 1U);
    const auto transitions = fcsim::takeTransitions(kSerial, 0);
    ASSERT_EQ(transitions.size(), 1U);
    EXPECT_EQ(transitions[0].atUs, kStartUs + 45);
}

TEST_F(GpioBankTest, APokedPinKeepsItsValue)
{
    connect();
    fcsim::pokeRegister(kSerial, kPin0, 0);
    EXPECT_EQ(read(kPin0), 0U);
}

TEST_F(GpioBankTest, ABoxHearsACommandAndAnswersInItsTime)
{
    connect(kBox);
    send(0x392, 10);
    const auto log = fcsim::takeBoxLog(kSerial, 0);
    ASSERT_EQ(log.size(), 1U);
    EXPECT_EQ(log[0].verdict, fcsim::IoBoxVerdict::good);
    EXPECT_EQ(log[0].word, 0x392U);
    ASSERT_TRUE(log[0].answered);
    ASSERT_GT(log[0].replyStartUs, fcsim::nowUs());
    fcsim::advanceClock(log[0].replyStartUs - 1 - fcsim::nowUs());
    EXPECT_EQ(read(kPin1), kInput);
    fcsim::advanceClock(1);
    EXPECT_EQ(read(kPin1), kInput | 1U);
}

TEST_F(GpioBankTest, AReadIsEnoughForTheBoxToAnswer)
{
    connect(kBox);
    send(0x3, 2);
    fcsim::advanceClock(46'000 + 500); // into the first pulse of the answer
    EXPECT_EQ(read(kPin1), kInput | 1U);
}

TEST_F(GpioBankTest, ALineDrivenByHandGoesBeforeTheBox)
{
    connect("[[camera.io_box]]\nlistens_on = 0\nanswers_on = 1\nidle = \"high\"\n");
    EXPECT_EQ(read(kPin1), kInput | 1U);
    fcsim::drivePin(kSerial, 1, false);
    EXPECT_EQ(read(kPin1), kInput);
    fcsim::releasePin(kSerial, 1);
    EXPECT_EQ(read(kPin1), kInput | 1U);
}

TEST_F(GpioBankTest, ABoxListensToItsPinOnly)
{
    connect("[[camera.io_box]]\nlistens_on = 2\n[[camera.io_box]]\nlistens_on = 0\n");
    send(0x3, 2);
    EXPECT_TRUE(fcsim::takeBoxLog(kSerial, 0).empty());
    EXPECT_EQ(fcsim::takeBoxLog(kSerial, 1).size(), 1U);
    EXPECT_TRUE(fcsim::takeBoxLog(kSerial, 2).empty());
    EXPECT_TRUE(fcsim::takeBoxLog(1, 0).empty());
}

TEST_F(GpioBankTest, TheBoxLogsWhatItHasHeardWhenFramesAreFetchedOrTheCameraIsLetGo)
{
    for (const bool fetch : {true, false}) {
        const std::string log = testing::TempDir() + "gpio_bank_test_box.log";
        std::remove(log.c_str());
        connect(kBox + ("log = \"" + log + "\"\n"));
        send(0x3, 2);
        EXPECT_NE(access(log.c_str(), F_OK), 0);
        if (fetch) {
            Image image;
            ASSERT_EQ(camera.StartCapture().GetType(), PGRERROR_OK);
            ASSERT_EQ(camera.RetrieveBuffer(&image).GetType(), PGRERROR_OK);
        } else {
            camera.Disconnect();
        }
        EXPECT_EQ(access(log.c_str(), F_OK), 0);
        std::remove(log.c_str());
        camera.Disconnect();
    }
}

// One thread fetches frames, one works the pins, one reads logs: the sanitizers watch.
TEST_F(GpioBankTest, ThreadsShareACamera)
{
    fcsim::useHostClock();
    connect(kBox);
    ASSERT_EQ(camera.StartCapture().GetType(), PGRERROR_OK);
    std::atomic<bool> done{false};
    std::thread pins([&] {
        StrobeControl strobe;
        strobe.source = 2;
        for (unsigned i = 0; i < 2000; ++i) {
            camera.WriteRegister(kPin0, kOutput | i % 2);
            unsigned value = 0;
            camera.ReadRegister(kPin1, &value);
            strobe.onOff = i % 2 == 0;
            camera.SetStrobe(&strobe);
        }
        done = true;
    });
    std::thread logs([&] {
        do {
            fcsim::takeTransitions(kSerial, 0);
            fcsim::takeBoxLog(kSerial, 0);
            fcsim::takeStrobePulses(kSerial);
            fcsim::drivePin(kSerial, 1, true);
            std::this_thread::yield();
        } while (!done);
    });
    Image image;
    for (unsigned frame = 0; frame < 3; ++frame) {
        EXPECT_EQ(camera.RetrieveBuffer(&image).GetType(), PGRERROR_OK);
    }
    pins.join();
    logs.join();
    EXPECT_EQ(read(kPin1), kInput | 1U);
}

} // namespace
