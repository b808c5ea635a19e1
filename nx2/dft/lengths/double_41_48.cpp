// SPDX-License-Identifier: MIT
#include "dft/lengths/kernel.h"

// clang-format off
ORK_LENGTH(double, 41); ORK_LENGTH(double, 42); ORK_LENGTH(double, 43); ORK_LENGTH(double, 44);
ORK_LENGTH(double, 45); ORK_LENGTH(double, 46); ORK_LENGTH(double, 47); ORK_LENGTH(double, 48);
// clang-format on
