// SPDX-License-Identifier: MIT
// `ork sparse analyse`: what a matrix looks like, how optimize stores it for products with vectors, and what that
// gains.
#include <cmath>
#include <filesystem>
#include <fmt/format.h>
#include <stdexcept>

#include "commands.h"
#include "matrix_market.h"
#include "ork/ork.h"
#include "peers/libraries.h"
#include "peers/measure.h"
#include "sparse/facts.h"

namespace ork::tool {
namespace {

struct Options {
    std::string matrix, precision = "d", trans = "N";
    int index = 32;
    int64_t calls = 1000;
};

void print_facts(const std::string& name, const peers::CsrMatrix& a)
{
    const Facts f = facts_of(a);
    fmt::print("{}: {} x {}, {} entries\n", name, a.rows, a.columns, a.entries());
    fmt::print(
        "  entries a row  least {}, quarter {}, half {}, three quarters {}, most {}; mean {:.2f}; {} empty rows\n",
        f.quartiles[0], f.quartiles[1], f.quartiles[2], f.quartiles[3], f.quartiles[4], f.mean, f.empty_rows);
    for (const std::string& line : draw_in_text(histogram_of(a))) fmt::print("{}\n", line);
    fmt::print("  bandwidth      {} below and {} above the diagonal; {} diagonals hold entries\n", f.below, f.above,
               f.diagonals);
    if (a.rows != a.columns)
        fmt::print("  symmetry       not square\n");
    else if (f.unmatched > 0)
        fmt::print("  symmetry       {:.1f} % of the entries have none at the mirrored place\n",
                   100 * static_cast<double>(f.unmatched) / static_cast<double>(a.entries()));
    else
        fmt::print("  symmetry       {}\n", f.unequal > 0 ? "of structure, not of values" : "of structure and values");
}

// The ways to multiply that are compared, each made ready and its result checked.
struct Way {
    std::string name;
    int threads;
    std::unique_ptr<peers::SparseOperation> operation;
};

Way make_way(const std::string& name, int threads, peers::SparseProblem& problem, bool handle, int64_t calls)
{
    static const peers::Library core = peers::core_library();
    peers::SparseOperands operands = problem.operands();
    operands.what.handle = handle;
    operands.what.calls = calls;
    ork_set_num_threads_local(threads);
    Way way{name, threads, core.sparse(operands)};
    if (way.operation == nullptr) throw std::runtime_error("this build of ork has no such product");
    const std::string fault = problem.check(*way.operation);
    if (!fault.empty()) throw std::runtime_error(name + " computed a wrong result: " + fault);
    return way;
}

void print_choice(const peers::SparseOperation& operation, int64_t calls)
{
    const peers::Analysis analysis = operation.analysis();
    fmt::print("\noptimize for {} products:\n", calls);
    fmt::print("  storage        {}; {:.3f} numbers stored for each entry, {:.2f} MB kept, {:.2f} ms\n",
               analysis.layout, analysis.padding, static_cast<double>(analysis.bytes) / 1e6, 1e3 * analysis.seconds);
    fmt::print("  why            {}\n", operation.storage());
}

peers::Entrant entrant(const Way& way)
{
    return [&way](long calls) {
        ork_set_num_threads_local(way.threads);
        for (; calls > 0; --calls) way.operation->run();
    };
}

void print_row(const peers::SparseProblem& problem, const Way& way, double seconds, double ratio)
{
    fmt::print("  {:<42}{:>10.2f}{:>10.2f}{:>10.1f}{:>14.2f}\n", way.name, 1e6 * seconds,
               problem.flops() / seconds / 1e9, problem.bytes() / seconds / 1e9, ratio);
}

// The ways on one thread by processor time, so that a busy machine does little harm; two threads beside the first by
// the wall clock.
void measure(const peers::SparseProblem& problem, const std::vector<Way>& ways, const Options& options)
{
    peers::Effort effort;
    effort.budget = 1;
    const peers::Samples seconds = peers::interleave({entrant(ways[0]), entrant(ways[1]), entrant(ways[2])}, effort);
    effort.clock = peers::Clock::wall;
    const peers::Samples wall = peers::interleave({entrant(ways[0]), entrant(ways[3])}, effort);
    fmt::print("\n{}, {} precision, {}-bit indices; medians of {} rounds in turn:\n",
               options.trans == "N" ? "y = A x" : "y = A' x", options.precision == "d" ? "double" : "single",
               options.index, seconds.front().size());
    fmt::print("  {:<42}{:>10}{:>10}{:>10}{:>14}\n", "", "us", "GF/s", "GB/s", "over plain");
    for (size_t e = 0; e < 3; ++e)
        print_row(problem, ways[e], peers::median(seconds[e]), peers::speed_ratio(seconds[e], seconds[0]));
    print_row(problem, ways[3], peers::median(wall[1]), peers::speed_ratio(wall[1], wall[0]));
    const double plain = peers::median(seconds[0]), best = peers::median(seconds[2]),
                 analysis = ways[2].operation->analysis().seconds;
    fmt::print("The analysis lasts as long as {:.1f} products in plain csr", analysis / plain);
    if (best < plain)
        fmt::print(" and has paid after {:.0f}.\n", std::ceil(analysis / (plain - best)));
    else
        fmt::print("; nothing is gained, so it never pays.\n");
}

int run(const Options& options)
{
    namespace fs = std::filesystem;
    std::error_code error;
    const bool file = options.matrix.find('/') != std::string::npos || fs::is_regular_file(options.matrix, error);
    if (!file && !peers::is_generated(options.matrix))
        throw std::runtime_error(fmt::format("{}: neither a file nor the like of lap2d:1200", options.matrix));
    if (ork_initialize() != ORK_OK) throw std::runtime_error(ork_error_text());
    const peers::CsrMatrix a = file ? read_matrix_market(options.matrix) : peers::generate(options.matrix);
    print_facts(options.matrix, a);
    auto what = *peers::sparse_case(options.precision + "mv" + (options.index == 64 ? "64" : ""), options.trans, true);
    what.calls = options.calls;
    peers::SparseProblem problem(what, a);
    std::vector<Way> ways;
    ways.push_back(make_way("plain csr in the caller's arrays", 1, problem, false, 0));
    ways.push_back(make_way("handle as it was created", 1, problem, true, 0));
    ways.push_back(make_way("handle after optimize", 1, problem, true, options.calls));
    ways.push_back(make_way("handle after optimize, two threads", 2, problem, true, options.calls));
    print_choice(*ways[2].operation, options.calls);
    measure(problem, ways, options);
    return 0;
}

} // namespace

void add_sparse(CLI::App& app, int& status)
{
    auto options = std::make_shared<Options>();
    CLI::App* command = app.add_subcommand("sparse", "Look at sparse matrices");
    command->require_subcommand(1);
    CLI::App* analyse =
        command->add_subcommand("analyse", "How a matrix is stored once it is analysed, why, and what that gains");
    analyse
        ->add_option("matrix", options->matrix,
                     "A Matrix Market file, or lap2d:N, lap3d:N, box3d:N (Laplacians and stencils of N points a side), "
                     "fem:NODES, pow:ROWS:MEAN")
        ->required();
    analyse->add_option("--calls", options->calls, "Products that optimize is told to expect")
        ->check(CLI::Range(int64_t{1}, int64_t{1} << 40))
        ->capture_default_str();
    analyse->add_option("--precision", options->precision, "s or d")
        ->check(CLI::IsMember({"s", "d"}))
        ->capture_default_str();
    analyse->add_option("--index", options->index, "Bits of an index, 32 or 64")
        ->check(CLI::IsMember({32, 64}))
        ->capture_default_str();
    analyse->add_option("--trans", options->trans, "N for y = A x, T for y = A' x")
        ->check(CLI::IsMember({"N", "T"}))
        ->capture_default_str();
    analyse->callback([options, &status] { status = run(*options); });
}

} // namespace ork::tool
