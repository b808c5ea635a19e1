// SPDX-License-Identifier: MIT
#include "bench/fft_family.h"

#include <fmt/format.h>

namespace ork::tool::bench {
namespace {

const std::vector<std::string> usual_kinds = {"cd", "cs", "rd", "rs"};
const std::vector<std::string> usual_sizes = {"16",   "60",   "100",   "256",     "1000",    "1009",
                                              "1024", "4096", "65536", "1000000", "512x512", "100*1000"};
const std::vector<std::string> quick_sizes = {"64", "1000", "4096"};

std::vector<std::string> all_sizes()
{
    std::vector<std::string> sizes;
    for (int n = 2; n <= 64; ++n) sizes.push_back(std::to_string(n));
    for (int power = 7; power <= 22; ++power) sizes.push_back(std::to_string(1 << power));
    for (const char* size : {"100", "120", "360", "1000", "1920", "10000", "44100", "1000000", "101", "1009", "65537",
                             "512x512", "1024x1024", "100*1000"})
        sizes.emplace_back(size);
    return sizes;
}

} // namespace

std::vector<peers::FftCase> fft_selection(const Selection& selection)
{
    std::vector<std::string> sizes;
    for (const std::string& size : selection.sizes) {
        const auto add = [&](const auto& more) { sizes.insert(sizes.end(), more.begin(), more.end()); };
        size == "all" ? add(all_sizes()) : add(std::vector<std::string>{size});
    }
    if (selection.sizes.empty()) sizes = selection.quick ? quick_sizes : usual_sizes;
    std::vector<std::string> kinds = selection.routines;
    if (kinds.empty()) kinds = selection.quick ? std::vector<std::string>{"cd"} : usual_kinds;
    std::vector<peers::FftCase> cases;
    for (const std::string& kind : kinds)
        for (const std::string& size : sizes)
            if (const auto what = peers::fft_case(kind, size)) cases.push_back(*what);
    return cases;
}

Planned::Planned(const peers::FftCase& what, const std::vector<peers::Library>& libraries) : problem(what)
{
    for (const peers::Library& library : libraries) {
        if (!library.transform) continue;
        const double start = peers::now(peers::Clock::processor);
        auto transform = library.transform(what, problem.in(), problem.out());
        const double seconds = peers::now(peers::Clock::processor) - start;
        if (transform != nullptr) plans.push_back({library.name, library.kind, std::move(transform), seconds});
    }
}

std::vector<Case> fft_cases(const Selection& selection)
{
    std::vector<Case> cases;
    for (const peers::FftCase& what : fft_selection(selection)) {
        const bool curve = what.lengths.size() == 1 && what.batch == 1;
        cases.push_back({what.kind(), "", what.size(), curve ? static_cast<double>(what.points()) : 0,
                         [what](const std::vector<peers::Library>& libraries) {
                             const auto planned = std::make_shared<Planned>(what, libraries);
                             Contest contest{{}, what.work(), {}, planned, false};
                             for (const Planned::Plan& plan : planned->plans)
                                 contest.contenders.push_back({plan.name, plan.kind,
                                                               [t = plan.transform.get()](long calls) {
                                                                   for (; calls > 0; --calls) t->run();
                                                               },
                                                               planned->problem.check(*plan.transform)});
                             planned->problem.settle();
                             return contest;
                         }});
    }
    return cases;
}

} // namespace ork::tool::bench
