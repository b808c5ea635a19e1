// SPDX-License-Identifier: MIT
// Solutions on rectangles and boxes: the discrete equations at rounding level, the order of convergence, singular
// problems, threads.
#include <gtest/gtest.h>

#include <cstring>
#include <thread>

#include "box.h"
#include "ork/ork.h"

namespace ork::test {
namespace {

const std::vector<std::string> pairs = {"DD", "DN", "ND", "NN", "PP"};

template <class R>
class Helmholtz : public testing::Test {
};
using Precisions = testing::Types<float, double>;
TYPED_TEST_SUITE(Helmholtz, Precisions);

// Residuals of random problems of up to a million points came to 4 units of rounding at most.
constexpr double tolerance = 12;

template <class R>
void expect_solved(std::vector<int64_t> n, const std::string& sides, R q)
{
    Box<R> box(n, sides, q);
    box.randomize(7);
    const auto g = box.f;
    ASSERT_EQ(box.commit(), 0);
    ASSERT_EQ(box.ipar[ORK_PDE_SINGULAR], 0);
    ASSERT_EQ(box.solve(), 0);
    EXPECT_TRUE(box.residual(g) <= tolerance) << box.residual(g);
}

TYPED_TEST(Helmholtz, SolvesTheSchemeOnRectangles)
{
    for (const auto& x : pairs)
        for (const auto& y : pairs)
            for (const auto& n : std::vector<std::vector<int64_t>>{
                     {2, 1}, {2, 2}, {3, 2}, {4, 3}, {5, 7}, {6, 6}, {13, 4}, {16, 31}, {37, 40}, {100, 18}}) {
                SCOPED_TRACE(x + y + " " + std::to_string(n[0]) + " " + std::to_string(n[1]));
                expect_solved<TypeParam>(n, x + y, TypeParam(0.5));
            }
}

TYPED_TEST(Helmholtz, SolvesTheSchemeInBoxes)
{
    for (const auto& x : pairs)
        for (const auto& y : pairs)
            for (const auto& z : pairs)
                for (const auto& n : std::vector<std::vector<int64_t>>{{4, 5, 1}, {7, 2, 2}, {6, 8, 5}}) {
                    SCOPED_TRACE(x + y + z + " " + std::to_string(n[0]));
                    expect_solved<TypeParam>(n, x + y + z, TypeParam(0.5));
                }
    expect_solved<TypeParam>({40, 33, 17}, "DNPPND", TypeParam(0));
}

// u = cos(2 pi x / lx + 1) cos(2 pi y / ly + 2) (...): periodic over the domain, with values and slopes on its sides.
TEST(HelmholtzOrder, IsTwo)
{
    for (const std::string sides : {"DDDD", "DNND", "NNPP", "PPDN", "DDDDDD", "PPNDNN", "NDPPPP"}) {
        SCOPED_TRACE(sides);
        std::vector<double> errors;
        for (const int64_t refine : {1, 2, 4}) {
            const bool flat = sides.size() == 4;
            std::vector<int64_t> n = {12 * refine, 10 * refine};
            if (!flat) n.push_back(8 * refine);
            Box<double> box(n, sides, 2);
            const int dimensions = box.dimensions();
            const auto wave = [&](int d) { return 2 * M_PI / box.length[d]; };
            const auto factor = [&](int d, int64_t i) { return std::cos(wave(d) * box.step(d) * double(i) + d + 1); };
            const auto slope = [&](int d, int64_t i) {
                return -wave(d) * std::sin(wave(d) * box.step(d) * double(i) + d + 1);
            };
            std::vector<double> u(box.f.size());
            double eigenvalue = box.q;
            for (int d = 0; d < dimensions; ++d) eigenvalue += wave(d) * wave(d);
            int64_t p[3];
            for (p[2] = 0; p[2] <= box.n[2]; ++p[2])
                for (p[1] = 0; p[1] <= box.n[1]; ++p[1])
                    for (p[0] = 0; p[0] <= box.n[0]; ++p[0]) {
                        double product = 1;
                        for (int d = 0; d < dimensions; ++d) product *= factor(d, p[d]);
                        u[box.place(p)] = product, box.f[box.place(p)] = eigenvalue * product;
                        for (int d = 0; d < dimensions; ++d) {
                            if (p[d] != 0 && p[d] != box.n[d]) continue;
                            const int end = p[d] != 0;
                            const double outward = product / factor(d, p[d]) * slope(d, p[d]) * (end == 0 ? -1 : 1);
                            box.bd[2 * d + end][box.side_place(d, p)] = box.side(d, end) == 'D' ? product : outward;
                        }
                    }
            ASSERT_EQ(box.commit(), 0);
            ASSERT_EQ(box.solve(), 0);
            double worst = 0;
            for (std::size_t i = 0; i < u.size(); ++i) worst = std::max(worst, std::abs(u[i] - box.f[i]));
            errors.push_back(worst);
        }
        for (int i = 0; i < 2; ++i) {
            const double order = std::log2(errors[i] / errors[i + 1]);
            EXPECT_TRUE(order > 1.8 && order < 2.3) << order;
        }
        EXPECT_TRUE(errors[2] < 0.02) << errors[2];
    }
}

// What doesn't balance is a constant, by the weights of the scheme; the solution has mean zero by them.
TYPED_TEST(Helmholtz, SingularProblemsLoseAConstant)
{
    using R = TypeParam;
    for (const std::string sides : {"NNNN", "NNPP", "PPNN", "PPPP", "nnnn", "NNNNNN", "PPNNPP", "NNPPNN", "PPPPPP"})
        for (const int64_t size : {2, 5, 6, 31}) {
            std::string upper = sides;
            for (char& c : upper) c = static_cast<char>(std::toupper(c));
            SCOPED_TRACE(sides + " " + std::to_string(size));
            std::vector<int64_t> n = {size, size + 1};
            if (sides.size() == 6) n.push_back(size);
            Box<R> box(n, sides, 0);
            box.randomize(3);
            for (R& v : box.f) v += R(0.5);
            const auto g = box.f;
            ASSERT_EQ(box.commit(), 0);
            EXPECT_EQ(box.ipar[ORK_PDE_SINGULAR], 1);
            box.sides = upper;
            ASSERT_EQ(box.solve(), 0);
            long double imbalance = 0, weights = 0, mean = 0; // rounding of the sums would show
            double largest = 0;
            box.for_unknowns([&](const int64_t* p, double weight) {
                double size;
                imbalance += weight * (static_cast<long double>(g[box.place(p)]) - box.left_side(box.f, p, size));
                weights += weight, mean += weight * box.f[box.place(p)];
                largest = std::max(largest, std::abs(double(box.f[box.place(p)])));
            });
            EXPECT_GT(std::abs(imbalance / weights), 0.01L) << "a problem that balances";
            const double dropped = static_cast<double>(imbalance / weights);
            EXPECT_TRUE(box.residual(g, dropped) <= tolerance) << box.residual(g, dropped);
            EXPECT_TRUE(std::abs(mean / weights) <= 10 * std::numeric_limits<R>::epsilon() * largest) << mean / weights;
        }
}

TYPED_TEST(Helmholtz, BitsDontDependOnThreads)
{
    using R = TypeParam;
    for (const std::string sides : {"DDDD", "NDPP", "PPNN", "DDNNPP"}) {
        std::vector<int64_t> n = {201, 180};
        if (sides.size() == 6) n = {60, 50, 40};
        std::vector<R> first;
        for (int threads = 1; threads <= 3; ++threads) {
            ork_set_num_threads(threads);
            Box<R> box(n, sides, 1);
            box.randomize(11);
            ASSERT_EQ(box.commit(), 0);
            EXPECT_EQ(box.ipar[ORK_PDE_THREADS], threads);
            ASSERT_EQ(box.solve(), 0);
            if (threads == 1) first = box.f;
            EXPECT_EQ(0, std::memcmp(first.data(), box.f.data(), first.size() * sizeof(R))) << sides << threads;
        }
        ork_set_num_threads(0);
    }
}

// One commit, several threads of the application, each with its own arrays.
TEST(HelmholtzThreads, SolveWithOneCommit)
{
    Box<double> box({64, 50}, "PPND", 1);
    box.randomize(2);
    const auto g = box.f;
    ASSERT_EQ(box.commit(), 0);
    constexpr int callers = 4;
    std::vector<double> solutions[callers];
    std::vector<std::thread> threads;
    for (auto& u : solutions)
        threads.emplace_back([&] {
            for (int round = 0; round < 20; ++round) {
                u = g;
                std::vector<int64_t> ipar(box.ipar, box.ipar + ORK_PDE_INTEGERS);
                auto rpar = box.rpar;
                if (box.solve(u.data(), ipar.data(), rpar.data()) != 0) u.clear();
            }
        });
    for (auto& thread : threads) thread.join();
    ASSERT_EQ(box.solve(), 0);
    for (auto& u : solutions) EXPECT_EQ(u, box.f);
}

} // namespace
} // namespace ork::test
