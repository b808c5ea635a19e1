// SPDX-License-Identifier: MIT
// What descriptors compute: layouts, batches and formats end to end, against sums in long double.
#include <string>

#include <gtest/gtest.h>

#include "model.h"

namespace ork::test {

namespace {

struct Shape {
    Integers n;
    Integers strides[2]; // by side, offset first; empty: the default ones, densely batched
    std::int64_t transforms = 1, distance[2] = {0, 0};

    std::string name() const
    {
        std::string text;
        for (const std::int64_t length : n) text += (text.empty() ? "" : "x") + std::to_string(length);
        return text + " strides of " + std::to_string(strides[0].size() + strides[1].size()) + ", " +
               std::to_string(transforms) + " transforms";
    }
};

template <class R>
class Transforms : public testing::Test {
};
using Precisions = testing::Types<float, double>;
TYPED_TEST_SUITE(Transforms, Precisions);

// Numbers of the transform's input, by transform.
template <class R>
std::vector<Numbers> random_numbers(std::int64_t count, std::int64_t transforms, bool real)
{
    Random random(static_cast<std::uint64_t>(count * 100 + transforms));
    std::vector<Numbers> all(static_cast<std::size_t>(transforms), Numbers(static_cast<std::size_t>(count)));
    for (auto& numbers : all)
        for (Number& x : numbers) {
            const R re = random.uniform<R>();
            x = {re, real ? R{0} : random.uniform<R>()};
        }
    return all;
}

template <class R>
void expect_close(const Number& got, const Number& want, long double bound, std::int64_t i)
{
    EXPECT_TRUE(std::abs(got - want) <= bound)
        << "number " << i << ": got " << got << ", want " << want << " within " << bound;
    static_cast<void>(sizeof(R));
}

// Complex data, the parts in one array or two.
template <class R>
void run_complex(const Shape& shape, bool in_place, bool split, std::int64_t workspace = ORK_DFT_ALLOW)
{
    SCOPED_TRACE(shape.name() + (in_place ? " in place" : "") + (split ? " split" : ""));
    const std::int64_t count = product(shape.n);
    const auto strides = [&](int side) { return shape.strides[side].empty() ? dense(shape.n) : shape.strides[side]; };
    const auto distance = [&](int side) { return shape.strides[side].empty() ? count : shape.distance[side]; };
    const double scale[2] = {0.75, -1.5};
    Descriptor d(precision_of<R>, ORK_DFT_COMPLEX, shape.n);
    d.set(ORK_DFT_PLACEMENT, in_place ? ORK_DFT_INPLACE : ORK_DFT_NOT_INPLACE);
    d.set(ORK_DFT_COMPLEX_STORAGE, split ? ORK_DFT_REAL_REAL : ORK_DFT_COMPLEX_COMPLEX);
    d.set(ORK_DFT_WORKSPACE, workspace);
    d.set(ORK_DFT_NUMBER_OF_TRANSFORMS, shape.transforms);
    d.set(ORK_DFT_FORWARD_SCALE, scale[0]).set(ORK_DFT_BACKWARD_SCALE, scale[1]);
    d.set(ORK_DFT_INPUT_DISTANCE, distance(0)).set(ORK_DFT_OUTPUT_DISTANCE, distance(1));
    if (!shape.strides[0].empty()) d.set(ORK_DFT_INPUT_STRIDES, strides(0));
    if (!shape.strides[1].empty() && !in_place) d.set(ORK_DFT_OUTPUT_STRIDES, strides(1));
    d.commit();
    if (testing::Test::HasFailure()) return;

    const auto numbers = random_numbers<R>(count, shape.transforms, false);
    for (const int direction : {0, 1}) {
        SCOPED_TRACE(direction == 0 ? "forward" : "backward");
        // A backward transform reads the output layout.
        const int from = in_place ? 0 : direction, to = in_place ? 0 : 1 - direction, unit = split ? 1 : 2;
        Side<R> in[2] = {{shape.n, strides(from), distance(from), shape.transforms, unit},
                         {shape.n, strides(from), distance(from), shape.transforms, unit}};
        Side<R> out[2] = {{shape.n, strides(to), distance(to), shape.transforms, unit},
                          {shape.n, strides(to), distance(to), shape.transforms, unit}};
        const auto part = [&](Side<R>* side, int p, std::int64_t at) -> R& {
            return split ? side[p].at(at) : side[0].at(at, p);
        };
        in[0].for_all([&](std::int64_t at, std::int64_t i, std::int64_t t) {
            const Number& x = numbers[std::size_t(t)][std::size_t(i)];
            part(in, 0, at) = static_cast<R>(x.real());
            part(in, 1, at) = static_cast<R>(x.imag());
        });
        Side<R>* written = in_place ? in : out;
        const std::vector<R> before[2] = {written[0].values(), written[1].values()};
        const std::vector<R> read[2] = {in[0].values(), in[1].values()};
        R *a = in[0].data(), *b = in[1].data(), *c = out[0].data(), *e = out[1].data();
        std::int64_t status;
        if (in_place)
            status = split ? (direction ? ork_dft_backward_split : ork_dft_forward_split)(d, a, b)
                           : (direction ? ork_dft_backward : ork_dft_forward)(d, a);
        else
            status = split ? (direction ? ork_dft_backward_split_out : ork_dft_forward_split_out)(d, a, b, c, e)
                           : (direction ? ork_dft_backward_out : ork_dft_forward_out)(d, a, c);
        ASSERT_EQ(status, 0);
        for (int p = 0; p < 2; ++p) {
            EXPECT_EQ(written[p].changed_between(before[p]), 0);
            if (!in_place) {
                EXPECT_EQ(std::memcmp(in[p].values().data(), read[p].data(), read[p].size() * sizeof(R)), 0);
            }
        }
        std::vector<Numbers> want;
        for (const Numbers& x : numbers) want.push_back(dft(x, shape.n, direction ? 1 : -1));
        const long double factor = scale[direction];
        written[0].for_all([&](std::int64_t at, std::int64_t i, std::int64_t t) {
            const Numbers& x = numbers[std::size_t(t)];
            expect_close<R>({part(written, 0, at), part(written, 1, at)}, factor * want[std::size_t(t)][std::size_t(i)],
                            std::abs(factor) * tolerance<R>(count, norm(x)), i);
        });
    }
}

const Shape complex_shapes[] = {
    {{1}, {}},
    {{2}, {}},
    {{37}, {}},
    {{64}, {}, 3},
    {{100}, {}},
    {{30}, {{5, 3}, {2, 2}}},
    {{30}, {{87, -3}, {58, -2}}},
    {{16}, {{0, 7}, {0, 8}}, 7, {1, 1}}, // transforms between each other's elements
    {{100}, {{1, 4}, {3, 3}}, 3, {1, 301}},
    {{97}, {{0, 1}, {0, 1}}, 5, {-98, 99}}, // an array filled from behind
    {{67}, {{0, 1}, {0, 1}}, 40, {67, 70}},
    {{1024}, {}, 2},
    {{6, 5}, {}},
    {{8, 9}, {{0, 9, 1}, {0, 1, 8}}}, // transposed on the way
    {{4, 6}, {{0, 1, 4}, {0, 6, 1}}, 3, {24, 48}},
    {{12, 7}, {{4, 2, 30}, {7, 20, -1}}, 2, {240, 250}},
    {{70, 3}, {{0, 3, 1}, {0, 1, 71}}},
    {{4, 3, 5}, {}, 2},
    {{16, 1, 20}, {{1, 20, 1000, 1}, {0, 1, 3, 16}}},
    {{2, 3, 2, 1, 3, 2, 2}, {}},
};

TYPED_TEST(Transforms, ComplexDataInEveryLayout)
{
    for (const Shape& shape : complex_shapes)
        for (const bool in_place : {true, false})
            for (const bool split : {false, true}) run_complex<TypeParam>(shape, in_place, split);
}

TYPED_TEST(Transforms, ComplexDataInLittleMemory)
{
    for (const std::int64_t n : {16, 60, 64, 97, 1024})
        for (const bool in_place : {true, false}) run_complex<TypeParam>({{n}, {}}, in_place, false, ORK_DFT_AVOID);
}

// Positions in a packed vector of length n that hold the parts of X[k], k = 0 .. n/2; -1: not stored.
std::int64_t packed_position(int format, std::int64_t n, std::int64_t k, int part)
{
    const bool last = 2 * k == n;
    if (part == 1 && (k == 0 || last)) return format == ORK_DFT_CCS ? 2 * k + 1 : -1; // a zero in CCS
    if (k == 0) return 0;
    if (format == ORK_DFT_CCS) return 2 * k + part;
    if (format == ORK_DFT_PACK || n % 2 != 0) return 2 * k - 1 + part;
    return last ? 1 : 2 * k + part;
}

std::int64_t packed_length(int format, std::int64_t n) { return format == ORK_DFT_CCS ? n / 2 * 2 + 2 : n; }

// A spectrum of rank 1 or 2 in a packed format, dimension 0 fastest: along dimension 0 packed vectors; along dimension
// 1 the two columns of real numbers, k0 = 0 and n0 / 2, are packed vectors once more.
std::vector<long double> packed(int format, const Integers& n, const Numbers& spectrum)
{
    const std::int64_t n0 = n[0], n1 = n.size() > 1 ? n[1] : 1, width = packed_length(format, n0);
    std::vector<long double> values(std::size_t(width * (n.size() > 1 ? packed_length(format, n1) : 1)), 0.0L);
    const auto x = [&](std::int64_t k0, std::int64_t k1, int part) {
        const Number& v = spectrum[std::size_t(k0 + k1 * n0)];
        return part ? v.imag() : v.real();
    };
    for (std::int64_t k0 = 0; k0 <= n0 / 2; ++k0) {
        const bool real = k0 == 0 || 2 * k0 == n0;
        if (n.size() == 1 || !real) {
            for (std::int64_t k1 = 0; k1 < n1; ++k1)
                for (int part = 0; part < 2; ++part)
                    if (const std::int64_t at = packed_position(format, n0, k0, part); at >= 0 && (part == 0 || !real))
                        values[std::size_t(at + k1 * width)] = x(k0, k1, part);
            continue;
        }
        const std::int64_t column = packed_position(format, n0, k0, 0);
        for (std::int64_t k1 = 0; k1 <= n1 / 2; ++k1)
            for (int part = 0; part < 2; ++part)
                if (const std::int64_t at = packed_position(format, n1, k1, part);
                    at >= 0 && (part == 0 || (k1 != 0 && 2 * k1 != n1)))
                    values[std::size_t(column + at * width)] = x(k0, k1, part);
    }
    return values;
}

// Real data, in complex conjugate-even storage (format CCE) or packed. Backward from the spectrum to what it came from.
template <class R>
void run_real(const Shape& shape, int format, bool in_place)
{
    SCOPED_TRACE(shape.name() + " format " + std::to_string(format) + (in_place ? " in place" : ""));
    const bool cce = format == ORK_DFT_CCE;
    const std::int64_t count = product(shape.n);
    Integers half = shape.n;
    half[0] = cce ? half[0] / 2 + 1 : packed_length(format, half[0]);
    if (!cce && half.size() > 1) half[1] = packed_length(format, half[1]);
    Integers strides[2] = {Integers(shape.n.size() + 1), Integers(shape.n.size() + 1)};
    std::int64_t distance[2] = {shape.distance[0], shape.distance[1]};

    const double scale[2] = {0.75, 1.0 / static_cast<double>(count)};
    Descriptor d(precision_of<R>, ORK_DFT_REAL, shape.n);
    d.set(ORK_DFT_PLACEMENT, in_place ? ORK_DFT_INPLACE : ORK_DFT_NOT_INPLACE);
    if (!cce) d.set(ORK_DFT_CONJUGATE_EVEN_STORAGE, ORK_DFT_COMPLEX_REAL).set(ORK_DFT_PACKED_FORMAT, format);
    d.set(ORK_DFT_NUMBER_OF_TRANSFORMS, shape.transforms);
    d.set(ORK_DFT_FORWARD_SCALE, scale[0]).set(ORK_DFT_BACKWARD_SCALE, scale[1]);
    for (const int side : {0, 1}) {
        const int parameter = side == 0 ? ORK_DFT_INPUT_STRIDES : ORK_DFT_OUTPUT_STRIDES;
        if (!shape.strides[side].empty()) d.set(parameter, shape.strides[side]);
        ASSERT_EQ(ork_dft_get_integers(d, parameter, strides[side].data()), 0);
    }
    if (shape.strides[0].empty()) {
        distance[1] = product(half);
        distance[0] = in_place ? (cce ? 2 : 1) * distance[1] : count;
    }
    d.set(ORK_DFT_INPUT_DISTANCE, distance[0]).set(ORK_DFT_OUTPUT_DISTANCE, distance[1]);
    d.commit();
    if (testing::Test::HasFailure()) return;

    const auto numbers = random_numbers<R>(count, shape.transforms, true);
    Side<R> real(shape.n, strides[0], distance[0], shape.transforms, 1);
    Side<R> spectrum(half, strides[1], distance[1], shape.transforms, cce ? 2 : 1);
    // In place the spectrum's array holds both; with default or line-wise strides it is the longer one.
    const auto number = [&](std::int64_t at) -> R& { return in_place ? spectrum.data()[at] : real.at(at); };
    real.for_all([&](std::int64_t at, std::int64_t i, std::int64_t t) {
        number(at) = static_cast<R>(numbers[std::size_t(t)][std::size_t(i)].real());
    });
    const auto original = real.values(), gaps = spectrum.values();
    ASSERT_EQ(in_place ? ork_dft_forward(d, spectrum.data()) : ork_dft_forward_out(d, real.data(), spectrum.data()), 0);
    EXPECT_EQ(spectrum.changed_between(gaps), 0);
    if (!in_place) {
        EXPECT_EQ(std::memcmp(real.values().data(), original.data(), original.size() * sizeof(R)), 0);
    }

    spectrum.for_all([&, want = Numbers(), last = std::int64_t{-1},
                      values = std::vector<long double>()](std::int64_t at, std::int64_t i, std::int64_t t) mutable {
        if (t != last) {
            want = dft(numbers[std::size_t(t)], shape.n, -1);
            if (!cce) values = packed(format, shape.n, want);
            last = t;
        }
        const long double bound = 0.75L * tolerance<R>(count, norm(numbers[std::size_t(t)]));
        if (cce) {
            const std::int64_t k = i % half[0] + i / half[0] * shape.n[0];
            expect_close<R>({spectrum.at(at, 0), spectrum.at(at, 1)}, 0.75L * want[std::size_t(k)], bound, i);
        } else {
            expect_close<R>(spectrum.at(at), 0.75L * values[std::size_t(i)], bound, i);
        }
    });

    // What is zero by symmetry is not read.
    if (cce && shape.n.size() == 1)
        spectrum.for_all([&](std::int64_t at, std::int64_t i, std::int64_t) {
            if (i == 0 || 2 * i == shape.n[0]) spectrum.at(at, 1) = std::numeric_limits<R>::quiet_NaN();
        });
    const auto back = spectrum.values();
    ASSERT_EQ(in_place ? ork_dft_backward(d, spectrum.data()) : ork_dft_backward_out(d, spectrum.data(), real.data()),
              0);
    if (!in_place) {
        EXPECT_EQ(std::memcmp(spectrum.values().data(), back.data(), back.size() * sizeof(R)), 0);
        EXPECT_EQ(real.changed_between(original), 0);
    }
    real.for_all([&](std::int64_t at, std::int64_t i, std::int64_t t) {
        const Numbers& x = numbers[std::size_t(t)];
        expect_close<R>(number(at), 0.75L * x[std::size_t(i)], tolerance<R>(count, norm(x)), i);
    });
}

TYPED_TEST(Transforms, RealDataInComplexStorage)
{
    for (const Shape& shape : std::vector<Shape>{{{1}, {}},
                                                 {{2}, {}},
                                                 {{31}, {}},
                                                 {{64}, {}, 3},
                                                 {{100}, {}},
                                                 {{6, 5}, {}},
                                                 {{7, 4}, {}, 2},
                                                 {{9, 1, 8}, {}},
                                                 {{10, 3, 4}, {}, 2},
                                                 {{3, 2, 2, 1, 3, 2, 2}, {}}})
        for (const bool in_place : {true, false}) run_real<TypeParam>(shape, ORK_DFT_CCE, in_place);
    for (const Shape& shape : std::vector<Shape>{{{30}, {{5, 3}, {2, 2}}},
                                                 {{15}, {{0, 4}, {3, 5}}, 4, {1, 1}},
                                                 {{64}, {{63, -1}, {0, 1}}, 5, {65, 40}},
                                                 {{8, 9}, {{0, 9, 1}, {0, 1, 5}}},
                                                 {{5, 4, 6}, {{1, 2, 10, 41}, {2, 24, 6, 1}}, 2, {250, 90}}})
        run_real<TypeParam>(shape, ORK_DFT_CCE, false);
}

TYPED_TEST(Transforms, RealDataInPackedFormats)
{
    for (const int format : {ORK_DFT_CCS, ORK_DFT_PACK, ORK_DFT_PERM})
        for (const Shape& shape : std::vector<Shape>{{{1}, {}},
                                                     {{2}, {}},
                                                     {{3}, {}},
                                                     {{8}, {}},
                                                     {{9}, {}, 3},
                                                     {{100}, {}},
                                                     {{6, 4}, {}},
                                                     {{7, 4}, {}},
                                                     {{6, 5}, {}},
                                                     {{7, 3}, {}, 2},
                                                     {{2, 1}, {}},
                                                     {{1, 6}, {}},
                                                     {{30}, {{5, 3}, {2, 2}}, 2, {100, 101}},
                                                     {{8, 6}, {{0, 6, 1}, {1, 2, 30}}}})
            for (const bool in_place : {true, false})
                if (!in_place || shape.strides[0].empty()) run_real<TypeParam>(shape, format, in_place);
}

} // namespace

} // namespace ork::test
