// SPDX-License-Identifier: MIT
// What this machine can do at most with 128-bit instructions: arithmetic without memory, and memory without arithmetic.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace ork::peers {

// Multiplications and additions on registers alone, in chains independent of each other. The variants differ in chains
// and unrolling; which one saturates a processor is found by trying.
struct ArithmeticLoop {
    const char* name;
    long flops; // in one round of the loop, counted in doubles
    void (*run)(long rounds);
};
const std::vector<ArithmeticLoop>& arithmetic_loops(bool single_precision);

// Traffic patterns of the level-1 routines, without their arithmetic. x and y hold `bytes` each, a multiple of 128;
// except for copy (y <- x) and swap, the contents stay as they are.
enum class Traffic {
    load,        // read x
    load_two,    // read x and y
    store,       // write y
    store_past,  // write y around the caches
    update,      // read and write x
    copy,        // read x, write y
    copy_past,   // the same, around the caches
    update_from, // read x, read and write y
    exchange,    // read and write x and y
};
struct Stream {
    Traffic pattern;
    bool ahead;   // with a prefetch 1 KiB ahead
    bool grouped; // four registers a stream are loaded, then stored, stream by stream
};
void traffic(Stream stream, char* x, char* y, size_t bytes, long times);
double bytes_moved(Traffic pattern, size_t bytes); // reads and writes

// The variants worth trying for one pattern; the past-the-caches forms only where the data can't stay in them.
std::vector<Stream> candidates(Traffic pattern, size_t total_bytes);

struct CacheSizes {
    size_t l1, l2, l3;
};
CacheSizes cache_sizes(); // of the first core; a usual size where the system doesn't say

// Rates by level of the memory hierarchy, best of several samples, in bytes a second.
struct LevelRates {
    std::string level;
    size_t bytes; // footprint of all streams together
    double load, copy, store;
};
std::vector<LevelRates> level_rates();
double arithmetic_rate(bool single_precision); // flops a second, best of all variants

} // namespace ork::peers
