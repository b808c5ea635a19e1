// SPDX-License-Identifier: MIT
// How fast is a Fourier transform, beside each library found here? One benchmark a library, kind and size, with
// 5 n log2 n (real: 2.5 n log2 n) as its flops:
//     fft_bench --benchmark_filter='/cd/1024$'
#include <benchmark/benchmark.h>

#include <iostream>
#include <memory>

#include "ork/ork.h"
#include "peers/libraries.h"

namespace {

using namespace ork::peers;

void run(benchmark::State& state, const TransformMaker& make, const FftCase& what)
{
    FftProblem problem(what);
    const auto transform = make(what, problem.in(), problem.out());
    if (transform == nullptr) return state.SkipWithError("no such transform");
    if (const std::string fault = problem.check(*transform); !fault.empty()) return state.SkipWithError(fault.c_str());
    problem.settle();
    for (auto _ : state) transform->run();
    state.counters["flops/s"] =
        benchmark::Counter(what.work() * static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}

} // namespace

int main(int argc, char** argv)
{
    std::vector<std::string> notes;
    std::vector<Library> libraries = find_transform_peers(notes);
    libraries.insert(libraries.begin(), core_library());
    for (const Library& library : libraries) std::cerr << library.name << ": " << library.detail << '\n';
    for (const std::string& note : notes) std::cerr << note << '\n';
    ork_set_num_threads(1);
    for (const Library& library : libraries)
        for (const char* kind : {"cd", "cs", "rd", "rs", "cdb", "cdi"})
            for (const char* size : {"8", "16", "60", "64", "100", "256", "1000", "1009", "1024", "4096", "65536",
                                     "1000000", "1048576", "512x512", "1024x1024", "100*1000"})
                if (library.transform)
                    benchmark::RegisterBenchmark((library.name + "/" + kind + "/" + size).c_str(), run,
                                                 library.transform, *fft_case(kind, size));
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
}
