// SPDX-License-Identifier: MIT
// Ten thousand matrices at a time: packs against one after the other, by the kernels for one matrix, Eigen and plain
// loops.
#include <algorithm>
#include <memory>
#include <utility>

#include "bench/family.h"
#include "peers/compact.h"
#include "peers/lapack.h"

namespace ork::tool::bench {
namespace {

constexpr int matrices = 10000;

std::vector<peers::Library> ways(const std::vector<peers::Library>& libraries, const peers::CompactCase& c)
{
    using Call = peers::CompactWay::Call;
    std::vector<peers::Library> result;
    const auto add = [&](const char* name, peers::Kind kind, Call call, void* routine) {
        if (call != Call::packs && routine == nullptr) return;
        peers::Library library{name, "", kind, {}, {}};
        library.find = [way = std::make_shared<peers::CompactWay>(peers::CompactWay{call, routine})](const char*) {
            return static_cast<void*>(way.get());
        };
        result.push_back(library);
    };
    add("ork", peers::Kind::subject, Call::packs, nullptr);
    add("one-by-one", peers::Kind::peer, Call::plain, peers::lapack_kernel(c.routine + "_small"));
    add("plain", peers::Kind::peer, Call::plain, peers::plain_factorisation(c.routine));
    const bool lu = c.routine.ends_with("getrfnp");
    const std::string symbol = lu ? c.routine.substr(0, 1) + "getrf_" : c.routine + "_";
    for (const peers::Library& library : libraries)
        if (library.name == "Eigen") {
            const Call call = lu ? Call::exchanging : Call::plain;
            add("Eigen-fixed", peers::Kind::peer, call, peers::eigen_lapack_symbol(symbol, c.order));
            add("Eigen", peers::Kind::peer, call, peers::eigen_lapack_symbol(symbol, 0));
        }
    return result;
}

} // namespace

std::vector<Case> compact_cases(const Selection& selection)
{
    std::vector<Shape> shapes = shapes_of(selection.sizes);
    if (selection.sizes.empty())
        for (const int n : selection.quick
                               ? std::vector<int>{4, 16}
                               : std::vector<int>{2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 24, 32})
            shapes.push_back({n, n, n});
    const auto& routines =
        selection.routines.empty() ? std::vector<std::string>{"dgetrfnp", "dpotrf", "dgeqrf"} : selection.routines;
    const auto& known = peers::compact_routines();
    std::vector<Case> cases;
    for (const auto& routine : routines)
        for (const Shape& shape : shapes) {
            if (std::find(known.begin(), known.end(), routine) == known.end() || !shape.square()) continue;
            const peers::CompactCase c{routine, shape.n, matrices};
            cases.push_back(
                {routine, "10000 matrices", shape.label(), static_cast<double>(shape.n), [c](const auto& libraries) {
                     const auto contenders = ways(libraries, c); // their ways live as long as the contest
                     Contest result = contest(peers::make_compact(c), contenders);
                     result.operands = std::make_shared<std::pair<std::shared_ptr<void>, std::vector<peers::Library>>>(
                         result.operands, contenders);
                     return result;
                 }});
        }
    return cases;
}

} // namespace ork::tool::bench
