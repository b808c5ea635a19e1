// SPDX-License-Identifier: MIT
// A triangle as columns that each hold their diagonal and, beside it, the elements that are stored: a band's or a
// packed triangle's.
#pragma once

#include "blas/level2/banded_column.h"

namespace ork::level2 {

template <class T> // may be const
struct BandedTriangle {
    Int n, reach; // elements of a column beside its diagonal, at most
    bool upper;
    T* first; // the first diagonal element
    // From one diagonal element to the next it is `step`, and `growth` more each time.
    Int step, growth;

    bool far() const { return is_far<T>(n * (growth == 0 ? reach : n / 2)); }
};

// The columns from the first one on, or from the last one back.
template <bool upper, bool forward, class T>
class Walk {
public:
    Int j;
    T* diagonal;

    explicit Walk(const BandedTriangle<T>& t)
        : j(forward ? 0 : t.n - 1), diagonal(t.first + j * t.step + t.growth * (j * (j - 1) / 2)),
          jump_(t.step + t.growth * j), growth_(t.growth), reach_(t.reach), last_(t.n - 1)
    {
    }
    Int left() const { return forward ? last_ - j : j; } // columns that follow
    bool ended() const { return left() < 0; }
    void advance()
    {
        if constexpr (forward) {
            diagonal += jump_, ++j;
            jump_ += growth_;
        } else {
            jump_ -= growth_;
            diagonal -= jump_, --j;
        }
    }
    Walk next() const
    {
        Walk w = *this;
        w.advance();
        return w;
    }

    // The elements above or below the diagonal.
    StoredColumn<T> beside() const
    {
        const Int there = upper ? j : last_ - j, count = there < reach_ ? there : reach_;
        if constexpr (upper) return {j - count, count, diagonal - count};
        return {j + 1, count, diagonal + 1};
    }

private:
    Int jump_, growth_, reach_, last_;
};

template <class T>
inline BandedTriangle<T> band(const char* uplo, Int n, Int k, T* a, Int lda)
{
    const bool upper = is_upper(uplo);
    return {n, k, upper, upper ? a + k : a, lda, 0};
}

template <class T>
inline BandedTriangle<T> packed(const char* uplo, Int n, T* ap)
{
    const bool upper = is_upper(uplo);
    return {n, n, upper, ap, upper ? 2 : n, upper ? 1 : -1};
}

} // namespace ork::level2
