// SPDX-License-Identifier: MIT
#include "frame/core_imports.h"
#include "lapack/members.h"

namespace ork::lapack {

ORK_LAPACK_EXPORT(compact_format_ps)(Int* format)
{
    const Int level = ork_serv_cpu_detect();
    *format = level == 0 || level == 1 ? 182 : level == 2 || level == 3 ? 183 : 181;
}

} // namespace ork::lapack
