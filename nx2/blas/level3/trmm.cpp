// SPDX-License-Identifier: MIT
// B <- alpha op(A) B or alpha B op(A), A triangular.
#include "blas/level3/leaf.h"
#include "frame/export.h"

namespace ork::level3 {

template <class T>
struct MultiplyLeaf {
    T diagonal[leaf];

    void set_diagonal(Int i, T d) { diagonal[i] = d; }

    template <bool unit, int count, class I, class C, class S>
    [[gnu::always_inline]] void slices(const C& c, S& strip, I i) const
    {
        constexpr int registers = S::width / S::lanes;
        Vec<T> sum[count][registers];
#pragma GCC unroll 2
        for (int s = 0; s < count; ++s)
#pragma GCC unroll 8
            for (int r = 0; r < registers; ++r) {
                sum[s][r] = strip.get(i + s, r);
                if constexpr (!unit) sum[s][r] = times(Element<T>(&diagonal[i + s]), sum[s][r]);
            }
        accumulate_slices<false>(c, strip, i, sum);
#pragma GCC unroll 2
        for (int s = count - 1; s >= 0; --s) {
#pragma GCC unroll 8
            for (int r = 0; r < registers; ++r)
                if (s == 1) sum[s][r] = accumulate<false>(sum[s][r], c(i + 1, i), strip.get(i, r));
            strip.put(i + s, sum[s]);
        }
    }

    // The last ones first, as they need all the others.
    template <bool unit, class C, class S>
    void run(const C& c, S& strip, Int n) const
    {
        constexpr int width = together<T, S::width / S::lanes>;
        for_each_slice<width, false, !is_complex<T>>(
            n, [&]<int count>(auto i) __attribute__((always_inline)) { slices<unit, count>(c, strip, i); });
    }
};

struct Multiply {
    static constexpr bool solves = false;

    template <class T>
    [[gnu::noinline]] static void run(const Coefficients<T>& t, const Slices<T>& x, Int n)
    {
        run_leaf<MultiplyLeaf>(t, x, n);
    }
};

} // namespace ork::level3

using namespace ork;
using Ptr = const std::int64_t*;
using Letter = const char*;

#define MEMBER(p, T)                                                                                                   \
    ORK_EXPORT void ork_blas_nx2_x##p##trmm(Letter side, Letter uplo, Letter transa, Letter diag, Ptr m, Ptr n,        \
                                            const T* alpha, const T* a, Ptr lda, T* b, Ptr ldb)                        \
    {                                                                                                                  \
        level3::triangular<level3::Multiply>(*side, *uplo, *transa, *diag, *m, *n, *alpha, a, *lda, b, *ldb);          \
    }
MEMBER(s, float)
MEMBER(d, double)
MEMBER(c, Complex<float>)
MEMBER(z, Complex<double>)
