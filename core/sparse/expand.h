// SPDX-License-Identifier: MIT
// A matrix of which a triangle or the diagonal counts, written out.
#pragma once

#include "ork/abi/sparse.h"
#include "ork/sparse.h"

namespace ork::sparse {

// op of what `kind` says A stands for, a general matrix in compressed rows, columns ascending. Returns 0, 1 without
// memory, or 2 where there are more entries than the integers count; *result is written for 0.
int expand(const Matrix& a, const ork_sparse_kind& kind, int op, Matrix** result);

} // namespace ork::sparse
