// SPDX-License-Identifier: MIT
// Reports of wrong arguments.
#pragma once

#include <cstdint>

namespace ork::services {

// Reports argument `position` (from 1) of `routine`, such as "DGEMM", through the symbol xerbla_, which an application
// may define for itself as in LAPACK. Returns, unless that routine does not.
void report_argument(const char* routine, std::int64_t position);

} // namespace ork::services
