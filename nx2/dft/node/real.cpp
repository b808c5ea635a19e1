// SPDX-License-Identifier: MIT
// Real data: the plan of the real dimension and the stages of its passes. The layouts of a spectrum are those of
// dft/real/real.h.
#include "dft/lengths/table.h"
#include "dft/node/divide.h"
#include "dft/node/real_node.h"
#include "dft/node/run.h"

namespace ork::dft {
namespace {

template <class R, Direction direction>
std::int32_t real_kernel(const void* in, void* out, const void* given, void* argument)
{
    const auto& node = *static_cast<const RealNode<R>*>(given);
    const auto* told = static_cast<const ork_dft_argument*>(argument);
    const R scale = told == nullptr ? R(1) : static_cast<R>(told->scale);
    const auto run = [&](void* work) {
        if constexpr (direction == Direction::forward)
            forward<R>(*node.plan, node.packing, scale, static_cast<const R*>(in), static_cast<R*>(out), work);
        else
            backward<R>(*node.plan, node.packing, scale, static_cast<const R*>(in), static_cast<R*>(out), work);
        return static_cast<std::int32_t>(ORK_DFT_OK);
    };
    return told != nullptr && told->work != nullptr ? run(told->work)
                                                    : with_work(work_bytes(*node.plan, node.packing), run);
}

// Between the half spectrum as complex numbers and the layout of the node, by format less ORK_DFT_CCS; the last is the
// complex one's own. Preprocess comes before a transform to real numbers, postprocess after one from them.
template <class R, Packing packing>
void preprocess(std::int64_t n, const void* in, void* cce)
{
    to_cce<R>(packing, n, static_cast<const R*>(in), static_cast<R*>(cce));
}
template <class R, Packing packing>
void postprocess(std::int64_t n, const void* cce, void* out)
{
    from_cce<R>(packing, n, static_cast<const R*>(cce), static_cast<R*>(out));
}
template <class R>
struct Processing {
    static constexpr ork_dft_process* before[4] = {preprocess<R, Packing::ccs>, preprocess<R, Packing::pack>,
                                                   preprocess<R, Packing::perm>, preprocess<R, Packing::cce>};
    static constexpr ork_dft_process* after[4] = {postprocess<R, Packing::ccs>, postprocess<R, Packing::pack>,
                                                  postprocess<R, Packing::perm>, postprocess<R, Packing::cce>};
};

} // namespace

template <class R>
std::int32_t plan_real(ork_dft_node& head)
{
    const bool in_pack = packed(head);
    if (in_pack && (head.packed_format < ORK_DFT_CCS || head.packed_format > ORK_DFT_PERM || head.rank > 2))
        return ORK_DFT_UNSUPPORTED;
    const int format = in_pack ? head.packed_format - ORK_DFT_CCS : 3;
    const auto packing = static_cast<Packing>(ORK_DFT_CCS + format);
    const bool units = head.stride[0] == 1 && head.stride[1] == 1;
    const bool small = units && is_power_of_two(head.length) && head.length >= 2 && head.length <= 64;

    auto* node = new_cleared<RealNode<R>>();
    if (node == nullptr) return ORK_DFT_NO_MEMORY;
    head.plan = node;
    head.engine = small ? ORK_DFT_ENGINE_SMALL_REAL : ORK_DFT_ENGINE_REAL;
    head.general = small ? 0 : 1;
    node->packing = packing;
    if (make_real_plan<R>(head.length, &node->plan) != 0) return ORK_DFT_NO_MEMORY;
    if (in_pack && head.rank == 2) {
        RealPlan<R>* second = nullptr;
        if (make_real_plan<R>(head.dimensions[1].length, &second) != 0) return ORK_DFT_NO_MEMORY;
        node->columns = {nullptr, second, head.length, packing};
    }
    head.workspace_bytes = static_cast<std::int64_t>(work_bytes(*node->plan));
    head.forward_kernel = real_kernel<R, Direction::forward>;
    head.backward_kernel = real_kernel<R, Direction::backward>;
    head.preprocess = Processing<R>::before[format];
    head.postprocess = Processing<R>::after[format];
    head.repack_forward = Processing<R>::after[3];
    head.repack_backward = Processing<R>::before[3];
    return ORK_DFT_OK;
}
template std::int32_t plan_real<float>(ork_dft_node&);
template std::int32_t plan_real<double>(ork_dft_node&);

template <class R>
void free_real(void* plan)
{
    if (plan == nullptr) return;
    auto* node = static_cast<RealNode<R>*>(plan);
    free_real_plan(node->plan);
    free_real_plan(const_cast<RealPlan<R>*>(node->columns.real));
    release(node);
}
template void free_real<float>(void*);
template void free_real<double>(void*);

namespace {

// The three stages of one long transform of unit stride.
template <class R>
std::int32_t run_real_stage(const ork_dft_node* node, const ork_dft_call* call, const ork_dft_stage* stage,
                            std::int64_t from, std::int64_t to)
{
    const auto& real = *static_cast<const RealNode<R>*>(node->plan);
    const Sides<R> sides = sides_of<R>(*node, *call);
    const auto direction = static_cast<Direction>(call->direction);
    return with_work(staged_work_bytes(*real.plan), [&](void* work) {
        run_stage<R>(*real.plan, static_cast<int>(stage->argument[0]), direction, real.packing,
                     scale_of<R>(*node, direction), from, to, sides.re[input], sides.re[output], call->shared, work);
        return static_cast<std::int32_t>(ORK_DFT_OK);
    });
}

// Strides of one dimension, or of the batch, in the three spaces of a direction.
class Layout {
public:
    Layout(const ork_dft_node& head, Direction direction) : head_(head), direction_(direction)
    {
        const bool backward = direction == Direction::backward;
        if (!backward)
            middle_ = output;
        else if (in_place(head))
            middle_ = input;
        else if (packed(head) && head.packed_format != ORK_DFT_CCS)
            middle_ = output;
        else
            middle_ = middle;
        dense_ = output_unit(head);
    }

    // Dimensions in order: those of shared memory are dense.
    Loop loop(std::int64_t count, std::int64_t stored, std::int64_t in, std::int64_t out)
    {
        in *= input_unit(head_), out *= output_unit(head_);
        const bool backward = direction_ == Direction::backward;
        const std::int64_t read = backward ? out : in, written = backward ? in : out;
        const Loop loop = {count, {read, middle_ == input ? read : middle_ == output ? written : dense_, written}};
        dense_ *= stored;
        return loop;
    }
    Space middle_is() const { return middle_; }
    std::int64_t numbers() const { return dense_; } // of everything so far, dense

private:
    const ork_dft_node& head_;
    Direction direction_;
    Space middle_;
    std::int64_t dense_;
};

// One or two packed dimensions: rows, and columns as packed vectors of their own.
template <class R>
void divide_packed(const ork_dft_node& head, Direction direction, StageList& list)
{
    const bool two = head.rank == 2, backward = direction == Direction::backward;
    const auto* node = static_cast<const RealNode<R>*>(head.plan);
    Layout layout(head, direction);
    const Loop row =
        layout.loop(head.length, packed_length(node->packing, head.length), head.stride[0], head.stride[1]);
    Loop column{};
    Dimensions rows{};
    rows.push(row, &head);
    if (two) {
        const ork_dft_node& second = *head.next;
        column =
            layout.loop(second.length, packed_length(node->packing, second.length), second.stride[0], second.stride[1]);
        rows.push(column, nullptr);
    }
    Loops batch{};
    if (head.transforms != 1) {
        batch.push(layout.loop(head.transforms, head.transforms, head.input_distance, head.output_distance));
        rows.push(batch.loop[0], nullptr);
    }
    Part part;
    part.middle = layout.middle_is();
    part.first = !(two && backward), part.last = !(two && !backward);
    if (two && layout.middle_is() == middle) list.shared(static_cast<std::size_t>(layout.numbers()) * sizeof(R));
    if (!two || !backward) divide_passes<R>(rows, part, list);
    if (!two) return;

    Stage& stage = list.new_record();
    Pass& pass = list.new_pass();
    pass.kind = Kind::columns;
    pass.from = backward ? input : middle, pass.to = backward ? middle : output;
    pass.last = !backward;
    pass.plan = node, pass.node = &head;
    for (int space = 0; space < 3; ++space) pass.stride[space] = column.stride[space];
    pass.inner = row;
    stage.blocks = column_units(head.length), stage.block = 1;
    stage.outer = batch;
    stage.pass = &pass, stage.passes = 1;
    stage.work = work_bytes(node->columns);
    stage.middle = layout.middle_is();
    list.add(batch.count() * stage.blocks, run_packed_columns<R>, {reinterpret_cast<std::int64_t>(&stage)});
    if (backward) divide_passes<R>(rows, part, list);
}

// The half spectrum as complex numbers: a pass over the real dimension, and complex ones over the others.
template <class R>
void divide_complex(const ork_dft_node& head, Direction direction, StageList& list)
{
    Layout layout(head, direction);
    Dimensions all{};
    const std::int64_t half = head.length / 2 + 1;
    all.push(layout.loop(half, half, head.stride[0], head.stride[1]), &head);
    int index = 1;
    for (const ork_dft_node* node = head.next; index < head.rank; node = node->next, ++index)
        if (node->length > 1) all.push(layout.loop(node->length, node->length, node->stride[0], node->stride[1]), node);
    const bool several = all.loops.size > 1;
    if (head.transforms != 1)
        all.push(layout.loop(head.transforms, head.transforms, head.input_distance, head.output_distance), nullptr);
    Part part;
    part.middle = layout.middle_is();
    part.real_last = direction == Direction::backward;
    if (several && layout.middle_is() == middle) list.shared(static_cast<std::size_t>(layout.numbers()) * sizeof(R));
    divide_passes<R>(all, part, list);
}

template <class R>
void divide_real(const ork_dft_node& head, Direction direction, StageList& list)
{
    const auto* node = static_cast<const RealNode<R>*>(head.plan);
    if (head.rank == 1 && head.transforms == 1 && head.stride[0] == 1 && head.stride[1] == 1 &&
        units(*node->plan, direction, 0) > 0) {
        for (int stage = 0; stage < 3; ++stage)
            if (const std::int64_t count = units(*node->plan, direction, stage))
                list.add(count, run_real_stage<R>, {stage});
        list.shared(shared_bytes(*node->plan, node->packing));
    } else if (packed(head)) {
        divide_packed<R>(head, direction, list);
    } else {
        divide_complex<R>(head, direction, list);
    }
}

} // namespace

template <class R>
std::int32_t make_real_stages(ork_dft_node& head)
{
    auto* node = static_cast<RealNode<R>*>(head.plan);
    if (node->columns.real != nullptr) node->columns.complex = &plan_of<R>(head.next->plan);
    StageList list(head);
    if (!list.allocated()) return ORK_DFT_NO_MEMORY;
    for (const Direction direction : {Direction::forward, Direction::backward}) {
        list.begin(direction);
        divide_real<R>(head, direction, list);
    }
    return ORK_DFT_OK;
}
template std::int32_t make_real_stages<float>(ork_dft_node&);
template std::int32_t make_real_stages<double>(ork_dft_node&);

} // namespace ork::dft
