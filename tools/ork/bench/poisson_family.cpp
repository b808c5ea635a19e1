// SPDX-License-Identifier: MIT
// Poisson's equation on squares and cubes: ork's solver against the same method on FFTW's sine transforms.
#include <fmt/format.h>

#include "bench/family.h"
#include "ork/ork.h"
#include "peers/poisson.h"

namespace ork::tool::bench {
namespace {

const std::vector<std::string> usual_sizes = {"31x31",     "100x100",  "127x127",  "511x511",    "1023x1023",
                                              "2047x2047", "31x31x31", "63x63x63", "127x127x127"};
const std::vector<std::string> quick_sizes = {"100x100", "127x127", "31x31x31"};

struct Solvers {
    std::vector<double> right_side;
    std::vector<std::unique_ptr<peers::PoissonSolver>> all;
};

Contest prepare(const peers::PoissonCase& c, const std::vector<peers::Library>& libraries)
{
    const auto solvers = std::make_shared<Solvers>();
    peers::Random random;
    for (size_t i = 0; i < c.points(); ++i) solvers->right_side.push_back(random.next());
    Contest result{{}, 1e3 * static_cast<double>(c.points()), {}, solvers, false};
    for (const peers::Library& library : libraries) {
        const bool subject = library.kind == peers::Kind::subject;
        // A solver remembers how many threads there were when it was described.
        const int before = ork_set_num_threads_local(2);
        auto solver = (subject ? peers::ork_poisson : peers::fftw_poisson)(library, c, solvers->right_side.data());
        ork_set_num_threads_local(before);
        if (solver == nullptr) continue;
        const auto run = [s = solver.get()](long calls) {
            for (; calls > 0; --calls) s->run();
        };
        result.contenders.push_back(
            {library.name, library.kind, run, peers::check(*solver, c, solvers->right_side.data())});
        if (subject)
            result.two_threads = [run](long calls) {
                const int one = ork_set_num_threads_local(2);
                run(calls);
                ork_set_num_threads_local(one);
            };
        solvers->all.push_back(std::move(solver));
    }
    return result;
}

} // namespace

std::vector<Case> poisson_cases(const Selection& selection)
{
    std::vector<Case> cases;
    const auto& sizes = !selection.sizes.empty() ? selection.sizes : selection.quick ? quick_sizes : usual_sizes;
    for (const std::string& size : sizes) {
        int n = 0, m = 0, l = 0, end = 0;
        peers::PoissonCase c{};
        if (std::sscanf(size.c_str(), "%dx%dx%d%n", &n, &m, &l, &end) == 3 && end == static_cast<int>(size.size()))
            c = {3, n};
        else if (l = n, std::sscanf(size.c_str(), "%dx%d%n", &n, &m, &end) == 2 && end == static_cast<int>(size.size()))
            c = {2, n}, l = n;
        if (c.n < 1 || m != n || l != n || c.n > 20000) continue;
        cases.push_back({fmt::format("{}d", c.dimensions), "", size, static_cast<double>(c.n),
                         [c](const auto& libraries) { return prepare(c, libraries); }});
    }
    return cases;
}

} // namespace ork::tool::bench
