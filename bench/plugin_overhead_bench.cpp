// What the plug-in itself costs per frame: the whole loop less a bare loop with the same calls.
//
// Both loops run in turn on a camera that delivers at once. The least of many rounds counts, since
// whatever else the machine does only adds to it. Besides, nothing may be allocated and no page may
// fault once the loop runs, and the cost may not depend on the size of the frames.
#include "bare_loop.h"
#include "bench_host.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <limits>

namespace {

constexpr std::uint32_t kWarmUp = 200;
constexpr std::uint32_t kFrames = 5'000;
constexpr double kAimUs = 0.4;
constexpr double kAimRatio = 1.10;

struct Cost {
    double wholeUs = std::numeric_limits<double>::max();
    double bareUs = std::numeric_limits<double>::max();
    std::uint64_t allocations = 0;
    std::uint64_t pageFaults = 0;

    double ownUs() const { return wholeUs - bareUs; }
};

template <typename Loop>
kxbench::Usage measure(Loop loop)
{
    kxbench::prepareHost(kWarmUp, kWarmUp + kFrames);
    loop();
    return kxbench::host().until - kxbench::host().from;
}

void round(kxbench::OpenCamera& open, Cost& cost)
{
    const kxbench::Usage whole = measure([&open] { kxbench::runWholeLoop(open); });
    const kxbench::Usage bare = measure([&open] { kxbench::runBareLoop(open); });
    cost.wholeUs = std::min(cost.wholeUs, whole.cpuUs / kFrames);
    cost.bareUs = std::min(cost.bareUs, bare.cpuUs / kFrames);
    cost.allocations += whole.allocations;
    cost.pageFaults += whole.pageFaults;
}

void grab(benchmark::State& state, Cost& cost)
{
    kxbench::loadCamera(static_cast<unsigned>(state.range(0)),
                        static_cast<unsigned>(state.range(1)));
    kxbench::OpenCamera open;
    for ([[maybe_unused]] auto step : state) {
        round(open, cost);
    }
    state.counters["whole_us"] = cost.wholeUs;
    state.counters["bare_us"] = cost.bareUs;
    state.counters["own_us"] = cost.ownUs();
    state.counters["allocations"] = static_cast<double>(cost.allocations);
    state.counters["page_faults"] = static_cast<double>(cost.pageFaults);
}

bool report(const Cost& small, const Cost& large)
{
    const double ratio = large.ownUs() / small.ownUs();
    std::printf("plug-in's own time per frame: %.3f us at 640x480, %.3f us at 2448x2048 "
                "(aim %.1f us)\n",
                small.ownUs(), large.ownUs(), kAimUs);
    std::printf("ratio large to small: %.3f (aim at most %.2f)\n", ratio, kAimRatio);
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
    constexpr int kRounds = 30;
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
