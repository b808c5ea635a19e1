// SPDX-License-Identifier: MIT
// Matrices that move to another leading dimension in their own memory.
#pragma once

#include <cstring>

#include "trans/element.h"

namespace ork::trans {

// count elements at `from` go to `to`, which may overlap, by f: forwards where `to` comes first.
template <class T, class F>
[[gnu::noinline]] void shift_run(Int count, T* to, const T* from, const F& function)
{
    constexpr int lanes = Vec<T>::lanes;
    const F f = function;
    if (to <= from) {
        Int i = 0;
        for (; i + lanes <= count; i += lanes) store<lanes>(to + i, f(load<lanes>(from + i)));
        for (; i < count; ++i) put(to + i, from + i, f);
    } else {
        Int i = count;
        for (; i >= lanes; i -= lanes) store<lanes>(to + i - lanes, f(load<lanes>(from + i - lanes)));
        for (; i > 0; --i) put(to + i - 1, from + i - 1, f);
    }
}

// A matrix of m rows with columns lda apart becomes f of it with columns ldb apart.
template <class T, class F>
void restride(Int m, Int n, T* a, Int lda, Int ldb, const F& f)
{
    if (ldb <= lda)
        for (Int j = 0; j < n; ++j) shift_run(m, a + j * ldb, a + j * lda, f);
    else
        for (Int j = n; j-- > 0;) shift_run(m, a + j * ldb, a + j * lda, f);
}

// m n elements that stand as an m x n matrix with leading dimension lda, in this order go to the places of an n x m
// matrix with leading dimension ldb. Neighbours that all move down are taken from the first to the last, those that all
// move up from the last to the first; runs of either kind do not meet, as the order stays.
template <class T>
class Regroup {
public:
    Regroup(Int m, Int n, T* a, Int lda, Int ldb) : m_(m), n_(n), lda_(lda), ldb_(ldb), a_(a) {}

    void run()
    {
        const Int count = m_ * n_;
        for (Int k = 0; k < count;) {
            if (target(k) <= source(k)) {
                const Int length = piece_from(k);
                move(k, length);
                k += length;
            } else {
                Int end = k;
                while (end < count && target(end) > source(end)) end += piece_from(end);
                for (Int left = end; left > k;) {
                    const Int length = piece_before(left);
                    left -= length;
                    move(left, length);
                }
                k = end;
            }
        }
    }

private:
    Int source(Int k) const { return k % m_ + k / m_ * lda_; }
    Int target(Int k) const { return k % n_ + k / n_ * ldb_; }
    // Elements that follow each other in both matrices: from k on, and up to k.
    Int piece_from(Int k) const
    {
        const Int a = m_ - k % m_, b = n_ - k % n_;
        return a < b ? a : b;
    }
    Int piece_before(Int k) const
    {
        const Int a = (k - 1) % m_ + 1, b = (k - 1) % n_ + 1;
        return a < b ? a : b;
    }
    void move(Int k, Int length)
    {
        std::memmove(static_cast<void*>(a_ + target(k)), a_ + source(k), static_cast<std::size_t>(length) * sizeof(T));
    }

    Int m_, n_, lda_, ldb_;
    T* a_;
};

} // namespace ork::trans
