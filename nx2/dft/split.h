// SPDX-License-Identifier: MIT
// Split<R>: as many independent complex numbers as a register has lanes, real parts in one register and imaginary parts
// in another. A quarter turn is a renaming, so no product or sum needs a shuffle.
#pragma once

#include "dft/roots.h"
#include "simd/vec.h"

namespace ork::dft {

template <class R>
struct Split {
    using Real = R;
    static constexpr int lanes = Vec<R>::lanes;
    static constexpr int outputs_at_once = 3; // of a prime transform: twelve registers of sums

    // A real number kept so that one load spreads it over a register.
    struct Multiplier {
        R pair[2]; // one number for double, two equal ones for float
        constexpr explicit Multiplier(R a) : pair{a, a} {}
        Vec<R> spread() const
        {
            double eight;
            __builtin_memcpy(&eight, pair, sizeof eight);
            if constexpr (sizeof(R) == 8)
                return {_mm_set1_pd(eight)};
            else
                return {_mm_castpd_ps(_mm_set1_pd(eight))};
        }
    };

    // -i times the number it holds.
    struct Quarter {
        using Multiplier = Split::Multiplier;
        Vec<R> re, im;

        friend Quarter operator*(Quarter a, R b) { return {a.re * broadcast(b), a.im * broadcast(b)}; }
        friend Quarter operator*(Quarter a, const Multiplier& b)
        {
            const Vec<R> factor = b.spread();
            return {a.re * factor, a.im * factor};
        }
        friend Quarter operator+(Quarter a, Quarter b) { return {a.re + b.re, a.im + b.im}; }
        friend Quarter operator-(Quarter a, Quarter b) { return {a.re - b.re, a.im - b.im}; }
        operator Split() const { return {im, {-re.v}}; }
    };

    Vec<R> re, im;

    friend Split operator+(Split a, Split b) { return {a.re + b.re, a.im + b.im}; }
    friend Split operator-(Split a, Split b) { return {a.re - b.re, a.im - b.im}; }
    friend Split operator+(Split a, Quarter b) { return {a.re + b.im, a.im - b.re}; }
    friend Split operator-(Split a, Quarter b) { return {a.re - b.im, a.im + b.re}; }
    friend Split operator*(Split a, R b) { return {a.re * broadcast(b), a.im * broadcast(b)}; }
    friend Split operator*(Split a, const Multiplier& b)
    {
        const Vec<R> factor = b.spread();
        return {a.re * factor, a.im * factor};
    }
    friend Quarter quarter(Split a) { return {a.re, a.im}; }
};

// exp(-2 pi i k / n) a.
template <int n, int k, class R>
[[gnu::always_inline]] inline Split<R> twiddled(Split<R> a)
{
    constexpr int eighths = 8 * k % n == 0 ? 8 * k / n % 8 : -1;
    if constexpr (eighths == 0) {
        return a;
    } else if constexpr (eighths == 2) {
        return quarter(a);
    } else if constexpr (eighths == 4) {
        return {{-a.re.v}, {-a.im.v}};
    } else if constexpr (eighths == 6) {
        return {{-a.im.v}, a.re};
    } else if constexpr (eighths >= 0) {
        constexpr R h = root<R, 8, 1>.cos, minus_h = -h;
        const Vec<R> sum = a.re + a.im, difference = a.im - a.re;
        if constexpr (eighths == 1) return {sum * broadcast(h), difference * broadcast(h)};
        if constexpr (eighths == 3) return {difference * broadcast(h), sum * broadcast(minus_h)};
        if constexpr (eighths == 5) return {sum * broadcast(minus_h), difference * broadcast(minus_h)};
        return {difference * broadcast(minus_h), sum * broadcast(h)};
    } else {
        constexpr Root<R> w = root<R, n, k % n>;
        const Vec<R> c = broadcast(w.cos), s = broadcast(w.sin);
        return {a.re * c + a.im * s, a.im * c - a.re * s};
    }
}

} // namespace ork::dft
