// SPDX-License-Identifier: MIT
// The kernels' recipe as it stands in books, two sums in a register, `registers` of them in a step (-O3 -msse4.2). A
// sum that fills none has both lanes. alpha is 1, beta 0, increments 1.
#include <emmintrin.h>

#include "ork/abi/xblas.h"
#include "peers/xblas.h"

namespace ork::peers {
namespace {

using Int = xblas::Int;

struct Pair {
    __m128d hi = _mm_setzero_pd(), lo = _mm_setzero_pd();
};

inline __m128d leading(__m128d v)
{
    const __m128d c = _mm_mul_pd(_mm_set1_pd(134217729.0), v);
    return _mm_sub_pd(c, _mm_sub_pd(c, v));
}
inline __m128d sum(__m128d a, __m128d b, __m128d& error)
{
    const __m128d t = _mm_add_pd(a, b), b_part = _mm_sub_pd(t, a);
    error = _mm_add_pd(_mm_sub_pd(a, _mm_sub_pd(t, b_part)), _mm_sub_pd(b, b_part));
    return t;
}
inline void renormalise(Pair& s, __m128d hi, __m128d lo)
{
    s.hi = _mm_add_pd(hi, lo);
    s.lo = _mm_sub_pd(lo, _mm_sub_pd(s.hi, hi));
}
inline void add(Pair& s, __m128d a, __m128d x)
{
    const __m128d a_hi = leading(a), a_lo = _mm_sub_pd(a, a_hi), x_hi = leading(x), x_lo = _mm_sub_pd(x, x_hi);
    const __m128d p = _mm_mul_pd(a, x);
    __m128d p_lo = _mm_sub_pd(_mm_mul_pd(a_hi, x_hi), p);
    p_lo = _mm_add_pd(_mm_add_pd(p_lo, _mm_mul_pd(a_hi, x_lo)), _mm_mul_pd(a_lo, x_hi));
    p_lo = _mm_add_pd(p_lo, _mm_mul_pd(a_lo, x_lo));
    __m128d e1, e2;
    const __m128d t1 = sum(s.hi, p, e1), t2 = sum(s.lo, p_lo, e2);
    renormalise(s, t1, _mm_add_pd(e1, t2));
    renormalise(s, s.hi, _mm_add_pd(s.lo, e2));
}

inline __m128d two(const double* p, const double* q) { return _mm_set_pd(*q, *p); }
inline __m128d two(const float* p, const float* q)
{
    return _mm_set_pd(static_cast<double>(*q), static_cast<double>(*p));
}

// y(k) for k < length, the terms of sum k at a[k * place + t * step].
template <int registers, class T>
void product(const T* a, Int place, Int step, const T* x, Int terms, T* y, Int length)
{
    constexpr int sums = 2 * registers;
    Int k = 0;
    for (; k + sums <= length; k += sums) {
        Pair s[registers];
        const T* row = a + k * place;
        for (Int t = 0; t < terms; ++t) {
            const __m128d xs = _mm_set1_pd(static_cast<double>(x[t]));
#pragma GCC unroll 4
            for (int r = 0; r < registers; ++r) {
                const T* p = row + 2 * r * place + t * step;
                add(s[r], two(p, p + place), xs);
            }
        }
        for (int r = 0; r < registers; ++r) {
            double both[2];
            _mm_storeu_pd(both, s[r].hi);
            y[k + 2 * r] = static_cast<T>(both[0]), y[k + 2 * r + 1] = static_cast<T>(both[1]);
        }
    }
    if (registers > 1 && k + 2 <= length) {
        product<1>(a + k * place, place, step, x, terms, y + k, length - k);
    } else if (k < length) {
        Pair s;
        for (Int t = 0; t < terms; ++t)
            add(s, two(a + k * place + t * step, a + k * place + t * step), two(x + t, x + t));
        y[k] = static_cast<T>(_mm_cvtsd_f64(s.hi));
    }
}

template <int registers, class T>
void gemv_n(const Int*, const Int* m, const Int* n, const T*, const T* a, const Int* lda, const T* x, const Int*,
            const T*, T* y, const Int*, const Int*)
{
    product<registers>(a, 1, *lda, x, *n, y, *m);
}
template <int registers, class T>
void gemv_t(const Int*, const Int* m, const Int* n, const T*, const T* a, const Int* lda, const T* x, const Int*,
            const T*, T* y, const Int*, const Int*)
{
    product<registers>(a, *lda, 1, x, *m, y, *n);
}

template <int registers, class T>
void* find(char letter)
{
    if (letter == 'N') return reinterpret_cast<void*>(gemv_n<registers, T>);
    return letter == 'T' ? reinterpret_cast<void*>(gemv_t<registers, T>) : nullptr;
}

} // namespace

void* xblas_pair_loop(bool four, const std::string& symbol, char letter)
{
    if (symbol == "dgemv_x") return four ? find<4, double>(letter) : find<1, double>(letter);
    if (symbol == "sgemv_x") return four ? find<4, float>(letter) : find<1, float>(letter);
    return nullptr;
}

} // namespace ork::peers
