// SPDX-License-Identifier: MIT
#include "dft/node/run.h"
#include "dft/node/batched.h"

namespace ork::dft {
namespace {

// What every pass of a call has in common.
template <class R>
struct Run {
    Direction direction;
    R scale;
    Sides<R> sides;
    void* work;

    Run(const ork_dft_node& node, const ork_dft_call& call, void* work)
        : direction(static_cast<Direction>(call.direction)), scale(scale_of<R>(node, direction)),
          sides(sides_of<R>(node, call)), work(work)
    {
    }

    // `count` vectors from this one on, adjacent in the inner loop.
    std::int32_t operator()(const Pass& pass, Loops::At at, std::int64_t count) const
    {
        const Place<R>& from = pass.from_input ? sides.read : sides.written;
        const std::int64_t begin = pass.from_input ? at.read : at.written;
        const Place<R> in = {from.re + begin, from.im + begin, pass.from_input ? pass.read : pass.written,
                             pass.from_input ? pass.inner.read : pass.inner.written};
        const Place<R> out = {sides.written.re + at.written, sides.written.im + at.written, pass.written,
                              pass.inner.written};
        const R factor = pass.last ? scale : R(1);
        if (pass.batched != nullptr) return batches(pass, in, out, factor, count);
        transform<R>(plan_of<R>(pass.plan), direction, factor, in, out, count, work);
        return ORK_DFT_OK;
    }

private:
    // In batches of the size that the plan holds best.
    std::int32_t batches(const Pass& pass, const Place<R>& in, const Place<R>& out, R factor, std::int64_t count) const
    {
        const auto run = static_cast<const BatchEngine*>(pass.engine)->run;
        const std::int64_t group = ork::dft::group(plan_of<R>(pass.plan));
        const std::int64_t batch = (pass.batched->batch + group - 1) / group * group;
        for (std::int64_t t = 0; t < count; t += batch) {
            const std::int64_t here = count - t < batch ? count - t : batch;
            const auto direction_code = static_cast<std::int32_t>(direction);
            const BatchPlan& plan = batch_plan(*pass.batched, direction_code, here);
            const ork_dft_place from = {in.re + t * in.distance, in.im + t * in.distance, in.stride, in.distance};
            const ork_dft_place to = {out.re + t * out.distance, out.im + t * out.distance, out.stride, out.distance};
            const std::int32_t status = run(&from, &to, here, plan.plan, direction_code, factor, work);
            if (status != ORK_DFT_OK) return status;
        }
        return ORK_DFT_OK;
    }
};

} // namespace

template <class R>
std::int32_t run_blocks(const ork_dft_node* node, const ork_dft_call* call, const ork_dft_stage* stage,
                        std::int64_t from, std::int64_t to)
{
    const Stage& blocks = record(*stage);
    return with_work(blocks.work, [&](void* work) {
        const Run<R> run(*node, *call, work);
        for (std::int64_t unit = from; unit < to; ++unit) {
            const Loops::At origin = blocks.outer.at(unit);
            for (int p = 0; p < blocks.passes; ++p) {
                const Pass& pass = blocks.pass[p];
                const std::int64_t count = pass.outer.count();
                for (std::int64_t i = 0; i < count; ++i) {
                    const Loops::At at = pass.outer.at(i);
                    const std::int32_t status =
                        run(pass, {origin.read + at.read, origin.written + at.written}, pass.inner.count);
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
        const Run<R> run(*node, *call, work);
        for (std::int64_t unit = from; unit < to;) {
            const std::int64_t block = unit % columns.blocks;
            const std::int64_t blocks = columns.blocks - block < to - unit ? columns.blocks - block : to - unit;
            const std::int64_t first = block * columns.block;
            const std::int64_t end = (block + blocks) * columns.block;
            Loops::At at = columns.outer.at(unit / columns.blocks);
            at.read += first * pass.inner.read, at.written += first * pass.inner.written;
            const std::int64_t count = (end < pass.inner.count ? end : pass.inner.count) - first;
            const std::int32_t status = run(pass, at, count);
            if (status != ORK_DFT_OK) return status;
            unit += blocks;
        }
        return static_cast<std::int32_t>(ORK_DFT_OK);
    });
}

#define INSTANTIATE(R)                                                                                                 \
    template std::int32_t run_blocks<R>(const ork_dft_node*, const ork_dft_call*, const ork_dft_stage*, std::int64_t,  \
                                        std::int64_t);                                                                 \
    template std::int32_t run_columns<R>(const ork_dft_node*, const ork_dft_call*, const ork_dft_stage*, std::int64_t, \
                                         std::int64_t);
INSTANTIATE(float)
INSTANTIATE(double)

} // namespace ork::dft
