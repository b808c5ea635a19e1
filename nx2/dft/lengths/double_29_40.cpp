// SPDX-License-Identifier: MIT
#include "dft/lengths/kernel.h"

// clang-format off
ORK_LENGTH(double, 29); ORK_LENGTH(double, 30); ORK_LENGTH(double, 31); ORK_LENGTH(double, 32);
ORK_LENGTH(double, 33); ORK_LENGTH(double, 34); ORK_LENGTH(double, 35); ORK_LENGTH(double, 36);
ORK_LENGTH(double, 37); ORK_LENGTH(double, 38); ORK_LENGTH(double, 39); ORK_LENGTH(double, 40);
// clang-format on
