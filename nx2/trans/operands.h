// SPDX-License-Identifier: MIT
// What the kernels read and write, by columns with unit stride: a source gives registers of the matrix that is to be
// copied, transposed or not; a sink takes registers of the result.
#pragma once

#include "simd/fetch.h"
#include "trans/element.h"

namespace ork::trans {

// f of the elements of A.
template <class T, class F>
struct Source {
    const T* a;
    Int lda;
    F f;

    template <int width>
    Vec<T> get(Int i, Int j) const
    {
        return f(load<width>(a + i + j * lda));
    }
    void fetch(Int i, Int j) const { fetch_at(a + i + j * lda, 0); }
    Source from(Int i, Int j) const { return {a + i + j * lda, lda, f}; }
};

// f of the elements of A plus g of those of B.
template <class T, class F>
struct SourceOfSums {
    Source<T, F> first, second;

    template <int width>
    Vec<T> get(Int i, Int j) const
    {
        return sum(first.template get<width>(i, j), second.template get<width>(i, j));
    }
    void fetch(Int i, Int j) const { first.fetch(i, j), second.fetch(i, j); }
    SourceOfSums from(Int i, Int j) const { return {first.from(i, j), second.from(i, j)}; }
};

template <class T>
struct Sink {
    T* b;
    Int ldb;

    T* at(Int i, Int j) const { return b + i + j * ldb; }
    template <int width>
    Vec<T> value(Int, Int, Vec<T> v) const
    {
        return v;
    }
    void fetch(Int, Int, Int) const {} // what value() will read of so many elements of a column
    Sink from(Int i, Int j) const { return {at(i, j), ldb}; }
};

// Adds what it takes to f of the elements of A, which may be the array that it writes.
template <class T, class F>
struct SinkOfSums {
    T* b;
    Int ldb;
    Source<T, F> other;

    T* at(Int i, Int j) const { return b + i + j * ldb; }
    template <int width>
    Vec<T> value(Int i, Int j, Vec<T> v) const
    {
        return sum(other.template get<width>(i, j), v);
    }
    [[gnu::always_inline]] void fetch(Int i, Int j, Int count) const
    {
        for (Int k = 0; k <= count; k += line<T>) other.fetch(i + k, j);
    }
    SinkOfSums from(Int i, Int j) const { return {at(i, j), ldb, other.from(i, j)}; }
};

template <int width, class T, class To>
inline void put(const To& to, Int i, Int j, Vec<T> v)
{
    store<width>(to.at(i, j), to.template value<width>(i, j, v));
}

// Matrices of so many bytes are written past the caches: they would not stay there until they are read, and a line that
// is written whole need not be read first. On Zen 5 a transposition gains 1.6 times between 8 MiB and the last-level
// cache, three times behind it.
constexpr Int streamed_bytes = 2 << 20;

} // namespace ork::trans
