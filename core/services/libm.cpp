// SPDX-License-Identifier: MIT
#include <cmath>
#include <numbers>

#include "export.h"
#include "ork/abi/services.h"

ORK_EXPORT double ork_serv_libm_sin(double x) { return std::sin(x); }
ORK_EXPORT double ork_serv_libm_cos(double x) { return std::cos(x); }
ORK_EXPORT float ork_serv_libm_sinf(float x) { return std::sin(x); }
ORK_EXPORT float ork_serv_libm_cosf(float x) { return std::cos(x); }

// x = half / 2 + r with |r| <= 1/4, exactly; then sin and cos of pi * r in 64-bit precision, which rounds to the
// nearest double in all but about one case in a thousand, and exchanged and negated by the number of quarter turns.
// Multiples of 1/2 are exact, with +0 for a cosine of zero and the sign of x for a sine.
ORK_EXPORT void ork_serv_libm_sincospi(double x, double* sine, double* cosine)
{
    if (!std::isfinite(x)) {
        *sine = *cosine = x - x;
        return;
    }
    const double turn = x - 2 * std::trunc(x / 2); // (-2, 2), exact, sign of x
    const double half = std::round(2 * turn);      // quarter turns
    const long double angle = std::numbers::pi_v<long double> * (turn - half / 2);
    const double s = static_cast<double>(std::sin(angle)), c = static_cast<double>(std::cos(angle));
    switch (static_cast<int>(half) & 3) {
    case 0:
        *sine = s, *cosine = c;
        break;
    case 1:
        *sine = c, *cosine = 0 - s;
        break;
    case 2:
        *sine = 0 - s, *cosine = -c;
        break;
    case 3:
        *sine = -c, *cosine = s + 0;
        break;
    }
    if (*sine == 0) *sine = std::copysign(0.0, x);
}
