// SPDX-License-Identifier: MIT
// Products with vectors.
#include <vector>

#include "sparse/kernel.h"

namespace ork::test {
namespace {

template <class C>
class SparseMv : public testing::Test {
};
TYPED_TEST_SUITE(SparseMv, Cases, CaseNames);

TYPED_TEST(SparseMv, MergeOfNothing)
{
    using Int = typename TypeParam::Int;
    using T = typename TypeParam::T;
    std::vector<T> y = {T(1), T(2)};
    KERNEL(csr_mv_merge1)(0, 2, 2, 0, nullptr, y.data());
    EXPECT_EQ(y, (std::vector<T>{T(1), T(2)}));
}

} // namespace
} // namespace ork::test
