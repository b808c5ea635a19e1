// SPDX-License-Identifier: MIT
// Sparse matrices: products with a vector and with several, triangular solves; with matrices that stay as they are, and
// through handles that store them anew.
#include <algorithm>
#include <filesystem>
#include <fmt/format.h>
#include <fstream>
#include <stdexcept>

#include "bench/family.h"
#include "matrix_market.h"
#include "ork/ork.h"

namespace ork::tool::bench {
namespace {

// In the second cache, and past all of them.
const std::vector<std::string> usual_matrices = {"lap2d:100",  "lap3d:20",  "box3d:16", "fem:800",   "pow:8000:16",
                                                 "lap2d:1200", "lap3d:110", "box3d:64", "fem:60000", "pow:500000:16"};
const std::vector<std::string> quick_matrices = {"lap2d:100", "lap3d:110"};
const std::vector<std::string> usual_routines = {"dmv", "smv", "dmv64", "dmm", "smm", "dsv", "ssv"};
const std::vector<std::string> quick_routines = {"dmv", "dsv"};
const std::vector<std::string> usual_handle_routines = {"dmv", "smv", "dmv64", "ddotmv", "dmm", "dsv", "dsymgs"};
const std::vector<std::string> all_letters = {"N",  "T",  "S",  "R1",  "R4", "R8", "R16",
                                              "C1", "C4", "C8", "C16", "L",  "U"};

bool is_file(const std::string& name)
{
    std::error_code error;
    return name.find('/') != std::string::npos || std::filesystem::is_regular_file(name, error);
}

peers::CsrMatrix matrix(const peers::SparseCase& what, const std::string& name)
{
    peers::CsrMatrix a = is_file(name) ? read_matrix_market(name) : peers::generate(name);
    using Routine = peers::SparseCase::Routine;
    if (a.rows != a.columns && (what.letter == 'S' || (what.routine != Routine::mv && what.routine != Routine::mm)))
        throw std::runtime_error(fmt::format("{}: {} rows and {} columns have no triangle", name, a.rows, a.columns));
    if (what.routine != Routine::symgs) return a;
    for (int i = 0; i < a.rows; ++i) {
        const auto end = a.col.begin() + a.ptr[static_cast<size_t>(i) + 1];
        const auto diagonal = std::lower_bound(a.col.begin() + a.ptr[static_cast<size_t>(i)], end, i);
        if (diagonal == end || *diagonal != i || a.val[static_cast<size_t>(diagonal - a.col.begin())] == 0)
            throw std::runtime_error(fmt::format("{}: row {} has no diagonal entry to divide by", name, i + 1));
    }
    return a;
}

// What the entrants refer to.
struct Operands {
    peers::SparseProblem problem;
    std::vector<std::unique_ptr<peers::SparseOperation>> operations;
};

// On two threads. A handle is analysed for the number of threads that there are, so it gets one of its own.
peers::Entrant on_two_threads(const peers::Library& library, Operands& operands, peers::SparseOperation* operation)
{
    if (operands.problem.operands().what.handle) {
        const int before = ork_set_num_threads_local(2);
        auto own = library.sparse(operands.problem.operands());
        ork_set_num_threads_local(before);
        operation = own.get();
        operands.operations.push_back(std::move(own));
    }
    return [operation](long calls) {
        const int before = ork_set_num_threads_local(2);
        for (; calls > 0; --calls) operation->run();
        ork_set_num_threads_local(before);
    };
}

peers::Entrant entrant(peers::SparseOperation* operation)
{
    return [operation](long calls) {
        for (; calls > 0; --calls) operation->run();
    };
}

Contest prepare(const peers::SparseCase& what, const std::string& name, const std::vector<peers::Library>& libraries)
{
    const peers::CsrMatrix a = matrix(what, name);
    Contest contest;
    const auto operands = std::make_shared<Operands>(Operands{{what, a}, {}});
    peers::SparseProblem& problem = operands->problem;
    contest.work = problem.flops();
    contest.bytes = problem.bytes();
    contest.limits = problem.read_limits();
    contest.operands = operands;
    for (const peers::Library& library : libraries) {
        if (!library.sparse) continue;
        std::unique_ptr<peers::SparseOperation> operation;
        try {
            operation = library.sparse(problem.operands());
        } catch (const std::exception& error) {
            contest.contenders.push_back({library.name, library.kind, {}, error.what()});
        }
        if (operation == nullptr) continue;
        Contender contender{library.name, library.kind, entrant(operation.get()), problem.check(*operation)};
        contender.note = operation->storage();
        contender.analysis = operation->analysis().seconds;
        contest.contenders.push_back(std::move(contender));
        operands->operations.push_back(std::move(operation));
        if (library.kind != peers::Kind::subject) continue;
        contest.two_threads = on_two_threads(library, *operands, operands->operations.back().get());
        if (what.routine != peers::SparseCase::Routine::mm) continue;
        std::vector<peers::SparseOperation*> singles;
        for (const peers::SparseOperands& one : problem.one_by_one())
            if (auto single = library.sparse(one)) {
                singles.push_back(single.get());
                operands->operations.push_back(std::move(single));
            }
        contest.one_by_one = [singles](long calls) {
            for (; calls > 0; --calls)
                for (peers::SparseOperation* single : singles) single->run();
        };
    }
    return contest;
}

std::vector<Case> cases_of(const Selection& selection, bool handles)
{
    const auto chosen = [&](const auto& asked, const auto& quick, const auto& usual) {
        return !asked.empty() ? asked : selection.quick ? quick : usual;
    };
    std::vector<Case> cases;
    for (const std::string& routine :
         chosen(selection.routines, quick_routines, handles ? usual_handle_routines : usual_routines))
        for (const std::string& letters : chosen(selection.trans, all_letters, all_letters)) {
            const auto what = peers::sparse_case(routine, letters, handles);
            if (!what) continue;
            for (const std::string& name : chosen(selection.sizes, quick_matrices, usual_matrices)) {
                if (!is_file(name) && !peers::is_generated(name)) continue;
                if (is_file(name) && !std::ifstream(name)) // rather now than among the results
                    throw std::runtime_error(name + ": can't be read");
                const bool mirrored = what->letter == 'S' || what->routine == peers::SparseCase::Routine::symgs;
                if (mirrored && name.starts_with("pow:")) continue; // not symmetric, nor with a diagonal
                const std::string shape = is_file(name) ? std::filesystem::path(name).filename().string() : name;
                cases.push_back({routine, letters, shape, 0, [what = *what, name](const auto& libraries) {
                                     return prepare(what, name, libraries);
                                 }});
            }
        }
    return cases;
}

} // namespace

std::vector<Case> sparse_cases(const Selection& selection) { return cases_of(selection, false); }

std::vector<Case> handle_cases(const Selection& selection) { return cases_of(selection, true); }

} // namespace ork::tool::bench
