// Where the pieces of an installation lie.
#include "grab/installation.h"

#include <array>
#include <filesystem>

namespace kxhost {
namespace {

std::string programFolder()
{
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error).parent_path().string();
}

} // namespace

std::string findPiece(const std::string& programFolder, const std::string& inBuildTree,
                      const std::string& inLibraryFolder)
{
    if (programFolder.empty()) {
        return {}; // unknown: the working directory is no place to load code from
    }
    const std::filesystem::path here(programFolder);
    const std::array places = {here / inBuildTree, here / ".." / KXHOST_LIBDIR / inLibraryFolder};
    for (const auto& place : places) {
        std::error_code error;
        if (std::filesystem::exists(place, error)) {
            return std::filesystem::weakly_canonical(place, error).string();
        }
    }
    return {};
}

std::string findPlugin()
{
    return findPiece(programFolder(), "libdriver-pointgrey.so", "libdriver-pointgrey.so");
}

std::string findSimulation()
{
    return findPiece(programFolder(), "flycapture2/sim/libflycapture.so.2",
                     "driver-pointgrey/sim/libflycapture.so.2");
}

} // namespace kxhost
