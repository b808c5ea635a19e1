// SPDX-License-Identifier: MIT
#include "conv/fft/lengths.h"

namespace ork::conv {
namespace {

int floor_log2(Int n) { return 63 - __builtin_clzll(static_cast<unsigned long long>(n)); }

// log2 by its tangent between powers of two.
double log2_of(Int n)
{
    const int k = floor_log2(n);
    return k + static_cast<double>(n) / static_cast<double>(Int{1} << k) - 1;
}

// How much dearer than a power of two: passes of radix 5 and 7 do more than those of radix 8.
double odd_surcharge(Int n)
{
    double charge = 1;
    for (n >>= __builtin_ctzll(static_cast<unsigned long long>(n)); n % 3 == 0; n /= 3) charge += 0.015;
    for (; n % 5 == 0; n /= 5) charge += 0.05;
    for (; n % 7 == 0; n /= 7) charge += 0.09;
    return n == 1 ? charge : 3;
}

// Nanoseconds a number.
double nanoseconds(Int n, Int bytes)
{
    const double in_cache = 0.5 + 0.075 * log2_of(n);
    return bytes <= Int{1} << 20 ? in_cache : bytes <= Int{8} << 20 ? in_cache + 0.15 : in_cache + 0.5;
}

} // namespace

double seconds_of_line(Int n, Numbers numbers)
{
    const Int bytes = times(n, (numbers.is_complex ? 2 : 1) * (numbers.is_double ? 8 : 4));
    const double factor = (numbers.is_complex ? 1.85 : 1) * (numbers.is_double ? 1 : 0.6);
    const double surcharge = n <= 64 ? 1 : odd_surcharge(n);
    return 1e-9 * (60 + factor * surcharge * nanoseconds(n, bytes) * static_cast<double>(n));
}

double seconds_of_column(Int n, bool is_double)
{
    const double surcharge = n <= 64 ? 1 : odd_surcharge(n);
    return 1e-9 * ((is_double ? 2.4 : 1.25) * surcharge * nanoseconds(n, 0) * static_cast<double>(n));
}

Int good_length(Int n)
{
    if (n <= 64) return n <= 2 ? n : n + n % 2; // every one has a kernel; real ones of half the length
    Int best = 0;
    double least = 0;
    for (const Int odd : odd_factors) {
        Int m = 16 * odd;
        while (m < n) m = times(m, 2);
        const double cost = odd_surcharge(m) * static_cast<double>(m);
        if (best == 0 || cost < least) best = m, least = cost;
    }
    return best;
}

} // namespace ork::conv
