// SPDX-License-Identifier: MIT
#include "conv/direct/plan.h"

#include <algorithm>

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

// Seconds, measured on a processor that does 5.7e9 products and sums of registers a second; of dot products fewer,
// for their loads. Elements copied one after the other, or gathered.
constexpr double per_register = 0.175e-9, per_dot_register = 0.22e-9, per_complex_dot_register = 0.16e-9;
constexpr double per_product = 0.3e-9, per_complex_product = 2.1e-9;
constexpr double per_line = 20e-9, per_block = 1.5e-9, per_block_pair = 0.6e-9;
constexpr double per_ragged_block = 20e-9, per_ragged_output = 1.3e-9;
constexpr double per_dot = 0.5e-9, per_lone_dot = 6e-9, per_dot_pair = 0.3e-9;
constexpr double per_copy = 0.1e-9, per_gather = 0.35e-9, once = 100e-9, once_copied = 40e-9;

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

// Counted without sign: of extents that no memory holds, which are only asked for their cost, it may wrap.
const void* element(const void* first, Int index, Int stride, int bytes)
{
    using Count = std::uintptr_t;
    const Count offset = static_cast<Count>(index) * static_cast<Count>(stride) * static_cast<Count>(bytes);
    return reinterpret_cast<const void*>(reinterpret_cast<Count>(first) + offset);
}

// Seconds with lines along dimension d.
double seconds_along(const Problem& problem, const Plan& plan, double pairs, int d)
{
    const int parts = problem.is_complex ? 2 : 1, lanes = problem.computes_double ? 2 : 4;
    const int signal = longer_operand(plan, d);
    const Dimension& n = problem.dimension[d];
    const Int taps = plan.operand[1 - signal].extent[d], longer = plan.operand[signal].extent[d];
    double elements[2] = {1, 1}, lines = 1;
    for (int e = 0; e < problem.dims; ++e) {
        for (int i = 0; i < 2; ++i) elements[i] *= as_double(plan.operand[i].extent[e]);
        if (e != d) lines *= as_double(problem.dimension[e].z);
    }
    const double met = pairs_met(taps, longer, n.z, plan.first[d], n.step), line_pairs = pairs / met;
    const bool dots = by_dots(n.z, n.step, taps, lanes, parts);
    const bool in_place = plan.operand[signal].stride[d] == 1 && problem.computes_double == problem.is_double;
    const Copy copy =
        copy_of_signal(problem.dims, in_place, dots, pairs / elements[signal], taps, longer, lanes / parts);
    double seconds = once + per_gather * parts * elements[1 - signal];
    if (copy != Copy::none) seconds += once_copied + (in_place ? per_copy : per_gather) * parts * elements[signal];

    // Outputs that don't meet all taps, before and after those that do.
    const auto outputs_until = [&](Int m) {
        return m <= plan.first[d] ? 0 : (m - plan.first[d] + n.step - 1) / n.step;
    };
    const Int head = std::min(n.z, outputs_until(taps - 1)), tail = n.z - std::min(n.z, outputs_until(longer));
    const double ends = as_double(head + tail), z = as_double(n.z);
    if (problem.dims > 1) seconds += lines * per_line;
    if (dots) {
        const Int numbers = taps * parts;
        const double rest = as_double(numbers % lanes / parts) - as_double(numbers % lanes) / lanes;
        return seconds +
               parts * (parts == 1 ? per_dot_register : per_complex_dot_register) * line_pairs *
                   (parts * met / lanes + rest * z) +
               line_pairs * z * per_dot_pair + lines * (z * per_dot + ends * per_lone_dot);
    }
    const double most = parts == 1 ? 8 : 6, width = most * lanes / parts; // of a block
    const double registers = as_double((n.z * parts + lanes - 1) / lanes),
                 blocks = as_double(static_cast<Int>(registers / most)) + 1;
    double taps_met = met / z * registers; // by all registers, those of whole blocks
    // Blocks at the ends of padded lines take what their first and last outputs meet.
    if (copy == Copy::padded) taps_met += ends / width * most * std::min(width, as_double(taps)) / 2;
    seconds += parts * per_register * line_pairs * taps_met + line_pairs * blocks * per_block_pair +
               lines * blocks * per_block;
    if (copy == Copy::padded || head + tail == 0) return seconds;
    if (taps <= few_taps(parts))
        return seconds + line_pairs * (parts == 1 ? per_product : per_complex_product) * ends * as_double(taps) / 2;
    const double ragged = ends / width + (head > 0 ? 0.5 : 0) + (tail > 0 ? 0.5 : 0);
    return seconds + line_pairs * ragged * (per_ragged_block + per_ragged_output * width);
}

} // namespace

Plan plan_sums(const Problem& problem)
{
    Plan plan;
    const int parts = problem.is_complex ? 2 : 1, bytes = parts * (problem.is_double ? 8 : 4);
    plan.operand[0].data = problem.x, plan.operand[1].data = problem.y;
    plan.products = parts * parts;
    for (int d = 0; d < problem.dims; ++d) {
        const Dimension& n = problem.dimension[d];
        const Int last = n.first + (n.z - 1) * n.step;
        const Int x_from = n.first < n.y ? 0 : n.first - (n.y - 1), x_to = last < n.x ? last + 1 : n.x;
        const Int y_from = n.first < n.x ? 0 : n.first - (n.x - 1), y_to = last < n.y ? last + 1 : n.y;
        const Int x_count = x_to - x_from, y_count = y_to - y_from;
        plan.operand[0].data = element(plan.operand[0].data, x_from, n.x_stride, bytes);
        plan.operand[1].data = element(plan.operand[1].data, y_from, n.y_stride, bytes);
        plan.operand[0].extent[d] = x_count, plan.operand[0].stride[d] = n.x_stride;
        plan.operand[1].extent[d] = y_count, plan.operand[1].stride[d] = n.y_stride;
        plan.first[d] = n.first - x_from - y_from;
        plan.products *= as_double(n.z) * as_double(x_count < y_count ? x_count : y_count);
    }
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
