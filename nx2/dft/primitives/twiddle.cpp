// SPDX-License-Identifier: MIT
// Multiplication of a contiguous column by the roots w^(j k), each the product of two stored ones.
#include "dft/primitives/wrappers.h"
#include "ork/abi/dft.h"
#include "simd/complex.h"

namespace ork::dft {
namespace {

// Sign bits of the real lanes and of the imaginary ones: which of them are negated gives the direction.
struct SignMasks {
    std::uint64_t of_double[2][2];
    std::uint64_t of_float[2][2];
};
alignas(16) __attribute__((section("UFXDATA"))) extern const SignMasks signs;
const SignMasks signs = {{{0x8000000000000000, 0}, {0, 0x8000000000000000}},
                         {{0x0000000080000000, 0x0000000080000000}, {0x8000000000000000, 0x8000000000000000}}};

// (-im, im, -im, ...) of a factor for forward, (im, -im, ...) for backward.
inline Vec<double> alternating(Vec<double> im, int direction)
{
    return {_mm_xor_pd(im.v, _mm_load_pd(reinterpret_cast<const double*>(signs.of_double[direction])))};
}
inline Vec<float> alternating(Vec<float> im, int direction)
{
    return {_mm_xor_ps(im.v, _mm_load_ps(reinterpret_cast<const float*>(signs.of_float[direction])))};
}
inline Vec<double> even(Vec<double> a) { return {_mm_movedup_pd(a.v)}; }
inline Vec<float> even(Vec<float> a) { return {_mm_moveldup_ps(a.v)}; }
inline Vec<double> odd(Vec<double> a) { return {_mm_unpackhi_pd(a.v, a.v)}; }
inline Vec<float> odd(Vec<float> a) { return {_mm_movehdup_ps(a.v)}; }

// a w, or a conj(w) for backward.
template <class R>
inline Vec<R> times(Vec<R> a, Vec<R> w, int direction)
{
    return a * even(w) + exchanged(a) * alternating(odd(w), direction);
}

template <int width, class R>
inline void turn(const Complex<R>* x, Complex<R>* y, const Complex<R>* fine, const Factor<Complex<R>>& coarse,
                 int direction)
{
    const Vec<Complex<R>> w = coarse * load<width>(fine);
    store<width>(y, Vec<Complex<R>>{times(load<width>(x).v, w.v, direction)});
}

template <class R>
[[gnu::always_inline]] inline std::int32_t twiddle(const void* from, void* to, std::int64_t n, const void* coarse_roots,
                                                   const void* fine_roots, std::int32_t direction)
{
    if (from == nullptr || to == nullptr || coarse_roots == nullptr || fine_roots == nullptr)
        return ORK_DFT_PRIMITIVE_NULL;
    if (n < 1) return ORK_DFT_PRIMITIVE_LENGTH;
    constexpr int lanes = Vec<Complex<R>>::lanes;
    const auto* fine = static_cast<const Complex<R>*>(fine_roots);
    const auto* x = static_cast<const Complex<R>*>(from);
    auto* y = static_cast<Complex<R>*>(to);
    for (std::int64_t k = 0; k < n; k += fine_twiddles, x += fine_twiddles, y += fine_twiddles) {
        const Factor<Complex<R>> coarse(static_cast<const Complex<R>*>(coarse_roots)[k / fine_twiddles]);
        const std::int64_t here = n - k < fine_twiddles ? n - k : fine_twiddles;
        std::int64_t j = 0;
        for (; j + lanes <= here; j += lanes) turn<lanes>(x + j, y + j, fine + j, coarse, direction);
        for (; j < here; ++j) turn<1>(x + j, y + j, fine + j, coarse, direction);
    }
    return ORK_DFT_OK;
}

} // namespace
} // namespace ork::dft

ORK_PRIMITIVE std::int32_t ork_dft_nx2_ufx_twiddle_c(const void* x, void* y, std::int64_t n, const void* coarse,
                                                     const void* fine, std::int32_t direction)
{
    return ork::dft::twiddle<float>(x, y, n, coarse, fine, direction);
}
ORK_PRIMITIVE std::int32_t ork_dft_nx2_ufx_twiddle_z(const void* x, void* y, std::int64_t n, const void* coarse,
                                                     const void* fine, std::int32_t direction)
{
    return ork::dft::twiddle<double>(x, y, n, coarse, fine, direction);
}
