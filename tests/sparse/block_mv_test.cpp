// SPDX-License-Identifier: MIT
// Products of square blocks, of dense matrices, and of matrices as they were handed over, against dense ones.
#include <vector>

#include "sparse/kernel.h"
#include "support/compare.h"
#include "support/guarded.h"
#include "support/random.h"

namespace ork::test {
namespace {

using Index = std::int64_t;
using sparse::op_conjugate_transpose;
using sparse::op_none;
using sparse::op_transpose;

// A dense matrix of the terms that a product may add up.
template <class T>
struct Dense {
    Index rows, cols;
    std::vector<Wide<quad>> value;
    Dense(Index rows, Index cols) : rows(rows), cols(cols), value(static_cast<std::size_t>(rows * cols)) {}
    Wide<quad>& operator()(Index i, Index j) { return value[static_cast<std::size_t>(i * cols + j)]; }

    Dense op(int operation) const
    {
        if (operation == op_none) return *this;
        Dense t(cols, rows);
        for (Index i = 0; i < rows; ++i)
            for (Index j = 0; j < cols; ++j) {
                const Wide<quad> v = value[static_cast<std::size_t>(i * cols + j)];
                t(j, i) = operation == op_conjugate_transpose ? conj(v) : v;
            }
        return t;
    }
    // Elements of alpha A x + beta y for x and y with the given strides.
    std::vector<Expected<quad>> times(T alpha, const T* x, Index x_stride, T beta, const T* y, Index y_stride)
    {
        std::vector<Expected<quad>> result;
        for (Index i = 0; i < rows; ++i) {
            Wide<quad> s;
            quad scale = 0;
            for (Index j = 0; j < cols; ++j) {
                const Wide<quad> p = multiply<T>((*this)(i, j), Wide<quad>(x[j * x_stride]));
                s += p, scale += magnitude(p);
            }
            const Wide<quad> old =
                beta == T(0) ? Wide<quad>() : multiply<T>(Wide<quad>(beta), Wide<quad>(y[i * y_stride]));
            result.push_back(
                {multiply<T>(Wide<quad>(alpha), s) + old, 2 * magnitude(Wide<quad>(alpha)) * scale + magnitude(old)});
        }
        return result;
    }
};

// Blocks of a share of block rows, columns in any order and repeated.
template <class Int, class T>
struct Blocks {
    Index rows, cols, block, layout, base;
    std::vector<T> vals;
    std::vector<Int> index;
    std::vector<std::make_unsigned_t<Int>> rows_ptr;

    Blocks(Index rows, Index cols, Index block, Index layout, Index base, Random& random)
        : rows(rows), cols(cols), block(block), layout(layout), base(base), rows_ptr{4}
    {
        for (Index i = 0; i < rows; ++i) {
            const Index length = i == 1 ? 0 : random.integer(0, 4);
            for (Index k = 0; k < length; ++k) index.push_back(static_cast<Int>(random.integer(0, cols - 1) + base));
            rows_ptr.push_back(static_cast<std::make_unsigned_t<Int>>(rows_ptr.back() + length));
        }
        vals = uniform_values<T>(static_cast<Index>(index.size()) * block * block, random.bits());
    }
    // Of the entries (row, column) of the whole matrix for which counts() holds, the share beginning at block row
    // first.
    template <class Counts>
    Dense<T> dense(Index first, Counts counts) const
    {
        Dense<T> a(rows * block, cols * block);
        std::size_t k = 0;
        for (Index i = 0; i < rows; ++i)
            for (Index e = 0; e < Index(rows_ptr[i + 1] - rows_ptr[i]); ++e, ++k)
                for (Index r = 0; r < block; ++r)
                    for (Index c = 0; c < block; ++c) {
                        const Index column = (Index(index[k]) - base) * block + c;
                        if (counts((first + i) * block + r, column))
                            a(i * block + r, column) +=
                                Wide<quad>(vals[k * block * block + (layout == 0 ? r * block + c : c * block + r)]);
                    }
        return a;
    }
};

template <class C>
class SparseBlocks : public testing::Test {
};
TYPED_TEST_SUITE(SparseBlocks, Cases, CaseNames);

TYPED_TEST(SparseBlocks, EveryPartOfTheRows)
{
    using Int = typename TypeParam::Int;
    using T = typename TypeParam::T;
    using Ng = typename sparse::Calls<Int, T>::bsr0ng_n_mv_ker;
    using Nt = typename sparse::Calls<Int, T>::bsr0nt_n_mv_ker;
    const T alpha = some<T>(-1.5f, 0.5f);
    for (Index block = 1; block <= 9; ++block)
        for (const Index layout : {0, 1})
            for (const Index base : {0, 1}) {
                SCOPED_TRACE("block " + std::to_string(block) + ", layout " + std::to_string(layout) + ", base " +
                             std::to_string(base));
                Random random(static_cast<std::uint64_t>(block * 4 + layout * 2 + base));
                const Index rows = 5, first = 2, cols = 8;
                const Blocks<Int, T> a(rows, cols, block, layout, base, random);
                const Guarded<T> vals(a.vals), x(uniform_values<T>(cols * block, 3));
                const auto old = uniform_values<T>(rows * block, 4);
                for (const T beta : {T(0), some<T>(0.5f, -1)}) {
                    const auto check = [&](auto counts, auto* kernel, auto... more) {
                        const auto want = a.dense(first, counts).times(alpha, x.data(), 1, beta, old.data(), 1);
                        Guarded<T> y(beta == T(0) ? std::vector<T>(old.size(), T(NAN)) : old);
                        kernel(first, static_cast<Int>(first + rows), static_cast<Int>(block), static_cast<Int>(layout),
                               alpha, y.data(), x.data(), vals.data(), a.rows_ptr.data(), a.index.data(), beta,
                               more...);
                        expect_near<T>(y, want, 10. * 5 * block);
                    };
                    // A unit diagonal's ones are the matrix's, not of what is stored.
                    const auto ones = [&](auto counts, Int upper) {
                        auto dense = a.dense(first, counts);
                        for (Index i = 0; i < rows * block; ++i) dense(i, first * block + i) = Wide<quad>(quad(1));
                        const auto want = dense.times(alpha, x.data(), 1, beta, old.data(), 1);
                        Guarded<T> y(beta == T(0) ? std::vector<T>(old.size(), T(NAN)) : old);
                        (base == 0 ? KERNEL(bsr0nt_n_mv_ker) : KERNEL(bsr1nt_n_mv_ker))(
                            first, static_cast<Int>(first + rows), static_cast<Int>(block), static_cast<Int>(layout),
                            alpha, y.data(), x.data(), vals.data(), a.rows_ptr.data(), a.index.data(), beta, upper, 1);
                        expect_near<T>(y, want, 10. * 5 * block);
                    };
                    const auto all = [](Index, Index) { return true; };
                    check(all, base == 0 ? KERNEL(bsr0ng_n_mv_ker) : KERNEL(bsr1ng_n_mv_ker));
                    if (base == 0) check(all, KERNEL(bsr_ng_avx512_sp_mv));
                    Ng* const nblt = base == 0 ? KERNEL(bsr0nblt_n_mv_ker) : KERNEL(bsr1nblt_n_mv_ker);
                    check([&](Index i, Index j) { return j / block <= i / block; }, nblt);
                    Nt* const nt = base == 0 ? KERNEL(bsr0nt_n_mv_ker) : KERNEL(bsr1nt_n_mv_ker);
                    check([](Index i, Index j) { return j <= i; }, nt, Int(0), Int(0));
                    check([](Index i, Index j) { return j >= i; }, nt, Int(1), Int(0));
                    ones([](Index i, Index j) { return j < i; }, 0);
                    ones([](Index i, Index j) { return j > i; }, 1);
                }
            }
}

TYPED_TEST(SparseBlocks, DiagonalOfBlocks)
{
    using Int = typename TypeParam::Int;
    using T = typename TypeParam::T;
    const T alpha = some<T>(2, 1);
    for (Index block = 1; block <= 9; ++block)
        for (const Index layout : {0, 1}) {
            const Index rows = 4, first = 1;
            const Guarded<T> vals(uniform_values<T>(rows * block * block, 7)),
                x(uniform_values<T>((first + rows) * block, 8));
            Dense<T> dense(rows * block, (first + rows) * block);
            for (Index i = 0; i < rows; ++i)
                for (Index r = 0; r < block; ++r)
                    for (Index c = 0; c < block; ++c)
                        dense(i * block + r, (first + i) * block + c) =
                            Wide<quad>(vals[i * block * block + (layout == 0 ? r * block + c : c * block + r)]);
            const auto old = uniform_values<T>(rows * block, 4);
            for (const T beta : {T(0), T(2)}) {
                Guarded<T> y(beta == T(0) ? std::vector<T>(old.size(), T(NAN)) : old);
                KERNEL(block_diag_mv_ker)
                (first, static_cast<Int>(first + rows), static_cast<Int>(block), static_cast<Int>(layout), vals.data(),
                 x.data(), y.data(), alpha, beta);
                expect_near<T>(y, dense.times(alpha, x.data(), 1, beta, old.data(), 1), 10. * block);
            }
        }
}

TYPED_TEST(SparseBlocks, DenseOperands)
{
    using Int = typename TypeParam::Int;
    using T = typename TypeParam::T;
    const T alpha = some<T>(1.5f, -0.5f);
    for (const Index block : {1, 2, 3, 5})
        for (const Index columns : {1, 4, 11})
            for (const bool row_major : {true, false})
                for (const Index base : {0, 1}) {
                    Random random(static_cast<std::uint64_t>(block + columns));
                    const Index rows = 5, cols = 6, m = rows * block, n = cols * block, first = 3;
                    const Blocks<Int, T> a(rows, cols, block, row_major ? 0 : 1, base, random);
                    auto dense = a.dense(first, [](Index, Index) { return true; });
                    const Index ldb = (row_major ? columns : n) + 2, ldc = (row_major ? columns : m) + 1;
                    const Guarded<T> b(uniform_values<T>((row_major ? n : columns) * ldb, 3));
                    const auto old = uniform_values<T>((row_major ? m : columns) * ldc, 4);
                    for (const T beta : {T(0), some<T>(-0.5f, 2)}) {
                        Guarded<T> c(old);
                        const auto at = [&](Index i, Index j, Index ld) { return row_major ? i * ld + j : j * ld + i; };
                        if (beta == T(0))
                            for (Index i = 0; i < m; ++i)
                                for (Index j = 0; j < columns; ++j) c[at(i, j, ldc)] = T(NAN);
                        const Int from = first, to = static_cast<Int>(first + rows);
                        if (block == 1)
                            (row_major ? KERNEL(csr_ng_n_mm_c_ker) : KERNEL(csr_ng_n_mm_f_ker))(
                                from, to, static_cast<Int>(base), static_cast<Int>(columns), alpha, a.vals.data(),
                                a.rows_ptr.data(), a.index.data(), b.data(), static_cast<Int>(ldb), beta, c.data(),
                                static_cast<Int>(ldc));
                        else
                            KERNEL(bsr_ng_n_mm_rows)
                        (from, to, static_cast<Int>(base), static_cast<Int>(block), row_major ? 0 : 1,
                         static_cast<Int>(columns), alpha, a.vals.data(), a.rows_ptr.data(), a.index.data(), b.data(),
                         static_cast<Int>(ldb), beta, c.data(), static_cast<Int>(ldc));
                        for (Index j = 0; j < columns; ++j) {
                            const Index step = row_major ? ldb : 1, c_step = row_major ? ldc : 1;
                            std::vector<T> column;
                            for (Index i = 0; i < m; ++i) column.push_back(c[at(i, j, ldc)]);
                            expect_near<T>(column,
                                           dense.times(alpha, b.data() + at(0, j, ldb), step, beta,
                                                       old.data() + at(0, j, ldc), c_step),
                                           10. * 5 * block);
                        }
                    }
                }
}

TYPED_TEST(SparseBlocks, MatricesAsHandedOver)
{
    using Int = typename TypeParam::Int;
    using T = typename TypeParam::T;
    const T alpha = some<T>(-1, 0.5f);
    for (const Index block : {1, 3})
        for (const Index base : {0, 1})
            for (const int op : {op_none, op_transpose, op_conjugate_transpose}) {
                Random random(static_cast<std::uint64_t>(block + base));
                const Index rows = 6, cols = 9;
                const Blocks<Int, T> a(rows, cols, block, base, base, random);
                // Four arrays with a gap in front.
                const Index gap = 2;
                std::vector<T> vals(static_cast<std::size_t>(gap * block * block), T(NAN));
                vals.insert(vals.end(), a.vals.begin(), a.vals.end());
                std::vector<Int> index(gap, -1), first, last;
                index.insert(index.end(), a.index.begin(), a.index.end());
                for (Index i = 0; i < rows; ++i) {
                    first.push_back(static_cast<Int>(a.rows_ptr[i] - a.rows_ptr[0] + gap + base));
                    last.push_back(static_cast<Int>(a.rows_ptr[i + 1] - a.rows_ptr[0] + gap + base));
                }
                const Dense<T> dense = a.dense(0, [](Index, Index) { return true; });
                const auto check = [&](int operation, auto call) {
                    Dense<T> used = dense.op(operation);
                    const Guarded<T> x(uniform_values<T>(used.cols, 5));
                    const auto old = uniform_values<T>(used.rows, 6);
                    for (const T beta : {T(0), T(3)}) {
                        Guarded<T> y(beta == T(0) ? std::vector<T>(old.size(), T(NAN)) : old);
                        call(x.data(), beta, y.data());
                        expect_near<T>(y, used.times(alpha, x.data(), 1, beta, old.data(), 1), 10. * 9 * block);
                    }
                };
                const Int m = rows, n = cols, from = static_cast<Int>(base);
                check(op, [&](const T* x, T beta, T* y) {
                    if (block == 1) KERNEL(csr_mv_def_ker)
                    (m, n, from, op, alpha, vals.data(), index.data(), first.data(), last.data(), x, beta, y);
                    else KERNEL(bsr_mv_def_ker)(m, n, from, op, static_cast<Int>(block), from, alpha, vals.data(),
                                                index.data(), first.data(), last.data(), x, beta, y);
                });
                if (block != 1) continue;
                // The same arrays by columns are the transposed matrix.
                const int turned = op == op_none ? op_transpose : op_none;
                if (op != op_conjugate_transpose)
                    check(turned, [&](const T* x, T beta, T* y) {
                        KERNEL(csc_mv_def_ker)
                        (n, m, from, op, alpha, vals.data(), index.data(), first.data(), last.data(), x, beta, y);
                    });
                else {
                    Dense<T> conjugated = dense.op(op_conjugate_transpose).op(op_transpose);
                    const Guarded<T> x(uniform_values<T>(cols, 5));
                    Guarded<T> y(rows);
                    KERNEL(csc_mv_def_ker)
                    (n, m, from, op, alpha, vals.data(), index.data(), first.data(), last.data(), x.data(), T(0),
                     y.data());
                    expect_near<T>(y, conjugated.times(alpha, x.data(), 1, T(0), nullptr, 1), 90);
                }
            }
}

} // namespace
} // namespace ork::test
