// SPDX-License-Identifier: MIT
// All bindings of a routine do what its kernel does: equal bits in every output, for all integer widths, conventions
// and libraries.
#include <algorithm>
#include <numeric>

#include "bindings.h"
#include "ork/blas.h"
#include "reports.h"
#include "support/compare.h"

namespace ork::test {

namespace {

// Sizes from n on, all different, that fit the arrays whatever the increments.
Call random_call(const TableRow& row, std::int64_t n, std::int64_t incx, std::int64_t incy)
{
    Call call(row);
    Random random(n);
    call.fill(random);
    std::int64_t size = n, diagonals = 2;
    for (std::size_t i = 0; i < row.arguments.size(); ++i) {
        const std::string_view name = row.arguments[i].name;
        switch (row.arguments[i].role) {
        case Role::count:
            call.integers[i] = n;
            break;
        case Role::size:
            call.integers[i] = name == "batch_size" ? 3 : name.starts_with("stride") ? 330 : size++;
            break;
        case Role::band:
            call.integers[i] = diagonals--;
            break;
        case Role::lead:
            call.integers[i] = n + 8;
            break;
        case Role::stride:
            call.integers[i] = name[3] == 'x' ? incx : incy;
            break;
        case Role::increment:
            call.integers[i] = name[3] == 'x' || incy == 0 ? incx : incy;
            break;
        default:
            break;
        }
    }
    // Every place of y at most once, in no order: a rotation or a scatter would depend on it.
    call.positions.resize(n);
    std::iota(call.positions.begin(), call.positions.end(), call.room - n + 1);
    for (std::int64_t i = n - 1; i > 0; --i) std::swap(call.positions[i], call.positions[random.integer(0, i)]);
    return call;
}

void expect_agreement(Call first, std::int64_t n)
{
    const Call before = first;
    const bool has_kernel = !first.row->is("_batch");
    const auto bindings = bindings_of(*first.row);
    const auto want = has_kernel ? invoke_kernel(first) : invoke(bindings[1], first);
    EXPECT_FALSE(first.same_elements(before) && n > 1 && first.row->is_checked) << "nothing was written";
    for (const Binding& binding : bindings) {
        Call call = before;
        const auto got = invoke(binding, call);
        EXPECT_TRUE(same_bits(got, want)) << binding << ": " << show(got) << ", want " << show(want);
        EXPECT_TRUE(call.same_elements(first)) << binding;
    }
}

TEST(Bindings, GiveTheBitsOfTheKernel)
{
    for (const TableRow& row : table()) {
        const bool sparse = row.has(Role::indices), matrix = row.is_checked;
        // A sparse vector of 700 entries exceeds the block in which 32-bit indices are widened.
        for (const std::int64_t n : sparse ? std::vector{1, 512, 513, 700} : std::vector{1, 2, 7, matrix ? 12 : 29})
            for (const auto& [incx, incy] : {std::pair{1, 1}, {2, 3}, {-1, -1}, {-2, 1}, {1, -3}, {3, 0}}) {
                if (matrix && incx != 1 && !row.has(Role::increment)) continue;
                SCOPED_TRACE(testing::Message() << row.name << " n " << n << " incx " << incx << " incy " << incy);
                Call call = random_call(row, n, incx, incy);
                if (n == 7)
                    for_each_letters(call, [&] { expect_agreement(call, n); });
                else
                    expect_agreement(call, n);
            }
    }
    EXPECT_TRUE(take_reports().empty());
}

// Arguments stand in the places where callers put them.
TEST(Bindings, MeanWhatTheySay)
{
    using Z = std::complex<double>;
    const std::vector<double> x = {1, -2, 3, -4}, y = {5, 6, 7, 8};
    const std::vector<Z> zx = {{1, 2}, {3, -4}}, zy = {{5, 6}, {-7, 8}};
    const auto run = [&](auto&& function) {
        std::vector<double> a = x, b = y;
        function(a.data(), b.data());
        a.insert(a.end(), b.begin(), b.end());
        return a;
    };
    using V = std::vector<double>;
    EXPECT_EQ(run([](double* a, double* b) { cblas_daxpy(4, 2, a, 1, b, 1); }), (V{1, -2, 3, -4, 7, 2, 13, 0}));
    EXPECT_EQ(run([](double* a, double* b) { cblas_daxpby(2, 2, a, 2, 3, b, 1); }), (V{1, -2, 3, -4, 17, 24, 7, 8}));
    EXPECT_EQ(run([](double* a, double*) { cblas_dscal(2, 10, a, 3); }), (V{10, -2, 3, -40, 5, 6, 7, 8}));
    EXPECT_EQ(run([](double* a, double* b) { cblas_dcopy(2, a, 1, b, -2); }), (V{1, -2, 3, -4, -2, 6, 1, 8}));
    EXPECT_EQ(run([](double* a, double* b) { cblas_dswap(4, a, 1, b, -1); }), (V{8, 7, 6, 5, -4, 3, -2, 1}));
    EXPECT_EQ(run([](double* a, double* b) { cblas_drot(2, a, 1, b, 1, 2, 3); }), (V{17, 14, 3, -4, 7, 18, 7, 8}));
    const double h[] = {-1, 1, 10, 100, 1000}; // flag -1: all of H, by columns
    EXPECT_EQ(run([&](double* a, double* b) { cblas_drotm(1, a, 1, b, 1, h); }), (V{501, -2, 3, -4, 5010, 6, 7, 8}));
    EXPECT_EQ(cblas_ddot(4, x.data(), 1, y.data(), -1), 8 - 14 + 18 - 20);
    EXPECT_EQ(cblas_dasum(4, x.data(), 1), 10);
    EXPECT_EQ(cblas_idamax(4, x.data(), 1), 3u);
    EXPECT_EQ(cblas_idamin(4, x.data(), 1), 0u);
    EXPECT_EQ(cblas_dnrm2(2, y.data() + 1, 2), 10);

    const float fx[] = {1 << 12, 1}, fy[] = {1 << 12, 1}; // 2^24 + 1 needs more than float's 24 bits
    EXPECT_EQ(cblas_dsdot(2, fx, 1, fy, 1), 16777217);
    EXPECT_EQ(cblas_sdsdot(2, -1, fx, 1, fy, 1), 16777216.0f);

    Z dot;
    cblas_zdotu_sub(2, zx.data(), 1, zy.data(), 1, &dot);
    EXPECT_EQ(dot, zx[0] * zy[0] + zx[1] * zy[1]);
    cblas_zdotc_sub(2, zx.data(), 1, zy.data(), 1, &dot);
    EXPECT_EQ(dot, conj(zx[0]) * zy[0] + conj(zx[1]) * zy[1]);
    EXPECT_EQ(cblas_dznrm2(1, &zx[1], 1), 5);
    EXPECT_EQ(cblas_dzasum(2, zx.data(), 1), 10);
    EXPECT_EQ(cblas_dcabs1(&zx[1]), 7);

    std::vector<double> dense = {10, 20, 30, 40};
    std::vector<double> values = {1, 2};
    const int32_t at[] = {2, 0};
    EXPECT_EQ(cblas_ddoti(2, values.data(), at, dense.data()), 50);
    cblas_daxpyi(2, 3, values.data(), at, dense.data());
    EXPECT_EQ(dense, (V{16, 20, 33, 40}));
    cblas_dgthrz(2, dense.data(), values.data(), at);
    EXPECT_EQ(values, (V{33, 16}));
    EXPECT_EQ(dense, (V{0, 20, 0, 40}));
    cblas_dsctr(1, values.data(), at, dense.data());
    EXPECT_EQ(dense, (V{0, 20, 33, 40}));
    cblas_dgthr(1, dense.data(), values.data() + 1, at);
    EXPECT_EQ(values, (V{33, 33}));
    cblas_droti(1, values.data(), at, dense.data(), 0, 1);
    EXPECT_EQ(dense[2], -33);

    double a = 3, b = 4, c, s;
    cblas_drotg(&a, &b, &c, &s);
    EXPECT_DOUBLE_EQ(a, 5);
    EXPECT_DOUBLE_EQ(c, 0.6);
    EXPECT_DOUBLE_EQ(s, 0.8);
    double d1 = 1, d2 = 0, x1 = 7, param[5] = {};
    cblas_drotmg(&d1, &d2, &x1, 2, param);
    EXPECT_EQ(param[0], -2); // nothing to clear when d2 y1 is 0
}

TEST(Norms, AreInfiniteWhenAnElementIsAndNoneIsNaN)
{
    const double inf = INFINITY;
    const struct {
        std::vector<double> x;
        double norm;
    } cases[] = {{{inf, 1}, inf},        {{inf, -inf}, inf}, {{1, inf, 2, inf}, inf}, {{inf, NAN}, NAN},
                 {{NAN, inf, inf}, NAN}, {{NAN}, NAN},       {{-inf}, inf},           {{1, NAN, inf}, NAN}};
    for (const auto& [x, norm] : cases) {
        const auto n = static_cast<int32_t>(x.size());
        const double rest = 0;
        std::vector<double> strided, complex_parts;
        for (const double e : x)
            strided.insert(strided.end(), {e, NAN, NAN}), complex_parts.insert(complex_parts.end(), {rest, e});
        const auto same = [&, norm = norm](double got) { return std::isnan(norm) ? std::isnan(got) : got == norm; };
        const int32_t one = 1, three = 3, back = -3;
        EXPECT_TRUE(same(dnrm2_(&n, x.data(), &one)));
        EXPECT_TRUE(same(dnrm2_(&n, strided.data(), &three))) << "elements between the vector's were looked at";
        EXPECT_TRUE(same(dnrm2_(&n, strided.data(), &back)));
        EXPECT_TRUE(same(cblas_dznrm2(n, complex_parts.data(), 1)));
        EXPECT_TRUE(same(cblas_dznrm2_64(n, complex_parts.data(), -1)));
    }
}

// Programs find out how wide a library's integers are by calls like these.
TEST(Bindings, ReadAsManyBytesOfASizeAsTheyShould)
{
    const int64_t half_set = static_cast<int64_t>(0xffffffff00000003u), one = 1;
    const float x[] = {1, 2, 5, 9};
    EXPECT_EQ(isamax_(reinterpret_cast<const int32_t*>(&half_set), x, reinterpret_cast<const int32_t*>(&one)), 3);
    EXPECT_EQ(isamax_64_(&half_set, x, &one), 0);
}

} // namespace

} // namespace ork::test
