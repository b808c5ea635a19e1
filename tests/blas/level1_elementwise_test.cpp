// SPDX-License-Identifier: MIT
// axpy, axpby, scal, copy, swap, rot, rotm against a loop over the elements in order, bit for bit.
#include <cstring>
#include <limits>
#include <sys/mman.h>

#include "blas/level1_kernels.h"
#include "blas/level1_kernels_by_type.h"
#include "support/compare.h"
#include "support/environment.h"
#include "support/strided.h"

namespace ork::test {
namespace {

template <class R>
constexpr R nan = std::numeric_limits<R>::quiet_NaN();
template <class R>
constexpr R infinity = std::numeric_limits<R>::infinity();

template <class T>
T scalar(double re, double im)
{
    if constexpr (is_complex<T>)
        return {static_cast<Real<T>>(re), static_cast<Real<T>>(im)};
    else
        return static_cast<T>(re);
}

// An operation: the kernel, and what it does to one pair of elements.
template <class T>
struct Axpy {
    using Element = T;
    static constexpr bool writes_x = false, in_order_of_memory = true;
    T alpha = scalar<T>(0.7, -1.3);
    void call(int64_t n, T* x, int64_t incx, T* y, int64_t incy) const { axpy<T>(&n, &alpha, x, &incx, y, &incy); }
    void one(T& x, T& y) const { y = y + times(alpha, x); }
};
template <class T>
struct Axpby {
    using Element = T;
    static constexpr bool writes_x = false, in_order_of_memory = false;
    T alpha = scalar<T>(0.7, -1.3), beta = scalar<T>(-1.1, 0.3);
    void call(int64_t n, T* x, int64_t incx, T* y, int64_t incy) const
    {
        axpby<T>(&n, &alpha, x, &incx, &beta, y, &incy);
    }
    void one(T& x, T& y) const { y = times(alpha, x) + times(beta, y); }
};
template <class T>
struct AxpbyWithoutY {
    using Element = T;
    static constexpr bool writes_x = false, in_order_of_memory = false;
    T alpha = scalar<T>(0.7, -1.3), beta{};
    void call(int64_t n, T* x, int64_t incx, T* y, int64_t incy) const
    {
        axpby<T>(&n, &alpha, x, &incx, &beta, y, &incy);
    }
    void one(T& x, T& y) const { y = times(alpha, x); }
};
template <class T>
struct Scal {
    using Element = T;
    static constexpr bool writes_x = false, in_order_of_memory = false;
    T alpha = scalar<T>(0.7, -1.3);
    void call(int64_t n, T*, int64_t, T* y, int64_t incy) const { scal<T>(&n, &alpha, y, &incy); }
    void one(T&, T& y) const { y = times(alpha, y); }
};
template <class T>
struct ScalReal {
    using Element = T;
    static constexpr bool writes_x = false, in_order_of_memory = false;
    Real<T> alpha = static_cast<Real<T>>(0.7);
    void call(int64_t n, T*, int64_t, T* y, int64_t incy) const { scal_real<T>(&n, &alpha, y, &incy); }
    void one(T&, T& y) const { y = times(alpha, y); }
};
template <class T>
struct Copy {
    using Element = T;
    static constexpr bool writes_x = false, in_order_of_memory = false;
    void call(int64_t n, T* x, int64_t incx, T* y, int64_t incy) const { copy<T>(&n, x, &incx, y, &incy); }
    void one(T& x, T& y) const { std::memcpy(&y, &x, sizeof y); }
};
template <class T>
struct Swap {
    using Element = T;
    static constexpr bool writes_x = true, in_order_of_memory = false;
    void call(int64_t n, T* x, int64_t incx, T* y, int64_t incy) const { swap<T>(&n, x, &incx, y, &incy); }
    void one(T& x, T& y) const { std::swap(x, y); }
};
template <class T, class S>
struct Rot {
    using Element = T;
    static constexpr bool writes_x = true, in_order_of_memory = false;
    Real<T> c = static_cast<Real<T>>(0.6);
    S s = scalar<S>(0.7, 0.4);
    void call(int64_t n, T* x, int64_t incx, T* y, int64_t incy) const
    {
        if constexpr (std::is_same_v<S, T>)
            rot<T>(&n, x, &incx, y, &incy, &c, &s);
        else
            rot_real<T>(&n, x, &incx, y, &incy, &c, &s);
    }
    void one(T& x, T& y) const
    {
        const T a = x, b = y;
        y = times(c, b) - times(conjugated(s), a);
        x = times(c, a) + times(s, b);
    }
};
template <class T, int flag>
struct Rotm {
    using Element = T;
    static constexpr bool writes_x = true, in_order_of_memory = false;
    T param[5] = {flag, T(0.6), T(-0.3), T(0.8), T(1.7)};
    void call(int64_t n, T* x, int64_t incx, T* y, int64_t incy) const { rotm<T>(&n, x, &incx, y, &incy, param); }
    void one(T& x, T& y) const
    {
        const T a = x, b = y;
        if (flag == -1) x = a * param[1] + b * param[3], y = a * param[2] + b * param[4];
        if (flag == 0) x = a + b * param[3], y = a * param[2] + b;
        if (flag == 1) x = a * param[1] + b, y = b * param[4] - a;
    }
};

template <class Operation>
class Elementwise : public testing::Test {
public:
    using T = typename Operation::Element;
    static constexpr int64_t longest = 2 * stretch<T> + 3;

    // The same on an image of the memory, element after element.
    static void in_order(int64_t n, T* x, int64_t incx, T* y, int64_t incy)
    {
        const Operation operation;
        for (int64_t i = 0; i < n; ++i)
            operation.one(x[incx < 0 ? (i - n + 1) * incx : i * incx], y[incy < 0 ? (i - n + 1) * incy : i * incy]);
    }

    static void check(int64_t n, int64_t incx, int64_t incy, Guard side, std::size_t offset_x, std::size_t offset_y)
    {
        SCOPED_TRACE(testing::Message() << "n " << n << " incx " << incx << " incy " << incy << " offsets " << offset_x
                                        << ' ' << offset_y);
        Vector<T> x(spread_values<T>(n, 1), incx, side, offset_x * sizeof(T));
        Vector<T> y(spread_values<T>(n, 2), incy, side, offset_y * sizeof(T));
        const int64_t length_x = n == 0 ? 0 : 1 + (n - 1) * std::abs(incx);
        const int64_t length_y = n == 0 ? 0 : 1 + (n - 1) * std::abs(incy);
        std::vector<T> want_x(x.data(), x.data() + length_x), want_y(y.data(), y.data() + length_y);
        in_order(n, want_x.data(), incx, want_y.data(), incy);
        if (!Operation::writes_x) x.read_only();
        Operation().call(n, x.data(), incx, y.data(), incy);
        expect_same_bits<T>(x.data(), want_x.data(), length_x);
        expect_same_bits<T>(y.data(), want_y.data(), length_y);
        EXPECT_TRUE(x.padding_intact());
        EXPECT_TRUE(y.padding_intact());
    }
};

using Operations =
    testing::Types<Axpy<float>, Axpy<double>, Axpy<cfloat>, Axpy<cdouble>, Axpby<float>, Axpby<double>, Axpby<cfloat>,
                   Axpby<cdouble>, AxpbyWithoutY<float>, AxpbyWithoutY<double>, AxpbyWithoutY<cfloat>,
                   AxpbyWithoutY<cdouble>, Scal<float>, Scal<double>, Scal<cfloat>, Scal<cdouble>, ScalReal<cfloat>,
                   ScalReal<cdouble>, Copy<float>, Copy<double>, Copy<cfloat>, Copy<cdouble>, Swap<float>, Swap<double>,
                   Swap<cfloat>, Swap<cdouble>, Rot<float, float>, Rot<double, double>, Rot<cfloat, cfloat>,
                   Rot<cdouble, cdouble>, Rot<cfloat, float>, Rot<cdouble, double>, Rotm<float, -1>, Rotm<float, 0>,
                   Rotm<float, 1>, Rotm<double, -1>, Rotm<double, 0>, Rotm<double, 1>>;
TYPED_TEST_SUITE(Elementwise, Operations);

TYPED_TEST(Elementwise, EveryLength)
{
    using T = typename TypeParam::Element;
    constexpr std::size_t alignments = sizeof(T) < 16 ? 16 / sizeof(T) : 1;
    for (int64_t n = 0; n <= this->longest; ++n)
        for (const Guard side : both_guards)
            for (const int64_t inc : {1, -1})
                this->check(n, inc, inc, side, static_cast<std::size_t>(n) / 3 % alignments,
                            static_cast<std::size_t>(n) % alignments);
}

TYPED_TEST(Elementwise, EveryPairOfIncrements)
{
    for (const int64_t n : {1, 2, 3, 4, 5, 9, 40})
        for (int64_t incx = -3; incx <= 3; ++incx)
            for (int64_t incy = -3; incy <= 3; ++incy)
                this->check(n, incx, incy, n % 2 != 0 ? Guard::begin : Guard::end, 0, 1);
}

// x and y in one array, y some elements before or behind x.
TYPED_TEST(Elementwise, OverlappingVectorsAreTakenInOrder)
{
    using T = typename TypeParam::Element;
    constexpr int64_t n = 2 * stretch<T> + 3, reach = 19;
    for (int64_t distance = -reach; distance <= reach; ++distance)
        for (const int64_t inc : {1, -1, 2}) {
            if (TypeParam::in_order_of_memory && inc < 0) continue; // runs upwards through memory
            SCOPED_TRACE(testing::Message() << "distance " << distance << " inc " << inc);
            std::vector<T> memory = uniform_values<T>(2 * n + 2 * reach), want = memory;
            this->in_order(n, want.data() + reach, inc, want.data() + reach + distance, inc);
            TypeParam().call(n, memory.data() + reach, inc, memory.data() + reach + distance, inc);
            expect_same_bits<T>(memory, want, static_cast<int64_t>(memory.size()));
        }
}

// Not even the payload of a NaN depends on where the operands stand; addresses that are no multiple of the element's
// size are legal on this processor.
TYPED_TEST(Elementwise, SameBitsAtEveryAlignment)
{
    using T = typename TypeParam::Element;
    using Bits = std::conditional_t<sizeof(Real<T>) == 4, std::uint32_t, std::uint64_t>;
    constexpr std::size_t offsets[] = {0, 1, 4, 8, 12};
    for (const int64_t n : {1, 2, 3, 5, 7, 15, 33, 71, 150, 1000}) {
        const std::size_t bytes = static_cast<std::size_t>(n) * sizeof(T);
        std::vector<T> x = spread_values<T>(n, 3), y = spread_values<T>(n, 4);
        for (int64_t i = 0; i < n; ++i) { // distinct NaN in x, in y, in both
            const Bits quiet = std::bit_cast<Bits>(nan<Real<T>>);
            const auto part = static_cast<std::size_t>(i);
            const Real<T> of_x = std::bit_cast<Real<T>>(quiet + static_cast<Bits>(i) + 1);
            const Real<T> of_y = std::bit_cast<Real<T>>(quiet + static_cast<Bits>(i) + 5001);
            if (i % 5 == 1 || i % 5 == 3) std::memcpy(static_cast<void*>(&x[part]), &of_x, sizeof of_x);
            if (i % 5 == 2 || i % 5 == 3) std::memcpy(static_cast<void*>(&y[part]), &of_y, sizeof of_y);
        }
        alignas(64) static std::byte memory[2][1000 * 16 + 64];
        std::vector<std::byte> want;
        for (const std::size_t offset_x : offsets)
            for (const std::size_t offset_y : offsets) {
                std::memcpy(memory[0] + offset_x, x.data(), bytes);
                std::memcpy(memory[1] + offset_y, y.data(), bytes);
                TypeParam().call(n, reinterpret_cast<T*>(memory[0] + offset_x), 1,
                                 reinterpret_cast<T*>(memory[1] + offset_y), 1);
                std::vector<std::byte> got(memory[0] + offset_x, memory[0] + offset_x + bytes);
                got.insert(got.end(), memory[1] + offset_y, memory[1] + offset_y + bytes);
                if (want.empty()) want = got;
                ASSERT_EQ(got, want) << "n " << n << " offsets " << offset_x << ' ' << offset_y;
            }
    }
}

// A part of a register must not compute on lanes of its own making: infinity times zero would raise the invalid flag.
TYPED_TEST(Elementwise, RaisesNoFlagOfItsOwn)
{
    using T = typename TypeParam::Element;
    for (int64_t n = 0; n <= stretch<T>; ++n) {
        Vector<T> x(uniform_values<T>(n, 5), 1), y(uniform_values<T>(n, 6), 1);
        EXPECT_TRUE(keeps_fp_environment([&] { TypeParam().call(n, x.data(), 1, y.data(), 1); })) << n;
    }
}

template <class T>
class Level1 : public testing::Test {
};
using Precisions = testing::Types<float, double, cfloat, cdouble>;
TYPED_TEST_SUITE(Level1, Precisions);

TYPED_TEST(Level1, ScalarsOfInfinityRaiseNoInvalidFlag)
{
    using T = TypeParam;
    const T alpha = scalar<T>(infinity<Real<T>>, 1);
    for (int64_t n = 1; n <= stretch<T>; ++n) {
        const int64_t inc = 1;
        std::vector<T> x(static_cast<std::size_t>(n), scalar<T>(2, 3)), y = x;
        EXPECT_EQ(fp_flags_of([&] { axpy<T>(&n, &alpha, x.data(), &inc, y.data(), &inc); }), 0u) << n;
        EXPECT_EQ(fp_flags_of([&] { scal<T>(&n, &alpha, x.data(), &inc); }), 0u) << n;
    }
}

TYPED_TEST(Level1, AxpyWithAlphaZeroTouchesNothing)
{
    using T = TypeParam;
    for (const int64_t inc : {1, 2, -1}) {
        const int64_t n = 21;
        const T zero{};
        Vector<T> x(std::vector<T>(21, T(nan<Real<T>>)), inc), y(uniform_values<T>(n), inc);
        y.read_only();
        axpy<T>(&n, &zero, x.data(), &inc, y.data(), &inc);
        EXPECT_TRUE(y.unchanged());
    }
}

TYPED_TEST(Level1, AxpbyWithBetaZeroNeverReadsY)
{
    using T = TypeParam;
    const T alpha = scalar<T>(0.5, 2), zero{};
    for (int64_t n = 1; n <= 2 * stretch<T> + 3; ++n)
        for (const int64_t incy : {1, -1, 3, 0}) {
            const int64_t incx = 1;
            Vector<T> x(uniform_values<T>(n), incx),
                y(std::vector<T>(static_cast<std::size_t>(n), T(nan<Real<T>>)), incy);
            axpby<T>(&n, &alpha, x.data(), &incx, &zero, y.data(), &incy);
            for (int64_t i = 0; i < n; ++i) expect_same_bits(y[i], times(alpha, x[incy == 0 ? n - 1 : i]));
        }
}

TYPED_TEST(Level1, ScalByZeroMultipliesAndScalByOneDoesNothing)
{
    using T = TypeParam;
    using R = Real<T>;
    for (int64_t n = 1; n <= stretch<T> + 3; ++n)
        for (const int64_t inc : {1, -1, 2}) {
            std::vector<T> values = uniform_values<T>(n);
            values[static_cast<std::size_t>(n) / 2] = T(nan<R>);
            values[0] = T(infinity<R>);
            Vector<T> x(values, inc), untouched(values, inc);
            const T zero{}, one(1);
            scal<T>(&n, &zero, x.data(), &inc);
            untouched.read_only();
            scal<T>(&n, &one, untouched.data(), &inc);
            EXPECT_TRUE(untouched.unchanged());
            for (int64_t i = 0; i < n; ++i) {
                const T want = times(zero, values[static_cast<std::size_t>(i)]);
                if (!is_near(x[i], expected<quad>(want), 0)) ADD_FAILURE() << i << " of " << n << ": " << show(x[i]);
            }
        }
}

TYPED_TEST(Level1, NegativeLengthsDoNothing)
{
    using T = TypeParam;
    const int64_t n = -3, inc = 1;
    const T alpha = scalar<T>(2, 1);
    const Real<T> c{};
    Vector<T> x(uniform_values<T>(4), 1), y(uniform_values<T>(4), 1);
    x.read_only(), y.read_only();
    axpy<T>(&n, &alpha, x.data(), &inc, y.data(), &inc);
    axpby<T>(&n, &alpha, x.data(), &inc, &alpha, y.data(), &inc);
    scal<T>(&n, &alpha, x.data(), &inc);
    copy<T>(&n, x.data(), &inc, y.data(), &inc);
    swap<T>(&n, x.data(), &inc, y.data(), &inc);
    rot<T>(&n, x.data(), &inc, y.data(), &inc, &c, &alpha);
    EXPECT_TRUE(x.unchanged() && y.unchanged());
}

// Positions past 2^31 elements, on pages that exist only where they are touched.
TEST(Level1Far, IncrementsAndPositionsAreSixtyFourBitsWide)
{
    constexpr int64_t step = (int64_t{1} << 31) + 1, n = 3, unit = 1;
    constexpr std::size_t bytes = static_cast<std::size_t>((n - 1) * step + 1) * sizeof(float);
    void* memory = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (memory == MAP_FAILED) GTEST_SKIP() << "no address space for " << bytes << " bytes";
    auto* x = static_cast<float*>(memory);
    const float y[] = {1, 10, 100}, alpha = 2;
    for (const int64_t inc : {step, -step}) {
        const bool up = inc > 0;
        copy<float>(&n, y, &unit, x, &inc);
        EXPECT_EQ(x[step], 10);
        EXPECT_EQ(x[2 * step], up ? 100 : 1);
        scal<float>(&n, &alpha, x, &inc);
        axpy<float>(&n, &alpha, y, &unit, x, &inc);
        EXPECT_EQ(dot<float>(&n, x, &inc, y, &unit), 4 * (1 + 100 + 10000));
        EXPECT_EQ(asum<float>(&n, x, &inc), 4 * 111);
        EXPECT_EQ(amax<float>(&n, x, &inc), 3);
    }
    munmap(memory, bytes);
}

TEST(Rotm, WithFlagMinusTwoIsTheIdentity)
{
    const int64_t n = 9, inc = 1;
    const double param[5] = {-2, nan<double>, nan<double>, nan<double>, nan<double>};
    Vector<double> x(uniform_values<double>(n), 1), y(uniform_values<double>(n), 1);
    x.read_only(), y.read_only();
    rotm<double>(&n, x.data(), &inc, y.data(), &inc, param);
    EXPECT_TRUE(x.unchanged() && y.unchanged());
}

} // namespace
} // namespace ork::test
