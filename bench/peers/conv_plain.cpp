// SPDX-License-Identifier: MIT
// Convolution of lines by summation: the loop that everybody writes, and blocks of outputs in registers.
#include <algorithm>
#include <complex>
#include <emmintrin.h>

#include "peers/conv.h"

namespace ork::peers {

template <class T>
void plain_conv(const T* __restrict x, long nx, const T* __restrict y, long ny, T* __restrict z)
{
    std::fill_n(z, nx + ny - 1, T{});
    for (long j = 0; j < ny; ++j)
        for (long i = 0; i < nx; ++i) {
            if constexpr (is_complex<T>)
                z[i + j] += T(x[i].real() * y[j].real() - x[i].imag() * y[j].imag(),
                              x[i].real() * y[j].imag() + x[i].imag() * y[j].real());
            else
                z[i + j] += x[i] * y[j];
        }
}

namespace {

struct Double {
    using T = double;
    using V = __m128d;
    static V load(const T* p) { return _mm_loadu_pd(p); }
    static V broadcast(T a) { return _mm_set1_pd(a); }
    static V add(V a, V b) { return _mm_add_pd(a, b); }
    static V times(V a, V b) { return _mm_mul_pd(a, b); }
    static void store(T* p, V a) { _mm_storeu_pd(p, a); }
};
struct Float {
    using T = float;
    using V = __m128;
    static V load(const T* p) { return _mm_loadu_ps(p); }
    static V broadcast(T a) { return _mm_set1_ps(a); }
    static V add(V a, V b) { return _mm_add_ps(a, b); }
    static V times(V a, V b) { return _mm_mul_ps(a, b); }
    static void store(T* p, V a) { _mm_storeu_ps(p, a); }
};

// Outputs m with all of y within x, eight registers of them at a time; the others one by one.
template <class S>
void blocks(const typename S::T* x, long nx, const typename S::T* y, long ny, typename S::T* z)
{
    using T = typename S::T;
    constexpr long registers = 8, lanes = 16 / sizeof(T), block = registers * lanes;
    const auto one = [&](long m) {
        T sum = 0;
        for (long j = std::max(0L, m - nx + 1); j <= std::min(m, ny - 1); ++j) sum += x[m - j] * y[j];
        z[m] = sum;
    };
    long m = 0;
    for (; m < std::min(ny - 1, nx + ny - 1); ++m) one(m);
    for (; m + block <= nx; m += block) {
        typename S::V sum[registers];
        for (auto& s : sum) s = S::broadcast(0);
        for (long j = 0; j < ny; ++j) {
            const auto factor = S::broadcast(y[j]);
            for (long r = 0; r < registers; ++r)
                sum[r] = S::add(sum[r], S::times(factor, S::load(x + m - j + r * lanes)));
        }
        for (long r = 0; r < registers; ++r) S::store(z + m + r * lanes, sum[r]);
    }
    for (; m < nx + ny - 1; ++m) one(m);
}

} // namespace

template <>
void hand_conv(const double* x, long nx, const double* y, long ny, double* z)
{
    nx < ny ? blocks<Double>(y, ny, x, nx, z) : blocks<Double>(x, nx, y, ny, z);
}
template <>
void hand_conv(const float* x, long nx, const float* y, long ny, float* z)
{
    nx < ny ? blocks<Float>(y, ny, x, nx, z) : blocks<Float>(x, nx, y, ny, z);
}

template void plain_conv(const float*, long, const float*, long, float*);
template void plain_conv(const double*, long, const double*, long, double*);
template void plain_conv(const std::complex<float>*, long, const std::complex<float>*, long, std::complex<float>*);
template void plain_conv(const std::complex<double>*, long, const std::complex<double>*, long, std::complex<double>*);

} // namespace ork::peers
