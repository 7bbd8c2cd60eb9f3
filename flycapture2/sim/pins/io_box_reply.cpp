// What the simulated I/O box puts on its answer line: a word as a list of transitions.
#include "pins/io_box_reply.h"

#include <algorithm>
#include <bit>
#include <random>

namespace fcsim {

namespace {

constexpr std::uint64_t kShortPulseUs = 2000;
constexpr std::uint64_t kNoiseShortestUs = 500;
constexpr std::uint64_t kNoiseLongestUs = 2500;
/// One phase of so many is disturbed.
constexpr std::uint64_t kNoiseOneOf = 4;

/// The pulses of each symbol, the parity's at the end.
std::vector<unsigned> pulsesOf(const LineWord& word, Misbehaviour misbehaviour)
{
    const unsigned bits = word.bits + word.bits % 2;
    const std::uint64_t mask = (std::uint64_t{1} << word.bits) - 1;
    const std::uint64_t padded = (word.word & mask) << (bits - word.bits);
    auto parity = static_cast<unsigned>(std::popcount(padded)) & 1U;
    if (misbehaviour == Misbehaviour::wrongParity) {
        parity ^= 1U;
    }
    std::vector<unsigned> pulses;
    for (unsigned shift = bits; shift > 0; shift -= 2) {
        pulses.push_back(static_cast<unsigned>(padded >> (shift - 2) & 3U) + 1);
    }
    pulses.push_back(parity + 1);
    if (misbehaviour == Misbehaviour::truncated) {
        pulses.resize(pulses.size() / 2);
    }
    return pulses;
}

/// Interrupts some of the phases between two transitions by the other level for a moment.
std::vector<LineTransition> disturbed(const std::vector<LineTransition>& clean, std::uint64_t seed)
{
    std::mt19937_64 random(seed);
    std::vector<LineTransition> noisy;
    for (std::size_t i = 0; i < clean.size(); ++i) {
        noisy.push_back(clean[i]);
        if (i + 1 == clean.size() || random() % kNoiseOneOf != 0) {
            continue;
        }
        const std::uint64_t phaseUs = clean[i + 1].atUs - clean[i].atUs;
        const std::uint64_t lengthUs =
            kNoiseShortestUs + random() % (kNoiseLongestUs - kNoiseShortestUs);
        if (phaseUs > lengthUs + 1) {
            const std::uint64_t atUs = clean[i].atUs + 1 + random() % (phaseUs - lengthUs - 1);
            noisy.push_back({atUs, !clean[i].level});
            noisy.push_back({atUs + lengthUs, clean[i].level});
        }
    }
    return noisy;
}

} // namespace

std::vector<LineTransition> planReply(const LineWord& word, const ReplyShape& shape,
                                      std::uint64_t startUs, Misbehaviour misbehaviour,
                                      std::uint64_t seed)
{
    std::vector<LineTransition> plan;
    if (misbehaviour == Misbehaviour::silence) {
        return plan;
    }
    const std::uint64_t activeUs = misbehaviour == Misbehaviour::shortPulses
                                       ? std::min(kShortPulseUs, shape.halfPeriodUs)
                                       : shape.halfPeriodUs;
    std::uint64_t atUs = startUs;
    for (const unsigned pulses : pulsesOf(word, misbehaviour)) {
        for (unsigned pulse = 0; pulse < pulses; ++pulse) {
            plan.push_back({atUs, !shape.idleHigh});
            plan.push_back({atUs + activeUs, shape.idleHigh});
            atUs += 2 * shape.halfPeriodUs;
        }
        atUs += shape.gapUs - shape.halfPeriodUs;
    }
    return misbehaviour == Misbehaviour::noise ? disturbed(plan, seed) : plan;
}

bool levelAt(const std::vector<LineTransition>& plan, std::uint64_t atUs, bool before)
{
    const auto later = std::upper_bound(
        plan.begin(), plan.end(), atUs,
        [](std::uint64_t us, const LineTransition& transition) { return us < transition.atUs; });
    return later == plan.begin() ? before : (later - 1)->level;
}

} // namespace fcsim
