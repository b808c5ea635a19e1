// SPDX-License-Identifier: MIT
// Lengths that Fourier transforms like, and what they cost. Times are seconds of one thread as measured with
// descriptors of one transform in place, averaged over lengths: they rank methods, they don't predict.
#pragma once

#include "conv/problem.h"

namespace ork::conv {

struct Numbers {
    bool is_complex, is_double;
};

// One transform of n numbers that lie together.
double seconds_of_line(Int n, Numbers numbers);
// One complex transform of n numbers that lie apart, when several columns are transformed at once.
double seconds_of_column(Int n, bool is_double);

// The length of at least n whose transform is cheapest.
Int good_length(Int n);
// Calls offer(m) for the good lengths m with least <= m < bound.
template <class Offer>
void good_lengths(Int least, Int bound, Offer offer);

// Products of these with powers of 2.
inline constexpr Int odd_factors[] = {1, 3, 5, 7, 9, 15, 21, 25, 27, 45, 75};

template <class Offer>
void good_lengths(Int least, Int bound, Offer offer)
{
    for (const Int odd : odd_factors)
        for (Int m = 16 * odd; m < bound; m *= 2)
            if (m >= least) offer(m);
}

} // namespace ork::conv
