// SPDX-License-Identifier: MIT
#include <algorithm>
#include <filesystem>
#include <fmt/format.h>
#include <fstream>
#include <stdexcept>

#include "commands.h"
#include "demos/demo.h"
#include "ork/ork.h"
#include "page.h"

namespace ork::tool {
namespace {

namespace fs = std::filesystem;

struct Options {
    std::vector<std::string> names; // of demos, and of Matrix Market files
    std::string data, out = ".", page;
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

bool is_matrix(const std::string& name) { return name.ends_with(".mtx"); }

int run(const Options& options)
{
    if (options.list) {
        for (const Demo& demo : demos())
            fmt::print("{:<10}{}\n          input: {}\n", demo.name, demo.computes, demo.input);
        return 0;
    }
    if (ork_initialize() != ORK_OK) throw std::runtime_error(ork_error_text());
    Places places{options.data.empty() ? data_folder() : options.data, options.out};
    std::vector<std::string> wanted;
    for (const std::string& name : options.names) (is_matrix(name) ? places.matrices : wanted).push_back(name);
    const auto is_wanted = [&](const Demo& demo) {
        return wanted.empty() ? places.matrices.empty() || demo.takes_matrices
                              : std::find(wanted.begin(), wanted.end(), demo.name) != wanted.end();
    };
    if (!places.matrices.empty() && std::none_of(demos().begin(), demos().end(), [&](const Demo& demo) {
            return demo.takes_matrices && is_wanted(demo);
        }))
        throw std::runtime_error(places.matrices.front() + ": none of these demos takes a matrix");
    if (!fs::is_directory(places.out)) throw std::runtime_error(places.out + ": no folder to write pictures to");
    if (!options.page.empty() && !std::ofstream(options.page))
        throw std::runtime_error(options.page + ": can't be written");
    int status = 0;
    Page page("ork demo");
    for (const Demo& demo : demos()) {
        if (!is_wanted(demo)) continue;
        page.section(demo.name, fmt::format("{}. Input: {}.", demo.computes, demo.input));
        fmt::print("{}: {}\n  input: {}\n", demo.name, demo.computes, demo.input);
        std::fflush(stdout);
        Report report;
        try {
            demo.run(places, report);
        } catch (const std::exception& error) {
            std::fflush(stdout);
            fmt::print(stderr, "ork demo {}: {}\n", demo.name, error.what());
            page.paragraph(error.what());
            status = 1;
            continue; // the others may still be fine
        }
        status |= report.print(options.checks);
        report.write(page);
    }
    if (!options.page.empty()) {
        page.save(options.page);
        fmt::print("report: {}\n", options.page);
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
    const CLI::Validator known(
        [names](const std::string& name) { return is_matrix(name) ? std::string() : CLI::IsMember(names)(name); },
        fmt::format("{{{}}}|FILE.mtx", fmt::join(names, ",")));
    command
        ->add_option(
            "name", options->names,
            "Demos to run, all of them by default; Matrix Market files whose patterns pagerank takes for graphs")
        ->check(known);
    command->add_option("--out", options->out, "Folder for the pictures")->capture_default_str();
    command->add_option("--data", options->data, "Folder with the input files");
    command->add_option("--report", options->page, "Write what was printed and drawn to this file, one HTML page");
    command->add_flag("--checks", options->checks, "List the checks that the results passed");
    command->add_flag("--list", options->list, "List the demos and run none");
    command->callback([options, &status] { status = run(*options); });
}

} // namespace ork::tool
