// SPDX-License-Identifier: MIT
// gemv: every bit of its result, the rules of beta and alpha, increments, NaN and infinity, and what it touches.
#include <concepts>

#include "blas/level2_by_type.h"

namespace ork::test {
namespace {

struct Shape {
    int64_t m, n;
    char trans = 'N';
    int64_t pad = 0, incx = 1, incy = 1;
    std::size_t offset = 0; // bytes from each array to its guarded page
};

std::ostream& operator<<(std::ostream& out, const Shape& s)
{
    return out << s.m << " x " << s.n << ' ' << s.trans << " pad " << s.pad << " increments " << s.incx << ' ' << s.incy
               << " offset " << s.offset;
}

template <class T>
struct Problem {
    Shape s;
    int64_t lenx, leny;
    Matrix<T> a;
    Vector<T> x, y;
    T alpha = scalar<T>(0.75, -0.5), beta = T(1);

    template <std::invocable Element>
    Problem(const Shape& shape, Guard side, Element&& element)
        : s(shape), lenx(s.trans == 'N' ? s.n : s.m), leny(s.trans == 'N' ? s.m : s.n),
          a(s.m, s.n, s.m + s.pad, side, s.offset), x(lenx, s.incx, side, s.offset), y(leny, s.incy, side, s.offset)
    {
        a.fill(element);
        for (int64_t i = 0; i < lenx; ++i) x[i] = element();
        for (int64_t i = 0; i < leny; ++i) y[i] = element();
        y.remember();
        a.read_only(), x.read_only();
    }
    Problem(const Shape& shape, Guard side, std::uint64_t seed)
        : Problem(shape, side, [random = Random(seed)]() mutable { return random.spread<T>(); })
    {
    }

    void run()
    {
        gemv<T>(&s.trans, &s.m, &s.n, &alpha, a.data(), &a.ld(), x.data(), &x.inc(), &beta, y.data(), &y.inc());
    }

    T start(int64_t i) const { return beta == T{} ? T{} : beta == T(1) ? y[i] : times(beta, y[i]); }

    // The documented order of additions.
    std::vector<T> ordered() const
    {
        std::vector<T> want;
        for (int64_t i = 0; i < leny; ++i) {
            T sum = start(i);
            if (s.trans == 'N')
                for (int64_t j = 0; j < s.n; ++j) sum = sum + times(times(alpha, x[j]), a(i, j));
            else
                for (int64_t top = 0; top < s.m; top += 1000)
                    sum = sum + times(alpha, chunk_sum(i, top, std::min<int64_t>(1000, s.m - top)));
            want.push_back(sum);
        }
        return want;
    }

private:
    // Lanes of registers that begin at the top of the chunk.
    T chunk_sum(int64_t column, int64_t top, int64_t rows) const
    {
        using R = Real<T>;
        if constexpr (is_complex<T>) {
            constexpr int lanes = 16 / sizeof(T);
            std::array<R, 4> sum[lanes] = {}; // re re, im im, re im, im re of a x
            for (int64_t i = 0; i < rows; ++i) {
                const T u = a(top + i, column), v = x[top + i];
                std::array<R, 4>& to = sum[i % lanes];
                to[0] += u.real() * v.real(), to[1] += u.imag() * v.imag();
                to[2] += u.real() * v.imag(), to[3] += u.imag() * v.real();
            }
            if constexpr (lanes == 2)
                for (std::size_t k = 0; k < 4; ++k) sum[0][k] += sum[1][k];
            const auto& t = sum[0];
            return s.trans == 'C' ? T(t[0] + t[1], t[2] - t[3]) : T(t[0] - t[1], t[2] + t[3]);
        } else {
            constexpr int lanes = 16 / sizeof(T);
            T sum[2 * lanes] = {};
            for (int64_t i = 0; i < rows; ++i) sum[i % (2 * lanes)] += a(top + i, column) * x[top + i];
            for (int k = 0; k < lanes; ++k) sum[k] += sum[k + lanes];
            if constexpr (lanes == 4)
                return (sum[0] + sum[2]) + (sum[1] + sum[3]);
            else
                return sum[0] + sum[1];
        }
    }
};

template <class T>
class Gemv : public testing::Test {
public:
    static void check(const Shape& s, T beta, Guard side, std::uint64_t seed)
    {
        SCOPED_TRACE(testing::Message() << s << " beta " << show(beta));
        Problem<T> p(s, side, seed);
        p.beta = beta;
        if (beta == T{}) {
            p.y.assign(std::vector<T>(static_cast<std::size_t>(p.leny), T(quiet_nan<Real<T>>)));
        }
        const auto want = p.ordered();
        p.run();
        expect_same_bits<T>(p.y, want, p.leny);
        EXPECT_TRUE(p.y.padding_intact());
    }
};
TYPED_TEST_SUITE(Gemv, Precisions);

constexpr char letters[] = {'N', 'T', 'C'};

// Equal bits whatever the address, the parity of lda, the increments and the neighbours: the order is per element.
TYPED_TEST(Gemv, EveryElementIsTheOrderedSum)
{
    using T = TypeParam;
    FreshCore core;
    Random random(3);
    const int64_t incs[] = {1, 1, 1, 2, -1, -3};
    const T betas[] = {T(1), T{}, scalar<T>(-0.5, 0.25)};
    std::vector<int64_t> sizes;
    for (int64_t n = 1; n <= 41; ++n) sizes.push_back(n);
    const auto pick = [&](const auto& list) {
        return list[static_cast<std::size_t>(random.integer(0, static_cast<int64_t>(std::size(list)) - 1))];
    };
    for (const int64_t m : sizes)
        for (int repeat = 0; repeat < 24; ++repeat)
            this->check({m, pick(sizes), pick(letters), random.integer(0, 3), pick(incs), pick(incs),
                         sizeof(Real<T>) * static_cast<std::size_t>(random.integer(0, 3))},
                        pick(betas), pick(both_guards), random.bits());
    // edges of panels, chunks, and of where tiles end and sweeps and requests ahead begin
    const Shape edges[] = {{127, 129}, {129, 128}, {100, 257}, {999, 9}, {1000, 3}, {1001, 10}, {2003, 7}, {7, 1001}};
    for (Shape s : edges)
        for (const char trans : letters)
            for (const int64_t inc : {1, -2}) {
                s.trans = trans, s.incx = inc, s.incy = -inc, s.pad = random.integer(0, 1);
                this->check(s, T(1), pick(both_guards), random.bits());
            }
    for (const char trans : letters) {
        this->check({20, 40, trans, 40000}, T(1), Guard::end, 1);
        this->check({600, 12, trans, 120000}, T(1), Guard::end, 2);
    }
}

TYPED_TEST(Gemv, NanAndInfinityFollowTheFormula)
{
    using T = TypeParam;
    FreshCore core;
    Random random(5);
    for (int repeat = 0; repeat < 300; ++repeat) {
        const Shape s{random.integer(1, 40), random.integer(1, 20),   letters[repeat % 3],
                      random.integer(0, 1),  repeat % 5 == 0 ? 2 : 1, repeat % 7 == 0 ? -1 : 1};
        SCOPED_TRACE(testing::Message() << s);
        Problem<T> p(s, Guard::end, [&] { return unusual<T>(random); });
        std::vector<Expected<quad>> want(static_cast<std::size_t>(p.leny));
        for (int64_t i = 0; i < p.leny; ++i) {
            auto& sum = want[static_cast<std::size_t>(i)];
            sum.add(Wide<quad>(p.y[i]));
            Expected<quad> product;
            for (int64_t l = 0; l < p.lenx; ++l) {
                const auto element = op_element<T>(s.trans, p.a.data(), p.a.ld(), i, l);
                const Wide<quad> alpha(p.alpha), x(p.x[l]);
                if (s.trans == 'N')
                    sum.add(multiply<T>(multiply<T>(alpha, x), element));
                else
                    product.add(multiply<T>(element, x));
            }
            if (s.trans != 'N') sum.add(multiply<T>(Wide<quad>(p.alpha), product.value));
        }
        p.run();
        expect_pattern<T>(p.y, want);
    }
}

TYPED_TEST(Gemv, ReturnsAndScalingBeforeAnyProduct)
{
    using T = TypeParam;
    FreshCore core;
    const T two(2), zero{}, one(1);
    const auto poisoned = [](const Shape& s) {
        return Problem<T>(s, Guard::end, [] { return T(quiet_nan<Real<T>>); });
    };
    for (const char trans : letters) {
        for (const Shape& s : {Shape{0, 5, trans}, Shape{5, 0, trans}}) {
            Problem<T> p = poisoned(s);
            p.beta = zero;
            p.y.read_only();
            p.run();
        }
        Problem<T> idle = poisoned({5, 7, trans});
        idle.alpha = zero, idle.beta = one;
        idle.y.read_only();
        idle.run();
        for (const int64_t inc : {1, 2, -1})
            for (int64_t n = 1; n <= 40; ++n) {
                Problem<T> p = poisoned({n, n, trans, 0, 1, inc});
                p.alpha = zero, p.beta = zero;
                p.run();
                expect_same_bits<T>(p.y, std::vector<T>(static_cast<std::size_t>(n)), n);
                p.y.assign(std::vector<T>(static_cast<std::size_t>(n), scalar<T>(3, 5)));
                p.beta = two;
                p.run();
                expect_same_bits<T>(p.y, std::vector<T>(static_cast<std::size_t>(n), scalar<T>(6, 10)), n);
            }
    }
}

// All elements of y are one: beta multiplies it as often as there are elements, and every product is added to it.
TYPED_TEST(Gemv, IncrementZero)
{
    using T = TypeParam;
    FreshCore core;
    for (const char trans : letters)
        for (const int64_t n : {3, 8, 19}) {
            Problem<T> p({n, n, trans, 1, 1, 0}, Guard::end, [] { return T(1); });
            p.alpha = T{}, p.beta = T(2);
            p.run();
            EXPECT_EQ(p.y[0], T(std::ldexp(Real<T>(1), static_cast<int>(n))));
            p.beta = T{};
            p.run();
            EXPECT_EQ(p.y[0], T{});
            p.alpha = p.beta = T(1);
            p.run();
            EXPECT_EQ(p.y[0], T(static_cast<Real<T>>(n * n)));
            p.s.incx = 0; // every x is the first
            const int64_t none = 0;
            gemv<T>(&p.s.trans, &p.s.m, &p.s.n, &p.alpha, p.a.data(), &p.a.ld(), p.x.data(), &none, &p.beta, p.y.data(),
                    &none);
            EXPECT_EQ(p.y[0], T(static_cast<Real<T>>(2 * n * n)));
        }
}

// The switch is asked once, after the quick returns, by the single-precision kernel alone, and changes no bit.
TYPED_TEST(Gemv, ReproducibilitySwitch)
{
    using T = TypeParam;
    FreshCore core;
    Problem<T> idle({4, 4}, Guard::end, 1);
    idle.alpha = T{};
    idle.run();
    EXPECT_EQ(core->reproducibility_queries, 0);
    std::vector<T> seen[2];
    for (const int branch : {0, 1})
        for (const char trans : letters) {
            core->reproducibility = branch;
            Problem<T> p({160, 97, trans}, Guard::end, 6);
            core->reproducibility_queries = 0;
            p.run();
            EXPECT_EQ(core->reproducibility_queries, (std::is_same_v<T, float> ? 1 : 0));
            for (const T& value : p.y.values()) seen[branch].push_back(value);
        }
    expect_same_bits<T>(seen[0], seen[1], static_cast<int64_t>(seen[0].size()));
}

TYPED_TEST(Gemv, LeavesTheEnvironmentAloneOnASmallStack)
{
    using T = TypeParam;
    FreshCore core;
    for (const char trans : letters)
        for (const Shape& s : {Shape{7, 5, trans}, Shape{33, 21, trans}, Shape{1003, 9, trans, 0, -2, 3}}) {
            Problem<T> p(s, Guard::end, [random = Random(8)]() mutable { return random.uniform<T>(); });
            EXPECT_TRUE(keeps_fp_environment([&] { p.run(); })) << s;
            run_on_small_stack(small_stack, [&] { p.run(); });
        }
    EXPECT_EQ(core->allocations, 0);
}

} // namespace
} // namespace ork::test
