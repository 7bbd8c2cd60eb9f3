// The configurations of a grab, as the report shows them.
#include "report/html_escape.h"
#include "report/report_html.h"
#include "report/report_sections.h"
#include "report/report_words.h"

namespace kxhost {
namespace {

std::string kindText(ChangeKind kind)
{
    switch (kind) {
    case ChangeKind::kStart:
        return "the grab began";
    case ChangeKind::kLive:
        return "the file was changed";
    case ChangeKind::kReload:
        return "a reload was asked for";
    case ChangeKind::kFallBack:
        return "the camera refused a reload";
    case ChangeKind::kAgain:
        return "the camera came back";
    }
    return "";
}

std::string code(const std::string& text)
{
    return element("code", htmlEscape(text));
}

std::string valueText(const std::string& value)
{
    return value.empty() ? "not set any more" : code(value);
}

std::string inForceTable(const KeysInForce& keys)
{
    if (keys.empty()) {
        return element("p", "No key was set: the camera was left as it is.");
    }
    std::vector<std::vector<std::string>> rows;
    rows.reserve(keys.size());
    for (const auto& [key, state] : keys) {
        rows.push_back({code(key), code(state.value), std::to_string(state.number)});
    }
    return table({"Key", "Value at the end", "Since configuration"}, rows, false);
}

std::string changedText(const ConfigurationChange& change)
{
    std::string text;
    for (const auto& [key, value] : change.changed) {
        text += (text.empty() ? "" : "<br>") + code(key) + " " + valueText(value);
    }
    return text.empty() ? "nothing" : text;
}

std::string changesTable(const std::vector<ConfigurationChangePtr>& changes)
{
    if (changes.size() < 2) {
        return "";
    }
    std::vector<std::vector<std::string>> rows;
    rows.reserve(changes.size());
    for (const ConfigurationChangePtr& change : changes) {
        rows.push_back({std::to_string(change->number), utcText(change->atUs),
                        kindText(change->kind), changedText(*change)});
    }
    const std::uint64_t before = changes.front()->number - 1;
    const std::string earlier =
        before == 0 ? ""
                    : element("p", "Without the first " + grouped(before) + ".", "class=\"about\"");
    return element("h3", "Changes") + earlier +
           table({"Number", "Applied", "Because", "Keys"}, rows, false);
}

} // namespace

std::string configurationSection(const Report& report)
{
    const std::vector<ConfigurationChangePtr>& changes = report.summary.configurations;
    std::string content;
    if (changes.empty()) {
        content = element("p", report.summary.passes == 0
                                   ? "It was never applied."
                                   : "What became of it is not known: the end came while the "
                                     "camera was looked for or set up.");
    } else {
        content = inForceTable(report.summary.keysInForce) + changesTable(changes);
    }
    if (!report.facts.inForce.empty()) {
        content += foldedAway("All keys, as the grab began",
                              element("pre", htmlEscape(report.facts.inForce)));
    }
    return section("configuration", "Configuration", content);
}

} // namespace kxhost
