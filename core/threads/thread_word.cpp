// SPDX-License-Identifier: MIT
#include "threads/thread_word.h"

#include <pthread.h>

#include <atomic>
#include <cstdint>

namespace ork::threads {
namespace {

constinit std::atomic<unsigned> key_plus_1 = 0;

bool have_key()
{
    if (key_plus_1.load(std::memory_order_acquire) != 0) return true;
    pthread_key_t key;
    if (pthread_key_create(&key, nullptr) != 0) return false;
    unsigned none = 0;
    if (!key_plus_1.compare_exchange_strong(none, key + 1, std::memory_order_acq_rel)) pthread_key_delete(key);
    return true;
}

[[gnu::destructor]] void unload()
{
    if (const unsigned key = key_plus_1.exchange(0)) pthread_key_delete(key - 1);
}

} // namespace

ThreadWord thread_word()
{
    const unsigned key = key_plus_1.load(std::memory_order_acquire);
    const auto word = key ? reinterpret_cast<std::uintptr_t>(pthread_getspecific(key - 1)) : 0;
    return {static_cast<int>(word >> 1), (word & 1) != 0};
}

void set_thread_word(ThreadWord word)
{
    if (!have_key()) return; // then limits of single threads and the serial rule inside parts are lost, not results
    const std::uintptr_t packed = static_cast<std::uintptr_t>(word.local_limit) << 1 | (word.in_part ? 1 : 0);
    pthread_setspecific(key_plus_1.load(std::memory_order_acquire) - 1, reinterpret_cast<void*>(packed));
}

} // namespace ork::threads
