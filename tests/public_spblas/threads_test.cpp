// SPDX-License-Identifier: MIT
// Calls on several threads give what one gives, and the same bits every time; without memory they give it on one.
#include <sys/resource.h>

#include <fstream>

#include "call.h"
#include "ork/ork.h"
#include "support/compare.h"
#include "support/process.h"

namespace ork::test {
namespace {

using Int = std::int32_t;

struct Threads {
    explicit Threads(int threads) { ork_set_num_threads(threads); }
    ~Threads() { ork_set_num_threads(0); }
};

// Rows of unlike lengths, many of them empty; enough entries for seven threads.
template <class T>
Sparse<T> large(std::int64_t rows, bool triangle, std::int64_t lb, Random& random)
{
    Sparse<T> a{rows, rows, lb, {}};
    for (std::int64_t i = 0; i < rows; ++i) {
        const std::int64_t length = i % 3 == 0 ? 0 : i < rows / 8 ? 300 : random.integer(1, 60);
        std::int64_t column = -1;
        for (std::int64_t k = 0; k < length; ++k) {
            column += random.integer(1, 6);
            if (column >= (triangle ? i : rows)) break;
            a.blocks.push_back({i, column, uniform_values<T>(lb * lb, random.bits())});
            for (T& value : a.blocks.back().value) value *= Real<T>(triangle ? 0.001 : 1);
        }
        if (triangle) a.blocks.push_back({i, i, std::vector<T>(static_cast<std::size_t>(lb * lb), T(1))});
    }
    return a;
}

template <class T>
class SparseThreads : public testing::Test {
};
using Elements = testing::Types<float, double, cfloat, cdouble>;
TYPED_TEST_SUITE(SparseThreads, Elements);

// Runs call(c) with 1, 2, 3 and 7 threads from the same output.
template <class T, class Call>
void expect_alike(std::int64_t size, bool same_bits, double tolerance, Call call)
{
    const std::vector<T> start = uniform_values<T>(size, 9);
    std::vector<T> serial = start;
    {
        const Threads one(1);
        ASSERT_EQ(call(serial.data()), 0);
    }
    for (const int count : {2, 3, 7}) {
        SCOPED_TRACE(count);
        const Threads threads(count);
        std::vector<T> first = start, again = start;
        ASSERT_EQ(call(first.data()), 0);
        ASSERT_EQ(call(again.data()), 0);
        expect_same_bits<T>(first, again, size);
        if (same_bits) expect_same_bits<T>(first, serial, size);
        std::vector<Expected<long double>> want;
        for (const T& value : serial) want.push_back({Wide<long double>(value), 1});
        if (!same_bits) expect_near<T>(first, want, tolerance);
    }
}

TYPED_TEST(SparseThreads, ResultsDontDependOnThemBeyondTheOrderOfSums)
{
    using T = TypeParam;
    Random random(7);
    const T alpha = scalar<T>(0.75, -0.5), beta = scalar<T>(0.5, 0.25);
    const ork_spblas_kind general = {ORK_SPBLAS_GENERAL, {}, {}, ORK_SPBLAS_BASE_0};
    const ork_spblas_kind symmetric = {ORK_SPBLAS_SYMMETRIC, ORK_SPBLAS_LOWER, ORK_SPBLAS_NON_UNIT, ORK_SPBLAS_BASE_0};
    const ork_spblas_kind triangular = {ORK_SPBLAS_TRIANGULAR, ORK_SPBLAS_LOWER, ORK_SPBLAS_NON_UNIT,
                                        ORK_SPBLAS_BASE_0};
    for (const Format format : all_formats) {
        const std::int64_t lb = format == Format::bsr || format == Format::bsc ? 2 : 1, rows = 7000 / lb;
        const bool dia = format == Format::dia, sky = format == Format::sky;
        Sparse<T> a = large<T>(rows, false, lb, random), l = large<T>(rows, true, lb, random);
        if (dia || sky) { // bands
            a.blocks.clear();
            for (std::int64_t i = 0; i < rows; ++i)
                for (std::int64_t j = std::max<std::int64_t>(0, i - 39); j <= i; ++j)
                    a.blocks.push_back({i, j, {i == j ? T(1) : random.uniform<T>() * Real<T>(0.001)}});
            l = a;
        }
        const Arrangement how = {letters_of(ORK_SPBLAS_NO_TRANS, general, 'c'), format == Format::coo ? 0 : 3};
        const Matrix<Int, T> matrix(format, a, how), triangle(format, l, how);
        const std::int64_t size = rows * lb;
        const std::vector<T> x = uniform_values<T>(size * 18, 8);
        for (const ork_spblas_kind kind : {general, symmetric, triangular})
            for (const int op : {ORK_SPBLAS_NO_TRANS, ORK_SPBLAS_CONJ_TRANS}) {
                if (sky && kind.type == ORK_SPBLAS_GENERAL) continue;
                SCOPED_TRACE(name_of(format) + " type " + std::to_string(kind.type) + " op " + std::to_string(op));
                const bool same = !spblas::scatters(format, letters_of(op, kind, 'c'));
                const Matrix<Int, T>& used = kind.type == ORK_SPBLAS_TRIANGULAR ? triangle : matrix;
                expect_alike<T>(size, same, 4000, [&](T* y) { return used.mv(op, kind, alpha, x.data(), beta, y); });
                if (op != ORK_SPBLAS_NO_TRANS && kind.type == ORK_SPBLAS_SYMMETRIC) continue;
                for (const bool by_rows : {true, false}) {
                    const int layout = by_rows ? ORK_SPBLAS_ROW_MAJOR : ORK_SPBLAS_COL_MAJOR;
                    const Int ld = by_rows ? 18 : Int(size), nrhs = by_rows ? 17 : 9;
                    expect_alike<T>(size * 18, true, 0, [&](T* c) {
                        return used.mm(op, kind, layout, nrhs, alpha, x.data(), ld, beta, c, ld);
                    });
                    if (kind.type == ORK_SPBLAS_TRIANGULAR)
                        expect_alike<T>(size * 18, true, 0, [&](T* c) {
                            return used.sm(op, kind, layout, nrhs, alpha, x.data(), ld, c, ld);
                        });
                }
            }
    }
}

// Copies of y that don't fit into memory are not made; entries that must be sorted and can't are a status.
TEST(SparseMemory, IsDoneWithoutOrReported)
{
    if (sanitized) GTEST_SKIP() << "sanitizers need the address space";
    const ChildResult child = run_child([] {
        Random random(7);
        const ork_spblas_kind symmetric = {ORK_SPBLAS_SYMMETRIC, ORK_SPBLAS_LOWER, ORK_SPBLAS_NON_UNIT,
                                           ORK_SPBLAS_BASE_0};
        ork_spblas_kind triangular = symmetric;
        triangular.type = ORK_SPBLAS_TRIANGULAR;
        Sparse<double> l = large<double>(60'000, true, 1, random);
        const Arrangement how = {letters_of(ORK_SPBLAS_NO_TRANS, triangular, 'c')};
        const Matrix<Int, double> csr(Format::csr, l, how);
        std::swap(l.blocks.front(), l.blocks.back());
        const Matrix<Int, double> coo(Format::coo, l, how);
        const std::vector<double> x(60'000, 1.0);
        std::vector<double> serial = x, y = x;
        ork_set_num_threads(1);
        csr.mv(ORK_SPBLAS_NO_TRANS, symmetric, 1.0, x.data(), 1.0, serial.data());
        ork_set_num_threads(2);
        csr.mv(ORK_SPBLAS_NO_TRANS, symmetric, 1.0, x.data(), 1.0, y.data()); // starts the worker
        if (coo.sv(ORK_SPBLAS_NO_TRANS, triangular, 1.0, x.data(), y.data()) != 0) return 1;
        y = x;
        ork_free_buffers();
        long pages;
        std::ifstream("/proc/self/statm") >> pages;
        const ScopedLimit limit(RLIMIT_AS, static_cast<rlim_t>(pages) * 4096 + (256 << 10));
        if (csr.mv(ORK_SPBLAS_NO_TRANS, symmetric, 1.0, x.data(), 1.0, y.data()) != 0) return 2;
        if (y != serial) return 3;
        if (coo.sv(ORK_SPBLAS_NO_TRANS, triangular, 1.0, x.data(), y.data()) != ORK_SPBLAS_NO_MEMORY) return 4;
        if (y != serial) return 5;
        return std::string(ork_spblas_last_error()->text) == "ork_spblas_lp64_dcoosv: out of memory" ? 0 : 6;
    });
    EXPECT_TRUE(child.ok()) << child.describe();
}

} // namespace
} // namespace ork::test
