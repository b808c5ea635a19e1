// SPDX-License-Identifier: MIT
// The small-length batched plan: lengths 65 to 256 in batches of 1, 2, 4, ... transforms, each with its plan.
#include "dft/node/batched.h"
#include "dft/node/node.h"
#include "dft/primitives/wrappers.h"

namespace ork::dft {
namespace {

constexpr std::int64_t largest_butterfly = 61; // primes beyond it need a convolution, which gains nothing from batches

bool has_butterflies(std::int64_t n)
{
    for (std::int64_t p = 2; p <= largest_butterfly; ++p)
        while (n % p == 0) n /= p;
    return n == 1;
}

template <class R>
constexpr BatchEngine engine = {Primitives<R>::batch};

} // namespace

template <class R>
std::int32_t make_batched(ork_dft_node& head, ork_dft_node& node)
{
    if (!has_butterflies(node.length)) return ORK_DFT_NOT_APPLICABLE;
    struct Block {
        ork_dft_batched record;
        BatchPlan entries[2][ORK_DFT_BATCH_SIZES];
    };
    Block* block = new_cleared<Block>();
    if (block == nullptr) return ORK_DFT_NO_MEMORY;
    Plan<R>* plan = nullptr;
    std::int32_t status = make_plan<R>(node.length, &plan);
    if (status == ORK_DFT_OK) {
        ork_dft_batched& record = block->record;
        const std::int64_t stride = node.stride[in_place(head) ? 0 : 1];
        record.batch = ork_dft_nx2_batch_of_length(node.length, stride);
        for (std::int64_t count = 1; record.sizes < ORK_DFT_BATCH_SIZES && count <= head.transforms; count *= 2) {
            const int i = record.sizes++;
            const auto bytes = static_cast<std::int64_t>(work_bytes(*plan, count));
            if (bytes > record.work_bytes) record.work_bytes = bytes;
            block->entries[0][i] = {plan, count, bytes, ORK_DFT_FORWARD};
            block->entries[1][i] = {plan, count, bytes, ORK_DFT_BACKWARD};
            record.forward[i] = &block->entries[0][i];
            record.backward[i] = &block->entries[1][i];
        }
        const ork_dft_dimension& last = head.dimensions[head.rank - 1];
        const std::int64_t last_stride = in_place(head) ? last.input_stride : last.output_stride;
        // Work memory of all threads that is larger than what they share out: the ordinary plan does better.
        if (head.rank > 2 && head.threads * record.work_bytes > 16 * last.length * last_stride)
            status = ORK_DFT_NOT_APPLICABLE;
    }
    if (status != ORK_DFT_OK) {
        free_plan(plan);
        release(block);
        return status;
    }
    node.plan = plan;
    node.batched = &block->record;
    node.batched_engine = &engine<R>;
    node.workspace_bytes = block->record.work_bytes;
    return ORK_DFT_OK;
}
template std::int32_t make_batched<float>(ork_dft_node&, ork_dft_node&);
template std::int32_t make_batched<double>(ork_dft_node&, ork_dft_node&);

} // namespace ork::dft
