// SPDX-License-Identifier: MIT
// The Helmholtz equation with given nodes along z: the discrete equations hold to rounding for every pair of sides,
// solutions converge in second order on smoothly graded nodes, and wrong calls are refused.
#include <limits>
#include <numbers>

#include "nodes_box.h"

namespace ork::test {
namespace {

using namespace pde;

constexpr int at_singular = 27;

using Point = const Int (&)[3];

void expect_equations(const NodesBox& b, const std::vector<float>& right, double dropped)
{
    double worst = 0, largest = 0;
    b.every_point([&](Point p) {
        if (b.known(p) || b.copied(p)) return;
        const auto [value, size] = b.equation(p);
        largest = std::max(largest, size);
        const double off = std::fabs(value - (static_cast<double>(right[static_cast<size_t>(b.place(p))]) - dropped));
        if (!(off <= worst)) worst = off;
    });
    EXPECT_LE(worst, 64 * static_cast<double>(std::numeric_limits<float>::epsilon()) * largest);
}

TEST(NonuniformSolver, EveryEquationHoldsToRoundingForEveryPairOfSides)
{
    const std::string pairs[] = {"dd", "dn", "nd", "nn", "pp"};
    int which = 0;
    for (const std::string& x : pairs)
        for (const std::string& y : pairs)
            for (const std::string& z : pairs) {
                const Int nz[] = {1, 2, 3, 11};
                NodesBox b(6 + which % 3, 5 + which % 2, nz[which % 4], x + y + z, which % 2 == 0 ? 1.5F : 0.7F);
                ++which;
                SCOPED_TRACE(testing::Message() << b.letters << " nz = " << b.n[2]);
                ASSERT_EQ(b.init(), ok);
                ASSERT_EQ(b.commit(), ok);
                b.fill();
                const std::vector<float> right = b.f;
                ASSERT_EQ(b.solve(), ok);
                EXPECT_EQ(b.ipar[at_singular], 0);
                expect_equations(b, right, 0);
                b.every_point([&](Point p) {
                    for (int s = 5; s >= 0 && !b.copied(p); --s) { // the later side has an edge
                        if (b.letters[static_cast<size_t>(s)] != 'd' || p[s / 2] != (s % 2 == 0 ? 0 : b.n[s / 2]))
                            continue;
                        EXPECT_EQ(b.f[b.place(p)], b.bound(s, p));
                        break;
                    }
                    for (int d = 0; d < 3; ++d) {
                        if (b.letters[static_cast<size_t>(2 * d)] != 'p' || p[d] != b.n[d]) continue;
                        Int first[3] = {p[0], p[1], p[2]};
                        first[d] = 0;
                        EXPECT_EQ(b.f[b.place(p)], b.f[b.place(first)]);
                    }
                });
            }
}

TEST(NonuniformSolver, SingularProblemsLoseTheMeanOfTheRightHandSide)
{
    for (const char* letters : {"nnnnnn", "ppnnpp", "nnppnn"}) {
        SCOPED_TRACE(letters);
        NodesBox b(8, 6, 7, letters, 0);
        b.ready(true);
        Random random;
        for (float& v : b.f) v = random.uniform<float>();
        const std::vector<float> right = b.f;
        ASSERT_EQ(b.solve(), ok);
        EXPECT_EQ(b.ipar[at_singular], 1);
        double mean = 0, dropped = 0, weights = 0;
        b.every_point([&](Point p) {
            if (b.copied(p)) return;
            const double w = b.weight(p);
            mean += w * b.f[b.place(p)], dropped += w * right[static_cast<size_t>(b.place(p))], weights += w;
        });
        expect_equations(b, right, dropped / weights);
        EXPECT_LE(std::fabs(mean / weights), 1e-6);
    }
}

// Products of cosines with the period of the box, every pair of sides in every direction.
TEST(NonuniformSolver, ConvergesInSecondOrderOnGradedNodes)
{
    for (const char* letters : {"dddddd", "dnndpp", "ndnndn", "nnppnd", "ppdnnn"}) {
        SCOPED_TRACE(letters);
        std::vector<double> errors;
        for (const Int n : {6, 12, 24}) {
            NodesBox b(n, n, n, letters, 1);
            b.ready(true);
            const auto wave = [&](int d) { return 2 * std::numbers::pi / (b.node(d, n) - b.node(d, 0)); };
            const auto angle = [&](int d, Int i) { return wave(d) * b.node(d, i) + d; };
            const auto u = [&](Point p) {
                return std::cos(angle(0, p[0])) * std::cos(angle(1, p[1])) * std::cos(angle(2, p[2]));
            };
            b.every_point([&](Point p) {
                double eigenvalue = 1;
                for (int d = 0; d < 3; ++d) eigenvalue += wave(d) * wave(d);
                b.f[b.place(p)] = static_cast<float>(eigenvalue * u(p));
                for (int s = 0; s < 6; ++s) {
                    const int d = s / 2, fast = s < 2 ? 1 : 0, slow = s < 4 ? 2 : 1;
                    if (p[d] != (s % 2 == 0 ? 0 : n)) continue;
                    const double slope = (s % 2 == 0 ? 1 : -1) * wave(d) * std::tan(angle(d, p[d])) * u(p);
                    b.bd[static_cast<size_t>(s)][p[fast] + p[slow] * (n + 1)] =
                        static_cast<float>(b.letters[static_cast<size_t>(s)] == 'd' ? u(p) : slope);
                }
            });
            ASSERT_EQ(b.solve(), ok);
            double worst = 0;
            b.every_point([&](Point p) { worst = std::max(worst, std::fabs(b.f[b.place(p)] - u(p))); });
            errors.push_back(worst);
        }
        EXPECT_LT(errors[2], 0.05);
        for (const size_t i : {0, 1}) EXPECT_NEAR(std::log2(errors[i] / errors[i + 1]), 2, 0.3);
    }
}

TEST(NonuniformSolver, RefusesWrongNodesStatesAndDamagedArrays)
{
    for (const float wrong :
         {0.F, -1.F, 100.F, std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity()}) {
        NodesBox b(4, 4, 4, "dddddd", 0);
        b.z[2] = wrong;
        ASSERT_EQ(b.init(), ok);
        EXPECT_EQ(b.commit(), bad_argument) << wrong;
        EXPECT_EQ(b.solve(), bad_state);
        EXPECT_EQ(b.commit(), bad_state);
    }
    for (const char* letters : {"dddddp", "xddddd", "pddddd"}) {
        NodesBox b(4, 4, 4, letters, 0);
        ASSERT_EQ(b.init(), ok);
        EXPECT_EQ(b.commit(), bad_argument) << letters;
    }
    NodesBox b(4, 6, 5, "ddppnd", 0);
    ASSERT_EQ(b.init(), ok);
    EXPECT_EQ(b.solve(), bad_state);
    b.ipar[0] = 0;
    ASSERT_EQ(b.commit(), ok);
    EXPECT_EQ(b.solve(), ok);
    EXPECT_EQ(b.commit(), ok); // once more: the first transforms are released
    EXPECT_EQ(b.free(), ok);
    EXPECT_EQ(b.solve(), bad_state);
}

} // namespace
} // namespace ork::test
