// SPDX-License-Identifier: MIT
// y by blocks of sums: y <- alpha s + beta y. What differs from one kind of matrix to another is where a block's terms
// are; a kind says it by a call operator that adds those with a vector x to a Block.
#pragma once

#include <algorithm>

#include "xblas/walk.h"

namespace ork::xblas {

// Sums of the elements first .. first + count - 1 of y. Lanes beyond them repeat the last one.
template <class Sum>
struct Block {
    using T = typename Sum::Element;
    Int first;
    int count;
    Sum sums[most_registers];

    Block(Int first, int count) : first(first), count(count)
    {
#pragma GCC unroll 4 // brackets at sums would call for a string instruction, 6 % of a product of order 16
        for (Sum& s : sums) s = Sum::zero();
    }

    int registers() const { return (count + Sum::outputs - 1) / Sum::outputs; }

    // Sum k takes a[k * a_place + t * a_step] * x[t * x_step].
    void add(const T* a, Int a_place, Int a_step, const T* x, Int x_step, Int terms, bool conjugate)
    {
        Terms<Sum> block;
        block.a_step = a_step, block.x[0] = x, block.x_step = x_step, block.count = terms, block.conjugate = conjugate;
        block.a[0] = a;
        if (Sum::outputs > 1 && a_place == 1 && count % Sum::outputs == 0)
            return add_terms<Layout::adjacent>(registers(), sums, block);
        places(block.a, a, a_place);
        add_terms<Layout::apart>(registers(), sums, block);
    }
    // Sum k takes a[k * a_place + t * a_step] * x[k * x_place + t * x_step].
    void add(const T* a, Int a_place, Int a_step, const T* x, Int x_place, Int x_step, Int terms, bool conjugate)
    {
        Terms<Sum> block;
        block.a_step = a_step, block.x_step = x_step, block.count = terms, block.conjugate = conjugate;
        places(block.a, a, a_place);
        places(block.x, x, x_place);
        add_terms<Layout::own_x>(registers(), sums, block);
    }

private:
    void places(const T** p, const T* start, Int step) const
    {
        const int all = registers() * Sum::outputs;
        for (int k = 0; k < all; ++k) {
            p[k] = start;
            if (k + 1 < count) start += step;
        }
    }
};

// head and tail are x and, if there is one, its second vector.
template <class T>
struct Vectors {
    T alpha;
    const T *head, *tail;
    Int incx;
    T beta;
    T* y;
    Int incy;

    // Callers' pointers become those to the first elements, which a negative increment has at the far end.
    void start(Int terms, Int length)
    {
        const Int x_start = incx < 0 ? (1 - terms) * incx : 0;
        head += x_start;
        if (tail != nullptr) tail += x_start;
        if (incy < 0) y += (1 - length) * incy;
    }
};

template <class Sum>
inline void finish(Block<Sum>& block, const Vectors<typename Sum::Element>& v, const typename Sum::Factor& alpha,
                   const typename Sum::Factor& beta)
{
    using T = typename Sum::Element;
    using W = typename Sum::Work;
    const bool scaled = !(v.alpha == T{}) && !(Sum::one_scales_nothing && v.alpha == T(1));
    T* y = v.y + block.first * v.incy;
    for (int r = 0, left = block.count; left > 0; ++r, left -= Sum::outputs, y += Sum::outputs * v.incy) {
        const int count = std::min(left, Sum::outputs);
        Sum s = block.sums[r];
        if (scaled) s.scale(alpha);
        if (!(v.beta == T{})) {
            const T* places[Sum::outputs];
            for (int k = 0; k < Sum::outputs; ++k) places[k] = y + std::min(k, count - 1) * v.incy;
            s.add(Operand<T, W>(gathered<W>(places, 0)), beta);
        }
        scatter(s.rounded(), count, y, v.incy);
    }
}

template <class Sum, class Matrix>
void multiply(const Matrix& matrix, Int length, const Vectors<typename Sum::Element>& v)
{
    using T = typename Sum::Element;
    using W = typename Sum::Work;
    const bool zero = v.alpha == T{};
    if (zero && v.beta == T(1)) return;
    const typename Sum::Factor alpha(repeated<W>(&v.alpha), false), beta(repeated<W>(&v.beta), false);
    for (Int first = 0; first < length; first += block_size<Sum>) {
        const int count = static_cast<int>(std::min<Int>(length - first, block_size<Sum>));
        Block<Sum> block{first, count};
        if (!zero) {
            matrix(block, v.head);
            if (v.tail != nullptr) {
                Block<Sum> second{first, count};
                matrix(second, v.tail);
                for (int r = 0; r < block.registers(); ++r) block.sums[r].add(second.sums[r]);
            }
        }
        finish(block, v, alpha, beta);
    }
}

// prec, one of 211 .. 214, decides which sums.
template <class Matrix, class T>
inline void multiply(Int prec, const Matrix& matrix, Int terms, Int length, Vectors<T> v)
{
    v.start(terms, length);
    if (prec == 214) return multiply<ExtraSum<T>>(matrix, length, v);
    if (prec == 212) return multiply<PlainSum<T, double>>(matrix, length, v);
    multiply<PlainSum<T, Real<T>>>(matrix, length, v);
}

} // namespace ork::xblas
