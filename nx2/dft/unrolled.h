// SPDX-License-Identifier: MIT
// Loops over constants, for code whose indices are to become addresses.
#pragma once

#include <type_traits>
#include <utility>

namespace ork::dft {

// A lambda whose body belongs in its caller, whatever its size.
#define ORK_INLINE_LAMBDA __attribute__((always_inline))

template <int i>
using Index = std::integral_constant<int, i>;

template <int n, class Body>
[[gnu::always_inline]] inline void unrolled(Body body)
{
    [&]<int... i>(std::integer_sequence<int, i...>) ORK_INLINE_LAMBDA { (body(Index<i>{}), ...); }
    (std::make_integer_sequence<int, n>{});
}

} // namespace ork::dft
