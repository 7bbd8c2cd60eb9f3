// A plug-in that hands over one frame, unless told not to, and ends in a way that none should.
//
// KX_TEST_ENDING says how: "throw" an exception that no class is derived for, the same "before" the
// first frame, or "exit" the grab thread; behind "midframe_" with another frame at hand.
#include <array>
#include <cstdlib>
#include <string>

#include <kx_host.h>
#include <kx_log.h>
#include <kx_plugin.h>
#include <kx_scenario.h>
#include <pthread.h>

std::uint32_t gKxLogLevelLib = 0;
std::uint32_t gKxLogModeLib = 0;
std::uint32_t gKxLogIdLib = 0;

namespace {

constexpr std::uint32_t kSide = 2;
constexpr float kWarm = 40;
std::array<std::uint8_t, kSide* kSide> pixels = {1, 2, 3, 4};

void handOverOneFrame()
{
    KxSc__SetParamVal(kKxScWidth, &kSide);
    KxSc__SetParamVal(kKxScHeight, &kSide);
    KxSc__SetParamVal(kKxScCodec, "MONO8T");
    KxGi__ResetTermSigProc();
    KxGi__HaltStop(kSide, kSide, kWarm); // only starts the timing
    KxGi__HaltStop(kSide, kSide, kWarm);
    KxGiMemInst__Trigger(0, 0, 1, pixels.data(), 0);
    KxSc__ProcExport(1);
}

void takeAnotherFrame()
{
    KxGi__HaltStop(kSide, kSide, kWarm);
    KxGiMemInst__Trigger(0, 0, 2, pixels.data(), 0);
}

} // namespace

const char* KxLibGetVer()
{
    return "ending";
}

int KxLibProc()
{
    const char* const how = std::getenv("KX_TEST_ENDING");
    const std::string ending = how != nullptr ? how : "";
    if (ending != "before") {
        handOverOneFrame();
    }
    if (ending.starts_with("midframe_")) {
        takeAnotherFrame();
    }
    if (ending.ends_with("exit")) {
        pthread_exit(nullptr);
    }
    throw 42;
}
