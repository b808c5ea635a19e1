// SPDX-License-Identifier: MIT
// What is there for compressed rows alone, on one thread and on several.
#include "call.h"
#include "ork/ork.h"
#include "support/compare.h"

namespace ork::test {
namespace {

using R = long double;

template <class C>
class CsrTools : public testing::Test {
public:
    using T = typename C::T;
    using Int = typename C::Int;

    // Rows in any order of columns, some places twice, a diagonal in all rows but each seventh.
    void make(Int rows, Int columns, Int first)
    {
        m = rows, n = columns, base = first;
        val.clear(), indx.clear(), pntr = {base};
        dense.assign(static_cast<std::size_t>(m) * n, {});
        for (Int i = 0; i < m; ++i) {
            for (std::int64_t k = random.integer(0, 9); k > 0; --k) put(i, Int(random.integer(0, n - 1)));
            if (i % 7 != 3 && i < n) put(i, i);
            pntr.push_back(base + Int(val.size()));
        }
    }
    void put(Int i, Int j)
    {
        if (i == j && i % 7 == 3) return;
        val.push_back(i == j ? T(12) : random.uniform<T>());
        indx.push_back(j + base);
        dense[std::size_t(i) * n + j].value += Wide<R>(val.back());
        dense[std::size_t(i) * n + j].scale += magnitude(Wide<R>(val.back()));
    }
    Wide<R> element(Int i, Int j) const { return dense[std::size_t(i) * n + j].value; }

    template <class... Arguments>
    std::int64_t call(const char* routine, Arguments... arguments)
    {
        return call_public<Int, T>(routine, arguments...);
    }

    Random random{11};
    Int m, n, base;
    std::vector<T> val;
    std::vector<Int> indx, pntr;
    std::vector<Expected<R>> dense;
};
TYPED_TEST_SUITE(CsrTools, Cases, CaseNames);

struct Threads {
    explicit Threads(int threads) { ork_set_num_threads(threads); }
    ~Threads() { ork_set_num_threads(0); }
};

TYPED_TEST(CsrTools, ProductsInThreeArrays)
{
    using T = typename TypeParam::T;
    using Int = typename TypeParam::Int;
    for (const int count : {1, 3}) {
        const Threads threads(count);
        this->make(count == 1 ? 40 : 20'000, 30, 1);
        const std::vector<T> x = uniform_values<T>(30);
        std::vector<T> y(std::size_t(this->m));
        EXPECT_EQ(this->call("csrgemv", this->m, Int(30), this->val.data(), this->indx.data(), this->pntr.data(),
                             x.data(), y.data()),
                  0);
        std::vector<Expected<R>> want(y.size());
        for (Int i = 0; i < this->m; ++i)
            for (Int j = 0; j < 30; ++j) want[i].add(multiply<T>(this->element(i, j), Wide<R>(x[j])));
        for (auto& element : want) element.scale += 20;
        expect_near<T>(y, want, 8);
    }
}

TYPED_TEST(CsrTools, SparseTimesSparseIsDense)
{
    using T = typename TypeParam::T;
    using Int = typename TypeParam::Int;
    const Int k = 17;
    for (const int count : {1, 3})
        for (const Int base : {0, 1})
            for (const int op : {ORK_SPBLAS_NO_TRANS, ORK_SPBLAS_TRANS}) {
                const Threads threads(count);
                const bool transpose = op == ORK_SPBLAS_TRANS;
                const Int m = count == 1 ? 40 : 4000, n = 30, rows = transpose ? n : m, inner = transpose ? m : n;
                this->make(inner, k, base);
                const auto b = this->val;
                const auto jb = this->indx, ib = this->pntr;
                const auto dense_b = this->dense;
                this->make(m, n, base);
                const Int ldc = rows + 2;
                std::vector<T> c(std::size_t(ldc) * k, T(7)), got;
                EXPECT_EQ(this->call("csrmultd", op, int(base), m, n, k, this->val.data(), this->indx.data(),
                                     this->pntr.data(), b.data(), jb.data(), ib.data(), c.data(), ldc),
                          0);
                std::vector<Expected<R>> want;
                for (Int j = 0; j < k; ++j) {
                    for (Int i = 0; i < rows; ++i) {
                        Expected<R> sum;
                        for (Int l = 0; l < inner; ++l)
                            sum.add(multiply<T>(transpose ? this->element(l, i) : this->element(i, l),
                                                dense_b[std::size_t(l) * k + j].value));
                        sum.scale += 40;
                        want.push_back(sum);
                        got.push_back(c[std::size_t(j) * ldc + i]);
                    }
                    for (Int i = rows; i < ldc; ++i) EXPECT_EQ(c[std::size_t(j) * ldc + i], T(7));
                }
                expect_near<T>(got, want, 64);
            }
}

TYPED_TEST(CsrTools, PartsOfPreconditioners)
{
    using T = typename TypeParam::T;
    using Int = typename TypeParam::Int;
    for (const int count : {1, 3})
        for (const int base : {0, 1}) {
            const Threads threads(count);
            const Int m = count == 1 ? 40 : 300;
            this->make(m, m, base);
            // Enough entries for three threads: whole rows over and over, as far as they have no gaps.
            for (int repeat = 0; count > 1 && repeat < 6; ++repeat) {
                auto val = this->val;
                auto indx = this->indx;
                std::vector<Int> pntr = {Int(base)};
                std::vector<T> more;
                std::vector<Int> columns;
                for (Int i = 0; i < m; ++i) {
                    for (int twice = 0; twice < 2; ++twice)
                        for (Int p = this->pntr[i] - base; p < this->pntr[i + 1] - base; ++p)
                            more.push_back(val[p] * Real<T>(0.5)), columns.push_back(indx[p]);
                    pntr.push_back(base + Int(more.size()));
                }
                this->val = more, this->indx = columns, this->pntr = pntr;
            }
            const T* val = this->val.data();
            const Int *indx = this->indx.data(), *ia = this->pntr.data();

            std::vector<T> d(std::size_t(m), T(9)), inverse(d);
            Int missing = -7;
            EXPECT_EQ(this->call("csrinvdiag", base, m, val, indx, ia, ia + 1, inverse.data(), &missing), 0);
            EXPECT_EQ(missing, 3 + base);

            std::vector<Int> lpntr(std::size_t(m) + 1), upntr(lpntr);
            T* const none = nullptr;
            Int* const no_index = nullptr;
            EXPECT_EQ(this->call("csrsplit", base, m, val, indx, ia, ia + 1, none, no_index, lpntr.data(), none,
                                 no_index, upntr.data(), none),
                      0);
            std::vector<T> lval(std::size_t(lpntr[m] - base)), uval(std::size_t(upntr[m] - base));
            std::vector<Int> lindx(lval.size()), uindx(uval.size());
            EXPECT_EQ(this->call("csrsplit", base, m, val, indx, ia, ia + 1, lval.data(), lindx.data(), lpntr.data(),
                                 uval.data(), uindx.data(), upntr.data(), d.data()),
                      0);
            auto sorted_val = this->val;
            auto sorted = this->indx;
            EXPECT_EQ(this->call("csrsort", base, m, m, sorted_val.data(), sorted.data(), ia, ia + 1), 0);
            for (Int i = 0; i < m; ++i) {
                std::vector<T> below, above;
                std::vector<std::pair<Int, T>> row;
                for (Int p = ia[i] - base; p < ia[i + 1] - base; ++p) {
                    const Int j = indx[p] - base;
                    row.push_back({indx[p], val[p]});
                    if (j < i) below.push_back(val[p]);
                    if (j > i) above.push_back(val[p]);
                }
                const bool empty = i % 7 == 3;
                const Wide<R> diagonal = this->element(i, i);
                expect_near<T>(d[i], Expected<R>{diagonal, std::max<R>(diagonal.re, 1)}, 999);
                expect_near<T>(inverse[i], Expected<R>{Wide<R>(empty ? R(1) : 1 / diagonal.re), 1}, 999);
                EXPECT_EQ(below, std::vector<T>(&lval[0] + (lpntr[i] - base), &lval[0] + (lpntr[i + 1] - base)));
                EXPECT_EQ(above, std::vector<T>(&uval[0] + (upntr[i] - base), &uval[0] + (upntr[i + 1] - base)));
                std::stable_sort(row.begin(), row.end(), [](auto& a, auto& b) { return a.first < b.first; });
                for (Int p = ia[i] - base; p < ia[i + 1] - base; ++p) {
                    EXPECT_EQ(sorted[p], row[p - (ia[i] - base)].first);
                    EXPECT_EQ(sorted_val[p], row[p - (ia[i] - base)].second);
                }
            }
        }
}

// Sweeps in both directions bring the solution of a system with a large diagonal.
TYPED_TEST(CsrTools, SweepsConverge)
{
    using T = typename TypeParam::T;
    using Int = typename TypeParam::Int;
    for (const int base : {0, 1}) {
        this->make(3, 3, base); // rows 0 .. 2 have a diagonal
        const std::vector<T> b = uniform_values<T>(3);
        std::vector<T> x(3);
        const T omega(Real<T>(1.1));
        for (int sweep = 0; sweep < 60; ++sweep)
            EXPECT_EQ(this->call("csrgauss", base, Int(3), Int(sweep % 2), scalar_argument(omega), this->val.data(),
                                 this->indx.data(), this->pntr.data(), this->pntr.data() + 1, b.data(), x.data()),
                      0);
        for (Int i = 0; i < 3; ++i) {
            Expected<R> sum;
            for (Int j = 0; j < 3; ++j) sum.add(multiply<T>(this->element(i, j), Wide<R>(x[j])));
            sum.scale += 4;
            expect_near<T>(b[i], sum, 64);
        }
    }
}

TEST(CsrToolErrors, AreNamedAsTheArgumentsAre)
{
    const double val[] = {1, 2, 3};
    const std::int64_t indx[] = {1, 2, 4}, ia[] = {1, 2, 3, 4}, backwards[] = {1, 2, 1, 4};
    double c[9] = {7};
    const auto expect = [&](std::int64_t status, std::int64_t argument, const char* text) {
        EXPECT_NE(status, ORK_SPBLAS_SUCCESS);
        EXPECT_EQ(ork_spblas_last_error()->argument, argument) << ork_spblas_last_error()->text;
        EXPECT_STREQ(ork_spblas_last_error()->text, text);
        EXPECT_EQ(c[0], 7);
    };
    const auto one = ORK_SPBLAS_BASE_1;
    expect(ork_spblas_dcsrmultd(ORK_SPBLAS_CONJ, one, 3, 3, 3, val, indx, ia, val, indx, ia, c, 3), 1,
           "ork_spblas_dcsrmultd: argument 1 (op) is 114: 111 or 112 here");
    expect(ork_spblas_dcsrmultd(ORK_SPBLAS_TRANS, one, 3, 3, 3, val, indx, ia, val, nullptr, ia, c, 3), 10,
           "ork_spblas_dcsrmultd: argument 10 (jb) is a null pointer");
    expect(ork_spblas_dcsrmultd(ORK_SPBLAS_TRANS, one, 3, 4, 3, val, indx, ia, val, indx, ia, c, 3), 13,
           "ork_spblas_dcsrmultd: argument 13 (ldc) is 3: less than the number of rows");
    expect(ork_spblas_dcsrgemv(3, 3, val, indx, nullptr, val, c), 5,
           "ork_spblas_dcsrgemv: argument 5 (ia) is a null pointer");
    expect(ork_spblas_dcsrsymmvs(ORK_SPBLAS_UPPER, -1, val, indx, ia, val, c), 2,
           "ork_spblas_dcsrsymmvs: argument 2 (m) is -1: negative");
    const int before = ork_spblas_set_checking(1);
    expect(ork_spblas_dcsrmultd(ORK_SPBLAS_NO_TRANS, one, 3, 4, 3, val, indx, ia, val, indx, ia, c, 3), 10,
           "ork_spblas_dcsrmultd: jb[2] = 4 in row 3: columns run from 1 to 3");
    expect(ork_spblas_dcsrgemv(3, 4, val, indx, backwards, val, c), 5,
           "ork_spblas_dcsrgemv: ia[2] = 1 in row 2: less than its begin, 2");
    ork_spblas_set_checking(before);
    EXPECT_EQ(ork_spblas_dcsrsymmvs(ORK_SPBLAS_LOWER, 3, val, ia, ia, val, c), ORK_SPBLAS_SUCCESS);
    EXPECT_EQ(c[1], 4); // of the diagonal 1, 2, 3
}

} // namespace
} // namespace ork::test
