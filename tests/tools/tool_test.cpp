// SPDX-License-Identifier: MIT
// `ork` run as a user runs it.
#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <nlohmann/json.hpp>
#include <regex>
#include <sstream>

#include "support/process.h"
#include "tools/well_formed.h"

namespace {

namespace fs = std::filesystem;
using namespace ork::test;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;

std::string read(const fs::path& file)
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
    ~Tool() override { fs::remove_all(folder); }

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

    fs::path folder;
};

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
}

TEST_F(Tool, DemoPrintsSoundNumbersAndAPicture)
{
    const ChildResult run = ork({"demo", "pca", "--out", folder, "--checks"});
    ASSERT_TRUE(run.ok()) << run.describe();
    const auto numbers = [&](const std::string& line) {
        std::vector<double> all;
        std::istringstream in(value(run.out, "  " + line));
        for (std::string word; in >> word;)
            if (word != "%") all.push_back(std::stod(word));
        return all;
    };
    const auto variance = numbers("variance"), kept = numbers("kept"), explained = numbers("explained");
    ASSERT_EQ(variance.size(), 8u);
    EXPECT_TRUE(std::is_sorted(variance.rbegin(), variance.rend()));
    ASSERT_EQ(explained.size(), kept.size());
    EXPECT_TRUE(std::is_sorted(explained.begin(), explained.end()));
    EXPECT_GT(explained.front(), 0);
    EXPECT_LT(explained.back(), 100);
    EXPECT_NEAR(explained.front(), variance[0] + variance[1], 0.011); // two components kept, both rounded
    EXPECT_THAT(run.out, HasSubstr("held: covariance"));
    const std::string picture = read(folder / "ork-demo-pca.svg");
    EXPECT_EQ(xml_fault(picture), "");
    EXPECT_THAT(run.out, HasSubstr((folder / "ork-demo-pca.svg").string()));
}

TEST_F(Tool, DemoShowsNothingOfAWrongComputation)
{
    if (sanitized) GTEST_SKIP() << "a sanitizer's run-time must be preloaded first";
    for (const auto& [demo, result] : {std::pair{"pca", "explained"},
                                       {"system", "recognised that"},
                                       {"ecg", "by the median of"},
                                       {"blur", "PSNR"},
                                       {"structure", "iterations"},
                                       {"pagerank", "most typical"},
                                       {"residual", "condition"},
                                       {"rotate", "turned at"},
                                       {"match", "found at"},
                                       {"beats", "by the median interval"}})
        for (const char* fault : {"nan", "small"}) {
            const ChildResult run = ork({"demo", demo, "--out", folder},
                                        {"LD_PRELOAD=" ORK_WRONG_BLAS, std::string("ORK_TEST_FAULT=") + fault});
            EXPECT_EQ(run.exit_code, 1) << fault << run.describe();
            EXPECT_THAT(run.out + run.err, ContainsRegex("CHECK FAILED|singular")) << fault;
            EXPECT_THAT(run.out, Not(HasSubstr(result))) << fault;
            EXPECT_TRUE(fs::is_empty(folder)) << fault;
        }
}

TEST_F(Tool, DemoUpdatesKalmanFilters)
{
    const ChildResult run = ork({"demo", "kalman", "--checks"});
    ASSERT_TRUE(run.ok()) << run.describe();
    EXPECT_THAT(run.out, HasSubstr("held: residual of every system, packs by Cholesky"));
    EXPECT_THAT(run.out, ContainsRegex("in packs, LU, packing included .* million systems a second"));
    std::smatch outside;
    ASSERT_TRUE(std::regex_search(run.out, outside, std::regex("([0-9.]+) % of the measurements fall outside")));
    EXPECT_NEAR(std::stod(outside[1]), 5, 0.3);
}

// Refinement reaches the last digit with extra-precise residuals and goes nowhere with plain ones.
TEST_F(Tool, DemoRefinesANearlySingularFit)
{
    const ChildResult run = ork({"demo", "residual", "--checks"});
    ASSERT_TRUE(run.ok()) << run.describe();
    EXPECT_THAT(run.out, HasSubstr("held: extra-precise residuals, of half an ulp"));
    std::smatch first, last;
    const std::string numbers = " +([0-9.]+) +([0-9.]+) +([0-9.]+) +([0-9.]+)\n";
    ASSERT_TRUE(std::regex_search(run.out, first, std::regex("\n  0" + numbers)));
    ASSERT_TRUE(std::regex_search(run.out, last, std::regex("\n  6" + numbers)));
    EXPECT_EQ(first[3], first[4]) << "the same solution to begin with";
    EXPECT_LT(std::stod(last[1]), 1);
    EXPECT_GT(std::stod(last[2]), 15.5);
    EXPECT_LT(std::stod(last[3]), 8);
    EXPECT_GT(std::stod(last[4]), 15.5);

    std::ofstream(folder / "ecg.txt") << "1000\n1001\n";
    EXPECT_THAT(ork({"demo", "residual", "--data", folder}).err, HasSubstr("2 samples"));
}

TEST_F(Tool, DemoTurnsAPhotograph)
{
    const ChildResult run = ork({"demo", "rotate", "--out", folder, "--checks"});
    ASSERT_TRUE(run.ok()) << run.describe();
    EXPECT_EQ(xml_fault(read(folder / "ork-demo-rotate.svg")), "");
    const auto pixels = [](const fs::path& file, const std::string& header) {
        const std::string picture = read(file);
        EXPECT_EQ(picture.substr(0, header.size()), header) << file;
        return picture.substr(std::min(picture.size(), header.size()));
    };
    const std::string square = "P5\n512 512\n255\n";
    const std::string original = pixels(ORK_SOURCE_DIR "/examples/data/ascent.pgm", square);
    const std::string half = pixels(folder / "ork-demo-rotate-half.pgm", square);
    EXPECT_EQ(half, std::string(original.rbegin(), original.rend())) << "upside down";
    const std::string crop = pixels(folder / "ork-demo-rotate-crop.pgm", "P5\n300 512\n255\n");
    ASSERT_EQ(crop.size(), size_t{300} * 512);
    EXPECT_EQ(crop[0], original[size_t{511} * 512]) << "the lower left corner comes first";
    EXPECT_EQ(crop[299], original[size_t{212} * 512]);
}

TEST_F(Tool, DemoFindsAPatchAgain)
{
    const ChildResult run = ork({"demo", "match", "--out", folder, "--checks"});
    ASSERT_TRUE(run.ok()) << run.describe();
    EXPECT_THAT(run.out, ContainsRegex("found at \\(150, 290\\), where it was cut out: score 0.7"));
    EXPECT_EQ(xml_fault(read(folder / "ork-demo-match.svg")), "");
    EXPECT_EQ(read(folder / "ork-demo-match.png").substr(1, 3), "PNG");
    std::ofstream(folder / "ascent.pgm") << "P5\n1 1\n255\n1";
    EXPECT_THAT(ork({"demo", "match", "--data", folder, "--out", folder}).err, HasSubstr("sides from 350"));
}

TEST_F(Tool, DemoCountsBeats)
{
    const ChildResult run = ork({"demo", "beats", "--out", folder, "--checks"});
    ASSERT_TRUE(run.ok()) << run.describe();
    std::smatch beats, by_energy;
    ASSERT_TRUE(std::regex_search(run.out, beats, std::regex("([0-9]+) beats, ([0-9.]+) a minute")));
    ASSERT_TRUE(std::regex_search(run.out, by_energy, std::regex("demo ecg counts ([0-9]+)")));
    EXPECT_NEAR(std::stod(beats[1]), std::stod(by_energy[1]), 3);
    EXPECT_NEAR(std::stod(beats[1]), std::stod(beats[2]), 5) << "in a minute";
    EXPECT_EQ(xml_fault(read(folder / "ork-demo-beats.svg")), "");
}

TEST_F(Tool, DemoClonesAPartOfAPhotograph)
{
    const ChildResult run = ork({"demo", "clone", "--out", folder, "--checks"});
    ASSERT_TRUE(run.ok()) << run.describe();
    EXPECT_THAT(run.out, HasSubstr("held: step at the border over that of plain pasting"));
    EXPECT_EQ(xml_fault(read(folder / "ork-demo-clone.svg")), "");
    const std::string original = read(ORK_SOURCE_DIR "/examples/data/ascent.pgm");
    const std::string cloned = read(folder / "ork-demo-clone-cloned.pgm"),
                      pasted = read(folder / "ork-demo-clone-pasted.pgm");
    ASSERT_EQ(cloned.size(), original.size());
    ASSERT_EQ(pasted.size(), original.size());
    size_t changed = 0, outside = 0;
    for (size_t i = 15; i < original.size(); ++i) {
        const size_t x = (i - 15) % 512, y = (i - 15) / 512;
        const bool inside = x > 145 && x < 145 + 46 && y > 50 && y < 50 + 40;
        changed += inside && cloned[i] != original[i];
        outside += !inside && cloned[i] != original[i];
    }
    EXPECT_EQ(outside, 0u);
    EXPECT_GT(changed, 1000u);
    std::ofstream(folder / "ascent.pgm") << "P5\n1 1\n255\n1";
    EXPECT_THAT(ork({"demo", "clone", "--data", folder, "--out", folder}).err, HasSubstr("1 x 1 pixels instead of"));
}

TEST_F(Tool, DemoDrawsTheFieldOfCharges)
{
    const ChildResult run = ork({"demo", "charges", "--out", folder, "--checks"});
    ASSERT_TRUE(run.ok()) << run.describe();
    EXPECT_THAT(run.out, HasSubstr("charge inside 0.500000, flux through the walls 0.500000"));
    EXPECT_EQ(xml_fault(read(folder / "ork-demo-charges.svg")), "");
}

TEST_F(Tool, DemoSolvesASystem)
{
    const ChildResult run = ork({"demo", "system", "--checks"});
    ASSERT_TRUE(run.ok()) << run.describe();
    EXPECT_THAT(run.out, HasSubstr("system of order 1000"));
    EXPECT_THAT(run.out, HasSubstr("held: scaled residual"));
    std::smatch recognised;
    ASSERT_TRUE(std::regex_search(run.out, recognised, std::regex("([0-9]+) of 798 digits recognised")));
    const double right = std::stod(recognised[1]);
    EXPECT_GT(right, 0.9 * 798) << "interpolation recognises most digits";
    EXPECT_LE(right, 798);

    std::istringstream original(read(ORK_SOURCE_DIR "/examples/data/digits.csv"));
    std::string line;
    std::getline(original, line);
    std::ofstream(folder / "digits.csv") << line << '\n' << line << '\n' << line << '\n' << line << '\n';
    const ChildResult alike = ork({"demo", "system", "--data", folder});
    EXPECT_EQ(alike.exit_code, 1);
    EXPECT_THAT(alike.err, HasSubstr("singular"));
}

TEST_F(Tool, DemoFindsTheHeartRateAndRemovesTheHum)
{
    const ChildResult run = ork({"demo", "ecg", "--out", folder, "--checks"});
    ASSERT_TRUE(run.ok()) << run.describe();
    std::smatch rates, hum, after;
    ASSERT_TRUE(std::regex_search(
        run.out, rates, std::regex("heart rate ([0-9.]+) .*, ([0-9.]+) by the median of ([0-9]+) intervals")));
    for (size_t i = 1; i <= 3; ++i) EXPECT_NEAR(std::stod(rates[i]), 110, 10) << run.out;
    ASSERT_TRUE(std::regex_search(run.out, hum, std::regex("hum at ([0-9.]+) Hz: amplitude ([0-9.]+) counts")));
    ASSERT_TRUE(std::regex_search(run.out, after, std::regex("after its removal ([0-9.]+) counts")));
    EXPECT_NEAR(std::stod(hum[1]), 60, 0.1);
    EXPECT_LT(std::stod(after[1]), 0.2 * std::stod(hum[2]));
    EXPECT_EQ(xml_fault(read(folder / "ork-demo-ecg.svg")), "");

    std::ofstream(folder / "ecg.txt") << "1000\n1001\n";
    EXPECT_THAT(ork({"demo", "ecg", "--data", folder, "--out", folder}).err, HasSubstr("2 samples"));
}

TEST_F(Tool, DemoRestoresAPhotograph)
{
    const ChildResult run = ork({"demo", "blur", "--out", folder, "--checks"});
    ASSERT_TRUE(run.ok()) << run.describe();
    std::smatch psnr;
    ASSERT_TRUE(std::regex_search(run.out, psnr, std::regex("blurred ([0-9.]+) dB, restored ([0-9.]+) dB")));
    EXPECT_GT(std::stod(psnr[2]), std::stod(psnr[1]) + 1);
    EXPECT_EQ(xml_fault(read(folder / "ork-demo-blur.svg")), "");
    const std::string original = read(ORK_SOURCE_DIR "/examples/data/ascent.pgm");
    for (const char* name : {"original", "blurred", "restored"})
        EXPECT_EQ(read(folder / (std::string("ork-demo-blur-") + name + ".pgm")).size(), 15u + 512 * 512) << name;

    std::ofstream(folder / "ascent.pgm") << original.substr(0, original.size() - 1);
    EXPECT_THAT(ork({"demo", "blur", "--data", folder, "--out", folder}).err, HasSubstr("262143 pixels instead of"));
    std::ofstream(folder / "ascent.pgm") << "P2\n1 1\n1\n1\n";
    EXPECT_THAT(ork({"demo", "blur", "--data", folder, "--out", folder}).err, HasSubstr("not a binary PGM"));
}

TEST_F(Tool, DemoSolvesForAStructure)
{
    const ChildResult run = ork({"demo", "structure", "--out", folder, "--checks"});
    ASSERT_TRUE(run.ok()) << run.describe();
    const auto iterations = [&](const std::string& name) {
        std::smatch row;
        if (!std::regex_search(run.out, row, std::regex(name + " +([0-9]+) +([0-9.e+-]+) +([0-9.e+-]+)"))) return 0;
        EXPECT_LT(std::stod(row[2]), 1e-9) << name;
        EXPECT_LT(std::stod(row[3]), 1e-6) << name;
        return std::stoi(row[1]);
    };
    const int none = iterations("no preconditioner"), sweeps = iterations("symmetric Gauss-Seidel"),
              factor = iterations("incomplete Cholesky");
    EXPECT_GT(factor, 0);
    EXPECT_LT(factor, sweeps) << run.out;
    EXPECT_LT(10 * sweeps, none) << run.out;
    EXPECT_EQ(xml_fault(read(folder / "ork-demo-structure.svg")), "");

    const std::pair<const char*, const char*> wrong[] = {
        {"%%MatrixMarket matrix coordinate real general\n1 1 1\n1 1 2\n", "not symmetric"},
        {"%%MatrixMarket matrix coordinate real symmetric\n2 2 2\n1 1 2\n2 1 1\n", "(2, 2) of the diagonal"},
        {"%%MatrixMarket matrix coordinate real symmetric\n2 2 2\n1 1 2\n3 1 1\n", "bcsstk15.mtx:4: row 3"}};
    for (const auto& [text, says] : wrong) {
        std::ofstream(folder / "bcsstk15.mtx") << text;
        EXPECT_THAT(ork({"demo", "structure", "--data", folder, "--out", folder}).err, HasSubstr(says));
    }
}

TEST_F(Tool, DemoRanksDigitsAndGraphs)
{
    const std::string file = folder / "three.mtx";
    std::ofstream(file) << "%%MatrixMarket matrix coordinate pattern general\n3 3 4\n1 2\n2 1\n3 1\n3 3\n";
    const ChildResult run = ork({"demo", "pagerank", file, "--out", folder, "--checks"});
    ASSERT_TRUE(run.ok()) << run.describe();
    // 18/37, 343/740 and 1/20, times three; a link to oneself is none
    EXPECT_THAT(run.out, HasSubstr("three.mtx: 3 nodes, 3 links, 0 dead ends"));
    EXPECT_THAT(run.out, HasSubstr("highest ranks (x n): 1 (1.46), 2 (1.39), 3 (0.15)\n"));
    std::istringstream lines(run.out);
    std::vector<double> high, low;
    for (std::string line; std::getline(lines, line);) {
        std::smatch ranks;
        if (!std::regex_search(line, ranks, std::regex("its rank x n +(.*)"))) continue;
        std::istringstream in(ranks[1]);
        auto& all = high.empty() ? high : low;
        all.assign(std::istream_iterator<double>(in), std::istream_iterator<double>());
    }
    ASSERT_EQ(high.size(), 10u) << run.out;
    ASSERT_EQ(low.size(), 10u) << run.out;
    for (size_t digit = 0; digit < 10; ++digit) {
        EXPECT_GT(high[digit], 1);
        EXPECT_LT(low[digit], 1);
        EXPECT_GE(low[digit], 0.15);
    }
    EXPECT_EQ(xml_fault(read(folder / "ork-demo-pagerank.svg")), "");

    std::ofstream(file) << "%%MatrixMarket matrix coordinate pattern general\n3 2 1\n1 2\n";
    EXPECT_THAT(ork({"demo", "pagerank", file, "--out", folder}).err,
                HasSubstr("three.mtx: a graph has as many rows as columns"));
    EXPECT_THAT(ork({"demo", "pca", file, "--out", folder}).err, HasSubstr("three.mtx"));
}

TEST_F(Tool, DemoNamesTheLineOfABadInputFile)
{
    const ChildResult missing = ork({"demo", "pca", "--data", folder, "--out", folder});
    EXPECT_EQ(missing.exit_code, 1);
    EXPECT_THAT(missing.err, HasSubstr((folder / "digits.csv: No such file").string()));

    std::istringstream original(read(ORK_SOURCE_DIR "/examples/data/digits.csv"));
    std::ofstream cut(folder / "digits.csv");
    std::string line;
    for (int row = 1; row <= 5 && std::getline(original, line); ++row)
        cut << (row == 4 ? line.substr(0, line.size() / 2) : line) << '\n';
    cut.close();
    const ChildResult malformed = ork({"demo", "pca", "--data", folder, "--out", folder});
    EXPECT_EQ(malformed.exit_code, 1);
    EXPECT_THAT(malformed.err, HasSubstr("digits.csv:4: "));
    EXPECT_THAT(malformed.out, Not(HasSubstr("explained")));
}

// Rank-deficient and nearly empty input: what is left of the checks must still hold.
TEST_F(Tool, DemoTakesFewImages)
{
    std::istringstream original(read(ORK_SOURCE_DIR "/examples/data/digits.csv"));
    std::string first, second, third;
    std::getline(original, first);
    std::getline(original, second);
    std::getline(original, third);
    for (const std::string& rows :
         {first + '\n' + second, first + '\n' + second + '\n' + third + '\n' + second + '\n'}) {
        std::ofstream(folder / "digits.csv") << rows;
        const ChildResult run = ork({"demo", "pca", "--data", folder, "--out", folder});
        EXPECT_TRUE(run.ok()) << run.describe();
        EXPECT_THAT(run.out, Not(HasSubstr("nan")));
        EXPECT_EQ(xml_fault(read(folder / "ork-demo-pca.svg")), "");
    }
    for (const std::string& rows : {first, first + '\n' + first}) {
        std::ofstream(folder / "digits.csv") << rows;
        const ChildResult run = ork({"demo", "pca", "--data", folder, "--out", folder});
        EXPECT_EQ(run.exit_code, 1) << run.describe();
        EXPECT_THAT(run.err, HasSubstr("alike"));
    }
}

TEST_F(Tool, BenchWritesWhatItMeasured)
{
    const std::string json = folder / "bench.json", svg = folder / "bench.svg";
    const ChildResult run = ork({"bench", "gemm", "level1", "--routine", "dgemm,ddot", "--sizes", "5,16", "--trans",
                                 "nt", "--quick", "--json", json, "--svg", svg});
    ASSERT_TRUE(run.ok()) << run.describe();
    EXPECT_EQ(xml_fault(read(svg)), "");
    const auto root = nlohmann::json::parse(read(json));
    EXPECT_GT(root["machine"]["sse_double_gflops"].get<double>(), 0);
    ASSERT_EQ(root["machine"]["levels"].size(), 4u);
    EXPECT_EQ(root["contenders"][0]["kind"], "ork");
    ASSERT_EQ(root["cases"].size(), 4u);
    for (const auto& c : root["cases"]) {
        SCOPED_TRACE(c.dump());
        EXPECT_EQ(c["variant"], c["routine"] == "dgemm" ? "NT beta=0" : "");
        EXPECT_GE(c["rounds"].get<int>(), 3);
        EXPECT_GT(c["limit"].get<double>(), 0);
        EXPECT_GT(c["of_limit"].get<double>(), 0);
        double fastest_peer = 0, ork = 0, best_peer = 0;
        for (const auto& figure : c["figures"]) {
            EXPECT_TRUE(figure["right"].get<bool>());
            const double rate = figure["rate"];
            EXPECT_NEAR(rate, c["work"].get<double>() / figure["median_seconds"].get<double>() / 1e9, 1e-6 * rate);
            if (figure["kind"] == "ork") ork = rate;
            if (figure["kind"] == "peer") fastest_peer = std::max(fastest_peer, rate);
            if (figure["name"] == c["best_peer"]) best_peer = rate;
        }
        EXPECT_GT(ork, 0);
        EXPECT_EQ(best_peer, fastest_peer);
        EXPECT_EQ(c["ratio"].is_null(), c["best_peer"].is_null());
    }
}

TEST_F(Tool, BenchMeasuresTransforms)
{
    const std::string json = folder / "bench.json";
    const ChildResult run =
        ork({"bench", "fft", "--kind", "cd,rsb,cdi,rdbi", "--sizes", "16,6x9,5*3", "--quick", "--json", json},
            {"ORK_PEERS=" + folder.string()});
    ASSERT_TRUE(run.ok()) << run.describe();
    if (!sanitized) {
        EXPECT_THAT(run.out, HasSubstr("scripts/fftw-sse2"));
    }
    const auto root = nlohmann::json::parse(read(json));
    ASSERT_EQ(root["cases"].size(), 12u);
    for (const auto& c : root["cases"]) {
        SCOPED_TRACE(c.dump());
        const double n = c["shape"] == "16" ? 16 : c["shape"] == "6x9" ? 54 : 5, batch = c["shape"] == "5*3" ? 3 : 1;
        const double flops = (c["routine"].get<std::string>()[0] == 'c' ? 5 : 2.5) * n * std::log2(n) * batch;
        EXPECT_NEAR(c["work"].get<double>(), flops, 1e-9 * flops);
        ASSERT_GE(c["figures"].size(), 1u);
        EXPECT_EQ(c["figures"][0]["name"], "ork");
        for (const auto& figure : c["figures"]) EXPECT_TRUE(figure["right"].get<bool>());
    }
    for (const auto& [option, low, high] : {std::tuple{"--accuracy", 1e-17, 1e-15}, {"--planning", 0.0, 1e9}}) {
        const ChildResult table = ork({"bench", "fft", option, "--kind", "cd", "--sizes", "210"});
        ASSERT_TRUE(table.ok()) << table.describe();
        std::smatch row;
        ASSERT_TRUE(std::regex_search(table.out, row, std::regex("\n +210 +([0-9.e+-]+)"))) << table.out;
        EXPECT_GT(std::stod(row[1]), low) << table.out;
        EXPECT_LT(std::stod(row[1]), high) << table.out;
    }
}

TEST_F(Tool, BenchMeasuresMovedMatrices)
{
    const std::string json = folder / "bench.json";
    const ChildResult run = ork({"bench", "trans", "--routine", "zomatcopy,dimatcopy,somatadd", "--trans",
                                 "t,n,c,nt,tt", "--sizes", "17,12,5x9,70x3", "--quick", "--json", json},
                                {"ORK_PEERS=" + folder.string()});
    ASSERT_TRUE(run.ok()) << run.describe();
    const auto root = nlohmann::json::parse(read(json));
    ASSERT_EQ(root["cases"].size(), 36u); // T, N, C each; T with factor 2 as well; NT, TT
    const std::map<std::string, double> elements = {{"17", 289}, {"12", 144}, {"5x9", 45}, {"70x3", 210}};
    const std::map<std::string, double> bytes = {{"zomatcopy", 32}, {"dimatcopy", 16}, {"somatadd", 12}};
    for (const auto& c : root["cases"]) {
        SCOPED_TRACE(c.dump());
        EXPECT_EQ(c["work"].get<double>(), elements.at(c["shape"]) * bytes.at(c["routine"]));
        ASSERT_GE(c["figures"].size(), 3u);
        EXPECT_EQ(c["figures"][0]["name"], "ork");
        for (const auto& figure : c["figures"]) EXPECT_TRUE(figure["right"].get<bool>());
        EXPECT_GT(c["limit"].get<double>(), 0);
        EXPECT_GT(c["speed_up"].get<double>(), 0);
    }
}

TEST_F(Tool, BenchMeasuresSparseMatrices)
{
    const std::string json = folder / "bench.json", file = folder / "small.mtx";
    std::ofstream(file) << "%%MatrixMarket matrix coordinate real symmetric\n3 3 4\n1 1 4\n2 2 4\n3 3 4\n3 1 -1\n";
    const ChildResult run = ork({"bench", "sparse", "--routine", "dmv,smv64,dmm,ssv", "--trans", "N,T,S,R8,C4,L,U",
                                 "--sizes", "lap2d:9,pow:40:5," + file, "--quick", "--json", json});
    ASSERT_TRUE(run.ok()) << run.describe();
    const auto root = nlohmann::json::parse(read(json));
    ASSERT_EQ(root["cases"].size(), 28u); // no symmetric form of pow, two precisions of it
    const std::map<std::string, double> entries = {{"lap2d:9", 5 * 81 - 4 * 9}, {"small.mtx", 5}};
    for (const auto& c : root["cases"]) {
        SCOPED_TRACE(c.dump());
        ASSERT_GE(c["figures"].size(), 2u);
        EXPECT_EQ(c["figures"][0]["name"], "ork");
        for (const auto& figure : c["figures"]) EXPECT_TRUE(figure["right"].get<bool>());
        EXPECT_FALSE(c["best_peer"].is_null());
        EXPECT_GT(c["traffic_gbs"].get<double>(), 0);
        EXPECT_GT(c["speed_up"].get<double>(), 0);
        EXPECT_EQ(c.contains("over_singles"), c["routine"] == "dmm");
        if (entries.count(c["shape"]) == 0 || c["routine"] == "ssv") continue;
        const std::string letters = c["variant"];
        const double columns = letters == "R8" ? 8 : letters == "C4" ? 4 : 1;
        EXPECT_EQ(c["work"].get<double>(), 2 * entries.at(c["shape"]) * columns);
    }
}

TEST_F(Tool, BenchMeasuresHandles)
{
    const std::string json = folder / "bench.json", file = folder / "small.mtx";
    std::ofstream(file) << "%%MatrixMarket matrix coordinate real symmetric\n3 3 4\n1 1 4\n2 2 4\n3 3 4\n3 1 -1\n";
    const ChildResult run = ork({"bench", "handles", "--routine", "dmv,smv64,ddotmv,sdotmv64,dmm,dsv,dsymgs", "--trans",
                                 "N,T,S,R8,L", "--sizes", "lap2d:9,pow:40:5," + file, "--quick", "--json", json});
    ASSERT_TRUE(run.ok()) << run.describe();
    EXPECT_THAT(run.out, ContainsRegex("ork: [0-9.]+ times as fast as legacy; its analysis lasts [0-9.]+ calls"));
    const auto root = nlohmann::json::parse(read(json));
    ASSERT_EQ(root["cases"].size(), 34u);
    for (const auto& c : root["cases"]) {
        SCOPED_TRACE(c.dump());
        EXPECT_EQ(c["figures"][0]["name"], "ork");
        EXPECT_EQ(c["figures"].back()["name"] == "legacy", c["routine"] != "dsymgs");
        for (const auto& figure : c["figures"]) EXPECT_TRUE(figure["right"].get<bool>());
        EXPECT_GT(c["figures"][0]["analysis_seconds"].get<double>(), 0);
        EXPECT_GT(c["speed_up"].get<double>(), 0);
    }
}

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
