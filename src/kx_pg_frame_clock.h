// The frame clock: when each frame's exposure started on the host's clock, from arrival times and
// the camera's clock.
//
// Pure arithmetic without camera, host, thread or log: it is given times, keeps the state of one
// grab and says what it found, so that the grab loop can report and act. The 64-bit values are
// unsigned and wrap around.
#ifndef KX_PG_FRAME_CLOCK_H
#define KX_PG_FRAME_CLOCK_H

#include <cstdint>

namespace KxPGrey {

/// What the session's configuration says about time; a reconfiguration may change it between
/// frames.
struct FrameTiming {
    std::uint32_t framePeriodUs = 0; ///< period of the configured rate
    float resultingFps = 0;          ///< the configured rate
    std::uint32_t tsOffsetUs = 0;    ///< fixed offset of every time stamp
    std::int32_t tsAdjNs = 0;    ///< drift of the camera's clock in ns/s; 0 = follow the host only
    std::int32_t exposureUs = 0; ///< exposure time of the current frame
};

/// The two times of a frame, both in microseconds.
struct FrameTimes {
    std::uint64_t nowUs = 0; ///< arrival on the host's clock
    std::uint64_t btsFStartUs =
        0; ///< start of exposure on the camera's clock, which wraps at 128 s
};

class FrameClock {
public:
    /// What the first frame yields.
    struct Start {
        std::uint64_t btsFGotUs = 0; ///< the camera's clock at arrival, 0 = not known
        bool predicted = false;      ///< `frameTs` is the prediction for the next frame
    };
    /// What a frame's arrival yields.
    struct Arrival {
        bool wrapped = false;         ///< the camera's clock started anew
        std::uint64_t oldBtsUs = 0;   ///< the previous frame's camera time
        bool anchored = false;        ///< `frameTs` was set to this frame's own start
        std::uint64_t oldDiffUs = 0;  ///< offset of the clocks before that
        std::uint64_t oldFrameTs = 0; ///< time stamp before that
    };
    /// A pace report: `fired` when it is due, with the numbers that it compared.
    struct Report {
        bool fired = false;
        std::uint64_t delayUs = 0;
        std::uint64_t limitUs = 0;
    };
    /// What the watch over the camera's pace yields.
    struct Pace {
        Report fast;
        Report slow;
        Report extraSlow;
    };
    /// What the prediction of the next frame yields.
    struct Prediction {
        bool overflow = false; ///< the drift correction was too large, the anchor was moved
        std::int32_t adjUs = 0;
    };

    /// A clock for a new grab; the interval estimate starts at `framePeriodUs`.
    explicit FrameClock(std::uint32_t framePeriodUs = 0) : frameInterval(framePeriodUs) {}

    /// First frame: measures the delivery latency. `clockRegister` is the camera's packed clock
    /// read right after the retrieval (0 = not available), `grabStartUs` the lower 32 bits of the
    /// grab's start on the host's clock, `loops` the number of retrievals so far, this one
    /// included.
    Start start(const FrameTiming& timing, const FrameTimes& frame, std::uint32_t clockRegister,
                std::uint32_t grabStartUs, std::uint32_t loops);

    /// Each later frame before its export: camera clock wrap, interval, anchor. `captured` counts
    /// the retrieved frames, this one included.
    Arrival arrive(const FrameTiming& timing, const FrameTimes& frame, std::uint64_t captured);

    /// Each later frame after its export, first the pace watch and then the prediction of the next
    /// frame's time stamp.
    Pace watchPace(const FrameTiming& timing, const FrameTimes& frame);
    Prediction predict(const FrameTiming& timing, const FrameTimes& frame);

    /// The end of every frame's iteration.
    void finish(const FrameTimes& frame) { prevBtsUs = frame.btsFStartUs; }

    std::uint64_t frameTs = 0;     ///< time stamp of the frame to export next
    std::uint64_t tsDiffAdjUs = 0; ///< host time minus camera time
    std::uint64_t refUs = 0;       ///< host time at which that was set; drift grows from here
    std::uint64_t diffCheck = 0;   ///< expected delay between a frame's time stamp and its arrival
    std::uint64_t prevBtsUs = 0;   ///< the previous frame's camera time
    std::int32_t latencyUs = 0;    ///< delivery latency, measured on the first frame
    std::uint32_t frameInterval = 0; ///< estimate of the camera's frame interval
    std::uint32_t fastCnt = 0;       ///< early frames since the last frame in time
    std::uint32_t slowCnt = 0;       ///< late frames since then
    std::uint32_t extraSlowCnt = 0;  ///< frames that were very late since then

private:
    std::uint64_t latency() const { return static_cast<std::uint64_t>(std::int64_t{latencyUs}); }
    std::uint64_t hostStart(const FrameTiming& timing, const FrameTimes& frame) const;
    void anchor(std::uint64_t hostStartUs, const FrameTimes& frame);
    void readjust(const FrameTiming& timing, const FrameTimes& frame);
    void predictRegular(const FrameTiming& timing, const FrameTimes& frame);
    void watchLate(const FrameTiming& timing, const FrameTimes& frame, std::uint64_t delayUs,
                   Pace& pace);
};

} // namespace KxPGrey

#endif
