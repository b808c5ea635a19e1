// SPDX-License-Identifier: MIT
#include <algorithm>
#include <fmt/format.h>

#include "bench/family.h"

namespace ork::tool::bench {
namespace {

const std::vector<int> squares = {2,  3,  4,  5,  6,   7,   8,   10,  12,  15,  16,  17,  24,   31,   32,   48,
                                  63, 64, 65, 96, 100, 127, 128, 192, 256, 384, 512, 768, 1000, 1024, 1536, 2048};
const std::vector<int> quick_squares = {4, 16, 64, 256, 512};
const std::vector<Shape> skinny = {{1000, 1000, 4}, {8, 8, 10000}, {1000, 4, 1000}, {1, 1000, 1000}, {5, 7, 300}};

Case gemm_case(const std::string& routine, const std::string& trans, Shape s, double beta)
{
    Case c;
    c.routine = routine;
    c.variant = fmt::format("{} beta={}", trans, beta);
    c.shape = s.label();
    c.size = s.square() ? s.m : 0;
    const peers::GemmCase problem{routine[0], trans[0], trans[1], s.m, s.n, s.k, 1, beta};
    c.prepare = [problem](const auto& libraries) { return contest(peers::make_gemm(problem), libraries); };
    return c;
}

} // namespace

std::vector<Case> gemm_cases(const Selection& selection)
{
    const std::vector<std::string> routines =
        selection.routines.empty() ? std::vector<std::string>{"dgemm"} : selection.routines;
    std::vector<std::string> trans = selection.trans;
    if (trans.empty())
        trans = selection.quick ? std::vector<std::string>{"NN"} : std::vector<std::string>{"NN", "NT", "TN", "TT"};
    const std::vector<double> beta = selection.beta.empty() ? std::vector<double>{0} : selection.beta;
    std::vector<Shape> shapes = shapes_of(selection.sizes);
    if (selection.sizes.empty()) {
        for (const int n : selection.quick ? quick_squares : squares) shapes.push_back({n, n, n});
        if (!selection.quick) shapes.insert(shapes.end(), skinny.begin(), skinny.end());
    }
    std::vector<Case> cases;
    for (const std::string& routine : routines) {
        if (routine.size() != 5 || routine.substr(1) != "gemm" ||
            std::string("sdcz").find(routine[0]) == std::string::npos)
            continue;
        for (const double b : beta)
            for (const std::string& t : trans)
                for (const Shape& s : shapes)
                    if (s.k > 0 && t.size() == 2 && t.find_first_not_of("NTC") == std::string::npos)
                        cases.push_back(gemm_case(routine, t, s, b));
        // Tiny products that add to C may take another way than those that overwrite it, so both are shown.
        if (selection.beta.empty() && selection.sizes.empty() && !selection.quick &&
            std::count(trans.begin(), trans.end(), "NN") > 0)
            for (const int n : squares)
                if (n <= 128) cases.push_back(gemm_case(routine, "NN", {n, n, n}, 1));
    }
    return cases;
}

} // namespace ork::tool::bench
