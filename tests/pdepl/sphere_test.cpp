// SPDX-License-Identifier: MIT
// The Helmholtz equation on a sphere: the discrete equations hold to rounding, solutions converge in second order, and
// wrong calls are refused.
#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <numbers>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "ork/abi/pde_sphere.h"
#include "support/random.h"

using namespace ork::pde;
using A = SphereArray;

#define DECLARE(letter, R)                                                                                             \
    extern "C" SphereCalls<R>::init ork_pdepl_nx2_##letter##_init_sph_p, ork_pdepl_nx2_##letter##_init_sph_np;         \
    extern "C" SphereCalls<R>::commit_p ork_pdepl_nx2_##letter##_commit_sph_p, ork_pdepl_nx2_##letter##_sph_p;         \
    extern "C" SphereCalls<R>::commit_np ork_pdepl_nx2_##letter##_commit_sph_np, ork_pdepl_nx2_##letter##_sph_np;
DECLARE(s, float)
DECLARE(d, double)
#undef DECLARE
extern "C" FreeSphereP ork_pdepl_nx2_free_sph_p;
extern "C" FreeSphereNp ork_pdepl_nx2_free_sph_np;

namespace {

// The allocation of this number, counted from 1, gives null.
std::atomic<int> fail_at = 0, live = 0;
class FailingAllocations {
public:
    explicit FailingAllocations(int at) { fail_at = at; }
    ~FailingAllocations() { fail_at = 0; }
    FailingAllocations(const FailingAllocations&) = delete;
    FailingAllocations& operator=(const FailingAllocations&) = delete;
    bool reached() const { return fail_at <= 0; }
};

constexpr double pi = std::numbers::pi;

// One problem and its arrays. Extents in half turns, so that poles are exact.
template <class R>
struct Sphere {
    bool periodic;
    Int np, nt;
    double ap, bp, at, bt, q;
    std::vector<R> f, fpar;
    std::vector<Int> ipar = std::vector<Int>(128, 7);
    ork_dft_descriptor *sine = nullptr, *cosine = nullptr;
    Int stat = 77;

    Sphere(bool around, Int longitudes, Int latitudes, double north, double south, double shift, double east = 2)
        : periodic(around), np(longitudes), nt(latitudes), ap(0), bp(east * pi), at(north * pi), bt(south * pi),
          q(shift), f(static_cast<size_t>((std::max<Int>(np, 0) + 1) * (std::max<Int>(nt, 0) + 1))),
          fpar(static_cast<size_t>(sphere_reals(np, nt)))
    {
    }
    ~Sphere() { release(); }
    Sphere(const Sphere&) = delete;
    Sphere& operator=(const Sphere&) = delete;

    static constexpr bool single = sizeof(R) == 4;
    Int init()
    {
        const R a = static_cast<R>(ap), b = static_cast<R>(bp), c = static_cast<R>(at), d = static_cast<R>(bt),
                e = static_cast<R>(q);
        if constexpr (single)
            (periodic ? ork_pdepl_nx2_s_init_sph_p : ork_pdepl_nx2_s_init_sph_np)(&a, &b, &c, &d, &np, &nt, &e,
                                                                                  ipar.data(), fpar.data(), &stat);
        else
            (periodic ? ork_pdepl_nx2_d_init_sph_p : ork_pdepl_nx2_d_init_sph_np)(&a, &b, &c, &d, &np, &nt, &e,
                                                                                  ipar.data(), fpar.data(), &stat);
        return agreed();
    }
    Int commit()
    {
        if constexpr (single)
            periodic ? ork_pdepl_nx2_s_commit_sph_p(f.data(), &sine, &cosine, ipar.data(), fpar.data(), &stat)
                     : ork_pdepl_nx2_s_commit_sph_np(f.data(), &sine, ipar.data(), fpar.data(), &stat);
        else
            periodic ? ork_pdepl_nx2_d_commit_sph_p(f.data(), &sine, &cosine, ipar.data(), fpar.data(), &stat)
                     : ork_pdepl_nx2_d_commit_sph_np(f.data(), &sine, ipar.data(), fpar.data(), &stat);
        return agreed();
    }
    Int solve()
    {
        if constexpr (single)
            periodic ? ork_pdepl_nx2_s_sph_p(f.data(), &sine, &cosine, ipar.data(), fpar.data(), &stat)
                     : ork_pdepl_nx2_s_sph_np(f.data(), &sine, ipar.data(), fpar.data(), &stat);
        else
            periodic ? ork_pdepl_nx2_d_sph_p(f.data(), &sine, &cosine, ipar.data(), fpar.data(), &stat)
                     : ork_pdepl_nx2_d_sph_np(f.data(), &sine, ipar.data(), fpar.data(), &stat);
        return agreed();
    }
    Int agreed() const
    {
        EXPECT_EQ(ipar[A::status], stat);
        return stat;
    }
    Int release()
    {
        periodic ? ork_pdepl_nx2_free_sph_p(&sine, &cosine, ipar.data(), &stat)
                 : ork_pdepl_nx2_free_sph_np(&sine, ipar.data(), &stat);
        return agreed();
    }
    void quiet() { ipar[A::error_switch] = ipar[A::warning_switch] = 0; }
    void make()
    {
        ASSERT_EQ(init(), ok);
        quiet();
        ASSERT_EQ(commit(), ok);
    }

    double ht() const { return (bt - at) / static_cast<double>(nt); }
    double theta(double j) const { return at + j * ht(); }
    double phi(Int i) const { return ap + static_cast<double>(i) * (bp - ap) / static_cast<double>(np); }
    bool north() const { return periodic && at == 0; }
    bool south() const { return periodic && bt == pi; }
    bool known(Int i, Int j) const
    {
        return (j == 0 && !north()) || (j == nt && !south()) || (!periodic && (i == 0 || i == np));
    }
    size_t place(Int i, Int j) const { return static_cast<size_t>(j * (np + 1) + i); }
    double weight(Int j) const // of a row
    {
        if ((j == 0 && north()) || (j == nt && south())) return 2 * std::pow(std::sin(ht() / 4), 2) / ht();
        return std::sin(theta(static_cast<double>(j)));
    }
    // The left-hand side of the equation at a point that is not known, and the sum of its terms' magnitudes.
    std::array<double, 2> equation(Int i, Int j) const
    {
        const auto u = [&](Int a, Int b) { return static_cast<double>(f[place(periodic ? (a + np) % np : a, b)]); };
        const double h2 = ht() * ht(), here = u(i, j);
        double value = q * here, size = std::fabs(value);
        const auto add = [&](double factor, double other) {
            value += factor * (here - other);
            size += factor * (std::fabs(here) + std::fabs(other));
        };
        if ((j == 0 && north()) || (j == nt && south())) {
            double mean = 0;
            for (Int a = 0; a < np; ++a) mean += u(a, j == 0 ? 1 : nt - 1) / static_cast<double>(np);
            add(std::sin(ht() / 2) / (h2 * weight(j)), mean);
            return {value, size};
        }
        const double s = weight(j), step = (bp - ap) / static_cast<double>(np) * s, row = static_cast<double>(j);
        add(std::sin(theta(row - 0.5)) / (h2 * s), u(i, j - 1));
        add(std::sin(theta(row + 0.5)) / (h2 * s), u(i, j + 1));
        add(1 / (step * step), u(i - 1, j));
        add(1 / (step * step), u(i + 1, j));
        return {value, size};
    }
    void randomise()
    {
        ork::test::Random random;
        for (R& x : f) x = random.uniform<R>();
    }
    double pole_mean(const std::vector<R>& values, Int j) const
    {
        double mean = 0;
        for (Int i = 0; i < np; ++i) mean += static_cast<double>(values[place(i, j)]) / static_cast<double>(np);
        return mean;
    }
};

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
                EXPECT_EQ(s.f[s.place(i, j)], right[s.place(i, j)]) << i << ", " << j;
                continue;
            }
            const bool pole = (j == 0 && s.north()) || (j == s.nt && s.south());
            const double want = (pole ? s.pole_mean(right, j) : static_cast<double>(right[s.place(i, j)])) - dropped;
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
        s.make();
        s.randomise();
        const std::vector<R> right = s.f;
        ASSERT_EQ(s.solve(), ok);
        EXPECT_EQ(s.ipar[A::singular], 0);
        EXPECT_LE(worst_residual(s, right, 0), 64);
        for (Int j = 0; j <= c.nt && c.periodic; ++j)
            if (!s.known(0, j)) {
                EXPECT_EQ(s.f[s.place(c.np, j)], s.f[s.place(0, j)]);
            }
        for (Int i = 0; i <= c.np && s.north(); ++i) EXPECT_EQ(s.f[s.place(i, 0)], s.f[0]);
        // Once more with the same arrays, and with those moved.
        const std::vector<R> first = s.f;
        s.f = right;
        s.ipar = std::vector<Int>(s.ipar), s.fpar = std::vector<R>(s.fpar);
        ASSERT_EQ(s.solve(), ok);
        EXPECT_EQ(s.f, first);
    }
}

TYPED_TEST(SphereSolver, WholeSphereWithoutShiftLosesTheMeanOfTheRightHandSide)
{
    using R = TypeParam;
    for (const auto& [np, nt] : {std::pair<Int, Int>{24, 15}, {9, 10}, {4, 1}}) {
        Sphere<R> s(true, np, nt, 0, 1, 0);
        s.make();
        s.randomise();
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
    for (const Problem& c :
         {Problem{true, 0, 1, 0}, {true, 0, 1, 2}, {true, 0, 0.6, 0}, {true, 0.2, 0.75, 1}, {false, 0.2, 0.75, 1}}) {
        SCOPED_TRACE(testing::Message() << c.periodic << ' ' << c.north << ' ' << c.south << ' ' << c.q);
        std::vector<double> errors;
        for (const Int n : {16, 32, 64}) {
            Sphere<double> s(c.periodic, 2 * n, n, c.north, c.south, c.q, c.periodic ? 2 : 0.8);
            s.make();
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
        s.quiet();
        EXPECT_EQ(s.commit(), c.status) << c.np << ' ' << c.nt << ' ' << c.east;
        EXPECT_EQ(s.solve(), bad_state);
        EXPECT_EQ(s.commit(), bad_state);
    }
    S nan(true, 8, 4, 0, 1, 0, std::numeric_limits<double>::quiet_NaN());
    ASSERT_EQ(nan.init(), ok);
    nan.quiet();
    EXPECT_EQ(nan.commit(), bad_argument);

    for (const bool periodic : {true, false}) {
        S s(periodic, 8, 4, 0.2, 0.8, 0, periodic ? 2 : 1);
        ASSERT_EQ(s.init(), ok);
        s.quiet();
        EXPECT_EQ(s.solve(), bad_state); // not committed
        for (const Int left : {0, 9, 90, 99, 900, 909, 990, 999}) {
            s.ipar[A::status] = left;
            EXPECT_EQ(s.commit(), ok) << left;
        }
        s.ipar[A::status] = 1;
        EXPECT_EQ(s.solve(), ok);
        for (const auto& [entry, wrong] : {std::pair{A::np, -1}, {A::nt, 0}}) {
            s.ipar[A::status] = 0;
            const Int kept = std::exchange(s.ipar[static_cast<size_t>(entry)], wrong);
            EXPECT_EQ(s.solve(), bad_argument);
            s.ipar[static_cast<size_t>(entry)] = kept;
        }
        s.ipar[A::status] = 0;
        EXPECT_EQ(s.solve(), ok);
        EXPECT_EQ(s.release(), ok);
        EXPECT_EQ(s.solve(), bad_state);
        EXPECT_EQ(s.release(), ok); // nothing is left
    }
}

TYPED_TEST(SphereSolver, DamagedArraysAndHandlesAreRefused)
{
    for (const bool periodic : {true, false}) {
        Sphere<TypeParam> s(periodic, 14, 6, 0.2, 0.8, 0, periodic ? 2 : 1);
        s.make();
        s.randomise();
        const std::vector<TypeParam> right = s.f;
        const std::vector<Int> good = s.ipar;
        std::vector<size_t> entries = {A::west, A::north, A::south, A::np, A::nt, 28, 31};
        for (const size_t transform : {A::sine, A::cosine})
            for (const size_t entry : {0, 5, 6, 10}) entries.push_back(transform + entry);
        for (const size_t entry : entries)
            for (const Int wrong : {Int{7}, Int{-1}, Int{1} << 40}) {
                if (good[entry] == wrong) continue;
                s.ipar[entry] = wrong;
                EXPECT_NE(s.solve(), ok) << entry << ' ' << wrong;
                EXPECT_EQ(s.f, right);
                s.ipar = good;
            }
        ork_dft_descriptor* kept = std::exchange(s.sine, nullptr);
        EXPECT_EQ(s.solve(), bad_argument);
        s.sine = kept;
        s.ipar = good;
        EXPECT_EQ(s.solve(), ok);
    }
}

TYPED_TEST(SphereSolver, WithoutMemoryNothingIsLostAndNothingLeaks)
{
    for (const bool periodic : {true, false}) {
        Sphere<TypeParam> s(periodic, 12, 6, 0.2, 0.8, 0, periodic ? 2 : 1);
        s.make();
        s.randomise();
        const std::vector<TypeParam> right = s.f;
        int refused = 0;
        for (int at = 1;; ++at) {
            s.f = right;
            FailingAllocations fail(at);
            const Int status = s.solve();
            if (!fail.reached()) {
                EXPECT_EQ(status, ok);
                break;
            }
            ++refused;
            EXPECT_EQ(status, bad_argument);
            EXPECT_EQ(live, 0);
            s.ipar[A::status] = 0;
        }
        EXPECT_GE(refused, 1);
    }
}
} // namespace

// Kernels bind to this program first.
extern "C" void* ork_serv_allocate(size_t size, size_t alignment)
{
    if (fail_at > 0 && --fail_at == 0) return nullptr;
    ++live;
    return std::aligned_alloc(alignment, (size + alignment - 1) / alignment * alignment);
}
extern "C" void ork_serv_deallocate(void* memory)
{
    live -= memory != nullptr;
    std::free(memory);
}
