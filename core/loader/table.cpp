// SPDX-License-Identifier: MIT
#include "loader/table.h"

#include <cstdio>
#include <cstring>

namespace ork::loader {
namespace {

// The best first: a library for a newer processor is one more row on top.
constexpr KernelLibrary libraries[] = {
    {"nx2", "libork_nx2.so", 3, [](const services::Processor& p) { return p.sse42; }},
};

} // namespace

const KernelLibrary* choose(const services::Processor& processor)
{
    for (const KernelLibrary& library : libraries)
        if (library.serves(processor)) return &library;
    return nullptr;
}

bool compose_name(char* name, std::size_t size, const char* domain, const char* tag, const char* routine)
{
    const bool tag_last = std::strcmp(domain, "sparse") == 0;
    const int length =
        std::snprintf(name, size, "ork_%s_%s_%s", domain, tag_last ? routine : tag, tag_last ? tag : routine);
    return length > 0 && static_cast<std::size_t>(length) < size;
}

} // namespace ork::loader
