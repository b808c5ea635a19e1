// SPDX-License-Identifier: MIT
// Sums one after the other, each along its row of op(A), in numbers of several kinds. alpha is 1, beta 0, increments 1.
#include <algorithm>

#include "ork/abi/xblas.h"
#include "peers/xblas.h"

namespace ork::peers {
namespace {

using Int = xblas::Int;

// A sum of products in two doubles: of doubles the exact product by Dekker's method, of floats it is a double.
class PairSum {
public:
    void add(double a, double x)
    {
        double ca = 134217729.0 * a, cx = 134217729.0 * x;
        const double a_hi = ca - (ca - a), a_lo = a - a_hi, x_hi = cx - (cx - x), x_lo = x - x_hi, p = a * x;
        const double p_lo = ((a_hi * x_hi - p) + a_hi * x_lo + a_lo * x_hi) + a_lo * x_lo;
        double e1, e2;
        const double t1 = sum(hi_, p, e1), t2 = sum(lo_, p_lo, e2);
        e1 += t2;
        renormalise(t1, e1);
        renormalise(hi_, lo_ + e2);
    }
    void add(float a, float x)
    {
        double e1;
        const double t1 = sum(hi_, static_cast<double>(a) * static_cast<double>(x), e1);
        renormalise(t1, e1 + lo_);
    }
    double value() const { return hi_; }

private:
    static double sum(double a, double b, double& error)
    {
        const double t = a + b, b_part = t - a;
        error = (a - (t - b_part)) + (b - b_part);
        return t;
    }
    void renormalise(double hi, double lo)
    {
        hi_ = hi + lo;
        lo_ = lo - (hi_ - hi);
    }
    double hi_ = 0, lo_ = 0;
};

template <class Number>
class WideSum {
public:
    template <class R>
    void add(R a, R x)
    {
        s_ += static_cast<Number>(a) * static_cast<Number>(x);
    }
    double value() const { return static_cast<double>(s_); }

private:
    Number s_ = 0;
};

// Of elements of type T: one sum, or one for each part.
template <class Sum, class T>
struct Sums {
    Sum s;
    void add(T a, T x) { s.add(a, x); }
    T value() const { return static_cast<T>(s.value()); }
};
template <class Sum, class R>
struct Sums<Sum, std::complex<R>> {
    Sum re, im;
    void add(std::complex<R> a, std::complex<R> x)
    {
        re.add(a.real(), x.real()), re.add(-a.imag(), x.imag());
        im.add(a.real(), x.imag()), im.add(a.imag(), x.real());
    }
    std::complex<R> value() const { return {static_cast<R>(re.value()), static_cast<R>(im.value())}; }
};

template <class T, class Sum>
struct Loops {
    static void gemv_n(const Int*, const Int* m, const Int* n, const T*, const T* a, const Int* lda, const T* x,
                       const Int*, const T*, T* y, const Int*, const Int*)
    {
        for (Int i = 0; i < *m; ++i) {
            Sums<Sum, T> s;
            for (Int j = 0; j < *n; ++j) s.add(a[i + j * *lda], x[j]);
            y[i] = s.value();
        }
    }
    static void gemv_t(const Int*, const Int* m, const Int* n, const T*, const T* a, const Int* lda, const T* x,
                       const Int*, const T*, T* y, const Int*, const Int*)
    {
        for (Int j = 0; j < *n; ++j) {
            Sums<Sum, T> s;
            for (Int i = 0; i < *m; ++i) s.add(a[i + j * *lda], x[i]);
            y[j] = s.value();
        }
    }
    static void symv_u(const Int*, const Int* n, const T*, const T* a, const Int* lda, const T* x, const Int*, const T*,
                       T* y, const Int*, const Int*)
    {
        for (Int i = 0; i < *n; ++i) {
            Sums<Sum, T> s;
            for (Int j = 0; j < i; ++j) s.add(a[j + i * *lda], x[j]);
            for (Int j = i; j < *n; ++j) s.add(a[i + j * *lda], x[j]);
            y[i] = s.value();
        }
    }
    static void gbmv_n(const Int*, const Int* m, const Int* n, const Int* kl, const Int* ku, const T*, const T* a,
                       const Int* lda, const T* x, const Int*, const T*, T* y, const Int*, const Int*)
    {
        for (Int i = 0; i < *m; ++i) {
            Sums<Sum, T> s;
            for (Int j = std::max<Int>(0, i - *kl); j < std::min(*n, i + *ku + 1); ++j)
                s.add(a[*ku + i - j + j * *lda], x[j]);
            y[i] = s.value();
        }
    }

    static void* find(const std::string& stem, char letter)
    {
        if (stem == "gemv_x" && letter == 'N') return reinterpret_cast<void*>(gemv_n);
        if (stem == "gemv_x" && letter == 'T') return reinterpret_cast<void*>(gemv_t);
        if (stem == "symv_x" && letter == 'U') return reinterpret_cast<void*>(symv_u);
        if (stem == "gbmv_x" && letter == 'N') return reinterpret_cast<void*>(gbmv_n);
        return nullptr;
    }
};

template <class Sum>
void* find(const std::string& symbol, char letter)
{
    const std::string stem = symbol.substr(1);
    switch (symbol[0]) {
    case 's':
        return Loops<float, Sum>::find(stem, letter);
    case 'd':
        return Loops<double, Sum>::find(stem, letter);
    case 'c':
        return Loops<std::complex<float>, Sum>::find(stem, letter);
    case 'z':
        return Loops<std::complex<double>, Sum>::find(stem, letter);
    default:
        return nullptr;
    }
}

} // namespace

void* xblas_loop(const std::string& loop, const std::string& symbol, char letter)
{
    if (loop == "scalar") return find<PairSum>(symbol, letter);
    if (loop == "long double") return find<WideSum<long double>>(symbol, letter);
    if (loop == "__float128") return find<WideSum<__float128>>(symbol, letter);
    return xblas_pair_loop(loop == "four pairs", symbol, letter);
}

const std::vector<std::string>& xblas_loops()
{
    static const std::vector<std::string> all = {"scalar", "pair", "four pairs", "long double", "__float128"};
    return all;
}

} // namespace ork::peers
