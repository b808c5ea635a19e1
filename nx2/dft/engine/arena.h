// SPDX-License-Identifier: MIT
// All tables of a plan in one piece of memory: a builder runs once without memory, to count, and once with it.
#pragma once

#include "dft/lines.h"

namespace ork::dft {

class Arena {
public:
    Arena() = default;
    explicit Arena(void* memory) : base_(static_cast<char*>(memory)) {}

    bool counting() const { return base_ == nullptr; }
    std::size_t used() const { return used_; }

    // 64-byte aligned; meaningless while counting.
    template <class T>
    T* take(std::size_t count)
    {
        const std::size_t at = used_;
        used_ += whole_lines(count * sizeof(T));
        return reinterpret_cast<T*>(base_ + at);
    }

private:
    char* base_ = nullptr;
    std::size_t used_ = 0;
};

} // namespace ork::dft
