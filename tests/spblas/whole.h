// SPDX-License-Identifier: MIT
// Elements that are small whole numbers: their sums and products are exact, so that every order of them gives one
// result.
#pragma once

#include "spblas/sparse.h"

namespace ork::test {

template <class T>
T whole(Random& random)
{
    const auto one = [&] { return static_cast<double>(random.integer(-4, 4)); };
    const double re = one();
    return scalar<T>(re, one());
}

template <class T>
std::vector<T> whole_values(std::int64_t count, Random& random)
{
    std::vector<T> values(static_cast<std::size_t>(count));
    for (T& value : values) value = whole<T>(random);
    return values;
}

} // namespace ork::test
