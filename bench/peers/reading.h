// SPDX-License-Identifier: MIT
// Reads of several arrays by 128-bit loads and nothing else: the least time that a computation over them can take.
#pragma once

#include <cstddef>
#include <vector>

namespace ork::peers {

struct Reading {
    const char* data;
    size_t bytes;
};

struct ReadingWay {
    bool side_by_side; // the first two arrays at once, in proportion, as a product by rows reads values and indices
    int ahead;         // bytes between a load and its prefetch; 0: none
};
std::vector<ReadingWay> reading_ways();

// Whole blocks of 16 bytes within the arrays.
void read(const std::vector<Reading>& arrays, ReadingWay way);

} // namespace ork::peers
