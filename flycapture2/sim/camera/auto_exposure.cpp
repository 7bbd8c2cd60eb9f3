// How automatic shutter and gain answer to what the metering sees: arithmetic only.
#include "camera/auto_exposure.h"

#include <algorithm>
#include <cmath>

namespace fcsim {

namespace {

constexpr double kLevelAtZeroEv = 0.18;
constexpr double kHighestTarget = 0.9;
/// Less than the smallest step of a 12-bit converter: how dark a black picture is taken to be.
constexpr double kDarkest = 1e-4;
constexpr double kDeadBandEv = 0.05;
constexpr double kDamping = 0.5;
constexpr double kLargestStepEv = 2;
/// Decibels of a factor of two.
constexpr double kDbPerEv = 6.020599913279624;

double clamped(double value, const Span& span)
{
    return std::clamp(value, span.min, span.max);
}

/// Changes the shutter by `ev` as far as it goes; returns what is left.
double moveShutter(const ExposureControl& control, double& shutterUs, double ev)
{
    if (!control.shutter) {
        return ev;
    }
    const double before = shutterUs;
    shutterUs = clamped(before * std::exp2(ev), control.shutterUs);
    return ev - std::log2(shutterUs / before);
}

/// Changes the gain by `ev` as far as it goes; returns what is left.
double moveGain(const ExposureControl& control, double& gainDb, double ev)
{
    if (!control.gain) {
        return ev;
    }
    const double before = gainDb;
    gainDb = clamped(before + ev * kDbPerEv, control.gainDb);
    return ev - (gainDb - before) / kDbPerEv;
}

} // namespace

double targetLevel(double ev)
{
    return std::min(kLevelAtZeroEv * std::exp2(ev), kHighestTarget);
}

Exposure nextExposure(const ExposureControl& control, const Exposure& exposure, double level)
{
    Exposure next = exposure;
    if (control.shutter) {
        next.shutterUs = clamped(next.shutterUs, control.shutterUs);
    }
    if (control.gain) {
        next.gainDb = clamped(next.gainDb, control.gainDb);
    }
    const double missingEv = std::log2(control.target / std::max(level, kDarkest));
    if (std::abs(missingEv) <= kDeadBandEv) {
        return next;
    }
    const double stepEv = std::clamp(kDamping * missingEv, -kLargestStepEv, kLargestStepEv);
    if (stepEv > 0) {
        moveGain(control, next.gainDb, moveShutter(control, next.shutterUs, stepEv));
    } else {
        moveShutter(control, next.shutterUs, moveGain(control, next.gainDb, stepEv));
    }
    return next;
}

} // namespace fcsim
