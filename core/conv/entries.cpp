// SPDX-License-Identifier: MIT
// The public routines of tasks: kernels do the work, the method is chosen here when it was left open.
#include "conv/kernels.h"
#include "export.h"
#include "ork/conv.h"

namespace ork::conv {
namespace {

std::int32_t created(std::int32_t status, ork_conv_task** task, std::int32_t mode)
{
    if (status == ORK_CONV_OK) (*task)->automatic = mode == ORK_CONV_AUTO;
    return status;
}

// Before the first run after a creation or an edit, which no other run may accompany.
void choose_method(ork_conv_task* task)
{
    if (task == nullptr || task->automatic == 0 || task->committed != 0 || task->status != ORK_CONV_OK) return;
    task->mode = kernels::method(task);
}

} // namespace
} // namespace ork::conv

using namespace ork::conv;

ORK_EXPORT int32_t ork_conv_newtask(ork_conv_task** task, int32_t job, int32_t code, int32_t mode, int32_t domain,
                                    int32_t precision, int32_t dims, const int32_t* xshape, const int32_t* yshape,
                                    const int32_t* zshape)
{
    return created(kernels::newtask(task, job, code, mode, domain, precision, dims, xshape, yshape, zshape), task,
                   mode);
}

ORK_EXPORT int32_t ork_conv_newtaskx(ork_conv_task** task, int32_t job, int32_t code, int32_t mode, int32_t domain,
                                     int32_t precision, int32_t dims, const int32_t* xshape, const int32_t* yshape,
                                     const int32_t* zshape, const void* x, const int32_t* xstride)
{
    return created(kernels::newtaskx(task, job, code, mode, domain, precision, dims, xshape, yshape, zshape,
                                     static_cast<int64_t>(reinterpret_cast<uintptr_t>(x)), xstride),
                   task, mode);
}

ORK_EXPORT int32_t ork_conv_edittask(ork_conv_task* task, int32_t parameter, const int32_t* value)
{
    const int32_t status = kernels::edittask(task, parameter, value);
    if (status == ORK_CONV_OK && parameter == ORK_CONV_MODE) task->automatic = *value == ORK_CONV_AUTO;
    return status;
}

ORK_EXPORT int32_t ork_conv_exec(ork_conv_task* task, const void* x, const int32_t* xstride, const void* y,
                                 const int32_t* ystride, void* z, const int32_t* zstride)
{
    choose_method(task);
    return kernels::exec(task, x, xstride, y, ystride, z, zstride);
}

ORK_EXPORT int32_t ork_conv_execx(ork_conv_task* task, const void* y, const int32_t* ystride, void* z,
                                  const int32_t* zstride)
{
    choose_method(task);
    return kernels::execx(task, y, ystride, z, zstride);
}

ORK_EXPORT int32_t ork_conv_copytask(ork_conv_task** copy, const ork_conv_task* task)
{
    return kernels::copytask(copy, task);
}

ORK_EXPORT int32_t ork_conv_deletetask(ork_conv_task** task) { return kernels::deletetask(task); }
