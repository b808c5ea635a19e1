// SPDX-License-Identifier: MIT
// Small matrices factored one by one: the kernels against LAPACK of the peers and Eigen's decompositions.
#include "bench/family.h"
#include "peers/lapack.h"

namespace ork::tool::bench {
namespace {

// The same libraries where their LAPACK is found, Eigen twice.
std::vector<peers::Library> with_lapack(const std::vector<peers::Library>& libraries, int order)
{
    std::vector<peers::Library> result;
    for (peers::Library library : libraries) {
        if (library.kind == peers::Kind::subject)
            library.find = [](const char* symbol) { return peers::lapack_kernel(std::string(symbol) + "small"); };
        if (library.name == "Eigen") {
            library.find = [](const char* symbol) { return peers::eigen_lapack_symbol(symbol, 0); };
            result.push_back(library);
            library.name = "Eigen-fixed";
            library.find = [order](const char* symbol) { return peers::eigen_lapack_symbol(symbol, order); };
        }
        result.push_back(library);
    }
    return result;
}

} // namespace

std::vector<Case> lapack_cases(const Selection& selection)
{
    std::vector<Shape> shapes = shapes_of(selection.sizes);
    if (selection.sizes.empty())
        for (const int n : selection.quick ? std::vector<int>{2, 4, 8, 16}
                                           : std::vector<int>{2, 3, 4, 5, 6, 7, 8, 10, 12, 16, 24, 32, 48, 64})
            shapes.push_back({n, n, n});
    const auto& routines =
        selection.routines.empty() ? std::vector<std::string>{"dgetrf", "dpotrf", "dgeqrf"} : selection.routines;
    std::vector<Case> cases;
    for (const auto& routine : routines)
        for (const Shape& shape : shapes) {
            const peers::LapackCase c{routine, shape.m, shape.n};
            if (peers::make_lapack({routine, 1, 1}) == nullptr || (!shape.square() && routine.ends_with("potrf")))
                continue;
            cases.push_back({routine, "", shape.label(), shape.square() ? static_cast<double>(shape.n) : 0.0,
                             [c](const auto& libraries) {
                                 return contest(peers::make_lapack(c), with_lapack(libraries, c.m == c.n ? c.n : -1));
                             }});
        }
    return cases;
}

} // namespace ork::tool::bench
