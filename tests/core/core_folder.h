// SPDX-License-Identifier: MIT
// A folder with a copy of the core and whatever stands beside it, and a program that opens that copy.
#pragma once

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "support/process.h"

namespace ork::test {

namespace files = std::filesystem;

class CoreFolder {
public:
    CoreFolder()
    {
        std::string pattern = files::temp_directory_path() / "ork-core-XXXXXX";
        path_ = mkdtemp(pattern.data());
        chmod(path_.c_str(), 0755);
        files::copy_file(ORK_CORE_FILE, core());
    }
    ~CoreFolder() { files::remove_all(path_); }
    CoreFolder(const CoreFolder&) = delete;

    files::path path() const { return path_; }
    files::path core() const { return path_ / "libork_core.so.0"; }
    files::path kernels() const { return path_ / "libork_nx2.so"; }

    CoreFolder& with_kernels(const std::string& file)
    {
        files::copy_file(file, kernels());
        return *this;
    }

    // One of tests/core/kernels/.
    CoreFolder& with_test_kernels(const std::string& kind)
    {
        return with_kernels(std::string(ORK_TEST_KERNELS) + "/libork_kernels_" + kind + ".so");
    }

    ChildResult run(const std::vector<std::string>& action, const std::vector<std::string>& environment = {}) const
    {
        std::vector<std::string> arguments{ORK_CORE_USER, core()};
        arguments.insert(arguments.end(), action.begin(), action.end());
        return run_program(arguments, environment, 240);
    }

private:
    files::path path_;
};

} // namespace ork::test
