/* SPDX-License-Identifier: MIT */
// Singular values and eigenvalues of small matrices, symmetric indefinite factorisations, secular equations: see
// ork/abi/lapack.h for what holds for all.
#ifndef ORK_ABI_LAPACK_SPECTRAL_H
#define ORK_ABI_LAPACK_SPECTRAL_H

#include "ork/abi/lapack/types.h"

namespace ork::lapack {

template <class T>
struct SpectralCalls {
};

} // namespace ork::lapack

#endif
