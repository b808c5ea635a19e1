// SPDX-License-Identifier: MIT
// The signal primitives: the wrappers through which kernels reach the butterflies. Each checks its pointers first
// (ORK_DFT_PRIMITIVE_NULL), then its length (ORK_DFT_PRIMITIVE_LENGTH), and only then does any work; a work pointer may
// be null, then the primitive takes its own from the core. They stand in a code section of their own, UFXCODE, and
// their masks in UFXDATA, so that a profile or a page map shows them apart.
#pragma once

#include <cstdint>

#include "frame/export.h"

#define ORK_PRIMITIVE ORK_EXPORT __attribute__((section("UFXCODE")))

extern "C" {

// One side of a batch: number k of transform t has its parts at re[t * distance + k * stride] and im[the same].
struct ork_dft_place {
    void *re, *im;
    std::int64_t stride, distance; // real numbers
};

// One transform of n contiguous numbers; the plan's length is n. direction: ORK_DFT_FORWARD or ORK_DFT_BACKWARD.
std::int32_t ork_dft_nx2_ufx_transform_c(const void* in, void* out, std::int64_t n, const void* plan,
                                         std::int32_t direction, double scale, void* work);
std::int32_t ork_dft_nx2_ufx_transform_z(const void* in, void* out, std::int64_t n, const void* plan,
                                         std::int32_t direction, double scale, void* work);
// `count` transforms of the plan's length.
std::int32_t ork_dft_nx2_ufx_batch_c(const ork_dft_place* in, const ork_dft_place* out, std::int64_t count,
                                     const void* plan, std::int32_t direction, double scale, void* work);
std::int32_t ork_dft_nx2_ufx_batch_z(const ork_dft_place* in, const ork_dft_place* out, std::int64_t count,
                                     const void* plan, std::int32_t direction, double scale, void* work);
// y[k] = x[k] coarse[k / 64] fine[k % 64] for 0 <= k < n, in place or not; both conjugated for
// ORK_DFT_BACKWARD.
std::int32_t ork_dft_nx2_ufx_twiddle_c(const void* x, void* y, std::int64_t n, const void* coarse, const void* fine,
                                       std::int32_t direction);
std::int32_t ork_dft_nx2_ufx_twiddle_z(const void* x, void* y, std::int64_t n, const void* coarse, const void* fine,
                                       std::int32_t direction);
}

namespace ork::dft {

inline constexpr std::int64_t fine_twiddles = 64;

// By precision.
template <class R>
struct Primitives;
template <>
struct Primitives<float> {
    static constexpr auto transform = ork_dft_nx2_ufx_transform_c;
    static constexpr auto batch = ork_dft_nx2_ufx_batch_c;
    static constexpr auto twiddle = ork_dft_nx2_ufx_twiddle_c;
};
template <>
struct Primitives<double> {
    static constexpr auto transform = ork_dft_nx2_ufx_transform_z;
    static constexpr auto batch = ork_dft_nx2_ufx_batch_z;
    static constexpr auto twiddle = ork_dft_nx2_ufx_twiddle_z;
};

} // namespace ork::dft
