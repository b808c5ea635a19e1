// SPDX-License-Identifier: MIT
// The multiply that packs nothing, for products too small or too thin to repay it. Every element of C is summed over
// the depth in order from zero and then added to C, block of depth by block of depth, exactly as the packed multiply
// does.
//
//   tiles    4 rows x 4 columns in registers: vectors of A's rows times broadcast elements of B
//   thin     few columns of B: A streams by column after column, the sums wait in a buffer of the first level of cache
//   vector   one row or column against an operand that is contiguous in the depth
#pragma once

#include "blas/gemm/pack.h"
#include "blas/gemm/product.h"

namespace ork::gemm {

constexpr Int deepest_block = 256;

// ---- tiles ----------------------------------------------------------------------------------------------------------

// The last vector of a panel that does not end where its vectors do: it starts `offset` rows into the panel, so that it
// repeats rows of the vector before, and only its lanes [first, last) are written.
struct Tail {
    Int offset;
    int first, last;
};

// `vectors` vectors of rows by `columns` columns; a_stride from one step of depth to the next.
template <bool overwrite, int vectors, bool full, int columns, class T>
inline void direct_tile(Int depth, const T* a, Int a_stride, const T* b, Int b_depth, Int b_column, T* c, Int ldc,
                        Tail tail)
{
    constexpr int lanes = Vec<T>::lanes;
    const auto offset = [&](int v) { return full || v < vectors - 1 ? v * lanes : tail.offset; };
    Vec<T> sum[columns][vectors] = {};
    for (Int l = 0; l < depth; ++l, a += a_stride, b += b_depth) {
        Vec<T> rows[vectors];
#pragma GCC unroll 2
        for (int v = 0; v < vectors; ++v) rows[v] = load(a + offset(v));
#pragma GCC unroll 4
        for (int j = 0; j < columns; ++j) {
            const Vec<T> element = broadcast(b[j * b_column]);
#pragma GCC unroll 2
            for (int v = 0; v < vectors; ++v) sum[j][v] = sum[j][v] + rows[v] * element;
        }
    }
#pragma GCC unroll 4
    for (int j = 0; j < columns; ++j, c += ldc) {
#pragma GCC unroll 2
        for (int v = 0; v < (full ? vectors : vectors - 1); ++v) {
            T* x = c + v * lanes;
            store(x, overwrite ? sum[j][v] : load(x) + sum[j][v]);
        }
        if constexpr (!full)
            for (int r = tail.first; r < tail.last; ++r) {
                const T value = lane(sum[j][vectors - 1], r);
                T* x = c + tail.offset + r;
                *x = overwrite ? value : *x + value;
            }
    }
}

// One panel of rows against all columns.
template <bool overwrite, int vectors, bool full, class T>
inline void direct_panel(const Product<T>& p, Int row, const T* a, Int a_stride, Tail tail)
{
    const Int b_depth = p.b.depth_stride, b_column = p.b.outer_stride;
    const T* b = p.b.data;
    T* c = p.c + row;
    Int j = 0;
    const auto tile = [&]<int columns>() {
        direct_tile<overwrite, vectors, full, columns>(p.k, a, a_stride, b, b_depth, b_column, c, p.ldc, tail);
    };
    for (; j + 4 <= p.n; j += 4, b += 4 * b_column, c += 4 * p.ldc) tile.template operator()<4>();
    switch (p.n - j) {
    case 3:
        tile.template operator()<3>();
        break;
    case 2:
        tile.template operator()<2>();
        break;
    case 1:
        tile.template operator()<1>();
        break;
    default:
        break;
    }
}

// A panel of `width` rows of alpha A that can't be read as it stands: transposed, scaled, or short of rows. The last
// row stands in for rows that do not exist, so that their products raise no flag that its own would not.
template <int width, class T>
inline void copy_panel(const Product<T>& p, Int row, T* to)
{
    const T* from = p.a.at(row, 0);
    const Int last = p.m - row - 1;
    const Scaled<T> scale{p.alpha};
    if (last < width - 1) {
        for (Int l = 0; l < p.k; ++l, from += p.a.depth_stride)
            for (Int r = 0; r < width; ++r) *to++ = scale(from[(r < last ? r : last) * p.a.outer_stride]);
    } else if (p.a.outer_stride == 1) {
        for (Int l = 0; l < p.k; ++l, from += p.a.depth_stride, to += width)
#pragma GCC unroll 2
            for (int r = 0; r < width; r += Vec<T>::lanes) store_aligned(to + r, scale(load(from + r)));
    } else {
        pack_transposing<width>(from, p.a.outer_stride, p.k, p.k, to, scale);
    }
}

template <bool overwrite, class T>
void multiply_tiles(const Product<T>& p)
{
    constexpr int lanes = Vec<T>::lanes;
    const Tail none{};
    Int i = 0;
    if (p.a.outer_stride == 1 && p.alpha == T(1) && p.m >= lanes) {
        const T* a = p.a.data;
        const Int stride = p.a.depth_stride;
        for (; i + 2 * lanes <= p.m; i += 2 * lanes) direct_panel<overwrite, 2, true>(p, i, a + i, stride, none);
        const int rest = static_cast<int>(p.m - i);
        if (rest > lanes)
            direct_panel<overwrite, 2, false>(p, i, a + i, stride, {rest - lanes, 2 * lanes - rest, lanes});
        else if (rest == lanes)
            direct_panel<overwrite, 1, true>(p, i, a + i, stride, none);
        else if (rest > 0)
            direct_panel<overwrite, 1, false>(p, p.m - lanes, a + p.m - lanes, stride, {0, lanes - rest, lanes});
        return;
    }
    alignas(16) T copy[2 * lanes * deepest_block];
    for (; i + 2 * lanes <= p.m; i += 2 * lanes) {
        copy_panel<2 * lanes>(p, i, copy);
        direct_panel<overwrite, 2, true>(p, i, copy, 2 * lanes, none);
    }
    for (; i < p.m; i += lanes) {
        copy_panel<lanes>(p, i, copy);
        if (i + lanes <= p.m)
            direct_panel<overwrite, 1, true>(p, i, copy, lanes, none);
        else
            direct_panel<overwrite, 1, false>(p, i, copy, lanes, {0, 0, static_cast<int>(p.m - i)});
    }
}

// ---- thin -----------------------------------------------------------------------------------------------------------

// A product seen from its long side: out(r, j) = sum of wide(r, l) * narrow(l, j), j < count, where `wide` is
// contiguous in r. Either A is wide and the narrow side is B, or, transposed, B is wide and the narrow side is A.
template <class T>
struct Thin {
    Operand<T> wide, narrow;
    Int rows, count, depth;
    T wide_scale, narrow_scale; // alpha, on whichever of them is A
    T* out;
    Int row_stride, column_stride;
};

// sums[0 .. count) += wide * narrow, four steps of depth and `columns` columns at a time.
template <bool scaled, int columns, int steps, class T>
inline void thin_step(Int rows, const T* wide, Int depth_stride, T scale, const T* narrow, T* sums, Int sum_stride)
{
    constexpr int lanes = Vec<T>::lanes;
    Vec<T> element[columns][steps];
    for (int j = 0; j < columns; ++j)
        for (int s = 0; s < steps; ++s) element[j][s] = broadcast(narrow[j * deepest_block + s]);
    const Vec<T> factor = broadcast(scale);
    for (Int r = 0; r < rows; r += lanes) {
        Vec<T> sum[columns];
#pragma GCC unroll 2
        for (int j = 0; j < columns; ++j) sum[j] = load_aligned(sums + j * sum_stride + r);
#pragma GCC unroll 4
        for (int s = 0; s < steps; ++s) {
            Vec<T> x = load(wide + s * depth_stride + r);
            if constexpr (scaled) x = factor * x;
#pragma GCC unroll 2
            for (int j = 0; j < columns; ++j) sum[j] = sum[j] + x * element[j][s];
        }
#pragma GCC unroll 2
        for (int j = 0; j < columns; ++j) store_aligned(sums + j * sum_stride + r, sum[j]);
    }
}

template <bool overwrite, class T>
void multiply_thin(const Thin<T>& p)
{
    constexpr Int most = 8,
                  waiting = 8192 / sizeof(T); // sums that wait: a quarter of the first level of cache, or less
    const Int chunk = waiting / p.count / 16 * 16;
    alignas(16) T sums[waiting];
    alignas(16) T narrow[most * deepest_block];
    for (Int j = 0; j < p.count; ++j)
        for (Int l = 0; l < p.depth; ++l) narrow[j * deepest_block + l] = p.narrow_scale * *p.narrow.at(j, l);
    const Int lanes = Vec<T>::lanes;
    for (Int row = 0; row < p.rows; row += chunk) {
        const Int rows = p.rows - row < chunk ? p.rows - row : chunk, vectors = rows / lanes * lanes;
        for (Int i = 0; i < p.count * chunk; ++i) sums[i] = T{};
        with_flag(p.wide_scale != T(1), [&]<bool scaled>() {
            const auto steps = [&]<int count>(Int l) {
                const T* wide = p.wide.at(row, l);
                Int j = 0;
                for (; j + 2 <= p.count; j += 2)
                    thin_step<scaled, 2, count>(vectors, wide, p.wide.depth_stride, p.wide_scale,
                                                narrow + j * deepest_block + l, sums + j * chunk, chunk);
                if (j < p.count)
                    thin_step<scaled, 1, count>(vectors, wide, p.wide.depth_stride, p.wide_scale,
                                                narrow + j * deepest_block + l, sums + j * chunk, chunk);
            };
            Int l = 0;
            for (; l + 4 <= p.depth; l += 4) steps.template operator()<4>(l);
            for (; l < p.depth; ++l) steps.template operator()<1>(l);
        });
        for (Int r = vectors; r < rows; ++r)
            for (Int j = 0; j < p.count; ++j) {
                T sum{};
                for (Int l = 0; l < p.depth; ++l)
                    sum += (p.wide_scale * *p.wide.at(row + r, l)) * narrow[j * deepest_block + l];
                sums[j * chunk + r] = sum;
            }
        for (Int j = 0; j < p.count; ++j) {
            T* out = p.out + row * p.row_stride + j * p.column_stride;
            const T* sum = sums + j * chunk;
            for (Int r = 0; r < rows; ++r, out += p.row_stride) *out = overwrite ? sum[r] : *out + sum[r];
        }
    }
}

// ---- vector ---------------------------------------------------------------------------------------------------------

// Thin with one column, `wide` contiguous in the depth: `groups` vectors of rows at a time, whose squares of elements
// are transposed in registers, so that a lane sums one row in order. Eight rows of doubles keep the adders busy (four
// chains of two additions), and their addresses fit the addressing modes; sixteen lost a third to address arithmetic.
template <bool scaled, int groups, class T>
inline void vector_sums(Int depth, const T* wide, Int stride, T scale, const T* narrow, T* sums)
{
    constexpr int lanes = Vec<T>::lanes;
    const Vec<T> factor = broadcast(scale);
    Vec<T> sum[groups] = {};
    const T* row[groups];
#pragma GCC unroll 4
    for (int g = 0; g < groups; ++g) row[g] = wide + g * lanes * stride;
    const auto step = [&](Int l) __attribute__((always_inline))
    {
        Vec<T> element[lanes];
#pragma GCC unroll 4
        for (int i = 0; i < lanes; ++i) element[i] = broadcast(narrow[l + i]);
#pragma GCC unroll 4
        for (int g = 0; g < groups; ++g) {
            Vec<T> square[lanes];
#pragma GCC unroll 4
            for (int i = 0; i < lanes; ++i) square[i] = load(row[g] + i * stride + l);
            transpose(square);
#pragma GCC unroll 4
            for (int i = 0; i < lanes; ++i) {
                if constexpr (scaled) square[i] = factor * square[i];
                sum[g] = sum[g] + square[i] * element[i];
            }
        }
    };
    Int l = 0;
#pragma GCC unroll 1
    for (; l + lanes <= depth; l += lanes) step(l);
#pragma GCC unroll 4
    for (int g = 0; g < groups; ++g) store_aligned(sums + g * lanes, sum[g]);
    for (; l < depth; ++l)
        for (int r = 0; r < groups * lanes; ++r) {
            const T x = wide[r * stride + l];
            sums[r] += (scaled ? scale * x : x) * narrow[l];
        }
}

// The whole depth, blocks of kb for one group of rows after another, so that `wide` is read along its columns.
template <class T>
void multiply_vector(const Thin<T>& p, Int kb, bool overwrite)
{
    constexpr int lanes = Vec<T>::lanes, groups = 4;
    constexpr Int most = 8192 / sizeof(T);
    alignas(16) T narrow[most], sums[groups * lanes];
    const Int stride = p.wide.outer_stride, chunk = most / kb * kb;
    for (Int start = 0; start < p.depth; start += chunk) {
        const Int end = p.depth - start < chunk ? p.depth : start + chunk;
        for (Int l = start; l < end; ++l) narrow[l - start] = p.narrow_scale * *p.narrow.at(0, l);
        const auto rows = [&]<int vectors, bool scaled>(Int row) {
            for (Int l = start; l < end; l += kb) {
                const Int depth = end - l < kb ? end - l : kb;
                vector_sums<scaled, vectors>(depth, p.wide.at(row, l), stride, p.wide_scale, narrow + (l - start),
                                             sums);
                for (int r = 0; r < vectors * lanes; ++r) {
                    T* out = p.out + (row + r) * p.row_stride;
                    *out = overwrite && l == 0 ? sums[r] : *out + sums[r];
                }
            }
        };
        with_flag(p.wide_scale != T(1), [&]<bool scaled>() {
            Int row = 0;
            for (; row + groups * lanes <= p.rows; row += groups * lanes) rows.template operator()<groups, scaled>(row);
            for (; row + lanes <= p.rows; row += lanes) rows.template operator()<1, scaled>(row);
            for (; row < p.rows; ++row)
                for (Int l = start; l < end; l += kb) {
                    const T* wide = p.wide.at(row, 0);
                    T sum{};
                    for (Int i = l; i < end && i < l + kb; ++i) sum += (p.wide_scale * wide[i]) * narrow[i - start];
                    T* out = p.out + row * p.row_stride;
                    *out = overwrite && l == 0 ? sum : *out + sum;
                }
        });
    }
}

// ---- choice ---------------------------------------------------------------------------------------------------------

template <class T>
Thin<T> wide_a(const Product<T>& p)
{
    return {p.a, p.b, p.m, p.n, p.k, p.alpha, T(1), p.c, 1, p.ldc};
}

template <class T>
Thin<T> wide_b(const Product<T>& p)
{
    return {p.b, p.a, p.n, p.m, p.k, T(1), p.alpha, p.c, p.ldc, 1};
}

template <bool overwrite, class T>
inline void multiply_block(const Product<T>& p)
{
    constexpr Int long_side = 32; // rows from which streaming beats tiles
    if (p.m > 1 && p.n > 1 && p.m < long_side && p.n < long_side)
        multiply_tiles<overwrite>(p);
    else if (p.n < 8 && p.a.outer_stride == 1)
        multiply_thin<overwrite>(wide_a(p));
    else if (p.m < 8 && p.b.outer_stride == 1)
        multiply_thin<overwrite>(wide_b(p));
    else
        multiply_tiles<overwrite>(p);
}

// The depth in more than one block.
template <class T>
[[gnu::noinline]] void multiply_blocks(const Product<T>& p, Int step)
{
    for (Int first = 0; first < p.k; first += step) {
        const Product<T> part = p.block(first, p.k - first < step ? p.k - first : step);
        with_flag(part.overwrite, [&]<bool overwrite>() { multiply_block<overwrite>(part); });
    }
}

// kb: the depth of a block, at most deepest_block.
template <class T>
void multiply_direct(const Product<T>& p, Int kb)
{
    const Int step = kb < deepest_block ? kb : deepest_block;
    if (p.n == 1 && p.a.outer_stride != 1)
        multiply_vector(wide_a(p), step, p.overwrite);
    else if (p.m == 1 && p.b.outer_stride != 1)
        multiply_vector(wide_b(p), step, p.overwrite);
    else if (p.k > step)
        multiply_blocks(p, step);
    else
        with_flag(p.overwrite, [&]<bool overwrite>() { multiply_block<overwrite>(p); });
}

} // namespace ork::gemm
