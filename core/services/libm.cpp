// SPDX-License-Identifier: MIT
// Sines and cosines for twiddle factors, by the system's mathematics library.
#include <atomic>
#include <cmath>
#include <numbers>

#include "export.h"
#include "loader/library.h"
#include "ork/abi/services.h"

namespace {

template <class Routine>
class InLibm {
public:
    constexpr explicit InLibm(const char* name) : name_(name) {}

    Routine* get()
    {
        void* address = address_.load(std::memory_order_acquire);
        if (address == nullptr) [[unlikely]] {
            address = ork::loader::find_in_libm(name_);
            address_.store(address, std::memory_order_release);
        }
        return reinterpret_cast<Routine*>(address);
    }

private:
    std::atomic<void*> address_ = nullptr;
    const char* name_;
};

constinit InLibm<double(double)> sine_d("sin"), cosine_d("cos");
constinit InLibm<float(float)> sine_s("sinf"), cosine_s("cosf");
constinit InLibm<void(long double, long double*, long double*)> both("sincosl");

} // namespace

ORK_EXPORT double ork_serv_libm_sin(double x) { return sine_d.get()(x); }
ORK_EXPORT double ork_serv_libm_cos(double x) { return cosine_d.get()(x); }
ORK_EXPORT float ork_serv_libm_sinf(float x) { return sine_s.get()(x); }
ORK_EXPORT float ork_serv_libm_cosf(float x) { return cosine_s.get()(x); }

// x = half / 2 + r with |r| <= 1/4, exactly; then sin and cos of pi * r in 64-bit precision, which rounds to the
// nearest double in all but about one case in a thousand, and exchanged and negated by the number of quarter turns.
// Multiples of 1/2 are exact, with +0 for a cosine of zero and the sign of x for a sine.
ORK_EXPORT void ork_serv_libm_sincospi(double x, double* sine, double* cosine)
{
    if (!std::isfinite(x)) {
        *sine = *cosine = x - x;
        return;
    }
    const double turn = x - 2 * std::trunc(x / 2);                           // (-2, 2), exact, sign of x
    const auto half = static_cast<int>(2 * turn + std::copysign(0.5, turn)); // quarter turns, to the nearest
    const long double angle = std::numbers::pi_v<long double> * (turn - half / 2.0);
    long double s_wide, c_wide;
    both.get()(angle, &s_wide, &c_wide);
    const double s = static_cast<double>(s_wide), c = static_cast<double>(c_wide);
    switch (half & 3) {
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
