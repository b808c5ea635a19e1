// SPDX-License-Identifier: MIT
// The exports of products with vectors.
#include "sparse/members.h"

namespace ork::sparse {

ORK_SPARSE_EXPORT(void, csr_mv_merge1)(Int first, Int last, Int stride, Int parts, const T* partials, T* y)
{
    for (Int p = 0; p < parts; ++p)
        for (Int i = first; i < last; ++i) y[i] = y[i] + partials[std::int64_t{p} * stride + i];
}

} // namespace ork::sparse
