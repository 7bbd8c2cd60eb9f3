// Empty host services: nothing but the frame memory, a few settings, and marks of time.
#ifndef KX_BENCH_HOST_H
#define KX_BENCH_HOST_H

#include "usage.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace kxbench {

/// One entry of the I/O box, as the host hands it to the plug-in.
struct Line {
    std::int32_t pin = 0;
    std::int32_t mode = 0;
    std::int32_t source = 0;
    std::int32_t parameter0 = -1;
    std::int32_t parameter1 = -1;
};

/// The camera's parameters as they are configured; as they stand here, the camera keeps its own.
struct Parameters {
    float gainDb = -100;
    float exposureUs = -1;
    float gamma = -1;
    std::int32_t saturation = -1;
    std::int32_t whiteBalance = -1; ///< of red and of blue
    std::int32_t sweepMode = 0;     ///< of gain and exposure
};

/// What the host services answer, and what they saw. Set before a run.
struct Host {
    std::uint32_t frames = 0;       ///< frames to retrieve
    std::uint32_t buffers = 8;      ///< frame buffers
    std::uint32_t measureFrom = 0;  ///< export after which the measurement starts
    std::uint32_t measureUntil = 0; ///< export after which it ends

    Parameters parameters;
    std::vector<Line> lines;

    std::uint32_t exports = 0; ///< so far
    Usage from;                ///< at `measureFrom`
    Usage until;               ///< at `measureUntil`
    double firstFrameUs = 0;   ///< wall time of the first frame's arrival, 0 = none yet
};

/// The one host of the program.
Host& host();

/// Empties what the host saw; `frames` and the measured span as given.
void prepareHost(std::uint32_t measureFrom, std::uint32_t measureUntil);

/// Frame memory as the host services hand it out: `buffers` slots, page-aligned.
unsigned char* frameMemory();
std::size_t slotBytes();

} // namespace kxbench

#endif
