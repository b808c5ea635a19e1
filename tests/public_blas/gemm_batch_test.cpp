// SPDX-License-Identifier: MIT
// gemm_batch: groups of multiplies are the multiplies.
#include <algorithm>

#include <gtest/gtest.h>

#include "ork/blas.h"
#include "ork/cblas.h"
#include "ork/ork.h"
#include "reports.h"
#include "support/compare.h"
#include "support/random.h"

namespace ork::test {

namespace {

// Three groups, of one multiply, none and seven.
class Batch : public testing::Test {
protected:
    using Value = std::complex<double>;
    static constexpr int lead = 60, multiplies = 8;

    std::vector<CBLAS_TRANSPOSE> transa = {CblasConjTrans, CblasNoTrans, CblasNoTrans},
                                 transb = {CblasNoTrans, CblasNoTrans, CblasTrans};
    std::vector<std::int64_t> m = {5, 1, 40}, n = {3, 1, 50}, k = {7, 1, 60}, lda = {lead, 1, lead}, ldb = lda,
                              ldc = lda, size = {1, 0, 7};
    std::vector<Value> alpha = {{1, 2}, 0, {-1, 1}}, beta = {0, 0, {0.5, 1}};
    std::vector<Value> memory = uniform_values<Value>(3 * multiplies * lead * lead);
    std::vector<const void*> a, b;
    std::vector<void*> c;

    Batch()
    {
        for (int i = 0; i < multiplies; ++i) {
            Value* const at = memory.data() + std::int64_t{i} * lead * lead;
            a.push_back(at);
            b.push_back(at + multiplies * lead * lead);
            c.push_back(at + 2 * multiplies * lead * lead);
        }
    }
    void run(CBLAS_LAYOUT layout)
    {
        cblas_zgemm_batch_64(layout, transa.data(), transb.data(), m.data(), n.data(), k.data(), alpha.data(), a.data(),
                             lda.data(), b.data(), ldb.data(), beta.data(), c.data(), ldc.data(),
                             static_cast<std::int64_t>(m.size()), size.data());
    }
};

TEST_F(Batch, IsItsMultiplies)
{
    for (const CBLAS_LAYOUT layout : {CblasColMajor, CblasRowMajor})
        for (const int threads : {1, 2}) {
            const auto before = memory;
            for (int i = 0; i < multiplies; ++i) {
                const int g = i == 0 ? 0 : 2;
                cblas_zgemm_64(layout, transa[g], transb[g], m[g], n[g], k[g], &alpha[g], a[i], lda[g], b[i], ldb[g],
                               &beta[g], c[i], ldc[g]);
            }
            const auto want = memory;
            memory = before;
            ork_set_num_threads_local(threads);
            run(layout);
            ork_set_num_threads_local(0);
            EXPECT_EQ(std::memcmp(memory.data(), want.data(), want.size() * sizeof(Value)), 0);
        }
}

TEST_F(Batch, FortranTakesLettersAndAddresses)
{
    const char letters[] = "nT";
    const std::int32_t size[] = {2, 3}, one[] = {1, 1}, groups = 2;
    const double x[] = {2, 3, 5, 7, 11}, alpha[] = {1, -1}, beta[] = {0, 1};
    double y[] = {1, 1, 1, 1, 1};
    const double* in[] = {x, x + 1, x + 2, x + 3, x + 4};
    double* out[] = {y, y + 1, y + 2, y + 3, y + 4};
    dgemm_batch_(letters, letters, one, one, one, alpha, in, one, in, one, beta, out, one, &groups, size);
    EXPECT_EQ(std::vector(y, y + 5), (std::vector<double>{4, 9, 1 - 25, 1 - 49, 1 - 121}));
}

// As positions of gemm's arguments, behind them the count and the sizes of the groups; a wrong group stops all.
TEST_F(Batch, ReportsTheFirstWrongArgument)
{
    const auto before = memory;
    const auto expect = [&](CBLAS_LAYOUT layout, std::int64_t position) {
        (void)take_reports();
        run(layout);
        EXPECT_EQ(take_reports(), (std::vector<Report>{{"cblas_xerbla64_", "cblas_zgemm_batch", position}}));
        EXPECT_TRUE(std::equal(memory.begin(), memory.end(), before.begin()));
    };
    expect(static_cast<CBLAS_LAYOUT>(1), 1);
    transa[2] = static_cast<CBLAS_TRANSPOSE>(7);
    expect(CblasColMajor, 2);
    expect(CblasRowMajor, 2);
    transa[2] = CblasNoTrans;
    ldb[2] = 49;
    expect(CblasColMajor, 11);
    ldb[2] = 59;
    expect(CblasRowMajor, 11);
    ldb[2] = lead, size[1] = -1;
    expect(CblasColMajor, 16);
    expect(CblasRowMajor, 16);
    const std::int64_t none = -1;
    zgemm_batch_64_("N", "N", &none, &none, &none, nullptr, nullptr, &none, nullptr, &none, nullptr, nullptr, &none,
                    &none, &none);
    EXPECT_EQ(take_reports(), (std::vector<Report>{{"xerbla_64_", "ZGEMM_BATCH", 14}}));
}

} // namespace

} // namespace ork::test
