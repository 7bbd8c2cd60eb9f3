// The strobes of a camera: one record for each GPIO pin, and what they do to a line.
#include "pins/gpio_strobe.h"

#include "base/sdk_error.h"

#include <algorithm>
#include <string>

namespace fcsim {

using FlyCapture2::Error;

namespace {

constexpr float kLongestMs = 64.0F;
constexpr double kUsPerMs = 1000;

} // namespace

StrobeSpan strobeSpan(const StrobeSetting& strobe, double exposureUs)
{
    const double lengthUs = strobe.durationUs > 0 ? strobe.durationUs : exposureUs;
    return {strobe.delayUs, strobe.delayUs + lengthUs};
}

FlyCapture2::StrobeInfo StrobeUnit::info(unsigned source) const
{
    FlyCapture2::StrobeInfo info;
    info.source = source;
    if (source < records_.size()) {
        info.present = true;
        info.onOffSupported = true;
        info.polaritySupported = true;
        info.readOutSupported = true;
        info.maxValue = kLongestMs;
    }
    return info;
}

Error StrobeUnit::check(unsigned source) const
{
    if (source < records_.size()) {
        return success();
    }
    return makeError(FlyCapture2::PGRERROR_STROBE_FAILED,
                     "there is no strobe source " + std::to_string(source));
}

Error StrobeUnit::get(FlyCapture2::StrobeControl& control) const
{
    Error error = check(control.source);
    if (error == FlyCapture2::PGRERROR_OK) {
        const unsigned source = control.source;
        control = records_[source];
        control.source = source;
    }
    return error;
}

Error StrobeUnit::set(const FlyCapture2::StrobeControl& control)
{
    Error error = check(control.source);
    if (error == FlyCapture2::PGRERROR_OK) {
        FlyCapture2::StrobeControl& record = records_[control.source];
        record = control;
        record.delay = std::clamp(control.delay, 0.0F, kLongestMs);
        record.duration = std::clamp(control.duration, 0.0F, kLongestMs);
    }
    return error;
}

StrobeSetting StrobeUnit::setting(unsigned pin) const
{
    const FlyCapture2::StrobeControl& record = records_[pin];
    return {record.onOff, record.polarity != 0, kUsPerMs * static_cast<double>(record.delay),
            kUsPerMs * static_cast<double>(record.duration)};
}

} // namespace fcsim
