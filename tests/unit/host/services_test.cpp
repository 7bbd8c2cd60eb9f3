// The host services, called as the plug-in calls them.
#include "grab/services.h"
#include "services/service_exports.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>
#include <vector>

namespace kxhost {
namespace {

/// Gives every test a host as after the start of the process.
class Services : public testing::Test {
protected:
    void SetUp() override
    {
        HostServices& host = services();
        std::destroy_at(&host);
        std::construct_at(&host);
    }
    void TearDown() override { SetUp(); }

    Settings& settings() { return services().settings; }
    GrabCounts& counts() { return services().counts; }
};

TEST_F(Services, EveryModelWillDoWithoutAChoice)
{
    EXPECT_STREQ(KxGiMainCtx__GetModelStr(), "");
    EXPECT_STREQ(KxGiMainCtx__GetIdStr(), "");
    EXPECT_EQ(KxGiMainCtx__GetActiveCamMask(), 0U);
}

TEST_F(Services, ABusMaskAloneChoosesAlone)
{
    settings().busMask = 2;
    EXPECT_EQ(KxGiMainCtx__GetModelStr(), nullptr);
    settings().serial = "17";
    EXPECT_STREQ(KxGiMainCtx__GetModelStr(), "");
    settings().serial.clear();
    settings().model = "Grass";
    EXPECT_STREQ(KxGiMainCtx__GetModelStr(), "Grass");
}

TEST_F(Services, AsksForOneFrameMoreThanIsExported)
{
    EXPECT_EQ(KxGiMainCtx__GetFnum(), 0U);
    settings().frames = 10;
    EXPECT_EQ(KxGiMainCtx__GetFnum(), 11U);
    settings().frames = 4294967293U;
    EXPECT_EQ(KxGiMainCtx__GetFnum(), 4294967294U);
}

TEST_F(Services, AGrabThatStartsAgainGoesOnCounting)
{
    settings().frames = 10;
    KxGi__ResetTermSigProc();
    for (int frame = 0; frame < 4; ++frame) {
        KxGi__HaltStop(640, 480, 20);
    }
    KxGi__SetTermSigProc();
    EXPECT_EQ(KxGiMainCtx__GetFnum(), 8U) << "three of the four were exported";
    KxGi__ResetTermSigProc();
    for (int frame = 0; frame < 20; ++frame) {
        KxGi__HaltStop(640, 480, 20);
    }
    EXPECT_EQ(KxGiMainCtx__GetFnum(), 1U) << "never without end";
    settings().frames = 0;
    EXPECT_EQ(KxGiMainCtx__GetFnum(), 0U);
}

TEST_F(Services, APassOfTwelveBitsGivesTheFormatBack)
{
    for (const int format : {1, 9}) {
        settings().pixelFormat = format;
        KxGiMainCtx__SetFormat(2);
        EXPECT_EQ(KxGiMainCtx__GetFormat(), 2);
        KxGiMainCtx__SetFormat(1);
        EXPECT_EQ(KxGiMainCtx__GetFormat(), format);
    }
    settings().pixelFormat = 3;
    KxGiMainCtx__SetFormat(1);
    EXPECT_EQ(KxGiMainCtx__GetFormat(), 1) << "without a pass it is what was asked for";
}

TEST_F(Services, GettersAnswerTheSettings)
{
    Settings& given = settings();
    given.packetSize = 9000;
    given.buffers = 5;
    given.width = 640;
    given.height = 480;
    given.offsetX = 2;
    given.offsetY = 4;
    given.pixelFormat = 9;
    given.convertTo = 5;
    given.frameRate = 29.5F;
    given.gainDb = 3;
    given.exposureUs = 10000;
    given.gamma = 1.5F;
    given.saturation = 120;
    given.whiteBalanceRed = 500;
    given.whiteBalanceBlue = 700;
    given.rotation = 2;
    given.brightness = 0.5F;
    given.autoGainMinDb = 1;
    given.autoGainMaxDb = 2;
    given.autoExposureMinUs = 3;
    given.autoExposureMaxUs = 4;
    given.autoProfile = 1;
    given.gainMode = 2;
    given.exposureMode = 1;
    given.lutMode = 1;
    given.clockCorrectionNs = -5;
    given.lutBits = 12;
    given.lut.assign(kLutEntries, 7);
    EXPECT_EQ(KxGiMainCtx__GetDatachunk(), 9000U);
    EXPECT_EQ(KxGiMainCtx__GetBnum(), 5U);
    EXPECT_EQ(KxGiMainCtx__GetWidth(), 640U);
    EXPECT_EQ(KxGiMainCtx__GetHeight(), 480U);
    EXPECT_EQ(KxGiMainCtx__GetOffsetX(), 2U);
    EXPECT_EQ(KxGiMainCtx__GetOffsetY(), 4U);
    EXPECT_EQ(KxGiMainCtx__GetFormat(), 9);
    EXPECT_EQ(KxGiMainCtx__GetCformat(), 5);
    EXPECT_EQ(KxGiMainCtx__GetFps(), 29.5F);
    EXPECT_EQ(KxGiMainCtx__GetGainMan(), 3.0F);
    EXPECT_EQ(KxGiMainCtx__GetExptMan(), 10000.0F);
    EXPECT_EQ(KxGiMainCtx__GetGamma(), 1.5F);
    EXPECT_EQ(KxGiMainCtx__GetSatur(), 120);
    EXPECT_EQ(KxGiMainCtx__GetWbred(), 500);
    EXPECT_EQ(KxGiMainCtx__GetWbblu(), 700);
    EXPECT_EQ(KxGiMainCtx__GetRotate(), 2);
    EXPECT_EQ(KxGiMainCtx__GetAtbright(), 0.5F);
    EXPECT_EQ(KxGiMainCtx__GetGainlimsLow(), 1.0F);
    EXPECT_EQ(KxGiMainCtx__GetGainlimsHigh(), 2.0F);
    EXPECT_EQ(KxGiMainCtx__GetEtlimsLow(), 3.0F);
    EXPECT_EQ(KxGiMainCtx__GetEtlimsHigh(), 4.0F);
    EXPECT_EQ(KxGiMainCtx__GetSweepProf(), 1);
    EXPECT_EQ(KxGiMainCtx__GetSweepGainMod(), 2);
    EXPECT_EQ(KxGiMainCtx__GetSweepEtimeMod(), 1);
    EXPECT_EQ(KxGiMainCtx__GetSweepLutMod(), 1);
    EXPECT_EQ(KxGiMainCtx__GetTsadjns(), -5);
    EXPECT_EQ(KxGiMainCtx__GetLutBitSize(), 12);
    ASSERT_NE(KxGiMainCtx__GetLutDataU16(), nullptr);
    EXPECT_EQ(KxGiMainCtx__GetLutDataU16()[511], 7);
    KxGiMainCtx__SetFormat(2);
    EXPECT_EQ(KxGiMainCtx__GetFormat(), 2);
}

TEST_F(Services, IoboxGettersAnswerTheirSettingAndNothingBeyond)
{
    EXPECT_EQ(KxGiMainCtx__GetIoboxNum(), 0U);
    EXPECT_EQ(KxGiMainCtx__GetLutDataU16(), nullptr);
    settings().iobox = {{9, 1, 2, 2, {50, 1000}}, {}};
    EXPECT_EQ(KxGiMainCtx__GetIoboxNum(), 2U);
    EXPECT_EQ(KxGiMainCtx__GetIoboxPin(0), 9);
    EXPECT_EQ(KxGiMainCtx__GetIoboxMod(0), 1);
    EXPECT_EQ(KxGiMainCtx__GetIoboxSrc(0), 2);
    EXPECT_EQ(KxGiMainCtx__GetIoboxInv(0), 2);
    EXPECT_EQ(KxGiMainCtx__GetIoboxPar(0, 0), 50);
    EXPECT_EQ(KxGiMainCtx__GetIoboxPar(0, 1), 1000);
    EXPECT_EQ(KxGiMainCtx__GetIoboxPar(0, 2), -1);
    EXPECT_EQ(KxGiMainCtx__GetIoboxPar(1, 0), -1);
    EXPECT_EQ(KxGiMainCtx__GetIoboxPin(7), 0);
    EXPECT_EQ(KxGiMainCtx__GetIoboxPin(-1), 0);
}

TEST_F(Services, ThePoolIsFlatAndPageAligned)
{
    EXPECT_EQ(KxGiMem__IsFactoryUsed(), 0);
    EXPECT_EQ(KxGiMem__GetBufPtr(0), nullptr);
    KxGiMem__Init(3, 0);
    KxGiMem__SetActFsize(5000);
    EXPECT_EQ(KxGiMem__IsFactoryUsed(), 1);
    const auto address = [](std::uint32_t index) {
        return reinterpret_cast<std::uintptr_t>(KxGiMem__GetBufPtr(index));
    };
    EXPECT_EQ(address(0) % 4096, 0U);
    EXPECT_EQ(address(1) - address(0), 8192U);
    EXPECT_EQ(address(2) - address(1), 8192U);
    EXPECT_EQ(address(3), 0U);
    static_cast<char*>(KxGiMem__GetBufPtr(2))[8191] = 1;
}

TEST_F(Services, ALaterFrameSizeLeavesThePoolAlone)
{
    KxGiMem__Init(2, 0);
    KxGiMem__SetActFsize(4096);
    void* const second = KxGiMem__GetBufPtr(1);
    KxGiMemInst__SetActFsize(0, 100000);
    EXPECT_EQ(KxGiMem__GetBufPtr(1), second);
}

TEST_F(Services, ANewSetUpLaysThePoolOutAnew)
{
    KxGiMem__Init(2, 0);
    KxGiMem__SetActFsize(4096);
    KxGiMemInst__Init(0, 4, 0);
    EXPECT_EQ(KxGiMem__GetBufPtr(0), nullptr);
    KxGiMemInst__SetActFsize(0, 8192);
    ASSERT_NE(KxGiMem__GetBufPtr(3), nullptr);
    EXPECT_EQ(static_cast<char*>(KxGiMem__GetBufPtr(1)) - static_cast<char*>(KxGiMem__GetBufPtr(0)),
              8192);
}

TEST_F(Services, WithoutEnoughMemoryThereIsNoPool)
{
    KxGiMem__Init(0xFFFFFFFF, 0);
    KxGiMem__SetActFsize(0xFFFFFFFF);
    EXPECT_EQ(KxGiMem__IsFactoryUsed(), 0);
    EXPECT_EQ(KxGiMem__GetBufPtr(0), nullptr);
}

TEST_F(Services, ASignalStaysUntilItHasBeenActedOn)
{
    services().signals.post(kFinishTerminate);
    EXPECT_EQ(KxUtl__CheckSignal(), 0);
    KxGi__ResetTermSigProc();
    EXPECT_EQ(KxUtl__CheckSignal(), 5);
    EXPECT_EQ(KxUtl__CheckSignal(), 5);
    KxGi__SetSignalAction(5);
    EXPECT_EQ(KxUtl__CheckSignal(), 0);
    EXPECT_TRUE(services().signals.finishAsked());
    KxGi__SetTermSigProc();
    EXPECT_EQ(KxUtl__CheckSignal(), 0);
}

TEST_F(Services, ATableSignalGoesWithTheFrameBehindItsPoll)
{
    KxGi__ResetTermSigProc();
    services().signals.post(kLut);
    EXPECT_EQ(KxUtl__CheckSignal(), 3);
    KxGi__HaltUpdate(640, -321); // no frame came: the loop forgets what it polled
    EXPECT_EQ(KxUtl__CheckSignal(), 3);
    KxGi__HaltStop(640, 480, 20);
    EXPECT_EQ(KxUtl__CheckSignal(), 0);
}

TEST_F(Services, OtherSignalsWaitForTheLoopButAReloadDoesNot)
{
    services().signals.post(kLut12);
    services().signals.post(kReload);
    EXPECT_EQ(KxUtl__CheckSignal(), 2);
    int restart = 0;
    EXPECT_GT(KxGi__DoReconfig(&restart), 0) << "nothing is offered";
    EXPECT_EQ(KxUtl__CheckSignal(), 0);
    KxGi__ResetTermSigProc();
    EXPECT_EQ(KxUtl__CheckSignal(), 4);
}

TEST_F(Services, WithoutFramesARequestEndsTheLoopByAnException)
{
    KxGi__ResetTermSigProc();
    KxGi__HaltUpdate(640, -321);
    KxGi__HaltUpdate(640, -321);
    services().signals.post(kFinishInterrupt);
    EXPECT_NO_THROW(KxGi__HaltUpdate(640, -321));
    KxGi__HaltStop(640, 480, 20);
    EXPECT_NO_THROW(KxGi__HaltUpdate(640, -321));
    EXPECT_THROW(KxGi__HaltUpdate(640, -321), std::exception);
    EXPECT_EQ(counts().missing, 5U);
}

TEST_F(Services, DifferencesOfTimesBorrowFromTheSeconds)
{
    const timeval earlier = {10, 900000};
    const timeval later = {12, 100000};
    const timeval* difference = KxUtl__TimeValDiff(&later, &earlier);
    EXPECT_EQ(difference->tv_sec, 1);
    EXPECT_EQ(difference->tv_usec, 200000);
}

TEST_F(Services, CountsArrivalsAndTheFrameThatStartsTheTiming)
{
    KxGi__SetCurrFpsUs(33333);
    KxGi__ResetTermSigProc();
    KxUtl__UpdateGrabState(4);
    EXPECT_TRUE(counts().capturing);
    KxGi__HaltStop(640, 480, 20);
    KxGi__HaltStop(640, 480, 20);
    KxGi__SetTermSigProc();
    EXPECT_FALSE(counts().capturing);
    EXPECT_EQ(counts().retrieved, 2U);
    EXPECT_EQ(counts().timing, 1U);
    EXPECT_EQ(counts().framePeriodUs, 33333U);
}

/// Hands over frames that carry a counter.
class HandOver : public Services {
protected:
    void SetUp() override
    {
        Services::SetUp();
        KxSc__SetParamVal(kKxScWidth, &width_);
        KxSc__SetParamVal(kKxScHeight, &height_);
        KxSc__SetParamVal(kKxScCodec, "MONO8T");
        KxGi__ResetTermSigProc();
    }

    /// A frame arrives and carries this number.
    void arrive(std::uint32_t counter)
    {
        KxGi__HaltStop(4, 2, 20);
        counter_ = counter;
        KxSc__SetParamVal(kKxScFrameCounter, &counter_);
    }
    LedgerTotals ledger() { return services().fates.ledger().totals(); }

    int trigger(std::uint32_t counter, std::uint64_t timestampUs, int instance = 0)
    {
        arrive(counter);
        return KxGiMemInst__Trigger(instance, 0, timestampUs, pixels_.data(), 0);
    }

    std::uint32_t width_ = 4;
    std::uint32_t height_ = 2;
    std::uint32_t counter_ = 0;
    std::vector<std::uint8_t> pixels_ = {1, 2, 3, 4, 5, 6, 7, 8};
};

TEST_F(HandOver, TheLedgerHearsOfEachFrame)
{
    arrive(99); // only starts the timing
    EXPECT_EQ(trigger(100, 1), 0);
    KxSc__ProcExport(1);
    KxGi__HaltUpdate(4, -321);
    EXPECT_EQ(trigger(103, 2), 0);
    KxSc__ProcExport(2);
    EXPECT_EQ(counts().exported, 2U);
    EXPECT_EQ(counts().lost, 2U);
    const LedgerTotals totals = ledger();
    EXPECT_EQ(totals.arrived, 3U);
    EXPECT_EQ(totals.values, 5U);
    EXPECT_EQ(totals.delivered, 2U);
    EXPECT_EQ(totals.causes[FrameCause::kTiming], 1U);
    EXPECT_EQ(totals.causes[FrameCause::kRetrievalFailed], 1U);
    EXPECT_EQ(totals.causes[FrameCause::kCameraSkipped], 1U);
    EXPECT_EQ(totals.imbalance(), 0);
}

TEST_F(HandOver, AFrameThatIsNotExportedIsUnfinished)
{
    trigger(1, 1);
    KxSc__ProcExport(1);
    trigger(2, 2);
    EXPECT_EQ(ledger().arrived, 1U) << "what becomes of it is open";
    KxGi__SetTermSigProc();
    EXPECT_EQ(ledger().causes[FrameCause::kUnfinished], 1U);
    EXPECT_EQ(ledger().imbalance(), 0);
}

TEST_F(HandOver, AFrameIsNotTakenForTheOneBefore)
{
    trigger(1, 1);
    KxSc__ProcExport(1);
    KxGi__HaltStop(4, 2, 20); // ended before its number was published
    KxGi__SetTermSigProc();
    EXPECT_EQ(ledger().values, 1U);
    EXPECT_EQ(ledger().offCounter, 1U);
}

/// Keeps the times of the frame that is through.
class TimesTap : public ExportTap {
public:
    bool wantsPixels() noexcept override { return false; }
    void look(const TappedFrame&) noexcept override {}
    void released(const ReleasedFrame& frame) noexcept override { times = frame.values.times; }
    void last(const TappedFrame&) noexcept override {}

    FrameTimes times;
};

TEST_F(HandOver, AFrameCarriesWhenItArrivedAndHowLongItsHandOverTook)
{
    constexpr std::uint64_t kMinuteUs = 60'000'000;
    TimesTap tap;
    ExportQueue queue(ExportSettings{});
    queue.addTap(tap);
    ASSERT_EQ(queue.start(), "");
    services().queue = &queue;
    const std::uint64_t steady = steadyUs();
    const std::uint64_t wall = wallUs();
    arrive(1);
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_EQ(KxGiMemInst__Trigger(0, 0, 7, pixels_.data(), 0), 0);
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
    KxSc__ProcExport(7);
    queue.finish();
    services().queue = nullptr;
    const std::uint64_t passed = steadyUs() - steady;
    EXPECT_GE(tap.times.steadyUs, steady);
    EXPECT_LT(tap.times.arrivedUs - wall, kMinuteUs);
    EXPECT_GE(tap.times.handedUs, 20'000U);
    EXPECT_GE(tap.times.handOverUs, 10'000U);
    EXPECT_LE(tap.times.handedUs + tap.times.handOverUs, passed);
}

TEST_F(HandOver, ACameraThatWasLostBeginsAnotherCount)
{
    trigger(1, 1);
    KxSc__ProcExport(1);
    KxGi__SetTermSigProc();
    services().fates.cameraLost();
    KxGi__ResetTermSigProc();
    trigger(0, 2);
    KxSc__ProcExport(2);
    const FrameLedger whole = services().fates.ledger();
    ASSERT_EQ(whole.stretches().size(), 2U);
    EXPECT_EQ(whole.stretches()[1].begin, CountBegin::kDetached);
    EXPECT_EQ(services().history.newest(), 2U) << "the configuration was applied again";
    KxGi__ResetTermSigProc();
    EXPECT_EQ(services().history.newest(), 2U);
}

TEST_F(HandOver, RefusesFramesThatNobodyCouldRead)
{
    ExportQueue queue(ExportSettings{});
    ASSERT_EQ(queue.start(), "");
    services().queue = &queue;
    EXPECT_NE(KxGiMemInst__Trigger(0, 0, 1, nullptr, 0), 0);
    EXPECT_NE(trigger(1, 1, 7), 0);
    width_ = 0;
    EXPECT_NE(trigger(1, 1), 0);
    width_ = 4;
    KxSc__SetParamVal(kKxScCodec, "UNKNOWN");
    EXPECT_NE(trigger(1, 1), 0);
    EXPECT_EQ(counts().refused, 4U);
    services().queue = nullptr;
}

TEST_F(HandOver, AFrameWithoutPixelsIsRefusedOnce)
{
    arrive(1); // only starts the timing
    arrive(2);
    KxSc__ProcExport(2);
    EXPECT_EQ(counts().refused, 1U);
    EXPECT_EQ(counts().exported, 0U);
    EXPECT_EQ(ledger().causes[FrameCause::kUnusable], 1U);
    EXPECT_EQ(ledger().imbalance(), 0);
    arrive(3);
    EXPECT_NE(KxGiMemInst__Trigger(0, 0, 3, nullptr, 0), 0);
    KxSc__ProcExport(3);
    EXPECT_EQ(counts().refused, 2U) << "not for the export again";
    EXPECT_EQ(ledger().causes[FrameCause::kUnusable], 2U);
}

TEST_F(HandOver, AnInstanceHasItsOwnCodecUntilThePoolIsNew)
{
    KxSc__InstSetParamVal(1, kKxScCodec, "UYVY");
    EXPECT_EQ(services().scenario.frame(Instance::kConverted).codec, "UYVY");
    EXPECT_EQ(services().scenario.frame(Instance::kRaw).codec, "MONO8T");
    KxGiMem__Init(2, 0);
    EXPECT_EQ(services().scenario.frame(Instance::kConverted).codec, "MONO8T");
}

TEST_F(HandOver, ValuesAreReadThroughTheirPointersAtTheExport)
{
    float gain = 1;
    std::uint64_t time = 5;
    KxSc__SetParamVal(kKxScGainDb, &gain);
    KxSc__SetParamVal(kKxScCameraTimeUs, &time);
    KxSc__SetParamVal(99, &gain);
    KxSc__SetParamVal(-1, &gain);
    gain = 2.5F;
    time = 77;
    const ScenarioValues values = services().scenario.read();
    EXPECT_EQ(values.gainDb, 2.5F);
    EXPECT_EQ(values.cameraTimeUs, 77U);
    EXPECT_EQ(values.width, 4U);
    EXPECT_EQ(values.codec, "MONO8T");
    EXPECT_FALSE(values.rxBits);
}

/// As the plug-in does: both values with the frame that brings a word, then 0 bits.
TEST_F(HandOver, AWordGoesWithOneFrame)
{
    std::uint32_t data = 0x155;
    std::uint32_t bits = 10;
    const auto received = [] {
        const ScenarioValues values = services().scenario.read();
        return std::pair(values.rxData, values.rxBits);
    };
    const auto exportFrame = [&](std::uint64_t timestampUs) {
        trigger(1, timestampUs);
        KxSc__ProcExport(timestampUs);
    };
    exportFrame(1);
    EXPECT_EQ(counts().words, 0U);
    KxSc__SetParamVal(kKxScRxData, &data);
    KxSc__SetParamVal(kKxScRxBits, &bits);
    EXPECT_EQ(received(), std::pair(std::optional(0x155U), std::optional(10U)));
    exportFrame(2);
    bits = 0;
    KxSc__SetParamVal(kKxScRxBits, &bits);
    EXPECT_EQ(received(),
              std::pair(std::optional<std::uint32_t>(), std::optional<std::uint32_t>()));
    exportFrame(3);
    EXPECT_EQ(counts().words, 1U);
    bits = 32;
    data = 0;
    exportFrame(4);
    EXPECT_EQ(counts().words, 2U) << "a word of zeros is one, too";
    EXPECT_EQ(counts().wordData, 0U);
    EXPECT_EQ(counts().wordBits, 32U);
    EXPECT_EQ(counts().wordFrame, 4U);
}

TEST_F(HandOver, PicturesAndValuesReachTheFolder)
{
    const auto folder = std::filesystem::path(testing::TempDir()) / "kxhost_hand_over";
    std::filesystem::remove_all(folder);
    ExportSettings output;
    output.folder = folder.string();
    output.format = PictureFormat::kRaw;
    ExportQueue queue(output);
    ASSERT_EQ(queue.start(), "");
    services().queue = &queue;
    EXPECT_EQ(trigger(1, 1000), 0);
    KxSc__ProcExport(1000);
    EXPECT_EQ(trigger(2, 2000), 0); // accepted, but never exported: it is let go
    EXPECT_EQ(trigger(3, 3000), 0);
    KxSc__ProcExport(3000);
    queue.finish();
    services().queue = nullptr;
    EXPECT_EQ(queue.totals().written, 2U);
    EXPECT_EQ(queue.totals().pictures, 2U);
    std::filesystem::remove_all(folder);
}

TEST_F(HandOver, AFrameWithoutMemoryForItsCopyHasNoBuffer)
{
    ExportSettings output;
    output.folder = testing::TempDir() + "kxhost_no_memory";
    output.format = PictureFormat::kRaw;
    ExportQueue queue(output);
    ASSERT_EQ(queue.start(), "");
    services().queue = &queue;
    width_ = 0xFFFFFFFF;
    height_ = 0xFFFFFFFF; // more than any address reaches
    EXPECT_NE(trigger(1, 1), 0);
    KxGi__SetTermSigProc();
    EXPECT_EQ(ledger().causes[FrameCause::kNoBuffer], 1U);
    EXPECT_FALSE(services().signals.finishAsked()) << "the next one may find some";
    services().queue = nullptr;
    std::filesystem::remove_all(output.folder);
}

TEST_F(HandOver, AFailedExportEndsTheGrab)
{
    ExportSettings output;
    output.folder = testing::TempDir() + "kxhost_failing";
    std::filesystem::remove_all(output.folder);
    ExportQueue queue(output);
    ASSERT_EQ(queue.start(), "");
    services().queue = &queue;
    std::filesystem::remove_all(output.folder);
    EXPECT_EQ(trigger(1, 1000), 0);
    KxSc__ProcExport(1000);
    queue.finish();
    EXPECT_NE(trigger(2, 2000), 0);
    EXPECT_TRUE(services().signals.finishAsked());
    services().queue = nullptr;
}

} // namespace
} // namespace kxhost
