// SPDX-License-Identifier: MIT
// One plan carried out: copies of the operands, lines divided among threads.
#pragma once

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>

#include "conv/direct/block.h"
#include "conv/direct/dots.h"
#include "conv/direct/plan.h"
#include "conv/direct/scattered.h"
#include "frame/core_imports.h"
#include "ork/conv.h"

namespace ork::conv {

// Memory that a run needs for itself.
template <class W>
class Work {
public:
    Work() = default;
    ~Work()
    {
        if (data_ != nullptr) ork_serv_free(data_);
    }
    Work(const Work&) = delete;
    Work& operator=(const Work&) = delete;

    // Null when there is no memory.
    W* allocate(Int numbers)
    {
        const Int bytes = times(numbers, sizeof(W));
        return data_ = static_cast<W*>(ork_serv_malloc(static_cast<std::size_t>(bytes), 128));
    }

private:
    W* data_ = nullptr;
};

// `count` elements in the precision of the sums.
template <int parts, class T, class W>
inline void copy_line(const T* from, Int stride, Int count, bool conjugate, W* to)
{
    if (stride == 1 && !conjugate) {
        const Int numbers = parts * count;
        if constexpr (std::is_same_v<T, W>) {
            std::memcpy(to, from, static_cast<std::size_t>(numbers) * sizeof(W));
        } else {
            Int i = 0;
            for (; i + 2 <= numbers; i += 2) store(to + i, Vec<W>{_mm_cvtps_pd(load_low(from + i).v)});
            if (i < numbers) to[i] = from[i];
        }
        return;
    }
    for (Int i = 0; i < count; ++i, from += parts * stride, to += parts) {
        to[0] = from[0];
        if constexpr (parts == 2) to[1] = conjugate ? -W(from[1]) : W(from[1]);
    }
}

// An operand as lines of dimension `along`, the other dimensions in their order, with zeros before and after each line.
// Strides are changed to those of the copy; the result is the first line's first element.
template <int parts, class T, class W>
W* copy_operand(const Operand& operand, int dims, int along, bool reverse, bool conjugate, W* to, Int before, Int after,
                Int (&stride)[max_dims])
{
    const Int count = operand.extent[along];
    const Int step = reverse ? -operand.stride[along] : operand.stride[along];
    const T* from = static_cast<const T*>(operand.data) + (reverse ? parts * (count - 1) * operand.stride[along] : 0);
    Int tight = before + count + after;
    for (int d = 0; d < dims; ++d)
        if (d != along) stride[d] = tight, tight *= operand.extent[d];
    W* const result = to + parts * before;
    Int index[max_dims] = {};
    for (;;) {
        to = std::fill_n(to, parts * before, W(0));
        copy_line<parts>(from, step, count, conjugate, to);
        to = std::fill_n(to + parts * count, parts * after, W(0));
        int d = 0;
        for (; d < dims; ++d) {
            if (d == along) continue;
            from += parts * operand.stride[d];
            if (++index[d] < operand.extent[d]) break;
            from -= parts * operand.extent[d] * operand.stride[d];
            index[d] = 0;
        }
        if (d == dims) return result;
    }
}

// Whether no number is infinite or a NaN. Looks at bits: a comparison would raise a flag.
template <class W>
bool all_finite(const W* numbers, Int count)
{
    using Bits = std::conditional_t<sizeof(W) == 8, std::uint64_t, std::uint32_t>;
    constexpr Bits exponent = std::bit_cast<Bits>(std::numeric_limits<W>::infinity());
    for (Int i = 0; i < count; ++i)
        if ((std::bit_cast<Bits>(numbers[i]) & exponent) == exponent) return false;
    return true;
}

// The work that a thread is given at once, in products of registers: some tens of microseconds.
inline constexpr double registers_per_part = 150000;

template <class T, class W, int parts>
struct Division {
    const Lines<T, W, parts>* lines;
    Int line_count, lines_per_part;        // a part is some lines,
    Int segments_per_line, segment_length; // or a segment of one
    bool dots;
};

template <class T, class W, int parts>
void sum_segment(const Division<T, W, parts>& division, Int line, Int begin, Int end)
{
    T* z;
    const Pairs<W> pairs = pairs_of(*division.lines, line, &z);
    if (division.dots)
        sum_apart(*division.lines, pairs, begin, end, z);
    else
        sum_consecutive(*division.lines, pairs, begin, end, z);
}

template <class T, class W, int parts>
void sum_part(void* context, std::int64_t k)
{
    const auto& division = *static_cast<const Division<T, W, parts>*>(context);
    const Int outputs = division.lines->z_count;
    if (division.segments_per_line > 1) {
        const Int begin = k % division.segments_per_line * division.segment_length;
        const Int end = begin + division.segment_length;
        return sum_segment(division, k / division.segments_per_line, begin, end < outputs ? end : outputs);
    }
    const Int first = k * division.lines_per_part, past = first + division.lines_per_part;
    for (Int line = first; line < past && line < division.line_count; ++line) sum_segment(division, line, 0, outputs);
}

// By sizes only: the parts are the same for any number of threads.
template <class T, class W, int parts>
void sum_lines(const Lines<T, W, parts>& lines, Int line_count, double products, bool dots)
{
    constexpr int lanes = Vec<W>::lanes;
    Division<T, W, parts> division{.lines = &lines,
                                   .line_count = line_count,
                                   .lines_per_part = line_count,
                                   .segments_per_line = 1,
                                   .segment_length = lines.z_count,
                                   .dots = dots};
    const double work = products / lanes / registers_per_part;
    if (work < 2) return sum_part<T, W, parts>(&division, 0);
    const double work_per_line = work / static_cast<double>(line_count);
    division.lines_per_part = 1;
    if (work_per_line < 1) {
        const Int at_once = static_cast<Int>(1 / work_per_line);
        division.lines_per_part = at_once < line_count ? at_once : line_count;
    } else if (work_per_line > 2) {
        constexpr Int block = 16 * lanes;
        const double length = static_cast<double>(lines.z_count) / work_per_line;
        division.segment_length = (static_cast<Int>(length) / block + 1) * block;
        division.segments_per_line = (lines.z_count + division.segment_length - 1) / division.segment_length;
    }
    const Int count = division.segments_per_line > 1
                          ? times(line_count, division.segments_per_line)
                          : (line_count + division.lines_per_part - 1) / division.lines_per_part;
    if (count == 1) return sum_part<T, W, parts>(&division, 0);
    ork_conv_do_parallel(count, sum_part<T, W, parts>, &division);
}

template <class T, class W, int parts>
int sum_planned(const Problem& problem, const Plan& plan)
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
    Copy copied = copy_of_signal(problem.dims, in_place, dots, touched, signal_count, Vec<W>::lanes / parts);
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

} // namespace ork::conv
