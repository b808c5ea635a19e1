// SPDX-License-Identifier: MIT
#include <fmt/format.h>

#include "bench/family.h"

namespace ork::tool::bench {
namespace {

const std::vector<std::string> usual = {"dsyrk", "dtrsm", "dtrmm", "dsymm", "dsyr2k", "dgemmt"};
// Of rank-k updates, symm, gemmt, and the triangular ones.
const std::vector<std::string> usual_letters = {"LN",   "UT",   "LL",   "LU",   "RL",   "RU",   "LNN",  "UNT",
                                                "LLNN", "LUNN", "LLTN", "LUTN", "RLNN", "RUNN", "RLTN", "RUTN"};
constexpr int squares[] = {8, 32, 64, 100, 128, 255, 256, 512, 1000, 1024, 2048};
constexpr int quick_squares[] = {32, 256};

std::vector<Shape> usual_shapes(bool quick)
{
    std::vector<Shape> shapes;
    if (quick) {
        for (const int n : quick_squares) shapes.push_back({n, n, n});
        return shapes;
    }
    for (const int n : squares) shapes.push_back({n, n, n});
    shapes.insert(shapes.end(), {{64, 2000, 0}, {1000, 4, 0}});
    return shapes;
}

} // namespace

std::vector<Case> level3_cases(const Selection& selection)
{
    std::vector<std::string> routines = selection.routines;
    if (routines.empty()) routines = selection.quick ? std::vector<std::string>{"dsyrk", "dtrsm"} : usual;
    const std::vector<Shape> shapes =
        selection.sizes.empty() ? usual_shapes(selection.quick) : shapes_of(selection.sizes);
    std::vector<Case> cases;
    for (const std::string& routine : routines)
        for (const std::string& letters : selection.trans.empty() ? usual_letters : selection.trans)
            for (const Shape& s : shapes) {
                const peers::Level3Case problem{routine, letters, s.m, s.n};
                if (!peers::is_case(problem) || (s.k != 0 && !s.square())) continue;
                cases.push_back(
                    {routine, letters, s.label(), s.square() ? static_cast<double>(s.m) : 0,
                     [problem](const auto& libraries) { return contest(peers::make_level3(problem), libraries); }});
            }
    return cases;
}

} // namespace ork::tool::bench
