// SPDX-License-Identifier: MIT
// The commit: plans for every dimension, stages for threads, and the entries that compute.
#include "dft/lengths/table.h"
#include "dft/node/batched.h"
#include "dft/node/node.h"
#include "frame/export.h"

namespace ork::dft {
namespace {

// Whether the node is of the entry's kind.
template <class R>
std::int32_t check_setup(const ork_dft_node& head, std::int32_t domain, std::int64_t /*dispatch*/)
{
    return head.domain.precision == precision_code<R> && head.domain.domain == domain ? ORK_DFT_OK
                                                                                      : ORK_DFT_INCONSISTENT;
}

// What every dimension has from the head. Lengths and strides come from the head's array.
void copy_from_head(const ork_dft_node& head, ork_dft_node& node, std::int64_t index)
{
    const ork_dft_dimension& dimension = head.dimensions[index];
    node.index = index;
    node.length = dimension.length;
    node.stride[0] = dimension.input_stride, node.stride[1] = dimension.output_stride;
    if (&node == &head) return;
    node.rank = head.rank;
    node.size = head.size;
    node.scales = head.scales;
    node.domain = head.domain;
    node.option = head.option;
    node.placement = head.placement;
    node.packed_format = head.packed_format;
    node.transforms = head.transforms;
    node.storage = head.storage;
    node.workspace = head.workspace;
    node.threads = head.threads;
    node.settings = head.settings;
}

ork_dft_facts facts_of(const ork_dft_node& head, const ork_dft_node& node)
{
    ork_dft_facts facts{};
    facts.index = node.index, facts.length = node.length;
    facts.stride[0] = node.stride[0], facts.stride[1] = node.stride[1];
    // In place there is no second stride to look at.
    facts.head_stride[0] = head.stride[0], facts.head_stride[1] = in_place(head) ? head.stride[0] : head.stride[1];
    facts.size = head.size;
    facts.transforms = head.transforms;
    facts.rank = head.rank, facts.placement = head.placement, facts.workspace = head.workspace;
    facts.complex_storage = split(head) ? ORK_DFT_REAL_REAL : ORK_DFT_COMPLEX_COMPLEX;
    facts.alternative = alternative(head);
    // One dimension of real data is no vector of complex ones.
    facts.four_step_refused = head.domain.domain != ORK_DFT_COMPLEX;
    return facts;
}

void set_kernels(ork_dft_node& node, ork_dft_kernel* const (&pair)[2])
{
    node.forward_kernel = pair[0], node.backward_kernel = pair[1];
}

// The general planner. Equal lengths share a plan, which the first of them owns.
template <class R>
std::int32_t make_general(ork_dft_node& head, ork_dft_node& node)
{
    for (ork_dft_node* other = &head; other != &node; other = other->next)
        if (other->length == node.length && other->plan != nullptr && other->engine != ORK_DFT_ENGINE_REAL &&
            other->engine != ORK_DFT_ENGINE_SMALL_REAL && other->engine != ORK_DFT_ENGINE_FOUR_STEP) {
            node.plan = other->plan;
            node.flags |= ORK_DFT_FLAG_BORROWED;
        }
    if (node.plan == nullptr) {
        Plan<R>* plan = nullptr;
        const bool one = head.rank == 1 && head.transforms == 1 && head.stride[0] == 1 &&
                         (in_place(head) || head.stride[1] == 1) && !split(head);
        if (make_plan<R>(node.length, &plan, !one) != 0) return ORK_DFT_NO_MEMORY;
        node.plan = plan;
    }
    node.workspace_bytes = static_cast<std::int64_t>(work_bytes(plan_of<R>(node.plan), head.transforms));
    const bool very_length = node.length <= longest_kernel && node.engine != ORK_DFT_ENGINE_SPLIT;
    node.general = node.engine == ORK_DFT_ENGINE_LENGTH ? 0 : 1;
    if (node.engine == ORK_DFT_ENGINE_SPLIT) {
        set_kernels(node, Kernels<R>::split);
    } else if (very_length) {
        node.forward_kernel = LengthKernels<R>::forward[node.length];
        node.backward_kernel = LengthKernels<R>::backward[node.length];
        node.flags |= ORK_DFT_FLAG_UNSCALED;
    } else {
        set_kernels(node, node.engine == ORK_DFT_ENGINE_POWER_OF_TWO ? Kernels<R>::power_of_two : Kernels<R>::mixed);
    }
    return ORK_DFT_OK;
}

} // namespace

template <class R>
std::int32_t plan_dimension(ork_dft_node& head, ork_dft_node& node)
{
    ork_dft_facts facts = facts_of(head, node);
    node.engine = ork_dft_nx2_choose_engine(&facts);
    if (node.engine == ORK_DFT_ENGINE_FOUR_STEP) {
        if (make_four_step<R>(head) == ORK_DFT_OK) {
            set_kernels(node, Kernels<R>::four_step);
            node.plan = node.four_step;
            if (head.transforms == 1) node.flags |= ORK_DFT_FLAG_FOUR_STEP;
            return ORK_DFT_OK;
        }
        facts.four_step_refused = 1;
        node.engine = ork_dft_nx2_choose_engine(&facts);
    }
    if (node.engine == ORK_DFT_ENGINE_BATCHED) {
        const std::int32_t status = make_batched<R>(head, node);
        if (status == ORK_DFT_OK) set_kernels(node, Kernels<R>::batched);
        if (status != ORK_DFT_NOT_APPLICABLE) return status;
        facts.batched_refused = 1;
        node.engine = ork_dft_nx2_choose_engine(&facts);
    }
    return make_general<R>(head, node);
}

namespace {

template <class R>
std::int32_t plan_node(ork_dft_node& head)
{
    std::int64_t index = 0;
    for (ork_dft_node* node = &head; index < head.rank; node = node->next, ++index) {
        copy_from_head(head, *node, index);
        const bool real = index == 0 && head.domain.domain == ORK_DFT_REAL;
        const std::int32_t status = real ? plan_real<R>(head) : plan_dimension<R>(head, *node);
        if (status != ORK_DFT_OK) return status;
        if (node->workspace_bytes > head.workspace_bytes) head.workspace_bytes = node->workspace_bytes;
        node->status = ORK_DFT_COMMITTED;
    }
    const std::int32_t status = head.domain.domain == ORK_DFT_REAL ? make_real_stages<R>(head) : make_stages<R>(head);
    if (status != ORK_DFT_OK) return status;
    head.flags |= ORK_DFT_FLAG_PLANNED;
    const bool one_side = in_place(head) && head.domain.domain == ORK_DFT_COMPLEX;
    if (head.rank == 1 && head.transforms == 1 && head.stride[0] == 1 && (one_side || head.stride[1] == 1)) {
        head.flags |= ORK_DFT_FLAG_SINGLE;
        if (!split(head) && head.input_offset == 0 && (in_place(head) || head.output_offset == 0) &&
            scale_of<R>(head, Direction::forward) == R(1) && scale_of<R>(head, Direction::backward) == R(1))
            head.flags |= ORK_DFT_FLAG_PLAIN;
    }
    return ORK_DFT_OK;
}

template <class R>
void set_two_d(ork_dft_node& head)
{
    if (head.domain.domain == ORK_DFT_COMPLEX) {
        if constexpr (is_double<R>)
            head.two_d = in_place(head) ? ork_dft_nx2_xzdft2d : ork_dft_nx2_xzdft2d_out;
        else
            head.two_d = in_place(head) ? ork_dft_nx2_xcdft2d : ork_dft_nx2_xcdft2d_out;
        return;
    }
    if constexpr (is_double<R>) {
        head.two_d_forward = packed(head) ? ork_dft_nx2_xdzdft2d : ork_dft_nx2_xdzzdft2d;
        head.two_d_backward = packed(head) ? ork_dft_nx2_xzddft2d : ork_dft_nx2_xzzddft2d;
    } else {
        head.two_d_forward = packed(head) ? ork_dft_nx2_xscdft2d : ork_dft_nx2_xsccdft2d;
        head.two_d_backward = packed(head) ? ork_dft_nx2_xcsdft2d : ork_dft_nx2_xccsdft2d;
    }
}

template <class R>
void set_entries(ork_dft_node& head)
{
    if constexpr (is_double<R>) {
        head.forward = in_place(head) ? ork_dft_nx2_xzforward : ork_dft_nx2_xzforward_out;
        head.backward = in_place(head) ? ork_dft_nx2_xzbackward : ork_dft_nx2_xzbackward_out;
    } else {
        head.forward = in_place(head) ? ork_dft_nx2_xcforward : ork_dft_nx2_xcforward_out;
        head.backward = in_place(head) ? ork_dft_nx2_xcbackward : ork_dft_nx2_xcbackward_out;
    }
    head.input_step = head.output_step = (in_place(head) ? 1 : 2) * (split(head) ? 2 : 1);
}

// Imports are called, never stored: a table of them would be resolved when the library is loaded.
template <class R>
std::int32_t commit_threaded(ork_dft_node* head, bool real, bool many)
{
    if constexpr (is_double<R>) {
        if (real) return many ? ork_dft_commit_node_d_r2c_md_omp(head) : ork_dft_commit_node_d_r2c_1d_omp(head);
        return many ? ork_dft_commit_node_d_c2c_md_omp(head) : ork_dft_commit_node_d_c2c_1d_omp(head);
    } else {
        if (real) return many ? ork_dft_commit_node_s_r2c_md_omp(head) : ork_dft_commit_node_s_r2c_1d_omp(head);
        return many ? ork_dft_commit_node_s_c2c_md_omp(head) : ork_dft_commit_node_s_c2c_1d_omp(head);
    }
}

template <class R, std::int32_t domain, bool many>
std::int32_t commit(ork_dft_node* head)
{
    const std::int32_t limit = head->thread_limit, threads = head->threads;
    std::int32_t status = check_setup<R>(*head, domain, head->dispatch);
    if (status != ORK_DFT_OK) return status;
    release_plan(head);
    head->scales.forward_single = static_cast<float>(head->scales.forward);
    head->scales.backward_single = static_cast<float>(head->scales.backward);
    if (head->rank == 2) set_two_d<R>(*head);
    const bool theirs = head->transforms < 2 && head->threads != 1 && (!many || head->rank == 1);
    if (head->rank >= 1)
        status = theirs ? commit_threaded<R>(head, domain == ORK_DFT_REAL, many) : ork_dft_nx2_plan_node(head);
    if (status != ORK_DFT_OK) {
        if (head->free != nullptr) head->free(head);
        head->thread_limit = limit, head->threads = threads;
        return status;
    }
    if (!alternative(*head)) set_entries<R>(*head);
    head->status = ORK_DFT_COMMITTED;
    return ORK_DFT_OK;
}

} // namespace
} // namespace ork::dft

using namespace ork::dft;

ORK_EXPORT std::int32_t ork_dft_nx2_plan_node(ork_dft_node* head)
{
    if ((head->flags & ORK_DFT_FLAG_PLANNED) != 0) return ORK_DFT_OK;
    const std::int32_t status =
        head->domain.precision == ORK_DFT_DOUBLE ? plan_node<double>(*head) : plan_node<float>(*head);
    if (status != ORK_DFT_OK) release_plan(head);
    return status;
}

#define COMMIT(suffix, R, domain, many)                                                                                \
    ORK_EXPORT std::int32_t ork_dft_nx2_commit_descriptor_core_##suffix(ork_dft_node* head)                            \
    {                                                                                                                  \
        return commit<R, domain, many>(head);                                                                          \
    }
COMMIT(s_c2c_1d, float, ORK_DFT_COMPLEX, false)
COMMIT(s_c2c_md, float, ORK_DFT_COMPLEX, true)
COMMIT(s_r2c_1d, float, ORK_DFT_REAL, false)
COMMIT(s_r2c_md, float, ORK_DFT_REAL, true)
COMMIT(d_c2c_1d, double, ORK_DFT_COMPLEX, false)
COMMIT(d_c2c_md, double, ORK_DFT_COMPLEX, true)
COMMIT(d_r2c_1d, double, ORK_DFT_REAL, false)
COMMIT(d_r2c_md, double, ORK_DFT_REAL, true)
