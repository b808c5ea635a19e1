// SPDX-License-Identifier: MIT
// The division of complex transforms into stages.
#include "dft/node/stages.h"
#include "dft/node/divide.h"

namespace ork::dft {
namespace {

// One long transform of unit stride: the two stages of its plan.
template <class R>
std::int32_t run_plan_stage(const ork_dft_node* node, const ork_dft_call* call, const ork_dft_stage* stage,
                            std::int64_t from, std::int64_t to)
{
    const Plan<R>& plan = plan_of<R>(node->plan);
    const Sides<R> sides = sides_of<R>(*node, *call);
    const auto direction = static_cast<Direction>(call->direction);
    return with_work(staged_work_bytes(plan), [&](void* work) {
        run_stage<R>(plan, static_cast<int>(stage->argument[0]), direction, scale_of<R>(*node, direction), from, to,
                     reinterpret_cast<const Complex<R>*>(sides.re[input]),
                     reinterpret_cast<Complex<R>*>(sides.re[output]), call->shared, work);
        return static_cast<std::int32_t>(ORK_DFT_OK);
    });
}

// Transforms one by one through the head's kernels.
template <class R>
std::int32_t run_kernel(const ork_dft_node* node, const ork_dft_call* call, const ork_dft_stage* stage,
                        std::int64_t from, std::int64_t to)
{
    const Sides<R> sides = sides_of<R>(*node, *call);
    const auto direction = static_cast<Direction>(call->direction);
    ork_dft_kernel* kernel = direction == Direction::forward ? node->forward_kernel : node->backward_kernel;
    ork_dft_argument argument = {scale_of<R>(*node, direction), nullptr};
    for (std::int64_t t = from; t < to; ++t) {
        const std::int32_t status = kernel(sides.re[input] + t * stage->argument[0],
                                           sides.re[output] + t * stage->argument[1], node->plan, &argument);
        if (status != ORK_DFT_OK) return status;
    }
    return ORK_DFT_OK;
}

Dimensions dimensions_of(const ork_dft_node& head, Direction direction)
{
    const std::int64_t unit = input_unit(head);
    const auto loop = [&](std::int64_t count, std::int64_t in, std::int64_t out) -> Loop {
        if (in_place(head)) out = in;
        const std::int64_t read = (direction == Direction::forward ? in : out) * unit;
        const std::int64_t written = (direction == Direction::forward ? out : in) * unit;
        return {count, {read, written, written}};
    };
    Dimensions all{};
    int index = 0;
    for (const ork_dft_node* node = &head; index < head.rank; node = node->next, ++index)
        if (node->length > 1) all.push(loop(node->length, node->stride[0], node->stride[1]), node);
    if (all.loops.size == 0) all.push(loop(1, head.stride[0], head.stride[1]), &head); // a copy
    if (head.transforms != 1) all.push(loop(head.transforms, head.input_distance, head.output_distance), nullptr);
    return all;
}

template <class R>
void divide(const ork_dft_node& head, Direction direction, StageList& list)
{
    if (head.engine == ORK_DFT_ENGINE_FOUR_STEP) {
        if (head.transforms == 1) return divide_four_step<R>(head, list);
        const std::int64_t in = 2 * head.input_distance, out = in_place(head) ? in : 2 * head.output_distance;
        const bool backward = direction == Direction::backward;
        list.add(head.transforms, run_kernel<R>, {backward ? out : in, backward ? in : out});
        return;
    }
    if (head.rank == 1 && head.transforms == 1 && !split(head) && head.stride[0] == 1 &&
        (in_place(head) || head.stride[1] == 1)) {
        const Plan<R>& plan = plan_of<R>(head.plan);
        if (units(plan, 0) > 0) {
            list.add(units(plan, 0), run_plan_stage<R>, {0});
            list.add(units(plan, 1), run_plan_stage<R>, {1});
            list.shared(shared_bytes(plan));
            return;
        }
    }
    divide_passes<R>(dimensions_of(head, direction), Part{}, list);
}

} // namespace

template <class R>
Sides<R> sides_of(const ork_dft_node& node, const ork_dft_call& call, Space middle_is)
{
    const bool apart = !in_place(node), real = node.domain.domain == ORK_DFT_REAL;
    const bool backward = call.direction == ORK_DFT_BACKWARD;
    const std::int64_t in = node.input_offset * input_unit(node);
    const std::int64_t out = apart || real ? node.output_offset * output_unit(node) : in;
    const std::int64_t read = backward ? out : in, written = backward ? in : out;
    const auto array = [&](int i) { return static_cast<R*>(call.arrays[i]); };
    Sides<R> sides;
    if (split(node)) {
        const int second = apart ? 2 : 0;
        sides.re[input] = array(0) + read, sides.im[input] = array(1) + read;
        sides.re[output] = array(second) + written, sides.im[output] = array(second + 1) + written;
    } else {
        sides.re[input] = array(0) + read, sides.im[input] = sides.re[input] + 1;
        sides.re[output] = array(apart ? 1 : 0) + written, sides.im[output] = sides.re[output] + 1;
    }
    sides.re[middle] = middle_is == middle ? static_cast<R*>(call.shared) : sides.re[middle_is];
    sides.im[middle] = middle_is == middle ? sides.re[middle] + 1 : sides.im[middle_is];
    return sides;
}
template Sides<float> sides_of(const ork_dft_node&, const ork_dft_call&, Space);
template Sides<double> sides_of(const ork_dft_node&, const ork_dft_call&, Space);

template <class R>
std::int32_t make_stages(ork_dft_node& head)
{
    StageList list(head);
    if (!list.allocated()) return ORK_DFT_NO_MEMORY;
    for (const Direction direction : {Direction::forward, Direction::backward}) {
        list.begin(direction);
        divide<R>(head, direction, list);
    }
    return ORK_DFT_OK;
}
template std::int32_t make_stages<float>(ork_dft_node&);
template std::int32_t make_stages<double>(ork_dft_node&);

} // namespace ork::dft
