// The one state of the host in this process.
#include "grab/services.h"

#include "grab/plugin_log.h"

#include <chrono>

namespace kxhost {

HostServices& services()
{
    static HostServices state;
    return state;
}

void endCapture(HostServices& host)
{
    logAsConfigured(host);
    host.fates.captureEnded();
    host.signalsKept = false;
    host.counts.capturing = false;
}

std::uint64_t steadyUs()
{
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<std::uint64_t>(
        std::chrono::duration_cast<std::chrono::microseconds>(now).count());
}

std::uint64_t wallUs()
{
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return static_cast<std::uint64_t>(
        std::chrono::duration_cast<std::chrono::microseconds>(now).count());
}

} // namespace kxhost
