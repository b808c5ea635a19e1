// SPDX-License-Identifier: MIT
// A part of a stage on the calling thread: passes handed to the engine, in place or from space to space.
#include "dft/node/run.h"
#include "dft/node/batched.h"
#include "dft/node/gather.h"
#include "dft/node/real_node.h"

namespace ork::dft {
namespace {

// What every pass of a call has in common.
template <class R>
class Run {
public:
    Run(const ork_dft_node& node, const ork_dft_call& call, const Stage& stage, void* work)
        : direction_(static_cast<Direction>(call.direction)), scale_(scale_of<R>(node, direction_)),
          sides_(sides_of<R>(node, call, stage.middle)), work_(work)
    {
    }

    // `count` vectors from this one on, adjacent in the inner loop.
    std::int32_t operator()(const Pass& pass, const At& at, std::int64_t count) const
    {
        const Place<R> in = place(pass, pass.from, at), out = place(pass, pass.to, at);
        const R scale = pass.last ? scale_ : R(1);
        switch (pass.kind) {
        case Kind::batched:
            return batches(pass, in, out, scale, count);
        case Kind::real:
            real(pass, in, out, scale, count);
            return ORK_DFT_OK;
        case Kind::gathered:
            gathered(pass, in, out, scale, count);
            return ORK_DFT_OK;
        default:
            transform<R>(plan_of<R>(pass.plan), direction_, scale, in, out, count, work_);
            return ORK_DFT_OK;
        }
    }

    void columns(const Pass& pass, const At& at, std::int64_t from, std::int64_t to) const
    {
        transform<R>(static_cast<const RealNode<R>*>(pass.plan)->columns, direction_, pass.last ? scale_ : R(1),
                     place(pass, pass.from, at), place(pass, pass.to, at), from, to, work_);
    }

private:
    Place<R> place(const Pass& pass, Space space, const At& at) const
    {
        return {sides_.re[space] + at.in[space], sides_.im[space] + at.in[space], pass.stride[space],
                pass.inner.stride[space]};
    }

    void real(const Pass& pass, const Place<R>& in, const Place<R>& out, R scale, std::int64_t count) const
    {
        const auto& node = *static_cast<const RealNode<R>*>(pass.plan);
        if (direction_ == Direction::forward)
            forward<R>(*node.plan, node.packing, scale, in, out, count, work_);
        else
            backward<R>(*node.plan, node.packing, scale, in, out, count, work_);
    }

    // Every column by itself, so any division has the same bits.
    void gathered(const Pass& pass, const Place<R>& in, const Place<R>& out, R scale, std::int64_t count) const
    {
        switch (pass.width) {
        case 16:
            return columns_of<16>(pass, in, out, scale, count);
        case 8:
            return columns_of<8>(pass, in, out, scale, count);
        default:
            return columns_of<4>(pass, in, out, scale, count);
        }
    }
    template <int width>
    void columns_of(const Pass& pass, const Place<R>& in, const Place<R>& out, R scale, std::int64_t count) const
    {
        using C = Complex<R>;
        const Plan<R>& plan = plan_of<R>(pass.plan);
        const std::int64_t n = pass.node->length, length = n + column_padding;
        auto* const column = static_cast<C*>(work_);
        void* const work = static_cast<char*>(work_) + gathered_bytes<R>(n, pass.width);
        const auto* from = reinterpret_cast<const C*>(in.re);
        auto* to = reinterpret_cast<C*>(out.re);
        const bool cold = in.re != out.re;
        for (std::int64_t left = count; left > 0; left -= width, from += width, to += width) {
            const std::int64_t here = left < width ? left : width;
            if (here == width)
                gather<width>(from, in.stride / 2, n, column, length);
            else
                for (std::int64_t c = 0; c < here; ++c)
                    gather<1>(from + c, in.stride / 2, n, column + c * length, length);
            for (std::int64_t c = 0; c < here; ++c)
                transform<R>(plan, direction_, scale, column + c * length, column + c * length, work);
            if (here == width)
                scatter<width>(column, length, n, to, out.stride / 2, cold);
            else
                for (std::int64_t c = 0; c < here; ++c)
                    scatter<1>(column + c * length, length, n, to + c, out.stride / 2, cold);
        }
    }

    // In batches of the size that the plan holds best.
    std::int32_t batches(const Pass& pass, const Place<R>& in, const Place<R>& out, R scale, std::int64_t count) const
    {
        const ork_dft_batched& batched = *pass.node->batched;
        const auto run = static_cast<const BatchEngine*>(pass.node->batched_engine)->run;
        const std::int64_t group = ork::dft::group(plan_of<R>(pass.plan));
        const std::int64_t batch = (batched.batch + group - 1) / group * group;
        for (std::int64_t t = 0; t < count; t += batch) {
            const std::int64_t here = count - t < batch ? count - t : batch;
            const auto direction = static_cast<std::int32_t>(direction_);
            const ork_dft_place from = {in.re + t * in.distance, in.im + t * in.distance, in.stride, in.distance};
            const ork_dft_place to = {out.re + t * out.distance, out.im + t * out.distance, out.stride, out.distance};
            const BatchPlan& plan = batch_plan(batched, direction, here);
            const std::int32_t status = run(&from, &to, here, plan.plan, direction, scale, work_);
            if (status != ORK_DFT_OK) return status;
        }
        return ORK_DFT_OK;
    }

    Direction direction_;
    R scale_;
    Sides<R> sides_;
    void* work_;
};

} // namespace

template <class R>
std::int32_t run_blocks(const ork_dft_node* node, const ork_dft_call* call, const ork_dft_stage* stage,
                        std::int64_t from, std::int64_t to)
{
    const Stage& blocks = record(*stage);
    return with_work(blocks.work, [&](void* work) {
        const Run<R> run(*node, *call, blocks, work);
        for (std::int64_t unit = from; unit < to; ++unit) {
            At origin;
            origin.advance(blocks.outer, unit);
            for (int p = 0; p < blocks.passes; ++p) {
                const Pass& pass = blocks.pass[p];
                const std::int64_t count = pass.outer.count();
                for (std::int64_t i = 0; i < count; ++i) {
                    At at = origin;
                    at.advance(pass.outer, i);
                    const std::int32_t status = run(pass, at, pass.inner.count);
                    if (status != ORK_DFT_OK) return status;
                }
            }
        }
        return static_cast<std::int32_t>(ORK_DFT_OK);
    });
}

template <class R>
std::int32_t run_columns(const ork_dft_node* node, const ork_dft_call* call, const ork_dft_stage* stage,
                         std::int64_t from, std::int64_t to)
{
    const Stage& columns = record(*stage);
    const Pass& pass = *columns.pass;
    return with_work(columns.work, [&](void* work) {
        const Run<R> run(*node, *call, columns, work);
        for (std::int64_t unit = from; unit < to;) {
            const std::int64_t block = unit % columns.blocks, left = columns.blocks - block;
            const std::int64_t blocks = left < to - unit ? left : to - unit;
            const std::int64_t first = block * columns.block, end = (block + blocks) * columns.block;
            At at;
            at.advance(columns.outer, unit / columns.blocks);
            at.advance(pass.inner, first);
            const std::int32_t status = run(pass, at, (end < pass.inner.count ? end : pass.inner.count) - first);
            if (status != ORK_DFT_OK) return status;
            unit += blocks;
        }
        return static_cast<std::int32_t>(ORK_DFT_OK);
    });
}

template <class R>
std::int32_t run_packed_columns(const ork_dft_node* node, const ork_dft_call* call, const ork_dft_stage* stage,
                                std::int64_t from, std::int64_t to)
{
    const Stage& columns = record(*stage);
    return with_work(columns.work, [&](void* work) {
        const Run<R> run(*node, *call, columns, work);
        for (std::int64_t unit = from; unit < to;) {
            const std::int64_t first = unit % columns.blocks, left = columns.blocks - first;
            const std::int64_t count = left < to - unit ? left : to - unit;
            At at;
            at.advance(columns.outer, unit / columns.blocks);
            run.columns(*columns.pass, at, first, first + count);
            unit += count;
        }
        return static_cast<std::int32_t>(ORK_DFT_OK);
    });
}

#define INSTANTIATE(name, R)                                                                                           \
    template std::int32_t name<R>(const ork_dft_node*, const ork_dft_call*, const ork_dft_stage*, std::int64_t,        \
                                  std::int64_t);
INSTANTIATE(run_blocks, float)
INSTANTIATE(run_blocks, double)
INSTANTIATE(run_columns, float)
INSTANTIATE(run_columns, double)
INSTANTIATE(run_packed_columns, float)
INSTANTIATE(run_packed_columns, double)

} // namespace ork::dft
