// SPDX-License-Identifier: MIT
// How a matrix is read. None of it changes a bit of any result.
#pragma once

#include "blas/level2/options.h"
#include "blas/level2/strided.h"

namespace ork::level2 {

struct Loads {
    bool aligned = false; // every column begins at a multiple of 16 bytes
    Int ahead = 0;        // bytes from a line to the one that is asked for meanwhile; 0: none is
};

// Asking ahead down a column gains up to a third where the matrix comes from memory, but costs a tenth where it is in a
// cache. A few columns may be the panel of a triangular solve, so for them the matrix counts as square. Columns that
// are short and far apart gain from the third level of cache on: the lines wanted next are in later columns.
constexpr Int far_bytes = 10 << 20, apart_bytes = 1 << 20, few_columns = 32, short_column = 2 * ahead,
              columns_ahead = 16;

// Whether a b >= limit. Sparse mappings make such matrices that a b is no Int.
inline bool product_reaches(Int a, Int b, Int limit)
{
    Int product;
    return __builtin_mul_overflow(a, b, &product) || product >= limit;
}

template <class T>
inline Loads loads_of(Int m, Int n, const T* a, Int lda)
{
    const Int column = lda * Int(sizeof(T));
    Loads loads = {aligned16(a) && column % 16 == 0, 0};
    if (m * Int(sizeof(T)) < short_column) {
        // Columns at multiples of a page would drive each other out of the first level of cache.
        const Int enough = column % 4096 == 0 ? far_bytes : apart_bytes;
        if (product_reaches(n, column, enough)) loads.ahead = columns_ahead * column;
    } else if (product_reaches(n <= few_columns && n < lda ? lda : n, column, far_bytes)) {
        loads.ahead = ahead;
    }
    return loads;
}

// Calls body.operator()<aligned, far>().
template <class Body>
inline void with_loads(Loads loads, Body&& body)
{
    with_flag(loads.aligned, [&]<bool aligned>() {
        with_flag(loads.ahead != 0, [&]<bool far>() { body.template operator()<aligned, far>(); });
    });
}

// The factor of a product that has none.
struct One {};
template <class T>
inline T operator*(One, T x)
{
    return x;
}

// The factor -1, without the products with 0 of a complex one, which would make NaN of infinity.
struct MinusOne {};
template <class T>
inline T operator*(MinusOne, T x)
{
    if constexpr (is_complex<T>)
        return {-x.re, -x.im};
    else
        return -x;
}
template <class T>
inline Vec<T> operator*(MinusOne, Vec<T> x)
{
    return Factor<T, Real<T>>(-1) * x;
}

// Stores v(0 .. count) in whole registers, as far as they fill some, so that registers loaded soon after needn't wait
// for the stores to leave the processor.
template <int count, class T>
[[gnu::always_inline]] inline void put_together(T* p, const T (&v)[count])
{
    constexpr int lanes = Vec<T>::lanes, whole = count / lanes * lanes;
#pragma GCC unroll 4
    for (int i = 0; i < whole; i += lanes) {
        if constexpr (is_complex<T> && lanes == 2)
            store<lanes>(p + i, {{_mm_set_ps(v[i + 1].im, v[i + 1].re, v[i].im, v[i].re)}});
        else if constexpr (is_complex<T>)
            put(p + i, v[i]);
        else if constexpr (lanes == 4)
            store(p + i, {_mm_set_ps(v[i + 3], v[i + 2], v[i + 1], v[i])});
        else
            store(p + i, {_mm_set_pd(v[i + 1], v[i])});
    }
#pragma GCC unroll 4
    for (int i = whole; i < count; ++i) put(p + i, v[i]);
}

template <bool aligned, int width, class T>
[[gnu::always_inline]] inline Vec<T> load_column(const T* p)
{
    if constexpr (aligned && width == Vec<T>::lanes) {
        if constexpr (is_complex<T>)
            return {load_aligned(reals(p))};
        else
            return load_aligned(p);
    } else {
        return load<width>(p);
    }
}

// Where `count` <= 8 adjacent columns are read, the same row of all. Two pointers and the leading dimension in bytes
// address eight; left to itself the compiler keeps a pointer for each and runs out of registers.
template <bool aligned, int count, class T>
class Reader {
public:
    Reader(const T* a, Int lda)
        : near_(reinterpret_cast<const char*>(a)), bytes_(lda * Int(sizeof(T))), far_(near_ + 4 * bytes_),
          three_(3 * bytes_)
    {
    }
    // Column j, i rows below the present one.
    [[gnu::always_inline]] const T* at(int j, int i = 0) const
    {
        return reinterpret_cast<const T*>(byte(j) + i * Int(sizeof(T)));
    }
    template <int width>
    [[gnu::always_inline]] Vec<T> load(int j, int i = 0) const
    {
        return load_column<aligned, width>(at(j, i));
    }
    [[gnu::always_inline]] void advance(Int rows)
    {
        near_ += rows * Int(sizeof(T));
        asm("" : "+r"(near_));
        if constexpr (count > 4) {
            far_ += rows * Int(sizeof(T));
            asm("" : "+r"(far_));
        }
    }
    // The lines so many bytes behind the present row of every column. Never faults.
    [[gnu::always_inline]] void prefetch(Int distance) const
    {
#pragma GCC unroll 8
        for (int j = 0; j < count; ++j)
            _mm_prefetch(reinterpret_cast<const char*>(reinterpret_cast<std::uintptr_t>(byte(j)) +
                                                       static_cast<std::uintptr_t>(distance)),
                         _MM_HINT_T0);
    }

private:
    const char* byte(int j) const
    {
        const char* p = j < 4 ? near_ : far_;
        return j % 4 == 0 ? p : j % 4 == 1 ? p + bytes_ : j % 4 == 2 ? p + 2 * bytes_ : p + three_;
    }
    const char* near_;
    Int bytes_;
    const char* far_;
    Int three_;
};

} // namespace ork::level2
