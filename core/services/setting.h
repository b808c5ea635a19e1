// SPDX-License-Identifier: MIT
// One integer that a user chooses by an environment variable, read on first use, or by a call, which wins.
#pragma once

#include <atomic>
#include <cstdlib>

namespace ork::services {

// The environment is ignored in set-user-ID programs: whoever starts one must not steer it.
inline const char* environment(const char* variable) { return secure_getenv(variable); }

// The number that a text begins with, or `otherwise` when it begins with none or with a negative one.
int leading_number(const char* text, int otherwise);

class Setting {
public:
    constexpr Setting(const char* variable, int otherwise) : variable_(variable), otherwise_(otherwise) {}

    int get()
    {
        int value = value_.load(std::memory_order_relaxed);
        if (value != unread) [[likely]]
            return value;
        const int read = leading_number(environment(variable_), otherwise_);
        return value_.compare_exchange_strong(value, read, std::memory_order_relaxed) ? read : value;
    }

    // Returns the value that held before.
    int set(int value)
    {
        const int old = get();
        value_.store(value < 0 ? otherwise_ : value, std::memory_order_relaxed);
        return old;
    }

private:
    static constexpr int unread = -1;
    std::atomic<int> value_ = unread;
    const char* variable_;
    int otherwise_;
};

} // namespace ork::services
