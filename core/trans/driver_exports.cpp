// SPDX-License-Identifier: MIT
// The drivers under the names that the kernels call.
#include "export.h"
#include "ork/types.h"
#include "trans/drivers.h"

using ork::trans::CoreCalls, ork::trans::Groups, ork::trans::Int;

#define ORK_ROUTINES "trans/driver_exports.inc"
#define ORK_NAME(routine) ork_trans_ork_##routine
#include "ork/trans_precisions.h"
