// SPDX-License-Identifier: MIT
#include "dft/lengths/kernel.h"

// clang-format off
ORK_LENGTH(float, 49); ORK_LENGTH(float, 50); ORK_LENGTH(float, 51); ORK_LENGTH(float, 52);
ORK_LENGTH(float, 53); ORK_LENGTH(float, 54); ORK_LENGTH(float, 55); ORK_LENGTH(float, 56);
// clang-format on
