// What `kxhost doctor` prints, and what it tells the shell.
#include "doctor/doctor_report.h"

#include "config/toml_text.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <sstream>

namespace kxhost {
namespace {

constexpr std::size_t kWidth = 80;
constexpr std::size_t kCheckColumn = 9;
constexpr std::size_t kFoundColumn = 25;
constexpr std::size_t kNeededColumn = 54;

const char* verdictWord(Verdict verdict)
{
    switch (verdict) {
    case Verdict::kOk:
        return "ok";
    case Verdict::kWarn:
        return "warn";
    case Verdict::kFail:
        return "fail";
    case Verdict::kSkip:
        return "skip";
    case Verdict::kUnknown:
        break;
    }
    return "unknown";
}

/// Appends a cell that begins at `column`, on a new line when what is there reaches too far. What
/// others have called their devices and programs must not steer a terminal.
void addCell(std::string& text, std::size_t column, const std::string& cell)
{
    if (cell.empty()) {
        return;
    }
    const std::size_t line = text.rfind('\n') + 1; // 0 when there is none
    std::size_t used = text.size() - line;
    if (column > 0 && used >= column) {
        text += '\n';
        used = 0;
    }
    text += std::string(column - used, ' ') + printable(cell);
}

/// The words of a sentence in lines that begin at `column`.
void addWrapped(std::string& text, std::size_t column, const std::string& sentence)
{
    std::istringstream words(sentence);
    std::string line;
    for (std::string word; words >> word;) {
        if (!line.empty() && column + line.size() + 1 + word.size() > kWidth) {
            text += std::string(column, ' ') + line + "\n";
            line.clear();
        }
        line += (line.empty() ? "" : " ") + word;
    }
    text += std::string(column, ' ') + line + "\n";
}

void addRow(std::string& text, const char* verdict, const Check& check)
{
    text += verdict;
    addCell(text, kCheckColumn, check.name);
    addCell(text, kFoundColumn,
            check.subject.empty() ? check.found : check.subject + ": " + check.found);
    addCell(text, kNeededColumn, check.needed);
    text += '\n';
}

std::ptrdiff_t count(const Checks& checks, Verdict verdict)
{
    return std::ranges::count(checks, verdict, &Check::verdict);
}

std::string totals(const Checks& checks)
{
    std::string text = count(checks, Verdict::kFail) == 0
                           ? "Nothing has to be mended"
                           : std::to_string(count(checks, Verdict::kFail)) + " to mend";
    if (const auto warnings = count(checks, Verdict::kWarn); warnings > 0) {
        text += ", " + std::to_string(warnings) + " to think about";
    }
    if (const auto unknown = count(checks, Verdict::kUnknown); unknown > 0) {
        text += ", " + std::to_string(unknown) + " not found out";
    }
    return text + ".\n";
}

} // namespace

ExitCode doctorExitCode(const Checks& checks)
{
    if (count(checks, Verdict::kFail) > 0) {
        return kExitMend;
    }
    return count(checks, Verdict::kUnknown) > 0 ? kExitUnchecked : kExitFine;
}

std::string doctorText(const Checks& checks)
{
    std::string text;
    addRow(text, "verdict", {"check", "", Verdict::kOk, "found", "needed", "", ""});
    for (const Check& check : checks) {
        addRow(text, verdictWord(check.verdict), check);
        if (!check.note.empty()) {
            addWrapped(text, kFoundColumn, printable(check.note));
        }
        if (!check.command.empty()) {
            text += std::string(kCheckColumn, ' ') + "$ " + printable(check.command) + "\n";
        }
    }
    return text + "\n" + totals(checks);
}

std::string doctorJson(const Checks& checks)
{
    nlohmann::ordered_json lines = nlohmann::ordered_json::array();
    for (const Check& check : checks) {
        lines.push_back({{"check", check.name},
                         {"subject", check.subject},
                         {"verdict", verdictWord(check.verdict)},
                         {"found", check.found},
                         {"needed", check.needed},
                         {"command", check.command},
                         {"note", check.note}});
    }
    const nlohmann::ordered_json all = {{"exit_code", static_cast<int>(doctorExitCode(checks))},
                                        {"checks", lines}};
    // A name that is no UTF-8 must not keep the rest from being told.
    return all.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
}

} // namespace kxhost
