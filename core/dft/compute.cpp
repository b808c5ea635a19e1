// SPDX-License-Identifier: MIT
// Computation. Applications call it millions of times on short vectors, so what is in order goes to the node at once
// after one look at the descriptor's state, and what is not is sorted out elsewhere.
#include <cstdarg>

#include "dft/descriptor.h"
#include "dft/threads.h"
#include "export.h"

namespace ork::dft {
namespace {

[[gnu::cold, gnu::noinline]] std::int64_t refuse(const ork_dft_descriptor* handle)
{
    return alive(handle) && handle->committed() ? ORK_DFT_INCONSISTENT_CONFIGURATION : ORK_DFT_BAD_DESCRIPTOR;
}

[[gnu::noinline]] std::int64_t compute_on_threads(const ork_dft_descriptor* handle, Direction direction,
                                                  void* const* arrays)
{
    return status_of_kernel(compute(handle->node, direction, arrays, handle->useful_threads));
}

[[gnu::always_inline]] inline std::int64_t compute_checked(const ork_dft_descriptor* handle, Direction direction,
                                                           void* const* arrays)
{
    if (handle->useful_threads > 1) return compute_on_threads(handle, direction, arrays);
    ork_dft_node* node = handle->node;
    const std::int32_t status = (direction == forward ? node->forward : node->backward)(node, arrays);
    if (status == ORK_DFT_OK) return ORK_DFT_NO_ERROR;
    return status_of_kernel(status);
}

template <class... Pointers>
[[gnu::always_inline]] inline std::int64_t compute(const ork_dft_descriptor* handle, Direction direction, Form form,
                                                   Pointers... pointers)
{
    if (handle == nullptr || handle->state != ork_dft_descriptor::alive + form) [[unlikely]]
        return refuse(handle);
    if (((pointers == nullptr) || ...)) [[unlikely]]
        return ORK_DFT_INVALID_CONFIGURATION;
    void* const arrays[] = {const_cast<void*>(static_cast<const void*>(pointers))...};
    return compute_checked(handle, direction, arrays);
}

std::int64_t compute_any(const ork_dft_descriptor* handle, Direction direction, void* first, std::va_list others)
{
    if (!alive(handle) || !handle->committed()) return ORK_DFT_BAD_DESCRIPTOR;
    constexpr int counts[] = {0, 1, 2, 2, 4};
    const int count = counts[handle->parameters.form()];
    void* arrays[4] = {first};
    for (int i = 1; i < count; ++i) arrays[i] = va_arg(others, void*);
    for (int i = 0; i < count; ++i)
        if (arrays[i] == nullptr) return ORK_DFT_INVALID_CONFIGURATION;
    return compute_checked(handle, direction, arrays);
}

} // namespace
} // namespace ork::dft

using namespace ork::dft;

#define COMPUTE(direction)                                                                                             \
    ORK_EXPORT int64_t ork_dft_##direction(const ork_dft_descriptor* handle, void* inout)                              \
    {                                                                                                                  \
        return compute(handle, direction, one_array, inout);                                                           \
    }                                                                                                                  \
    ORK_EXPORT int64_t ork_dft_##direction##_out(const ork_dft_descriptor* handle, const void* in, void* out)          \
    {                                                                                                                  \
        return compute(handle, direction, in_and_out, in, out);                                                        \
    }                                                                                                                  \
    ORK_EXPORT int64_t ork_dft_##direction##_split(const ork_dft_descriptor* handle, void* re, void* im)               \
    {                                                                                                                  \
        return compute(handle, direction, two_parts, re, im);                                                          \
    }                                                                                                                  \
    ORK_EXPORT int64_t ork_dft_##direction##_split_out(const ork_dft_descriptor* handle, const void* re,               \
                                                       const void* im, void* out_re, void* out_im)                     \
    {                                                                                                                  \
        return compute(handle, direction, two_parts_in_and_out, re, im, out_re, out_im);                               \
    }
COMPUTE(forward)
COMPUTE(backward)

#define COMPUTE_ANY(name, direction)                                                                                   \
    ORK_EXPORT int64_t ork_dft_##name(const ork_dft_descriptor* handle, void* inout, ...)                              \
    {                                                                                                                  \
        const bool alone = handle != nullptr && handle->state == ork_dft_descriptor::alive + one_array;                \
        if (alone && inout != nullptr) return compute_checked(handle, direction, &inout);                              \
        std::va_list others;                                                                                           \
        va_start(others, inout);                                                                                       \
        const int64_t status = compute_any(handle, direction, inout, others);                                          \
        va_end(others);                                                                                                \
        return status;                                                                                                 \
    }
COMPUTE_ANY(compute_forward, forward)
COMPUTE_ANY(compute_backward, backward)
COMPUTE_ANY(dfticomputeforward, forward)
COMPUTE_ANY(dfticomputebackward, backward)
