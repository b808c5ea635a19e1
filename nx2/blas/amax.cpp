// SPDX-License-Identifier: MIT
// 1-based position of the first element of largest (amax) or smallest (amin) magnitude, |re| + |im| for complex
// numbers; of the first NaN, if there is one. Positions count in the order of the elements.
//
// Blocks are searched for their extreme value only; the one that holds the winner is looked through again at the end.
// maxpd, minpd and the ordered comparisons all raise the invalid flag on a NaN, quiet ones too, so in long vectors one
// look at the flag replaces a test of every element. A flag that the caller had is put aside meanwhile: afterwards both
// his flags and those raised here are set, and the control bits are as they were. To read MXCSR takes as long as a
// dozen elements, to write it as long as two dozen, so short vectors test for NaN themselves.
#include <limits>

#include "blas/elementwise.h"
#include "blas/level1_kernels.h"

namespace ork {
namespace {

enum class Extreme { largest, smallest };

// The magnitudes of as many elements as a register holds real numbers.
template <class R>
inline Vec<R> magnitudes(const R* x)
{
    return abs(load(x));
}
inline Vec<double> magnitudes(const Complex<double>* x)
{
    const __m128d a = abs(load<1>(x).v).v, b = abs(load<1>(x + 1).v).v;
    return {_mm_add_pd(_mm_unpacklo_pd(a, b), _mm_unpackhi_pd(a, b))};
}
inline Vec<float> magnitudes(const Complex<float>* x)
{
    const __m128 a = abs(load<2>(x).v).v, b = abs(load<2>(x + 2).v).v;
    return {_mm_add_ps(_mm_shuffle_ps(a, b, _MM_SHUFFLE(2, 0, 2, 0)), _mm_shuffle_ps(a, b, _MM_SHUFFLE(3, 1, 3, 1)))};
}

inline float magnitude(float a) { return __builtin_fabsf(a); }
inline double magnitude(double a) { return __builtin_fabs(a); }
template <class R>
inline R magnitude(Complex<R> a)
{
    return magnitude(a.re) + magnitude(a.im);
}

// One bit a lane.
inline int mask(Vec<double> a) { return _mm_movemask_pd(a.v); }
inline int mask(Vec<float> a) { return _mm_movemask_ps(a.v); }
inline Vec<double> equal(Vec<double> a, Vec<double> b) { return {_mm_cmpeq_pd(a.v, b.v)}; }
inline Vec<float> equal(Vec<float> a, Vec<float> b) { return {_mm_cmpeq_ps(a.v, b.v)}; }
inline Vec<double> unordered(Vec<double> a, Vec<double> b) { return {_mm_cmpunord_pd(a.v, b.v)}; }
inline Vec<float> unordered(Vec<float> a, Vec<float> b) { return {_mm_cmpunord_ps(a.v, b.v)}; }
inline Vec<double> operator|(Vec<double> a, Vec<double> b) { return {_mm_or_pd(a.v, b.v)}; }
inline Vec<float> operator|(Vec<float> a, Vec<float> b) { return {_mm_or_ps(a.v, b.v)}; }

template <Extreme e>
inline Vec<double> better(Vec<double> a, Vec<double> b)
{
    return {e == Extreme::largest ? _mm_max_pd(a.v, b.v) : _mm_min_pd(a.v, b.v)};
}
template <Extreme e>
inline Vec<float> better(Vec<float> a, Vec<float> b)
{
    return {e == Extreme::largest ? _mm_max_ps(a.v, b.v) : _mm_min_ps(a.v, b.v)};
}
// Lanes in which a beats b.
template <Extreme e>
inline Vec<double> beats(Vec<double> a, Vec<double> b)
{
    return {e == Extreme::largest ? _mm_cmpgt_pd(a.v, b.v) : _mm_cmplt_pd(a.v, b.v)};
}
template <Extreme e>
inline Vec<float> beats(Vec<float> a, Vec<float> b)
{
    return {e == Extreme::largest ? _mm_cmpgt_ps(a.v, b.v) : _mm_cmplt_ps(a.v, b.v)};
}

// The best lane, in every lane.
template <Extreme e>
inline Vec<double> best_lane(Vec<double> a)
{
    return better<e>(a, exchanged(a));
}
template <Extreme e>
inline Vec<float> best_lane(Vec<float> a)
{
    a = better<e>(a, exchanged(a));
    return better<e>(a, {_mm_shuffle_ps(a.v, a.v, _MM_SHUFFLE(1, 0, 3, 2))});
}

// The invalid flag, clear while this lives. (The compiler takes two readings by _mm_getcsr for one.)
class InvalidFlag {
public:
    InvalidFlag() : before_(status())
    {
        if (before_ & _MM_EXCEPT_INVALID) set_status(before_ & ~static_cast<unsigned>(_MM_EXCEPT_MASK));
    }
    InvalidFlag(const InvalidFlag&) = delete;
    ~InvalidFlag()
    {
        if (before_ & _MM_EXCEPT_INVALID) set_status(status() | (before_ & _MM_EXCEPT_MASK));
    }
    static bool raised() { return (status() & _MM_EXCEPT_INVALID) != 0; }

private:
    static unsigned status()
    {
        unsigned mxcsr;
        asm volatile("stmxcsr %0" : "=m"(mxcsr));
        return mxcsr;
    }
    static void set_status(unsigned mxcsr) { asm volatile("ldmxcsr %0" : : "m"(mxcsr)); }

    const unsigned before_;
};

// The first of [begin, end), at least a register of elements, that is a hit; end if there is none.
template <class T, class Hit>
inline Int find(const T* x, Int begin, Int end, Hit hit)
{
    constexpr Int lanes = Vec<Real<T>>::lanes;
    for (Int i = begin;; i += lanes) {
        if (i > end - lanes) i = end - lanes; // goes back over elements that were no hits
        const int hits = mask(hit(magnitudes(x + i)));
        if (hits != 0) return i + __builtin_ctz(static_cast<unsigned>(hits));
        if (i == end - lanes) return end;
    }
}

template <Extreme e, class T>
inline Int first_extreme(const T* x, Int begin, Int end, Vec<Real<T>> best)
{
    return find(x, begin, end, [=](auto m) { return equal(m, best); });
}
// An ordered comparison, which raises the invalid flag; the compiler would know the result and leave it out.
inline void signal(float nan) { asm volatile("comiss %0, %0" : : "x"(nan) : "cc"); }
inline void signal(double nan) { asm volatile("comisd %0, %0" : : "x"(nan) : "cc"); }

template <class T>
[[gnu::cold]] Int first_nan(Int n, const T* x)
{
    const Int position = find(x, 0, n, [](auto m) { return unordered(m, m); });
    signal(magnitude(get(x + position))); // the search may have found it before any comparison did
    return position;
}

// One to four registers of elements, which overlap as they must.
template <Extreme e, class T>
inline Int among_four(Int n, const T* x)
{
    using V = Vec<Real<T>>;
    constexpr Int lanes = V::lanes, last = 3;
    const Int at[] = {0, n < 2 * lanes ? n - lanes : lanes, n < 2 * lanes ? 0 : n - 2 * lanes, n - lanes};
    V m[4];
#pragma GCC unroll 4
    for (int j = 0; j < 4; ++j) m[j] = magnitudes(x + at[j]);
    if (mask(unordered(m[0], m[1]) | unordered(m[2], m[3])) != 0) return first_nan(n, x);
    const V best = best_lane<e>(better<e>(better<e>(m[0], m[1]), better<e>(m[2], m[3])));
    unsigned hits = 0;
#pragma GCC unroll 4
    for (int j = last; j >= 0; --j) hits |= static_cast<unsigned>(mask(equal(m[j], best))) << at[j];
    return __builtin_ctz(hits);
}

// Blocks of eight registers, and what is left over.
template <Extreme e, class T>
inline Int among_few(Int n, const T* x)
{
    using V = Vec<Real<T>>;
    constexpr int lanes = V::lanes, width = 8, block = width * lanes;
    V best = broadcast(e == Extreme::largest ? Real<T>{} : std::numeric_limits<Real<T>>::infinity());
    V nan = broadcast(Real<T>{});
    Int winner = 0, i = 0;
    const auto challenge = [&](V block_best) {
        if (mask(beats<e>(block_best, best)) != 0) best = best_lane<e>(block_best), winner = i;
    };
    for (; i <= n - block; i += block) {
        V m[width];
#pragma GCC unroll 8
        for (int j = 0; j < width; ++j) m[j] = magnitudes(x + i + j * lanes);
#pragma GCC unroll 4
        for (int j = 0; j < width; j += 2) nan = nan | unordered(m[j], m[j + 1]), m[j] = better<e>(m[j], m[j + 1]);
        challenge(better<e>(better<e>(m[0], m[2]), better<e>(m[4], m[6])));
    }
    if (i < n) {
        V m = magnitudes(x + n - lanes);
        nan = nan | unordered(m, m);
        for (Int k = i; k < n - lanes; k += lanes) {
            const V a = magnitudes(x + k);
            nan = nan | unordered(a, a), m = better<e>(m, a);
        }
        challenge(m);
    }
    if (mask(nan) != 0) return first_nan(n, x);
    return first_extreme<e>(x, winner, winner + block < n ? winner + block : n, best);
}

template <Extreme e, class T>
inline Int among_many(Int n, const T* x)
{
    using V = Vec<Real<T>>;
    constexpr int lanes = V::lanes, width = 16, block = width * lanes;
    const InvalidFlag invalid;
    asm volatile("" : "+r"(x)); // no element is looked at before the flag is clear
    V best = broadcast(e == Extreme::largest ? Real<T>{} : std::numeric_limits<Real<T>>::infinity());
    Int winner = 0, i = 0;
    const auto challenge = [&](V block_best) {
        if (mask(beats<e>(block_best, best)) != 0) best = best_lane<e>(block_best), winner = i;
    };
    for (; i <= n - block; i += block) {
        V m[4];
#pragma GCC unroll 16
        for (int j = 0; j < width; ++j) {
            const V a = magnitudes(x + i + j * lanes);
            m[j % 4] = j < 4 ? a : better<e>(m[j % 4], a);
        }
        challenge(better<e>(better<e>(m[0], m[1]), better<e>(m[2], m[3])));
    }
    if (i < n) {
        V m = magnitudes(x + n - lanes);
        for (Int k = i; k < n - lanes; k += lanes) m = better<e>(m, magnitudes(x + k));
        challenge(m);
    }
    asm volatile("" : "+x"(best.v)); // every comparison has been made before the flag is read
    if (InvalidFlag::raised()) return first_nan(n, x);
    return first_extreme<e>(x, winner, winner + block < n ? winner + block : n, best);
}

template <Extreme e, class T>
Int one_by_one(Int n, const T* x, Int incx)
{
    x = first(x, n, incx);
    Real<T> best = e == Extreme::largest ? -1 : std::numeric_limits<Real<T>>::infinity();
    Int winner = 0;
    for (Int i = 0; i < n; ++i, x += incx) {
        const Real<T> m = magnitude(get(x));
        if (e == Extreme::largest ? m <= best : m >= best) continue;
        if (m != m) return i; // the comparison has raised the flag
        best = m, winner = i;
    }
    return winner;
}

template <Extreme e, class T>
Int position(Int n, const T* x, Int incx)
{
    constexpr Int lanes = Vec<Real<T>>::lanes, many = 64 * lanes;
    if (n < 1) return 0;
    if (incx != 1 || n < lanes) return 1 + one_by_one<e>(n, x, incx);
    if (n <= 4 * lanes) return 1 + among_four<e>(n, x);
    return 1 + (n < many ? among_few<e>(n, x) : among_many<e>(n, x));
}

} // namespace
} // namespace ork

using namespace ork;

int64_t ork_blas_nx2_xisamax(const int64_t* n, const float* x, const int64_t* incx)
{
    return position<Extreme::largest>(*n, x, *incx);
}

int64_t ork_blas_nx2_xidamax(const int64_t* n, const double* x, const int64_t* incx)
{
    return position<Extreme::largest>(*n, x, *incx);
}

int64_t ork_blas_nx2_xicamax(const int64_t* n, const ork_complex_float* x, const int64_t* incx)
{
    return position<Extreme::largest>(*n, pairs(x), *incx);
}

int64_t ork_blas_nx2_xizamax(const int64_t* n, const ork_complex_double* x, const int64_t* incx)
{
    return position<Extreme::largest>(*n, pairs(x), *incx);
}

int64_t ork_blas_nx2_xisamin(const int64_t* n, const float* x, const int64_t* incx)
{
    return position<Extreme::smallest>(*n, x, *incx);
}

int64_t ork_blas_nx2_xidamin(const int64_t* n, const double* x, const int64_t* incx)
{
    return position<Extreme::smallest>(*n, x, *incx);
}

int64_t ork_blas_nx2_xicamin(const int64_t* n, const ork_complex_float* x, const int64_t* incx)
{
    return position<Extreme::smallest>(*n, pairs(x), *incx);
}

int64_t ork_blas_nx2_xizamin(const int64_t* n, const ork_complex_double* x, const int64_t* incx)
{
    return position<Extreme::smallest>(*n, pairs(x), *incx);
}
