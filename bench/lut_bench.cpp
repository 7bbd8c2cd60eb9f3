// What the conversion of a look-up table takes, against copying the camera's table in the same run.
#include "kx_pg_lut.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstring>
#include <numeric>
#include <vector>

namespace {

using KxPGrey::kLutEntries;
using KxPGrey::LutValues;

using Table = std::vector<std::uint16_t>;

Table rampOf(std::size_t entries)
{
    Table table(entries);
    std::iota(table.begin(), table.end(), std::uint16_t{0});
    return table;
}

/// Seconds that `count` runs of `work` on the table take.
template <typename Work>
double secondsOf(benchmark::IterationCount count, LutValues& values, const Work& work)
{
    const auto begin = std::chrono::steady_clock::now();
    for (benchmark::IterationCount run = 0; run < count; ++run) {
        work();
        benchmark::DoNotOptimize(values.data());
        benchmark::ClobberMemory();
    }
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

/// Measures `convert`, which fills the table that it is handed; the counter "copies" says how many
/// copies of a table take as long.
template <typename Convert>
void measure(benchmark::State& state, const Convert& convert)
{
    LutValues values = {};
    const LutValues other = {};
    for ([[maybe_unused]] auto step : state) {
        convert(values);
        benchmark::DoNotOptimize(values.data());
        benchmark::ClobberMemory();
    }
    const double converted = secondsOf(state.iterations(), values, [&] { convert(values); });
    const double copied = secondsOf(state.iterations(), values, [&] {
        std::memcpy(values.data(), other.data(), sizeof(values));
    });
    state.counters["copies"] = converted / copied;
}

void configured(benchmark::State& state, unsigned bits)
{
    const Table table = rampOf(kLutEntries);
    measure(state, [&](LutValues& values) {
        KxPGrey::scaleLut(std::span<const std::uint16_t, kLutEntries>(table), bits, values);
    });
}

void calculated(benchmark::State& state, std::size_t entries)
{
    const Table table = rampOf(entries);
    measure(state, [&](LutValues& values) { KxPGrey::resampleLut(table, values); });
}

BENCHMARK_CAPTURE(configured, of8Bits, 8U);
BENCHMARK_CAPTURE(configured, of12Bits, 12U);
BENCHMARK_CAPTURE(calculated, of256Entries, 256U);
BENCHMARK_CAPTURE(calculated, of4096Entries, 4096U);

} // namespace
