// SPDX-License-Identifier: MIT
#include "dft/lengths/kernel.h"

// clang-format off
ORK_LENGTH(float, 1); ORK_LENGTH(float, 2); ORK_LENGTH(float, 3); ORK_LENGTH(float, 4);
ORK_LENGTH(float, 5); ORK_LENGTH(float, 6); ORK_LENGTH(float, 7); ORK_LENGTH(float, 8);
ORK_LENGTH(float, 9); ORK_LENGTH(float, 10); ORK_LENGTH(float, 11); ORK_LENGTH(float, 12);
ORK_LENGTH(float, 13); ORK_LENGTH(float, 14); ORK_LENGTH(float, 15); ORK_LENGTH(float, 16);
ORK_LENGTH(float, 17); ORK_LENGTH(float, 18); ORK_LENGTH(float, 19); ORK_LENGTH(float, 20);
ORK_LENGTH(float, 21); ORK_LENGTH(float, 22); ORK_LENGTH(float, 23); ORK_LENGTH(float, 24);
ORK_LENGTH(float, 25); ORK_LENGTH(float, 26); ORK_LENGTH(float, 27); ORK_LENGTH(float, 28);
// clang-format on
