// Bits of words that do not arrive: commands to a simulated I/O box and its replies, by the control
// thread and by a bare loop of the same policy, without a load and beside two threads that copy
// memory.
#include "control/sim_control.h"
#include "kx_pg_line_code.h"
#include "kx_pg_line_rx.h"
#include "kx_pg_shared.h"
#include "line_camera.h"

#include <bit>
#include <cstdio>
#include <functional>
#include <optional>
#include <random>

#include <unistd.h>

namespace {

using kxbench::kCommandBits;
using kxbench::LineCamera;

constexpr unsigned kHalfPeriodUs = 2000;
constexpr useconds_t kPollUs = 2000;
constexpr std::uint32_t kGapPolls = 12;
constexpr std::uint32_t kPolls = 1500; ///< that a reply is given

/// What was sent and what became of it.
struct Count {
    unsigned words = 0;
    unsigned commandErrors = 0; ///< bits that the box did not hear as they were sent
    unsigned replyErrors = 0;   ///< bits that did not come back as the box sent them
};

/// A word that does not arrive at all counts as that many wrong bits.
unsigned errors(std::uint32_t sent, std::optional<std::uint32_t> arrived)
{
    return arrived ? static_cast<unsigned>(std::popcount(sent ^ *arrived)) : kCommandBits;
}

std::optional<std::uint32_t> heardByBox()
{
    const auto log = fcsim::takeBoxLog(kxbench::kLineSerial, 0);
    if (log.size() != 1 || log[0].verdict != fcsim::IoBoxVerdict::good ||
        log[0].bits != kCommandBits) {
        return std::nullopt;
    }
    return log[0].word;
}

void count(Count& total, std::uint32_t sent, std::optional<std::uint32_t> reply)
{
    const auto heard = heardByBox();
    ++total.words;
    total.commandErrors += errors(sent, heard);
    total.replyErrors += errors(heard.value_or(sent), reply);
}

std::uint32_t randomWord(std::mt19937& random)
{
    return KxPGrey::lowBits(static_cast<std::uint32_t>(random()), kCommandBits);
}

// ---- The control thread.

/// Takes the reply as the grab loop does, once the pins are free again.
std::optional<std::uint32_t> controlReply(LineCamera& camera)
{
    namespace shared = KxPGrey::shared;
    do {
        usleep(kPollUs);
    } while (shared::look(camera.ioCfgPending) ||
             shared::look(camera.ioPinState[kxbench::kCommandPin].pinFree) == 0);
    const std::uint32_t bits = shared::look(camera.rxBits);
    const std::uint32_t word = shared::get(camera.rxData);
    shared::handOver(camera.rxBits, 0);
    return bits == kCommandBits ? std::optional(word) : std::nullopt;
}

/// Nothing when there are no real-time threads.
std::optional<Count> byControlThread(unsigned words)
{
    LineCamera camera(kxbench::Box::echoes, 0);
    KxPGrey::CCamCtrlThread control;
    control.CtrlThreadStart(&camera);
    if (!camera.ctrlThread) {
        return std::nullopt;
    }
    Count total;
    std::mt19937 random(1);
    for (unsigned word = 0; word < words; ++word) {
        const std::uint32_t sent = randomWord(random);
        camera.send(sent, kPolls);
        count(total, sent, controlReply(camera));
    }
    return total;
}

// ---- The bare loop.

/// Nothing but writes and sleeps.
void sendBare(LineCamera& camera, std::uint32_t word)
{
    for (const std::uint8_t symbol : KxPGrey::lineSymbols(word, kCommandBits, true)) {
        for (unsigned number = 0; number < KxPGrey::symbolTransitions(symbol); ++number) {
            static_cast<void>(
                camera.ExSetLineBit(kxbench::kCommandPin, KxPGrey::waveLevel(number, false)));
            usleep(kHalfPeriodUs);
        }
        usleep(19 * kHalfPeriodUs);
    }
    usleep(20 * kHalfPeriodUs);
}

/// Nothing but samples and sleeps.
std::optional<std::uint32_t> bareReply(LineCamera& camera)
{
    KxPGrey::LineRx rx;
    rx.loopsLeft = kPolls;
    rx.rxWaitInit = 1;
    KxPGrey::LineStep step;
    while (step.event != KxPGrey::LineEvent::frameEnd && !step.timedOut) {
        bool level = false;
        static_cast<void>(camera.ExGetLineBit(kxbench::kReplyPin, &level));
        step = KxPGrey::stepLineRx(rx, level, kGapPolls);
        usleep(kPollUs);
    }
    const auto reply = KxPGrey::receivedWord(rx.dataWord, rx.bitCount);
    const bool isGood = reply.parityGood && rx.bitCount == kCommandBits + KxPGrey::kLineSymbolBits;
    return isGood ? std::optional(reply.payload) : std::nullopt;
}

std::optional<Count> byBareLoop(unsigned words)
{
    LineCamera camera(kxbench::Box::echoes, 0);
    static_cast<void>(camera.ExSetLineMode(kxbench::kCommandPin, KxPGrey::kIoOutput, false));
    Count total;
    const bool ran = kxbench::runRealTime([&] {
        std::mt19937 random(1);
        for (unsigned word = 0; word < words; ++word) {
            const std::uint32_t sent = randomWord(random);
            sendBare(camera, sent);
            count(total, sent, bareReply(camera));
        }
    });
    return ran ? std::optional(total) : std::nullopt;
}

void print(const char* load, const char* loop, const std::optional<Count>& count)
{
    if (!count) {
        std::puts("not measured: real-time threads are not allowed here (SCHED_FIFO)");
        return;
    }
    std::printf("| %s | %s | %u | %u | %u | %u |\n", load, loop, count->words,
                count->words * kCommandBits, count->commandErrors, count->replyErrors);
}

void compare(const char* load, unsigned words)
{
    print(load, "control", byControlThread(words));
    print(load, "bare", byBareLoop(words));
}

} // namespace

int main(int argc, char** argv)
{
    const unsigned words = kxbench::isShortForm(argc, argv) ? 1 : 25;
    std::puts("| load | loop | words | bits each way | wrong in commands | wrong in replies |\n"
              "| --- | --- | --- | --- | --- | --- |");
    compare("no load", words);
    const kxbench::CopyLoad load;
    compare("copying", words);
    return 0;
}
