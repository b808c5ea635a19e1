// SPDX-License-Identifier: MIT
// The rows of routines.inc as types: rows::dgetrf is the routine dgetrf.
#pragma once

#include <complex>

#include "lapack/binding.h"

namespace ork::lapack::rows {

template <class R>
using Complex = std::complex<R>;

#define ROUTINE(n, routine, T, shape, driver)                                                                          \
    struct routine : Routine<T, shapes::shape, driver<T>> {                                                            \
        static constexpr char name[] = #routine;                                                                       \
        static_assert(count == n);                                                                                     \
    };
#define OWN_ROUTINE ROUTINE
#include "lapack/routines.inc"

} // namespace ork::lapack::rows
