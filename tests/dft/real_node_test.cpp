// SPDX-License-Identifier: MIT
// Real data of several dimensions: passes in order, the memory between them, and their stages.
#include "dft/layout.h"

namespace ork::test {
namespace {

template <class R>
class RealNodes : public testing::Test {
protected:
    FreshCore core;
};
using Precisions = testing::Types<float, double>;
TYPED_TEST_SUITE(RealNodes, Precisions);

// Real numbers and half spectra of one kind of array. In place both begin at the same numbers.
struct RealLayout {
    Side real, half; // half counts complex numbers
    bool in_place;

    RealLayout(const Ints& lengths, Int transforms, bool in_place, Int padding) : in_place(in_place)
    {
        Ints halves = lengths;
        halves[0] = lengths[0] / 2 + 1;
        half = dense(halves, transforms), real = dense(lengths, transforms);
        for (std::size_t d = 1; d <= lengths.size(); ++d) { // the last is the batch's
            const bool batch = d == lengths.size();
            Int& step = batch ? half.distance : half.strides[d];
            step = d == 1 ? halves[0] + padding : half.strides[d - 1] * halves[d - 1] + padding;
            if (in_place) (batch ? real.distance : real.strides[d]) = 2 * step;
        }
        if (in_place) half.offset = 1, real.offset = 2;
    }
};

template <class R>
void check(const Ints& lengths, Int transforms, bool in_place, Int padding)
{
    using C = std::complex<R>;
    const RealLayout layout(lengths, transforms, in_place, padding);
    const Side &real = layout.real, &half = layout.half;
    SCOPED_TRACE(testing::Message() << real << (in_place ? " in place" : "") << ", padding " << padding);
    Node<R> node(lengths, ORK_DFT_REAL);
    set(node, Layout{real, half, in_place, false});
    for (std::size_t d = 0; d < lengths.size(); ++d) node->dimensions[d].output_stride = half.strides[d];
    node->scales.backward = 0.5;
    ASSERT_EQ(node.commit(), ORK_DFT_OK);

    // Values, and the half spectrum that they should give, rounded: it is also what goes back.
    std::vector<std::vector<R>> x;
    std::vector<std::vector<wide>> spectrum;
    for (Int t = 0; t < transforms; ++t) {
        x.push_back(uniform_values<R>(real.size(), static_cast<std::uint64_t>(t + 1)));
        const auto all = reference_dft({x.back().begin(), x.back().end()}, lengths, ORK_DFT_FORWARD);
        spectrum.emplace_back();
        for (Int i = 0; i < real.size(); ++i)
            if (i % lengths[0] < half.lengths[0]) spectrum.back().push_back(all[static_cast<std::size_t>(i)]);
    }
    const Int extent = std::max(real.extent(), 2 * half.extent());
    for (const int direction : {ORK_DFT_FORWARD, ORK_DFT_BACKWARD})
        for (const Int piece : {0, 1, 3}) { // 0: the whole call
            SCOPED_TRACE(testing::Message()
                         << (direction == ORK_DFT_FORWARD ? "forward" : "backward") << ", pieces of " << piece);
            const bool forward = direction == ORK_DFT_FORWARD;
            Guarded<R> first(in_place ? extent : real.extent()), second(in_place ? 0 : 2 * half.extent());
            R *const reals = first.data(), *const halves = in_place ? reals : second.data();
            const auto complex = [&](Int i, Int t) { return reinterpret_cast<C*>(halves) + half.position(i, t); };
            for (Int t = 0; t < transforms; ++t)
                if (forward)
                    for (Int i = 0; i < real.size(); ++i)
                        reals[real.position(i, t)] = x[static_cast<std::size_t>(t)][static_cast<std::size_t>(i)];
                else
                    for (Int i = 0; i < half.size(); ++i)
                        *complex(i, t) = C(spectrum[static_cast<std::size_t>(t)][static_cast<std::size_t>(i)]);
            if (!in_place) (forward ? first : second).read_only();
            void *const from = forward ? reals : halves, *const to = forward ? halves : reals;
            const auto run = [&](Arrays arrays) {
                return piece == 0 ? node.compute(direction, arrays) : node.compute_in_pieces(direction, arrays, piece);
            };
            ASSERT_EQ(in_place ? run({from}) : run({from, to}), ORK_DFT_OK);
            for (Int t = 0; t < transforms; ++t) {
                std::vector<wide> got, want;
                if (forward) {
                    want = spectrum[static_cast<std::size_t>(t)];
                    for (Int i = 0; i < half.size(); ++i) got.push_back(wide(*complex(i, t)));
                } else {
                    for (const R a : x[static_cast<std::size_t>(t)]) want.push_back(0.5L * a * real.size());
                    for (Int i = 0; i < real.size(); ++i) got.push_back(reals[real.position(i, t)]);
                }
                ASSERT_LE(relative_error(got, want), 2 * tolerance<R>(real.size()));
            }
        }
}

TYPED_TEST(RealNodes, OfSeveralDimensionsInComplexStorage)
{
    for (const Int level2 : {Int{1} << 20, Int{600}}) { // blocks in cache, or hardly any
        this->core->level2_size = level2;
        for (const Ints& lengths : {Ints{8}, Ints{4, 4}, Ints{5, 6}, Ints{1, 7}, Ints{7, 1}, Ints{16, 70}, Ints{70, 66},
                                    Ints{6, 5, 4}, Ints{5, 1, 8}, Ints{9, 4, 3, 2}, Ints{2, 2, 2, 3, 1, 2, 2}})
            for (const Int transforms : {1, 3})
                for (const Int padding : {0, 2}) {
                    check<TypeParam>(lengths, transforms, true, padding);
                    check<TypeParam>(lengths, transforms, false, padding);
                }
    }
    EXPECT_EQ(this->core->live_work, 0);
}

// The layouts themselves are compared elsewhere: here, in place and in pieces they have the bits that they have apart.
TYPED_TEST(RealNodes, OfPackedMatricesInPlaceAsApart)
{
    using R = TypeParam;
    for (const int format : {ORK_DFT_CCS, ORK_DFT_PACK, ORK_DFT_PERM})
        for (const Int n : {5, 8})
            for (const Int m : {3, 6}) {
                SCOPED_TRACE(testing::Message() << m << " x " << n << ", format " << format);
                const Int transforms = 3, width = n + 2, matrix = width * (m + 2);
                std::vector<R> array = uniform_values<R>(transforms * matrix), apart(array.size());
                for (const bool in_place : {false, true}) {
                    Node<R> node({n, m}, ORK_DFT_REAL);
                    node->placement = in_place ? ORK_DFT_INPLACE : ORK_DFT_NOT_INPLACE;
                    node->storage.conjugate_even_storage = ORK_DFT_COMPLEX_REAL;
                    node->packed_format = format;
                    node->transforms = transforms;
                    node->input_distance = node->output_distance = matrix;
                    node->dimensions[1].input_stride = node->dimensions[1].output_stride = width;
                    ASSERT_EQ(node.commit(), ORK_DFT_OK);
                    const auto packed = [&](Int at) { // numbers of the packed layout
                        const Int i = at % matrix / width, j = at % width;
                        const Int across = format == ORK_DFT_CCS ? n / 2 * 2 + 2 : n;
                        return j < across && i < (format == ORK_DFT_CCS ? m / 2 * 2 + 2 : m);
                    };
                    const auto real = [&](Int at) { return at % matrix / width < m && at % width < n; };
                    for (const Int piece : {1, 2}) {
                        std::vector<R> x = array, y(array.size()), back(array.size());
                        if (in_place) {
                            ASSERT_EQ(node.compute_in_pieces(ORK_DFT_FORWARD, {x.data()}, piece), ORK_DFT_OK);
                            y = x;
                            ASSERT_EQ(node.compute_in_pieces(ORK_DFT_BACKWARD, {x.data()}, piece), ORK_DFT_OK);
                            back = x;
                        } else {
                            ASSERT_EQ(node.compute(ORK_DFT_FORWARD, {x.data(), y.data()}), ORK_DFT_OK);
                            ASSERT_EQ(node.compute(ORK_DFT_BACKWARD, {y.data(), back.data()}), ORK_DFT_OK);
                            apart = y;
                        }
                        for (std::size_t i = 0; i < array.size(); ++i) {
                            const auto at = static_cast<Int>(i);
                            if (packed(at)) {
                                ASSERT_EQ(y[i], apart[i]) << i;
                            }
                            if (real(at)) {
                                ASSERT_NEAR(back[i] / static_cast<R>(n * m), array[i],
                                            8 * std::numeric_limits<R>::epsilon());
                            }
                        }
                    }
                }
            }
}

} // namespace
} // namespace ork::test
