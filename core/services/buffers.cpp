// SPDX-License-Identifier: MIT
// Work buffers of the blocked multiply. A fresh mapping costs a page fault per 4 KiB, more than packing into it, so
// released buffers are kept for the next call of whatever thread comes. No lock, so fork and unload find the cache
// whole at any moment: a slot is one word, the address of a mapping (a multiple of 4096) with its size class in the low
// bits, and who swaps the word out owns the mapping.
#include <sys/mman.h>

#include <atomic>
#include <bit>
#include <cstddef>
#include <cstdint>

#include "export.h"
#include "ork/abi/services.h"
#include "ork/ork.h"

namespace {

constexpr size_t page = 4096, huge_page = size_t{2} << 20;
constexpr size_t keep_at_most = size_t{64} << 20; // bytes in the cache, by all threads together
constexpr int close_fit = 16;                     // classes by which a kept buffer may be larger: at most four times

// Classes have eight sizes an octave from 64 KiB on, so a mapping is at most an eighth larger than asked.
constexpr size_t class_bytes(int size_class) { return (8 + size_t(size_class & 7)) << 13 << (size_class >> 3); }

constexpr int class_of(size_t bytes)
{
    if (bytes <= class_bytes(0)) return 0;
    const int shift = std::bit_width(bytes - 1) - 4;
    return (shift - 13) * 8 + static_cast<int>((bytes - 1) >> shift) + 1 - 8;
}
static_assert(class_of(65536) == 0 && class_of(65537) == 1 && class_of(class_bytes(7) + 1) == 8);

// Stands in the 64 bytes before the caller's pointer.
struct Header {
    char* mapping;
    int size_class;
};
constexpr size_t header_room = 64;

Header& header_of(void* ptr) { return *reinterpret_cast<Header*>(static_cast<char*>(ptr) - header_room); }

constinit std::atomic<uintptr_t> slots[32] = {};
constinit std::atomic<size_t> kept = 0;
constinit std::atomic<unsigned> next_victim = 0;

int class_in(uintptr_t word) { return word % page; }
char* mapping_in(uintptr_t word) { return reinterpret_cast<char*>(word - word % page); }

void unmap(uintptr_t word) { munmap(mapping_in(word), class_bytes(class_in(word))); }

void* map_pages(size_t bytes)
{
    void* mapping = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return mapping == MAP_FAILED ? nullptr : mapping;
}

// On a boundary of huge pages and with leave to use them: the first touch of 12 MiB then takes 0.6 ms instead of 4.9.
void* map_huge_pages(size_t bytes)
{
    char* room = static_cast<char*>(map_pages(bytes + huge_page));
    if (room == nullptr) return nullptr;
    const size_t before = -reinterpret_cast<uintptr_t>(room) % huge_page, after = huge_page - before;
    if (before) munmap(room, before);
    if (after) munmap(room + before + bytes, after);
    madvise(room + before, bytes, MADV_HUGEPAGE);
    return room + before;
}

uintptr_t map(int size_class)
{
    const size_t bytes = class_bytes(size_class);
    void* mapping = bytes >= huge_page ? map_huge_pages(bytes) : nullptr;
    if (mapping == nullptr) mapping = map_pages(bytes);
    return mapping ? reinterpret_cast<uintptr_t>(mapping) | size_class : 0;
}

// Takes the word out of a slot; 0 when another thread was faster.
uintptr_t take(std::atomic<uintptr_t>& slot, uintptr_t word)
{
    if (word == 0 || !slot.compare_exchange_strong(word, 0, std::memory_order_acquire)) return 0;
    kept.fetch_sub(class_bytes(class_in(word)), std::memory_order_relaxed);
    return word;
}

uintptr_t take_best(int size_class)
{
    for (int attempt = 0; attempt < 4; ++attempt) {
        std::atomic<uintptr_t>* best = nullptr;
        uintptr_t best_word = 0;
        for (auto& slot : slots) {
            const uintptr_t word = slot.load(std::memory_order_relaxed);
            if (word == 0 || class_in(word) < size_class || class_in(word) > size_class + close_fit) continue;
            if (best_word == 0 || class_in(word) < class_in(best_word)) best = &slot, best_word = word;
            if (class_in(word) == size_class) break;
        }
        if (best == nullptr) return 0;
        if (const uintptr_t word = take(*best, best_word)) return word;
    }
    return 0;
}

void keep(uintptr_t word)
{
    const size_t bytes = class_bytes(class_in(word));
    if (bytes > keep_at_most) return unmap(word);
    for (int attempt = 0; attempt < 64; ++attempt) {
        if (kept.load(std::memory_order_relaxed) + bytes <= keep_at_most)
            for (auto& slot : slots) {
                uintptr_t empty = 0;
                if (slot.load(std::memory_order_relaxed) != 0) continue;
                kept.fetch_add(bytes, std::memory_order_relaxed); // before others can take it out again
                if (slot.compare_exchange_strong(empty, word, std::memory_order_release)) return;
                kept.fetch_sub(bytes, std::memory_order_relaxed);
            }
        auto& victim = slots[next_victim.fetch_add(1, std::memory_order_relaxed) % std::size(slots)];
        if (const uintptr_t old = take(victim, victim.load(std::memory_order_relaxed))) unmap(old);
    }
    unmap(word);
}

void release_all()
{
    for (auto& slot : slots)
        if (const uintptr_t word = take(slot, slot.load(std::memory_order_relaxed))) unmap(word);
}

[[gnu::destructor]] void unload() { release_all(); }

} // namespace

ORK_EXPORT void* ork_serv_allocate(size_t size, size_t alignment)
{
    if ((alignment & (alignment - 1)) != 0 || size > PTRDIFF_MAX / 2 || alignment > PTRDIFF_MAX / 4) return nullptr;
    if (alignment < header_room) alignment = header_room;
    // Mappings begin on a page, so up to a page the first `alignment` bytes make room for the header and align as well.
    const int size_class = class_of(size + (alignment <= page ? alignment : alignment + page));
    uintptr_t word = take_best(size_class);
    if (word == 0) word = map(size_class);
    if (word == 0) {
        release_all();
        word = map(size_class);
    }
    if (word == 0) return nullptr;
    const uintptr_t first = reinterpret_cast<uintptr_t>(mapping_in(word)) + header_room;
    void* ptr = reinterpret_cast<void*>((first + alignment - 1) & ~(alignment - 1));
    header_of(ptr) = {mapping_in(word), class_in(word)};
    return ptr;
}

ORK_EXPORT void ork_serv_deallocate(void* ptr)
{
    if (ptr == nullptr) return;
    const Header header = header_of(ptr);
    keep(reinterpret_cast<uintptr_t>(header.mapping) | header.size_class);
}

ORK_EXPORT void ork_free_buffers() { release_all(); }
