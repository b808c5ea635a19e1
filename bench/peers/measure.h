// SPDX-License-Identifier: MIT
// Interleaved measurement on a noisy machine: every round samples every entrant once, in an order that rotates from
// round to round, so that a change of clock or a busy neighbour meets them all alike. Comparisons are medians of the
// ratios within rounds.
#pragma once

#include <ctime>
#include <functional>
#include <vector>

namespace ork::peers {

// What a time is. Processor time of the whole process leaves out the moments when something else ran on our core, and
// can't be cheated by work on other threads, so it is the fair clock where everything runs on one thread.
enum class Clock { wall = CLOCK_MONOTONIC, processor = CLOCK_PROCESS_CPUTIME_ID };

inline double now(Clock clock)
{
    timespec time;
    clock_gettime(static_cast<clockid_t>(clock), &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

template <class Run>
double time_of(const Run& run, long calls, Clock clock = Clock::processor)
{
    const double start = now(clock);
    run(calls);
    return now(clock) - start;
}

// Calls that take at least `seconds`, at least one.
template <class Run>
long calibrate(const Run& run, double seconds, Clock clock = Clock::processor)
{
    for (long calls = 1;; calls *= 4) {
        const double taken = time_of(run, calls, clock);
        if (taken >= seconds) return calls;
        if (taken >= seconds / 8 || calls > (1L << 40))
            return static_cast<long>(static_cast<double>(calls) * seconds / taken) + 1;
    }
}

struct Effort {
    double sample = 2e-3; // seconds an entrant and round, at least; one call where a call takes longer
    double budget = 0.6;  // seconds for all rounds of a case, as far as `fewest` allows
    int fewest = 5, most = 25;
    Clock clock = Clock::processor;
};

using Entrant = std::function<void(long calls)>;

// seconds[e][r]: one call of entrant e in round r.
using Samples = std::vector<std::vector<double>>;

Samples interleave(const std::vector<Entrant>& entrants, const Effort& effort);

double median(std::vector<double> values);

// Median over the rounds of seconds[b] / seconds[a]: how many times a is as fast as b.
double speed_ratio(const std::vector<double>& a, const std::vector<double>& b);

} // namespace ork::peers
