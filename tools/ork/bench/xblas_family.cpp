// SPDX-License-Identifier: MIT
// Matrix-vector products in extra precision: the kernels against loops of one's own.
#include <algorithm>
#include <fmt/format.h>

#include "bench/family.h"
#include "peers/xblas.h"

namespace ork::tool::bench {
namespace {

// The kernel and the loops; no other library has these routines. Peers are those with the same bits: long double has 42
// of them less, __float128 a few more.
std::vector<peers::Library> contenders(const std::vector<peers::Library>& libraries, char letter)
{
    std::vector<peers::Library> result;
    for (peers::Library library : libraries)
        if (library.kind == peers::Kind::subject) {
            library.find = [](const char* symbol) { return peers::xblas_kernel(symbol); };
            result.push_back(library);
        }
    for (const std::string& loop : peers::xblas_loops())
        result.push_back({loop,
                          "a loop of this program",
                          loop == "long double" || loop == "__float128" ? peers::Kind::wide : peers::Kind::peer,
                          [loop, letter](const char* symbol) { return peers::xblas_loop(loop, symbol, letter); },
                          {}});
    return result;
}

} // namespace

std::vector<Case> xblas_cases(const Selection& selection)
{
    std::vector<std::pair<std::string, std::string>> variants; // routine, letters to run with
    for (const std::string& routine :
         selection.routines.empty() ? std::vector<std::string>{"dgemv_x", "sgemv_x", "zgemv_x", "dsymv_x", "dgbmv_x"}
                                    : selection.routines) {
        const bool triangle = routine.ends_with("symv_x") || routine.ends_with("hemv_x");
        if (!selection.trans.empty())
            for (const std::string& letters : selection.trans) variants.emplace_back(routine, letters.substr(0, 1));
        else
            variants.emplace_back(routine, triangle ? "U" : routine == "dgemv_x" ? "NT" : "N");
    }
    std::vector<Case> cases;
    for (const auto& [routine, letters] : variants) {
        const bool band = routine.ends_with("gbmv_x");
        auto shapes = shapes_of(selection.sizes);
        if (selection.sizes.empty())
            for (const int n : selection.quick ? std::vector<int>{16, 100, 500}
                                               : std::vector<int>{16, 32, 64, 100, 200, 500, 1000, 2000})
                shapes.push_back({n, band ? 10 : n, 0});
        for (const char letter : letters)
            for (const Shape& shape : shapes) {
                const peers::XblasCase c{routine, letter, shape.m, band ? std::min(shape.n, shape.m - 1) : shape.n};
                if (peers::make_xblas({routine, letter, 1, 1}) == nullptr ||
                    (c.m != c.n && (letter == 'U' || letter == 'L')))
                    continue;
                const std::string size = c.m == c.n ? fmt::format("{}", c.m) : fmt::format("{}x{}", c.m, c.n);
                cases.push_back(
                    {routine, std::string(1, letter), size, static_cast<double>(c.m), [c](const auto& libraries) {
                         return contest(peers::make_xblas(c), contenders(libraries, c.letter));
                     }});
            }
    }
    return cases;
}

} // namespace ork::tool::bench
