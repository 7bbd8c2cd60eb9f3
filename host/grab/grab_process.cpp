// Looks at another process: whether it is a grab that takes a signal.
#include "grab/grab_process.h"

#include "config/toml_text.h"

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace kxhost {
namespace {

constexpr const char* kProgram = "kxhost";

/// The first line of a file; empty when it cannot be read.
std::string firstLine(const std::filesystem::path& path)
{
    std::ifstream file(path);
    std::string line;
    std::getline(file, line);
    return line;
}

/// The signals that the process has blocked, because it waits for them: the mask in its status.
std::uint64_t blockedSignals(const std::filesystem::path& status)
{
    constexpr std::string_view kField = "SigBlk:";
    constexpr int kHexadecimal = 16;
    std::ifstream file(status);
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with(kField)) {
            return std::strtoull(line.c_str() + kField.size(), nullptr, kHexadecimal);
        }
    }
    return 0;
}

} // namespace

std::string whyNoGrab(int pid, int signal, const std::string& proc)
{
    const std::string who = "Process " + std::to_string(pid);
    const std::filesystem::path folder = std::filesystem::path(proc) / std::to_string(pid);
    std::error_code ignored;
    if (!std::filesystem::exists(folder, ignored)) {
        return "There is no process " + std::to_string(pid) + ".";
    }
    // The name is readable for everybody, unlike the link to the program.
    if (const std::string name = firstLine(folder / "comm"); name != kProgram) {
        return who + " is not " + kProgram + " but " +
               (name.empty() ? "unknown" : printable(name)) + ".";
    }
    if ((blockedSignals(folder / "status") >> (signal - 1) & 1U) == 0) {
        return who + " is a " + kProgram + " that does not grab.";
    }
    return {};
}

} // namespace kxhost
