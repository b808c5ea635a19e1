// SPDX-License-Identifier: MIT
// Sparse matrices of the tool: where they come from, and the checks that decide whether a product of theirs is right.
#include <gmock/gmock.h>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <limits>
#include <set>

#include "demos/cg.h"
#include "matrix_market.h"
#include "peers/sparse.h"
#include "sparse/facts.h"

namespace {

using namespace ork;

double row_sum(const peers::CsrMatrix& a, int row)
{
    double sum = 0;
    for (int k = a.ptr[static_cast<size_t>(row)]; k < a.ptr[static_cast<size_t>(row) + 1]; ++k)
        sum += a.val[static_cast<size_t>(k)];
    return sum;
}

TEST(GeneratedMatrices, AreSortedAndOfTheKindTheirNameSays)
{
    for (const char* name : {"lap2d:7", "lap3d:5", "box3d:4", "fem:50", "pow:300:9", "lap2d:1", "fem:1", "pow:1:1"}) {
        SCOPED_TRACE(name);
        ASSERT_TRUE(peers::is_generated(name));
        const peers::CsrMatrix a = peers::generate(name);
        ASSERT_EQ(a.ptr.size(), static_cast<size_t>(a.rows) + 1);
        ASSERT_EQ(static_cast<size_t>(a.ptr.back()), a.entries());
        std::set<std::tuple<int, int, double>> all;
        for (int i = 0; i < a.rows; ++i)
            for (int k = a.ptr[static_cast<size_t>(i)]; k < a.ptr[static_cast<size_t>(i) + 1]; ++k) {
                const int column = a.col[static_cast<size_t>(k)];
                ASSERT_GE(column, 0);
                ASSERT_LT(column, a.columns);
                if (k > a.ptr[static_cast<size_t>(i)]) {
                    ASSERT_LT(a.col[static_cast<size_t>(k) - 1], column);
                }
                all.emplace(i, column, a.val[static_cast<size_t>(k)]);
            }
        for (const auto& [i, j, value] : all) {
            EXPECT_TRUE(!a.symmetric || all.count({j, i, value}) == 1) << i << ' ' << j;
        }
    }
    const peers::CsrMatrix plane = peers::generate("lap2d:5"), cube = peers::generate("box3d:3");
    EXPECT_EQ(plane.entries(), 5u * 25 - 4 * 5);
    EXPECT_EQ(row_sum(plane, 12), 0); // the middle
    EXPECT_EQ(row_sum(plane, 0), 2);  // a corner lacks two neighbours
    EXPECT_EQ(row_sum(cube, 13), 0);
    EXPECT_EQ(row_sum(cube, 0), 19);
    const peers::CsrMatrix law = peers::generate("pow:4000:16");
    size_t longest = 0;
    for (size_t i = 0; i < 4000; ++i) longest = std::max(longest, static_cast<size_t>(law.ptr[i + 1] - law.ptr[i]));
    EXPECT_NEAR(static_cast<double>(law.entries()) / 4000, 16, 4);
    EXPECT_GT(longest, 100u) << "no hubs";
    for (const char* name : {"lap2d", "lap2d:", "lap2d:0", "lap2d:-3", "lap2d:3:4", "lap2d:3x", "lap4d:3", "pow:10",
                             "pow:10:20", "lap3d:2000000", "", ":3"})
        EXPECT_FALSE(peers::is_generated(name)) << name;
}

// Plain loops with one fault each.
struct Faulty : peers::SparseOperation {
    const peers::SparseOperands& o;
    std::unique_ptr<peers::SparseOperation> right;
    int fault;
    Faulty(const peers::SparseOperands& operands, int f) : o(operands), right(peers::plain_sparse(operands)), fault(f)
    {
    }
    void run() override
    {
        right->run();
        const size_t last = static_cast<size_t>(o.m) * static_cast<size_t>(o.what.nrhs) - 1;
        const auto spoil = [&](auto* y) {
            if (fault == 1) y[last] *= o.what.single ? 1.0001f : 1 + 1e-12;
            if (fault == 2) y[0] = std::numeric_limits<float>::quiet_NaN();
            if (fault == 3) std::swap(y[last], y[last / 2]);
            if (fault == 4)
                for (size_t i = 0; i <= last; ++i) y[i] = -y[i];
            if (fault == 5) y[last / 3] = 0;
            if (fault == 6) *static_cast<std::decay_t<decltype(y)>>(o.dot) += 1e-3f;
        };
        o.what.single ? spoil(static_cast<float*>(o.y)) : spoil(static_cast<double*>(o.y));
    }
};

TEST(SparseChecks, RejectEveryFaultyResult)
{
    for (const auto& [routine, letters] : {std::pair{"dmv", "N"},
                                           {"smv64", "N"},
                                           {"dmv64", "T"},
                                           {"smv", "S"},
                                           {"dmm", "R4"},
                                           {"smm", "C2"},
                                           {"dsv", "L"},
                                           {"ssv64", "U"},
                                           {"ddotmv", "N"},
                                           {"sdotmv64", "S"},
                                           {"dsymgs", "N"}})
        for (const char* name : {"fem:20", "pow:70:6"}) {
            const auto what = *peers::sparse_case(routine, letters, true);
            if (what.routine == peers::SparseCase::Routine::symgs && *name == 'p') continue; // it has no diagonal
            peers::SparseProblem problem(what, peers::generate(name));
            const bool dot = what.routine == peers::SparseCase::Routine::dotmv;
            for (int fault = 0; fault <= (dot ? 6 : 5); ++fault) {
                Faulty operation(problem.operands(), fault);
                EXPECT_EQ(problem.check(operation).empty(), fault == 0)
                    << routine << ' ' << letters << ' ' << name << ", fault " << fault;
            }
        }
    for (const auto& [routine, letters] : {std::pair{"dmv", ""},
                                           {"mv", "N"},
                                           {"zmv", "N"},
                                           {"dmv32", "N"},
                                           {"dmv", "L"},
                                           {"dsv", "N"},
                                           {"dmm", "R"},
                                           {"dmm", "R3"},
                                           {"ddotmv", "N"},
                                           {"dxv", "N"}})
        EXPECT_FALSE(peers::sparse_case(routine, letters)) << routine << ' ' << letters;
}

TEST(SparseCases, CountEveryOperandOnce)
{
    const peers::CsrMatrix a = peers::generate("lap2d:10"); // 460 entries, 100 rows
    const auto problem = [&](const char* routine, const char* letters) {
        return peers::SparseProblem(*peers::sparse_case(routine, letters), a);
    };
    EXPECT_EQ(problem("dmv", "N").bytes(), 460 * 12 + 101 * 4 + 200 * 8);
    EXPECT_EQ(problem("smv64", "N").bytes(), 460 * 12 + 101 * 8 + 200 * 4);
    EXPECT_EQ(problem("dmm", "R8").bytes(), 460 * 12 + 101 * 4 + 8 * 200 * 8);
    EXPECT_EQ(problem("dmm", "R8").flops(), 8 * 920);
    EXPECT_EQ(problem("dmv", "S").flops(), 920); // as many as of the whole matrix
    EXPECT_EQ(problem("dsv", "L").flops(), 2 * 280);
}

TEST(SparseFacts, CountRowsDiagonalsAndMirrors)
{
    peers::CsrMatrix a; // rows of 0 to 3 entries: . | 0:1 3:2 | 1:5 | 1:2 2:7 3:1
    a.rows = a.columns = 4;
    a.ptr = {0, 0, 2, 3, 6};
    a.col = {0, 3, 1, 1, 2, 3};
    a.val = {1, 2, 5, 2, 7, 1};
    const tool::Facts f = tool::facts_of(a);
    EXPECT_EQ(f.quartiles, (std::vector<int>{0, 0, 1, 2, 3}));
    EXPECT_EQ(f.mean, 1.5);
    EXPECT_EQ(f.empty_rows, 1);
    EXPECT_EQ(f.below, 2);
    EXPECT_EQ(f.above, 2);
    EXPECT_EQ(f.diagonals, 4u); // -2 -1 0 2
    EXPECT_EQ(f.unmatched, 3u); // (1, 0), (2, 1) and (3, 2)
    EXPECT_EQ(f.unequal, 0u);   // (1, 3) is (3, 1)
    a.val[1] = 3;
    EXPECT_EQ(tool::facts_of(a).unequal, 2u);
    EXPECT_EQ(tool::histogram_of(a).size(), 4u);

    const peers::CsrMatrix law = peers::generate("pow:500:9");
    int rows = 0, after = -1;
    for (const tool::Bar& bar : tool::histogram_of(law)) {
        EXPECT_GT(bar.least, after);
        EXPECT_GE(bar.most, bar.least);
        after = bar.most;
        rows += bar.rows;
    }
    EXPECT_EQ(rows, 500);
    EXPECT_GT(after, 64);
}

class MatrixMarket : public testing::Test {
protected:
    // The rows as text, or what is wrong, without the file's name.
    std::string read(const std::string& text)
    {
        std::ofstream(file) << text;
        try {
            const peers::CsrMatrix a = tool::read_matrix_market(file);
            std::string all;
            for (size_t i = 0; i < static_cast<size_t>(a.rows); ++i) {
                for (auto k = static_cast<size_t>(a.ptr[i]); k < static_cast<size_t>(a.ptr[i + 1]); ++k) {
                    char entry[64];
                    std::snprintf(entry, sizeof(entry), "%d:%g ", a.col[k], a.val[k]);
                    all += entry;
                }
                all += '|';
            }
            return all;
        } catch (const std::runtime_error& error) {
            const std::string what = error.what();
            return what.substr(what.find(".mtx") + 4);
        }
    }
    ~MatrixMarket() override { std::remove(file.c_str()); }

    const std::string file = testing::TempDir() + "ork-matrix.mtx", head = "%%MatrixMarket matrix coordinate ";
};

TEST_F(MatrixMarket, ReadsEveryFieldAndSymmetry)
{
    EXPECT_EQ(read(head + "real general\n% note\n\n2 3 3\n2 1 1e2\n\t1 3 -.5\r\n1 1 +4\n"), "0:4 2:-0.5 |0:100 |");
    EXPECT_EQ(read(head + "integer general\n1 1 2\n1 1 3\n1 1 -5\n"), "0:-2 |"); // entries of equal place add up
    EXPECT_EQ(read(head + "pattern symmetric\n2 2 2\n1 1\n2 1\n"), "0:1 1:1 |0:1 |");
    EXPECT_EQ(read(head + "real skew-symmetric\n2 2 1\n2 1 3\n"), "1:-3 |0:3 |");
    EXPECT_EQ(read("%%matrixmarket MATRIX Coordinate Real General\n2 2 0\n"), "||");
}

TEST_F(MatrixMarket, NamesTheLineOfWhatIsWrong)
{
    const std::string general = head + "real general\n";
    EXPECT_THAT(read(""), testing::StartsWith(":1: no Matrix Market file"));
    EXPECT_THAT(read("3 3 1\n1 1 1\n"), testing::StartsWith(":1: no Matrix Market file"));
    EXPECT_THAT(read("%%MatrixMarket matrix array real general\n"), testing::HasSubstr(":1: \"array\""));
    EXPECT_THAT(read(head + "complex general\n"), testing::HasSubstr(":1: \"complex\""));
    EXPECT_THAT(read(head + "real hermitian\n"), testing::HasSubstr(":1: \"hermitian\""));
    EXPECT_THAT(read(general), testing::StartsWith(":1: no line with the numbers"));
    EXPECT_THAT(read(general + "3 3\n"), testing::StartsWith(":2: \"3 3\" is not the numbers"));
    EXPECT_THAT(read(general + "3 0 1\n"), testing::StartsWith(":2: \"3 0 1\" is not"));
    EXPECT_THAT(read(general + "3 3000000000 1\n"), testing::StartsWith(":2: \"3 3000000000 1\" is not"));
    EXPECT_EQ(read(head + "real symmetric\n2 3 1\n"), ":2: a symmetric matrix can't have 2 rows and 3 columns");
    EXPECT_EQ(read(general + "3 3 1\n% a\n0 1 2\n"), ":4: row 0 is outside 1 to 3");
    EXPECT_EQ(read(general + "3 3 1\n1 4 2\n"), ":3: column 4 is outside 1 to 3");
    EXPECT_EQ(read(general + "3 3 1\n1.5 1 2\n"), ":3: row \"1.5\" is not an integer");
    EXPECT_EQ(read(general + "3 3 1\n1 1\n"), ":3: 2 fields instead of 3: row, column, value");
    EXPECT_EQ(read(head + "pattern general\n3 3 1\n1 1 7\n"), ":3: 3 fields instead of 2: row, column");
    EXPECT_EQ(read(general + "3 3 1\n1 1 2d0\n"), ":3: value \"2d0\" is not a number");
    EXPECT_EQ(read(general + "3 3 1\n1 1 nan\n"), ":3: value \"nan\" is not a number");
    EXPECT_EQ(read(general + "3 3 1\n1 1 1\n2 2 1\n"), ":4: more than the 1 entries announced");
    EXPECT_EQ(read(general + "3 3 2\n1 1 1\n"), ":4: the file ends after 1 entries, but 2 were announced");
    EXPECT_THAT(read(head + "real symmetric\n2 2 1\n1 2 1\n"), testing::StartsWith(":3: entry (1, 2) is above"));
    EXPECT_THAT(read(head + "real skew-symmetric\n2 2 1\n2 2 1\n"), testing::StartsWith(":3: entry (2, 2) is on"));
}

// A matrix of which the unshifted factor needs the root of a negative number: the shift is found, and the factor times
// its transpose is the matrix with that much more on its diagonal wherever it has entries.
TEST(IncompleteCholesky, ShiftsUntilPivotsArePositive)
{
    for (const double corner : {-1.0, 4.0}) {
        // Kershaw's: 3 -2 0 2 / -2 3 -2 0 / 0 -2 3 -2 / 2 0 -2 3, with `corner` 4 nothing is lost
        peers::CsrMatrix lower;
        lower.rows = lower.columns = 4;
        lower.ptr = {0, 1, 3, 5, 8};
        lower.col = {0, 0, 1, 1, 2, 0, 2, 3};
        lower.val = {3, -2, 3, -2, 3, 2, -2, 3};
        if (corner > 0)
            for (const size_t k : {0u, 2u, 4u, 7u}) lower.val[k] = 3 + corner;
        const tool::IncompleteCholesky cholesky(lower);
        EXPECT_EQ(cholesky.shift() > 0, corner < 0);
        const peers::CsrMatrix& g = cholesky.factor();
        ASSERT_EQ(g.col, lower.col);
        double dense[4][4] = {};
        for (size_t i = 0; i < 4; ++i)
            for (auto k = static_cast<size_t>(g.ptr[i]); k < static_cast<size_t>(g.ptr[i + 1]); ++k)
                dense[i][g.col[k]] = g.val[k];
        for (size_t i = 0; i < 4; ++i)
            for (auto k = static_cast<size_t>(lower.ptr[i]); k < static_cast<size_t>(lower.ptr[i + 1]); ++k) {
                const auto j = static_cast<size_t>(lower.col[k]);
                double sum = 0;
                for (size_t l = 0; l < 4; ++l) sum += dense[i][l] * dense[j][l];
                EXPECT_NEAR(sum, lower.val[k] * (i == j ? 1 + cholesky.shift() : 1), 1e-14);
            }
    }
}

} // namespace
