// SPDX-License-Identifier: MIT
#include "sparse/kernels.h"

#include <cstdio>

#include "loader/kernel.h"

namespace ork::sparse {

void* find_kernel(const char* stem, char precision, int index_bytes)
{
    char routine[64];
    const char letter[3] = {precision, '_', 0};
    std::snprintf(routine, sizeof routine, "%s%s_i%d", precision != 0 ? letter : "", stem, index_bytes);
    return loader::find_kernel("sparse", routine);
}

} // namespace ork::sparse
