// SPDX-License-Identifier: MIT
// C <- alpha op(A) op(B) + beta C for many small matrices in the compact layout. Each part of an element is the sum of
// its real products over the depth, in order from zero; alpha times the sum is added to beta C.
#include "blas/compact/lanes.h"
#include "blas/gemm/product.h"
#include "frame/export.h"

namespace ork::compact {

using gemm::with_flag;

template <class T>
struct Problem {
    using R = Real<T>;
    Int m, n, k;
    T alpha, beta;
    Matrix<const R> a, b; // op(A), op(B)
    Matrix<R> c;
};

// rows x columns elements of C from (i, j) on.
template <bool conjugate_a, bool conjugate_b, int rows, int columns, class T>
void tile(const Problem<T>& p, Int i, Int j)
{
    using R = Real<T>;
    Lanes<T> sum[rows][columns] = {};
    for (Int l = 0; l < p.k; ++l) {
        Lanes<T> a[rows];
#pragma GCC unroll 3
        for (int r = 0; r < rows; ++r) a[r] = Lanes<T>::at(p.a, i + r, l);
#pragma GCC unroll 3
        for (int q = 0; q < columns; ++q) {
            const Lanes<T> b = Lanes<T>::at(p.b, l, j + q);
#pragma GCC unroll 3
            for (int r = 0; r < rows; ++r) sum[r][q].template add_product<conjugate_a, conjugate_b>(a[r], b);
        }
    }
#pragma GCC unroll 3
    for (int q = 0; q < columns; ++q)
#pragma GCC unroll 3
        for (int r = 0; r < rows; ++r) {
            const Matrix<const R> c{p.c.data, p.c.row_stride, p.c.column_stride, p.c.imaginary};
            Lanes<T> x = p.alpha == T(1) ? sum[r][q] : sum[r][q].times(p.alpha);
            if (p.beta == T(1))
                x = Lanes<T>::at(c, i + r, j + q) + x;
            else if (!(p.beta == T(0)))
                x = Lanes<T>::at(c, i + r, j + q).times(p.beta) + x;
            x.put(p.c.data + (i + r) * p.c.row_stride + (j + q) * p.c.column_stride, p.c.imaginary);
        }
}

template <bool conjugate_a, bool conjugate_b, class T>
void multiply(const Problem<T>& p)
{
    constexpr int edge = is_complex<T> ? 2 : 3; // elements of a tile's side: sums and operands fit in 16 registers
    const auto row_of_tiles = [&]<int rows>(Int i) {
        Int j = 0;
        for (; j + edge <= p.n; j += edge) tile<conjugate_a, conjugate_b, rows, edge>(p, i, j);
        if (edge == 3 && p.n - j == 2) return tile<conjugate_a, conjugate_b, rows, 2>(p, i, j);
        if (p.n - j >= 1) tile<conjugate_a, conjugate_b, rows, 1>(p, i, j);
    };
    Int i = 0;
    for (; i + edge <= p.m; i += edge) row_of_tiles.template operator()<edge>(i);
    if (edge == 3 && p.m - i == 2) return row_of_tiles.template operator()<2>(i);
    if (p.m - i >= 1) row_of_tiles.template operator()<1>(i);
}

// beta C alone; A and B are not read.
template <class T>
void scale(const Problem<T>& p)
{
    Problem<T> none = p;
    none.k = 0;
    none.alpha = T(1);
    multiply<false, false>(none);
}

template <class T>
void gemm_compact(Int layout, char transa, char transb, Int m, Int n, Int k, T alpha, const Real<T>* a, Int lda,
                  const Real<T>* b, Int ldb, T beta, Real<T>* c, Int ldc, Int format, Int nmat)
{
    using R = Real<T>;
    const Int bytes = pack_bytes(format), width = bytes / Int(sizeof(R));
    if (width == 0 || (layout != by_rows && layout != by_columns) || m <= 0 || n <= 0) return;
    const bool rows = layout == by_rows, adds = !(alpha == T(0)) && k > 0;
    const gemm::Op opa(transa), opb(transb);
    const auto lines = [&](gemm::Op op, Int r, Int q) { return op.transposed != rows ? r : q; };
    const Packs<T, const R> packs_a{a, lda, lines(opa, m, k), width}, packs_b{b, ldb, lines(opb, k, n), width};
    const Packs<T, R> packs_c{c, ldc, rows ? m : n, width};
    for (Int pack = 0; pack < nmat / width; ++pack)
        for (Int lane = 0; lane < width; lane += Vec<R>::lanes) {
            const Problem<T> p{m,
                               n,
                               k,
                               alpha,
                               beta,
                               packs_a.matrix(pack, lane, opa.transposed != rows),
                               packs_b.matrix(pack, lane, opb.transposed != rows),
                               packs_c.matrix(pack, lane, rows)};
            if (!adds) {
                if (!(beta == T(1))) scale(p);
                continue;
            }
            if constexpr (is_complex<T>)
                with_flag(opa.conjugated,
                          [&]<bool ca>() { with_flag(opb.conjugated, [&]<bool cb>() { multiply<ca, cb>(p); }); });
            else
                multiply<false, false>(p);
        }
}

} // namespace ork::compact

using namespace ork;
using Ptr = const std::int64_t*;
using Letter = const char*;

#define MEMBER(p, T, R)                                                                                                \
    ORK_EXPORT void ork_blas_nx2_x##p##gemm_compact(Ptr layout, Letter transa, Letter transb, Ptr m, Ptr n, Ptr k,     \
                                                    const T* alpha, const R* a, Ptr lda, const R* b, Ptr ldb,          \
                                                    const T* beta, R* c, Ptr ldc, Ptr format, Ptr nmat)                \
    {                                                                                                                  \
        compact::gemm_compact<T>(*layout, *transa, *transb, *m, *n, *k, *alpha, a, *lda, b, *ldb, *beta, c, *ldc,      \
                                 *format, *nmat);                                                                      \
    }
MEMBER(s, float, float)
MEMBER(d, double, double)
MEMBER(c, Complex<float>, float)
MEMBER(z, Complex<double>, double)
