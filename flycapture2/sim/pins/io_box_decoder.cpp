// How the simulated I/O box understands the line code: from transitions and their times to words.
#include "pins/io_box_decoder.h"

#include <bit>

namespace fcsim {

namespace {

constexpr unsigned kMostPulses = 4;
/// Sixteen of data and the parity.
constexpr unsigned kMostSymbols = 17;

} // namespace

LineTiming timingOfSender(std::uint64_t halfPeriodUs)
{
    return {halfPeriodUs / 4, 12 * halfPeriodUs, 34 * halfPeriodUs};
}

std::optional<HeardFrame> LineDecoder::change(const LineTransition& transition)
{
    if (transition.level == level_) {
        return std::nullopt;
    }
    level_ = transition.level;
    std::optional<HeardFrame> ended = wait(transition.atUs);
    if (pending_) {
        pending_.reset(); // there and back at once: a disturbance
    } else {
        pending_ = transition;
    }
    return ended;
}

std::optional<HeardFrame> LineDecoder::wait(std::uint64_t nowUs)
{
    if (pending_) {
        if (nowUs < pending_->atUs + timing_.shortestUs) {
            return std::nullopt;
        }
        commit(*pending_);
        pending_.reset();
    }
    const std::uint64_t endUs = pulseSince_.value_or(lastEdgeUs_) + timing_.frameEndUs;
    if (nowUs < endUs || (pulses_ == 0 && !pulseSince_)) {
        return std::nullopt;
    }
    return finish(endUs, pulseSince_.has_value());
}

void LineDecoder::commit(const LineTransition& transition)
{
    if (transition.level != idleHigh_) {
        pulseSince_ = transition.atUs;
    } else if (pulseSince_) {
        addPulse(*pulseSince_, transition.atUs);
        pulseSince_.reset();
    }
}

void LineDecoder::addPulse(std::uint64_t startUs, std::uint64_t endUs)
{
    if (pulses_ == 0) {
        firstEdgeUs_ = startUs;
    } else if (startUs - lastEdgeUs_ >= timing_.symbolGapUs) {
        closeSymbol();
    }
    ++pulses_;
    lastEdgeUs_ = endUs;
}

void LineDecoder::closeSymbol()
{
    if (pulses_ > kMostPulses || symbols_ == kMostSymbols) {
        garbled_ = true;
    } else {
        raw_ = raw_ << 2U | (pulses_ - 1);
        ++symbols_;
    }
    pulses_ = 0;
}

HeardFrame LineDecoder::finish(std::uint64_t endUs, bool stuck)
{
    HeardFrame heard;
    heard.firstEdgeUs = pulses_ == 0 ? *pulseSince_ : firstEdgeUs_;
    heard.lastEdgeUs = pulses_ == 0 ? *pulseSince_ : lastEdgeUs_;
    heard.endUs = endUs;
    if (pulses_ > 0) {
        closeSymbol();
    }
    heard.word = static_cast<std::uint32_t>(raw_ >> 2U);
    heard.bits = symbols_ < 2 ? 0 : 2 * (symbols_ - 1);
    const auto parity = static_cast<unsigned>(std::popcount(heard.word)) & 1U;
    if (stuck) {
        heard.verdict = IoBoxVerdict::stuck;
    } else if (garbled_ || symbols_ < 2) {
        heard.verdict = IoBoxVerdict::garbled;
    } else if ((raw_ & 3U) != parity) {
        heard.verdict = IoBoxVerdict::wrongParity;
    }
    pulseSince_.reset();
    symbols_ = 0;
    raw_ = 0;
    garbled_ = false;
    return heard;
}

} // namespace fcsim
