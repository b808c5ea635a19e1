// SPDX-License-Identifier: MIT
#include "conv/direct/plan.h"

#include "conv/direct/direct.h"

namespace ork::conv {
namespace {

// Pairs of elements that meet in the outputs of one dimension: extents a and b, outputs first + k step, k < z. Output m
// has min(m + 1, shorter, a + b - 1 - m) of them: rising, level, falling.
double pairs_met(Int a, Int b, Int z, Int first, Int step)
{
    const Int shorter = a < b ? a : b, longer = a < b ? b : a;
    const auto until = [&](Int m) { // outputs below m
        const Int k = m <= first ? 0 : (m - first + step - 1) / step;
        return k < z ? k : z;
    };
    const Int level = until(shorter), falling = until(longer);
    const auto sum_of = [&](Int from, Int to) { // of m
        return static_cast<double>(to - from) *
               (static_cast<double>(first) + static_cast<double>(step) * static_cast<double>(from + to - 1) / 2);
    };
    return sum_of(0, level) + static_cast<double>(level) +
           static_cast<double>(falling - level) * static_cast<double>(shorter) +
           static_cast<double>(z - falling) * static_cast<double>(a + b - 1) - sum_of(falling, z);
}

// Measured: a product and sum of registers; a block of outputs, and one pair of lines more in it; one output of a dot
// product; an element copied; all that is done once.
constexpr double per_register = 0.18e-9, per_block = 8e-9, per_pair = 3e-9, per_output = 4e-9, per_copy = 0.6e-9,
                 once = 60e-9;

double as_double(Int n) { return static_cast<double>(n); }

int longer_operand(const Plan& plan, int d) { return plan.operand[0].extent[d] >= plan.operand[1].extent[d] ? 0 : 1; }

// Pairs of elements in all sums.
double pairs_met(const Problem& problem, const Plan& plan)
{
    double pairs = 1;
    for (int d = 0; d < problem.dims; ++d)
        pairs *= pairs_met(plan.operand[0].extent[d], plan.operand[1].extent[d], problem.dimension[d].z, plan.first[d],
                           problem.dimension[d].step);
    return pairs;
}

// Seconds with lines along dimension d.
double seconds_along(const Problem& problem, const Plan& plan, double pairs, int d)
{
    const int parts = problem.is_complex ? 2 : 1, lanes = problem.computes_double ? 2 : 4;
    const int signal = longer_operand(plan, d);
    const Dimension& n = problem.dimension[d];
    const Int taps = plan.operand[1 - signal].extent[d];
    const bool copied = plan.operand[signal].stride[d] != 1 || problem.computes_double != problem.is_double;
    double elements[2] = {1, 1}, lines = 1;
    for (int e = 0; e < problem.dims; ++e) {
        for (int i = 0; i < 2; ++i) elements[i] *= as_double(plan.operand[i].extent[e]);
        if (e != d) lines *= as_double(problem.dimension[e].z);
    }
    const double met = pairs_met(plan.operand[0].extent[d], plan.operand[1].extent[d], n.z, plan.first[d], n.step);
    const double pairs_of_lines = pairs / met, z = as_double(n.z);
    const double copies = once + per_copy * (elements[1 - signal] + (copied ? elements[signal] : 0));
    if (by_dots(n.z, n.step, taps, lanes, parts))
        return copies + pairs_of_lines * (per_register * parts * parts * met / lanes + z * per_pair) +
               lines * z * per_output;
    const double registers = as_double((n.z * parts + lanes - 1) / lanes), blocks = registers / 8 + 1;
    return copies + pairs_of_lines * (per_register * parts * met / z * registers + per_pair * blocks) +
           lines * per_block * blocks;
}

} // namespace

Plan plan_sums(const Problem& problem)
{
    Plan plan;
    const int parts = problem.is_complex ? 2 : 1, bytes = parts * (problem.is_double ? 8 : 4);
    const auto* x = static_cast<const char*>(problem.x);
    const auto* y = static_cast<const char*>(problem.y);
    plan.products = parts * parts;
    for (int d = 0; d < problem.dims; ++d) {
        const Dimension& n = problem.dimension[d];
        const Int last = n.first + (n.z - 1) * n.step;
        const Int x_from = n.first < n.y ? 0 : n.first - (n.y - 1), x_to = last < n.x ? last + 1 : n.x;
        const Int y_from = n.first < n.x ? 0 : n.first - (n.x - 1), y_to = last < n.y ? last + 1 : n.y;
        const Int x_count = x_to - x_from, y_count = y_to - y_from;
        x += x_from * n.x_stride * bytes, y += y_from * n.y_stride * bytes;
        plan.operand[0].extent[d] = x_count, plan.operand[0].stride[d] = n.x_stride;
        plan.operand[1].extent[d] = y_count, plan.operand[1].stride[d] = n.y_stride;
        plan.first[d] = n.first - x_from - y_from;
        plan.products *= as_double(n.z) * as_double(x_count < y_count ? x_count : y_count);
    }
    plan.operand[0].data = x, plan.operand[1].data = y;
    plan.along = 0;
    if (problem.dims > 1) {
        const double pairs = pairs_met(problem, plan);
        double least = seconds_along(problem, plan, pairs, 0);
        for (int d = 1; d < problem.dims; ++d)
            if (const double seconds = seconds_along(problem, plan, pairs, d); seconds < least)
                plan.along = d, least = seconds;
    }
    plan.signal = longer_operand(plan, plan.along);
    return plan;
}

double cost_of_sums(const Problem& problem)
{
    const Plan plan = plan_sums(problem);
    return seconds_along(problem, plan, pairs_met(problem, plan), plan.along);
}

} // namespace ork::conv
