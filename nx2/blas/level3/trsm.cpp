// SPDX-License-Identifier: MIT
// B <- alpha op(A)^-1 B or alpha B op(A)^-1, A triangular.
#include "blas/level3/leaf.h"
#include "frame/export.h"

namespace ork::level3 {

template <class T>
class SolveLeaf {
public:
    void set_diagonal(Int i, T d)
    {
        diagonal_[i] = d;
        if (!invert(d, inverse_[i])) divides_ = true;
    }
    bool divides() const { return divides_; }

    // `lanes` slices at a time from B through registers; the strip has them for those that follow.
    template <class C, int registers, bool forward>
    void squares(const C& c, Strip<T, registers>& strip, Squares<T, registers, forward> b, Int n) const
    {
        constexpr int lanes = Vec<T>::lanes;
        strip.start(true, n, strip.memory, strip.width);
        for_each_slice<T, lanes, true>(
            n, [&](auto i) __attribute__((always_inline)) {
                Vec<T> x[lanes][registers];
                b.get(i, x);
                accumulate_slices<true>(c, strip.memory, strip.width, i, x);
#pragma GCC unroll 4
                for (int s = 0; s < lanes; ++s) {
#pragma GCC unroll 4
                    for (int l = 0; l < s; ++l)
#pragma GCC unroll 8
                        for (int r = 0; r < registers; ++r)
                            x[s][r] = accumulate<true>(x[s][r], c(i + s, i + l), x[l][r]);
#pragma GCC unroll 8
                    for (int r = 0; r < registers; ++r) x[s][r] = times(Element<T>(&inverse_[i + s]), x[s][r]);
                    strip.put(i + s, x[s]);
                }
                b.put(i, x);
            });
    }

    template <class C, int registers>
    void slices(const C& c, Strip<T, registers>& strip, Int n) const
    {
        if (divides_) return slices_dividing(c, strip, n);
        for_each_slice<T, 1, true>(
            n, [&](auto i) __attribute__((always_inline)) {
                Vec<T> x[1][registers];
                strip.get(i, x[0]);
                accumulate_slices<true>(c, strip.first, strip.step, i, x);
#pragma GCC unroll 8
                for (int r = 0; r < registers; ++r) x[0][r] = times(Element<T>(&inverse_[i]), x[0][r]);
                strip.put(i, x[0]);
            });
    }

private:
    template <class C, int registers>
    [[gnu::noinline, gnu::cold]] void slices_dividing(const C& c, Strip<T, registers>& strip, Int n) const
    {
        for (Int i = 0; i < n; ++i) {
            Vec<T> x[1][registers];
            strip.get(i, x[0]);
            accumulate_slices<true>(c, strip.first, strip.step, i, x);
            strip.put(i, x[0]);
            for (Int r = 0; r < strip.width; ++r) {
                T& element = strip.first[i * strip.step + r];
                element = divided(element, diagonal_[i]);
            }
        }
    }

    T inverse_[leaf], diagonal_[leaf];
    bool divides_ = false;
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
