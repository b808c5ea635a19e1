// SPDX-License-Identifier: MIT
// The radices that passes exist for, in files of about equal compile time.
#pragma once

#include "dft/engine/pass.h"

namespace ork::dft {

#define ORK_RADICES_A(X) X(2) X(3) X(4) X(5) X(6) X(7) X(8) X(9) X(10)
#define ORK_RADICES_B(X) X(11) X(12) X(13) X(14) X(15) X(16)
#define ORK_RADICES_C(X) X(17) X(19) X(20) X(24)
#define ORK_RADICES_D(X) X(23) X(25) X(32)
#define ORK_RADICES(X) ORK_RADICES_A(X) ORK_RADICES_B(X) ORK_RADICES_C(X) ORK_RADICES_D(X)

// Of these there is the last pass only, in double precision: as long straight-line code they save passes over short
// vectors.
#define ORK_LAST_RADICES(X) X(48) X(64)

// Every file defines its members.
template <int r, class R>
struct Radix {
    static const Kernels<R> kernels;
};

// Null when there is none.
template <class R>
const Kernels<R>* kernels(int radix);

} // namespace ork::dft
