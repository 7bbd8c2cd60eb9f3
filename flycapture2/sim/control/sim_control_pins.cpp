// In-process control of the simulated cameras: GPIO pins, I/O boxes, strobes.
#include "camera/bus.h"
#include "control/sim_control.h"

#include <mutex>
#include <utility>

namespace fcsim {

namespace {

/// Calls `work` with the camera of that serial number, its mutex held; `Result()` when there is
/// none.
template <class Result, class Work>
Result onCamera(unsigned serial, const Work& work)
{
    Device* device = Bus::instance().known(serial);
    if (device == nullptr) {
        return Result();
    }
    const std::lock_guard lock(device->mutex());
    return work(*device);
}

} // namespace

std::vector<LineTransition> takeTransitions(unsigned serial, unsigned pin)
{
    return onCamera<std::vector<LineTransition>>(
        serial, [&](Device& device) { return device.gpio().takeTransitions(pin); });
}

void drivePin(unsigned serial, unsigned pin, bool level)
{
    drivePin(serial, pin, std::vector<LineTransition>{{0, level}});
}

void drivePin(unsigned serial, unsigned pin, std::vector<LineTransition> plan)
{
    onCamera<void>(serial, [&](Device& device) { device.gpio().drive(pin, std::move(plan)); });
}

void releasePin(unsigned serial, unsigned pin)
{
    drivePin(serial, pin, std::vector<LineTransition>());
}

std::vector<IoBoxEntry> takeBoxLog(unsigned serial, unsigned box)
{
    return onCamera<std::vector<IoBoxEntry>>(
        serial, [&](Device& device) { return device.gpio().takeBoxLog(box, nowUs()); });
}

std::vector<StrobePulse> takeStrobePulses(unsigned serial)
{
    Device* device = Bus::instance().known(serial);
    if (device == nullptr) {
        return {};
    }
    device->capture().catchUp();
    const std::lock_guard lock(device->mutex());
    return device->capture().takeStrobePulses();
}

} // namespace fcsim
