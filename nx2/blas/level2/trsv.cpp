// SPDX-License-Identifier: MIT
// x <- op(A)^-1 x, A triangular, in blocks of 32 unknowns in the order in which they can be found. A block first loses
// what the unknowns found before contribute, by one call of the core's gemv with alpha = -1 and beta = 1 (none for the
// first block; complex infinities are subtracted here, the same way), and is then solved for itself in groups of four:
// an unknown is divided by its element of the diagonal unless that is 1, and subtracted from the others of its group;
// op(A) = A: a group is subtracted from the rest of the block, column after column; op(A) transposed: a group first
// loses its sums over the unknowns found before in the block (column_sums.h).
#include <complex>

#include "blas/divide.h"
#include "blas/level2/triangle.h"
#include "blas/level2_kernels.h"

namespace ork {
namespace {
using namespace level2;

constexpr Int block_size = 32;

// y <- y - op(A) x by the core. Each routine is called by its name, since an import's address may not be taken.
template <class T>
void core_subtract(const char* trans, Int m, Int n, const T* a, Int lda, const T* x, Int incx, T* y)
{
    const T minus_one(-1), one(1);
    if constexpr (std::is_same_v<T, float>) {
        ork_blas_sgemv(trans, &m, &n, &minus_one, a, &lda, x, &incx, &one, y, &incx);
    } else if constexpr (std::is_same_v<T, double>) {
        ork_blas_dgemv(trans, &m, &n, &minus_one, a, &lda, x, &incx, &one, y, &incx);
    } else {
        using Outside = std::complex<Real<T>>;
        const auto in = [](const T* p) { return reinterpret_cast<const Outside*>(p); };
        Outside* const out = reinterpret_cast<Outside*>(y);
        if constexpr (std::is_same_v<T, Complex<float>>)
            ork_blas_cgemv(trans, &m, &n, in(&minus_one), in(a), &lda, in(x), &incx, in(&one), out, &incx);
        else
            ork_blas_zgemv(trans, &m, &n, in(&minus_one), in(a), &lda, in(x), &incx, in(&one), out, &incx);
    }
}

// Whether (-1, 0) times every element is its negative: it is not of infinity.
template <class T>
bool all_finite(Int n, const T* x)
{
    if constexpr (!is_complex<T>) return true;
    using Bits = std::conditional_t<sizeof(Real<T>) == 4, std::uint32_t, std::uint64_t>;
    constexpr Bits exponent = sizeof(Bits) == 4 ? Bits{0xff} << 23 : Bits(0x7ffull << 52);
    bool finite = true;
    for (Int i = 0; i < n * Int(sizeof(T) / sizeof(Bits)); ++i)
        finite &= (get(reinterpret_cast<const Bits*>(x) + i) & exponent) != exponent;
    return finite;
}

// The square of a group.
template <class Shape, int count, class T>
[[gnu::always_inline]] inline void solve_square(const T* a, Int lda, T* x)
{
    constexpr bool forward = Shape::upper == Shape::transposed;
    const auto element = [&](int i, int j) __attribute__((always_inline)) // of op(A)
    {
        return conjugate<Shape::conjugated>(get(Shape::transposed ? a + j + i * lda : a + i + j * lda));
    };
    T v[count];
#pragma GCC unroll 4
    for (int i = 0; i < count; ++i) v[i] = get(x + i);
#pragma GCC unroll 4
    for (int r = 0; r < count; ++r) {
        const int j = forward ? r : count - 1 - r;
        if constexpr (!Shape::unit) v[j] = divided(v[j], element(j, j));
#pragma GCC unroll 4
        for (int d = 1; d < count; ++d) {
            const int i = forward ? j + d : j - d;
            if (i >= 0 && i < count) v[i] = v[i] - element(i, j) * v[j];
        }
    }
    put_together(x, v);
}

template <int count, class T>
struct Negated {
    T t[count];
    explicit Negated(const T* x)
    {
#pragma GCC unroll 4
        for (int j = 0; j < count; ++j) t[j] = MinusOne() * get(x + j);
    }
};

// Contiguous, at most block_size unknowns.
template <class Shape, class T>
[[gnu::noinline]] void solve_block(Loads loads, Int n, const T* a, Int lda, T* x)
{
    each_group(
        Shape::upper == Shape::transposed, n, [&]<int count>(Int j) __attribute__((always_inline)) {
            const T* const columns = a + j * lda;
            const Int first = Shape::upper ? 0 : j + count, rows = Shape::upper ? j : n - j - count;
            if constexpr (Shape::transposed) {
                if (rows > 0)
                    add_column_sums<Shape::conjugated>(loads, rows, count, MinusOne(), columns + first, lda, x + first,
                                                       x + j);
                solve_square<Shape, count>(columns + j, lda, x + j);
            } else {
                solve_square<Shape, count>(columns + j, lda, x + j);
                if (rows > 0) add_group<count>(rows, columns + first, lda, Negated<count, T>(x + j).t, x + first);
            }
        });
}

template <class Shape, class T>
void solve(const char* trans, Int n, const T* a, Int lda, Strided<T> x)
{
    const Loads loads = loads_of(block_size, block_size, a, lda);
    bool finite = true;
    Buffer<T, block_size> gathered;
    each_block<block_size>(Shape::upper == Shape::transposed, n, [&](Int j, Int count) {
        // The unknowns found before: above the block where a lower op(A) is solved, below it otherwise.
        constexpr bool above = Shape::upper == Shape::transposed;
        const Int first = above ? 0 : j + count, found = above ? j : n - j - count;
        if (found > 0) {
            const T* const beside = Shape::transposed ? a + first + j * lda : a + j + first * lda;
            const Int m = Shape::transposed ? found : count, columns = Shape::transposed ? count : found;
            if (finite) [[likely]]
                core_subtract(trans, m, columns, beside, lda, x.from(first).argument(found), x.inc,
                              x.from(j).argument(count));
            else if constexpr (Shape::transposed)
                add_transposed<Shape::conjugated, MinusOne, T>(loads, m, columns, {}, beside, lda, x.from(first),
                                                               x.from(j));
            else
                add_product<MinusOne, T>(loads, m, columns, {}, beside, lda, x.from(first), x.from(j));
        }
        T* v = x.at(j);
        if (!x.contiguous()) {
            v = gathered.data();
            gather<T>(count, x.from(j), v);
        }
        solve_block<Shape>(loads, count, a + j + j * lda, lda, v);
        finite &= all_finite(count, v);
        if (!x.contiguous()) scatter(count, v, x.from(j));
    });
}

template <class T>
void trsv(const char* uplo, const char* trans, const char* diag, Int n, const T* a, Int lda, T* x, Int incx)
{
    if (n == 0) return;
    with_shape<T>(Triangle(uplo, trans, diag),
                  [&](auto shape) { solve<decltype(shape)>(trans, n, a, lda, Strided<T>(x, n, incx)); });
}

} // namespace
} // namespace ork

using namespace ork;

void ork_blas_nx2_xstrsv(const char* uplo, const char* trans, const char* diag, const int64_t* n, const float* a,
                         const int64_t* lda, float* x, const int64_t* incx)
{
    trsv(uplo, trans, diag, *n, a, *lda, x, *incx);
}

void ork_blas_nx2_xdtrsv(const char* uplo, const char* trans, const char* diag, const int64_t* n, const double* a,
                         const int64_t* lda, double* x, const int64_t* incx)
{
    trsv(uplo, trans, diag, *n, a, *lda, x, *incx);
}

void ork_blas_nx2_xctrsv(const char* uplo, const char* trans, const char* diag, const int64_t* n,
                         const ork_complex_float* a, const int64_t* lda, ork_complex_float* x, const int64_t* incx)
{
    trsv(uplo, trans, diag, *n, pairs(a), *lda, pairs(x), *incx);
}

void ork_blas_nx2_xztrsv(const char* uplo, const char* trans, const char* diag, const int64_t* n,
                         const ork_complex_double* a, const int64_t* lda, ork_complex_double* x, const int64_t* incx)
{
    trsv(uplo, trans, diag, *n, pairs(a), *lda, pairs(x), *incx);
}
