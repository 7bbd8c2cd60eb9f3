// The ledger of frames: every value of the camera's counter is delivered or has a cause.
//
// Pure bookkeeping: it is told what happened and knows neither camera, clock, thread nor file.
//
// What it rests on: the camera numbers the frames that it exposes, and each frame that arrives may
// carry its number. Values between two arrived frames belong to frames that never came to the host.
// Nothing is said of values before the first frame of a count, of those behind the last one, or of
// frames of a camera that does not number them: nobody knows.
#ifndef KXHOST_FRAME_LEDGER_H
#define KXHOST_FRAME_LEDGER_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

namespace kxhost {

/// Why a frame is not among those delivered.
enum class FrameCause : std::uint8_t {
    kTiming,          ///< arrived, but only started the timing: the first of each capture
    kCameraSkipped,   ///< never arrived: skipped by the camera or lost on the bus
    kRetrievalFailed, ///< never arrived, and the plug-in reported a failed retrieval meanwhile
    kNoBuffer,        ///< no memory to keep it, or it came while the grab waited for a place
    kQueueFull,       ///< arrived and was refused: every place of the export queue was taken
    kUnusable,        ///< arrived without pixels that anybody could read
    kUnfinished,      ///< arrived, but the plug-in ended before it handed the frame over
    kExportFailed,    ///< arrived, but could not be written, or the export had failed before
    kStopped,         ///< between two captures, the host having ended the first one
    kDetached,        ///< between two captures, the camera having been lost
};
inline constexpr std::size_t kFrameCauses = 10;

/// The word for a cause in summaries and metadata, "camera_skipped".
const char* causeWord(FrameCause cause);

/// How many frames each cause took.
class CauseCounts {
public:
    std::uint64_t& operator[](FrameCause cause) { return counts_[static_cast<std::size_t>(cause)]; }
    std::uint64_t operator[](FrameCause cause) const
    {
        return counts_[static_cast<std::size_t>(cause)];
    }
    std::uint64_t sum() const;
    CauseCounts& operator+=(const CauseCounts& other);
    /// Modulo 2^64, as differences that may be negative need it.
    CauseCounts& operator-=(const CauseCounts& other);
    bool operator==(const CauseCounts&) const = default;

private:
    std::array<std::uint64_t, kFrameCauses> counts_{};
};

/// Why a count of the camera's counter begins.
enum class CountBegin : std::uint8_t {
    kStart,    ///< first frame of all
    kRestart,  ///< the capture began anew, and the counter with it
    kDetached, ///< the same after the camera had been lost
    kReset,    ///< the counter began anew in the middle of a capture
};

/// The word for it in summaries, "start".
const char* countBeginWord(CountBegin begin);

/// A stretch over which the camera counted on. Values are continued beyond 32 bits: the camera
/// shows them modulo 2^32.
struct CountStretch {
    CountBegin begin = CountBegin::kStart;
    std::uint64_t first = 0;
    std::uint64_t last = 0;
};

/// Values that were not delivered, one behind the other. When more than one cause took part, or
/// frames without a number of their own lie among them (then `counts` adds up to less than the
/// values), it is not known which value is which.
struct LostRange {
    std::uint64_t stretch = 1; ///< which stretch, from 1
    std::uint64_t first = 0;
    std::uint64_t last = 0;
    CauseCounts counts;
};

/// What the record of a delivered frame says of the ledger.
struct LedgerMark {
    std::uint64_t stretch = 0; ///< in which the camera numbered it, from 1; 0 = it did not
    CauseCounts lostBefore;    ///< booked since the record before; modulo 2^64, as what proves
                               ///< wrong is taken back
};

/// `values` + `offCounter` = `delivered` + the sum of `causes`, always.
struct LedgerTotals {
    bool counted = false;         ///< the camera has numbered a frame
    std::uint64_t values = 0;     ///< of the counter, from first to last, all stretches together
    std::uint64_t offCounter = 0; ///< arrived frames that no value stands for
    std::uint64_t standIns = 0;   ///< arrived frames with no number or a wrong one, of which it
                                  ///< showed later that they fill a value
    std::uint64_t arrived = 0;
    std::uint64_t delivered = 0;
    CauseCounts causes;
    std::uint64_t failedRetrievals = 0; ///< reported
    std::uint64_t rangesNotListed = 0;
    std::uint64_t stretchesNotListed = 0;

    /// Failed retrievals that no value matches. They concern no frame that is known of: most are
    /// waits in vain, for a slow or triggered camera or one that is gone.
    std::uint64_t failedWithoutFrame() const
    {
        return failedRetrievals - causes[FrameCause::kRetrievalFailed];
    }
    /// Those of them that stand for lost frames: all when frames come without numbers, since then
    /// nothing else tells of a loss; else none.
    std::uint64_t failedTakenForLost() const
    {
        return counted || arrived == 0 ? 0 : failedWithoutFrame();
    }
    /// Frames lost before the host had a chance.
    std::uint64_t lostByCamera() const;
    /// Frames that somebody may miss: all causes but those of the host's own doing (the frame that
    /// starts the timing, those between two captures), and `failedTakenForLost`.
    std::uint64_t lost() const;
    /// What is wrong with the balance above; 0 = nothing.
    std::int64_t imbalance() const
    {
        return static_cast<std::int64_t>(values + offCounter - delivered - causes.sum());
    }
};

/// Not thread-safe. Allocates in its constructor only.
///
/// A capture is the time from one start of the camera to its end. The counter may go on behind a
/// gap between two captures, or begin anew: it is taken to go on when its first value is beyond
/// the last one and not one of those with which a new count begins (the first 16), since then the
/// values between are known to be gone. Otherwise a new stretch begins, and how many frames fell
/// between the two is not known.
///
/// A value that is not ahead of the one before:
/// - Behind a forward jump it may prove the jump wrong: what the jump had booked is taken back.
/// - Twice in a row, counting on, it shows that the counter began anew.
/// - Otherwise the frame has no value of its own (it is off the counter), but may turn out to be
///   what a later gap lacks.
class FrameLedger {
public:
    static constexpr std::size_t kMostRanges = 256;   ///< listed; later ones are counted only
    static constexpr std::size_t kMostStretches = 64; ///< listed, the latest

    FrameLedger();

    /// A capture begins. Call it for the first one, after a restart, and when a lost camera is
    /// back.
    void captureStarted();
    /// The camera is gone. What lies between its last frame and the first one of the next capture
    /// has the cause kDetached instead of kStopped. May be called again.
    void cameraLost();
    /// The plug-in reported that it could not retrieve a frame. It may have been a wait in vain.
    void retrievalFailed();
    /// The grab waited for a place so long that this many frames may have come meanwhile, of which
    /// the camera's driver keeps the newest only.
    void heldUp(std::uint64_t frames);
    /// A frame arrived and was handed to the writers. `counter`: the camera's number of it; empty =
    /// it carries none.
    void delivered(std::optional<std::uint32_t> counter);
    /// A frame arrived and went no further.
    void lost(std::optional<std::uint32_t> counter, FrameCause cause);
    /// A frame that was delivered could not be written after all.
    void notWritten(std::optional<std::uint32_t> counter);

    LedgerTotals totals() const;
    /// The stretch that is counted, from 1; 0 = the camera has not numbered a frame.
    std::uint64_t stretch() const { return closedStretches_ + stretches_.size(); }
    /// In the order in which they were found.
    const std::vector<LostRange>& ranges() const { return ranges_; }
    const std::vector<CountStretch>& stretches() const { return stretches_; }

private:
    /// A frame whose number is not ahead of the one before.
    struct Back {
        std::uint32_t counter = 0;
        std::optional<FrameCause> cause;
        std::uint64_t failedThen = 0; ///< `failedSince_`
        std::uint64_t heldThen = 0;   ///< `heldSince_`
    };

    /// The last step over a gap, which may still prove wrong.
    struct Jump {
        std::uint64_t before = 0;    ///< value ahead of the gap
        std::uint64_t frames = 0;    ///< numbered since, the one behind the gap included
        std::uint64_t standIns = 0;  ///< frames off the counter that were put into the gap
        CauseCounts booked;          ///< for the gap
        std::size_t rangesThen = 0;  ///< listed before
        std::uint64_t notListed = 0; ///< not listed before
    };

    void arrived(std::optional<std::uint32_t> counter, std::optional<FrameCause> cause);
    /// Returns the frame's value, when it has one.
    std::optional<std::uint64_t> place(std::uint32_t counter);
    std::uint64_t placeFirst(std::uint32_t counter);
    std::uint64_t beginStretch(CountBegin begin, std::uint32_t counter);
    std::uint64_t stepTo(std::uint32_t counter);
    std::uint64_t startAgainAt(const Back& first, std::uint32_t counter);
    void bookGap(std::uint64_t gap);
    bool provesJumpWrong(std::uint32_t counter) const;
    void takeJumpBack();
    void listFrame(std::uint64_t stretch, std::uint64_t value, FrameCause cause);
    void list(const LostRange& range);
    std::optional<std::pair<std::uint64_t, std::uint64_t>> find(std::uint32_t counter) const;
    CountStretch& open() { return stretches_.back(); }
    const CountStretch& open() const { return stretches_.back(); }

    LedgerTotals totals_; ///< without `values`
    std::vector<LostRange> ranges_;
    std::vector<CountStretch> stretches_; ///< the last one is open
    std::uint64_t closedValues_ = 0;      ///< of stretches that are not listed any more
    std::uint64_t closedStretches_ = 0;   ///< how many these are

    bool captureIsNew_ = true; ///< none of its frames was numbered yet
    bool cameraWasLost_ = false;
    std::uint64_t failedSince_ = 0; ///< failed retrievals since the last numbered frame
    std::uint64_t heldSince_ = 0;   ///< frames that may have been missed by waiting, likewise
    std::uint64_t straysSince_ = 0; ///< frames off the counter in this stretch, likewise
    std::optional<Back> back_;      ///< the last frame, when it was not ahead
    std::optional<Jump> jump_;
};

} // namespace kxhost

#endif
