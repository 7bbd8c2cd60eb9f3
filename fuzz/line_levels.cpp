// Fuzz target: levels of a line into the plug-in's receiver, and the same line into the decoder of
// the simulated I/O box, which knows the code independently.
#include "fuzz_input.h"
#include "kx_pg_line_code.h"
#include "kx_pg_line_rx.h"
#include "pins/io_box_decoder.h"

#include <bit>
#include <optional>
#include <vector>

namespace kxfuzz {
namespace {

using KxPGrey::LineEvent;
using KxPGrey::LineRx;
using KxPGrey::LineStep;

// ---- Any levels, one bit each.

/// What holds after each sample, whatever came before.
void checkStep(const LineRx& before, const LineRx& now, const LineStep& step, bool level,
               std::uint32_t gap)
{
    KX_MUST(now.loopsLeft == before.loopsLeft - 1);
    KX_MUST(step.timedOut == (now.loopsLeft == 0));
    KX_MUST(step.data == (before.rxWaitInit == 0));
    KX_MUST(now.bitCount <= KxPGrey::kLineBitsMax && now.bitCount % 2 == 0);
    KX_MUST(now.lastLevel == static_cast<std::uint8_t>(level) || now.rxWaitInit != 0);
    KX_MUST(!step.data || now.idleLevel == before.idleLevel);
    switch (step.event) {
    case LineEvent::symbol:
        KX_MUST(now.idleCount == gap && now.bitCount == before.bitCount + 2);
        KX_MUST(now.dataWord >> 2U == (before.dataWord << 2U) >> 2U);
        KX_MUST(now.pulseCount == 0);
        break;
    case LineEvent::frameEnd:
        KX_MUST(now.idleCount == 3 * gap && level == (now.idleLevel != 0));
        break;
    case LineEvent::dataStart:
        KX_MUST(before.rxWaitInit == 1 && now.rxWaitInit == 0 && now.bitCount == 0);
        KX_MUST(level != (now.idleLevel != 0));
        break;
    default:
        KX_MUST(now.dataWord == before.dataWord && now.bitCount == before.bitCount);
        break;
    }
}

void checkWord(const LineRx& rx)
{
    const KxPGrey::ReceivedWord word = KxPGrey::receivedWord(rx.dataWord, rx.bitCount);
    KX_MUST(rx.bitCount == KxPGrey::kLineBitsMax || word.word >> rx.bitCount == 0);
    KX_MUST(word.payload == word.word >> 2U);
    KX_MUST(word.parityGood == ((std::popcount(word.payload) & 1) == (word.word & 1U)));
}

void anyLevels(Bytes& bytes)
{
    constexpr unsigned kMostSamples = 5000; // more take longer and show no more
    LineRx rx;
    rx.rxWaitInit = 1;
    rx.loopsLeft = bytes.flag() ? bytes.take<std::uint32_t>() : bytes.take<std::uint8_t>();
    const std::uint32_t gap = bytes.flag() ? bytes.take<std::uint32_t>() : bytes.within(0U, 20U);
    for (unsigned samples = 0; !bytes.empty() && samples < kMostSamples;) {
        // Runs of a level: a byte of single ones would seldom make a pulse.
        const auto run = bytes.take<std::uint8_t>();
        const bool level = (run & 1U) != 0;
        for (unsigned sample = 0; sample <= run >> 1U; ++sample, ++samples) {
            const LineRx before = rx;
            const LineStep step = KxPGrey::stepLineRx(rx, level, gap);
            checkStep(before, rx, step, level, gap);
            if (step.event == LineEvent::frameEnd) {
                checkWord(rx);
            }
        }
    }
}

// ---- A line that both decoders must understand alike.

constexpr std::uint32_t kGapPolls = 12;
constexpr std::uint64_t kFrameEndPolls = 36;
constexpr std::uint64_t kPollUs = 2000;      ///< from poll to poll at least
constexpr std::uint64_t kPollVariesUs = 200; ///< and at most so much more
constexpr std::uint64_t kSlowestUs = kPollUs + kPollVariesUs;

/// Times that are seen for at least, or at most, so many polls.
constexpr std::uint64_t atLeast(std::uint64_t polls)
{
    return polls * kSlowestUs;
}
constexpr std::uint64_t atMost(std::uint64_t polls)
{
    return polls * kPollUs;
}

constexpr std::uint64_t kMeanPollUs = kPollUs + kPollVariesUs / 2;
constexpr fcsim::LineTiming kTiming = {.shortestUs = atLeast(2),
                                       .symbolGapUs = kMeanPollUs * kGapPolls,
                                       .frameEndUs = kMeanPollUs * kFrameEndPolls};
/// What the receiver keeps: fifteen symbols of data and the parity.
constexpr std::size_t kMostSymbols = 16;

struct Line {
    std::vector<fcsim::LineTransition> transitions;
    std::vector<std::uint32_t> pulses; ///< of each symbol
    std::uint64_t endUs = 0;
};

/// Bursts of one to four pulses, of any lengths that leave no doubt.
Line drawLine(Bytes& bytes, bool idleHigh)
{
    const auto time = [&bytes](std::uint64_t low, std::uint64_t high) {
        return bytes.within(low, high);
    };
    Line line;
    std::uint64_t atUs = time(atLeast(4), 200'000);
    const std::size_t symbols = bytes.within<std::size_t>(1, kMostSymbols);
    for (std::size_t symbol = 0; symbol < symbols; ++symbol) {
        line.pulses.push_back(bytes.within(1U, 4U));
        for (std::uint32_t pulse = 0; pulse < line.pulses.back(); ++pulse) {
            line.transitions.push_back({atUs, !idleHigh});
            atUs += time(atLeast(3), 60'000);
            line.transitions.push_back({atUs, idleHigh});
            atUs += time(atLeast(3), atMost(kGapPolls - 1));
        }
        // The last pulse's rest becomes a gap.
        atUs = line.transitions.back().atUs + time(atLeast(kGapPolls), atMost(kFrameEndPolls - 1));
    }
    line.endUs = line.transitions.back().atUs + atLeast(kFrameEndPolls + 2);
    return line;
}

std::optional<fcsim::HeardFrame> heardByBox(const Line& line, bool idleHigh)
{
    fcsim::LineDecoder decoder(kTiming, idleHigh);
    KX_MUST(!decoder.change({0, idleHigh}));
    for (const fcsim::LineTransition& transition : line.transitions) {
        KX_MUST(!decoder.change(transition)); // one frame, ended by nothing but its end
    }
    return decoder.wait(line.endUs);
}

/// Polls until the frame has ended; `varies` delays each poll.
LineRx receivedByPlugin(const Line& line, bool idleHigh, Bytes varies)
{
    LineRx rx;
    rx.rxWaitInit = 1;
    bool level = idleHigh;
    std::size_t next = 0;
    LineEvent event = LineEvent::none;
    std::uint64_t atUs = 0;
    while (event != LineEvent::frameEnd) {
        KX_MUST(atUs <= line.endUs); // it must have ended by then
        while (next < line.transitions.size() && line.transitions[next].atUs <= atUs) {
            level = line.transitions[next++].level;
        }
        event = KxPGrey::stepLineRx(rx, level, kGapPolls).event;
        atUs += kPollUs + varies.take<std::uint8_t>() % kPollVariesUs;
    }
    KX_MUST(next == line.transitions.size()); // and not before
    return rx;
}

void bothDecoders(Bytes& bytes)
{
    const bool idleHigh = bytes.flag();
    const Line line = drawLine(bytes, idleHigh);
    const auto heard = heardByBox(line, idleHigh);
    const LineRx rx = receivedByPlugin(line, idleHigh, bytes);
    const KxPGrey::ReceivedWord word = KxPGrey::receivedWord(rx.dataWord, rx.bitCount);

    KX_MUST(heard);
    KX_MUST(rx.bitCount == 2 * line.pulses.size());
    KX_MUST(heard->bits + 2 == rx.bitCount);
    std::uint32_t sent = 0;
    for (const std::uint32_t pulses : line.pulses) {
        sent = sent << 2U | (pulses - 1);
    }
    KX_MUST(word.word == sent);
    const std::uint32_t paritySymbol = sent & 3U;
    if (line.pulses.size() == 1) {
        KX_MUST(heard->verdict == fcsim::IoBoxVerdict::garbled);
        return; // a parity alone
    }
    KX_MUST(heard->word == word.payload);
    // The box wants the whole parity symbol right, the plug-in its lower bit.
    const bool accepted = heard->verdict == fcsim::IoBoxVerdict::good;
    KX_MUST(accepted || heard->verdict == fcsim::IoBoxVerdict::wrongParity);
    KX_MUST(accepted == (word.parityGood && paritySymbol < 2));
}

void lineLevels(Input input)
{
    Bytes bytes(input);
    if (bytes.flag()) {
        bothDecoders(bytes);
    } else {
        anyLevels(bytes);
    }
}

} // namespace
} // namespace kxfuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    kxfuzz::lineLevels({data, size});
    return 0;
}
