// SPDX-License-Identifier: MIT
// Sums and products of handles against dense ones; stages, threads, errors.
#include <cmath>
#include <cstring>

#include "ork/ork.h"
#include "stored.h"
#include "support/kernel_case.h"

namespace ork::test {
namespace {

template <class C>
class ProductsOfHandles : public testing::Test {
};
TYPED_TEST_SUITE(ProductsOfHandles, Cases, CaseNames);

template <class T>
Dense<T> operator*(const Dense<T>& a, const Dense<T>& b)
{
    Dense<T> c(a.rows, b.cols);
    for (Index i = 0; i < a.rows; ++i)
        for (Index j = 0; j < b.cols; ++j)
            for (Index k = 0; k < a.cols; ++k) c.at(i, j) += a.at(i, k) * b.at(k, j);
    return c;
}
// alpha A + beta B
template <class T>
Dense<T> sum(T alpha, Dense<T> a, T beta, const Dense<T>& b)
{
    for (std::size_t k = 0; k < a.values.size(); ++k) a.values[k] = alpha * a.values[k] + beta * b.values[k];
    return a;
}
// What is in the upper triangle, or in blocks on and above the diagonal ones.
template <class T>
Dense<T> upper(Dense<T> a, Index block = 1)
{
    for (Index i = 0; i < a.rows; ++i)
        for (Index j = 0; j < i / block * block; ++j) a.at(i, j) = T(0);
    return a;
}

// The handle as a dense matrix; its rows must ascend.
template <class Int, class T>
Dense<T> read(ork_sparse_matrix_t c, Format format)
{
    const auto s = exported<Int, T>(c, format);
    for (std::size_t i = 0; i < s.first.size(); ++i)
        for (Index k = s.first[i] - s.form.base + 1; k < s.last[i] - s.form.base; ++k)
            EXPECT_LT(s.index[static_cast<std::size_t>(k) - 1], s.index[static_cast<std::size_t>(k)]);
    return s.dense();
}

Format format_of_product(Format a) { return a == Format::coo ? Format::csr : a; }
Format format_of_square(Format a) { return a == Format::bsr ? a : Format::csr; }

#define ASSERT_DONE(call) ASSERT_EQ(call, ORK_SPARSE_SUCCESS) << ork_sparse_last_error()->text

TYPED_TEST(ProductsOfHandles, MatchDenseOnes)
{
    using Int = typename TypeParam::Int;
    using T = typename TypeParam::T;
    Random random(1);
    const auto pick = [&](auto&... operations) {
        ((operations = ork_spblas_operation(random.integer(111, 114))), ...);
    };
    for (int round = 0; round < 80; ++round) {
        ork_spblas_operation op_a, op_b;
        pick(op_a, op_b);
        Form fa = random_form(random, 9, false), fb = random_form(random, 9, false);
        if (fa.format == Format::bsr || fb.format == Format::bsr) {
            fa.format = fb.format = Format::bsr;
            fb.block = fa.block;
        }
        // The inner sizes agree.
        (is_transposed(op_b) ? fb.cols : fb.rows) = is_transposed(op_a) ? fa.rows : fa.cols;
        SCOPED_TRACE("round " + std::to_string(round) + ": formats " + std::to_string(static_cast<int>(fa.format)) +
                     std::to_string(static_cast<int>(fb.format)) + " ops " + std::to_string(op_a) + ' ' +
                     std::to_string(op_b));
        const Stored<Int, T> sa(fa, random), sb(fb, random);
        const Handle a(sa), b(sb);
        const Dense<T> da = sa.dense().operated(op_a), db = sb.dense().operated(op_b), want = da * db;
        Handle c;
        ASSERT_DONE(ork_sparse_sp2m(op_a, general_kind, a, op_b, general_kind, b, ORK_SPARSE_FULL, c.result()));
        ASSERT_EQ((read<Int, T>(c, format_of_product(fa.format))), want);
        if (op_b == ORK_SPBLAS_NO_TRANS) {
            Handle same;
            ASSERT_DONE(ork_sparse_spmm(op_a, a, b, same.result()));
            ASSERT_EQ((read<Int, T>(same, format_of_product(fa.format))), want);
        }

        const ork_spblas_layout layout = round % 2 ? ORK_SPBLAS_ROW_MAJOR : ORK_SPBLAS_COL_MAJOR;
        const T alpha = some<T>(random.integer(0, 1) ? 1 : -2, random.integer(0, 1)),
                beta = some<T>(round % 3, 1 - round % 3 % 2);
        // In the layout, with a leading dimension of one more than need be, against `expected` in column-major order.
        const auto expect_dense = [&](const Dense<T>& expected, bool triangle, auto run) {
            const Index m = expected.rows, n = expected.cols, by_rows = layout == ORK_SPBLAS_ROW_MAJOR;
            const Index ld = (by_rows ? n : m) + 1;
            std::vector<T> d(static_cast<std::size_t>((by_rows ? m : n) * ld), T(3));
            run(d.data(), ld);
            for (Index i = 0; i < m; ++i)
                for (Index j = 0; j < n; ++j) {
                    const T got = d[static_cast<std::size_t>(by_rows ? i * ld + j : j * ld + i)];
                    ASSERT_EQ(got, triangle && j < i ? T(3) : alpha * expected.at(i, j) + beta * T(3)) << i << ' ' << j;
                }
        };
        const auto scalar_alpha = scalar_argument(alpha), scalar_beta = scalar_argument(beta);
        expect_dense(want, false, [&](T* d, Index ld) {
            ASSERT_DONE(call<T>("spmmd", op_a, ork_sparse_matrix_t(a), op_b, ork_sparse_matrix_t(b), scalar_alpha,
                                scalar_beta, layout, d, ld));
        });

        // Squares and triple products, of A as it is or transposed.
        const bool transposed = is_transposed(op_a);
        const auto op = transposed ? op_a : ORK_SPBLAS_NO_TRANS;
        const Dense<T> left = transposed ? sa.dense().operated(ORK_SPBLAS_CONJ_TRANS) : sa.dense(),
                       right = left.operated(ORK_SPBLAS_CONJ_TRANS);
        const Index block = fa.block;
        Handle square;
        ASSERT_DONE(ork_sparse_syrk(op, a, square.result()));
        ASSERT_EQ((read<Int, T>(square, format_of_square(fa.format))), upper(left * right, block));
        expect_dense(left * right, true, [&](T* d, Index ld) {
            ASSERT_DONE(call<T>("syrkd", op, ork_sparse_matrix_t(a), scalar_alpha, scalar_beta, layout, d, ld));
        });

        Form fm = fb;
        fm.rows = fm.cols = transposed ? fa.rows : fa.cols;
        if (fm.format == Format::coo) fm.format = Format::csc;
        Stored<Int, T> sm(fm, random);
        const Handle m(sm);
        for (const auto type : {ORK_SPBLAS_SYMMETRIC, ORK_SPBLAS_HERMITIAN}) {
            if (type == ORK_SPBLAS_HERMITIAN && !is_complex<T>) continue;
            const ork_sparse_kind kind = {type, round % 4 < 2 ? ORK_SPBLAS_UPPER : ORK_SPBLAS_LOWER,
                                          ORK_SPBLAS_NON_UNIT};
            Handle triple;
            ASSERT_DONE(ork_sparse_sypr(op, a, m, kind, ORK_SPARSE_FULL, triple.result()));
            ASSERT_EQ((read<Int, T>(triple, format_of_square(fa.format))),
                      upper(left * (sm.dense().of_kind(kind) * right), block));
        }
        Dense<T> middle = sm.dense();
        const ork_sparse_kind kind = {
            is_complex<T> ? ORK_SPBLAS_HERMITIAN : ORK_SPBLAS_SYMMETRIC, ORK_SPBLAS_UPPER, {}};
        expect_dense(
            left * (middle.of_kind({kind.type, kind.uplo, ORK_SPBLAS_NON_UNIT}) * right), true, [&](T* d, Index ld) {
                ASSERT_DONE(call<T>("syprd", op, ork_sparse_matrix_t(a), static_cast<const T*>(middle.values.data()),
                                    ORK_SPBLAS_COL_MAJOR, std::max<Index>(middle.rows, 1), scalar_alpha, scalar_beta, d,
                                    layout, ld));
            });
        if (testing::Test::HasFatalFailure()) return;
    }
}

TYPED_TEST(ProductsOfHandles, SumsMatchDenseOnes)
{
    using Int = typename TypeParam::Int;
    using T = typename TypeParam::T;
    Random random(2);
    for (int round = 0; round < 80; ++round) {
        const auto op = ork_spblas_operation(random.integer(111, 114));
        Form fa = random_form(random, 9, false), fb = random_form(random, 9, false);
        fa.format = fb.format = round % 2 ? Format::bsr : Format::csr;
        fb.block = fa.block = round % 2 ? fa.block : 1;
        fb.rows = is_transposed(op) ? fa.cols : fa.rows, fb.cols = is_transposed(op) ? fa.rows : fa.cols;
        const Stored<Int, T> sa(fa, random), sb(fb, random);
        const Handle a(sa), b(sb);
        const T alpha = some<T>(round % 3 - 1, round % 5 - 2);
        Handle c;
        ASSERT_DONE(
            call<T>("add", op, ork_sparse_matrix_t(a), scalar_argument(alpha), ork_sparse_matrix_t(b), c.result()));
        const auto s = exported<Int, T>(c, fa.format);
        ASSERT_EQ(s.dense(), sum(alpha, sa.dense().operated(op), T(1), sb.dense()));
        ASSERT_GE(s.entries, sb.entries) << "entries of B, or with alpha = 0 those of A, were dropped";
    }
}

// Counted, finished, and again with other values in the arrays of the factors; the arrays of C stay where they are.
TYPED_TEST(ProductsOfHandles, InStages)
{
    using Int = typename TypeParam::Int;
    using T = typename TypeParam::T;
    Random random(3);
    for (const Format format : {Format::csr, Format::csc, Format::bsr}) {
        Form f{format, 40, 40, 1, format == Format::bsr ? 3 : 1};
        Stored<Int, T> sa(f, random), sb(f, random);
        const Handle a(sa), b(sb);
        const ork_sparse_kind kind = {ORK_SPBLAS_SYMMETRIC, ORK_SPBLAS_UPPER, ORK_SPBLAS_NON_UNIT};
        for (const bool triple : {false, true}) {
            const auto run = [&](ork_sparse_stage stage, ork_sparse_matrix_t* c) {
                return triple ? ork_sparse_sypr(ORK_SPBLAS_TRANS, a, b, kind, stage, c)
                              : ork_sparse_sp2m(ORK_SPBLAS_NO_TRANS, general_kind, a, ORK_SPBLAS_TRANS, general_kind, b,
                                                stage, c);
            };
            const Format of_c = triple ? format_of_square(format) : format;
            const auto fresh = [&] {
                Handle c;
                EXPECT_EQ(run(ORK_SPARSE_FULL, c.result()), 0);
                return read<Int, T>(c, of_c);
            };
            const auto fill = [&] {
                for (T& v : sa.values) v = small_integer<T>(random);
                for (T& v : sb.values) v = small_integer<T>(random);
            };
            Handle counted, zeros;
            ASSERT_DONE(run(ORK_SPARSE_COUNT, counted.result()));
            ASSERT_DONE(run(ORK_SPARSE_FULL_NO_VALUES, zeros.result()));
            const auto numbers = exported<Int, T>(counted, of_c), pattern = exported<Int, T>(zeros, of_c);
            EXPECT_EQ(numbers.last, pattern.last);
            EXPECT_EQ(std::count(pattern.values.begin(), pattern.values.end(), T(0)), Index(pattern.values.size()));
            EXPECT_EQ(numbers.dense(), pattern.dense()) << "what is counted alone is a matrix of zeros";
            fill();
            ASSERT_DONE(run(ORK_SPARSE_FINALIZE, counted.result()));
            ASSERT_DONE(run(ORK_SPARSE_FINALIZE_NO_VALUES, zeros.result()));
            EXPECT_EQ((exported<Int, T>(zeros, of_c).values), pattern.values);
            ASSERT_DONE(run(ORK_SPARSE_FINALIZE, zeros.result()));
            for (int again = 0; again < 2; ++again) {
                EXPECT_EQ((read<Int, T>(counted, of_c)), fresh());
                EXPECT_EQ((read<Int, T>(zeros, of_c)), fresh());
                EXPECT_EQ((exported<Int, T>(counted, of_c).index), pattern.index);
                fill();
                ASSERT_DONE(run(ORK_SPARSE_FINALIZE, counted.result()));
                ASSERT_DONE(run(ORK_SPARSE_FINALIZE, zeros.result()));
            }
        }
    }
}

// Values over twenty binary orders, so that another order of additions gives other bits.
TEST(ProductsOfHandles, HaveTheSameBitsOnAnyNumberOfThreads)
{
    using T = cdouble;
    using Int = std::int32_t;
    Random random(4);
    Form f{Format::csr, 3000, 3000};
    const auto make = [&] {
        Stored<Int, T> s(f, random);
        for (T& v : s.values) v = random.spread<T>(20);
        return s;
    };
    const auto sa = make(), sb = make();
    const Handle a(sa), b(sb);
    const ork_sparse_kind kind = {ORK_SPBLAS_HERMITIAN, ORK_SPBLAS_UPPER, ORK_SPBLAS_NON_UNIT};
    const T one = 1, alpha = {0.3, -0.7};
    std::vector<Stored<Int, T>> first;
    std::vector<T> first_dense;
    const int before = ork_set_num_threads_local(1);
    for (const int threads : {1, 2, 3, 5}) {
        ork_set_num_threads_local(threads);
        Handle c[5];
        ASSERT_DONE(ork_sparse_spmm(ORK_SPBLAS_NO_TRANS, a, b, c[0].result()));
        ASSERT_DONE(ork_sparse_spmm(ORK_SPBLAS_CONJ_TRANS, a, b, c[1].result()));
        ASSERT_DONE(ork_sparse_syrk(ORK_SPBLAS_NO_TRANS, a, c[2].result()));
        ASSERT_DONE(ork_sparse_sypr(ORK_SPBLAS_TRANS, a, b, kind, ORK_SPARSE_FULL, c[3].result()));
        ASSERT_DONE(ork_sparse_z_add(ORK_SPBLAS_TRANS, a, &alpha, b, c[4].result()));
        std::vector<Stored<Int, T>> all;
        for (const Handle& handle : c) all.push_back(exported<Int, T>(handle, Format::csr));
        std::vector<T> dense(3000 * 3000, 1);
        ASSERT_DONE(
            ork_sparse_z_syrkd(ORK_SPBLAS_CONJ_TRANS, a, &alpha, &one, ORK_SPBLAS_ROW_MAJOR, dense.data(), 3000));
        if (threads == 1) first = all, first_dense = dense;
        for (std::size_t k = 0; k < all.size(); ++k) {
            EXPECT_EQ(all[k].last, first[k].last);
            EXPECT_EQ(all[k].index, first[k].index);
            EXPECT_EQ(std::memcmp(all[k].values.data(), first[k].values.data(), all[k].values.size() * sizeof(T)), 0)
                << k;
        }
        EXPECT_EQ(std::memcmp(dense.data(), first_dense.data(), dense.size() * sizeof(T)), 0);
    }
    ork_set_num_threads_local(before);
}

TEST(ProductsOfHandles, WhatDoesNotFitIsRefused)
{
    using T = double;
    using Int = std::int32_t;
    Random random(5);
    const Handle a(Stored<Int, T>({Format::csr, 4, 5}, random)),
        wide(Stored<std::int64_t, T>({Format::csr, 5, 4}, random)),
        single(Stored<Int, float>({Format::csr, 5, 4}, random)), coo(Stored<Int, T>({Format::coo, 4, 5}, random)),
        blocks(Stored<Int, T>({Format::bsr, 5, 4, 0, 2}, random)), b(Stored<Int, T>({Format::csr, 5, 4}, random));
    const auto n = ORK_SPBLAS_NO_TRANS;
    ork_sparse_matrix_t c = nullptr;
    const auto expect = [&](std::int64_t status, std::int64_t wanted, int argument) {
        EXPECT_EQ(status, wanted) << ork_sparse_last_error()->text;
        EXPECT_EQ(ork_sparse_last_error()->argument, argument) << ork_sparse_last_error()->text;
        EXPECT_EQ(c, nullptr);
    };
    expect(ork_sparse_spmm(n, a, a, &c), ORK_SPARSE_MISMATCH, 3);
    expect(ork_sparse_spmm(n, a, wide, &c), ORK_SPARSE_MISMATCH, 3);
    expect(ork_sparse_spmm(n, a, single, &c), ORK_SPARSE_MISMATCH, 3);
    expect(ork_sparse_spmm(n, a, blocks, &c), ORK_SPARSE_MISMATCH, 3);
    expect(ork_sparse_spmm(static_cast<ork_spblas_operation>(7), a, b, &c), ORK_SPARSE_INVALID_ARGUMENT, 1);
    expect(ork_sparse_spmm(n, nullptr, b, &c), ORK_SPARSE_NOT_A_HANDLE, 2);
    expect(ork_sparse_spmm(n, a, b, nullptr), ORK_SPARSE_INVALID_ARGUMENT, 4);
    const ork_sparse_kind lower = {ORK_SPBLAS_TRIANGULAR, ORK_SPBLAS_LOWER, ORK_SPBLAS_NON_UNIT};
    expect(ork_sparse_sp2m(n, lower, a, n, general_kind, b, ORK_SPARSE_FULL, &c), ORK_SPARSE_NOT_SUPPORTED, 2);
    expect(ork_sparse_sp2m(n, general_kind, a, n, general_kind, b, static_cast<ork_sparse_stage>(9), &c),
           ORK_SPARSE_INVALID_ARGUMENT, 7);
    expect(ork_sparse_sp2m(n, general_kind, a, n, general_kind, b, ORK_SPARSE_FINALIZE, &c), ORK_SPARSE_NOT_A_HANDLE,
           8);
    ork_sparse_matrix_t borrowed = a;
    EXPECT_EQ(ork_sparse_sp2m(n, general_kind, a, n, general_kind, b, ORK_SPARSE_FINALIZE, &borrowed),
              ORK_SPARSE_MISMATCH);
    expect(ork_sparse_sypr(n, a, b, general_kind, ORK_SPARSE_FULL, &c), ORK_SPARSE_NOT_SUPPORTED, 4);
    expect(ork_sparse_d_add(n, coo, 1.0, coo, &c), ORK_SPARSE_NOT_SUPPORTED, 2);
    expect(ork_sparse_d_add(n, a, 1.0, b, &c), ORK_SPARSE_MISMATCH, 4);
    double d[16] = {};
    expect(ork_sparse_d_spmmd(n, a, n, b, 1, 0, ORK_SPBLAS_ROW_MAJOR, d, 3), ORK_SPARSE_INVALID_ARGUMENT, 9);
    expect(ork_sparse_s_spmmd(n, a, n, b, 1, 0, ORK_SPBLAS_ROW_MAJOR, nullptr, 4), ORK_SPARSE_MISMATCH, 2);
    expect(ork_sparse_d_syrkd(n, a, 1, 0, static_cast<ork_spblas_layout>(1), d, 4), ORK_SPARSE_INVALID_ARGUMENT, 5);
    expect(ork_sparse_d_syprd(n, a, d, ORK_SPBLAS_ROW_MAJOR, 4, 1, 0, d, ORK_SPBLAS_ROW_MAJOR, 4),
           ORK_SPARSE_INVALID_ARGUMENT, 5);
}

// 2^20 rows with each of 2049 columns are more than 32 bits count; counting alone shows it.
TEST(ProductsOfHandles, WithMoreEntriesThanIndicesCountAreRefused)
{
    constexpr std::int32_t rows = 1 << 20, cols = 2049;
    std::vector<std::int32_t> pointers(rows + 1), zeros(rows, 0), columns(cols);
    for (int i = 0; i <= rows; ++i) pointers[static_cast<std::size_t>(i)] = i;
    for (int j = 0; j < cols; ++j) columns[static_cast<std::size_t>(j)] = j;
    const std::int32_t ends[] = {0, cols};
    const std::vector<double> values(rows, 1);
    Handle a, b;
    ASSERT_DONE(ork_sparse_d_create_csr_i4(a.result(), ORK_SPBLAS_BASE_0, rows, 1, pointers.data(), pointers.data() + 1,
                                           zeros.data(), values.data()));
    ASSERT_DONE(ork_sparse_d_create_csr_i4(b.result(), ORK_SPBLAS_BASE_0, 1, cols, ends, ends + 1, columns.data(),
                                           values.data()));
    ork_sparse_matrix_t c = nullptr;
    EXPECT_EQ(ork_sparse_spmm(ORK_SPBLAS_NO_TRANS, a, b, &c), ORK_SPARSE_NOT_SUPPORTED)
        << ork_sparse_last_error()->text;
    EXPECT_EQ(c, nullptr);
}

} // namespace
} // namespace ork::test
