// SPDX-License-Identifier: MIT
// Real transforms: every length to 128 and some beyond, in every layout of the half spectrum, number by number.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "dft/node.h"
#include "support/environment.h"
#include "support/guarded.h"

namespace ork::test {
namespace {

enum class Space { in_place, apart };
constexpr int formats[] = {ORK_DFT_CCS, ORK_DFT_PACK, ORK_DFT_PERM, ORK_DFT_CCE};

// The layouts as docs give them, one number after another: value[k] of each and which part of it (0 re, 1 im, 2 a zero
// that symmetry has there).
struct Slot {
    Int k;
    int part;
};
std::vector<Slot> slots(int format, Int n)
{
    const bool even = n % 2 == 0, zeros = format == ORK_DFT_CCS || format == ORK_DFT_CCE;
    std::vector<Slot> list = {{0, 0}};
    if (zeros) list.push_back({0, 2});
    if (format == ORK_DFT_PERM && even) list.push_back({n / 2, 0});
    for (Int k = 1; k < (n + 1) / 2; ++k) list.insert(list.end(), {{k, 0}, {k, 1}});
    if (even && format != ORK_DFT_PERM) list.push_back({n / 2, 0});
    if (even && zeros) list.push_back({n / 2, 2});
    return list;
}

template <class R>
std::vector<R> packed(int format, const std::vector<wide>& spectrum)
{
    std::vector<R> list;
    for (const Slot slot : slots(format, static_cast<Int>(spectrum.size()))) {
        const wide x = spectrum[static_cast<std::size_t>(slot.k)];
        list.push_back(static_cast<R>(slot.part == 0 ? x.real() : slot.part == 1 ? x.imag() : 0));
    }
    return list;
}

// A batch of one-dimensional transforms; strides and distances count as the node's do.
struct Shape {
    Int n, count = 1, real_stride = 1, real_distance = 0, stride = 1, distance = 0;
};

template <class R>
class Real : public testing::Test {
protected:
    FreshCore core_;

    static void set(Node<R>& node, int format, Space space, const Shape& shape)
    {
        node->placement = space == Space::in_place ? ORK_DFT_INPLACE : ORK_DFT_NOT_INPLACE;
        node->storage.conjugate_even_storage = format == ORK_DFT_CCE ? ORK_DFT_COMPLEX_COMPLEX : ORK_DFT_COMPLEX_REAL;
        node->packed_format = format;
        node->transforms = shape.count;
        node->stride[0] = node->dimensions[0].input_stride = shape.real_stride;
        node->stride[1] = node->dimensions[0].output_stride = shape.stride;
        node->input_distance = shape.real_distance, node->output_distance = shape.distance;
        ASSERT_EQ(node.commit(), ORK_DFT_OK);
    }
    static std::vector<wide> widened(const std::vector<R>& x) { return {x.begin(), x.end()}; }

    // Relative to the size of `want`; NaN if there is any.
    static long double error(const std::vector<R>& got, const std::vector<R>& want)
    {
        std::vector<wide> reference(want.begin(), want.end());
        return relative_error(got, reference);
    }
};
using Precisions = testing::Types<float, double>;
TYPED_TEST_SUITE(Real, Precisions);

// Forward, the exact zeros, and back from a spectrum whose zeros are NaN, in place and not, with every array flush
// against an inaccessible page and the input read-only.
TYPED_TEST(Real, EveryLengthInEveryLayout)
{
    using R = TypeParam;
    std::vector<Int> lengths = {135,  189,  210,  243,  255,  256,  257,  289,  686,
                                1001, 1009, 1024, 1155, 2310, 4096, 6561, 10125};
    for (Int n = 1; n <= 128; ++n) lengths.push_back(n);
    for (const Int n : lengths) {
        const auto x = uniform_values<R>(n, static_cast<std::uint64_t>(n));
        const auto spectrum = reference_dft(this->widened(x), {n}, ORK_DFT_FORWARD);
        for (const int format : formats)
            for (const Space space : {Space::in_place, Space::apart}) {
                SCOPED_TRACE(testing::Message() << "n = " << n << ", format " << format << ", place " << int(space));
                const auto want = packed<R>(format, spectrum);
                const auto list = slots(format, n);
                const auto size = static_cast<Int>(want.size());
                Node<R> node({n}, ORK_DFT_REAL);
                node->scales.backward = 1.0 / static_cast<double>(n);
                node->scales.backward_single = static_cast<float>(node->scales.backward);
                this->set(node, format, space, {n});

                for (const Guard side : both_guards) {
                    Guarded<R> in(space == Space::in_place ? size : n, side, n % 2 * sizeof(R)), out(size, side);
                    std::copy(x.begin(), x.end(), in.data());
                    Guarded<R>& result = space == Space::in_place ? in : out;
                    if (space == Space::apart) {
                        in.read_only();
                        ASSERT_EQ(node.compute(ORK_DFT_FORWARD, {in.data(), out.data()}), ORK_DFT_OK);
                        in.writable();
                    } else {
                        ASSERT_EQ(node.compute(ORK_DFT_FORWARD, {in.data()}), ORK_DFT_OK);
                    }
                    EXPECT_TRUE(result.unchanged_outside());
                    const auto difference = this->error(result.values(), want);
                    EXPECT_TRUE(difference <= tolerance<R>(n)) << difference;

                    for (Int i = 0; i < size; ++i)
                        if (list[static_cast<std::size_t>(i)].part == 2) {
                            EXPECT_EQ(result[i], R(0)) << i;
                            result[i] = std::numeric_limits<R>::quiet_NaN();
                        }
                    if (space == Space::apart) {
                        std::fill(in.data(), in.data() + n, std::numeric_limits<R>::quiet_NaN());
                        out.read_only();
                        ASSERT_EQ(node.compute(ORK_DFT_BACKWARD, {out.data(), in.data()}), ORK_DFT_OK);
                        out.writable();
                    } else {
                        ASSERT_EQ(node.compute(ORK_DFT_BACKWARD, {in.data()}), ORK_DFT_OK);
                    }
                    EXPECT_TRUE(in.unchanged_outside());
                    const auto round_trip = this->error(std::vector<R>(in.data(), in.data() + n), x);
                    EXPECT_TRUE(round_trip <= 1.5L * tolerance<R>(n)) << round_trip;
                }
            }
    }
}

// Backward alone, so that a forward transform that is wrong in the same way can't hide it; scaled.
TYPED_TEST(Real, BackwardOfAnySpectrum)
{
    using R = TypeParam;
    for (const Int n :
         {1, 2, 3, 4, 5, 6, 7, 8, 9, 15, 30, 33, 45, 64, 66, 70, 99, 100, 128, 225, 360, 1000, 1001, 1009}) {
        const auto random = uniform_values<R>(2 * n, 77);
        std::vector<wide> spectrum(static_cast<std::size_t>(n));
        for (Int k = 0; k <= n / 2; ++k) {
            const auto at = static_cast<std::size_t>(k);
            const bool real = 2 * k % n == 0;
            spectrum[at] = {random[2 * at], real ? 0 : random[2 * at + 1]};
            if (!real) spectrum[static_cast<std::size_t>(n) - at] = std::conj(spectrum[at]);
        }
        const R scale = R(0.375);
        std::vector<R> want(static_cast<std::size_t>(n));
        const auto x = reference_dft(spectrum, {n}, ORK_DFT_BACKWARD);
        std::transform(x.begin(), x.end(), want.begin(), [=](wide a) { return static_cast<R>(a.real() * scale); });
        for (const int format : formats) {
            SCOPED_TRACE(testing::Message() << "n = " << n << ", format " << format);
            Node<R> node({n}, ORK_DFT_REAL);
            node->scales.backward = static_cast<double>(scale),
            node->scales.backward_single = static_cast<float>(scale);
            this->set(node, format, Space::apart, {n});
            auto in = packed<R>(format, spectrum);
            std::vector<R> out(static_cast<std::size_t>(n));
            ASSERT_EQ(node.compute(ORK_DFT_BACKWARD, {in.data(), out.data()}), ORK_DFT_OK);
            const auto difference = this->error(out, want);
            EXPECT_TRUE(difference <= tolerance<R>(n)) << difference;
        }
    }
}

// Lines, columns, gaps, negative strides; in place with rows of equal begin. Numbers between those of the transforms
// stay as they are. However the batch is divided, the bits are the same.
TYPED_TEST(Real, BatchesOfAnyShape)
{
    using R = TypeParam;
    for (const Int n : {2, 3, 8, 9, 13, 45, 48, 60, 64, 77, 100, 130, 256, 315})
        for (const int format : formats)
            for (const Int count : {2, 7, 16, 37}) {
                const Int size = static_cast<Int>(slots(format, n).size()), unit = format == ORK_DFT_CCE ? 2 : 1;
                const Int length = size / unit;
                const Shape shapes[] = {{n, count, 1, n, 1, length},    {n, count, 1, n + 3, 1, length + 2},
                                        {n, count, count, 1, count, 1}, {n, count, 3, 3 * n + 1, 2, 2 * length + 5},
                                        {n, count, 1, n, count + 1, 1}, {n, count, -1, n, -2, 2 * length}};
                for (const Shape& shape : shapes)
                    for (const Space space : {Space::apart, Space::in_place}) {
                        Shape used = shape;
                        if (space == Space::in_place) {
                            if (shape.real_stride < 0 || shape.real_distance == 1 || shape.distance == 1) continue;
                            // Rows begin together and don't meet.
                            used.distance = std::max(shape.distance, (shape.real_distance + unit) / unit);
                            used.real_distance = used.distance * unit;
                        }
                        SCOPED_TRACE(testing::Message()
                                     << "n = " << n << ", format " << format << ", " << count << ", strides "
                                     << used.real_stride << " " << used.stride << ", place " << int(space));
                        Node<R> node({n}, ORK_DFT_REAL);
                        this->set(node, format, space, used);
                        const Int real_begin = used.real_stride < 0 ? n - 1 : 0;
                        const Int begin = used.stride < 0 ? -used.stride * (length - 1) : 0;
                        const auto real_at = [&](Int t, Int j) {
                            return real_begin + t * used.real_distance + j * used.real_stride;
                        };
                        const auto at = [&](Int t, Int i) {
                            return unit * (begin + t * used.distance + i / unit * used.stride) + i % unit;
                        };
                        const auto end = [&](auto position, Int numbers) {
                            Int last = 0;
                            for (Int t = 0; t < count; ++t)
                                for (Int i = 0; i < numbers; ++i) last = std::max(last, position(t, i) + 1);
                            return last;
                        };
                        const Int ends[] = {end(real_at, n), end(at, size)};
                        const bool shared = space == Space::in_place;
                        auto values = uniform_values<R>(ends[0], static_cast<std::uint64_t>(count));
                        for (Int t = 0; t < count; ++t) // sizes so far apart that no transform may reach another
                            for (Int j = 0; j < n; ++j)
                                values[static_cast<std::size_t>(real_at(t, j))] *= std::ldexp(R(1), t % 3 * 25);
                        const auto run = [&](Guarded<R>& in, Guarded<R>& out, Int piece) {
                            std::copy(values.begin(), values.end(), in.data());
                            if (shared) in.remember();
                            const std::initializer_list<void*> one = {in.data() + real_begin},
                                                               two = {in.data() + real_begin,
                                                                      out.data() + unit * begin};
                            const auto& arrays = shared ? one : two;
                            if (piece == 0)
                                ASSERT_EQ(node.compute(ORK_DFT_FORWARD, arrays), ORK_DFT_OK);
                            else
                                ASSERT_EQ(node.compute_in_pieces(ORK_DFT_FORWARD, arrays, piece), ORK_DFT_OK);
                        };
                        Guarded<R> in(shared ? std::max(ends[0], ends[1]) : ends[0]), out(ends[1]);
                        run(in, out, 0);
                        const Guarded<R>& result = shared ? in : out;
                        std::vector<bool> written(static_cast<std::size_t>(result.size()));
                        for (Int t = 0; t < count; ++t) {
                            std::vector<wide> x;
                            for (Int j = 0; j < n; ++j) x.push_back(values[static_cast<std::size_t>(real_at(t, j))]);
                            std::vector<R> got;
                            for (Int i = 0; i < size; ++i) {
                                got.push_back(result[at(t, i)]);
                                written[static_cast<std::size_t>(at(t, i))] = true;
                            }
                            const auto want = packed<R>(format, reference_dft(x, {n}, ORK_DFT_FORWARD));
                            const auto difference = this->error(got, want);
                            EXPECT_TRUE(difference <= tolerance<R>(n)) << "transform " << t << ": " << difference;
                        }
                        EXPECT_TRUE(
                            result.unchanged_except([&](Int i) { return written[static_cast<std::size_t>(i)]; }));
                        Guarded<R> again_in(in.size()), again_out(ends[1]);
                        run(again_in, again_out, 1);
                        EXPECT_EQ(0, std::memcmp((shared ? again_in : again_out).data(), result.data(),
                                                 static_cast<std::size_t>(result.size()) * sizeof(R)));

                        if (shared)
                            ASSERT_EQ(node.compute(ORK_DFT_BACKWARD, {in.data()}), ORK_DFT_OK);
                        else
                            ASSERT_EQ(
                                node.compute(ORK_DFT_BACKWARD, {out.data() + unit * begin, in.data() + real_begin}),
                                ORK_DFT_OK);
                        long double worst = 0;
                        for (Int t = 0; t < count; ++t)
                            for (Int j = 0; j < n; ++j) {
                                const long double d = std::abs(static_cast<long double>(in[real_at(t, j)]) / n -
                                                               values[static_cast<std::size_t>(real_at(t, j))]) /
                                                      std::ldexp(1.0L, t % 3 * 25);
                                if (!(d <= worst)) worst = d;
                            }
                        EXPECT_TRUE(worst <= 6 * tolerance<R>(n)) << worst;
                    }
            }
}

// A matrix packed along both dimensions: rows as vectors of their layout, then columns, of which those of R0 and
// R(n/2) are packed again.
TYPED_TEST(Real, MatricesInPackedStorage)
{
    using R = TypeParam;
    for (const Int n : {1, 2, 3, 4, 5, 8, 13, 32})
        for (const Int m : {1, 2, 3, 4, 7, 8, 30})
            for (const int format : {ORK_DFT_CCS, ORK_DFT_PACK, ORK_DFT_PERM}) {
                SCOPED_TRACE(testing::Message() << m << " rows of " << n << ", format " << format);
                const auto row = slots(format, n), column = slots(format, m);
                const auto width = static_cast<Int>(row.size()), height = static_cast<Int>(column.size());
                const auto x = uniform_values<R>(m * n, 5);
                const auto spectrum = reference_dft(this->widened(x), {n, m}, ORK_DFT_FORWARD);
                const auto number = [&](Int i, Int j) -> R { // of the packed matrix
                    const Slot across = row[static_cast<std::size_t>(j)];
                    if (across.part == 2) return 0;
                    const bool real = 2 * across.k % n == 0;
                    if (!real && i >= m) return 0;
                    const Slot down = real ? column[static_cast<std::size_t>(i)] : Slot{i, across.part};
                    const wide value = spectrum[static_cast<std::size_t>(across.k + down.k * n)];
                    return static_cast<R>(down.part == 0 ? value.real() : down.part == 1 ? value.imag() : 0);
                };
                Node<R> node({n, m}, ORK_DFT_REAL);
                node->placement = ORK_DFT_NOT_INPLACE;
                node->storage.conjugate_even_storage = ORK_DFT_COMPLEX_REAL;
                node->packed_format = format;
                node->next->stride[1] = node->dimensions[1].output_stride = width;
                ASSERT_EQ(node.commit(), ORK_DFT_OK);
                Guarded<R> in(x), out(width * height);
                in.read_only();
                ASSERT_EQ(node.compute(ORK_DFT_FORWARD, {in.data(), out.data()}), ORK_DFT_OK);
                in.writable();
                long double worst = 0, size = 0;
                for (Int i = 0; i < height; ++i)
                    for (Int j = 0; j < width; ++j) {
                        const long double want = number(i, j), d = std::abs(out[i * width + j] - want);
                        size += want * want;
                        if (!(d <= worst)) worst = d;
                        // Zeros must not be read on the way back.
                        const bool beside = row[static_cast<std::size_t>(j)].part == 2;
                        if (beside) out[i * width + j] = std::numeric_limits<R>::quiet_NaN();
                    }
                EXPECT_TRUE(worst <= tolerance<R>(m * n) * std::sqrt(size)) << worst;
                ASSERT_EQ(node.compute(ORK_DFT_BACKWARD, {out.data(), in.data()}), ORK_DFT_OK);
                std::vector<R> back = in.values();
                for (R& a : back) a /= static_cast<R>(m * n);
                EXPECT_TRUE(this->error(back, x) <= 2 * tolerance<R>(m * n));
            }
}

TYPED_TEST(Real, RaisesNoFlagsAndNeedsLittleStack)
{
    using R = TypeParam;
    for (const Int n : {6, 7, 15, 32, 63, 64, 75, 105, 128, 1009, 1050}) {
        SCOPED_TRACE(testing::Message() << "n = " << n);
        Node<R> node({n}, ORK_DFT_REAL);
        this->set(node, ORK_DFT_PACK, Space::apart, {n});
        std::vector<R> in(static_cast<std::size_t>(n), R(0.5)), out(in);
        EXPECT_TRUE(keeps_fp_environment([&] {
            run_on_small_stack(small_stack, [&] {
                node.compute(ORK_DFT_FORWARD, {in.data(), out.data()});
                node.compute(ORK_DFT_BACKWARD, {out.data(), in.data()});
            });
        }));
    }
}

} // namespace
} // namespace ork::test
