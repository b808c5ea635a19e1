// SPDX-License-Identifier: MIT
// The reproducibility branch: 1 makes the kernels that ask keep one fixed loop structure, 0 leaves them the faster one.
#include "export.h"
#include "ork/abi/services.h"
#include "ork/ork.h"
#include "services/setting.h"

namespace {
constinit ork::services::Setting branch{"ORK_CBWR", 0};
}

ORK_EXPORT int64_t ork_serv_cbwr_get(int64_t what) { return what == 1 ? branch.get() : 0; }

ORK_EXPORT int ork_set_reproducibility(int value) { return branch.set(value); }
