// SPDX-License-Identifier: MIT
#include "lapack/members.h"
