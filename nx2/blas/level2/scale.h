// SPDX-License-Identifier: MIT
// y <- beta y, which comes before any product is added to y. beta = 1 leaves y alone and beta = 0 writes zeros without
// reading, so that no NaN survives; both are compared exactly. With an increment of 0 the one element is multiplied by
// beta n times, as the loop over n elements would, but cleared once.
#pragma once

#include "blas/level2/strided.h"

namespace ork::level2 {

template <class T>
struct Cleared {
    template <int width>
    [[gnu::always_inline]] void at(const T*, T* y) const
    {
        store<width>(y, Vec<T>{});
    }
};

template <class T>
struct Multiplied {
    Factor<T> beta;
    template <int width>
    [[gnu::always_inline]] void at(const T*, T* y) const
    {
        store<width>(y, beta * load<width>(y));
    }
};

template <class T, class Step>
inline void each_of(Int n, const Step& step, Strided<T> y)
{
    if (y.contiguous()) return elementwise::adjacent(n, step, y.first, y.first);
#pragma GCC unroll 8
    for (Int i = 0; i < n; ++i) step.template at<1>(y.at(i), y.at(i));
}

template <class T>
[[gnu::noinline]] void multiply_or_clear(Int n, T beta, Strided<T> y)
{
    if (beta == T{})
        each_of(n, Cleared<T>{}, y);
    else
        each_of(n, Multiplied<T>{Factor<T>(beta)}, y);
}

template <class T>
inline void scale(Int n, T beta, Strided<T> y)
{
    if (!(beta == T(1))) multiply_or_clear(n, beta, y);
}

} // namespace ork::level2
