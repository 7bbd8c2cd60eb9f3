// What is wrong with a command line, in words, with the word that may have been meant.
#include "command/command_mistake.h"

#include "config/suggest.h"

#include <algorithm>
#include <vector>

namespace kxhost {
namespace {

/// A letter too few or another one makes no slip of the pen where there is but one.
std::string didYouMean(const std::string& given, const std::vector<std::string>& known)
{
    constexpr std::size_t kShortOption = 2;
    if (given.size() <= kShortOption) {
        return {};
    }
    const std::vector<std::string_view> words(known.begin(), known.end());
    const std::string_view nearest = nearestWord(given, words);
    return nearest.empty() ? "" : "; did you mean " + std::string(nearest) + "?";
}

std::vector<std::string> verbsOf(const CLI::App& app)
{
    std::vector<std::string> names;
    for (const CLI::App* const verb : app.get_subcommands({})) {
        names.push_back(verb->get_name());
    }
    return names;
}

/// "--frames" and "-n", of one verb or of kxhost itself.
std::vector<std::string> optionsOf(const CLI::App& app)
{
    std::vector<std::string> names;
    for (const CLI::Option* const option : app.get_options({})) {
        for (const std::string& name : option->get_lnames()) {
            names.push_back("--" + name);
        }
        for (const std::string& name : option->get_snames()) {
            names.push_back("-" + name);
        }
    }
    return names;
}

bool isOption(const std::string& word)
{
    return word.size() > 1 && word.front() == '-';
}

std::string listed(const std::vector<std::string>& names)
{
    std::string text;
    for (const std::string& name : names) {
        text += (text.empty() ? "" : ", ") + name;
    }
    return text;
}

/// Whether any verb has the option, which then stands in front of the verb.
bool isOfAVerb(const CLI::App& app, const std::string& option)
{
    return std::ranges::any_of(app.get_subcommands({}), [&](const CLI::App* verb) {
        return std::ranges::count(optionsOf(*verb), option) > 0;
    });
}

std::string unexpected(const CLI::App& app, const CLI::App* verb, const std::string& word)
{
    const std::string name = word.substr(0, word.find('='));
    if (isOption(word) && !app.remaining().empty() && isOfAVerb(app, name)) {
        return name + " belongs behind the verb";
    }
    if (isOption(word)) {
        const CLI::App& owner = verb != nullptr ? *verb : app;
        return owner.get_name() + " has no option " + name + didYouMean(name, optionsOf(owner));
    }
    if (verb != nullptr) {
        return verb->get_name() + " takes no further word, \"" + word + "\" is one";
    }
    const std::vector<std::string> verbs = verbsOf(app);
    const std::string meant = didYouMean(word, verbs);
    return "there is no verb \"" + word + "\"" +
           (meant.empty() ? "; there are " + listed(verbs) : meant);
}

/// Other mistakes are named well enough by the library, but for a value that is not there.
std::string reworded(std::string text)
{
    const std::string counted = ": 1 required ";
    const std::size_t at = text.find(counted);
    return at == std::string::npos ? text : text.replace(at, counted.size(), ": ");
}

} // namespace

std::string mistakeText(const CLI::App& app, const CLI::ParseError& mistake)
{
    const std::vector<CLI::App*> verbs = app.get_subcommands();
    const CLI::App* const verb = verbs.empty() ? nullptr : verbs.front();
    const std::vector<std::string> extras = app.remaining(true);
    const bool isExtra =
        verb == nullptr || dynamic_cast<const CLI::ExtrasError*>(&mistake) != nullptr;
    std::string text;
    if (isExtra && !extras.empty()) {
        text = unexpected(app, verb, extras.front());
    } else if (verb == nullptr && extras.empty()) {
        text = "a verb is missing, one of " + listed(verbsOf(app));
    } else {
        text = reworded(mistake.what());
    }
    const std::string help =
        verb != nullptr ? app.get_name() + " " + verb->get_name() : app.get_name();
    return text + "\nSee \"" + help + " --help\".";
}

} // namespace kxhost
