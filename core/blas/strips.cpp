// SPDX-License-Identifier: MIT
#include "blas/strips.h"

#include <cmath>

// The first j columns of an upper triangle hold j^2 / 2 elements, those of a lower one n^2 / 2 - (n - j)^2 / 2.
std::int64_t ork::blas::triangle_strip_begin(bool lower, std::int64_t n, int parts, int part)
{
    if (part <= 0) return 0;
    if (part >= parts) return n;
    const double share = static_cast<double>(part) / parts;
    const double begin = static_cast<double>(n) * (lower ? 1 - std::sqrt(1 - share) : std::sqrt(share));
    return std::min(n, round_up(static_cast<std::int64_t>(begin), grain));
}
