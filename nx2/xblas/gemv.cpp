// SPDX-License-Identifier: MIT
// Products with a general matrix.
#include "xblas/members.h"
