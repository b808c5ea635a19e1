// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <string>

namespace ork::tool {

// One line on standard error that counts up; nothing at all where standard error is no terminal.
class Progress {
public:
    explicit Progress(size_t total);
    ~Progress() { clear(); }
    void show(size_t done, const std::string& now);
    void clear();

private:
    size_t total_;
    bool visible_;
    std::chrono::steady_clock::time_point start_;
};

} // namespace ork::tool
