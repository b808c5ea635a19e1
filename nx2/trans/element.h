// SPDX-License-Identifier: MIT
// What happens to an element on its way: a functor from register to register. Signs are flipped by a mask that may be
// zero, so that conjugation takes no code of its own.
#pragma once

#include <cstdint>

#include "simd/complex.h"

namespace ork::trans {

using Int = std::int64_t;

// All zeros, or the signs of the imaginary parts.
template <class T>
inline Vec<T> sign_mask([[maybe_unused]] bool conjugated)
{
    Vec<T> zero{};
    if constexpr (is_complex<T>) {
        if (conjugated) return conj(zero);
    }
    return zero;
}
template <class T>
inline Vec<T> flipped(Vec<T> a, [[maybe_unused]] Vec<T> mask)
{
    if constexpr (std::is_same_v<T, Complex<double>>)
        a.v.v = _mm_xor_pd(a.v.v, mask.v.v);
    else if constexpr (is_complex<T>)
        a.v.v = _mm_xor_ps(a.v.v, mask.v.v);
    return a;
}

// The bits of a, or of its conjugate.
template <class T>
class Moved {
public:
    explicit Moved(bool conjugated) : mask_(sign_mask<T>(conjugated)) {}
    Vec<T> operator()(Vec<T> a) const { return flipped(a, mask_); }

private:
    Vec<T> mask_;
};

// alpha a or alpha conj(a).
template <class T>
class Scaled {
public:
    Scaled(T alpha, bool conjugated) : alpha_(alpha), mask_(sign_mask<T>(conjugated)) {}
    Vec<T> operator()(Vec<T> a) const { return alpha_ * flipped(a, mask_); }

private:
    Factor<T> alpha_;
    Vec<T> mask_;
};

template <class T>
inline bool is_one(T alpha)
{
    return alpha == T(1);
}

// One element by f.
template <class T, class F>
inline void put(T* to, const T* from, const F& f)
{
    store<1>(to, f(load<1>(from)));
}

} // namespace ork::trans
