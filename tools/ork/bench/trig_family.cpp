// SPDX-License-Identifier: MIT
// Sine and cosine transforms: d0 to d5, s0 to s5, forward and, where that differs, backward.
#include <algorithm>
#include <fmt/format.h>

#include "bench/trig_family.h"
#include "peers/reference_dft.h"
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

void show_trig_accuracy(const Selection& selection, const std::vector<peers::Library>& libraries)
{
    struct Column {
        const char* title;
        int type;
        bool backward;
    };
    const Column columns[] = {{"0", 0, false}, {"1", 1, false},     {"2", 2, false}, {"2 back", 2, true},
                              {"3", 3, false}, {"3 back", 3, true}, {"4", 4, false}, {"5", 5, false}};
    auto sizes = shapes_of(selection.sizes);
    if (selection.sizes.empty())
        for (const int n : {64, 100, 127, 128, 256, 999, 1000, 1009, 1024, 4096, 16384, 65536})
            sizes.push_back({n, n, n});
    for (const bool single : {false, true}) {
        fmt::print("\n{} precision, relative L2 error against sums in long double\n{:>8}{:>12}",
                   single ? "single" : "double", "n", "real DFT");
        for (const Column& column : columns) fmt::print("{:>10}", column.title);
        fmt::print("{:>12}\n", "worst/DFT");
        for (const Shape& shape : sizes) {
            if (!shape.square() || shape.n < 3) continue;
            peers::FftProblem whole({true, single, false, false, {shape.n}});
            const auto dft = libraries.front().transform(whole.what(), whole.in(), whole.out());
            const double of_dft = peers::accuracy(whole, *dft);
            fmt::print("{:>8}{:>12.3g}", shape.n, of_dft);
            double worst = 0;
            for (const Column& column : columns) {
                const auto problem = peers::make_trig({single, column.type, column.backward, shape.n});
                const double error = problem->error(problem->ork());
                worst = std::max(worst, error);
                fmt::print("{:>10.3g}", error);
            }
            fmt::print("{:>12.2f}\n", worst / of_dft);
            std::fflush(stdout);
        }
    }
}

} // namespace ork::tool::bench
