// SPDX-License-Identifier: MIT
// Transposition of a square in place: blocks beside the diagonal change places with their mirror images.
#pragma once

#include <cstring>

#include "trans/tile.h"

namespace ork::trans {

// The square of lanes x lanes elements at `upper` and the one at `lower`, each transposed to the other's place.
template <class T, class F>
[[gnu::always_inline]] inline void exchange_squares(T* upper, T* lower, Int lda, const F& f)
{
    constexpr int lanes = Vec<T>::lanes;
    Vec<T> x[lanes], y[lanes];
#pragma GCC unroll 4
    for (int k = 0; k < lanes; ++k) x[k] = f(load<lanes>(upper + k * lda)), y[k] = f(load<lanes>(lower + k * lda));
    transpose(x), transpose(y);
#pragma GCC unroll 4
    for (int k = 0; k < lanes; ++k) store<lanes>(lower + k * lda, x[k]), store<lanes>(upper + k * lda, y[k]);
}

template <class T, class F>
inline void exchange_elements(T* p, T* q, const F& f)
{
    const Vec<T> x = f(load<1>(p)), y = f(load<1>(q));
    store<1>(q, x), store<1>(p, y);
}

// m x n elements at `upper` and n x m at `lower`, apart.
template <class T, class F>
[[gnu::noinline]] void exchange_blocks(Int m, Int n, T* upper, T* lower, Int lda, const F& function)
{
    constexpr int lanes = Vec<T>::lanes, side = line<T>;
    const F f = function;
    const Int tiled_m = m - m % side, tiled_n = n - n % side, whole_m = m - m % lanes, whole_n = n - n % lanes;
    for (Int i = 0; i < tiled_m; i += side)
        for (Int j = 0; j < tiled_n; j += side)
#pragma GCC unroll 4
            for (int k = 0; k < side; k += lanes)
                for (int l = 0; l < side; l += lanes)
                    exchange_squares(upper + i + k + (j + l) * lda, lower + j + l + (i + k) * lda, lda, f);
    for (Int i = 0; i < whole_m; i += lanes)
        for (Int j = i < tiled_m ? tiled_n : 0; j < whole_n; j += lanes)
            exchange_squares(upper + i + j * lda, lower + j + i * lda, lda, f);
    for (Int i = 0; i < m; ++i)
        for (Int j = i < whole_m ? whole_n : 0; j < n; ++j)
            exchange_elements(upper + i + j * lda, lower + j + i * lda, f);
}

// The n x n block on the diagonal.
template <class T, class F>
[[gnu::noinline]] void turn_block(Int n, T* a, Int lda, const F& function)
{
    constexpr int lanes = Vec<T>::lanes, side = line<T>;
    const F f = function;
    for (Int i = 0; i < n; i += side) {
        const Int rows = n - i < side ? n - i : side;
        if (i + side < n) exchange_blocks(side, n - i - side, a + i + (i + side) * lda, a + i + side + i * lda, lda, f);
        T* const diagonal = a + i + i * lda;
        const Int whole = rows - rows % lanes;
        for (Int k = 0; k < whole; k += lanes) {
            Vec<T> x[lanes];
#pragma GCC unroll 4
            for (int l = 0; l < lanes; ++l) x[l] = f(load<lanes>(diagonal + k + (k + l) * lda));
            transpose(x);
#pragma GCC unroll 4
            for (int l = 0; l < lanes; ++l) store<lanes>(diagonal + k + (k + l) * lda, x[l]);
            for (Int l = k + lanes; l < whole; l += lanes)
                exchange_squares(diagonal + k + l * lda, diagonal + l + k * lda, lda, f);
        }
        for (Int l = whole; l < rows; ++l) {
            for (Int k = 0; k < l; ++k) exchange_elements(diagonal + k + l * lda, diagonal + l + k * lda, f);
            put(diagonal + l + l * lda, diagonal + l + l * lda, f);
        }
    }
}

// The same where the columns of a tile compete for the same few lines of the caches. A block and its mirror image are
// read whole, by pieces of columns fetched ahead, into two buffers, and written back from there piece by piece: no line
// is needed twice.
template <class T, class F>
class Exchanged {
    static constexpr int lanes = Vec<T>::lanes, side = line<T>;
    static constexpr int ahead = sizeof(T) == 16 ? 12 : 24; // columns fetched ahead

public:
    static constexpr int edge = 256 / static_cast<int>(sizeof(T)); // 48 or 64 doubles are slower

    Exchanged(Int lda, const F& f) : lda_(lda), f_(f) {}

    // m x n elements at `upper`, both at most edge; `next` is the block that will come after, or null.
    void exchange(int m, int n, T* upper, T* lower, const T* next)
    {
        read(m, n, upper, by_rows_[0], lower, m);
        read(n, m, lower, by_rows_[1], nullptr, 0);
        for (int i = 0; i < m; ++i) {
            if (next != nullptr && i < ahead) fetch(next + i * lda_, m);
            write(n, lower + i * lda_, by_rows_[0] + i * edge);
        }
        for (int j = 0; j < n; ++j) write(m, upper + j * lda_, by_rows_[1] + j * edge);
    }

private:
    [[gnu::always_inline]] static void fetch(const T* p, int count)
    {
        for (int k = 0; k < count; k += side) fetch_at(p + k, 0);
    }

    // The rows of the m x n matrix at a, one after the other; then_count columns at `then` are fetched in the end.
    void read(int m, int n, const T* a, T* rows, const T* then, int then_count)
    {
        const F f = f_;
        const Int lda = lda_;
        const int whole_m = m - m % lanes, whole_n = n - n % lanes;
        for (int j = 0; j < whole_n; j += lanes) {
            for (int k = j + ahead; k < j + ahead + lanes; ++k) {
                if (k < n)
                    fetch(a + k * lda, m);
                else if (k - n < then_count)
                    fetch(then + (k - n) * lda, n);
            }
            for (int i = 0; i < whole_m; i += lanes) {
                Vec<T> x[lanes];
#pragma GCC unroll 4
                for (int k = 0; k < lanes; ++k) x[k] = f(load<lanes>(a + i + (j + k) * lda));
                transpose(x);
#pragma GCC unroll 4
                for (int k = 0; k < lanes; ++k) store<lanes>(rows + (i + k) * edge + j, x[k]);
            }
        }
        for (int i = 0; i < m; ++i)
            for (int j = i < whole_m ? whole_n : 0; j < n; ++j) put(rows + i * edge + j, a + i + j * lda, f);
    }

    static void write(int count, T* to, const T* from)
    {
        std::memcpy(static_cast<void*>(to), from, static_cast<std::size_t>(count) * sizeof(T));
    }

    Int lda_;
    F f_;
    alignas(64) T by_rows_[2][edge * edge]; // 4 to 16 KiB each
};

// Whether columns lda apart do, in an n x n matrix that is beyond the first caches. From memory wide elements come
// faster by pieces of columns in any case.
template <class T>
inline bool is_exchange_buffered(Int n, Int lda)
{
    constexpr Int size = sizeof(T), mebibyte = 1 << 20;
    const Int bytes = n * n * size, column = lda * size;
    return (bytes >= mebibyte && column % 4096 == 0) || (bytes >= 8 * mebibyte && column % 2048 == 0) ||
           (size == 8 && bytes >= 16 * mebibyte) || (size == 16 && bytes >= 6 * mebibyte);
}

template <class T, class F>
[[gnu::noinline]] void exchange_buffered(Int m, Int n, T* upper, T* lower, Int lda, const F& f)
{
    Exchanged<T, F> blocks(lda, f);
    constexpr Int edge = Exchanged<T, F>::edge;
    for (Int j = 0; j < n; j += edge)
        for (Int i = 0; i < m; i += edge) {
            const int rows = static_cast<int>(m - i < edge ? m - i : edge);
            const int cols = static_cast<int>(n - j < edge ? n - j : edge);
            const T* const next = i + edge < m ? upper + i + edge + j * lda : upper + (j + edge) * lda;
            blocks.exchange(rows, cols, upper + i + j * lda, lower + j + i * lda,
                            j + edge < n || i + edge < m ? next : nullptr);
        }
}

// The whole n x n matrix.
template <class T, class F>
void turn(Int n, T* a, Int lda, const F& f)
{
    if (!is_exchange_buffered<T>(n, lda)) return turn_block(n, a, lda, f);
    constexpr Int edge = Exchanged<T, F>::edge;
    for (Int j = 0; j < n; j += edge) {
        const Int cols = n - j < edge ? n - j : edge;
        if (j > 0) exchange_buffered(j, cols, a + j * lda, a + j, lda, f);
        turn_block(cols, a + j + j * lda, lda, f);
    }
}

} // namespace ork::trans
