// Watches files for changes, however an editor makes them.
#ifndef KXHOST_CONFIG_WATCH_H
#define KXHOST_CONFIG_WATCH_H

#include "base/descriptor.h"

#include <chrono>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace kxhost {

/// Watches the folders of files, because most editors write a new file and give it the old name.
/// On the way to a file every symbolic link is watched as well: it may be pointed elsewhere.
///
/// Changes come in bursts (a file is emptied and then written, a link is made and renamed), so one
/// is reported when there has been silence for a while, or after a second at the latest. One
/// thread.
class ConfigWatch {
public:
    using Clock = std::chrono::steady_clock;

    /// Throws std::system_error when the system has no more watches to give.
    ConfigWatch();

    /// Watches these files, and no others any more. Links are resolved anew. Returns true when a
    /// place is watched now that was not before: what happened there until now was not seen.
    bool follow(const std::vector<std::string>& files);

    /// Why `follow` could not watch a folder, one sentence; empty = it could.
    const std::string& trouble() const { return trouble_; }

    /// To be waited for: readable when something happened.
    int descriptor() const { return inotify_.number(); }
    /// Takes what happened. Call it when the descriptor is readable.
    void read(Clock::time_point now);
    /// Whether a change is to be looked at now; it is then forgotten.
    bool isDue(Clock::time_point now);
    /// Milliseconds until one will be; -1 = there is none.
    int waitMs(Clock::time_point now) const;

private:
    void takeEvents(const char* events, std::size_t size, Clock::time_point now);
    Clock::time_point due() const;

    Descriptor inotify_;
    std::map<int, std::string> folders_;                  ///< by their watch
    std::map<std::string, std::set<std::string>> wanted_; ///< names in a folder
    std::string trouble_;
    std::optional<Clock::time_point> firstChange_;
    Clock::time_point lastChange_;
};

/// Every place that decides which file `path` names: its own folder and name, and those of each
/// symbolic link on the way. Exposed for tests.
std::vector<std::pair<std::string, std::string>> placesOf(const std::string& path);

} // namespace kxhost

#endif
