// SPDX-License-Identifier: MIT
#include "dft/threads.h"

#include <algorithm>
#include <atomic>
#include <bit>

#include "export.h"
#include "threads/limits.h"
#include "threads/pool.h"

namespace ork::dft {
namespace {

// Units of a stage take about the same time, but threads don't: with a few parts for each the faster ones take more.
constexpr int parts_per_thread = 4;

struct Share {
    std::int64_t from, to;
};
Share share(std::int64_t units, int parts, int part)
{
    const std::int64_t each = units / parts, more = units % parts;
    const std::int64_t from = part * each + std::min<std::int64_t>(part, more);
    return {from, from + each + (part < more ? 1 : 0)};
}

// The largest status of all parts, so that the same failures give the same status.
std::int32_t run(const ork_dft_node* node, const ork_dft_call& call, const ork_dft_stage& stage, int parts)
{
    std::atomic<std::int32_t> status = ORK_DFT_OK;
    threads::run(parts, [&](int part) {
        const Share units = share(stage.units, parts, part);
        const std::int32_t own = stage.run(node, &call, &stage, units.from, units.to);
        std::int32_t known = status.load(std::memory_order_relaxed);
        while (own > known && !status.compare_exchange_weak(known, own, std::memory_order_relaxed)) {
        }
    });
    return status.load(std::memory_order_relaxed);
}

std::int64_t most_units(const ork_dft_node& node, Direction direction)
{
    std::int64_t most = 0;
    for (int i = 0; i < node.stages[direction]; ++i) most = std::max(most, node.stage[direction][i].units);
    return most;
}

std::int32_t alone(ork_dft_node* node, Direction direction, void* const* arrays)
{
    return (direction == forward ? node->forward : node->backward)(node, arrays);
}

} // namespace

int useful_threads(const Parameters& p, const ork_dft_node& node)
{
    const std::int64_t units = std::min(most_units(node, forward), most_units(node, backward));
    const auto n = static_cast<std::uint64_t>(numbers(p, most_numbers));
    const double operations =
        (p.real() ? 2.5 : 5) * static_cast<double>(n) * std::bit_width(n) * static_cast<double>(p.transforms);
    const std::int64_t limit = p.thread_limit > 0 ? p.thread_limit : threads::most_threads;
    const auto allowed = static_cast<double>(std::max<std::int64_t>(std::min(limit, units), 1));
    const bool staged = node.stages[forward] > 1;
    const double each = staged ? staged_operations_per_thread : operations_per_thread;
    return static_cast<int>(std::clamp(operations / each, 1.0, allowed));
}

std::int32_t compute(ork_dft_node* node, Direction direction, void* const* arrays, int threads)
{
    const int limit = threads::limit();
    if (std::min(limit, threads) <= 1) return alone(node, direction, arrays);
    void* shared = nullptr;
    if (node->shared_bytes > 0) {
        shared = ork_dft_ufxMalloc(node->shared_bytes);
        if (shared == nullptr) return alone(node, direction, arrays);
    }
    // A part each when there may be more threads than are useful: the pool knows no smaller limit than parts.
    const int parts = threads < limit ? threads : limit * parts_per_thread;
    const ork_dft_call call = {arrays, shared, direction};
    std::int32_t status = ORK_DFT_OK;
    for (int i = 0; i < node->stages[direction] && status == ORK_DFT_OK; ++i) {
        const ork_dft_stage& stage = node->stage[direction][i];
        status = run(node, call, stage, static_cast<int>(std::min<std::int64_t>(parts, stage.units)));
    }
    if (shared != nullptr) ork_dft_ufxFree(shared);
    return status;
}

} // namespace ork::dft

using namespace ork::dft;

ORK_EXPORT int32_t ork_dft_compute_forward_par(ork_dft_node* node, void* const* arrays)
{
    return compute(node, forward, arrays, node->threads);
}

ORK_EXPORT int32_t ork_dft_compute_backward_par(ork_dft_node* node, void* const* arrays)
{
    return compute(node, backward, arrays, node->threads);
}
