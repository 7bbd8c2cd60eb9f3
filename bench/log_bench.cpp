// What a disabled log line costs against an empty loop.
#include "kx_log.h"

#include <benchmark/benchmark.h>

#define KX_LOG_TAG "KX_PG_BENCH"

namespace {

void emptyLoop(benchmark::State& state)
{
    unsigned number = 0;
    for ([[maybe_unused]] auto step : state) {
        benchmark::DoNotOptimize(++number);
        benchmark::ClobberMemory();
    }
}

void disabledLine(benchmark::State& state)
{
    gKxLogLevelLib = 0;
    unsigned number = 0;
    for ([[maybe_unused]] auto step : state) {
        benchmark::DoNotOptimize(++number);
        KX_LOG_I("frame %u of %u\n", number, number);
        // The host may change the level at any time, so the next pass has to look again.
        benchmark::ClobberMemory();
    }
}

BENCHMARK(emptyLoop);
BENCHMARK(disabledLine);

} // namespace
