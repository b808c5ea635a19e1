// SPDX-License-Identifier: MIT
// The multiply in register tiles read from the operands as they stand: vectors of A's rows times broadcast elements of
// B, 4 x 4 in double precision. Rows that can't be read so (transposed, scaled, too few) are copied to the stack, a
// panel at a time.
#pragma once

#include "blas/gemm/pack.h"

namespace ork::gemm {

// The deepest block that the buffers on the stack hold.
constexpr Int deepest_block = 256;

// An element of B in all lanes.
template <class T>
struct Element {
    Vec<T> x;
    explicit Element(const T* b) : x(broadcast(*b)) {}
};
template <class R>
struct Element<Complex<R>> {
    Vec<R> re, im;
    explicit Element(const Complex<R>* b) : re(broadcast(b->re)), im(broadcast(b->im)) {}
};

// Sums of rows of A times elements of B; complex ones keep the products with the two parts of B apart until the end.
template <class T>
struct TileSum {
    Vec<T> x{};
    void add(Vec<T> rows, Element<T> b) { x = x + rows * b.x; }
    Vec<T> value(bool) const { return x; }
};
template <class R>
struct TileSum<Complex<R>> {
    Vec<R> by_re{}, by_im{};
    void add(Vec<R> rows, Element<Complex<R>> b)
    {
        by_re = by_re + rows * b.re;
        by_im = by_im + rows * b.im;
    }
    Vec<R> value(bool conjugated) const // whether B is
    {
        const Vec<R> turned = exchanged(by_im);
        return alternating_sum(by_re, conjugated ? broadcast(R(-1)) * turned : turned);
    }
};

// The last vector of a panel that does not end where its vectors do: it starts `offset` rows into the panel, so that it
// repeats rows of the vector before, and only its lanes [first, last) are written.
struct Tail {
    Int offset;
    int first, last;
};

// `vectors` vectors of rows by `columns` columns; a_stride from one step of depth to the next.
template <bool overwrite, int vectors, bool full, int columns, class T>
inline void direct_tile(Int depth, const T* a, Int a_stride, Operand<T> b, T* c, Int ldc, Tail tail)
{
    constexpr int lanes = Vec<T>::lanes;
    const auto offset = [&](int v) { return full || v < vectors - 1 ? v * lanes : tail.offset; };
    TileSum<T> sum[columns][vectors] = {};
    const T* elements = b.data;
    for (Int l = 0; l < depth; ++l, a += a_stride, elements += b.depth_stride) {
        Vec<Real<T>> rows[vectors];
#pragma GCC unroll 2
        for (int v = 0; v < vectors; ++v) rows[v] = load(reals(a + offset(v)));
#pragma GCC unroll 4
        for (int j = 0; j < columns; ++j) {
            const Element<T> element(elements + j * b.outer_stride);
#pragma GCC unroll 2
            for (int v = 0; v < vectors; ++v) sum[j][v].add(rows[v], element);
        }
    }
#pragma GCC unroll 4
    for (int j = 0; j < columns; ++j, c += ldc) {
#pragma GCC unroll 2
        for (int v = 0; v < (full ? vectors : vectors - 1); ++v) {
            Real<T>* x = reals(c + v * lanes);
            const Vec<Real<T>> value = sum[j][v].value(b.conjugated);
            store(x, overwrite ? value : load(x) + value);
        }
        if constexpr (!full) {
            alignas(16) T values[lanes];
            store_aligned(reals(values), sum[j][vectors - 1].value(b.conjugated));
            T* x = c + tail.offset;
            for (int r = tail.first; r < tail.last; ++r) x[r] = overwrite ? values[r] : x[r] + values[r];
        }
    }
}

// One panel of rows against all columns.
template <bool overwrite, int vectors, bool full, class T, class S>
inline void direct_panel(const Product<T, S>& p, Int row, const T* a, Int a_stride, Tail tail)
{
    constexpr Int most = is_complex<T> ? 2 : 4; // columns of a tile: eight sums
    Operand<T> b = p.b;
    T* c = p.c + row;
    Int j = 0;
    const auto tile = [&]<int columns>() {
        direct_tile<overwrite, vectors, full, columns>(p.k, a, a_stride, b, c, p.ldc, tail);
    };
    for (; j + most <= p.n; j += most, b.data += most * b.outer_stride, c += most * p.ldc)
        tile.template operator()<most>();
    if constexpr (most == 4) {
        if (p.n - j == 3) return tile.template operator()<3>();
        if (p.n - j == 2) return tile.template operator()<2>();
    }
    if (p.n - j == 1) tile.template operator()<1>();
}

// A panel of `width` rows of alpha A that can't be read as it stands: transposed, scaled, or short of rows. The last
// row stands in for rows that do not exist, so that their products raise no flag that its own would not.
template <int width, class T, class S, class To>
inline void copy_panel(const Product<T, S>& p, Int row, T* to, To convert)
{
    constexpr int lanes = Vec<T>::lanes;
    const T* from = p.a.at(row, 0);
    const Int last = p.m - row - 1;
    if (last < width - 1) {
        for (Int l = 0; l < p.k; ++l, from += p.a.depth_stride)
            for (Int r = 0; r < width; ++r) *to++ = convert(from[(r < last ? r : last) * p.a.outer_stride]);
    } else if (p.a.outer_stride == 1) {
        for (Int l = 0; l < p.k; ++l, from += p.a.depth_stride, to += width)
#pragma GCC unroll 2
            for (int r = 0; r < width; r += lanes) To::put(to + r, convert(load<lanes>(from + r)));
    } else {
        pack_transposing<width>(from, p.a.outer_stride, p.k, p.k, to, convert);
    }
}

// Calls panel<vectors, full>(row, a, a_stride, tail, first, last) for every panel of rows, of which it is to write
// [first, last). a is where the panel can be read, from row `row` on.
template <class T, class S, class Panel>
inline void for_each_panel(const Product<T, S>& p, Panel panel)
{
    constexpr int lanes = Vec<T>::lanes;
    const Tail none{};
    if (p.a.outer_stride == 1 && p.alpha == S(1) && !p.a.conjugated && p.m >= lanes) {
        const T* a = p.a.data;
        const Int stride = p.a.depth_stride;
        Int i = 0;
        for (; i + 2 * lanes <= p.m; i += 2 * lanes)
            panel.template operator()<2, true>(i, a + i, stride, none, i, i + 2 * lanes);
        const int rest = static_cast<int>(p.m - i);
        if (rest > lanes)
            panel.template operator()<2, false>(i, a + i, stride, {rest - lanes, 2 * lanes - rest, lanes}, i, p.m);
        else if (rest == lanes)
            panel.template operator()<1, true>(i, a + i, stride, none, i, p.m);
        else if (rest > 0)
            panel.template operator()<1, false>(p.m - lanes, a + p.m - lanes, stride, {0, lanes - rest, lanes}, i, p.m);
        return;
    }
    with_conversion(p.a, p.alpha, [&](auto convert) {
        alignas(16) T copy[2 * lanes * deepest_block];
        Int i = 0;
        for (; i + 2 * lanes <= p.m; i += 2 * lanes) {
            copy_panel<2 * lanes>(p, i, copy, convert);
            panel.template operator()<2, true>(i, copy, 2 * lanes, none, i, i + 2 * lanes);
        }
        for (; i < p.m; i += lanes) {
            copy_panel<lanes>(p, i, copy, convert);
            if (i + lanes <= p.m)
                panel.template operator()<1, true>(i, copy, lanes, none, i, i + lanes);
            else
                panel.template operator()<1, false>(i, copy, lanes, {0, 0, static_cast<int>(p.m - i)}, i, p.m);
        }
    });
}

template <bool overwrite, class T>
void multiply_tiles(const Product<T>& p)
{
    for_each_panel(p, [&]<int vectors, bool full>(Int row, const T* a, Int a_stride, Tail tail, Int, Int) {
        direct_panel<overwrite, vectors, full>(p, row, a, a_stride, tail);
    });
}

} // namespace ork::gemm
