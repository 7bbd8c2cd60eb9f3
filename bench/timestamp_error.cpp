// Prints how far exported time stamps are from the true starts of exposure, in both modes, for
// cameras of known drift, latency and jitter; and how well kxhost clock tells the drift.
#include "timestamp_run.h"

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace {

using kxtest::TimestampCase;

constexpr std::uint32_t kMinute = 30 * 60; // frames at 30 a second

TimestampCase regular(double driftPpm, double jitterUs)
{
    TimestampCase what;
    what.driftPpm = driftPpm;
    what.jitterUs = jitterUs;
    what.frames = kMinute;
    return what;
}

/// Time stamps from the camera's clock, with the correction that matches its drift. Without drift
/// the smallest correction there is selects the mode.
TimestampCase reference(double driftPpm, double jitterUs)
{
    TimestampCase what = regular(driftPpm, jitterUs);
    what.tsadjns = driftPpm == 0 ? 1 : kxtest::matchingCorrection(driftPpm);
    return what;
}

std::vector<TimestampCase> cases()
{
    std::vector<TimestampCase> all;
    for (const double driftPpm : {0.0, 20.0, -100.0}) {
        for (const double jitterUs : {0.0, 200.0, 2000.0}) {
            all.push_back(regular(driftPpm, jitterUs));
            all.push_back(reference(driftPpm, jitterUs));
        }
    }
    for (const double exposureUs : {500.0, 20000.0}) {
        all.push_back(regular(0, 200));
        all.back().exposureUs = exposureUs;
        all.push_back(reference(0, 200));
        all.back().exposureUs = exposureUs;
    }
    all.push_back(reference(20, 0)); // a drift that nobody corrects
    all.back().tsadjns = 1;
    all.push_back(reference(20, 200)); // over several wraps of the camera's clock
    all.back().frames = 10 * kMinute;
    return all;
}

void print(const TimestampCase& what)
{
    const kxtest::ErrorSummary error =
        kxtest::summarize(kxtest::timestampErrors(what), what.frameRate);
    std::printf("| %s | %g | %g | %g | %d | %.0f | %.0f | %.1f | %.0f | %.0f | %.2f |\n",
                what.tsadjns == 0 ? "REGULAR" : "REFCAMTS", what.driftPpm, what.jitterUs,
                what.exposureUs, what.tsadjns, what.frames / what.frameRate, error.mean,
                error.deviation, error.smallest, error.largest, error.drift);
}

/// A minute at 100 frames a second with 1 % spikes of 3 ms, as kxhost clock sees it.
TimestampCase clockCase(double driftPpm, double jitterUs, double wanderPpm)
{
    TimestampCase what;
    what.driftPpm = driftPpm;
    what.wanderPpm = wanderPpm;
    what.wanderSeconds = 60;
    what.jitterUs = jitterUs;
    what.spikeShare = 0.01;
    what.spikeUs = 3000;
    what.frameRate = 100;
    what.frames = 6000;
    return what;
}

/// The clock as it is measured, and between which bounds the error of time stamps lies, with the
/// smallest correction and with the one that is advised.
void printClock(TimestampCase what)
{
    std::string problem;
    const auto fit = kxhost::fitClock(kxtest::clockSamples(what), problem);
    if (!fit) {
        std::printf("%s\n", problem.c_str());
        return;
    }
    const auto rangeWith = [&](std::int64_t correction) {
        what.tsadjns = static_cast<std::int32_t>(correction);
        const auto errors = kxtest::summarize(kxtest::timestampErrors(what), what.frameRate);
        return errors.largest - errors.smallest;
    };
    std::printf("| %g | %g | %g | %.0f | %.0f | %s | %.0f | %.0f |\n", what.driftPpm,
                what.wanderPpm, what.jitterUs, fit->rateNs, fit->uncertaintyNs,
                fit->wanders ? "yes" : "no", rangeWith(1), rangeWith(clockCorrectionNs(*fit)));
}

void printClocks()
{
    std::puts(
        "\n| drift ppm | wander ppm | jitter us | rate ns/s | +- | wanders | errors within, at "
        "1 ns/s, us | as advised, us |");
    std::puts("| --- | --- | --- | --- | --- | --- | --- | --- |");
    for (const double driftPpm : {0.0, 35.0, -100.0}) {
        for (const double jitterUs : {0.0, 300.0, 2000.0}) {
            printClock(clockCase(driftPpm, jitterUs, 0));
        }
    }
    printClock(clockCase(35, 300, 1));
    printClock(clockCase(35, 300, 5));
}

} // namespace

int main()
{
    std::puts("| mode | drift ppm | jitter us | exposure us | correction ns/s | run s | mean us | "
              "deviation us | smallest us | largest us | drift us/s |");
    std::puts("| --- | --- | --- | --- | --- | --- | --- | --- | --- | --- | --- |");
    for (const TimestampCase& what : cases()) {
        print(what);
    }
    printClocks();
    return 0;
}
