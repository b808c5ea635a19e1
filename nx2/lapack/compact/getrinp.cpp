// SPDX-License-Identifier: MIT
// A^-1 from A = L U without pivoting: U^-1 in place of U, then X L = U^-1 from the last column on, for which a block of
// columns of L steps aside into work.
#include "lapack/compact/tile.h"

namespace ork::lapack {
namespace {

template <class T>
struct Inverse {
    using R = Real<T>;
    static constexpr int side = edge<T>, lanes = Vec<R>::lanes, parts = is_complex<T> ? 2 : 1;

    Int n;
    int count;
    Matrix<R> a[slices_together];
    R* work; // n rows of `side` elements a slice

    // Row by row: x(i, j) = -(x(i, i) u(i, j) + ... + x(i, j - 1) u(j - 1, j)) x(j, j). The rows above are done, so
    // u(k, j) still stands where it is wanted.
    void invert_upper()
    {
        for (Int j = 0; j < n; ++j)
            for (int g = 0; g < count; ++g) reciprocal(Lanes<T>::at(a[g], j, j)).put(a[g].at(j, j), a[g].imaginary);
        in_tiles<side>(0, n, [&]<int rows>(Int i) {
            for (int g = 0; g < count; ++g) invert_corner<rows>(a[g].from(i, i));
            in_tiles<side>(i + rows, n, [&]<int columns>(Int j) {
                for (int g = 0; g < count; ++g) upper_tile<rows, columns>(a[g], i, j);
            });
        });
    }
    template <int order>
    static void invert_corner(const Matrix<R>& x)
    {
#pragma GCC unroll 8
        for (int r = 0; r < order; ++r)
#pragma GCC unroll 8
            for (int c = r + 1; c < order; ++c) {
                Lanes<T> sum;
#pragma GCC unroll 8
                for (int k = r; k < c; ++k)
                    sum.template subtract_product<false>(Lanes<T>::at(x, r, k), Lanes<T>::at(x, k, c));
                (sum * Lanes<T>::at(x, c, c)).put(x.at(r, c), x.imaginary);
            }
    }
    template <int rows, int columns>
    static void upper_tile(const Matrix<R>& x, Int i, Int j)
    {
        Tile<rows, columns, T> t;
#pragma GCC unroll 8
        for (int k = 0; k < rows; ++k)
#pragma GCC unroll 8
            for (int c = 0; c < columns; ++c) {
                const Lanes<T> right = Lanes<T>::at(x, i + k, j + c);
#pragma GCC unroll 8
                for (int r = 0; r <= k; ++r)
                    t.x[r][c].template subtract_product<false>(Lanes<T>::at(x, i + r, i + k), right);
            }
        t.template subtract<false>(x.from(i, i + rows), x.from(i + rows, j), j - i - rows);
        finish_by_inverse<rows, columns>(t, x.from(j, j));
        t.put(x.from(i, j));
    }
    // The triangle of the tile's own columns is not inverted yet, but for its diagonal.
    template <int rows, int columns>
    static void finish_by_inverse(Tile<rows, columns, T>& t, const Matrix<R>& u)
    {
        finish<false, Diagonal::reciprocal>(t, u, {u.data, u.row_stride + u.column_stride, u.imaginary});
    }

    // Columns in blocks from the last on; with columns and rows reversed L is a unit upper triangle.
    void solve_lower()
    {
        in_tiles<side>(0, n, [&]<int size>(Int done) {
            const Int first = n - done - size;
            Matrix<const R> l[slices_together];
            Matrix<R> x[slices_together];
            for (int g = 0; g < count; ++g) {
                Matrix<R> kept{work + g * n * side * parts * lanes, side * parts * lanes, parts * lanes, lanes};
                for (Int k = first + 1; k < n; ++k)
#pragma GCC unroll 8
                    for (int c = 0; c < size; ++c)
                        if (k > first + c) {
                            Lanes<T>::at(a[g], k, first + c).put(kept.at(k, c), lanes);
                            Lanes<T>{}.put(a[g].at(k, first + c), a[g].imaginary);
                        }
                l[g] = {kept.at(n - 1, size - 1), -kept.row_stride, -kept.column_stride, lanes};
                x[g] = {a[g].at(0, n - 1), a[g].row_stride, -a[g].column_stride, a[g].imaginary};
            }
            in_tiles<side>(0, n, [&]<int rows>(Int i) {
                for (int g = 0; g < count; ++g)
                    solve<T, false, Diagonal::unit, rows, size>(x[g].from(i, 0), l[g], done, {});
            });
        });
    }
};

template <class T>
void invert(const Shape& shape, Int n, Real<T>* data, Int lda, Real<T>* work)
{
    if (n <= 0) return;
    const auto array = shape.array<T>(data, lda, n, n);
    const Int own = shape.width / Vec<Real<T>>::lanes;
    in_groups<T>(shape, n * n, [&](const Group& group) {
        // work holds what one pack needs
        for (int first = 0; first < group.count; first += static_cast<int>(own)) {
            Inverse<T> inverse;
            inverse.n = n, inverse.count = static_cast<int>(own), inverse.work = work;
            for (int g = 0; g < inverse.count; ++g) {
                const auto [pack, lane] = group.slices[first + g];
                inverse.a[g] = array.matrix(pack, lane, shape.rows());
            }
            inverse.invert_upper();
            inverse.solve_lower();
        }
    });
}

} // namespace

ORK_LAPACK_EXPORT(getrinp_compact_ps)
(const Int* layout, const Int* n, R* a, const Int* lda, R* work, const Int* lwork, Int* info, const Int* format,
 const Int* nmat)
{
    *info = 0;
    const Shape shape = Shape::of<R>(*layout, *format, *nmat);
    if (*lwork == -1)
        work[0] = static_cast<R>(3 * *n * shape.width * (is_complex<T> ? 2 : 1));
    else
        invert<T>(shape, *n, a, *lda, work);
}

} // namespace ork::lapack
