// SPDX-License-Identifier: MIT
#include "peers/reading.h"

#include <algorithm>
#include <cstdint>
#include <emmintrin.h>

namespace ork::peers {
namespace {

constexpr size_t step = 128; // bytes: two cache lines

inline void load(const char* p)
{
    __m128i value = _mm_load_si128(reinterpret_cast<const __m128i*>(p));
    asm volatile("" : "+x"(value)); // loaded, whether or not it is used
}

// Prefetches past the end are harmless.
template <bool ahead>
inline void load_step(const char* p, int distance)
{
    if constexpr (ahead) {
        _mm_prefetch(p + distance, _MM_HINT_T0);
        _mm_prefetch(p + distance + 64, _MM_HINT_T0);
    }
#pragma GCC unroll 8
    for (size_t i = 0; i < step; i += 16) load(p + i);
}

struct Span {
    const char *first, *last; // whole registers
};

Span aligned(const Reading& r)
{
    const auto start = (reinterpret_cast<uintptr_t>(r.data) + 15) & ~uintptr_t{15};
    const auto end = (reinterpret_cast<uintptr_t>(r.data) + r.bytes) & ~uintptr_t{15};
    return {reinterpret_cast<const char*>(start), reinterpret_cast<const char*>(std::max(start, end))};
}

template <bool ahead>
void read_span(Span s, int distance)
{
    const char* p = s.first;
    for (; p + step <= s.last; p += step) load_step<ahead>(p, distance);
    for (; p < s.last; p += 16) load(p);
}

template <bool ahead>
void read_pair(Span a, Span b, int distance)
{
    const auto size = [](Span s) { return static_cast<size_t>(s.last - s.first); };
    // values and indices are of 4 or 8 bytes each
    const size_t of_a = size(a) > size(b) + size(b) / 2 ? 2 : 1, of_b = size(b) > size(a) + size(a) / 2 ? 2 : 1;
    while (a.first + of_a * step <= a.last && b.first + of_b * step <= b.last) {
        for (size_t i = 0; i < of_a; ++i, a.first += step) load_step<ahead>(a.first, distance);
        for (size_t i = 0; i < of_b; ++i, b.first += step) load_step<ahead>(b.first, distance);
    }
    read_span<ahead>(a, distance);
    read_span<ahead>(b, distance);
}

template <bool ahead>
void read_all(const std::vector<Reading>& arrays, ReadingWay way)
{
    size_t next = 0;
    if (way.side_by_side && arrays.size() >= 2) {
        read_pair<ahead>(aligned(arrays[0]), aligned(arrays[1]), way.ahead);
        next = 2;
    }
    for (; next < arrays.size(); ++next) read_span<ahead>(aligned(arrays[next]), way.ahead);
    asm volatile("" ::: "memory");
}

} // namespace

std::vector<ReadingWay> reading_ways()
{
    std::vector<ReadingWay> ways;
    for (const bool side_by_side : {false, true})
        for (const int ahead : {0, 512, 1024, 2048, 4096, 8192, 16384}) ways.push_back({side_by_side, ahead});
    return ways;
}

void read(const std::vector<Reading>& arrays, ReadingWay way)
{
    way.ahead > 0 ? read_all<true>(arrays, way) : read_all<false>(arrays, way);
}

} // namespace ork::peers
