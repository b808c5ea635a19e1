// SPDX-License-Identifier: MIT
// Many tridiagonal systems: each as the stated steps solve it, whatever its neighbours, in both layouts.
#include "lapack/kernel.h"
#include "lapack/tridiagonal.h"

namespace ork::test {
namespace {

template <class T>
class ManyTridiagonal : public testing::Test {
};
TYPED_TEST_SUITE(ManyTridiagonal, Precisions, PrecisionNames);

// Equation i of system s, rows of a matrix running along whichever of them is adjacent in memory.
template <class T>
struct Array {
    bool interleaved;
    Matrix<T> memory;
    Array(bool interleaved, Int n, Int systems, Int pad, Guard side)
        : interleaved(interleaved),
          memory(interleaved ? systems : n, interleaved ? n : systems, (interleaved ? systems : n) + pad, side)
    {
    }
    T& operator()(Int i, Int s) const { return interleaved ? memory(s, i) : memory(i, s); }
};

template <class T>
struct Systems {
    Int n, systems;
    Array<T> dl, d, du, b;
    Guarded<T> work;

    Systems(bool interleaved, Int n, Int systems, Random& random)
        : n(n), systems(systems), dl(interleaved, n, systems, n % 3, Guard::end),
          d(interleaved, n, systems, n % 3, Guard::begin), du(interleaved, n, systems, n % 3, Guard::end),
          b(interleaved, n, systems, n % 3, Guard::end),
          work(2 * n * std::min<Int>(systems + 3, 16), both_guards[n % 2])
    {
        dl.memory.fill(random), du.memory.fill(random), b.memory.fill(random);
        d.memory.fill([&] { return random.uniform<T>() + T(4); });
        for (Int s = 0; s < systems && n > 0; ++s) // used by nothing
            dl(0, s) = du(n - 1, s) = T(std::numeric_limits<Real<T>>::quiet_NaN());
    }
};

struct Plain { // one system by the stated steps; zero: a pivot was
    template <class T>
    static bool solve(const Systems<T>& p, Int s, std::vector<T>& d, std::vector<T>& du, std::vector<T>& b)
    {
        bool zero = false;
        const auto n = static_cast<std::size_t>(p.n);
        d.resize(n), du.resize(n), b.resize(n);
        for (std::size_t k = 0; k < n; ++k) {
            const Int i = static_cast<Int>(k);
            T pivot = p.d(i, s), rhs = p.b(i, s);
            if (i > 0) {
                pivot = pivot - plain_product(p.dl(i, s), du[k - 1]);
                rhs = rhs - plain_product(p.dl(i, s), b[k - 1]);
            }
            zero = zero || pivot == T{};
            d[k] = smith_quotient(T(1), pivot);
            du[k] = plain_product(p.du(i, s), d[k]);
            b[k] = plain_product(rhs, d[k]);
        }
        for (std::size_t k = n; k-- > 0;)
            if (k + 1 < n) b[k] = b[k] - plain_product(du[k], b[k + 1]);
        return zero;
    }
};

TYPED_TEST(ManyTridiagonal, EachAsIfAlone)
{
    using T = TypeParam;
    auto* const solve = KERNEL(gtsvnp_many);
    auto* const factor = KERNEL(gttrfnp_many);
    auto* const apply = KERNEL(gttrsnp_many);
    Random random;
    for (const char layout : {'i', 'C'})
        for (const Int n : {0, 1, 2, 3, 4, 5, 6, 8, 9, 33})
            for (const Int systems : {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 13, 15, 16, 17, 31, 32, 33, 67})
                for (const bool at_once : {false, true}) {
                    SCOPED_TRACE(std::string(1, layout) + ' ' + std::to_string(n) + " x " + std::to_string(systems));
                    Systems<T> p(layout == 'i', n, systems, random);
                    std::vector<std::vector<T>> d(static_cast<std::size_t>(systems)), du(d), b(d);
                    for (std::size_t s = 0; s < d.size(); ++s) Plain::solve(p, static_cast<Int>(s), d[s], du[s], b[s]);
                    const Int ld = p.d.memory.ld();
                    Int info = -7;
                    p.dl.memory.read_only();
                    if (at_once) {
                        p.d.memory.read_only(), p.du.memory.read_only();
                        solve(&layout, &n, &systems, p.dl.memory.data(), p.d.memory.data(), p.du.memory.data(),
                              p.b.memory.data(), &ld, p.work.data(), &info);
                    } else {
                        factor(&layout, &n, &systems, p.dl.memory.data(), p.d.memory.data(), p.du.memory.data(), &ld,
                               &info);
                        p.d.memory.read_only(), p.du.memory.read_only();
                        apply(&layout, &n, &systems, p.dl.memory.data(), p.d.memory.data(), p.du.memory.data(),
                              p.b.memory.data(), &ld);
                    }
                    EXPECT_EQ(info, 0);
                    for (Int s = 0; s < systems; ++s)
                        for (Int i = 0; i < n; ++i) {
                            const auto x = static_cast<std::size_t>(s), y = static_cast<std::size_t>(i);
                            EXPECT_TRUE(equal(p.b(i, s), b[x][y])) << i << ", " << s;
                            if (at_once) continue;
                            EXPECT_TRUE(equal(p.d(i, s), d[x][y])) << i << ", " << s;
                            EXPECT_TRUE(i + 1 == n || equal(p.du(i, s), du[x][y])) << i << ", " << s;
                        }
                    EXPECT_TRUE(p.b.memory.padding_intact() && p.d.memory.padding_intact() &&
                                p.du.memory.padding_intact());
                    if (testing::Test::HasFailure()) return;
                }
}

// Pivots of zero in two systems, the later one reached first; a solution that overflows is no pivot of zero.
TYPED_TEST(ManyTridiagonal, TheFirstWithAPivotOfZero)
{
    using T = TypeParam;
    Random random;
    const Int n = 7, systems = 39;
    for (const char layout : {'I', 'C'})
        for (const Int bad : {Int{0}, Int{5}, Int{18}, Int{37}})
            for (const bool at_once : {false, true}) {
                SCOPED_TRACE(std::string(1, layout) + ' ' + std::to_string(bad));
                Systems<T> p(layout == 'I', n, systems, random);
                for (const auto& [s, row] : {std::pair<Int, Int>{bad, 4}, {bad + 1, 0}})
                    p.d(row, s) = p.dl(row, s) = T{};
                if (bad > 0) p.b(n - 1, 0) = T(std::numeric_limits<Real<T>>::infinity());
                std::vector<T> d, du, b;
                Plain::solve(p, systems - 1, d, du, b);
                const Int ld = p.d.memory.ld();
                Int info = -7;
                const T* const dl = p.dl.memory.data();
                T *const diagonal = p.d.memory.data(), *const above = p.du.memory.data();
                if (at_once) {
                    auto* const solve = KERNEL(gtsvnp_many);
                    solve(&layout, &n, &systems, dl, diagonal, above, p.b.memory.data(), &ld, p.work.data(), &info);
                } else {
                    KERNEL(gttrfnp_many)(&layout, &n, &systems, dl, diagonal, above, &ld, &info);
                }
                EXPECT_EQ(info, bad + 1);
                for (Int i = 0; i < n && at_once && bad + 1 < systems - 1; ++i)
                    EXPECT_TRUE(equal(p.b(i, systems - 1), b[static_cast<std::size_t>(i)]));
            }
}

} // namespace
} // namespace ork::test
