// SPDX-License-Identifier: MIT
// Demonstrations: what they print, draw and refuse.
#include <algorithm>

#include "tools/tool.h"
#include "tools/well_formed.h"

namespace ork::test {
namespace {

namespace fs = std::filesystem;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;

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

TEST_F(Tool, DemoWritesOnePage)
{
    const std::string page = folder / "page.html";
    const ChildResult run = ork({"demo", "pca", "match", "--out", folder, "--report", page});
    ASSERT_TRUE(run.ok()) << run.describe();
    EXPECT_THAT(run.out, HasSubstr("report: " + page));
    std::string text = read(page);
    const std::string type = "<!DOCTYPE html>\n";
    ASSERT_TRUE(text.starts_with(type));
    text.erase(0, type.size());
    EXPECT_EQ(xml_fault(text), "");
    for (const char* part : {"<h2>pca</h2>", "<h2>match</h2>", "<svg ", "data:image/png;base64,", "<td>held</td>"})
        EXPECT_THAT(text, HasSubstr(part));
    EXPECT_THAT(text, Not(HasSubstr("failed")));
    EXPECT_THAT(text, HasSubstr(value(run.out, "  found at"))); // what the terminal shows

    const ChildResult nowhere = ork({"demo", "pca", "--out", folder, "--report", folder / "no" / "page.html"});
    EXPECT_EQ(nowhere.exit_code, 1);
    EXPECT_THAT(nowhere.err, HasSubstr("page.html: can't be written"));
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

} // namespace
} // namespace ork::test
