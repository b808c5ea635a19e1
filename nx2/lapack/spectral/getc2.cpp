// SPDX-License-Identifier: MIT
// LU with complete pivoting: A = P L U Q.
#include "blas/divide.h"
#include <type_traits>

#include "lapack/columns.h"
#include "lapack/members.h"
#include "lapack/safe_minimum.h"

namespace ork::lapack {
namespace {

// The largest element so far, of several the one in the last row, there in the last column; columns come in ascending
// order. NaN is passed over. Elements are compared by their moduli, complex ones by squares in double precision; those
// of double numbers are taken after scaling that brings the largest part of the matrix to 1, so that only what is far
// below the smallest pivot underflows.
template <class E>
class Search {
public:
    explicit Search(double scale) : scale_(scale) {}

    Int row = 0, column = 0;

    void begin(Int k) { most_ = -1, row = column = k; }
    // Rows first ... end - 1 of column j, which begins at x.
    void add(Int j, Int first, Int end, const E* x)
    {
        Size most = 0;
        if constexpr (is_complex<E>)
            for (Int i = first; i < end; ++i) most = larger(size_of(x[i]), most);
        else
            most = largest_part(end - first, x + first);
        offer(most, j, first, end, x);
    }
    // The same of x + a y.
    void add_multiple_and_add(E a, const E* y, Int j, Int first, Int end, E* x)
    {
        if constexpr (is_complex<E>) {
            add_multiple(end - first, a, y + first, x + first);
            add(j, first, end, x);
        } else {
            const Factor<E> factor(a);
            Vec<E> most{};
            each<E>(end - first, [&]<int w>(Int i) {
                const Vec<E> sum = load<w>(x + first + i) + factor * load<w>(y + first + i);
                store<w>(x + first + i, sum);
                most = larger(abs(sum), most);
            });
            offer(largest_lane(most), j, first, end, x);
        }
    }

private:
    using Size = std::conditional_t<is_complex<E>, double, E>;

    Size size_of(E x) const
    {
        if constexpr (is_complex<E>) {
            const double re = scale_ * x.re, im = scale_ * x.im;
            return re * re + im * im;
        } else {
            return absolute(x);
        }
    }
    void offer(Size most, Int j, Int first, Int end, const E* x)
    {
        if (!(most >= most_)) return;
        Int i = end - 1;
        while (i >= first && !(size_of(x[i]) == most)) --i;
        if (i >= first && (most > most_ || i >= row)) most_ = most, row = i, column = j;
    }

    double scale_;
    Size most_ = -1;
};

Int factor(Int n, T* a, Int lda, Int* ipiv, Int* jpiv)
{
    const R least = safe_minimum<R>() / spacing<R>;
    const auto at = [=](Int i, Int j) -> T& { return a[j * lda + i]; };
    double scale = 1;
    if constexpr (sizeof(T) == 16) {
        R largest = 0;
        for (Int j = 0; j < n; ++j) largest = larger(largest, largest_part(2 * n, reals(a + j * lda)));
        scale = inverse_power(largest);
    }
    Search<T> search(scale);
    for (Int j = 0; j < n; ++j) search.add(j, 0, n, a + j * lda);
    Int info = 0;
    R smallest = least;
    for (Int k = 0; k < n; ++k) {
        const Int row = search.row, column = search.column;
        ipiv[k] = row + 1, jpiv[k] = column + 1;
        if (row != k) exchange(n, &at(k, 0), lda, &at(row, 0), lda);
        if (column != k) exchange(n, &at(0, k), &at(0, column));
        const R size = modulus(at(k, k));
        if (k == 0) smallest = n == 1 ? least : larger(spacing<R> * size, least);
        if (size < smallest) info = k + 1, at(k, k) = T(smallest);
        const T pivot = at(k, k);
        T* multipliers = &at(0, k);
        for (Int i = k + 1; i < n; ++i) multipliers[i] = divided(multipliers[i], pivot);
        search.begin(k + 1);
        for (Int j = k + 1; j < n; ++j)
            search.add_multiple_and_add(T{} - at(k, j), multipliers, j, k + 1, n, &at(0, j));
    }
    return info;
}

} // namespace

ORK_LAPACK_EXPORT(getc2)(const Int* n, T* a, const Int* lda, Int* ipiv, Int* jpiv, Int* info)
{
    *info = factor(*n, a, *lda, ipiv, jpiv);
}

} // namespace ork::lapack
