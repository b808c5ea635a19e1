// SPDX-License-Identifier: MIT
// What holds of all solvers: they stay in their arrays, keep the floating-point environment, need little stack, and
// come through damaged arrays and lack of memory.
#include <functional>
#include <limits>
#include <memory>

#include "box.h"
#include "nodes_box.h"
#include "sphere.h"
#include "support/environment.h"

namespace ork::test {
namespace {

using Maker = std::function<std::unique_ptr<Solver>(Guard)>;

template <class R>
void add_solvers(std::vector<Maker>& all)
{
    const auto box = [&](const char* sides, std::vector<Int> n) {
        all.push_back([=](Guard guard) { return std::make_unique<Problem<R>>(sides, n, 1, guard); });
    };
    box("PPDN", {8, 4});
    box("PPND", {7, 5});
    box("DNPP", {4500, 2}); // lines that fill no stack
    box("NNPPDD", {4, 8, 3});
    box("PPDNPP", {5, 6, 18});
    box("DDNNND", {3, 300, 2});
    const auto sphere = [&](bool around, Int np, double north, double south) {
        all.push_back([=](Guard guard) {
            return std::make_unique<Sphere<R>>(around, np, 6, north, south, 1, around ? 2 : 1, guard);
        });
    };
    sphere(true, 14, 0, 1);
    sphere(true, 9, 0.2, 0.8);
    sphere(false, 12, 0.2, 0.8);
}
std::vector<Maker> every_solver()
{
    std::vector<Maker> all;
    add_solvers<float>(all);
    add_solvers<double>(all);
    for (const char* sides : {"DNPPND", "PPNNPP"})
        all.push_back([=](Guard guard) { return std::make_unique<NodesBox>(6, 5, 4, sides, 1.F, guard); });
    return all;
}

class EverySolver : public testing::TestWithParam<std::size_t> {
protected:
    EverySolver() : make_(every_solver()[GetParam()]) { hooks() = {}; }
    ~EverySolver() override { EXPECT_EQ(live_allocations, 0); }

    std::vector<double> expected() const
    {
        const auto p = make_(Guard::end);
        p->ready(true);
        p->fill();
        EXPECT_EQ(p->solve(), pde::ok);
        const auto u = p->solution();
        EXPECT_EQ(p->free(), pde::ok);
        return u;
    }

    Maker make_;
};
INSTANTIATE_TEST_SUITE_P(All, EverySolver, testing::Range<std::size_t>(0, every_solver().size()));

TEST_P(EverySolver, StaysInItsArrays)
{
    const auto want = expected();
    for (const Guard guard : both_guards) {
        const auto p = make_(guard);
        p->ready(true);
        p->fill();
        ASSERT_EQ(p->solve(), pde::ok);
        EXPECT_TRUE(p->kept_within_arrays());
        EXPECT_TRUE(p->solution() == want);
        EXPECT_EQ(p->free(), pde::ok);
    }
}

TEST_P(EverySolver, KeepsTheEnvironmentAndNeedsLittleStack)
{
    const auto p = make_(Guard::end);
    p->fill();
    const auto whole = [&] { p->init(), p->silence(), p->commit(), p->solve(), p->free(); };
    EXPECT_TRUE(keeps_fp_environment(whole));
    run_on_small_stack(small_stack, whole);
}

// A stage refuses, or nothing has come of the damage.
TEST_P(EverySolver, DamagedIntegersAreRefusedOrHarmless)
{
    const auto want = expected();
    const auto p = make_(Guard::end);
    p->ready(true);
    p->fill();
    const auto right = p->solution();
    std::vector<Int> whole = p->ipar;
    for (int entry = 0; entry < 128; ++entry)
        for (const Int value : {Int{0}, Int{-1}, Int{2}, Int{5000}, Int{1} << 41, std::numeric_limits<Int>::min(),
                                std::numeric_limits<Int>::max()}) {
            SCOPED_TRACE(testing::Message() << "entry " << entry << ", " << value);
            const auto damage = [&] {
                p->ipar[entry] = value;
                if (entry == 1 || entry == 2) p->ipar[entry] = value == -1 ? 0 : value; // no log file
            };
            p->fill();
            damage();
            const Int status = p->solve();
            EXPECT_TRUE(p->solution() == (status == pde::ok ? want : right)) << status;
            p->ipar = whole;
            damage();
            if (p->free() != pde::ok) {
                p->ipar = whole;
                continue;
            }
            ASSERT_EQ(p->init(), pde::ok);
            p->silence();
            damage();
            if (p->commit() == pde::ok) p->solve();
            EXPECT_EQ(p->free(), pde::ok);
            p->ready(true);
            whole = p->ipar;
        }
}

TEST_P(EverySolver, DamagedNumbersDoNoHarm)
{
    const auto p = make_(Guard::end);
    p->ready(true);
    const std::vector<Int> whole = p->ipar;
    for (Int i = 0; i < p->numbers(); i += 1 + i / 200)
        for (const double value : {0., -1e30, std::numeric_limits<double>::quiet_NaN()}) {
            p->fill();
            const double kept = p->exchange_number(i, value);
            p->solve();
            p->exchange_number(i, kept);
            p->ipar = whole;
        }
    p->fill();
    EXPECT_EQ(p->solve(), pde::ok);
    EXPECT_TRUE(p->solution() == expected());
    EXPECT_EQ(p->free(), pde::ok);
}

// Each allocation fails in turn: of a commit, then of a solve. Both can be repeated, and nothing is lost.
TEST_P(EverySolver, WithoutMemoryAStageFailsAndCanBeRepeated)
{
    const auto want = expected();
    const auto p = make_(Guard::end);
    const auto stage_fails_at = [&](int number, Int (Solver::*stage)(), Int failure) {
        const FailingAllocation failing(number);
        const Int status = (p.get()->*stage)();
        EXPECT_TRUE(status == pde::ok || (status == failure && failing.reached())) << status;
        return failing.reached();
    };
    int commits = 1, solves = 1;
    for (bool reached = true; reached; ++commits) {
        SCOPED_TRACE(testing::Message() << "allocation " << commits << " of a commit");
        ASSERT_EQ(p->init(), pde::ok);
        p->silence();
        reached = stage_fails_at(commits, &Solver::commit, pde::transform_failed);
        if (p->stat == pde::ok) {
            p->fill();
            EXPECT_EQ(p->solve(), pde::ok);
        } else {
            EXPECT_EQ(p->solve(), pde::bad_state);
        }
        EXPECT_EQ(p->free(), pde::ok);
        EXPECT_EQ(live_allocations, 0);
    }
    EXPECT_GT(commits, 3);
    p->ready(true);
    const int before = live_allocations;
    for (bool reached = true; reached; ++solves) {
        SCOPED_TRACE(testing::Message() << "allocation " << solves << " of a solve");
        p->fill();
        reached = stage_fails_at(solves, &Solver::solve, pde::bad_argument);
        EXPECT_EQ(live_allocations, before);
        p->ipar[0] = 0;
        p->fill();
        ASSERT_EQ(p->solve(), pde::ok);
        EXPECT_TRUE(p->solution() == want);
    }
    EXPECT_GT(solves, 2);
    EXPECT_EQ(p->free(), pde::ok);
}

// Where no side does, a small q holds the mean, which beside the differences would get lost: -Laplace(u) + q u = 1.
template <class R>
void expect_mean(SolverOf<R>&& p)
{
    p.ready(true);
    std::fill(p.f.begin(), p.f.end(), R{1});
    for (auto& side : p.bd) std::fill(side.begin(), side.end(), R{0});
    ASSERT_EQ(p.solve(), pde::ok);
    EXPECT_EQ(p.ipar[27], 0);
    const R u = p.f[0] * R(1e-5);
    EXPECT_TRUE(std::abs(u - 1) <= 8 * std::numeric_limits<R>::epsilon()) << u - 1;
    for (const R& value : p.f) EXPECT_TRUE(std::abs(value - p.f[0]) <= 8 * std::numeric_limits<R>::epsilon() * p.f[0]);
}
template <class R>
void expect_means()
{
    for (const char* sides : {"NNNN", "NNPP", "PPPP", "NNNNNN", "PPNNPP"})
        for (const Int n : {1, 2, 3, 9}) {
            SCOPED_TRACE(testing::Message() << sides << ' ' << n);
            const bool flat = std::string(sides).size() == 4;
            expect_mean(Problem<R>(sides, {4, flat ? n : 5, n}, 1e-5));
        }
    for (const Int nt : {1, 2, 9}) expect_mean(Sphere<R>(true, 6, nt, 0, 1, 1e-5));
}
TEST(SmallCoefficient, HoldsTheMean)
{
    expect_means<float>();
    expect_means<double>();
    for (const char* sides : {"nnnnnn", "nnpppp"})
        for (const Int nz : {1, 2, 3, 9}) expect_mean(NodesBox(4, 5, nz, sides, 1e-5F));
}

// f = sin(2 pi x / lx) on every row, which balances; a constant more, which doesn't unless slopes outweigh it.
template <class R>
void expect_report_of_imbalance(SolverOf<R>&& p, Int nx, const std::vector<std::pair<std::size_t, double>>& lengths)
{
    const auto solve = [&](double constant, int side) {
        for (Int i = 0; i < p.f.size(); ++i)
            p.f[i] = static_cast<R>(std::sin(2 * pi * static_cast<double>(i % (nx + 1)) / static_cast<double>(nx)) +
                                    constant);
        for (std::size_t s = 0; s < p.bd.size(); ++s)
            for (R& slope : p.bd[s])
                slope = side < 0 || lengths[static_cast<std::size_t>(side)].first != s
                            ? R{}
                            : static_cast<R>(-constant * lengths[static_cast<std::size_t>(side)].second);
        hooks().printed.clear();
        EXPECT_EQ(p.solve(), pde::ok);
        EXPECT_EQ(p.ipar[27], 1);
        return hooks().printed;
    };
    hooks() = {};
    p.ready();
    EXPECT_EQ(hooks().printed, "<10>\n<12>\n<190>\n<191>\n");
    const std::string warning = "<10>\n<12>\n<192>\n<193>\n";
    EXPECT_EQ(solve(0, -1), "");
    EXPECT_EQ(solve(1e-3, -1), warning);
    for (int side = 0; side < static_cast<int>(lengths.size()); ++side) EXPECT_EQ(solve(1, side), "") << side;
    p.ipar[2] = 0;
    EXPECT_EQ(solve(1, -1), "");
    EXPECT_EQ(p.free(), pde::ok);
    hooks() = {};
}
template <class R>
void expect_reports_of_imbalance()
{
    const double x = 1.75, y = 1.5, z = 0.875; // of boxes
    expect_report_of_imbalance(Problem<R>("NNNN", {9, 6}, 0), 9, {{0, x}, {1, x}, {2, y}, {3, y}});
    expect_report_of_imbalance(Problem<R>("PPNN", {8, 5}, 0), 8, {{2, y}, {3, y}});
    expect_report_of_imbalance(Problem<R>("NNPP", {8, 5}, 0), 8, {{0, x}, {1, x}});
    expect_report_of_imbalance(Problem<R>("NNNNNN", {6, 5, 4}, 0), 6, {{0, x}, {1, x}, {2, y}, {3, y}, {4, z}, {5, z}});
    expect_report_of_imbalance(Problem<R>("PPPPPP", {5, 4, 3}, 0), 5, {});
    expect_report_of_imbalance(Sphere<R>(true, 12, 7, 0, 1, 0), 12, {});
}
TEST(SingularProblems, TellWhenTheRightHandSideDoesNotBalance)
{
    expect_reports_of_imbalance<float>();
    expect_reports_of_imbalance<double>();
    expect_report_of_imbalance(NodesBox(8, 5, 7, "nnnnnn", 0), 8,
                               {{0, 1}, {1, 1}, {2, 1.5}, {3, 1.5}, {4, 1.3}, {5, 1.3}});
}

} // namespace
} // namespace ork::test
