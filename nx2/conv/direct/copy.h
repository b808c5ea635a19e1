// SPDX-License-Identifier: MIT
// Copies of operands, in the order and the precision that the sums want.
#pragma once

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>
#include <type_traits>

#include "conv/direct/plan.h"
#include "frame/core_imports.h"
#include "simd/vec.h"

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

} // namespace ork::conv
