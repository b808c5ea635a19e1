// SPDX-License-Identifier: MIT
// Rotations, reflectors and tridiagonal systems against plain loops and the LAPACK of the peers.
#include <algorithm>
#include <fmt/format.h>

#include "bench/family.h"
#include "peers/blocks.h"

namespace ork::tool::bench {
namespace {

// The libraries that have LAPACK, ork's kernels, the plain loops.
std::vector<peers::Library> contenders(const std::vector<peers::Library>& libraries, const std::string& kernel_name)
{
    std::vector<peers::Library> result;
    for (peers::Library library : libraries) {
        if (library.kind == peers::Kind::subject)
            library.find = [kernel_name](const char*) { return peers::lapack_kernel(kernel_name); };
        result.push_back(library);
    }
    const char* names[] = {"plain", "plain-2"};
    for (int which = 0; which < 2; ++which)
        result.push_back({names[which],
                          "loops compiled -O3 -msse4.2",
                          peers::Kind::peer,
                          [which](const char* symbol) { return peers::plain_blocks_symbol(symbol, which); },
                          {}});
    return result;
}

std::vector<Shape> usual_shapes(const std::string& routine, bool quick)
{
    if (routine == "dlasr")
        return quick ? std::vector<Shape>{{32, 32, 0}, {300, 300, 0}}
                     : std::vector<Shape>{{8, 8, 0},     {16, 16, 0},     {33, 33, 0},     {100, 100, 0},
                                          {300, 300, 0}, {1000, 1000, 0}, {2000, 2000, 0}, {1000, 3, 0}};
    if (routine == "dlarfx")
        return {{2, 1000, 0}, {3, 1000, 0}, {5, 1000, 0}, {8, 1000, 0}, {10, 1000, 0}, {40, 100, 0}};
    if (routine == "dgtsv-many")
        return quick ? std::vector<Shape>{{32, 1024, 0}, {1000, 64, 0}}
                     : std::vector<Shape>{{8, 4096, 0}, {32, 1024, 0}, {100, 256, 0}, {1000, 64, 0}};
    if (routine.starts_with("dgtsv"))
        return {{8, 4096, 0}, {32, 1024, 0}, {100, 256, 0}, {1000, 64, 0}, {100000, 1, 0}};
    if (quick) return {{1, 1000, 0}, {2, 1000, 0}};
    return {{1, 10, 0},     {1, 32, 0},      {1, 100, 0},  {1, 1000, 0},  {1, 10000, 0},
            {1, 100000, 0}, {1, 2000000, 0}, {2, 1000, 0}, {17, 1000, 0}, {17, 100000, 0}};
}

} // namespace

std::vector<Case> blocks_cases(const Selection& selection)
{
    std::vector<Case> cases;
    for (const peers::BlocksRoutine& routine : peers::blocks_routines()) {
        const std::string name = routine.name;
        const auto& asked = selection.routines;
        if (!asked.empty() && std::find(asked.begin(), asked.end(), name) == asked.end()) continue;
        const auto shapes = selection.sizes.empty() ? usual_shapes(name, selection.quick) : shapes_of(selection.sizes);
        for (const Shape& shape : shapes)
            cases.push_back({name, routine.shape, fmt::format("{}x{}", shape.m, shape.n), 0,
                             [routine, c = peers::BlocksCase{name, shape.m, shape.n}](const auto& libraries) {
                                 return contest(peers::make_blocks(c), contenders(libraries, routine.kernel));
                             }});
    }
    return cases;
}

} // namespace ork::tool::bench
