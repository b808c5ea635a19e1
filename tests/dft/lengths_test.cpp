// SPDX-License-Identifier: MIT
// Kernels of one length each, 1 to 64: against the sums in wider precision, anywhere in memory, in place or not.
#include <cmath>
#include <complex>
#include <cstring>
#include <limits>
#include <numbers>

#include "support/environment.h"
#include "support/guarded.h"
#include "support/random.h"

using LengthKernel = std::int32_t (*)(const void* in, void* out, const void* plan, void* argument);
extern "C" LengthKernel ork_dft_nx2_xc_length_kernel(std::int64_t n, std::int64_t direction);
extern "C" LengthKernel ork_dft_nx2_xz_length_kernel(std::int64_t n, std::int64_t direction);

namespace ork::test {
namespace {

template <class T>
LengthKernel kernel(std::int64_t n, std::int64_t direction)
{
    if constexpr (sizeof(T) == 8) return ork_dft_nx2_xc_length_kernel(n, direction);
    return ork_dft_nx2_xz_length_kernel(n, direction);
}

// Relative to the length of the whole vector.
template <class T>
long double error(const std::vector<T>& x, const std::vector<T>& got, bool backward)
{
    using C = std::complex<long double>;
    const auto n = x.size();
    std::vector<C> root(n);
    for (std::size_t k = 0; k < n; ++k)
        root[k] = std::polar(1.0L, (backward ? 2 : -2) * std::numbers::pi_v<long double> * k / n);
    long double difference = 0, size = 0;
    for (std::size_t k = 0; k < n; ++k) {
        C want = 0;
        for (std::size_t j = 0; j < n; ++j) want += C(x[j]) * root[j * k % n];
        difference += std::norm(C(got[k]) - want);
        size += std::norm(want);
    }
    return std::sqrt(difference / size);
}

template <class T>
class LengthKernels : public testing::Test {
protected:
    // For every length and both directions.
    template <class Body>
    void all(Body body)
    {
        for (std::int64_t n = 1; n <= 64; ++n)
            for (const bool backward : {false, true}) {
                SCOPED_TRACE(testing::Message() << (backward ? "backward" : "forward") << ", n = " << n);
                const LengthKernel run = kernel<T>(n, backward);
                ASSERT_NE(run, nullptr);
                Random random(static_cast<std::uint64_t>(2 * n + backward));
                std::vector<T> x(static_cast<std::size_t>(n));
                for (T& a : x) a = random.uniform<T>();
                body(run, x, backward);
            }
    }
};
using Precisions = testing::Types<std::complex<float>, std::complex<double>>;
TYPED_TEST_SUITE(LengthKernels, Precisions);

TYPED_TEST(LengthKernels, MatchTheSumsInWiderPrecision)
{
    using T = TypeParam;
    this->all([](LengthKernel run, const std::vector<T>& x, bool backward) {
        std::vector<T> out(x.size());
        EXPECT_EQ(run(x.data(), out.data(), nullptr, nullptr), 0);
        const long double bound =
            (0.5L + 0.16L * std::log2(x.size())) * std::numeric_limits<typename T::value_type>::epsilon();
        const long double measured = error(x, out, backward);
        EXPECT_TRUE(measured <= bound) << measured << " > " << bound;
    });
}

// Bits do not depend on addresses or on in and out being one array, and nothing beside the arrays is touched.
TYPED_TEST(LengthKernels, SameBitsAnywhereAndInPlace)
{
    using T = TypeParam;
    this->all([](LengthKernel run, const std::vector<T>& x, bool) {
        const std::size_t bytes = x.size() * sizeof(T);
        std::vector<T> want(x.size());
        run(x.data(), want.data(), nullptr, nullptr);
        for (const Guard side : both_guards)
            for (std::size_t offset = 0; offset < 16; offset += sizeof(T) / 2) {
                Guarded<T> in(x, side, offset),
                    out(static_cast<std::int64_t>(x.size()), side, (offset + sizeof(T) / 2) % 16);
                in.read_only();
                run(in.data(), out.data(), nullptr, nullptr);
                EXPECT_EQ(std::memcmp(out.data(), want.data(), bytes), 0);
                EXPECT_TRUE(out.unchanged_outside());
                in.writable();
                run(in.data(), in.data(), nullptr, nullptr);
                EXPECT_EQ(std::memcmp(in.data(), want.data(), bytes), 0);
                EXPECT_TRUE(in.unchanged_outside());
            }
    });
}

TYPED_TEST(LengthKernels, KeepTheFloatingPointEnvironment)
{
    using T = TypeParam;
    this->all([](LengthKernel run, const std::vector<T>& x, bool) {
        std::vector<T> out(x.size());
        EXPECT_TRUE(keeps_fp_environment([&] { run(x.data(), out.data(), nullptr, nullptr); }));
    });
}

TEST(LengthKernelLookup, NullOutsideOfOneToSixtyFour)
{
    for (const std::int64_t n : {std::int64_t{-1}, std::int64_t{0}, std::int64_t{65}, std::int64_t{1} << 32 | 8}) {
        EXPECT_EQ(ork_dft_nx2_xc_length_kernel(n, 0), nullptr) << n;
        EXPECT_EQ(ork_dft_nx2_xz_length_kernel(n, 1), nullptr) << n;
    }
}

} // namespace
} // namespace ork::test
