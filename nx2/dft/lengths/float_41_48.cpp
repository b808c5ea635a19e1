// SPDX-License-Identifier: MIT
#include "dft/lengths/kernel.h"

// clang-format off
ORK_LENGTH(float, 41); ORK_LENGTH(float, 42); ORK_LENGTH(float, 43); ORK_LENGTH(float, 44);
ORK_LENGTH(float, 45); ORK_LENGTH(float, 46); ORK_LENGTH(float, 47); ORK_LENGTH(float, 48);
// clang-format on
