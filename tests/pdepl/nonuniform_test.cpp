// SPDX-License-Identifier: MIT
// The Helmholtz equation with given nodes along z: the discrete equations hold to rounding for every pair of sides,
// solutions converge in second order on smoothly graded nodes, and wrong calls are refused.
#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "ork/abi/pde_sphere.h"
#include "support/random.h"

using namespace ork::pde;

extern "C" NonuniformCalls::init ork_pdepl_nx2_s_init_helmholtz_nonuniform_3d;
extern "C" NonuniformCalls::commit ork_pdepl_nx2_s_commit_helmholtz_nonuniform_3d;
extern "C" NonuniformCalls::solve ork_pdepl_nx2_s_helmholtz_nonuniform_3d;
extern "C" PoissonCalls<float>::free_helmholtz_3d ork_pdepl_nx2_free_helmholtz_3d;

namespace {

constexpr int at_singular = 27;

struct Box {
    Int n[3];
    std::string letters; // of the sides
    float length[2] = {1, 1.5F}, q;
    std::vector<float> z, f, side[6], fpar;
    std::vector<Int> ipar = std::vector<Int>(128, 7);
    ork_dft_descriptor *x = nullptr, *y = nullptr;
    Int stat = 77;

    Box(Int nx, Int ny, Int nz, std::string sides, float shift)
        : n{nx, ny, nz}, letters(std::move(sides)), q(shift),
          fpar(static_cast<size_t>(nonuniform_reals(std::max<Int>(nx, 0), std::max<Int>(ny, 0), std::max<Int>(nz, 0))))
    {
        for (Int k = 0; k <= nz; ++k) z.push_back(graded(static_cast<double>(k) / static_cast<double>(nz)));
        f.resize(static_cast<size_t>((nx + 1) * (ny + 1) * (nz + 1)));
        for (int s = 0; s < 6; ++s) side[s].resize(f.size() / static_cast<size_t>(n[s / 2] + 1));
    }
    ~Box() { release(); }
    Box(const Box&) = delete;
    Box& operator=(const Box&) = delete;

    static float graded(double t) { return static_cast<float>(t + 0.3 * t * t); }

    Int init()
    {
        const float zero = 0;
        ork_pdepl_nx2_s_init_helmholtz_nonuniform_3d(&zero, &length[0], &zero, &length[1], &n[0], &n[1], &n[2],
                                                     letters.c_str(), &q, ipar.data(), fpar.data(), &stat);
        ipar[1] = ipar[2] = 0;
        return agreed();
    }
    Int commit()
    {
        ork_pdepl_nx2_s_commit_helmholtz_nonuniform_3d(f.data(), z.data(), &x, &y, ipar.data(), fpar.data(), &stat);
        return agreed();
    }
    Int solve()
    {
        ork_pdepl_nx2_s_helmholtz_nonuniform_3d(f.data(), side[0].data(), side[1].data(), side[2].data(),
                                                side[3].data(), side[4].data(), side[5].data(), &x, &y, ipar.data(),
                                                fpar.data(), &stat);
        return agreed();
    }
    Int release()
    {
        ork_pdepl_nx2_free_helmholtz_3d(&x, &y, ipar.data(), &stat);
        return agreed();
    }
    Int agreed() const
    {
        EXPECT_EQ(ipar[0], stat);
        return stat;
    }

    size_t place(const Int (&p)[3]) const
    {
        return static_cast<size_t>(p[0] + (n[0] + 1) * (p[1] + (n[1] + 1) * p[2]));
    }
    // Element of a side's array for the point above or beside it.
    float bound(int s, const Int (&p)[3]) const
    {
        const int fast = s < 2 ? 1 : 0, slow = s < 4 ? 2 : 1;
        return side[s][static_cast<size_t>(p[fast] + p[slow] * (n[fast] + 1))];
    }
    double node(int d, Int i) const
    {
        return d == 2 ? double{z[static_cast<size_t>(i)]}
                      : double{length[d]} * static_cast<double>(i) / static_cast<double>(n[d]);
    }
    bool known(const Int (&p)[3]) const
    {
        for (int s = 0; s < 6; ++s)
            if (letters[static_cast<size_t>(s)] == 'd' && p[s / 2] == (s % 2 == 0 ? 0 : n[s / 2])) return true;
        return false;
    }
    bool copied(const Int (&p)[3]) const
    {
        for (int d = 0; d < 3; ++d)
            if (letters[static_cast<size_t>(2 * d)] == 'p' && p[d] == n[d]) return true;
        return false;
    }
    double weight(const Int (&p)[3]) const
    {
        double product = 1;
        for (int d = 0; d < 3; ++d) {
            const bool around = letters[static_cast<size_t>(2 * d)] == 'p';
            const Int below = p[d] > 0 ? p[d] - 1 : n[d] - 1, above = p[d] < n[d] ? p[d] : 0;
            double sum = 0;
            if (p[d] > 0 || around) sum += node(d, below + 1) - node(d, below);
            if (p[d] < n[d] || around) sum += node(d, above + 1) - node(d, above);
            product *= sum / 2;
        }
        return product;
    }
    // Left-hand side less what Neumann sides add to the right one, and the magnitude of the terms.
    std::pair<double, double> equation(const Int (&p)[3]) const
    {
        const double here = f[place(p)];
        double value = q * here, size = std::fabs(value);
        for (int d = 0; d < 3; ++d) {
            const bool around = letters[static_cast<size_t>(2 * d)] == 'p';
            const bool low = p[d] > 0 || around, high = p[d] < n[d] || around;
            const Int below = p[d] > 0 ? p[d] - 1 : n[d] - 1, above = p[d] < n[d] ? p[d] : 0;
            const double h_low = node(d, below + 1) - node(d, below), h_high = node(d, above + 1) - node(d, above);
            const double half = ((low ? h_low : 0) + (high ? h_high : 0)) / 2;
            const auto add = [&](Int other, double h) {
                Int at[3] = {p[0], p[1], p[2]};
                at[d] = other;
                const double beside = f[place(at)];
                value += (here - beside) / (h * half), size += (std::fabs(here) + std::fabs(beside)) / (h * half);
            };
            if (low) add(below, h_low);
            if (high) add(above + 1, h_high);
            for (const auto& [missing, s] : {std::pair{!low, 2 * d}, {!high, 2 * d + 1}})
                if (missing) value -= bound(s, p) / half, size += std::fabs(bound(s, p)) / half;
        }
        return {value, size};
    }
    template <class Body>
    void every_point(Body&& body) const
    {
        for (Int k = 0; k <= n[2]; ++k)
            for (Int j = 0; j <= n[1]; ++j)
                for (Int i = 0; i <= n[0]; ++i) body({i, j, k});
    }
};

using Point = const Int (&)[3];

void expect_equations(const Box& b, const std::vector<float>& right, double dropped)
{
    double worst = 0, largest = 0;
    b.every_point([&](Point p) {
        if (b.known(p) || b.copied(p)) return;
        const auto [value, size] = b.equation(p);
        largest = std::max(largest, size);
        const double off = std::fabs(value - (static_cast<double>(right[b.place(p)]) - dropped));
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
                Box b(6 + which % 3, 5 + which % 2, nz[which % 4], x + y + z, which % 2 == 0 ? 1.5F : 0.7F);
                ++which;
                SCOPED_TRACE(testing::Message() << b.letters << " nz = " << b.n[2]);
                ASSERT_EQ(b.init(), ok);
                ASSERT_EQ(b.commit(), ok);
                ork::test::Random random;
                for (float& v : b.f) v = random.uniform<float>();
                for (auto& s : b.side)
                    for (float& v : s) v = random.uniform<float>();
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
        Box b(8, 6, 7, letters, 0);
        ASSERT_EQ(b.init(), ok);
        ASSERT_EQ(b.commit(), ok);
        ork::test::Random random;
        for (float& v : b.f) v = random.uniform<float>();
        const std::vector<float> right = b.f;
        ASSERT_EQ(b.solve(), ok);
        EXPECT_EQ(b.ipar[at_singular], 1);
        double mean = 0, dropped = 0, weights = 0;
        b.every_point([&](Point p) {
            if (b.copied(p)) return;
            const double w = b.weight(p);
            mean += w * b.f[b.place(p)], dropped += w * right[b.place(p)], weights += w;
        });
        expect_equations(b, right, dropped / weights);
        EXPECT_LE(std::fabs(mean / weights), 1e-6);
    }
}

TEST(NonuniformSolver, ConvergesInSecondOrderOnGradedNodes)
{
    const auto u = [](double x, double y, double z) { return std::sin(2 * x) * std::cos(y) * std::exp(z); };
    for (const char* letters : {"dddddd", "dddnnd", "ndddnn"}) {
        SCOPED_TRACE(letters);
        std::vector<double> errors;
        for (const Int n : {6, 12, 24}) {
            Box b(n, n, n, letters, 1);
            ASSERT_EQ(b.init(), ok);
            ASSERT_EQ(b.commit(), ok);
            const auto at = [&](Point p) { return u(b.node(0, p[0]), b.node(1, p[1]), b.node(2, p[2])); };
            b.every_point([&](Point p) {
                const double x = b.node(0, p[0]), y = b.node(1, p[1]), z = b.node(2, p[2]);
                b.f[b.place(p)] = static_cast<float>((4 + 1 - 1 + 1) * at(p));
                const double slope[] = {2 * std::cos(2 * x) * std::cos(y) * std::exp(z),
                                        -std::sin(2 * x) * std::sin(y) * std::exp(z), at(p)};
                for (int s = 0; s < 6; ++s) {
                    if (p[s / 2] != (s % 2 == 0 ? 0 : n)) continue;
                    const int fast = s < 2 ? 1 : 0, slow = s < 4 ? 2 : 1;
                    const double value =
                        b.letters[static_cast<size_t>(s)] == 'd' ? at(p) : (s % 2 == 0 ? -1 : 1) * slope[s / 2];
                    b.side[s][static_cast<size_t>(p[fast] + p[slow] * (n + 1))] = static_cast<float>(value);
                }
            });
            ASSERT_EQ(b.solve(), ok);
            double worst = 0;
            b.every_point([&](Point p) { worst = std::max(worst, std::fabs(b.f[b.place(p)] - at(p))); });
            errors.push_back(worst);
        }
        for (const size_t i : {0, 1}) EXPECT_NEAR(errors[i] / errors[i + 1], 4, 0.6);
    }
}

TEST(NonuniformSolver, RefusesWrongNodesStatesAndDamagedArrays)
{
    for (const float wrong :
         {0.F, -1.F, 100.F, std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity()}) {
        Box b(4, 4, 4, "dddddd", 0);
        b.z[2] = wrong;
        ASSERT_EQ(b.init(), ok);
        EXPECT_EQ(b.commit(), bad_argument) << wrong;
        EXPECT_EQ(b.solve(), bad_state);
        EXPECT_EQ(b.commit(), bad_state);
    }
    for (const char* letters : {"dddddp", "xddddd", "pddddd"}) {
        Box b(4, 4, 4, letters, 0);
        ASSERT_EQ(b.init(), ok);
        EXPECT_EQ(b.commit(), bad_argument) << letters;
    }
    Box b(4, 6, 5, "ddppnd", 0);
    ASSERT_EQ(b.init(), ok);
    EXPECT_EQ(b.solve(), bad_state);
    b.ipar[0] = 0;
    ASSERT_EQ(b.commit(), ok);
    const std::vector<Int> good = b.ipar;
    for (const size_t entry : {6, 9, 10, 12, 13, 14, 15, 17, 19, 22, 25, 28, 29, 30, 31, 40, 45, 46, 60, 65, 100})
        for (const Int wrong : {Int{0}, Int{3}, Int{-5}, Int{1} << 40}) {
            if (good[entry] == wrong) continue;
            b.ipar[entry] = wrong;
            EXPECT_NE(b.solve(), ok) << entry << ' ' << wrong;
            b.ipar = good;
        }
    EXPECT_EQ(b.solve(), ok);
    EXPECT_EQ(b.commit(), ok); // once more: the first transforms are released
    EXPECT_EQ(b.release(), ok);
    EXPECT_EQ(b.solve(), bad_state);
}

} // namespace
