// SPDX-License-Identifier: MIT
// Which way of computing and which radices. Costs are those of a pass per number in cycles, as the passes were measured
// in the first level of cache.
#include "dft/engine/plan_data.h"

namespace ork::dft {

namespace {

struct RadixCost {
    int radix;
    float cycles;
};
// In the order in which passes are tried.
constexpr RadixCost radix_costs[] = {{16, 6.0f}, {8, 4.6f},   {4, 3.3f},   {2, 2.6f},  {32, 7.8f}, {3, 3.4f},
                                     {5, 4.5f},  {6, 4.5f},   {7, 5.8f},   {9, 5.6f},  {10, 5.6f}, {11, 8.4f},
                                     {12, 5.6f}, {13, 9.6f},  {14, 7.0f},  {15, 6.6f}, {20, 7.4f}, {24, 7.6f},
                                     {25, 8.8f}, {17, 14.0f}, {19, 16.0f}, {23, 19.0f}};

struct Choice {
    float cycles;
    int passes;
    int radices[most_passes];
};

// The cheapest product of radices no greater than `most`; radices come out in falling order.
bool cheapest(std::int64_t n, std::size_t from, Choice& choice)
{
    if (n == 1) {
        choice.cycles = 0, choice.passes = 0;
        return true;
    }
    bool found = false;
    for (std::size_t i = from; i < sizeof radix_costs / sizeof *radix_costs; ++i) {
        if (n % radix_costs[i].radix != 0) continue;
        Choice rest;
        if (!cheapest(n / radix_costs[i].radix, i, rest) || rest.passes + 1 >= most_passes) continue;
        const float cycles = rest.cycles + radix_costs[i].cycles;
        if (found && cycles >= choice.cycles) continue;
        found = true;
        choice.cycles = cycles, choice.passes = rest.passes + 1;
        choice.radices[0] = radix_costs[i].radix;
        for (int k = 0; k < rest.passes; ++k) choice.radices[k + 1] = rest.radices[k];
    }
    return found;
}

// Numbers whose places differ by a multiple of 4 KiB share one set of the first cache, which holds 8 to 12 of them: the
// passes that reach across memory, the first and the last, should have a radix of 8 at most.
void small_radices_outside(int* radices, int passes)
{
    for (const int end : {0, passes - 1}) {
        int best = end;
        for (int i = 1; i + 1 < passes; ++i)
            if (radices[i] <= 8 && (radices[best] > 8 || radices[i] > radices[best])) best = i;
        const int moved = radices[best];
        radices[best] = radices[end], radices[end] = moved;
    }
}

} // namespace

bool small_primes(std::int64_t n)
{
    for (const int p : {2, 3, 5, 7, 11, 13, 17, 19, 23})
        while (n % p == 0) n /= p;
    return n == 1;
}

template <class R>
int choose_vertical(std::int64_t n, int* radices)
{
    Choice choice;
    if (n == 1 || !small_primes(n) || !cheapest(n, 0, choice)) return 0;
    for (int i = 0; i < choice.passes; ++i) radices[i] = choice.radices[i];
    if (choice.passes > 1) small_radices_outside(radices, choice.passes);
    return choice.passes;
}

// Up to this many bytes of numbers the passes of `turn` win.
constexpr std::int64_t turn_bytes = 96 << 10;

template <class R>
Recipe choose(std::int64_t n)
{
    Recipe recipe;
    if (n <= longest_kernel) {
        recipe.method = Method::length;
        return recipe;
    }
    if (!small_primes(n)) return recipe;

    // Halves as equal as can be, even ones first.
    if (n * 2 * static_cast<std::int64_t>(sizeof(R)) > turn_bytes) {
        std::int64_t n1 = 1;
        while ((n1 + 1) * (n1 + 1) <= n) ++n1;
        const std::int64_t root = n1;
        std::int64_t best = 0;
        for (; n1 >= 8 && n1 > root / 8; --n1) {
            if (n % n1 != 0) continue;
            const bool even = n1 % 2 == 0 && n / n1 % 2 == 0;
            if (best == 0 || (even && best % 2 != 0)) best = n1;
            if (even) break;
        }
        if (best != 0) {
            recipe.passes[0] = choose_vertical<R>(best, recipe.radices[0]);
            recipe.passes[1] = choose_vertical<R>(n / best, recipe.radices[1]);
            if (recipe.passes[0] >= 2 && recipe.passes[1] >= 2) {
                recipe.method = Method::halves;
                return recipe;
            }
        }
    }

    Choice best_rows = {};
    float best = 0;
    int turn = 0;
    for (const RadixCost& cost : radix_costs) {
        Choice rows;
        if (n % cost.radix != 0 || n / cost.radix < 4 || !cheapest(n / cost.radix, 0, rows)) continue;
        const float cycles = rows.cycles + cost.cycles + (cost.radix > 16 ? 1.0f : 0.0f);
        if (turn != 0 && cycles >= best) continue;
        turn = cost.radix, best = cycles, best_rows = rows;
    }
    recipe.method = Method::turn;
    recipe.radices[0][0] = turn, recipe.passes[0] = 1;
    recipe.passes[1] = best_rows.passes;
    for (int i = 0; i < best_rows.passes; ++i) recipe.radices[1][i] = best_rows.radices[i];
    return recipe;
}

template <class R>
std::int64_t good_length(std::int64_t n)
{
    // Products of 2, 3 and 5 with at least a factor of 16, which all passes like; short ones by 5 and 3 once each.
    std::int64_t best = 16;
    while (best < n) best *= 2;
    for (const std::int64_t odd : {3, 5, 9, 15, 25, 45, 75, 7, 21, 35}) {
        std::int64_t m = 16 * odd;
        while (m < n) m *= 2;
        if (m < best) best = m;
    }
    return best;
}

#define INSTANTIATE(R)                                                                                                 \
    template int choose_vertical<R>(std::int64_t, int*);                                                               \
    template Recipe choose<R>(std::int64_t);                                                                           \
    template std::int64_t good_length<R>(std::int64_t);
INSTANTIATE(float)
INSTANTIATE(double)

} // namespace ork::dft
