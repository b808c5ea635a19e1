// SPDX-License-Identifier: MIT
// Memory that runs out at any point: the call says so, nothing is lost, and the handle works as before.
#include <atomic>
#include <cstring>

#include "ork/abi/services.h"
#include "ork/ork.h"
#include "stored.h"

namespace {
std::atomic<long> failing = -1; // allocations until one fails, and all behind it; negative: none
std::atomic<long> alive = 0;

bool fails() { return failing.load() >= 0 && failing.fetch_sub(1) <= 0 ? failing.store(0), true : false; }
} // namespace

// This program's own services: both libraries take them instead of the core's.
extern "C" void* ork_serv_malloc(size_t size, size_t alignment)
{
    if (size > PTRDIFF_MAX || fails()) return nullptr;
    void* memory = nullptr;
    if (posix_memalign(&memory, std::max(alignment, alignof(max_align_t)), size ? size : 1) != 0) return nullptr;
    ++alive;
    return memory;
}
extern "C" void* ork_serv_calloc(size_t count, size_t size, size_t alignment, int64_t)
{
    void* const memory = ork_serv_malloc(count * size, alignment);
    return memory != nullptr ? memset(memory, 0, count * size) : nullptr;
}
extern "C" void ork_serv_free(void* memory)
{
    if (memory != nullptr) --alive;
    free(memory);
}

namespace ork::test {
namespace {

using T = double;
using Int = std::int32_t;

// What a handle stands for, through its product with the unit matrix.
Dense<T> product(ork_sparse_matrix_t a, const Form& form)
{
    const Index rows = form.rows * form.block, cols = form.cols * form.block;
    Dense<T> unit(cols, cols), result(rows, cols);
    for (Index i = 0; i < cols; ++i) unit.at(i, i) = 1;
    EXPECT_EQ(ork_sparse_d_mm(ORK_SPBLAS_NO_TRANS, 1.0, a, general_kind, ORK_SPBLAS_COL_MAJOR, unit.values.data(), cols,
                              std::max<Index>(cols, 1), 0.0, result.values.data(), std::max<Index>(rows, 1)),
              0)
        << ork_sparse_last_error()->text;
    return result;
}

std::int64_t hint_everything(ork_sparse_matrix_t a)
{
    constexpr ork_sparse_kind lower = {ORK_SPBLAS_TRIANGULAR, ORK_SPBLAS_LOWER, ORK_SPBLAS_UNIT};
    if (auto s = ork_sparse_set_mv_hint(a, ORK_SPBLAS_NO_TRANS, general_kind, 1000)) return s;
    if (auto s = ork_sparse_set_mv_hint(a, ORK_SPBLAS_TRANS, general_kind, 1000)) return s;
    if (auto s = ork_sparse_set_mm_hint(a, ORK_SPBLAS_TRANS, general_kind, ORK_SPBLAS_ROW_MAJOR, 100, 100)) return s;
    if (auto s = ork_sparse_set_symgs_hint(a, ORK_SPBLAS_NO_TRANS, general_kind, 1000)) return s;
    return ork_sparse_set_sv_hint(a, ORK_SPBLAS_NO_TRANS, lower, 1000);
}

TEST(SparseMemory, MayRunOutAtAnyPoint)
{
    using Call = std::int64_t (*)(ork_sparse_matrix_t a, ork_sparse_matrix_t * result);
    const struct {
        const char* name;
        Call call;
    } calls[] = {
        {"hints", [](auto a, auto*) { return hint_everything(a); }},
        {"optimize", [](auto a, auto*) { return ork_sparse_optimize(a); }},
        {"optimize again", [](auto a, auto*) { return ork_sparse_optimize(a); }},
        {"copy", [](auto a, auto* c) { return ork_sparse_copy(a, c); }},
        {"csr", [](auto a, auto* c) { return ork_sparse_convert_csr(a, ORK_SPBLAS_TRANS, c); }},
        {"csc", [](auto a, auto* c) { return ork_sparse_convert_csc(a, ORK_SPBLAS_TRANS, c); }},
        {"bsr",
         [](auto a, auto* c) { return ork_sparse_convert_bsr(a, 3, ORK_SPBLAS_COL_MAJOR, ORK_SPBLAS_TRANS, c); }},
        {"square", [](auto a, auto* c) { return ork_sparse_spmm(ORK_SPBLAS_NO_TRANS, a, a, c); }},
        {"rank k", [](auto a, auto* c) { return ork_sparse_syrk(ORK_SPBLAS_NO_TRANS, a, c); }},
        {"triple product",
         [](auto a, auto* c) {
             constexpr ork_sparse_kind symmetric = {ORK_SPBLAS_SYMMETRIC, ORK_SPBLAS_UPPER, ORK_SPBLAS_NON_UNIT};
             return ork_sparse_sypr(ORK_SPBLAS_TRANS, a, a, symmetric, ORK_SPARSE_COUNT, c);
         }},
        {"sum", [](auto a, auto* c) { return ork_sparse_d_add(ORK_SPBLAS_NO_TRANS, a, 1, a, c); }},
        {"order", [](auto a, auto*) { return ork_sparse_order(a); }},
    };
    {
        Random random(1); // what is kept for good comes first
        const Handle first(Stored<Int, T>({Format::csr, 3, 3}, random));
    }
    for (const Format format : all_formats) {
        SCOPED_TRACE(static_cast<int>(format));
        Random random(7);
        const Stored<Int, T> stored({format, 20, 20, 1, format == Format::bsr ? 2 : 1}, random);
        const Dense<T> dense = stored.dense();
        const long before = alive;
        ork_sparse_matrix_t a = nullptr;
        for (long room = 0;; ++room) {
            failing = room;
            const std::int64_t status = stored.create(&a);
            failing = -1;
            if (status == 0) break;
            ASSERT_EQ(status, ORK_SPARSE_NO_MEMORY);
            EXPECT_STREQ(ork_sparse_last_error()->text + (std::strlen(ork_sparse_last_error()->text) - 13),
                         "out of memory");
            ASSERT_EQ(alive, before);
        }
        for (const auto& attempt : calls) {
            SCOPED_TRACE(attempt.name);
            std::int64_t status = ORK_SPARSE_NO_MEMORY;
            long failures = 0;
            for (long room = 0; status == ORK_SPARSE_NO_MEMORY; ++room) {
                ASSERT_LT(room, 1000);
                ork_sparse_matrix_t c = nullptr;
                const long held = alive;
                failing = room;
                status = attempt.call(a, &c);
                const bool failed = failing == 0;
                failing = -1;
                if (status == ORK_SPARSE_NO_MEMORY) {
                    ++failures;
                    ASSERT_EQ(c, nullptr);
                    // A result that failed leaves nothing; an analysis may keep what was done before.
                    if (attempt.name[0] != 'o' && attempt.name[0] != 'h') {
                        ASSERT_EQ(alive, held);
                    }
                } else if (c != nullptr) {
                    ASSERT_EQ(ork_sparse_destroy(c), 0);
                    ASSERT_EQ(alive, held);
                }
                // Having done without is allowed, giving up silently is not.
                ASSERT_TRUE(status == ORK_SPARSE_NO_MEMORY ? failed : true);
                ASSERT_EQ(product(a, stored.form), dense);
            }
            EXPECT_TRUE(failures > 0 || status == ORK_SPARSE_NOT_SUPPORTED);
            EXPECT_TRUE(status == ORK_SPARSE_SUCCESS || status == ORK_SPARSE_NOT_SUPPORTED)
                << ork_sparse_last_error()->text;
        }
        ASSERT_EQ(ork_sparse_destroy(a), 0);
        EXPECT_EQ(alive, before);
    }
}

} // namespace
} // namespace ork::test
