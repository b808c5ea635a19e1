// SPDX-License-Identifier: MIT
// Straight-line transforms of one contiguous vector of 1 to 64 real numbers, in any layout of its spectrum.
#pragma once

#include <cstdint>

#include "dft/real/half_length.h"

namespace ork::dft {

inline constexpr int longest_small_real = 64;

// Everything is read before anything is written, so in and out may share memory.
template <class R>
using SmallForward = void (*)(R scale, const R* in, const Spectrum<R>& out);
template <class R>
using SmallBackward = void (*)(R scale, const Spectrum<R>& in, R* out);

// n = 2, 4, ... longest_small_real, and n = 1, 3, ... below it.
template <class R>
SmallForward<R> small_even_forward(std::int64_t n);
template <class R>
SmallBackward<R> small_even_backward(std::int64_t n);
template <class R>
SmallForward<R> small_odd_forward(std::int64_t n);
template <class R>
SmallBackward<R> small_odd_backward(std::int64_t n);

} // namespace ork::dft
