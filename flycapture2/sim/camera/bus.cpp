// The simulated bus of this process: the cameras on it, and what is wrong with its description.
#include "camera/bus.h"

#include "base/sim_clock.h"
#include "control/sim_control.h"
#include "description/bus_parser.h"
#include "description/default_bus.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <iterator>

namespace fcsim {

namespace {

constexpr const char* kEnvironment = "FLYCAPTURE2_SIM_BUS";

bool sameGuid(const FlyCapture2::PGRGuid& a, const FlyCapture2::PGRGuid& b)
{
    return std::equal(std::begin(a.value), std::end(a.value), std::begin(b.value));
}

} // namespace

Bus::Bus()
{
    loadFromEnvironment();
}

Bus& Bus::instance()
{
    // Never destroyed: images and cameras with static storage may still let go of frames later.
    static auto* const bus = new Bus;
    return *bus;
}

void Bus::loadFromEnvironment()
{
    devices_.clear();
    restartCameraClocks();
    const char* file = std::getenv(kEnvironment);
    ParsedBus parsed = file == nullptr || *file == '\0' ? parseBus(kDefaultBus, "built-in bus")
                                                        : parseBusFile(file);
    problem_ = parsed.problem;
    if (!problem_.empty()) {
        std::fprintf(stderr, "libflycapture (simulated): %s\n", problem_.c_str());
        return;
    }
    replace(parsed.bus);
}

void Bus::replace(const BusDescription& description)
{
    problem_.clear();
    devices_.clear();
    restartCameraClocks();
    for (const CameraDescription& camera : description.cameras) {
        const auto index = static_cast<unsigned>(devices_.size());
        devices_.push_back(std::make_unique<Device>(camera, index));
        for (const Fault& fault : camera.callFaults) {
            addFault(fault);
        }
    }
}

std::string Bus::problem()
{
    const std::lock_guard lock(mutex_);
    return problem_;
}

std::vector<Device*> Bus::attached()
{
    const std::lock_guard lock(mutex_);
    std::vector<Device*> found;
    for (const auto& device : devices_) {
        if (device->attachedByNow()) {
            found.push_back(device.get());
        }
    }
    return found;
}

Device* Bus::find(const FlyCapture2::PGRGuid& guid)
{
    for (Device* device : attached()) {
        if (sameGuid(device->guid(), guid)) {
            return device;
        }
    }
    return nullptr;
}

Device* Bus::find(unsigned serial)
{
    Device* device = known(serial);
    return device != nullptr && device->attachedByNow() ? device : nullptr;
}

Device* Bus::known(unsigned serial)
{
    const std::lock_guard lock(mutex_);
    for (const auto& device : devices_) {
        if (device->description().serial == serial) {
            return device.get();
        }
    }
    return nullptr;
}

void Bus::reload()
{
    const std::lock_guard lock(mutex_);
    loadFromEnvironment();
}

std::string Bus::load(std::string_view toml, std::string_view name)
{
    const ParsedBus parsed = parseBus(toml, name);
    if (parsed.problem.empty()) {
        const std::lock_guard lock(mutex_);
        replace(parsed.bus);
    }
    return parsed.problem;
}

} // namespace fcsim
