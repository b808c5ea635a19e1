// SPDX-License-Identifier: MIT
// Transposition of what does not stay in the caches. Rows of A are taken 64 or 96 at a time, from the first column to
// the last: long pieces of columns are read, and the columns of B grow by whole cache lines, written past the caches
// wherever they begin. What has come of a column of B stands in a row of a buffer, of which less than a line is carried
// on from block to block of columns.
//
// While a block is read, the one before is written, two columns here and some rows there, and what is read next is
// fetched: memory reads and writes all the time. Leading dimensions that are powers of two do not matter: no line is
// needed twice, and few columns are fetched ahead.
#pragma once

#include "trans/tile.h"

namespace ork::trans {

inline void stream(double* p, Vec<double> a) { _mm_stream_pd(p, a.v); }
inline void stream(float* p, Vec<float> a) { _mm_stream_ps(p, a.v); }
template <class R>
inline void stream(Complex<R>* p, Vec<Complex<R>> a)
{
    stream(reals(p), a.v);
}

template <class T, class From, class To>
class Streamed {
    static constexpr int lanes = Vec<T>::lanes, side = line<T>;
    static constexpr int most_rows = sizeof(T) == 4 ? 96 : 64, width = 2 * side, pitch = side + width;
    static constexpr int group = lanes < 2 ? 2 : lanes;
    static constexpr int ahead = sizeof(T) == 4 ? 16 : sizeof(T) == 8 ? 12 : 10; // columns, some 100 lines
    static constexpr int rows_ahead = 16;

public:
    Streamed(Int m, Int n, const From& from, const To& to) : m_(m), n_(n), from_(from), to_(to) {}

    // m is a multiple of a line's elements, n at least two lines.
    void run()
    {
        const Int blocks = (m_ + most_rows - 1) / most_rows;
        const Int most = ((m_ + blocks - 1) / blocks + side - 1) / side * side;
        for (Int i = 0; i < m_; i += most) {
            const int rows = static_cast<int>(m_ - i < most ? m_ - i : most);
            for (Int j = 0; j < n_; j += width) {
                const Block next{i, j, rows, static_cast<int>(n_ - j < width ? n_ - j : width)};
                read(next);
                last_ = next, filling_ ^= 1;
            }
        }
        written_ = 0;
        write_until(last_.rows);
        _mm_sfence(); // other threads see these stores in order again
    }

private:
    struct Block {
        Int i, j;
        int rows, cols;
    };

    T* row(int which, int r) { return buffer_[which] + r * pitch; }

    void read(const Block& block)
    {
        written_ = 0;
        const int whole = block.cols - block.cols % group;
        for (int j = 0; j < whole; j += group) {
            read_columns(block, j);
            write_until((j + group) * last_.rows / block.cols);
        }
        for (int j = whole; j < block.cols; ++j)
            for (int r = 0; r < block.rows; ++r)
                store<1>(row(filling_, r) + side + j, from_.template get<1>(block.i + r, block.j + j));
        write_until(last_.rows);
    }

    void read_columns(const Block& block, int j)
    {
        const Int i = block.i, column = block.j + j;
        const bool wraps = column + ahead >= n_;
        const Int ahead_i = wraps ? i + block.rows : i, ahead_j = column + ahead - (wraps ? n_ : 0);
        const bool ends = ahead_i >= m_ || ahead_j + group > n_;
        const Sink<T> sink{row(filling_, 0) + side + j, pitch};
        const From from = from_;
        if (!ends) // the line that a piece may end in
            for (int k = 0; k < group; ++k) from.fetch(ahead_i + block.rows - 1, ahead_j + k);
        for (int r = 0; r < block.rows; r += side) {
            if (!ends)
#pragma GCC unroll 4
                for (int k = 0; k < group; ++k) from.fetch(ahead_i + r, ahead_j + k);
#pragma GCC unroll 4
            for (int k = 0; k < side; k += lanes)
#pragma GCC unroll 2
                for (int l = 0; l < group; l += lanes) square<T>(from, sink, i + r + k, column + l, l, r + k);
        }
    }

    // Rows of the block before, up to `end`.
    void write_until(int end)
    {
        const To to = to_; // in registers: vector stores may alias anything
        const Block last = last_;
        const bool ends = last.j + last.cols == n_;
        const T* from = row(filling_ ^ 1, written_) + side;
        T* next = row(filling_, written_);
        for (int r = written_; r < end; ++r, from += pitch, next += pitch) write(to, last, ends, r, from, next);
        written_ = end;
    }

    [[gnu::always_inline]] static void write(const To& to, const Block& last, bool ends, int r, const T* from, T* next)
    {
        const T* const carried = from + width - side; // the last line of the row
        const Int column = last.i + r;
        to.fetch(last.j, column + rows_ahead, width);
        const int offset = static_cast<int>(reinterpret_cast<std::uintptr_t>(to.at(0, column)) % 64 / sizeof(T));
        Int at = last.j; // of from in the column
        int count = last.cols;
        if (at == 0) {
            const int head = (side - offset) % side;
            for (int k = 0; k < head; ++k) put<1>(to, k, column, load<1>(from + k));
            from += head, at = head, count -= head;
        } else {
            from -= offset, at -= offset, count += offset;
        }
        for (; count >= side; count -= side, at += side, from += side)
#pragma GCC unroll 8
            for (int k = 0; k < side; k += lanes)
                stream(to.at(at + k, column), to.template value<lanes>(at + k, column, load<lanes>(from + k)));
        if (ends) {
            for (int k = 0; k < count; ++k) put<1>(to, at + k, column, load<1>(from + k));
        } else if (count > 0) { // stands before the next block's
#pragma GCC unroll 8
            for (int k = 0; k < side; k += lanes) store<lanes>(next + k, load<lanes>(carried + k));
        }
    }

    Int m_, n_;
    From from_;
    To to_;
    Block last_{0, 0, 0, 0};
    int filling_ = 0, written_ = 0;
    alignas(64) T buffer_[2][most_rows * pitch]; // 12 to 18 KiB each
};

// Whether it pays, and lines of B begin with whole elements.
template <class T, class To>
inline bool is_streamed(Int elements, const To& to)
{
    return elements >= streamed_bytes / static_cast<Int>(sizeof(T)) &&
           reinterpret_cast<std::uintptr_t>(to.b) % sizeof(T) == 0;
}

template <class T, class From, class To>
[[gnu::noinline]] void transpose_streamed(Int m, Int n, const From& from, const To& to)
{
    const Int whole = m - m % line<T>;
    Streamed<T, From, To>(whole, n, from, to).run();
    if (whole < m) transpose_tiles<T>(m - whole, n, from.from(whole, 0), to.from(0, whole));
}

// B (n x m) <- f(A)^T, A m x n.
template <class T, class From, class To>
void transpose_any(Int m, Int n, Int width, const From& from, const To& to)
{
    if (m >= 32 && n >= 4 * line<T> && is_streamed<T>(m * n, to))
        transpose_streamed<T>(m, n, from, to);
    else
        transpose_strips<T>(m, n, width, from, to);
}

} // namespace ork::trans
