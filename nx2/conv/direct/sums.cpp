// SPDX-License-Identifier: MIT
#include <algorithm>
#include <type_traits>

#include "conv/direct/copy.h"
#include "conv/direct/direct.h"
#include "conv/direct/divide.h"
#include "conv/direct/scattered.h"
#include "ork/conv.h"

namespace ork::conv {
namespace {

// Without the operands, whose strides are still to be told.
template <class T, class W, int parts>
Lines<T, W, parts> lines_of_outputs(const Problem& problem, const Plan& plan)
{
    const Operand &signal = plan.operand[plan.signal], &taps = plan.operand[1 - plan.signal];
    const Dimension& line = problem.dimension[plan.along];
    Lines<T, W, parts> lines;
    lines.tap_count = taps.extent[plan.along], lines.signal_count = signal.extent[plan.along];
    lines.z = static_cast<T*>(problem.z), lines.z_count = line.z, lines.z_stride = line.z_stride;
    lines.first = plan.first[plan.along], lines.step = line.step;
    lines.conjugate = problem.conjugate_x && plan.signal == 0;
    lines.outer_count = 0;
    for (int d = 0; d < problem.dims; ++d) {
        if (d == plan.along) continue;
        Outer& outer = lines.outer[lines.outer_count++];
        outer.taps = taps.extent[d], outer.signal = signal.extent[d], outer.z = problem.dimension[d].z;
        outer.z_stride = problem.dimension[d].z_stride;
        outer.first = plan.first[d], outer.step = problem.dimension[d].step;
    }
    return lines;
}

// T: the data, W: what is computed in.
template <class T, class W, int parts>
int sum_as(const Problem& problem, const Plan& plan)
{
    const int along = plan.along;
    const Operand &signal = plan.operand[plan.signal], &taps = plan.operand[1 - plan.signal];
    const bool in_place = std::is_same_v<T, W> && signal.stride[along] == 1;
    Lines<T, W, parts> lines = lines_of_outputs<T, W, parts>(problem, plan);
    Int tap_lines = 1, signal_lines = 1, z_lines = 1;
    for (int i = 0; i < lines.outer_count; ++i) {
        tap_lines = times(tap_lines, lines.outer[i].taps);
        signal_lines = times(signal_lines, lines.outer[i].signal);
        z_lines = times(z_lines, lines.outer[i].z);
    }
    Int tap_strides[max_dims], signal_strides[max_dims];
    std::copy_n(signal.stride, problem.dims, signal_strides);

    Work<W> taps_memory, signal_memory;
    const Int tap_numbers = times(tap_lines, parts * lines.tap_count);
    W* tap_copy = taps_memory.allocate(tap_numbers);
    if (tap_copy == nullptr) return ORK_CONV_NO_WORK_MEMORY;
    // conj(x) y = conj(x conj(y)): when x is the signal, the taps and the results are conjugated in its place.
    lines.taps =
        copy_operand<parts, T>(taps, problem.dims, along, true, problem.conjugate_x, tap_copy, 0, 0, tap_strides);
    const double touched =
        plan.products / (parts * parts * static_cast<double>(times(signal_lines, lines.signal_count)));
    if (problem.dims == 1 && !in_place && (lines.tap_count <= 2 || touched <= 2)) {
        sum_scattered(lines, static_cast<const T*>(signal.data), signal.stride[0]);
        return ORK_CONV_OK;
    }

    constexpr int lanes = Vec<W>::lanes;
    const bool dots = by_dots(lines.z_count, lines.step, lines.tap_count, lanes, parts);
    Copy copy =
        copy_of_signal(problem.dims, in_place, dots, touched, lines.tap_count, lines.signal_count, lanes / parts);
    // An infinite tap must not meet a zero that is none of the signal.
    if (copy == Copy::padded && !all_finite(tap_copy, tap_numbers)) copy = in_place ? Copy::none : Copy::tight;
    lines.padded = copy == Copy::padded;
    if constexpr (std::is_same_v<T, W>) lines.signal = static_cast<const W*>(signal.data);
    if (copy != Copy::none) {
        constexpr Int width = most_registers<parts> * lanes / parts;
        const Int before = lines.padded ? lines.tap_count - 1 : 0, after = lines.padded ? before + width : 0;
        W* memory = signal_memory.allocate(times(signal_lines, parts * (before + lines.signal_count + after)));
        if (memory == nullptr) return ORK_CONV_NO_WORK_MEMORY;
        lines.signal =
            copy_operand<parts, T>(signal, problem.dims, along, false, false, memory, before, after, signal_strides);
    }
    for (int d = 0, i = 0; d < problem.dims; ++d)
        if (d != along) lines.outer[i].taps_stride = tap_strides[d], lines.outer[i++].signal_stride = signal_strides[d];
    sum_lines(lines, z_lines, plan.products, dots);
    return ORK_CONV_OK;
}

template <int parts>
int sum_in_precision(const Problem& problem, const Plan& plan)
{
    if (problem.is_double) return sum_as<double, double, parts>(problem, plan);
    return problem.computes_double ? sum_as<float, double, parts>(problem, plan)
                                   : sum_as<float, float, parts>(problem, plan);
}

} // namespace

int sum_directly(const Problem& problem)
{
    const Plan plan = plan_sums(problem);
    return problem.is_complex ? sum_in_precision<2>(problem, plan) : sum_in_precision<1>(problem, plan);
}

} // namespace ork::conv
