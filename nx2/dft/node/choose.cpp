// SPDX-License-Identifier: MIT
// Which engine computes a dimension: pure functions of what the commit knows.
#include <emmintrin.h>

#include "dft/node/node.h"
#include "frame/export.h"

using namespace ork::dft;

// Lengths above which one transform runs as a matrix, by kind of length.
static constexpr std::int64_t longest_mixed = std::int64_t{1} << 24, longest_power_of_two = std::int64_t{1} << 26;

ORK_EXPORT std::int32_t ork_dft_nx2_choose_engine(const ork_dft_facts* facts)
{
    const ork_dft_facts& f = *facts;
    if (f.complex_storage == ORK_DFT_REAL_REAL) return ORK_DFT_ENGINE_SPLIT;
    const bool unit_strides = f.head_stride[0] == 1 && f.head_stride[1] == 1;
    const bool power = is_power_of_two(f.length);
    if (f.complex_storage == ORK_DFT_COMPLEX_COMPLEX && f.rank == 1 && unit_strides && f.size >= 16 &&
        !f.four_step_refused) {
        const bool too_long = f.length > (power ? longest_power_of_two : longest_mixed);
        if (too_long || f.workspace == ORK_DFT_AVOID) return ORK_DFT_ENGINE_FOUR_STEP;
    }
    if (power) return ORK_DFT_ENGINE_POWER_OF_TWO;
    if (f.alternative) return ORK_DFT_ENGINE_ALTERNATIVE;
    if (!f.batched_refused && ork_dft_nx2_batched_applies(facts)) return ORK_DFT_ENGINE_BATCHED;
    return f.length <= 64 ? ORK_DFT_ENGINE_LENGTH : ORK_DFT_ENGINE_MIXED;
}

ORK_EXPORT std::int32_t ork_dft_nx2_batched_applies(const ork_dft_facts* facts)
{
    const ork_dft_facts& f = *facts;
    const bool inplace = f.placement == ORK_DFT_INPLACE;
    const std::int64_t stride = f.stride[inplace ? 0 : 1];
    return (f.index != 0 || (f.rank == 1 && f.transforms != 1 && inplace)) &&
           f.complex_storage == ORK_DFT_COMPLEX_COMPLEX && f.head_stride[0] == 1 &&
           (inplace || f.head_stride[1] == 1) && f.length >= 65 && f.length <= 256 && (stride & -stride) <= 255;
}

ORK_EXPORT std::int64_t ork_dft_nx2_batch_of_length(std::int64_t length, std::int64_t stride)
{
    const bool sixteens = (stride & -stride) == 16;
    const std::int64_t batch = length <= 512 ? 2048 / length : 4;
    return sixteens && batch < 16 ? 16 : batch;
}

// The pair closest to a square. A power of two is halved in its exponent; otherwise divisors are looked for from
// floor(sqrt(n)) on, and those above, even or odd, are met as cofactors of those below: 2 p q with odd primes p < q
// would else become 2 rows of p q numbers.
ORK_EXPORT std::int32_t ork_dft_nx2_four_step_factors(std::int32_t precision, std::int64_t n, std::int64_t* n1,
                                                      std::int64_t* n2)
{
    std::int64_t first = 1;
    if (is_power_of_two(n)) {
        first <<= __builtin_ctzll(static_cast<unsigned long long>(n)) / 2;
    } else {
        const __m128d value = _mm_set_sd(static_cast<double>(n)); // no library's square root
        first = static_cast<std::int64_t>(_mm_cvtsd_f64(_mm_sqrt_sd(value, value)));
        while (n % first != 0) --first;
    }
    const std::int64_t second = n / first;
    const int longer = precision == ORK_DFT_SINGLE ? 1 : 0;
    for (const std::int64_t factor : {first, second})
        if (factor > (is_power_of_two(factor) ? longest_power_of_two : longest_mixed) << longer)
            return ORK_DFT_NOT_APPLICABLE;
    *n1 = first;
    *n2 = second;
    return ORK_DFT_OK;
}
