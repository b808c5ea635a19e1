// SPDX-License-Identifier: MIT
// What transforms leave behind besides their results: floating-point control and flags, and no more than a small stack.
#include "pdett/transform.h"
#include "support/environment.h"

namespace ork::test {
namespace {

template <class R>
class TrigEnvironment : public testing::Test {
};
TYPED_TEST_SUITE(TrigEnvironment, RealPrecisions);

TYPED_TEST(TrigEnvironment, IsKeptAndTheStackSmall)
{
    using R = TypeParam;
    for (const Int n : {2, 3, 12, 64, 101, 6000})
        for (Int type = 0; type < 6; ++type) {
            SCOPED_TRACE("n " + std::to_string(n) + ", type " + std::to_string(type));
            Trig<R> t(n, type);
            const Int count = 20, stride = count, distance = 1, forward = 0;
            const std::vector<R> given(static_cast<std::size_t>((n + 1) * count), R(0.5));
            std::vector<R> rows = given;
            const auto whole = [&] {
                t.call.init(&n, &type, t.ipar.data(), t.fpar.data(), &t.stat);
                t.ipar[2] = 0;
                t.commit(), t.forward(), t.backward();
                rows = given;
                t.call.lines(&forward, rows.data(), &count, &stride, &distance, &t.handle, t.ipar.data(),
                             t.fpar.data());
                t.free();
            };
            EXPECT_TRUE(keeps_fp_environment(whole));
            run_on_small_stack(small_stack, whole);
            EXPECT_EQ(t.stat, 0);
        }
}

} // namespace
} // namespace ork::test
