// SPDX-License-Identifier: MIT
// Places for descriptors, in blocks of 8, 16, 32, ... that stay until the library leaves. No lock, so fork finds them
// whole at any moment: a place belongs to who set its flag.
#include <atomic>
#include <cstdlib>
#include <new>

#include "dft/descriptor.h"

namespace ork::dft {
namespace {

struct Place {
    ork_dft_descriptor descriptor;
    std::atomic<bool> taken = false;
};

constexpr int most_blocks = 28;
constexpr std::size_t places_in(int block) { return std::size_t{8} << block; }

constinit std::atomic<Place*> blocks[most_blocks] = {};
// The place in its block after the one that was given out last: a freed handle is to be noticed for as long as
// possible, so its place is the last to be taken again.
constinit std::atomic<std::size_t> next_place = 0;

Place* make_block(int block)
{
    auto* places = static_cast<Place*>(std::malloc(places_in(block) * sizeof(Place)));
    if (places == nullptr) return nullptr;
    for (std::size_t i = 0; i < places_in(block); ++i) new (&places[i]) Place;
    Place* none = nullptr;
    if (blocks[block].compare_exchange_strong(none, places, std::memory_order_acq_rel)) return places;
    std::free(places);
    return none;
}

Place* take_place(Place* places, std::size_t count)
{
    const std::size_t first = next_place.load(std::memory_order_relaxed);
    for (std::size_t i = 0; i < count; ++i) {
        Place& place = places[(first + i) % count];
        if (place.taken.load(std::memory_order_relaxed) || place.taken.exchange(true, std::memory_order_acquire))
            continue;
        next_place.store((first + i + 1) % count, std::memory_order_relaxed);
        return &place;
    }
    return nullptr;
}

[[gnu::destructor]] void unload()
{
    for (auto& block : blocks) std::free(block.exchange(nullptr));
}

} // namespace

ork_dft_descriptor* new_descriptor()
{
    for (int block = 0; block < most_blocks; ++block) {
        Place* places = blocks[block].load(std::memory_order_acquire);
        if (places == nullptr) places = make_block(block);
        if (places == nullptr) return nullptr;
        if (Place* place = take_place(places, places_in(block))) {
            place->descriptor = {};
            return &place->descriptor;
        }
    }
    return nullptr;
}

void delete_descriptor(ork_dft_descriptor* descriptor)
{
    descriptor->state = 0;
    reinterpret_cast<Place*>(descriptor)->taken.store(false, std::memory_order_release);
}

} // namespace ork::dft
