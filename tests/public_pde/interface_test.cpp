// SPDX-License-Identifier: MIT
// The interface: refused pointers, messages and where they go, transforms and spheres.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <limits>
#include <sstream>

#include "box.h"
#include "support/process.h"

namespace ork::test {
namespace {

TEST(PdeProgram, ExampleOfTheHeader)
{
    const ChildResult result = run_program({ORK_PDE_PROGRAM});
    EXPECT_TRUE(result.ok()) << result.describe();
}

std::string text_of(const std::filesystem::path& path)
{
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

TEST(PdeProgram, MessagesGoWhereTheirSwitchSays)
{
    char folder[] = "/tmp/ork-pde-XXXXXX";
    ASSERT_NE(mkdtemp(folder), nullptr);
    const std::filesystem::path transforms = std::filesystem::path(folder) / "ORK_Trig_Transforms_Log.txt",
                                poisson = std::filesystem::path(folder) / "ORK_Poisson_Library_Log.txt";
    const auto run = [&](const char* where) {
        return run_program({ORK_PDE_PROGRAM, where}, {}, 60, [&] { std::filesystem::current_path(folder); });
    };
    const char *length = "n = 1 in ipar[0]", *period = "One side in x is periodic", *singular = "problem is singular";

    ChildResult result = run("0");
    EXPECT_TRUE(result.ok()) << result.describe();
    EXPECT_EQ(result.out + result.err, "");
    EXPECT_TRUE(std::filesystem::is_empty(folder));

    result = run("1");
    EXPECT_TRUE(result.ok()) << result.describe();
    for (const char* part : {length, period, singular}) EXPECT_NE(result.out.find(part), std::string::npos) << part;
    EXPECT_TRUE(std::filesystem::is_empty(folder));

    for (int round = 0; round < 2; ++round) result = run("-1");
    EXPECT_TRUE(result.ok()) << result.describe();
    EXPECT_EQ(result.out, "");
    const std::string logs[] = {text_of(transforms), text_of(poisson)};
    EXPECT_NE(logs[0].find(length), logs[0].rfind(length)) << "appended: " << logs[0];
    for (const char* part : {period, singular}) EXPECT_NE(logs[1].find(part), logs[1].rfind(part)) << logs[1];
    std::filesystem::remove_all(folder);
}

TEST(PdeInterface, NullPointersAreRefusedAndTouchNothing)
{
    Box<double> box({4, 4}, "DDPP", 0);
    double* const f = box.f.data();
    double *const r = box.rpar.data(), *const b = box.bd[0].data();
    int64_t* const i = box.ipar;
    auto** const x = &box.xhandle;
    EXPECT_EQ(ork_d_init_helmholtz_2d(0, 1, 0, 1, 4, 4, nullptr, 0, i, r), ORK_PDE_BAD_ARGUMENT);
    EXPECT_EQ(ork_d_init_helmholtz_2d(0, 1, 0, 1, 4, 4, "DDDD", 0, nullptr, r), ORK_PDE_BAD_ARGUMENT);
    ASSERT_EQ(box.commit(), 0);
    EXPECT_EQ(ork_d_commit_helmholtz_2d(nullptr, i, r), ORK_PDE_BAD_ARGUMENT);
    EXPECT_EQ(ork_d_helmholtz_2d(nullptr, b, b, nullptr, nullptr, x, i, r), ORK_PDE_BAD_ARGUMENT);
    EXPECT_EQ(ork_d_helmholtz_2d(f, b, nullptr, nullptr, nullptr, x, i, r), ORK_PDE_BAD_ARGUMENT);
    EXPECT_EQ(ork_d_helmholtz_2d(f, b, b, nullptr, nullptr, x, i, nullptr), ORK_PDE_BAD_ARGUMENT);
    EXPECT_EQ(ork_d_helmholtz_2d(f, b, b, nullptr, nullptr, x, i, r), 0) << "as if nothing had been";
    EXPECT_EQ(ork_free_helmholtz_2d(nullptr, i), ORK_PDE_BAD_ARGUMENT);
    EXPECT_EQ(ork_s_init_trig_transform(4, 0, i, nullptr), ORK_PDE_BAD_ARGUMENT);
    EXPECT_EQ(ork_free_trig_transform(nullptr, nullptr), ORK_PDE_BAD_ARGUMENT);
    EXPECT_EQ(ork_d_init_sph_p(0, 1, 0, 1, 4, 4, 0, nullptr, r), ORK_PDE_BAD_ARGUMENT);
    EXPECT_EQ(ork_d_sph_np(nullptr, x, i, r), ORK_PDE_BAD_ARGUMENT);
}

template <class R>
class PdeTransforms : public testing::Test {
};
using Precisions = testing::Types<float, double>;
TYPED_TEST_SUITE(PdeTransforms, Precisions);

TYPED_TEST(PdeTransforms, BackwardUndoesForward)
{
    using R = TypeParam;
    for (int64_t type = 0; type < 6; ++type)
        for (const int64_t n : {2, 3, 10, 61}) {
            std::vector<R> f(n + 1), rpar(ORK_TRIG_REALS(n));
            for (int64_t i = 0; i <= n; ++i) f[i] = R(std::sin(double(i * i)));
            if (type == 0 || type == 3) f[0] = 0;
            if (type == 0 || type == 2) f[n] = 0;
            const auto g = f;
            int64_t ipar[ORK_PDE_INTEGERS];
            ork_dft_descriptor* handle;
            ASSERT_EQ(ORK_CALL(init_trig_transform, n, type, ipar, rpar.data()), 0);
            ASSERT_EQ(ORK_CALL(commit_trig_transform, f.data(), &handle, ipar, rpar.data()), 0);
            ASSERT_EQ(ORK_CALL(forward_trig_transform, f.data(), &handle, ipar, rpar.data()), 0);
            if (n > 2) {
                EXPECT_NE(f, g);
            }
            ASSERT_EQ(ORK_CALL(backward_trig_transform, f.data(), &handle, ipar, rpar.data()), 0);
            EXPECT_EQ(ork_free_trig_transform(&handle, ipar), 0);
            for (int64_t i = 0; i <= n; ++i)
                EXPECT_TRUE(std::abs(f[i] - g[i]) <= 20 * std::numeric_limits<R>::epsilon()) << type << ' ' << n;
        }
}

// u = cos theta, for which -Laplace(u) = 2 u: to second order, on the whole sphere and on a part.
TYPED_TEST(PdeTransforms, SpheresAreSolved)
{
    using R = TypeParam;
    for (const bool whole : {true, false}) {
        const int64_t np = 24, nt = 40;
        const R pi = R(M_PI), from = whole ? R(0) : R(0.5), to = whole ? pi : R(2);
        std::vector<R> f((np + 1) * (nt + 1)), rpar(ORK_SPHERE_REALS(np, nt));
        const auto u = [&](int64_t j) { return std::cos(double(from) + double(to - from) * double(j) / double(nt)); };
        for (int64_t j = 0; j <= nt; ++j)
            for (int64_t i = 0; i <= np; ++i) {
                const bool side = !whole && (i == 0 || i == np || j == 0 || j == nt);
                f[i + j * (np + 1)] = R(side ? u(j) : 3 * u(j));
            }
        int64_t ipar[ORK_PDE_INTEGERS];
        ork_dft_descriptor *sine = nullptr, *cosine = nullptr;
        if (whole) {
            ASSERT_EQ(ORK_CALL(init_sph_p, 0, 2 * pi, from, to, np, nt, 1, ipar, rpar.data()), 0);
            ASSERT_EQ(ORK_CALL(commit_sph_p, &sine, &cosine, ipar, rpar.data()), 0);
            ASSERT_EQ(ORK_CALL(sph_p, f.data(), &sine, &cosine, ipar, rpar.data()), 0);
            EXPECT_EQ(ork_free_sph_p(&sine, &cosine, ipar), 0);
        } else {
            ASSERT_EQ(ORK_CALL(init_sph_np, 0, 1, from, to, np, nt, 1, ipar, rpar.data()), 0);
            ASSERT_EQ(ORK_CALL(commit_sph_np, &sine, ipar, rpar.data()), 0);
            ASSERT_EQ(ORK_CALL(sph_np, f.data(), &sine, ipar, rpar.data()), 0);
            EXPECT_EQ(ork_free_sph_np(&sine, ipar), 0);
        }
        for (int64_t j = 0; j <= nt; ++j)
            for (int64_t i = 0; i <= np; ++i)
                ASSERT_TRUE(std::abs(f[i + j * (np + 1)] - u(j)) <= 2e-3) << whole << ' ' << i << ' ' << j;
    }
}

// At equal nodes the same as the uniform solver.
TEST(PdeInterface, NodesInZThatAreEquidistant)
{
    for (const std::string sides : {"DDNDDN", "PPDDPP", "NNPPND"}) {
        Box<float> uniform({6, 5, 8}, sides, 1);
        uniform.randomize(5);
        Box<float> nodes({6, 5, 8}, sides, 1);
        nodes.f = uniform.f;
        for (int s = 0; s < 6; ++s) nodes.bd[s] = uniform.bd[s];
        ASSERT_EQ(uniform.commit(), 0);
        ASSERT_EQ(uniform.solve(), 0);

        float z[9];
        for (int k = 0; k < 9; ++k) z[k] = nodes.length[2] * static_cast<float>(k) / 8;
        nodes.rpar.resize(ORK_HELMHOLTZ_NONUNIFORM_3D_REALS(6, 5, 8));
        int64_t* const i = nodes.ipar;
        float *const r = nodes.rpar.data(), o = 0.25F;
        ASSERT_EQ(ork_s_init_helmholtz_nonuniform_3d(o, o + nodes.length[0], -o, nodes.length[1] - o, 6, 5, 8,
                                                     sides.c_str(), 1, i, r),
                  0);
        ASSERT_EQ(ork_s_commit_helmholtz_nonuniform_3d(z, &nodes.xhandle, &nodes.yhandle, i, r), 0);
        const auto b = [&](int s) { return sides[s] == 'P' ? nullptr : nodes.bd[s].data(); };
        ASSERT_EQ(ork_s_helmholtz_nonuniform_3d(nodes.f.data(), b(0), b(1), b(2), b(3), b(4), b(5), &nodes.xhandle,
                                                &nodes.yhandle, i, r),
                  0);
        for (std::size_t k = 0; k < nodes.f.size(); ++k) ASSERT_NEAR(nodes.f[k], uniform.f[k], 2e-5) << sides << k;
    }
}

} // namespace
} // namespace ork::test
