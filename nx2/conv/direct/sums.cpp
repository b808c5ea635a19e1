// SPDX-License-Identifier: MIT
#include "conv/direct/copy.h"
#include "conv/direct/direct.h"
#include "conv/direct/divide.h"
#include "conv/direct/scattered.h"
#include "ork/conv.h"

namespace ork::conv {
namespace {

template <class T, class W, int parts>
int sum_as(const Problem& problem, const Plan& plan)
{
    const int along = plan.along;
    const Operand &signal = plan.operand[plan.signal], &taps = plan.operand[1 - plan.signal];
    const Dimension& line = problem.dimension[along];

    Int strides[2][max_dims]; // of taps and signal
    Int taps_size = parts, signal_lines_count = 1, line_count = 1;
    for (int d = 0; d < problem.dims; ++d) {
        taps_size = times(taps_size, taps.extent[d]);
        if (d != along) {
            signal_lines_count = times(signal_lines_count, signal.extent[d]);
            line_count = times(line_count, problem.dimension[d].z);
        }
        strides[1][d] = signal.stride[d];
    }
    Work<W> taps_memory, signal_memory;
    W* tap_lines = taps_memory.allocate(taps_size);
    if (tap_lines == nullptr) return ORK_CONV_NO_WORK_MEMORY;
    // conj(x) y = conj(x conj(y)): when x is the signal, the taps and the results are conjugated in its place.
    copy_operand<parts, T>(taps, problem.dims, along, true, problem.conjugate_x, tap_lines, 0, 0, strides[0]);
    const Int tap_count = taps.extent[along], signal_count = signal.extent[along];
    const double touched =
        plan.products / (parts * parts * static_cast<double>(times(signal_lines_count, signal_count)));
    const bool in_place = std::is_same_v<T, W> && signal.stride[along] == 1;
    const bool conjugate = problem.conjugate_x && plan.signal == 0;
    if (problem.dims == 1 && !in_place && touched <= 2) {
        sum_scattered(Scattered<T, W, parts>{.taps = tap_lines,
                                             .signal = static_cast<const T*>(signal.data),
                                             .tap_count = tap_count,
                                             .signal_count = signal_count,
                                             .signal_stride = signal.stride[0],
                                             .z = static_cast<T*>(problem.z),
                                             .z_count = line.z,
                                             .z_stride = line.z_stride,
                                             .first = plan.first[0],
                                             .step = line.step,
                                             .conjugate = conjugate});
        return ORK_CONV_OK;
    }
    const bool dots = by_dots(line.z, line.step, tap_count, Vec<W>::lanes, parts);
    Copy copied = copy_of_signal(problem.dims, in_place, dots, touched, tap_count, signal_count, Vec<W>::lanes / parts);
    // An infinite tap must not meet a zero that is none of the signal.
    if (copied == Copy::padded && !all_finite(tap_lines, taps_size)) copied = in_place ? Copy::none : Copy::tight;
    const bool padded = copied == Copy::padded;
    const W* signal_lines = nullptr;
    if constexpr (std::is_same_v<T, W>) signal_lines = static_cast<const W*>(signal.data);
    if (copied != Copy::none) {
        constexpr Int width = most_registers<parts> * Vec<W>::lanes / parts;
        const Int before = padded ? tap_count - 1 : 0, after = padded ? before + width : 0;
        W* copy = signal_memory.allocate(times(signal_lines_count, parts * (before + signal_count + after)));
        if (copy == nullptr) return ORK_CONV_NO_WORK_MEMORY;
        signal_lines =
            copy_operand<parts, T>(signal, problem.dims, along, false, false, copy, before, after, strides[1]);
    }

    Lines<T, W, parts> lines;
    lines.taps = tap_lines, lines.tap_count = tap_count;
    lines.signal = signal_lines, lines.signal_count = signal_count, lines.padded = padded;
    lines.z = static_cast<T*>(problem.z), lines.z_count = line.z, lines.z_stride = line.z_stride;
    lines.first = plan.first[along], lines.step = line.step;
    lines.conjugate = conjugate;
    lines.outer_count = 0;
    for (int d = 0; d < problem.dims; ++d) {
        if (d == along) continue;
        const Dimension& n = problem.dimension[d];
        lines.outer[lines.outer_count++] = {.taps = taps.extent[d],
                                            .signal = signal.extent[d],
                                            .z = n.z,
                                            .taps_stride = strides[0][d],
                                            .signal_stride = strides[1][d],
                                            .z_stride = n.z_stride,
                                            .first = plan.first[d],
                                            .step = n.step};
    }
    sum_lines(lines, line_count, plan.products, dots);
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
