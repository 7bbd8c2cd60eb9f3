// What one live pass over all parameters costs: the calls that it makes, its time, and the time of
// the same calls alone.
//
// The pass and its calls run in turn on a colour camera whose registers answer at once, so that the
// ratio is the worst case: with a real camera the calls take nearly all of the time. The least of
// many rounds counts.
#include "bench_camera.h"
#include "bench_host.h"
#include "control/sim_control.h"
#include "kx_pg_proc.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <string>
#include <vector>

namespace {

constexpr unsigned kPasses = 1'000;

/// A call of the camera, as it can be made again.
struct Call {
    enum Operation { kIsConnected, kGetInfo, kGet, kSet } operation;
    FlyCapture2::PropertyType property;
};

std::vector<Call> passCalls;
double leastPassUs = std::numeric_limits<double>::max();
double leastCallsUs = std::numeric_limits<double>::max();

void configureAll()
{
    kxbench::prepareHost(1, 2);
    kxbench::Parameters& parameters = kxbench::host().parameters;
    parameters.sweepMode = 1;
    parameters.gainDb = 6.0F;
    parameters.exposureUs = 5'000.0F;
    parameters.gamma = 2.0F;
    parameters.saturation = 100;
    parameters.whiteBalance = 500;
}

void pass(KxPGrey::CCamProc& proc, kxbench::OpenCamera& open)
{
    static_cast<void>(proc.ProcParametrizeCam(&open.camera, true));
}

/// Ends the program for a call that no live pass makes.
Call parsed(const fcsim::Call& call, const KxPGrey::CExCam& camera)
{
    const std::string name = call.arguments.substr(0, call.arguments.find(' '));
    unsigned property = 0;
    while (property < KxPGrey::kPropertyCount - 1 && name != camera.propNames[property].name) {
        ++property;
    }
    const auto type = static_cast<FlyCapture2::PropertyType>(property);
    for (const auto& [text, operation] : {std::pair{"IsConnected", Call::kIsConnected},
                                          {"GetPropertyInfo", Call::kGetInfo},
                                          {"GetProperty", Call::kGet},
                                          {"SetProperty", Call::kSet}}) {
        if (call.operation == text) {
            return {operation, type};
        }
    }
    std::fprintf(stderr, "bench: the pass called %s\n", call.operation.c_str());
    std::exit(1);
}

void recordPass(KxPGrey::CCamProc& proc, kxbench::OpenCamera& open)
{
    fcsim::recordCalls(true);
    pass(proc, open);
    for (const fcsim::Call& call : fcsim::takeCalls()) {
        passCalls.push_back(parsed(call, open.camera));
    }
    fcsim::recordCalls(false);
}

/// The calls of a pass; what is set is what was read just before.
void callAlone(kxbench::OpenCamera& open)
{
    FlyCapture2::PropertyInfo info;
    FlyCapture2::Property property;
    for (const Call& call : passCalls) {
        switch (call.operation) {
        case Call::kIsConnected:
            benchmark::DoNotOptimize(open.camera.IsConnected());
            break;
        case Call::kGetInfo:
            info.type = call.property;
            static_cast<void>(open.camera.GetPropertyInfo(&info));
            break;
        case Call::kGet:
            property.type = call.property;
            static_cast<void>(open.camera.GetProperty(&property));
            break;
        case Call::kSet:
            static_cast<void>(open.camera.SetProperty(&property, false));
            break;
        }
    }
}

template <typename Work>
double leastOf(double least, Work work)
{
    const double startUs = kxbench::usageNow().cpuUs;
    for (unsigned i = 0; i < kPasses; ++i) {
        work();
    }
    return std::min(least, (kxbench::usageNow().cpuUs - startUs) / kPasses);
}

void parameterPass(benchmark::State& state)
{
    kxbench::loadCamera(640, 480, "colour = true");
    configureAll();
    kxbench::OpenCamera open;
    KxPGrey::CCamProc proc;
    proc.isColor = true;
    // The first pass asks for the ranges and switches to manual control.
    pass(proc, open);
    recordPass(proc, open);
    for ([[maybe_unused]] auto step : state) {
        leastPassUs = leastOf(leastPassUs, [&] { pass(proc, open); });
        leastCallsUs = leastOf(leastCallsUs, [&open] { callAlone(open); });
    }
    state.counters["calls"] = static_cast<double>(passCalls.size());
    state.counters["pass_us"] = leastPassUs;
    state.counters["calls_us"] = leastCallsUs;
}

BENCHMARK(parameterPass)->Iterations(30)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    std::printf("live parameter pass: %zu calls, %.2f us, the calls alone %.2f us (ratio %.2f)\n",
                passCalls.size(), leastPassUs, leastCallsUs, leastPassUs / leastCallsUs);
    return 0;
}
