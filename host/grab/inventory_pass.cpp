// Asks the plug-in which cameras are on the buses.
#include "grab/inventory_pass.h"

#include "grab/plugin_log.h"
#include "grab/services.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <system_error>

#include <sys/mman.h>
#include <unistd.h>

namespace kxhost {
namespace {

/// While it lives, standard output goes into memory.
class CapturedOutput {
public:
    CapturedOutput() : file_(memfd_create("kxhost-log", MFD_CLOEXEC)), output_(dup(STDOUT_FILENO))
    {
        std::fflush(stdout);
        if (file_ < 0 || output_ < 0 || dup2(file_, STDOUT_FILENO) < 0) {
            throw std::system_error(errno, std::generic_category(),
                                    "cannot read the plug-in's log");
        }
    }
    ~CapturedOutput()
    {
        std::fflush(stdout);
        dup2(output_, STDOUT_FILENO);
        close(output_);
        close(file_);
    }
    CapturedOutput(const CapturedOutput&) = delete;
    CapturedOutput& operator=(const CapturedOutput&) = delete;

    /// What was written so far.
    std::string text() const
    {
        std::fflush(stdout);
        std::string all;
        std::array<char, 4096> piece{};
        ssize_t got = 0;
        while ((got = pread(file_, piece.data(), piece.size(), static_cast<off_t>(all.size()))) >
               0) {
            all.append(piece.data(), static_cast<std::size_t>(got));
        }
        return all;
    }

private:
    int file_;
    int output_;
};

/// While it lives, the plug-in chooses no camera and tells of each.
class AskedOnly {
public:
    explicit AskedOnly(const Plugin& plugin) : plugin_(plugin)
    {
        constexpr std::uint32_t kInfo = 3;
        constexpr std::uint32_t kStandardOutput = 1;
        services().choice = CameraChoice{kNoSuchModel, "", 0};
        plugin.setLogging(kInfo, kStandardOutput, 0);
    }
    ~AskedOnly()
    {
        services().choice.reset();
        logAsConfigured(plugin_, services().settings);
    }
    AskedOnly(const AskedOnly&) = delete;
    AskedOnly& operator=(const AskedOnly&) = delete;

private:
    const Plugin& plugin_;
};

} // namespace

std::vector<InventoryCamera> takeInventory(const Plugin& plugin)
{
    const CapturedOutput output;
    const AskedOnly asked(plugin);
    plugin.run();
    return readInventory(output.text());
}

} // namespace kxhost
