// SPDX-License-Identifier: MIT
// Dot products: sum of x[i] y[i], of conj(x[i]) y[i], and of single numbers in double precision.
//
// The order of additions, by n alone. Unit increments: products of one register of elements each; over blocks of 16
// registers, product j goes to accumulator A(j mod 4); the registers that fill no block go to A0, one after the other,
// and after them two last single numbers, or one pair of them, to its lower lanes; the sum is (A2 + A3) + (A1 + A0),
// then its lanes (0 + 1, or (0 + 2) + (1 + 3)), then the last odd element. Any other increments: one accumulator, in
// the order of the elements. A complex sum with unit increments keeps the four real ones apart, x.re y.re and x.im y.im
// in one register, x.re y.im and x.im y.re in another; after the lanes, the first two are subtracted, the others added
// (conjugated: the other way).
#include "blas/elementwise.h"
#include "blas/level1_kernels.h"

namespace ork {
namespace {

// A register of the accumulator's type; single numbers widen on the way.

template <class A>
inline Vec<A> load_as(const A* p)
{
    return load(p);
}
template <class A>
requires std::is_same_v<A, double>
inline Vec<A> load_as(const float* p) // two adjacent ones
{
    double pair;
    std::memcpy(&pair, p, sizeof pair);
    return {_mm_cvtps_pd(_mm_castpd_ps(_mm_set_sd(pair)))};
}

template <class A, bool conjugate>
struct Products {
    Vec<A> sum;

    static Products zero() { return {broadcast(A{})}; }
    template <class T>
    [[gnu::always_inline]] void add(const T* x, const T* y)
    {
        sum = sum + load_as<A>(x) * load_as<A>(y);
    }
    template <class T>
    [[gnu::always_inline]] void add_half(const T* x, const T* y)
    {
        sum = sum + load_low(x) * load_low(y);
    }
    friend Products operator+(Products a, Products b) { return {a.sum + b.sum}; }
    A total() const { return fold(sum); }
};

template <class R, bool conjugate>
struct Products<Complex<R>, conjugate> {
    Vec<R> straight, crossed; // (re re, im im), (re im, im re) of x y

    static Products zero() { return {broadcast(R{}), broadcast(R{})}; }
    [[gnu::always_inline]] void add(const Complex<R>* x, const Complex<R>* y)
    {
        constexpr int lanes = Vec<Complex<R>>::lanes;
        add(load<lanes>(x).v, load<lanes>(y).v);
    }
    [[gnu::always_inline]] void add_half(const Complex<R>* x, const Complex<R>* y)
    {
        add(load_low(reals(x)), load_low(reals(y)));
    }
    friend Products operator+(Products a, Products b) { return {a.straight + b.straight, a.crossed + b.crossed}; }
    Complex<R> total() const
    {
        const Complex<R> s = pair(straight), c = pair(crossed);
        if constexpr (conjugate)
            return {s.re + s.im, c.re - c.im};
        else
            return {s.re - s.im, c.re + c.im};
    }

private:
    // The loads are pinned where they stand: the compiler would make two of one, or put the terms in an order that
    // spills.
    [[gnu::always_inline]] void add(Vec<R> a, Vec<R> b)
    {
        asm volatile("" : "+x"(a.v));
        const Vec<R> turned = exchanged(b);
        straight = sum(straight, product(b, a));
        crossed = sum(crossed, product(turned, a));
    }
    static Complex<R> pair(Vec<double> a) { return {lane(a, 0), lane(a, 1)}; }
    static Complex<R> pair(Vec<float> a)
    {
        const Vec<float> both{_mm_add_ps(a.v, _mm_movehl_ps(a.v, a.v))};
        return {_mm_cvtss_f32(both.v), _mm_cvtss_f32(_mm_movehdup_ps(both.v))};
    }
};

template <bool conjugate, class A, class T>
inline A product_of(T x, T y)
{
    if constexpr (conjugate)
        return conj(x) * y;
    else
        return A(x) * A(y);
}

template <int pass, int lanes, class Sum, class T>
[[gnu::always_inline]] inline void add_pass(Sum (&a)[4], const T* x, const T* y)
{
#pragma GCC unroll 16
    for (int j = 0; j < pass; ++j) a[j % 4].add(x + j * lanes, y + j * lanes);
}

// The registers that fill no block, by the bits of their number.
template <int lanes, int registers, class Sum, class T>
[[gnu::always_inline]] inline void rest(Sum& a, Int n, const T*& x, const T*& y)
{
    if (n & (registers * lanes)) {
#pragma GCC unroll 8
        for (int j = 0; j < registers; ++j) a.add(x + j * lanes, y + j * lanes);
        x += registers * lanes, y += registers * lanes;
    }
    if constexpr (registers > 1) rest<lanes, registers / 2>(a, n, x, y);
}

template <class A, bool conjugate = false, class T>
A dot(Int n, const T* x, Int incx, const T* y, Int incy)
{
    if (n < 1) return A{};
    if (incx == 1 && incy == 1) [[likely]] {
        constexpr int lanes = Vec<A>::lanes, block = 16 * lanes;
        constexpr int pass =
            is_complex<A> ? 4 : 16; // registers; with 16, exchanged pairs would not all stay in registers
        using Sum = Products<A, conjugate>;
        Sum a[4] = {Sum::zero(), Sum::zero(), Sum::zero(), Sum::zero()};
        if (n >= block) {
            const T* end = x + n / block * block;
            if (!is_complex<A> && in_third_level(n * static_cast<Int>(sizeof(T)))) {
                for (; x != end; x += pass * lanes, y += pass * lanes) {
                    prefetch<pass * lanes>(x), prefetch<pass * lanes>(y);
                    add_pass<pass, lanes>(a, x, y);
                }
            } else {
                for (; x != end; x += pass * lanes, y += pass * lanes) add_pass<pass, lanes>(a, x, y);
            }
        }
        rest<lanes, 8>(a[0], n, x, y);
        if constexpr (sizeof(Real<A>) == 4)
            if (n & (lanes / 2)) {
                a[0].add_half(x, y);
                x += lanes / 2, y += lanes / 2;
            }
        // A0 alone never is -0, so the other three, all +0, may be left out.
        A sum = (n < block ? a[0] : (a[2] + a[3]) + (a[1] + a[0])).total();
        if constexpr (!is_complex<A>)
            if (n & 1) sum += static_cast<A>(get(x)) * static_cast<A>(get(y));
        return sum;
    }
    x = first(x, n, incx), y = first(y, n, incy);
    A sum{};
#pragma GCC unroll 8
    for (Int i = 0; i < n; ++i, x += incx, y += incy) sum = sum + product_of<conjugate, A>(get(x), get(y));
    return sum;
}

} // namespace
} // namespace ork

using namespace ork;

float ork_blas_nx2_xsdot(const int64_t* n, const float* x, const int64_t* incx, const float* y, const int64_t* incy)
{
    return dot<float>(*n, x, *incx, y, *incy);
}

double ork_blas_nx2_xddot(const int64_t* n, const double* x, const int64_t* incx, const double* y, const int64_t* incy)
{
    return dot<double>(*n, x, *incx, y, *incy);
}

float ork_blas_nx2_xsdsdot(const int64_t* n, const float* sb, const float* x, const int64_t* incx, const float* y,
                           const int64_t* incy)
{
    if (*n < 1) return 0;
    return static_cast<float>(*sb + dot<double>(*n, x, *incx, y, *incy));
}

double ork_blas_nx2_xdsdot(const int64_t* n, const float* x, const int64_t* incx, const float* y, const int64_t* incy)
{
    return dot<double>(*n, x, *incx, y, *incy);
}

// A pair of single numbers returns in the low half of one register, as a double does. The compiler would get it there
// by two stores and a load of both, which waits for them: 15 cycles, as long as the product of ten elements takes.
namespace {
inline double joined(Complex<float> a)
{
    return _mm_cvtsd_f64(_mm_castps_pd(_mm_unpacklo_ps(_mm_set_ss(a.re), _mm_set_ss(a.im))));
}
} // namespace

#pragma GCC diagnostic ignored "-Wattribute-alias"
extern "C" {
static double cdotu(const int64_t* n, const ork_complex_float* x, const int64_t* incx, const ork_complex_float* y,
                    const int64_t* incy)
{
    return joined(dot<Complex<float>>(*n, pairs(x), *incx, pairs(y), *incy));
}

static double cdotc(const int64_t* n, const ork_complex_float* x, const int64_t* incx, const ork_complex_float* y,
                    const int64_t* incy)
{
    return joined(dot<Complex<float>, true>(*n, pairs(x), *incx, pairs(y), *incy));
}
}

ork_complex_float ork_blas_nx2_xcdotu(const int64_t*, const ork_complex_float*, const int64_t*,
                                      const ork_complex_float*, const int64_t*) __attribute__((alias("cdotu")));
ork_complex_float ork_blas_nx2_xcdotc(const int64_t*, const ork_complex_float*, const int64_t*,
                                      const ork_complex_float*, const int64_t*) __attribute__((alias("cdotc")));

ork_complex_double ork_blas_nx2_xzdotu(const int64_t* n, const ork_complex_double* x, const int64_t* incx,
                                       const ork_complex_double* y, const int64_t* incy)
{
    return boundary(dot<Complex<double>>(*n, pairs(x), *incx, pairs(y), *incy));
}

ork_complex_double ork_blas_nx2_xzdotc(const int64_t* n, const ork_complex_double* x, const int64_t* incx,
                                       const ork_complex_double* y, const int64_t* incy)
{
    return boundary(dot<Complex<double>, true>(*n, pairs(x), *incx, pairs(y), *incy));
}
