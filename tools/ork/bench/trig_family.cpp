// SPDX-License-Identifier: MIT
// Sine and cosine transforms: d0 to d5, s0 to s5, forward and, where that differs, backward.
#include <algorithm>
#include <fmt/format.h>

#include "bench/family.h"
#include "peers/trig.h"

namespace ork::tool::bench {
namespace {

Contest prepare(const peers::TrigCase& c, const std::vector<peers::Library>& libraries)
{
    // A problem each, for a problem has one plan.
    auto operands = std::make_shared<std::vector<std::unique_ptr<peers::TrigProblem>>>();
    Contest result{{}, 0, {}, operands, false};
    for (const peers::Library& library : libraries) {
        auto problem = peers::make_trig(c);
        const bool subject = library.kind == peers::Kind::subject;
        const peers::Entrant run = subject ? problem->ork() : problem->planned(library);
        result.work = problem->work();
        if (run) result.contenders.push_back({library.name, library.kind, run, problem->check(run)});
        operands->push_back(std::move(problem));
    }
    return result;
}

} // namespace

std::vector<Case> trig_cases(const Selection& selection)
{
    auto sizes = shapes_of(selection.sizes);
    if (selection.sizes.empty())
        for (const int n : selection.quick
                               ? std::vector<int>{64, 100, 1024}
                               : std::vector<int>{63, 64, 100, 127, 128, 256, 1000, 1024, 4096, 16384, 262144})
            sizes.push_back({n, n, n});
    std::vector<Case> cases;
    for (const std::string& routine : selection.routines.empty()
                                          ? std::vector<std::string>{"d0", "d1", "d2", "d3", "d4", "d5", "s0", "s2"}
                                          : selection.routines) {
        if (routine.size() != 2 || (routine[0] != 'd' && routine[0] != 's') || routine[1] < '0' || routine[1] > '5')
            continue;
        const int type = routine[1] - '0';
        for (const bool backward : {false, true}) {
            if (backward && type != 2 && type != 3) continue;
            for (const Shape& shape : sizes) {
                if (!shape.square() || shape.n < 3) continue;
                const peers::TrigCase c{routine[0] == 's', type, backward, shape.n};
                cases.push_back({routine, backward ? "backward" : "forward", shape.label(),
                                 static_cast<double>(shape.n),
                                 [c](const auto& libraries) { return prepare(c, libraries); }});
            }
        }
    }
    return cases;
}

} // namespace ork::tool::bench
