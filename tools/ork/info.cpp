// SPDX-License-Identifier: MIT
#include <filesystem>
#include <fmt/format.h>
#include <stdexcept>

#include "commands.h"
#include "exports.h"
#include "ork/ork.h"
#include "peers/limits.h"

namespace ork::tool {
namespace {

std::string size_text(size_t bytes)
{
    return bytes % (1 << 20) == 0 ? fmt::format("{} MiB", bytes >> 20) : fmt::format("{} KiB", bytes >> 10);
}

int run()
{
    char processor[128];
    ork_processor_name(processor, sizeof(processor));
    fmt::print("{:<16}{}\n", "version", ork_version());
    fmt::print("{:<16}{}\n", "processor", processor);
    const peers::CacheSizes cache = peers::cache_sizes();
    fmt::print("{:<16}L1 {}, L2 {}, L3 {}\n", "caches", size_text(cache.l1), size_text(cache.l2), size_text(cache.l3));
    fmt::print("{:<16}{}\n", "threads", ork_get_max_threads());
    std::fflush(stdout);
    if (ork_initialize() != ORK_OK) throw std::runtime_error(ork_error_text());
    const std::filesystem::path file = ork_kernel_library();
    fmt::print("{:<16}{}\n", "kernel library", file.stem().string());
    fmt::print("{:<16}{}\n", "file", file.string());
    fmt::print("{:<16}{} (SSE4.2)\n", "code path", ork_code_path());
    fmt::print("{:<16}{}\n", "exports", count_exports(file.string()));
    return 0;
}

} // namespace

void add_info(CLI::App& app, int& status)
{
    app.add_subcommand("info", "Show the processor and the kernel library in use")->callback([&status] {
        status = run();
    });
}

} // namespace ork::tool
