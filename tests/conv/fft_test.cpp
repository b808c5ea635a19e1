// SPDX-License-Identifier: MIT
#include <complex>
#include <cstring>
#include <thread>

#include "conv/reference.h"
#include "ork/ork.h"
#include "support/environment.h"

namespace ork::test {
namespace {

template <class T>
class Transforms : public testing::Test {
protected:
    Transforms() { replaced_core().reset(); }
    ~Transforms() override
    {
        EXPECT_EQ(replaced_core().blocks, 0);
        EXPECT_EQ(replaced_core().descriptors, 0);
    }
};
using Elements = testing::Types<float, double, std::complex<float>, std::complex<double>>;
TYPED_TEST_SUITE(Transforms, Elements);

// As nx2/conv/fft/fft.h has it.
long double epsilons(const Setup& setup)
{
    long double x = 1, y = 1;
    for (const std::int32_t n : setup.x) x *= n;
    for (const std::int32_t n : setup.y) y *= n;
    return 8 * std::log2(2 * (x + y));
}

// As it is, and with x kept from one run to the next: the same bits.
template <class T>
void expect_sums(Setup setup)
{
    static int count = 0;
    setup.mode = ORK_CONV_FFT;
    if (sizeof(Real<T>) == 4 && count % 3 == 0) setup.internal = ORK_CONV_DOUBLE;
    Convolution<T> c(setup, both_guards[count++ % 2]);
    ASSERT_EQ(c.exec(), 0) << setup.describe();
    EXPECT_TRUE(c.is_sum_by_transforms(epsilons(setup)));
    const std::vector<T> first = c.z.memory.values();
    for (int run = 0; run < 2; ++run) {
        for (T& z : c.z.memory.span()) z = {};
        ASSERT_EQ(c.exec(true), 0);
        for_each_index(c.z.extents, [&](const auto& k) {
            EXPECT_TRUE(same_bits(c.z[k], first[static_cast<std::size_t>(c.z.at(k))])) << setup.describe();
        });
    }
}

std::int32_t some_stride(Random& random, Int stride)
{
    return static_cast<std::int32_t>(random.integer(0, 1) != 0 ? stride : -stride);
}

TYPED_TEST(Transforms, OfAnyShapeStrideStartAndDecimation)
{
    Random random(3);
    const Int most[] = {0, 300, 40, 10, 6};
    for (int count = 0; count < 300; ++count) {
        const auto dims = static_cast<int>(random.integer(1, 4));
        Setup setup{.x = {}, .y = {}, .job = count % 2 == 0 ? ORK_CONV_CONVOLUTION : ORK_CONV_CORRELATION};
        Int strides[3] = {random.integer(1, 2), random.integer(1, 3), random.integer(1, 2)};
        for (int d = 0; d < dims; ++d) {
            const Int x = random.integer(1, most[dims]), y = random.integer(1, most[dims] / (1 + count % 5) + 1);
            const Int first = random.integer(0, x + y - 2), step = count % 3 == 0 ? random.integer(1, x + y) : 1;
            const Int all = (x + y - 2 - first) / step + 1, z = random.integer((all + 1) / 2, all);
            const auto add = [](Ints& list, Int n) { list.push_back(static_cast<std::int32_t>(n)); };
            add(setup.x, x), add(setup.y, y), add(setup.z, z), add(setup.decimation, step);
            add(setup.start, setup.correlates() ? first + 1 - x : first);
            if (count % 4 == 0) continue;
            setup.x_stride.push_back(random.integer(0, 9) == 0 ? 0 : some_stride(random, strides[0]));
            setup.y_stride.push_back(some_stride(random, strides[1]));
            setup.z_stride.push_back(some_stride(random, strides[2]));
            strides[0] *= x, strides[1] *= y, strides[2] *= z;
        }
        expect_sums<TypeParam>(setup);
    }
}

// Every length of transforms, around the ends of tiles.
TYPED_TEST(Transforms, OfLinesOfEveryLength)
{
    for (std::int32_t x = 1; x <= 100; ++x) expect_sums<TypeParam>({{x}, {1 + x * 7 % 40}});
    for (const std::int32_t x : {2000, 3999, 5000})
        for (const std::int32_t y : {1, 2, 10, 31}) {
            expect_sums<TypeParam>({{x}, {y}});
            expect_sums<TypeParam>({{y}, {x}, {}, ORK_CONV_CORRELATION});
            expect_sums<TypeParam>({.x = {x}, .y = {y}, .start = {x / 2}, .decimation = {3}});
            expect_sums<TypeParam>({.x = {x}, .y = {y}, .start = {5}, .decimation = {700}});
        }
}

TYPED_TEST(Transforms, OfGridsInTiles)
{
    expect_sums<TypeParam>({{300, 200}, {3, 4}});
    expect_sums<TypeParam>({{2, 5}, {150, 260}, {}, ORK_CONV_CORRELATION});
    expect_sums<TypeParam>({.x = {3, 600}, .y = {3, 2}, .start = {1, 1}, .decimation = {1, 2}});
    expect_sums<TypeParam>({{40, 30, 50}, {2, 3, 2}});
}

std::vector<Setup> setups_in_tiles()
{
    return {{{70000}, {50}, {}, ORK_CONV_CORRELATION, ORK_CONV_FFT},
            {{200}, {150}, {}, ORK_CONV_CONVOLUTION, ORK_CONV_FFT},
            {{120, 150}, {6, 40}, {}, ORK_CONV_CONVOLUTION, ORK_CONV_FFT},
            {{9, 14, 8}, {20, 5, 17}, {}, ORK_CONV_CORRELATION, ORK_CONV_FFT}};
}

TYPED_TEST(Transforms, HaveTheSameBitsForAnyNumberOfThreadsAndCallers)
{
    for (const Setup& setup : setups_in_tiles()) {
        Convolution<TypeParam> c(setup);
        ork_set_num_threads(1);
        ASSERT_EQ(c.exec(true), 0);
        const std::vector<TypeParam> want = c.z.memory.values();
        ork_set_num_threads(3);
        std::vector<std::thread> callers;
        for (int i = 0; i < 4; ++i)
            callers.emplace_back([&, i] {
                std::vector<TypeParam> z(want.size());
                const ConvKernels& call = conv_kernels();
                for (int run = 0; run < 3; ++run) {
                    const std::int32_t status =
                        i % 2 == 0 ? call.execx(c.task, c.y.zero(), nullptr, z.data(), nullptr)
                                   : call.exec(c.task, c.x.zero(), nullptr, c.y.zero(), nullptr, z.data(), nullptr);
                    EXPECT_EQ(status, 0);
                    EXPECT_EQ(std::memcmp(z.data(), want.data(), z.size() * sizeof(TypeParam)), 0) << setup.describe();
                }
            });
        for (std::thread& caller : callers) caller.join();
        ork_set_num_threads(0);
    }
}

// Whichever allocation or call to a transform fails first: a status, nothing lost, and a task that works again.
TYPED_TEST(Transforms, EndWithAStatusWithoutMemoryOrTransforms)
{
    ReplacedCore& core = replaced_core();
    for (const Setup& setup : setups_in_tiles())
        for (std::atomic<int>* left : {&core.allocations_left, &core.transforms_left})
            for (int failing = 0, status = 1; status != 0; failing = failing < 40 ? failing + 1 : failing * 2) {
                Convolution<TypeParam> c(setup);
                *left = failing;
                status = c.exec(failing % 2 == 1);
                *left = -1;
                if (status != 0) {
                    ASSERT_EQ(status, ORK_CONV_NO_WORK_MEMORY) << setup.describe() << ", " << failing;
                    ASSERT_EQ(c.exec(failing % 2 == 1), 0);
                }
                ASSERT_LT(failing, 100000);
            }
}

// Strides of 0 make extents that no memory holds.
TYPED_TEST(Transforms, RefuseWhatNoMemoryHolds)
{
    constexpr std::int32_t huge = std::numeric_limits<std::int32_t>::max();
    TypeParam x{}, y{}, z{};
    for (const int dims : {2, 3, 7}) {
        const Ints extents(static_cast<std::size_t>(dims), huge), zeros(static_cast<std::size_t>(dims), 0),
            ones(static_cast<std::size_t>(dims), 1), middle(static_cast<std::size_t>(dims), huge - 1);
        ork_conv_task* task = nullptr;
        const ConvKernels& call = conv_kernels();
        call.newtask(&task, ORK_CONV_CONVOLUTION, 0, ORK_CONV_FFT, is_complex<TypeParam> ? ORK_CONV_COMPLEX : 1,
                     sizeof(Real<TypeParam>) == 8 ? ORK_CONV_DOUBLE : ORK_CONV_SINGLE, dims, extents.data(),
                     extents.data(), ones.data());
        // The first output depends on one element of each.
        EXPECT_EQ(call.exec(task, &x, zeros.data(), &y, zeros.data(), &z, ones.data()), 0);
        call.edittask(task, ORK_CONV_START, middle.data());
        EXPECT_EQ(call.exec(task, &x, zeros.data(), &y, zeros.data(), &z, ones.data()), ORK_CONV_NO_WORK_MEMORY);
        call.deletetask(&task);
    }
}

// Longer than a transform in one piece would stand: 40,000,000 numbers in tiles, looked at here and there.
TEST(LongLines, AreConvolvedInTiles)
{
    constexpr std::int32_t n = 40'000'000, m = 31, all = n + m - 1;
    std::vector<double> x(n), y(m), z(all);
    Random random(5);
    for (double& value : x) value = random.uniform<double>();
    for (double& value : y) value = random.uniform<double>();
    ork_conv_task* task = nullptr;
    const ConvKernels& call = conv_kernels();
    call.newtask(&task, ORK_CONV_CONVOLUTION, 0, ORK_CONV_FFT, ORK_CONV_REAL, ORK_CONV_DOUBLE, 1, &n, &m, &all);
    ASSERT_EQ(call.exec(task, x.data(), nullptr, y.data(), nullptr, z.data(), nullptr), 0);
    call.deletetask(&task);
    for (std::size_t k = 0; k < z.size(); k = k < 100 || k + 20000 >= z.size() ? k + 1 : k + 9973) {
        double sum = 0;
        for (std::size_t j = 0; j < y.size(); ++j)
            if (k >= j && k - j < x.size()) sum += x[k - j] * y[j];
        ASSERT_NEAR(z[k], sum, 1e-12) << k;
    }
}

} // namespace
} // namespace ork::test
