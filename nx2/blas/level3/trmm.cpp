// SPDX-License-Identifier: MIT
// B <- alpha op(A) B or alpha B op(A), A triangular.
#include "blas/level3/leaf.h"
#include "frame/export.h"

namespace ork::level3 {

struct Multiply {
    static constexpr bool solves = false;

    // Two slices at a time share the loads of those before; the last ones go first, as they need all the others.
    template <int count, bool unit, class T>
    [[gnu::always_inline]] static void slices(const Leaf<T>& work, Int i, T* strip, Int step)
    {
        using L = Leaf<T>;
        T* own = strip + i * step;
        Vec<T> sum[count][L::registers];
#pragma GCC unroll 2
        for (int s = 0; s < count; ++s) {
            const Element<T> diagonal(&work.diagonal[i + s]);
#pragma GCC unroll 4
            for (int r = 0; r < L::registers; ++r) {
                sum[s][r] = L::at(own + s * step + r * L::lanes);
                if constexpr (!unit) sum[s][r] = times(diagonal, sum[s][r]);
            }
        }
        accumulate_slices<false>(work, i, strip, step, sum);
#pragma GCC unroll 2
        for (int s = count - 1; s >= 0; --s)
#pragma GCC unroll 4
            for (int r = 0; r < L::registers; ++r) {
                if (s == 1)
                    sum[1][r] = accumulate<false>(sum[1][r], Element<T>(&work.c[i + 1][i]), L::at(own + r * L::lanes));
                L::put(own + s * step + r * L::lanes, sum[s][r]);
            }
    }

    template <class T>
    [[gnu::noinline]] static void run(const Coefficients<T>& t, const Slices<T>& x, Int n)
    {
        using L = Leaf<T>;
        L work;
        work.gather(t, n);
        const Int step = t.lower ? L::width : -L::width;
        T* strip = t.lower ? work.strip : work.strip + (n - 1) * L::width;
        gemm::with_flag(t.unit, [&]<bool unit>() {
            for (Int first = 0; first < x.length; first += L::width) {
                work.fetch(x, n, first);
                Int i = n;
                if constexpr (!is_complex<T>)
                    for (; i >= 2; i -= 2) slices<2, unit>(work, i - 2, strip, step);
                for (; i >= 1; --i) slices<1, unit>(work, i - 1, strip, step);
                work.bring_back(x, n, first);
            }
        });
    }
};

} // namespace ork::level3

using namespace ork;
using Ptr = const std::int64_t*;
using Letter = const char*;

#define MEMBER(p, T)                                                                                                   \
    ORK_EXPORT void ork_blas_nx2_x##p##trmm(Letter side, Letter uplo, Letter transa, Letter diag, Ptr m, Ptr n,          \
                                            const T* alpha, const T* a, Ptr lda, T* b, Ptr ldb)                        \
    {                                                                                                                  \
        level3::triangular<level3::Multiply>(*side, *uplo, *transa, *diag, *m, *n, *alpha, a, *lda, b, *ldb);             \
    }
MEMBER(s, float)
MEMBER(d, double)
MEMBER(c, Complex<float>)
MEMBER(z, Complex<double>)
