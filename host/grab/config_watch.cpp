// Watches files for changes, however an editor makes them.
#include "grab/config_watch.h"

#include <algorithm>
#include <array>
#include <deque>
#include <filesystem>

#include <sys/inotify.h>

namespace kxhost {
namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;

constexpr auto kSilence = 100ms;
constexpr auto kAtMost = 1000ms;

/// A written file when it is closed, and a new one that gets its name; links when they are made.
constexpr std::uint32_t kEvents =
    IN_CLOSE_WRITE | IN_MOVED_TO | IN_CREATE | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;

bool isLink(const fs::path& path)
{
    std::error_code ignored;
    return fs::is_symlink(path, ignored);
}

/// Whether an event says that a file of this name is another one now. A plain file that was just
/// made is not written yet.
bool isChange(std::uint32_t mask, const std::string& folder, const std::string& name)
{
    return (mask & IN_CREATE) == 0 || isLink(fs::path(folder) / name);
}

} // namespace

std::vector<std::pair<std::string, std::string>> placesOf(const std::string& path)
{
    constexpr int kMostLinks = 40;
    std::vector<std::pair<std::string, std::string>> places;
    std::error_code error;
    const fs::path whole = fs::absolute(path, error);
    std::deque<fs::path> todo(whole.begin(), whole.end());
    fs::path folder; // free of links
    for (int links = 0; !todo.empty() && links <= kMostLinks;) {
        const fs::path next = todo.front();
        todo.pop_front();
        if (next == "..") {
            folder = folder.parent_path();
        } else if (isLink(folder / next)) {
            places.emplace_back(folder.string(), next.string());
            const fs::path target = fs::read_symlink(folder / next, error);
            todo.insert(todo.begin(), target.begin(), target.end());
            ++links;
        } else if (todo.empty()) {
            places.emplace_back(folder.string(), next.string());
        } else if (next != ".") {
            folder /= next; // which a root replaces
        }
    }
    return places;
}

ConfigWatch::ConfigWatch() : inotify_(inotify_init1(IN_CLOEXEC | IN_NONBLOCK), "cannot watch files")
{}

bool ConfigWatch::follow(const std::vector<std::string>& files)
{
    std::map<std::string, std::set<std::string>> wanted;
    for (const std::string& file : files) {
        for (const auto& [folder, name] : placesOf(file)) {
            wanted[folder].insert(name);
        }
    }
    trouble_.clear();
    bool isNew = false;
    std::map<int, std::string> folders;
    for (const auto& [folder, names] : wanted) {
        const int watch = inotify_add_watch(inotify_.number(), folder.c_str(), kEvents);
        if (watch >= 0) {
            isNew = isNew || !folders_.contains(watch) || wanted_[folder] != names;
            folders[watch] = folder;
        } else {
            trouble_ = "Cannot watch " + folder +
                       " for changes: " + std::generic_category().message(errno) + ".";
        }
    }
    for (const auto& [watch, folder] : folders_) {
        if (!folders.contains(watch)) {
            inotify_rm_watch(inotify_.number(), watch);
        }
    }
    folders_ = std::move(folders);
    wanted_ = std::move(wanted);
    return isNew;
}

void ConfigWatch::read(Clock::time_point now)
{
    alignas(inotify_event) std::array<char, 4096> events{};
    ssize_t size = 0;
    while ((size = ::read(inotify_.number(), events.data(), events.size())) > 0) {
        takeEvents(events.data(), static_cast<std::size_t>(size), now);
    }
}

void ConfigWatch::takeEvents(const char* events, std::size_t size, Clock::time_point now)
{
    for (std::size_t at = 0; at < size;) {
        const auto& event = *reinterpret_cast<const inotify_event*>(events + at);
        at += sizeof event + event.len;
        const auto folder = folders_.find(event.wd);
        const bool isOverflow = (event.mask & IN_Q_OVERFLOW) != 0;
        if (folder == folders_.end() && !isOverflow) {
            continue;
        }
        const std::string name = event.len > 0 ? event.name : "";
        const bool isOurs =
            isOverflow || name.empty() ||
            (wanted_[folder->second].contains(name) && isChange(event.mask, folder->second, name));
        if (isOurs) {
            firstChange_ = firstChange_.value_or(now);
            lastChange_ = now;
        }
    }
}

ConfigWatch::Clock::time_point ConfigWatch::due() const
{
    return std::min(lastChange_ + kSilence, *firstChange_ + kAtMost);
}

bool ConfigWatch::isDue(Clock::time_point now)
{
    if (!firstChange_ || now < due()) {
        return false;
    }
    firstChange_.reset();
    return true;
}

int ConfigWatch::waitMs(Clock::time_point now) const
{
    if (!firstChange_) {
        return -1;
    }
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(due() - now);
    return static_cast<int>(std::max<std::int64_t>(left.count(), 0));
}

} // namespace kxhost
