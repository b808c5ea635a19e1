// SPDX-License-Identifier: MIT
#include "bench/family.h"

namespace ork::tool::bench {

const std::vector<Family>& families()
{
    static const std::vector<Family> all = {
        {"gemm", "general matrix product, square and skinny", "GF/s", gemm_cases},
        {"level1", "vector routines in all precisions", "GB/s", level1_cases},
        {"threads", "two threads against one, eight callers at once", "GF/s", thread_cases},
    };
    return all;
}

Contest contest(std::unique_ptr<peers::Problem> problem, const std::vector<peers::Library>& libraries)
{
    const std::shared_ptr<peers::Problem> shared = std::move(problem);
    Contest result{{}, shared->work(), shared->limits(), shared, false};
    for (const peers::Library& library : libraries) {
        void* routine = library.find(shared->symbol().c_str());
        if (routine == nullptr) continue;
        result.contenders.push_back({library.name, library.kind,
                                     [p = shared.get(), routine](long calls) { p->run(routine, calls); },
                                     shared->check(routine)});
    }
    return result;
}

} // namespace ork::tool::bench
