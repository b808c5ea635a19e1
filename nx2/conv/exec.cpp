// SPDX-License-Identifier: MIT
// Runs of a task: checks in their order, the method, the kernel.
#include <atomic>
#include <cstdint>

#include "conv/direct/direct.h"
#include "conv/fft/fft.h"
#include "conv/task.h"
#include "frame/export.h"

namespace ork::conv {
namespace {

// From these extents of x on a line is transformed in one piece, as grids are.
constexpr Int long_double_line = 33554432, long_single_line = 67108864;

struct Data {
    const void* x;
    const std::int32_t* x_stride;
    const void* y;
    const std::int32_t* y_stride;
    void* z;
    const std::int32_t* z_stride;
};

// What no kernel is for. A line's kernels refuse to compute double numbers in single precision; a grid's do it in
// double.
bool supported(const ork_conv_task& task)
{
    const auto known = [](std::int32_t precision) {
        return precision == ORK_CONV_SINGLE || precision == ORK_CONV_DOUBLE;
    };
    if (task.job != ORK_CONV_CONVOLUTION && task.job != ORK_CONV_CORRELATION) return false;
    if (!known(task.precision) || !known(task.internal_precision)) return false;
    if (task.dims < 1 || task.dims > max_dims) return false;
    const bool is_long =
        task.mode == ORK_CONV_FFT && task.precision == ORK_CONV_DOUBLE && task.xshape[0] > long_double_line;
    return task.dims > 1 || is_long || task.precision == ORK_CONV_SINGLE || task.internal_precision == ORK_CONV_DOUBLE;
}

std::int32_t check_data(const ork_conv_task& task, const Data& data)
{
    const auto empty = [&](const std::int32_t* shape) {
        for (int d = 0; d < task.dims; ++d)
            if (shape[d] < 1) return true;
        return false;
    };
    if (data.x == nullptr) return ORK_CONV_NULL_X;
    if (empty(task.xshape)) return ORK_CONV_BAD_X_SHAPE;
    if (data.y == nullptr) return ORK_CONV_NULL_Y;
    if (empty(task.yshape)) return ORK_CONV_BAD_Y_SHAPE;
    if (data.z == nullptr) return ORK_CONV_NULL_Z;
    if (empty(task.zshape)) return ORK_CONV_BAD_Z_SHAPE;
    for (int d = 0; data.z_stride != nullptr && d < task.dims; ++d)
        if (data.z_stride[d] == 0) return ORK_CONV_BAD_Z_STRIDE;
    return ORK_CONV_OK;
}

std::int32_t check_outputs(const Problem& problem)
{
    for (int d = 0; d < problem.dims; ++d) {
        const Dimension& n = problem.dimension[d];
        if (n.first < 0 || n.first > n.x + n.y - 2) return ORK_CONV_BAD_START;
    }
    for (int d = 0; d < problem.dims; ++d) {
        const Dimension& n = problem.dimension[d];
        if (n.step < 1 || (n.z - 1) * n.step + n.first > n.x + n.y - 2) return ORK_CONV_BAD_DECIMATION;
    }
    return ORK_CONV_OK;
}

Problem describe(const ork_conv_task& task, const Data& data)
{
    Problem problem; // dimensions beyond dims stay unset
    problem.dims = task.dims;
    problem.is_complex = task.domain == ORK_CONV_COMPLEX;
    problem.is_double = task.precision == ORK_CONV_DOUBLE;
    problem.computes_double = problem.is_double || task.internal_precision == ORK_CONV_DOUBLE;
    const bool correlates = task.job == ORK_CONV_CORRELATION;
    problem.conjugate_x = correlates && problem.is_complex;
    Int x_stride = 1, y_stride = 1, z_stride = 1;
    std::uintptr_t to_last = 0; // elements; it may wrap round where extents are such as no memory holds
    for (int d = 0; d < task.dims; ++d) {
        Dimension& n = problem.dimension[d];
        n = {.x = task.xshape[d],
             .y = task.yshape[d],
             .z = task.zshape[d],
             .x_stride = data.x_stride != nullptr ? data.x_stride[d] : x_stride,
             .y_stride = data.y_stride != nullptr ? data.y_stride[d] : y_stride,
             .z_stride = data.z_stride != nullptr ? data.z_stride[d] : z_stride,
             .first = task.start != nullptr ? task.start[d] + (correlates ? Int{task.xshape[d]} - 1 : 0) : 0,
             .step = task.decimation != nullptr ? task.decimation[d] : 1};
        x_stride = times(x_stride, n.x), y_stride = times(y_stride, n.y), z_stride = times(z_stride, n.z);
        if (correlates) {
            to_last += static_cast<std::uintptr_t>(n.x - 1) * static_cast<std::uintptr_t>(n.x_stride);
            n.x_stride = -n.x_stride;
        }
    }
    const std::uintptr_t bytes = (problem.is_double ? 8u : 4u) * (problem.is_complex ? 2u : 1u);
    problem.x = reinterpret_cast<const void*>(reinterpret_cast<std::uintptr_t>(data.x) + to_last * bytes);
    problem.y = data.y, problem.z = data.z;
    return problem;
}

bool transforms(const ork_conv_task& task, const Problem& problem)
{
    if (task.mode == ORK_CONV_DIRECT) return false;
    if (task.mode == ORK_CONV_FFT || task.dims > 1) return true;
    return cost_of_transforms(problem) < cost_of_sums(problem);
}

// What a task keeps is made by the run that needs it first. Should two runs be first, one's is taken.
template <class Kept, class Make, class Free>
int find_or_make(void*& field, Kept** found, Make make, Free free)
{
    std::atomic_ref<void*> slot(field);
    void* present = slot.load(std::memory_order_acquire);
    if (present == nullptr) {
        Kept* made = nullptr;
        if (const int status = make(&made); status != 0) return status;
        if (slot.compare_exchange_strong(present, made, std::memory_order_acq_rel))
            present = made;
        else
            free(made);
    }
    *found = static_cast<Kept*>(present);
    return 0;
}

int run_transforms(ork_conv_task& task, const Problem& problem, bool fixed_x)
{
    TransformPlan* plan;
    if (const int status = find_or_make(
            task.plan, &plan, [&](TransformPlan** made) { return make_plan(problem, made); }, free_plan);
        status != 0)
        return status;
    KeptOperand* kept = nullptr;
    if (fixed_x)
        if (const int status = find_or_make(
                task.kept, &kept, [&](KeptOperand** made) { return keep_x(*plan, problem, made); }, free_kept);
            status != 0)
            return status;
    return convolve(*plan, problem, kept);
}

std::int32_t run(ork_conv_task& task, const Data& data, bool fixed_x)
{
    if (!supported(task)) return ORK_CONV_UNSUPPORTED;
    if (const std::int32_t status = check_data(task, data); status != ORK_CONV_OK) return status;
    const Problem problem = describe(task, data);
    if (const std::int32_t status = check_outputs(problem); status != ORK_CONV_OK) return status;
    if (transforms(task, problem)) return run_transforms(task, problem, fixed_x);
    return sum_directly(problem);
}

std::int32_t run_committed(ork_conv_task& task, const Data& data, bool fixed_x)
{
    if (task.committed == 0) {
        if (task.status != ORK_CONV_OK) return task.status;
        task.committed = 1;
    }
    const std::int32_t result = run(task, data, fixed_x);
    // Runs of one task at once only read it as long as all goes well.
    std::atomic_ref<std::int32_t> status(task.status);
    if (status.load(std::memory_order_relaxed) != result) status.store(result, std::memory_order_relaxed);
    return result;
}

} // namespace
} // namespace ork::conv

using namespace ork::conv;

ORK_EXPORT std::int32_t ork_conv_nx2_exec(ork_conv_task* task, const void* x, const std::int32_t* xstride,
                                          const void* y, const std::int32_t* ystride, void* z,
                                          const std::int32_t* zstride)
{
    if (task == nullptr) return ORK_CONV_NULL;
    return run_committed(*task, {x, xstride, y, ystride, z, zstride}, false);
}

ORK_EXPORT std::int32_t ork_conv_nx2_execx(ork_conv_task* task, const void* y, const std::int32_t* ystride, void* z,
                                           const std::int32_t* zstride)
{
    if (task == nullptr) return ORK_CONV_NULL;
    const void* x = reinterpret_cast<const void*>(static_cast<std::uintptr_t>(task->extra));
    return run_committed(*task, {x, task->optional, y, ystride, z, zstride}, true);
}

ORK_EXPORT std::int32_t ork_conv_nx2_method(const ork_conv_task* task)
{
    if (task == nullptr) return ORK_CONV_NULL;
    const char somewhere = 0;
    char elsewhere;
    const Data data{&somewhere, nullptr, &somewhere, nullptr, &elsewhere, nullptr};
    if (!supported(*task) || check_data(*task, data) != ORK_CONV_OK) return ORK_CONV_DIRECT;
    const Problem problem = describe(*task, data);
    if (check_outputs(problem) != ORK_CONV_OK) return ORK_CONV_DIRECT;
    return cost_of_transforms(problem) < cost_of_sums(problem) ? ORK_CONV_FFT : ORK_CONV_DIRECT;
}
