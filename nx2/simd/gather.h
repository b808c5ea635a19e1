// SPDX-License-Identifier: MIT
// Registers over entries of a row: `count` adjacent values against the elements of x that their columns name.
#pragma once

#include <cstdint>

#include "simd/complex.h"
#include "simd/fetch.h"

namespace ork {

// The elements of x at so many positions, less base.
template <class Int>
inline Vec<double> gather(const double* x, const Int* column, int base)
{
    return {_mm_loadh_pd(_mm_load_sd(x + (std::int64_t{column[0]} - base)), x + (std::int64_t{column[1]} - base))};
}
template <class Int>
inline Vec<float> gather_low(const float* x, const Int* column, int base)
{
    return {_mm_unpacklo_ps(_mm_load_ss(x + (std::int64_t{column[0]} - base)),
                            _mm_load_ss(x + (std::int64_t{column[1]} - base)))};
}
template <class Int>
inline Vec<float> gather(const float* x, const Int* column, int base)
{
    return {_mm_movelh_ps(gather_low(x, column, base).v, gather_low(x, column + 2, base).v)};
}
template <class Int>
inline Vec<Complex<float>> gather(const Complex<float>* x, const Int* column, int base)
{
    const __m128d pair = gather(reinterpret_cast<const double*>(x), column, base).v;
    return {{_mm_castpd_ps(pair)}};
}
template <class Int>
inline Vec<Complex<double>> gather(const Complex<double>* x, const Int* column, int base)
{
    return load<1>(x + (std::int64_t{*column} - base));
}

inline Vec<double> times(Vec<double> a, Vec<double> x) { return a * x; }
inline Vec<float> times(Vec<float> a, Vec<float> x) { return a * x; }
inline Vec<Complex<double>> times(Vec<Complex<double>> a, Vec<Complex<double>> x)
{
    const Vec<double> re{_mm_unpacklo_pd(a.v.v, a.v.v)}, im{_mm_unpackhi_pd(a.v.v, a.v.v)};
    return {alternating_sum(re * x.v, im * exchanged(x.v))};
}
inline Vec<Complex<float>> times(Vec<Complex<float>> a, Vec<Complex<float>> x)
{
    const Vec<float> re{_mm_moveldup_ps(a.v.v)}, im{_mm_movehdup_ps(a.v.v)};
    return {alternating_sum(re * x.v, im * exchanged(x.v))};
}

template <bool conjugate, class T>
inline Vec<T> values(const T* val)
{
    if constexpr (conjugate)
        return conj(load<Vec<T>::lanes>(val));
    else
        return load<Vec<T>::lanes>(val);
}

template <class R>
inline Vec<Complex<R>> operator+(Vec<Complex<R>> a, Vec<Complex<R>> b)
{
    return {a.v + b.v};
}

inline Complex<double> element(Vec<Complex<double>> a) { return {lane(a.v, 0), lane(a.v, 1)}; }
// Lane 0 and lane 1 of a register.
inline Complex<float> pair_sum(Vec<Complex<float>> a)
{
    const Vec<float> sum{_mm_add_ps(a.v.v, _mm_movehl_ps(a.v.v, a.v.v))};
    return {lane(sum, 0), lane(sum, 1)};
}

// Two lanes of partial sums: entries k, k + 1 of a row go to lanes 0 and 1.
template <class T>
struct TwoLanes;

template <>
struct TwoLanes<double> {
    Vec<double> v{};
    template <bool conjugate, class Int>
    void add(const double* val, const double* x, const Int* column, int base)
    {
        v = v + load(val) * gather(x, column, base);
    }
    double sum() const { return fold(v); }
};
template <>
struct TwoLanes<float> {
    Vec<float> v{}; // the upper half stays zero
    template <bool conjugate, class Int>
    void add(const float* val, const float* x, const Int* column, int base)
    {
        v = v + load_low(val) * gather_low(x, column, base);
    }
    float sum() const { return _mm_cvtss_f32(_mm_add_ss(v.v, _mm_movehdup_ps(v.v))); }
};
template <>
struct TwoLanes<Complex<float>> {
    Vec<Complex<float>> v{};
    template <bool conjugate, class Int>
    void add(const Complex<float>* val, const Complex<float>* x, const Int* column, int base)
    {
        v = v + times(values<conjugate>(val), gather(x, column, base));
    }
    Complex<float> sum() const { return pair_sum(v); }
};
template <>
struct TwoLanes<Complex<double>> {
    Vec<Complex<double>> v[2]{};
    template <bool conjugate, class Int>
    void add(const Complex<double>* val, const Complex<double>* x, const Int* column, int base)
    {
        v[0] = v[0] + times(values<conjugate>(val), gather(x, column, base));
        v[1] = v[1] + times(values<conjugate>(val + 1), gather(x, column + 1, base));
    }
    Complex<double> sum() const { return element(v[0] + v[1]); }
};

// How four partial sums become one: (first + second) + (third + fourth), or (first + third) + (second + fourth).
enum class Fold { adjacent, crossed };

// Four times two lanes: of eight entries, 0 1 go to the lanes of the first, 2 3 of the second, and so on. The sum folds
// the four, then adds lane 0 and lane 1.
template <class T, Fold fold = Fold::adjacent>
struct FourByTwo {
    static constexpr int second = fold == Fold::adjacent ? 1 : 2, third = 3 - second;
    TwoLanes<T> part[4];
    template <bool conjugate, class Int>
    void add(const T* val, const T* x, const Int* column, int base)
    {
#pragma GCC unroll 4
        for (int j = 0; j < 4; ++j) part[j].template add<conjugate>(val + 2 * j, x, column + 2 * j, base);
    }
    T sum() const
    {
        if constexpr (std::is_same_v<T, Complex<double>>) {
            const auto lane = [&](int i) {
                return (part[0].v[i] + part[second].v[i]) + (part[third].v[i] + part[3].v[i]);
            };
            return element(lane(0) + lane(1));
        } else {
            return TwoLanes<T>{(part[0].v + part[second].v) + (part[third].v + part[3].v)}.sum();
        }
    }
};
template <Fold fold>
struct FourByTwo<float, fold> { // two of them share a register
    Vec<float> low{}, high{};
    template <bool conjugate, class Int>
    void add(const float* val, const float* x, const Int* column, int base)
    {
        low = low + load(val) * gather(x, column, base);
        high = high + load(val + 4) * gather(x, column + 4, base);
    }
    float sum() const
    {
        const auto halves = [](Vec<float> a) { return _mm_add_ps(a.v, _mm_movehl_ps(a.v, a.v)); };
        if constexpr (fold == Fold::adjacent)
            return TwoLanes<float>{{_mm_add_ps(halves(low), halves(high))}}.sum();
        else
            return TwoLanes<float>{{halves(low + high)}}.sum();
    }
};

} // namespace ork
