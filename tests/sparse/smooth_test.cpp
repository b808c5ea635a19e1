// SPDX-License-Identifier: MIT
// Smoothers and products of packed matrices, every stem against dense arithmetic.
#include "sparse/solve_case.h"

namespace ork::test {
namespace {

template <class C>
class SparseSmooth : public testing::Test {
public:
    using T = typename C::T;
    using Int = typename C::Int;
    using Call = ork::sparse::SolveCalls<Int, T>;
    Random random{5};
    const T alpha = number<T>(1.5, -0.5), beta = number<T>(-0.25, 1);
};
TYPED_TEST_SUITE(SparseSmooth, Cases, CaseNames);

#define TYPES                                                                                                          \
    using T [[maybe_unused]] = typename TypeParam::T;                                                                  \
    using Int [[maybe_unused]] = typename TypeParam::Int

// One sweep of successive over-relaxation from x.
std::vector<W> swept(const Square& a, W omega, const std::vector<W>& b, std::vector<W> x, bool backward)
{
    for (Index s = 0; s < a.n; ++s) {
        const auto i = static_cast<std::size_t>(backward ? a.n - 1 - s : s);
        W sum = b[i];
        for (std::size_t j = 0; j < x.size(); ++j)
            if (j != i) sum -= a(static_cast<Index>(i), static_cast<Index>(j)) * x[j];
        x[i] += omega * (sum / a(static_cast<Index>(i), static_cast<Index>(i)) - x[i]);
    }
    return x;
}

std::vector<W> scaled(W alpha, std::vector<W> x)
{
    for (W& e : x) e *= alpha;
    return x;
}

template <class T>
void expect_dot(T got, const Guarded<T>& x, const Guarded<T>& y)
{
    W sum;
    for (Index i = 0; i < x.size(); ++i) sum += std::conj(wide(x[i])) * wide(y[i]);
    EXPECT_TRUE(std::abs(wide(got) - sum) <=
                300 * std::numeric_limits<Real<T>>::epsilon() * static_cast<Real<T>>(x.size()));
}

TYPED_TEST(SparseSmooth, ProductsOfPackedTriangles)
{
    TYPES;
    struct Member {
        typename TestFixture::Call::mv_fwd_ker* kernel; // null: the one with a dot product
        bool lower, upper;
    };
    const Member members[] = {{KERNEL(mv_fwd_ker), true, false},
                              {KERNEL(mv_bwd_ker), false, true},
                              {KERNEL(mv_all_ker), true, true},
                              {nullptr, true, true}};
    for (const Index height : {1, 4})
        for (const Member& m : members)
            for (const T beta : {T(0), this->beta})
                for (const bool diagonal : {true, false}) {
                    const SolveCase<Int, T> a(90, 0, this->random);
                    const PackedCase<Int, T> packing(a, height);
                    auto packed = packing.get(diagonal);
                    if (!diagonal) packed.diagonal = nullptr;
                    const auto x = random_vector<T>(a.n, this->random);
                    const Guarded<T> y(beta == T(0) ? std::vector<T>(static_cast<std::size_t>(a.n), nan_of<T>)
                                                    : x.values());
                    const auto slices = static_cast<Int>(packing.slices()), middle = static_cast<Int>(slices / 2);
                    T dots[2] = {nan_of<T>, nan_of<T>}, none = nan_of<T>;
                    for (const auto& [first, last, dot] :
                         {std::tuple{Int{0}, middle, dots}, {middle, slices, dots + 1}, {middle, middle, &none}})
                        if (m.kernel != nullptr)
                            m.kernel(first, last, &packed, this->alpha, x.data(), beta, y.data());
                        else
                            KERNEL(dotmv_all_ker)(first, last, &packed, this->alpha, x.data(), beta, y.data(), dot);
                    const Square part = a.dense.part([&](Index d) {
                        return d == 0 ? diagonal : d > 0 ? m.lower : m.upper;
                    });
                    auto want = scaled(wide(this->alpha), part.times(widened(x)));
                    for (std::size_t i = 0; i < want.size(); ++i)
                        want[i] += wide(beta) * wide(x[static_cast<Index>(i)]);
                    expect_near(y, want);
                    if (m.kernel != nullptr) continue;
                    expect_dot(static_cast<T>(dots[0] + dots[1]), x, y);
                    EXPECT_EQ(none, T(0));
                }
}

// In phases, by shares; whole; in four arrays. From 0 neither x nor y is read.
TYPED_TEST(SparseSmooth, SymmetricGaussSeidel)
{
    TYPES;
    namespace abi = ork::sparse;
    for (const Index height : {1, 4})
        for (const int variant : {0, 1, 2, 3}) {
            const bool from_zero = variant % 2 != 0, far = variant / 2 != 0;
            const Int base = static_cast<Int>(variant / 2);
            const SolveCase<Int, T> a(150, base, this->random);
            const PackedCase<Int, T> packing(a, height);
            const auto packed = packing.get(far);
            const auto b = random_vector<T>(a.n, this->random);
            const std::vector<T> nans(static_cast<std::size_t>(a.n), nan_of<T>);
            const auto start = from_zero ? nans : random_vector<T>(a.n, this->random).values();
            std::vector<W> want(static_cast<std::size_t>(a.n));
            for (std::size_t i = 0; i < want.size() && !from_zero; ++i) want[i] = wide(start[i]);
            for (const bool backward : {false, true})
                want = swept(a.dense, W(1), scaled(wide(this->alpha), widened(b)), want, backward);
            const auto product = a.dense.times(want);

            const Guarded<T> x(start), y(nans), rest(packing.slices() * height);
            const auto slices = static_cast<Int>(packing.slices()), middle = static_cast<Int>(slices / 2);
            T dots[2] = {nan_of<T>, nan_of<T>};
            for (const int phase :
                 {from_zero ? abi::phase_from_zero : abi::phase_forward, abi::phase_backward, abi::phase_product})
                for (const bool second : {phase == abi::phase_backward, phase != abi::phase_backward})
                    KERNEL(dotmv_symgs_ker)
            (phase, second ? middle : 0, second ? slices : middle, &packed, this->alpha, b.data(), x.data(),
             rest.data(), y.data(), dots + second);
            expect_near(x, want);
            expect_near(y, product);
            expect_dot(static_cast<T>(dots[0] + dots[1]), x, y);

            const Guarded<T> other(start), image(nans), again(start), last(nans), plain(start);
            T dot = nan_of<T>;
            KERNEL(mv_symgs_ker_1thr)
            (from_zero, &packed, this->alpha, b.data(), other.data(), rest.data(), image.data());
            KERNEL(dotmv_symgs_ker_1thr)
            (from_zero, &packed, this->alpha, b.data(), again.data(), rest.data(), last.data(), &dot);
            KERNEL(mv_symgs_ker_1thr)(from_zero, &packed, this->alpha, b.data(), plain.data(), rest.data(), nullptr);
            EXPECT_TRUE(other.values() == x.values() && image.values() == y.values());
            EXPECT_TRUE(again.values() == x.values() && last.values() == y.values() && plain.values() == x.values());
            expect_dot(dot, x, y);
            const Guarded<T> share(start);
            KERNEL(mv_symgs_ker)
            (from_zero ? abi::phase_from_zero : abi::phase_forward, 0, slices, &packed, this->alpha, b.data(),
             share.data(), rest.data(), nullptr);
            KERNEL(mv_symgs_ker)
            (abi::phase_backward, 0, slices, &packed, this->alpha, b.data(), share.data(), rest.data(), nullptr);
            EXPECT_EQ(share.values(), x.values());

            const Guarded<T> in_rows(start), with_product(start), rows_image(nans);
            KERNEL(csr__g_n_symgs_def)
            (static_cast<Int>(a.n), base, from_zero, this->alpha, a.vals.data(), a.index.data(), a.first.data(),
             a.last.data(), b.data(), in_rows.data());
            KERNEL(csr__g_n_symgs_mv_def)
            (static_cast<Int>(a.n), base, from_zero, this->alpha, a.vals.data(), a.index.data(), a.first.data(),
             a.last.data(), b.data(), with_product.data(), rows_image.data());
            expect_near(in_rows, want);
            EXPECT_EQ(with_product.values(), in_rows.values());
            expect_near(rows_image, product);
        }
}

// x + ((L + E) E^-1 (E + U))^-1 (b - A x)
std::vector<W> corrected(const Square& a, const Square& e, const std::vector<W>& b, std::vector<W> x, Index block)
{
    const auto product = a.times(x);
    std::vector<W> r = b;
    for (std::size_t i = 0; i < r.size(); ++i) r[i] -= product[i];
    // Block elimination by hand: E is block diagonal and lower triangular within its blocks.
    const auto solve_e = [&](std::vector<W>& v, Index first) {
        for (Index i = first; i < first + block; ++i) {
            for (Index j = first; j < i; ++j)
                v[static_cast<std::size_t>(i)] -= e(i, j) * v[static_cast<std::size_t>(j)];
            v[static_cast<std::size_t>(i)] /= e(i, i);
        }
    };
    for (Index first = 0; first < a.n; first += block) {
        for (Index i = first; i < first + block; ++i)
            for (Index j = 0; j < first; ++j)
                r[static_cast<std::size_t>(i)] -= a(i, j) * r[static_cast<std::size_t>(j)];
        solve_e(r, first);
    }
    r = e.times(r);
    for (Index first = a.n - block; first >= 0; first -= block) {
        for (Index i = first; i < first + block; ++i)
            for (Index j = first + block; j < a.n; ++j)
                r[static_cast<std::size_t>(i)] -= a(i, j) * r[static_cast<std::size_t>(j)];
        solve_e(r, first);
    }
    for (std::size_t i = 0; i < r.size(); ++i) x[i] += r[i];
    return x;
}

TYPED_TEST(SparseSmooth, StepsWithFactors)
{
    TYPES;
    namespace abi = ork::sparse;
    for (const Index height : {1, 4}) {
        const Int base = height == 1;
        const SolveCase<Int, T> a(70, base, this->random);
        const PackedCase<Int, T> packing(a, height);
        const auto packed = packing.get(height == 1);
        const Guarded<T> e(a.n), inverse(a.n), z(a.n);
        Square wide_e(a.n);
        for (Index i = 0; i < a.n; ++i) {
            e[i] = number<T>(i % 2 == 0 ? 4 : 2, 0), inverse[i] = T(1) / e[i];
            wide_e(i, i) = wide(e[i]);
        }
        const auto b = random_vector<T>(a.n, this->random), start = random_vector<T>(a.n, this->random);
        const auto want = corrected(a.dense, wide_e, widened(b), widened(start), 1);
        const Guarded<T> x(start.values()), in_rows(start.values());
        const auto slices = static_cast<Int>(packing.slices()), middle = static_cast<Int>(slices / 2);
        for (const int phase : {abi::phase_forward, abi::phase_backward})
            for (const bool second : {phase == abi::phase_backward, phase != abi::phase_backward})
                KERNEL(csr_lu_smoother_opt_ker)
        (phase, second ? middle : 0, second ? slices : middle, &packed, e.data(), inverse.data(), b.data(), x.data(),
         z.data());
        expect_near(x, want);
        KERNEL(csr_lu_smoother_def_ker)
        (static_cast<Int>(a.n), base, a.vals.data(), a.index.data(), a.first.data(), a.last.data(), e.data(),
         inverse.data(), b.data(), in_rows.data(), z.data());
        expect_near(in_rows, want);
    }
}

TYPED_TEST(SparseSmooth, Blocks)
{
    TYPES;
    for (const Index block : {2, 3, 5})
        for (const int layout : {0, 1}) {
            const Int base = static_cast<Int>(layout);
            const SolveCase<Int, T> a(9, base, this->random, block, layout);
            const auto blocks = a.blocks();
            const Index n = a.size();
            // E: ones, and halves below the diagonal of a block; its inverse has the powers of -1/2 combined.
            const Guarded<T> e(n * block), inverse(n * block), work(block), z(n);
            Square wide_e(n);
            for (Index i = 0; i < n; ++i)
                for (Index c = 0; c < block; ++c) {
                    const Index r = i % block,
                                at = i / block * block * block + (layout == 0 ? r * block + c : c * block + r);
                    const double below = r == c ? 1 : r > c ? 0.5 : 0;
                    const double back = r == c ? 1 : r > c ? -0.5 * std::pow(0.5, static_cast<double>(r - c - 1)) : 0;
                    e[at] = number<T>(below, 0), inverse[at] = number<T>(back, 0);
                    wide_e(i, i / block * block + c) = W(static_cast<long double>(below));
                }
            const auto b = random_vector<T>(n, this->random), start = random_vector<T>(n, this->random);
            const auto residual = a.dense.times(widened(start));
            for (Index i = 0; i < n; ++i) {
                const W r = wide(b[i]) - residual[static_cast<std::size_t>(i)];
                z[i] = number<T>(static_cast<double>(r.real()), static_cast<double>(r.imag()));
            }
            const auto rows = static_cast<Int>(a.n);
            KERNEL(bsr_ng_lu_smoother_lower_solve_def)(0, 3, &blocks, e.data(), inverse.data(), z.data(), work.data());
            KERNEL(bsr_ng_lu_smoother_lower_solve_def)
            (3, rows, &blocks, e.data(), inverse.data(), z.data(), work.data());
            KERNEL(bsr_ng_lu_smoother_upper_solve_def)
            (3, rows, &blocks, e.data(), inverse.data(), z.data(), work.data());
            KERNEL(bsr_ng_lu_smoother_upper_solve_def)(0, 3, &blocks, e.data(), inverse.data(), z.data(), work.data());
            auto want = corrected(a.dense, wide_e, widened(b), widened(start), block);
            for (Index i = 0; i < n; ++i) want[static_cast<std::size_t>(i)] -= wide(start[i]);
            expect_near(z, want);

            // With E in the place of the diagonal blocks the sweeps are those of L + E + U.
            for (const bool upper : {false, true}) {
                const Guarded<T> x(start.values());
                auto* const sweep = upper ? KERNEL(bsr_ng_fused_upper_solve) : KERNEL(bsr_ng_fused_lower_solve);
                sweep(upper ? 3 : 0, upper ? rows : 3, &blocks, inverse.data(), this->alpha, b.data(), x.data(),
                      work.data());
                sweep(upper ? 0 : 3, upper ? 3 : rows, &blocks, inverse.data(), this->alpha, b.data(), x.data(),
                      work.data());
                auto expected = widened(start);
                for (Index s = 0; s < a.n; ++s) {
                    const Index first = (upper ? a.n - 1 - s : s) * block;
                    for (Index i = first; i < first + block; ++i) {
                        W sum = wide(this->alpha) * wide(b[i]);
                        for (Index j = 0; j < n; ++j)
                            if (j < first || j >= first + block)
                                sum -= a.dense(i, j) * expected[static_cast<std::size_t>(j)];
                        for (Index j = first; j < i; ++j) sum -= wide_e(i, j) * expected[static_cast<std::size_t>(j)];
                        expected[static_cast<std::size_t>(i)] = sum;
                    }
                }
                expect_near(x, expected);
            }
        }
}

// A row whose diagonal is 0 keeps its element. Of a symmetric matrix what stands below the diagonal is NaN.
TYPED_TEST(SparseSmooth, Relaxation)
{
    TYPES;
    const T omega = number<T>(1.25, 0.25);
    for (const Int base : {0, 1}) {
        SolveCase<Int, T> a(33, base, this->random);
        const auto n = static_cast<Int>(a.n);
        const auto b = random_vector<T>(n, this->random), start = random_vector<T>(n, this->random);
        for (const Int backward : {0, 1})
            for (const T factor : {T(1), omega}) {
                const Guarded<T> x(start.values());
                KERNEL(csr_seq_fw_sor_def)
                (n, base, backward, factor, a.vals.data(), a.index.data(), a.first.data(), a.last.data(), b.data(),
                 x.data());
                expect_near(x, swept(a.dense, wide(factor), widened(b), widened(start), backward != 0));
            }
        Square symmetric(n);
        for (Index i = 0; i < n; ++i)
            for (Index j = 0; j < n; ++j) symmetric(i, j) = a.dense(std::min(i, j), std::max(i, j));
        for (Index i = 0; i < n; ++i)
            for (Index k = a.first[static_cast<std::size_t>(i)] - base; k < a.last[static_cast<std::size_t>(i)] - base;
                 ++k)
                if (a.index[static_cast<std::size_t>(k)] - base < i) a.vals[static_cast<std::size_t>(k)] = nan_of<T>;
        const Guarded<T> x(start.values()), work(n), y(start.values()),
            fresh(std::vector<T>(static_cast<std::size_t>(n), nan_of<T>));
        KERNEL(csr_seq_sym_u_full_fw_sor)
        (n, base, omega, a.vals.data(), a.index.data(), a.first.data(), a.last.data(), b.data(), x.data(), work.data());
        expect_near(x, swept(symmetric, wide(omega), widened(b), widened(start), false));
        auto want = scaled(wide(this->alpha), symmetric.times(widened(b)));
        KERNEL(csr_seq_nt_sym_full_u_mv)
        (n, base, this->alpha, a.vals.data(), a.index.data(), a.first.data(), a.last.data(), b.data(), T(0),
         fresh.data());
        expect_near(fresh, want);
        KERNEL(csr_seq_nt_sym_full_u_mv)
        (n, base, this->alpha, a.vals.data(), a.index.data(), a.first.data(), a.last.data(), b.data(), this->beta,
         y.data());
        for (Index i = 0; i < n; ++i) want[static_cast<std::size_t>(i)] += wide(this->beta) * wide(start[i]);
        expect_near(y, want);

        for (Index k = a.first[7] - base; k < a.last[7] - base; ++k)
            a.vals[static_cast<std::size_t>(k)] = a.index[static_cast<std::size_t>(k)] - base == 7 ? T(0) : T(1);
        const Guarded<T> kept(start.values()), other(start.values());
        const Guarded<T> finite(std::vector<T>(a.vals.size(), T(0)));
        for (Index k = 0; k < finite.size(); ++k)
            finite[k] = k >= a.first[7] - base && k < a.last[7] - base ? a.vals[static_cast<std::size_t>(k)] : T(1);
        KERNEL(csr_seq_fw_sor_def)
        (n, base, 0, omega, finite.data(), a.index.data(), a.first.data(), a.last.data(), b.data(), kept.data());
        KERNEL(csr_seq_sym_u_full_fw_sor)
        (n, base, omega, finite.data(), a.index.data(), a.first.data(), a.last.data(), b.data(), other.data(),
         work.data());
        EXPECT_EQ(kept[7], start[7]);
        EXPECT_EQ(other[7], start[7]);
    }
}

} // namespace
} // namespace ork::test
