// SPDX-License-Identifier: MIT
// The rounding units of the blocked multiply, a kernel table's first eight values, per element type. A panel of A is 16
// bytes and a panel of B four registers of products wide, whatever the type.
#pragma once

#include <cstdint>

#include "simd/complex.h"

namespace ork::gemm {

using Int = std::int64_t;

template <class T>
struct Units {
    static constexpr Int m = 16 / sizeof(T);        // rows of an A panel: s 4, d 2, c 2, z 1
    static constexpr Int n = is_complex<T> ? 4 : 8; // columns of a B panel
    static constexpr Int k = 4;                     // the depth is padded to a multiple
    static constexpr Int c_factor = 1;
    static constexpr Int parameters[3] = {4, 4, 4};
    static constexpr std::uint64_t flags = 126;

    static constexpr int kernels = is_complex<T> ? 1 : 2; // rows of the kernel table

    // Elements of T that a step of depth takes in a packed panel. B in single precision holds every real number twice,
    // so that one register of it meets two rows of A.
    static constexpr Int a_step = m, b_step = 64 / sizeof(T);
};

constexpr Int least(Int x, Int y) { return x < y ? x : y; }
constexpr Int round_up(Int value, Int unit) { return (value + unit - 1) / unit * unit; }

// Depth of a block of a product whose whole depth is k. Every way through the multiply sums blocks of this depth one
// after another, so an element of C has the same bits on all of them.
constexpr Int block_depth(Int k, Int unit)
{
    if (k > 255) return k > 256 && k < 512 ? round_up((k + 1) / 2, unit) : 256; // two halves, not 256 and a rest
    const Int padded = k > 0 ? round_up(k, unit) : 0;
    return padded > 128 ? padded : 128;
}

} // namespace ork::gemm
