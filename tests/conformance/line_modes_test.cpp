// Modes, levels and strobes of the pins: register traffic, SDK calls, result codes, messages.
#include "camera_test.h"

#include <tuple>

using KxPGrey::kPgPin0;
using KxPGrey::kPgPin1;
using KxPGrey::kPgPin2;
using KxPGrey::kPgPin3;
using KxPGrey::pg_pins;
using kxtest::info;
using kxtest::journal;
using kxtest::Kind;
using kxtest::kNoLineEnd;
using kxtest::warning;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;

namespace {

constexpr unsigned kSerial = 1000;
constexpr unsigned kKeep = 0xFFFFFFFF;

/// A pin's register reads what the test says, whatever is written to it.
class LineModesTest : public kxtest::CameraTest {
protected:
    LineModesTest() { connect(); }
    static void pinReads(pg_pins pin, std::uint32_t word)
    {
        fcsim::pokeRegister(kSerial, 0x1110 + 0x10 * static_cast<unsigned>(pin), word);
    }
    static std::vector<std::string> sdkCalls() { return journal().lines(Kind::sdk); }
};

TEST_F(LineModesTest, EachPinHasItsRegister)
{
    pinReads(kPgPin0, 0x80000000);
    pinReads(kPgPin1, 0x80010000);
    pinReads(kPgPin2, 0x80040000);
    pinReads(kPgPin3, 0xFFFFFFFF);
    EXPECT_EQ(cam_->ExGetLineMode(kPgPin0), 0U);
    EXPECT_EQ(cam_->ExGetLineMode(kPgPin1), 1U);
    EXPECT_EQ(cam_->ExGetLineMode(kPgPin2), 4U);
    EXPECT_EQ(cam_->ExGetLineMode(kPgPin3), 15U);
    EXPECT_THAT(sdkCalls(),
                ElementsAre("Camera.ReadRegister(0x1110)", "Camera.ReadRegister(0x1120)",
                            "Camera.ReadRegister(0x1130)", "Camera.ReadRegister(0x1140)"));
    EXPECT_THAT(journal().logs(), IsEmpty());
}

TEST_F(LineModesTest, AnOutputGetsItsModeAndLevelAndKeepsTheOtherBits)
{
    pinReads(kPgPin1, 0xABC4'5676);
    EXPECT_EQ(cam_->ExSetLineMode(kPgPin1, 1, true), 0);
    pinReads(kPgPin1, 0xABCF'5677);
    EXPECT_EQ(cam_->ExSetLineMode(kPgPin1, 1, false), 0);
    EXPECT_THAT(sdkCalls(), ElementsAre("Camera.ReadRegister(0x1120)",
                                        "Camera.WriteRegister(0x1120 0xABC15677)",
                                        "Camera.ReadRegister(0x1120)",
                                        "Camera.WriteRegister(0x1120 0xABC15676)"));
    EXPECT_THAT(journal().logs(), ElementsAre(info("### initially set pin 1: mode 1 ###"),
                                              info("### initially set pin 1: mode 1 ###")));
}

TEST_F(LineModesTest, OtherModesLeaveTheLevelAsItWasRead)
{
    for (const unsigned mode : {0U, 2U, 3U, 4U}) {
        journal().clear();
        pinReads(kPgPin3, 0x800F'0000);
        EXPECT_EQ(cam_->ExSetLineMode(kPgPin3, mode, true), 0);
        pinReads(kPgPin3, 0x800F'0001);
        EXPECT_EQ(cam_->ExSetLineMode(kPgPin3, mode, false), 0);
        const std::string word = "Camera.WriteRegister(0x1140 0x800" + std::to_string(mode);
        EXPECT_THAT(journal().lines({"Camera.WriteRegister"}),
                    ElementsAre(word + "0000)", word + "0001)"));
        const std::string message =
            info("### initially set pin 3: mode " + std::to_string(mode) + " ###");
        EXPECT_THAT(journal().logs(), ElementsAre(message, message));
    }
}

TEST_F(LineModesTest, TheMessageComesBeforeTheWrite)
{
    pinReads(kPgPin0, 0x80000000);
    EXPECT_EQ(cam_->ExSetLineMode(kPgPin0, 4, false), 0);
    EXPECT_THAT(journal().lines([](const auto&) { return true; }),
                ElementsAre("Camera.ReadRegister(0x1110)",
                            info("### initially set pin 0: mode 4 ###"),
                            "Camera.WriteRegister(0x1110 0x80040000)"));
}

TEST_F(LineModesTest, AModeFrom5OnIsRefusedWithoutAskingTheCamera)
{
    for (const unsigned mode : {5U, 15U, 0xFFFFFFFFU}) {
        journal().clear();
        EXPECT_EQ(cam_->ExSetLineMode(kPgPin0, mode, true), -2);
        EXPECT_THAT(sdkCalls(), IsEmpty());
        EXPECT_THAT(journal().logs(),
                    ElementsAre(MatchesRegex("3 \\[e\\|.*kx_pg_excam.*:[0-9]+\\] The asked GPIO "
                                             "mode " +
                                             std::to_string(mode) + " is not supported")));
    }
}

TEST_F(LineModesTest, APinThatIsNotThereHasCodes)
{
    pinReads(kPgPin2, 0x7FFFFFFF);
    bool level = true;
    EXPECT_EQ(cam_->ExGetLineMode(kPgPin2), 255U);
    EXPECT_EQ(cam_->ExSetLineBit(kPgPin2, true), -1);
    EXPECT_EQ(cam_->ExGetLineBit(kPgPin2, &level), -1);
    EXPECT_EQ(cam_->ExGetLineBit(kPgPin2, nullptr), -1);
    EXPECT_THAT(journal().logs(), IsEmpty());
    EXPECT_EQ(cam_->ExSetLineMode(kPgPin2, 1, true), -1);
    EXPECT_THAT(journal().logs(),
                ElementsAre(MatchesRegex(
                    "3 \\[e\\|.*kx_pg_excam.*:[0-9]+\\] The feature is not available")));
    EXPECT_TRUE(level);
    EXPECT_EQ(cam_->gpioCtrlShadow[kPgPin2], 0xFFFFFFFFU);
    EXPECT_THAT(journal().lines({"Camera.WriteRegister"}), IsEmpty());
}

TEST_F(LineModesTest, OnlyThePresenceBitOfAReadCounts)
{
    // A read that fails leaves nothing: no pin. One that the SDK calls good, but that gave nothing,
    // is the same.
    pinReads(kPgPin0, 0xFFFFFFFF);
    failCalls("ReadRegister");
    EXPECT_EQ(cam_->ExGetLineMode(kPgPin0), 255U);
    fcsim::Fault silent;
    silent.operation = "ReadRegister";
    silent.skipEffect = true;
    fcsim::addFault(silent);
    EXPECT_EQ(cam_->ExGetLineMode(kPgPin0), 255U);
    EXPECT_EQ(cam_->ExGetLineMode(kPgPin0), 15U);
    EXPECT_THAT(journal().logs(), IsEmpty());
}

TEST_F(LineModesTest, ARefusedWriteStaysUnnoticed)
{
    pinReads(kPgPin0, 0x80000000);
    failCalls("WriteRegister", 0, 2);
    EXPECT_EQ(cam_->ExSetLineMode(kPgPin0, 1, true), 0);
    EXPECT_EQ(cam_->ExSetLineBit(kPgPin0, true), 0);
    EXPECT_EQ(cam_->gpioCtrlShadow[kPgPin0], 0x80000001U);
    EXPECT_THAT(journal().logs(), ElementsAre(info("### initially set pin 0: mode 1 ###")));
}

TEST_F(LineModesTest, OnlyTheFirstLevelOfAPinReadsItsRegister)
{
    pinReads(kPgPin0, 0x80010000);
    pinReads(kPgPin1, 0x80020003);
    for (const bool level : {true, false, true}) {
        EXPECT_EQ(cam_->ExSetLineBit(kPgPin0, level), 0);
    }
    EXPECT_EQ(cam_->ExSetLineBit(kPgPin1, false), 0);
    EXPECT_THAT(sdkCalls(), ElementsAre("Camera.ReadRegister(0x1110)",
                                        "Camera.WriteRegister(0x1110 0x80010001)",
                                        "Camera.WriteRegister(0x1110 0x80010000)",
                                        "Camera.WriteRegister(0x1110 0x80010001)",
                                        "Camera.ReadRegister(0x1120)",
                                        "Camera.WriteRegister(0x1120 0x80020002)"));
    EXPECT_THAT(cam_->gpioCtrlShadow, ElementsAre(0x80010001, 0x80020002, 0xFFFFFFFF, 0xFFFFFFFF));
    EXPECT_THAT(journal().logs(), IsEmpty());
}

TEST_F(LineModesTest, ANewModeDoesNotReachWhatIsRememberedOfThePin)
{
    pinReads(kPgPin0, 0x80020000);
    EXPECT_EQ(cam_->ExSetLineBit(kPgPin0, true), 0);
    EXPECT_EQ(cam_->ExSetLineMode(kPgPin0, 1, false), 0);
    EXPECT_EQ(cam_->gpioCtrlShadow[kPgPin0], 0x80020001U);
    EXPECT_EQ(cam_->ExSetLineBit(kPgPin0, true), 0);
    EXPECT_THAT(journal().lines({"Camera.WriteRegister"}),
                ElementsAre("Camera.WriteRegister(0x1110 0x80020001)",
                            "Camera.WriteRegister(0x1110 0x80010000)",
                            "Camera.WriteRegister(0x1110 0x80020001)"));
}

TEST_F(LineModesTest, ARememberedWordOfAllOnesIsReadAnew)
{
    pinReads(kPgPin0, 0xFFFFFFFF);
    EXPECT_EQ(cam_->ExSetLineBit(kPgPin0, true), 0);
    pinReads(kPgPin0, 0x80010000);
    EXPECT_EQ(cam_->ExSetLineBit(kPgPin0, true), 0);
    EXPECT_THAT(sdkCalls(), ElementsAre("Camera.ReadRegister(0x1110)",
                                        "Camera.WriteRegister(0x1110 0xFFFFFFFF)",
                                        "Camera.ReadRegister(0x1110)",
                                        "Camera.WriteRegister(0x1110 0x80010001)"));
}

TEST_F(LineModesTest, SamplesTheLowestBit)
{
    bool level = false;
    pinReads(kPgPin3, 0x80000001);
    EXPECT_EQ(cam_->ExGetLineBit(kPgPin3, &level), 0);
    EXPECT_TRUE(level);
    EXPECT_EQ(cam_->ExGetLineBit(kPgPin3, nullptr), 0);
    pinReads(kPgPin3, 0xFFFFFFFE);
    EXPECT_EQ(cam_->ExGetLineBit(kPgPin3, &level), 0);
    EXPECT_FALSE(level);
    EXPECT_THAT(sdkCalls(),
                ElementsAre("Camera.ReadRegister(0x1140)", "Camera.ReadRegister(0x1140)",
                            "Camera.ReadRegister(0x1140)"));
    EXPECT_THAT(journal().logs(), IsEmpty());
}

// ---- Strobes.

class StrobeTest : public LineModesTest {
protected:
    StrobeTest()
    {
        FlyCapture2::StrobeControl control;
        control.source = kPgPin2;
        control.polarity = 1;
        control.delay = 1.5F;
        control.duration = 7.25F;
        EXPECT_EQ(cam_->SetStrobe(&control, false), FlyCapture2::PGRERROR_OK);
        journal().clear();
    }
    FlyCapture2::StrobeControl strobe()
    {
        FlyCapture2::StrobeControl control;
        control.source = kPgPin2;
        EXPECT_EQ(cam_->GetStrobe(&control), FlyCapture2::PGRERROR_OK);
        return control;
    }
    void expectStrobe(bool onOff, unsigned polarity, float delay, float duration)
    {
        const FlyCapture2::StrobeControl now = strobe();
        EXPECT_EQ(std::tuple(now.onOff, now.polarity, now.delay, now.duration),
                  std::tuple(onOff, polarity, delay, duration));
    }
};

TEST_F(StrobeTest, IsSetInMilliseconds)
{
    EXPECT_EQ(cam_->ExSetLineModeOutStrobe(kPgPin2, true, false, 2500, 100), 0);
    EXPECT_THAT(sdkCalls(), ElementsAre("Camera.GetStrobeInfo(2)", "Camera.GetStrobe(2)",
                                        HasSubstr("Camera.SetStrobe(2 on")));
    EXPECT_THAT(journal().logs(),
                ElementsAre(info("### set strobe on pin 2: onOff=1 (delay=2.500000, "
                                 "duration=0.100000, polarity=0) ###")));
    expectStrobe(true, 0, 2.5F, 0.1F);
}

TEST_F(StrobeTest, AllOnesKeepTheCamerasValues)
{
    EXPECT_EQ(cam_->ExSetLineModeOutStrobe(kPgPin2, true, true, kKeep, 3000), 0);
    expectStrobe(true, 1, 1.5F, 3.0F);
    EXPECT_EQ(cam_->ExSetLineModeOutStrobe(kPgPin2, true, true, 0, kKeep), 0);
    expectStrobe(true, 1, 0.0F, 3.0F);
    EXPECT_EQ(cam_->ExSetLineModeOutStrobe(kPgPin2, true, false, kKeep, kKeep), 0);
    expectStrobe(true, 0, 0.0F, 3.0F);
}

TEST_F(StrobeTest, OneLessThanAllOnesIsATime)
{
    // The camera cuts it to the longest it can do; the message shows what was asked for.
    EXPECT_EQ(cam_->ExSetLineModeOutStrobe(kPgPin2, true, true, kKeep - 1, kKeep - 1), 0);
    EXPECT_THAT(journal().logs(),
                ElementsAre(info("### set strobe on pin 2: onOff=1 (delay=4294967.500000, "
                                 "duration=4294967.500000, polarity=1) ###")));
}

TEST_F(StrobeTest, IsSwitchedOffWithItsOtherValuesAsTheyAre)
{
    EXPECT_EQ(cam_->ExSetLineModeOutStrobe(kPgPin2, true, true, kKeep, kKeep), 0);
    journal().clear();
    EXPECT_EQ(cam_->ExSetLineModeOutStrobe(kPgPin2, false, false, 10, 20), 0);
    EXPECT_THAT(sdkCalls(), ElementsAre("Camera.GetStrobeInfo(2)", "Camera.GetStrobe(2)",
                                        HasSubstr("Camera.SetStrobe(2 off")));
    EXPECT_THAT(journal().logs(),
                ElementsAre(info("### set strobe on pin 2: onOff=0 (delay=1.500000, "
                                 "duration=7.250000, polarity=1) ###")));
    expectStrobe(false, 1, 1.5F, 7.25F);
}

TEST_F(StrobeTest, EachFailureHasItsCodeAndOneWarning)
{
    int code = 0;
    for (const std::string operation : {"GetStrobeInfo", "GetStrobe", "SetStrobe"}) {
        journal().clear();
        fcsim::clearFaults();
        failCalls(operation);
        EXPECT_EQ(cam_->ExSetLineModeOutStrobe(kPgPin2, true, true, 1, 2), --code);
        EXPECT_THAT(journal().logs(), ElementsAre(warning("ExSetLineModeOutStrobe",
                                                          "can't do " + operation + ": error " +
                                                              failureOf(operation)) +
                                                  kNoLineEnd));
        EXPECT_EQ(sdkCalls().size(), static_cast<std::size_t>(-code));
    }
}

TEST_F(StrobeTest, WhatTheCameraSaysOfItsAbilitiesIsNotLookedAt)
{
    fcsim::Fault silent;
    silent.operation = "GetStrobeInfo";
    silent.skipEffect = true;
    fcsim::addFault(silent);
    EXPECT_EQ(cam_->ExSetLineModeOutStrobe(kPgPin2, true, true, 1000, 2000), 0);
    expectStrobe(true, 1, 1.0F, 2.0F);
}

} // namespace
