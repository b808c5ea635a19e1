// SPDX-License-Identifier: MIT
// What the stages of a solve read from its work record: sizes, sides and which points are unknown.
#pragma once

#include <algorithm>
#include <atomic>

#include "blas/strips.h"
#include "ork/abi/pde.h"

namespace ork::pde {

enum Pair : Int { dd = 0, dn = 1, nd = 2, nn = 3, pp = 6 };
enum Side : Int { dirichlet = 0, neumann = 1, periodic = 2 };

// Statuses of stages, named in message 74.
enum StageStatus : Int { no_memory = -1, transform_error = -2 };

struct Range {
    Int first, end;
    Int size() const { return std::max<Int>(end - first, 0); }
};

constexpr Range unknowns(Pair pair, Int n)
{
    return {pair == dd || pair == dn ? 1 : 0, pair == dn || pair == nn ? n + 1 : n};
}

// Where the sides of a direction and its transforms stand in the arrays of a solve.
constexpr Int at_q = 3; // of the real numbers
constexpr Int at_sides = 6, at_positions = 19, at_threads = 24, at_paths = 25, at_transforms = 40;

template <class R>
struct Grid {
    explicit Grid(const Work<R>& work)
        : work(work), n{work.nx, work.ny, work.nz}, row(work.nx + 1), plane(row * (work.ny + 1)), flat(work.nz == 0)
    {
        for (int i = 0; i <= last_direction(); ++i) { // nothing is known of the third pair in two dimensions
            side[i][0] = static_cast<Side>(work.ipar[at_sides + 2 * i]);
            side[i][1] = static_cast<Side>(work.ipar[at_sides + 2 * i + 1]);
            inside[i] = unknowns(pair(i), n[i]);
        }
        if (flat) inside[2] = {0, 1};
    }

    Pair pair(int direction) const { return static_cast<Pair>(2 * side[direction][0] + side[direction][1]); }
    R step(int direction) const { return work.fpar[direction] / static_cast<R>(n[direction]); }
    int last_direction() const { return flat ? 1 : 2; }

    const Work<R>& work;
    Int n[3];
    Int row, plane; // numbers from a row to the next, from a plane to the next
    bool flat;
    Side side[3][2] = {};
    Range inside[3];
};

// Runs body(first, count) -> status for shares of `units`, of `numbers` points each, and stores the worst status.
template <class R, class Body>
void share_units(Work<R>& work, Int units, Int numbers, double numbers_per_thread, Body&& body)
{
    if (units <= 0) return;
    const double points = static_cast<double>(units) * static_cast<double>(numbers);
    const Int most = std::clamp<Int>(work.ipar[at_threads], 1, units);
    const int threads = static_cast<int>(std::min<Int>(blas::affordable_threads(points, numbers_per_thread), most));
    std::atomic<Int> worst = 0;
    blas::run_strips(
        units, threads,
        [&](Int first, Int count) {
            const Int status = body(first, count);
            Int known = worst.load(std::memory_order_relaxed);
            while (status < known && !worst.compare_exchange_weak(known, status, std::memory_order_relaxed)) {
            }
        },
        1);
    if (worst != 0) work.status = worst;
}

} // namespace ork::pde
