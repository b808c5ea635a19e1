// SPDX-License-Identifier: MIT
// Layouts of one contiguous half spectrum.
#include <string.h>

#include "dft/real/real.h"

namespace ork::dft {

template <class R>
void from_cce(Packing packing, std::int64_t n, const R* cce, R* packed)
{
    const std::int64_t half = n / 2;
    const bool even = n % 2 == 0;
    const R last = cce[2 * half]; // R(n/2) for even n
    const auto move = [](R* to, const R* from, std::int64_t count) {
        if (count > 0) memmove(to, from, static_cast<std::size_t>(count) * sizeof(R));
    };
    packed[0] = cce[0];
    const std::int64_t inner = even ? n - 2 : n - 1; // numbers after X[0] and before R(n/2)
    if (packing == Packing::pack || packing == Packing::perm) {
        const bool second = even && packing == Packing::perm;
        move(packed + (second ? 2 : 1), cce + 2, inner);
        if (even) packed[second ? 1 : n - 1] = last;
    } else {
        if (packed != cce) move(packed + 2, cce + 2, inner);
        packed[1] = 0;
        if (even) packed[n] = last, packed[n + 1] = 0;
    }
}

template <class R>
void to_cce(Packing packing, std::int64_t n, const R* packed, R* cce)
{
    const bool even = n % 2 == 0, short_form = packing == Packing::pack || packing == Packing::perm;
    const bool second = even && packing == Packing::perm;
    const std::int64_t inner = even ? n - 2 : n - 1, begin = short_form && !second ? 1 : 2;
    const R first = packed[0], last = !even ? R(0) : second ? packed[1] : packed[begin + inner];
    if (inner > 0) memmove(cce + 2, packed + begin, static_cast<std::size_t>(inner) * sizeof(R));
    cce[0] = first, cce[1] = 0;
    if (even) cce[n] = last, cce[n + 1] = 0;
}

#define INSTANTIATE(R)                                                                                                 \
    template void from_cce(Packing, std::int64_t, const R*, R*);                                                       \
    template void to_cce(Packing, std::int64_t, const R*, R*);
INSTANTIATE(float)
INSTANTIATE(double)

} // namespace ork::dft
