// SPDX-License-Identifier: MIT
// Which element type and integer a typed test of sparse kernels runs with.
#pragma once

#include <complex>
#include <cstdint>
#include <string>

#include <gtest/gtest.h>

#include "support/scalar.h"

namespace ork::test {

using cfloat = std::complex<float>;
using cdouble = std::complex<double>;

template <class Element, class Integer>
struct Case {
    using T = Element;
    using Int = Integer;
};
using Cases = testing::Types<Case<float, std::int32_t>, Case<double, std::int32_t>, Case<cfloat, std::int32_t>,
                             Case<cdouble, std::int32_t>, Case<float, std::int64_t>, Case<double, std::int64_t>,
                             Case<cfloat, std::int64_t>, Case<cdouble, std::int64_t>>;
struct CaseNames {
    template <class C>
    static std::string GetName(int)
    {
        return precision_letter<typename C::T>() + std::string(sizeof(typename C::Int) == 4 ? "_i4" : "_i8");
    }
};

} // namespace ork::test
