// What the plug-in itself costs per frame: the whole loop less a bare loop with the same calls.
//
// Both loops run in turn on a camera that delivers at once. The least of many rounds counts, since
// whatever else the machine does only adds to it. Besides, nothing may be allocated and no page may
// fault once the loop runs, and the cost may not depend on the size of the frames, nor on a control
// thread beside the loop.
#include "bare_loop.h"
#include "bench_host.h"
#include "kx_pg_cthr.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <limits>

namespace {

constexpr std::uint32_t kWarmUp = 200;
constexpr std::uint32_t kFrames = 5'000;
constexpr double kAimUs = 0.4;
constexpr double kAimRatio = 1.10;

/// Least time of each loop so far.
struct Pair {
    double wholeUs = std::numeric_limits<double>::max();
    double bareUs = std::numeric_limits<double>::max();

    double ownUs() const { return wholeUs - bareUs; }
};

struct Cost {
    Pair alone;
    Pair beside; ///< a control thread that has nothing to do
    std::uint64_t allocations = 0;
    std::uint64_t pageFaults = 0;
};

template <typename Loop>
kxbench::Usage measure(Loop loop)
{
    kxbench::prepareHost(kWarmUp, kWarmUp + kFrames);
    loop();
    return kxbench::host().until - kxbench::host().from;
}

void measureBoth(kxbench::OpenCamera& open, Pair& least, Cost& cost)
{
    const kxbench::Usage whole = measure([&open] { kxbench::runWholeLoop(open); });
    const kxbench::Usage bare = measure([&open] { kxbench::runBareLoop(open); });
    least.wholeUs = std::min(least.wholeUs, whole.cpuUs / kFrames);
    least.bareUs = std::min(least.bareUs, bare.cpuUs / kFrames);
    cost.allocations += whole.allocations;
    cost.pageFaults += whole.pageFaults;
}

void round(kxbench::OpenCamera& open, Cost& cost)
{
    measureBoth(open, cost.alone, cost);
    KxPGrey::CCamCtrlThread control;
    control.CtrlThreadStart(&open.camera);
    if (open.camera.ctrlThread) {
        measureBoth(open, cost.beside, cost);
    }
}

void grab(benchmark::State& state, Cost& cost)
{
    kxbench::loadCamera(static_cast<unsigned>(state.range(0)),
                        static_cast<unsigned>(state.range(1)));
    kxbench::OpenCamera open;
    for ([[maybe_unused]] auto step : state) {
        round(open, cost);
    }
    state.counters["whole_us"] = cost.alone.wholeUs;
    state.counters["bare_us"] = cost.alone.bareUs;
    state.counters["own_us"] = cost.alone.ownUs();
    state.counters["own_beside_us"] = cost.beside.ownUs();
    state.counters["allocations"] = static_cast<double>(cost.allocations);
    state.counters["page_faults"] = static_cast<double>(cost.pageFaults);
}

bool report(const Cost& small, const Cost& large)
{
    const double ratio = large.alone.ownUs() / small.alone.ownUs();
    std::printf("plug-in's own time per frame: %.3f us at 640x480, %.3f us at 2448x2048 "
                "(aim %.1f us)\n",
                small.alone.ownUs(), large.alone.ownUs(), kAimUs);
    std::printf("ratio large to small: %.3f (aim at most %.2f)\n", ratio, kAimRatio);
    if (small.beside.bareUs == std::numeric_limits<double>::max()) {
        std::puts("beside a control thread: not measured, real-time threads are not allowed here");
    } else {
        std::printf("beside a control thread: %.3f us at 640x480, %.3f us at 2448x2048\n",
                    small.beside.ownUs(), large.beside.ownUs());
    }
    const std::uint64_t allocations = small.allocations + large.allocations;
    const std::uint64_t pageFaults = small.pageFaults + large.pageFaults;
    std::printf("heap allocations and page faults after warm-up: %llu and %llu (must be 0)\n",
                static_cast<unsigned long long>(allocations),
                static_cast<unsigned long long>(pageFaults));
    return allocations == 0 && pageFaults == 0;
}

} // namespace

int main(int argc, char** argv)
{
    Cost small;
    Cost large;
    constexpr int kRounds = 100; // so that some are undisturbed where others use the machine, too
    benchmark::RegisterBenchmark("grab", grab, std::ref(small))
        ->Args({640, 480})
        ->Iterations(kRounds)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("grab", grab, std::ref(large))
        ->Args({2448, 2048})
        ->Iterations(kRounds)
        ->Unit(benchmark::kMillisecond);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 2;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return report(small, large) ? 0 : 1;
}
