// SPDX-License-Identifier: MIT
// The packed layouts byte by byte, and the multiply over operands packed by hand.
#include <cstdint>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "blas/gemm_by_type.h"
#include "support/compare.h"
#include "support/random.h"
#include "support/strided.h"

using namespace ork::test;

namespace {

using Int = std::int64_t;

Int padded(Int k) { return (k + 3) / 4 * 4; }

// Where the layouts put things; an element that is not set by one of them must stay as it was.
struct Layout {
    std::vector<double> want;
    explicit Layout(Int size) : want(static_cast<std::size_t>(size), -77.0) {}
    double& at(Int i) { return want[static_cast<std::size_t>(i)]; }
};

constexpr Int slack = 5; // panel strides exceed the panels by this

Layout packed_a(Int m, Int k, Int stride, double alpha, const auto& a)
{
    Layout layout((m + 1) / 2 * stride);
    for (Int i = 0; i < (m + 1) / 2 * 2; ++i)
        for (Int l = 0; l < padded(k); ++l)
            layout.at(i / 2 * stride + 2 * l + i % 2) = i < m && l < k ? alpha * a(i, l) : 0.0;
    return layout;
}

Layout packed_b(Int k, Int n, Int stride, const auto& b)
{
    Layout layout((n / 8 + 1) * stride);
    Int at = 0;
    for (Int j = 0; j < n;) {
        const Int width = n - j >= 8 ? 8 : n - j >= 4 ? 4 : 2;
        for (Int l = 0; l < padded(k); ++l)
            for (Int r = 0; r < width; ++r) layout.at(at + l * width + r) = l < k && j + r < n ? b(l, j + r) : 0.0;
        at += width == 8 ? stride : width * padded(k);
        j += width;
    }
    return layout;
}

} // namespace

TEST(GemmPacking, AGoesIntoPairsOfRowsTimesAlpha)
{
    Random random(3);
    for (const double alpha : {1.0, 2.0, std::numeric_limits<double>::infinity()})
        for (Int m = 1; m <= 9; ++m)
            for (Int k = 1; k <= 13; ++k)
                for (const std::size_t offset : {0, 4, 8})
                    for (const Int pad : {0, 1}) {
                        const Int stride = 2 * padded(k) + slack + 1; // even, so that panels stay aligned
                        Matrix<double> a(m, k, m + pad, Guard::end, offset), at(k, m, k + pad, Guard::begin, offset);
                        a.fill(random);
                        at.fill(random);
                        const auto run = [&](auto copy, const Matrix<double>& from, const Layout& layout) {
                            Guarded<double> to(std::vector<double>(layout.want.size(), -77.0), Guard::begin);
                            EXPECT_EQ(copy(&m, &k, from.data(), &from.ld(), to.data(), &stride, &alpha), 0);
                            expect_same_bits<double>(to, layout.want, to.size());
                        };
                        SCOPED_TRACE(testing::Message() << m << " x " << k << " offset " << offset << " pad " << pad);
                        run(ork_blas_nx2_dgemm_copyan, a, packed_a(m, k, stride, alpha, a));
                        run(ork_blas_nx2_dgemm_copyat, at,
                            packed_a(m, k, stride, alpha, [&](Int i, Int l) { return at(l, i); }));
                        if (HasFailure()) return;
                    }
}

TEST(GemmPacking, BGoesIntoEightColumnsThenFourThenPairs)
{
    Random random(4);
    for (Int n = 1; n <= 27; ++n)
        for (Int k = 1; k <= 13; ++k)
            for (const std::size_t offset : {0, 4, 8}) {
                const Int stride = 8 * padded(k) + slack + 1;
                Matrix<double> b(k, n, k + 1, Guard::end, offset), bt(n, k, n + 1, Guard::end, offset);
                b.fill(random);
                bt.fill(random);
                const auto run = [&](auto copy, const Matrix<double>& from, const Layout& layout) {
                    Guarded<double> to(std::vector<double>(layout.want.size(), -77.0), Guard::begin);
                    EXPECT_EQ(copy(&k, &n, from.data(), &from.ld(), to.data(), &stride), 0);
                    expect_same_bits<double>(to, layout.want, to.size());
                };
                SCOPED_TRACE(testing::Message() << k << " x " << n << " offset " << offset);
                run(ork_blas_nx2_dgemm_copybn, b, packed_b(k, n, stride, b));
                run(ork_blas_nx2_dgemm_copybt, bt, packed_b(k, n, stride, [&](Int l, Int j) { return bt(j, l); }));
                if (HasFailure()) return;
            }
}

TEST(GemmPacking, EmptySizesReturnAtOnce)
{
    const Int zero = 0, minus = -2, some = 3;
    const double alpha = 1;
    for (const Int* size : {&zero, &minus}) {
        EXPECT_EQ(ork_blas_nx2_dgemm_copyan(size, &some, nullptr, &some, nullptr, &some, &alpha), 0);
        EXPECT_EQ(ork_blas_nx2_dgemm_copyat(&some, size, nullptr, &some, nullptr, &some, &alpha), 0);
        EXPECT_EQ(ork_blas_nx2_dgemm_copybn(size, &some, nullptr, &some, nullptr, &some), 0);
        EXPECT_EQ(ork_blas_nx2_dgemm_copybt(&some, size, nullptr, &some, nullptr, &some), 0);
    }
}

// The routines of a descriptor, called as a core with a blocked loop of its own would call them.
TEST(GemmPacking, TheTablesKernelsMultiplyWhatTheTablesCopiesPacked)
{
    using CopyA = Int(const Int*, const Int*, const double*, const Int*, double*, const Int*, const double*);
    using CopyB = Int(const Int*, const Int*, const double*, const Int*, double*, const Int*);
    using Kernel = Int(const Int*, const Int*, const Int*, const Int*, const double*, const Int*, const double*,
                       const Int*, const double*, double*, const Int*, const Int*);
    Random random(5);
    for (const Int row : {0, 1}) {
        ork_gemm_desc desc{};
        ork_blas_nx2_dgemm_get_kernel(&row, &desc);
        for (const Int m : {0, 1, 2, 5, 10})
            for (const Int n : {1, 2, 3, 7, 8, 13, 16, 22})
                for (const Int k : {1, 4, 7, 8, 13, 20})
                    for (const int variant : {0, 1, 2, 3, 4, 5, 6, 7}) {
                        const Int depth = padded(k), a_stride = 2 * depth, b_stride = 8 * depth;
                        const double alpha = 0.7, scalar = variant & 1;
                        const Int mode = (variant & 2) != 0 ? 2 : 1, flags = (variant & 4) != 0;
                        Matrix<double> a(m, k, m + 1), b(k, n, k + 1), c(m, n, m + (flags != 0 ? 1 : m % 2));
                        a.fill(random);
                        b.fill(random);
                        if (scalar != 0) c.fill(random); // else it holds NaN, which must not be read
                        const auto before = c.values();
                        std::vector<double> to_a(static_cast<std::size_t>((m + 1) * depth + 2)),
                            to_b(static_cast<std::size_t>((n + 8) * depth + 2));
                        // 16-byte aligned, as the buffers are
                        double* pa = to_a.data() + (reinterpret_cast<std::uintptr_t>(to_a.data()) % 16 != 0);
                        double* pb = to_b.data() + (reinterpret_cast<std::uintptr_t>(to_b.data()) % 16 != 0);
                        reinterpret_cast<CopyA*>(desc.routines.copyan)(&m, &k, a.data(), &a.ld(), pa, &a_stride,
                                                                       &alpha);
                        reinterpret_cast<CopyB*>(desc.routines.copybn)(&k, &n, b.data(), &b.ld(), pb, &b_stride);
                        reinterpret_cast<Kernel*>(desc.routines.kernel)(&mode, &m, &n, &depth, pa, &a_stride, pb,
                                                                        &b_stride, &scalar, c.data(), &c.ld(), &flags);
                        for (Int j = 0; j < n; ++j)
                            for (Int i = 0; i < m; ++i)
                                expect_same_bits(c(i, j), gemm_element(
                                                              k, alpha, [&](Int l) { return a(i, l); },
                                                              [&](Int l) { return b(l, j); }, scalar,
                                                              before[static_cast<std::size_t>(i + j * m)]));
                        EXPECT_TRUE(c.padding_intact());
                        if (HasFailure())
                            FAIL() << m << " x " << n << " x " << k << " variant " << variant << " row " << row;
                    }
    }
}
