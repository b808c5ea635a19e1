// SPDX-License-Identifier: MIT
// A self-test that needs nothing but the installed libraries: vectors and matrix products of every shape on this
// machine's code path against plain loops in long double, then the usual cases of every other family, each against the
// definition that `ork bench` proves it by.
#include <fmt/format.h>
#include <stdexcept>

#include "bench/family.h"
#include "commands.h"
#include "ork/ork.h"
#include "peers/libraries.h"
#include "peers/problem.h"
#include "terminal.h"

namespace ork::tool {
namespace {

struct Tally {
    int calls = 0, wrong = 0;
    std::string first; // the first wrong result
};

void count(Tally& tally, peers::Problem& problem, void* routine, const std::string& what)
{
    const std::string fault = problem.check(routine);
    ++tally.calls;
    if (fault.empty()) return;
    if (tally.wrong++ == 0) tally.first = what + ": " + fault;
}

// Every length up to four vectors of the widest unrolling and around larger ones, and increments of either sign where
// there are two vectors.
Tally check_level1(const std::string& name, void* routine, bool two_vectors)
{
    constexpr int increments[][2] = {{1, 1}, {2, 1}, {1, 3}, {-1, 1}, {-2, -3}};
    Tally tally;
    for (const auto& [incx, incy] : increments) {
        if (incx < 0 && !two_vectors) continue;
        for (int n = 0; n <= 1027; n += n < 131 ? 1 : 128)
            count(tally, *peers::make_level1({name, n, incx, incy}), routine,
                  fmt::format("n = {}, increments {} and {}", n, incx, incy));
    }
    return tally;
}

Tally check_gemm(char precision, void* routine)
{
    Tally tally;
    const auto shape = [&](const char* trans, int m, int n, int k, double alpha, double beta) {
        count(tally, *peers::make_gemm({precision, trans[0], trans[1], m, n, k, alpha, beta}), routine,
              fmt::format("{} {} x {} x {}, alpha {}, beta {}", trans, m, n, k, alpha, beta));
    };
    const bool complex = precision == 'c' || precision == 'z';
    for (const char* trans : {"NN", "NT", "TN", "TT", "CN", "NC"}) {
        if (!complex && (trans[0] == 'C' || trans[1] == 'C')) continue;
        for (const double beta : {0.0, 1.0, -0.75}) {
            for (const int m : {1, 2, 3, 4, 7, 10, 17, 33})
                for (const int n : {1, 2, 5, 8, 9, 16, 23})
                    for (const int k : {1, 3, 4, 10, 31}) shape(trans, m, n, k, 1.25, beta);
            shape(trans, 130, 70, 300, 1, beta); // depth in two blocks
            shape(trans, 400, 33, 513, -1, beta);
            shape(trans, 3, 5010, 20, 1, beta);
        }
    }
    return tally;
}

Tally check_family(const bench::Family& family, const peers::Library& ork)
{
    Tally tally;
    bench::Selection few;
    few.quick = true;
    for (const bench::Case& c : family.cases(few))
        for (const bench::Contender& contender : c.prepare({ork}).contenders) {
            if (contender.kind != peers::Kind::subject) continue;
            ++tally.calls;
            if (!contender.fault.empty() && tally.wrong++ == 0) tally.first = c.label() + ": " + contender.fault;
        }
    return tally;
}

int run(bool verbose)
{
    if (ork_initialize() != ORK_OK) throw std::runtime_error(ork_error_text());
    const peers::Library ork = peers::core_library();
    std::vector<std::string> gemms = {"sgemm", "dgemm", "cgemm", "zgemm"};
    const auto& level1 = peers::level1_routines();
    std::vector<bench::Family> families; // the two above aside, and what measures threads
    for (const bench::Family& family : bench::families())
        if (family.name != std::string("gemm") && family.name != std::string("level1") &&
            family.name != std::string("threads"))
            families.push_back(family);
    Progress progress(level1.size() + gemms.size() + families.size());
    size_t done = 0;
    const auto show = [&](const std::string& name, const Tally& tally) {
        progress.clear();
        if (tally.wrong > 0)
            fmt::print("{:<8} {} of {} calls wrong; {}\n", name, tally.wrong, tally.calls, tally.first);
        else if (verbose)
            fmt::print("{:<8} {} calls right\n", name, tally.calls);
        std::fflush(stdout);
    };
    Tally total;
    size_t routines = 0;
    const auto report = [&](const std::string& name, const auto& check) {
        progress.show(done++, name);
        void* routine = ork.find((name + "_").c_str());
        if (routine == nullptr) return; // this version doesn't offer it
        const Tally tally = check(routine);
        ++routines;
        total.calls += tally.calls;
        total.wrong += tally.wrong;
        show(name, tally);
    };
    for (const std::string& name : level1)
        report(name, [&](void* routine) {
            return check_level1(name, routine, peers::make_level1({name, 1, 1, 1})->two_vectors());
        });
    for (const std::string& name : gemms) report(name, [&](void* routine) { return check_gemm(name[0], routine); });
    Tally cases;
    for (const bench::Family& family : families) {
        progress.show(done++, family.name);
        const Tally tally = check_family(family, ork);
        cases.calls += tally.calls;
        cases.wrong += tally.wrong;
        show(family.name, tally);
    }
    progress.clear();
    if (routines == 0) throw std::runtime_error("check: the core has none of the routines to check");
    fmt::print("{} routines, {} calls compared with plain loops in long double: {}\n", routines, total.calls,
               total.wrong == 0 ? "all right" : fmt::format("{} wrong", total.wrong));
    fmt::print("{} families, {} cases compared with their definitions: {}\n", families.size(), cases.calls,
               cases.wrong == 0 ? "all right" : fmt::format("{} wrong", cases.wrong));
    return total.wrong + cases.wrong == 0 ? 0 : 1;
}

} // namespace

void add_check(CLI::App& app, int& status)
{
    auto verbose = std::make_shared<bool>(false);
    CLI::App* command = app.add_subcommand("check", "Test every family on this machine against plain computations");
    command->add_flag("-v,--verbose", *verbose, "Show every routine");
    command->callback([verbose, &status] { status = run(*verbose); });
}

} // namespace ork::tool
