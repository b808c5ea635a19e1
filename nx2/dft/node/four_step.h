// SPDX-License-Identifier: MIT
// What a four-step plan holds beside its public record.
#pragma once

#include "dft/node/node.h"

namespace ork::dft {

// w_n^e = coarse[e >> shift] fine[e mod 2^shift]: exact roots whose product is rounded once.
struct RootTables {
    int shift;
    const Complex<long double>*coarse, *fine;

    Complex<long double> operator()(std::int64_t e) const
    {
        return coarse[e >> shift] * fine[e & ((std::int64_t{1} << shift) - 1)];
    }
};

inline const RootTables& roots_of(const ork_dft_four_step& plan)
{
    return *static_cast<const RootTables*>(plan.twiddles);
}

inline constexpr std::int64_t group_of_vectors = 8;

// In place a square, or two beside each other, is transposed where it is; other shapes need a second matrix.
inline std::int32_t mode_in_place(std::int64_t n1, std::int64_t n2) { return n1 == n2 || n2 == 2 * n1 ? 0 : 2; }

} // namespace ork::dft
