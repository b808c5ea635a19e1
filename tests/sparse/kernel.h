// SPDX-License-Identifier: MIT
// Kernels of analysed matrices by their stems. Scalars of tests are std::complex, which are passed by value as the
// kernels' own complex numbers are.
#pragma once

#include <dlfcn.h>

#include <string>

#include "ork/abi/sparse.h"
#include "support/kernel_case.h"

namespace ork::test {

template <class Int>
std::string width_suffix()
{
    return sizeof(Int) == 4 ? "_i4_nx2" : "_i8_nx2";
}

inline void* sparse_symbol(const std::string& name)
{
    void* address = dlsym(RTLD_DEFAULT, name.c_str());
    if (address == nullptr) ADD_FAILURE() << "no export " << name;
    return address;
}

// KERNEL(csr_ng_n_mv_ker) in a test with types Int and T: the export with the signature of its stem. Null, and the test
// has failed, when there is none.
#define KERNEL(stem)                                                                                                   \
    (reinterpret_cast<typename ork::sparse::Calls<Int, T>::stem*>(ork::test::sparse_symbol(                            \
        std::string("ork_sparse_") + ork::test::precision_letter<T>() + "_" #stem + ork::test::width_suffix<Int>())))
// The same of a stem without precision.
#define HANDLE_KERNEL(stem)                                                                                            \
    (reinterpret_cast<typename ork::sparse::HandleCalls<Int>::stem*>(                                                  \
        ork::test::sparse_symbol("ork_sparse_" #stem + ork::test::width_suffix<Int>())))

} // namespace ork::test
