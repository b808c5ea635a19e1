// SPDX-License-Identifier: MIT
#include "terminal.h"

#include <algorithm>
#include <cstdio>
#include <fmt/format.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace ork::tool {

Progress::Progress(size_t total)
    : total_(total), visible_(isatty(STDERR_FILENO) && total > 0), start_(std::chrono::steady_clock::now())
{
}

void Progress::show(size_t done, const std::string& now)
{
    if (!visible_) return;
    winsize size{};
    const int columns = ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
    const double elapsed = std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
    constexpr size_t width = 24;
    const size_t filled = width * done / total_;
    std::string line =
        fmt::format("[{}{}] {}/{} {}", std::string(filled, '#'), std::string(width - filled, '.'), done, total_, now);
    if (done > 0 && elapsed > 2) {
        const int left = static_cast<int>(elapsed / static_cast<double>(done) * static_cast<double>(total_ - done));
        line += fmt::format("  about {}:{:02} left", left / 60, left % 60);
    }
    line.resize(std::min<size_t>(line.size(), static_cast<size_t>(std::max(columns - 1, 1))));
    fmt::print(stderr, "\r\033[K{}", line);
    std::fflush(stderr);
}

void Progress::clear()
{
    if (!visible_) return;
    fmt::print(stderr, "\r\033[K");
    std::fflush(stderr);
}

} // namespace ork::tool
