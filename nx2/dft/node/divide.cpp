// SPDX-License-Identifier: MIT
// Loops over dimensions become passes and stages.
#include "dft/node/divide.h"
#include "dft/node/run.h"

namespace ork::dft {
namespace {

std::int64_t magnitude(std::int64_t a) { return a < 0 ? -a : a; }

// Bytes of numbers that passes may come back to: most of a core's own cache.
std::int64_t cached_bytes()
{
    const std::int64_t level2 = ork_serv_get_cache_size(2);
    return level2 > 0 ? level2 / 4 * 3 : 256 << 10;
}

// The loops around a pass over loop `self` of the first `size`: adjacent ones are joined, and the inner one is the
// closest that fills a group of vectors, or else the longest.
void set_loops(Pass& pass, const Loops& loops, int self, int size, bool from_input)
{
    Loops others{};
    for (int i = 0; i < size; ++i) {
        if (i == self) continue;
        const Loop next = loops.loop[i];
        Loop* last = others.size > 0 ? &others.loop[others.size - 1] : nullptr;
        if (last != nullptr && next.written == last->written * last->count &&
            (!from_input || next.read == last->read * last->count))
            last->count *= next.count;
        else
            others.push(next);
    }
    constexpr std::int64_t filled = 8;
    int inner = 0;
    for (int i = 0; i < others.size; ++i) {
        if (others.loop[i].count > others.loop[inner].count) inner = i;
        if (others.loop[i].count >= filled) break;
    }
    pass.inner = others.size > 0 ? others.loop[inner] : Loop{1, 0, 0};
    for (int i = 0; i < others.size; ++i)
        if (i != inner) pass.outer.push(others.loop[i]);
}

template <class R>
Pass& new_pass(StageList& list, const Loops& loops, const ork_dft_node& node, int self, int size, bool from_input)
{
    Pass& pass = list.new_pass();
    pass.plan = node.plan;
    pass.batched = node.batched, pass.engine = node.batched_engine;
    pass.read = loops.loop[self].read, pass.written = loops.loop[self].written;
    pass.from_input = from_input;
    set_loops(pass, loops, self, size, from_input);
    return pass;
}

template <class R>
std::size_t work_of(const Pass& pass, std::int64_t count)
{
    return work_bytes(plan_of<R>(pass.plan), count);
}

} // namespace

template <class R>
void divide_passes(const Loops& given, const ork_dft_node* const* nodes, StageList& list, bool from_input, bool scales)
{
    // Closest numbers first.
    Loops loops{};
    const ork_dft_node* dimension[most_loops];
    int transformed = 0;
    for (int i = 0; i < given.size; ++i) {
        int at = loops.size++;
        for (; at > 0 && magnitude(loops.loop[at - 1].written) > magnitude(given.loop[i].written); --at)
            loops.loop[at] = loops.loop[at - 1], dimension[at] = dimension[at - 1];
        loops.loop[at] = given.loop[i], dimension[at] = nodes[i];
        transformed += nodes[i] != nullptr;
    }
    int left = transformed; // dimensions still to be passed over

    // The loops whose numbers stay in cache.
    int cached = 0, cached_dimensions = 0;
    std::int64_t bytes = 2 * sizeof(R) * (list.head().placement == ORK_DFT_INPLACE ? 1 : 2);
    const std::int64_t limit = cached_bytes();
    while (cached < loops.size && loops.loop[cached].count <= limit / bytes) {
        bytes *= loops.loop[cached].count;
        cached_dimensions += dimension[cached] != nullptr;
        ++cached;
    }
    if (cached_dimensions > 1) {
        Stage& stage = list.new_record();
        stage.pass = list.next_pass();
        for (int i = 0; i < cached; ++i) {
            if (dimension[i] == nullptr) continue;
            Pass& pass = new_pass<R>(list, loops, *dimension[i], i, cached, from_input);
            pass.last = scales && --left == 0;
            const std::size_t work = work_of<R>(pass, pass.inner.count);
            if (work > stage.work) stage.work = work;
            from_input = false;
            ++stage.passes;
        }
        for (int i = cached; i < loops.size; ++i) stage.outer.push(loops.loop[i]);
        list.add(stage.outer.count(), run_blocks<R>, {reinterpret_cast<std::int64_t>(&stage)});
    } else {
        cached = 0;
    }

    for (int i = cached; i < loops.size; ++i) {
        if (dimension[i] == nullptr) continue;
        Stage& stage = list.new_record();
        Pass& pass = new_pass<R>(list, loops, *dimension[i], i, loops.size, from_input);
        pass.last = scales && --left == 0;
        from_input = false;
        stage.pass = &pass, stage.passes = 1;
        stage.outer = pass.outer;
        // A unit is worth the driver's while, and a multiple of the engine's group: then every division has the same
        // bits.
        constexpr std::int64_t worthwhile = 512; // numbers
        const std::int64_t group = ork::dft::group(plan_of<R>(pass.plan)), length = loops.loop[i].count;
        stage.block = (worthwhile / length + group) / group * group;
        if (pass.batched != nullptr) stage.block = (pass.batched->batch + group - 1) / group * group;
        stage.blocks = (pass.inner.count + stage.block - 1) / stage.block;
        stage.work = work_of<R>(pass, pass.inner.count);
        list.add(stage.outer.count() * stage.blocks, run_columns<R>, {reinterpret_cast<std::int64_t>(&stage)});
    }
}

template <class R>
void divide_passes(const Loops& loops, const ork_dft_node* const* dimension, StageList& list)
{
    divide_passes<R>(loops, dimension, list, true, true);
}

#define INSTANTIATE(R)                                                                                                 \
    template void divide_passes<R>(const Loops&, const ork_dft_node* const*, StageList&, bool, bool);                  \
    template void divide_passes<R>(const Loops&, const ork_dft_node* const*, StageList&);
INSTANTIATE(float)
INSTANTIATE(double)

} // namespace ork::dft
