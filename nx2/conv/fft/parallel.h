// SPDX-License-Identifier: MIT
#pragma once

#include "conv/problem.h"
#include "frame/core_imports.h"

namespace ork::conv {

// part(k) for k = 0 .. parts - 1, in any order, on any threads. A single one runs where it is called, so that what it
// calls may have threads of its own.
template <class Part>
void parallel(Int parts, Part&& part)
{
    if (parts == 1)
        part(0);
    else
        ork_conv_do_parallel(
            parts, [](void* context, std::int64_t k) { (*static_cast<Part*>(context))(k); }, &part);
}

} // namespace ork::conv
