// SPDX-License-Identifier: MIT
// What solves and smoothers want of a diagonal, told to the caller.
#pragma once

#include "sparse/error.h"
#include "sparse/solve_rows.h"

namespace ork::sparse {

// That each diagonal entry is there, once and not 0. Looking takes about as long as solving, so what was found right is
// not looked at again until values change.
inline std::int64_t check_diagonal(const Routine& routine, const Matrix& a)
{
    using Kind = DiagonalFault::Kind;
    if (__atomic_load_n(&a.divides, __ATOMIC_RELAXED) != 0) return ORK_SPARSE_SUCCESS;
    const DiagonalFault fault = diagonal_fault(a);
    if (fault.kind == Kind::none) {
        __atomic_store_n(&a.divides, 1, __ATOMIC_RELAXED);
        return ORK_SPARSE_SUCCESS;
    }
    if (fault.kind == Kind::no_memory) return no_memory(routine);
    const char* const what = fault.kind == Kind::missing ? "has no diagonal entry"
                             : fault.kind == Kind::zero  ? "has the diagonal entry 0"
                                                         : "has its diagonal entry more than once";
    return wrong_structure(routine, {"a", -1, fault.row, "row", fault.row}, "%s", what);
}

} // namespace ork::sparse
