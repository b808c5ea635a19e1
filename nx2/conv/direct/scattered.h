// SPDX-License-Identifier: MIT
// Outputs of one line whose signal is read where it stands, with any stride and in its own precision: for elements that
// are met too seldom to be worth a copy.
#pragma once

#include "conv/direct/lines.h"

namespace ork::conv {

// All of the only line. Its signal is here, not where `line` would have it.
template <class T, class W, int parts>
void sum_scattered(const Lines<T, W, parts>& line, const T* signal, Int stride)
{
    for (Int k = 0; k < line.z_count; ++k) {
        const Int m = line.first + k * line.step, to_first = m - (line.tap_count - 1);
        const Int from = to_first < 0 ? -to_first : 0;
        const Int to = m < line.signal_count ? line.tap_count : line.signal_count - to_first;
        const T* u = signal + parts * (to_first + from) * stride;
        W sum[2] = {};
        for (Int q = from; q < to; ++q, u += parts * stride) {
            const W* tap = line.taps + parts * q;
            if constexpr (parts == 2) {
                sum[0] += tap[0] * W(u[0]) - tap[1] * W(u[1]);
                sum[1] += tap[0] * W(u[1]) + tap[1] * W(u[0]);
            } else {
                sum[0] += tap[0] * W(u[0]);
            }
        }
        T* z = line.z + parts * k * line.z_stride;
        z[0] = static_cast<T>(sum[0]);
        if constexpr (parts == 2) z[1] = static_cast<T>(line.conjugate ? -sum[1] : sum[1]);
    }
}

} // namespace ork::conv
