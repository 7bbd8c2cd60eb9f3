// A line between a sender and the plug-in's receiver: transitions in time, polls of their level,
// noise on the way.
#include "line_channel.h"

#include "kx_pg_line_code.h"
#include "kx_pg_line_rx.h"

#include <cmath>

namespace line {

namespace {

/// In half periods.
constexpr std::uint64_t kSymbolGap = 20;

/// From poll to poll: a pause of 2 ms, and what the loop itself takes.
constexpr std::uint64_t kPollUs = 2050;
constexpr std::uint64_t kPollVariesUs = 150;
constexpr std::uint32_t kGapPolls = 12;

/// A disturbance is over before a third poll can see it, and one poll at least is between two.
constexpr std::uint64_t kPulseShortestUs = 500;
constexpr std::uint64_t kPulseVariesUs = 3500;
constexpr std::uint64_t kPulseApartUs = 2500;

/// Evenly distributed, 0 to below 1.
double uniform(std::mt19937_64& random)
{
    constexpr int kBits = 53;
    return std::ldexp(static_cast<double>(random() >> (64 - kBits)), -kBits);
}

/// A line, asked for its level with rising times.
class PlannedLine {
public:
    PlannedLine(const Plan& plan, bool level) : plan_(plan), level_(level) {}

    bool level(std::uint64_t atUs)
    {
        while (next_ < plan_.size() && plan_[next_].atUs <= atUs) {
            level_ = plan_[next_++].level;
        }
        return level_;
    }

private:
    const Plan& plan_;
    std::size_t next_ = 0;
    bool level_;
};

/// Short pulses at random times, asked for with rising times.
class Disturbances {
public:
    Disturbances(double perSecond, std::mt19937_64& random) : perSecond_(perSecond), random_(random)
    {
        if (perSecond_ > 0) {
            plan(0);
        }
    }

    bool isActive(std::uint64_t atUs)
    {
        if (perSecond_ <= 0) {
            return false;
        }
        while (endUs_ <= atUs) {
            plan(endUs_ + kPulseApartUs);
        }
        return startUs_ <= atUs;
    }

private:
    void plan(std::uint64_t fromUs)
    {
        const double waitUs = -std::log(1.0 - uniform(random_)) * 1e6 / perSecond_;
        startUs_ = fromUs + static_cast<std::uint64_t>(waitUs);
        endUs_ = startUs_ + kPulseShortestUs + random_() % kPulseVariesUs;
    }

    double perSecond_;
    std::mt19937_64& random_;
    std::uint64_t startUs_ = 0;
    std::uint64_t endUs_ = 0;
};

/// What the control thread makes of a word's end.
Reception receptionOf(const KxPGrey::LineRx& rx)
{
    const KxPGrey::ReceivedWord word = KxPGrey::receivedWord(rx.dataWord, rx.bitCount);
    if (!word.parityGood) {
        return {.ending = Ending::wrongParity, .reply = {}};
    }
    if (rx.bitCount <= KxPGrey::kLineSymbolBits) {
        return {.ending = Ending::tooShort, .reply = {}};
    }
    return {.ending = Ending::accepted,
            .reply = {.word = word.payload, .bits = rx.bitCount - KxPGrey::kLineSymbolBits}};
}

void count(Tally& tally, const Reception& reception, const LineWord& sent)
{
    switch (reception.ending) {
    case Ending::wrongParity:
        ++tally.wrongParity;
        break;
    case Ending::tooShort:
        ++tally.tooShort;
        break;
    case Ending::timedOut:
        ++tally.timedOut;
        break;
    case Ending::accepted:
        if (reception.reply.bits != sent.bits) {
            ++tally.otherLength;
        } else if (reception.reply.word != sent.word) {
            ++tally.otherBits;
        } else {
            ++tally.right;
        }
        break;
    }
}

} // namespace

Plan commandPlan(const LineWord& command, std::uint64_t halfPeriodUs, bool idleHigh,
                 std::uint64_t startUs)
{
    Plan plan;
    std::uint64_t atUs = startUs;
    for (const std::uint8_t symbol : KxPGrey::lineSymbols(command.word, command.bits, true)) {
        for (unsigned number = 0; number < KxPGrey::symbolTransitions(symbol); ++number) {
            plan.push_back({atUs, KxPGrey::waveLevel(number, idleHigh)});
            atUs += halfPeriodUs;
        }
        atUs += (kSymbolGap - 1) * halfPeriodUs;
    }
    return plan;
}

Reception receive(const Plan& plan, bool idleHigh, const Noise& noise, std::uint32_t polls,
                  std::mt19937_64& random)
{
    KxPGrey::LineRx rx;
    rx.loopsLeft = polls;
    rx.rxWaitInit = 1;
    PlannedLine line(plan, idleHigh);
    Disturbances disturbances(noise.pulsesPerSecond, random);
    std::uint64_t atUs = 0;
    while (true) {
        const bool flipped = uniform(random) < noise.flips;
        const bool level = line.level(atUs) != (disturbances.isActive(atUs) != flipped);
        const KxPGrey::LineStep step = KxPGrey::stepLineRx(rx, level, kGapPolls);
        if (step.event == KxPGrey::LineEvent::frameEnd) {
            return receptionOf(rx);
        }
        if (step.timedOut) {
            return {};
        }
        atUs += kPollUs + random() % kPollVariesUs;
    }
}

Tally tryReplies(const Trial& trial)
{
    constexpr std::uint64_t kFirstPulseUs = 50'000;
    Tally tally;
    std::mt19937_64 random(trial.seed);
    for (unsigned reply = 0; reply < trial.replies; ++reply) {
        const LineWord sent{KxPGrey::lowBits(static_cast<std::uint32_t>(random()), trial.bits),
                            trial.bits};
        const fcsim::ReplyShape shape;
        const std::uint64_t startUs = kFirstPulseUs + random() % kPollUs;
        const auto plan = fcsim::planReply(
            sent, shape, startUs,
            sent.bits == 0 ? fcsim::Misbehaviour::silence : fcsim::Misbehaviour::none, 0);
        count(tally, receive(plan, shape.idleHigh, trial.noise, trial.polls, random), sent);
    }
    return tally;
}

} // namespace line
