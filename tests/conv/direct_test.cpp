// SPDX-License-Identifier: MIT
#include <complex>

#include "conv/reference.h"

namespace ork::test {
namespace {

template <class T>
class DirectSums : public testing::Test {
};
using Elements = testing::Types<float, double, std::complex<float>, std::complex<double>>;
TYPED_TEST_SUITE(DirectSums, Elements);

TYPED_TEST(DirectSums, AreTheDefinition)
{
    for (const Setup& setup : std::vector<Setup>{
             {{10}, {3}},
             {{3}, {5}, {}, ORK_CONV_CORRELATION},
             {.x = {9, 5}, .y = {3, 4}, .job = ORK_CONV_CORRELATION, .x_stride = {-2, 20}, .z_stride = {3, -40}},
             {.x = {4, 5, 2}, .y = {3, 2, 3}, .start = {1, 0, 2}, .decimation = {2, 3, 1}}}) {
        Convolution<TypeParam> c(setup);
        ASSERT_EQ(c.exec(), 0);
        EXPECT_TRUE(c.is_sum());
        ASSERT_EQ(c.exec(true), 0);
        EXPECT_TRUE(c.is_sum());
    }
}

} // namespace
} // namespace ork::test
