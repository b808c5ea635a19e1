// SPDX-License-Identifier: MIT
// What is behind a handle. Sizes and arrays of indices are of the width of the name, which is that of the handle, so
// addresses for them are passed on as they are.
#include <cstring>

#include "export.h"
#include "sparse/handle.h"
#include "sparse/kernels.h"
#include "sparse/sized.h"

namespace ork::sparse {
namespace {

constinit Kernels<8> export_csr("export_csr"), export_csc("export_csc"), export_bsr("export_bsr");
using ExportRows = void(const Matrix* a, void* base, void* rows, void* cols, void* first, void* last, void* index,
                        void* values);
using ExportBlocks = void(const Matrix* a, void* base, void* rows, void* cols, void* block, int* layout, void* first,
                          void* last, void* index, void* values);

// The handle of a call if it has the format, precision and width of the name.
class Source {
public:
    explicit Source(ork_sparse_matrix_t handle, ork_spblas_base* base, unsigned code)
        : routine_(routine_of(code, functions, arguments)), check_(routine_), a_(check_.handle("a", handle))
    {
        if (!check_.failed() && a_->format != format_of(code))
            check_.fail(mismatch(routine_, "a", static_cast<std::int64_t>(a_->format), "the handle has the format %s",
                                 functions[static_cast<int>(a_->format)] + std::strlen("export_")));
        if (!check_.failed() && base != nullptr) *base = static_cast<ork_spblas_base>(a_->base);
    }

    bool failed() const { return check_.failed(); }
    std::int64_t status() const { return check_.status(); }
    const Matrix* matrix() const { return a_; }

private:
    static constexpr const char* functions[] = {"export_csr", "export_csc", "export_coo", "export_bsr"};
    static constexpr const char* arguments[] = {"a base rows columns rows_start rows_end column_index values",
                                                "a base rows columns columns_start columns_end row_index values",
                                                "a base rows columns count row_index column_index values",
                                                "a base layout rows columns block rows_start rows_end column_index "
                                                "values"};
    Routine routine_;
    Checks check_;
    const Matrix* a_;
};

[[gnu::noinline]] std::int64_t export_lines(ork_sparse_matrix_t handle, ork_spblas_base* base, void* rows,
                                            void* columns, void* first, void* last, void* index, void* values,
                                            unsigned code)
{
    const Source source(handle, base, code);
    if (source.failed()) return source.status();
    const Matrix* const a = source.matrix();
    Kernels<8>& kernel = a->format == Format::csr ? export_csr : export_csc;
    ExportRows* const tell_rows = kernel.get<ExportRows>(*a);
    tell_rows(a, nullptr, rows, columns, first, last, index, values);
    return ORK_SPARSE_SUCCESS;
}

[[gnu::noinline]] std::int64_t export_blocks(ork_sparse_matrix_t handle, ork_spblas_base* base,
                                             ork_spblas_layout* layout, void* rows, void* columns, void* block,
                                             void* first, void* last, void* index, void* values, unsigned code)
{
    const Source source(handle, base, code);
    if (source.failed()) return source.status();
    const Matrix* const a = source.matrix();
    export_bsr.get<ExportBlocks> (*a)(a, nullptr, rows, columns, block, nullptr, first, last, index, values);
    if (layout != nullptr) *layout = a->layout == 0 ? ORK_SPBLAS_ROW_MAJOR : ORK_SPBLAS_COL_MAJOR;
    return ORK_SPARSE_SUCCESS;
}

// Of a value in 64 bits the lower bytes are the same value in 32.
template <class Value>
void tell(void* target, const Value& value, std::size_t bytes)
{
    if (target != nullptr) std::memcpy(target, &value, bytes);
}

[[gnu::noinline]] std::int64_t export_places(ork_sparse_matrix_t handle, ork_spblas_base* base, void* rows,
                                             void* columns, void* count, void* row_index, void* column_index,
                                             void* values, unsigned code)
{
    const Source source(handle, base, code);
    if (source.failed()) return source.status();
    const Matrix& a = *source.matrix();
    const auto width = static_cast<std::size_t>(a.index_bytes);
    tell(rows, a.rows, width);
    tell(columns, a.cols, width);
    tell(count, a.entries, width);
    tell(row_index, a.first, sizeof(void*));
    tell(column_index, a.index, sizeof(void*));
    tell(values, a.values, sizeof(void*));
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
        return export_lines(a, base, rows, columns, rows_start, rows_end, column_index, values,                        \
                            code(#letter[0], bytes, Format::csr));                                                     \
    }                                                                                                                  \
    ORK_EXPORT int64_t ork_sparse_##letter##_export_csc_i##bytes(ork_sparse_matrix_t a, ork_spblas_base* base,         \
                                                                 Int* rows, Int* columns, Int** columns_start,         \
                                                                 Int** columns_end, Int** row_index, Element** values) \
    {                                                                                                                  \
        return export_lines(a, base, rows, columns, columns_start, columns_end, row_index, values,                     \
                            code(#letter[0], bytes, Format::csc));                                                     \
    }                                                                                                                  \
    ORK_EXPORT int64_t ork_sparse_##letter##_export_coo_i##bytes(ork_sparse_matrix_t a, ork_spblas_base* base,         \
                                                                 Int* rows, Int* columns, Int* count, Int** row_index, \
                                                                 Int** column_index, Element** values)                 \
    {                                                                                                                  \
        return export_places(a, base, rows, columns, count, row_index, column_index, values,                           \
                             code(#letter[0], bytes, Format::coo));                                                    \
    }                                                                                                                  \
    ORK_EXPORT int64_t ork_sparse_##letter##_export_bsr_i##bytes(                                                      \
        ork_sparse_matrix_t a, ork_spblas_base* base, ork_spblas_layout* layout, Int* rows, Int* columns, Int* block,  \
        Int** rows_start, Int** rows_end, Int** column_index, Element** values)                                        \
    {                                                                                                                  \
        return export_blocks(a, base, layout, rows, columns, block, rows_start, rows_end, column_index, values,        \
                             code(#letter[0], bytes, Format::bsr));                                                    \
    }
#define MEMBER(letter, Element, Scalar)                                                                                \
    ORK_SPARSE_EXPORTS(letter, 4, int32_t, Element)                                                                    \
    ORK_SPARSE_EXPORTS(letter, 8, int64_t, Element)
ORK_SPARSE_PRECISIONS(MEMBER)
