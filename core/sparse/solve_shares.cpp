// SPDX-License-Identifier: MIT
// Threads take the chunks of a plan in their order, from one counter, and wait for those of former stages: which
// running threads have taken before. So one thread alone gets through as well.
#include <sched.h>
#include <x86intrin.h>

#include <algorithm>
#include <atomic>

#include "sparse/solve_plan.h"

namespace ork::sparse {
namespace {

struct Progress {
    alignas(64) std::atomic<std::int64_t> next = 0;
    alignas(64) std::atomic<std::int64_t> done = 0;

    // Of all chunks before the stage: until then none of the stage itself is done.
    void wait_for(std::int64_t chunks) const
    {
        for (int turn = 0; done.load(std::memory_order_acquire) < chunks; ++turn)
            turn < 4096 ? _mm_pause() : static_cast<void>(sched_yield());
    }
};

} // namespace

int shares(const SolvePlan& plan) { return plan.threads > 1 ? std::min(plan.threads, threads::limit()) : 1; }

void run_shares(const SolvePlan& plan, Direction direction,
                void (*body)(void* context, std::int64_t first, std::int64_t last, int share), void* context)
{
    const int parts = shares(plan);
    const std::int64_t slices = plan.packed.slices;
    if (parts == 1) return body(context, 0, slices, 0);
    if (direction == Direction::free)
        return threads::run(parts,
                            [&](int part) { body(context, slices * part / parts, slices * (part + 1) / parts, part); });
    Progress progress;
    threads::run(parts, [&](int part) {
        for (std::int64_t c; (c = progress.next.fetch_add(1, std::memory_order_relaxed)) < plan.chunks;) {
            const std::int64_t chunk = direction == Direction::ascending ? c : plan.chunks - 1 - c;
            progress.wait_for(c / plan.threads * plan.threads);
            body(context, plan.chunk_begin[chunk], plan.chunk_begin[chunk + 1], part);
            progress.done.fetch_add(1, std::memory_order_release);
        }
    });
}

} // namespace ork::sparse
