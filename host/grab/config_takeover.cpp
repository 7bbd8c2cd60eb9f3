// Takes a changed configuration over into a running grab, and back when the camera refuses it.
#include "grab/config_takeover.h"

#include "base/notice.h"
#include "config/config_change.h"
#include "grab/plugin_log.h"
#include "grab/services.h"

#include <cstddef>
#include <utility>

namespace kxhost {
namespace {

/// The plug-in tells look-up tables apart by their address: an equal table keeps the one it has.
void keepEqualTable(Settings& now, Settings& old)
{
    if (now.lut == old.lut && now.lutBits == old.lutBits) {
        std::swap(now.lut, old.lut);
    }
}

/// Tables that were in force and still keep their memory.
constexpr std::size_t kMostOldTables = 256;

/// A table that is not in force any more keeps its memory for long. A later one must not come to
/// lie at an address that the plug-in remembers, which is the last that it has loaded: one of the
/// latest. One that equals the table in force never was.
void retireTable(HostServices& host, Settings& old)
{
    const Settings& now = host.settings;
    if (!old.lut.empty() && (old.lut != now.lut || old.lutBits != now.lutBits)) {
        if (host.oldTables.size() == kMostOldTables) {
            host.oldTables.erase(host.oldTables.begin());
        }
        host.oldTables.push_back(std::move(old.lut));
    }
}

void applied(HostServices& host, ChangeKind kind, std::vector<KeyValue> changed)
{
    host.history.taken(kind, std::move(changed), wallUs());
    if (host.settings.lutMode != kSweepKeep) {
        host.computedTable = kNoSignal; // the configuration says which table there is
    }
    logAsConfigured(host);
}

std::string reloaded(const ConfigOffer& offer)
{
    const std::string what = offer.file.empty() ? "the configuration" : offer.file;
    return "Reloaded " + what +
           (offer.changed.empty() ? " (nothing has changed)" : " (" + offer.changed + ")");
}

} // namespace

bool takeLive(HostServices& host)
{
    const std::unique_ptr<ConfigOffer> offer = host.offers.live.take();
    if (offer == nullptr) {
        return false;
    }
    keepEqualTable(offer->settings, host.settings);
    swapKeys(offer->settings, host.settings, Takes::kLive);
    retireTable(host, offer->settings);
    applied(host, ChangeKind::kLive, std::move(offer->values));
    complain(offer->file + " has changed: " + offer->changed + " in force from now on.");
    return true;
}

bool takeReload(HostServices& host, bool& restart)
{
    const std::unique_ptr<ConfigOffer> offer = host.offers.reload.take();
    if (offer == nullptr) {
        return false;
    }
    settleReload(host);
    const bool inLoop = host.signalsKept;
    restart = needsRestart(host.settings, offer->settings);
    if (restart) {
        host.absence.shape.reset();
    }
    keepEqualTable(offer->settings, host.settings);
    std::swap(offer->settings, host.settings);
    host.before = std::make_unique<Settings>(std::move(offer->settings));
    if (host.formatBeforePass) {
        host.before->pixelFormat = *host.formatBeforePass;
        host.formatBeforePass = host.settings.pixelFormat;
    }
    applied(host, ChangeKind::kReload, std::move(offer->values));
    host.wayBack = std::move(offer->wayBack);
    complain(reloaded(*offer) + (!inLoop   ? ": the grab starts with it."
                                 : restart ? ": the grab ends and starts again with it."
                                           : ": the grab goes on with it."));
    return true;
}

void settleReload(HostServices& host)
{
    if (host.before != nullptr) {
        retireTable(host, *host.before);
        host.before.reset();
    }
}

bool fallBack(HostServices& host)
{
    if (host.before == nullptr) {
        return false;
    }
    keepEqualTable(*host.before, host.settings);
    std::swap(*host.before, host.settings);
    if (host.formatBeforePass) {
        host.formatBeforePass = host.settings.pixelFormat;
    }
    settleReload(host);
    host.absence.shape.reset();
    applied(host, ChangeKind::kFallBack, std::move(host.wayBack));
    complain("The camera refused the new configuration: the grab goes on with the one before.");
    return true;
}

} // namespace kxhost
