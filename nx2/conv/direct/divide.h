// SPDX-License-Identifier: MIT
// All lines of z, divided among threads when they are worth it.
#pragma once

#include "conv/direct/block.h"
#include "conv/direct/dots.h"
#include "frame/core_imports.h"

namespace ork::conv {

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

} // namespace ork::conv
