// SPDX-License-Identifier: MIT
// The overlay in front of the system's LAPACK: its names, and programs of the distribution that know nothing of ork,
// where they are installed.
#include <cstdlib>
#include <filesystem>
#include <set>
#include <sstream>

#include <gtest/gtest.h>

#include "support/process.h"

namespace ork::test {

namespace {

const std::string overlay = ORK_LIB_DIR "/liblapack_ork.so.3";

TEST(LapackOverlay, ExportsItsRoutinesAndNothingElse)
{
    std::set<std::string> want, got;
#define ROUTINE(n, routine, ...) want.insert(#routine "_");
#define OWN_ROUTINE(...)
#include "lapack/routines.inc"
    const auto run = run_program({"nm", "-D", "--defined-only", "--format=posix", overlay});
    EXPECT_TRUE(run.ok()) << run.describe();
    std::istringstream lines(run.out);
    for (std::string line; std::getline(lines, line);) got.insert(line.substr(0, line.find(' ')));
    EXPECT_EQ(got, want);
    for (const char* name : {"dgetrf_", "sgetrs_", "cgetri_", "zpotrf_", "dpotrs_", "dgeqrf_", "zgesv_", "dposv_",
                             "dgtsv_", "dormqr_", "cungqr_"})
        EXPECT_TRUE(want.contains(name)) << name;
}

class LapackPrograms : public testing::Test {
protected:
    void SetUp() override
    {
        if (sanitized) GTEST_SKIP() << "the programs do not start with a sanitizer's run-time";
    }
    static ChildResult run(const std::vector<std::string>& command, const std::string& libraries = {},
                           unsigned seconds = 200)
    {
        return run_program(command, {"LD_PRELOAD=" + overlay, "LD_LIBRARY_PATH=" ORK_LIB_DIR + libraries}, seconds);
    }
};

// LAPACK's own tests of linear equations, with their reports of illegal arguments.
TEST_F(LapackPrograms, LinearEquations)
{
    const std::string at = ORK_LAPACK_TESTERS;
    if (at.empty()) GTEST_SKIP() << "not installed";
    for (const std::string type : {"s", "d", "c", "z"}) {
        SCOPED_TRACE(type);
        const auto result =
            run({"sh", "-c", "cd ${TMPDIR:-/tmp} && " + at + "/xlintst" + type + " < " + at + "/" + type + "test.in"},
                ":" + at);
        EXPECT_TRUE(result.ok()) << result.describe();
        EXPECT_NE(result.out.find("passed the threshold"), std::string::npos) << result.out;
        for (const char* fault : {"failed", "illegal", "FAIL", "*** "})
            EXPECT_EQ(result.out.find(fault), std::string::npos) << fault << result.out;
    }
}

TEST_F(LapackPrograms, NumPy)
{
    const std::string python = "/usr/bin/python3";
    if (!run_program({python, "-c", "import numpy"}).ok()) GTEST_SKIP() << "not installed";
    const auto result = run({python, ORK_SOURCE_DIR "/tests/public_lapack/programs/numpy_program.py"});
    EXPECT_TRUE(result.ok()) << result.describe();
}

TEST_F(LapackPrograms, R)
{
    if (!run_program({"sh", "-c", "command -v Rscript"}).ok()) GTEST_SKIP() << "not installed";
    const auto result = run({"Rscript", "--vanilla", "-e",
                             "set.seed(1); n <- 120; a <- matrix(rnorm(n * n), n); p <- crossprod(a) + diag(n);"
                             "stopifnot(max(abs(a %*% solve(a) - diag(n))) < 1e-8);"
                             "u <- chol(p); stopifnot(max(abs(t(u) %*% u - p)) < 1e-8);"
                             "stopifnot(max(abs(p %*% chol2inv(u) - diag(n))) < 1e-8);"
                             "stopifnot(inherits(try(solve(matrix(0, 40, 40)), silent = TRUE), 'try-error'))"});
    EXPECT_TRUE(result.ok()) << result.describe();
}

TEST_F(LapackPrograms, Octave)
{
    if (!run_program({"sh", "-c", "command -v octave-cli"}).ok()) GTEST_SKIP() << "not installed";
    const auto result =
        run({"octave-cli", "--norc", "--eval",
             "n = 120; a = rand(n) + 1i * rand(n); p = a * a' + eye(n);"
             "assert(norm(a * inv(a) - eye(n)) < 1e-7); [l, u, q] = lu(a); assert(norm(q' * l * u - a) < 1e-9);"
             "r = chol(p); assert(norm(r' * r - p) < 1e-8); [q, r] = qr(a); assert(norm(q * r - a) < 1e-9);"
             "assert(norm(q' * q - eye(n)) < 1e-11); assert(norm(a * (a \\ ones(n, 1)) - ones(n, 1)) < 1e-8);"});
    EXPECT_TRUE(result.ok()) << result.describe();
}

} // namespace

} // namespace ork::test
