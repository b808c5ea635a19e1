// SPDX-License-Identifier: MIT
// Correlation with one x that stays the same, as the demos use it: z(m) = sum of x(i) y(i + m), m = first + k for all k
// below the extents of z. The first index of a list runs fastest.
#pragma once

#include <cstdint>
#include <vector>

#include "ork/conv.h"

namespace ork::tool {

class Correlation {
public:
    using Extents = std::vector<int32_t>;

    Correlation(const std::vector<double>& x, const Extents& x_extents, const Extents& y_extents, const Extents& first,
                const Extents& z_extents, int32_t mode);
    ~Correlation();
    Correlation(const Correlation&) = delete;
    Correlation& operator=(const Correlation&) = delete;

    std::vector<double> operator()(const std::vector<double>& y) const;
    double seconds(const std::vector<double>& y, int runs) const; // median

private:
    std::vector<double> x_; // the task refers to it
    size_t outputs_ = 1;
    ork_conv_task* task_ = nullptr;
};

} // namespace ork::tool
