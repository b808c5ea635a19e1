// SPDX-License-Identifier: MIT
// Smoothers on packed matrices: a phase at a time, so that threads can share each.
#pragma once

#include "sparse/packed.h"

namespace ork::sparse {

template <class Int, class T>
[[gnu::noinline]] void symgs_phase(int phase, Position first, Position last, const Packed<Int, T>* a, T alpha,
                                   const T* b, T* x, T* rest, T* y, T* dot)
{
    T sum_of_products{};
    with_height(
        a, [&](auto slices) __attribute__((always_inline)) {
            using Row = typename decltype(slices)::Row;
            constexpr int h = sizeof(Row) / sizeof(T);
            if (first >= last) return;
            switch (phase) {
            case phase_from_zero:
            case phase_forward: {
                const bool reads = phase == phase_forward;
                slices.each(
                    first, last, false, b, x,
                    [&](Position s) __attribute__((always_inline)) {
                        Row sum = slices.less(alpha * Row::gathered(b, slices.rows(s)), slices.a.lower, s, x);
                        sum.store_at(rest + s * h);
                        if (reads) sum = slices.less(sum, slices.a.upper, s, x);
                        slices.times_inverse(sum, s).scatter_to(x, slices.rows(s));
                    },
                    reads ? slices.a.upper.begin : nullptr, slices.a.upper.cols);
                break;
            }
            case phase_backward:
                slices.each(
                    first, last, true, x, x, [&](Position s) __attribute__((always_inline)) {
                        const Row sum = slices.less(Row::at(rest + s * h), slices.a.upper, s, x);
                        slices.times_inverse(sum, s).scatter_to(x, slices.rows(s));
                    });
                break;
            default:
                slices.each(
                    first, last, false, x, y, [&](Position s) __attribute__((always_inline)) {
                        const Int* const rows = slices.rows(s);
                        slices.more(Row::at(rest + s * h), slices.a.lower, s, x).scatter_to(y, rows);
                        if (dot != nullptr)
                            for (int l = 0; l < h; ++l)
                                if (slices.counts(s, l))
                                    sum_of_products = sum_of_products + conjugated(x[rows[l]]) * y[rows[l]];
                    });
            }
        });
    if (dot != nullptr && phase == phase_product) *dot = sum_of_products;
}

template <class Int, class T>
inline void symgs(bool from_zero, const Packed<Int, T>* a, T alpha, const T* b, T* x, T* rest, T* y, T* dot)
{
    const auto run = [&](int phase) { symgs_phase(phase, 0, a->slices, a, alpha, b, x, rest, y, dot); };
    run(from_zero ? phase_from_zero : phase_forward);
    run(phase_backward);
    if (y != nullptr) run(phase_product);
}

template <class Int, class T>
[[gnu::noinline]] void lu_phase(int phase, Position first, Position last, const Packed<Int, T>* a, const T* e,
                                const T* inverse, const T* b, T* x, T* z)
{
    if (first >= last) return;
    with_height(
        a, [&](auto slices) __attribute__((always_inline)) {
            using Row = typename decltype(slices)::Row;
            constexpr int h = sizeof(Row) / sizeof(T);
            slices.each(
                first, last, phase == phase_backward, x, z, [&](Position s) __attribute__((always_inline)) {
                    const Int* const rows = slices.rows(s);
                    if (phase == phase_forward) {
                        const Row own = Row::at(slices.a.diagonal + s * h) * Row::gathered(x, rows);
                        Row sum = slices.less(Row::gathered(b, rows) - own, slices.a.lower, s, x);
                        sum = slices.less(slices.less(sum, slices.a.upper, s, x), slices.a.lower, s, z);
                        (Row::gathered(inverse, rows) * sum).scatter_to(z, rows);
                    } else {
                        Row sum = Row::gathered(e, rows) * Row::gathered(z, rows);
                        sum = Row::gathered(inverse, rows) * slices.less(sum, slices.a.upper, s, z);
                        sum.scatter_to(z, rows);
                        (Row::gathered(x, rows) + sum).scatter_to(x, rows);
                    }
                });
        });
}

} // namespace ork::sparse
