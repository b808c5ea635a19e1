// SPDX-License-Identifier: MIT
// How the work of a call is divided among threads.
#pragma once

#include "spblas/call.h"

namespace ork::spblas {

struct Range {
    std::int64_t first, count;
    std::int64_t end() const { return first + count; }
};

// Slice `part` of `parts` with about as many entries as every other: rows, columns of bsc and of an upper skyline,
// entries of coo.
Range slice(const Call& call, int parts, int part);

// The same of `lines` rows by their pointers. A row counts as one entry more than it has, for what it costs when it is
// empty; total: entries and rows.
Range share(const Integers& pointers, std::int64_t lines, double total, int parts, int part);

// `count` things in parts whose lengths, but for the last, are multiples of `unit`.
Range strip(std::int64_t count, std::int64_t unit, int parts, int part);

// Threads for a call that multiplies so many entries with elements of B; at least 1. A thread that sleeps takes the
// caller 2 to 4 microseconds to wake, 5 % of a product of 112,000 entries that takes 41 (five-point Laplacian, double,
// AMD family 26), so two threads begin at about that.
inline constexpr double products_per_thread = 50'000;
int threads_for(double products);

// Right-hand sides that stay together: kernels take a few at once, and rows of C are divided at cache lines.
std::int64_t columns_together(const Call& call);

} // namespace ork::spblas
