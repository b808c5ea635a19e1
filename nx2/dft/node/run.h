// SPDX-License-Identifier: MIT
// Stages of passes, run for some of their units.
#pragma once

#include "dft/node/stages.h"

namespace ork::dft {

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
