// SPDX-License-Identifier: MIT
// A convolution as sums of lines. One dimension runs along the lines; there the longer operand is the signal, the
// shorter one gives the taps, which are stored in the reverse order:
//
//     z(k) = sum over q of tap(q) signal(m - (taps - 1) + q),    m = first + k step,
//
// over all q for which both exist. In every other dimension, where either operand may be the longer one, a line of z is
// the sum over all pairs of lines that meet in it.
//
// Numbers W are real or, of `parts` = 2, adjacent pairs; counts, indices and strides are in elements.
#pragma once

#include "conv/problem.h"

namespace ork::conv {

struct Outer { // a dimension across the lines
    Int taps, signal, z;
    Int taps_stride, signal_stride, z_stride;
    Int first, step;
};

template <class T, class W, int parts>
struct Lines {
    const W *taps, *signal; // lines without gaps
    Int tap_count, signal_count;
    T* z;
    Int z_count, z_stride;
    Int first, step;
    bool conjugate; // the results
    bool padded;    // every block of outputs may be summed as if it met all taps: beside the signal stand zeros
    int outer_count;
    Outer outer[max_dims - 1];
};

// The pairs of lines that meet in one line of z: all in `count` steps of every dimension from the first one on. There
// is one when there are no dimensions.
template <class W>
struct Pairs {
    const W *taps, *signal;
    int dims;
    Int count[max_dims - 1], taps_step[max_dims - 1], signal_step[max_dims - 1]; // steps in numbers
};

// Those of the line `number` of z, and where it starts.
template <class T, class W, int parts>
inline Pairs<W> pairs_of(const Lines<T, W, parts>& lines, Int number, T** z)
{
    Pairs<W> pairs;
    pairs.taps = lines.taps, pairs.signal = lines.signal, pairs.dims = 0;
    pairs.count[0] = 1;
    *z = lines.z;
    for (int d = 0; d < lines.outer_count; ++d) {
        const Outer& n = lines.outer[d];
        const Int k = number % n.z, m = n.first + k * n.step;
        number /= n.z;
        *z += parts * k * n.z_stride;
        const Int from = m < n.signal ? 0 : m - (n.signal - 1), to = m < n.taps ? m + 1 : n.taps;
        pairs.taps += parts * from * n.taps_stride;
        pairs.signal += parts * (m - from) * n.signal_stride;
        if (to - from == 1) continue;
        pairs.count[pairs.dims] = to - from;
        pairs.taps_step[pairs.dims] = parts * n.taps_stride;
        pairs.signal_step[pairs.dims] = -parts * n.signal_stride;
        ++pairs.dims;
    }
    return pairs;
}

template <class W, class Visit>
inline __attribute__((always_inline)) void for_each_pair(const Pairs<W>& pairs, Visit visit)
{
    const W *first_taps = pairs.taps, *first_signal = pairs.signal;
    Int index[max_dims - 1] = {};
    for (;;) {
        const W *taps = first_taps, *signal = first_signal;
        for (Int left = pairs.count[0];;) {
            visit(taps, signal);
            if (--left == 0) break;
            taps += pairs.taps_step[0], signal += pairs.signal_step[0];
        }
        for (int d = 1;; ++d) {
            if (d >= pairs.dims) return;
            first_taps += pairs.taps_step[d], first_signal += pairs.signal_step[d];
            if (++index[d] < pairs.count[d]) break;
            first_taps -= pairs.count[d] * pairs.taps_step[d], first_signal -= pairs.count[d] * pairs.signal_step[d];
            index[d] = 0;
        }
    }
}

} // namespace ork::conv
