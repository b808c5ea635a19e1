// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace ork::tool {

// Symbols that a shared library defines for others, counted in its dynamic symbol table. Throws std::runtime_error.
size_t count_exports(const std::string& file);

} // namespace ork::tool
