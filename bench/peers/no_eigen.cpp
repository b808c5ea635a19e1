// SPDX-License-Identifier: MIT
#include "peers/eigen.h"

namespace ork::peers {

const char* eigen_version() { return nullptr; }
void* eigen_symbol(const char*) { return nullptr; }

} // namespace ork::peers
