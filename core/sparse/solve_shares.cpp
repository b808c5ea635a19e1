// SPDX-License-Identifier: MIT
// Threads take the chunks of a plan in their order, from one counter, each when all of former stages are done. So one
// thread alone gets through as well, and a thread may leave at any time.
#include <x86intrin.h>

#include <algorithm>
#include <atomic>

#include "sparse/solve_plan.h"

namespace ork::sparse {
namespace {

class Progress {
public:
    Progress(const SolvePlan& plan, int threads) : chunks_(plan.chunks), stage_(plan.threads), active_(threads) {}

    // The next chunk; -1 when there is none, or none for this thread.
    std::int64_t take()
    {
        for (;;) {
            std::int64_t chunk = next_.load(std::memory_order_relaxed);
            if (chunk >= chunks_) return -1;
            if (!wait_for(chunk / stage_ * stage_)) return -1;
            if (next_.compare_exchange_strong(chunk, chunk + 1, std::memory_order_relaxed)) return chunk;
        }
    }
    void finish() { done_.fetch_add(1, std::memory_order_release); }

private:
    // Chunks of a stage begin when all before it are done, so as many being done means that it is these. A thread that
    // waits for long, because another one has lost its processor, leaves: else it would wait at every stage to come.
    // The last one has nobody to wait for.
    bool wait_for(std::int64_t chunks)
    {
        constexpr int patience = 2000; // some 50 microseconds
        for (int turn = 0; done_.load(std::memory_order_acquire) < chunks; ++turn) {
            _mm_pause();
            int active = active_.load(std::memory_order_relaxed);
            if (turn >= patience && active > 1 && active_.compare_exchange_strong(active, active - 1)) return false;
        }
        return true;
    }

    const std::int64_t chunks_, stage_;
    alignas(64) std::atomic<std::int64_t> next_ = 0;
    alignas(64) std::atomic<std::int64_t> done_ = 0;
    alignas(64) std::atomic<int> active_; // threads that have not left; some may not have begun
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
    Progress progress(plan, parts);
    threads::run(parts, [&](int part) {
        for (std::int64_t c; (c = progress.take()) >= 0; progress.finish()) {
            const std::int64_t chunk = direction == Direction::ascending ? c : plan.chunks - 1 - c;
            body(context, plan.chunk_begin[chunk], plan.chunk_begin[chunk + 1], part);
        }
    });
}

} // namespace ork::sparse
