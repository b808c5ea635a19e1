// SPDX-License-Identifier: MIT
// Transposition in place of matrices without gaps: small ones through a buffer, large ones that have a divisor of some
// lines' elements among their sizes in two passes over memory by chunks, where cycles of single elements would move a
// line for each.
//
// With m = w m1 and i = i0 + w i1 the elements (i0, i1, j), first index fastest, become (i0, j, i1) along the cycles of
// an m1 x n matrix of chunks of w elements; then each of the w x n slabs (i0, j) is transposed by itself, near the
// processor. There n = v n1 is divided alike: (i0, j0, j1) becomes (j0, i0, j1), block by block through a buffer, and
// (j0, j1, i0) along cycles of chunks of v. The same backwards where n has the divisor. (Gustavson, Karlsson, Kagstrom,
// ACM TOMS 38 (2012); without their divisors a slab goes along its cycles element by element.)
#pragma once

#include "trans/cycles.h"
#include "trans/tile.h"

namespace ork::trans {

template <class T>
class ByChunks {
public:
    // Bytes: of a slab, which stays in the second-level cache, and of a block.
    static constexpr Int most_slab = 512 << 10, most_block = 24 << 10;

    ByChunks(Int m, Int n, T* a) : m_(m), n_(n), a_(a)
    {
        if (is_block(m, n)) return;
        rows_ = divisor(m, slab_width(n));
        if (rows_ == 0) cols_ = divisor(n, slab_width(m));
    }
    bool possible() const { return is_block(m_, n_) || rows_ != 0 || cols_ != 0; }

    void run() const
    {
        if (is_block(m_, n_)) {
            block(m_, n_, a_);
        } else if (rows_ != 0) {
            cycles(m_ / rows_, n_, rows_, a_);
            for (Int i = 0; i < m_; i += rows_) wide_slab(rows_, n_, a_ + i * n_);
        } else {
            for (Int j = 0; j < n_; j += cols_) tall_slab(m_, cols_, a_ + j * m_);
            cycles(m_, n_ / cols_, cols_, a_);
        }
    }

private:
    static Int elements(Int bytes) { return bytes / static_cast<Int>(sizeof(T)); }
    static bool is_block(Int m, Int n) { return m * n <= elements(most_block); }
    static Int slab_width(Int length)
    {
        const Int fitting = elements(most_slab) / length;
        return fitting < 2 * line<T> ? 2 * line<T> : fitting;
    }
    // The largest divisor of n from a line's elements to `most` that leaves more than one chunk, or 0.
    static Int divisor(Int n, Int most)
    {
        Int width = most < WalkChunks<T>::most ? most : WalkChunks<T>::most;
        while (width >= line<T> && (n % width != 0 || n == width)) --width;
        return width >= line<T> ? width : 0;
    }

    // An m x n matrix of chunks of `width` elements.
    static void cycles(Int m, Int n, Int width, T* a)
    {
        const Place place(m, n, m);
        each_cycle(place, WalkChunks<T>(a, place, static_cast<int>(width)));
    }

    // m n elements through a buffer.
    static void block(Int m, Int n, T* a)
    {
        alignas(64) T result[most_block / sizeof(T)];
        transpose_tiles<T>(m, n, Source<T, Moved<T>>{a, m, Moved<T>(false)}, Sink<T>{result, n});
        std::memcpy(static_cast<void*>(a), result, static_cast<std::size_t>(m * n) * sizeof(T));
    }

    static void wide_slab(Int w, Int n, T* a)
    {
        if (is_block(w, n)) return block(w, n, a);
        const Int v = divisor(n, elements(most_block) / w);
        if (v == 0) return transpose_by_cycles(w, n, a, w, Moved<T>(false));
        for (Int j = 0; j < n; j += v) block(w, v, a + j * w);
        cycles(w, n / v, v, a);
    }
    static void tall_slab(Int m, Int w, T* a)
    {
        if (is_block(m, w)) return block(m, w, a);
        const Int v = divisor(m, elements(most_block) / w);
        if (v == 0) return transpose_by_cycles(m, w, a, m, Moved<T>(false));
        cycles(m / v, w, v, a);
        for (Int i = 0; i < m; i += v) block(v, w, a + i * w);
    }

    Int m_, n_, rows_ = 0, cols_ = 0;
    T* a_;
};

} // namespace ork::trans
