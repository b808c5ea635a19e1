// SPDX-License-Identifier: MIT
// What a plan holds, and the ways of computing that it chooses from.
#pragma once

#include "dft/engine/vertical.h"
#include "dft/lengths/table.h"
#include "dft/plan.h"

namespace ork::dft {

// Vectors of 16 bytes that are handled side by side: whole cache lines of columns come and go together.
inline constexpr std::int64_t group_vectors = 16;
// Cells between two vectors' scratch: their numbers would fall on the same cache sets otherwise.
inline constexpr std::int64_t scratch_gap = 4;

enum class Method : int {
    length,   // a straight-line kernel: n <= 64
    turn,     // n = r m by passes over one vector that fits the cache
    halves,   // n = n1 n2 as a matrix in groups of columns, then of rows
    rader,    // n prime, n - 1 of small primes: a cyclic convolution of n - 1
    bluestein // any n, by a convolution of at least 2 n - 1 with a chirp
};

// A length with small primes only, divided into passes.
struct Recipe {
    Method method = Method::bluestein;
    int radices[2][most_passes]; // of columns and rows; for `turn` the first has one
    int passes[2] = {0, 0};
};
// method is length, turn or halves, or bluestein when n has a prime factor that no pass has.
template <class R>
Recipe choose(std::int64_t n);
// The passes of a vertical transform; 0 when there are none.
template <class R>
int choose_vertical(std::int64_t n, int* radices);
// The cheapest length of small primes that is at least n.
template <class R>
std::int64_t good_length(std::int64_t n);
// The primes that passes have radices for, and whether n has no others.
inline constexpr int pass_primes[] = {2, 3, 5, 7, 11, 13, 17, 19, 23};
bool small_primes(std::int64_t n);

template <class R>
class Plan {
public:
    std::int64_t n = 0;
    Method method = Method::length;
    bool has_strided = false;

    Vertical<R> columns, rows;          // rows: of `turn` and `halves`; columns: of `halves`
    std::int64_t group = group_vectors; // vectors of a group of columns or rows of `halves`
    Vertical<R> strided;                // the whole transform, for vectors with strides

    const Kernels<R>* turn = nullptr;
    std::int64_t turn_radix = 0;
    R* lane_twiddles = nullptr;
    std::int64_t lane_twiddles_next = 0, lane_twiddles_of_result = 0;

    Plan* inner = nullptr;          // of the convolution
    R* chirp = nullptr;             // factors: bluestein
    R* response = nullptr;          // factors: the transformed other side of the convolution, over its length
    std::int32_t* places = nullptr; // rader: g^q and, behind n - 1 of them, g^-q modulo n
};

// Numbers of a row of the matrix between the halves: see scratch_gap.
template <class R>
inline std::int64_t matrix_row(const Plan<R>& plan)
{
    return plan.rows.n() + scratch_gap;
}
template <class R>
inline std::int64_t matrix_numbers(const Plan<R>& plan)
{
    return plan.columns.n() * matrix_row(plan);
}

// Each builds its tables twice: without memory, to count, and with, from roots of order n. False when there is no
// memory for scratch.
template <class R>
void build_turn(Plan<R>& plan, const Recipe& recipe, Arena& arena, const RootTable& roots);
template <class R>
void build_halves(Plan<R>& plan, const Recipe& recipe, Arena& arena, const RootTable& roots);
template <class R>
bool build_rader(Plan<R>& plan, Arena& arena);
template <class R>
bool build_bluestein(Plan<R>& plan, Arena& arena);

// Bytes of work memory of run_...
template <class R>
std::size_t turn_work(const Plan<R>& plan);
template <class R>
std::size_t halves_work(const Plan<R>& plan);
template <class R>
std::size_t convolution_work(const Plan<R>& plan);

// One contiguous transform, without scale.
template <class R>
void run_turn(const Plan<R>& plan, Direction direction, const R* in, R* out, void* work);
// Groups [from, to) of a half. The matrix stands between the halves.
template <class R>
void run_half(const Plan<R>& plan, int half, Direction direction, R scale, std::int64_t from, std::int64_t to,
              const R* in, R* out, R* matrix, void* work);
template <class R>
std::int64_t half_groups(const Plan<R>& plan, int half);
template <class R>
void run_rader(const Plan<R>& plan, Direction direction, const R* in, R* out, void* work);
template <class R>
void run_bluestein(const Plan<R>& plan, Direction direction, const R* in, R* out, void* work);

// x[i] *= factors[i], i < n; numbers at any address.
template <class R>
inline void multiply(R* x, const R* factors, std::int64_t n)
{
    std::int64_t i = 0;
    for (; i + lanes<R> <= n; i += lanes<R>) {
        R* p = x + 2 * i;
        store(p, times(load_lanes<Row::ascending>(p, 0), factors + 2 * cell<R> * (i / lanes<R>)).v);
    }
    for (; i < n; ++i) { // the last of an odd number, lane 0
        R* p = x + 2 * i;
        store<2>(p, times(Element<R>{load<2>(p)}, factors + 2 * cell<R> * (i / lanes<R>)).v);
    }
}
template <class R>
inline R* take_factors(Arena& arena, std::int64_t n)
{
    return arena.take<R>(static_cast<std::size_t>((n + lanes<R> - 1) / lanes<R> * factor<R>));
}
template <class R>
inline void set_factor(R* factors, std::int64_t i, Complex<R> w)
{
    R* p = factors + i / lanes<R> * factor<R>;
    store_factor(p, static_cast<int>(i % lanes<R>), w);
}

template <class R>
inline void scale_numbers(R* x, std::int64_t numbers, R scale)
{
    const std::int64_t reals = 2 * numbers;
    const Vec<R> factor = broadcast(scale);
    std::int64_t i = 0;
    for (; i + Vec<R>::lanes <= reals; i += Vec<R>::lanes) store(x + i, load(x + i) * factor);
    for (; i < reals; ++i) x[i] *= scale;
}

} // namespace ork::dft
