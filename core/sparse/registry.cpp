// SPDX-License-Identifier: MIT
// The table grows by blocks that stay where they are until the library is unloaded; looking up takes no lock, and
// neither does the list of free slots, so a fork at any time leaves the child with a table that works.
#include "sparse/registry.h"

#include <atomic>
#include <bit>
#include <cstdint>
#include <cstdlib>

#include "sparse/handle.h"

namespace ork::sparse {
namespace {

struct Slot {
    std::atomic<std::uint32_t> generation;
    std::atomic<std::uint32_t> next_free; // slot + 1; 0: none
    std::atomic<Matrix*> matrix;
};

constexpr std::uint32_t first_slots = 64;     // of block 0; each further block has twice as many
constinit std::atomic<Slot*> blocks[27] = {}; // the last for numbers that no slot has
constinit std::atomic<std::uint32_t> slots_used = 0;
constinit std::atomic<std::uint64_t> free_slots = 0; // lower half: slot + 1 or 0, upper half: count of changes

[[gnu::destructor]] void unload()
{
    for (auto& block : blocks) std::free(block.exchange(nullptr));
}

struct Position {
    int block;
    std::uint32_t offset;
};
Position position_of(std::uint32_t slot)
{
    const std::uint64_t from_first = std::uint64_t{slot} + first_slots;
    const int block = std::bit_width(from_first) - std::bit_width(first_slots);
    return {block, static_cast<std::uint32_t>(from_first - (std::uint64_t{first_slots} << block))};
}

// Null where there is no block yet.
Slot* find_slot(std::uint32_t slot)
{
    const auto [block, offset] = position_of(slot);
    Slot* const slots = blocks[block].load(std::memory_order_acquire);
    return slots != nullptr ? slots + offset : nullptr;
}

bool pop_free(std::uint32_t& slot)
{
    std::uint64_t head = free_slots.load(std::memory_order_acquire);
    while (static_cast<std::uint32_t>(head) != 0) {
        slot = static_cast<std::uint32_t>(head) - 1;
        const std::uint64_t next = find_slot(slot)->next_free.load(std::memory_order_relaxed);
        if (free_slots.compare_exchange_weak(head, ((head >> 32) + 1) << 32 | next, std::memory_order_acq_rel))
            return true;
    }
    return false;
}

void push_free(std::uint32_t slot)
{
    std::uint64_t head = free_slots.load(std::memory_order_relaxed);
    do find_slot(slot)->next_free.store(static_cast<std::uint32_t>(head), std::memory_order_relaxed);
    while (!free_slots.compare_exchange_weak(head, ((head >> 32) + 1) << 32 | (std::uint64_t{slot} + 1),
                                             std::memory_order_acq_rel));
}

bool have_block(int block)
{
    if (blocks[block].load(std::memory_order_acquire) != nullptr) return true;
    auto* const fresh = static_cast<Slot*>(std::calloc(std::size_t{first_slots} << block, sizeof(Slot)));
    if (fresh == nullptr) return false;
    Slot* none = nullptr;
    if (!blocks[block].compare_exchange_strong(none, fresh, std::memory_order_acq_rel)) std::free(fresh);
    return true;
}

bool take_slot(std::uint32_t& slot)
{
    if (pop_free(slot)) return true;
    slot = slots_used.load(std::memory_order_relaxed);
    do
        if (slot >= UINT32_MAX - first_slots || !have_block(position_of(slot).block)) return false;
    while (!slots_used.compare_exchange_weak(slot, slot + 1, std::memory_order_relaxed));
    return true;
}

struct Number {
    std::uint32_t slot, generation;
};
Number number_of(ork_sparse_matrix_t handle)
{
    const auto bits = reinterpret_cast<std::uintptr_t>(handle);
    return {static_cast<std::uint32_t>(bits), static_cast<std::uint32_t>(bits >> 32)};
}

} // namespace

ork_sparse_matrix_t enter(Matrix* matrix)
{
    std::uint32_t slot;
    if (!take_slot(slot)) return nullptr;
    Slot& s = *find_slot(slot);
    s.matrix.store(matrix, std::memory_order_relaxed);
    const std::uint32_t generation = s.generation.load(std::memory_order_relaxed) + 1;
    s.generation.store(generation, std::memory_order_release);
    return reinterpret_cast<ork_sparse_matrix_t>(std::uintptr_t{generation} << 32 | slot);
}

Matrix* withdraw(ork_sparse_matrix_t handle)
{
    auto [slot, generation] = number_of(handle);
    Slot* const s = find_slot(slot);
    if (s == nullptr || generation % 2 == 0) return nullptr;
    Matrix* const matrix = s->matrix.load(std::memory_order_relaxed);
    if (!s->generation.compare_exchange_strong(generation, generation + 1, std::memory_order_acq_rel)) return nullptr;
    push_free(slot);
    return matrix;
}

Matrix* matrix_of(ork_sparse_matrix_t handle)
{
    const auto [slot, generation] = number_of(handle);
    const Slot* const s = find_slot(slot);
    if (s == nullptr || generation % 2 == 0 || s->generation.load(std::memory_order_acquire) != generation)
        return nullptr;
    return s->matrix.load(std::memory_order_relaxed);
}

} // namespace ork::sparse
