// SPDX-License-Identifier: MIT
#include "dft/lengths/kernel.h"

// clang-format off
ORK_LENGTH(double, 49); ORK_LENGTH(double, 50); ORK_LENGTH(double, 51); ORK_LENGTH(double, 52);
ORK_LENGTH(double, 53); ORK_LENGTH(double, 54); ORK_LENGTH(double, 55); ORK_LENGTH(double, 56);
// clang-format on
