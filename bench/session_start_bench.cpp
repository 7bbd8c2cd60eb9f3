// How long a session takes to its first frame, over what the simulation itself takes for one.
#include "bench_camera.h"
#include "bench_host.h"
#include "kx_pg_proc.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <limits>

namespace {

constexpr double kAimUs = 5'000;

double leastSessionUs = std::numeric_limits<double>::max();
double leastBareUs = std::numeric_limits<double>::max();

/// From the session's entry to the arrival of its first frame. Ends the program if it fails.
double sessionUs(kxbench::OpenCamera& open)
{
    kxbench::prepareHost(1, 2);
    const double startUs = kxbench::usageNow().wallUs;
    const int result = KxPgProc(kKxPGreyOther, open.guid, &open.camera, &open.info);
    if (result != 0 || kxbench::host().exports != 2) {
        std::fprintf(stderr, "bench: the session failed with %i\n", result);
        std::exit(1);
    }
    return kxbench::host().firstFrameUs - startUs;
}

/// From the start of capture to the first frame without a plug-in.
double bareUs(kxbench::OpenCamera& open)
{
    const double startUs = kxbench::usageNow().wallUs;
    static_cast<void>(open.camera.SetUserBuffers(kxbench::frameMemory(),
                                                 static_cast<int>(kxbench::slotBytes()),
                                                 static_cast<int>(kxbench::host().buffers)));
    static_cast<void>(open.camera.StartCapture());
    FlyCapture2::Image image;
    static_cast<void>(open.camera.RetrieveBuffer(&image));
    const double endUs = kxbench::usageNow().wallUs;
    static_cast<void>(open.camera.StopCapture());
    return endUs - startUs;
}

void toFirstFrame(benchmark::State& state)
{
    kxbench::loadCamera(1280, 1024);
    kxbench::OpenCamera open;
    for ([[maybe_unused]] auto step : state) {
        leastSessionUs = std::min(leastSessionUs, sessionUs(open));
        leastBareUs = std::min(leastBareUs, bareUs(open));
    }
    state.counters["session_us"] = leastSessionUs;
    state.counters["bare_us"] = leastBareUs;
}

BENCHMARK(toFirstFrame)->Iterations(50)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    std::printf("session to first frame: %.0f us over the simulation's %.0f us (aim %.0f us)\n",
                leastSessionUs - leastBareUs, leastBareUs, kAimUs);
    return 0;
}
