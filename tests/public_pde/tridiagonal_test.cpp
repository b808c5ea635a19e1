// SPDX-License-Identifier: MIT
// The kernel of tridiagonal systems: each system against its equations, alone and in every company.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

#include "ork/abi/pde_tridiagonal.h"
#include "support/guarded.h"

namespace ork::test {
namespace {

using pde::Int;

template <class R>
class TridiagonalSystems : public testing::Test {
protected:
    void SetUp() override
    {
        library_ = dlopen(ORK_LIB_DIR "/libork_nx2.so", RTLD_LAZY | RTLD_LOCAL);
        ASSERT_NE(library_, nullptr) << dlerror();
        kernel_ = reinterpret_cast<pde::Tridiagonal<R>*>(
            dlsym(library_, sizeof(R) == 4 ? "ork_pdepl_nx2_s_tridiagonal" : "ork_pdepl_nx2_d_tridiagonal"));
        ASSERT_NE(kernel_, nullptr);
    }
    void TearDown() override { dlclose(library_); }

    void solve(Int systems, Int order, Int ends, const R* constants, const R* table, R* g, Int stride) const
    {
        std::vector<R> work(pde::tridiagonal_work<R>(order) + 1);
        const R shift = R(0.25);
        kernel_(&systems, &order, &ends, constants, table, &shift, g, &stride, work.data() + 1);
    }

    void* library_ = nullptr;
    pde::Tridiagonal<R>* kernel_ = nullptr;
};
using Precisions = testing::Types<float, double>;
TYPED_TEST_SUITE(TridiagonalSystems, Precisions);

// Diagonals from hardly above 2, where factors move to the end, to far above, where they stand still at once. All of g
// between protected pages, a padding column between rows.
TYPED_TEST(TridiagonalSystems, SolveTheirEquationsWithTheSameBitsInAnyCompany)
{
    using R = TypeParam;
    std::mt19937 engine(1);
    std::uniform_real_distribution<R> uniform(-1, 1);
    for (const Int ends : {0, 1, 2, 3, 6})
        for (const Int order : {1, 2, 3, 4, 5, 40, 300})
            for (const Int systems : {1, 2, 3, 5, 31, 33, 101}) {
                if (ends == 3 && order == 1) continue;
                SCOPED_TRACE(testing::Message() << "ends " << ends << " order " << order << " systems " << systems);
                const Int stride = systems + 1, numbers = (order - 1) * stride + systems;
                std::vector<R> table(systems), given(numbers);
                for (Int k = 0; k < systems; ++k) table[k] = R(1.75 + std::pow(10.0, -5 + k % 7));
                for (R& v : given) v = uniform(engine);
                for (const Guard guard : both_guards) {
                    GuardedBytes memory(numbers * sizeof(R), guard);
                    R* const g = reinterpret_cast<R*>(memory.data());
                    std::copy(given.begin(), given.end(), g);
                    this->solve(systems, order, ends, nullptr, table.data(), g, stride);
                    EXPECT_TRUE(memory.unchanged_outside());
                    for (Int j = 0; j + 1 < order; ++j) EXPECT_EQ(g[j * stride + systems], given[j * stride + systems]);
                    if (guard == Guard::begin) continue;
                    for (Int k = 0; k < systems; ++k) {
                        auto alone = given;
                        this->solve(1, order, ends, nullptr, &table[k], alone.data() + k, stride);
                        const auto v = [&](Int j) -> double {
                            if (ends == 6) return g[k + (j + order) % order * stride];
                            if (j < 0) return ends >= 2 && order > 1 ? g[k + stride] : 0;
                            if (j >= order) return ends % 2 == 1 && order > 1 ? g[k + (order - 2) * stride] : 0;
                            return g[k + j * stride];
                        };
                        const double d = static_cast<double>(table[k] + R(0.25));
                        double largest = 0, worst = 0;
                        for (Int j = 0; j < order; ++j) {
                            EXPECT_EQ(0, std::memcmp(&alone[k + j * stride], &g[k + j * stride], sizeof(R)));
                            largest = std::max(largest, d * std::abs(v(j)));
                            const double r = std::abs(d * v(j) - v(j - 1) - v(j + 1) - given[k + j * stride]);
                            if (!(r <= worst)) worst = r;
                        }
                        // Came to 5.4 units, in single precision, cyclic, d hardly above 2; to 2 elsewhere.
                        EXPECT_TRUE(worst <= 15 * std::numeric_limits<R>::epsilon() * largest) << k << ' ' << worst;
                    }
                }
            }
}

// The first system of a singular problem has a solution for what is left of g without its mean; the others are as ever.
TYPED_TEST(TridiagonalSystems, TheConstantModeLosesItsMean)
{
    using R = TypeParam;
    for (const Int ends : {3, 6})
        for (const Int order : {2, 3, 8, 101}) {
            const Int systems = 6;
            std::vector<R> table(systems, R(3)), g(order * systems);
            table[0] = R(1.75);
            for (std::size_t i = 0; i < g.size(); ++i) g[i] = R(std::sin(double(i * i)) + 0.5);
            const auto given = g;
            const R none = 0;
            this->solve(systems, order, ends, &none, table.data(), g.data(), systems);
            const auto weight = [&](Int j) { return ends == 6 || (j > 0 && j < order - 1) ? 1.0 : 0.5; };
            double mean = 0, solution = 0, weights = 0, largest = 0;
            for (Int j = 0; j < order; ++j) {
                mean += weight(j) * given[j * systems], solution += weight(j) * g[j * systems], weights += weight(j);
                largest = std::max<double>(largest, std::abs(g[j * systems]));
            }
            const double unit = std::numeric_limits<R>::epsilon() * std::max(largest, 1.0);
            EXPECT_TRUE(std::abs(solution / weights) <= 2 * unit) << solution / weights;
            const auto v = [&](Int j) -> double {
                if (ends == 6) return g[(j + order) % order * systems];
                return g[(j < 0 ? 1 : j >= order ? order - 2 : j) * systems];
            };
            for (Int j = 0; j < order; ++j) {
                const double r = 2 * v(j) - v(j - 1) - v(j + 1) - (given[j * systems] - mean / weights);
                EXPECT_TRUE(std::abs(r) <= 8 * unit) << ends << ' ' << order << ' ' << r / unit;
            }
            auto others = given;
            this->solve(systems - 1, order, ends, nullptr, table.data() + 1, others.data() + 1, systems);
            for (std::size_t i = 0; i < g.size(); ++i)
                if (i % systems != 0) {
                    EXPECT_EQ(g[i], others[i]);
                }
        }
}

} // namespace
} // namespace ork::test
