// SPDX-License-Identifier: MIT
// The Helmholtz equation on a sphere: the discrete equations hold to rounding, solutions converge in second order, and
// wrong calls are refused.
#include <limits>
#include <utility>

#include "sphere.h"

namespace ork::test {
namespace {

using namespace pde;
using A = SphereArray;

template <class R>
class SphereSolver : public testing::Test {
};
struct Names {
    template <class R>
    static std::string GetName(int)
    {
        return sizeof(R) == 4 ? "s" : "d";
    }
};
using Precisions = testing::Types<float, double>;
TYPED_TEST_SUITE(SphereSolver, Precisions, Names);

// Largest violation of an equation, in rounding errors of its terms; `dropped` is taken off the right-hand side.
template <class R>
double worst_residual(const Sphere<R>& s, const std::vector<R>& right, double dropped)
{
    double worst = 0, largest = 0;
    for (Int j = 0; j <= s.nt; ++j)
        for (Int i = 0; i < (s.periodic ? s.np : s.np + 1); ++i) {
            if (s.known(i, j)) {
                EXPECT_EQ(s.f[s.place(i, j)], right[static_cast<size_t>(s.place(i, j))]) << i << ", " << j;
                continue;
            }
            const bool pole = (j == 0 && s.north()) || (j == s.nt && s.south());
            const double want =
                (pole ? s.pole_mean(right, j) : static_cast<double>(right[static_cast<size_t>(s.place(i, j))])) -
                dropped;
            const auto [value, size] = s.equation(i, j);
            largest = std::max(largest, size);
            const double off = std::fabs(value - want) / (size + std::fabs(want));
            if (!(off <= worst)) worst = off;
        }
    return worst / static_cast<double>(std::numeric_limits<R>::epsilon());
}

TYPED_TEST(SphereSolver, EveryEquationHoldsToRounding)
{
    using R = TypeParam;
    struct Shape {
        bool periodic;
        Int np, nt;
        double north, south, q;
    };
    for (const Shape& c : {Shape{true, 16, 9, 0, 1, 1},
                           {true, 15, 8, 0, 1, 0.5},
                           {true, 2, 2, 0, 1, 1},
                           {true, 4, 1, 0, 1, 2},
                           {true, 3, 5, 0, 0.7, 0},
                           {true, 50, 33, 0.25, 1, 0},
                           {true, 36, 21, 0.1, 0.6, 0},
                           {true, 27, 12, 0.1, 0.6, 3},
                           {true, 12, 2, 0.2, 0.5, 0},
                           {false, 2, 2, 0.2, 0.7, 0},
                           {false, 33, 20, 0.1, 0.8, 0},
                           {false, 20, 41, 0, 1, 1},
                           {false, 7, 1, 0.3, 0.5, 0}}) {
        SCOPED_TRACE(testing::Message() << (c.periodic ? "p " : "np ") << c.np << " x " << c.nt << ", " << c.north
                                        << " .. " << c.south << ", q = " << c.q);
        Sphere<R> s(c.periodic, c.np, c.nt, c.north, c.south, c.q, c.periodic ? 2 : 0.9);
        s.ready(true);
        s.fill();
        const std::vector<R> right = s.f;
        ASSERT_EQ(s.solve(), ok);
        EXPECT_EQ(s.ipar[A::singular], 0);
        EXPECT_LE(worst_residual(s, right, 0), 64);
        for (Int j = 0; j <= c.nt && c.periodic; ++j)
            if (!s.known(0, j)) {
                EXPECT_EQ(s.f[s.place(c.np, j)], s.f[s.place(0, j)]);
            }
        for (Int i = 0; i <= c.np && s.north(); ++i) EXPECT_EQ(s.f[s.place(i, 0)], s.f[0]);
        // Once more with the same arrays.
        const std::vector<R> first = s.f;
        s.f = right;
        ASSERT_EQ(s.solve(), ok);
        EXPECT_EQ(s.f, first);
    }
}

TYPED_TEST(SphereSolver, WholeSphereWithoutShiftLosesTheMeanOfTheRightHandSide)
{
    using R = TypeParam;
    for (const auto& [np, nt] : {std::pair<Int, Int>{24, 15}, {9, 10}, {4, 1}}) {
        Sphere<R> s(true, np, nt, 0, 1, 0);
        s.ready(true);
        s.fill();
        const std::vector<R> right = s.f;
        ASSERT_EQ(s.solve(), ok);
        EXPECT_EQ(s.ipar[A::singular], 1);
        double dropped = 0, weights = 0, mean = 0;
        for (Int j = 0; j <= nt; ++j) {
            dropped += s.weight(j) * s.pole_mean(right, j), weights += s.weight(j);
            mean += s.weight(j) * s.pole_mean(s.f, j);
        }
        EXPECT_LE(worst_residual(s, right, dropped / weights), 64);
        EXPECT_LE(std::fabs(mean / weights), 16 * static_cast<double>(std::numeric_limits<R>::epsilon()));
    }
}

// u = Y(2, 1) + Y(1, 0) up to factors: -Laplace(u) = 6 sin cos cos(phi) + 2 cos(theta).
double harmonic(double theta, double phi) { return std::sin(2 * theta) * std::cos(phi) + std::cos(theta); }
double right_of(double theta, double phi, double q)
{
    return 6 * std::sin(2 * theta) * std::cos(phi) + 2 * std::cos(theta) + q * harmonic(theta, phi);
}

TEST(SphereSolution, ConvergesInSecondOrderToSphericalHarmonics)
{
    struct Problem {
        bool periodic;
        double north, south, q;
    };
    for (const Problem& c : {Problem{true, 0, 1, 0},
                             {true, 0, 1, 2},
                             {true, 0, 0.6, 0},
                             {true, 0.4, 1, 0},
                             {true, 0.2, 0.75, 1},
                             {false, 0.2, 0.75, 1}}) {
        SCOPED_TRACE(testing::Message() << c.periodic << ' ' << c.north << ' ' << c.south << ' ' << c.q);
        std::vector<double> errors;
        for (const Int n : {16, 32, 64}) {
            Sphere<double> s(c.periodic, 2 * n, n, c.north, c.south, c.q, c.periodic ? 2 : 0.8);
            s.ready(true);
            const auto at = [&](Int i, Int j) { return harmonic(s.theta(static_cast<double>(j)), s.phi(i)); };
            for (Int j = 0; j <= n; ++j)
                for (Int i = 0; i <= 2 * n; ++i)
                    s.f[s.place(i, j)] =
                        s.known(i, j) ? at(i, j) : right_of(s.theta(static_cast<double>(j)), s.phi(i), c.q);
            ASSERT_EQ(s.solve(), ok);
            double worst = 0;
            for (Int j = 0; j <= n; ++j)
                for (Int i = 0; i <= 2 * n; ++i) worst = std::max(worst, std::fabs(s.f[s.place(i, j)] - at(i, j)));
            errors.push_back(worst);
        }
        EXPECT_LT(errors[2], 2e-3);
        for (const size_t i : {0, 1}) EXPECT_NEAR(errors[i] / errors[i + 1], 4, 0.35);
    }
}

TYPED_TEST(SphereSolver, RefusesWhatIsWrongInTheOrderOfTheChecks)
{
    using S = Sphere<TypeParam>;
    struct Wrong {
        bool periodic;
        Int np, nt;
        double north, south, east;
        Int status;
    };
    for (const Wrong& c : {Wrong{true, 0, 4, 0, 1, 2, bad_argument},
                           {true, 4, 0, 0, 1, 2, bad_argument},
                           {true, 8, 4, 0, 1, 1.9, bad_argument},
                           {false, 8, 4, 0.1, 1, 2.1, bad_argument},
                           {false, 8, 4, 0.1, 0.9, 0, bad_argument},
                           {true, 8, 4, 0.5, 0.5, 2, bad_argument},
                           {true, 8, 4, 0.2, 1.1, 2, bad_argument},
                           {false, 8, 4, -0.1, 0.9, 1, bad_argument},
                           {true, 1, 4, 0, 1, 2, transform_failed},
                           {false, 1, 4, 0.1, 1, 1, transform_failed}}) {
        S s(c.periodic, c.np, c.nt, c.north, c.south, 0, c.east);
        ASSERT_EQ(s.init(), ok);
        s.silence();
        EXPECT_EQ(s.commit(), c.status) << c.np << ' ' << c.nt << ' ' << c.east;
        EXPECT_EQ(s.solve(), bad_state);
        EXPECT_EQ(s.commit(), bad_state);
    }
    S nan(true, 8, 4, 0, 1, 0, std::numeric_limits<double>::quiet_NaN());
    ASSERT_EQ(nan.init(), ok);
    nan.silence();
    EXPECT_EQ(nan.commit(), bad_argument);

    for (const bool periodic : {true, false}) {
        S s(periodic, 8, 4, 0.2, 0.8, 0, periodic ? 2 : 1);
        ASSERT_EQ(s.init(), ok);
        s.silence();
        EXPECT_EQ(s.solve(), bad_state); // not committed
        for (const Int left : {0, 9, 90, 99, 900, 909, 990, 999}) {
            s.ipar[A::status] = left;
            EXPECT_EQ(s.commit(), ok) << left;
        }
        s.ipar[A::status] = 1;
        EXPECT_EQ(s.solve(), ok);
        for (const auto& [entry, wrong] : {std::pair{A::np, -1}, {A::nt, 0}}) {
            s.ipar[A::status] = 0;
            const Int kept = std::exchange(s.ipar[entry], wrong);
            EXPECT_EQ(s.solve(), bad_argument);
            s.ipar[entry] = kept;
        }
        s.ipar[A::status] = 0;
        ork_dft_descriptor* const kept = std::exchange(s.sine, nullptr);
        EXPECT_EQ(s.solve(), bad_argument);
        s.sine = kept, s.ipar[A::status] = 0;
        EXPECT_EQ(s.solve(), ok);
        EXPECT_EQ(s.free(), ok);
        EXPECT_EQ(s.solve(), bad_state);
        EXPECT_EQ(s.free(), ok); // nothing is left
    }
}

} // namespace
} // namespace ork::test
