// SPDX-License-Identifier: MIT
#include "dft/lengths/kernel.h"

// clang-format off
ORK_LENGTH(float, 57); ORK_LENGTH(float, 58); ORK_LENGTH(float, 59); ORK_LENGTH(float, 60);
ORK_LENGTH(float, 61); ORK_LENGTH(float, 62); ORK_LENGTH(float, 63); ORK_LENGTH(float, 64);
// clang-format on
