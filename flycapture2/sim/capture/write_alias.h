// Other mappings of user buffers, through which the simulation writes instead.
#ifndef FCSIM_WRITE_ALIAS_H
#define FCSIM_WRITE_ALIAS_H

#include <cstdint>

namespace fcsim {

/// Where to write what shall appear at `seen` (see `aliasWrites`). Thread-safe.
std::uint8_t* writableAddress(std::uint8_t* seen);

} // namespace fcsim

#endif
