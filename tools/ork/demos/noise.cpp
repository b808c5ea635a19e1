// SPDX-License-Identifier: MIT
#include "demos/noise.h"

#include <cmath>
#include <cstdint>

namespace ork::tool {

std::vector<double> normal_noise(std::size_t count, double standard_deviation)
{
    std::vector<double> noise(count);
    uint64_t state = 1;
    const auto uniform = [&] { // in (0, 1)
        state = state * 6364136223846793005u + 1442695040888963407u;
        return (static_cast<double>(state >> 12) + 0.5) * 0x1p-52;
    };
    for (double& value : noise) {
        const double radius = std::sqrt(-2 * std::log(uniform()));
        value = standard_deviation * radius * std::cos(2 * M_PI * uniform());
    }
    return noise;
}

} // namespace ork::tool
