// What the export side knows of one frame: its pixels' layout and the values published with it.
#ifndef KXHOST_EXPORT_FRAME_H
#define KXHOST_EXPORT_FRAME_H

#include "export/config_history.h"
#include "export/frame_ledger.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kxhost {

/// The memory instances a frame can come from, numbered as the plug-in numbers them.
enum class Instance : int {
    kRaw = 0,       ///< pixels as the camera delivered them
    kConverted = 1, ///< pixels in the conversion format
};

/// Layout of the pixels of one picture. Lines follow each other without padding.
struct FrameInfo {
    Instance instance = Instance::kRaw;
    std::uint32_t width = 0;  ///< pixels
    std::uint32_t height = 0; ///< pixels
    std::string codec;        ///< as the plug-in publishes it, e.g. "MONO12PT", "BayerRG8T", "UYVY"
    std::uint64_t timestampUs = 0; ///< start of the exposure on the host's clock, us since 1970
};

/// When the host got a frame, and how long it took to hand it over.
struct FrameTimes {
    std::uint64_t arrivedUs = 0;  ///< us since 1970
    std::uint64_t steadyUs = 0;   ///< the same on a clock that never steps
    std::uint64_t handedUs = 0;   ///< from the arrival to the begin of the hand-over
    std::uint64_t handOverUs = 0; ///< copying it into the queue, the wait for a place included
};

/// The scenario parameters as they stood when a frame was exported; empty = not published.
/// kx_scenario.h says what each one means.
struct ScenarioValues {
    std::optional<std::uint32_t> width;
    std::optional<std::uint32_t> height;
    std::optional<std::string> codec;
    std::optional<float> gainDb;
    std::optional<float> exposureUs;
    std::optional<std::uint32_t> unit;
    std::optional<std::uint64_t> cameraTimeUs;
    std::optional<std::uint32_t> frameCounter;
    std::optional<std::uint64_t> timestampUs;
    /// A word that has come on an I/O line since the frame before, and its bits. The plug-in
    /// publishes 0 bits with the frames that bring none: both are empty then, so that each word
    /// goes with one frame.
    std::optional<std::uint32_t> rxData;
    std::optional<std::uint32_t> rxBits;
    // The host's own.
    std::optional<std::uint32_t> configuration;     ///< number of the one that made the frame
    std::optional<std::uint32_t> configurationNext; ///< or one up to this made it
    std::vector<ConfigurationChangePtr> changes;    ///< since the frame before
    LedgerMark ledger;
    FrameTimes times;
    std::optional<float> awaySeconds; ///< how long the camera was lost before it
};

} // namespace kxhost

#endif
