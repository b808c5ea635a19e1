// SPDX-License-Identifier: MIT
// Stages of passes, run for some of their units.
#pragma once

#include "dft/lines.h"
#include "dft/node/stages.h"

namespace ork::dft {

// Gathered columns are so many numbers longer than they need be: else all begin in the same sets of the caches.
inline constexpr std::int64_t column_padding = 4;
template <class R>
constexpr std::size_t gathered_bytes(std::int64_t length, int width)
{
    return whole_lines(static_cast<std::size_t>(width * (length + column_padding)) * sizeof(Complex<R>));
}

// Units are blocks, each with all its passes.
template <class R>
std::int32_t run_blocks(const ork_dft_node* node, const ork_dft_call* call, const ork_dft_stage* stage,
                        std::int64_t from, std::int64_t to);
// Units are groups of vectors of one pass.
template <class R>
std::int32_t run_columns(const ork_dft_node* node, const ork_dft_call* call, const ork_dft_stage* stage,
                         std::int64_t from, std::int64_t to);
// Units are columns of packed matrices.
template <class R>
std::int32_t run_packed_columns(const ork_dft_node* node, const ork_dft_call* call, const ork_dft_stage* stage,
                                std::int64_t from, std::int64_t to);

} // namespace ork::dft
