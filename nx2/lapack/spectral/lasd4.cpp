// SPDX-License-Identifier: MIT
#include "lapack/members.h"
#include "lapack/spectral/secular.h"

namespace ork::lapack {

ORK_LAPACK_EXPORT(lasd4)
(const Int* n, const Int* i, const R* d, const R* z, R* delta, const R* rho, R* sigma, R* work, Int* info)
{
    *info = secular::root_and_distances(*n, *i - 1, d, z, *rho, *sigma, delta, work) ? 0 : 1;
}

} // namespace ork::lapack
