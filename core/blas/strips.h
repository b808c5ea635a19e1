// SPDX-License-Identifier: MIT
// Matrices divided among threads: into strips of rows or columns, triangles into strips of about equal area.
#pragma once

#include <algorithm>
#include <cstdint>

#include "threads/pool.h"

namespace ork::blas {

// Pieces of a matrix start at multiples of this, which holds a whole number of micro-tiles of every kernel in both
// directions.
inline constexpr std::int64_t grain = 8;

constexpr std::int64_t round_up(std::int64_t size, std::int64_t unit) { return (size + unit - 1) / unit * unit; }

// Length of each of `parts` strips of a side, the last of which may be shorter: a multiple of `unit`.
constexpr std::int64_t strip_length(std::int64_t size, int parts, std::int64_t unit = grain)
{
    return std::max(unit, round_up((size + parts - 1) / parts, unit));
}

// Threads worth using for so much work; at least 1.
inline int affordable_threads(double work, double work_per_thread)
{
    const double affordable = work / work_per_thread;
    return affordable < 2 ? 1 : static_cast<int>(std::min<double>(affordable, threads::limit()));
}

// Runs body(first, count) for strips of `size` rows or columns.
template <class Body>
void run_strips(std::int64_t size, int threads, Body body, std::int64_t unit = grain)
{
    const std::int64_t length = strip_length(size, threads, unit);
    const int parts = static_cast<int>((size + length - 1) / length);
    if (parts <= 1) return body(std::int64_t{0}, size);
    threads::run(parts, [&](int part) {
        const std::int64_t first = part * length;
        body(first, std::min(length, size - first));
    });
}

// Where strip `part` of `parts` begins, when the columns of a triangle of order n are divided into equal areas.
std::int64_t triangle_strip_begin(bool lower, std::int64_t n, int parts, int part);

// Runs body(first, count) for strips of columns of a triangle.
template <class Body>
void run_triangle_strips(bool lower, std::int64_t n, int threads, Body body)
{
    if (threads <= 1) return body(std::int64_t{0}, n);
    threads::run(threads, [&](int part) {
        const std::int64_t first = triangle_strip_begin(lower, n, threads, part);
        const std::int64_t last = triangle_strip_begin(lower, n, threads, part + 1);
        if (first < last) body(first, last - first);
    });
}

constexpr bool is_letter(const char* option, char letter) { return (*option & ~0x20) == letter; }

} // namespace ork::blas
