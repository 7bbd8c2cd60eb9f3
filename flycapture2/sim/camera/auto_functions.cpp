// The automatic functions of one camera: they look at its frames and move its properties.
#include "camera/auto_functions.h"

#include <algorithm>
#include <cmath>

namespace fcsim {

using FlyCapture2::AUTO_EXPOSURE;
using FlyCapture2::GAIN;
using FlyCapture2::PropertyType;
using FlyCapture2::SHUTTER;

namespace {

constexpr std::uint32_t kTwelveBits = 0xFFF;
constexpr double kUsPerMs = 1000;
constexpr double kShortestUs = 1;

/// A register of limits: minimum in bits 12 to 23, maximum in bits 0 to 11.
struct LimitRegister {
    PropertyType type;
    std::uint32_t address;
    double stepsPerUnit; ///< of the property's absolute value
};
constexpr LimitRegister kShutterLimits{SHUTTER, registers::kAutoShutterRange, 100};
constexpr LimitRegister kGainLimits{GAIN, registers::kAutoGainRange, 10};

std::uint32_t twelveBits(double steps)
{
    return static_cast<std::uint32_t>(
        std::clamp(std::round(steps), 0.0, static_cast<double>(kTwelveBits)));
}

void define(const LimitRegister& limits, const PropertyBank& properties, RegisterFile& registers)
{
    const FlyCapture2::PropertyInfo& info = properties.range(limits.type);
    const std::uint32_t ends = twelveBits(info.absMin * limits.stepsPerUnit) << 12U |
                               twelveBits(info.absMax * limits.stepsPerUnit);
    registers.define(limits.address, info.present ? kPresenceBit | ends : 0);
}

/// The part of `span` that a property can reach in its steps from `origin`.
Span onGrid(const Span& span, double origin, double step)
{
    if (step <= 0) {
        return span;
    }
    constexpr double kSlack = 1e-4; // of a step, for values that are on the grid but for rounding
    Span reached;
    reached.min = origin + std::ceil((span.min - origin) / step - kSlack) * step;
    reached.max = origin + std::floor((span.max - origin) / step + kSlack) * step;
    return {reached.min, std::max(reached.min, reached.max)};
}

/// Of the property, narrowed by the register where the camera has it.
Span limitsOf(const LimitRegister& limits, const PropertyBank& properties,
              const RegisterFile& registers)
{
    const FlyCapture2::PropertyInfo& info = properties.range(limits.type);
    const Span whole{info.absMin, info.absMax};
    Span span = whole;
    const std::uint32_t value = registers.value(limits.address);
    if ((value & kPresenceBit) != 0) {
        const double min = (value >> 12U & kTwelveBits) / limits.stepsPerUnit;
        const double max = (value & kTwelveBits) / limits.stepsPerUnit;
        span.min = std::clamp(min, whole.min, whole.max);
        span.max = std::clamp(max, span.min, whole.max);
    }
    return onGrid(span, whole.min, static_cast<double>(properties.step(limits.type)));
}

} // namespace

void AutoFunctions::defineLimits()
{
    define(kShutterLimits, properties_, registers_);
    define(kGainLimits, properties_, registers_);
}

bool AutoFunctions::active() const
{
    return properties_.automatic(SHUTTER) || properties_.automatic(GAIN);
}

bool AutoFunctions::follow(const FrameSettings& frame, double level, double longestUs)
{
    const Exposure exposure{frame.exposureUs, static_cast<double>(frame.state.gainDb)};
    const Exposure next = nextExposure(control(longestUs), exposure, level);
    const bool shutterMoved = move(SHUTTER, next.shutterUs / kUsPerMs);
    const bool gainMoved = move(GAIN, next.gainDb);
    if (shutterMoved || gainMoved) {
        return true;
    }
    properties_.endPush(SHUTTER);
    properties_.endPush(GAIN);
    return false;
}

bool AutoFunctions::move(PropertyType type, double value)
{
    if (!properties_.automatic(type)) {
        return false;
    }
    const float before = properties_.value(type).absValue;
    properties_.steer(type, static_cast<float>(value));
    return properties_.value(type).absValue != before;
}

ExposureControl AutoFunctions::control(double longestUs) const
{
    ExposureControl control;
    control.shutter = properties_.automatic(SHUTTER);
    control.gain = properties_.automatic(GAIN);
    const Span shutterMs = limitsOf(kShutterLimits, properties_, registers_);
    control.shutterUs.min = std::max(shutterMs.min * kUsPerMs, kShortestUs);
    control.shutterUs.max =
        std::max(std::min(shutterMs.max * kUsPerMs, longestUs), control.shutterUs.min);
    control.gainDb = limitsOf(kGainLimits, properties_, registers_);
    control.target = targetLevel(targetEv());
    return control;
}

double AutoFunctions::targetEv() const
{
    return properties_.manual(AUTO_EXPOSURE)
               ? static_cast<double>(properties_.value(AUTO_EXPOSURE).absValue)
               : 0.0;
}

} // namespace fcsim
