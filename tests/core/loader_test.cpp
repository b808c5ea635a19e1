// SPDX-License-Identifier: MIT
#include <fstream>

#include <gmock/gmock.h>

#include "core_folder.h"
#include "loader/table.h"
#include "ork/ork.h"

namespace ork::test {
namespace {

using testing::HasSubstr;
using testing::Not;

TEST(KernelTable, AsksForSse42)
{
    services::Processor processor;
    EXPECT_EQ(loader::choose(processor), nullptr);
    processor.sse42 = true;
    ASSERT_NE(loader::choose(processor), nullptr);
    EXPECT_STREQ(loader::choose(processor)->tag, "nx2");
}

TEST(KernelTable, NamesCarryTheTagInTheMiddleAndSparseOnesAtTheEnd)
{
    char name[64];
    ASSERT_TRUE(loader::compose_name(name, sizeof name, "spblas_lp64", "nx2", "dcsr0ng__c__mvout_par"));
    EXPECT_STREQ(name, "ork_spblas_lp64_nx2_dcsr0ng__c__mvout_par");
    ASSERT_TRUE(loader::compose_name(name, sizeof name, "sparse", "nx2", "d_csr_ng_n_mv_ker_i4"));
    EXPECT_STREQ(name, "ork_sparse_d_csr_ng_n_mv_ker_i4_nx2");
    EXPECT_FALSE(loader::compose_name(name, 22, "blas", "nx2", "xdgemm_par")); // 23 with its end
}

TEST(Loader, FindsTheLibraryBesideTheCoreFromAScopeOfItsOwn)
{
    CoreFolder folder;
    folder.with_kernels(ORK_KERNEL_FILE);
    const auto result = folder.run({"initialize"});
    EXPECT_EQ(result.exit_code, ORK_OK) << result.describe();
    EXPECT_EQ(result.out, "status 0\ntext \nlibrary " + folder.kernels().string() + "\ncode path 3\n");
    EXPECT_TRUE(folder.run({"multiply"}).ok());
}

// The folder counts from which the core was loaded, not what its name means from where the program stands later.
TEST(Loader, FindsItAfterAChangeOfDirectoryAndThroughALink)
{
    CoreFolder folder, elsewhere;
    folder.with_kernels(ORK_KERNEL_FILE);
    const auto moved = run_program(
        {"sh", "-c", "cd " + folder.path().string() + " && exec " ORK_CORE_USER " ./libork_core.so.0 moved"});
    EXPECT_TRUE(moved.ok()) << moved.describe();

    files::remove(elsewhere.core());
    files::create_symlink(folder.core(), elsewhere.core());
    const auto linked = elsewhere.run({"initialize"});
    EXPECT_TRUE(linked.ok()) << linked.describe();
}

struct Refusal {
    std::string kernels; // a kind of tests/core/kernels/, "text" or "missing"
    int status;
    const char* text; // in the message, besides the file

    friend void PrintTo(const Refusal& refusal, std::ostream* out) { *out << refusal.kernels; }
};

class Refused : public testing::TestWithParam<Refusal> {};

TEST_P(Refused, SaysWhatIsWrongWithWhichFile)
{
    const Refusal& refusal = GetParam();
    CoreFolder folder;
    if (refusal.kernels == "text")
        std::ofstream(folder.kernels()) << "not a library\n";
    else if (refusal.kernels != "missing")
        folder.with_test_kernels(refusal.kernels);

    const auto asked = folder.run({"initialize"});
    EXPECT_EQ(asked.exit_code, refusal.status) << asked.describe();
    EXPECT_THAT(asked.out, HasSubstr(refusal.text));
    EXPECT_THAT(asked.out, HasSubstr("library " + folder.kernels().string() + "\ncode path 0\n"));
    EXPECT_EQ(asked.err, "");

    const auto called = folder.run({"multiply"});
    EXPECT_EQ(called.exit_code, EXIT_FAILURE) << called.describe();
    EXPECT_THAT(called.err, HasSubstr(refusal.text));
    EXPECT_THAT(called.err, HasSubstr(folder.kernels().string()));
}

INSTANTIATE_TEST_SUITE_P(Kernels, Refused,
                         testing::Values(Refusal{"missing", ORK_LIBRARY_MISSING, "does not exist"},
                                         Refusal{"text", ORK_LIBRARY_FOREIGN, "can't open"},
                                         Refusal{"foreign", ORK_LIBRARY_FOREIGN, "is not a kernel library"},
                                         Refusal{"other_version", ORK_LIBRARY_VERSION, "serves code path 7, not 3"}),
                         [](const auto& info) { return info.param.kernels; });

TEST(Loader, ALibraryWithoutTheKernelEndsTheProcessWithItsName)
{
    CoreFolder folder;
    folder.with_test_kernels("empty");
    EXPECT_EQ(folder.run({"initialize"}).exit_code, ORK_OK);
    const auto called = folder.run({"multiply"});
    EXPECT_EQ(called.exit_code, EXIT_FAILURE) << called.describe();
    EXPECT_THAT(called.err, HasSubstr("has no ork_blas_nx2_xdgemm"));
}

TEST(Loader, TheFirstCallFitsASmallStack)
{
    if (sanitized) GTEST_SKIP() << "sanitizers need more";
    CoreFolder folder;
    folder.with_kernels(ORK_KERNEL_FILE);
    const auto result = folder.run({"small stack"}, {"ORK_NUM_THREADS=2"});
    EXPECT_TRUE(result.ok()) << result.describe();
}

TEST(Loader, AForkInTheFirstCallDoesNoHarm)
{
    if (sanitized) GTEST_SKIP() << "the sanitizers' allocators don't survive a fork while another thread allocates";
    CoreFolder folder;
    folder.with_kernels(ORK_KERNEL_FILE);
    for (int microseconds = 0; microseconds < 2000; microseconds += 20) {
        const auto result = folder.run({"fork", std::to_string(microseconds)});
        ASSERT_TRUE(result.ok()) << result.describe();
    }
}

TEST(Loader, NeverSearches)
{
    CoreFolder folder, other;
    other.with_kernels(ORK_KERNEL_FILE);
    const auto result = run_program(
        {"sh", "-c",
         "cd " + other.path().string() + " && exec " ORK_CORE_USER " " + folder.core().string() + " initialize"},
        {"LD_LIBRARY_PATH=" + other.path().string()});
    EXPECT_EQ(result.exit_code, ORK_LIBRARY_MISSING) << result.describe();
}

TEST(Loading, TakesNoThreadAndUnderTwoMebibytes)
{
    if (sanitized) GTEST_SKIP() << "sanitizers take more";
    const auto result = CoreFolder().run({"footprint"});
    EXPECT_TRUE(result.ok()) << result.describe();
}

TEST(Loading, AThousandRoundsLeaveNothing)
{
    if (sanitized) GTEST_SKIP() << "sanitizers keep memory and threads of their own";
    CoreFolder folder;
    folder.with_kernels(ORK_KERNEL_FILE);
    const auto result = folder.run({"rounds", "1000"});
    EXPECT_TRUE(result.ok()) << result.describe();
}

} // namespace
} // namespace ork::test
