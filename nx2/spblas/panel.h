// SPDX-License-Identifier: MIT
// Dense matrices beside a sparse one: a row of some right-hand sides in registers, from either layout, and the values
// that multiply it.
#pragma once

#include <cstdint>

#include "simd/complex.h"

namespace ork::spblas {

// A dense matrix from some right-hand side on.
template <bool row_major, class T>
struct Panel {
    T* at;
    std::int64_t ld;

    // Rows count from `base`. Not by pointer arithmetic, which may not leave the array.
    Panel(T* at, std::int64_t ld, std::int64_t right_hand_side, std::int64_t base = 0)
        : at(reinterpret_cast<T*>(reinterpret_cast<std::uintptr_t>(at + (row_major ? 1 : ld) * right_hand_side) -
                                  static_cast<std::uintptr_t>((row_major ? ld : 1) * base) * sizeof(T))),
          ld(ld)
    {
    }
    T* row(std::int64_t r) const { return row_major ? at + r * ld : at + r; }
};

// Elements at p, p + ld and so on. Lanes that are left repeat others, so they raise no flag of their own.
template <int width>
inline Vec<double> load_apart(const double* p, std::int64_t ld)
{
    if constexpr (width == 1) return load<1>(p);
    return {_mm_loadh_pd(_mm_load_sd(p), p + ld)};
}
template <int width>
inline Vec<float> load_apart(const float* p, std::int64_t ld)
{
    if constexpr (width == 1) return load<1>(p);
    const __m128 low = _mm_unpacklo_ps(_mm_load_ss(p), _mm_load_ss(p + ld));
    if constexpr (width == 2) return {_mm_movelh_ps(low, low)};
    return {_mm_movelh_ps(low, _mm_unpacklo_ps(_mm_load_ss(p + 2 * ld), _mm_load_ss(p + 3 * ld)))};
}
template <int width, class R>
inline Vec<Complex<R>> load_apart(const Complex<R>* p, std::int64_t ld)
{
    if constexpr (width == 1)
        return load<1>(p);
    else
        return {{_mm_castpd_ps(load_apart<2>(reinterpret_cast<const double*>(p), ld).v)}};
}
template <int width>
inline void store_apart(double* p, std::int64_t ld, Vec<double> a)
{
    _mm_storel_pd(p, a.v);
    if constexpr (width == 2) _mm_storeh_pd(p + ld, a.v);
}
template <int width>
inline void store_apart(float* p, std::int64_t ld, Vec<float> a)
{
    const __m128i lanes = _mm_castps_si128(a.v);
    const auto put = [](float* p, int lane) { std::memcpy(p, &lane, sizeof lane); };
    store<1>(p, a);
    if constexpr (width >= 2) put(p + ld, _mm_extract_epi32(lanes, 1));
    if constexpr (width == 4)
        put(p + 2 * ld, _mm_extract_epi32(lanes, 2)), put(p + 3 * ld, _mm_extract_epi32(lanes, 3));
}
template <int width, class R>
inline void store_apart(Complex<R>* p, std::int64_t ld, Vec<Complex<R>> a)
{
    if constexpr (width == 1)
        store<1>(p, a);
    else
        store_apart<2>(reinterpret_cast<double*>(p), ld, {_mm_castps_pd(a.v.v)});
}

// A few registers that go through arithmetic together. Self is what is made of them.
template <int count, class T, class Self>
struct Registers {
    static constexpr int registers = count;
    Vec<T> v[count];

    friend Self operator+(const Self& a, const Self& b)
    {
        return each([&](int i) { return with(reals(a.v[i]) + reals(b.v[i])); });
    }
    friend Self operator-(const Self& a, const Self& b)
    {
        return each([&](int i) { return with(reals(a.v[i]) - reals(b.v[i])); });
    }
    // f of the number of a register.
    template <class F>
    static Self each(F&& f)
    {
        Self result;
#pragma GCC unroll 8
        for (int i = 0; i < count; ++i) result.v[i] = f(i);
        return result;
    }

private:
    static Vec<T> with(Vec<Real<T>> a)
    {
        if constexpr (is_complex<T>)
            return {a};
        else
            return a;
    }
};

template <int count, class T>
inline constexpr int panel_lanes = count < Vec<T>::lanes ? count : Vec<T>::lanes;

// `count` right-hand sides of a row: they stand in the lanes.
template <int count, class T>
struct PanelRow : Registers<count / panel_lanes<count, T>, T, PanelRow<count, T>> {
    static constexpr int lanes = panel_lanes<count, T>;

    template <bool row_major, class Element>
    static PanelRow load(Panel<row_major, Element> panel, std::int64_t r)
    {
        return PanelRow::each([&, p = panel.row(r)](int i) { return load(panel, p, i); });
    }
    template <bool row_major, class Element>
    static Vec<T> load(Panel<row_major, Element> panel, const T* p, int i)
    {
        if constexpr (row_major)
            return ork::load<lanes>(p + i * lanes);
        else
            return load_apart<lanes>(p + i * lanes * panel.ld, panel.ld);
    }
    template <bool row_major>
    void store(Panel<row_major, T> panel, std::int64_t r) const
    {
        T* p = panel.row(r);
#pragma GCC unroll 8
        for (int i = 0; i < PanelRow::registers; ++i) {
            if constexpr (row_major)
                ork::store<lanes>(p + i * lanes, this->v[i]);
            else
                store_apart<lanes>(p + i * lanes * panel.ld, panel.ld, this->v[i]);
        }
    }
};

// `count` right-hand sides of a register of adjacent rows, column-major: the rows stand in the lanes.
template <int count, class T>
struct PanelRows : Registers<count, T, PanelRows<count, T>> {
    template <class Element>
    static PanelRows load(Panel<false, Element> panel, std::int64_t r)
    {
        return PanelRows::each([&, p = panel.row(r)](int i) { return load(panel, p, i); });
    }
    template <class Element>
    static Vec<T> load(Panel<false, Element> panel, const T* p, int i)
    {
        return ork::load<Vec<T>::lanes>((i < 4 ? p : p + 4 * panel.ld) + i % 4 * panel.ld);
    }
    void store(Panel<false, T> panel, std::int64_t r) const
    {
        T* p = panel.row(r);
#pragma GCC unroll 8
        for (int i = 0; i < count; ++i) ork::store<Vec<T>::lanes>(p + i * panel.ld, this->v[i]);
    }
};

// As many right-hand sides as fill four registers.
template <class T>
inline constexpr int widest = 64 / sizeof(T);

// Stored values, or their conjugates: signs that the imaginary part takes in even and odd lanes.
template <class T>
struct Signs {
    explicit Signs(bool) {}
};
template <class R>
struct Signs<Complex<R>> {
    Vec<R> v;
    explicit Signs(bool conjugate)
    {
        const R even = conjugate ? R(0) : -R(0), odd = conjugate ? -R(0) : R(0);
        if constexpr (sizeof(R) == 8)
            v = {_mm_set_pd(odd, even)};
        else
            v = {_mm_set_ps(odd, even, odd, even)};
    }
};

// A value that multiplies registers, or a register of values that multiplies lane by lane. A complex product is the
// plain (ac - bd, ad + bc).
template <class T>
struct Spread {
    Vec<T> v;
    Spread(const T* p, Signs<T>) : v(broadcast(*p)) {}
    Spread(Vec<T> a, Signs<T>) : v(a) {}
    Vec<T> times(Vec<T> x) const { return v * x; }
};
template <class R>
struct Spread<Complex<R>> {
    Vec<R> re, im;
    Spread(const Complex<R>* p, Signs<Complex<R>> signs) : re(broadcast(p->re)), im(turned(broadcast(p->im), signs.v))
    {
    }
    Spread(Vec<Complex<R>> a, Signs<Complex<R>> signs) : re(evens(a.v)), im(turned(odds(a.v), signs.v)) {}
    Vec<Complex<R>> times(Vec<Complex<R>> x) const { return {x.v * re + exchanged(x.v) * im}; }

private:
    static Vec<double> evens(Vec<double> a) { return {_mm_unpacklo_pd(a.v, a.v)}; }
    static Vec<double> odds(Vec<double> a) { return {_mm_unpackhi_pd(a.v, a.v)}; }
    static Vec<float> evens(Vec<float> a) { return {_mm_moveldup_ps(a.v)}; }
    static Vec<float> odds(Vec<float> a) { return {_mm_movehdup_ps(a.v)}; }
    static Vec<double> turned(Vec<double> a, Vec<double> signs) { return {_mm_xor_pd(a.v, signs.v)}; }
    static Vec<float> turned(Vec<float> a, Vec<float> signs) { return {_mm_xor_ps(a.v, signs.v)}; }
};
template <int count, class T, class Self>
inline Self operator*(const Spread<T>& a, const Registers<count, T, Self>& x)
{
    return Self::each([&](int i) { return a.times(x.v[i]); });
}

// sum + a x with row r of the panel for x. One register after the other: with all of x loaded first, sums are spilled.
template <class Group, class T, bool row_major, class Element>
inline void add_product(Group& sum, const Spread<T>& a, Panel<row_major, Element> x, std::int64_t r)
{
    const T* p = x.row(r);
#pragma GCC unroll 8
    for (int i = 0; i < Group::registers; ++i) {
        const Vec<Real<T>> term = reals(a.times(Group::load(x, p, i))), old = reals(sum.v[i]);
        if constexpr (is_complex<T>)
            sum.v[i].v = old + term;
        else
            sum.v[i] = old + term;
    }
}

// f<count>(j) for right-hand sides j .. j + count, as wide as can be.
template <int count, class F>
inline void for_groups(std::int64_t j, std::int64_t end, F&& f)
{
    for (; j + count <= end; j += count) f.template operator()<count>(j);
    if constexpr (count > 1) for_groups<count / 2>(j, end, f);
}

} // namespace ork::spblas
