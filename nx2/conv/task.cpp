// SPDX-License-Identifier: MIT
// Tasks from creation to release. Arrays are copied into the record.
#include <cstring>
#include <new>

#include "conv/fft/fft.h"
#include "conv/task.h"
#include "frame/core_imports.h"
#include "frame/export.h"

namespace ork::conv {
namespace {

constexpr std::int32_t fixed_parameters[] = {1, 2, 7, 8, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19};

ork_conv_task* allocate() { return static_cast<ork_conv_task*>(ork_serv_malloc(sizeof(ork_conv_task), 64)); }

// Copies as many numbers as a record holds; a task of other dimensions is refused when it is run.
void copy_shape(std::int32_t* to, const std::int32_t* from, std::int32_t dims)
{
    const std::int32_t count = dims < 0 ? 0 : dims > max_dims ? max_dims : dims;
    std::memcpy(to, from, static_cast<std::size_t>(count) * sizeof *to);
}

std::int32_t create(ork_conv_task** out, std::int32_t job, std::int32_t code, std::int32_t mode, std::int32_t domain,
                    std::int32_t precision, std::int32_t dims, const std::int32_t* xshape, const std::int32_t* yshape,
                    const std::int32_t* zshape, std::int64_t extra, const std::int32_t* optional)
{
    if (out == nullptr || xshape == nullptr || yshape == nullptr || zshape == nullptr) return ORK_CONV_NULL;
    void* memory = allocate();
    if (memory == nullptr) return ORK_CONV_NO_TASK_MEMORY;
    auto* task = new (memory) ork_conv_task{};
    task->job = job, task->code = code, task->mode = mode;
    task->domain = domain, task->precision = task->internal_precision = precision;
    task->dims = dims;
    const std::int32_t* given[] = {xshape, yshape, zshape, optional};
    std::int32_t** fields[] = {&task->xshape, &task->yshape, &task->zshape, &task->optional};
    for (int i = 0; i < 4; ++i)
        if (given[i] != nullptr) copy_shape(*fields[i] = task->shapes[i], given[i], dims);
    task->extra = extra;
    *out = task;
    return ORK_CONV_OK;
}

bool is_fixed(std::int32_t parameter)
{
    for (const std::int32_t fixed : fixed_parameters)
        if (fixed == parameter) return true;
    return false;
}

bool is_editable(std::int32_t parameter)
{
    return parameter == ORK_CONV_MODE || parameter == ORK_CONV_PARAMETER_4 || parameter == ORK_CONV_START ||
           parameter == ORK_CONV_DECIMATION || parameter == ORK_CONV_INTERNAL_PRECISION;
}

std::int32_t edit(ork_conv_task& task, std::int32_t parameter, const std::int32_t* value)
{
    if (value == nullptr) return is_fixed(parameter) || is_editable(parameter) ? ORK_CONV_BAD_EDIT : ORK_CONV_NULL;
    switch (parameter) {
    case ORK_CONV_MODE:
        task.mode = *value;
        return ORK_CONV_OK;
    case ORK_CONV_PARAMETER_4:
        task.parameter_4 = *value;
        return ORK_CONV_OK;
    case ORK_CONV_START:
        copy_shape(task.start = task.start_storage, value, task.dims);
        return ORK_CONV_OK;
    case ORK_CONV_DECIMATION:
        copy_shape(task.decimation = task.decimation_storage, value, task.dims);
        return ORK_CONV_OK;
    case ORK_CONV_INTERNAL_PRECISION:
        task.internal_precision = *value;
        return ORK_CONV_OK;
    default:
        return is_fixed(parameter) ? ORK_CONV_FIXED_PARAMETER : ORK_CONV_BAD_EDIT;
    }
}

void forget(ork_conv_task& task)
{
    free_kept(static_cast<KeptOperand*>(task.kept));
    free_plan(static_cast<TransformPlan*>(task.plan));
    task.kept = task.plan = nullptr;
}

} // namespace
} // namespace ork::conv

using namespace ork::conv;

ORK_EXPORT std::int32_t ork_conv_nx2_newtaskx(ork_conv_task** task, std::int32_t job, std::int32_t code,
                                              std::int32_t mode, std::int32_t domain, std::int32_t precision,
                                              std::int32_t dims, const std::int32_t* xshape, const std::int32_t* yshape,
                                              const std::int32_t* zshape, std::int64_t extra,
                                              const std::int32_t* optional)
{
    return create(task, job, code, mode, domain, precision, dims, xshape, yshape, zshape, extra, optional);
}

ORK_EXPORT std::int32_t ork_conv_nx2_newtask(ork_conv_task** task, std::int32_t job, std::int32_t code,
                                             std::int32_t mode, std::int32_t domain, std::int32_t precision,
                                             std::int32_t dims, const std::int32_t* xshape, const std::int32_t* yshape,
                                             const std::int32_t* zshape)
{
    return create(task, job, code, mode, domain, precision, dims, xshape, yshape, zshape, 0, nullptr);
}

ORK_EXPORT std::int32_t ork_conv_nx2_edittask(ork_conv_task* task, std::int32_t parameter, const std::int32_t* value)
{
    if (task == nullptr) return ORK_CONV_NULL;
    if (task->status != ORK_CONV_OK) return task->status;
    forget(*task);
    task->committed = 0;
    return task->status = edit(*task, parameter, value);
}

ORK_EXPORT std::int32_t ork_conv_nx2_copytask(ork_conv_task** copy, const ork_conv_task* task)
{
    if (copy == nullptr || task == nullptr) return ORK_CONV_NULL;
    ork_conv_task* made = allocate();
    if (made == nullptr) return ORK_CONV_NO_TASK_MEMORY;
    std::memcpy(made, task, sizeof *made);
    made->plan = made->kept = nullptr;
    std::int32_t** fields[] = {&made->xshape, &made->yshape, &made->zshape, &made->optional};
    for (int i = 0; i < 4; ++i)
        if (*fields[i] != nullptr) *fields[i] = made->shapes[i];
    if (made->start != nullptr) made->start = made->start_storage;
    if (made->decimation != nullptr) made->decimation = made->decimation_storage;
    *copy = made;
    return ORK_CONV_OK;
}

ORK_EXPORT std::int32_t ork_conv_nx2_deletetask(ork_conv_task** task)
{
    if (task == nullptr || *task == nullptr) return ORK_CONV_NULL;
    forget(**task);
    ork_serv_free(*task);
    *task = nullptr;
    return ORK_CONV_OK;
}
