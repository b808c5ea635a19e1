// SPDX-License-Identifier: MIT
// Sparse vectors with 32-bit indices: the kernels take 64-bit ones, so they are widened, a block at a time where the
// blocks are independent. A sum is not cut into blocks, so that both integer widths give the same bits.
#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <tuple>
#include <type_traits>
#include <utility>

#include "blas/routine.h"
#include "ork/abi/services.h"

namespace ork::blas {

inline constexpr std::int64_t indices_at_once = 512; // 4 KiB of stack

// Argument i for the block of `length` entries from `first` on.
template <class Row, std::size_t i, class Call>
inline typename Row::template Canonical<i> block_argument(const Call& call, std::int64_t first,
                                                          const std::int64_t& length, std::int64_t* wide)
{
    constexpr Argument a = Row::arguments[i];
    if constexpr (a.role == Role::count) {
        return &length;
    } else if constexpr (a.role == Role::indices) {
        std::copy_n(std::get<i>(call) + first, length, wide);
        return wide;
    } else if constexpr (a.role == Role::compressed) {
        return std::get<i>(call) + first;
    } else {
        return std::get<i>(call);
    }
}

template <class Row, class... Arguments>
inline typename Row::Result run_in_blocks(Arguments... arguments)
{
    const std::tuple call(arguments...);
    const auto run_block = [&](std::int64_t first, std::int64_t length, std::int64_t* wide) {
        return [&]<std::size_t... i>(std::index_sequence<i...>)
        {
            return Row::run(block_argument<Row, i>(call, first, length, wide)...);
        }
        (std::make_index_sequence<Row::count>());
    };

    const std::int64_t count = std::max<std::int64_t>(0, *std::get<position(Row::arguments, "nz")>(call));
    std::int64_t wide[indices_at_once];
    if (count <= indices_at_once) return run_block(0, count, wide);
    if constexpr (std::is_void_v<typename Row::Result>) {
        for (std::int64_t first = 0; first < count; first += indices_at_once)
            run_block(first, std::min(indices_at_once, count - first), wide);
    } else {
        const std::unique_ptr<void, void (*)(void*)> all(ork_serv_malloc(count * sizeof wide[0], 64), ork_serv_free);
        if (all != nullptr) return run_block(0, count, static_cast<std::int64_t*>(all.get()));
        typename Row::Result sum{}; // no memory: the same value up to the rounding of one addition a block
        for (std::int64_t first = 0; first < count; first += indices_at_once)
            sum += run_block(first, std::min(indices_at_once, count - first), wide);
        return sum;
    }
}

} // namespace ork::blas
