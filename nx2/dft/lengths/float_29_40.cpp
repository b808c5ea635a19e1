// SPDX-License-Identifier: MIT
#include "dft/lengths/kernel.h"

// clang-format off
ORK_LENGTH(float, 29); ORK_LENGTH(float, 30); ORK_LENGTH(float, 31); ORK_LENGTH(float, 32);
ORK_LENGTH(float, 33); ORK_LENGTH(float, 34); ORK_LENGTH(float, 35); ORK_LENGTH(float, 36);
ORK_LENGTH(float, 37); ORK_LENGTH(float, 38); ORK_LENGTH(float, 39); ORK_LENGTH(float, 40);
// clang-format on
