// The picture of the live page and its histogram, made from frames as they come.
#ifndef KXHOST_LIVE_PICTURE_H
#define KXHOST_LIVE_PICTURE_H

#include "live/live_http.h"
#include "live/live_tap.h"
#include "picture/histogram.h"
#include "picture/preview.h"

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

namespace kxhost {

/// For the thread that serves the page. It asks for a frame when somebody asks for a picture and
/// the last one is not of this moment, and never otherwise.
class LivePicture {
public:
    explicit LivePicture(LiveTap& tap) : tap_(tap) {}

    /// The picture as PNG, no larger than a screen shows. Comes later while there is no frame.
    HttpAnswer png(const HttpRequest& request);

    /// The histogram of the frame that was shown last, or of one shown shortly before.
    HttpReply histogram();

    /// The frame that was shown last; its number is 0 when there was none.
    const LiveFrame& shown() const { return frame_; }

private:
    using Clock = LiveTap::Clock;

    bool takeFresh(Clock::time_point now);
    HttpReply encoded();

    LiveTap& tap_;
    LiveFrame frame_;
    PreviewMaker preview_;
    Picture small_;
    Picture scratch_;
    std::vector<std::uint8_t> file_; ///< PNG of `frame_`
    Histogram histogram_;
    std::uint64_t histogramFrame_ = 0; ///< 0 = there is none
    Clock::time_point histogramDue_;
};

} // namespace kxhost

#endif
