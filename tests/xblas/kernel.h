// SPDX-License-Identifier: MIT
// Extra-precise products by their stems, and the precisions that typed tests run with.
#pragma once

#include <complex>
#include <dlfcn.h>
#include <string>

#include <gtest/gtest.h>

#include "ork/abi/xblas.h"
#include "support/scalar.h"

namespace ork::test {

using xblas::Int;
using Precisions = testing::Types<float, double, std::complex<float>, std::complex<double>>;
struct PrecisionNames {
    template <class T>
    static std::string GetName(int)
    {
        return precision_letter<T>();
    }
};

inline constexpr Int by_rows = 101, by_columns = 102;
inline constexpr Int all_orders[] = {by_rows, by_columns}, all_trans[] = {111, 112, 113}, all_uplo[] = {121, 122};
inline constexpr Int single_precision = 211, double_precision = 212, of_the_data = 213, extra = 214;
inline constexpr Int all_precisions[] = {single_precision, double_precision, of_the_data, extra};

// Calls the export of a stem, which has the signature of Calls<T>; with an order the one that takes its address first.
template <class T, class Signature, class... Pointers>
void call_kernel(const std::string& stem, const Int* order, Pointers... arguments)
{
    static_assert(std::is_same_v<Signature, void(Pointers...)>);
    const std::string name =
        std::string("ork_xblas_nx2_") + (order == nullptr ? "blas_" : "") + precision_letter<T>() + stem;
    void* address = dlsym(RTLD_DEFAULT, name.c_str());
    ASSERT_NE(address, nullptr) << "no export " << name;
    if (order == nullptr)
        reinterpret_cast<void (*)(Pointers...)>(address)(arguments...);
    else
        reinterpret_cast<void (*)(const Int*, Pointers...)>(address)(order, arguments...);
}

} // namespace ork::test
