// SPDX-License-Identifier: MIT
#include "peers/problem.h"

#include <cstdio>

namespace ork::peers {

std::string mismatch(size_t position, long double got, long double want)
{
    char text[120];
    std::snprintf(text, sizeof(text), "element %zu is %.17Lg, not %.17Lg", position, got, want);
    return text;
}

} // namespace ork::peers
