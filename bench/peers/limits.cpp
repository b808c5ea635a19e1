// SPDX-License-Identifier: MIT
#include "peers/limits.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <emmintrin.h>
#include <fstream>
#include <memory>

#include "peers/measure.h"

namespace ork::peers {
namespace {

// Multiplications of ones and additions of zeros: values that no round changes or slows down. The chains of the first
// body are bound by latency where a processor starts more than 8 of a kind within one latency; the second body breaks
// them with copies, which cost a slot of the front end but no arithmetic.
#define ORK_CHAINS(type)                                                                                               \
    ".irp r,0,1,2,3,4,5,6,7\n\tmul" type " %%xmm\\r, %%xmm\\r\n\t.endr\n\t"                                            \
    ".irp r,8,9,10,11,12,13,14,15\n\tadd" type " %%xmm\\r, %%xmm\\r\n\t.endr\n\t"
#define ORK_COPIES(type)                                                                                               \
    ".irp r,2,3,4,5,6,7,8,9,10,11,12,13,14\n\tmovapd %%xmm1, %%xmm0\n\tmul" type " %%xmm1, %%xmm0\n\tadd" type         \
    " %%xmm15, %%xmm\\r\n\t.endr\n\t"
#define ORK_ARITHMETIC(name, type, body, repeat)                                                                       \
    void name(long rounds)                                                                                             \
    {                                                                                                                  \
        const __m128d one = type[1] == 'd' ? _mm_set1_pd(1) : _mm_castps_pd(_mm_set1_ps(1));                           \
        asm volatile(".irp r,0,1,2,3,4,5,6,7\n\tmovapd %1, %%xmm\\r\n\t.endr\n\t"                                      \
                     ".irp r,8,9,10,11,12,13,14,15\n\txorpd %%xmm\\r, %%xmm\\r\n\t.endr\n\t"                           \
                     ".p2align 6\n1:\n\t.rept " #repeat "\n\t" body(type) ".endr\n\tdec %0\n\tjnz 1b"                  \
                     : "+r"(rounds)                                                                                    \
                     : "m"(one)                                                                                        \
                     : "cc", "xmm0", "xmm1", "xmm2", "xmm3", "xmm4", "xmm5", "xmm6", "xmm7", "xmm8", "xmm9", "xmm10",  \
                       "xmm11", "xmm12", "xmm13", "xmm14", "xmm15");                                                   \
    }

ORK_ARITHMETIC(double_chains, "pd", ORK_CHAINS, 1)
ORK_ARITHMETIC(double_chains_unrolled, "pd", ORK_CHAINS, 4)
ORK_ARITHMETIC(double_copies, "pd", ORK_COPIES, 2)
ORK_ARITHMETIC(single_chains, "ps", ORK_CHAINS, 1)
ORK_ARITHMETIC(single_chains_unrolled, "ps", ORK_CHAINS, 4)
ORK_ARITHMETIC(single_copies, "ps", ORK_COPIES, 2)

// Loads into a register, whether or not the value is used, and hides where it came from: a store of it stays a store.
inline __m128d loaded(const double* from)
{
    __m128d value = _mm_load_pd(from);
    asm volatile("" : "+x"(value));
    return value;
}

// `width` registers of each stream: all loads, then all stores.
template <Traffic pattern, int width>
inline void step(double* x, double* y)
{
    using enum Traffic;
    constexpr bool reads_x = pattern != store && pattern != store_past;
    constexpr bool reads_y = pattern == load_two || pattern == update_from || pattern == exchange;
    __m128d u[width], v[width];
#pragma GCC unroll 8
    for (int i = 0; i < width; ++i) {
        if constexpr (reads_x) u[i] = loaded(x + 2 * i);
        if constexpr (reads_y && width == 1) v[i] = loaded(y + 2 * i);
    }
#pragma GCC unroll 8
    for (int i = 0; i < width; ++i)
        if constexpr (reads_y && width > 1) v[i] = loaded(y + 2 * i);
#pragma GCC unroll 8
    for (int i = 0; i < width; ++i) {
        if constexpr (pattern == update) _mm_store_pd(x + 2 * i, u[i]);
        if constexpr (pattern == copy || pattern == exchange) _mm_store_pd(y + 2 * i, u[i]);
        if constexpr (pattern == copy_past) _mm_stream_pd(y + 2 * i, u[i]);
        if constexpr (pattern == update_from) _mm_store_pd(y + 2 * i, v[i]);
    }
#pragma GCC unroll 8
    for (int i = 0; i < width; ++i)
        if constexpr (pattern == exchange) _mm_store_pd(x + 2 * i, v[i]);
}

constexpr bool touches_both(Traffic pattern)
{
    return pattern == Traffic::load_two || pattern == Traffic::copy || pattern == Traffic::update_from ||
           pattern == Traffic::exchange;
}

template <Traffic pattern, bool ahead = false, int width = 1>
void stream(char* x, char* y, size_t bytes, long times)
{
    constexpr ptrdiff_t block = 16, distance = 128; // doubles
    for (; times > 0; --times) {
        double* p = reinterpret_cast<double*>(x);
        double* q = reinterpret_cast<double*>(y);
        for (double* end = p + bytes / sizeof(double); p != end; p += block, q += block) {
            if constexpr (ahead)
                for (ptrdiff_t i = 0; i < block; i += 8) { // a line each; prefetching past the end is harmless
                    _mm_prefetch(reinterpret_cast<const char*>(p + distance + i), _MM_HINT_T0);
                    if constexpr (touches_both(pattern))
                        _mm_prefetch(reinterpret_cast<const char*>(q + distance + i), _MM_HINT_T0);
                }
#pragma GCC unroll 8
            for (ptrdiff_t i = 0; i < block; i += 2 * width) step<pattern, width>(p + i, q + i);
            asm volatile("" ::: "memory"); // passes over the same data are not to be merged
        }
    }
    if constexpr (pattern == Traffic::copy_past) _mm_sfence();
}

void store_stream(char* y, size_t bytes, long times, bool past)
{
    const __m128d one = _mm_set1_pd(1);
    for (; times > 0; --times)
        for (double *q = reinterpret_cast<double*>(y), *end = q + bytes / sizeof(double); q != end; q += 16) {
#pragma GCC unroll 8
            for (ptrdiff_t i = 0; i < 16; i += 2)
                if (past)
                    _mm_stream_pd(q + i, one);
                else
                    _mm_store_pd(q + i, one);
            asm volatile("" ::: "memory");
        }
    if (past) _mm_sfence();
}

// Size of the first core's data or unified cache of a level, as the kernel describes it: what sysconf says may be the
// sum over a whole package.
size_t cache_size(int level, size_t otherwise)
{
    for (int index = 0; index < 8; ++index) {
        const std::string folder = "/sys/devices/system/cpu/cpu0/cache/index" + std::to_string(index) + "/";
        std::ifstream level_file(folder + "level"), type_file(folder + "type"), size_file(folder + "size");
        int its_level = 0;
        std::string type;
        size_t kilobytes = 0;
        if (level_file >> its_level && type_file >> type && size_file >> kilobytes && its_level == level &&
            type != "Instruction")
            return kilobytes << 10;
    }
    return otherwise;
}

// Best rate of the streams over arrays of `bytes` each, at least 20 samples.
double best_rate(const std::vector<Stream>& streams, char* x, char* y, size_t bytes)
{
    double best = 0;
    for (const Stream& stream : streams) {
        const auto run = [&](long times) { traffic(stream, x, y, bytes, times); };
        const long times = calibrate(run, 1e-3);
        for (int sample = 0; sample < 20; ++sample)
            best =
                std::max(best, static_cast<double>(times) * bytes_moved(stream.pattern, bytes) / time_of(run, times));
    }
    return best;
}

template <bool ahead, int width>
void run_stream(Traffic pattern, char* x, char* y, size_t bytes, long times)
{
    switch (pattern) {
    case Traffic::load:
        return stream<Traffic::load, ahead, width>(x, y, bytes, times);
    case Traffic::load_two:
        return stream<Traffic::load_two, ahead, width>(x, y, bytes, times);
    case Traffic::store:
        return store_stream(y, bytes, times, false);
    case Traffic::store_past:
        return store_stream(y, bytes, times, true);
    case Traffic::update:
        return stream<Traffic::update, ahead, width>(x, y, bytes, times);
    case Traffic::copy:
        return stream<Traffic::copy, ahead, width>(x, y, bytes, times);
    case Traffic::copy_past:
        return stream<Traffic::copy_past>(x, y, bytes, times);
    case Traffic::update_from:
        return stream<Traffic::update_from, ahead, width>(x, y, bytes, times);
    case Traffic::exchange:
        return stream<Traffic::exchange, ahead, width>(x, y, bytes, times);
    }
}

} // namespace

const std::vector<ArithmeticLoop>& arithmetic_loops(bool single_precision)
{
    static const std::vector<ArithmeticLoop> doubles = {{"8 + 8 chains", 16 * 2, double_chains},
                                                        {"8 + 8 chains, 4 times", 4 * 16 * 2, double_chains_unrolled},
                                                        {"13 copies, twice", 2 * 26 * 2, double_copies}};
    static const std::vector<ArithmeticLoop> singles = {{"8 + 8 chains", 16 * 4, single_chains},
                                                        {"8 + 8 chains, 4 times", 4 * 16 * 4, single_chains_unrolled},
                                                        {"13 copies, twice", 2 * 26 * 4, single_copies}};
    return single_precision ? singles : doubles;
}

void traffic(Stream stream, char* x, char* y, size_t bytes, long times)
{
    const auto run = stream.ahead ? (stream.grouped ? run_stream<true, 4> : run_stream<true, 1>)
                                  : (stream.grouped ? run_stream<false, 4> : run_stream<false, 1>);
    run(stream.pattern, x, y, bytes, times);
}

double bytes_moved(Traffic pattern, size_t bytes)
{
    const double size = static_cast<double>(bytes);
    switch (pattern) {
    case Traffic::load:
    case Traffic::store:
    case Traffic::store_past:
        return size;
    case Traffic::load_two:
    case Traffic::update:
    case Traffic::copy:
    case Traffic::copy_past:
        return 2 * size;
    case Traffic::update_from:
        return 3 * size;
    case Traffic::exchange:
        return 4 * size;
    }
    return 0;
}

std::vector<Stream> candidates(Traffic pattern, size_t total_bytes)
{
    const bool fits_l1 = total_bytes <= cache_sizes().l1, fits = total_bytes <= cache_sizes().l3;
    if (pattern == Traffic::store && fits) return {{Traffic::store, false, false}};
    if (pattern == Traffic::store) return {{Traffic::store, false, false}, {Traffic::store_past, false, false}};
    std::vector<Stream> all;
    for (const bool ahead : {false, true})
        for (const bool grouped : {false, true})
            if (!ahead || !fits_l1) all.push_back({pattern, ahead, grouped});
    if (!fits && pattern == Traffic::copy) all.push_back({Traffic::copy_past, false, false});
    return all;
}

CacheSizes cache_sizes()
{
    static const CacheSizes sizes = {cache_size(1, 32 << 10), cache_size(2, 256 << 10), cache_size(3, 8 << 20)};
    return sizes;
}

std::vector<LevelRates> level_rates()
{
    const CacheSizes cache = cache_sizes();
    const size_t memory = std::clamp<size_t>(4 * cache.l3, 128 << 20, 512 << 20);
    const std::vector<std::pair<const char*, size_t>> levels = {
        {"L1", cache.l1 / 2}, {"L2", cache.l2 / 2}, {"8 MiB", 8 << 20}, {"memory", memory}};
    const std::unique_ptr<char, decltype(&std::free)> block(static_cast<char*>(std::aligned_alloc(4096, memory + 4096)),
                                                            &std::free);
    std::vector<LevelRates> rates;
    if (block == nullptr) return rates;
    std::memset(block.get(), 0, memory + 4096);
    for (const auto& [name, bytes] : levels) {
        const size_t half = bytes / 2 / 128 * 128;
        char* x = block.get();
        char* y = x + half + 2048 + 128; // half a page apart: no two streams compete for the same cache sets
        rates.push_back({name, bytes, best_rate(candidates(Traffic::load, bytes), x, y, 2 * half),
                         best_rate(candidates(Traffic::copy, bytes), x, y, half),
                         best_rate(candidates(Traffic::store, bytes), y, x, 2 * half)});
    }
    return rates;
}

double arithmetic_rate(bool single_precision)
{
    double best = 0;
    for (const ArithmeticLoop& loop : arithmetic_loops(single_precision)) {
        const long rounds = calibrate(loop.run, 1e-3);
        for (int sample = 0; sample < 20; ++sample)
            best = std::max(best, static_cast<double>(rounds * loop.flops) / time_of(loop.run, rounds));
    }
    return best;
}

} // namespace ork::peers
