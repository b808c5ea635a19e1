// SPDX-License-Identifier: MIT
// Problems of the peers library as Google benchmarks: "library/name", with the rate as a counter. A wrong result is an
// error and not a time.
#pragma once

#include <benchmark/benchmark.h>

#include <functional>
#include <iostream>

#include "ork/ork.h"
#include "peers/libraries.h"
#include "peers/problem.h"

namespace ork::bench {

inline std::vector<peers::Library> all_libraries()
{
    std::vector<std::string> notes;
    std::vector<peers::Library> libraries = peers::find_peers(notes);
    libraries.insert(libraries.begin(), peers::core_library());
    for (const peers::Library& library : libraries) std::cerr << library.name << ": " << library.detail << '\n';
    for (const std::string& note : notes) std::cerr << note << '\n';
    ork_set_num_threads(1);
    return libraries;
}

inline void add(const std::vector<peers::Library>& libraries, const std::string& name, const std::string& unit,
                const std::function<std::unique_ptr<peers::Problem>()>& make)
{
    for (const peers::Library& library : libraries) {
        const auto run = [library, unit, make](benchmark::State& state) {
            const auto problem = make();
            void* routine = library.find(problem->symbol().c_str());
            if (routine == nullptr) return state.SkipWithError("no such routine");
            if (const std::string fault = problem->check(routine); !fault.empty())
                return state.SkipWithError(fault.c_str());
            while (state.KeepRunningBatch(8)) problem->run(routine, 8);
            state.counters[unit + "/s"] = benchmark::Counter(problem->work() * static_cast<double>(state.iterations()),
                                                             benchmark::Counter::kIsRate);
        };
        benchmark::RegisterBenchmark((library.name + "/" + name).c_str(), run);
    }
}

inline int run(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

} // namespace ork::bench
