// SPDX-License-Identifier: MIT
// The compact interface as applications use it: any number of matrices, packed, solved and unpacked.
#include "lapack.h"
#include "ork/lapack_compact.h"
#include "ork/ork.h"
#include "support/packs.h"

namespace ork::test {
namespace {

// COMPACT(getrfnp)(...) in a test with type T.
#define COMPACT(routine)                                                                                               \
    [] {                                                                                                               \
        if constexpr (std::is_same_v<T, float>)                                                                        \
            return &ork_compact_s##routine;                                                                            \
        else if constexpr (std::is_same_v<T, double>)                                                                  \
            return &ork_compact_d##routine;                                                                            \
        else if constexpr (std::is_same_v<T, std::complex<float>>)                                                     \
            return &ork_compact_c##routine;                                                                            \
        else                                                                                                           \
            return &ork_compact_z##routine;                                                                            \
    }()

template <class T>
class PublicCompact : public testing::Test {
protected:
    ~PublicCompact() override { ork_set_num_threads(0); }
};
TYPED_TEST_SUITE(PublicCompact, Precisions, PrecisionNames);

using Int = std::int64_t;

template <class T>
auto scalar(const T& x)
{
    if constexpr (is_complex<T>)
        return &x;
    else
        return x;
}

// `count` matrices of order n behind each other, Hermitian with a heavy diagonal.
template <class T>
std::vector<T> matrices(Int n, Int count)
{
    Random random(static_cast<std::uint64_t>(n + count));
    std::vector<T> a(static_cast<std::size_t>(n * n * count));
    for (Int q = 0; q < count; ++q)
        for (Int j = 0; j < n; ++j)
            for (Int i = 0; i <= j; ++i) {
                T x = random.uniform<T>();
                if (i == j) x = std::real(x) + static_cast<Real<T>>(2 * n);
                a[static_cast<std::size_t>((q * n + j) * n + i)] = x;
                a[static_cast<std::size_t>((q * n + i) * n + j)] = conjugated(x);
            }
    return a;
}

struct Batch {
    Int layout, format, n, nrhs, count;
};
template <class T>
std::vector<Real<T>> packed(const Batch& c, const std::vector<T>& a, Int columns)
{
    const Int ld = c.layout == ORK_COMPACT_COLUMNS ? c.n : columns, lines = c.n * columns / std::max<Int>(1, ld);
    const Int bytes = COMPACT(size)(ld, lines, c.format, c.count);
    std::vector<Real<T>> p(static_cast<std::size_t>(bytes) / sizeof(Real<T>), Real<T>(99));
    EXPECT_EQ(
        COMPACT(pack_strided)(c.layout, c.n, columns, a.data(), ld, c.n * columns, p.data(), ld, c.format, c.count), 0);
    return p;
}
template <class T>
std::vector<T> unpacked(const Batch& c, const std::vector<Real<T>>& p, Int columns)
{
    const Int ld = c.layout == ORK_COMPACT_COLUMNS ? c.n : columns;
    std::vector<T> a(static_cast<std::size_t>(c.n * columns * c.count));
    EXPECT_EQ(
        COMPACT(unpack_strided)(c.layout, c.n, columns, a.data(), ld, c.n * columns, p.data(), ld, c.format, c.count),
        0);
    return a;
}

// max |A x - b| over eps (|A| |x| + |b|), columns or rows as the layout says.
template <class T>
double residual(const Batch& c, const std::vector<T>& a, const std::vector<T>& x, const std::vector<T>& b)
{
    const bool columns = c.layout == ORK_COMPACT_COLUMNS;
    const auto at = [&](Int q, Int i, Int j, Int width) {
        return static_cast<std::size_t>(q * c.n * width + (columns ? i + j * c.n : i * width + j));
    };
    double worst = 0;
    for (Int q = 0; q < c.count; ++q)
        for (Int j = 0; j < c.nrhs; ++j)
            for (Int i = 0; i < c.n; ++i) {
                std::complex<long double> sum = -std::complex<long double>(b[at(q, i, j, c.nrhs)]);
                long double size = std::abs(sum);
                for (Int k = 0; k < c.n; ++k) {
                    const auto term = std::complex<long double>(a[at(q, i, k, c.n)]) *
                                      std::complex<long double>(x[at(q, k, j, c.nrhs)]);
                    sum += term, size += std::abs(term);
                }
                const double error = static_cast<double>(std::abs(sum) / size) / epsilon<T>;
                if (!(error <= worst)) worst = error;
            }
    return worst;
}

TYPED_TEST(PublicCompact, SolvesAnyNumberOfSystems)
{
    using T = TypeParam;
    for (const Int layout : {ORK_COMPACT_ROWS, ORK_COMPACT_COLUMNS})
        for (const Int count : {0, 1, 5, 16, 67})
            for (const Int n : {1, 4, 6, 11}) {
                const Batch c{layout, 181 + (n + count) % 3, n, 3, count};
                SCOPED_TRACE(testing::Message() << "layout " << layout << " count " << count << " n " << n);
                const auto a = matrices<T>(n, count);
                std::vector<T> b(static_cast<std::size_t>(3 * n * count));
                Random random(9);
                for (T& x : b) x = random.uniform<T>();
                const Int ldb = layout == ORK_COMPACT_COLUMNS ? n : 3;

                auto lu = packed<T>(c, a, n), x = packed<T>(c, b, 3);
                for (const auto value : lu) ASSERT_TRUE(std::isfinite(value) && value != 99);
                EXPECT_EQ(COMPACT(getrfnp)(layout, n, n, lu.data(), n, c.format, count), 0);
                for (const auto value : lu) ASSERT_TRUE(std::isfinite(value)); // the last pack's empty places too
                EXPECT_EQ(COMPACT(getrsnp)(layout, 'n', n, 3, lu.data(), n, x.data(), ldb, c.format, count), 0);
                EXPECT_LE(residual(c, a, unpacked<T>(c, x, 3), b), 10 * static_cast<double>(n));

                x = packed<T>(c, b, 3); // the adjoint of a Hermitian matrix is itself
                EXPECT_EQ(COMPACT(getrsnp)(layout, 'C', n, 3, lu.data(), n, x.data(), ldb, c.format, count), 0);
                EXPECT_LE(residual(c, a, unpacked<T>(c, x, 3), b), 10 * static_cast<double>(n));

                for (const char uplo : {'U', 'l'}) {
                    auto factor = packed<T>(c, a, n);
                    x = packed<T>(c, b, 3);
                    EXPECT_EQ(COMPACT(potrf)(layout, uplo, n, factor.data(), n, c.format, count), 0);
                    EXPECT_EQ(COMPACT(potrs)(layout, uplo, n, 3, factor.data(), n, x.data(), ldb, c.format, count), 0);
                    const auto solution = unpacked<T>(c, x, 3);
                    EXPECT_LE(residual(c, a, solution, b), 10 * static_cast<double>(n));

                    factor = packed<T>(c, a, n); // the same at once
                    x = packed<T>(c, b, 3);
                    EXPECT_EQ(COMPACT(posv)(layout, uplo, n, 3, factor.data(), n, x.data(), ldb, c.format, count), 0);
                    EXPECT_EQ(unpacked<T>(c, x, 3), solution);
                }
                auto factor = packed<T>(c, a, n);
                x = packed<T>(c, b, 3);
                EXPECT_EQ(COMPACT(gesvnp)(layout, n, 3, factor.data(), n, x.data(), ldb, c.format, count), 0);
                EXPECT_EQ(factor, lu);
                EXPECT_LE(residual(c, a, unpacked<T>(c, x, 3), b), 10 * static_cast<double>(n));

                // X = A^-1 B by the inverse
                EXPECT_EQ(COMPACT(getrinp)(layout, n, lu.data(), n, c.format, count), 0);
                const auto rhs = packed<T>(c, b, 3);
                x.assign(x.size(), std::numeric_limits<Real<T>>::quiet_NaN());
                const T one(1), zero(0);
                EXPECT_EQ(COMPACT(gemm)(layout, 'N', 'N', n, 3, n, scalar(one), lu.data(), n, rhs.data(), ldb,
                                        scalar(zero), x.data(), ldb, c.format, count),
                          0);
                EXPECT_LE(residual(c, a, unpacked<T>(c, x, 3), b), 40 * static_cast<double>(n));
            }
}

TYPED_TEST(PublicCompact, PointersAndStridesPackAlike)
{
    using T = TypeParam;
    const Int n = 5, count = 19, format = ork_compact_format();
    const auto a = matrices<T>(n, count);
    std::vector<const T*> sources;
    std::vector<T> back(a.size());
    std::vector<T*> targets;
    for (Int q = 0; q < count; ++q) sources.push_back(a.data() + q * n * n), targets.push_back(back.data() + q * n * n);
    const Batch c{ORK_COMPACT_COLUMNS, format, n, 0, count};
    const auto strided = packed<T>(c, a, n);
    auto pointed = std::vector<Real<T>>(strided.size(), Real<T>(99));
    EXPECT_EQ(COMPACT(pack)(c.layout, n, n, sources.data(), n, pointed.data(), n, format, count), 0);
    EXPECT_EQ(pointed, strided);
    EXPECT_EQ(COMPACT(unpack)(c.layout, n, n, targets.data(), n, pointed.data(), n, format, count), 0);
    EXPECT_EQ(back, a);
}

TYPED_TEST(PublicCompact, NamesTheFirstMatrixWithoutAUsableLastPivot)
{
    using T = TypeParam;
    const Int n = 4, count = 5000; // enough for several threads
    auto a = matrices<T>(n, count);
    for (const Int bad : {4321, 1234}) // row and column 2 are zero, so is the second pivot
        for (Int i = 0; i < n; ++i)
            for (const Int place : {i + n, 1 + i * n}) a[static_cast<std::size_t>(bad * n * n + place)] = 0;
    const Batch c{ORK_COMPACT_COLUMNS, ork_compact_format(), n, 0, count};
    auto p = packed<T>(c, a, n);
    EXPECT_EQ(COMPACT(getrfnp)(c.layout, n, n, p.data(), n, c.format, count), 1235);
    p = packed<T>(c, a, n);
    EXPECT_EQ(COMPACT(potrf)(c.layout, 'L', n, p.data(), n, c.format, count), 1235);
    p = packed<T>(c, a, n);
    EXPECT_EQ(COMPACT(getrfnp)(c.layout, n, n, p.data(), n, c.format, 1234), 0);
    auto x = packed<T>(c, a, n);
    p = x;
    EXPECT_EQ(COMPACT(gesvnp)(c.layout, n, n, p.data(), n, x.data(), n, c.format, count), 1235);
}

TYPED_TEST(PublicCompact, BitsDoNotDependOnThreads)
{
    using T = TypeParam;
    const Int n = 9, count = 3001;
    const auto a = matrices<T>(n, count);
    const Batch c{ORK_COMPACT_COLUMNS, ork_compact_format(), n, n, count};
    std::vector<Real<T>> first;
    for (const int threads : {1, 2, 5}) {
        ork_set_num_threads(threads);
        auto lu = packed<T>(c, a, n), x = packed<T>(c, a, n);
        const Int ldtau = n, bytes = COMPACT(size)(ldtau, 1, c.format, count);
        std::vector<Real<T>> tau(static_cast<std::size_t>(bytes) / sizeof(Real<T>));
        COMPACT(getrfnp)(c.layout, n, n, lu.data(), n, c.format, count);
        COMPACT(getrsnp)(c.layout, 'T', n, n, lu.data(), n, x.data(), n, c.format, count);
        auto qr = packed<T>(c, a, n), chol = qr;
        COMPACT(geqrf)(c.layout, n, n, qr.data(), n, tau.data(), c.format, count);
        COMPACT(potrf)(c.layout, 'U', n, chol.data(), n, c.format, count);
        COMPACT(getrinp)(c.layout, n, lu.data(), n, c.format, count);
        for (const auto* more : {&x, &qr, &tau, &chol}) lu.insert(lu.end(), more->begin(), more->end());
        if (first.empty()) first = lu;
        ASSERT_EQ(lu.size(), first.size());
        EXPECT_EQ(std::memcmp(lu.data(), first.data(), lu.size() * sizeof(Real<T>)), 0) << threads << " threads";
    }
}

TYPED_TEST(PublicCompact, IllegalArgumentsAreReportedOnceByPosition)
{
    using T = TypeParam;
    using R = Real<T>;
    (void)take_reports();
    const T one(1);
    const Int columns = ORK_COMPACT_COLUMNS, rows = ORK_COMPACT_ROWS;
    R x[64] = {}, y[64] = {}, z[64] = {};
    T dense[16] = {};
    const T* sources[4] = {dense, dense, dense, dense};
    const auto expect = [&](Int status, const char* routine, Int position) {
        EXPECT_EQ(status, -position) << routine;
        EXPECT_EQ(take_reports(), std::string("xerbla_ ork_compact_") + precision_letter<T>() + routine + " " +
                                      std::to_string(position) + "\n");
    };
    const auto s = scalar(one);
    expect(COMPACT(size)(-1, 1, 181, 1), "size", 1);
    expect(COMPACT(size)(1, -1, 181, 1), "size", 2);
    expect(COMPACT(size)(1, 1, 180, 1), "size", 3);
    expect(COMPACT(size)(1, 1, 181, -1), "size", 4);
    expect(COMPACT(size)(Int{1} << 40, Int{1} << 20, 181, 1 << 10), "size", 4);
    expect(COMPACT(pack)(0, 2, 2, sources, 2, x, 2, 181, 1), "pack", 1);
    expect(COMPACT(pack)(columns, 2, 3, sources, 1, x, 2, 181, 1), "pack", 5);
    expect(COMPACT(pack)(rows, 2, 3, sources, 3, x, 2, 181, 1), "pack", 7);
    expect(COMPACT(pack)(columns, 2, 2, sources, 2, x, 2, 184, 1), "pack", 8);
    expect(COMPACT(pack_strided)(columns, 2, 2, dense, 2, 4, x, 1, 181, 1), "pack_strided", 8);
    expect(COMPACT(unpack_strided)(columns, 2, 2, dense, 2, 4, x, 2, 181, -1), "unpack_strided", 10);
    expect(COMPACT(getrfnp)(columns, -1, 2, x, 2, 181, 1), "getrfnp", 2);
    expect(COMPACT(getrfnp)(columns, 2, -1, x, 2, 181, 1), "getrfnp", 3);
    expect(COMPACT(getrfnp)(rows, 2, 3, x, 2, 181, 1), "getrfnp", 5);
    expect(COMPACT(getrinp)(columns, 2, x, 1, 181, 1), "getrinp", 4);
    expect(COMPACT(getrsnp)(columns, 'X', 2, 1, x, 2, y, 2, 181, 1), "getrsnp", 2);
    expect(COMPACT(getrsnp)(columns, 'N', 2, 1, x, 2, y, 1, 181, 1), "getrsnp", 8);
    expect(COMPACT(potrf)(columns, 'N', 2, x, 2, 181, 1), "potrf", 2);
    expect(COMPACT(potrs)(columns, 'U', 2, -1, x, 2, y, 2, 181, 1), "potrs", 4);
    expect(COMPACT(gesvnp)(rows, 2, 3, x, 2, y, 2, 181, 1), "gesvnp", 7);
    expect(COMPACT(posv)(columns, 'U', 2, 1, x, 2, y, 2, 180, 1), "posv", 9);
    expect(COMPACT(geqrf)(columns, 2, 2, x, 1, y, 181, 1), "geqrf", 5);
    expect(COMPACT(gemm)(columns, 'N', 'q', 2, 2, 2, s, x, 2, y, 2, s, z, 2, 181, 1), "gemm", 3);
    expect(COMPACT(gemm)(columns, 'T', 'N', 2, 2, 3, s, x, 2, y, 3, s, z, 2, 181, 1), "gemm", 9);
    expect(COMPACT(gemm)(rows, 'N', 'T', 2, 2, 3, s, x, 3, y, 2, s, z, 2, 181, 1), "gemm", 11);
    expect(COMPACT(gemm)(columns, 'N', 'N', 2, 2, 2, s, x, 2, y, 2, s, z, 1, 181, 1), "gemm", 14);
    expect(COMPACT(trsm)(columns, 'X', 'U', 'N', 'N', 2, 3, s, x, 2, y, 2, 181, 1), "trsm", 2);
    expect(COMPACT(trsm)(columns, 'r', 'U', 'N', 'N', 2, 3, s, x, 2, y, 2, 181, 1), "trsm", 10);
    expect(COMPACT(trsm)(rows, 'l', 'U', 'N', 'N', 2, 3, s, x, 2, y, 2, 181, 1), "trsm", 12);
    for (const R value : x) EXPECT_EQ(value, 0);
}

} // namespace
} // namespace ork::test
