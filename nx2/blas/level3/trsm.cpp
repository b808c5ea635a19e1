// SPDX-License-Identifier: MIT
// B <- alpha op(A)^-1 B or alpha B op(A)^-1, A triangular.
#include "blas/level3/leaf.h"
#include "frame/export.h"

namespace ork::level3 {

struct Solve {
    static constexpr bool solves = true;

    // Two slices at a time share the loads of those before.
    template <int count, bool unit, class T>
    [[gnu::always_inline]] static void slices(const Leaf<T>& work, const Divisor<T>* divisor, Int i, T* strip, Int step)
    {
        using L = Leaf<T>;
        T* own = strip + i * step;
        Vec<T> x[count][L::registers];
#pragma GCC unroll 2
        for (int s = 0; s < count; ++s)
#pragma GCC unroll 4
            for (int r = 0; r < L::registers; ++r) x[s][r] = L::at(own + s * step + r * L::lanes);
        accumulate_slices<true>(work, i, strip, step, x);
#pragma GCC unroll 2
        for (int s = 0; s < count; ++s)
#pragma GCC unroll 4
            for (int r = 0; r < L::registers; ++r) {
                if (s == 1) x[1][r] = accumulate<true>(x[1][r], Element<T>(&work.c[i + 1][i]), x[0][r]);
                if constexpr (!unit) x[s][r] = divisor[i + s](x[s][r]);
                L::put(own + s * step + r * L::lanes, x[s][r]);
            }
    }

    template <class T>
    [[gnu::noinline]] static void run(const Coefficients<T>& t, const Slices<T>& x, Int n)
    {
        using L = Leaf<T>;
        L work;
        work.gather(t, n);
        Divisor<T> divisor[leaf];
        for (Int i = 0; i < n; ++i) divisor[i] = Divisor<T>(work.diagonal[i]);
        const Int step = t.lower ? L::width : -L::width;
        T* strip = t.lower ? work.strip : work.strip + (n - 1) * L::width;
        gemm::with_flag(t.unit, [&]<bool unit>() {
            for (Int first = 0; first < x.length; first += L::width) {
                work.fetch(x, n, first);
                Int i = 0;
                if constexpr (!is_complex<T>)
                    for (; i + 2 <= n; i += 2) slices<2, unit>(work, divisor, i, strip, step);
                for (; i < n; ++i) slices<1, unit>(work, divisor, i, strip, step);
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
    ORK_EXPORT void ork_blas_nx2_x##p##trsm(Letter side, Letter uplo, Letter transa, Letter diag, Ptr m, Ptr n,          \
                                            const T* alpha, const T* a, Ptr lda, T* b, Ptr ldb)                        \
    {                                                                                                                  \
        level3::triangular<level3::Solve>(*side, *uplo, *transa, *diag, *m, *n, *alpha, a, *lda, b, *ldb);             \
    }
MEMBER(s, float)
MEMBER(d, double)
MEMBER(c, Complex<float>)
MEMBER(z, Complex<double>)
