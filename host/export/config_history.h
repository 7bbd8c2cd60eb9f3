// Which configuration made a frame: the configurations of a grab by number, and when each one is
// in force for certain.
#ifndef KXHOST_CONFIG_HISTORY_H
#define KXHOST_CONFIG_HISTORY_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace kxhost {

/// How a configuration came into force.
enum class ChangeKind : std::uint8_t {
    kStart,    ///< the first one
    kLive,     ///< a changed file was followed
    kReload,   ///< a reload was asked for
    kFallBack, ///< the camera refused a reload: the one before is back
    kAgain,    ///< the same one, applied anew to a camera that came back
};

/// The word for it in metadata and summary, "live".
const char* changeKindWord(ChangeKind kind);

/// A key and its value as a configuration file says it; empty = the key is not set any more.
using KeyValue = std::pair<std::string, std::string>;

/// One configuration that was applied.
struct ConfigurationChange {
    std::uint32_t number = 1; ///< 1, 2, 3...
    ChangeKind kind = ChangeKind::kStart;
    std::uint64_t atUs = 0;        ///< when the plug-in began to apply it, us since 1970
    std::vector<KeyValue> changed; ///< of the first one all keys that are set
};
using ConfigurationChangePtr = std::shared_ptr<const ConfigurationChange>;

/// The value of a key that is in force, and the number of the configuration that set it last.
struct KeyInForce {
    std::string value;
    std::uint32_t number = 1;

    bool operator==(const KeyInForce&) const = default;
};
using KeysInForce = std::map<std::string, KeyInForce>;

/// What a frame's time says about the configuration that made it.
struct FrameMoment {
    std::uint64_t startUs = 0;    ///< of the exposure as the time stamp says it, us since 1970
    std::uint64_t exposureUs = 0; ///< as the camera has it now
    std::uint64_t periodUs = 0;   ///< 0 = not known
};

/// The configuration of a frame.
struct ConfigurationMark {
    std::uint32_t number = 1; ///< the latest that was in force for certain when it was exposed
    std::uint32_t newest = 1; ///< greater: the frame may have been made by one up to this
};

/// A change of a running capture is written to the camera between two frames, while others are
/// exposed or on their way. A frame carries its number when it was exposed behind that, which is
/// taken for certain
/// - when its time stamp lies behind the arrival of the first frame after the change, by the
///   longest exposure and two periods. A time stamp is made of the arrival before, so it can be
///   late by the growth of the exposure, by as long as a frame waited for the grab (the driver
///   keeps the newest one, for less than a period), and by the jitter of the delivery; or
/// - when it is the 17th frame after the change, since no camera has so many on their way. This
///   counts only where time stamps make no sense.
/// Frames of a capture that began after a change have it all.
///
/// Grab thread only. Allocates with changes, not with frames.
class ConfigHistory {
public:
    static constexpr unsigned kMostOnTheWay = 16;
    static constexpr std::size_t kMostListed = 256; ///< changes, the latest

    ConfigHistory();

    /// The configuration that the grab starts with.
    void start(std::vector<KeyValue> given, std::uint64_t atUs);
    /// The plug-in begins to apply another one.
    void taken(ChangeKind kind, std::vector<KeyValue> changed, std::uint64_t atUs);
    /// A retrieval ended, so whatever was taken before has been written to the camera.
    void retrievalEnded(std::uint64_t nowUs);
    /// The camera was configured as a whole and starts.
    void captureStarted();
    /// The mark of a frame that is exported.
    ConfigurationMark mark(const FrameMoment& frame);
    /// The changes since the last call, which belong into the record of the frame at hand. Empty
    /// for nearly all frames.
    std::vector<ConfigurationChangePtr> takeNews();

    std::uint32_t newest() const { return newest_; }
    /// The latest changes, by number.
    const std::vector<ConfigurationChangePtr>& changes() const { return changes_; }
    /// All keys that are set, whether the change that did it is still listed or not.
    const KeysInForce& keysInForce() const { return keys_; }

private:
    /// A change that not all frames show.
    struct Pending {
        std::uint32_t number = 0;
        std::uint64_t writtenUs = 0;  ///< it was written by then; 0 = not yet
        std::uint64_t exposureUs = 0; ///< before it
        unsigned frames = 0;          ///< marked since
    };

    void putInForce(const ConfigurationChange& change);
    static bool isCertain(const Pending& pending, const FrameMoment& frame);

    std::vector<ConfigurationChangePtr> changes_;
    std::vector<ConfigurationChangePtr> news_;
    KeysInForce keys_;
    std::vector<Pending> pending_; ///< by number
    std::uint32_t newest_ = 0;
    std::uint32_t inForce_ = 0;    ///< for certain
    std::uint64_t exposureUs_ = 0; ///< of the frame marked last
};

} // namespace kxhost

#endif
