// SPDX-License-Identifier: MIT
// The kernel descriptor: its table, its blocks, its buffers, and the names that do nothing.
#include <cstddef>
#include <cstring>

#include <gtest/gtest.h>

#include "blas/gemm_by_type.h"
#include "support/fake_core.h"

using namespace ork::test;

// clang-format off
#define EMPTY_NAMES(X)                                                                                                 \
    X(dgemm_initialize_buffers) X(dgemm_initialize_kernel_info) X(dgemm_map_thread_to_kernel) X(dgemm_blk_info_bdz)    \
    X(dgemm_blk_info_hi_thr_bdz) X(dgemm_blk_info_0_brc) X(dgemm_blk_info_1_brc) X(xdgemm_bdz) X(xdgemm_hi_thr_bdz)    \
    X(xdgemm0_brc) X(xdgemm1_1_brc) X(xdgemm_internal) X(xdgemm_internal_team)
// clang-format on
extern "C" {
int64_t ork_blas_nx2_get_ikernel_api_version(const char*, const char*, const int64_t*, const int64_t*);
#define DECLARE(name) void ork_blas_nx2_##name();
EMPTY_NAMES(DECLARE)
#undef DECLARE
}

namespace {

using Int = std::int64_t;

ork_gemm_desc poisoned()
{
    ork_gemm_desc desc;
    std::memset(&desc, 0x5a, sizeof desc);
    return desc;
}

ork_gemm_desc kernel(Int index)
{
    ork_gemm_desc desc{};
    EXPECT_EQ(ork_blas_nx2_dgemm_get_kernel(&index, &desc), 0);
    return desc;
}

} // namespace

TEST(GemmDescriptor, LayoutIsTheOneCoresAreBuiltFor)
{
    EXPECT_EQ(sizeof(ork_gemm_desc), 256u);
    EXPECT_EQ(sizeof(ork_gemm_row), 20 * 8u);
    EXPECT_EQ(offsetof(ork_gemm_desc, flags), 8u);
    EXPECT_EQ(offsetof(ork_gemm_desc, mb), 16u);
    EXPECT_EQ(offsetof(ork_gemm_desc, m_unit), 40u);
    EXPECT_EQ(offsetof(ork_gemm_desc, c_factor), 88u);
    EXPECT_EQ(offsetof(ork_gemm_desc, routines), 96u);
    EXPECT_EQ(offsetof(ork_gemm_desc, a), 192u);
    EXPECT_EQ(offsetof(ork_gemm_desc, c_bytes), 240u);
}

TEST(GemmDescriptor, TheTwoRowsDifferInTheirKernelOnly)
{
    ork_gemm_desc first = kernel(0), second = kernel(1);
    EXPECT_EQ(first.m_unit, 2);
    EXPECT_EQ(first.n_unit, 8);
    EXPECT_EQ(first.k_unit, 4);
    EXPECT_EQ(first.c_factor, 1);
    EXPECT_EQ(first.flags, 126u);
    for (const auto parameter : first.parameters) EXPECT_EQ(parameter, 4);
    EXPECT_EQ(first.mb + first.nb + first.kb, 0);
    EXPECT_EQ(first.routines.copyac, first.routines.copyat);
    EXPECT_EQ(first.routines.copybc, first.routines.copybt);
    EXPECT_NE(first.routines.kernel, second.routines.kernel);
    EXPECT_EQ(second.index, 1u);
    second.index = first.index;
    second.routines.kernel = first.routines.kernel;
    EXPECT_EQ(std::memcmp(&first, &second, sizeof first), 0);

    for (const Int outside : {Int(2), Int(-1), Int(1) << 32}) {
        ork_gemm_desc desc = poisoned();
        EXPECT_EQ(ork_blas_nx2_dgemm_get_kernel(&outside, &desc), 1);
        const ork_gemm_desc untouched = poisoned();
        EXPECT_EQ(std::memcmp(&desc, &untouched, sizeof desc), 0);
    }
    Int count = 0;
    ork_blas_nx2_dgemm_num_kernels(&count);
    EXPECT_EQ(count, 2);
}

TEST(GemmDescriptor, ModelSixtySixGetsTheSecondRow)
{
    FreshCore core;
    for (const Int model : {0, 1, 65, 66, 67, 132}) {
        core->microarchitecture = model;
        ork_gemm_desc desc{};
        const ork_gemm_row* row = ork_blas_nx2_dgemm_get_optimal_kernel(&desc);
        EXPECT_EQ(desc.index, model == 66 ? 1u : 0u) << model;
        EXPECT_EQ(row->routines.kernel, kernel(desc.index).routines.kernel);
        EXPECT_EQ(row->m_unit, desc.m_unit);
    }
}

TEST(GemmDescriptor, BlocksAreFixedOnceByTheRules)
{
    FreshCore core;
    const Int m = 1;
    const auto kb = [&](Int k) {
        ork_gemm_desc desc = kernel(0);
        const Int n = 100;
        ork_blas_nx2_dgemm_get_blks_size(&m, &n, &k, &desc);
        return desc.kb;
    };
    const Int depths[][2] = {{-1, 128},  {1, 128},   {100, 128}, {128, 128}, {129, 132}, {252, 252},
                             {253, 256}, {255, 256}, {256, 256}, {257, 132}, {265, 136}, {300, 152},
                             {511, 256}, {512, 256}, {513, 256}, {9999, 256}};
    for (const auto& [k, want] : depths) EXPECT_EQ(kb(k), want) << k;

    const auto nb = [&](Int n) {
        ork_gemm_desc desc = kernel(0);
        const Int k = 10;
        EXPECT_EQ(ork_blas_nx2_dgemm_get_blks_size(&m, &n, &k, &desc), desc.nb);
        return desc.nb;
    };
    const Int widths[][2] = {{-5, 8}, {3, 8}, {8, 8}, {9, 16}, {4999, 5000}, {5000, 5000}, {5001, 5000}, {10000, 5000}};
    for (const auto& [n, want] : widths) EXPECT_EQ(nb(n), want) << n;

    const auto mb = [&](Int levels, Int cache) {
        core->cache_levels = levels;
        core->cache_size = cache;
        ork_gemm_desc desc = kernel(0);
        const Int n = 10, k = 10;
        ork_blas_nx2_dgemm_get_blks_size(&m, &n, &k, &desc);
        return desc.mb;
    };
    EXPECT_EQ(mb(0, 0), 640);
    EXPECT_EQ(mb(0, 100), 640);
    EXPECT_EQ(mb(3, 4194304), 384);
    EXPECT_EQ(mb(3, 4194305), 640);

    // What is fixed stays, and the caller's own sizes count; a depth split in two halves looks at mb anew.
    ork_gemm_desc desc = kernel(0);
    const Int sizes[] = {2, 16, 8};
    ork_blas_nx2_dgemm_set_blks_size(&sizes[0], &sizes[1], &sizes[2], &desc);
    const Int n = 500, k = 300;
    EXPECT_EQ(ork_blas_nx2_dgemm_get_blks_size(&m, &n, &k, &desc), 16);
    EXPECT_EQ(desc.mb, 2);
    EXPECT_EQ(desc.nb, 16);
    EXPECT_EQ(desc.kb, 8);
    desc.kb = 0;
    EXPECT_EQ(ork_blas_nx2_dgemm_get_blks_size(&m, &n, &k, &desc), 640);
    EXPECT_EQ(desc.mb, 640);
    EXPECT_EQ(desc.kb, 152);
}

TEST(GemmDescriptor, BufferSizes)
{
    const Int clipped = 107, whole = 108, one = 1;
    ork_gemm_desc desc = kernel(0);
    const Int blocks[] = {384, 200, 256};
    ork_blas_nx2_dgemm_set_blks_size(&blocks[0], &blocks[1], &blocks[2], &desc);
    Int which = 100;
    EXPECT_EQ(ork_blas_nx2_dgemm_get_bufs_size(&which, &clipped, &one, &one, &one, &desc), 0);
    EXPECT_EQ(desc.a.bytes, 576);
    EXPECT_EQ(desc.b.bytes, 768);
    EXPECT_EQ(desc.c_bytes, 8 * 4 * 8 + 512);
    EXPECT_EQ(desc.a.panel_stride, 8);
    EXPECT_EQ(desc.b.panel_stride, 32);
    EXPECT_EQ(desc.a.alignment, 12);
    EXPECT_EQ(desc.b.alignment, 12);
    EXPECT_EQ(desc.c_alignment, 7);
    EXPECT_EQ(ork_blas_nx2_dgemm_get_bufs_size(&which, &whole, &one, &one, &one, &desc), 0);
    EXPECT_EQ(desc.a.bytes, 384 * 256 * 8 + 512);
    EXPECT_EQ(desc.b.bytes, 200 * 256 * 8 + 512);
    EXPECT_EQ(desc.c_bytes, 8 * 256 * 8 + 512);

    const bool sets[7][3] = {{1, 1, 1}, {1, 0, 0}, {0, 1, 0}, {1, 1, 0}, {0, 1, 1}, {1, 0, 1}, {0, 0, 1}};
    for (int i = 0; i < 7; ++i) {
        desc.a.bytes = desc.b.bytes = desc.c_bytes = -1;
        which = 100 + i;
        EXPECT_EQ(ork_blas_nx2_dgemm_get_bufs_size(&which, &clipped, &one, &one, &one, &desc), 0);
        EXPECT_EQ(desc.a.bytes != -1, sets[i][0]) << which;
        EXPECT_EQ(desc.b.bytes != -1, sets[i][1]) << which;
        EXPECT_EQ(desc.c_bytes != -1, sets[i][2]) << which;
    }
    const Int wrong[][2] = {{99, 107}, {107, 107}, {100, 106}, {100, 109}};
    for (const auto& [selector, clip] : wrong) {
        const ork_gemm_desc before = desc;
        EXPECT_EQ(ork_blas_nx2_dgemm_get_bufs_size(&selector, &clip, &one, &one, &one, &desc), 1);
        EXPECT_EQ(std::memcmp(&desc, &before, sizeof desc), 0);
    }
}

TEST(GemmDescriptor, BuffersAreAlignedApartAndReturned)
{
    FreshCore core;
    ork_gemm_desc desc = kernel(0);
    const Int which = 100, clip = 107, m = 30, n = 70, k = 90;
    ork_blas_nx2_dgemm_get_blks_size(&m, &n, &k, &desc);
    ork_blas_nx2_dgemm_get_bufs_size(&which, &clip, &m, &n, &k, &desc);
    void *base, *a, *b, *c;
    ASSERT_EQ(ork_blas_nx2_dgemm_get_bufs(&desc, &base, &a, &b, &c), 0);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(a) % 4096, 0u);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(b) % 4096, 0u);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(c) % 128, 0u);
    EXPECT_GE(static_cast<char*>(b) - static_cast<char*>(a), desc.a.bytes);
    EXPECT_GE(static_cast<char*>(c) - static_cast<char*>(b), desc.b.bytes);
    std::memset(c, 1, static_cast<std::size_t>(desc.c_bytes)); // an allocation too short shows under the sanitizer
    ork_blas_nx2_dgemm_free_bufs(base);
    EXPECT_EQ(core->live_allocations, 0);
    core->fail_allocation_at = 1;
    EXPECT_EQ(ork_blas_nx2_dgemm_get_bufs(&desc, &base, &a, &b, &c), 1);
    EXPECT_EQ(base, nullptr);
}

TEST(GemmDescriptor, PackedSizeZeroingAndVersions)
{
    const Int m = 300, n = 10, k = 100;
    const auto want = [](Int r, Int columns) { return (columns + 512) * (r | 64) + 4198528; };
    EXPECT_EQ(ork_blas_nx2_dgemm_pack_get_size("A", &m, &n, &k), want(512, 2048));
    EXPECT_EQ(ork_blas_nx2_dgemm_pack_get_size("a", &m, &n, &k), want(512, 2048));
    EXPECT_EQ(ork_blas_nx2_dgemm_pack_get_size("B", &m, &n, &k), want(256, 2048));
    const Int deep = 257;
    EXPECT_EQ(ork_blas_nx2_dgemm_pack_get_size("B", &m, &m, &deep), want(512, 4096));

    ork_gemm_desc desc = poisoned();
    ork_blas_nx2_dgemm_zero_desc(&desc);
    const ork_gemm_desc zero{};
    EXPECT_EQ(std::memcmp(&desc, &zero, sizeof desc), 0);
    EXPECT_EQ(ork_blas_nx2_dgemm_api_support(), 1);
    EXPECT_EQ(ork_blas_nx2_get_ikernel_api_version("N", "T", &m, &n), 2);
    EXPECT_EQ(ork_blas_nx2_get_ikernel_api_version(nullptr, nullptr, nullptr, nullptr), 2);
}

TEST(GemmDescriptor, WhatThisCodePathDoesNotOfferIsOneEmptyRoutine)
{
#define SAME(name) EXPECT_EQ(&ork_blas_nx2_##name, &ork_blas_nx2_dgemm_initialize_buffers) << #name;
    EMPTY_NAMES(SAME)
#undef SAME
    reinterpret_cast<void (*)(void*)>(ork_blas_nx2_dgemm_initialize_kernel_info)(nullptr);
}

TEST(GemmDescriptor, ScalingClearsWithZeroAndMultipliesOtherwise)
{
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    for (const Int m : {1, 3, 7, 8, 9, 17})
        for (const Int n : {1, 3, 4, 5, 9})
            for (const double beta : {0.0, -0.0, 1.0, -2.5, nan}) {
                const Int ld = m + 2;
                std::vector<double> c(static_cast<std::size_t>(ld * n), 3);
                c[static_cast<std::size_t>(m - 1)] = nan;
                ork_blas_nx2_dgemm_mscale(&m, &n, &beta, c.data(), &ld);
                for (Int j = 0; j < n; ++j)
                    for (Int i = 0; i < ld; ++i) {
                        const double x = c[static_cast<std::size_t>(i + j * ld)];
                        if (i >= m)
                            ASSERT_EQ(x, 3);
                        else if (beta == 0)
                            ASSERT_TRUE(x == 0 && !std::signbit(x));
                        else if (std::isnan(beta) || (i == m - 1 && j == 0))
                            ASSERT_TRUE(std::isnan(x));
                        else
                            ASSERT_EQ(x, 3 * beta);
                    }
            }
}
