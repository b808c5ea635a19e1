// SPDX-License-Identifier: MIT
// What is refused: each wrong argument by its name and position, each fault of the arrays by where it stands. Outputs
// stay as they are, and nothing is printed.
#include <cstdlib>
#include <thread>

#include "call.h"
#include "support/process.h"

namespace ork::test {
namespace {

using Int = std::int64_t;
constexpr ork_spblas_kind general = {ORK_SPBLAS_GENERAL, {}, {}, ORK_SPBLAS_BASE_0};
constexpr ork_spblas_kind lower = {ORK_SPBLAS_TRIANGULAR, ORK_SPBLAS_LOWER, ORK_SPBLAS_NON_UNIT, ORK_SPBLAS_BASE_0};
constexpr ork_spblas_kind upper = {ORK_SPBLAS_TRIANGULAR, ORK_SPBLAS_UPPER, ORK_SPBLAS_NON_UNIT, ORK_SPBLAS_BASE_0};
constexpr ork_spblas_kind diagonal = {ORK_SPBLAS_DIAGONAL, {}, ORK_SPBLAS_NON_UNIT, ORK_SPBLAS_BASE_0};

struct Checking {
    Checking() : before(ork_spblas_set_checking(1)) {}
    ~Checking() { ork_spblas_set_checking(before); }
    int before;
};

// A call that is right but for what a test changes in it. Arrays have room for what any format may hold.
struct Attempt {
    const char* format = "csr";
    const char* routine = "mv";
    int op = ORK_SPBLAS_NO_TRANS, layout = ORK_SPBLAS_ROW_MAJOR;
    ork_spblas_kind kind = general;
    Int m = 3, n = 3, nrhs = 2, ldb = 3, ldc = 3, number = 1, lval = 3;
    bool val = true, indx = true, begin = true, end = true, b = true, c = true;
    std::vector<Int> indices = {0, 1, 2}, first = {0, 1, 2, 3},
                     last = {1, 2, 3}; // coo: rows in indices, columns in first
    std::vector<double> values = {1, 2, 3};

    std::int64_t run()
    {
        std::vector<double> x(9, 1), y(9, 7);
        const double* v = val ? values.data() : nullptr;
        const Int *i = indx ? indices.data() : nullptr, *f = begin ? first.data() : nullptr,
                  *l = end ? last.data() : nullptr;
        const std::string name = std::string(format) + routine, f3 = format;
        const auto whole = [&](auto... a) {
            const double *from = b ? x.data() : nullptr, alpha = 1, beta = 1;
            double* to = c ? y.data() : nullptr;
            switch (routine[0] * 256 + routine[1]) {
            case 'm' * 256 + 'v':
                return call_public<Int, double>(name, op, kind, m, n, alpha, a..., from, beta, to);
            case 'm' * 256 + 'm':
                return call_public<Int, double>(name, op, kind, layout, m, n, nrhs, alpha, a..., from, ldb, beta, to,
                                                ldc);
            case 's' * 256 + 'v':
                return call_public<Int, double>(name, op, kind, m, n, alpha, a..., from, to);
            default:
                return call_public<Int, double>(name, op, kind, layout, m, n, nrhs, alpha, a..., from, ldb, to, ldc);
            }
        };
        const std::int64_t status = f3 == "csr"   ? whole(v, i, f, l)
                                    : f3 == "coo" ? whole(v, i, f, number)
                                    : f3 == "dia" ? whole(v, lval, i, number)
                                    : f3 == "sky" ? whole(v, f)
                                                  : whole(number, v, i, f, l);
        if (status != ORK_SPBLAS_SUCCESS) {
            EXPECT_EQ(y, std::vector<double>(9, 7)) << "an output was changed";
        }
        return status;
    }
};

// The first in this file: a process looks at the environment once.
TEST(SparseErrors, AreKeptForEachThreadAndPrintNothing)
{
    const ChildResult child = run_child([] {
        setenv("ORK_SPARSE_CHECK", "1", 1);
        if (ork_spblas_last_error()->status != ORK_SPBLAS_SUCCESS) return 1;
        Attempt broken, wrong;
        broken.indices[0] = 3;
        wrong.m = -1;
        if (broken.run() != ORK_SPBLAS_INVALID_STRUCTURE) return 2; // by the environment
        int status = 0;
        std::thread([&] {
            if (ork_spblas_last_error()->status != ORK_SPBLAS_SUCCESS) status = 3;
            if (wrong.run() != ORK_SPBLAS_INVALID_ARGUMENT) status = 4;
            if (ork_spblas_last_error()->argument != 3) status = 5;
        }).join();
        if (status) return status;
        if (ork_spblas_last_error()->argument != 7) return 6;
        if (ork_spblas_set_checking(0) != 1) return 7;
        broken.indices[0] = 0;
        return broken.run() == ORK_SPBLAS_SUCCESS && ork_spblas_last_error()->argument == 7 ? 0 : 8; // until the next
    });
    EXPECT_TRUE(child.ok()) << child.describe();
    EXPECT_EQ(child.out + child.err, "");
}

struct Wrong {
    void (*change)(Attempt&);
    std::int64_t position;
    const char* text;
};

TEST(SparseArguments, AreNamedWithPositionAndValue)
{
    const Wrong table[] = {
        {[](Attempt& a) { a.op = 110; }, 1, "ork_spblas_dcsrmv: argument 1 (op) is 110: operations are 111 to 114"},
        {[](Attempt& a) { a.kind.type = ork_spblas_type(6); }, 2, "(kind.type) is 6: types are 0 to 5"},
        {[](Attempt& a) { a.kind = lower, a.kind.type = ORK_SPBLAS_HERMITIAN; }, 2, "(kind.type) is 2: a real matrix"},
        {[](Attempt& a) { a.format = "sky"; }, 2, "ork_spblas_dskymv: argument 2 (kind.type) is 0: a skyline"},
        {[](Attempt& a) { a.routine = "sv"; }, 2, "ork_spblas_dcsrsv: argument 2 (kind.type) is 0: solves are for"},
        {[](Attempt& a) { a.kind = lower, a.kind.uplo = {}; }, 2, "(kind.uplo) is 0: 121 is upper, 122 lower"},
        {[](Attempt& a) { a.kind = lower, a.kind.diag = {}; }, 2, "(kind.diag) is 0: 131 is non-unit, 132 unit"},
        {[](Attempt& a) { a.kind = diagonal, a.kind.diag = {}; }, 2, "(kind.diag) is 0"},
        {[](Attempt& a) { a.kind.base = ork_spblas_base(2); }, 2, "(kind.base) is 2: bases are 0 and 1"},
        {[](Attempt& a) { a.routine = "mm", a.layout = 0; }, 3, "ork_spblas_dcsrmm: argument 3 (layout) is 0: 101 is"},
        {[](Attempt& a) { a.m = -1; }, 3, "(m) is -1: negative"},
        {[](Attempt& a) { a.routine = "mm", a.m = -1; }, 4, "(m) is -1: negative"},
        {[](Attempt& a) { a.n = -5; }, 4, "(n) is -5: negative"},
        {[](Attempt& a) { a.kind = lower, a.n = 4; }, 4, "(n) is 4: all but general matrices are square"},
        {[](Attempt& a) { a.routine = "mm", a.nrhs = -2; }, 6, "(nrhs) is -2: negative"},
        {[](Attempt& a) { a.val = false; }, 6, "argument 6 (val) is a null pointer"},
        {[](Attempt& a) { a.indx = false; }, 7, "(indx) is a null pointer"},
        {[](Attempt& a) { a.begin = false; }, 8, "(pntrb) is a null pointer"},
        {[](Attempt& a) { a.end = false; }, 9, "(pntre) is a null pointer"},
        {[](Attempt& a) { a.b = false; }, 10, "(x) is a null pointer"},
        {[](Attempt& a) { a.c = false; }, 12, "(y) is a null pointer"},
        {[](Attempt& a) { a.routine = "sv", a.kind = lower, a.c = false; }, 11, "(y) is a null pointer"},
        {[](Attempt& a) { a.routine = "mm", a.ldb = 1; }, 13, "(ldb) is 1: less than nrhs"},
        {[](Attempt& a) { a.routine = "mm", a.layout = ORK_SPBLAS_COL_MAJOR, a.ldb = 2; }, 13,
         "(ldb) is 2: less than the"},
        {[](Attempt& a) { a.routine = "mm", a.ldc = 1; }, 16, "(ldc) is 1: less than nrhs"},
        {[](Attempt& a) { a.routine = "sm", a.kind = lower, a.b = false; }, 12,
         "ork_spblas_dcsrsm: argument 12 (b) is"},
        {[](Attempt& a) { a.routine = "sm", a.kind = lower, a.ldc = 1; }, 15, "(ldc) is 1"},
        {[](Attempt& a) { a.format = "bsr", a.number = 0; }, 6, "(lb) is 0: the order of a block is at least 1"},
        {[](Attempt& a) { a.format = "bsc", a.number = INT64_MAX / 2; }, 6, "(lb) is 4611686018427387903: the matrix"},
        {[](Attempt& a) { a.format = "bsc", a.val = false; }, 7, "ork_spblas_dbscmv: argument 7 (val) is a null"},
        {[](Attempt& a) { a.format = "coo", a.number = -1; }, 9, "(nnz) is -1: negative"},
        {[](Attempt& a) { a.format = "coo", a.begin = false; }, 8, "(colind) is a null pointer"},
        {[](Attempt& a) { a.format = "dia", a.lval = 2; }, 7, "(lval) is 2: a diagonal has room for m numbers"},
        {[](Attempt& a) { a.format = "dia", a.number = -1; }, 9, "(ndiag) is -1: negative"},
        {[](Attempt& a) { a.format = "sky", a.kind = lower, a.begin = false; }, 7, "(pntr) is a null pointer"},
    };
    for (const Wrong& wrong : table) {
        Attempt attempt;
        wrong.change(attempt);
        SCOPED_TRACE(wrong.text);
        EXPECT_EQ(attempt.run(), ORK_SPBLAS_INVALID_ARGUMENT);
        const ork_spblas_error& error = *ork_spblas_last_error();
        EXPECT_EQ(error.status, ORK_SPBLAS_INVALID_ARGUMENT);
        EXPECT_EQ(error.argument, wrong.position);
        EXPECT_EQ(error.position, -1);
        EXPECT_NE(std::string(error.text).find(wrong.text), std::string::npos) << error.text;
    }
    // A complex scalar is an address.
    std::complex<float> y;
    EXPECT_EQ(ork_spblas_lp64_cskymv(ORK_SPBLAS_CONJ, lower, 0, 0, nullptr, nullptr, nullptr, &y, nullptr, &y),
              ORK_SPBLAS_INVALID_ARGUMENT);
    EXPECT_STREQ(ork_spblas_last_error()->text, "ork_spblas_lp64_cskymv: argument 5 (alpha) is a null pointer");
}

struct Broken {
    const char *format, *routine;
    ork_spblas_kind kind;
    void (*change)(Attempt&);
    std::int64_t argument, row, position, value;
    const char* text;
};

TEST(SparseStructure, IsCheckedInCheckingModeWithRowAndPosition)
{
    const Broken table[] = {
        {"csr", "mv", general, [](Attempt& a) { a.indices[1] = 4000; }, 7, 1, 1, 4000,
         "ork_spblas_dcsrmv: indx[1] = 4000 in row 1: columns run from 0 to 2"},
        {"csr", "mm", general, [](Attempt& a) { a.indices[2] = -1; }, 9, 2, 2, -1,
         "dcsrmm: indx[2] = -1 in row 2: col"},
        {"csr", "mv", general, [](Attempt& a) { a.kind.base = ORK_SPBLAS_BASE_1; }, 7, 1, 0, 0,
         "indx[0] = 0 in row 1: columns run from 1 to 3"},
        {"csr", "mv", general, [](Attempt& a) { a.first[2] = -1; }, 8, 2, 2, -1,
         "pntrb[2] = -1 in row 2: less than the first, 0"},
        {"csr", "mv", general, [](Attempt& a) { a.last[1] = 0; }, 9, 1, 1, 0,
         "pntre[1] = 0 in row 1: less than its begin, 1"},
        {"csr", "sv", lower,
         [](Attempt& a) {
             a.first = {0, 1, 1}, a.last = {1, 1, 3}, a.indices = {0, 2, 1};
         },
         7, 1, -1, 0, "ork_spblas_dcsrsv: row 1: the diagonal entry is missing"},
        {"csr", "sv", lower,
         [](Attempt& a) {
             a.m = a.n = 2, a.last[1] = 3, a.indices = {0, 1, 0};
         },
         7, 1, 2, 0, "indx[2] = 0 in row 1: not sorted, 1 stands before it"},
        {"csr", "sv", lower,
         [](Attempt& a) {
             a.m = a.n = 2, a.last[1] = 3, a.indices = {0, 1, 1};
         },
         7, 1, 2, 1, "indx[2] = 1 in row 1: the diagonal again, after position 1"},
        {"csr", "sm", lower, [](Attempt& a) { a.values[1] = 0; }, 8, 1, 1, 0,
         "val[1] = 0 in row 1: a zero on the diag"},
        {"csr", "sv", diagonal, [](Attempt& a) { a.values[2] = -0.0; }, 6, 2, 2, 0, "val[2] = 0 in row 2: a zero"},
        {"bsr", "mv", general, [](Attempt& a) { a.indices[0] = 3; }, 8, 0, 0, 3, "indx[0] = 3 in row 0: columns run"},
        {"bsr", "sv", lower,
         [](Attempt& a) {
             a.m = a.n = 1, a.number = 2, a.values = {1, 0, 5, 0};
         },
         7, 0, 3, 0, "val[3] = 0 in row 0: a zero on the diagonal"},
        {"bsc", "mv", general, [](Attempt& a) { a.indices[1] = 3; }, 8, 1, 1, 3, "indx[1] = 3 in column 1: rows run"},
        {"bsc", "sv", upper, [](Attempt& a) { a.indices[1] = 0; }, 8, 1, -1, 0, "column 1: the diagonal entry is miss"},
        {"coo", "mv", general, [](Attempt& a) { a.number = 3, a.indices[1] = 3; }, 7, -1, 1, 3,
         "ork_spblas_dcoomv: rowind[1] = 3: rows run from 0 to 2"},
        {"coo", "mv", general, [](Attempt& a) { a.number = 3, a.first[2] = 9; }, 8, 2, 2, 9,
         "colind[2] = 9 in row 2: columns run from 0 to 2"},
        {"coo", "sv", lower, [](Attempt& a) { a.number = 2; }, 7, 2, -1, 0, "row 2: the diagonal entry is missing"},
        {"coo", "sv", lower, [](Attempt& a) { a.number = 3, a.values[2] = 0; }, 6, 2, 2, 0,
         "val[2] = 0 in row 2: a zero"},
        {"coo", "sv", lower, // not in order: entry 3 stands elsewhere in the copy
         [](Attempt& a) {
             a.number = 3, a.indices = {1, 0, 2}, a.first = {1, 0, 2}, a.values[2] = 0;
         },
         6, 2, -1, 0, "row 2: a zero on the diagonal"},
        {"dia", "mv", general, [](Attempt& a) { a.indices[0] = 3; }, 8, -1, 0, 3,
         "ork_spblas_ddiamv: idiag[0] = 3: diagonals run from -2 to 2"},
        {"dia", "sv", lower, [](Attempt& a) { a.indices[0] = -1; }, 8, -1, -1, 0,
         "ork_spblas_ddiasv: the main diagonal is missing"},
        {"dia", "sv", lower, [](Attempt& a) { a.number = 2, a.indices[1] = 0, a.values.resize(6); }, 8, -1, 1, 0,
         "idiag[1] = 0: the main diagonal again, after idiag[0]"},
        {"dia", "sv", lower, [](Attempt& a) { a.values[1] = 0; }, 6, 1, 1, 0, "val[1] = 0 in row 1: a zero on the"},
        {"sky", "mv", lower, [](Attempt& a) { a.first[2] = 0; }, 7, 1, 2, 0,
         "pntr[2] = 0 in row 1: less than pntr[1] = 1"},
        {"sky", "mv", upper, [](Attempt& a) { a.first[1] = 2; }, 7, 0, 1, 2,
         "pntr[1] = 2 in column 0: more than 1 numbers behind pntr[0] = 0"},
        {"sky", "sv", lower, [](Attempt& a) { a.first[1] = 0; }, 7, 0, -1, 0, "row 0: the diagonal entry is missing"},
        {"sky", "sv", lower, [](Attempt& a) { a.values[2] = 0; }, 6, 2, 2, 0,
         "val[2] = 0 in row 2: a zero on the diag"},
    };
    const Checking checking;
    for (const Broken& broken : table) {
        SCOPED_TRACE(broken.text);
        Attempt attempt;
        attempt.format = broken.format, attempt.routine = broken.routine, attempt.kind = broken.kind;
        if (std::string(broken.format) == "coo") attempt.number = 3;
        EXPECT_EQ(attempt.run(), ORK_SPBLAS_SUCCESS) << ork_spblas_last_error()->text;
        broken.change(attempt);
        EXPECT_EQ(attempt.run(), ORK_SPBLAS_INVALID_STRUCTURE);
        const ork_spblas_error& error = *ork_spblas_last_error();
        EXPECT_EQ(error.status, ORK_SPBLAS_INVALID_STRUCTURE);
        EXPECT_EQ(error.argument, broken.argument);
        EXPECT_EQ(error.row, broken.row);
        EXPECT_EQ(error.position, broken.position);
        EXPECT_EQ(error.value, broken.value);
        EXPECT_NE(std::string(error.text).find(broken.text), std::string::npos) << error.text;
    }
}

// What is allowed though it looks odd.
TEST(SparseStructure, OddOnesArePassed)
{
    const Checking checking;
    ork_spblas_kind unit = lower;
    unit.diag = ORK_SPBLAS_UNIT;
    Attempt gaps, doubled, outside, without_diagonal, short_skyline;
    gaps.first = {5, 8, 6}, gaps.last = {6, 9, 6}, gaps.indices = {0, 77, 77, 2},
    gaps.values.resize(4);                                                            // another order
    doubled.indices = {2, 2, 0}, doubled.last = {2, 2, 3}, doubled.first = {0, 2, 2}; // not sorted
    outside.routine = "sv", outside.kind = lower, outside.first = {0, 2, 3}, outside.last = {2, 3, 4};
    outside.indices = {0, 2, 1, 2}, outside.values = {1, 5, 2, 3}; // an entry of the other triangle
    without_diagonal.routine = "sv", without_diagonal.kind = unit, without_diagonal.indices = {2, 0, 1};
    short_skyline.format = "sky", short_skyline.kind = unit, short_skyline.first = {0, 0, 0, 3};
    for (Attempt* attempt : {&gaps, &doubled, &outside, &without_diagonal, &short_skyline})
        EXPECT_EQ(attempt->run(), ORK_SPBLAS_SUCCESS) << ork_spblas_last_error()->text;
}

} // namespace
} // namespace ork::test
