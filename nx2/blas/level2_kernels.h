// SPDX-License-Identifier: MIT
// Declares the level-2 exports from the list shared with the core, so that a definition with other arguments than the
// list's does not compile.
#pragma once

#include "frame/export.h"
#include "ork/types.h"

#define KERNEL(result, routine, ...) ORK_EXPORT result ork_blas_nx2_##routine(__VA_ARGS__);
#include "ork/abi/level2.inc"
#undef KERNEL
