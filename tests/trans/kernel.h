// SPDX-License-Identifier: MIT
// Kernels of matrix copy, transposition and addition by their stems, and this program's stand-ins for the drivers that
// they call of a core.
#pragma once

#include <complex>
#include <dlfcn.h>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "ork/abi/trans.h"
#include "support/scalar.h"

namespace ork::test {

using trans::Int;
using Precisions = testing::Types<float, double, std::complex<float>, std::complex<double>>;
struct PrecisionNames {
    template <class T>
    static std::string GetName(int)
    {
        return precision_letter<T>();
    }
};

inline void* trans_symbol(const std::string& name)
{
    void* address = dlsym(RTLD_DEFAULT, name.c_str());
    if (address == nullptr) ADD_FAILURE() << "no export " << name;
    return address;
}

// The export of a stem in precision T, with the signature that Calls<T> has for it. Null, and the test has failed, when
// there is none.
#define ORK_TRANS_KERNEL(T, stem)                                                                                      \
    (reinterpret_cast<typename ork::trans::Calls<T>::stem*>(                                                           \
        ork::test::trans_symbol(std::string("ork_trans_nx2_ork_") + ork::test::precision_letter<T>() + #stem)))
#define KERNEL(stem) ORK_TRANS_KERNEL(T, stem)

// What the stand-ins have been called with, and how that of squares does its work; the others call the kernel for the
// whole, those of batches nothing.
struct Drivers {
    enum class Square { declines, whole, tiles } square = Square::tiles;
    std::vector<std::string> calls; // "omatcopy2(C, T, 65, 64, ...", as call_text writes them
};
Drivers& drivers();

inline void write_argument(std::ostream& out, const void* x) { out << x; } // also pointers to char
template <class T>
void write_argument(std::ostream& out, const T& x) requires(!std::is_pointer_v<T>)
{
    out << x;
}
template <class... Arguments>
std::string call_text(const char* name, Arguments... arguments)
{
    std::ostringstream out;
    out << name << '(';
    ((write_argument(out, arguments), out << ", "), ...);
    return out.str();
}

} // namespace ork::test
