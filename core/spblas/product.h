// SPDX-License-Identifier: MIT
// What comes before the kernels of every product.
#pragma once

#include "spblas/checks.h"
#include "spblas/members.h"
#include "spblas/vectors.h"

namespace ork::spblas {

// Checks the call and finds its kernel: body(kernel, shape). Where A and B are not read the result is scaled instead.
template <class Body>
inline std::int64_t checked_product(const Call& call, Body body)
{
    const auto [wrong, reads] = check_arguments(call);
    if (wrong) return wrong;
    if (!reads) {
        scale_result(call);
        return ORK_SPBLAS_SUCCESS;
    }
    if (const auto status = check_structure(call)) return status;
    const Shape shape = shape_of(call);
    body(kernel_for(call, shape), shape);
    return ORK_SPBLAS_SUCCESS;
}

} // namespace ork::spblas
