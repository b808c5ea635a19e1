// SPDX-License-Identifier: MIT
// n = r m: columns by one pass, which turns them into rows, then rows. Everything stays in the caches near the core.
#include "dft/engine/plan_data.h"

namespace ork::dft {

// Cells of scratch that the passes over rows go through before they come back: enough rows for whole lines of results.
constexpr std::int64_t cells_at_once = 2048;

template <class R>
static std::int64_t groups(const Plan<R>& plan)
{
    return (plan.turn_radix + lanes<R> - 1) / lanes<R>;
}

template <class R>
void build_turn(Plan<R>& plan, const Recipe& recipe, Arena& arena, const RootTable& roots)
{
    const int r = recipe.radices[0][0];
    const std::int64_t m = plan.n / r, vectors = (m + lanes<R> - 1) / lanes<R>;
    plan.turn = kernels<R>(r), plan.turn_radix = r;
    plan.rows.set(m, recipe.radices[1], recipe.passes[1]);
    plan.rows.build(arena, roots);
    R* w = plan.lane_twiddles = arena.take<R>(static_cast<std::size_t>(vectors * (r - 1) * factor<R>));
    if (arena.counting()) return;
    for (std::int64_t v = 0; v < vectors; ++v) {
        const std::int64_t j = v * lanes<R> + lanes<R> <= m ? v * lanes<R> : m - lanes<R>;
        for (int k = 1; k < r; ++k, w += factor<R>)
            for (int lane = 0; lane < lanes<R>; ++lane) store_factor(w, lane, rounded<R>(roots[(j + lane) * k]));
    }
}

template <class R>
std::size_t turn_work(const Plan<R>& plan)
{
    return static_cast<std::size_t>(groups(plan) * (plan.rows.n() + scratch_gap) * cell<R>) * sizeof(R);
}

template <class R>
void run_turn(const Plan<R>& plan, Direction direction, const R* in, R* out, void* work)
{
    constexpr std::int64_t l = lanes<R>;
    const std::int64_t n = plan.n, r = plan.turn_radix, m = plan.rows.n();
    const bool backward = direction == Direction::backward;
    Pass<R> a;
    a.in = in, a.columns = m, a.vectors = (m + l - 1) / l;
    a.lane_twiddles = plan.lane_twiddles;
    a.scratch = static_cast<R*>(work), a.scratch_next = (m + scratch_gap) * cell<R>;
    plan.turn->turn(a);

    const Row row = backward ? Row::descending : Row::ascending;
    const std::int64_t most = cells_at_once > m ? cells_at_once / m : 1;
    const auto run = [&](std::int64_t group, std::int64_t count) {
        const std::int64_t first = group * l + l <= r ? group * l : r - l;
        Pass<R> b;
        b.scratch = a.scratch + group * a.scratch_next, b.scratch_next = a.scratch_next;
        b.vectors = count;
        const std::int64_t sign = backward ? -2 : 2;
        b.out = out + (backward ? 2 * (n - first) : 2 * first);
        b.out_step = sign * r, b.out_lane = sign, b.out_next = sign * l;
        b.zero = b.out, b.zero_lane = b.out_lane;
        if (backward && first == 0) b.zero = out, b.zero_lane = 2 * (n - 1);
        plan.rows.run_from_scratch(b, row);
    };
    const std::int64_t full = r / l;
    std::int64_t group = 0;
    if (backward) run(group++, 1);
    for (; group < full; group += most) run(group, group + most <= full ? most : full - group);
    if (r % l != 0) run(full, 1);
}

#define INSTANTIATE(R)                                                                                                 \
    template void build_turn(Plan<R>&, const Recipe&, Arena&, const RootTable&);                                       \
    template std::size_t turn_work(const Plan<R>&);                                                                    \
    template void run_turn(const Plan<R>&, Direction, const R*, R*, void*);
INSTANTIATE(float)
INSTANTIATE(double)

} // namespace ork::dft
