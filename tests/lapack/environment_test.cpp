// SPDX-License-Identifier: MIT
// What kernels leave behind besides their results: floating-point control and flags, and no more than a small stack.
#include "lapack/plain_factors.h"
#include "support/environment.h"

namespace ork::test {
namespace {

template <class T>
class Environment : public testing::Test {
};
TYPED_TEST_SUITE(Environment, Precisions, PrecisionNames);

TYPED_TEST(Environment, FactorisationsKeepControlAndFlagsAndASmallStack)
{
    using T = TypeParam;
    using R = Real<T>;
    const auto lu = KERNEL(getrf_small);
    const auto lu_np = KERNEL(getrfnp_small);
    const auto cholesky = KERNEL(potrf_small);
    const auto qr = KERNEL(geqrf_small);
    const auto solve = KERNEL(getrs_small);
    const auto inverse = KERNEL(getri_small);
    const auto symmetric = KERNEL(sytrf_u_small);
    const auto complete = KERNEL(getc2);
    ASSERT_TRUE(lu && lu_np && cholesky && qr && solve && inverse && symmetric && complete);
    Random random(11);
    for (const Int n : {1, 2, 3, 6, 7, 8, 9, 10, 13, 24, 45, 46, 64, 70}) {
        SCOPED_TRACE(n);
        const Int size = n * n, lda = n;
        std::vector<T> original, a, b(static_cast<std::size_t>(n)), tau(b), work(b);
        for (Int k = 0; k < size; ++k) original.push_back(random.uniform<T>() + T(k % (n + 1) == 0 ? R(2 * n) : R(0)));
        for (T& x : b) x = random.uniform<T>();
        std::vector<Int> ipiv(static_cast<std::size_t>(n)), jpiv(ipiv);
        Int info;
        const auto from_original = [&](auto&& call) {
            return [&, call] {
                a = original;
                call();
            };
        };
        const std::pair<const char*, std::function<void()>> calls[] = {
            {"getrf", from_original([&] { lu(&n, &n, a.data(), &lda, ipiv.data(), &info); })},
            {"getrfnp", from_original([&] { lu_np(&n, &n, a.data(), &lda, &info); })},
            {"potrf L", from_original([&] { cholesky("L", &n, a.data(), &lda, &info); })},
            {"potrf U", from_original([&] { cholesky("U", &n, a.data(), &lda, &info); })},
            {"geqrf", from_original([&] { qr(&n, &n, a.data(), &lda, tau.data(), work.data(), &n, &info); })},
            {"getrs", from_original([&] {
                 const Int one = 1;
                 lu(&n, &n, a.data(), &lda, ipiv.data(), &info);
                 for (const char trans : {'N', 'T', 'C'})
                     solve(&trans, &n, &one, a.data(), &lda, ipiv.data(), b.data(), &n, &info);
             })},
            {"getri", from_original([&] {
                 lu(&n, &n, a.data(), &lda, ipiv.data(), &info);
                 inverse(&n, a.data(), &lda, ipiv.data(), work.data(), &n, &info);
             })},
            {"sytrf", from_original([&] { symmetric(&n, a.data(), &lda, ipiv.data(), work.data(), &n, &info); })},
            {"getc2", from_original([&] { complete(&n, a.data(), &lda, ipiv.data(), jpiv.data(), &info); })},
        };
        for (const auto& [name, call] : calls) {
            EXPECT_TRUE(keeps_fp_environment(call)) << name;
            run_on_small_stack(small_stack, call);
        }
    }
}

} // namespace
} // namespace ork::test
