// SPDX-License-Identifier: MIT
#include <fmt/format.h>

#include "bench/family.h"

namespace ork::tool::bench {

const std::vector<Family>& families()
{
    static const std::vector<Family> all = {
        {"gemm", "general matrix product, square and skinny", "GF/s", gemm_cases},
        {"level1", "vector routines in all precisions", "GB/s", level1_cases},
        {"level2", "matrix-vector routines; --routine for precisions, bands and packed triangles", "GF/s",
         level2_cases},
        {"level3", "matrix-matrix routines beside gemm", "GF/s", level3_cases},
        {"threads", "two threads against one, eight callers at once", "GF/s", thread_cases},
    };
    return all;
}

std::string Shape::label() const
{
    if (square()) return fmt::format("{}", m);
    return k == 0 ? fmt::format("{}x{}", m, n) : fmt::format("{}x{}x{}", m, n, k);
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
