/* SPDX-License-Identifier: MIT */
// What the kernels of ork/abi/conv.h call of the core.
#ifndef ORK_ABI_CORE_CONV_H
#define ORK_ABI_CORE_CONV_H

#include <stdint.h>

extern "C" {

// Runs part(context, k) once for every k = 0 .. parts - 1, in any order and on any threads, and returns when all are
// done.
void ork_conv_do_parallel(int64_t parts, void (*part)(void* context, int64_t k), void* context);
}

#endif
