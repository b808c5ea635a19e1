// SPDX-License-Identifier: MIT
// LU with complete pivoting: A = P L U Q.
#include "blas/divide.h"
#include <type_traits>

#include "lapack/columns.h"
#include "lapack/members.h"
#include "lapack/safe_minimum.h"

namespace ork::lapack {
namespace {

// What elements are compared by: their moduli, of complex ones the squares in double precision. Those of double numbers
// are taken after scaling that brings the largest part of the matrix to 1, so that only what is far below the smallest
// pivot underflows.
template <class E>
class Search {
public:
    explicit Search(double scale) : scale_(scale) {}

    // Takes n elements of a column into account. NaN is passed over.
    void add(Int n, const E* x)
    {
        if constexpr (!is_complex<E>)
            each<E>(n, [&]<int w>(Int i) { most_ = larger(abs(load<w>(x + i)), most_); });
        else
            for (Int i = 0; i < n; ++i) most_ = larger(size_of(x[i]), most_);
    }

    // Where the largest element of the block behind k is, of several the one in the last row, there in the last column;
    // (k, k) where all are NaN. Begins a new search.
    struct Place {
        Int row, column;
    };
    Place find(Int k, Int n, const E* a, Int lda)
    {
        const auto most = largest();
        Place best{k - 1, k};
        for (Int j = n - 1; j >= k; --j) {
            const E* x = a + j * lda;
            if (!contains(n - best.row - 1, x + best.row + 1, most)) continue;
            Int i = n - 1;
            while (i > best.row && !(size_of(x[i]) == most)) --i;
            if (i > best.row) best = {i, j};
        }
        most_ = decltype(most_){};
        return best.row < k ? Place{k, k} : best;
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
    Size largest() const
    {
        if constexpr (is_complex<E>)
            return most_;
        else {
            Size result = 0;
            for (int j = 0; j < Vec<E>::lanes; ++j) result = larger(lane(most_, j), result);
            return result;
        }
    }
    // Whether some element may be as large as that; cheap.
    static bool contains([[maybe_unused]] Int n, [[maybe_unused]] const E* x, [[maybe_unused]] Size most)
    {
        if constexpr (is_complex<E>) return true;
        if constexpr (!is_complex<E>) {
            Vec<E> found{};
            each<E>(n, [&]<int w>(Int i) { found = equal_or(abs(load<w>(x + i)), broadcast(most), found); });
            return any(found);
        }
    }
    static Vec<double> equal_or(Vec<double> a, Vec<double> b, Vec<double> found)
    {
        return {_mm_or_pd(_mm_cmpeq_pd(a.v, b.v), found.v)};
    }
    static Vec<float> equal_or(Vec<float> a, Vec<float> b, Vec<float> found)
    {
        return {_mm_or_ps(_mm_cmpeq_ps(a.v, b.v), found.v)};
    }
    static bool any(Vec<double> mask) { return _mm_movemask_pd(mask.v) != 0; }
    static bool any(Vec<float> mask) { return _mm_movemask_ps(mask.v) != 0; }

    double scale_;
    std::conditional_t<is_complex<E>, double, Vec<E>> most_{};
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
    for (Int j = 0; j < n; ++j) search.add(n, a + j * lda);
    Int info = 0;
    R smallest = least;
    for (Int k = 0; k < n; ++k) {
        const auto [row, column] = search.find(k, n, a, lda);
        ipiv[k] = row + 1, jpiv[k] = column + 1;
        if (row != k) exchange(n, &at(k, 0), lda, &at(row, 0), lda);
        if (column != k) exchange(n, &at(0, k), &at(0, column));
        const R size = modulus(at(k, k));
        if (k == 0) smallest = n == 1 ? least : larger(spacing<R> * size, least);
        if (size < smallest) info = k + 1, at(k, k) = T(smallest);
        const T pivot = at(k, k);
        T* multipliers = &at(0, k);
        for (Int i = k + 1; i < n; ++i) multipliers[i] = divided(multipliers[i], pivot);
        for (Int j = k + 1; j < n; ++j) {
            T* x = &at(k + 1, j);
            add_multiple(n - k - 1, T{} - at(k, j), multipliers + k + 1, x);
            search.add(n - k - 1, x);
        }
    }
    return info;
}

} // namespace

ORK_LAPACK_EXPORT(getc2)(const Int* n, T* a, const Int* lda, Int* ipiv, Int* jpiv, Int* info)
{
    *info = factor(*n, a, *lda, ipiv, jpiv);
}

} // namespace ork::lapack
