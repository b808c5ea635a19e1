// SPDX-License-Identifier: MIT
// The record as the kernels see it.
#pragma once

#include "conv/problem.h"
#include "ork/abi/conv.h"

static_assert(ork::conv::max_dims == ORK_CONV_MAX_DIMS);
