// SPDX-License-Identifier: MIT
#include "dft/lengths/kernel.h"

// clang-format off
ORK_LENGTH(double, 57); ORK_LENGTH(double, 58); ORK_LENGTH(double, 59); ORK_LENGTH(double, 60);
ORK_LENGTH(double, 61); ORK_LENGTH(double, 62); ORK_LENGTH(double, 63); ORK_LENGTH(double, 64);
// clang-format on
