// SPDX-License-Identifier: MIT
// Illegal arguments are reported once, by name and position, and leave the outputs alone; legal ones are not refused.
#include <algorithm>
#include <array>
#include <cctype>
#include <limits>

#include "bindings.h"
#include "ork/blas.h"
#include "reports.h"
#include "support/random.h"

namespace ork::test {

namespace {

std::string upper_padded(std::string name)
{
    for (char& c : name) c = static_cast<char>(std::toupper(c));
    name.resize(std::max<std::size_t>(6, name.size()), ' ');
    return name;
}

// What one wrong argument must lead to. libblas64 reports through the names without suffix as far as its own programs
// can see, but the core's symbols are the same for all libraries: the width decides.
template <class Row>
Report expected_report(const Binding& binding, std::size_t place)
{
    if (binding.c)
        return {binding.wide ? "cblas_xerbla64_" : "cblas_xerbla", std::string("cblas_") + Row::name,
                static_cast<std::int64_t>(place) + 2};
    return {binding.wide ? "xerbla_64_" : "xerbla_", upper_padded(Row::name), static_cast<std::int64_t>(place) + 1};
}

// A call of legal sizes with ample leading dimensions in either storage order.
template <class Row>
Call<Row> ample_call(CBLAS_LAYOUT layout)
{
    Call<Row> call;
    call.layout = layout;
    Random random(7);
    for (auto& e : call.elements)
        for (auto& x : e) x = random.uniform<std::complex<double>>();
    std::int64_t size = 3;
    for (std::size_t i = 0; i < Row::count; ++i) switch (Row::arguments[i].role) {
        case Role::size:
            call.integers[i] = size++;
            break;
        case Role::band:
            call.integers[i] = 1;
            break;
        case Role::lead:
            call.integers[i] = 20;
            break;
        case Role::increment:
            call.integers[i] = 1;
            break;
        default:
            break;
        }
    return call;
}

template <class Row>
void expect_refused(const Binding& binding, Call<Row>& call, std::size_t place)
{
    const Call<Row> before = call;
    (void)take_reports();
    invoke<Row>(binding, call);
    EXPECT_EQ(take_reports(), std::vector{expected_report<Row>(binding, place)});
    EXPECT_TRUE(call.same_elements(before)) << "an output was touched";
}

TEST(Arguments, EachIllegalOneIsReportedOnceThroughEveryBinding)
{
    int checked = 0;
    for_each_row([&]<class Row>() {
        for (const Binding& binding : bindings)
            for (const CBLAS_LAYOUT layout : {CblasColMajor, CblasRowMajor}) {
                if (!binding.c && layout == CblasRowMajor) continue;
                for (std::size_t i = 0; i < Row::count; ++i) {
                    const Argument& a = Row::arguments[i];
                    if (!a.is_checked()) continue;
                    std::ostringstream where;
                    where << Row::name << " " << a.name << " of " << binding << " order " << layout;
                    SCOPED_TRACE(where.str());
                    ++checked;
                    if (a.is_option()) {
                        for (const char wrong : {'X', '?', ' ', '1', '\0'}) {
                            auto call = ample_call<Row>(layout);
                            call.letters[i] = wrong;
                            expect_refused(binding, call, i);
                        }
                    } else {
                        const std::int64_t least = binding.wide ? std::numeric_limits<std::int64_t>::min()
                                                                : std::numeric_limits<std::int32_t>::min();
                        std::vector<std::int64_t> wrong = {-1, least};
                        if (a.role == Role::increment) wrong = {0};
                        if (a.role == Role::lead) wrong.push_back(0);
                        for (const std::int64_t value : wrong) {
                            auto call = ample_call<Row>(layout);
                            call.integers[i] = value;
                            expect_refused(binding, call, i);
                        }
                    }
                }
            }
    });
    EXPECT_GE(checked, 1);
}

TEST(Arguments, TheStorageOrderIsTheFirstOfC)
{
    for_each_row([&]<class Row>() {
        if constexpr (Row::is_checked())
            for (const Binding& binding : bindings)
                if (binding.c)
                    for (const int order : {0, 100, 103, -1}) {
                        auto call = ample_call<Row>(static_cast<CBLAS_LAYOUT>(order));
                        const Report want{binding.wide ? "cblas_xerbla64_" : "cblas_xerbla",
                                          std::string("cblas_") + Row::name, 1};
                        const auto before = call;
                        (void)take_reports();
                        invoke<Row>(binding, call);
                        EXPECT_EQ(take_reports(), std::vector{want});
                        EXPECT_TRUE(call.same_elements(before));
                    }
    });
}

TEST(Arguments, NothingIsDoneForEmptyVectors)
{
    for_each_row([&]<class Row>() {
        constexpr std::size_t n = std::min(position(Row::arguments, "n"), position(Row::arguments, "nz"));
        if constexpr (n < Row::count && !Row::is_checked())
            for (const Binding& binding : bindings)
                for (const std::int64_t size : {0, -1, -5}) {
                    SCOPED_TRACE(testing::Message() << Row::name << " of " << binding << " size " << size);
                    Call<Row> call;
                    call.integers[n] = size;
                    for (auto& e : call.elements) std::fill(e.begin(), e.end(), std::complex<double>(0.5, 0.25));
                    if constexpr (std::string_view(Row::name) == "sdsdot") *call.template values<1>() = 2.5f;
                    const Call<Row> before = call;
                    (void)take_reports();
                    const auto result = invoke<Row>(binding, call);
                    EXPECT_TRUE(take_reports().empty());
                    EXPECT_TRUE(call.same_elements(before));
                    if constexpr (std::string_view(Row::name) == "sdsdot")
                        EXPECT_EQ(result, std::complex<double>(2.5)) << "the sum starts from sb";
                    else
                        EXPECT_EQ(result, std::complex<double>(0));
                }
    });
}

using Dgemm = blas::rows::dgemm;

TEST(Arguments, PositionsAreThoseOfTheReference)
{
    std::vector<int> dgemm;
    for (std::size_t i = 0; i < Dgemm::count; ++i)
        if (Dgemm::arguments[i].is_checked()) dgemm.push_back(static_cast<int>(i) + 1);
    EXPECT_EQ(dgemm, (std::vector{1, 2, 3, 4, 5, 8, 10, 13}));
}

struct Sizes {
    std::int64_t m, n, k;
};

// Smallest leading dimensions of A, B and C as the caller stores them.
std::array<std::int64_t, 3> tight_leads(CBLAS_LAYOUT layout, bool ta, bool tb, Sizes s)
{
    const auto lead = [&](std::int64_t rows, std::int64_t columns) {
        return std::max<std::int64_t>(1, layout == CblasColMajor ? rows : columns);
    };
    return {ta ? lead(s.k, s.m) : lead(s.m, s.k), tb ? lead(s.n, s.k) : lead(s.k, s.n), lead(s.m, s.n)};
}

TEST(Arguments, LeadingDimensionsMayBeTightButNotLess)
{
    for (const Binding& binding : bindings)
        for (const CBLAS_LAYOUT layout : {CblasColMajor, CblasRowMajor})
            for (const char ta : {'N', 'T', 'C'})
                for (const char tb : {'N', 'T', 'C'})
                    for (const Sizes s :
                         {Sizes{3, 5, 7}, {7, 5, 3}, {5, 7, 2}, {0, 4, 3}, {4, 0, 3}, {4, 3, 0}, {0, 0, 0}}) {
                        if (!binding.c && layout == CblasRowMajor) continue;
                        SCOPED_TRACE(testing::Message() << binding << " order " << layout << " " << ta << tb << " "
                                                        << s.m << " " << s.n << " " << s.k);
                        Call<Dgemm> call;
                        call.layout = layout;
                        call.letters[0] = ta, call.letters[1] = tb;
                        call.integer("m") = s.m, call.integer("n") = s.n, call.integer("k") = s.k;
                        const auto leads = tight_leads(layout, ta != 'N', tb != 'N', s);
                        const char* names[] = {"lda", "ldb", "ldc"};
                        for (int i = 0; i < 3; ++i) call.integer(names[i]) = leads[i];
                        (void)take_reports();
                        invoke<Dgemm>(binding, call);
                        EXPECT_TRUE(take_reports().empty());
                        for (int i = 0; i < 3; ++i) {
                            --call.integer(names[i]);
                            expect_refused(binding, call, Call<Dgemm>::place(names[i]));
                            ++call.integer(names[i]);
                        }
                    }
}

TEST(Arguments, LettersCountInEitherCaseByTheirFirstCharacter)
{
    const double a[] = {1, 2, 3, 4}, b[] = {1, 0, 0, 1}, one = 1, zero = 0;
    const int32_t n = 2;
    const double expected[] = {1, 3, 2, 4};
    for (const char* letter : {"t", "T", "transposed", "c", "Conjugate"}) {
        double c[4] = {};
        dgemm_(letter, "no", &n, &n, &n, &one, a, &n, b, &n, &zero, c, &n);
        EXPECT_TRUE(std::equal(c, c + 4, expected)) << letter;
    }
    EXPECT_TRUE(take_reports().empty());
    EXPECT_EQ(lsame_("n", "N"), 1);
    EXPECT_EQ(lsame_64_("x", "N"), 0);
}

// Of several wrong arguments the first in the Fortran list counts, as in the reference; by rows that is the caller's n
// before m.
TEST(Arguments, TheFirstWrongOneIsReported)
{
    for (const Binding& binding : bindings) {
        auto call = ample_call<Dgemm>(CblasColMajor);
        call.integer("m") = -1, call.integer("n") = -2, call.integer("lda") = 0;
        expect_refused(binding, call, Call<Dgemm>::place("m"));
        if (!binding.c) continue;
        call.layout = CblasRowMajor;
        expect_refused(binding, call, Call<Dgemm>::place("n"));
    }
}

} // namespace

} // namespace ork::test
