// SPDX-License-Identifier: MIT
// Plain loops in wider precision. Every reference carries the sum of the magnitudes that went into it: the scale to
// which the rounding errors of any order of addition are proportional.
#pragma once

#include <cstdint>
#include <vector>

#include "support/scalar.h"

namespace ork::test {

template <class R = quad>
struct Expected {
    Wide<R> value;
    R scale = 0; // sum of |terms|

    void add(Wide<R> term)
    {
        value += term;
        scale += magnitude(term);
    }
};

// A value that a result must meet within rounding of its own size.
template <class R = quad>
Expected<R> expected(Wide<R> value)
{
    return {value, magnitude(value)};
}

// sum of x[i] * y[i] (conjugate_x: conj(x[i]) * y[i]); x and y are anything with an operator[].
template <class T, class R = quad, class X, class Y>
Expected<R> reference_dot(std::int64_t n, const X& x, const Y& y, bool conjugate_x = false)
{
    Expected<R> sum;
    for (std::int64_t i = 0; i < n; ++i) {
        const Wide<R> a(x[i]);
        sum.add(multiply<T>(conjugate_x ? conj(a) : a, Wide<R>(y[i])));
    }
    return sum;
}

// sum of term(i).
template <class R = quad, class Term>
Expected<R> reference_sum(std::int64_t n, Term&& term)
{
    Expected<R> sum;
    for (std::int64_t i = 0; i < n; ++i) sum.add(Wide<R>(term(i)));
    return sum;
}

// Element (i, j) of op(A), A column-major with leading dimension lda; trans is 'N', 'T' or 'C'.
template <class T, class R = quad>
Wide<R> op_element(char trans, const T* a, std::int64_t lda, std::int64_t i, std::int64_t j)
{
    if (trans == 'N' || trans == 'n') return Wide<R>(a[i + j * lda]);
    const Wide<R> x(a[j + i * lda]);
    return trans == 'C' || trans == 'c' ? conj(x) : x;
}

// alpha * op(A) * op(B) + beta * C as m x n column-major values, tight. C is not read when beta is 0, A and B are not
// when alpha is 0 or k is 0.
template <class T, class R = quad>
std::vector<Expected<R>> reference_gemm(char transa, char transb, std::int64_t m, std::int64_t n, std::int64_t k,
                                        T alpha, const T* a, std::int64_t lda, const T* b, std::int64_t ldb, T beta,
                                        const T* c, std::int64_t ldc)
{
    std::vector<Expected<R>> result(static_cast<std::size_t>(m * n));
    for (std::int64_t j = 0; j < n; ++j)
        for (std::int64_t i = 0; i < m; ++i) {
            Expected<R>& sum = result[static_cast<std::size_t>(i + j * m)];
            if (alpha != T{})
                for (std::int64_t l = 0; l < k; ++l)
                    sum.add(multiply<T>(Wide<R>(alpha), multiply<T>(op_element<T, R>(transa, a, lda, i, l),
                                                                    op_element<T, R>(transb, b, ldb, l, j))));
            if (beta != T{}) sum.add(multiply<T>(Wide<R>(beta), Wide<R>(c[i + j * ldc])));
        }
    return result;
}

} // namespace ork::test
