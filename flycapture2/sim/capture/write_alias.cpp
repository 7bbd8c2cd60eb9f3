// Other mappings of user buffers, through which the simulation writes instead.
#include "capture/write_alias.h"

#include "control/sim_control.h"

#include <mutex>

namespace fcsim {

namespace {

std::mutex mutex;
const std::uint8_t* seenFrom = nullptr;
std::uint8_t* writableFrom = nullptr;
std::size_t length = 0;

} // namespace

void aliasWrites(const void* seen, void* writable, std::size_t bytes)
{
    const std::lock_guard lock(mutex);
    seenFrom = static_cast<const std::uint8_t*>(seen);
    writableFrom = static_cast<std::uint8_t*>(writable);
    length = bytes;
}

std::uint8_t* writableAddress(std::uint8_t* seen)
{
    const std::lock_guard lock(mutex);
    const bool inside = length > 0 && seen >= seenFrom && seen < seenFrom + length;
    return inside ? writableFrom + (seen - seenFrom) : seen;
}

} // namespace fcsim
