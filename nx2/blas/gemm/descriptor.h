// SPDX-License-Identifier: MIT
// Filling a kernel descriptor: block sizes, buffer sizes, work buffers.
#pragma once

#include <cstddef>

#include "blas/gemm/routines.h"
#include "blas/gemm/units.h"
#include "frame/core_imports.h"

namespace ork::gemm {

constexpr std::int64_t code_a_b = 12, code_c = 7; // log2 of the alignments that the buffers ask for

template <class T>
struct Descriptor {
    using U = Units<T>;

    static void fill(Desc& desc, std::uint32_t index, const ork_gemm_row& row)
    {
        desc.index = index;
        desc.flags = row.flags;
        desc.m_unit = row.m_unit;
        desc.n_unit = row.n_unit;
        desc.k_unit = row.k_unit;
        for (int i = 0; i < 3; ++i) desc.parameters[i] = row.parameters[i];
        desc.c_factor = row.c_factor;
        desc.routines = row.routines;
    }

    // Fixes what is still 0 of kb, mb and nb and returns the last of them computed (nb when all were fixed before).
    static Int fix_blocks(Int n, Int k, Desc& desc)
    {
        bool split = false;
        Int last = desc.nb;
        if (desc.kb == 0) {
            split = k > 256 && k < 512;
            last = desc.kb = block_depth(k, U::k);
        }
        if (desc.mb == 0 || split) {
            constexpr std::int64_t large_cache = (4 << 20) + 1;
            ork_cache_info cache{};
            ork_serv_cache_info(&cache);
            last = desc.mb = cache.levels == 0 || cache.cache_size >= large_cache ? 640 : 384;
        }
        if (desc.nb == 0) {
            const Int columns = n < U::n ? U::n : n > 5000 ? 5000 : n;
            last = desc.nb = round_up(columns, U::n);
        }
        return last;
    }

    // 0, or 1 for a selector that does not exist; nothing is changed then.
    static Int size_buffers(Int which, Int clip, Int m, Int n, Int k, Desc& desc)
    {
        if (which < ORK_GEMM_BUFS_ALL || which > ORK_GEMM_BUFS_C) return 1;
        if (clip != ORK_GEMM_CLIP_TO_PROBLEM && clip != ORK_GEMM_CLIP_NONE) return 1;
        const auto extent = [&](Int size, Int block, Int unit) {
            return round_up(clip == ORK_GEMM_CLIP_TO_PROBLEM && size < block ? size : block, unit);
        };
        const Int rows = extent(m, desc.mb, U::m), columns = extent(n, desc.nb, U::n), depth = extent(k, desc.kb, U::k);
        constexpr Int element = sizeof(T), slack = 512; // slack: room to align a buffer
        const bool all = which == ORK_GEMM_BUFS_ALL, ab = which == ORK_GEMM_BUFS_AB;
        if (all || ab || which == ORK_GEMM_BUFS_A || which == ORK_GEMM_BUFS_AC)
            desc.a = {rows * depth * element + slack, U::a_step * depth, code_a_b};
        if (all || ab || which == ORK_GEMM_BUFS_B || which == ORK_GEMM_BUFS_BC)
            desc.b = {columns / U::n * U::b_step * depth * element + slack, U::b_step * depth, code_a_b};
        if (all || which >= ORK_GEMM_BUFS_BC) {
            desc.c_bytes = desc.c_factor * U::n * depth * element + slack;
            desc.c_alignment = code_c;
        }
        return 0;
    }

    // One allocation for the buffers whose sizes are set; `base` is what free_bufs takes. 0, or 1 when there is no
    // memory.
    static Int get_buffers(const Desc& desc, void** base, void** a, void** b, void** c)
    {
        constexpr Int page = Int(1) << code_a_b;
        const Int b_at = round_up(desc.a.bytes, page), c_at = b_at + round_up(desc.b.bytes, page);
        *base = ork_serv_allocate(static_cast<std::size_t>(c_at + desc.c_bytes), page);
        if (*base == nullptr) return 1;
        char* bytes = static_cast<char*>(*base);
        *a = bytes;
        *b = bytes + b_at;
        *c = bytes + c_at;
        return 0;
    }
};

} // namespace ork::gemm
