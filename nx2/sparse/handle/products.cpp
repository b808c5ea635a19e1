// SPDX-License-Identifier: MIT
// Products of records whose precision is known when they come.
#include "frame/core_imports.h"
#include "sparse/handle/exports.h"
#include "sparse/record.h"

namespace ork::sparse {
namespace {

using Allocate = std::int64_t(const Factors*, Matrix**);
using Multiply = std::int64_t(const Team*, const Factors*, std::int32_t, Matrix*);

} // namespace

#define SYMBOL(letter, stem) ORK_SPARSE_HANDLE_SYMBOL(letter##_##stem, ORK_SPARSE_SUFFIX)
ORK_EXPORT Allocate SYMBOL(s, do_sp2m_allocate_C_handle), SYMBOL(d, do_sp2m_allocate_C_handle),
    SYMBOL(c, do_sp2m_allocate_C_handle), SYMBOL(z, do_sp2m_allocate_C_handle);
ORK_EXPORT Multiply SYMBOL(s, do_sp2m), SYMBOL(d, do_sp2m), SYMBOL(c, do_sp2m), SYMBOL(z, do_sp2m);

namespace {

std::int64_t allocate(const Factors& f, Matrix** c)
{
    switch (f.a->precision) {
    case 's':
        return SYMBOL(s, do_sp2m_allocate_C_handle)(&f, c);
    case 'd':
        return SYMBOL(d, do_sp2m_allocate_C_handle)(&f, c);
    case 'c':
        return SYMBOL(c, do_sp2m_allocate_C_handle)(&f, c);
    default:
        return SYMBOL(z, do_sp2m_allocate_C_handle)(&f, c);
    }
}

std::int64_t multiply(const Team* team, const Factors& f, std::int32_t steps, Matrix* c)
{
    switch (f.a->precision) {
    case 's':
        return SYMBOL(s, do_sp2m)(team, &f, steps, c);
    case 'd':
        return SYMBOL(d, do_sp2m)(team, &f, steps, c);
    case 'c':
        return SYMBOL(c, do_sp2m)(team, &f, steps, c);
    default:
        return SYMBOL(z, do_sp2m)(team, &f, steps, c);
    }
}

std::int64_t run(const Team* team, const Factors& f, std::int32_t steps, Matrix** c)
{
    if (*c != nullptr) return multiply(team, f, steps, *c);
    Matrix* made = nullptr;
    if (const auto status = allocate(f, &made)) return status;
    if (const auto status = multiply(team, f, steps, made)) {
        release_record(made);
        return status;
    }
    *c = made;
    return product_done;
}

constexpr std::int32_t all_steps = product_counts | product_pattern | product_values;

} // namespace

ORK_SPARSE_HANDLE_EXPORT(ProductHandleCalls, std::int64_t, sp2m)
(const Team* team, std::int32_t op_a, const Matrix* a, std::int32_t op_b, const Matrix* b, std::int32_t steps,
 Matrix** c)
{
    return run(team, {.form = ProductForm::product, .op_a = op_a, .op_b = op_b, .a = a, .b = b}, steps, c);
}

ORK_SPARSE_HANDLE_EXPORT(ProductHandleCalls, std::int64_t, spmm)
(const Team* team, std::int32_t op_a, const Matrix* a, const Matrix* b, Matrix** c)
{
    return run(team, {.form = ProductForm::product, .op_a = op_a, .a = a, .b = b}, all_steps, c);
}

ORK_SPARSE_HANDLE_EXPORT(ProductHandleCalls, std::int64_t, syrk)
(const Team* team, std::int32_t op_a, const Matrix* a, Matrix** c)
{
    return run(team, {.form = ProductForm::square, .op_a = op_a, .a = a}, all_steps, c);
}

ORK_SPARSE_HANDLE_EXPORT(ProductHandleCalls, std::int64_t, sypr)
(const Team* team, std::int32_t op_a, const Matrix* a, const Matrix* b, std::int32_t upper_b, std::int32_t symmetric_b,
 std::int32_t steps, Matrix** c)
{
    return run(
        team,
        {.form = ProductForm::triple, .op_a = op_a, .upper_b = upper_b, .symmetric_b = symmetric_b, .a = a, .b = b},
        steps, c);
}

} // namespace ork::sparse
