// What the system lets this process do: who it is, and its limits.
#include "doctor/doctor_process.h"

#include <cstdlib>
#include <sstream>

namespace kxhost {
namespace {

/// What stands behind `name` in a list of "name value" lines; nothing = no such line.
std::optional<std::istringstream> valueOf(const std::string& text, std::string_view name)
{
    for (const std::string& line : linesOf(text)) {
        if (line.starts_with(name)) {
            return std::istringstream(line.substr(name.size()));
        }
    }
    return std::nullopt;
}

std::optional<std::uint64_t> limitValue(const std::string& word)
{
    return word == "unlimited" ? kUnlimited : wholeNumber(word);
}

std::optional<ProcessLimit> limitOf(const std::string& limits, std::string_view name)
{
    auto line = valueOf(limits, name);
    std::string soft;
    std::string hard;
    if (!line || !(*line >> soft >> hard) || !limitValue(soft) || !limitValue(hard)) {
        return std::nullopt;
    }
    return ProcessLimit{*limitValue(soft), *limitValue(hard)};
}

/// The name that /etc/passwd gives a user.
std::string nameOf(const Tree& tree, std::uint64_t user)
{
    for (const std::string& line : linesOf(tree.text("/etc/passwd").value_or(""))) {
        std::istringstream fields(line);
        std::string name;
        std::string password;
        std::string number;
        if (std::getline(fields, name, ':') && std::getline(fields, password, ':') &&
            std::getline(fields, number, ':') && wholeNumber(number) == user) {
            return name;
        }
    }
    return {};
}

/// False when the text is not that of a process's status.
bool readStatus(const std::string& status, ProcessFacts& facts)
{
    constexpr int kHexadecimal = 16;
    auto users = valueOf(status, "Uid:");
    auto groups = valueOf(status, "Gid:");
    auto capabilities = valueOf(status, "CapEff:");
    std::uint64_t real = 0;
    std::uint64_t group = 0;
    std::string bits;
    if (!users || !groups || !capabilities || !(*users >> real >> facts.user) ||
        !(*groups >> real >> group) || !(*capabilities >> bits)) {
        return false;
    }
    facts.capabilities = std::strtoull(bits.c_str(), nullptr, kHexadecimal);
    facts.groups = {group};
    if (auto further = valueOf(status, "Groups:")) {
        while (*further >> group) {
            facts.groups.push_back(group);
        }
    }
    return true;
}

} // namespace

ProcessFacts readProcess(const Tree& tree)
{
    ProcessFacts facts;
    facts.told = readStatus(tree.text("/proc/self/status").value_or(""), facts);
    facts.userName = facts.told ? nameOf(tree, facts.user) : "";
    const std::string limits = tree.text("/proc/self/limits").value_or("");
    facts.realTimePriority = limitOf(limits, "Max realtime priority");
    facts.lockedMemory = limitOf(limits, "Max locked memory");
    return facts;
}

std::string userForShell(const ProcessFacts& process)
{
    return process.userName.empty() ? "$(id -un)" : process.userName;
}

} // namespace kxhost
