// SPDX-License-Identifier: MIT
// Vectors and matrices that span more than 2^31 elements: reserved, and touched in a few places only.
#include <sys/mman.h>

#include <cmath>

#include <gtest/gtest.h>

#include "ork/blas.h"
#include "ork/cblas.h"

namespace ork::test {

namespace {

// Zeros, of which only the pages in use take memory.
template <class T>
class Reserved {
public:
    explicit Reserved(std::int64_t count) : bytes_(static_cast<std::size_t>(count) * sizeof(T))
    {
        void* p = mmap(nullptr, bytes_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        data_ = p == MAP_FAILED ? nullptr : static_cast<T*>(p);
    }
    ~Reserved()
    {
        if (data_ != nullptr) munmap(data_, bytes_);
    }
    Reserved(const Reserved&) = delete;
    Reserved& operator=(const Reserved&) = delete;

    T* data() const { return data_; }
    T& operator[](std::int64_t i) const { return data_[i]; }

private:
    std::size_t bytes_;
    T* data_;
};

constexpr std::int32_t far = 1 << 30; // five elements this far apart span 2^32

class WideDouble : public testing::Test {
protected:
    static constexpr std::int32_t n = 5, one = 1, back = -far;
    Reserved<double> x{n * std::int64_t{far}};

    void SetUp() override
    {
        if (x.data() == nullptr) GTEST_SKIP() << "the address space is too small";
        for (int i = 0; i < n; ++i) x[i * std::int64_t{far}] = i + 1;
    }
};

TEST_F(WideDouble, VectorsInThirtyTwoBitIntegers)
{
    const double y[] = {1, 10, 100, 1000, 10000};
    EXPECT_EQ(ddot_(&n, x.data(), &far, y, &one), 54321);
    EXPECT_EQ(ddot_(&n, x.data(), &back, y, &one), 12345);
    EXPECT_EQ(cblas_ddot(n, y, 1, x.data(), -far), 12345);
    EXPECT_EQ(dasum_(&n, x.data(), &far), 15);
    EXPECT_EQ(idamax_(&n, x.data(), &far), 5);
    EXPECT_EQ(cblas_idamin(n, x.data(), far), 0u);

    double copy[5] = {};
    dcopy_(&n, x.data(), &back, copy, &one);
    EXPECT_EQ(copy[0], 5);
    const double two = 2;
    daxpy_(&n, &two, y, &one, x.data(), &back);
    EXPECT_EQ(x[0], 1 + 2 * 10000);
    EXPECT_EQ(x[4 * std::int64_t{far}], 5 + 2);
    dscal_(&n, &two, x.data(), &far);
    EXPECT_EQ(x[4 * std::int64_t{far}], 14);
    x[3 * std::int64_t{far}] = x[far] = INFINITY;
    EXPECT_EQ(dnrm2_(&n, x.data(), &far), INFINITY);
}

TEST_F(WideDouble, MatricesInThirtyTwoBitIntegers)
{
    const std::int32_t two = 2, four = 4;
    const double zero = 0, b[] = {1, 1, 1, 1};
    double c[8] = {};
    // A is 1 x 4 with columns 2^30 apart, or the same four elements as rows of a 4 x 1 matrix by rows.
    const std::int32_t single = 1;
    const double alpha = 1;
    dgemm_("N", "N", &single, &single, &four, &alpha, x.data(), &far, b, &four, &zero, c, &single);
    EXPECT_EQ(c[0], 1 + 2 + 3 + 4);
    cblas_dgemm(CblasRowMajor, CblasNoTrans, CblasNoTrans, 4, 1, 1, 1, x.data(), far, b, 1, 0, c, 1);
    EXPECT_EQ(c[3], 4);
    // C with columns 2^30 apart.
    dgemm_("N", "N", &single, &four, &two, &alpha, b, &single, c, &two, &zero, x.data(), &far);
    EXPECT_EQ(x[0], c[0] + c[1]);
}

TEST(WideVector, PositionsBeyondTwoToTheThirtyOne)
{
    const std::int64_t n = (std::int64_t{1} << 31) + 8, one = 1;
    const Reserved<float> y(n);
    if (y.data() == nullptr) GTEST_SKIP() << "the address space is too small";
    y[n - 1] = 7;
    const std::int64_t last[] = {n};
    const float value[] = {3};
    EXPECT_EQ(sdoti_64_(&one, value, last, y.data()), 21);
    const float alpha = 2;
    saxpyi_64_(&one, &alpha, value, last, y.data());
    EXPECT_EQ(y[n - 1], 13);
}

} // namespace

} // namespace ork::test
