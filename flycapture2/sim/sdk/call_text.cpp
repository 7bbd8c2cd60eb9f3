// How the arguments of calls are written in the record of calls.
#include "sdk/call_text.h"

#include "camera/device_info.h"
#include "camera/property_bank.h"
#include "scene/pixel_format.h"

#include <array>
#include <cstdio>

namespace fcsim {

std::string hexText(std::uint32_t value)
{
    char text[16];
    std::snprintf(text, sizeof text, "0x%X", value);
    return text;
}

std::string propertyText(const FlyCapture2::Property& property)
{
    char value[64];
    if (property.absControl) {
        std::snprintf(value, sizeof value, " abs=%g", static_cast<double>(property.absValue));
    } else {
        std::snprintf(value, sizeof value, " raw=%u,%u", property.valueA, property.valueB);
    }
    std::string text = propertyName(property.type);
    text += value;
    text += property.onOff ? " on" : " off";
    text += property.autoManualMode ? " auto" : "";
    text += property.onePush ? " onepush" : "";
    return text;
}

std::string format7Text(const FlyCapture2::Format7ImageSettings& settings)
{
    char text[128];
    std::snprintf(text, sizeof text, "%ux%u+%u+%u %s", settings.width, settings.height,
                  settings.offsetX, settings.offsetY, pixelFormatName(settings.pixelFormat));
    return text;
}

std::string configText(const FlyCapture2::FC2Config& config)
{
    constexpr std::array<const char*, 3> kModes{"DROP_FRAMES", "BUFFER_FRAMES", "UNSPECIFIED"};
    const auto mode = static_cast<unsigned>(config.grabMode);
    char text[128];
    std::snprintf(text, sizeof text, "buffers=%u timeout=%d %s", config.numBuffers,
                  config.grabTimeout, mode < kModes.size() ? kModes[mode] : "?");
    return text;
}

std::string embeddedText(const FlyCapture2::EmbeddedImageInfo& info)
{
    const auto items = embeddedItems(info);
    std::string text;
    for (unsigned i = 0; i < items.size(); ++i) {
        if (items[i]->onOff) {
            text += text.empty() ? "" : " ";
            text += kEmbeddedNames[i];
        }
    }
    return text;
}

} // namespace fcsim
