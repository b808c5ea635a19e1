// SPDX-License-Identifier: MIT
// Parallel calls as tests make them.
#pragma once

#include <atomic>
#include <thread>
#include <vector>

#include "ork/ork.h"

namespace ork::test {

inline const std::thread::id main_thread = std::this_thread::get_id();

inline constexpr bool thread_sanitized =
#ifdef __SANITIZE_THREAD__
    true;
#else
    false;
#endif

template <class Body>
void parallel(int parts, Body body)
{
    ork_parallel_for(
        parts, [](void* context, int part) { (*static_cast<Body*>(context))(part); }, &body);
}

// With some work in each part, whose plain writes the caller must see.
inline bool every_part_runs_once(int parts)
{
    std::vector<double> sums(parts);
    std::vector<int> runs(parts);
    parallel(parts, [&](int part) {
        for (int i = 0; i < 200; ++i) sums[part] += i;
        ++runs[part];
    });
    for (int part = 0; part < parts; ++part)
        if (runs[part] != 1 || sums[part] != 19900) return false;
    return true;
}

} // namespace ork::test
