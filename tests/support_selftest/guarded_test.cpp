// SPDX-License-Identifier: MIT
#include "support/guarded.h"

#include <complex>
#include <cstring>

#include <gtest/gtest.h>

#include "support/strided.h"

namespace ork::test {
namespace {

volatile double sink;

TEST(GuardedDeathTest, ReadsPastEitherEndEndTheProcess)
{
    for (std::int64_t n : {0, 1, 3, 511, 512, 513}) {
        const Guarded<double> ends(n, Guard::end), begins(n, Guard::begin);
        EXPECT_DEATH(sink = ends.data()[n], "");
        EXPECT_DEATH(sink = begins.data()[-1], "");
    }
    // A vector load that starts inside is caught as well, and so is one byte.
    const Guarded<double> x(3, Guard::end);
    EXPECT_DEATH(
        {
            double lanes[2];
            std::memcpy(lanes, x.data() + 2, sizeof lanes);
            sink = lanes[1];
        },
        "");
    const Guarded<char> bytes(5, Guard::end);
    EXPECT_DEATH(sink = const_cast<volatile char*>(bytes.data())[5], "");
}

TEST(GuardedDeathTest, WritesToReadOnlyInputsEndTheProcess)
{
    Guarded<float> x(7);
    x.read_only();
    EXPECT_DEATH(const_cast<volatile float*>(x.data())[3] = 1, "");
    x.writable();
    x[3] = 1;
    EXPECT_FALSE(x.unchanged());
}

TEST(Guarded, OffsetChoosesTheAlignment)
{
    for (std::size_t offset = 0; offset < 64; offset += 4) {
        const Guarded<float> ends(13, Guard::end, offset), begins(13, Guard::begin, offset);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(begins.data()) % 64, offset);
        EXPECT_EQ((reinterpret_cast<std::uintptr_t>(ends.data() + 13) + offset) % 64, 0u);
    }
}

TEST(Guarded, WritesBesideTheAllowedSetAreSeen)
{
    Guarded<double> x(std::vector<double>{1, 2, 3}, Guard::end);
    const auto only_second = [](std::int64_t i) { return i == 1; };
    EXPECT_TRUE(x.unchanged());
    x[1] = 7;
    EXPECT_TRUE(x.unchanged_except(only_second));
    EXPECT_FALSE(x.unchanged());
    x[2] = 8;
    EXPECT_FALSE(x.unchanged_except(only_second));
    x[2] = 3;
    reinterpret_cast<unsigned char*>(x.data())[-1] ^= 1; // before the array, where the guard is not flush
    EXPECT_FALSE(x.unchanged_outside());
    x.remember();
    EXPECT_TRUE(x.unchanged());
    x[0] = 1; // the same bits again
    EXPECT_TRUE(x.unchanged());
}

template <class T>
class Poison : public testing::Test {
};
using Scalars = testing::Types<float, double, std::complex<float>, std::complex<double>>;
TYPED_TEST_SUITE(Poison, Scalars);

TYPED_TEST(Poison, GapsOfVectorsAreNaNAndWatched)
{
    for (std::int64_t inc : {-3, -2, 2, 3}) {
        Vector<TypeParam> x(uniform_values<TypeParam>(5), inc);
        EXPECT_TRUE(std::isnan(std::abs(x.data()[1])));
        x[2] = 4;
        EXPECT_TRUE(x.padding_intact());
        EXPECT_FALSE(x.unchanged());
        EXPECT_EQ(x.data()[inc < 0 ? 2 * -inc : 2 * inc], TypeParam(4));
        EXPECT_EQ(x.values()[2], TypeParam(4));
        x.data()[1] = TypeParam(1);
        EXPECT_FALSE(x.padding_intact());
    }
    // The first element of a vector with a negative increment is the last in memory.
    const Vector<TypeParam> x(uniform_values<TypeParam>(4), -2);
    EXPECT_EQ(&x[0], x.data() + 6);
    EXPECT_EQ(&x[3], x.data());
}

TYPED_TEST(Poison, RowsBelowTheMatrixAreNaNAndWatched)
{
    Random random;
    Matrix<TypeParam> a(3, 4, 5);
    a.fill(random);
    EXPECT_TRUE(std::isnan(std::abs(a.data()[3])) && std::isnan(std::abs(a.data()[4])));
    a(2, 3) = 1;
    EXPECT_TRUE(a.padding_intact());
    EXPECT_EQ(a.values().size(), 12u);
    EXPECT_EQ(a.values()[11], TypeParam(1));
    a.data()[4] = TypeParam(1);
    EXPECT_FALSE(a.padding_intact());
}

} // namespace
} // namespace ork::test
