// SPDX-License-Identifier: MIT
// Column by column, nothing transposed.
#pragma once

#include <cstring>

#include "trans/streamed.h"

namespace ork::trans {

template <class T, class From, class To>
[[gnu::always_inline]] inline void plain_registers(const From& from, const To& to, Int i, Int j, bool past_caches)
{
    constexpr int lanes = Vec<T>::lanes;
    Vec<T> x[4];
#pragma GCC unroll 4
    for (int k = 0; k < 4; ++k)
        x[k] = to.template value<lanes>(i + k * lanes, j, from.template get<lanes>(i + k * lanes, j));
#pragma GCC unroll 4
    for (int k = 0; k < 4; ++k)
        past_caches ? stream(to.at(i + k * lanes, j), x[k]) : store<lanes>(to.at(i + k * lanes, j), x[k]);
}

// B (m x n) <- what `from` gives. B may be an array that it reads, element by element.
template <class T, class From, class To>
[[gnu::noinline]] void plain(Int m, Int n, const From& from, const To& to)
{
    constexpr int step = 4 * Vec<T>::lanes;
    const From source = from; // in registers, whatever is stored meanwhile
    const To sink = to;
    const bool past_caches = m >= 4 * line<T> && is_streamed<T>(m * n, sink);
    for (Int j = 0; j < n; ++j) {
        Int i = 0;
        if (past_caches) {
            for (; reinterpret_cast<std::uintptr_t>(sink.at(i, j)) % 64 != 0; ++i)
                put<1>(sink, i, j, source.template get<1>(i, j));
            for (; i + step <= m; i += step) plain_registers<T>(source, sink, i, j, true);
        } else {
            for (; i + step <= m; i += step) plain_registers<T>(source, sink, i, j, false);
        }
        for (; i < m; ++i) put<1>(sink, i, j, source.template get<1>(i, j));
    }
    if (past_caches) _mm_sfence();
}

// B <- A, bits.
template <class T>
void copy(Int m, Int n, const T* a, Int lda, T* b, Int ldb)
{
    if (lda == m && ldb == m) m *= n, n = 1;
    for (Int j = 0; j < n; ++j)
        std::memcpy(static_cast<void*>(b + j * ldb), a + j * lda, static_cast<std::size_t>(m) * sizeof(T));
}

} // namespace ork::trans
