// SPDX-License-Identifier: MIT
// The members of the sparse kernels by their exported names: the look-up, which fails the test that asks for
// a name that is not there.
#pragma once

#include <dlfcn.h>

#include <string>

#include "ork/abi/spblas.h"
#include "support/kernel_case.h"

namespace ork::test {

// What an exported name begins with, the letter of the precision included.
template <class Int, class T>
std::string symbol_prefix()
{
    return std::string(sizeof(Int) == 4 ? "ork_spblas_lp64_nx2_" : "ork_spblas_nx2_") + precision_letter<T>();
}

// A member by its name without precision, "csr0ng__c__mvout_par". Null, and the test has failed, when there is none.
template <class Signature, class Int, class T>
Signature* member(const std::string& name)
{
    const std::string symbol = symbol_prefix<Int, T>() + name;
    void* address = dlsym(RTLD_DEFAULT, symbol.c_str());
    if (address == nullptr) ADD_FAILURE() << "no export " << symbol;
    return reinterpret_cast<Signature*>(address);
}

inline constexpr spblas::Format all_formats[] = {spblas::Format::csr, spblas::Format::coo, spblas::Format::bsr,
                                                 spblas::Format::bsc, spblas::Format::dia, spblas::Format::sky};
inline constexpr spblas::Routine all_routines[] = {spblas::Routine::mvout, spblas::Routine::mmout,
                                                   spblas::Routine::svout, spblas::Routine::smout};

inline std::string name_of(spblas::Format format)
{
    static constexpr const char* names[] = {"csr", "coo", "bsr", "bsc", "dia", "sky"};
    return names[static_cast<int>(format)];
}

// "csr0nslnc__mvout_par"
inline std::string name_of(spblas::Format format, spblas::Routine routine, spblas::Shape s)
{
    static constexpr const char* routines[] = {"mvout", "mmout", "svout", "smout"};
    return name_of(format) + s.base + s.op + s.type + s.uplo + s.diag + s.layout + "__" +
           routines[static_cast<int>(routine)] + (is_parallel(routine, s) ? "_par" : "_seq");
}

// f(format, routine, shape) for every member of the grammar.
template <class F>
void for_each_member(bool complex, F&& f)
{
    for (const auto format : all_formats)
        for (const auto routine : all_routines)
            for (const char base : {'0', '1'})
                for (const char op : {'n', 't', 'c', 's'})
                    for (const char type : {'g', 's', 'h', 't', 'a', 'd'})
                        for (const char uplo : {'l', 'u', '_'})
                            for (const char diag : {'n', 'u', '_'})
                                for (const char layout : {'c', 'f'}) {
                                    const spblas::Shape s{base, op, type, uplo, diag, layout};
                                    if (exists(format, routine, s, complex)) f(format, routine, s);
                                }
}

} // namespace ork::test
