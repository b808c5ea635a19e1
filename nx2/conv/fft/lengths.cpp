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

// Nanoseconds a real number of a transform that takes so many bytes, in double precision. Beyond the first cache lines
// take two trips through memory.
double nanoseconds(double log2_n, Int bytes)
{
    const double passes = 0.15 + 0.1 * log2_n;
    return passes + (bytes <= 64 << 10    ? 0
                     : bytes <= 512 << 10 ? 0.5
                     : bytes <= 2 << 20   ? 0.6
                     : bytes <= 4 << 20   ? 0.8
                                          : 1.15);
}

} // namespace

double seconds_of_line(Int n, Numbers numbers)
{
    const Int reals = numbers.is_complex ? 2 : 1, bytes = times(n, reals * (numbers.is_double ? 8 : 5));
    const double factor = (numbers.is_complex ? 0.84 : 1) * (numbers.is_double ? 1 : 0.57);
    const double surcharge = n <= 64 ? 1 : odd_surcharge(n);
    const double numbers_of_line = static_cast<double>(n) * static_cast<double>(reals);
    return 1e-9 * (25 + factor * surcharge * nanoseconds(log2_of(n) + static_cast<double>(reals - 1), bytes) *
                            numbers_of_line);
}

double seconds_of_column(Int n, bool is_double)
{
    if (n < 8) n = 8;
    const double surcharge = n <= 64 ? 1 : odd_surcharge(n);
    return 1e-9 * ((is_double ? 1 : 0.52) * surcharge * (0.25 * log2_of(n) - 0.3) * static_cast<double>(n));
}

// Bit n: 1, or even and of the primes up to 7. Below 64 there is a kernel for every length; these are quick.
constexpr std::uint64_t bits(const int (&lengths)[23])
{
    std::uint64_t set = 0;
    for (const int n : lengths) set |= std::uint64_t{1} << n;
    return set;
}
constexpr std::uint64_t short_lengths =
    bits({1, 2, 4, 6, 8, 10, 12, 14, 16, 18, 20, 24, 28, 30, 32, 36, 40, 42, 48, 50, 54, 56, 60});

Int good_length(Int n)
{
    if (n <= 64) {
        while (n < 64 && !(short_lengths >> n & 1)) ++n;
        return n;
    }
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
