// SPDX-License-Identifier: MIT
// Skylines: profiles of every length, empty ones among them, wherever the positions start.
#include "spblas/member.h"
#include "spblas/whole.h"
#include "support/guarded.h"

namespace ork::test {
namespace {

template <class C>
class Skyline : public testing::Test {
public:
    using T = typename C::T;
    using Int = typename C::Int;
    using Call = spblas::Calls<Format::sky, Int, T>;

    // Whole numbers: profile i has length(i) of them, the diagonal being the last; positions count from start.
    template <class Length>
    void fill(Int m, Int start, Length length)
    {
        pntr = {start};
        for (Int i = 0; i < m; ++i) pntr.push_back(static_cast<Int>(pntr.back() + std::min<Int>(length(i), i + 1)));
        val = whole_values<T>(pntr.back() - start, random);
    }
    // f(i, j, value) for all of them, j <= i.
    template <class F>
    void each(F f) const
    {
        for (std::size_t i = 0; i + 1 < pntr.size(); ++i)
            for (Int p = pntr[i]; p < pntr[i + 1]; ++p)
                f(i, i + 1 - static_cast<std::size_t>(pntr[i + 1] - p), val[static_cast<std::size_t>(p - pntr[0])]);
    }

    std::vector<Int> pntr;
    std::vector<T> val;
    Random random{9};
};
TYPED_TEST_SUITE(Skyline, Cases, CaseNames);

TYPED_TEST(Skyline, ProfilesOfEveryLength)
{
    using T = typename TypeParam::T;
    using Int = typename TypeParam::Int;
    using Call = typename TestFixture::Call;
    const Int m = 83, one = 1;
    const T alpha(1), beta(2);
    for (const Int start : {0, 1, 17}) {
        this->fill(m, start, [](Int i) { return i * 29 % 41; }); // 0 .. 40, row 0 without a diagonal
        const Guarded<T> val(this->val), x(whole_values<T>(m, this->random));
        const Guarded<Int> pntr(this->pntr, Guard::begin);
        const auto y = whole_values<T>(m, this->random);
        for (const char* name : {"sky0ntlnc__mvout_par", "sky1ntunf__mvout_par", "sky0nslnc__mvout_par"}) {
            const bool rows = name[6] == 'l', both = name[5] == 's';
            std::vector<T> want(y);
            for (T& value : want) value *= beta;
            this->each([&](std::size_t i, std::size_t j, T value) {
                const auto at = [&](std::size_t k) { return x[static_cast<std::int64_t>(k)]; };
                if (rows || both) want[i] += value * at(j);
                if ((!rows || both) && (i != j || !both)) want[j] += value * at(i);
            });
            auto* const kernel = member<typename Call::MvoutPar, Int, T>(name);
            if (kernel == nullptr) return;
            const Guarded<T> got(y);
            kernel(&one, &m, nullptr, &m, &alpha, val.data(), pntr.data(), x.data(), got.data(), &beta);
            EXPECT_EQ(got.values(), want) << name << " from " << start;
        }
    }
}

// Pivots are ones and the solution is whole numbers, so it is found exactly.
TYPED_TEST(Skyline, SolvesWithProfilesOfEveryLength)
{
    using T = typename TypeParam::T;
    using Int = typename TypeParam::Int;
    using Call = typename TestFixture::Call;
    const Int m = 83;
    this->fill(m, 3, [](Int i) { return 1 + i * 29 % 41; });
    for (std::size_t i = 0; i < static_cast<std::size_t>(m); ++i)
        this->val[static_cast<std::size_t>(this->pntr[i + 1] - this->pntr[0] - 1)] = T(1);
    const auto solution = whole_values<T>(m, this->random);
    for (const char* name :
         {"sky0ntlnc__svout_seq", "sky1ttlnf__svout_seq", "sky0ntunc__svout_seq", "sky0ttunc__svout_seq"}) {
        const bool by_rows = (name[6] == 'l') == (name[4] == 'n');
        std::vector<T> y(solution.size());
        this->each([&](std::size_t i, std::size_t j, T value) {
            by_rows ? y[i] += value * solution[j] : y[j] += value * solution[i];
        });
        auto* const kernel = member<typename Call::SvoutSeq, Int, T>(name);
        if (kernel == nullptr) return;
        kernel(&m, nullptr, this->val.data(), this->pntr.data(), y.data());
        EXPECT_EQ(y, solution) << name;
    }
}

// Values that are fetched ahead, forward and backward, beyond their pages.
TYPED_TEST(Skyline, FarProfiles)
{
    using T = typename TypeParam::T;
    using Int = typename TypeParam::Int;
    using Call = typename TestFixture::Call;
    static constexpr Int m = 3000;
    this->fill(m, 0, [](Int) { return static_cast<Int>(9 << 20) / (m * static_cast<Int>(sizeof(T))) + 20; });
    const T beside(static_cast<Real<T>>(0x1p-12));
    for (T& value : this->val) value = beside;
    for (std::size_t i = 1; i < this->pntr.size(); ++i) this->val[static_cast<std::size_t>(this->pntr[i] - 1)] = T(2);
    const Guarded<T> val(this->val);
    for (const char* name : {"sky0ntlnc__svout_seq", "sky0ttlnc__svout_seq"}) {
        std::vector<T> y(static_cast<std::size_t>(m));
        this->each([&](std::size_t i, std::size_t j, T value) { y[name[4] == 'n' ? i : j] += value; });
        auto* const kernel = member<typename Call::SvoutSeq, Int, T>(name);
        if (kernel == nullptr) return;
        kernel(&m, nullptr, val.data(), this->pntr.data(), y.data());
        for (const T& value : y) ASSERT_TRUE(std::abs(value - T(1)) <= 100 * std::numeric_limits<Real<T>>::epsilon());
    }
}

} // namespace
} // namespace ork::test
