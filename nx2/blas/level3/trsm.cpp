// SPDX-License-Identifier: MIT
// B <- alpha op(A)^-1 B or alpha B op(A)^-1, A triangular.
#include "blas/level3/leaf.h"
#include "frame/export.h"

namespace ork::level3 {

template <class T>
struct SolveLeaf {
    T inverse[leaf], diagonal[leaf];
    bool divides = false;

    void set_diagonal(Int i, T d)
    {
        diagonal[i] = d;
        if (!invert(d, inverse[i])) divides = true;
    }

    template <bool unit, bool dividing, int count, class I, class C, class S>
    [[gnu::always_inline]] void slices(const C& c, S& strip, I i) const
    {
        constexpr int registers = S::width / S::lanes;
        Vec<T> x[count][registers];
#pragma GCC unroll 2
        for (int s = 0; s < count; ++s)
#pragma GCC unroll 8
            for (int r = 0; r < registers; ++r) x[s][r] = strip.get(i + s, r);
        accumulate_slices<true>(c, strip, i, x);
#pragma GCC unroll 2
        for (int s = 0; s < count; ++s) {
#pragma GCC unroll 8
            for (int r = 0; r < registers; ++r) {
                if (s == 1) x[s][r] = accumulate<true>(x[s][r], c(i + 1, i), x[0][r]);
                if constexpr (!unit && !dividing) x[s][r] = times(Element<T>(&inverse[i + s]), x[s][r]);
            }
            strip.put(i + s, x[s]);
        }
        if constexpr (!unit && dividing)
            for (int r = 0; r < S::width; ++r) {
                T& element = strip.first[i * strip.step + r];
                element = divide(element, diagonal[i]);
            }
    }

    template <bool unit, class C, class S>
    void run(const C& c, S& strip, Int n) const
    {
        if (divides) return run_dividing<unit>(c, strip, n);
        for_each_slice<together<T, S::width / S::lanes>, true, !is_complex<T>>(
            n, [&]<int count>(auto i) __attribute__((always_inline)) { slices<unit, false, count>(c, strip, i); });
    }

private:
    template <bool unit, class C, class S>
    [[gnu::noinline, gnu::cold]] void run_dividing(const C& c, S& strip, Int n) const
    {
        for (Int i = 0; i < n; ++i) slices<unit, true, 1>(c, strip, i);
    }
};

struct Solve {
    static constexpr bool solves = true;

    template <class T>
    [[gnu::noinline]] static void run(const Coefficients<T>& t, const Slices<T>& x, Int n)
    {
        run_leaf<SolveLeaf>(t, x, n);
    }
};

} // namespace ork::level3

using namespace ork;
using Ptr = const std::int64_t*;
using Letter = const char*;

#define MEMBER(p, T)                                                                                                   \
    ORK_EXPORT void ork_blas_nx2_x##p##trsm(Letter side, Letter uplo, Letter transa, Letter diag, Ptr m, Ptr n,        \
                                            const T* alpha, const T* a, Ptr lda, T* b, Ptr ldb)                        \
    {                                                                                                                  \
        level3::triangular<level3::Solve>(*side, *uplo, *transa, *diag, *m, *n, *alpha, a, *lda, b, *ldb);             \
    }
MEMBER(s, float)
MEMBER(d, double)
MEMBER(c, Complex<float>)
MEMBER(z, Complex<double>)
