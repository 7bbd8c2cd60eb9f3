// The recording host: answers the plug-in's host services from settable values and writes every
// call into the journal.
#ifndef KX_TEST_RECORDING_HOST_H
#define KX_TEST_RECORDING_HOST_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kxtest {

inline constexpr std::uint32_t kKeep = 0xFFFFFFFF;

/// One line of the I/O box.
struct IoboxEntry {
    std::int32_t pin = 0;
    std::int32_t mode = 0;
    std::int32_t inv = 0;
    std::int32_t src = 0;
    std::array<std::int32_t, 2> par = {-1, -1};
};

/// What the configuration getters answer. The defaults keep everything as the camera has it.
struct HostConfig {
    std::optional<std::string> model = "";
    std::optional<std::string> id;
    std::uint32_t activeCamMask = 0;
    std::uint32_t datachunk = 0;
    std::uint32_t bnum = 4;
    std::uint32_t fnum = 0;
    std::uint32_t width = kKeep;
    std::uint32_t height = kKeep;
    std::uint32_t offsetX = kKeep;
    std::uint32_t offsetY = kKeep;
    std::uint8_t format = 1;
    std::uint8_t cformat = 0;
    float fps = -1;
    float gainMan = -100;
    float exptMan = -1;
    float gamma = -1;
    std::int32_t satur = -1;
    std::int32_t wbred = -1;
    std::int32_t wbblu = -1;
    std::int32_t rotate = 0;
    float atbright = -1;
    float gainlimsLow = -100;
    float gainlimsHigh = -100;
    float etlimsLow = -1;
    float etlimsHigh = -1;
    std::int32_t sweepProf = 0;
    std::int32_t sweepGainMod = 0;
    std::int32_t sweepEtimeMod = 0;
    std::int32_t sweepLutMod = 0;
    std::int32_t tsadjns = 0;
    std::uint16_t lutBits = 0;
    std::vector<std::uint16_t> lut; ///< empty = no table
    std::vector<IoboxEntry> iobox;
};

/// The values that were published when a frame was exported. A parameter that was never published
/// is absent.
struct Export {
    std::uint64_t timestampUs = 0;
    std::map<int, double> numbers; ///< by parameter id; 64-bit times are exact up to 2^53
    std::map<int, std::string> texts;
};

/// A frame that was handed over.
struct HandedOver {
    int instance = 0;
    std::uint64_t timestampUs = 0;
    const void* frame = nullptr;
    int store = 0;
};

class RecordingHost {
public:
    HostConfig config;

    // ---- Frame memory.

    bool factoryUsed = true;  ///< may the camera fill the pool's buffers directly?
    std::size_t slotStep = 0; ///< distance between slots; 0 = the frame size
    std::function<void*(std::uint32_t)> bufPtr; ///< replaces the pool's own slots

    // ---- Answers. Without one: accepted, nothing pending, nothing changed.

    std::function<int(int instance)> trigger;
    std::function<int()> checkSignal;
    std::function<int(int* restart)> doReconfig;
    std::function<int()> checkDynConfig;
    /// Fills the distribution of a frame, and the table that follows from one.
    std::function<void(const void* pixels, std::uint32_t bitsPerPixel, std::uint32_t* cdf)> calcLut;
    std::function<void(std::uint32_t outputBits, const std::uint32_t* cdf, std::uint16_t* lut)>
        getLut;
    /// Called for each host call but the getters, after it was recorded: lets it take time or
    /// throw.
    std::function<void(std::string_view name)> onCall;

    // ---- What came in.

    std::map<int, const void*> published;     ///< the newest pointer of each parameter
    std::map<int, const void*> publishedInst; ///< the same of instance 0 or 1: 100 * instance + id
    std::vector<Export> exports;
    std::vector<HandedOver> frames;

    /// Back to the defaults.
    void reset() { *this = RecordingHost(); }

    // ---- For the services themselves.

    void initPool(std::uint32_t count);
    void setPoolFrameSize(std::uint32_t bytes);
    void* slot(std::uint32_t index);
    void exportValues(std::uint64_t timestampUs);

private:
    std::uint32_t poolCount_ = 0;
    std::size_t poolStep_ = 0;
    std::shared_ptr<std::byte[]> pool_;
};

/// The host of this process.
RecordingHost& host();

} // namespace kxtest

#endif
