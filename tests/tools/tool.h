// SPDX-License-Identifier: MIT
// `ork` run as a user runs it, with a folder for its files.
#pragma once

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "support/process.h"

namespace ork::test {

inline std::string read(const std::filesystem::path& file)
{
    std::ifstream in(file);
    std::ostringstream all;
    all << in.rdbuf();
    return all.str();
}

class Tool : public testing::Test {
protected:
    Tool()
    {
        std::string name = testing::TempDir() + "ork-tool-XXXXXX";
        folder = mkdtemp(name.data());
    }
    ~Tool() override { std::filesystem::remove_all(folder); }

    ChildResult ork(std::vector<std::string> arguments, const std::vector<std::string>& environment = {})
    {
        arguments.insert(arguments.begin(), ORK_TOOL);
        return run_program(arguments, environment, 120);
    }

    // Value of a line "name   value" of `ork info`.
    static std::string value(const std::string& text, const std::string& name)
    {
        std::smatch match;
        return std::regex_search(text, match, std::regex("(^|\n)" + name + " +([^\n]+)")) ? match[2].str() : "";
    }

    std::filesystem::path folder;
};

} // namespace ork::test
