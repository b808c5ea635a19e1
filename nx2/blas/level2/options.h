// SPDX-License-Identifier: MIT
// The option letters, of either case. A letter that is neither of a pair counts as the second: the core has checked
// them.
#pragma once

#include "blas/gemm/product.h"
#include "frame/core_imports.h"

namespace ork::level2 {

using gemm::conjugate;
using gemm::Op; // 'N' as it stands, 'C' conjugate transpose, any other letter transpose
using gemm::with_flag;

inline bool is_upper(const char* uplo) { return gemm::is_letter(*uplo, 'U'); }
inline bool is_unit(const char* diag) { return gemm::is_letter(*diag, 'U'); }

// Whether the reproducibility switch asks for the loop that is the same whatever the addresses. The other one may look
// at them, but gives the same bits.
inline bool one_loop_for_all() { return ork_serv_cbwr_get(1) == 1; }

} // namespace ork::level2
