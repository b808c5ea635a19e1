// SPDX-License-Identifier: MIT
// Sparse matrices in files of the Matrix Market's coordinate format.
#pragma once

#include <string>

#include "peers/sparse.h"

namespace ork::tool {

// Real, integer and pattern (all entries 1) matrices, general, symmetric and skew-symmetric; entries of equal place add
// up, and both triangles are filled. Throws std::runtime_error "file:line: what is wrong".
peers::CsrMatrix read_matrix_market(const std::string& file);

} // namespace ork::tool
