// SPDX-License-Identifier: MIT
// n = n1 n2 as a matrix of n1 rows and n2 columns, in two halves: transforms of columns, group by group, multiplied by
// their twiddles into another matrix of the same shape; then transforms of its rows, whose result k2 of row k1 is
// number k1 + n1 k2. So the numbers cross memory twice, in whole cache lines, whatever n is.
#include "dft/engine/plan_data.h"

namespace ork::dft {

// Far from the caches longer runs pay: 1 KiB of a row at a time, while a group's scratch doesn't outgrow them (2 MiB).
static std::int64_t vectors_of_group(std::int64_t n1, std::int64_t n2)
{
    if (n1 * n2 < 65536 * 2) return group_vectors;
    const std::int64_t longest = n1 > n2 ? n1 : n2;
    return longest <= 2048 ? 4 * group_vectors : 2 * group_vectors;
}

template <class R>
void build_halves(Plan<R>& plan, const Recipe& recipe, Arena& arena, const RootTable& roots)
{
    std::int64_t n1 = 1;
    for (int i = 0; i < recipe.passes[0]; ++i) n1 *= recipe.radices[0][i];
    const std::int64_t n2 = plan.n / n1;
    plan.group = vectors_of_group(n1, n2);
    plan.columns.set(n1, recipe.radices[0], recipe.passes[0]);
    plan.rows.set(n2, recipe.radices[1], recipe.passes[1]);
    plan.columns.build(arena, roots);
    plan.rows.build(arena, roots);

    const std::int64_t blocks = plan.columns.blocks(), coarse = (blocks + fine_twiddles - 1) / fine_twiddles;
    const int r = plan.columns.last_radix();
    plan.lane_twiddles_of_result = fine_twiddles * cell<R> + coarse * factor<R>;
    plan.lane_twiddles_next = plan.lane_twiddles_of_result + (r - 1) * factor<R>;
    const std::int64_t vectors = (n2 + lanes<R> - 1) / lanes<R>;
    R* w = plan.lane_twiddles = arena.take<R>(static_cast<std::size_t>(vectors * plan.lane_twiddles_next));
    if (arena.counting()) return;
    for (std::int64_t v = 0; v < vectors; ++v) {
        const std::int64_t j = v * lanes<R>;
        const auto of = [&](std::int64_t k, int lane) { return rounded<R>(roots[(j + lane) * k % plan.n]); };
        for (std::int64_t k = 0; k < fine_twiddles; ++k, w += cell<R>)
            for (int lane = 0; lane < lanes<R>; ++lane) {
                const Complex<R> root = of(k, lane);
                w[2 * lane] = root.re, w[2 * lane + 1] = root.im;
            }
        for (std::int64_t k = 0; k < coarse; ++k, w += factor<R>)
            for (int lane = 0; lane < lanes<R>; ++lane) store_factor(w, lane, of(k * fine_twiddles, lane));
        for (int k = 1; k < r; ++k, w += factor<R>)
            for (int lane = 0; lane < lanes<R>; ++lane) store_factor(w, lane, of(k * blocks, lane));
    }
}

template <class R>
std::size_t halves_work(const Plan<R>& plan)
{
    const std::int64_t longest = plan.columns.n() > plan.rows.n() ? plan.columns.n() : plan.rows.n();
    return static_cast<std::size_t>(plan.group * (longest + scratch_gap) * cell<R>) * sizeof(R);
}

template <class R>
std::int64_t half_groups(const Plan<R>& plan, int half)
{
    constexpr std::int64_t l = lanes<R>;
    const std::int64_t vectors = ((half == 0 ? plan.rows.n() : plan.columns.n()) + l - 1) / l;
    return (vectors + plan.group - 1) / plan.group;
}

// The columns or rows of a group: `vectors` full vectors side by side, then perhaps a single one, of which both lanes
// are the same.
template <class R, class Body>
static void for_group(const Plan<R>& plan, std::int64_t group, std::int64_t count, Body body)
{
    constexpr std::int64_t l = lanes<R>;
    const std::int64_t most = plan.group;
    const std::int64_t from = group * most * l;
    const std::int64_t full = (count - from) / l < most ? (count - from) / l : most;
    if (full > 0) body(from, full, false);
    if (full < most && from + full * l < count) body(from + full * l, 1, true);
}

template <class R>
static void columns_half(const Plan<R>& plan, std::int64_t group, const R* in, R* matrix, R* scratch)
{
    constexpr std::int64_t l = lanes<R>;
    const std::int64_t n1 = plan.columns.n(), n2 = plan.rows.n();
    for_group(plan, group, n2, [&](std::int64_t j, std::int64_t vectors, bool single) {
        Pass<R> a;
        a.in = in + 2 * j, a.in_step = 2 * n2, a.in_next = 2 * l, a.in_lane = single ? 0 : 2;
        a.ahead = 2;
        a.vectors = vectors;
        a.scratch = scratch, a.scratch_next = (n1 + scratch_gap) * cell<R>;
        // The second lane of a single column goes into the gap behind its row.
        a.out = matrix + 2 * j, a.out_step = 2 * matrix_row(plan), a.out_next = 2 * l;
        a.lane_twiddles = plan.lane_twiddles + j / l * plan.lane_twiddles_next;
        a.lane_twiddles_next = plan.lane_twiddles_next, a.lane_twiddles_of_result = plan.lane_twiddles_of_result;
        plan.columns.run_to_rows(a, single ? Row::apart : Row::ascending);
    });
}

// Results first .. first + count - 1 of every n1.
template <class R>
static void scale_rows(const Plan<R>& plan, bool backward, std::int64_t first, std::int64_t count, R scale, R* out)
{
    const std::int64_t n = plan.n, n1 = plan.columns.n();
    for (std::int64_t k2 = 0; k2 < plan.rows.n(); ++k2) {
        const std::int64_t index = first + n1 * k2;
        if (!backward) {
            scale_numbers(out + 2 * index, count, scale);
        } else if (index > 0) {
            scale_numbers(out + 2 * (n - index - count + 1), count, scale);
        } else {
            scale_numbers(out, 1, scale);
            scale_numbers(out + 2 * (n - count + 1), count - 1, scale);
        }
    }
}

template <class R>
static void rows_half(const Plan<R>& plan, bool backward, std::int64_t group, R scale, const R* matrix, R* out,
                      R* scratch)
{
    constexpr std::int64_t l = lanes<R>;
    const std::int64_t n = plan.n, n1 = plan.columns.n(), n2 = plan.rows.n(), row = 2 * matrix_row(plan);
    const std::int64_t next = (n2 + scratch_gap) * cell<R>;
    for_group(plan, group, n1, [&](std::int64_t k, std::int64_t vectors, bool single) {
        for (std::int64_t v = 0; v < vectors; ++v) {
            Pass<R> a;
            a.in = matrix + (k + v * l) * row, a.in_step = 2, a.in_lane = single ? 0 : row;
            a.vectors = 1, a.in_next = 0, a.scratch_next = 0, a.ahead = 0;
            a.scratch = scratch + v * next;
            if (v + 1 < vectors) // the next rows, while these are computed
                for (std::int64_t lane = 0; lane < l; ++lane)
                    for (std::int64_t i = 0; i < n2; i += 32 / static_cast<std::int64_t>(sizeof(R)))
                        _mm_prefetch(reinterpret_cast<const char*>(a.in + (l + lane) * row + 2 * i), _MM_HINT_T0);
            plan.rows.begin(a, Row::apart);
        }
        const auto end = [&](std::int64_t v, std::int64_t count) {
            const std::int64_t first = k + v * l, sign = backward ? -2 : 2;
            Pass<R> a;
            a.scratch = scratch + v * next, a.scratch_next = next, a.vectors = count;
            a.out = out + (backward ? 2 * (n - first) : 2 * first);
            a.out_step = sign * n1, a.out_next = sign * l, a.out_lane = single ? 0 : sign;
            a.zero = a.out, a.zero_lane = a.out_lane;
            if (backward && first == 0) a.zero = out, a.zero_lane = single ? 0 : 2 * (n - 1);
            plan.rows.end(a, single ? Row::apart : backward ? Row::descending : Row::ascending);
        };
        const std::int64_t alone = backward && k == 0 ? 1 : 0;
        if (alone > 0) end(0, 1);
        if (vectors > alone) end(alone, vectors - alone);
        if (scale != R(1)) scale_rows(plan, backward, k, single ? 1 : vectors * l, scale, out);
    });
}

template <class R>
void run_half(const Plan<R>& plan, int half, Direction direction, R scale, std::int64_t from, std::int64_t to,
              const R* in, R* out, R* matrix, void* work)
{
    const bool backward = direction == Direction::backward;
    R* scratch = static_cast<R*>(work);
    for (std::int64_t group = from; group < to; ++group) {
        if (half == 0)
            columns_half(plan, group, in, matrix, scratch);
        else
            rows_half(plan, backward, group, scale, matrix, out, scratch);
    }
}

#define INSTANTIATE(R)                                                                                                 \
    template void build_halves(Plan<R>&, const Recipe&, Arena&, const RootTable&);                                     \
    template std::size_t halves_work(const Plan<R>&);                                                                  \
    template std::int64_t half_groups(const Plan<R>&, int);                                                            \
    template void run_half(const Plan<R>&, int, Direction, R, std::int64_t, std::int64_t, const R*, R*, R*, void*);
INSTANTIATE(float)
INSTANTIATE(double)

} // namespace ork::dft
