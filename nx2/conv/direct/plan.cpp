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

} // namespace

Plan plan_sums(const Problem& problem)
{
    Plan plan;
    const int parts = problem.is_complex ? 2 : 1, lanes = problem.computes_double ? 2 : 4;
    const int bytes = parts * (problem.is_double ? 8 : 4);
    const auto* x = static_cast<const char*>(problem.x);
    const auto* y = static_cast<const char*>(problem.y);
    double met[max_dims], elements[2] = {1, 1}, outputs = 1;
    plan.products = parts * parts;
    for (int d = 0; d < problem.dims; ++d) {
        const Dimension& n = problem.dimension[d];
        const Int last = n.first + (n.z - 1) * n.step;
        const Int x_from = n.first < n.y ? 0 : n.first - (n.y - 1), x_to = last < n.x ? last + 1 : n.x;
        const Int y_from = n.first < n.x ? 0 : n.first - (n.x - 1), y_to = last < n.y ? last + 1 : n.y;
        x += x_from * n.x_stride * bytes, y += y_from * n.y_stride * bytes;
        plan.operand[0].extent[d] = x_to - x_from, plan.operand[0].stride[d] = n.x_stride;
        plan.operand[1].extent[d] = y_to - y_from, plan.operand[1].stride[d] = n.y_stride;
        plan.first[d] = n.first - x_from - y_from;
        met[d] = pairs_met(x_to - x_from, y_to - y_from, n.z, plan.first[d], n.step);
        plan.products *= met[d];
        elements[0] *= static_cast<double>(x_to - x_from), elements[1] *= static_cast<double>(y_to - y_from);
        outputs *= static_cast<double>(n.z);
    }
    plan.operand[0].data = x, plan.operand[1].data = y;
    for (int d = 0; d < problem.dims; ++d) {
        const Dimension& n = problem.dimension[d];
        const int signal = plan.operand[0].extent[d] >= plan.operand[1].extent[d] ? 0 : 1;
        const Int taps = plan.operand[1 - signal].extent[d];
        const bool copied = plan.operand[signal].stride[d] != 1 || problem.computes_double != problem.is_double;
        const double pairs = plan.products / (parts * parts) / met[d]; // of lines
        const double lines = outputs / static_cast<double>(n.z), z = static_cast<double>(n.z);
        double seconds = once + per_copy * (elements[1 - signal] + (copied ? elements[signal] : 0));
        if (by_dots(n.z, n.step, taps, lanes, parts)) {
            seconds +=
                pairs * (per_register * 1.2 * parts * parts * met[d] / lanes + z * per_pair) + lines * z * per_output;
        } else {
            const double registers = static_cast<double>((n.z * parts + lanes - 1) / lanes);
            const double blocks = registers / 8 + 1;
            seconds += pairs * (per_register * parts * met[d] / z * registers + per_pair * blocks) +
                       lines * per_block * blocks;
        }
        if (d == 0 || seconds < plan.seconds) plan.along = d, plan.signal = signal, plan.seconds = seconds;
    }
    return plan;
}

double cost_of_sums(const Problem& problem) { return plan_sums(problem).seconds; }

} // namespace ork::conv
