// SPDX-License-Identifier: MIT
#include <cmath>
#include <limits>

#include "pdett/transform.h"
#include "support/guarded.h"

namespace ork::test {
namespace {

template <class R>
class TrigTransform : public testing::Test {
};
TYPED_TEST_SUITE(TrigTransform, RealPrecisions);

// Elements of f that take part, first and last.
struct Range {
    Int from, to;
};
Range part(Int type, Int n)
{
    return type == 0 ? Range{1, n - 1} : type == 1 ? Range{0, n} : type == 3 ? Range{1, n} : Range{0, n - 1};
}

// The defining sum of F(k) (forward) or f(k), not doubled. Angles are whole multiples of 2 pi / 8n.
template <class R>
long double plain_sum(Int type, bool forward, Int n, const std::vector<R>& f, Int k)
{
    const auto [from, to] = part(type, n);
    long double total = 0;
    for (Int i = from; i <= to; ++i) {
        const Int half = forward ? k : i, whole = forward ? i : k; // of types 2 and 3
        Int angle = type < 2 ? 4 * k * i : type == 2 ? 2 * (2 * half + 1) * whole : 2 * (2 * half - 1) * whole;
        if (type > 3) angle = (2 * k + 1) * (2 * i + 1);
        const bool weighed_half =
            (type == 1 && (i == 0 || i == n)) || (forward && type == 2 && i == 0) || (forward && type == 3 && i == n);
        const long double x = 3.14159265358979323846264338327950288L / static_cast<long double>(4 * n) *
                              static_cast<long double>(angle % (8 * n));
        const bool sine = type == 0 || type == 3 || type == 5;
        total += (weighed_half ? 0.5L : 1.0L) * (sine ? std::sin(x) : std::cos(x)) *
                 static_cast<long double>(f[static_cast<std::size_t>(i)]);
    }
    return total;
}

std::vector<Int> lengths()
{
    std::vector<Int> all = {48, 63, 64, 66, 100, 127, 128, 200, 256, 1000, 1009, 1024, 4096};
    for (Int n = 2; n <= 40; ++n) all.push_back(n);
    return all;
}

// Of a real Fourier transform of the same length, in units of the rounding: root mean square over root mean square.
template <class R>
long double bound(Int n)
{
    return (1 + 0.2L * std::log2(static_cast<long double>(n))) *
           static_cast<long double>(std::numeric_limits<R>::epsilon());
}

TYPED_TEST(TrigTransform, IsItsDefiningSum)
{
    using R = TypeParam;
    for (const Int n : lengths())
        for (Int type = 0; type < 6; ++type)
            for (const bool forward : {true, false}) {
                SCOPED_TRACE("n " + std::to_string(n) + ", type " + std::to_string(type) + (forward ? "" : ", back"));
                Trig<R> t(n, type);
                const std::vector<R> f = t.f;
                ASSERT_EQ(t.commit(), 0);
                ASSERT_EQ(forward ? t.forward() : t.backward(), 0);
                const auto [from, to] = part(type, n);
                long double error = 0, size = 0;
                for (Int k = from; k <= to; k += n > 300 ? 1 + n / 37 : 1) {
                    const long double want =
                        plain_sum(type, forward, n, f, k) * (forward ? 2.0L / static_cast<long double>(n) : 1.0L);
                    const long double off = static_cast<long double>(t.f[static_cast<std::size_t>(k)]) - want;
                    error += off * off, size += want * want;
                }
                EXPECT_TRUE(std::sqrt(error) <= bound<R>(n) * std::sqrt(size)) << std::sqrt(error / size);
            }
}

// Numbers that are not a type's own are scaled by some stages and otherwise left.
TYPED_TEST(TrigTransform, EndsAreScaledAndNoMore)
{
    using R = TypeParam;
    const Int n = 8;
    struct Ends {
        R first, last;
    };
    const auto ends = [&](Int type, bool forward) {
        Trig<R> t(n, type);
        t.ipar[2] = 0; // boundary values are not small
        t.f.front() = 16, t.f.back() = 32;
        EXPECT_EQ(t.commit(), 0);
        EXPECT_EQ(forward ? t.forward() : t.backward(), 0);
        return Ends{t.f.front(), t.f.back()};
    };
    EXPECT_EQ(ends(0, true).first, 2);
    EXPECT_EQ(ends(0, true).last, 4);
    EXPECT_EQ(ends(0, false).first, 16);
    EXPECT_EQ(ends(0, false).last, 32);
    EXPECT_EQ(ends(2, true).last, 4);
    EXPECT_EQ(ends(2, false).last, 16);
    EXPECT_EQ(ends(3, true).first, 2);
    EXPECT_EQ(ends(3, false).first, 8);
    for (const Int type : {4, 5})
        for (const bool forward : {true, false}) EXPECT_EQ(ends(type, forward).last, 32);
}

TYPED_TEST(TrigTransform, ForwardAndBackwardAreInverse)
{
    using R = TypeParam;
    for (const Int n : {2, 3, 5, 16, 33, 50, 100, 1024, 1025})
        for (Int type = 0; type < 6; ++type)
            for (const Int unscaled : {0, 1}) {
                SCOPED_TRACE("n " + std::to_string(n) + ", type " + std::to_string(type));
                Trig<R> t(n, type);
                t.ipar[10] = unscaled;
                const std::vector<R> f = t.f;
                ASSERT_EQ(t.commit(), 0);
                // Type 3 without scaling starts at the first element.
                R* const from_first = t.f.data() + (type == 3 && unscaled ? 1 : 0);
                ASSERT_EQ(t.forward(from_first), 0);
                ASSERT_EQ(t.backward(from_first), 0);
                const R factor = unscaled ? static_cast<R>(2 * n) : R(1);
                const auto [from, to] = part(type, n);
                for (Int i = from; i <= to; ++i) {
                    const R want = f[static_cast<std::size_t>(i)] * factor, got = t.f[static_cast<std::size_t>(i)];
                    EXPECT_TRUE(std::abs(got - want) <= 20 * factor * std::numeric_limits<R>::epsilon()) << i;
                }
            }
}

// Arrays end (or begin) at a page that can't be touched, tables may not be written by a computation, and bits don't
// depend on the alignment.
TYPED_TEST(TrigTransform, StaysInItsArrays)
{
    using R = TypeParam;
    for (const Int n : {2, 3, 4, 7, 16, 31, 32, 64, 100, 101, 256})
        for (Int type = 0; type < 6; ++type)
            for (const Guard side : both_guards) {
                SCOPED_TRACE("n " + std::to_string(n) + ", type " + std::to_string(type));
                Trig<R> t(n, type);
                // Scaled, so type 3 has f[0] as well; types 4 and 5 have no f[n].
                const std::size_t count = t.f.size() - (type > 3 ? 1 : 0);
                GuardedBytes data(count * sizeof(R), side),
                    numbers((5 * static_cast<std::size_t>(n) / 2 + 2) * sizeof(R), side);
                R *const f = reinterpret_cast<R*>(data.data()), *const fpar = reinterpret_cast<R*>(numbers.data());
                std::copy_n(t.f.data(), count, f);
                t.call.init(&t.n, &t.type, t.ipar.data(), fpar, &t.stat);
                t.call.commit(f, &t.handle, t.ipar.data(), fpar, &t.stat);
                ASSERT_EQ(t.stat, 0);
                EXPECT_TRUE(numbers.unchanged_outside());
                numbers.read_only();
                t.call.forward(f, &t.handle, t.ipar.data(), fpar, &t.stat);
                t.call.backward(f, &t.handle, t.ipar.data(), fpar, &t.stat);
                EXPECT_TRUE(data.unchanged_outside());
                numbers.writable();
                std::copy_n(fpar, t.fpar.size(), t.fpar.data()); // the array may move
                t.forward(), t.backward();
                EXPECT_TRUE(std::equal(f, f + count, t.f.begin()));
            }
}

} // namespace
} // namespace ork::test
