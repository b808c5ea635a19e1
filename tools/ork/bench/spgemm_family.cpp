// SPDX-License-Identifier: MIT
// Sparse times sparse: squares of matrices, both stages and the release of the result.
#include <cmath>
#include <fmt/format.h>
#include <stdexcept>

#include "bench/family.h"
#include "ork/ork.h"
#include "peers/spgemm.h"

namespace ork::tool::bench {
namespace {

const std::vector<std::string> usual_matrices = {"lap3d:20", "box3d:16",  "fem:800",   "pow:8000:16",
                                                 "lap3d:60", "lap3d:110", "fem:60000", "pow:100000:16"};
const std::vector<std::string> quick_matrices = {"lap3d:20", "pow:8000:16"};

struct Operands {
    peers::CsrMatrix a;
    std::vector<std::unique_ptr<peers::Spgemm>> products;
};

double multiplications(const peers::CsrMatrix& a)
{
    double sum = 0;
    for (const int j : a.col) sum += a.ptr[static_cast<size_t>(j) + 1] - a.ptr[static_cast<size_t>(j)];
    return sum;
}

std::vector<double> times(const peers::CsrMatrix& a, const std::vector<double>& x, bool absolute)
{
    std::vector<double> y(x.size());
    for (size_t i = 0; i < y.size(); ++i)
        for (int k = a.ptr[i]; k < a.ptr[i + 1]; ++k) {
            const double term = a.val[static_cast<size_t>(k)] * x[static_cast<size_t>(a.col[static_cast<size_t>(k)])];
            y[i] += absolute ? std::fabs(term) : term;
        }
    return y;
}

// C x is A (A x), within what rounding allows.
std::string fault(const peers::CsrMatrix& a, peers::Spgemm& product)
{
    std::vector<double> x(static_cast<size_t>(a.columns)), ones(x.size(), 1);
    peers::Random random;
    for (double& v : x) v = random.next();
    const auto want = times(a, times(a, x, false), false), got = product.times(x),
               bound = times(a, times(a, ones, true), true);
    for (size_t i = 0; i < want.size(); ++i)
        if (!(std::fabs(got[i] - want[i]) <= 1e-12 * bound[i])) return peers::mismatch(i, got[i], want[i]);
    return {};
}

peers::Entrant entrant(peers::Spgemm* product)
{
    return [product](long calls) {
        for (; calls > 0; --calls) product->run();
    };
}

Contest prepare(const std::string& name, const std::vector<peers::Library>& libraries)
{
    const auto operands = std::make_shared<Operands>();
    operands->a = peers::generate(name);
    Contest contest;
    contest.work = 2 * multiplications(operands->a);
    contest.operands = operands;
    for (const peers::Library& library : libraries) {
        auto product = peers::make_spgemm(library, operands->a);
        if (product == nullptr) continue;
        Contender contender{library.name, library.kind, entrant(product.get()), fault(operands->a, *product)};
        contender.note = product->storage();
        contest.contenders.push_back(std::move(contender));
        if (library.kind == peers::Kind::subject)
            contest.two_threads = [p = product.get()](long calls) {
                const int before = ork_set_num_threads_local(2);
                for (; calls > 0; --calls) p->run();
                ork_set_num_threads_local(before);
            };
        operands->products.push_back(std::move(product));
    }
    return contest;
}

} // namespace

std::vector<Case> spgemm_cases(const Selection& selection)
{
    std::vector<Case> cases;
    for (const std::string& name : !selection.sizes.empty() ? selection.sizes
                                   : selection.quick        ? quick_matrices
                                                            : usual_matrices)
        if (peers::is_generated(name))
            cases.push_back(
                {"dspmm", "A A", name, 0, [name](const auto& libraries) { return prepare(name, libraries); }});
    return cases;
}

} // namespace ork::tool::bench
