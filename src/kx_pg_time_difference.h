// The time between two moments, as the host works it out.
#ifndef KX_PG_TIME_DIFFERENCE_H
#define KX_PG_TIME_DIFFERENCE_H

#include "kx_host.h"

#include <cstdint>

#include <sys/time.h>

namespace KxPGrey {

/// From `earlier` to `later`; no time at all when the host gives none. Any thread.
inline timeval timeDifference(const timeval& later, const timeval& earlier)
{
    const timeval* const difference = KxUtl__TimeValDiff(&later, &earlier);
    return difference == nullptr ? timeval{} : *difference;
}

/// Its microseconds; whole seconds do not count.
inline std::uint32_t differenceUs(const timeval& later, const timeval& earlier)
{
    return static_cast<std::uint32_t>(timeDifference(later, earlier).tv_usec);
}

} // namespace KxPGrey

#endif
