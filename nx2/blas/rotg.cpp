// SPDX-License-Identifier: MIT
// Generates the plane rotation that takes (a, b) to (r, 0): c a + s b = r, c b - conj(s) a = 0, c real. Scaled by
// powers of two as far as the operands need it, after Anderson, "Algorithm 978: Safe scaling in the level 1 BLAS",
// 2017; the single-precision ones are computed in double precision, where no square overflows, and rounded once.
#include "blas/elementwise.h"
#include "blas/level1_kernels.h"
#include "blas/power_of_two.h"

namespace ork {
namespace {

inline double root(double a) { return _mm_cvtsd_f64(_mm_sqrt_sd(_mm_setzero_pd(), _mm_set_sd(a))); }
inline double absolute(double a) { return __builtin_fabs(a); }

// r = +-sqrt(a^2 + b^2) with the sign of the larger operand, b's of two equal ones. On return a = r and b = z, from
// which c and s can be had again: z = s if |a| > |b|, otherwise 1 / c, or 1 where c = 0.
template <class T>
void rotg(T* a, T* b, T* c, T* s)
{
    double f = *a, g = *b;
    if (g == 0) {
        *c = 1, *s = 0, *b = 0;
        return;
    }
    if (f == 0) {
        *c = 0, *s = 1, *a = *b, *b = 1;
        return;
    }
    const bool a_larger = absolute(f) > absolute(g);
    const double larger = a_larger ? f : g;
    int e = 0;
    if (!(absolute(larger) > 0x1p-480 && absolute(larger) < 0x1p510))
        e = exponent(larger), f = scaled(f, -e), g = scaled(g, -e);
    const double small = absolute(a_larger ? g : f), large = absolute(a_larger ? f : g);
    // A square that is nothing beside the other is left out before it underflows.
    const double h = small < 0x1p-60 * large ? large : root(f * f + g * g);
    const double r = larger < 0 ? -h : h;
    *c = static_cast<T>(f / r), *s = static_cast<T>(g / r);
    *a = static_cast<T>(scaled(r, e));
    *b = a_larger ? *s : *c != 0 ? 1 / *c : 1;
}

// As much of a complex number as is not its power of two.
struct ScaledPair {
    Complex<double> significand; // the larger part in [1, 2^24)
    int e;
    double square; // of the significand's modulus

    explicit ScaledPair(Complex<double> a)
    {
        const int of_re = exponent(a.re), of_im = exponent(a.im);
        e = of_re > of_im ? of_re : of_im;
        significand = {scaled(a.re, -e), scaled(a.im, -e)};
        square = significand.re * significand.re + significand.im * significand.im;
    }
};

// r = a sqrt(|a|^2 + |b|^2) / |a|: the phase of a, or |b| if a = 0.
template <class R>
void rotg(Complex<R>* a, const Complex<R>* b, R* c, Complex<R>* s)
{
    const auto rounded = [](Complex<double> x, double factor, int e) {
        return Complex<R>{static_cast<R>(scaled(x.re * factor, e)), static_cast<R>(scaled(x.im * factor, e))};
    };
    if (*b == Complex<R>{}) {
        *c = 1, *s = {};
        return;
    }
    const ScaledPair g(Complex<double>{b->re, b->im});
    if (*a == Complex<R>{}) {
        const double modulus = root(g.square);
        *c = 0, *a = {static_cast<R>(scaled(modulus, g.e)), 0};
        *s = rounded(conj(g.significand), 1 / modulus, 0);
        return;
    }
    const ScaledPair f(Complex<double>{a->re, a->im});
    const int e = f.e > g.e ? f.e : g.e;
    // Squares of the moduli in units of 2^2e; what is nothing beside the other is left out before it underflows.
    const double f2 = f.e - e < -100 ? 0 : f.square * power_of_two(2 * (f.e - e));
    const double g2 = g.e - e < -100 ? 0 : g.square * power_of_two(2 * (g.e - e));
    const double modulus = root(f.square), h = root(f2 + g2);
    *c = static_cast<R>(scaled(modulus / h, f.e - e));
    *s = rounded(conj(g.significand) * f.significand, 1 / (modulus * h), g.e - e);
    *a = rounded(f.significand, h / modulus, e);
}

} // namespace
} // namespace ork

using namespace ork;

void ork_blas_nx2_srotg(float* a, float* b, float* c, float* s) { rotg(a, b, c, s); }

void ork_blas_nx2_drotg(double* a, double* b, double* c, double* s) { rotg(a, b, c, s); }

void ork_blas_nx2_crotg(ork_complex_float* a, const ork_complex_float* b, float* c, ork_complex_float* s)
{
    rotg(pairs(a), pairs(b), c, pairs(s));
}

void ork_blas_nx2_zrotg(ork_complex_double* a, const ork_complex_double* b, double* c, ork_complex_double* s)
{
    rotg(pairs(a), pairs(b), c, pairs(s));
}
