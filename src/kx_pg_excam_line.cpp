// The plug-in's camera: square waves and data words on a pin, timed by software.
#include "kx_pg_excam.h"
#include "kx_pg_line_code.h"
#include "kx_pg_time_difference.h"

#include <algorithm>

#include <sys/time.h>
#include <unistd.h>

namespace KxPGrey {

namespace {

// In half periods.
constexpr unsigned int kSymbolGap = 20;
constexpr unsigned int kFrameEnd = 2 * kSymbolGap + 1;

timeval timeOfDay()
{
    timeval now{};
    gettimeofday(&now, nullptr);
    return now;
}

/// Only whole milliseconds can be relied on, so no pause is shorter.
void pauseAtLeast1ms(std::int64_t us)
{
    constexpr std::int64_t kShortestUs = 1000;
    usleep(static_cast<useconds_t>(std::max(us, kShortestUs)));
}

/// Pauses for what is left of `us`. Of the time that has passed only the part below a second
/// counts.
void pauseFor(unsigned int us, const timeval& since, const timeval& now)
{
    pauseAtLeast1ms(std::int64_t{us} - differenceUs(now, since));
}

/// Writes the transitions of one symbol; true when all of them were written, the last one by the
/// time of `written`.
bool sendSymbol(CExCam& cam, pg_pins pin, std::uint8_t symbol, unsigned int halfPeriodUs,
                bool idleHigh, timeval& written)
{
    for (unsigned int number = 0; number < symbolTransitions(symbol); ++number) {
        const timeval begin = timeOfDay();
        if (cam.ExSetLineBit(pin, waveLevel(number, idleHigh)) != 0) {
            return false;
        }
        written = timeOfDay();
        pauseFor(halfPeriodUs, begin, written);
    }
    return true;
}

} // namespace

int CExCam::ExSendLineMeander(pg_pins pin, unsigned int count, unsigned int halfPeriodUs,
                              bool startLow)
{
    std::uint64_t number = 0;
    do {
        if (ExSetLineBit(pin, waveLevel(number, startLow)) != 0) {
            return -1;
        }
        pauseAtLeast1ms(halfPeriodUs);
        ++number;
    } while (number < std::uint64_t{2} * count);
    return 0;
}

int CExCam::ExSendLineCmdBy2bits(pg_pins pin, unsigned int data, unsigned char bits,
                                 unsigned int halfPeriodUs, bool idleHigh, bool withParity)
{
    const LineSymbols symbols = lineSymbols(data, bits, withParity);
    if (symbols.count == 0) {
        return -1;
    }
    timeval written{};
    for (const std::uint8_t symbol : symbols) {
        if (!sendSymbol(*this, pin, symbol, halfPeriodUs, idleHigh, written)) {
            return -1;
        }
        pauseFor(kSymbolGap * halfPeriodUs, written, timeOfDay());
    }
    if (withParity) {
        pauseFor(kFrameEnd * halfPeriodUs, written, timeOfDay());
    }
    return 0;
}

} // namespace KxPGrey
