// SPDX-License-Identifier: MIT
// A compressed-row matrix in a caller's arrays.
#pragma once

namespace ork::spblas {

template <class Int, class T>
struct Csr {
    const T* val;
    const Int* indx;
    const Int *pntrb, *pntre; // positions count from pntrb[0], whatever number that is

    Int first(Int row) const { return pntrb[row] - pntrb[0]; }
    Int last(Int row) const { return pntre[row] - pntrb[0]; } // exclusive
};

} // namespace ork::spblas
