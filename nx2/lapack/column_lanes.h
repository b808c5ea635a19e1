// SPDX-License-Identifier: MIT
// Columns side by side in the lanes of registers, where each of them goes through the same steps by itself: rows arrive
// in squares of lanes x lanes elements, which are transposed on the way, or one by one.
#pragma once

#include "simd/gather.h"

namespace ork::lapack {

// One element for each lane.
inline void scatter(double* p, const std::int64_t* offset, Vec<double> x)
{
    _mm_storel_pd(p + offset[0], x.v);
    _mm_storeh_pd(p + offset[1], x.v);
}
inline void scatter(float* p, const std::int64_t* offset, Vec<float> x)
{
    _mm_store_ss(p + offset[0], x.v);
    _mm_store_ss(p + offset[1], _mm_movehdup_ps(x.v));
    _mm_store_ss(p + offset[2], _mm_unpackhi_ps(x.v, x.v));
    _mm_store_ss(p + offset[3], _mm_shuffle_ps(x.v, x.v, 0xff));
}
inline void scatter(Complex<float>* p, const std::int64_t* offset, Vec<Complex<float>> x)
{
    scatter(reinterpret_cast<double*>(p), offset, Vec<double>{_mm_castps_pd(x.v.v)});
}
inline void scatter(Complex<double>* p, const std::int64_t* offset, Vec<Complex<double>> x)
{
    store<1>(p + *offset, x);
}

// `count` columns, ld apart, at most registers * lanes and more than (registers - 1) * lanes. The lanes that are left
// repeat the last column: a register is stored after all of it has been loaded, so they store what that one does.
// p is the address of a row in the first column.
template <class T, int registers>
class ColumnLanes {
public:
    static constexpr int lanes = Vec<T>::lanes, width = registers * lanes;

    ColumnLanes(std::int64_t ld, std::int64_t count)
    {
#pragma GCC unroll 32
        for (int j = 0; j < width; ++j) offset_[j] = (j < count ? j : count - 1) * ld;
    }

    [[gnu::always_inline]] Vec<T> row(const T* p, int r) const { return gather(p, offset_ + r * lanes, 0); }
    [[gnu::always_inline]] void put_row(T* p, int r, Vec<T> x) const { scatter(p, offset_ + r * lanes, x); }

    // Rows p .. p + lanes - 1.
    [[gnu::always_inline]] void square(const T* p, int r, Vec<T>* row) const
    {
        Vec<T> x[lanes];
#pragma GCC unroll 4
        for (int l = 0; l < lanes; ++l) x[l] = load<lanes>(p + offset_[r * lanes + l]);
        transpose(x);
#pragma GCC unroll 4
        for (int l = 0; l < lanes; ++l) row[l] = x[l];
    }
    [[gnu::always_inline]] void put_square(T* p, int r, const Vec<T>* row) const
    {
        Vec<T> x[lanes];
#pragma GCC unroll 4
        for (int l = 0; l < lanes; ++l) x[l] = row[l];
        transpose(x);
#pragma GCC unroll 4
        for (int l = 0; l < lanes; ++l) store<lanes>(p + offset_[r * lanes + l], x[l]);
    }

private:
    std::int64_t offset_[width];
};

// A recurrence down the columns (forward) or up: step k takes the row that stands at come + k and makes of it the row
// that goes to leave + k, which may be another one that has come before. step.at(k) prepares what all columns need of
// step k, and step(that, state, row) does it to the registers of one state and one row. k_first is the lowest of the
// steps.
template <bool forward, int registers, class T, class State, class Step>
[[gnu::always_inline]] inline void square_of_steps(const ColumnLanes<T, registers>& columns, std::int64_t k_first,
                                                   const T* come, T* leave, State (&state)[registers], const Step& step)
{
    constexpr int lanes = Vec<T>::lanes;
    const auto all_registers = [&](const auto&... prepared) __attribute__((always_inline))
    {
#pragma GCC unroll 8
        for (int r = 0; r < registers; ++r) {
            Vec<T> row[lanes];
            columns.square(come + k_first, r, row);
            int l = forward ? 0 : lanes - 1;
            ((step(prepared, state[r], row[l]), l += forward ? 1 : -1), ...);
            columns.put_square(leave + k_first, r, row);
        }
    };
    const auto prepared = [&](int l) __attribute__((always_inline))
    {
        return step.at(k_first + (forward ? l : lanes - 1 - l));
    };
    if constexpr (lanes == 1)
        all_registers(prepared(0));
    else if constexpr (lanes == 2)
        all_registers(prepared(0), prepared(1));
    else
        all_registers(prepared(0), prepared(1), prepared(2), prepared(3));
}
template <int registers, class T, class State, class Step>
[[gnu::always_inline]] inline void single_step(const ColumnLanes<T, registers>& columns, std::int64_t k, const T* come,
                                               T* leave, State (&state)[registers], const Step& step)
{
    const auto prepared = step.at(k);
#pragma GCC unroll 8
    for (int r = 0; r < registers; ++r) {
        Vec<T> row = columns.row(come + k, r);
        step(prepared, state[r], row);
        columns.put_row(leave + k, r, row);
    }
}
// Steps 0 .. n - 1, or n - 1 .. 0.
template <bool forward, int registers, class T, class State, class Step>
[[gnu::always_inline]] inline void recur(const ColumnLanes<T, registers>& columns, std::int64_t n, const T* come,
                                         T* leave, State (&state)[registers], const Step& step)
{
    constexpr int lanes = Vec<T>::lanes;
    if constexpr (forward) {
        std::int64_t k = 0;
        for (; k + lanes <= n; k += lanes) square_of_steps<true>(columns, k, come, leave, state, step);
        for (; k < n; ++k) single_step(columns, k, come, leave, state, step);
    } else {
        std::int64_t k = n;
        for (; k >= lanes; k -= lanes) square_of_steps<false>(columns, k - lanes, come, leave, state, step);
        for (; k > 0; --k) single_step(columns, k - 1, come, leave, state, step);
    }
}

// body.operator()<registers>(first, count) for groups of n columns, `most` registers wide while there are enough.
template <class T, int most, class Body>
inline void for_each_group(std::int64_t n, Body&& body)
{
    constexpr int lanes = Vec<T>::lanes;
    std::int64_t j = 0;
    for (; n - j > (most - 1) * lanes; j += most * lanes)
        body.template operator()<most>(j, n - j < most * lanes ? n - j : most * lanes);
    if constexpr (most > 2)
        while (n - j > lanes) {
            const std::int64_t count = n - j < 2 * lanes ? n - j : 2 * lanes;
            body.template operator()<2>(j, count);
            j += count;
        }
    if (n > j) body.template operator()<1>(j, n - j);
}

} // namespace ork::lapack
