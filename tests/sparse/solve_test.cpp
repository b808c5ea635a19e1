// SPDX-License-Identifier: MIT
// Triangular solves, every stem against a dense one.
#include "sparse/solve_case.h"

namespace ork::test {
namespace {

template <class C>
class SparseSolve : public testing::Test {
public:
    using T = typename C::T;
    using Int = typename C::Int;
    using Call = ork::sparse::SolveCalls<Int, T>;
    Random random{3};
    const T alpha = number<T>(1.5, -0.5);

    std::vector<W> expected(const Square& a, const Guarded<T>& b, bool upper, bool unit) const
    {
        const Square triangle = upper ? a.part(is_upper, unit) : a.part(is_lower, unit);
        return triangle.solved(wide(alpha), widened(b), upper);
    }
};
TYPED_TEST_SUITE(SparseSolve, Cases, CaseNames);

#define TYPES                                                                                                          \
    using T [[maybe_unused]] = typename TypeParam::T;                                                                  \
    using Int [[maybe_unused]] = typename TypeParam::Int

// In two shares, in the order of the rows and in another one, in place and not.
TYPED_TEST(SparseSolve, RowsInAnyOrderOfEntries)
{
    TYPES;
    struct Member {
        typename TestFixture::Call::sv_fwd_ker_n* kernel;
        bool upper, unit;
        int base; // -1: any
    };
    const Member members[] = {{KERNEL(sv_fwd_ker_n), false, false, -1}, {KERNEL(sv_fwd_ker_u), false, true, -1},
                              {KERNEL(sv_fwd_ker0), false, false, 0},   {KERNEL(sv_fwd_ker1), false, false, 1},
                              {KERNEL(sv_bwd_ker0), true, false, 0},    {KERNEL(sv_bwd_ker0_u), true, true, 0},
                              {KERNEL(sv_bwd_ker1), true, false, 1}};
    for (const Member& m : members)
        for (const Int base : {0, 1}) {
            if (m.base >= 0 && m.base != base) continue;
            const SolveCase<Int, T> a(37, base, this->random);
            const PackedCase<Int, T> levels(a, 1); // as an order
            const auto b = random_vector<T>(a.n, this->random);
            const auto want = this->expected(a.dense, b, m.upper, m.unit);
            for (const Int* order : {static_cast<const Int*>(nullptr), levels.order.data()})
                for (const bool in_place : {false, true}) {
                    const Guarded<T> y(in_place ? b.values()
                                                : std::vector<T>(static_cast<std::size_t>(a.n), nan_of<T>));
                    const auto share = [&](Int first, Int last) {
                        m.kernel(first, last, m.base < 0 ? base : 77, order, this->alpha, a.vals.data(), a.index.data(),
                                 a.first.data(), a.last.data(), in_place ? y.data() : b.data(), y.data());
                    };
                    share(5, 5);
                    EXPECT_TRUE(y.unchanged());
                    m.upper ? share(20, 37) : share(0, 20);
                    m.upper ? share(0, 20) : share(20, 37);
                    expect_near(y, want);
                }
        }
}

TYPED_TEST(SparseSolve, RowsInTurnAndDiagonals)
{
    TYPES;
    struct Member {
        typename TestFixture::Call::csr_ntl_sv_ker* kernel;
        bool lower, upper, conjugate;
    };
    const Member members[] = {{KERNEL(csr_ntl_sv_ker), true, false, false},
                              {KERNEL(csr_ntu_sv_ker), false, true, false},
                              {KERNEL(csr_ntd_sv_ker), false, false, false},
                              {KERNEL(csr_ctd_sv_ker), false, false, true}};
    for (const Member& m : members)
        for (const Int base : {0, 1})
            for (const Int unit : {0, 1}) {
                const SolveCase<Int, T> a(19, base, this->random);
                const auto b = random_vector<T>(a.n, this->random);
                Square t = a.dense.part(
                    m.lower   ? is_lower
                    : m.upper ? [](Index d) { return d <= 0; }
                              : [](Index d) { return d == 0; },
                    unit != 0);
                if (m.conjugate)
                    for (W& x : t.a) x = std::conj(x);
                const Guarded<T> y(a.n);
                m.kernel(0, static_cast<Int>(a.n), base, unit, this->alpha, a.vals.data(), a.index.data(),
                         a.first.data(), a.last.data(), b.data(), y.data());
                expect_near(y, t.solved(wide(this->alpha), widened(b), m.upper));
            }
}

// Slices of 1 and 4, near and far, with ones and not; shares give the bits of the whole.
TYPED_TEST(SparseSolve, PackedTriangles)
{
    TYPES;
    struct Member {
        typename TestFixture::Call::sv_fwd_ker_n_high_opt* kernel;
        typename TestFixture::Call::sv_esb_fwd_ker_n_1thr* whole; // null: none
        bool upper;
        int base; // -1: any
    };
    const Member members[] = {{KERNEL(sv_fwd_ker_n_high_opt), KERNEL(sv_esb_fwd_ker_n_1thr), false, -1},
                              {KERNEL(sv_fwd_ker0_high_opt), nullptr, false, 0},
                              {KERNEL(sv_fwd_ker1_high_opt), nullptr, false, 1},
                              {KERNEL(sv_bwd_ker0_high_opt), KERNEL(sv_esb_bwd_ker0_1thr), true, 0},
                              {KERNEL(sv_bwd_ker1_high_opt), nullptr, true, 1}};
    for (const Member& m : members)
        for (const Index height : {1, 4})
            for (const Int base : {0, 1})
                for (const int variant : {0, 1, 2, 3}) {
                    if (m.base >= 0 && m.base != base) continue;
                    const bool unit = variant % 2 != 0;
                    const SolveCase<Int, T> a(150, 0, this->random);
                    const PackedCase<Int, T> packing(a, height, base);
                    auto packed = packing.get(variant / 2 != 0);
                    if (unit) packed.inverse = nullptr;
                    const auto b = random_vector<T>(a.n, this->random);
                    const Guarded<T> y(a.n);
                    const auto slices = static_cast<Int>(packing.slices()), middle = static_cast<Int>(slices / 3);
                    const Int told = m.base < 0 ? base : Int{77};
                    m.kernel(middle, middle, told, &packed, this->alpha, b.data(), y.data());
                    EXPECT_TRUE(y.unchanged());
                    if (m.upper) m.kernel(middle, slices, told, &packed, this->alpha, b.data(), y.data());
                    m.kernel(0, middle, told, &packed, this->alpha, b.data(), y.data());
                    if (!m.upper) m.kernel(middle, slices, told, &packed, this->alpha, b.data(), y.data());
                    expect_near(y, this->expected(a.dense, b, m.upper, unit));
                    const Guarded<T> in_place(b.values());
                    if (m.whole != nullptr)
                        m.whole(told, &packed, this->alpha, in_place.data(), in_place.data());
                    else
                        m.kernel(0, slices, told, &packed, this->alpha, in_place.data(), in_place.data());
                    EXPECT_EQ(in_place.values(), y.values());
                }
}

TYPED_TEST(SparseSolve, Blocks)
{
    TYPES;
    struct Member {
        typename TestFixture::Call::bsr_ntl_sv_ker* kernel;
        bool lower, upper;
    };
    const Member members[] = {{KERNEL(bsr_ntl_sv_ker), true, false},
                              {KERNEL(bsr_ntu_sv_ker), false, true},
                              {KERNEL(bsr_ntd_sv_ker), false, false}};
    for (const Index block : {1, 2, 3, 4, 5, 9})
        for (const int layout : {0, 1})
            for (const Int unit : {0, 1}) {
                const Int base = static_cast<Int>(block % 2);
                const SolveCase<Int, T> a(11, base, this->random, std::max<Index>(block, 2), layout);
                const auto blocks = a.blocks();
                const auto b = random_vector<T>(a.size(), this->random);
                std::vector<Int> order(static_cast<std::size_t>(a.n));
                std::iota(order.begin(), order.end(), Int{0});
                for (const Member& m : members) {
                    const Guarded<T> y(b.values());
                    m.kernel(m.upper ? 4 : 0, m.upper ? 11 : 4, &blocks, unit, nullptr, this->alpha, y.data(),
                             y.data());
                    m.kernel(m.upper ? 0 : 4, m.upper ? 4 : 11, &blocks, unit, order.data(), this->alpha, y.data(),
                             y.data());
                    const Square t = a.dense.part(
                        m.lower   ? is_lower
                        : m.upper ? [](Index d) { return d <= 0; }
                                  : [](Index d) { return d == 0; },
                        unit != 0);
                    expect_near(y, t.solved(wide(this->alpha), widened(b), m.upper));
                    if (!m.lower && !m.upper) continue;
                    const Guarded<T> all(a.size());
                    KERNEL(bsr_nt_sv_noopt)
                    (static_cast<Int>(a.n), &blocks, m.upper, unit, this->alpha, b.data(), all.data());
                    EXPECT_EQ(all.values(), y.values());
                }
                for (const bool by_rows : {true, false}) { // three right-hand sides between others
                    const Index columns = 3, ld = by_rows ? columns + 2 : a.size() + 1;
                    const Index count = by_rows ? a.size() * ld : columns * ld;
                    const auto sides = random_vector<T>(count, this->random);
                    const Guarded<T> c(count);
                    KERNEL(bsr_ntd_sm_ker)
                    (0, static_cast<Int>(a.n), &blocks, unit, this->alpha, columns, !by_rows, sides.data(),
                     static_cast<Int>(ld), c.data(), static_cast<Int>(ld));
                    for (Index j = 0; j < columns; ++j)
                        for (Index i = 0; i < a.size(); ++i) {
                            const Index at = by_rows ? i * ld + j : j * ld + i;
                            const W want = wide(this->alpha) * wide(sides[at]) / (unit ? W(1) : a.dense(i, i));
                            EXPECT_TRUE(std::abs(wide(c[at]) - want) <= 20 * std::numeric_limits<Real<T>>::epsilon());
                        }
                    EXPECT_TRUE(
                        c.unchanged_except([&](Index at) { return by_rows ? at % ld < columns : at % ld < a.size(); }));
                }
            }
}

TYPED_TEST(SparseSolve, DenseTriangles)
{
    TYPES;
    struct Member {
        typename TestFixture::Call::dense_l_sv8x8* kernel;
        Index order;
        bool upper;
    };
    const Member members[] = {{KERNEL(dense_l_sv8x8), 8, false},
                              {KERNEL(dense_u_sv8x8), 8, true},
                              {KERNEL(dense_l_sv64x64), 64, false},
                              {KERNEL(dense_u_sv64x64), 64, true}};
    for (const Member& m : members)
        for (const Int layout : {0, 1})
            for (const Int unit : {0, 1}) {
                const SolveCase<Int, T> a(1, 0, this->random, m.order, static_cast<int>(layout));
                const auto b = random_vector<T>(m.order, this->random);
                const Guarded<T> y(b.values()),
                    values(std::vector<T>(a.vals.begin(), a.vals.begin() + m.order * m.order));
                m.kernel(layout, unit, values.data(), y.data());
                const Square t = m.upper ? a.dense.part(is_upper, unit != 0) : a.dense.part(is_lower, unit != 0);
                expect_near(y, t.solved(W(1), widened(b), m.upper));
            }
}

} // namespace
} // namespace ork::test
