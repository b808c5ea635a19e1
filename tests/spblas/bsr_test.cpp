// SPDX-License-Identifier: MIT
// Blocks of every order that has code of its own, and of some that have none.
#include "spblas/kernel.h"
#include "support/compare.h"

namespace ork::test {
namespace {

using spblas::exists;

constexpr std::int64_t orders[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 17};

template <class C>
class Blocks : public testing::Test {
public:
    using T = typename C::T;
    using Int = typename C::Int;

    // Calls body(kernel, shape, matrix, model) for both formats and layouts, one matrix of each kind.
    template <class Body>
    void each(Routine routine, Body&& body)
    {
        const char* shapes[] = {"ng__", "tg__", "cg__", "sg__", "nsln", "nsuu", "thun", "nhlu", "tal_",
                                "nau_", "ntln", "ntuu", "ttun", "ctlu", "stln", "ttuu", "nd_n"};
        for (const std::int64_t lb : orders)
            for (const Format format : {Format::bsr, Format::bsc})
                for (const char layout : {'c', 'f'})
                    for (const char* letters : shapes) {
                        const Shape s{
                            layout == 'c' ? '0' : '1', letters[0], letters[1], letters[2], letters[3], layout};
                        if (!exists(format, routine, s, is_complex<T>)) continue;
                        const bool solve = routine == Routine::svout || routine == Routine::smout;
                        const std::int64_t rows = lb > 8 ? 3 : 7;
                        const auto a = random_sparse<T>({s, rows, rows, lb, solve, false, false}, random);
                        const auto member = kernel<Int>(format, routine, s, a, {s, 2, true});
                        SCOPED_TRACE(name_of(format, routine, s) + ", order " + std::to_string(lb));
                        if (member->found()) body(*member, format, s, a, Model(a, s));
                        if (this->HasFailure()) return;
                    }
    }

    Random random{7};
};
TYPED_TEST_SUITE(Blocks, Cases, CaseNames);

// What is ignored of a diagonal block is NaN here, and so is y where beta = 0. The product of one block row at a time
// has the bits of the whole, where rows are written alone.
TYPED_TEST(Blocks, ProductsOfEveryOrder)
{
    using T = typename TypeParam::T;
    this->each(Routine::mvout, [&](const Kernel<T>& member, Format format, Shape s, const Sparse<T>& a,
                                   const Model& model) {
        const T alpha = scalar<T>(0.75, -0.5);
        const std::int64_t size = model.rows();
        const auto x = uniform_values<T>(size, this->random.bits()), y = uniform_values<T>(size, this->random.bits());
        for (const T beta : {T(0), scalar<T>(-1.5, 0.25)}) {
            const Guarded<T> whole(beta == T(0) ? std::vector<T>(x.size(), not_a_number<T>()) : y);
            const Guarded<T> rows(whole.values());
            member.mvout(1, a.rows, a.rows, a.columns, alpha, x.data(), whole.data(), beta);
            std::vector<Expected<Model::R>> want;
            for (std::int64_t i = 0; i < size; ++i)
                want.push_back(model.product(
                    i, alpha, [&](std::int64_t j) { return x[static_cast<std::size_t>(j)]; }, beta,
                    y[static_cast<std::size_t>(i)]));
            expect_near<T>(whole, want, static_cast<double>(size) + 8);
            if (!is_parallel(Routine::mvout, s) || spblas::scatters(format, s)) continue;
            for (std::int64_t i = a.rows; i >= 1; --i)
                member.mvout(i, i, a.rows, a.columns, alpha, x.data(), rows.data(), beta);
            expect_same_bits<T>(rows, whole, size);
        }
    });
}

// Right-hand sides by fours, in registers and what is left over.
TYPED_TEST(Blocks, DenseProductsOfEveryWidth)
{
    using T = typename TypeParam::T;
    std::int64_t rhs = 0;
    this->each(Routine::mmout, [&](const Kernel<T>& member, Format, Shape s, const Sparse<T>& a, const Model& model) {
        rhs = rhs % 21 + 1;
        const T alpha = scalar<T>(0.75, -0.5), beta = scalar<T>(-1.5, 0.25);
        const std::int64_t size = model.rows(), ld = s.layout == 'c' ? rhs : size;
        const auto b = uniform_values<T>(size * rhs, this->random.bits());
        const auto c = uniform_values<T>(size * rhs, this->random.bits());
        const Guarded<T> got(c);
        member.mmout(1, rhs, a.rows, a.columns, alpha, b.data(), ld, got.data(), ld, beta);
        std::vector<Expected<Model::R>> want(c.size());
        const auto at = [&](std::int64_t r, std::int64_t j) {
            return static_cast<std::size_t>(s.layout == 'c' ? r * rhs + j : j * size + r);
        };
        for (std::int64_t j = 0; j < rhs; ++j)
            for (std::int64_t r = 0; r < size; ++r)
                want[at(r, j)] = model.product(
                    r, alpha, [&](std::int64_t k) { return b[at(k, j)]; }, beta, c[at(r, j)]);
        expect_near<T>(got, want, static_cast<double>(size) + 8);
    });
}

TYPED_TEST(Blocks, SolvesOfEveryOrder)
{
    using T = typename TypeParam::T;
    this->each(Routine::svout, [&](const Kernel<T>& member, Format, Shape, const Sparse<T>& a, const Model& model) {
        const auto b = uniform_values<T>(model.rows(), this->random.bits());
        const Guarded<T> y(b);
        member.svout(a.rows, y.data());
        for (std::int64_t i = 0; i < model.rows(); ++i) {
            const T right = b[static_cast<std::size_t>(i)];
            const auto rest = model.product(
                i, T(1), [&](std::int64_t j) { return y[j]; }, T(1), -right);
            const auto bound = std::numeric_limits<Real<T>>::epsilon() * rest.scale * (model.rows() + 8);
            EXPECT_TRUE(magnitude(rest.value) <= bound) << "row " << i;
        }
    });
}

// 1 / d is out of range where x / d is not.
TYPED_TEST(Blocks, DenormalPivots)
{
    using T = typename TypeParam::T;
    for (const std::int64_t lb : orders) {
        const Shape s{'0', 'n', 't', 'l', 'n', 'c'};
        const T tiny(std::numeric_limits<Real<T>>::denorm_min() * 8);
        Sparse<T> a{1, 1, lb, {{0, 0, std::vector<T>(static_cast<std::size_t>(lb * lb))}}};
        for (std::int64_t r = 0; r < lb; ++r) a.blocks[0].value[static_cast<std::size_t>(r * (lb + 1))] = tiny;
        const Guarded<T> y(std::vector<T>(static_cast<std::size_t>(lb), tiny));
        const auto member = kernel<typename TypeParam::Int>(Format::bsr, Routine::svout, s, a, {s});
        if (!member->found()) return;
        member->svout(1, y.data());
        for (std::int64_t r = 0; r < lb; ++r) EXPECT_EQ(y[r], T(1)) << "order " << lb;
    }
}

// A matrix that is fetched ahead and the slices of it that are not.
TYPED_TEST(Blocks, FarMatricesHaveTheBitsOfNearOnes)
{
    using T = typename TypeParam::T;
    const Shape s{'1', 'n', 'g', '_', '_', 'f'};
    for (const std::int64_t lb : {2, 3, 4, 6}) {
        const std::int64_t rows = (9 << 20) / (2 * lb * lb * static_cast<std::int64_t>(sizeof(T)));
        Sparse<T> a{rows, rows, lb, {}};
        for (std::int64_t i = 0; i < rows; ++i)
            for (const std::int64_t j : {i, (i * 7919 + 1) % rows})
                a.blocks.push_back({i, j, uniform_values<T>(lb * lb, static_cast<std::uint64_t>(i + j))});
        const auto member = kernel<typename TypeParam::Int>(Format::bsr, Routine::mvout, s, a, {s});
        if (!member->found()) return;
        const auto x = uniform_values<T>(rows * lb);
        std::vector<T> far(x.size()), near(x.size());
        member->mvout(1, rows, rows, rows, T(1), x.data(), far.data(), T(0));
        for (std::int64_t i = 0; i < rows; i += 100)
            member->mvout(i + 1, std::min(rows, i + 100), rows, rows, T(1), x.data(), near.data(), T(0));
        expect_same_bits<T>(far, near, rows * lb);
    }
}

} // namespace
} // namespace ork::test
