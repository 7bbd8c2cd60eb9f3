// In-process control of the simulated cameras: bus, registers, truth.
#include "control/sim_control.h"

#include "base/sim_clock.h"
#include "camera/bus.h"

#include <mutex>

namespace fcsim {

void reset()
{
    clearFaults();
    recordCalls(false);
    aliasWrites(nullptr, nullptr, 0);
    useHostClock();
    Bus::instance().reload();
}

std::string loadBus(std::string_view toml, std::string_view name)
{
    return Bus::instance().load(toml, name);
}

void setAttached(unsigned serial, bool attached)
{
    if (Device* device = Bus::instance().known(serial)) {
        const std::lock_guard lock(device->mutex());
        if (attached) {
            device->plugIn();
        } else {
            device->unplug({});
        }
    }
}

std::uint32_t peekRegister(unsigned serial, std::uint32_t address)
{
    Device* device = Bus::instance().known(serial);
    if (device == nullptr) {
        return 0;
    }
    const std::lock_guard lock(device->mutex());
    return device->peekRegister(address);
}

void pokeRegister(unsigned serial, std::uint32_t address, std::uint32_t value)
{
    if (Device* device = Bus::instance().known(serial)) {
        const std::lock_guard lock(device->mutex());
        device->pinRegister(address, value);
    }
}

std::vector<FrameTruth> takeTruth(unsigned serial)
{
    Device* device = Bus::instance().known(serial);
    if (device == nullptr) {
        return {};
    }
    const std::lock_guard lock(device->mutex());
    return device->capture().takeTruth();
}

} // namespace fcsim

int fcsimBusUsable()
{
    return fcsim::Bus::instance().problem().empty() ? 1 : 0;
}
