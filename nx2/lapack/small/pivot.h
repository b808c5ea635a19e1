// SPDX-License-Identifier: MIT
// The place of the largest element of a column, without branches: pivots of a random matrix can't be predicted, and a
// wrong guess costs more than a column of order 8.
#pragma once

#include "lapack/columns.h"
#include "lapack/small/operand.h"

namespace ork::lapack {

// Whole numbers beside the lanes of elements T, each repeated over the parts of a complex one.
template <class T>
struct Places {
    __m128i v;

    static constexpr bool wide = sizeof(Real<T>) == 8;
    static Places all(Int i) { return {wide ? _mm_set1_epi64x(i) : _mm_set1_epi32(static_cast<int>(i))}; }
    // i, i + 1, ...
    static Places from(Int i)
    {
        constexpr int second = is_complex<T> ? 0 : 1;
        const __m128i step =
            wide ? _mm_set_epi64x(second, 0) : _mm_set_epi32(2 + second - is_complex<T>, 2 - is_complex<T>, second, 0);
        return all(i) + Places{step};
    }
    friend Places operator+(Places a, Places b) { return {wide ? _mm_add_epi64(a.v, b.v) : _mm_add_epi32(a.v, b.v)}; }
    // Masks of lanes.
    friend Vec<Real<T>> operator>(Places a, Places b)
    {
        return from_bits<Real<T>>(wide ? _mm_cmpgt_epi64(a.v, b.v) : _mm_cmpgt_epi32(a.v, b.v));
    }
    friend Vec<Real<T>> operator==(Places a, Places b)
    {
        return from_bits<Real<T>>(wide ? _mm_cmpeq_epi64(a.v, b.v) : _mm_cmpeq_epi32(a.v, b.v));
    }
};

inline Vec<double> magnitudes(Vec<double> a) { return abs(a); }
inline Vec<float> magnitudes(Vec<float> a) { return abs(a); }
template <class R>
inline Vec<R> magnitudes(Vec<Complex<R>> a)
{
    return abs(a.v) + exchanged(abs(a.v));
}

// The first of the largest magnitudes seen; a NaN is passed over. Where nothing else was seen: `none`.
template <class T>
class PivotSearch {
    using R = Real<T>;

public:
    explicit PivotSearch(Int none) : place_(Places<T>::all(none)) {}

    // Elements at the places of their lanes.
    void look(Vec<T> a, Places<T> places) { weigh(magnitudes(a), places); }
    // The same of the lanes in the mask.
    void look(Vec<T> a, Places<T> places, Vec<R> among)
    {
        weigh(select(among, magnitudes(a), broadcast(R(-1))), places);
    }

    Int place() const
    {
        PivotSearch whole = *this;
        if constexpr (sizeof(T) <= 4)
            whole.merge(_mm_shuffle_epi32(bits(best_), 0xb1), _mm_shuffle_epi32(place_.v, 0xb1));
        if constexpr (sizeof(T) <= 8)
            whole.merge(_mm_shuffle_epi32(bits(whole.best_), 0x4e), _mm_shuffle_epi32(whole.place_.v, 0x4e));
        return whole.place_of_lane();
    }
    // The same where every lane has seen the same.
    Int place_of_lane() const { return Places<T>::wide ? _mm_cvtsi128_si64(place_.v) : _mm_cvtsi128_si32(place_.v); }

private:
    void weigh(Vec<R> size, Places<T> places)
    {
        const Vec<R> better = greater(size, best_);
        best_ = larger(size, best_); // of a NaN, best_
        place_.v = _mm_blendv_epi8(place_.v, places.v, bits(better));
    }
    void merge(__m128i other_best, __m128i other_place)
    {
        const Vec<R> other = from_bits<R>(other_best), earlier = place_ > Places<T>{other_place};
        const Vec<R> better = either(greater(other, best_), both(equal(other, best_), earlier));
        best_ = select(better, other, best_);
        place_.v = _mm_blendv_epi8(place_.v, other_place, bits(better));
    }

    Vec<R> best_ = broadcast(R(0));
    Places<T> place_;
};

} // namespace ork::lapack
