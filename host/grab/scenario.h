// The scenario parameters that the plug-in has published.
#ifndef KXHOST_SCENARIO_H
#define KXHOST_SCENARIO_H

#include "export/export_frame.h"

#include <array>
#include <cstdint>
#include <optional>

#include <kx_scenario.h>

namespace kxhost {

/// Keeps the published pointers and reads through them when asked. Grab thread only.
class Scenario {
public:
    /// Publishes a value for all frames, or for those of one memory instance; unknown numbers are
    /// ignored. The pointer is kept.
    void publish(int id, const void* value);
    void publishFor(Instance instance, int id, const void* value);
    /// Forgets what was published for single instances.
    void forgetInstances();

    /// All values as they are now.
    ScenarioValues read() const;
    /// The camera's number of the frame as it is now.
    std::optional<std::uint32_t> frameCounter() const;
    /// Geometry and codec of a frame of this instance; the codec is empty when none is published.
    FrameInfo frame(Instance instance) const;

private:
    using Pointers = std::array<const void*, kKxScRxBits + 1>;

    Pointers values_{};
    std::array<Pointers, 2> instances_{};
};

} // namespace kxhost

#endif
