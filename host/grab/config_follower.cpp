// Follows the configuration file of a running grab: what changed, and what may be made of it.
#include "grab/config_follower.h"

#include "config/config_change.h"
#include "grab/real_time.h"

#include <utility>

#include <unistd.h>

namespace kxhost {
namespace {

/// How a user asks this process to reload.
std::string reloadCommand()
{
    return "kxhost ctl " + std::to_string(getpid()) + " reload";
}

std::string joined(const ConfigErrors& errors)
{
    std::string text;
    for (const std::string& error : errors) {
        text += error + "\n";
    }
    return text;
}

} // namespace

ConfigFollower::ConfigFollower(ConfigSource source, Configuration start, ConfigOffers& offers,
                               std::function<void(const std::string&)> say)
    : source_(std::move(source)), start_(std::move(start)), offered_(start_), offers_(offers),
      say_(std::move(say))
{}

void ConfigFollower::reload()
{
    Configuration configuration;
    const ConfigErrors errors = loadConfiguration(source_.path, source_.overrides, configuration);
    if (!errors.empty()) {
        refuse(errors, true);
        return;
    }
    said_.clear();
    if (const auto fixed = changedKeys(start_, configuration, {Takes::kStart}); !fixed.empty()) {
        say_(listed(fixed) + " cannot change in a running grab and " +
             (fixed.size() == 1 ? "keeps its value" : "keep their values") +
             " until the next start.");
    }
    static_cast<void>(offers_.live.take()); // this one is newer
    offer(offers_.reload, configuration);
}

void ConfigFollower::fileChanged()
{
    Configuration configuration;
    const ConfigErrors errors = loadConfiguration(source_.path, source_.overrides, configuration);
    if (!errors.empty()) {
        refuse(errors, false);
        return;
    }
    if (const std::string held = heldBack(configuration); !held.empty()) {
        sayOnce(held);
        return;
    }
    said_.clear();
    if (!changedKeys(offered_, configuration, {Takes::kLive}).empty()) {
        offer(offers_.live, configuration);
    }
}

std::vector<std::string> ConfigFollower::files() const
{
    std::vector<std::string> files;
    for (const std::string& path : {source_.path, offered_.settings.lutFile}) {
        if (!path.empty()) {
            files.push_back(path);
        }
    }
    return files;
}

void ConfigFollower::offer(OfferSlot& slot, const Configuration& configuration)
{
    auto offer = std::make_unique<ConfigOffer>();
    offer->file = source_.path;
    const auto takes = {Takes::kLive, Takes::kReload, Takes::kRestart};
    offer->changed = listed(changedKeys(offered_, configuration, takes));
    offer->values = changedValues(offered_, configuration, takes);
    offer->wayBack = changedValues(configuration, offered_, takes);
    offer->settings = configuration.settings;
    if (offered_.settings.iobox.empty()) { // otherwise it was said before
        if (const auto trouble = realTimeTrouble(configuration.settings); !trouble.empty()) {
            say_(trouble);
        }
    }
    Settings fixed = start_.settings;
    swapKeys(offer->settings, fixed, Takes::kStart);
    offered_ = configuration;
    slot.put(std::move(offer));
}

/// Why a changed file is not taken over while the grab runs; empty = it can be.
std::string ConfigFollower::heldBack(const Configuration& configuration) const
{
    const auto reload = changedKeys(offered_, configuration, {Takes::kReload, Takes::kRestart});
    const auto start = changedKeys(offered_, configuration, {Takes::kStart});
    if (reload.empty() && start.empty()) {
        return {};
    }
    std::string text = source_.path + " has changed: ";
    if (!reload.empty()) {
        text += listed(reload) + (reload.size() == 1 ? " takes" : " take") + " a reload (" +
                reloadCommand() + ")";
    }
    if (!start.empty()) {
        text += (reload.empty() ? "" : ", ") + listed(start) +
                (start.size() == 1 ? " takes" : " take") + " a new start of kxhost";
    }
    return text + "; nothing of the change is in force.";
}

/// `asked`: by a user, who gets an answer each time.
void ConfigFollower::refuse(const ConfigErrors& errors, bool asked)
{
    if (!asked && said_ == joined(errors)) {
        return;
    }
    said_ = joined(errors);
    for (const std::string& error : errors) {
        say_(error);
    }
    say_("The configuration is refused; the one in force stays.");
}

void ConfigFollower::sayOnce(const std::string& text)
{
    if (said_ != text) {
        said_ = text;
        say_(text);
    }
}

} // namespace kxhost
