// SPDX-License-Identifier: MIT
// New values in the arrays of a handle, and in what its analysis copied of them.
#include <cstring>

#include "export.h"
#include "sparse/analysis.h"
#include "sparse/handle.h"
#include "sparse/kernels.h"

namespace ork::sparse {
namespace {

constinit Kernels<8> kernel_set_value("set_value"), kernel_update_values("update_values");

void values_changed(const Matrix& a)
{
    a.divides = 0;
    if (Analysis* const analysis = analysis_of(a))
        for (Part* part : {&analysis->mv, &analysis->mm, &analysis->solve, &analysis->products})
            part->values_changed(a);
}

std::int64_t set_value(const Routine& r, ork_sparse_matrix_t handle, std::int64_t row, std::int64_t column,
                       const void* value)
{
    Checks check(r);
    Matrix* const a = check.handle("a", handle);
    check.at_least("row", row, a != nullptr ? a->base : 0);
    check.at_least("column", column, a != nullptr ? a->base : 0);
    check.given("value", value);
    if (!check.failed() && row - a->base >= rows_of(*a))
        check.fail(wrong_argument(r, "row", row, "the matrix has %lld rows", static_cast<long long>(rows_of(*a))));
    if (!check.failed() && column - a->base >= cols_of(*a))
        check.fail(
            wrong_argument(r, "column", column, "the matrix has %lld columns", static_cast<long long>(cols_of(*a))));
    if (check.failed()) return check.status();
    const int status = with_type(r.precision, [&](auto number) {
        using T = decltype(number);
        std::memcpy(&number, value, sizeof number);
        return kernel_set_value.get<typename CreationCalls<std::int64_t, T>::set_value>(*a)(a, row, column, number);
    });
    if (status != 0)
        return wrong_argument(r, "column", column, "in row %lld no entry is stored there", static_cast<long long>(row));
    values_changed(*a);
    return ORK_SPARSE_SUCCESS;
}

template <class Int>
std::int64_t update(const Routine& r, ork_sparse_matrix_t handle, Int count, const Int* row_index,
                    const Int* column_index, const void* values)
{
    Checks check(r);
    Matrix* const a = check.handle("a", handle);
    check.at_least("count", count, 0);
    check.given("row_index", row_index, column_index != nullptr);
    check.given("column_index", column_index, row_index != nullptr);
    check.given("values", values, count > 0);
    if (check.failed()) return check.status();
    if (count == 0) return ORK_SPARSE_SUCCESS;
    const std::int64_t numbers = a->entries * a->block * a->block;
    if (row_index == nullptr && count != numbers)
        return mismatch(r, "count", count, "the matrix has %lld values", static_cast<long long>(numbers));
    std::int64_t wrong = 0;
    using Kernel = int(Matrix*, Int, const Int*, const Int*, const void*, std::int64_t*);
    if (kernel_update_values.get<Kernel>(*a)(a, count, row_index, column_index, values, &wrong) != 0)
        return wrong_argument(r, "column_index", column_index[wrong],
                              "at %lld, with row %lld: no entry is stored there", static_cast<long long>(wrong),
                              static_cast<long long>(row_index[wrong]));
    values_changed(*a);
    return ORK_SPARSE_SUCCESS;
}

} // namespace
} // namespace ork::sparse

using namespace ork::sparse;

#define ORK_SPARSE_UPDATE(letter, bytes, Int, Element)                                                                 \
    ORK_EXPORT int64_t ork_sparse_##letter##_update_values_i##bytes(                                                   \
        ork_sparse_matrix_t a, Int count, const Int* row_index, const Int* column_index, const Element* values)        \
    {                                                                                                                  \
        return update<Int>({"update_values", "a count row_index column_index values", #letter[0], bytes}, a, count,    \
                           row_index, column_index, values);                                                           \
    }
#define MEMBER(letter, Element, Scalar)                                                                                \
    ORK_SPARSE_UPDATE(letter, 4, int32_t, Element)                                                                     \
    ORK_SPARSE_UPDATE(letter, 8, int64_t, Element)                                                                     \
    ORK_EXPORT int64_t ork_sparse_##letter##_set_value(ork_sparse_matrix_t a, int64_t row, int64_t column,             \
                                                       Scalar value)                                                   \
    {                                                                                                                  \
        return set_value({"set_value", "a row column value", #letter[0]}, a, row, column, address(value));             \
    }
ORK_SPARSE_PRECISIONS(MEMBER)
