// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

namespace ork::tool {

// Normal deviates of mean 0 by Box and Muller (1958), the same in every run.
std::vector<double> normal_noise(std::size_t count, double standard_deviation);

} // namespace ork::tool
