// SPDX-License-Identifier: MIT
// Products of many small matrices in the compact layout: every matrix of every whole pack gets its own product, and
// nothing else is touched.
#include "blas/level3_by_type.h"
#include "support/compare.h"
#include "support/packs.h"
#include "support/strided.h"

namespace ork::test {
namespace {

template <class T>
inline constexpr auto gemm_compact = of_type<T>(ork_blas_nx2_xsgemm_compact, ork_blas_nx2_xdgemm_compact,
                                                ork_blas_nx2_xcgemm_compact, ork_blas_nx2_xzgemm_compact);

// Packs of random matrices, and each of them as plain columns.
template <class T>
struct Batch : Packs<T> {
    std::vector<std::vector<T>> plain;

    Batch(std::int64_t rows, std::int64_t columns, bool by_rows, std::int64_t ld, std::int64_t width,
          std::int64_t count, Random& random, bool poisoned)
        : Packs<T>(rows, columns, by_rows, ld, width, count), plain(count, std::vector<T>(rows * columns))
    {
        for (std::int64_t q = 0; q < count; ++q)
            for (std::int64_t j = 0; j < columns; ++j)
                for (std::int64_t i = 0; i < rows; ++i) {
                    T& x = plain[q][i + j * rows];
                    x = poisoned ? T(std::numeric_limits<Real<T>>::quiet_NaN()) : random.uniform<T>();
                    this->set(q, i, j, x);
                }
        this->memory.remember();
    }
};

template <class T>
class CompactGemm : public testing::Test {
};
using Types = testing::Types<float, double, std::complex<float>, std::complex<double>>;
TYPED_TEST_SUITE(CompactGemm, Types);

TYPED_TEST(CompactGemm, MultipliesEveryMatrixOfWholePacks)
{
    using T = TypeParam;
    Random random(7);
    const char letters[] = "NTC";
    for (int round = 0; round < 400; ++round) {
        const std::int64_t m = random.integer(1, 8), n = random.integer(1, 8), k = random.integer(0, 9);
        const char ta = letters[random.integer(0, 2)], tb = letters[random.integer(0, 2)];
        const std::int64_t layout = random.integer(101, 102), format = random.integer(181, 183);
        const bool rows = layout == 101;
        const std::int64_t width = Packs<T>::width_of(format);
        const std::int64_t count = random.integer(width, 3 * width);
        const T alpha = round % 3 == 0 ? T(1) : round % 7 == 0 ? T(0) : random.uniform<T>();
        const T beta = round % 4 == 0 ? T(0) : round % 4 == 1 ? T(1) : random.uniform<T>();
        const auto batch = [&](std::int64_t r, std::int64_t c, std::int64_t pad, bool poisoned) {
            return Batch<T>(r, c, rows, (rows ? c : r) + pad, width, count, random, poisoned);
        };
        SCOPED_TRACE(testing::Message() << ta << tb << ' ' << m << ' ' << n << ' ' << k << " layout " << layout
                                        << " format " << format << " count " << count);
        auto a = batch(ta == 'N' ? m : k, ta == 'N' ? k : m, random.integer(0, 2), alpha == T(0));
        auto b = batch(tb == 'N' ? k : n, tb == 'N' ? n : k, random.integer(0, 2), alpha == T(0));
        auto c = batch(m, n, random.integer(0, 2), beta == T(0));
        const auto lead = [](const Batch<T>& x) { return std::max<std::int64_t>(1, x.ld); };
        const std::int64_t lda = lead(a), ldb = lead(b), ldc = lead(c);
        a.memory.read_only();
        b.memory.read_only();
        gemm_compact<T>(&layout, &ta, &tb, &m, &n, &k, &alpha, a.memory.data(), &lda, b.memory.data(), &ldb, &beta,
                        c.memory.data(), &ldc, &format, &count);
        for (std::int64_t q = 0; q < c.whole(); ++q) {
            std::vector<T> got;
            for (std::int64_t j = 0; j < n; ++j)
                for (std::int64_t i = 0; i < m; ++i) got.push_back(c.get(q, i, j));
            expect_near<T>(got,
                           reference_gemm<T>(ta, tb, m, n, k, alpha, a.plain[q].data(), a.rows, b.plain[q].data(),
                                             b.rows, beta, c.plain[q].data(), m),
                           static_cast<double>(4 * k + 8));
        }
        EXPECT_TRUE(c.only_changed([](std::int64_t, std::int64_t) { return true; }));
    }
}

TYPED_TEST(CompactGemm, DoesNothingForAnUnknownFormatOrNoWholePack)
{
    using T = TypeParam;
    using R = Real<T>;
    Random random(8);
    const std::int64_t layout = 102, two = 2, width = 16 / static_cast<std::int64_t>(sizeof(R));
    const T one(1);
    for (const auto& [format, count] : {std::pair<std::int64_t, std::int64_t>{180, 8}, {184, 8}, {181, width - 1}}) {
        Batch<T> x(2, 2, false, 2, width, std::max(count, width), random, false);
        gemm_compact<T>(&layout, "N", "N", &two, &two, &two, &one, x.memory.data(), &two, x.memory.data(), &two, &one,
                        x.memory.data(), &two, &format, &count);
        EXPECT_TRUE(x.memory.unchanged());
    }
}

} // namespace
} // namespace ork::test
