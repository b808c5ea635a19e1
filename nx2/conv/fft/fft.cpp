// SPDX-License-Identifier: MIT
#include "conv/fft/fft.h"

#include <atomic>
#include <new>

#include "conv/fft/parallel.h"
#include "conv/fft/tile.h"
#include "frame/core_imports.h"
#include "ork/conv.h"

namespace ork::conv {

struct KeptOperand {
    Int tiles;  // whose transforms follow one another; 0: nothing is kept
    char* data; // of the filter when x is the filter, else of the signal's tiles
};

namespace {

// Transforms of a signal are kept up to so many times the room of its elements, a few tiles in any case.
constexpr Int kept_times = 8, kept_anyway = Int{1} << 20;
// Numbers of a transform from which on a tile is worth a part of its own.
constexpr Int worth_a_part = 32768;

template <class W>
W scale_of(const Shape& shape)
{
    double points = 1;
    for (int k = 0; k < shape.rank; ++k) points *= static_cast<double>(shape.axis[k].n);
    return static_cast<W>(1 / points);
}

template <class W>
bool transform_filter(const TransformPlan& plan, const Problem& problem, void* to)
{
    const Shape& shape = plan.shape;
    return transform_block(plan, filter_of(problem, shape), filter_block(shape), scale_of<W>(shape),
                           static_cast<W*>(to));
}

// Parts of equal numbers of tiles, by sizes alone.
template <class Run>
bool for_tiles(const TransformPlan& plan, Run run)
{
    const Int tiles = plan.shape.tiles(), each = worth_a_part / plan.pairs + 1;
    std::atomic<bool> good = true;
    parallel((tiles + each - 1) / each, [&](Int part) {
        const Int first = part * each;
        if (!run(first, first + each < tiles ? first + each : tiles)) good.store(false, std::memory_order_relaxed);
    });
    return good.load(std::memory_order_relaxed);
}

template <class W>
bool run(const TransformPlan& plan, const Problem& problem, const KeptOperand* kept)
{
    const Shape& shape = plan.shape;
    const bool has_filter = kept != nullptr && shape.x_is_filter && kept->tiles > 0;
    const bool has_signal = kept != nullptr && !shape.x_is_filter && kept->tiles > 0;
    const Memory own(has_filter ? 64 : plan.bytes());
    if (own.data() == nullptr || (!has_filter && !transform_filter<W>(plan, problem, own.data()))) return false;
    const auto* filter = reinterpret_cast<const W*>(has_filter ? kept->data : own.data());
    const auto* transforms = has_signal ? reinterpret_cast<const W*>(kept->data) : nullptr;
    const Array signal = signal_of(problem, shape), result = result_of(problem, shape);
    return for_tiles(plan, [&](Int first, Int end) {
        const Memory work(plan.bytes());
        if (work.data() == nullptr) return false;
        auto* tile = reinterpret_cast<W*>(work.data());
        for (Int t = first; t < end; ++t) {
            const Signal<W> piece{signal, signal_block(shape, t),
                                  transforms == nullptr ? nullptr : transforms + t * 2 * plan.pairs};
            if (!convolve_tile(plan, piece, filter, result, output_block(shape, t), tile)) return false;
        }
        return true;
    });
}

template <class W>
bool transform_x(const TransformPlan& plan, const Problem& problem, KeptOperand& kept)
{
    if (plan.shape.x_is_filter) return transform_filter<W>(plan, problem, kept.data);
    const Array signal = signal_of(problem, plan.shape);
    auto* data = reinterpret_cast<W*>(kept.data);
    return for_tiles(plan, [&](Int first, Int end) {
        for (Int t = first; t < end; ++t)
            if (!transform_block(plan, signal, signal_block(plan.shape, t), W{1}, data + t * 2 * plan.pairs))
                return false;
        return true;
    });
}

Int tiles_to_keep(const TransformPlan& plan)
{
    if (plan.shape.x_is_filter) return 1;
    const Int tiles = plan.shape.tiles();
    Int pairs = 1;
    for (int k = 0; k < plan.shape.rank; ++k) pairs = times(pairs, plan.shape.axis[k].signal);
    const Int bytes = times(tiles, plan.bytes()), room = times(pairs, plan.shape.is_double ? 16 : 8);
    return bytes <= kept_anyway || bytes / kept_times <= room ? tiles : 0;
}

} // namespace

int keep_x(const TransformPlan& plan, const Problem& problem, KeptOperand** made)
{
    void* memory = ork_serv_malloc(sizeof(KeptOperand), 64);
    if (memory == nullptr) return ORK_CONV_NO_WORK_MEMORY;
    auto* kept = new (memory) KeptOperand{tiles_to_keep(plan), nullptr};
    if (kept->tiles > 0) {
        const Int bytes = times(kept->tiles, plan.bytes());
        kept->data = static_cast<char*>(ork_serv_malloc(static_cast<std::size_t>(bytes), 64));
        if (kept->data == nullptr || !(plan.shape.is_double ? transform_x<double>(plan, problem, *kept)
                                                            : transform_x<float>(plan, problem, *kept))) {
            free_kept(kept);
            return ORK_CONV_NO_WORK_MEMORY;
        }
    }
    *made = kept;
    return ORK_CONV_OK;
}

void free_kept(KeptOperand* kept)
{
    if (kept == nullptr) return;
    if (kept->data != nullptr) ork_serv_free(kept->data);
    ork_serv_free(kept);
}

int convolve(const TransformPlan& plan, const Problem& problem, const KeptOperand* kept)
{
    const bool done = plan.shape.is_double ? run<double>(plan, problem, kept) : run<float>(plan, problem, kept);
    return done ? ORK_CONV_OK : ORK_CONV_NO_WORK_MEMORY;
}

} // namespace ork::conv
