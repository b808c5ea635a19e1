// SPDX-License-Identifier: MIT
// B <- alpha op(A) B or alpha B op(A), A triangular.
#include "blas/level3/leaf.h"
#include "frame/export.h"

namespace ork::level3 {

// The last slices go first, as they need all the others.
template <class T>
class MultiplyLeaf {
public:
    void set_diagonal(Int i, T d) { diagonal_[i] = d; }
    bool divides() const { return false; }

    // `lanes` slices at a time, from a copy of B straight to B.
    template <class C, int registers, bool forward>
    void squares(const C& c, Strip<T, registers>& strip, Squares<T, registers, forward> b, Int n) const
    {
        constexpr int lanes = Vec<T>::lanes;
        strip.copy(Slices<T>{true, b.b, b.ldb, strip.width}, n, 0);
        strip.start(forward, n, strip.memory, strip.width);
        for_each_slice<T, lanes, false>(
            n, [&](auto i) __attribute__((always_inline)) {
                Vec<T> sum[lanes][registers];
#pragma GCC unroll 4
                for (int s = 0; s < lanes; ++s) start(strip, i + s, sum[s]);
                accumulate_slices<false>(c, strip.first, strip.step, i, sum);
#pragma GCC unroll 4
                for (int s = 1; s < lanes; ++s)
#pragma GCC unroll 4
                    for (int l = 0; l < s; ++l) {
                        Vec<T> x[registers];
                        strip.get(i + l, x);
#pragma GCC unroll 8
                        for (int r = 0; r < registers; ++r)
                            sum[s][r] = accumulate<false>(sum[s][r], c(i + s, i + l), x[r]);
                    }
                b.put(i, sum);
            });
    }

    template <class C, int registers>
    void slices(const C& c, Strip<T, registers>& strip, Int n) const
    {
        for_each_slice<T, 1, false>(
            n, [&](auto i) __attribute__((always_inline)) {
                Vec<T> sum[1][registers];
                start(strip, i, sum[0]);
                accumulate_slices<false>(c, strip.first, strip.step, i, sum);
                strip.put(i, sum[0]);
            });
    }

private:
    template <int registers>
    [[gnu::always_inline]] void start(const Strip<T, registers>& strip, Int i, Vec<T> (&sum)[registers]) const
    {
        strip.get(i, sum);
#pragma GCC unroll 8
        for (int r = 0; r < registers; ++r) sum[r] = times(Element<T>(&diagonal_[i]), sum[r]);
    }

    T diagonal_[leaf];
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
