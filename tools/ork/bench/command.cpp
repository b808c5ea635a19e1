// SPDX-License-Identifier: MIT
#include <algorithm>
#include <fmt/format.h>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "bench/fft_family.h"
#include "bench/result.h"
#include "bench/trig_family.h"
#include "commands.h"
#include "ork/ork.h"
#include "terminal.h"

namespace ork::tool {
namespace {

struct Options {
    std::vector<std::string> families, sizes, routines, trans, also;
    std::vector<double> beta;
    int threads = 1;
    std::string json, svg;
    bool quick = false, all = false, accuracy = false, planning = false;
};

bench::Selection selection_from(const Options& options)
{
    bench::Selection selection{options.routines, options.sizes, {}, options.beta, options.quick};
    for (std::string letters : options.trans) {
        std::transform(letters.begin(), letters.end(), letters.begin(),
                       [](char c) { return c >= 'a' ? static_cast<char>(c - 32) : c; });
        selection.trans.push_back(letters);
    }
    return selection;
}

bench::Machine describe_machine()
{
    char name[128];
    ork_processor_name(name, sizeof(name));
    return {name, peers::arithmetic_rate(false), peers::arithmetic_rate(true), peers::level_rates()};
}

void print_libraries(const std::vector<peers::Library>& libraries, const std::vector<std::string>& notes)
{
    for (const peers::Library& library : libraries)
        fmt::print("{:<14}{}{}\n", library.name, library.detail,
                   library.kind == peers::Kind::wide ? " (free to use wider registers: no peer)" : "");
    for (const std::string& note : notes) fmt::print("{:<14}{}\n", "-", note);
}

void print_head(const bench::Machine& machine, const std::vector<peers::Library>& libraries,
                const std::vector<std::string>& notes, const Options& options)
{
    fmt::print("{}\n", machine.processor);
    fmt::print("128-bit arithmetic: {:.2f} GF/s double, {:.2f} single (multiplications and additions in registers)\n",
               machine.arithmetic_double / 1e9, machine.arithmetic_single / 1e9);
    fmt::print("128-bit traffic, GB/s:");
    for (const char* what : {"load", "copy", "store"}) {
        fmt::print("  {}", what);
        for (const peers::LevelRates& level : machine.levels)
            fmt::print("{} {:.0f}", level.level == machine.levels.front().level ? "" : " /",
                       (*what == 'l'   ? level.load
                        : *what == 'c' ? level.copy
                                       : level.store) /
                           1e9);
    }
    fmt::print("  (L1 / L2 / 8 MiB / memory)\n\n");
    print_libraries(libraries, notes);
    fmt::print(
        "\nork on {} thread{}, peers on one. Medians of {} time; ork/peer is the median of the ratios within rounds.\n",
        options.threads, options.threads > 1 ? "s" : "", options.threads > 1 ? "wall-clock" : "processor");
}

using Cases = std::vector<std::pair<const bench::Family*, bench::Case>>;

Cases cases_of(const Options& options, const bench::Selection& selection)
{
    Cases cases;
    for (const bench::Family& family : bench::families())
        if (options.families.empty() || std::count(options.families.begin(), options.families.end(), family.name) > 0)
            for (bench::Case& c : family.cases(selection)) cases.emplace_back(&family, std::move(c));
    return cases;
}

// ork first, then the peers of the families that take part.
std::vector<peers::Library> libraries_for(const Cases& cases, const Options& options, std::vector<std::string>& notes)
{
    std::vector<peers::Library> libraries = {peers::core_library()};
    const auto add = [&](bench::Field field, auto find) {
        const auto is = [field](const auto& c) { return c.first->field == field; };
        if (std::none_of(cases.begin(), cases.end(), is)) return;
        for (peers::Library& library : find(notes)) libraries.push_back(std::move(library));
    };
    add(bench::Field::dense, peers::find_peers);
    add(bench::Field::transforms, peers::find_transform_peers);
    if (std::any_of(cases.begin(), cases.end(), [](const auto& c) { return c.first->field == bench::Field::handles; }))
        add(bench::Field::handles, peers::find_handle_peers); // those of the field sparse among them
    else
        add(bench::Field::sparse, peers::find_sparse_peers);
    for (const std::string& file : options.also) libraries.push_back(peers::open_library(file));
    return libraries;
}

// Every routine asked for is in a family; all letters fit one of these routines, and all sizes a case of those.
void require_all(const Options& options, const bench::Selection& selection)
{
    bench::Selection one;
    const auto require = [&](const char* option, const std::string& text) {
        if (cases_of(options, one).empty())
            throw std::runtime_error(fmt::format("{}: \"{}\" fits nothing in the families asked for", option, text));
    };
    for (const std::string& routine : selection.routines) {
        one.routines = {routine};
        require("--routine", routine);
    }
    one.routines = selection.routines;
    for (const std::string& letters : selection.trans) {
        one.trans = {letters};
        require("--trans", letters);
    }
    one.trans = selection.trans;
    for (const std::string& size : selection.sizes) {
        one.sizes = {size};
        require("--sizes", size);
    }
}

int run(const Options& options)
{
    const bench::Selection selection = selection_from(options);
    const auto only = [&](const char* family) { return options.families == std::vector<std::string>{family}; };
    if ((options.accuracy && !only("fft") && !only("trig")) || (options.planning && !only("fft")))
        throw std::runtime_error("--accuracy is of the families fft and trig, --planning of fft alone");
    const Cases cases = cases_of(options, selection);
    require_all(options, selection);
    for (const std::string& file : {options.json, options.svg}) // rather now than after an hour of measuring
        if (!file.empty() && !std::ofstream(file, std::ios::app)) throw std::runtime_error(file + ": can't be written");
    if (ork_initialize() != ORK_OK) throw std::runtime_error(ork_error_text());

    std::vector<std::string> notes;
    const std::vector<peers::Library> libraries = libraries_for(cases, options, notes);
    ork_set_num_threads(options.threads);
    if (options.accuracy || options.planning) {
        print_libraries(libraries, notes);
        if (options.accuracy) (only("trig") ? bench::show_trig_accuracy : bench::show_accuracy)(selection, libraries);
        if (options.planning) bench::show_planning(selection, libraries);
        return 0;
    }
    const bench::Machine machine = describe_machine();
    print_head(machine, libraries, notes, options);

    peers::Effort effort;
    if (options.quick) effort = {1e-3, 0.1, 3, 7, peers::Clock::processor};
    if (options.threads > 1) effort.clock = peers::Clock::wall;
    bench::Table table(libraries, options.all);
    Progress progress(cases.size());
    std::vector<bench::Result> results;
    bool wrong = false;
    for (const auto& [family, c] : cases) {
        progress.show(results.size(), c.label());
        ork_set_num_threads(options.threads);
        results.push_back(bench::measure(*family, c, libraries, effort));
        progress.clear();
        table.row(results.back());
        const bench::Figure* subject = results.back().subject();
        wrong = wrong || (subject != nullptr && !subject->fault.empty());
    }
    table.summary(results);
    if (!options.json.empty()) {
        bench::write_json(options.json, machine, libraries, results);
        fmt::print("Wrote {}\n", options.json);
    }
    if (!options.svg.empty()) {
        bench::write_plot(options.svg, machine, results);
        fmt::print("Wrote {}\n", options.svg);
    }
    return wrong ? 1 : 0;
}

} // namespace

void add_bench(CLI::App& app, int& status)
{
    auto options = std::make_shared<Options>();
    CLI::App* command = app.add_subcommand("bench", "Measure routines against the libraries found on this machine");
    std::vector<std::string> names;
    std::string about = "Families:";
    for (const bench::Family& family : bench::families()) {
        names.emplace_back(family.name);
        about += fmt::format("\n  {:<10}{}", family.name, family.summary);
    }
    command->footer(about);
    command->add_option("family", options->families, "Families to measure; all of them by default")
        ->check(CLI::IsMember(names));
    command
        ->add_option(
            "--routine,--kind", options->routines,
            "Routines, such as dgemm,ddot; kinds of transforms: c or r, s or d, b backward, i in place: cd,rsb")
        ->delimiter(',');
    command
        ->add_option("--sizes", options->sizes,
                     "Sizes: 512; m x n (x k for gemm) as in 64x2000, 1000x1000x4; 100*1000: a thousand transforms of "
                     "length 100; all: every usual size of transforms")
        ->delimiter(',');
    command->add_option("--trans", options->trans, "Letters of a call: NN for gemm, N for gemv, LLNN for trsm")
        ->delimiter(',');
    command->add_option("--beta", options->beta, "Values of beta for gemm")->delimiter(',');
    command->add_option("--threads", options->threads, "Threads that ork may use; peers run on one")
        ->check(CLI::Range(1, 256));
    command
        ->add_option("--also", options->also,
                     "Another library with Fortran BLAS symbols or the FFTW interface, as a further peer")
        ->check(CLI::ExistingFile);
    command->add_option("--json", options->json, "Write everything that was measured to this file");
    command->add_option("--svg", options->svg, "Plot rate over size into this file");
    command->add_flag("--quick", options->quick, "Fewer cases and rounds");
    command->add_flag("--all", options->all, "Show every contender, not only the best peer");
    command->add_flag("--accuracy", options->accuracy, "Of transforms: their errors instead of their speed");
    command->add_flag("--planning", options->planning, "Of transforms: the time it takes to plan them");
    command->callback([options, &status] { status = run(*options); });
}

} // namespace ork::tool
