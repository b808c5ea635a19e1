// SPDX-License-Identifier: MIT
// Illegal arguments are reported once, by name and position, and leave the outputs alone; legal ones are not refused.
#include <algorithm>
#include <array>
#include <cctype>
#include <limits>

#include "bindings.h"
#include "ork/blas.h"
#include "reports.h"

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
Report expected_report(const Binding& binding, const TableRow& row, std::size_t place)
{
    if (binding.c)
        return {binding.wide ? "cblas_xerbla64_" : "cblas_xerbla", std::string("cblas_") + row.name,
                static_cast<std::int64_t>(place) + 2};
    return {binding.wide ? "xerbla_64_" : "xerbla_", upper_padded(row.name), static_cast<std::int64_t>(place) + 1};
}

// A call of legal sizes with ample leading dimensions in either storage order.
Call ample_call(const TableRow& row, CBLAS_LAYOUT layout)
{
    Call call(row);
    call.layout = layout;
    Random random(7);
    call.fill(random);
    std::int64_t size = 3;
    for (std::size_t i = 0; i < row.arguments.size(); ++i) switch (row.arguments[i].role) {
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

void expect_report(const Binding& binding, Call& call, const Report& report)
{
    const Call before = call;
    (void)take_reports();
    invoke(binding, call);
    EXPECT_EQ(take_reports(), std::vector{report});
    EXPECT_TRUE(call.same_elements(before)) << "an output was touched";
}

void expect_refused(const Binding& binding, Call& call, std::size_t place)
{
    expect_report(binding, call, expected_report(binding, *call.row, place));
}

TEST(Arguments, EachIllegalOneIsReportedOnceThroughEveryBinding)
{
    for (const TableRow& row : table())
        for (const Binding& binding : bindings_of(row))
            for (const CBLAS_LAYOUT layout : {CblasColMajor, CblasRowMajor}) {
                if (!binding.c && layout == CblasRowMajor) continue;
                for (std::size_t i = 0; i < row.arguments.size(); ++i) {
                    const Argument& a = row.arguments[i];
                    if (!a.is_checked()) continue;
                    std::ostringstream where;
                    where << row.name << " " << a.name << " of " << binding << " order " << layout;
                    SCOPED_TRACE(where.str());
                    const std::int64_t least = binding.wide ? std::numeric_limits<std::int64_t>::min()
                                                            : std::numeric_limits<std::int32_t>::min();
                    std::vector<std::int64_t> wrong = {-1, least};
                    if (a.is_option()) wrong = {'X', '?', ' ', '1', 0};
                    if (a.is_option() && std::string_view(a.legal).find('C') == std::string_view::npos)
                        wrong.push_back('C');
                    if (a.role == Role::increment) wrong = {0};
                    if (a.role == Role::lead) wrong.push_back(0);
                    for (const std::int64_t value : wrong) {
                        Call call = ample_call(row, layout);
                        if (a.is_option())
                            call.letters[i] = static_cast<char>(value);
                        else
                            call.integers[i] = value;
                        expect_refused(binding, call, i);
                    }
                }
            }
}

TEST(Arguments, TheStorageOrderIsTheFirstOfC)
{
    for (const TableRow& row : table())
        for (const Binding& binding : bindings_of(row))
            if (binding.c && row.is_checked)
                for (const int order : {0, 100, 103, -1}) {
                    Call call = ample_call(row, static_cast<CBLAS_LAYOUT>(order));
                    expect_report(
                        binding, call,
                        {binding.wide ? "cblas_xerbla64_" : "cblas_xerbla", std::string("cblas_") + row.name, 1});
                }
}

TEST(Arguments, NothingIsDoneForEmptyVectors)
{
    for (const TableRow& row : table()) {
        const std::size_t n = std::min(row.place("n"), row.place("nz"));
        if (n == row.arguments.size() || row.is_checked) continue;
        for (const Binding& binding : bindings_of(row))
            for (const std::int64_t size : {0, -1, -5}) {
                SCOPED_TRACE(testing::Message() << row.name << " of " << binding << " size " << size);
                Call call(row);
                call.integers[n] = size;
                for (auto& e : call.elements) std::fill(e.begin(), e.end(), std::complex<double>(0.5, 0.25));
                const bool starts = std::string_view(row.name) == "sdsdot"; // from sb
                if (starts) call.visit(1, [](auto* sb) { *sb = 2; });
                const Call before = call;
                (void)take_reports();
                EXPECT_EQ(invoke(binding, call), std::complex<double>(starts ? 2 : 0));
                EXPECT_TRUE(take_reports().empty());
                EXPECT_TRUE(call.same_elements(before));
            }
    }
}

// Of the reference's own list, for routines that differ from dgemm in kind.
TEST(Arguments, PositionsAreThoseOfTheReference)
{
    const struct {
        const char* name;
        std::vector<int> positions;
    } list[] = {{"dgemm", {1, 2, 3, 4, 5, 8, 10, 13}},
                {"zgemv", {1, 2, 3, 6, 8, 11}},
                {"sgbmv", {1, 2, 3, 4, 5, 8, 10, 13}},
                {"chemv", {1, 2, 5, 7, 10}},
                {"dsbmv", {1, 2, 3, 6, 8, 11}},
                {"zhpmv", {1, 2, 6, 9}},
                {"strmv", {1, 2, 3, 4, 6, 8}},
                {"ctbsv", {1, 2, 3, 4, 5, 7, 9}},
                {"dtpsv", {1, 2, 3, 4, 7}},
                {"zgerc", {1, 2, 5, 7, 9}},
                {"cher", {1, 2, 5, 7}},
                {"dspr", {1, 2, 5}},
                {"zher2", {1, 2, 5, 7, 9}},
                {"chpr2", {1, 2, 5, 7}},
                {"ssymm", {1, 2, 3, 4, 7, 9, 12}},
                {"cherk", {1, 2, 3, 4, 7, 10}},
                {"zher2k", {1, 2, 3, 4, 7, 9, 12}},
                {"dtrsm", {1, 2, 3, 4, 5, 6, 9, 11}}};
    for (const auto& [name, positions] : list) {
        std::vector<int> checked;
        for (std::size_t i = 0; i < row(name).arguments.size(); ++i)
            if (row(name).arguments[i].is_checked()) checked.push_back(static_cast<int>(i) + 1);
        EXPECT_EQ(checked, positions) << name;
    }
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
    for (const Binding& binding : bindings_of(row("dgemm")))
        for (const CBLAS_LAYOUT layout : {CblasColMajor, CblasRowMajor})
            for (const char ta : {'N', 'T', 'C'})
                for (const char tb : {'N', 'T', 'C'})
                    for (const Sizes s :
                         {Sizes{3, 5, 7}, {7, 5, 3}, {5, 7, 2}, {0, 4, 3}, {4, 0, 3}, {4, 3, 0}, {0, 0, 0}}) {
                        if (!binding.c && layout == CblasRowMajor) continue;
                        SCOPED_TRACE(testing::Message() << binding << " order " << layout << " " << ta << tb << " "
                                                        << s.m << " " << s.n << " " << s.k);
                        Call call(row("dgemm"));
                        call.layout = layout;
                        call.letters[0] = ta, call.letters[1] = tb;
                        call.integer("m") = s.m, call.integer("n") = s.n, call.integer("k") = s.k;
                        const auto leads = tight_leads(layout, ta != 'N', tb != 'N', s);
                        const char* names[] = {"lda", "ldb", "ldc"};
                        for (int i = 0; i < 3; ++i) call.integer(names[i]) = leads[i];
                        (void)take_reports();
                        invoke(binding, call);
                        EXPECT_TRUE(take_reports().empty());
                        for (int i = 0; i < 3; ++i) {
                            --call.integer(names[i]);
                            expect_refused(binding, call, call.row->place(names[i]));
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
    for (const Binding& binding : bindings_of(row("dgemm"))) {
        auto call = ample_call(row("dgemm"), CblasColMajor);
        call.integer("m") = -1, call.integer("n") = -2, call.integer("lda") = 0;
        expect_refused(binding, call, call.row->place("m"));
        if (!binding.c) continue;
        call.layout = CblasRowMajor;
        expect_refused(binding, call, call.row->place("n"));
    }
}

} // namespace

} // namespace ork::test
