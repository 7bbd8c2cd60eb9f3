// Hands the export side its part of the settings.
#include "config/settings.h"

#include <algorithm>
#include <string>

namespace kxhost {
namespace {

/// So many that the names of all pictures sort like their numbers. A grab without end may be one of
/// years at hundreds of frames a second.
std::size_t digitsFor(std::uint32_t frames)
{
    constexpr std::size_t kEndless = 11;
    return frames == 0 ? kEndless : std::max(kFewestDigits, std::to_string(frames).size());
}

} // namespace

ExportSettings exportSettings(const Settings& settings)
{
    return {
        .folder = settings.outputFolder,
        .prefix = settings.outputPrefix,
        .digits = digitsFor(settings.frames),
        .format = static_cast<PictureFormat>(settings.outputFormat),
        .bayer = static_cast<BayerPicture>(settings.outputBayer),
        .compression = settings.outputCompression,
        .metadata = settings.outputMetadata,
        .overwrite = settings.outputOverwrite,
        .queueDepth = settings.outputQueue,
        .writerThreads = settings.outputWriters,
        .whenFull = static_cast<WhenFull>(settings.outputWhenFull),
    };
}

} // namespace kxhost
