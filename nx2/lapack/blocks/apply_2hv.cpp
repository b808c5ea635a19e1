// SPDX-License-Identifier: MIT
// Two reflectors at once, in every precision.
#include "blas/gemm/product.h"
#include "lapack/apply_reflectors.h"
#include "lapack/members.h"

using namespace ork::lapack;

ORK_LAPACK_EXPORT(apply_2hv)
(const char* side, const Int* m, const Int* n, const T* v1, const T* tau1, const T* v2, const T* tau2, T* c,
 const Int* ldc, T*)
{
    const bool left = ork::gemm::is_letter(*side, 'L'), both = !(*tau1 == T{}) && !(*tau2 == T{});
    const auto apply = [&](const auto& h) {
        if (left)
            apply_from_left(*m, *n, h, c, *ldc);
        else
            apply_from_right(*m, *n, h, c, *ldc);
    };
    if (both)
        apply(Reflectors<T, 2>{{v1, v2}, {*tau1, *tau2}});
    else if (!(*tau1 == T{}))
        apply(Reflectors<T, 1>{{v1}, {*tau1}});
    else if (!(*tau2 == T{}))
        apply(Reflectors<T, 1>{{v2}, {*tau2}});
}
