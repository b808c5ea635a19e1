// SPDX-License-Identifier: MIT
// The kernels of copy, transposition and addition by their stems: omatcopy<double> is ork_trans_nx2_ork_domatcopy.
#pragma once

#include <complex>

#include "loader/kernel.h"
#include "loader/precision.h"
#include "ork/abi/trans.h"

namespace ork::trans {

// The letter of a precision: s d c z.
template <class T>
inline constexpr char precision = 's';
template <>
inline constexpr char precision<double> = 'd';
template <>
inline constexpr char precision<std::complex<float>> = 'c';
template <>
inline constexpr char precision<std::complex<double>> = 'z';

namespace kernels {

#define ORK_KERNEL(stem)                                                                                               \
    template <class T>                                                                                                 \
    inline constinit loader::Kernel<typename Calls<T>::stem> stem{                                                     \
        "trans", loader::of_precision<T>("ork_s" #stem, "ork_d" #stem, "ork_c" #stem, "ork_z" #stem)};
ORK_KERNEL(omatcopy)
ORK_KERNEL(omatcopy2)
ORK_KERNEL(omatcopy2_seq)
ORK_KERNEL(imatcopy)
ORK_KERNEL(omatadd)
ORK_KERNEL(omatadd_seq)
#undef ORK_KERNEL

} // namespace kernels

} // namespace ork::trans
