// SPDX-License-Identifier: MIT
// What a commit has made is given back: the node's own free routine.
#include "dft/node/node.h"

namespace ork::dft {
namespace {

template <class R>
void release_dimension(ork_dft_node& node)
{
    if (node.engine == ORK_DFT_ENGINE_FOUR_STEP)
        free_four_step<R>(node.four_step);
    else if (node.engine == ORK_DFT_ENGINE_REAL || node.engine == ORK_DFT_ENGINE_SMALL_REAL)
        free_real<R>(node.plan);
    else if ((node.flags & ORK_DFT_FLAG_BORROWED) == 0)
        free_plan(static_cast<Plan<R>*>(node.plan));
    release(node.batched);
}

} // namespace

std::int32_t release_plan(ork_dft_node* head)
{
    for (ork_dft_node* node = head; node != nullptr; node = node->next) {
        if (head->domain.precision == ORK_DFT_DOUBLE)
            release_dimension<double>(*node);
        else
            release_dimension<float>(*node);
        node->plan = nullptr;
        node->batched = nullptr;
        node->batched_engine = nullptr;
        node->four_step = nullptr;
        node->forward_kernel = node->backward_kernel = nullptr;
        node->engine = ORK_DFT_ENGINE_NONE;
        node->general = 0;
        node->flags = 0;
        node->workspace_bytes = 0;
        node->status = ORK_DFT_UNCOMMITTED;
    }
    release(head->stage[0]); // both directions are one block
    head->stage[0] = head->stage[1] = nullptr;
    head->stages[0] = head->stages[1] = 0;
    head->shared_bytes = 0;
    head->forward = head->backward = nullptr;
    head->input_step = head->output_step = 0;
    head->two_d = nullptr;
    head->two_d_forward = head->two_d_backward = nullptr;
    head->preprocess = head->postprocess = head->repack_forward = head->repack_backward = nullptr;
    return ORK_DFT_OK;
}

} // namespace ork::dft
