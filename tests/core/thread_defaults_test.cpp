// SPDX-License-Identifier: MIT
// How many threads a program gets that sets nothing.
#include <sched.h>

#include <cmath>
#include <fstream>

#include <gtest/gtest.h>

#include "core_folder.h"
#include "threads/processors.h"

namespace ork::test {
namespace {

struct File {
    const char *path, *text;
};

// A folder of control groups.
class Groups {
public:
    Groups(std::initializer_list<File> contents)
    {
        std::string pattern = files::temp_directory_path() / "ork-groups-XXXXXX";
        root_ = mkdtemp(pattern.data());
        for (const auto& [path, text] : contents) {
            files::create_directories((root_ / path).parent_path());
            std::ofstream(root_ / path) << text;
        }
    }
    Groups(const Groups&) = delete;
    ~Groups() { files::remove_all(root_); }

    double quota(const char* membership) const { return threads::group_quota(membership, root_.c_str()); }

private:
    files::path root_;
};

TEST(GroupQuota, SecondVersionTakesTheLeastUpToTheRoot)
{
    const Groups groups{{"a/cpu.max", "400000 100000\n"},
                        {"a/b/cpu.max", "max 100000\n"},
                        {"a/b/c/cpu.max", "650000 100000\n"},
                        {"d/cpu.max", "50000 100000\n"}};
    EXPECT_EQ(groups.quota("0::/a/b/c\n"), 4);
    EXPECT_EQ(groups.quota("0::/d\n"), 0.5);
    EXPECT_EQ(groups.quota("0::/elsewhere\n"), 0);
    EXPECT_EQ(groups.quota("0::/\n"), 0);
    EXPECT_EQ(groups.quota(""), 0);
    EXPECT_EQ(groups.quota("no such line\n\n:::\n0::"), 0);
}

// A container sees the host's name of its group, and its own group as the root of the mount.
TEST(GroupQuota, InAContainerTheRootOfTheMountCounts)
{
    const Groups second{{"cpu.max", "150000 100000\n"}};
    EXPECT_EQ(second.quota("0::/host/name/of/it\n"), 1.5);
    const Groups first{{"cpu,cpuacct/cpu.cfs_quota_us", "300000\n"}, {"cpu,cpuacct/cpu.cfs_period_us", "100000\n"}};
    EXPECT_EQ(first.quota("7:cpu,cpuacct:/docker/0123\n6:memory:/docker/0123\n"), 3);
}

TEST(GroupQuota, FirstVersionIsReadFromTheGroupThatListsCpu)
{
    const Groups groups{{"cpu/a/cpu.cfs_quota_us", "250000\n"},
                        {"cpu/a/cpu.cfs_period_us", "100000\n"},
                        {"cpu/b/cpu.cfs_quota_us", "-1\n"},
                        {"cpu/b/cpu.cfs_period_us", "100000\n"}};
    EXPECT_EQ(groups.quota("3:cpuset:/b\n2:cpuacct,cpu:/a\n"), 2.5);
    EXPECT_EQ(groups.quota("2:cpu:/b\n"), 0);
    EXPECT_EQ(groups.quota("2:cpuset:/a\n"), 0);
}

std::string default_threads(const std::vector<std::string>& environment, bool one_processor = false)
{
    return run_program({ORK_CORE_USER, ORK_CORE_FILE, "threads"}, environment, 60,
                       [&] {
                           cpu_set_t one;
                           CPU_ZERO(&one);
                           CPU_SET(sched_getcpu(), &one);
                           if (one_processor) sched_setaffinity(0, sizeof one, &one);
                       })
        .out;
}

TEST(DefaultThreads, FollowTheEnvironmentThenTheAffinity)
{
    const std::string none = "ORK_NUM_THREADS", no_omp = "OMP_NUM_THREADS";
    EXPECT_EQ(default_threads({"ORK_NUM_THREADS=3", "OMP_NUM_THREADS=5"}), "3");
    EXPECT_EQ(default_threads({none, "OMP_NUM_THREADS=5"}), "5");
    EXPECT_EQ(default_threads({none, "OMP_NUM_THREADS=6,2"}), "6");
    EXPECT_EQ(default_threads({"ORK_NUM_THREADS=many", "OMP_NUM_THREADS=5"}), "5");
    EXPECT_EQ(default_threads({"ORK_NUM_THREADS=99999999999999999999", no_omp}), "256");
    const std::string usual = default_threads({none, no_omp});
    EXPECT_EQ(default_threads({"ORK_NUM_THREADS=-4", "OMP_NUM_THREADS=0"}), usual);
    EXPECT_EQ(usual, std::to_string(threads::available_processors()));
    EXPECT_EQ(default_threads({none, no_omp}, true), "1");
}

// A program that runs with the rights of another user must not be steered by who starts it.
TEST(DefaultThreads, IgnoreTheEnvironmentInSetUserIdPrograms)
{
    if (sanitized) GTEST_SKIP() << "sanitizers refuse to run so";
    if (geteuid() != 0) GTEST_SKIP() << "only the superuser can make such a program of another user";
    CoreFolder folder;
    const files::path program = folder.path() / "core_user";
    files::copy_file(ORK_CORE_USER, program);
    chmod(folder.core().c_str(), 0755);
    constexpr uid_t nobody = 65534;
    if (chown(program.c_str(), nobody, nobody) != 0 || chmod(program.c_str(), 04755) != 0) GTEST_SKIP() << "not here";
    const std::vector<std::string> arguments{program, folder.core(), "threads"};
    const auto usual = run_program(arguments, {"ORK_NUM_THREADS", "OMP_NUM_THREADS"});
    const auto steered = run_program(arguments, {"ORK_NUM_THREADS=77"});
    EXPECT_TRUE(steered.ok()) << steered.describe();
    EXPECT_EQ(steered.out, usual.out);
}

} // namespace
} // namespace ork::test
