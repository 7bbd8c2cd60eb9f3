// Capture on one camera: which frames arrive, and what the automatic functions make of them.
#include "base/sim_clock.h"
#include "camera/device.h"
#include "capture/capture.h"

#include <algorithm>
#include <limits>

namespace fcsim {

namespace {

/// Frames that the automatic functions see after a time in which nobody asked the camera for
/// anything. They are through with their work long before.
constexpr unsigned kMostMetered = 64;

} // namespace

bool Capture::paced() const
{
    return device_.description().delivery.paced;
}

void Capture::settingsChanged()
{
    if (running_) {
        const std::uint64_t after = paced() ? schedule_.firstAfter(Device::hostTime()) : 0;
        schedule_.change(std::max(next_, after), device_.frameSettings());
    }
}

void Capture::catchUp()
{
    const std::unique_lock turn(retrieving_, std::try_to_lock);
    if (turn.owns_lock()) {
        Lock lock(device_.mutex());
        if (running_) {
            follow(lock, Device::hostTime());
        }
    }
}

bool Capture::follow(Lock& lock, double nowUs)
{
    if (!paced()) {
        nowUs = -std::numeric_limits<double>::infinity(); // frames come when they are asked for
    }
    unsigned seen = 0;
    while (!stalled_ && schedule_.times(metered_).exposureEndUs <= nowUs) {
        if (seen++ < kMostMetered && !meter(lock, metered_)) {
            return false;
        }
        ++metered_;
    }
    admitArrived(nowUs);
    if (!meterBefore(lock, next_)) {
        return false;
    }
    schedule_.forget(std::min(next_, metered_));
    return true;
}

bool Capture::meterBefore(Lock& lock, std::uint64_t number)
{
    for (; metered_ < number; ++metered_) {
        if (!meter(lock, metered_)) {
            return false;
        }
    }
    return true;
}

bool Capture::meter(Lock& lock, std::uint64_t number)
{
    if (!device_.metering()) {
        return true;
    }
    const FrameSettings settings = schedule_.frame(number).settings;
    const FrameRequest request = requestFor(number, settings.state);
    lock.unlock();
    const double level = meanLevel(request);
    lock.lock();
    if (!running_ || !device_.attached()) {
        return false;
    }
    if (device_.metered(settings, level)) {
        schedule_.change(number + 1, device_.frameSettings());
    }
    return true;
}

const FrameFault* Capture::faultOf(std::uint64_t number, FrameFaultKind kind) const
{
    for (const FrameFault& fault : device_.description().faults) {
        if (fault.kind == kind && number >= fault.frame && number - fault.frame < fault.count &&
            !isSpent(fault)) {
            return &fault;
        }
    }
    return nullptr;
}

bool Capture::isSpent(const FrameFault& fault) const
{
    const auto done = detaches_.find(&fault);
    return fault.times != 0 && done != detaches_.end() && done->second >= fault.times;
}

void Capture::strobe(std::uint64_t number)
{
    const FrameSettings& settings = schedule_.settings(number);
    const double exposureStartUs = schedule_.times(number).startUs;
    for (unsigned pin = 0; pin < settings.strobes.size(); ++pin) {
        const StrobeSetting& strobe = settings.strobes[pin];
        if (strobe.on) {
            const StrobeSpan span = strobeSpan(strobe, settings.exposureUs);
            pulses_.add({number, pin, wallTime(exposureStartUs),
                         wallTime(exposureStartUs + span.startUs),
                         wallTime(exposureStartUs + span.endUs), strobe.activeHigh});
        }
    }
}

bool Capture::admit(std::uint64_t number)
{
    strobe(number);
    if (const FrameFault* fault = faultOf(number, FrameFaultKind::clockStep)) {
        device_.stepClock(fault->amount);
    }
    if (faultOf(number, FrameFaultKind::stall) != nullptr) {
        stalled_ = true;
        return false;
    }
    if (faultOf(number, FrameFaultKind::lose) != nullptr) {
        ++losses_.dropped;
        ++losses_.transmission;
        return false;
    }
    return true;
}

void Capture::hold(std::uint64_t number)
{
    const bool dropsOld = config_.grabMode == FlyCapture2::DROP_FRAMES;
    const std::size_t capacity = dropsOld ? 1 : slots_->count();
    if (held_.size() < capacity) {
        held_.push_back(schedule_.frame(number));
        return;
    }
    ++losses_.dropped;
    ++losses_.driver;
    if (dropsOld) {
        held_.back() = schedule_.frame(number);
    }
}

void Capture::admitArrived(double nowUs)
{
    while (!stalled_ && schedule_.times(next_).arrivalUs <= nowUs) {
        const std::uint64_t number = next_++;
        if (admit(number)) {
            hold(number);
        }
    }
}

bool Capture::findNext(Lock& lock, double deadlineUs, std::optional<ScheduledFrame>& next)
{
    if (!held_.empty()) {
        next = std::move(held_.front());
        held_.erase(held_.begin());
        return true;
    }
    while (!stalled_) {
        if (!meterBefore(lock, next_)) {
            return false;
        }
        if (paced() && schedule_.times(next_).arrivalUs > deadlineUs) {
            return true;
        }
        const std::uint64_t number = next_++;
        if (admit(number)) {
            next = schedule_.frame(number);
            return true;
        }
    }
    return true;
}

} // namespace fcsim
