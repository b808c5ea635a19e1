// SPDX-License-Identifier: MIT
// New handles on the caller's arrays. The structure is always looked at: what a kernel would read outside of its arrays
// is refused here, once, and with its place.
#include "export.h"
#include "sparse/environment.h"
#include "sparse/handle.h"
#include "sparse/kernels.h"
#include "sparse/sized.h"

namespace ork::sparse {
namespace {

constinit Kernels<8> create_csr("create_csr"), create_csc("create_csc"), create_coo("create_coo"),
    create_bsr("create_bsr");
constinit Kernels<2> get_error_info("get_error_info");

// Arrays of the caller are written by what the header says writes them, and by nothing else.
struct Arrays {
    const void *first, *last, *index, *values; // coo: rows, null, columns, values
};
struct Sizes {
    std::int64_t rows, cols, entries, block;
};

// What the arrays of a format are called.
struct Names {
    const char *first, *last, *index, *line, *others;
};
constexpr Names names[] = {{"rows_start", "rows_end", "column_index", "row", "columns"},
                           {"columns_start", "columns_end", "row_index", "column", "rows"},
                           {"row_index", "", "column_index", "row", "columns"},
                           {"rows_start", "rows_end", "column_index", "row", "columns"}};

std::int64_t tell(const Routine& r, const Names& n, const Fault& f)
{
    const bool first = f.array == Fault::Array::first;
    const Place place = {first                           ? n.first
                         : f.array == Fault::Array::last ? n.last
                                                         : n.index,
                         f.position, f.value, n.line, f.row};
    const auto least = static_cast<long long>(f.least), most = static_cast<long long>(f.most);
    switch (f.rule) {
    case Fault::Rule::below_base:
        return wrong_structure(r, place, "less than the base, %lld", least);
    case Fault::Rule::overlap:
        return wrong_structure(r, place, "before the end of the %s before, %lld", n.line, least);
    case Fault::Rule::backwards:
        return wrong_structure(r, place, "less than its begin, %lld", least);
    default:
        return wrong_structure(r, place, "%s run from %lld to %lld", first ? "rows" : n.others, least, most);
    }
}

void check_block(Checks& check, const Sizes& sizes)
{
    check.at_least("block", sizes.block, 1);
    if (check.failed()) return;
    const std::int64_t larger = sizes.rows < sizes.cols ? sizes.cols : sizes.rows;
    const std::int64_t most = check.routine().index_bytes == 8 ? INT64_MAX : INT32_MAX;
    std::int64_t all, bytes;
    if (__builtin_mul_overflow(larger, sizes.block, &all) || all > most ||
        __builtin_mul_overflow(sizes.block, sizes.block, &bytes) || bytes > INT64_MAX / 16)
        check.fail(wrong_argument(check.routine(), "block", sizes.block,
                                  "the matrix has more rows or columns than integers of this width count"));
}

// A kernel's numbers are addresses here, so the signature for one precision serves all.
void make(const Routine& r, Format format, std::int64_t base, int layout, const Sizes& s, const Arrays& arrays,
          Matrix** result)
{
    using Creation = CreationCalls<std::int64_t, double>;
    using Indices = std::int64_t*;
    const auto first = static_cast<Indices>(const_cast<void*>(arrays.first)),
               last = static_cast<Indices>(const_cast<void*>(arrays.last)),
               index = static_cast<Indices>(const_cast<void*>(arrays.index));
    auto* const values = static_cast<double*>(const_cast<void*>(arrays.values));
    const Environment* const e = &environment();
    const char p = r.precision, bytes = r.index_bytes;
    switch (format) {
    case Format::csr:
        create_csr.get<Creation::create_csr>(p, bytes)(result, e, base, s.rows, s.cols, first, last, index, values);
        break;
    case Format::csc:
        create_csc.get<Creation::create_csc>(p, bytes)(result, e, base, s.rows, s.cols, first, last, index, values);
        break;
    case Format::coo:
        create_coo.get<Creation::create_coo>(p, bytes)(result, e, base, s.rows, s.cols, s.entries, first, index,
                                                       values);
        break;
    default:
        create_bsr.get<Creation::create_bsr>(p, bytes)(result, e, base, s.rows, s.cols, s.block,
                                                       layout == ORK_SPBLAS_COL_MAJOR, first, last, index, values);
        break;
    }
}

[[gnu::noinline]] std::int64_t create(const Routine& r, Format format, ork_sparse_matrix_t* result, int base,
                                      int layout, const Sizes& sizes, const Arrays& arrays)
{
    const Names& n = names[static_cast<int>(format)];
    const bool coo = format == Format::coo, blocks = format == Format::bsr;
    Checks check(r);
    check.given("a", result);
    if (!check.failed() && base != ORK_SPBLAS_BASE_0 && base != ORK_SPBLAS_BASE_1)
        check.fail(wrong_argument(r, "base", base, "bases are 0 and 1"));
    if (blocks) check.layout("layout", layout);
    check.at_least("rows", sizes.rows, 0);
    check.at_least("columns", sizes.cols, 0);
    if (blocks) check_block(check, sizes);
    if (coo) check.at_least("count", sizes.entries, 0);
    const bool lines = coo ? sizes.entries > 0 : (format == Format::csc ? sizes.cols : sizes.rows) > 0;
    check.given(n.first, arrays.first, lines);
    check.given(n.last, arrays.last, lines && !coo);
    check.given(n.index, arrays.index, lines && coo);
    if (check.failed()) return check.status();

    Matrix* a = nullptr;
    make(r, format, base, layout, sizes, arrays, &a);
    if (a == nullptr) return no_memory(r);
    Fault fault;
    if (get_error_info.get<HandleCalls<std::int64_t>::get_error_info>(0, r.index_bytes)(a, &fault) != 0)
        check.fail(tell(r, n, fault));
    check.given(n.index, arrays.index, a->entries > 0);
    check.given("values", arrays.values, a->entries > 0);
    if (check.failed()) {
        destroy(a);
        return check.status();
    }
    return publish(r, a, result);
}

Routine routine_of(unsigned code)
{
    static constexpr const char* functions[] = {"create_csr", "create_csc", "create_coo", "create_bsr"};
    static constexpr const char* arguments[] = {
        "a base rows columns rows_start rows_end column_index values",
        "a base rows columns columns_start columns_end row_index values",
        "a base rows columns count row_index column_index values",
        "a base layout rows columns block rows_start rows_end column_index values"};
    return sparse::routine_of(code, functions, arguments);
}

[[gnu::noinline]] std::int64_t create_lines(ork_sparse_matrix_t* a, int base, std::int64_t rows, std::int64_t columns,
                                            const void* first, const void* last, const void* index, const void* values,
                                            unsigned code)
{
    return create(routine_of(code), format_of(code), a, base, 0, {rows, columns, 0, 1}, {first, last, index, values});
}
[[gnu::noinline]] std::int64_t create_places(ork_sparse_matrix_t* a, int base, std::int64_t rows, std::int64_t columns,
                                             std::int64_t count, const void* row_index, const void* column_index,
                                             const void* values, unsigned code)
{
    return create(routine_of(code), Format::coo, a, base, 0, {rows, columns, count, 1},
                  {row_index, nullptr, column_index, values});
}
[[gnu::noinline]] std::int64_t create_blocks(ork_sparse_matrix_t* a, int base, int layout, std::int64_t rows,
                                             std::int64_t columns, std::int64_t block, const void* first,
                                             const void* last, const void* index, const void* values, unsigned code)
{
    return create(routine_of(code), Format::bsr, a, base, layout, {rows, columns, 0, block},
                  {first, last, index, values});
}

} // namespace
} // namespace ork::sparse

using namespace ork::sparse;

#define ORK_SPARSE_CREATION(letter, bytes, Int, Element)                                                               \
    ORK_EXPORT int64_t ork_sparse_##letter##_create_csr_i##bytes(                                                      \
        ork_sparse_matrix_t* a, ork_spblas_base base, Int rows, Int columns, const Int* rows_start,                    \
        const Int* rows_end, const Int* column_index, const Element* values)                                           \
    {                                                                                                                  \
        return create_lines(a, base, rows, columns, rows_start, rows_end, column_index, values,                        \
                            code(#letter[0], bytes, Format::csr));                                                     \
    }                                                                                                                  \
    ORK_EXPORT int64_t ork_sparse_##letter##_create_csc_i##bytes(                                                      \
        ork_sparse_matrix_t* a, ork_spblas_base base, Int rows, Int columns, const Int* columns_start,                 \
        const Int* columns_end, const Int* row_index, const Element* values)                                           \
    {                                                                                                                  \
        return create_lines(a, base, rows, columns, columns_start, columns_end, row_index, values,                     \
                            code(#letter[0], bytes, Format::csc));                                                     \
    }                                                                                                                  \
    ORK_EXPORT int64_t ork_sparse_##letter##_create_coo_i##bytes(                                                      \
        ork_sparse_matrix_t* a, ork_spblas_base base, Int rows, Int columns, Int count, const Int* row_index,          \
        const Int* column_index, const Element* values)                                                                \
    {                                                                                                                  \
        return create_places(a, base, rows, columns, count, row_index, column_index, values,                           \
                             code(#letter[0], bytes, Format::coo));                                                    \
    }                                                                                                                  \
    ORK_EXPORT int64_t ork_sparse_##letter##_create_bsr_i##bytes(                                                      \
        ork_sparse_matrix_t* a, ork_spblas_base base, ork_spblas_layout layout, Int rows, Int columns, Int block,      \
        const Int* rows_start, const Int* rows_end, const Int* column_index, const Element* values)                    \
    {                                                                                                                  \
        return create_blocks(a, base, layout, rows, columns, block, rows_start, rows_end, column_index, values,        \
                             code(#letter[0], bytes, Format::bsr));                                                    \
    }
#define MEMBER(letter, Element, Scalar)                                                                                \
    ORK_SPARSE_CREATION(letter, 4, int32_t, Element)                                                                   \
    ORK_SPARSE_CREATION(letter, 8, int64_t, Element)
ORK_SPARSE_PRECISIONS(MEMBER)
