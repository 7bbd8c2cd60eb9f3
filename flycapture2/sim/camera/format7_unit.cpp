// The Format7 mode of one camera: region, pixel format, packets.
#include "camera/format7_unit.h"

#include "base/sdk_error.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>

namespace fcsim {

using FlyCapture2::Error;
using FlyCapture2::Format7ImageSettings;
using FlyCapture2::Format7Info;
using FlyCapture2::Format7PacketInfo;

namespace {

Error unsupportedMode(FlyCapture2::Mode mode)
{
    return makeError(FlyCapture2::PGRERROR_INVALID_MODE,
                     "Format7 mode " + std::to_string(mode) + " is not supported");
}

bool onGrid(unsigned value, unsigned step)
{
    return step == 0 || value % step == 0;
}

std::string offGrid(const char* what, unsigned value, unsigned step)
{
    return std::string(what) + " " + std::to_string(value) + " is no multiple of " +
           std::to_string(step);
}

std::string tooLarge(const char* what, unsigned offset, unsigned size, unsigned most)
{
    return std::string(what) + " " + std::to_string(offset) + " + " + std::to_string(size) +
           " exceeds " + std::to_string(most);
}

/// What is wrong with the region in one direction; empty = nothing.
std::string axisObjection(const char* offsetName, const char* sizeName, unsigned offset,
                          unsigned size, unsigned offsetStep, unsigned sizeStep, unsigned most)
{
    if (size == 0) {
        return std::string(sizeName) + " is 0";
    }
    if (!onGrid(size, sizeStep)) {
        return offGrid(sizeName, size, sizeStep);
    }
    if (!onGrid(offset, offsetStep)) {
        return offGrid(offsetName, offset, offsetStep);
    }
    if (offset > most || size > most - offset) {
        return tooLarge((std::string(offsetName) + " + " + sizeName).c_str(), offset, size, most);
    }
    return {};
}

} // namespace

Format7Unit::Format7Unit(const Format7Description& description)
    : description_(description), packetSize_(description.packetRecommended)
{
    for (const FlyCapture2::PixelFormat format : description.pixelFormats) {
        formats_ |= static_cast<unsigned>(format);
    }
    settings_.mode = FlyCapture2::MODE_0;
    settings_.width = description.maxWidth;
    settings_.height = description.maxHeight;
    settings_.pixelFormat = description.pixelFormats.front();
}

Error Format7Unit::info(Format7Info& info, bool& supported) const
{
    const FlyCapture2::Mode mode = info.mode;
    supported = description_.supported && mode == FlyCapture2::MODE_0;
    info = Format7Info();
    info.mode = mode;
    if (!supported) {
        return success();
    }
    info.maxWidth = description_.maxWidth;
    info.maxHeight = description_.maxHeight;
    info.offsetHStepSize = description_.offsetHStep;
    info.offsetVStepSize = description_.offsetVStep;
    info.imageHStepSize = description_.sizeHStep;
    info.imageVStepSize = description_.sizeVStep;
    info.pixelFormatBitField = formats_;
    info.packetSize = packetSize_;
    info.minPacketSize = description_.packetMin;
    info.maxPacketSize = description_.packetMax;
    info.percentage = static_cast<float>(100 * share());
    return success();
}

std::string Format7Unit::objection(const Format7ImageSettings& settings) const
{
    const auto format = static_cast<unsigned>(settings.pixelFormat);
    if (format == 0 || (formats_ & format) != format) {
        return std::string("pixel format ") + pixelFormatName(settings.pixelFormat) +
               " is not supported";
    }
    const unsigned group = findPixelLayout(settings.pixelFormat)->pixelsPerGroup;
    if (!onGrid(settings.width, group)) {
        return offGrid("width", settings.width, group);
    }
    std::string text =
        axisObjection("offsetX", "width", settings.offsetX, settings.width,
                      description_.offsetHStep, description_.sizeHStep, description_.maxWidth);
    if (text.empty()) {
        text =
            axisObjection("offsetY", "height", settings.offsetY, settings.height,
                          description_.offsetVStep, description_.sizeVStep, description_.maxHeight);
    }
    return text;
}

Error Format7Unit::validate(const Format7ImageSettings& settings, bool& valid,
                            Format7PacketInfo& packets) const
{
    valid = false;
    packets = Format7PacketInfo();
    if (!description_.supported || settings.mode != FlyCapture2::MODE_0) {
        return unsupportedMode(settings.mode);
    }
    valid = objection(settings).empty();
    packets.recommendedBytesPerPacket = description_.packetRecommended;
    packets.maxBytesPerPacket = description_.packetMax;
    packets.unitBytesPerPacket = description_.packetUnit;
    return success();
}

Error Format7Unit::get(Format7ImageSettings& settings, unsigned& packetSize,
                       float& percentage) const
{
    if (!description_.supported) {
        return makeError(FlyCapture2::PGRERROR_NOT_IN_FORMAT7, "the camera has no Format7 mode");
    }
    settings = settings_;
    packetSize = packetSize_;
    percentage = static_cast<float>(100 * share());
    return success();
}

Error Format7Unit::set(const Format7ImageSettings& settings, unsigned packetSize)
{
    if (!description_.supported || settings.mode != FlyCapture2::MODE_0) {
        return unsupportedMode(settings.mode);
    }
    const std::string text = objection(settings);
    if (!text.empty()) {
        return makeError(FlyCapture2::PGRERROR_INVALID_SETTINGS, "Format7 settings: " + text);
    }
    const unsigned unit = description_.packetUnit;
    if (packetSize < description_.packetMin || packetSize > description_.packetMax ||
        !onGrid(packetSize, unit)) {
        return makeError(FlyCapture2::PGRERROR_INVALID_PACKET_SIZE,
                         "packet size " + std::to_string(packetSize) + " is not within " +
                             std::to_string(description_.packetMin) + " to " +
                             std::to_string(description_.packetMax) + " in steps of " +
                             std::to_string(unit));
    }
    settings_ = settings;
    packetSize_ = packetSize;
    return success();
}

Error Format7Unit::set(const Format7ImageSettings& settings, float percentage)
{
    if (!(percentage > 0 && percentage <= 100)) {
        return makeError(FlyCapture2::PGRERROR_INVALID_PARAMETER,
                         "packet size of " + std::to_string(percentage) + " percent");
    }
    const unsigned unit = std::max(1U, description_.packetUnit);
    const auto wanted = static_cast<unsigned>(description_.packetMax * (double{percentage} / 100));
    return set(settings, std::max(description_.packetMin, wanted / unit * unit));
}

std::size_t Format7Unit::frameSize() const
{
    return packedSize(settings_.pixelFormat, settings_.width, settings_.height);
}

double Format7Unit::share() const
{
    return static_cast<double>(packetSize_) / description_.packetMax;
}

} // namespace fcsim
