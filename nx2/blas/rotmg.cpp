// SPDX-License-Identifier: MIT
// Generates the modified rotation H that takes (sqrt(d1) x1, sqrt(d2) y1) to (sqrt(d1') x1', 0): the square-root-free
// form of Lawson, Hanson, Kincaid and Krogh, "Basic Linear Algebra Subprograms for Fortran Usage", 1979. param[0] says
// which of param[1 .. 4] = h11, h21, h12, h22 are set: -1 all, 0 h21 and h12 (the others are 1), 1 h11 and h22 (h12 =
// 1, h21 = -1), -2 none (H is the identity). d1 and |d2| are brought between 2^-24 and 2^24 by powers of 2^12 in H. The
// exponents of all products are kept apart, so nothing overflows or underflows but a result that must.
#include "blas/level1_kernels.h"
#include "blas/power_of_two.h"

namespace ork {
namespace {

// Rounds d to T, and gives the steps of 2^24 that bring |d| strictly between 2^-24 and 2^24.
template <class T>
inline int steps(Scaled& d)
{
    d = d.normal();
    d.significand = static_cast<T>(d.significand);
    const double m = d.significand < 0 ? -d.significand : d.significand;
    if (!(m >= 1 && m <= 2)) return 0; // zero, infinity or NaN
    int e = d.e, k = 0;
    for (; e < -24 || (e == -24 && m == 1); e += 24) ++k;
    for (; e >= 24 || (e == 23 && m == 2); e -= 24) --k;
    return k;
}

template <class T>
void rotmg(T* d1, T* d2, T* x1, T y1, T* param)
{
    const auto impossible = [&] {
        *d1 = *d2 = *x1 = 0;
        param[0] = -1, param[1] = param[2] = param[3] = param[4] = 0;
    };
    if (*d1 < 0) return impossible();
    if (*d2 == 0 || y1 == 0) {
        param[0] = -2;
        return;
    }
    const Scaled a1(*d1), a2(*d2), x(*x1), y(y1);
    const Scaled p1 = a1 * x, p2 = a2 * y, q1 = (p1 * x).normal(), q2 = (p2 * y).normal();
    const double m1 = q1.significand, m2 = q2.significand < 0 ? -q2.significand : q2.significand;
    const bool first = m1 != 0 && (q1.e != q2.e ? q1.e > q2.e : m1 > m2); // q1 > |q2|
    const auto ratio = [](Scaled a, Scaled b) { return a.significand == 0 || a.e - b.e < -100 ? 0 : (a / b).value(); };

    int flag;
    Scaled h11(1), h21(-1), h12(1), h22(1), new_d1 = a1, new_d2 = a2, new_x = x;
    if (first) {
        const double u = 1 + ratio(q2, q1);
        if (!(u > 0)) return impossible(); // q2 = -q1 but for rounding
        flag = 0;
        h21 = -(y / x), h12 = p2 / p1;
        new_d1 = a1 / u, new_d2 = a2 / u, new_x = x * u;
    } else {
        if (q2.significand < 0) return impossible();
        const double u = 1 + ratio(q1, q2);
        flag = 1;
        h11 = p1 / p2, h22 = x / y;
        new_d1 = a2 / u, new_d2 = a1 / u, new_x = y * u;
    }
    if (const int k = steps<T>(new_d1); k != 0) {
        flag = -1;
        new_d1.e += 24 * k;
        new_x.e -= 12 * k, h11.e -= 12 * k, h12.e -= 12 * k;
    }
    if (const int k = steps<T>(new_d2); k != 0) {
        flag = -1;
        new_d2.e += 24 * k;
        h21.e -= 12 * k, h22.e -= 12 * k;
    }
    *d1 = static_cast<T>(new_d1.value()), *d2 = static_cast<T>(new_d2.value()), *x1 = static_cast<T>(new_x.value());
    param[0] = static_cast<T>(flag);
    if (flag != 0) param[1] = static_cast<T>(h11.value()), param[4] = static_cast<T>(h22.value());
    if (flag != 1) param[2] = static_cast<T>(h21.value()), param[3] = static_cast<T>(h12.value());
}

} // namespace
} // namespace ork

using namespace ork;

void ork_blas_nx2_srotmg(float* d1, float* d2, float* x1, const float* y1, float* param)
{
    rotmg(d1, d2, x1, *y1, param);
}

void ork_blas_nx2_drotmg(double* d1, double* d2, double* x1, const double* y1, double* param)
{
    rotmg(d1, d2, x1, *y1, param);
}
