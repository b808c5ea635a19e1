// SPDX-License-Identifier: MIT
// Recorded multiplies: what the object holds, what its routine multiplies, and what happens without memory.
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "blas/level3_by_type.h"
#include "ork/abi/jit.h"
#include "support/compare.h"
#include "support/fake_core.h"
#include "support/random.h"

using namespace ork::test;

namespace {

using Int = std::int64_t;
using Ptr = const Int*;
using Letter = const char*;

// The object as its users see it.
template <class T>
struct Object {
    char layout, transa, transb;
    Int m, n, k, lda, ldb, ldc;
    T alpha, beta;
    void (*routine)(const Object*, const T* a, const T* b, T* c);
};
static_assert(sizeof(Object<double>) == 80 && offsetof(Object<double>, routine) == 72);

} // namespace

// clang-format off
#define RECORDED_EXPORTS(p, T) \
    extern "C" { \
    Int ork_blas_nx2_jit_create_x##p##gemm(Object<T>**, Letter, Letter, Letter, Ptr, Ptr, Ptr, const T*, Ptr, Ptr, const T*, Ptr); \
    Int ork_blas_nx2_ork_jit_create_##p##gemm(Object<T>**, Letter, Letter, Ptr, Ptr, Ptr, const T*, Ptr, Ptr, const T*, Ptr); \
    decltype(Object<T>::routine) ork_blas_nx2_ork_jit_get_##p##gemm_ptr(const Object<T>*); \
    void ork_blas_nx2_ork_##p##gemm_jit(Letter, Letter, Ptr, Ptr, Ptr, const T*, const T*, Ptr, const T*, Ptr, const T*, T*, Ptr); \
    }
RECORDED_EXPORTS(s, float)
RECORDED_EXPORTS(d, double)
RECORDED_EXPORTS(c, cfloat)
RECORDED_EXPORTS(z, cdouble)
extern "C" Int ork_blas_nx2_ork_jit_destroy(void*);

namespace {

#define BY_TYPE(before, after) of_type<T>(ork_blas_nx2_##before##s##after, ork_blas_nx2_##before##d##after, ork_blas_nx2_##before##c##after, ork_blas_nx2_##before##z##after)
template <class T> constexpr auto create_with_layout = BY_TYPE(jit_create_x, gemm);
template <class T> constexpr auto create = BY_TYPE(ork_jit_create_, gemm);
template <class T> constexpr auto get_routine = BY_TYPE(ork_jit_get_, gemm_ptr);
template <class T> constexpr auto gemm_jit = BY_TYPE(ork_, gemm_jit);
#undef BY_TYPE
// clang-format on

template <class T>
class RecordedGemm : public testing::Test {
};
using Precisions = testing::Types<float, double, cfloat, cdouble>;
TYPED_TEST_SUITE(RecordedGemm, Precisions);

// Small integers, whose products are exact in any order.
template <class T>
T small_integer(Random& random)
{
    const auto part = [&] { return static_cast<Real<T>>(random.integer(-4, 4)); };
    if constexpr (is_complex<T>) {
        const auto re = part();
        return {re, part()};
    } else {
        return part();
    }
}

} // namespace

// Both layouts and all letters; the folded letter says the layout, in upper case only.
TYPED_TEST(RecordedGemm, TheRoutineMultipliesWithWhatTheObjectHolds)
{
    using T = TypeParam;
    FreshCore core;
    Random random(3);
    const std::string name =
        std::string(1, static_cast<char>(precision_letter<T>()[0] - 'a' + 'A')) + "ORK_JIT_CREATE_?GEMM";
    const struct {
        char letter, layout, trans;
    } folded[] = {{'O', 'R', 'N'}, {'U', 'R', 'T'}, {'V', 'R', 'C'}, {'N', 'C', 'N'},
                  {'T', 'C', 'T'}, {'C', 'C', 'C'}, {'o', 'C', 'o'}};
    const Int m = 13, n = 9, k = 17, lda = 19, ldb = 20, ldc = 21;
    const T alpha = small_integer<T>(random), beta = small_integer<T>(random);
    std::vector<T> a(400), b(400), before(400);
    for (auto* x : {&a, &b, &before})
        for (T& z : *x) z = small_integer<T>(random);
    for (const auto& [letter, layout, transa] : folded)
        for (const char transb : {'N', 'T', 'C'})
            for (const bool with_layout : {false, true}) {
                SCOPED_TRACE(testing::Message() << letter << transb);
                Object<T>* object = nullptr;
                EXPECT_EQ(with_layout
                              ? create_with_layout<T>(&object, &layout, &transa, &transb, &m, &n, &k, &alpha, &lda,
                                                      &ldb, &beta, &ldc)
                              : create<T>(&object, &letter, &transb, &m, &n, &k, &alpha, &lda, &ldb, &beta, &ldc),
                          ORK_JIT_STANDARD);
                ASSERT_NE(object, nullptr);
                EXPECT_EQ(core->last_size, std::max<Int>(80, sizeof(Object<T>)));
                EXPECT_EQ(core->last_alignment, 64);
                EXPECT_EQ(core->last_checked.load(), name);
                EXPECT_EQ(object->layout, layout);
                EXPECT_EQ(object->transa, transa);
                EXPECT_EQ(object->transb, transb);
                EXPECT_EQ(object->m, m);
                EXPECT_EQ(object->ldc, ldc);
                ASSERT_EQ(get_routine<T>(object), object->routine);
                const auto at = [&](const std::vector<T>& x, Int ld, char trans, Int i, Int j) {
                    const bool transposed = trans != 'N' && trans != 'n';
                    const Int row = transposed ? j : i, column = transposed ? i : j;
                    const T z = x[static_cast<std::size_t>(layout == 'R' ? row * ld + column : row + column * ld)];
                    return trans == 'C' ? conjugate(z) : z;
                };
                auto c = before, want = before;
                for (Int i = 0; i < m; ++i)
                    for (Int j = 0; j < n; ++j) {
                        T sum{};
                        for (Int l = 0; l < k; ++l) sum += at(a, lda, transa, i, l) * at(b, ldb, transb, l, j);
                        T& x = want[static_cast<std::size_t>(layout == 'R' ? i * ldc + j : i + j * ldc)];
                        x = alpha * sum + beta * x;
                    }
                get_routine<T>(object)(object, a.data(), b.data(), c.data());
                EXPECT_EQ(c, want);
                EXPECT_EQ(ork_blas_nx2_ork_jit_destroy(object), 0);
                EXPECT_EQ(core->live_objects, 0);
            }
}

TYPED_TEST(RecordedGemm, WithoutMemoryThereIsNoObject)
{
    using T = TypeParam;
    FreshCore core;
    core->fail_allocation_at = 1;
    const Int size = 2;
    const T one(1);
    Object<T> other, *object = &other;
    EXPECT_EQ(create<T>(&object, "N", "N", &size, &size, &size, &one, &size, &size, &one, &size), ORK_JIT_NO_MEMORY);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(get_routine<T>(nullptr), nullptr);
    EXPECT_EQ(ork_blas_nx2_ork_jit_destroy(nullptr), 0);
    EXPECT_EQ(core->deallocations, 0);
}

TYPED_TEST(RecordedGemm, TheGeneralRoutineOfTheInterfaceIsGemm)
{
    using T = TypeParam;
    FreshCore core;
    const Int m = 23, n = 21, k = 19;
    const T alpha = scalar<T>(-0.75), beta = scalar<T>(0.25);
    const auto a = spread_values<T>(k * m, 1), b = spread_values<T>(k * n, 2);
    auto c = spread_values<T>(m * n, 3), want = c;
    gemm<T>("T", "N", &m, &n, &k, &alpha, a.data(), &k, b.data(), &k, &beta, want.data(), &m);
    gemm_jit<T>("T", "N", &m, &n, &k, &alpha, a.data(), &k, b.data(), &k, &beta, c.data(), &m);
    expect_same_bits<T>(c, want, m * n);
}
