// SPDX-License-Identifier: MIT
// Memory in whole cache lines.
#pragma once

#include <cstddef>

namespace ork::dft {

constexpr std::size_t whole_lines(std::size_t bytes) { return (bytes + 63) / 64 * 64; }

} // namespace ork::dft
