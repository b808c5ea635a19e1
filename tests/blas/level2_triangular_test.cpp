// SPDX-License-Identifier: MIT
// trmv and trsv: accuracy against the reference, shares of a product, calls of the core's gemv in a solve.
#include "blas/level2_by_type.h"

namespace ork::test {
namespace {

template <class T>
struct Problem {
    char uplo, trans, diag;
    int64_t n;
    Triangular<T> a;
    Vector<T> x;

    // A is well conditioned; the diagonal of a unit triangle is not looked at.
    Problem(char triangle, char operation, char diagonal, int64_t size, int64_t pad = 0, int64_t incx = 1,
            Guard side = Guard::end, std::size_t offset = 0)
        : uplo(triangle), trans(operation), diag(diagonal), n(size), a(uplo, n, pad, side, offset, 5),
          x(uniform_values<T>(n, 6), incx, side, offset)
    {
        for (int64_t j = 0; j < n; ++j)
            for (int64_t i = 0; i < n; ++i)
                if (a.referenced(i, j)) a.a(i, j) = times(Real<T>(i == j ? 1 : Real<T>(1) / Real<T>(n)), a.a(i, j));
        for (int64_t i = 0; i < n; ++i) a.a(i, i) = diag == 'U' ? T(quiet_nan<Real<T>>) : a.a(i, i) + scalar<T>(2, 1);
        a.a.remember();
        a.a.read_only();
    }
    bool row_has(int64_t i, int64_t j) const { return trans == 'N' ? a.referenced(i, j) : a.referenced(j, i); }
    Wide<quad> element(int64_t i, int64_t j) const
    {
        return i == j && diag == 'U' ? Wide<quad>(1) : op_element<T>(trans, a.a.data(), a.a.ld(), i, j);
    }
    void multiply_in_place() { trmv<T>(&uplo, &trans, &diag, &n, a.a.data(), &a.a.ld(), x.data(), &x.inc()); }
    void solve() { trsv<T>(&uplo, &trans, &diag, &n, a.a.data(), &a.a.ld(), x.data(), &x.inc()); }

    template <class X>
    std::vector<Expected<quad>> product(const X& vector) const
    {
        std::vector<Expected<quad>> want(static_cast<std::size_t>(n));
        for (int64_t i = 0; i < n; ++i)
            for (int64_t j = 0; j < n; ++j)
                if (row_has(i, j))
                    want[static_cast<std::size_t>(i)].add(i == j && diag == 'U'
                                                              ? Wide<quad>(vector[i])
                                                              : multiply<T>(element(i, j), Wide<quad>(vector[j])));
        return want;
    }
};

// Smith's division, as the kernels do it: what infinity becomes depends on it.
template <class T>
Wide<quad> quotient(Wide<quad> x, Wide<quad> d)
{
    if constexpr (!is_complex<T>) return {x.re / d.re};
    const bool tall = magnitude(Wide<quad>{d.re}) >= magnitude(Wide<quad>{d.im});
    const quad r = tall ? d.im / d.re : d.re / d.im, size = tall ? d.re + d.im * r : d.im + d.re * r;
    if (tall) return {(x.re + x.im * r) / size, (x.im - x.re * r) / size};
    return {(x.re * r + x.im) / size, (x.im * r - x.re) / size};
}

template <class T>
class Triangles : public testing::Test {
public:
    template <class Body>
    static void every_kind(Body&& body)
    {
        for (const char uplo : {'U', 'L'})
            for (const char trans : {'N', 'T', 'C'})
                for (const char diag : {'N', 'U'}) {
                    SCOPED_TRACE(testing::Message() << uplo << trans << diag);
                    body(uplo, trans, diag);
                }
    }
    static std::vector<int64_t> sizes()
    {
        std::vector<int64_t> all{63, 64, 65, 127, 128, 129, 133, 257};
        for (int64_t n = 0; n <= 37; ++n) all.push_back(n);
        return all;
    }
    struct Layout {
        int64_t pad, inc;
        Guard side;
        std::size_t offset;
    };
    static constexpr Layout layouts[] = {{1, 1, Guard::begin, sizeof(Real<T>)},
                                         {2, -1, Guard::end, 0},
                                         {3, 3, Guard::end, sizeof(Real<T>)},
                                         {0, -2, Guard::begin, 0}};
};
TYPED_TEST_SUITE(Triangles, Precisions);

TYPED_TEST(Triangles, ProductMatchesTheReferenceWithTheSameBitsForEveryLayout)
{
    using T = TypeParam;
    FreshCore core;
    this->every_kind([&](char uplo, char trans, char diag) {
        for (const int64_t n : this->sizes()) {
            SCOPED_TRACE(n);
            Problem<T> plain(uplo, trans, diag, n);
            const auto want = plain.product(plain.x);
            plain.multiply_in_place();
            expect_near<T>(plain.x, want, static_cast<double>(n + 8));
            for (const auto& l : this->layouts) {
                Problem<T> p(uplo, trans, diag, n, l.pad, l.inc, l.side, l.offset);
                p.multiply_in_place();
                expect_same_bits<T>(p.x, plain.x, n);
                EXPECT_TRUE(p.x.padding_intact());
            }
        }
    });
}

TYPED_TEST(Triangles, SharesOfAProductAreTheWhole)
{
    using T = TypeParam;
    FreshCore core;
    this->every_kind([&](char uplo, char trans, char diag) {
        for (const int64_t n : {1, 6, 33, 140, 300}) {
            SCOPED_TRACE(n);
            Problem<T> whole(uplo, trans, diag, n);
            whole.multiply_in_place();
            for (const int64_t inc : {1, -2}) {
                Problem<T> p(uplo, trans, diag, n, 1, inc);
                p.x.read_only();
                for (const auto& [from, to] : {std::pair{int64_t{0}, n},
                                               {0, n / 2},
                                               {n / 2, n},
                                               {n / 3, n / 3 + 1},
                                               {n / 4, n - n / 8},
                                               {n - 1, n},
                                               {n / 2, n / 2}}) {
                    const int64_t first = from + 1, count = to - from;
                    Vector<T> y(count, 1);
                    trmv_in_thread<T>(&first, &to, &uplo, &trans, &diag, &n, p.a.a.data(), &p.a.a.ld(), p.x.data(),
                                      &p.x.inc(), y.data());
                    expect_same_bits<T>(y.data(), whole.x.data() + from, count);
                }
            }
        }
    });
}

TYPED_TEST(Triangles, SolutionSatisfiesTheSystem)
{
    using T = TypeParam;
    FreshCore core;
    this->every_kind([&](char uplo, char trans, char diag) {
        for (const int64_t n : this->sizes()) {
            SCOPED_TRACE(n);
            Problem<T> plain(uplo, trans, diag, n);
            const std::vector<T> b = plain.x.values();
            plain.solve();
            const auto back = plain.product(plain.x);
            for (int64_t i = 0; i < n; ++i) {
                const auto& sum = back[static_cast<std::size_t>(i)];
                const T right = b[static_cast<std::size_t>(i)];
                EXPECT_TRUE(is_near(right, sum, static_cast<double>(n + 16))) << i;
            }
            for (const auto& l : this->layouts) {
                Problem<T> p(uplo, trans, diag, n, l.pad, l.inc, l.side, l.offset);
                p.solve();
                expect_same_bits<T>(p.x, plain.x, n);
                EXPECT_TRUE(p.x.padding_intact());
            }
        }
    });
}

// One call for each block of 32 but the first, on what is beside the block.
TYPED_TEST(Triangles, SolvesTakeWhatIsBesideABlockByTheCoresGemv)
{
    using T = TypeParam;
    this->every_kind([&](char uplo, char trans, char diag) {
        struct Calls {
            int64_t n;
            int calls;
            int64_t forward, backward; // elements of all panels
        };
        for (const Calls& c :
             {Calls{32, 0, 0, 0}, {33, 1, 32, 32}, {64, 1, 1024, 1024}, {70, 2, 1024 + 384, 192 + 1216}}) {
            FreshCore core;
            Problem<T> p(uplo, trans, diag, c.n);
            p.solve();
            const bool forward = (uplo == 'L') == (trans == 'N');
            EXPECT_EQ(core->gemv_calls, c.calls) << c.n;
            EXPECT_EQ(core->gemv_elements, forward ? c.forward : c.backward) << c.n;
        }
    });
}

// Against a loop in the same order of unknowns: a NaN or an infinity reaches what depends on it and nothing else.
TYPED_TEST(Triangles, NanAndInfinityFollowTheFormula)
{
    using T = TypeParam;
    FreshCore core;
    this->every_kind([&](char uplo, char trans, char diag) {
        for (const int64_t n : {5, 12, 40, 75})
            for (const T bad : {T(quiet_nan<Real<T>>), scalar<T>(infinite<Real<T>>, 1)}) {
                SCOPED_TRACE(testing::Message() << n << ' ' << show(bad));
                // the unknown that is found last in a block: only its infinity meets the next block
                const bool forward = (uplo == 'L') == (trans == 'N');
                const int64_t at = n <= 32 ? n / 3 : forward ? 31 : n / 32 * 32;
                Problem<T> product(uplo, trans, diag, n), solution(uplo, trans, diag, n);
                product.x[at] = solution.x[at] = bad;
                const auto want = product.product(product.x);
                product.multiply_in_place();
                expect_pattern<T>(product.x, want);

                std::vector<Expected<quad>> x(static_cast<std::size_t>(n));
                for (int64_t k = 0; k < n; ++k) {
                    const int64_t i = forward ? k : n - 1 - k;
                    Wide<quad> rest(solution.x[i]);
                    for (int64_t j = 0; j < n; ++j)
                        if (j != i && solution.row_has(i, j))
                            rest = rest - multiply<T>(solution.element(i, j), x[static_cast<std::size_t>(j)].value);
                    x[static_cast<std::size_t>(i)].value =
                        diag == 'U' ? rest : quotient<T>(rest, solution.element(i, i));
                }
                solution.solve();
                expect_pattern<T>(solution.x, x);
            }
    });
}

TYPED_TEST(Triangles, LeaveTheEnvironmentAloneOnASmallStack)
{
    using T = TypeParam;
    FreshCore core;
    this->every_kind([&](char uplo, char trans, char diag) {
        for (const int64_t n : {7, 30, 131})
            for (const int64_t inc : {1, -2}) {
                Problem<T> p(uplo, trans, diag, n, 0, inc);
                EXPECT_TRUE(keeps_fp_environment([&] { p.multiply_in_place(); }));
                EXPECT_TRUE(keeps_fp_environment([&] { p.solve(); }));
                run_on_small_stack(small_stack, [&] { p.multiply_in_place(), p.solve(); });
            }
    });
    EXPECT_EQ(core->allocations, 0);
}

} // namespace
} // namespace ork::test
