// SPDX-License-Identifier: MIT
// Measurements: what is compared, and the files they write.
#include <algorithm>
#include <cmath>
#include <map>
#include <nlohmann/json.hpp>

#include "tools/tool.h"
#include "tools/well_formed.h"

namespace ork::test {
namespace {

using testing::ContainsRegex;
using testing::HasSubstr;

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

} // namespace
} // namespace ork::test
