// SPDX-License-Identifier: MIT
// What is refused leaves y alone. And what calls leave behind.
#include "support/environment.h"
#include "xblas/problem.h"

namespace ork::test {
namespace {

template <class T>
class Arguments : public testing::Test {
};
TYPED_TEST_SUITE(Arguments, Precisions, PrecisionNames);

constexpr Kind kinds[] = {Kind::general, Kind::band, Kind::symmetric, Kind::hermitian};

// A product of order 3 that would change y, with one argument changed.
template <class T>
bool changes_y(Kind kind, bool two, Int order, void (*change)(Problem<T>&), Int less_lda = 0)
{
    std::vector<T> a(64, T(1)), x(64, T(1)), y(64, T(7)), before(y);
    Problem<T> p;
    p.kind = kind, p.two = two, p.order = order, p.m = p.n = 3;
    p.kl = p.ku = kind == Kind::band ? 1 : 0;
    const Int lda = p.lda() - less_lda;
    change(p);
    p.call(a.data(), lda, x.data() + 20, x.data() + 40, y.data() + 20, p.order);
    return y != before;
}

TYPED_TEST(Arguments, WrongOnesLeaveY)
{
    using T = TypeParam;
    using P = Problem<T>;
    using Change = void (*)(P&);
    const Change everywhere[] = {
        [](P& p) { p.order = 100; }, [](P& p) { p.order = 103; }, [](P& p) { p.prec = 210; },
        [](P& p) { p.prec = 215; },  [](P& p) { p.incx = 0; },    [](P& p) { p.incy = 0; },
        [](P& p) { p.n = -1; },      [](P& p) { p.n = p.m = 0; }, [](P& p) { p.prec += Int{1} << 32; }};
    const Change general[] = {[](P& p) { p.trans = 110; }, [](P& p) { p.trans = 114; }, [](P& p) { p.m = -1; },
                              [](P& p) { p.trans = 112, p.m = 3, p.n = 0; }};
    const Change band[] = {[](P& p) { p.kl = -1; }, [](P& p) { p.ku = -1; }, [](P& p) { p.kl = INT64_MAX; }};
    const Change triangle[] = {[](P& p) { p.uplo = 120; }, [](P& p) { p.uplo = 123; }};
    for (const Kind kind : kinds) {
        if (kind == Kind::hermitian && !is_complex<T>) break;
        for (const bool two : {false, true})
            for (const Int order : all_orders) {
                const auto expect_refused = [&](const auto& changes) {
                    for (const Change& change : changes)
                        EXPECT_FALSE(changes_y<T>(kind, two, order, change))
                            << "kind " << static_cast<int>(kind) << " change " << &change - changes;
                };
                EXPECT_TRUE(changes_y<T>(kind, two, order, [](P&) {}));
                EXPECT_FALSE(changes_y<T>(
                    kind, two, order, [](P&) {}, 1))
                    << "lda";
                expect_refused(everywhere);
                if (kind == Kind::general || kind == Kind::band) expect_refused(general);
                if (kind == Kind::band) expect_refused(band);
                if (kind == Kind::symmetric || kind == Kind::hermitian) expect_refused(triangle);
            }
    }
}

TYPED_TEST(Arguments, ControlFlagsAndStack)
{
    using T = TypeParam;
    for (const Kind kind : kinds) {
        if (kind == Kind::hermitian && !is_complex<T>) break;
        for (const Int prec : all_precisions)
            for (const Int n : {1, 3, 7, 20}) {
                Problem<T> p;
                p.kind = kind, p.two = true, p.m = p.n = n, p.prec = prec, p.alpha = T(3), p.beta = T(2);
                p.kl = p.ku = kind == Kind::band ? 2 : 0;
                const auto size = static_cast<std::size_t>(n * p.lda());
                const std::vector<T> a = uniform_values<T>(static_cast<Int>(size)), x = uniform_values<T>(n);
                std::vector<T> y = uniform_values<T>(n);
                const auto call = [&] { p.call(a.data(), p.lda(), x.data(), x.data(), y.data(), by_columns); };
                EXPECT_TRUE(keeps_fp_environment(call)) << p.describe();
                run_on_small_stack(small_stack, call);
            }
    }
}

} // namespace
} // namespace ork::test
