// SPDX-License-Identifier: MIT
// Shapes of levels 2 and 3: calls are checked in the reference's order and turned around for matrices by rows. The
// bodies here only write down what reaches them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "blas/binding.h"
#include "blas/shapes.h"

namespace ork::blas {

namespace {

struct {
    int reports = 0;
    std::int64_t position = 0;
    std::string letters;
    std::vector<std::int64_t> integers;
    std::vector<const void*> addresses;
} seen;

void keep(int position)
{
    ++seen.reports;
    seen.position = position;
}

} // namespace

// The reports of the rows below; the library's own are not visible here.
template <>
void report_fortran<std::int32_t>(const char*, std::size_t, int position)
{
    keep(position);
}
template <>
void report_fortran<std::int64_t>(const char*, std::size_t, int position)
{
    keep(position);
}
template <>
void report_cblas<std::int32_t>(const char*, int position)
{
    keep(position);
}
template <>
void report_cblas<std::int64_t>(const char*, int position)
{
    keep(position);
}

namespace {

void note(const char* letter) { seen.letters += *letter; }
void note(const std::int64_t* integer) { seen.integers.push_back(*integer); }
void note(const double* address) { seen.addresses.push_back(address); }

template <class... Arguments>
void body(Arguments... arguments)
{
    (note(arguments), ...);
}

using C = const char*;
using I = const std::int64_t*;
using D = const double*;
#define ROW(routine, ...)                                                                                              \
    struct routine##_row : Routine<double, shapes::routine, body<__VA_ARGS__>> {                                       \
        static constexpr char name[] = #routine;                                                                       \
    }
ROW(gemv, C, I, I, D, D, I, D, I, D, double*, I);
ROW(gbmv, C, I, I, I, I, D, D, I, D, I, D, double*, I);
ROW(trmm, C, C, C, C, I, I, D, D, I, double*, I);
ROW(syrk, C, C, I, I, D, D, I, D, double*, I);
ROW(herk, C, C, I, I, D, D, I, D, double*, I);

// Argument values by kind, in Fortran order.
template <class Row>
struct Values {
    std::string letters;
    std::vector<std::int64_t> integers;
};

double memory[4];

template <class Row, class Int, std::size_t... i>
void run(bool c, CBLAS_LAYOUT layout, const Values<Row>& values, std::index_sequence<i...>)
{
    seen = {};
    Int integers[Row::count];
    char letters[Row::count];
    std::size_t letter = 0, integer = 0;
    for (std::size_t j = 0; j < Row::count; ++j) {
        if (Row::arguments[j].is_option()) letters[j] = values.letters[letter++];
        if (Row::arguments[j].is_integer()) integers[j] = static_cast<Int>(values.integers[integer++]);
    }
    const auto enumerator = [](auto sample, char l) {
        const int value = l == 'N' ? 111 : l == 'T' ? 112 : l == 'C' ? 113 : l == 'U' ? 121 : l == 'L' ? 122 : 7;
        if (std::is_same_v<decltype(sample), CBLAS_DIAG>) return decltype(sample)(l == 'N' ? 131 : l == 'U' ? 132 : 7);
        if (std::is_same_v<decltype(sample), CBLAS_SIDE>) return decltype(sample)(l == 'L' ? 141 : l == 'R' ? 142 : 7);
        return decltype(sample)(value);
    };
    const auto in_c = [&]<std::size_t j>() -> CblasType<Row, Int, j> {
        if constexpr (Row::arguments[j].is_option())
            return enumerator(CblasType<Row, Int, j>(), letters[j]);
        else if constexpr (Row::arguments[j].is_integer())
            return integers[j];
        else if constexpr (Row::arguments[j].role == Role::scalar)
            return 1;
        else
            return memory + (j % 4);
    };
    const auto in_fortran = [&]<std::size_t j>() -> FortranType<Row, Int, j> {
        if constexpr (Row::arguments[j].is_option())
            return &letters[j];
        else if constexpr (Row::arguments[j].is_integer())
            return &integers[j];
        else
            return memory;
    };
    if (c)
        cblas_ordered<Row, Int>(layout, in_c.template operator()<i>()...);
    else
        fortran<Row, Int>(in_fortran.template operator()<i>()...);
}

// Position that is reported, 0 for none; Fortran, and C by columns and by rows where positions count the storage order.
template <class Row>
std::vector<std::int64_t> positions(const Values<Row>& values)
{
    std::vector<std::int64_t> result;
    for (const auto& [c, layout] : {std::pair{false, CblasColMajor}, {true, CblasColMajor}, {true, CblasRowMajor}}) {
        run<Row, std::int32_t>(c, layout, values, std::make_index_sequence<Row::count>());
        EXPECT_LE(seen.reports, 1);
        EXPECT_EQ(seen.reports == 0, !seen.integers.empty())
            << "refused calls must not reach the body, legal ones must";
        result.push_back(seen.position);
    }
    return result;
}

using testing::ElementsAre;

TEST(Table, ChecksMatrixVectorProducts)
{
    using V = Values<gemv_row>; // trans; m n lda incx incy
    EXPECT_THAT(positions(V{"N", {3, 2, 3, 1, 1}}), ElementsAre(0, 0, 0));
    EXPECT_THAT(positions(V{"N", {3, 2, 2, 1, 1}}), ElementsAre(6, 7, 0)) << "by rows lda is at least n";
    EXPECT_THAT(positions(V{"N", {2, 3, 2, 1, 1}}), ElementsAre(0, 0, 7));
    EXPECT_THAT(positions(V{"X", {2, 2, 2, 1, 1}}), ElementsAre(1, 2, 2));
    EXPECT_THAT(positions(V{"T", {-1, 2, 2, 1, 1}}), ElementsAre(2, 3, 3));
    EXPECT_THAT(positions(V{"T", {2, -1, 2, 1, 1}}), ElementsAre(3, 4, 4));
    EXPECT_THAT(positions(V{"C", {2, 2, 2, 0, 1}}), ElementsAre(8, 9, 9));
    EXPECT_THAT(positions(V{"C", {2, 2, 2, -1, 0}}), ElementsAre(11, 12, 12));
    EXPECT_THAT(positions(V{"N", {0, 0, 1, 1, 1}}), ElementsAre(0, 0, 0));
    EXPECT_THAT(positions(V{"N", {0, 0, 0, 1, 1}}), ElementsAre(6, 7, 7));
}

TEST(Table, ChecksBands)
{
    using V = Values<gbmv_row>; // trans; m n kl ku lda incx incy
    EXPECT_THAT(positions(V{"N", {5, 5, 2, 1, 4, 1, 1}}), ElementsAre(0, 0, 0));
    EXPECT_THAT(positions(V{"N", {5, 5, 2, 1, 3, 1, 1}}), ElementsAre(8, 9, 9));
    EXPECT_THAT(positions(V{"N", {5, 5, -1, 1, 3, 1, 1}}), ElementsAre(4, 5, 5));
    EXPECT_THAT(positions(V{"N", {5, 5, 1, -1, 3, 1, 1}}), ElementsAre(5, 6, 6));
}

TEST(Table, ChecksTriangularProducts)
{
    using V = Values<trmm_row>; // side uplo transa diag; m n lda ldb
    EXPECT_THAT(positions(V{"LUNN", {5, 3, 5, 5}}), ElementsAre(0, 0, 0));
    EXPECT_THAT(positions(V{"LUNN", {5, 3, 4, 5}}), ElementsAre(9, 10, 10)) << "A is m x m on the left in either order";
    EXPECT_THAT(positions(V{"RLTU", {5, 3, 3, 5}}), ElementsAre(0, 0, 0));
    EXPECT_THAT(positions(V{"RLTU", {5, 3, 2, 5}}), ElementsAre(9, 10, 10));
    EXPECT_THAT(positions(V{"RLTU", {5, 3, 3, 3}}), ElementsAre(11, 12, 0));
    EXPECT_THAT(positions(V{"XUNN", {5, 3, 5, 5}}), ElementsAre(1, 2, 2));
    EXPECT_THAT(positions(V{"LXNN", {5, 3, 5, 5}}), ElementsAre(2, 3, 3));
    EXPECT_THAT(positions(V{"LUXN", {5, 3, 5, 5}}), ElementsAre(3, 4, 4));
    EXPECT_THAT(positions(V{"LUNX", {5, 3, 5, 5}}), ElementsAre(4, 5, 5));
    EXPECT_THAT(positions(V{"LUNN", {-5, 3, 5, 5}}), ElementsAre(5, 6, 6));
    EXPECT_THAT(positions(V{"LUNN", {5, -3, 5, 5}}), ElementsAre(6, 7, 7));
}

TEST(Table, TurnsProblemsByRowsAround)
{
    run<trmm_row, std::int64_t>(true, CblasRowMajor, {"LUTN", {5, 3, 6, 7}},
                                std::make_index_sequence<trmm_row::count>());
    EXPECT_EQ(seen.letters, "RLTN");
    EXPECT_THAT(seen.integers, ElementsAre(3, 5, 6, 7));
    run<syrk_row, std::int64_t>(true, CblasRowMajor, {"UN", {4, 2, 9, 8}}, std::make_index_sequence<syrk_row::count>());
    EXPECT_EQ(seen.letters, "LT");
    run<gbmv_row, std::int64_t>(true, CblasRowMajor, {"T", {6, 5, 2, 1, 4, 1, -3}},
                                std::make_index_sequence<gbmv_row::count>());
    EXPECT_EQ(seen.letters, "N");
    EXPECT_THAT(seen.integers, ElementsAre(5, 6, 1, 2, 4, 1, -3));
    run<herk_row, std::int64_t>(true, CblasRowMajor, {"LN", {4, 2, 2, 4}}, std::make_index_sequence<herk_row::count>());
    EXPECT_EQ(seen.letters, "UC");
    EXPECT_THAT(positions(Values<herk_row>{"UT", {4, 2, 4, 4}}), ElementsAre(2, 3, 3))
        << "not legal, so neither turned";
    EXPECT_THAT(positions(Values<syrk_row>{"UN", {4, 2, 2, 4}}), ElementsAre(7, 8, 0));
    EXPECT_THAT(positions(Values<syrk_row>{"UT", {4, 2, 2, 4}}), ElementsAre(0, 0, 8));
}

} // namespace

} // namespace ork::blas
