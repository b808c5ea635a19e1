// SPDX-License-Identifier: MIT
#include <algorithm>
#include <fmt/format.h>

#include "bench/family.h"

namespace ork::tool::bench {

std::vector<Case> level1_cases(const Selection& selection)
{
    std::vector<std::string> routines = selection.routines;
    if (routines.empty() && selection.quick) routines = {"ddot", "daxpy", "dscal", "dcopy"};
    if (routines.empty()) routines = peers::level1_routines();
    std::vector<int> sizes;
    for (const Shape& s : shapes_of(selection.sizes))
        if (s.square()) sizes.push_back(s.m);
    if (selection.sizes.empty())
        sizes =
            selection.quick ? std::vector<int>{32, 1001} : std::vector<int>{7, 32, 100, 1001, 16000, 250000, 8000000};
    std::vector<Case> cases;
    for (const std::string& routine : routines) {
        const auto& known = peers::level1_routines();
        if (std::find(known.begin(), known.end(), routine) == known.end()) continue;
        for (const int n : sizes)
            cases.push_back(
                {routine, "", fmt::format("{}", n), static_cast<double>(n), [routine, n](const auto& libraries) {
                     return contest(peers::make_level1({routine, n, 1, 1}), libraries);
                 }});
    }
    return cases;
}

} // namespace ork::tool::bench
