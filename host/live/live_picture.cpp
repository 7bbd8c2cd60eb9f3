// The picture of the live page and its histogram, made from frames as they come.
#include "live/live_picture.h"

#include "live/live_reply.h"
#include "picture/picture_codec.h"
#include "picture/picture_encode.h"

#include <nlohmann/json.hpp>

#include <array>

namespace kxhost {
namespace {

using namespace std::chrono_literals;
using Json = nlohmann::ordered_json;

/// All who look share a picture of this age.
constexpr auto kPicturePeriod = 200ms;
/// A frame that was asked for and not fetched is not shown later than this.
constexpr auto kFreshFor = 500ms;
/// Every pixel of a frame counts, which may take longer than the picture of it.
constexpr auto kHistogramPeriod = 500ms;
constexpr auto kMostWaited = 1000ms;

constexpr std::uint32_t kLongestSide = 960;
constexpr int kCompression = 1;

HttpReply nothingYet()
{
    HttpReply reply = errorReply(503, "No frame has come.");
    reply.headers.emplace_back("Retry-After", "1");
    return reply;
}

Json channelJson(const char* name, const ChannelHistogram& channel)
{
    return {{"name", name},
            {"pixels", channel.pixels},
            {"darkest", channel.darkest},
            {"brightest", channel.brightest},
            {"bins", channel.bins}};
}

Json histogramJson(const Histogram& histogram, std::uint64_t frame)
{
    constexpr std::array kColours = {"red", "green", "blue"};
    Json channels = Json::array();
    for (std::uint32_t i = 0; i < histogram.channels; ++i) {
        channels.push_back(
            channelJson(histogram.channels == 1 ? "grey" : kColours[i], histogram.each[i]));
    }
    return {{"frame", frame}, {"levels", histogram.levels}, {"channels", channels}};
}

} // namespace

bool LivePicture::takeFresh(Clock::time_point now)
{
    if (!tap_.take(frame_)) {
        return false;
    }
    file_.clear();
    return now - frame_.come < kFreshFor;
}

HttpAnswer LivePicture::png(const HttpRequest& request)
{
    const Clock::time_point now = tap_.now();
    if (frame_.number != 0 && now - frame_.come < kPicturePeriod) {
        return encoded();
    }
    if (!takeFresh(now)) {
        tap_.ask();
        return request.isLastTry ? HttpAnswer(nothingYet()) : HttpAnswer(HttpLater{kMostWaited});
    }
    return encoded();
}

HttpReply LivePicture::encoded()
{
    if (file_.empty()) {
        const FrameInfo& info = frame_.info;
        preview_.make(*findCodec(info.codec), info.width, info.height, frame_.pixels.data(),
                      kLongestSide, small_);
        if (const std::string error = encodePng(small_, kCompression, file_); !error.empty()) {
            file_.clear();
            return errorReply(500, "The picture cannot be encoded: " + error + ".");
        }
    }
    HttpReply reply{200, "image/png", std::string(file_.begin(), file_.end()), {}};
    reply.headers.emplace_back("X-Frame-Number", std::to_string(frame_.number));
    if (frame_.values.frameCounter) {
        reply.headers.emplace_back("X-Frame-Counter", std::to_string(*frame_.values.frameCounter));
    }
    return reply;
}

HttpReply LivePicture::histogram()
{
    if (frame_.number == 0) {
        return nothingYet();
    }
    const Clock::time_point now = tap_.now();
    if (histogramFrame_ != frame_.number && now >= histogramDue_) {
        const FrameInfo& info = frame_.info;
        histogram_ = histogramOf(*findCodec(info.codec), info.width, info.height,
                                 frame_.pixels.data(), scratch_);
        histogramFrame_ = frame_.number;
        histogramDue_ = now + kHistogramPeriod;
    }
    return jsonReply(200, histogramJson(histogram_, histogramFrame_));
}

} // namespace kxhost
