// SPDX-License-Identifier: MIT
// Information, checks, analysis, examples and bad arguments.
#include <algorithm>

#include "tools/tool.h"

namespace ork::test {
namespace {

namespace fs = std::filesystem;
using testing::ContainsRegex;
using testing::HasSubstr;

TEST_F(Tool, InfoNamesTheKernelLibraryAndCountsItsExports)
{
    const ChildResult run = ork({"info"}, {"ORK_NUM_THREADS=3"});
    ASSERT_TRUE(run.ok()) << run.describe();
    EXPECT_EQ(fs::canonical(value(run.out, "file")), fs::canonical(ORK_LIB_DIR "/libork_nx2.so"));
    EXPECT_EQ(value(run.out, "code path"), "3 (SSE4.2)");
    EXPECT_EQ(value(run.out, "threads"), "3");
    for (const char* name : {"version", "processor", "caches"}) EXPECT_NE(value(run.out, name), "") << name;
    const ChildResult nm = run_program({"nm", "-D", "--defined-only", ORK_LIB_DIR "/libork_nx2.so"});
    ASSERT_TRUE(nm.ok()) << nm.describe();
    EXPECT_EQ(value(run.out, "exports"), std::to_string(std::count(nm.out.begin(), nm.out.end(), '\n')));
}

TEST_F(Tool, CheckFindsTheKernelsRight)
{
    const ChildResult run = ork({"check"});
    EXPECT_TRUE(run.ok()) << run.describe();
    EXPECT_THAT(run.out, ContainsRegex("[0-9]+ routines, [0-9]+ calls .*: all right"));
    EXPECT_THAT(run.out, ContainsRegex("[0-9]+ families, [0-9]+ cases .*: all right"));
}

// Refinement reaches the last digit with extra-precise residuals and goes nowhere with plain ones.

// Rank-deficient and nearly empty input: what is left of the checks must still hold.

TEST_F(Tool, SparseAnalysesAMatrix)
{
    for (const std::vector<std::string>& options :
         {std::vector<std::string>{}, {"--precision", "s", "--index", "64", "--calls", "10", "--trans", "T"}}) {
        std::vector<std::string> arguments = {"sparse", "analyse", "lap2d:30"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const ChildResult run = ork(arguments);
        ASSERT_TRUE(run.ok()) << run.describe();
        EXPECT_THAT(run.out, HasSubstr("lap2d:30: 900 x 900, 4380 entries\n"));
        EXPECT_THAT(run.out,
                    HasSubstr("least 3, quarter 5, half 5, three quarters 5, most 5; mean 4.87; 0 empty rows\n"));
        EXPECT_THAT(run.out, ContainsRegex("4 \\|#+ +112\n"));
        EXPECT_THAT(run.out, HasSubstr("30 below and 30 above the diagonal; 5 diagonals"));
        EXPECT_THAT(run.out, HasSubstr("of structure and values"));
        EXPECT_THAT(run.out, HasSubstr(options.empty() ? "optimize for 1000 products" : "optimize for 10 products"));
        for (const char* row : {"plain csr in the caller's arrays", "handle as it was created", "handle after optimize",
                                "handle after optimize, two threads"}) {
            std::smatch rates;
            ASSERT_TRUE(std::regex_search(run.out, rates, std::regex(std::string(row) + " +([0-9.]+) +([0-9.]+)")))
                << row;
            EXPECT_GT(std::stod(rates[2]), 0) << row;
        }
        EXPECT_THAT(run.out, ContainsRegex("analysis lasts as long as [0-9.]+ products"));
    }
    const std::string file = folder / "wide.mtx";
    std::ofstream(file) << "%%MatrixMarket matrix coordinate real general\n2 9 3\n1 1 1\n1 9 1\n2 2 1\n";
    EXPECT_THAT(ork({"sparse", "analyse", file}).out, HasSubstr("not square"));
    std::ofstream(file) << "%%MatrixMarket matrix coordinate real general\n2 9 3\n1 1 1\n1 9 x\n2 2 1\n";
    EXPECT_THAT(ork({"sparse", "analyse", file}).err, HasSubstr("wide.mtx:4: "));
}

// Counted independently: by the same rule in plain loops over the file.

TEST_F(Tool, ExampleNamesAsManyDigitsAsPlainLoopsDo)
{
    std::ifstream in(ORK_SOURCE_DIR "/examples/data/digits.csv");
    std::vector<std::vector<double>> rows;
    for (std::string line; std::getline(in, line);) {
        std::replace(line.begin(), line.end(), ',', ' ');
        std::istringstream fields(line);
        rows.emplace_back(std::istream_iterator<double>(fields), std::istream_iterator<double>());
        ASSERT_EQ(rows.back().size(), 65u);
    }
    const size_t half = rows.size() / 2;
    std::vector<std::vector<double>> mean(10, std::vector<double>(65, 0));
    for (size_t i = 0; i < half; ++i)
        for (size_t j = 0; j < 65; ++j) mean[static_cast<size_t>(rows[i][64])][j] += j < 64 ? rows[i][j] : 1;
    int right = 0;
    for (size_t i = half; i < rows.size(); ++i) {
        double least = 1e30, named = -1;
        for (size_t c = 0; c < 10; ++c) {
            double distance = 0;
            for (size_t j = 0; j < 64; ++j) distance += std::pow(rows[i][j] - mean[c][j] / mean[c][64], 2);
            if (distance < least) least = distance, named = static_cast<double>(c);
        }
        right += named == rows[i][64];
    }
    const ChildResult run = run_program({ORK_EXAMPLE_NEAREST_MEAN, ORK_SOURCE_DIR "/examples/data/digits.csv"});
    EXPECT_TRUE(run.ok()) << run.describe();
    EXPECT_THAT(run.out, testing::StartsWith(std::to_string(right) + " of " + std::to_string(rows.size() - half)));
}

TEST_F(Tool, ExampleFindsTheTemperatureOfAPlate)
{
    const ChildResult run = run_program({ORK_EXAMPLE_PLATE});
    EXPECT_TRUE(run.ok()) << run.describe();
    EXPECT_THAT(run.out, ContainsRegex("^10000 unknowns, [1-9][0-9]+ iterations, largest error [0-9.]+e-1[0-9]"));
}

TEST_F(Tool, ExampleCoolsAPlate)
{
    const ChildResult run = run_program({ORK_EXAMPLE_HEAT});
    EXPECT_TRUE(run.ok()) << run.describe();
    EXPECT_THAT(run.out, ContainsRegex("^20 steps, [1-9][0-9]+ iterations, 15.8 % of the heat left, largest error "
                                       "[0-9.]+e-1[0-9]"));
}

// The first example of a page is a program, and prints what its last comment says.

TEST_F(Tool, ExamplesOfDocumentsCompileAndPrintWhatTheySay)
{
    for (const auto& [example, prints] : {std::pair{ORK_EXAMPLE_DOC_SPBLAS, "7 4 10\n"},
                                          {ORK_EXAMPLE_DOC_SPARSE, "7 4 10\n"},
                                          {ORK_EXAMPLE_DOC_CONV, "1 2 3 9 12 5\n"}}) {
        const ChildResult run = run_program({example});
        EXPECT_TRUE(run.ok()) << run.describe();
        EXPECT_EQ(run.out, prints);
    }
}

TEST_F(Tool, BadArgumentsAreNamedAndFail)
{
    struct Case {
        std::vector<std::string> arguments;
        const char* says;
    };
    const Case cases[] = {
        {{"nonsense"}, "nonsense"},
        {{"info", "--colour"}, "--colour"},
        {{"demo", "nosuchdemo"}, "nosuchdemo"},
        {{"demo", "--out", folder / "missing"}, "missing"},
        {{"bench", "nosuchfamily"}, "nosuchfamily"},
        {{"bench", "gemm", "--routine", "dgemmm"}, "dgemmm"},
        {{"bench", "gemm", "--sizes", "12,3y"}, "3y"},
        {{"bench", "gemm", "--sizes", "0"}, "\"0\""},
        {{"bench", "gemm", "--sizes", "10x20"}, "10x20"},
        {{"bench", "gemm", "--sizes", "99999999999"}, "99999999999"},
        {{"bench", "gemm", "--trans", "NX"}, "NX"},
        {{"bench", "level3", "--routine", "dtrsm", "--trans", "LNN"}, "LNN"},
        {{"bench", "trans", "--routine", "domatcopy", "--trans", "NT"}, "NT"},
        {{"bench", "fft", "--sizes", "100*"}, "100*"},
        {{"bench", "fft", "--kind", "cdx"}, "cdx"},
        {{"bench", "gemm", "--accuracy"}, "fft"},
        {{"bench", "sparse", "--sizes", "lap4d:10"}, "lap4d:10"},
        {{"bench", "sparse", "--trans", "R3"}, "R3"},
        {{"bench", "sparse", "--routine", "dmv", "--trans", "N", "--sizes", folder / "none.mtx"}, "none.mtx"},
        {{"bench", "sparse", "--routine", "ddotmv"}, "ddotmv"},
        {{"bench", "handles", "--routine", "dsymgs", "--sizes", ORK_SOURCE_DIR "/examples/data/west0479.mtx"},
         "west0479.mtx: row 1 has no diagonal"},
        {{"bench", "--threads", "0"}, "--threads"},
        {{"sparse"}, "subcommand is required"},
        {{"sparse", "analyse", "lap4d:3"}, "lap4d:3"},
        {{"sparse", "analyse", "lap2d:3", "--precision", "z"}, "--precision"},
        {{"bench", "--also", "/nonexistent/libblas.so"}, "/nonexistent/libblas.so"},
        {{"bench", "level1", "--routine", "ddot", "--sizes", "8", "--quick", "--json", folder / "missing" / "x.json"},
         "x.json"},
    };
    for (const Case& c : cases) {
        const ChildResult run = ork(c.arguments);
        EXPECT_GT(run.exit_code, 0) << c.says << run.describe();
        EXPECT_THAT(run.err + run.out, HasSubstr(c.says));
    }
    const ChildResult nothing = ork({});
    EXPECT_GT(nothing.exit_code, 0);
    EXPECT_THAT(nothing.err, HasSubstr("demo"));
    for (const char* help : {"info", "demo", "bench", "sparse", "check"})
        EXPECT_TRUE(ork({help, "--help"}).ok()) << help;
}

} // namespace
} // namespace ork::test
