// SPDX-License-Identifier: MIT
#include "peers/eigen.h"

namespace ork::peers {

const char* eigen_version() { return nullptr; }
void* eigen_symbol(const char*) { return nullptr; }
std::unique_ptr<Transform> eigen_transform(const FftCase&, void*, void*) { return nullptr; }

} // namespace ork::peers
