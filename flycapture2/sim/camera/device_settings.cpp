// One camera on the simulated bus: what its settings make of the frames.
#include "base/sdk_error.h"
#include "camera/device.h"

#include <algorithm>
#include <limits>

namespace fcsim {

using FlyCapture2::Error;
using FlyCapture2::FRAME_RATE;
using FlyCapture2::PropertyType;
using FlyCapture2::SHUTTER;

namespace {

/// Exposure of a camera without a SHUTTER property.
constexpr double kFixedExposureUs = 10'000;
constexpr double kUsPerMs = 1000;
constexpr double kUsPerSecond = 1e6;
constexpr double kUnlimitedUs = std::numeric_limits<double>::infinity();

/// Absolute value in force; `neutral` for a feature that is switched off or that the camera lacks.
float absoluteOr(const PropertyBank& properties, PropertyType type, float neutral)
{
    return properties.switchedOn(type) ? properties.value(type).absValue : neutral;
}

} // namespace

Error Device::setProperty(const FlyCapture2::Property& property)
{
    Error error = properties_.set(property);
    if (error != FlyCapture2::PGRERROR_OK) {
        return error;
    }
    if (properties_.automatic(FlyCapture2::AUTO_EXPOSURE)) {
        properties_.steer(FlyCapture2::AUTO_EXPOSURE, 0);
    }
    if (property.type != SHUTTER && property.type != FlyCapture2::GAIN) {
        properties_.endPush(property.type); // nothing looks for a value
    }
    retime();
    capture_.settingsChanged();
    return error;
}

void Device::formatChanged()
{
    retime();
}

Error Device::lutChanged(const Error& error)
{
    capture_.settingsChanged();
    return error;
}

bool Device::metered(const FrameSettings& frame, double level)
{
    // A frame rate that is set limits the shutter anyway, an automatic one is not to suffer from
    // it.
    const double longestUs =
        properties_.automatic(FRAME_RATE) ? kUsPerSecond / deliveryRate() : kUnlimitedUs;
    const bool moved = automatic_.follow(frame, level, longestUs);
    if (moved) {
        retime();
    }
    return moved;
}

double Device::transferUs() const
{
    const double bandwidth = description_.delivery.bandwidth * format7_.share();
    return static_cast<double>(format7_.frameSize()) / bandwidth * kUsPerSecond;
}

double Device::deliveryRate() const
{
    const double sensor = description_.frameRate * description_.sensor.height /
                          std::max(1U, format7_.settings().height);
    return std::min(kUsPerSecond / transferUs(), sensor);
}

double Device::exposureUs() const
{
    const FlyCapture2::Property& shutter = properties_.value(SHUTTER);
    return shutter.present ? kUsPerMs * static_cast<double>(shutter.absValue) : kFixedExposureUs;
}

SensorState Device::sensorState() const
{
    SensorState state;
    state.shutterUs = static_cast<float>(exposureUs());
    state.gainDb = absoluteOr(properties_, FlyCapture2::GAIN, state.gainDb);
    state.brightnessPercent =
        absoluteOr(properties_, FlyCapture2::BRIGHTNESS, state.brightnessPercent);
    state.gamma = absoluteOr(properties_, FlyCapture2::GAMMA, state.gamma);
    state.saturationPercent =
        absoluteOr(properties_, FlyCapture2::SATURATION, state.saturationPercent);
    state.hueDegrees = absoluteOr(properties_, FlyCapture2::HUE, state.hueDegrees);
    if (properties_.switchedOn(FlyCapture2::SHARPNESS)) {
        state.sharpness = properties_.value(FlyCapture2::SHARPNESS).valueA;
    }
    if (properties_.switchedOn(FlyCapture2::WHITE_BALANCE)) {
        state.whiteBalanceRed = properties_.value(FlyCapture2::WHITE_BALANCE).valueA;
        state.whiteBalanceBlue = properties_.value(FlyCapture2::WHITE_BALANCE).valueB;
    }
    state.lut = lut_.inForce();
    return state;
}

FrameSettings Device::frameSettings() const
{
    FrameSettings settings;
    settings.periodUs = periodUs_;
    settings.exposureUs = exposureUs();
    settings.transferUs = transferUs();
    settings.shutterRaw = properties_.value(SHUTTER).valueA;
    settings.gainRaw = properties_.value(FlyCapture2::GAIN).valueA;
    settings.state = sensorState();
    settings.strobes = strobesInForce();
    return settings;
}

Error Device::setStrobe(const FlyCapture2::StrobeControl& control)
{
    Error error = strobes_.set(control);
    if (error == FlyCapture2::PGRERROR_OK) {
        if (control.onOff) {
            gpio_.useForStrobe(control.source);
        }
        capture_.settingsChanged();
    }
    return error;
}

StrobeSettings Device::strobesInForce() const
{
    StrobeSettings settings;
    for (unsigned pin = 0; pin < description_.gpioPins; ++pin) {
        settings[pin] = strobes_.setting(pin);
        settings[pin].on = settings[pin].on && gpio_.inMode(pin, PinMode::strobe);
    }
    return settings;
}

void Device::retime()
{
    const double highest = std::min(kUsPerSecond / std::max(exposureUs(), 1.0), deliveryRate());
    properties_.limit(FRAME_RATE, static_cast<float>(highest));
    double rate = highest;
    double longestUs = kUnlimitedUs;
    if (properties_.manual(FRAME_RATE)) {
        rate = std::min(rate, static_cast<double>(properties_.value(FRAME_RATE).absValue));
        longestUs = kUsPerSecond / rate;
    } else {
        properties_.steer(FRAME_RATE, static_cast<float>(rate));
    }
    properties_.limit(SHUTTER, static_cast<float>(longestUs / kUsPerMs));
    periodUs_ = clock_.toHost(kUsPerSecond / rate);
}

} // namespace fcsim
