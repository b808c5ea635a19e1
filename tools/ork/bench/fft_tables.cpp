// SPDX-License-Identifier: MIT
// What there is to know of transforms beside their speed: how accurate they are, and how long they take to plan.
#include <fmt/format.h>

#include "bench/fft_family.h"
#include "peers/measure.h"
#include "peers/reference_dft.h"
#include "terminal.h"

namespace ork::tool::bench {
namespace {

// One table a kind: a row a size, a column a library, a last one that compares ork with the best of them.
template <class Cell>
void table(const Selection& selection, const std::vector<peers::Library>& libraries, const char* title,
           const char* last, const Cell& cell)
{
    const std::vector<peers::FftCase> cases = fft_selection(selection);
    Progress progress(cases.size());
    std::string kind;
    for (size_t i = 0; i < cases.size(); ++i) {
        const peers::FftCase& what = cases[i];
        progress.show(i, what.kind() + " " + what.size());
        Planned planned(what, libraries);
        std::string row = fmt::format("{:>14}", what.size());
        double subject = 0, best = 0;
        for (const peers::Library& library : libraries) {
            double value = 0;
            for (Planned::Plan& plan : planned.plans)
                if (plan.name == library.name) value = cell(planned, plan);
            if (!library.transform) continue;
            row += fmt::format("{:>14}", value > 0 ? fmt::format("{:.3g}", value) : "-");
            if (library.kind == peers::Kind::subject) subject = value;
            if (library.kind != peers::Kind::subject && value > 0 && (best == 0 || value < best)) best = value;
        }
        row += fmt::format("{:>14}", subject > 0 && best > 0 ? fmt::format("{:.2f}", subject / best) : "-");
        progress.clear();
        if (kind != what.kind()) {
            kind = what.kind();
            fmt::print("\n{}, {}\n{:>14}", kind, title, "size");
            for (const peers::Library& library : libraries)
                if (library.transform) fmt::print("{:>14}", library.name);
            fmt::print("{:>14}\n", last);
        }
        fmt::print("{}\n", row);
        std::fflush(stdout);
    }
}

} // namespace

void show_accuracy(const Selection& selection, const std::vector<peers::Library>& libraries)
{
    table(selection, libraries, "relative L2 error against a transform in long double", "ork/best",
          [](Planned& planned, Planned::Plan& plan) { return peers::accuracy(planned.problem, *plan.transform); });
}

void show_planning(const Selection& selection, const std::vector<peers::Library>& libraries)
{
    table(selection, libraries, "planning, in transforms of the size", "ork/best",
          [&](Planned& planned, Planned::Plan& plan) {
              // The first plan of FFTW costs its trials and later ones of the same size don't. ork remembers nothing,
              // so its cost is what a commit takes when the program already runs.
              std::vector<double> planning = {plan.seconds};
              if (plan.kind == peers::Kind::subject)
                  for (int again = 0; again < 5; ++again)
                      planning.push_back(Planned(planned.problem.what(), {libraries.front()}).plans.at(0).seconds);
              planned.problem.settle();
              const auto run = [&](long calls) {
                  for (; calls > 0; --calls) plan.transform->run();
              };
              const long calls = peers::calibrate(run, 2e-3);
              std::vector<double> seconds(5);
              for (double& s : seconds) s = peers::time_of(run, calls) / static_cast<double>(calls);
              return peers::median(planning) / peers::median(seconds);
          });
}

} // namespace ork::tool::bench
