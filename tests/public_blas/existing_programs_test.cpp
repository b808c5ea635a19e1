// SPDX-License-Identifier: MIT
// Programs of the distribution that were built for any BLAS, where they are installed: the reference's own testers,
// LAPACK's, NumPy.
#include <cstdlib>
#include <filesystem>

#include <gtest/gtest.h>

#include "support/process.h"

namespace ork::test {

namespace {

// Where the drop-in stands before the system's BLAS.
class ExistingPrograms : public testing::Test {
protected:
    std::string folder;

    void SetUp() override
    {
        if (sanitized) GTEST_SKIP() << "the programs do not start with a sanitizer's run-time";
        std::string name = std::filesystem::temp_directory_path() / "ork.XXXXXX";
        ASSERT_NE(mkdtemp(name.data()), nullptr);
        folder = name;
    }
    void TearDown() override
    {
        if (!folder.empty()) std::filesystem::remove_all(folder);
    }

    // All that a shell command prints and writes to files of its working directory.
    std::string output(const std::string& command, const std::string& library_path) const
    {
        const auto run = run_program({"sh", "-c", "cd " + folder + " && rm -f * && { " + command + " ; } && cat *"},
                                     {"LD_LIBRARY_PATH=" + library_path}, 120);
        EXPECT_TRUE(run.ok() || run.out.find("PASS") != std::string::npos) << command << run.describe();
        return run.out + run.err;
    }
};

void expect_passed(const std::string& output, const char* passed, std::initializer_list<const char*> failed)
{
    EXPECT_NE(output.find(passed), std::string::npos) << output;
    for (const char* text : failed) EXPECT_EQ(output.find(text), std::string::npos) << output;
}

TEST_F(ExistingPrograms, TestersOfTheReferenceBlas)
{
    int found = 0;
    for (const std::string at : {ORK_BLAS_TESTERS, ORK_BLAS64_TESTERS}) {
        if (at.empty()) continue;
        ++found;
        for (const std::string type : {"s", "d", "c", "z"})
            for (const std::string level : {"1", "2", "3"})
                for (const bool c : {false, true}) {
                    const std::string program = at + (c ? "/x" + type + "cblat" + level : "/xblat" + level + type);
                    const std::string input = at + "/" + type + (c ? "in" + level : "blat" + level + ".in");
                    SCOPED_TRACE(program);
                    expect_passed(output(program + " > log" + (level == "1" ? "" : " < " + input), ORK_LIB_DIR), "PASS",
                                  {"FAIL", "FATAL", "SUSPECT", "NOT DETECTED"});
                }
    }
    if (found == 0) GTEST_SKIP() << "not installed";
}

TEST_F(ExistingPrograms, LapacksLinearEquations)
{
    const std::string at = ORK_LAPACK_TESTERS;
    if (at.empty()) GTEST_SKIP() << "not installed";
    for (const std::string type : {"s", "d", "c", "z"}) {
        SCOPED_TRACE(type);
        const std::string command = at + "/xlintst" + type + " < " + at + "/" + type + "test.in > log";
        expect_passed(output(command, ORK_LIB_DIR ":" + at), "passed the threshold", {"failed", "illegal"});
    }
}

TEST_F(ExistingPrograms, NumPy)
{
    const std::string python = "/usr/bin/python3";
    if (!run_program({python, "-c", "import numpy"}).ok()) GTEST_SKIP() << "not installed";
    const auto run = run_program({python, ORK_SOURCE_DIR "/tests/public_blas/programs/numpy_program.py"},
                                 {"LD_LIBRARY_PATH=" ORK_LIB_DIR});
    if (run.exit_code == 77) GTEST_SKIP() << "a NumPy with a BLAS of its own";
    EXPECT_TRUE(run.ok()) << run.describe();
}

} // namespace

} // namespace ork::test
