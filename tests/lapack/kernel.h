// SPDX-License-Identifier: MIT
// LAPACK kernels by their stems, and the precisions that typed tests run with.
#pragma once

#include <complex>
#include <dlfcn.h>
#include <functional>
#include <string>

#include <gtest/gtest.h>

#include "ork/abi/lapack.h"
#include "support/scalar.h"

namespace ork::test {

using lapack::Int;
using Precisions = testing::Types<float, double, std::complex<float>, std::complex<double>>;
using RealPrecisions = testing::Types<float, double>;
struct PrecisionNames {
    template <class T>
    static std::string GetName(int)
    {
        return precision_letter<T>();
    }
};

// A matrix by its elements, and what it is called.
template <class T>
struct MatrixKind {
    const char* name;
    std::function<T(Int, Int)> element;
};

inline void* lapack_symbol(const std::string& name)
{
    void* address = dlsym(RTLD_DEFAULT, name.c_str());
    if (address == nullptr) ADD_FAILURE() << "no export " << name;
    return address;
}

// KERNEL(getrf_small) in a test with type T: the export with the signature of its stem. Null, and the test has failed,
// when there is none.
#define KERNEL(stem)                                                                                                   \
    (reinterpret_cast<typename ork::lapack::Calls<T>::stem*>(                                                          \
        ork::test::lapack_symbol(std::string("ork_lapack_ps_nx2_") + ork::test::precision_letter<T>() + #stem)))

} // namespace ork::test
