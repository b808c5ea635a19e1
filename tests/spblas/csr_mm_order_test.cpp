// SPDX-License-Identifier: MIT
// Compressed rows against many right-hand sides, bit for bit, where rows repeat each other one column further on, as
// those of bands and grids do: kernels may take such rows together, and then an element that looks like the next row's
// must be it.
#include "spblas/member.h"
#include "spblas/sparse.h"
#include "support/compare.h"
#include "support/guarded.h"

namespace ork::test {
namespace {

// Runs of rows with the same offsets from the diagonal, every length around the pairs and registers. Between them rows
// that fail to repeat the one before by a single column, a length or a place in memory.
template <class T, class Int>
struct Grid {
    std::vector<T> val;
    std::vector<Int> indx, pntrb, pntre;
    Int columns;

    Grid(Int base, std::int64_t gap)
    {
        Random random(21);
        Int row = 0;
        for (const Int length : {7, 0, 1, 2, 3, 8, 9, 7}) {
            for (Int r = 0; r < 11; ++r, ++row) {
                const bool odd_one = r == 6 && length > 0;
                pntrb.push_back(static_cast<Int>(3 + val.size() + (odd_one && length % 2 != 0))); // without its first
                for (Int k = 0; k < length; ++k) {
                    indx.push_back(row + 2 * k + base - (odd_one && length % 2 == 0 && k == length - 1));
                    val.push_back(random.spread<T>());
                }
                pntre.push_back(static_cast<Int>(3 + val.size()));
                const auto unused = static_cast<std::size_t>(gap + (r == 8));
                indx.insert(indx.end(), unused, -1000), val.insert(val.end(), unused, not_a_number<T>());
            }
        }
        columns = row + 2 * 6; // the last row ends in the last column
        indx.resize(static_cast<std::size_t>(pntre.back() - 3)), val.resize(indx.size());
    }
};

template <class C>
class CsrGridOrder : public testing::Test {
};
TYPED_TEST_SUITE(CsrGridOrder, Cases, CaseNames);

TYPED_TEST(CsrGridOrder, PairsOfEntriesOfEachRow)
{
    using T = typename TypeParam::T;
    using Int = typename TypeParam::Int;
    using Call = typename spblas::Calls<Format::csr, Int, T>::MmoutPar;
    const T alpha = scalar<T>(0.7, -1.3);
    for (const char op : {'n', 's'})
        for (const Int base : {0, 1})
            for (const char layout : {'f', 'c'})
                for (const Int nrhs : {1, 3, 4, 5, 8, 13, 24}) {
                    const Shape s{static_cast<char>('0' + base), op, 'g', '_', '_', layout};
                    if (!exists(Format::csr, Routine::mmout, s, is_complex<T>)) continue;
                    SCOPED_TRACE(name_of(Format::csr, Routine::mmout, s) + " " + std::to_string(nrhs));
                    auto* call = member<Call, Int, T>(name_of(Format::csr, Routine::mmout, s));
                    ASSERT_NE(call, nullptr);
                    const Guard side = nrhs % 2 != 0 ? Guard::end : Guard::begin;
                    const Grid<T, Int> a(base, nrhs % 3);
                    Guarded<T> val(a.val, side);
                    Guarded<Int> indx(a.indx, side), pntrb(a.pntrb, side), pntre(a.pntre, side);
                    const Int m = static_cast<Int>(a.pntrb.size()), n = a.columns;
                    const Int ldb = layout == 'c' ? nrhs : n, ldc = layout == 'c' ? nrhs : m;
                    Guarded<T> b(spread_values<T>(n * nrhs, 22), side);
                    const auto at = [&](Int ld, Int r, Int j) { return layout == 'c' ? r * ld + j : j * ld + r; };
                    for (const T& beta : {T(0), scalar<T>(-0.6, 0.9)}) {
                        Guarded<T> c(spread_values<T>(m * nrhs, 23), side);
                        auto want = c.values();
                        const Int first = nrhs > 4 ? 2 : 1; // not a whole number of groups either
                        call(&first, &nrhs, &m, &n, nullptr, &alpha, val.data(), indx.data(), pntrb.data(),
                             pntre.data(), b.data(), &ldb, c.data(), &ldc, &beta);
                        for (Int j = first - 1; j < nrhs; ++j)
                            for (Int i = 0; i < m; ++i) {
                                const auto row = static_cast<std::size_t>(i);
                                const Int begin = a.pntrb[row] - 3, length = a.pntre[row] - a.pntrb[row];
                                const auto term = [&](Int k) {
                                    T value = a.val[static_cast<std::size_t>(begin + k)];
                                    if constexpr (is_complex<T>)
                                        if (op == 's') value = std::conj(value);
                                    return value * b[at(ldb, a.indx[static_cast<std::size_t>(begin + k)] - base, j)];
                                };
                                T lane[2] = {};
                                for (Int k = 0; k < length / 2 * 2; ++k) lane[k % 2] += term(k);
                                T sum = lane[0] + lane[1];
                                if (length % 2 != 0) sum += term(length - 1);
                                T& element = want[static_cast<std::size_t>(at(ldc, i, j))];
                                element = beta == T(0) ? alpha * sum : element * beta + sum * alpha;
                            }
                        expect_same_bits<T>(c, want, c.size());
                    }
                }
}

} // namespace
} // namespace ork::test
