// SPDX-License-Identifier: MIT
#include <algorithm>
#include <fmt/format.h>

#include "bench/family.h"

namespace ork::tool::bench {
namespace {

const std::vector<std::string> dense = {"dgemv", "dger", "dsymv", "dtrsv", "dtrmv", "dsyr", "dsyr2"};
const std::vector<std::string> all_letters = {"", "N", "T", "L", "U", "LNN", "UNN", "LTN", "UTN"};

Shape square(int n) { return {n, n, n}; }

std::vector<Shape> usual_shapes(const std::string& routine, bool quick)
{
    if (peers::is_band(routine)) {
        if (quick) return {{1000, 20, 0}};
        return {{100, 4, 0}, {1000, 4, 0}, {1000, 20, 0}, {1000, 100, 0}, {1000, 200, 0}, {100000, 20, 0}};
    }
    std::vector<Shape> shapes;
    for (const int n :
         quick ? std::vector<int>{16, 255} : std::vector<int>{4, 7, 16, 33, 64, 100, 255, 512, 1000, 2000, 4000})
        shapes.push_back(square(n));
    if (!quick) shapes.insert(shapes.end(), {{10000, 10, 0}, {10, 10000, 0}, {1000, 4, 0}, {4, 1000, 0}});
    return shapes;
}

} // namespace

std::vector<Case> level2_cases(const Selection& selection)
{
    std::vector<std::string> routines = selection.routines;
    if (routines.empty()) routines = selection.quick ? std::vector<std::string>{"dgemv", "dtrsv"} : dense;
    std::vector<Case> cases;
    for (const std::string& routine : routines)
        for (const std::string& letters : selection.trans.empty() ? all_letters : selection.trans)
            for (const Shape& s :
                 selection.sizes.empty() ? usual_shapes(routine, selection.quick) : shapes_of(selection.sizes)) {
                const peers::Level2Case problem{routine, letters, s.m, s.n};
                if (!peers::is_case(problem) || (s.k != 0 && !s.square())) continue;
                cases.push_back(
                    {routine, letters, s.label(), s.square() ? static_cast<double>(s.m) : 0,
                     [problem](const auto& libraries) { return contest(peers::make_level2(problem), libraries); }});
            }
    return cases;
}

} // namespace ork::tool::bench
