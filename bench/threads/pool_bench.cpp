// SPDX-License-Identifier: MIT
// What do threads gain a single caller, and what do they cost callers that have no processor to spare?
#include <algorithm>
#include <chrono>
#include <vector>

#include <benchmark/benchmark.h>

#include "ork/blas.h"
#include "ork/ork.h"

namespace {

// A call of two parts, `microseconds` long for one thread, after a pause in which the worker spins on or falls asleep.
void call(benchmark::State& state)
{
    using Clock = std::chrono::steady_clock;
    const auto turns = [](void* count, int) {
        volatile double x = 1;
        for (long i = *static_cast<long*>(count); i > 0; --i) x = x * 1.0000001;
    };
    static const double turn = [&] { // seconds
        long count = 10'000'000;
        const auto start = Clock::now();
        turns(&count, 0);
        return std::chrono::duration<double>(Clock::now() - start).count() / static_cast<double>(count);
    }();
    long half = std::max(1L, static_cast<long>(static_cast<double>(state.range(0)) * 0.5e-6 / turn));
    const auto pause = std::chrono::microseconds(state.range(1));
    ork_set_num_threads(static_cast<int>(state.range(2)));
    for (auto _ : state) {
        for (const auto start = Clock::now(); Clock::now() - start < pause;) {
        }
        const auto start = Clock::now();
        ork_parallel_for(2, turns, &half);
        state.SetIterationTime(std::chrono::duration<double>(Clock::now() - start).count());
    }
}

// Eight threads that multiply at once, each its own matrices.
void callers(benchmark::State& state)
{
    const auto n = static_cast<int32_t>(state.range(0));
    const double one = 1, zero = 0;
    std::vector<double> a(static_cast<size_t>(n) * n, 1.0), b = a, c = a;
    ork_set_num_threads(static_cast<int>(state.range(1)));
    for (auto _ : state) dgemm_("N", "N", &n, &n, &n, &one, a.data(), &n, b.data(), &n, &zero, c.data(), &n);
    state.SetItemsProcessed(state.iterations());
}

} // namespace

BENCHMARK(call)
    ->ArgNames({"us", "pause", "threads"})
    ->ArgsProduct({{2, 5, 10, 25, 50, 100, 1000}, {5, 1000}, {1, 2}})
    ->Iterations(300)
    ->UseManualTime();
BENCHMARK(callers)->ArgNames({"n", "threads"})->ArgsProduct({{100, 200, 400, 800}, {1, 2}})->Threads(8)->UseRealTime();

BENCHMARK_MAIN();
