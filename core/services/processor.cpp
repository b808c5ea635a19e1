// SPDX-License-Identifier: MIT
#include "services/processor.h"

#include <cpuid.h>

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "export.h"
#include "ork/abi/services.h"
#include "ork/ork.h"

namespace ork::services {
namespace {

bool bit(unsigned value, int position) { return value >> position & 1; }

// Register groups that the operating system saves: bit 1 SSE, 2 AVX, 5 to 7 AVX-512.
unsigned saved_registers()
{
    unsigned low, high;
    __asm__("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
    return low;
}

// Published processor-model codes. 66 makes the double-precision multiply take the second row of its kernel table,
// whose kernel broadcasts elements in the load unit: the code of processors that do that for nothing while their
// shuffles share pipes with the arithmetic. Measured on Zen 5 (dgemm at n = 256 11 % faster than with row 0); its
// predecessors have the same pipes.
struct Model {
    const char* vendor;
    int family, first_model, last_model;
    int code;
};

constexpr Model models[] = {
    // clang-format off
    {"GenuineIntel",  6, 0x1a, 0x1f, 10}, // Nehalem
    {"GenuineIntel",  6, 0x25, 0x2f, 11}, // Westmere, and small cores of its time
    {"GenuineIntel",  6, 0x00, 0xff, 12}, // later ones
    {"AuthenticAMD", 21, 0x00, 0xff, 20}, // Bulldozer to Excavator
    {"AuthenticAMD", 23, 0x00, 0xff, 66}, // Zen, Zen 2
    {"AuthenticAMD", 25, 0x00, 0xff, 66}, // Zen 3, Zen 4
    {"AuthenticAMD", 26, 0x00, 0xff, 66}, // Zen 5
    // clang-format on
};

} // namespace

Processor detect_processor()
{
    Processor p;
    unsigned a, b, c, d;
    if (!__get_cpuid(0, &a, &b, &c, &d)) return p;
    std::memcpy(p.vendor, &b, 4);
    std::memcpy(p.vendor + 4, &d, 4);
    std::memcpy(p.vendor + 8, &c, 4);

    if (!__get_cpuid(1, &a, &b, &c, &d)) return p;
    const int base = a >> 8 & 15;
    p.family = base == 15 ? base + static_cast<int>(a >> 20 & 255) : base;
    p.model = (a >> 4 & 15) | (base == 6 || base == 15 ? a >> 12 & 0xf0 : 0);
    p.sse42 = bit(c, 20);
    const unsigned saved = bit(c, 27) ? saved_registers() : 0;
    if (bit(c, 28) && (saved & 0x06) == 0x06 && __get_cpuid_count(7, 0, &a, &b, &c, &d)) {
        p.avx2 = bit(b, 5);
        p.avx512 = (saved & 0xe0) == 0xe0 && bit(b, 16) && bit(b, 17) && bit(b, 30) && bit(b, 31);
    }

    unsigned text[12];
    for (unsigned i = 0; i < 3; ++i)
        if (!__get_cpuid(0x80000002 + i, text + 4 * i, text + 4 * i + 1, text + 4 * i + 2, text + 4 * i + 3)) return p;
    char name[sizeof text + 1] = "";
    std::memcpy(name, text, sizeof text);
    std::strcpy(p.name, name + std::strspn(name, " "));
    return p;
}

int microarchitecture(const Processor& processor)
{
    for (const Model& m : models)
        if (std::strcmp(m.vendor, processor.vendor) == 0 && m.family == processor.family &&
            m.first_model <= processor.model && processor.model <= m.last_model)
            return m.code;
    return 0;
}

namespace {

// cpuid traps to the hypervisor in a virtual machine (tens of microseconds), so its two answers are kept, plus 1.
constinit std::atomic<int> known_code = 0, known_level = 0;

void ask()
{
    const Processor p = detect_processor();
    known_code.store(microarchitecture(p) + 1, std::memory_order_relaxed);
    known_level.store((p.avx512 ? 3 : p.avx2 ? 2 : p.sse42 ? 1 : 0) + 1, std::memory_order_relaxed);
}

int answer(std::atomic<int>& known)
{
    if (known.load(std::memory_order_relaxed) == 0) ask();
    return known.load(std::memory_order_relaxed) - 1;
}

} // namespace
} // namespace ork::services

ORK_EXPORT int64_t ork_serv_get_microarchitecture() { return ork::services::answer(ork::services::known_code); }
ORK_EXPORT int64_t ork_serv_cpu_detect() { return ork::services::answer(ork::services::known_level); }

ORK_EXPORT void ork_processor_name(char* buffer, size_t size)
{
    if (size > 0) std::snprintf(buffer, size, "%s", ork::services::detect_processor().name);
}
