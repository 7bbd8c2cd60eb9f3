// Follows the configuration file of a running grab: what changed, and what may be made of it.
#ifndef KXHOST_CONFIG_FOLLOWER_H
#define KXHOST_CONFIG_FOLLOWER_H

#include "config/config.h"
#include "grab/config_offer.h"

#include <functional>
#include <string>
#include <vector>

namespace kxhost {

/// Where the configuration of a grab comes from.
struct ConfigSource {
    std::string path;                   ///< empty = no file
    std::vector<std::string> overrides; ///< of the command line, which also win later on
};

/// Reads the file again, compares, offers. One thread, that is not the one that grabs.
///
/// A configuration is taken over as a whole or not at all, so that what is in force always is what
/// some state of the file said. The exception are keys that cannot change in a running process:
/// a reload says so and keeps their values.
class ConfigFollower {
public:
    /// `start` is the configuration that the grab begins with; `say` tells the user one sentence.
    ConfigFollower(ConfigSource source, Configuration start, ConfigOffers& offers,
                   std::function<void(const std::string&)> say);

    /// Asked for by a signal: offers what the file says now, whatever has changed. A file with an
    /// error is refused, and what was offered or in force before stays.
    void reload();

    /// The file may have changed: offers it when only live keys differ, else says what the change
    /// takes. Says the same only once.
    void fileChanged();

    /// The files that the configuration was last read from, to be watched.
    std::vector<std::string> files() const;

private:
    void offer(OfferSlot& slot, const Configuration& configuration);
    void sayOnce(const std::string& text);
    void refuse(const ConfigErrors& errors, bool asked);
    std::string heldBack(const Configuration& configuration) const;

    const ConfigSource source_;
    Configuration start_;   ///< keys that take a new start keep these values
    Configuration offered_; ///< the last one that was handed over, as it was read
    ConfigOffers& offers_;
    std::function<void(const std::string&)> say_;
    std::string said_; ///< last, about a file that was not taken over
};

} // namespace kxhost

#endif
