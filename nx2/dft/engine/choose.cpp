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

// Numbers whose places differ by a multiple of 4 KiB share one set of the first cache, which holds 8 to 12 of them, so
// a pass that reaches so far across memory should have a radix of 8 at most.
template <class R>
bool fits(int radix, std::int64_t numbers_apart)
{
    return radix <= 8 || numbers_apart * static_cast<std::int64_t>(sizeof(Complex<R>)) % 4096 != 0;
}

// The cheapest passes over n whose first and last radix are allowed.
template <class First, class Last>
bool cheapest_between(std::int64_t n, Choice& choice, First first_fits, Last last_fits)
{
    bool found = false;
    const auto offer = [&](const Choice& other) {
        if (found && other.cycles >= choice.cycles) return;
        found = true, choice = other;
    };
    for (const RadixCost& last : radix_costs) {
        if (n % last.radix != 0 || !last_fits(last.radix)) continue;
        if (n == last.radix) {
            if (first_fits(last.radix)) offer({last.cycles, 1, {last.radix}});
            continue;
        }
        for (const RadixCost& first : radix_costs) {
            const std::int64_t rest = n / last.radix;
            Choice middle;
            if (rest % first.radix != 0 || !first_fits(first.radix)) continue;
            if (!cheapest(rest / first.radix, 0, middle) || middle.passes + 2 > most_passes) continue;
            Choice all = {middle.cycles + first.cycles + last.cycles, middle.passes + 2, {first.radix}};
            for (int i = 0; i < middle.passes; ++i) all.radices[i + 1] = middle.radices[i];
            all.radices[all.passes - 1] = last.radix;
            offer(all);
        }
    }
    return found;
}

bool any_radix(int) { return true; }

int passes_of(const Choice& choice, int* radices)
{
    for (int i = 0; i < choice.passes; ++i) radices[i] = choice.radices[i];
    return choice.passes;
}

// As equal as can be, even ones first. 0 when there are none.
std::int64_t rows_of_halves(std::int64_t n)
{
    std::int64_t root = 1;
    while ((root + 1) * (root + 1) <= n) ++root;
    std::int64_t best = 0;
    for (std::int64_t n1 = root; n1 >= 8 && n1 > root / 8; --n1) {
        if (n % n1 != 0) continue;
        if (n1 % 2 == 0 && n / n1 % 2 == 0) return n1;
        if (best == 0) best = n1;
    }
    return best;
}

template <class R>
bool choose_halves(std::int64_t n, Recipe& recipe)
{
    const std::int64_t n1 = rows_of_halves(n);
    if (n1 == 0) return false;
    const std::int64_t n2 = n / n1;
    Choice columns, rows;
    if (!cheapest_between(
            n1, columns, [&](int r) { return n1 > r && fits<R>(r, n / r); },
            [&](int r) { return n2 % 64 != 0 || r <= 8; }) ||
        !cheapest_between(
            n2, rows, [&](int r) { return n2 > r; }, [&](int r) { return fits<R>(r, n / r); }))
        return false;
    recipe.method = Method::halves;
    recipe.passes[0] = passes_of(columns, recipe.radices[0]);
    recipe.passes[1] = passes_of(rows, recipe.radices[1]);
    return true;
}

// Short powers of two and their like are too close to one another for costs to tell: the fastest as measured.
struct Measured {
    int n, passes;
    int radices[3];
};
constexpr Measured measured_double[] = {{128, 2, {8, 16}},   {256, 2, {4, 64}},     {384, 2, {8, 48}},
                                        {512, 3, {8, 8, 8}}, {1024, 3, {8, 8, 16}}, {2048, 3, {4, 8, 64}}};
constexpr Measured measured_float[] = {
    {128, 2, {8, 16}}, {256, 2, {16, 16}}, {512, 3, {4, 8, 16}}, {1024, 3, {8, 8, 16}}, {2048, 3, {8, 8, 32}}};

template <std::size_t count>
bool choose_measured(std::int64_t n, const Measured (&list)[count], Recipe& recipe)
{
    for (const Measured& measured : list) {
        if (measured.n != n) continue;
        recipe.method = Method::turn;
        recipe.radices[0][0] = measured.radices[0], recipe.passes[0] = 1;
        recipe.passes[1] = measured.passes - 1;
        for (int i = 1; i < measured.passes; ++i) recipe.radices[1][i - 1] = measured.radices[i];
        return true;
    }
    return false;
}

template <class R>
bool choose_turn(std::int64_t n, Recipe& recipe)
{
    if (sizeof(R) == sizeof(double) ? choose_measured(n, measured_double, recipe)
                                    : choose_measured(n, measured_float, recipe))
        return true;
    float best = 0;
    bool found = false;
    for (const RadixCost& turn : radix_costs) {
        if (n % turn.radix != 0 || n / turn.radix < 4 || !fits<R>(turn.radix, n / turn.radix)) continue;
        Choice rows;
        if (!cheapest_between(n / turn.radix, rows, any_radix, [&](int r) { return fits<R>(r, n / r); })) continue;
        const float cycles = rows.cycles + turn.cycles;
        if (found && cycles >= best) continue;
        found = true, best = cycles;
        recipe.method = Method::turn;
        recipe.radices[0][0] = turn.radix, recipe.passes[0] = 1;
        recipe.passes[1] = passes_of(rows, recipe.radices[1]);
    }
    return found;
}

} // namespace

bool small_primes(std::int64_t n)
{
    for (const int p : pass_primes)
        while (n % p == 0) n /= p;
    return n == 1;
}

template <class R>
int choose_vertical(std::int64_t n, int* radices)
{
    Choice choice;
    const auto small_if_regular = [&](int r) { return n == r || n % 64 != 0 || r <= 8; };
    if (n == 1 || !small_primes(n) || !cheapest_between(n, choice, small_if_regular, small_if_regular)) return 0;
    return passes_of(choice, radices);
}

template <class R>
Recipe choose(std::int64_t n)
{
    Recipe recipe;
    if (n <= longest_kernel) {
        recipe.method = Method::length;
        return recipe;
    }
    if (!small_primes(n)) return recipe;
    // One vector's passes win while it is near, and longer where no two numbers of a pass share a cache set.
    const std::int64_t bytes = n * static_cast<std::int64_t>(sizeof(Complex<R>));
    const bool regular = n % 1024 == 0;
    const bool near = bytes <= (regular ? 64 << 10 : 2 << 20);
    if (near ? choose_turn<R>(n, recipe) || choose_halves<R>(n, recipe)
             : choose_halves<R>(n, recipe) || choose_turn<R>(n, recipe))
        return recipe;
    recipe.method = Method::bluestein;
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
