// The plug-in's entry points: its version, one run with a camera, and running the file as a
// program.
#include "kx_pg_main.h"

#include "kx_host.h"
#include "kx_log.h"
#include "kx_pg_main_discovery.h"
#include "kx_plugin.h"

#include <algorithm>

#include <sys/time.h>
#include <unistd.h>

#define KX_LOG_TAG "KX_PG_MAIN"

using FlyCapture2::Error;
using FlyCapture2::PGRERROR_OK;
using FlyCapture2::PGRERROR_TIMEOUT;

namespace KxPGrey {

namespace {

/// Results of a run beside those of the session.
constexpr int kNoCamera = 2;
constexpr int kNotOurs = 3;
constexpr int kNoPower = -5;

/// The function that the messages of the helpers belong to.
constexpr const char* kCaller = "KxLibProc";

// How often in a row there was no camera at all, and none that was chosen. For messages only.
unsigned int _s_cntrExitNoAny = 0;
unsigned int _s_cntrExitNotOur = 0;

unsigned long long timeOfDayUs()
{
    timeval now = {};
    gettimeofday(&now, nullptr);
    return static_cast<unsigned long long>(now.tv_sec) * 1'000'000ULL +
           static_cast<unsigned long long>(now.tv_usec);
}

/// Opens the system log once, as soon as the host wants it.
void _t_SetLogMode(std::uint32_t instance, const char* program)
{
    // The system log keeps the pointer to its identity.
    static char _s_sysLogIdBuf[272];
    static bool _s_syslOpened = false;
    if ((kxlog::current(gKxLogModeLib) & kxlog::kToSyslog) == 0 || _s_syslOpened) {
        return;
    }
    static_cast<void>(
        std::snprintf(_s_sysLogIdBuf, sizeof(_s_sysLogIdBuf), "%s.%u", program, instance));
    openlog(_s_sysLogIdBuf, LOG_PID | LOG_ODELAY, LOG_DAEMON);
    _s_syslOpened = true;
}

/// Powers the camera up. Ten reads that never show the power are let pass: some cameras do not
/// tell.
bool _t_PowerOnCam(CExCam& camera)
{
    constexpr unsigned int kPowerRegister = 0x610;
    constexpr unsigned int kPowered = 0x80000000;
    constexpr int kAttempts = 10;
    constexpr useconds_t kPauseUs = 100'000;

    Error error = camera.WriteRegister(kPowerRegister, kPowered, false);
    if (error != PGRERROR_OK) {
        KX_LOG_W("Error during WriteRegister: %s\n", error.GetDescription());
        return false;
    }
    unsigned int value = 0;
    for (int attempt = 0; attempt < kAttempts && (value & kPowered) == 0; ++attempt) {
        usleep(kPauseUs);
        error = camera.ReadRegister(kPowerRegister, &value);
        if (error != PGRERROR_OK && error != PGRERROR_TIMEOUT) {
            KX_LOG_W("Error during ReadRegister: %s\n", error.GetDescription());
            return false;
        }
    }
    if (error == PGRERROR_TIMEOUT) {
        KX_LOG_W("Timeout during powering up: %s\n", error.GetDescription());
        return false;
    }
    return true;
}

/// The run with the camera that was chosen, until it is disconnected again.
int runSession(Chosen& chosen, const Wanted& wanted)
{
    CExCam& camera = *chosen.camera;
    if (!_t_PowerOnCam(camera)) {
        const unsigned long long nowUs = timeOfDayUs();
        KX_LOG_W_AS(kCaller, "TSus_%llu - powering up the camera is not ok (Model:%s ID:%s)...\n",
                    nowUs, wanted.model, wanted.serial);
        static_cast<void>(camera.Disconnect());
        return kNoPower;
    }
    const int result = KxPgProc(chosen.iface, chosen.guid, &camera, &chosen.info);
    const Error error = camera.Disconnect();
    if (error == PGRERROR_OK) {
        KX_LOG_I("device is disconnected\n");
    } else {
        KX_LOG_W_AS(kCaller, "can't do Disconnect: error - %s\n", error.GetDescription());
    }
    return result;
}

/// Everything between looking for cameras and releasing them.
int runOnBus()
{
    FlyCapture2::BusManager bus;
    const Wanted wanted = {KxGiMainCtx__GetModelStr(), KxGiMainCtx__GetIdStr(),
                           KxGiMainCtx__GetActiveCamMask()};
    unsigned int count = 0;
    if (bus.GetNumOfCameras(&count) != PGRERROR_OK || count == 0) {
        const unsigned long long nowUs = timeOfDayUs();
        KX_LOG_I("TSus_%llu: (%i) no any devices found, waiting for dev (Model:%s ID:%s)...\n",
                 nowUs, _s_cntrExitNoAny++, wanted.model, wanted.serial);
        return kNoCamera;
    }
    _s_cntrExitNoAny = 0;
    count = std::min(count, kMaxCameras);

    Chosen chosen;
    {
        // The cameras behind the chosen one are released here, before it is powered up.
        Inventory inventory;
        takeInventory(bus, count, inventory);
        chosen = chooseCamera(bus, count, wanted, inventory);
    }
    if (!chosen.camera) {
        const unsigned long long nowUs = timeOfDayUs();
        KX_LOG_I("TSus_%llu - (%i) please attach configured device (Model:%s ID:%s)...\n", nowUs,
                 _s_cntrExitNotOur++, wanted.model, wanted.serial);
        return kNotOurs;
    }
    _s_cntrExitNotOur = 0;
    return runSession(chosen, wanted);
}

/// The host may have got a new configuration meanwhile; the next run will use it.
void lookForReconfiguration()
{
    constexpr int kReconfigure = 2;
    if (KxUtl__CheckSignal() != kReconfigure) {
        return;
    }
    int unused = 0;
    if (KxGi__DoReconfig(&unused) == 0) {
        KX_LOG_I("continue operation with new configuration...\n");
    } else {
        KX_LOG_I("incorrect cfg file, continue with the old one...\n");
    }
}

} // namespace

} // namespace KxPGrey

int KxLibProc()
{
    using namespace KxPGrey;
    _t_SetLogMode(kxlog::current(gKxLogIdLib), "korvex");
    KX_LOG_D("init SDK staff\n");
    const int result = runOnBus();
    lookForReconfiguration();
    // An identity that begins with the C library's mark for no name says that the log was opened
    // late.
    _t_SetLogMode(kxlog::current(gKxLogIdLib), "(null)");
    KX_LOG_I("Loop completed (exitCode = %i)\n", result);
    return result;
}

const char* KxLibGetVer()
{
    return kxVersionRecord;
}

// ---- The file as a program. It starts here without the C library's start code.

/// Tells the kernel which dynamic linker the program wants.
[[gnu::used, gnu::section(".interp")]] static const char kInterpreter[] = KX_INTERPRETER;

#if defined(__x86_64__) || defined(__i386__)
// The kernel leaves the stack aligned for a start code, not for a function that was called.
[[gnu::force_align_arg_pointer]]
#endif
void LibEntry()
{
    // No stream: nothing would flush it.
    dprintf(STDOUT_FILENO, "Version: %s\n", KxLibGetVer());
    _exit(0);
}
