// SPDX-License-Identifier: MIT
// What is refused, and how it is told: wrong arguments by name and position, handles that are none, faults of the
// structure by row and position. Nothing is changed by a call that fails.
#include <cstring>
#include <functional>
#include <thread>

#include "stored.h"

namespace ork::test {
namespace {

using Matrix = ork_sparse_matrix_t;
constexpr ork_spblas_operation none = ORK_SPBLAS_NO_TRANS;
constexpr ork_sparse_kind lower = {ORK_SPBLAS_TRIANGULAR, ORK_SPBLAS_LOWER, ORK_SPBLAS_NON_UNIT};
constexpr ork_sparse_kind hermitian = {ORK_SPBLAS_HERMITIAN, ORK_SPBLAS_LOWER, ORK_SPBLAS_NON_UNIT};

// 2 x 3:  [ 1 . 2 ]
//         [ . 3 . ]
struct Example {
    std::vector<std::int32_t> first = {0, 2}, last = {2, 3}, index = {0, 2, 1};
    std::vector<double> values = {1, 2, 3};
    std::int32_t rows = 2, cols = 3;
    ork_spblas_base base = ORK_SPBLAS_BASE_0;
    bool has_first = true, has_last = true, has_index = true, has_values = true, has_result = true;

    std::int64_t create(Matrix* a) const
    {
        return ork_sparse_d_create_csr_i4(has_result ? a : nullptr, base, rows, cols,
                                          has_first ? first.data() : nullptr, has_last ? last.data() : nullptr,
                                          has_index ? index.data() : nullptr, has_values ? values.data() : nullptr);
    }
};

struct Told {
    std::int64_t status, argument;
    const char* text; // part of it
};
void expect_told(std::int64_t status, const Told& want)
{
    EXPECT_EQ(status, want.status);
    const ork_sparse_error& e = *ork_sparse_last_error();
    EXPECT_EQ(e.status, want.status) << e.text;
    EXPECT_EQ(e.argument, want.argument) << e.text;
    EXPECT_NE(std::strstr(e.text, want.text), nullptr) << e.text;
}

TEST(SparseArguments, AreRefusedByPosition)
{
    const Example example;
    Handle a, square, large;
    ASSERT_EQ(example.create(a.result()), 0);
    Example three;
    three.cols = 2, three.index = {0, 1, 1};
    ASSERT_EQ(three.create(square.result()), 0);
    const Matrix s = square;
    const std::int32_t pointers[] = {0, 2}, twice[] = {0, 0}; // blocks of 40000 x 40000, of which none is read
    ASSERT_EQ(ork_sparse_d_create_bsr_i4(large.result(), ORK_SPBLAS_BASE_0, ORK_SPBLAS_ROW_MAJOR, 1, 1, 40000, pointers,
                                         pointers + 1, twice, example.values.data()),
              0);
    Matrix c = nullptr;
    double x[8] = {}, y[8] = {7, 7, 7, 7, 7, 7, 7, 7};
    const double* nothing = nullptr;
    const auto row = ORK_SPBLAS_ROW_MAJOR;
    const std::int32_t one[] = {1}, far[] = {5};
    const auto mm = [&](int op, Matrix m, ork_sparse_kind kind, int layout, const double* b, std::int64_t columns,
                        std::int64_t ldb, double* to, std::int64_t ldc) {
        return ork_sparse_d_mm(ork_spblas_operation(op), 1.0, m, kind, ork_spblas_layout(layout), b, columns, ldb, 1.0,
                               to, ldc);
    };
    constexpr std::int64_t wrong = ORK_SPARSE_INVALID_ARGUMENT, mismatched = ORK_SPARSE_MISMATCH;
    const struct {
        Told told;
        std::function<std::int64_t()> call;
    } cases[] = {
        {{wrong, 1, "ork_sparse_d_mm: argument 1 (op) is 110"}, [&] { return mm(110, a, {}, row, x, 2, 2, y, 2); }},
        {{ORK_SPARSE_NOT_A_HANDLE, 3, "null handle"}, [&] { return mm(111, nullptr, {}, row, x, 2, 2, y, 2); }},
        {{wrong, 4, "types are 0 to 5"},
         [&] {
             return mm(111, a, {ork_spblas_type(6), {}, {}}, row, x, 2, 2, y, 2);
         }},
        {{wrong, 4, "not Hermitian"}, [&] { return mm(111, s, hermitian, row, x, 2, 2, y, 2); }},
        {{mismatched, 4, "2 by 3"}, [&] { return mm(111, a, lower, row, x, 2, 2, y, 2); }},
        {{wrong, 5, "101 is row-major"}, [&] { return mm(111, a, {}, 100, x, 2, 2, y, 2); }},
        {{wrong, 6, "(b) is a null pointer"}, [&] { return mm(111, a, {}, row, nullptr, 2, 2, y, 2); }},
        {{wrong, 7, "(columns) is -1"}, [&] { return mm(111, a, {}, row, x, -1, 2, y, 2); }},
        {{wrong, 8, "(ldb) is 1: less than the number of columns, 2"},
         [&] { return mm(111, a, {}, row, x, 2, 1, y, 2); }},
        {{wrong, 8, "less than the number of rows, 3"}, [&] { return mm(111, a, {}, 102, x, 2, 2, y, 2); }},
        {{wrong, 10, "(c) is a null pointer"}, [&] { return mm(111, a, {}, row, x, 2, 2, nullptr, 2); }},
        {{wrong, 11, "less than the number of rows, 3"}, [&] { return mm(112, a, {}, 102, x, 2, 2, y, 2); }},
        {{wrong, 2, "(op) is 115"}, [&] { return ork_sparse_convert_csr(a, ork_spblas_operation(115), &c); }},
        {{wrong, 3, "(result) is a null"}, [&] { return ork_sparse_convert_csc(a, none, nullptr); }},
        {{wrong, 2, "(block) is 0: less than 1"}, [&] { return ork_sparse_convert_bsr(a, 0, row, none, &c); }},
        {{ORK_SPARSE_NO_MEMORY, 0, "memory"}, [&] { return ork_sparse_convert_bsr(a, INT32_MAX, row, none, &c); }},
        {{ORK_SPARSE_NOT_SUPPORTED, 1, "entries than 4-byte integers count"},
         [&] { return ork_sparse_convert_csr(large, none, &c); }},
        {{wrong, 3, "(layout)"}, [&] { return ork_sparse_convert_bsr(a, 2, ork_spblas_layout(0), none, &c); }},
        {{wrong, 2, "(result) is a null"}, [&] { return ork_sparse_copy(a, nullptr); }},
        {{wrong, 4, "less than 0"}, [&] { return ork_sparse_set_mv_hint(a, none, {}, -1); }},
        {{wrong, 2, "sweeps are 1 to 3"}, [&] { return ork_sparse_set_sorv_hint(s, ork_sparse_sweep(0), lower, 1); }},
        {{wrong, 3, "triangular and diagonal"}, [&] { return ork_sparse_set_sv_hint(s, none, {}, 1); }},
        {{wrong, 5, "(columns)"}, [&] { return ork_sparse_set_mm_hint(a, none, {}, row, -1, 1); }},
        {{wrong, 2, "policies"}, [&] { return ork_sparse_set_memory_hint(a, ork_sparse_memory(2)); }},
        {{wrong, 2, "(description)"}, [&] { return ork_sparse_describe(a, nullptr); }},
        {{wrong, 2, "the matrix has 2 rows"}, [&] { return ork_sparse_d_set_value(a, 2, 0, 1); }},
        {{wrong, 3, "less than 0"}, [&] { return ork_sparse_d_set_value(a, 0, -1, 1); }},
        {{wrong, 3, "in row 0 no entry"}, [&] { return ork_sparse_d_set_value(a, 0, 1, 1); }},
        {{mismatched, 2, "3 values"}, [&] { return ork_sparse_d_update_values_i4(a, 2, nullptr, nullptr, x); }},
        {{wrong, 4, "(column_index)"}, [&] { return ork_sparse_d_update_values_i4(a, 1, one, nullptr, x); }},
        {{wrong, 5, "(values)"}, [&] { return ork_sparse_d_update_values_i4(a, 3, nullptr, nullptr, nothing); }},
        {{wrong, 4, "with row 1: no entry"}, [&] { return ork_sparse_d_update_values_i4(a, 1, one, far, x); }},
        // What is of another precision, width or format.
        {{mismatched, 1, "precision d, not s"}, [&] { return ork_sparse_s_set_value(a, 0, 0, 1); }},
        {{mismatched, 1, "indices of 4 bytes, not 8"},
         [&] { return ork_sparse_d_update_values_i8(a, 3, nullptr, nullptr, x); }},
        {{mismatched, 1, "the format csr"},
         [&] { return ork_sparse_d_export_csc_i4(a, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr); }},
    };
    for (const auto& attempt : cases) {
        SCOPED_TRACE(attempt.told.text);
        expect_told(attempt.call(), attempt.told);
    }
    EXPECT_EQ(c, nullptr);
    EXPECT_EQ(std::count(y, y + 8, 7), 8);
    EXPECT_EQ((exported<std::int32_t, double>(a, Format::csr).values), example.values);
}

TEST(SparseStructure, IsRefusedByRowAndPosition)
{
    const struct {
        const char* text;
        std::int64_t status, argument, row, position, value;
        std::function<void(Example&)> break_it;
    } cases[] = {
        {"ork_sparse_d_create_csr_i4: column_index[1] = 3 in row 0: columns run from 0 to 2", 2, 7, 0, 1, 3,
         [](Example& e) { e.index[1] = 3; }},
        {"column_index[2] = -1 in row 1", 2, 7, 1, 2, -1, [](Example& e) { e.index[2] = -1; }},
        {"rows_start[0] = -1 in row 0: less than the base, 0", 2, 5, 0, 0, -1, [](Example& e) { e.first[0] = -1; }},
        {"rows_start[0] = 0 in row 1: less than the base, 1", 2, 5, 1, 0, 0,
         [](Example& e) { e.base = ORK_SPBLAS_BASE_1; }},
        {"rows_start[1] = 1 in row 1: before the end of the row before, 2", 2, 5, 1, 1, 1,
         [](Example& e) { e.first[1] = 1; }},
        {"rows_end[1] = 1 in row 1: less than its begin, 2", 2, 6, 1, 1, 1, [](Example& e) { e.last[1] = 1; }},
        {"argument 1 (a) is a null", 1, 1, -1, -1, 0, [](Example& e) { e.has_result = false; }},
        {"argument 2 (base) is 2", 1, 2, -1, -1, 2, [](Example& e) { e.base = ork_spblas_base(2); }},
        {"argument 3 (rows) is -1", 1, 3, -1, -1, -1, [](Example& e) { e.rows = -1; }},
        {"argument 4 (columns) is -2", 1, 4, -1, -1, -2, [](Example& e) { e.cols = -2; }},
        {"argument 5 (rows_start)", 1, 5, -1, -1, 0, [](Example& e) { e.has_first = false; }},
        {"argument 6 (rows_end)", 1, 6, -1, -1, 0, [](Example& e) { e.has_last = false; }},
        {"argument 7 (column_index)", 1, 7, -1, -1, 0, [](Example& e) { e.has_index = false; }},
        {"argument 8 (values)", 1, 8, -1, -1, 0, [](Example& e) { e.has_values = false; }},
    };
    for (const auto& fault : cases) {
        SCOPED_TRACE(fault.text);
        Example example;
        fault.break_it(example);
        Matrix a = nullptr;
        expect_told(example.create(&a), {fault.status, fault.argument, fault.text});
        EXPECT_EQ(a, nullptr);
        const ork_sparse_error& e = *ork_sparse_last_error();
        EXPECT_EQ(e.row, fault.row);
        EXPECT_EQ(e.position, fault.position);
        EXPECT_EQ(e.value, fault.value);
    }
    // The other formats, with base 1 and 64-bit indices.
    const std::int64_t rows[] = {1, 2, 3}, columns[] = {1, 4, 1}, pointers[] = {1, 2, 2, 3};
    const double values[16] = {};
    Matrix a = nullptr;
    expect_told(ork_sparse_d_create_coo_i8(&a, ORK_SPBLAS_BASE_1, 3, 3, 3, rows, columns, values),
                {2, 7, "column_index[1] = 4 in row 2: columns run from 1 to 3"});
    expect_told(ork_sparse_d_create_coo_i8(&a, ORK_SPBLAS_BASE_1, 2, 4, 3, rows, columns, values),
                {2, 6, "row_index[2] = 3: rows run from 1 to 2"});
    expect_told(ork_sparse_d_create_csc_i8(&a, ORK_SPBLAS_BASE_1, 3, 3, pointers, pointers + 1, columns, values),
                {2, 7, "row_index[1] = 4 in column 3: rows run from 1 to 3"});
    expect_told(ork_sparse_d_create_bsr_i8(&a, ORK_SPBLAS_BASE_1, ORK_SPBLAS_ROW_MAJOR, 3, 3, 2, pointers, pointers + 1,
                                           columns, values),
                {2, 9, "column_index[1] = 4 in row 3"});
    expect_told(ork_sparse_d_create_bsr_i8(&a, ORK_SPBLAS_BASE_1, ork_spblas_layout(7), 3, 3, 2, pointers, pointers + 1,
                                           columns, values),
                {1, 3, "(layout) is 7"});
    expect_told(ork_sparse_d_create_bsr_i8(&a, ORK_SPBLAS_BASE_1, ORK_SPBLAS_ROW_MAJOR, 3, 3, INT64_MAX / 2, pointers,
                                           pointers + 1, columns, values),
                {1, 6, "more rows or columns than"});
    expect_told(ork_sparse_d_create_coo_i8(&a, ORK_SPBLAS_BASE_1, 3, 3, -1, rows, columns, values),
                {1, 5, "(count) is -1"});
    EXPECT_EQ(a, nullptr);
    // Valid edges: nothing at all, and rows without entries.
    for (const std::int64_t size : {0, 3}) {
        const std::int64_t ones[] = {1, 1, 1, 1};
        Handle empty, places;
        EXPECT_EQ(ork_sparse_d_create_csr_i8(empty.result(), ORK_SPBLAS_BASE_1, size, 5, size ? ones : nullptr,
                                             size ? ones + 1 : nullptr, nullptr, nullptr),
                  0);
        EXPECT_EQ(
            ork_sparse_d_create_coo_i8(places.result(), ORK_SPBLAS_BASE_1, size, size, 0, nullptr, nullptr, nullptr),
            0);
    }
}

TEST(SparseHandle, IsRefusedOnceItIsDestroyed)
{
    const Example example;
    std::vector<Matrix> dead;
    for (int round = 0; round < 300; ++round) {
        Matrix a = nullptr;
        ASSERT_EQ(example.create(&a), 0);
        ASSERT_EQ(ork_sparse_optimize(a), 0);
        ASSERT_EQ(ork_sparse_destroy(a), 0);
        dead.push_back(a);
    }
    Handle alive; // in a slot that all of them may have had
    ASSERT_EQ(example.create(alive.result()), 0);
    const int local = 0;
    for (const void* never : {static_cast<const void*>(&local), reinterpret_cast<const void*>(1),
                              reinterpret_cast<const void*>(UINTPTR_MAX)})
        dead.push_back(const_cast<Matrix>(static_cast<const ork_sparse_handle*>(never)));
    for (const Matrix a : dead) {
        Matrix c = nullptr;
        ork_sparse_description d;
        expect_told(ork_sparse_destroy(a), {ORK_SPARSE_NOT_A_HANDLE, 1, "ork_sparse_destroy: argument 1 (a) is no"});
        expect_told(ork_sparse_copy(a, &c), {ORK_SPARSE_NOT_A_HANDLE, 1, "destroyed"});
        EXPECT_EQ(ork_sparse_optimize(a), ORK_SPARSE_NOT_A_HANDLE);
        EXPECT_EQ(ork_sparse_describe(a, &d), ORK_SPARSE_NOT_A_HANDLE);
        EXPECT_EQ(ork_sparse_d_set_value(a, 0, 0, 1), ORK_SPARSE_NOT_A_HANDLE);
    }
    EXPECT_EQ(ork_sparse_order(alive), 0);
}

TEST(SparseErrors, AreKeptForEachThread)
{
    expect_told(ork_sparse_destroy(nullptr), {ORK_SPARSE_NOT_A_HANDLE, 1, "null handle"});
    std::thread([] {
        EXPECT_EQ(ork_sparse_last_error()->status, ORK_SPARSE_SUCCESS);
        EXPECT_STREQ(ork_sparse_last_error()->text, "");
        EXPECT_EQ(ork_sparse_order(nullptr), ORK_SPARSE_NOT_A_HANDLE);
    }).join();
    EXPECT_NE(std::strstr(ork_sparse_last_error()->text, "ork_sparse_destroy"), nullptr);
}

} // namespace
} // namespace ork::test
