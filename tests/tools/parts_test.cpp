// SPDX-License-Identifier: MIT
// What decides whether a number may be shown: the checks of results, reports of demos, readers of input, medians.
#include <gmock/gmock.h>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <limits>

#include "demos/csv.h"
#include "demos/demo.h"
#include "ork/blas.h"
#include "peers/measure.h"
#include "peers/problem.h"
#include "peers/reference_dft.h"
#include "png.h"
#include "svg.h"
#include "tools/well_formed.h"

namespace {

using namespace ork;
using testing::HasSubstr;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

// Routines with one fault each, by the signatures of the right ones.
template <int fault>
void gemm(const char* ta, const char* tb, const int* m, const int* n, const int* k, const double* alpha,
          const double* a, const int* lda, const double* b, const int* ldb, const double* beta, double* c,
          const int* ldc)
{
    const double zero = 0, minus = -*alpha;
    const int less = *k - 1;
    const char other = *ta == 'N' ? 'T' : 'N';
    if constexpr (fault == 1) return dgemm_(ta, tb, m, n, k, &minus, a, lda, b, ldb, beta, c, ldc);
    if constexpr (fault == 2) return dgemm_(ta, tb, m, n, &less, alpha, a, lda, b, ldb, beta, c, ldc);
    if constexpr (fault == 3) return dgemm_(ta, tb, m, n, k, alpha, a, lda, b, ldb, *beta == 0 ? alpha : &zero, c, ldc);
    if constexpr (fault == 4) return dgemm_(&other, tb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
    const double kept = c[*m - 1];
    dgemm_(ta, tb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
    if constexpr (fault == 5) c[*m - 1] = kept;
    if constexpr (fault == 6) c[0] = nan;
    if constexpr (fault == 7) c[0] = std::numeric_limits<double>::infinity();
    if constexpr (fault == 8) c[*m * *n / 2] *= 1 + 1e-9;
    if constexpr (fault == 9) std::swap(c[0], c[1]);
}

TEST(ResultChecks, RejectEveryFaultyProduct)
{
    using Gemm = decltype(&gemm<0>);
    const Gemm faulty[] = {gemm<1>, gemm<2>, gemm<3>, gemm<4>, gemm<5>, gemm<6>, gemm<7>, gemm<8>, gemm<9>};
    for (const double beta : {0.0, 1.0, -0.5}) {
        const auto problem = peers::make_gemm({'d', 'N', 'T', 9, 9, 9, 1.5, beta});
        EXPECT_EQ(problem->check(reinterpret_cast<void*>(gemm<0>)), "");
        for (const Gemm& f : faulty)
            EXPECT_NE(problem->check(reinterpret_cast<void*>(f)), "")
                << "fault " << &f - faulty + 1 << ", beta " << beta;
    }
}

template <int fault>
void axpy(const int* n, const double* alpha, const double* x, const int* incx, double* y, const int* incy)
{
    const int less = *n - 1, one = 1;
    if constexpr (fault == 1) return daxpy_(&less, alpha, x, incx, y, incy);
    if constexpr (fault == 2) return daxpy_(n, alpha, x, &one, y, incy);
    daxpy_(n, alpha, x, incx, y, incy);
    if constexpr (fault == 3) y[0] = nan;
    if constexpr (fault == 4) y[1] = 0; // between two elements of the vector
}

template <int fault>
double dot(const int* n, const double* x, const int* incx, const double* y, const int* incy)
{
    const int less = *n - 1;
    if constexpr (fault == 1) return ddot_(&less, x, incx, y, incy);
    if constexpr (fault == 2) return -ddot_(n, x, incx, y, incy);
    if constexpr (fault == 3) return nan;
    return ddot_(n, x, incx, y, incy);
}

template <int fault>
int iamax(const int* n, const double* x, const int* incx)
{
    return fault == 1 ? 1 : fault == 2 ? 0 : idamax_(n, x, incx);
}

TEST(ResultChecks, RejectEveryFaultyVectorRoutine)
{
    const auto fault = [](const char* routine, auto* function) {
        return peers::make_level1({routine, 37, 3, 2})->check(reinterpret_cast<void*>(function));
    };
    EXPECT_EQ(fault("daxpy", axpy<0>), "");
    EXPECT_NE(fault("daxpy", axpy<1>), "");
    EXPECT_NE(fault("daxpy", axpy<2>), "");
    EXPECT_NE(fault("daxpy", axpy<3>), "");
    EXPECT_NE(fault("daxpy", axpy<4>), "");
    EXPECT_EQ(fault("ddot", dot<0>), "");
    EXPECT_NE(fault("ddot", dot<1>), "");
    EXPECT_NE(fault("ddot", dot<2>), "");
    EXPECT_NE(fault("ddot", dot<3>), "");
    EXPECT_EQ(fault("idamax", iamax<0>), "");
    EXPECT_NE(fault("idamax", iamax<1>), "");
    EXPECT_NE(fault("idamax", iamax<2>), "");
}

// Every routine of levels 2 and 3 that computes nothing, and one of each kind with faults that show in one element
// only.
void does_nothing() {}

TEST(ResultChecks, RejectRoutinesThatDoNothing)
{
    constexpr const char* letters[] = {"", "N", "L", "LN", "UC", "LL", "LTN", "LNN", "LUNN"};
    const auto fault = [](peers::Problem& problem) { return problem.check(reinterpret_cast<void*>(does_nothing)); };
    int cases = 0;
    for (const char* l : letters) {
        for (const std::string& routine : peers::level2_routines())
            if (const auto problem = peers::make_level2({routine, l, 9, peers::is_band(routine) ? 2 : 9}); problem) {
                EXPECT_NE(fault(*problem), "") << routine << ' ' << l;
                ++cases;
            }
        for (const std::string& routine : peers::level3_routines())
            if (const auto problem = peers::make_level3({routine, l, 9, 7}); problem) {
                EXPECT_NE(fault(*problem), "") << routine << ' ' << l;
                ++cases;
            }
    }
    EXPECT_GE(cases, 100);
}

template <int fault>
void trsm(const char* side, const char* uplo, const char* trans, const char* diag, const int* m, const int* n,
          const double* alpha, const double* a, const int* lda, double* b, const int* ldb)
{
    const char other = *uplo == 'L' ? 'U' : 'L';
    const double minus = -*alpha;
    if constexpr (fault == 1) return dtrsm_(side, &other, trans, diag, m, n, alpha, a, lda, b, ldb);
    if constexpr (fault == 2) return dtrsm_(side, uplo, trans, "U", m, n, alpha, a, lda, b, ldb);
    if constexpr (fault == 3) return dtrsm_(side, uplo, trans, diag, m, n, &minus, a, lda, b, ldb);
    if constexpr (fault == 4) return dtrmm_(side, uplo, trans, diag, m, n, alpha, a, lda, b, ldb);
    const double kept = b[*m - 1];
    dtrsm_(side, uplo, trans, diag, m, n, alpha, a, lda, b, ldb);
    if constexpr (fault == 5) b[*m - 1] = kept;
    if constexpr (fault == 6) b[*m] = nan;
}

template <int fault>
void syrk(const char* uplo, const char* trans, const int* n, const int* k, const double* alpha, const double* a,
          const int* lda, const double* beta, double* c, const int* ldc)
{
    const int less = *k - 1;
    const char other = *uplo == 'L' ? 'U' : 'L';
    if constexpr (fault == 1) return dsyrk_(&other, trans, n, k, alpha, a, lda, beta, c, ldc);
    if constexpr (fault == 2) return dsyrk_(uplo, trans, n, &less, alpha, a, lda, beta, c, ldc);
    dsyrk_(uplo, trans, n, k, alpha, a, lda, beta, c, ldc);
    if constexpr (fault == 3) c[*n * *n - 1] += 1e-9;
    if constexpr (fault == 4) c[*uplo == 'L' ? *n : 1] = 0; // the triangle that is not to be touched
}

template <int fault>
void symv(const char* uplo, const int* n, const double* alpha, const double* a, const int* lda, const double* x,
          const int* incx, const double* beta, double* y, const int* incy)
{
    const char other = *uplo == 'L' ? 'U' : 'L';
    if constexpr (fault == 1) return dsymv_(&other, n, alpha, a, lda, x, incx, beta, y, incy);
    dsymv_(uplo, n, alpha, a, lda, x, incx, beta, y, incy);
    if constexpr (fault == 2) y[*n - 1] *= 1 + 1e-9;
}

template <int fault>
void ger(const int* m, const int* n, const double* alpha, const double* x, const int* incx, const double* y,
         const int* incy, double* a, const int* lda)
{
    const int less = *n - 1;
    if constexpr (fault == 1) return dger_(m, &less, alpha, x, incx, y, incy, a, lda);
    dger_(m, n, alpha, x, incx, y, incy, a, lda);
    if constexpr (fault == 2) a[0] = nan;
}

TEST(ResultChecks, RejectEveryFaultyMatrixRoutine)
{
    const auto check = [](const auto& problem, auto* function) {
        return problem->check(reinterpret_cast<void*>(function));
    };
    for (const char* letters : {"LLNN", "RUTN"}) {
        const auto problem = peers::make_level3({"dtrsm", letters, 9, 9});
        EXPECT_EQ(check(problem, trsm<0>), "");
        for (auto* f : {trsm<1>, trsm<2>, trsm<3>, trsm<4>, trsm<5>, trsm<6>})
            EXPECT_NE(check(problem, f), "") << letters;
    }
    for (const char* letters : {"LN", "UT"}) {
        const auto problem = peers::make_level3({"dsyrk", letters, 8, 5});
        EXPECT_EQ(check(problem, syrk<0>), "");
        for (auto* f : {syrk<1>, syrk<2>, syrk<3>, syrk<4>}) EXPECT_NE(check(problem, f), "") << letters;
    }
    const auto symmetric = peers::make_level2({"dsymv", "L", 9, 9});
    EXPECT_EQ(check(symmetric, symv<0>), "");
    for (auto* f : {symv<1>, symv<2>}) EXPECT_NE(check(symmetric, f), "");
    const auto update = peers::make_level2({"dger", "", 9, 6});
    EXPECT_EQ(check(update, ger<0>), "");
    for (auto* f : {ger<1>, ger<2>}) EXPECT_NE(check(update, f), "");
}

// Transforms by the sum that defines them, with one fault each.
struct Sum : peers::Transform {
    peers::FftProblem& problem;
    int fault;
    Sum(peers::FftProblem& p, int f) : problem(p), fault(f) {}
    void run() override
    {
        const peers::FftCase& c = problem.what();
        const size_t n = c.points(), rows = c.outer(), columns = n / rows, stored = c.real ? c.half_row() : columns;
        auto* out = static_cast<std::complex<double>*>(problem.out());
        for (size_t b = 0; b < static_cast<size_t>(c.batch); ++b)
            for (size_t k = 0; k < rows * stored; ++k) {
                const size_t k1 = k / stored, k0 = k % stored;
                std::complex<double> sum = 0;
                for (size_t j = 0; j < n; ++j) {
                    const double turns = static_cast<double>(j / columns * k1 % rows) / static_cast<double>(rows) +
                                         static_cast<double>(j % columns * k0 % columns) / static_cast<double>(columns);
                    sum += problem.input(b, j) * std::polar(1.0, (fault == 1 ? 2 : -2) * M_PI * turns);
                }
                out[b * rows * stored + k] = sum;
            }
        const size_t all = static_cast<size_t>(c.batch) * rows * stored;
        if (fault == 2) out[all - 1] = 0;
        if (fault == 3) std::swap(out[1], out[2]);
        if (fault == 4) out[all / 2] *= 1 + 1e-9;
        if (fault == 5) out[0] = nan;
        if (fault == 6)
            for (size_t i = 0; i < all; ++i) out[i] *= 0.5;
        if (fault == 7) std::swap_ranges(out, out + all / 2, out + (all + 1) / 2); // halves, transforms of a batch
    }
};

TEST(ResultChecks, RejectEveryFaultyTransform)
{
    for (const auto& [kind, size] : {std::pair{"cd", "12"},
                                     {"cd", "37"},
                                     {"rd", "16"},
                                     {"rd", "15"},
                                     {"cd", "4x6"},
                                     {"rd", "5x8"},
                                     {"cd", "6*2"}}) {
        peers::FftProblem problem(*peers::fft_case(kind, size));
        for (int fault = 0; fault <= 7; ++fault) {
            Sum transform(problem, fault);
            EXPECT_EQ(problem.check(transform).empty(), fault == 0) << kind << ' ' << size << ", fault " << fault;
        }
        Sum right(problem, 0), slightly_wrong(problem, 4);
        EXPECT_LT(peers::accuracy(problem, right), 1e-14) << kind << ' ' << size; // sums lose a few digits
        EXPECT_GT(peers::accuracy(problem, slightly_wrong), 1e-12) << kind << ' ' << size;
    }
}

TEST(FftCases, AreWhatTheirTextsSay)
{
    const auto c = *peers::fft_case("rsbi", "4x6*10");
    EXPECT_TRUE(c.real && c.single && c.backward && c.in_place);
    EXPECT_EQ(c.points(), 24u);
    EXPECT_EQ(c.batch, 10);
    EXPECT_EQ(c.kind() + ' ' + c.size(), "rsbi 4x6*10");
    for (const char* kind : {"", "c", "xd", "cx", "cdib", "cdbb"}) EXPECT_FALSE(peers::fft_case(kind, "8")) << kind;
    for (const char* size : {"", "0", "-8", "8x", "x8", "8*", "8*0", "8 ", "99999999999", "2147483647x9", "1"})
        EXPECT_FALSE(peers::fft_case("cd", size)) << size;
}

// Every route of the reference: factors, primes, convolution, several dimensions; there and back as well.
TEST(ReferenceTransform, IsTheSum)
{
    for (const std::vector<int>& lengths :
         std::vector<std::vector<int>>{{1}, {2}, {30}, {49}, {64}, {101}, {211}, {422}, {3, 211}, {4, 3, 5}}) {
        peers::Random random;
        size_t n = 1;
        for (const int length : lengths) n *= static_cast<size_t>(length);
        std::vector<peers::LongPair> x(n);
        for (auto& value : x) value = {random.next(), random.next()};
        auto y = x;
        peers::reference_dft(y, lengths, -1);
        for (const size_t k : {size_t{0}, n / 3, n - 1}) {
            long double re = 0, im = 0;
            for (size_t j = 0; j < n; ++j) {
                long double turns = 0;
                size_t rest_j = j, rest_k = k;
                for (size_t d = lengths.size(); d-- > 0;) {
                    const auto length = static_cast<size_t>(lengths[d]);
                    turns += static_cast<long double>(rest_j % length * (rest_k % length) % length) / lengths[d];
                    rest_j /= length;
                    rest_k /= length;
                }
                const long double c = std::cos(2 * M_PIl * turns), s = -std::sin(2 * M_PIl * turns);
                re += x[j].re * c - x[j].im * s;
                im += x[j].re * s + x[j].im * c;
            }
            EXPECT_LT(std::hypot(y[k].re - re, y[k].im - im), 1e-16L) << n << ' ' << k;
        }
        peers::reference_dft(y, lengths, 1);
        for (size_t j = 0; j < n; ++j) EXPECT_LT(std::fabs(y[j].re / static_cast<long double>(n) - x[j].re), 1e-17L);
    }
}

TEST(DemoReport, KeepsNaN)
{
    double largest = 1;
    for (const double value : {2.0, nan, 3.0}) tool::keep_largest(largest, value);
    EXPECT_TRUE(std::isnan(largest));
}

// Bytes that zlib, asked independently, takes apart into these rows.
TEST(Png, IsWhatDecodersExpect)
{
    EXPECT_EQ(tool::data_uri(tool::png(2, 2, {0, 255, 7, 128})),
              "data:image/png;base64,iVBORw0KGgoAAAANSUhEUgAAAAIAAAACCAAAAABX3VL4AAAAEUlEQVR4AQEGAPn/AAD/"
              "AAeABJABh01Al3cAAAAASUVORK5CYII=");
}

TEST(DemoReport, HoldsOnlyIfSomethingWasCheckedAndAllOfItHolds)
{
    tool::Report nothing, held, failed, poisoned;
    EXPECT_FALSE(nothing.all_hold());
    held.check("a", 1, 1);
    EXPECT_TRUE(held.all_hold());
    failed.check("a", 0, 1);
    failed.check("b", 1.1, 1);
    EXPECT_FALSE(failed.all_hold());
    poisoned.check("a", nan, 1);
    EXPECT_FALSE(poisoned.all_hold());
    testing::internal::CaptureStdout();
    failed.line("the answer");
    EXPECT_EQ(failed.print(true), 1);
    EXPECT_THAT(testing::internal::GetCapturedStdout(), testing::Not(HasSubstr("the answer")));
}

TEST(IntegerCsv, NamesLineAndFieldOfWhatIsWrong)
{
    const std::string file = testing::TempDir() + "ork-table.csv";
    const auto read = [&](const std::string& text) -> std::string {
        std::ofstream(file) << text;
        try {
            std::string all;
            for (const auto& row : tool::read_csv(file, {3, 0, 16, 0, 9}))
                for (const int value : row) all += std::to_string(value) + ' ';
            return all;
        } catch (const std::runtime_error& error) {
            const std::string what = error.what();
            return what.substr(what.find(".csv") + 4);
        }
    };
    EXPECT_EQ(read("1,2,3\n16,0,9\n"), "1 2 3 16 0 9 ");
    EXPECT_EQ(read("1,2,3\r\n4,5,6\r\n\r\n\n"), "1 2 3 4 5 6 ");
    EXPECT_EQ(read("1,2,3"), "1 2 3 ");
    EXPECT_EQ(read(""), ":1: no rows");
    EXPECT_EQ(read("1,2,3\n\n4,5,6\n"), ":2: blank line between rows");
    EXPECT_EQ(read("1,2,3\n4,5\n"), ":2: 2 fields instead of 3");
    EXPECT_EQ(read("1,2,3,4\n"), ":1: more than 3 fields");
    EXPECT_EQ(read("1,2,3\n4,x,6\n"), ":2: field 2 is \"x\", not an integer");
    EXPECT_EQ(read("1,2.5,3\n"), ":1: field 2 is \"2.5\", not an integer");
    EXPECT_EQ(read("1,,3\n"), ":1: field 2 is \"\", not an integer");
    EXPECT_EQ(read("1,99999999999,3\n"), ":1: field 2 is \"99999999999\", not an integer");
    EXPECT_EQ(read("1,17,3\n"), ":1: field 2 is 17, outside 0 to 16");
    EXPECT_EQ(read("1,2,10\n"), ":1: field 3 is 10, outside 0 to 9");
    EXPECT_EQ(read(std::string("1,2,3\n\0\0\0", 9)).substr(0, 12), ":2: field 1 ");
    std::filesystem::remove(file);
}

TEST(Measurement, MediansAndRatios)
{
    EXPECT_EQ(peers::median({3, 1, 2}), 2);
    EXPECT_EQ(peers::median({4, 1, 3, 2}), 2.5);
    EXPECT_EQ(peers::median({}), 0);
    EXPECT_EQ(peers::speed_ratio({1, 1, 10}, {2, 2, 2}), 2); // twice as fast; one round was disturbed
}

TEST(Measurement, EveryRoundSamplesEveryEntrantInRotatingOrder)
{
    std::vector<int> order;
    const auto entrant = [&](int name) {
        return [&order, name](long) {
            order.push_back(name);
            const double until = peers::now(peers::Clock::wall) + 2e-3;
            while (peers::now(peers::Clock::wall) < until) {
            }
        };
    };
    const peers::Samples samples =
        peers::interleave({entrant(0), entrant(1), entrant(2)}, {1e-3, 0, 4, 4, peers::Clock::wall});
    ASSERT_EQ(samples.size(), 3u);
    for (const auto& rounds : samples) {
        ASSERT_EQ(rounds.size(), 4u);
        for (const double seconds : rounds) EXPECT_GE(seconds, 2e-3);
    }
    ASSERT_GE(order.size(), 12u);
    EXPECT_THAT(std::vector<int>(order.end() - 12, order.end()),
                testing::ElementsAre(0, 1, 2, 1, 2, 0, 2, 0, 1, 0, 1, 2));
}

TEST(SvgText, SurvivesMarkup)
{
    tool::Svg svg(100, 50);
    svg.text(1, 2, "a < b && \"c\" > d");
    svg.line(0, 0, 1, 1, "#000");
    EXPECT_EQ(test::xml_fault(svg.str()), "");
    EXPECT_THAT(svg.str(), HasSubstr("a &lt; b &amp;&amp; &quot;c&quot; &gt; d"));
    EXPECT_NE(test::xml_fault("<svg><g></svg>"), "");
    EXPECT_NE(test::xml_fault("<svg>a & b</svg>"), "");
    EXPECT_NE(test::xml_fault("<svg/><svg/>"), "");
}

} // namespace
