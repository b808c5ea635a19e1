// SPDX-License-Identifier: MIT
#include <filesystem>
#include <fmt/format.h>
#include <stdexcept>

#include "commands.h"
#include "demos/demo.h"
#include "ork/ork.h"

namespace ork::tool {
namespace {

namespace fs = std::filesystem;

struct Options {
    std::vector<std::string> names;
    std::string data, out = ".";
    bool checks = false, list = false;
};

// Beside an installed program, else in the source tree that it was built from.
std::string data_folder()
{
    std::error_code error;
    const fs::path program = fs::read_symlink("/proc/self/exe", error);
    const fs::path installed = program.parent_path().parent_path() / ORK_INSTALLED_DATA;
    return fs::is_directory(installed, error) ? installed.string() : ORK_SOURCE_DATA;
}

int run(const Options& options)
{
    if (options.list) {
        for (const Demo& demo : demos())
            fmt::print("{:<8}{}\n        input: {}\n", demo.name, demo.computes, demo.input);
        return 0;
    }
    if (ork_initialize() != ORK_OK) throw std::runtime_error(ork_error_text());
    const Places places{options.data.empty() ? data_folder() : options.data, options.out};
    if (!fs::is_directory(places.out)) throw std::runtime_error(places.out + ": no folder to write pictures to");
    int status = 0;
    for (const Demo& demo : demos()) {
        if (!options.names.empty() &&
            std::find(options.names.begin(), options.names.end(), demo.name) == options.names.end())
            continue;
        fmt::print("{}: {}\n  input: {}\n", demo.name, demo.computes, demo.input);
        std::fflush(stdout);
        Report report;
        try {
            demo.run(places, report);
        } catch (const std::exception& error) {
            std::fflush(stdout);
            fmt::print(stderr, "ork demo {}: {}\n", demo.name, error.what());
            status = 1;
            continue; // the others may still be fine
        }
        status |= report.print(options.checks);
    }
    return status;
}

} // namespace

void add_demo(CLI::App& app, int& status)
{
    auto options = std::make_shared<Options>();
    CLI::App* command = app.add_subcommand("demo", "Do real work on real data, check every result, draw pictures");
    std::vector<std::string> names;
    for (const Demo& demo : demos()) names.emplace_back(demo.name);
    command->add_option("name", options->names, "Demos to run; all of them by default")->check(CLI::IsMember(names));
    command->add_option("--out", options->out, "Folder for the pictures")->capture_default_str();
    command->add_option("--data", options->data, "Folder with the input files");
    command->add_flag("--checks", options->checks, "List the checks that the results passed");
    command->add_flag("--list", options->list, "List the demos and run none");
    command->callback([options, &status] { status = run(*options); });
}

} // namespace ork::tool
