// SPDX-License-Identifier: MIT
#include "conv/fft/plan.h"

#include <new>

#include "conv/fft/fft.h"
#include "frame/core_imports.h"
#include "ork/conv.h"

namespace ork::conv {
namespace {

// No memory holds a tile of so many pairs of numbers.
constexpr Int too_many_pairs = Int{1} << 44;
// What columns of a group take at most, so that they stay in the first caches, and at least: a cache line each.
constexpr Int group_bytes = 64 << 10;

std::int64_t create(ork_dft_descriptor** handle, bool is_double, std::int64_t domain, Int n)
{
    return is_double ? ork_dft_dfticreatedescriptor_d_1d(handle, domain, n)
                     : ork_dft_dfticreatedescriptor_s_1d(handle, domain, n);
}

// Every failure is one of memory: the configurations are all legal.
bool commit(ork_dft_descriptor** handle, std::int64_t status)
{
    if (status == 0) status = ork_dft_dfticommitdescriptor(*handle);
    return status == 0;
}

bool create_columns(ork_dft_descriptor** handle, bool is_double, Int n, Int pitch, Int count)
{
    std::int64_t status = create(handle, is_double, ORK_DFT_COMPLEX, n);
    if (status != 0) return false;
    const std::int64_t strides[] = {0, pitch};
    status = ork_dft_dftisetvalue(*handle, ORK_DFT_INPUT_STRIDES, strides);
    if (status == 0) status = ork_dft_dftisetvalue(*handle, ORK_DFT_NUMBER_OF_TRANSFORMS, count);
    if (status == 0) status = ork_dft_dftisetvalue(*handle, ORK_DFT_INPUT_DISTANCE, Int{1});
    return commit(handle, status);
}

void lay_out(TransformPlan& plan)
{
    const Shape& shape = plan.shape;
    const Int in_line = shape.is_double ? 4 : 8; // pairs of a cache line
    plan.pitch[0] = 1, plan.pairs = shape.line();
    for (int k = 1; k < shape.rank; ++k) {
        const Axis& axis = shape.axis[k];
        const Int lines = (plan.pairs - 1) / in_line + 1, pair_bytes = shape.is_double ? 16 : 8;
        Columns& columns = plan.columns[k];
        columns.width = plan.pairs;
        columns.group = group_bytes / times(axis.n, pair_bytes) / in_line * in_line;
        if (columns.group < in_line) columns.group = in_line;
        if (columns.group > columns.width) columns.group = columns.width;
        plan.pitch[k] = times(lines + (lines > 4 && lines % 2 == 0), in_line);
        plan.pairs = times(plan.pitch[k], axis.n);
    }
}

bool create_descriptors(TransformPlan& plan)
{
    const Shape& shape = plan.shape;
    const std::int64_t domain = shape.is_complex ? ORK_DFT_COMPLEX : ORK_DFT_REAL;
    if (!commit(&plan.line, create(&plan.line, shape.is_double, domain, shape.axis[0].n))) return false;
    for (int k = 1; k < shape.rank; ++k) {
        Columns& columns = plan.columns[k];
        const Int n = shape.axis[k].n, rest = columns.width % columns.group;
        if (!create_columns(&columns.whole, shape.is_double, n, plan.pitch[k], columns.group)) return false;
        if (rest != 0 && !create_columns(&columns.rest, shape.is_double, n, plan.pitch[k], rest)) return false;
    }
    return true;
}

void release(ork_dft_descriptor** handle)
{
    if (*handle != nullptr) ork_dft_dftifreedescriptor(handle);
}

} // namespace

int make_plan(const Problem& problem, TransformPlan** made)
{
    void* memory = ork_serv_malloc(sizeof(TransformPlan), 64);
    if (memory == nullptr) return ORK_CONV_NO_WORK_MEMORY;
    auto* plan = new (memory) TransformPlan{};
    double seconds;
    plan->shape = choose_shape(problem, &seconds);
    lay_out(*plan);
    if (plan->pairs > too_many_pairs || !create_descriptors(*plan)) {
        free_plan(plan);
        return ORK_CONV_NO_WORK_MEMORY;
    }
    *made = plan;
    return ORK_CONV_OK;
}

void free_plan(TransformPlan* plan)
{
    if (plan == nullptr) return;
    release(&plan->line);
    for (Columns& columns : plan->columns) release(&columns.whole), release(&columns.rest);
    ork_serv_free(plan);
}

Memory::Memory(Int bytes)
    : data_(bytes >= too_many_pairs ? nullptr
                                    : static_cast<char*>(ork_serv_allocate(static_cast<std::size_t>(bytes), 64)))
{
}
Memory::~Memory()
{
    if (data_ != nullptr) ork_serv_deallocate(data_);
}

} // namespace ork::conv
