// SPDX-License-Identifier: MIT
// B <- alpha op(A)^-1 B or alpha B op(A)^-1. All sixteen cases are one by views: x u = b with u upper triangular, where
// u = op(A) or, on the left, its transpose, and a lower triangle is an upper one with both orders reversed.
#include "lapack/compact/tile.h"

namespace ork::lapack {
namespace {

inline bool is(char letter, char upper_case) { return (letter & ~0x20) == upper_case; }

// alpha times n elements of b, without reading them for alpha = 0.
template <class T>
void scale(const Matrix<Real<T>>& b, Int m, Int n, T alpha)
{
    for (Int j = 0; j < n; ++j)
        for (Int i = 0; i < m; ++i) {
            const Lanes<T> x = alpha == T(0) ? Lanes<T>{} : Lanes<T>::at(b, i, j).times(alpha);
            x.put(b.at(i, j), b.imaginary);
        }
}

// Of the diagonal of u, conjugated if asked, one behind the other.
template <class T, bool conjugate, int size>
inline void keep_reciprocals(const Matrix<const Real<T>>& u, Real<T>* to)
{
    constexpr int lanes = Vec<Real<T>>::lanes, parts = is_complex<T> ? 2 : 1;
    for (int c = 0; c < size; ++c, to += parts * lanes) {
        Lanes<T> q = reciprocal(Lanes<T>::at(u, c, c));
        if constexpr (conjugate) q.im = negated(q.im);
        q.put(to, lanes);
    }
}

// x u = b of an order so small that a right-hand side, a row of x, stays in registers: one after the other.
template <class T, bool conjugate, bool unit, int order>
void solve_whole(const Matrix<Real<T>>* x, const Matrix<const Real<T>>* u, int count, Int rows)
{
    using R = Real<T>;
    constexpr int lanes = Vec<R>::lanes, parts = is_complex<T> ? 2 : 1;
    R reciprocals[slices_together][order][parts * lanes];
    if constexpr (!unit)
        for (int g = 0; g < count; ++g) keep_reciprocals<T, conjugate, order>(u[g], reciprocals[g][0]);
    for (Int i = 0; i < rows; ++i)
        for (int g = 0; g < count; ++g)
            solve<T, conjugate, unit ? Diagonal::unit : Diagonal::reciprocal, 1, order>(
                x[g].from(i, 0), u[g], 0, {reciprocals[g][0], parts * lanes, lanes});
}

// Of any order.
template <class T, bool conjugate, bool unit>
void solve_all(const Matrix<Real<T>>* x, const Matrix<const Real<T>>* u, int count, Int rows, Int order)
{
    using R = Real<T>;
    constexpr int side = edge<T>, lanes = Vec<R>::lanes, parts = is_complex<T> ? 2 : 1;
    constexpr Diagonal diagonal = unit ? Diagonal::unit : Diagonal::reciprocal;
    constexpr int whole = is_complex<T> ? 4 : 8;
    if (rows < 3 && order <= whole)
        return with_size<whole>(order, [&]<int size>() { solve_whole<T, conjugate, unit, size>(x, u, count, rows); });
    in_tiles<side>(0, order, [&]<int size>(Int j) {
        R reciprocals[slices_together][side][parts * lanes];
        if constexpr (!unit)
            for (int g = 0; g < count; ++g) keep_reciprocals<T, conjugate, size>(u[g].from(j, j), reciprocals[g][0]);
        in_tiles<side>(0, rows, [&]<int height>(Int i) {
            for (int g = 0; g < count; ++g)
                solve<T, conjugate, diagonal, height, size>(x[g].from(i, 0), u[g].from(0, j), j,
                                                            {reciprocals[g][0], parts * lanes, lanes});
        });
    });
}

template <class T>
void trsm(const Shape& shape, bool left, bool upper, char transa, bool unit, Int m, Int n, T alpha,
          const Real<T>* data_a, Int lda, Real<T>* data_b, Int ldb)
{
    using R = Real<T>;
    if (m <= 0 || n <= 0) return;
    const Int order = left ? m : n, rows = left ? n : m;
    const auto array_a = shape.array<T>(data_a, lda, order, order);
    const auto array_b = shape.array<T>(data_b, ldb, m, n);
    const bool transposed = is(transa, 'T') || is(transa, 'C');
    const bool exchanged = transposed != left, ends_first = upper == exchanged;
    in_groups<T>(shape, order * order + m * n, [&](const Group& group) {
        Matrix<R> x[slices_together];
        Matrix<const R> u[slices_together];
        for (int g = 0; g < group.count; ++g) {
            const auto [pack, lane] = group.slices[g];
            x[g] = array_b.matrix(pack, lane, shape.rows() != left);
            if (!(alpha == T(1))) scale<T>(x[g], rows, order, alpha);
            u[g] = array_a.matrix(pack, lane, shape.rows() != exchanged);
            if (!ends_first) continue;
            x[g] = {x[g].at(0, order - 1), x[g].row_stride, -x[g].column_stride, x[g].imaginary};
            u[g] = {u[g].at(order - 1, order - 1), -u[g].row_stride, -u[g].column_stride, u[g].imaginary};
        }
        if (alpha == T(0)) return;
        const auto run = [&]<bool conjugate>() {
            if (unit)
                solve_all<T, conjugate, true>(x, u, group.count, rows, order);
            else
                solve_all<T, conjugate, false>(x, u, group.count, rows, order);
        };
        if (is_complex<T> && is(transa, 'C'))
            run.template operator()<is_complex<T>>();
        else
            run.template operator()<false>();
    });
}

} // namespace

ORK_LAPACK_EXPORT(trsm_compact_ps)
(const Int* layout, const char* side, const char* uplo, const char* transa, const char* diag, const Int* m,
 const Int* n, const T* alpha, const R* a, const Int* lda, R* b, const Int* ldb, const Int* format, const Int* nmat)
{
    trsm<T>(Shape::of<R>(*layout, *format, *nmat), is(*side, 'L'), is(*uplo, 'U'), *transa, is(*diag, 'U'), *m, *n,
            *alpha, a, *lda, b, *ldb);
}

} // namespace ork::lapack
