// SPDX-License-Identifier: MIT
// y = beta y before a kernel adds into y.
#pragma once

#include <cstdint>
#include <cstring>

#include "simd/complex.h"

namespace ork {

// beta = 0 clears without reading. Nothing happens for n <= 0.
template <class T>
[[gnu::noinline]] void scale(std::int64_t n, T beta, T* y)
{
    if (n <= 0) return;
    if (beta == T{}) {
        std::memset(static_cast<void*>(y), 0, static_cast<std::size_t>(n) * sizeof(T));
        return;
    }
    constexpr int lanes = Vec<T>::lanes;
    const Factor<T> factor(beta);
    std::int64_t i = 0;
    for (; i + 4 * lanes <= n; i += 4 * lanes)
#pragma GCC unroll 4
        for (int j = 0; j < 4; ++j) store<lanes>(y + i + j * lanes, factor * load<lanes>(y + i + j * lanes));
    for (; i < n; ++i) store<1>(y + i, factor * load<1>(y + i));
}

} // namespace ork
