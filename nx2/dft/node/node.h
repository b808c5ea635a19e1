// SPDX-License-Identifier: MIT
// What the files of this folder share: memory of plans, the types behind a node's words, and the routines that commit
// and compute are made of.
#pragma once

#include "dft/plan.h"
#include "frame/core_imports.h"
#include "ork/abi/dft.h"

namespace ork::dft {

template <class R>
inline constexpr bool is_double = sizeof(R) == sizeof(double);
template <class R>
inline constexpr std::int32_t precision_code = is_double<R> ? ORK_DFT_DOUBLE : ORK_DFT_SINGLE;

// Cleared memory for what a node keeps, 64-byte aligned; released by ork_serv_free.
template <class T>
inline T* new_cleared(std::int64_t count = 1)
{
    return static_cast<T*>(ork_serv_calloc(1, static_cast<std::size_t>(count) * sizeof(T), 64, 0));
}
inline void release(void* memory)
{
    if (memory != nullptr) ork_serv_free(memory);
}

inline bool is_power_of_two(std::int64_t n) { return n > 0 && (n & (n - 1)) == 0; }
inline bool alternative(const ork_dft_node& node) { return node.settings != nullptr && node.settings->word[6] == 1; }
inline bool in_place(const ork_dft_node& node) { return node.placement == ORK_DFT_INPLACE; }
inline bool split(const ork_dft_node& node)
{
    return node.domain.domain == ORK_DFT_COMPLEX && node.storage.complex_storage == ORK_DFT_REAL_REAL;
}
// Conjugate-even data packed into real numbers, not complex ones.
inline bool packed(const ork_dft_node& node) { return node.storage.conjugate_even_storage != ORK_DFT_COMPLEX_COMPLEX; }

template <class R>
inline R scale_of(const ork_dft_node& node, Direction direction)
{
    if constexpr (is_double<R>)
        return direction == Direction::forward ? node.scales.forward : node.scales.backward;
    else
        return direction == Direction::forward ? node.scales.forward_single : node.scales.backward_single;
}

template <class R>
inline const Plan<R>& plan_of(const void* plan)
{
    return *static_cast<const Plan<R>*>(plan);
}

// Work memory of one call: of the stack where it is small, so that a short transform costs no call of the core. The
// stack is taken in a frame of its own: kernels that are handed their work memory leave it alone.
inline constexpr std::size_t stack_work = 24 << 10;
template <class Body>
[[gnu::noinline]] std::int32_t with_stack(Body& body)
{
    alignas(64) char work[stack_work];
    return body(static_cast<void*>(work));
}
template <class Body>
[[gnu::always_inline]] inline std::int32_t with_work(std::size_t bytes, Body body)
{
    if (bytes == 0) return body(static_cast<void*>(nullptr));
    if (bytes <= stack_work) return with_stack(body);
    void* work = ork_dft_ufxMalloc(static_cast<std::int64_t>(bytes));
    if (work == nullptr) return ORK_DFT_NO_MEMORY;
    const std::int32_t status = body(work);
    ork_dft_ufxFree(work);
    return status;
}

// Every one returns a status and leaves what it has made to release_plan.
template <class R>
std::int32_t plan_dimension(ork_dft_node& head, ork_dft_node& node); // engine, plan and kernels of one dimension
template <class R>
std::int32_t plan_real(ork_dft_node& head); // engine, plan and kernels of the real dimension
template <class R>
std::int32_t make_stages(ork_dft_node& head); // of complex data
template <class R>
std::int32_t make_real_stages(ork_dft_node& head);
template <class R>
std::int32_t make_batched(ork_dft_node& head, ork_dft_node& node); // ORK_DFT_NOT_APPLICABLE too
template <class R>
std::int32_t make_four_step(ork_dft_node& head);
template <class R>
void free_four_step(ork_dft_four_step* plan);
template <class R>
void free_real(void* plan);

std::int32_t release_plan(ork_dft_node* head);

// Kernel pairs of one transform of unit stride, [direction].
template <class R>
struct Kernels {
    static ork_dft_kernel *const power_of_two[2], *const mixed[2], *const batched[2], *const split[2],
                                                                                          *const four_step[2];
};

} // namespace ork::dft
