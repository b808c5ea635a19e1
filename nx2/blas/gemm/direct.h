// SPDX-License-Identifier: MIT
// The multiply that packs nothing, for products too small or too thin to repay it. Every element of C is summed over the
// depth in order from zero and then added to C, block of depth by block of depth, exactly as the packed multiply does.
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

// The lanes [first, last) of a panel's last vector that are rows of C still to be written.
struct Lanes {
    int first, last;
};

// `vectors` vectors of rows by `columns` columns; a_stride from one step of depth to the next.
template <bool overwrite, int vectors, int columns, class T>
inline void direct_tile(Int depth, const T* a, Int a_stride, const T* b, Int b_depth, Int b_column, T* c, Int ldc,
                        Lanes written)
{
    constexpr int lanes = Vec<T>::lanes;
    Vec<T> sum[columns][vectors] = {};
    for (Int l = 0; l < depth; ++l, a += a_stride, b += b_depth) {
        Vec<T> rows[vectors];
#pragma GCC unroll 2
        for (int v = 0; v < vectors; ++v) rows[v] = load(a + v * lanes);
#pragma GCC unroll 4
        for (int j = 0; j < columns; ++j) {
            const Vec<T> element = broadcast(b[j * b_column]);
#pragma GCC unroll 2
            for (int v = 0; v < vectors; ++v) sum[j][v] = sum[j][v] + rows[v] * element;
        }
    }
    if (vectors > 1 || written.last - written.first == lanes) {
#pragma GCC unroll 4
        for (int j = 0; j < columns; ++j)
#pragma GCC unroll 2
            for (int v = 0; v < vectors; ++v) {
                T* x = c + j * ldc + v * lanes;
                store(x, overwrite ? sum[j][v] : load(x) + sum[j][v]);
            }
    } else {
        for (int j = 0; j < columns; ++j)
            for (int r = written.first; r < written.last; ++r) {
                T* x = c + j * ldc + r;
                *x = overwrite ? lane(sum[j][0], r) : *x + lane(sum[j][0], r);
            }
    }
}

// One panel of rows against all columns.
template <bool overwrite, int vectors, class T>
inline void direct_panel(const Product<T>& p, Int row, const T* a, Int a_stride, Lanes written)
{
    const Int b_depth = p.b.depth_stride, b_column = p.b.outer_stride;
    const T* b = p.b.data;
    T* c = p.c + row;
    Int j = 0;
    for (; j + 4 <= p.n; j += 4, b += 4 * b_column, c += 4 * p.ldc)
        direct_tile<overwrite, vectors, 4>(p.k, a, a_stride, b, b_depth, b_column, c, p.ldc, written);
    switch (p.n - j) {
    case 3: direct_tile<overwrite, vectors, 3>(p.k, a, a_stride, b, b_depth, b_column, c, p.ldc, written); break;
    case 2: direct_tile<overwrite, vectors, 2>(p.k, a, a_stride, b, b_depth, b_column, c, p.ldc, written); break;
    case 1: direct_tile<overwrite, vectors, 1>(p.k, a, a_stride, b, b_depth, b_column, c, p.ldc, written); break;
    default: break;
    }
}

// A panel of `width` rows of alpha A that can't be read as it stands: transposed, scaled, or short of rows. The last row
// stands in for rows that do not exist, so that their products raise no flag that its own would not.
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
        pack_transposing<width>(from, p.a.outer_stride, p.k, to, scale);
    }
}

template <bool overwrite, class T>
void multiply_tiles(const Product<T>& p)
{
    constexpr int lanes = Vec<T>::lanes;
    const bool in_place = p.a.outer_stride == 1 && p.alpha == T(1) && p.m >= lanes;
    alignas(16) T copy[2 * lanes * deepest_block];
    const auto panel = [&]<int vectors>(Int row, Lanes written) {
        if (in_place) {
            direct_panel<overwrite, vectors>(p, row, p.a.at(row, 0), p.a.depth_stride, written);
        } else {
            copy_panel<vectors * lanes>(p, row, copy);
            direct_panel<overwrite, vectors>(p, row, copy, vectors * lanes, written);
        }
    };
    const Lanes all{0, lanes};
    Int i = 0;
    for (; i + 2 * lanes <= p.m; i += 2 * lanes) panel.template operator()<2>(i, all);
    if (i + lanes <= p.m) panel.template operator()<1>(i, all), i += lanes;
    if (i == p.m) return;
    if (p.m >= lanes) // the last vector of rows again, of which only the missing ones are written
        panel.template operator()<1>(p.m - lanes, {static_cast<int>(i - (p.m - lanes)), lanes});
    else
        panel.template operator()<1>(0, {0, static_cast<int>(p.m)});
}

// ---- thin -----------------------------------------------------------------------------------------------------------

// A product seen from its long side: out(r, j) = sum of wide(r, l) * narrow(l, j), j < count, where `wide` is contiguous in
// r. Either A is wide and the narrow side is B, or, transposed, B is wide and the narrow side is A.
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
    constexpr Int chunk = 1024 / sizeof(T), most = 8;
    alignas(16) T sums[most * chunk];
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

// Thin with one column, `wide` contiguous in the depth: `groups` vectors of rows at a time, whose squares of elements are
// transposed in registers, so that a lane sums one row in order.
template <bool overwrite, bool scaled, int groups, class T>
inline void vector_rows(const Thin<T>& p, Int row, const T* narrow)
{
    constexpr int lanes = Vec<T>::lanes;
    const Vec<T> factor = broadcast(p.wide_scale);
    const T* wide = p.wide.at(row, 0);
    const Int stride = p.wide.outer_stride;
    Vec<T> sum[groups] = {};
    Int l = 0;
    for (; l + lanes <= p.depth; l += lanes) {
#pragma GCC unroll 8
        for (int g = 0; g < groups; ++g) {
            Vec<T> square[lanes];
#pragma GCC unroll 4
            for (int i = 0; i < lanes; ++i) square[i] = load(wide + (g * lanes + i) * stride + l);
            transpose(square);
#pragma GCC unroll 4
            for (int i = 0; i < lanes; ++i) {
                if constexpr (scaled) square[i] = factor * square[i];
                sum[g] = sum[g] + square[i] * broadcast(narrow[l + i]);
            }
        }
    }
    alignas(16) T sums[groups * lanes];
#pragma GCC unroll 8
    for (int g = 0; g < groups; ++g) store_aligned(sums + g * lanes, sum[g]);
    for (int r = 0; r < groups * lanes; ++r) {
        for (Int rest = l; rest < p.depth; ++rest) {
            const T x = wide[r * stride + rest];
            sums[r] += (scaled ? p.wide_scale * x : x) * narrow[rest];
        }
        T* out = p.out + (row + r) * p.row_stride;
        *out = overwrite ? sums[r] : *out + sums[r];
    }
}

template <bool overwrite, class T>
void multiply_vector(const Thin<T>& p)
{
    constexpr int lanes = Vec<T>::lanes, groups = 16 / lanes;
    alignas(16) T narrow[deepest_block];
    for (Int l = 0; l < p.depth; ++l) narrow[l] = p.narrow_scale * *p.narrow.at(0, l);
    with_flag(p.wide_scale != T(1), [&]<bool scaled>() {
        Int row = 0;
        for (; row + groups * lanes <= p.rows; row += groups * lanes)
            vector_rows<overwrite, scaled, groups>(p, row, narrow);
        for (; row + 2 * lanes <= p.rows; row += 2 * lanes) vector_rows<overwrite, scaled, 2>(p, row, narrow);
        for (; row < p.rows; ++row) {
            T sum{};
            const T* wide = p.wide.at(row, 0);
            for (Int l = 0; l < p.depth; ++l) sum += (p.wide_scale * wide[l * p.wide.depth_stride]) * narrow[l];
            T* out = p.out + row * p.row_stride;
            *out = overwrite ? sum : *out + sum;
        }
    });
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

// kb: the depth of a block, at most deepest_block.
template <class T>
void multiply_direct(const Product<T>& p, Int kb)
{
    constexpr Int long_side = 32; // rows from which streaming beats tiles
    const Int step = kb < deepest_block ? kb : deepest_block;
    for (Int first = 0; first < p.k; first += step) {
        const Product<T> part = p.block(first, p.k - first < step ? p.k - first : step);
        with_flag(part.overwrite, [&]<bool overwrite>() {
            if (p.n == 1 && p.a.outer_stride != 1)
                multiply_vector<overwrite>(wide_a(part));
            else if (p.m == 1 && p.b.outer_stride != 1)
                multiply_vector<overwrite>(wide_b(part));
            else if (p.n < 8 && p.a.outer_stride == 1 && p.m >= long_side)
                multiply_thin<overwrite>(wide_a(part));
            else if (p.m < 8 && p.b.outer_stride == 1 && (p.n >= long_side || p.m == 1))
                multiply_thin<overwrite>(wide_b(part));
            else
                multiply_tiles<overwrite>(part);
        });
    }
}

} // namespace ork::gemm
