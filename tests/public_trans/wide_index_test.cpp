// SPDX-License-Identifier: MIT
// Matrices that span more than 2^31 elements: reserved, and touched in a few places only.
#include <sys/mman.h>

#include <gtest/gtest.h>

#include "ork/trans.h"

namespace ork::test {

namespace {

// 3 x 5 elements, numbered by columns that are 2^30 elements apart.
class WideTrans : public testing::Test {
protected:
    static constexpr std::int32_t lead = 1 << 30;
    static constexpr std::size_t bytes = 5 * std::size_t{lead} * sizeof(float);
    float* a = nullptr;

    float& at(std::int64_t i, std::int64_t j) const { return a[i + j * lead]; }
    void SetUp() override
    {
        void* p = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        if (p == MAP_FAILED) GTEST_SKIP() << "the address space is too small";
        a = static_cast<float*>(p);
        for (int j = 0; j < 5; ++j)
            for (int i = 0; i < 3; ++i) at(i, j) = static_cast<float>(10 * i + j + 1);
    }
    void TearDown() override
    {
        if (a != nullptr) munmap(a, bytes);
    }
};

TEST_F(WideTrans, LeadingDimensions)
{
    float b[15];
    cblas_somatcopy(CblasColMajor, CblasTrans, 3, 5, 1, a, lead, b, 5);
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 5; ++j) EXPECT_EQ(b[j + 5 * i], at(i, j));
    cblas_somatcopy(CblasColMajor, CblasNoTrans, 3, 5, 2, b, 3, a, lead);
    EXPECT_EQ(at(2, 4), 2 * b[14]);
    cblas_somatadd(CblasColMajor, CblasNoTrans, CblasNoTrans, 3, 5, 1, a, lead, -2, b, 3, a, lead);
    EXPECT_EQ(at(2, 4), 0);
}

TEST_F(WideTrans, InPlace)
{
    cblas_simatcopy(CblasColMajor, CblasTrans, 3, 5, 1, a, lead, lead);
    for (int i = 0; i < 5; ++i)
        for (int j = 0; j < 3; ++j) EXPECT_EQ(at(i, j), 10 * j + i + 1);
    cblas_simatcopy(CblasColMajor, CblasNoTrans, 5, 3, 1, a, lead, 5);
    EXPECT_EQ(a[14], 25);
}

TEST_F(WideTrans, StridesAndDistances)
{
    float b[5];
    cblas_somatcopy2(CblasColMajor, CblasNoTrans, 5, 1, 1, a, 5, lead, b, 5, 1);
    for (int j = 0; j < 5; ++j) EXPECT_EQ(b[j], at(0, j));
    cblas_somatcopy_batch_strided(CblasColMajor, CblasNoTrans, 1, 1, 3, a, 1, lead, b, 1, 1, 5);
    for (int j = 0; j < 5; ++j) EXPECT_EQ(b[j], 3 * at(0, j));
}

} // namespace

} // namespace ork::test
