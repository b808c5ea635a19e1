// SPDX-License-Identifier: MIT
// LAPACK of any order through the public routines, against the LAPACK of the peers.
#include "bench/family.h"
#include "peers/factor.h"

#include <dlfcn.h>

namespace ork::tool::bench {
namespace {

constexpr int orders[] = {32, 48, 64, 100, 150, 200, 300, 500, 1000, 2000};
constexpr int quick_orders[] = {64, 300};

// ork has its own names for the routines.
std::vector<peers::Library> with_lapack(std::vector<peers::Library> libraries)
{
    for (peers::Library& library : libraries)
        if (library.kind == peers::Kind::subject)
            library.find = [](const char* symbol) {
                const std::string routine(symbol, std::string(symbol).size() - 1); // dgetrf_
                return dlsym(RTLD_DEFAULT, ("ork_lapack_lp64_" + routine).c_str());
            };
    return libraries;
}

} // namespace

std::vector<Case> factor_cases(const Selection& selection)
{
    std::vector<std::string> routines = selection.routines;
    if (routines.empty())
        for (const std::string& stem : peers::factor_stems()) routines.push_back("d" + stem);
    std::vector<int> sizes;
    if (!selection.sizes.empty())
        for (const Shape& s : shapes_of(selection.sizes)) sizes.insert(sizes.end(), s.square() ? 1 : 0, s.n);
    else if (selection.quick)
        sizes.assign(std::begin(quick_orders), std::end(quick_orders));
    else
        sizes.assign(std::begin(orders), std::end(orders));

    std::vector<Case> cases;
    for (const std::string& routine : routines)
        for (const int n : sizes) {
            if (peers::make_factor({routine, 1}) == nullptr) continue;
            cases.push_back(
                {routine, "", std::to_string(n), static_cast<double>(n), [routine, n](const auto& libraries) {
                     return contest(peers::make_factor({routine, n}), with_lapack(libraries));
                 }});
        }
    return cases;
}

} // namespace ork::tool::bench
