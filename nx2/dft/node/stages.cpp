// SPDX-License-Identifier: MIT
// The division of complex transforms into stages.
#include "dft/node/stages.h"
#include "dft/node/divide.h"
#include "dft/node/run.h"

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
                     reinterpret_cast<const Complex<R>*>(sides.read.re),
                     reinterpret_cast<Complex<R>*>(sides.written.re), call->shared, work);
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
        const std::int32_t status = kernel(sides.read.re + t * stage->argument[1],
                                           sides.written.re + t * stage->argument[2], node->plan, &argument);
        if (status != ORK_DFT_OK) return status;
    }
    return ORK_DFT_OK;
}

// What is read and written by a transform in this direction.
Loops loops_of(const ork_dft_node& head, Direction direction, const ork_dft_node** dimension)
{
    const std::int64_t unit = split(head) ? 1 : 2;
    const bool swap = direction == Direction::backward;
    const auto loop = [&](std::int64_t count, std::int64_t input, std::int64_t output) -> Loop {
        if (in_place(head)) output = input;
        return swap ? Loop{count, output * unit, input * unit} : Loop{count, input * unit, output * unit};
    };
    Loops loops{};
    int index = 0;
    for (const ork_dft_node* node = &head; index < head.rank; node = node->next, ++index)
        if (node->length > 1) {
            dimension[loops.size] = node;
            loops.push(loop(node->length, node->stride[0], node->stride[1]));
        }
    if (loops.size == 0) { // a copy
        dimension[0] = &head;
        loops.push(loop(head.length, head.stride[0], head.stride[1]));
    }
    if (head.transforms != 1) {
        dimension[loops.size] = nullptr;
        loops.push(loop(head.transforms, head.input_distance, head.output_distance));
    }
    return loops;
}

template <class R>
void divide(const ork_dft_node& head, Direction direction, StageList& list)
{
    if (head.engine == ORK_DFT_ENGINE_FOUR_STEP) {
        if (head.transforms == 1) return divide_four_step<R>(head, list);
        const bool swap = direction == Direction::backward;
        const std::int64_t output = in_place(head) ? head.input_distance : head.output_distance;
        list.add(head.transforms, run_kernel<R>,
                 {0, 2 * (swap ? output : head.input_distance), 2 * (swap ? head.input_distance : output)});
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
    const ork_dft_node* dimension[most_loops];
    const Loops loops = loops_of(head, direction, dimension);
    divide_passes<R>(loops, dimension, list);
}

} // namespace

template <class R>
Sides<R> sides_of(const ork_dft_node& node, const ork_dft_call& call)
{
    const bool apart = !in_place(node), backward = call.direction == ORK_DFT_BACKWARD;
    const auto array = [&](int i) { return static_cast<R*>(call.arrays[i]); };
    const std::int64_t unit = split(node) ? 1 : 2;
    const std::int64_t input = node.input_offset * unit,
                       output = (apart ? node.output_offset : node.input_offset) * unit;
    const std::int64_t read = backward ? output : input, written = backward ? input : output;
    if (split(node)) {
        const int second = apart ? 2 : 0;
        return {{array(0) + read, array(1) + read, 0, 0},
                {array(second) + written, array(second + 1) + written, 0, 0},
                apart};
    }
    R *const from = array(0) + read, *const to = array(apart ? 1 : 0) + written;
    return {{from, from + 1, 0, 0}, {to, to + 1, 0, 0}, apart};
}
template Sides<float> sides_of(const ork_dft_node&, const ork_dft_call&);
template Sides<double> sides_of(const ork_dft_node&, const ork_dft_call&);

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
