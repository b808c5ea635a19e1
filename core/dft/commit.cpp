// SPDX-License-Identifier: MIT
// From parameters to a plan: what goes together is handed to the kernel library's commit.
#include <algorithm>

#include "dft/descriptor.h"
#include "dft/kernels.h"
#include "dft/threads.h"
#include "export.h"
#include "threads/pool.h"

namespace ork::dft {
namespace {

const char* side_name(Side side) { return side == input ? "INPUT" : "OUTPUT"; }

template <class... Values>
std::int64_t inconsistent(ork_dft_descriptor* descriptor, const char* format, Values... values)
{
    return fail(descriptor, ORK_DFT_INCONSISTENT_CONFIGURATION, format, values...);
}

// One side: every element has a place of its own that can be addressed, as far as that is seen without looking for
// common multiples of strides.
std::int64_t check_side(ork_dft_descriptor* descriptor, Side side)
{
    const Parameters& p = descriptor->parameters;
    std::int64_t strides[most_dimensions + 1];
    strides_of(p, side, strides);
    for (int d = 0; d < p.rank; ++d)
        if (strides[d + 1] == 0 && p.lengths[d] > 1)
            return inconsistent(descriptor, "ORK_DFT_%s_STRIDES[%d] = 0: of a dimension of more than one element",
                                side_name(side), d + 1);
    if (p.transforms > 1 && p.distance[side] == 0)
        return inconsistent(descriptor, "ORK_DFT_%s_DISTANCE = 0: of more than one transform", side_name(side));
    if (reach(p, side, most_numbers) < 0)
        return inconsistent(descriptor, "ORK_DFT_%s_STRIDES, ORK_DFT_%s_DISTANCE: reach 2^57 elements or more",
                            side_name(side), side_name(side));
    return ORK_DFT_NO_ERROR;
}

// Real data in place: what is beside dimension 0 has to be at the same place on both sides.
std::int64_t check_real_in_place(ork_dft_descriptor* descriptor)
{
    const Parameters& p = descriptor->parameters;
    std::int64_t real[most_dimensions + 1], half[most_dimensions + 1];
    strides_of(p, input, real);
    strides_of(p, output, half);
    const std::int64_t unit = p.packed() ? 1 : 2; // real numbers of an element of the output
    for (int i = 0; i <= p.rank; ++i) {
        if (i == 1 || (i > 1 && p.lengths[i - 1] == 1) || real[i] == unit * half[i]) continue;
        return inconsistent(descriptor,
                            "ORK_DFT_INPUT_STRIDES[%d] = %lld: in place %d times ORK_DFT_OUTPUT_STRIDES = %lld", i,
                            static_cast<long long>(real[i]), static_cast<int>(unit), static_cast<long long>(half[i]));
    }
    if (p.transforms > 1 && p.distance[input] != unit * p.distance[output])
        return inconsistent(descriptor,
                            "ORK_DFT_INPUT_DISTANCE = %lld: in place %d times ORK_DFT_OUTPUT_DISTANCE = %lld",
                            static_cast<long long>(p.distance[input]), static_cast<int>(unit),
                            static_cast<long long>(p.distance[output]));
    return ORK_DFT_NO_ERROR;
}

std::int64_t check(ork_dft_descriptor* descriptor)
{
    const Parameters& p = descriptor->parameters;
    if (p.packed() && p.packed_format == ORK_DFT_CCE)
        return inconsistent(descriptor, "ORK_DFT_PACKED_FORMAT = 57: with ORK_DFT_CONJUGATE_EVEN_STORAGE = 40");
    if (p.packed() && p.rank > 2)
        return fail(descriptor, ORK_DFT_UNIMPLEMENTED, "ORK_DFT_CONJUGATE_EVEN_STORAGE = 40: of ORK_DFT_DIMENSION = %d",
                    static_cast<int>(p.rank));
    if (const std::int64_t status = check_side(descriptor, input)) return status;
    if (p.in_place() && !p.real()) return ORK_DFT_NO_ERROR; // has no output side
    if (const std::int64_t status = check_side(descriptor, output)) return status;
    if (p.in_place()) return check_real_in_place(descriptor);
    return ORK_DFT_NO_ERROR;
}

void fill(ork_dft_node& node, const Parameters& p)
{
    std::int64_t in[most_dimensions + 1], out[most_dimensions + 1];
    strides_of(p, input, in);
    strides_of(p, p.in_place() && !p.real() ? input : output, out);
    node.placement = static_cast<std::int32_t>(p.placement);
    node.storage.complex_storage = static_cast<std::int32_t>(p.complex_storage);
    node.storage.conjugate_even_storage = static_cast<std::int32_t>(p.conjugate_even_storage);
    node.packed_format = static_cast<std::int32_t>(p.packed_format);
    node.workspace = static_cast<std::int32_t>(p.workspace);
    node.transforms = p.transforms;
    node.input_distance = p.distance[input];
    node.output_distance = p.in_place() && !p.real() ? p.distance[input] : p.distance[output];
    node.input_offset = in[0];
    node.output_offset = out[0];
    for (int d = 0; d < p.rank; ++d) {
        node.dimensions[d].input_stride = in[d + 1];
        node.dimensions[d].output_stride = out[d + 1];
    }
    node.scales.forward = p.scale[forward];
    node.scales.backward = p.scale[backward];
    node.scales.forward_single = static_cast<float>(p.scale[forward]);
    node.scales.backward_single = static_cast<float>(p.scale[backward]);
    node.thread_limit = static_cast<std::int32_t>(p.thread_limit);
    node.threads = p.thread_limit > 0 ? std::min(static_cast<int>(p.thread_limit), threads::limit()) : threads::limit();
}

std::int32_t plan(ork_dft_node* node, const Parameters& p)
{
    using namespace kernels;
    const bool one = p.rank == 1;
    if (p.precision == ORK_DFT_SINGLE) {
        if (p.real()) return (one ? commit_descriptor_core_s_r2c_1d : commit_descriptor_core_s_r2c_md)(node);
        return (one ? commit_descriptor_core_s_c2c_1d : commit_descriptor_core_s_c2c_md)(node);
    }
    if (p.real()) return (one ? commit_descriptor_core_d_r2c_1d : commit_descriptor_core_d_r2c_md)(node);
    return (one ? commit_descriptor_core_d_c2c_1d : commit_descriptor_core_d_c2c_md)(node);
}

} // namespace

std::int64_t status_of_kernel(std::int32_t status)
{
    switch (status) {
    case ORK_DFT_OK:
    case ORK_DFT_NO_MEMORY:
    case ORK_DFT_UNSUPPORTED:
        return status; // the class of the same number
    default:
        return ORK_DFT_INTERNAL_ERROR;
    }
}

} // namespace ork::dft

using namespace ork::dft;

ORK_EXPORT int64_t ork_dft_commit_descriptor(ork_dft_descriptor* handle)
{
    if (!alive(handle)) return ORK_DFT_BAD_DESCRIPTOR;
    if (handle->committed()) return ORK_DFT_NO_ERROR;
    if (const int64_t status = check(handle)) return status;
    const Parameters& p = handle->parameters;
    fill(*handle->node, p);
    if (const int64_t status = status_of_kernel(plan(handle->node, p)))
        return fail(handle, status, "%s, at the commit", ork_dft_error_message(status));
    handle->useful_threads = useful_threads(p, *handle->node);
    handle->state = ork_dft_descriptor::alive + static_cast<std::uint64_t>(p.form());
    return ORK_DFT_NO_ERROR;
}

ORK_EXPORT int64_t ork_dft_dfticommitdescriptor(ork_dft_descriptor* handle)
{
    return ork_dft_commit_descriptor(handle);
}

// The thread count is the head's already; what is left is to plan.
#define COMMIT(kind)                                                                                                   \
    ORK_EXPORT int32_t ork_dft_commit_node_##kind##_omp(ork_dft_node* node) { return kernels::plan_node(node); }
COMMIT(s_c2c_1d)
COMMIT(s_c2c_md)
COMMIT(s_r2c_1d)
COMMIT(s_r2c_md)
COMMIT(d_c2c_1d)
COMMIT(d_c2c_md)
COMMIT(d_r2c_1d)
COMMIT(d_r2c_md)
