// SPDX-License-Identifier: MIT
#include "dft/lengths/kernel.h"

// clang-format off
ORK_LENGTH(double, 1); ORK_LENGTH(double, 2); ORK_LENGTH(double, 3); ORK_LENGTH(double, 4);
ORK_LENGTH(double, 5); ORK_LENGTH(double, 6); ORK_LENGTH(double, 7); ORK_LENGTH(double, 8);
ORK_LENGTH(double, 9); ORK_LENGTH(double, 10); ORK_LENGTH(double, 11); ORK_LENGTH(double, 12);
ORK_LENGTH(double, 13); ORK_LENGTH(double, 14); ORK_LENGTH(double, 15); ORK_LENGTH(double, 16);
ORK_LENGTH(double, 17); ORK_LENGTH(double, 18); ORK_LENGTH(double, 19); ORK_LENGTH(double, 20);
ORK_LENGTH(double, 21); ORK_LENGTH(double, 22); ORK_LENGTH(double, 23); ORK_LENGTH(double, 24);
ORK_LENGTH(double, 25); ORK_LENGTH(double, 26); ORK_LENGTH(double, 27); ORK_LENGTH(double, 28);
// clang-format on
