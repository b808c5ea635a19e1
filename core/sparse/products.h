// SPDX-License-Identifier: MIT
// What the drivers of sums and products share.
#pragma once

#include "sparse/handle.h"

namespace ork::sparse {

// The threads that the calling thread may use now.
Team team();

// Two operands of one precision and width; blocks only with blocks of the same order.
void check_factors(Checks& check, const Matrix* a, const char* argument, const Matrix* b);

// Of a ProductStatus, recorded.
std::int64_t status_of(const Routine& r, const Matrix& a, std::int64_t status);

} // namespace ork::sparse
