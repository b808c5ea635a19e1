// SPDX-License-Identifier: MIT
// The order in which the rows of a triangle are solved, from its structure alone: slices of four rows of which none
// needs another, so that they go through registers together, and chunks of slices for threads.
//
// Rows that can be solved next are taken by the lowest number first, so slices advance along a few neighbouring
// stretches of the matrix, and what they read and write stays in the caches; a level at a time, each as wide as the
// matrix, a seven-point Laplacian on 110^3 points takes twice as long. A row that becomes free waits for `delay`
// slices, because its numbers come out of the pipeline that much later; without rows that have waited it is taken at
// once.
//
// For threads the work is divided into stages, which follow each other, of one chunk a thread. What a chunk needs is
// solved in former stages or in the chunk itself: each thread follows its part of the free rows for about as long as
// the others.
#pragma once

#include <cstdint>

#include "sparse/solve_rows.h"

namespace ork::sparse {

inline constexpr int slice_height = 4;

enum class Triangle { lower, upper, both };

template <class Int>
struct Schedule {
    Int* order = nullptr; // 4 a slice; a slice of fewer rows repeats its first
    std::int64_t slices = 0;
    std::int64_t* chunk_begin = nullptr; // chunks + 1 slices; chunks of a stage are neighbours
    std::int64_t chunks = 0;
    int threads = 1;

    Schedule() = default;
    Schedule(const Schedule&) = delete;
    Schedule& operator=(const Schedule&) = delete;
    ~Schedule();
};

enum class Found { schedule, useless, no_memory };

// In the order of the solve: of an upper triangle the last row comes first. Of `both` it is that of the lower one, in
// which each row also comes before those that its entries above the diagonal name. Useless: too few rows are free at a
// time for slices.
template <class Int>
Found find_schedule(const SolveRows<Int>& rows, Triangle triangle, int threads, Schedule<Int>& schedule);

} // namespace ork::sparse
