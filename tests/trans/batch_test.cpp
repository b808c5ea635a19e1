// SPDX-License-Identifier: MIT
// Batches go to the core as they come, none nowhere; of one matrix it is a plain call, tested with those.
#include "trans/matrices.h"

namespace ork::test {
namespace {

template <class T>
class Batches : public testing::Test {
};
TYPED_TEST_SUITE(Batches, Precisions, PrecisionNames);

TYPED_TEST(Batches, AreTheCoresUnlessThereIsNothingToDo)
{
    using T = TypeParam;
    const T alpha = some<T>(2, 3), beta = some<T>(4, 5);
    T a[1], b[1], c[1]; // not touched
    for (const Int size : {0, 2, 1000}) {
        SCOPED_TRACE(size);
        drivers() = {};
        KERNEL(omatcopy_batch_strided)('C', 'T', 3, 4, alpha, a, 5, 6, b, 7, 8, size);
        KERNEL(imatcopy_batch_strided)('R', 'n', 3, 4, alpha, a, 5, 6, 7, size);
        KERNEL(omatadd_batch_strided)('c', 'T', 'R', 3, 4, alpha, a, 5, 6, beta, b, 7, 8, c, 9, 10, size);
        std::vector<std::string> want;
        if (size != 0)
            want = {
                call_text("omatcopy_batch_strided", 'C', 'T', 3, 4, alpha, a, 5, 6, b, 7, 8, size),
                call_text("imatcopy_batch_strided", 'R', 'n', 3, 4, alpha, a, 5, 6, 7, size),
                call_text("omatadd_batch_strided", 'c', 'T', 'R', 3, 4, alpha, a, 5, 6, beta, b, 7, 8, c, 9, 10, size)};
        EXPECT_EQ(drivers().calls, want);
    }
    const Int rows[1] = {}, cols[1] = {}, lda[1] = {}, ldb[1] = {}, sizes[1] = {};
    const T* inputs[1] = {};
    T* outputs[1] = {};
    for (const Int groups : {0, 1, 3}) {
        SCOPED_TRACE(groups);
        drivers() = {};
        const char* letters = "TNC";
        KERNEL(omatcopy_batch)('C', letters, rows, cols, &alpha, inputs, lda, outputs, ldb, groups, sizes);
        KERNEL(imatcopy_batch)('r', letters, rows, cols, &alpha, outputs, lda, ldb, groups, sizes);
        std::vector<std::string> want;
        if (groups != 0)
            want = {
                call_text("omatcopy_batch", 'C', letters, rows, cols, &alpha, inputs, lda, outputs, ldb, groups, sizes),
                call_text("imatcopy_batch", 'r', letters, rows, cols, &alpha, outputs, lda, ldb, groups, sizes)};
        EXPECT_EQ(drivers().calls, want);
    }
}

} // namespace
} // namespace ork::test
