// Host services: the look-up table that is computed from what the camera sees.
#include "grab/equalisation.h"
#include "grab/services.h"
#include "services/service_exports.h"

#include <algorithm>
#include <cstddef>

using kxhost::services;

namespace {

/// The format that the plug-in has published, if that is how many bits its pixels have, else the
/// monochrome one with so many bits; null = there is none.
const kxhost::Codec* codecOf(uint32_t bitsPerPixel)
{
    const kxhost::FrameInfo info = services().scenario.frame(kxhost::Instance::kRaw);
    for (const std::string_view name :
         {std::string_view(info.codec), std::string_view("MONO8T"), std::string_view("MONO12PT"),
          std::string_view("MONO12T")}) {
        const kxhost::Codec* const codec = kxhost::findCodec(name);
        if (codec != nullptr && codec->bitsPerPixel == bitsPerPixel) {
            return codec;
        }
    }
    return nullptr;
}

} // namespace

void KxGi__CalcLutDynam(const void* pixels, uint32_t width, uint32_t height, uint32_t pitch,
                        uint32_t bitsPerPixel, uint32_t* cdf)
{
    const std::span entries(cdf, std::size_t{1} << bitsPerPixel);
    services().distributionBits = bitsPerPixel;
    const kxhost::Codec* const codec = codecOf(bitsPerPixel);
    if (codec == nullptr || pixels == nullptr) {
        std::ranges::fill(entries, 0U); // of which the table is a straight line
        return;
    }
    kxhost::cumulate(*codec, pixels, width, height, pitch, entries);
}

/// The distribution is the one that was added up last; its size is not said again.
void KxGi__GetLutDynam(uint32_t outputBits, const uint32_t* cdf, uint32_t inputBits, uint16_t* lut)
{
    kxhost::HostServices& host = services();
    host.computedTable = host.formatBeforePass ? kxhost::kLut12 : kxhost::kLut;
    kxhost::equalise({cdf, std::size_t{1} << host.distributionBits}, host.settings.lutClipLimit,
                     inputBits, {lut, std::size_t{1} << outputBits});
    ++host.counts.tables;
}
