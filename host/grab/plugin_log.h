// What the plug-in logs while a grab runs.
#ifndef KXHOST_PLUGIN_LOG_H
#define KXHOST_PLUGIN_LOG_H

#include "grab/plugin.h"
#include "grab/services.h"

namespace kxhost {

/// Has the plug-in log what the settings say. Any thread.
void logAsConfigured(const Plugin& plugin, const Settings& settings);

/// The same for the plug-in and the settings of `host`; nothing without a plug-in. Grab thread.
void logAsConfigured(const HostServices& host);

/// Has the plug-in of `host` log errors at most, until the next `logAsConfigured`. For the moment
/// before an exception that ends the grab loop: kxhost itself tells why, while the plug-in knows
/// only that something came through its loop and would warn of it. Grab thread.
void logErrorsOnly(const HostServices& host);

} // namespace kxhost

#endif
