// Signals between two frames: what the host has for us, and what is done about it.
#include "kx_host.h"
#include "kx_log.h"
#include "kx_pg_proc.h"

#define KX_LOG_TAG "KX_PG_PROC"

namespace KxPGrey {

namespace {

/// Signal codes of the host's that end the grab.
constexpr std::uint32_t kFinish = 1;
constexpr std::uint32_t kFinishToo = 5;

} // namespace

void CCamProc::ProcLookSignal()
{
    pendingSig = static_cast<std::uint32_t>(KxUtl__CheckSignal());
}

int CCamProc::ProcSignal(CExCam* cam, unsigned int captured, bool* stop)
{
    if (pendingSig == 0) {
        return 0;
    }
    const std::uint32_t code = pendingSig;
    const bool finish = code == kFinish || code == kFinishToo;
    if (finish) {
        pendingSig = 0;
        KX_LOG_I("Grabbed %u images, finishing with signal...\n", captured);
        static_cast<void>(cam->StopCapture());
        KxGi__SetNewCfgVendor();
        KxGi__SetNewCfgPlugin();
        KxGi__SetSignalAction(static_cast<int>(code));
    }
    // Reconfiguration and the switch to 12 bits join here; a code that nobody knows stays pending
    // until the next look replaces it.
    if (stop != nullptr) {
        *stop = finish;
    }
    return 0;
}

} // namespace KxPGrey
