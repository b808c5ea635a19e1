// SPDX-License-Identifier: MIT
// Solutions: the difference equations hold to rounding on every kind of side, grids of any size and singular problems.
#include <numbers>

#include "box.h"

namespace ork::test {
namespace {

template <class R>
class Helmholtz : public testing::Test {
};
using Reals = testing::Types<float, double>;
TYPED_TEST_SUITE(Helmholtz, Reals);

constexpr const char* pairs[] = {"DD", "DN", "ND", "NN", "PP"};

template <class R>
void solve(const std::string& sides, std::vector<Int> n, double q, Guard guard = Guard::end)
{
    Problem<R> p(sides, n, q, guard);
    SCOPED_TRACE(testing::Message() << sides << ' ' << n[0] << ' ' << n[1] << ' ' << p.n[2] << " q " << q);
    ASSERT_EQ(p.init(), pde::ok);
    p.ipar[2] = 0; // singular ones warn
    ASSERT_EQ(p.commit(), pde::ok);
    const auto right = p.f.values();
    ASSERT_EQ(p.solve(), pde::ok);
    const bool singular = q == 0 && sides.find_first_of("Dd") == std::string::npos;
    EXPECT_EQ(p.ipar[27], singular);
    EXPECT_EQ(hooks().singular, singular);
    EXPECT_EQ(live_allocations, 0);
    p.expect_solved(right, singular);
    EXPECT_EQ(p.free(), pde::ok);
}

TYPED_TEST(Helmholtz, EveryPairInTheRectangle)
{
    for (const std::string x : pairs)
        for (const std::string y : pairs)
            for (const std::vector<Int>& n :
                 {std::vector<Int>{8, 7}, {9, 4}, {2, 1}, {2, 2}, {3, 3}, {4, 16}, {6, 2}, {37, 20}})
                solve<TypeParam>(x + y, n, n[0] == 9 ? 1.5 : 0, n[1] % 2 == 0 ? Guard::end : Guard::begin);
}

TYPED_TEST(Helmholtz, EveryPairInTheBox)
{
    for (const std::string x : pairs)
        for (const std::string y : pairs)
            for (const std::string z : pairs) {
                solve<TypeParam>(x + y + z, {4, 5, 3}, 0);
                solve<TypeParam>(x + y + z, {3, 2, 1}, 0.75, Guard::begin);
                if (x == y || y == z) solve<TypeParam>(x + y + z, {10, 8, 20}, 0);
            }
}

TYPED_TEST(Helmholtz, ManyLines)
{
    solve<TypeParam>("DDDD", {127, 255}, 0);
    solve<TypeParam>("PPPP", {96, 33}, 0);
    solve<TypeParam>("DNNDPP", {33, 40, 31}, 2);
}

// Products of cosines with the period of the domain: values and slopes of either sign on all sides.
void expect_second_order(const std::string& sides)
{
    SCOPED_TRACE(sides);
    std::vector<double> errors;
    for (const Int refine : {1, 2, 4}) {
        Problem<double> p(sides, {12 * refine, 10 * refine, 8 * refine}, 2);
        const auto wave = [&](int d) { return 2 * std::numbers::pi / (p.ends[2 * d + 1] - p.ends[2 * d]); };
        const auto angle = [&](int d, Int i) { return wave(d) * p.step(d) * double(i) + d + 1; };
        std::vector<double> u(p.f.values());
        double eigenvalue = p.q;
        for (int d = 0; d < p.dimensions(); ++d) eigenvalue += wave(d) * wave(d);
        p.points([&](Int i, Int j, Int k) {
            const Int at[3] = {i, j, k};
            double product = 1;
            for (int d = 0; d < p.dimensions(); ++d) product *= std::cos(angle(d, at[d]));
            u[static_cast<size_t>(p.at(at))] = product, p.f[p.at(at)] = eigenvalue * product;
            for (int side = 0; side < 2 * p.dimensions(); ++side) {
                const int d = side / 2;
                if (at[d] != (side % 2 == 0 ? 0 : p.n[d])) continue;
                const double slope = (side % 2 == 0 ? 1 : -1) * wave(d) * std::tan(angle(d, at[d])) * product;
                p.bd[static_cast<size_t>(side)][p.on_side(d, at)] = p.letter(side) == 'd' ? product : slope;
            }
        });
        p.ready(true);
        ASSERT_EQ(p.solve(), pde::ok);
        double worst = 0;
        for (Int i = 0; i < p.f.size(); ++i) worst = std::max(worst, std::abs(u[static_cast<size_t>(i)] - p.f[i]));
        errors.push_back(worst);
    }
    EXPECT_TRUE(errors[2] < 0.02) << errors[2];
    for (const size_t i : {0, 1}) EXPECT_NEAR(std::log2(errors[i] / errors[i + 1]), 2, 0.3);
}

TEST(Helmholtz, ConvergesInSecondOrderBetweenEveryPairOfSides)
{
    for (const std::string x : pairs)
        for (const std::string y : pairs) expect_second_order(x + y);
    for (const char* sides : {"DDDDDD", "DNNDPP", "NDNNDN", "NNPPND", "PPDNNN"}) expect_second_order(sides);
}

// Nothing in the arrays points into them, so they may be moved; a second solve needs no second commit.
TEST(Helmholtz, ArraysMayMoveBetweenStages)
{
    Problem<double> p("PPNN", {8, 6}, 1), moved("PPNN", {8, 6}, 1);
    p.ready();
    const auto right = p.f.values();
    std::copy_n(p.ipar.data(), 128, moved.ipar.data());
    std::copy_n(p.fpar.data(), p.fpar.size(), moved.fpar.data());
    std::swap(moved.xhandle, p.xhandle);
    for (int again = 0; again < 2; ++again) {
        std::copy(right.begin(), right.end(), moved.f.data());
        ASSERT_EQ(moved.solve(), pde::ok);
        moved.expect_solved(right);
    }
}

TEST(Helmholtz, LettersOfEitherCase)
{
    Problem<double> upper("NNNN", {6, 5}, 0), lower("nnnn", {6, 5}, 0);
    for (auto* p : {&upper, &lower}) {
        ASSERT_EQ(p->init(), pde::ok);
        p->ipar[2] = 0;
        ASSERT_EQ(p->commit(), pde::ok);
        ASSERT_EQ(p->solve(), pde::ok);
    }
    EXPECT_EQ(upper.f.values(), lower.f.values());
}

// Positions that callers may rely on.
TEST(Helmholtz, PlanOfTheArrays)
{
    Problem<double> p("DNPP", {9, 5}, 2.5);
    p.ready();
    const Int want[] = {0, 1, 1, 0, 0, 0, 0, 1, 2, 2, 0, 0, 9, 5, 0, 6, 15, 0, 0, 16, 29, 0, 0, 1};
    for (int i = 0; i < 24; ++i) EXPECT_EQ(p.ipar[i], want[i]) << i;
    EXPECT_EQ(p.fpar[0], 1.75);
    EXPECT_EQ(p.fpar[1], 1.5);
    EXPECT_EQ(p.fpar[3], 2.5);
    EXPECT_EQ(p.fpar[4], 1e-10);
    EXPECT_EQ(p.ipar[40], 9);
    EXPECT_EQ(p.ipar[45], 2);
    const double hx = 1.75 / 9, hy = 1.5 / 5, angle = 3 * std::acos(-1.0) / 18; // mode 1 of a reversed line: column 8
    EXPECT_NEAR(p.fpar[5 + 8], 2 + hy * hy * ((2 - 2 * std::cos(angle)) / (hx * hx) + 2.5), 1e-14);

    Problem<double> halves("PPDD", {10, 5}, 0);
    halves.ready();
    EXPECT_EQ(halves.ipar[15], 6);
    EXPECT_EQ(halves.ipar[19], 10 + 5 + 10);
    EXPECT_EQ(halves.ipar[40], 5);
    EXPECT_EQ(halves.ipar[45], 1);
    EXPECT_EQ(halves.ipar[80], 5);
    EXPECT_EQ(halves.ipar[85], 0);
}

} // namespace
} // namespace ork::test
