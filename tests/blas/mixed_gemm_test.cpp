// SPDX-License-Identifier: MIT
// Multiplies of a real by a complex matrix with the exports of their tables, and gemm3m.
#include <cstdint>
#include <cstring>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "blas/level3_by_type.h"
#include "support/compare.h"
#include "support/fake_core.h"
#include "support/random.h"
#include "support/strided.h"

using namespace ork::test;

namespace {
using Int = std::int64_t;
using Ptr = const Int*;
template <class T>
using CopyA = Int(Ptr, Ptr, const T*, Ptr, T*, Ptr, const T*);
template <class T>
using CopyB = Int(Ptr, Ptr, const T*, Ptr, T*, Ptr);
} // namespace

// clang-format off
#define MIXED_EXPORTS(rc, c, R) \
    extern "C" { \
    CopyA<R> ork_blas_nx2_##rc##gemm_copyan, ork_blas_nx2_##rc##gemm_copyat; \
    CopyB<std::complex<R>> ork_blas_nx2_##rc##gemm_copybn, ork_blas_nx2_##rc##gemm_copybt; \
    void ork_blas_nx2_##rc##gemm_num_kernels(Int*); \
    Int ork_blas_nx2_##rc##gemm_get_kernel(Ptr, ork_gemm_desc*); \
    const ork_gemm_row* ork_blas_nx2_##rc##gemm_get_optimal_kernel(ork_gemm_desc*); \
    Int ork_blas_nx2_##c##gemm3m_copyan(Ptr, Ptr, const std::complex<R>*, Ptr, R*, Ptr); \
    Int ork_blas_nx2_##c##gemm3m_copyat(Ptr, Ptr, const std::complex<R>*, Ptr, R*, Ptr); \
    Int ork_blas_nx2_##c##gemm3m_copybn(Ptr, Ptr, const std::complex<R>*, Ptr, R*, Ptr); \
    Int ork_blas_nx2_##c##gemm3m_copybt(Ptr, Ptr, const std::complex<R>*, Ptr, R*, Ptr); \
    }
MIXED_EXPORTS(sc, c, float)
MIXED_EXPORTS(dz, z, double)
#undef MIXED_EXPORTS
// clang-format on

namespace {

template <class T>
class MixedGemm : public testing::Test {
};
using Precisions = testing::Types<cfloat, cdouble>;
TYPED_TEST_SUITE(MixedGemm, Precisions);

const char letters[] = {'N', 'T', 'C'};

// A of real (gemm's mixed form) or complex elements E.
template <class T, class E>
struct Problem {
    char transa, transb;
    Int m, n, k;
    Matrix<E> a;
    Matrix<T> b, c;
    T alpha = scalar<T>(-0.75), beta;

    Problem(char transa, char transb, Int m, Int n, Int k, double beta, Random random)
        : transa(transa), transb(transb), m(m), n(n), k(k),
          a(any_matrix<E>(transa == 'N' ? m : k, transa == 'N' ? k : m, random)),
          b(any_matrix<T>(transb == 'N' ? k : n, transb == 'N' ? n : k, random)), c(any_matrix<T>(m, n, random)),
          beta(scalar<T>(beta))
    {
        a.fill(random);
        b.fill(random);
        if (beta != 0) c.fill(random); // else it holds NaN, which must not be read
        a.read_only();
        b.read_only();
    }

    std::vector<Expected<long double>> expected() const
    {
        std::vector<T> wide;
        for (const E& x : a.values()) wide.push_back(T(x));
        return reference_gemm<T, long double>(transa, transb, m, n, k, alpha, wide.data(), a.rows(), b.data(), b.ld(),
                                              beta, c.data(), c.ld());
    }

    template <class Routine>
    void run(Routine routine)
    {
        const bool reads = alpha != T(0);
        routine(&transa, &transb, &m, &n, &k, &alpha, reads ? a.data() : nullptr, &a.ld(), reads ? b.data() : nullptr,
                &b.ld(), &beta, c.data(), &c.ld());
        EXPECT_TRUE(c.padding_intact());
    }
};

template <class Check>
void for_each_shape(Check&& check)
{
    Random random(3);
    const Int sizes[] = {0, 1, 2, 3, 4, 5, 7, 8, 9, 12, 13, 17, 33}, depths[] = {0, 1, 2, 3, 4, 5, 7, 9, 17, 40, 257};
    const auto any = [&](const auto& from) { return from[random.bits() % std::size(from)]; };
    for (int i = 0; i < 300 && !testing::Test::HasFailure(); ++i)
        check(any(letters), any(letters), any(sizes), any(sizes), any(depths),
              i % 3 == 0   ? 0.0
              : i % 3 == 1 ? 1
                           : -0.5,
              Random(random.bits()));
    check('N', 'C', 645, 9, 10, 1.0, Random(1));
    check('T', 'N', 9, 530, 10, 1.0, Random(2));
}

} // namespace

TYPED_TEST(MixedGemm, IsTheProductWithAMadeComplexWithAndWithoutMemory)
{
    using T = TypeParam;
    FreshCore core;
    for_each_shape([&](auto... arguments) {
        Problem<T, Real<T>> p(arguments...), poor(arguments...);
        const auto want = p.expected();
        p.run(mixed_gemm<T>);
        expect_near<T>(p.c.values(), want, static_cast<double>(p.k + 4));
        core->fail_allocation_at = 1;
        poor.run(mixed_gemm<T>);
        core->fail_allocation_at = 0;
        expect_same_bits<T>(poor.c.values(), p.c.values(), p.m * p.n);
        p.alpha = T(0);
        const auto scaled = p.expected();
        p.run(mixed_gemm<T>);
        expect_near<T>(p.c.values(), scaled, 2);
    });
    EXPECT_EQ(core->live_allocations, 0);
}

// An infinite real number meets the parts of B one by one, without a zero imaginary part of its own.
TYPED_TEST(MixedGemm, InfinityInARealMatrixMakesNoNan)
{
    using T = TypeParam;
    FreshCore core;
    for (const Int size : {3, 20}) {
        Problem<T, Real<T>> p('N', 'N', size, size, size, 0, Random(4));
        p.a.writable();
        p.b.writable();
        p.a(1, 2) = std::numeric_limits<Real<T>>::infinity();
        p.b.fill([] { return T(1, 2); });
        p.alpha = T(1);
        p.run(mixed_gemm<T>);
        for (Int j = 0; j < size; ++j)
            for (Int i = 0; i < size; ++i) {
                ASSERT_FALSE(std::isnan(p.c(i, j).imag()) && i != 1);
                ASSERT_EQ(std::isinf(p.c(i, j).real()) || std::isnan(p.c(i, j).real()), i == 1);
            }
    }
}

// The error of three products is bounded by the norms of A and B.
TYPED_TEST(MixedGemm, ThreeProductsAreNormwiseExact)
{
    using T = TypeParam;
    FreshCore core;
    for_each_shape([&](auto... arguments) {
        Problem<T, T> p(arguments...), poor(arguments...);
        auto want = p.expected();
        for (auto& x : want) x.scale = static_cast<long double>(p.k + 2); // elements are below 1 in both parts
        p.run(gemm3m<T>);
        expect_near<T>(p.c.values(), want, 8);
        core->fail_allocation_at = 1;
        poor.run(gemm3m<T>);
        core->fail_allocation_at = 0;
        expect_near<T>(poor.c.values(), want, 8);
    });
    EXPECT_EQ(core->live_allocations, 0);
}

#define REAL_OR_COMPLEX(name) of_type<T>(ork_blas_nx2_sc##name, ork_blas_nx2_dz##name)
TYPED_TEST(MixedGemm, PacksAsTheRealAndTheComplexMultiplyDo)
{
    using T = TypeParam;
    using R = Real<T>;
    const Int m = 7, k = 11, stride = 120;
    Random random(5);
    Matrix<R> real(k, k, k + 1);
    Matrix<T> complex(k, k, k + 2);
    real.fill(random);
    complex.fill(random);
    const auto same = [&](auto copy, auto of, const auto& x, auto... alpha) {
        using E = std::remove_cvref_t<decltype(x(0, 0))>;
        std::vector<E> got(1000, E(7)), want(1000, E(7));
        EXPECT_EQ(copy(&m, &k, x.data(), &x.ld(), got.data(), &stride, alpha...), 0);
        of(&m, &k, x.data(), &x.ld(), want.data(), &stride, alpha...);
        EXPECT_NE(got[0], E(7));
        expect_same_bits<E>(got, want, 1000);
    };
    const R alpha(0.75);
    same(REAL_OR_COMPLEX(gemm_copyan), of_type<T>(ork_blas_nx2_sgemm_copyan, ork_blas_nx2_dgemm_copyan), real, &alpha);
    same(REAL_OR_COMPLEX(gemm_copyat), of_type<T>(ork_blas_nx2_sgemm_copyat, ork_blas_nx2_dgemm_copyat), real, &alpha);
    same(REAL_OR_COMPLEX(gemm_copybn), of_type<T>(ork_blas_nx2_cgemm_copybn, ork_blas_nx2_zgemm_copybn), complex);
    same(REAL_OR_COMPLEX(gemm_copybt), of_type<T>(ork_blas_nx2_cgemm_copybt, ork_blas_nx2_zgemm_copybt), complex);
    EXPECT_EQ(ork_blas_nx2_cgemm3m_copyan, ork_blas_nx2_cgemm3m_copybn);
    EXPECT_EQ(ork_blas_nx2_cgemm3m_copyat, ork_blas_nx2_cgemm3m_copybt);
    EXPECT_EQ(ork_blas_nx2_zgemm3m_copyan, ork_blas_nx2_zgemm3m_copybn);
    EXPECT_EQ(ork_blas_nx2_zgemm3m_copyat, ork_blas_nx2_zgemm3m_copybt);

    // Three planes of the transpose: real parts, imaginary parts, sums.
    std::vector<R> planes(3 * 7 * 20, R(7));
    const Int ld = 20;
    of_type<T>(ork_blas_nx2_cgemm3m_copybt, ork_blas_nx2_zgemm3m_copybt)(&k, &m, complex.data(), &complex.ld(),
                                                                         planes.data(), &ld);
    for (Int j = 0; j < m; ++j)
        for (Int i = 0; i < ld; ++i) {
            const T x = i < k ? complex(j, i) : T(7, 7);
            const R parts[] = {x.real(), x.imag(), i < k ? x.real() + x.imag() : R(7)};
            for (Int plane = 0; plane < 3; ++plane)
                ASSERT_EQ(planes[static_cast<std::size_t>(i + ld * (j + m * plane))], parts[plane]);
        }
}

// The one row of the table, used as a core with a blocked loop of its own would use it.
TYPED_TEST(MixedGemm, TheTablesKernelsMultiplyWhatTheTablesCopiesPacked)
{
    using T = TypeParam;
    using R = Real<T>;
    using Kernel = Int(Ptr, Ptr, Ptr, Ptr, const R*, Ptr, const T*, Ptr, const T*, T*, Ptr, Ptr);
    using FixedKernel = Int(Ptr, Ptr, Ptr, Ptr, const R*, Ptr, const T*, Ptr, T*, Ptr, Ptr);
    FreshCore core;
    Int count = 0, row = 1;
    ork_gemm_desc desc{};
    REAL_OR_COMPLEX(gemm_num_kernels)(&count);
    EXPECT_EQ(count, 1);
    EXPECT_EQ(REAL_OR_COMPLEX(gemm_get_kernel)(&row, &desc), 1);
    row = 0;
    EXPECT_EQ(REAL_OR_COMPLEX(gemm_get_kernel)(&row, &desc), 0);
    EXPECT_EQ(REAL_OR_COMPLEX(gemm_get_optimal_kernel)(&desc)->routines.kernel, desc.routines.kernel);
    EXPECT_EQ(desc.m_unit, 16 / Int(sizeof(R)));
    EXPECT_EQ(desc.n_unit, 4);
    EXPECT_EQ(desc.k_unit, 4);

    const Int m = 11, n = 7, k = 6, depth = 8, mode = 1, flags = 1, ld = 13;
    const Int a_stride = desc.m_unit * depth, b_stride = 64 / Int(sizeof(T)) * depth;
    const auto a = uniform_values<R>(m * k, 1);
    const auto b = uniform_values<T>(k * n, 2);
    const T alpha(R(0.5), R(-2));
    const R one(1);
    alignas(16) R packed_a[200];
    alignas(16) T packed_b[200];
    REAL_OR_COMPLEX(gemm_copyan)(&m, &k, a.data(), &m, packed_a, &a_stride, &one);
    REAL_OR_COMPLEX(gemm_copybn)(&k, &n, b.data(), &k, packed_b, &b_stride);
    const auto nan = std::numeric_limits<R>::quiet_NaN();
    for (const int member : {0, 1, 2}) { // C + alpha A B, C + A B, A B
        std::vector<T> c(ld * n, member == 2 ? T(nan, nan) : T(3));
        const T factor = member == 0 ? alpha : T(1), beta = T(member == 2 ? 0 : 1);
        std::vector<T> wide(a.begin(), a.end());
        const auto want = reference_gemm<T>('N', 'N', m, n, k, factor, wide.data(), m, b.data(), k, beta, c.data(), ld);
        if (member == 0)
            reinterpret_cast<Kernel*>(desc.routines.kernel)(&mode, &m, &n, &depth, packed_a, &a_stride, packed_b,
                                                            &b_stride, &factor, c.data(), &ld, &flags);
        else
            reinterpret_cast<FixedKernel*>(member == 1 ? desc.routines.kernel_accumulate
                                                       : desc.routines.kernel_overwrite)(
                &mode, &m, &n, &depth, packed_a, &a_stride, packed_b, &b_stride, c.data(), &ld, &flags);
        for (Int j = 0; j < n; ++j)
            expect_near<T>(c.data() + j * ld, std::vector(want.begin() + j * m, want.begin() + (j + 1) * m),
                           double(k + 4));
    }
}
#undef REAL_OR_COMPLEX
