// SPDX-License-Identifier: MIT
// The entries of ork/lapack_compact.h.
#include "lapack/compact.h"

#include "export.h"

using namespace ork::lapack;
using Int = std::int64_t;

ORK_EXPORT Int ork_compact_format()
{
    Int format;
    kernels::compact_format_ps<double>(&format);
    return format;
}

#define ORK_COMPACT(routine) ork_compact_s##routine
#define ORK_NAME(routine) "ork_compact_s" routine
#define ORK_ELEMENT float
#define ORK_SCALAR float
#define ORK_VALUE(scalar) scalar
#include "lapack/compact_entries.inc"

#define ORK_COMPACT(routine) ork_compact_d##routine
#define ORK_NAME(routine) "ork_compact_d" routine
#define ORK_ELEMENT double
#define ORK_SCALAR double
#define ORK_VALUE(scalar) scalar
#include "lapack/compact_entries.inc"

#define ORK_COMPACT(routine) ork_compact_c##routine
#define ORK_NAME(routine) "ork_compact_c" routine
#define ORK_ELEMENT ork_complex_float
#define ORK_SCALAR const ork_complex_float*
#define ORK_VALUE(scalar) *scalar
#include "lapack/compact_entries.inc"

#define ORK_COMPACT(routine) ork_compact_z##routine
#define ORK_NAME(routine) "ork_compact_z" routine
#define ORK_ELEMENT ork_complex_double
#define ORK_SCALAR const ork_complex_double*
#define ORK_VALUE(scalar) *scalar
#include "lapack/compact_entries.inc"
