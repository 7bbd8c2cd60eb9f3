// How the operations of an image pass the gate of the simulation's calls.
#ifndef FCSIM_IMAGE_GATE_H
#define FCSIM_IMAGE_GATE_H

#include "base/sdk_error.h"
#include "sdk/call_gate.h"

#include <string>

namespace fcsim {

inline std::string noArguments()
{
    return {};
}

/// Sends an operation of an image through the gate.
template <class Describe, class Work>
FlyCapture2::Error gated(const char* operation, const Describe& describe, const Work& work)
{
    return throughGate(GateCall{"Image", operation}, describe, work);
}

/// Leaves a trace of a call that cannot fail.
inline void note(const char* operation)
{
    if (gateWatches.load(std::memory_order_relaxed)) {
        gated(operation, noArguments, success);
    }
}

} // namespace fcsim

#endif
