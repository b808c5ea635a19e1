// SPDX-License-Identifier: MIT
// What is behind a handle.
#include "export.h"
#include "sparse/handle.h"
#include "sparse/kernels.h"

namespace ork::sparse {
namespace {

// Kernels write addresses of numbers and indices, and sizes of the width of the name: all of them the caller's own.
using Creation = CreationCalls<std::int64_t, double>;
constinit Kernels<8> export_csr("export_csr"), export_csc("export_csc"), export_bsr("export_bsr");

constexpr const char* formats[] = {"csr", "csc", "coo", "bsr"};

const Matrix* check_format(Checks& check, ork_sparse_matrix_t handle, Format format)
{
    const Matrix* const a = check.handle("a", handle);
    if (!check.failed() && a->format != format)
        check.fail(mismatch(check.routine(), "a", static_cast<std::int64_t>(a->format), "the handle has the format %s",
                            formats[static_cast<int>(a->format)]));
    return check.failed() ? nullptr : a;
}

template <class Int>
std::int64_t lines(const Routine& r, Format format, ork_sparse_matrix_t handle, ork_spblas_base* base, Int* rows,
                   Int* cols, Int** first, Int** last, Int** index, void** values)
{
    Checks check(r);
    const Matrix* const a = check_format(check, handle, format);
    if (a == nullptr) return check.status();
    auto* const kernel = (format == Format::csr ? export_csr : export_csc)
                             .get<void(const Matrix*, Int*, Int*, Int*, Int**, Int**, Int**, void**)>(*a);
    kernel(a, nullptr, rows, cols, first, last, index, values);
    if (base != nullptr) *base = static_cast<ork_spblas_base>(a->base);
    return ORK_SPARSE_SUCCESS;
}

template <class Int>
std::int64_t blocks(const Routine& r, ork_sparse_matrix_t handle, ork_spblas_base* base, ork_spblas_layout* layout,
                    Int* rows, Int* cols, Int* block, Int** first, Int** last, Int** index, void** values)
{
    Checks check(r);
    const Matrix* const a = check_format(check, handle, Format::bsr);
    if (a == nullptr) return check.status();
    export_bsr.get<void(const Matrix*, Int*, Int*, Int*, Int*, int*, Int**, Int**, Int**, void**)> (*a)(
        a, nullptr, rows, cols, block, nullptr, first, last, index, values);
    if (base != nullptr) *base = static_cast<ork_spblas_base>(a->base);
    if (layout != nullptr) *layout = a->layout == 0 ? ORK_SPBLAS_ROW_MAJOR : ORK_SPBLAS_COL_MAJOR;
    return ORK_SPARSE_SUCCESS;
}

template <class Value, class Target>
void tell(Target* target, Value value)
{
    if (target != nullptr) *target = (Target)value;
}

template <class Int>
std::int64_t places(const Routine& r, ork_sparse_matrix_t handle, ork_spblas_base* base, Int* rows, Int* cols,
                    Int* count, Int** row_index, Int** column_index, void** values)
{
    Checks check(r);
    const Matrix* const a = check_format(check, handle, Format::coo);
    if (a == nullptr) return check.status();
    tell(base, a->base);
    tell(rows, a->rows);
    tell(cols, a->cols);
    tell(count, a->entries);
    tell(row_index, a->first);
    tell(column_index, a->index);
    tell(values, a->values);
    return ORK_SPARSE_SUCCESS;
}

} // namespace
} // namespace ork::sparse

using namespace ork::sparse;

#define ORK_SPARSE_EXPORTS(letter, bytes, Int, Element)                                                                \
    ORK_EXPORT int64_t ork_sparse_##letter##_export_csr_i##bytes(ork_sparse_matrix_t a, ork_spblas_base* base,         \
                                                                 Int* rows, Int* columns, Int** rows_start,            \
                                                                 Int** rows_end, Int** column_index, Element** values) \
    {                                                                                                                  \
        return lines({"export_csr", "a base rows columns rows_start rows_end column_index values", #letter[0], bytes}, \
                     Format::csr, a, base, rows, columns, rows_start, rows_end, column_index, (void**)values);         \
    }                                                                                                                  \
    ORK_EXPORT int64_t ork_sparse_##letter##_export_csc_i##bytes(ork_sparse_matrix_t a, ork_spblas_base* base,         \
                                                                 Int* rows, Int* columns, Int** columns_start,         \
                                                                 Int** columns_end, Int** row_index, Element** values) \
    {                                                                                                                  \
        return lines(                                                                                                  \
            {"export_csc", "a base rows columns columns_start columns_end row_index values", #letter[0], bytes},       \
            Format::csc, a, base, rows, columns, columns_start, columns_end, row_index, (void**)values);               \
    }                                                                                                                  \
    ORK_EXPORT int64_t ork_sparse_##letter##_export_coo_i##bytes(ork_sparse_matrix_t a, ork_spblas_base* base,         \
                                                                 Int* rows, Int* columns, Int* count, Int** row_index, \
                                                                 Int** column_index, Element** values)                 \
    {                                                                                                                  \
        return places({"export_coo", "a base rows columns count row_index column_index values", #letter[0], bytes}, a, \
                      base, rows, columns, count, row_index, column_index, (void**)values);                            \
    }                                                                                                                  \
    ORK_EXPORT int64_t ork_sparse_##letter##_export_bsr_i##bytes(                                                      \
        ork_sparse_matrix_t a, ork_spblas_base* base, ork_spblas_layout* layout, Int* rows, Int* columns, Int* block,  \
        Int** rows_start, Int** rows_end, Int** column_index, Element** values)                                        \
    {                                                                                                                  \
        return blocks({"export_bsr", "a base layout rows columns block rows_start rows_end column_index values",       \
                       #letter[0], bytes},                                                                             \
                      a, base, layout, rows, columns, block, rows_start, rows_end, column_index, (void**)values);      \
    }
#define MEMBER(letter, Element, Scalar)                                                                                \
    ORK_SPARSE_EXPORTS(letter, 4, int32_t, Element)                                                                    \
    ORK_SPARSE_EXPORTS(letter, 8, int64_t, Element)
ORK_SPARSE_PRECISIONS(MEMBER)
