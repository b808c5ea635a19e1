// SPDX-License-Identifier: MIT
// Compressed rows: the stated orders of additions, bit for bit.
#include "spblas/member.h"

namespace ork::test {
namespace {

template <class C>
class CsrOrder : public testing::Test {
};
TYPED_TEST_SUITE(CsrOrder, Cases, CaseNames);

TYPED_TEST(CsrOrder, GeneralRowsInFourAccumulators)
{
    using T = typename TypeParam::T;
    using Int = typename TypeParam::Int;
    using Call = spblas::Calls<spblas::Format::csr, Int, T>;
    auto* kernel = member<typename Call::MvoutPar, Int, T>("csr0ng__c__mvout_par");
    ASSERT_NE(kernel, nullptr);
    const Int one = 1, pntrb = 5, pntre = 6, indx = 0;
    const T unit(1), zero(0), val(3), x(2);
    T y(std::numeric_limits<Real<T>>::quiet_NaN());
    kernel(&one, &one, nullptr, &one, &unit, &val, &indx, &pntrb, &pntre, &x, &y, &zero);
    EXPECT_EQ(y, T(6));
}

} // namespace
} // namespace ork::test
