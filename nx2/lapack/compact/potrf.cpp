// SPDX-License-Identifier: MIT
// A = L L^H; U^H U is the same with rows and columns exchanged. Blocks of columns from the left on; every element first
// receives all products of earlier blocks, in registers.
#include "lapack/compact/tile.h"

namespace ork::lapack {
namespace {

template <class R>
inline Vec<R> real_part(Lanes<R> a)
{
    return a.x;
}
template <class R>
inline Vec<R> real_part(Lanes<Complex<R>> a)
{
    return a.re;
}

// The lower triangle of order n, in registers: products of earlier columns, then its own factor.
template <class T, int n>
inline void factor_corner(const Matrix<Real<T>>& a, Int depth)
{
    using R = Real<T>;
    const Matrix<R> corner = a.from(0, depth);
    Lanes<T> x[n][n];
    R* column = corner.data;
#pragma GCC unroll 8
    for (int c = 0; c < n; ++c, column = further(column, corner.column_stride))
#pragma GCC unroll 8
        for (int r = c; r < n; ++r) x[r][c] = Lanes<T>::get(column + r * corner.row_stride, corner.imaginary);
    const R* at = a.data;
    for (Int k = 0; k < depth; ++k, at += a.column_stride) {
        Lanes<T> left[n];
#pragma GCC unroll 8
        for (int r = 0; r < n; ++r) left[r] = Lanes<T>::get(at + r * a.row_stride, a.imaginary);
#pragma GCC unroll 8
        for (int c = 0; c < n; ++c)
#pragma GCC unroll 8
            for (int r = c; r < n; ++r) x[r][c].template subtract_product<true>(left[r], left[c]);
    }
    column = corner.data;
#pragma GCC unroll 8
    for (int c = 0; c < n; ++c, column = further(column, corner.column_stride)) {
        const Vec<R> d = root(real_part(x[c][c]));
        x[c][c] = {d};
        x[c][c].put(column + c * corner.row_stride, corner.imaginary);
#pragma GCC unroll 8
        for (int r = c + 1; r < n; ++r) {
            x[r][c] = x[r][c] / d;
            x[r][c].put(column + r * corner.row_stride, corner.imaginary);
        }
#pragma GCC unroll 8
        for (int k = c + 1; k < n; ++k)
#pragma GCC unroll 8
            for (int r = k; r < n; ++r) x[r][k].template subtract_product<true>(x[r][c], x[k][c]);
    }
}

template <class T>
void factor(const Shape& shape, bool upper, Int n, Real<T>* data, Int lda)
{
    using R = Real<T>;
    if (n <= 0) return;
    const auto array = shape.array<T>(data, lda, n, n);
    const bool along_rows = shape.rows() != upper; // of the lower triangle
    // Each column of a tile waits for the quotients of the one before, so tiles are narrow, and tall: up to a tenth
    // faster than squares.
    constexpr int smallest = is_complex<T> ? 3 : 5, side = 2, height = is_complex<T> ? 2 : 6;
    if (n <= smallest)
        return with_size<smallest>(n, [&]<int order>() {
            one_by_one<T>(shape, upper, array, [](const Matrix<R>& a) { factor_corner<T, order>(a, 0); });
        });
    in_groups<T>(shape, n * n, [&](const Group& group) {
        Matrix<R> a[slices_together];
        const int count = group.count;
        for (int g = 0; g < count; ++g) a[g] = array.matrix(group.slices[g].pack, group.slices[g].lane, along_rows);
        in_tiles<side>(0, n, [&]<int size>(Int j) {
            if (group.next_packs > 0)
                fetch(
                    array, group, j, j + size, [=](Int line) { return along_rows ? 0 : line; },
                    [=](Int line) { return along_rows ? line + 1 : n; });
            for (int g = 0; g < count; ++g) factor_corner<T, size>(a[g].from(j, 0), j);
            in_tiles<height>(j + size, n, [&]<int rows>(Int i) {
                for (int g = 0; g < count; ++g) {
                    const Matrix<R> block = a[g].from(j, 0);
                    solve<T, true, Diagonal::divisor, rows, size>(
                        a[g].from(i, 0), block.transposed(), j,
                        {block.at(0, j), block.row_stride + block.column_stride, block.imaginary});
                }
            });
        });
    });
}

} // namespace

ORK_LAPACK_EXPORT(potrf_compact_ps)
(const Int* layout, const char* uplo, const Int* n, R* a, const Int* lda, Int* info, const Int* format, const Int* nmat)
{
    *info = 0;
    factor<T>(Shape::of<R>(*layout, *format, *nmat), (*uplo & ~0x20) == 'U', *n, a, *lda);
}

} // namespace ork::lapack
