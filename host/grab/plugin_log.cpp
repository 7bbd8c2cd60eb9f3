// What the plug-in logs while a grab runs.
#include "grab/plugin_log.h"

#include <algorithm>

namespace kxhost {
namespace {

void setLogging(const Plugin& plugin, const Settings& settings, std::int32_t level)
{
    plugin.setLogging(static_cast<std::uint32_t>(level),
                      static_cast<std::uint32_t>(settings.logSinks), settings.logId);
}

} // namespace

void logAsConfigured(const Plugin& plugin, const Settings& settings)
{
    setLogging(plugin, settings, settings.logLevel);
}

void logAsConfigured(const HostServices& host)
{
    if (host.plugin != nullptr) {
        logAsConfigured(*host.plugin, host.settings);
    }
}

void logErrorsOnly(const HostServices& host)
{
    constexpr std::int32_t kErrors = 1;
    if (host.plugin != nullptr) {
        setLogging(*host.plugin, host.settings, std::min(host.settings.logLevel, kErrors));
    }
}

} // namespace kxhost
