// SPDX-License-Identifier: MIT
#include <cmath>
#include <cstring>
#include <limits>
#include <numbers>
#include <string>

#include <gmock/gmock.h>
#include <unistd.h>

#include "ork/abi/services.h"
#include "ork/ork.h"
#include "support/environment.h"
#include "support/process.h"

namespace ork::test {
namespace {

// A destination between two marks, to see that nothing beyond `size` is written.
struct Destination {
    char before = '<', text[16], after = '>';
    Destination() { std::memset(text, '#', sizeof text); }
    bool untouched_from(size_t size) const
    {
        for (size_t i = size; i < sizeof text; ++i)
            if (text[i] != '#') return false;
        return before == '<' && after == '>';
    }
};

TEST(StringServices, CutsAreReportedAndEnded)
{
    struct Case {
        size_t size, count;
        const char *from, *want;
        int result;
    };
    for (const Case& c : {Case{6, 99, "hello", "hello", 5},
                          {5, 99, "hello", "hell", -1},
                          {1, 99, "hello", "", -1},
                          {1, 99, "", "", 0},
                          {6, 3, "hello", "hel", 3},
                          {3, 3, "hello", "he", -1},
                          {4, 3, "hello", "hel", 3},
                          {6, 0, "hello", "", 0}}) {
        SCOPED_TRACE(testing::Message() << c.size << " " << c.count << " " << c.from);
        Destination copied, printed;
        EXPECT_EQ(ork_serv_strncpy_s(copied.text, c.size, c.from, c.count), c.result);
        EXPECT_STREQ(copied.text, c.want);
        EXPECT_TRUE(copied.untouched_from(c.size));
        // printing cuts at count too, but there a cut at count is a cut
        const bool whole = std::strlen(c.from) <= std::min(c.size - 1, c.count);
        EXPECT_EQ(ork_serv_snprintf_s(printed.text, c.size, c.count, "%s", c.from), whole ? c.result : -1);
        EXPECT_STREQ(printed.text, c.want);
        EXPECT_TRUE(printed.untouched_from(c.size));
    }
    Destination d;
    EXPECT_EQ(ork_serv_sprintf_s(d.text, 8, "%s %d", "abc", 123), 7);
    EXPECT_STREQ(d.text, "abc 123");
    EXPECT_EQ(ork_serv_sprintf_s(d.text, 7, "%s %d", "abc", 123), -1);
    EXPECT_STREQ(d.text, "abc 12");
    EXPECT_EQ(ork_serv_sprintf_s(d.text, 0, "x"), -1);
    EXPECT_EQ(ork_serv_strncpy_s(nullptr, 5, "x", 1), -1);
    EXPECT_STREQ(d.text, "abc 12");
}

TEST(StringServices, AppendingCountsWhatItAppends)
{
    Destination d;
    EXPECT_EQ(ork_serv_strncpy_s(d.text, 10, "abc", 3), 3);
    EXPECT_EQ(ork_serv_strncat_s(d.text, 10, "defgh", 2), 2);
    EXPECT_STREQ(d.text, "abcde");
    EXPECT_EQ(ork_serv_strncat_s(d.text, 10, "fghijkl", 99), -1);
    EXPECT_STREQ(d.text, "abcdefghi");
    EXPECT_EQ(ork_serv_strncat_s(d.text, 10, "", 99), 0);
    EXPECT_TRUE(d.untouched_from(10));
    Destination endless;
    EXPECT_EQ(ork_serv_strncat_s(endless.text, 4, "x", 1), -1);
    EXPECT_STREQ(endless.text, "###");
}

TEST(StringServices, LettersAgreeCaseApart)
{
    EXPECT_EQ(ork_serv_lsame("n", "N"), 1);
    EXPECT_EQ(ork_serv_lsame("T", "T"), 1);
    EXPECT_EQ(ork_serv_lsame("T", "N"), 0);
    EXPECT_EQ(ork_serv_lsame("@", "`"), 0); // these too differ by the bit of case
    EXPECT_EQ(ork_serv_lsame("[", "{"), 0);
}

TEST(Messages, UnknownNumberGivesAnEmptyText)
{
    char text[8] = "old";
    EXPECT_EQ(ork_serv_get_msg(text, sizeof text, 123456789, 0), -1);
    EXPECT_STREQ(text, "");
}

TEST(Messages, ArgumentsAreTextsAndNoneIsReadBeyondTheirCount)
{
    char text[256], cut[8];
    const std::string full = "The commit found n = 1 in ipar[0]; a transform has at least n = 2.";
    EXPECT_EQ(ork_serv_get_msg(text, sizeof text, 451, 1, "1"), static_cast<int64_t>(full.size()));
    EXPECT_EQ(text, full);
    ork_serv_get_msg(text, sizeof text, 451, 2, "1", "unused");
    EXPECT_EQ(text, full);
    ork_serv_get_msg(text, sizeof text, 451, 0);
    EXPECT_NE(std::string(text).find("n = ? in"), std::string::npos);
    EXPECT_EQ(ork_serv_get_msg(cut, sizeof cut, 451, 1, "1"), -1);
    EXPECT_STREQ(cut, "The com");
    ork_serv_get_msg(text, sizeof text, 487, 1, "100 %s of it");
    EXPECT_NE(std::string(text).find("100 %s of it"), std::string::npos) << "an argument is no format";
}

// Both sets of the diagnostics say the same, one counting from 0 and one from 1.
TEST(Messages, SetsAreParallel)
{
    const auto words = [](int64_t number) {
        char text[256] = "";
        EXPECT_GT(ork_serv_get_msg(text, sizeof text, number, 0), 0) << number;
        std::string kept;
        for (const char* c = text; *c != 0; ++c)
            if (*c == '[' || *c == '(')
                for (; *c != 0 && *c != ']' && *c != ')'; ++c) {
                }
            else
                kept += *c;
        return kept;
    };
    for (int64_t number = 449; number <= 487; ++number) EXPECT_EQ(words(number), words(number - 39));
    for (int64_t number = 10; number <= 85; ++number) EXPECT_EQ(words(number), words(number + 193));
    for (int64_t number = 190; number <= 196; ++number) EXPECT_EQ(words(number), words(number + 193));
    for (int64_t number : {201, 202, 396, 397, 398, 407, 408, 409}) words(number);
}

TEST(Printing, GoesToItsChannelAndToFiles)
{
    char path[] = "/tmp/ork-file-XXXXXX";
    close(mkstemp(path));
    const ChildResult child = run_child([&] {
        int wrong = ork_serv_print(0, "out %d\n") != 7; // no format
        wrong += ork_serv_format_print(1, "%s %d\n", "err", 5) != 6;
        wrong += ork_serv_printf_s("%lld\n", 1LL << 40) != 14;
        for (int round = 0; round < 2; ++round) {
            void* file = ork_serv_fopen(path, "a+");
            wrong += file == nullptr || ork_serv_fprintf_s(file, "line %d\n", round) != 7 || ork_serv_fclose(file) != 0;
        }
        wrong += ork_serv_fopen("/no/such/folder/file", "a+") != nullptr;
        return wrong;
    });
    EXPECT_TRUE(child.ok()) << child.describe();
    EXPECT_EQ(child.out, "out %d\n1099511627776\n");
    EXPECT_EQ(child.err, "err 5\n");
    EXPECT_EQ(run_program({"cat", path}).out, "line 0\nline 1\n");
    unlink(path);
}

TEST(WrongArguments, AreReportedInTheReferencesWords)
{
    const int64_t position = 3, late = 13;
    const ChildResult child = run_child([&] {
        ork_serv_xerbla("DGEMM", &position, 5);
        ork_serv_xerbla("CBLAS_ZGEMM  ", &late, 13);
        return 0;
    });
    EXPECT_TRUE(child.ok());
    EXPECT_EQ(child.err, " ** On entry to DGEMM  parameter number  3 had an illegal value\n"
                         " ** On entry to CBLAS_ZGEMM parameter number 13 had an illegal value\n");

    const ChildResult aborted = run_child([&] {
        setenv("ORK_XERBLA", "abort", 1);
        ork_serv_xerbla("DGEMM", &position, 5);
        return 0;
    });
    EXPECT_EQ(aborted.signal, SIGABRT);
    EXPECT_THAT(aborted.err, testing::HasSubstr("DGEMM"));
}

TEST(WrongArguments, GoToTheProgramsOwnRoutine)
{
    static std::string reported;
    const auto former = ork_set_xerbla([](const char* name, int at) { reported += name + std::to_string(at) + " "; });
    const int64_t position = 3;
    ork_serv_xerbla("DSYRK rest", &position, 5);
    EXPECT_NE(ork_set_xerbla(former), nullptr);
    EXPECT_EQ(reported, "DSYRK3 ");

    const auto own = run_program({ORK_OWN_XERBLA});
    EXPECT_EQ(own.out, "own: DGEMV 11\n");
    EXPECT_EQ(own.err, "");
}

TEST(Settings, CallsWinOverTheEnvironmentAndReturnTheFormerValue)
{
    const ChildResult child = run_child([] {
        setenv("ORK_CBWR", "1", 1);
        setenv("ORK_VERBOSE", "on", 1); // no number: the default
        if (ork_serv_cbwr_get(1) != 1 || ork_serv_cbwr_get(2) != 0 || ork_serv_verbose_mode() != 0) return 1;
        if (ork_set_reproducibility(0) != 1 || ork_serv_cbwr_get(1) != 0) return 2;
        if (ork_set_verbose(1) != 0 || ork_serv_verbose_mode() != 1) return 3;
        ork_serv_print_verbose_info(1.25e-6, 1, "DGEMM(1,2)");
        ork_serv_print_verbose_info(1, 0, "not shown");
        return ork_set_verbose(-1) == 1 && ork_serv_verbose_mode() == 0 ? 0 : 4;
    });
    EXPECT_TRUE(child.ok()) << child.describe();
    EXPECT_EQ(child.err, "ORK_VERBOSE DGEMM(1,2) 1.25us\n");
}

TEST(Processor, CachesAreThoseOfTheSystem)
{
    ork_cache_info info;
    ASSERT_EQ(ork_serv_cache_info(&info), 0);
    const int64_t sizes[] = {info.l1_data, info.l2, info.l3};
    for (int level : {1, 2, 3}) EXPECT_EQ(ork_serv_get_cache_size(level), sizes[level - 1]);
    EXPECT_EQ(ork_serv_get_cache_size(0) + ork_serv_get_cache_size(4), 0);
    if (const long known = sysconf(_SC_LEVEL1_DCACHE_SIZE); known > 0) {
        EXPECT_EQ(info.l1_data, known);
    }
    if (const long known = sysconf(_SC_LEVEL2_CACHE_SIZE); known > 0) {
        EXPECT_EQ(info.l2, known);
    }
    EXPECT_EQ(info.levels, (info.l1_data > 0) + (info.l2 > 0) + (info.l3 > 0));
    if (info.levels > 0) {
        EXPECT_EQ(info.cache_size, sizes[info.levels - 1]);
    }
    EXPECT_GE(info.line, 32);
}

TEST(Processor, LevelsAreThoseThatTheCompilersRunTimeSees)
{
    EXPECT_EQ(ork_serv_get_microarchitecture(), ork_serv_get_microarchitecture()); // asked, then remembered
    const int64_t level = ork_serv_cpu_detect();
    EXPECT_EQ(level >= 1, __builtin_cpu_supports("sse4.2") != 0);
    EXPECT_EQ(level >= 2, __builtin_cpu_supports("avx2") != 0);
    EXPECT_LE(level, 3);
    char name[8];
    ork_processor_name(name, sizeof name);
    EXPECT_LT(strnlen(name, sizeof name), sizeof name);
}

TEST(Clock, IsMonotonic)
{
    const double first = ork_serv_dsecnd();
    usleep(2000);
    EXPECT_GE(ork_serv_dsecnd() - first, 0.002);
}

TEST(Lock, IsFreeInTheChildOfAFork)
{
    const ChildResult child = run_child(
        [] {
            ork_initialize(); // from here on forks are watched
            ork_serv_lock();
            const ChildResult grandchild = run_child(
                [] {
                    ork_serv_lock();
                    ork_serv_unlock();
                    return 0;
                },
                10);
            ork_serv_unlock();
            return grandchild.exit_code;
        },
        20);
    EXPECT_TRUE(child.ok()) << child.describe();
}

double ulps(double got, __float128 want)
{
    if (got == want) return 0;
    const double near = static_cast<double>(want);
    const double unit = std::nextafter(std::fabs(near), INFINITY) - std::fabs(near);
    return std::fabs(static_cast<double>((got - want) / unit));
}

// Taylor's series in 113 bits on [-pi/4, pi/4]; sin and cos elsewhere follow by exact reduction.
void sincospi_reference(double x, __float128& sine, __float128& cosine)
{
    constexpr __float128 pi = 3.14159265358979323846264338327950288Q;
    const double turn = std::fmod(x, 2.0), half = std::round(2 * turn);
    const __float128 angle = pi * (static_cast<__float128>(turn) - half / 2);
    __float128 s = angle, c = 1, term = 1;
    s = 0;
    c = 0;
    for (int k = 0; k < 40; ++k) {
        (k % 4 == 0 ? c : k % 4 == 1 ? s : k % 4 == 2 ? c : s) += k % 4 < 2 ? term : -term;
        term *= angle / (k + 1);
    }
    for (int quarter = (static_cast<int>(half) % 4 + 4) % 4; quarter > 0; --quarter) {
        const __float128 old = s;
        s = c;
        c = -old;
    }
    sine = s;
    cosine = c;
}

TEST(Mathematics, SineAndCosineOfMultiplesOfPi)
{
    double s, c;
    for (double x : {1e-300, 1e-10, 1 / 3.0, 0.1, 0.2500000001, 0.4999999, 0.5000001, 0.749, 1.25, 1.7, 123.456,
                     1e6 + 1 / 7.0, 4503599627370495.5, -0.1, -0.75, -1.3, -77.7}) {
        __float128 want_s, want_c;
        sincospi_reference(x, want_s, want_c);
        ork_serv_libm_sincospi(x, &s, &c);
        EXPECT_LE(ulps(s, want_s), 0.51) << x;
        EXPECT_LE(ulps(c, want_c), 0.51) << x;
    }
    // exact where the values are, zeros with their signs
    for (int k = -9; k <= 9; ++k) {
        ork_serv_libm_sincospi(k / 2.0, &s, &c);
        const int quarter = (k % 4 + 4) % 4;
        EXPECT_EQ(s, quarter == 1 ? 1 : quarter == 3 ? -1 : 0) << k;
        EXPECT_EQ(c, quarter == 0 ? 1 : quarter == 2 ? -1 : 0) << k;
        if (s == 0) {
            EXPECT_EQ(std::signbit(s), k < 0) << k;
        }
        if (c == 0) {
            EXPECT_FALSE(std::signbit(c)) << k;
        }
    }
    for (double x : {HUGE_VAL, -HUGE_VAL, std::nan("")}) {
        ork_serv_libm_sincospi(x, &s, &c);
        EXPECT_TRUE(std::isnan(s) && std::isnan(c));
    }
    EXPECT_TRUE(keeps_fp_environment([] {
        double sine, cosine;
        ork_serv_libm_sincospi(0.3, &sine, &cosine);
    }));
    EXPECT_EQ(ork_serv_libm_sin(1), std::sin(1.0));
    EXPECT_EQ(ork_serv_libm_cosf(1), std::cos(1.0f));
}

} // namespace
} // namespace ork::test
