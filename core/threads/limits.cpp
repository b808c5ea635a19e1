// SPDX-License-Identifier: MIT
#include "threads/limits.h"

#include <algorithm>
#include <atomic>

#include "export.h"
#include "ork/ork.h"
#include "services/setting.h"
#include "threads/pool.h"
#include "threads/processors.h"
#include "threads/thread_word.h"

namespace ork::threads {
namespace {

constinit std::atomic<int> chosen = 0;            // by ork_set_num_threads; 0: none
constinit std::atomic<int> from_environment = -1; // -1: not read, 0: says nothing
constinit std::atomic<int> counted = 0;           // 0: not yet

// ORK_NUM_THREADS wins; OMP_NUM_THREADS may be a list, whose first number is the outermost level's.
int requested()
{
    int count = from_environment.load(std::memory_order_relaxed);
    if (count >= 0) return count;
    count = services::leading_number(services::environment("ORK_NUM_THREADS"), 0);
    if (count == 0) count = services::leading_number(services::environment("OMP_NUM_THREADS"), 0);
    count = std::min(count, most_threads);
    from_environment.store(count, std::memory_order_relaxed);
    return count;
}

} // namespace

int processors()
{
    int count = counted.load(std::memory_order_relaxed);
    if (count == 0) counted.store(count = std::min(available_processors(), most_threads), std::memory_order_relaxed);
    return count;
}

void forget_processors() { counted.store(0, std::memory_order_relaxed); }

int process_limit()
{
    if (const int count = chosen.load(std::memory_order_relaxed)) return count;
    if (const int count = requested()) return count;
    return processors();
}

int limit()
{
    const ThreadWord self = thread_word();
    return self.in_part ? 1 : self.local_limit ? self.local_limit : process_limit();
}

} // namespace ork::threads

using namespace ork::threads;

ORK_EXPORT void ork_set_num_threads(int threads)
{
    chosen.store(std::clamp(threads, 0, most_threads), std::memory_order_relaxed);
}

ORK_EXPORT int ork_set_num_threads_local(int threads)
{
    ThreadWord self = thread_word();
    const int old = self.local_limit;
    self.local_limit = std::clamp(threads, 0, most_threads);
    set_thread_word(self);
    return old;
}

ORK_EXPORT int ork_get_max_threads() { return limit(); }
