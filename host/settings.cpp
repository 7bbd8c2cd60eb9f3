// Hands the export side its part of the settings.
#include "settings.h"

namespace kxhost {

ExportSettings exportSettings(const Settings& settings)
{
    return {
        .folder = settings.outputFolder,
        .prefix = settings.outputPrefix,
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
