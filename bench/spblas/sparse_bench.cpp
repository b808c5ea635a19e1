// SPDX-License-Identifier: MIT
// How fast is a product or a solve with a sparse matrix, beside each library found here? One benchmark a library,
// routine and matrix, each after a check of its result:
//     sparse_bench --benchmark_filter='/dmv/N/lap2d:100$'
#include <benchmark/benchmark.h>

#include <iostream>

#include "ork/ork.h"
#include "peers/libraries.h"

namespace {

using namespace ork::peers;

void run(benchmark::State& state, const SparseMaker& make, const SparseCase& what, const std::string& matrix)
{
    SparseProblem problem(what, generate(matrix));
    const auto operation = make(problem.operands());
    if (operation == nullptr) return state.SkipWithError("no such operation");
    if (const std::string fault = problem.check(*operation); !fault.empty()) return state.SkipWithError(fault.c_str());
    for (auto _ : state) operation->run();
    const auto calls = static_cast<double>(state.iterations());
    state.counters["flops/s"] = benchmark::Counter(problem.flops() * calls, benchmark::Counter::kIsRate);
    state.counters["bytes/s"] = benchmark::Counter(problem.bytes() * calls, benchmark::Counter::kIsRate);
}

} // namespace

int main(int argc, char** argv)
{
    std::vector<std::string> notes;
    std::vector<Library> libraries = find_sparse_peers(notes);
    libraries.insert(libraries.begin(), core_library());
    for (const Library& library : libraries) std::cerr << library.name << ": " << library.detail << '\n';
    for (const std::string& note : notes) std::cerr << note << '\n';
    ork_set_num_threads(1);
    for (const Library& library : libraries)
        for (const auto& [routine, letters] : {std::pair{"dmv", "N"},
                                               {"dmv", "T"},
                                               {"dmv", "S"},
                                               {"smv", "N"},
                                               {"dmm", "R8"},
                                               {"dmm", "C8"},
                                               {"dsv", "L"}})
            for (const char* matrix : {"lap2d:100", "box3d:16", "fem:800", "lap2d:1200", "box3d:64", "fem:60000"})
                if (library.sparse)
                    benchmark::RegisterBenchmark((library.name + '/' + routine + '/' + letters + '/' + matrix).c_str(),
                                                 run, library.sparse, *sparse_case(routine, letters), matrix);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
}
