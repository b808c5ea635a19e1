// SPDX-License-Identifier: MIT
// What new handles begin with, and whether optimize prints.
#pragma once

#include "ork/abi/sparse.h"

namespace ork::sparse {

Environment& environment();
bool prints();

} // namespace ork::sparse
