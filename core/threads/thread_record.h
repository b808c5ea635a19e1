// SPDX-License-Identifier: MIT
// A record of its own for each thread that has something to remember, made when that happens first.
//
// Under a pthread key and not thread_local, for the reason of thread_word.h. An object of static storage whose library
// calls unload() from a destructor function: then nothing of it is left behind but records of other threads, which are
// freed by nobody.
#pragma once

#include <pthread.h>

#include <atomic>
#include <cstdlib>

namespace ork::threads {

template <class Record>
class ThreadRecord {
public:
    // Null when the thread has none.
    Record* find() const
    {
        const unsigned key = key_plus_1_.load(std::memory_order_acquire);
        return key ? static_cast<Record*>(pthread_getspecific(key - 1)) : nullptr;
    }

    // The thread's own, or a new one with nothing in it yet; null when there is no memory for it.
    Record* find_or_make()
    {
        if (Record* record = find()) return record;
        if (!have_key()) return nullptr;
        auto* const record = static_cast<Record*>(std::malloc(sizeof(Record)));
        if (record == nullptr) return nullptr;
        if (pthread_setspecific(key_plus_1_.load(std::memory_order_acquire) - 1, record) == 0) return record;
        std::free(record);
        return nullptr;
    }

    void unload()
    {
        std::free(find());
        if (const unsigned key = key_plus_1_.exchange(0)) pthread_key_delete(key - 1);
    }

private:
    bool have_key()
    {
        if (key_plus_1_.load(std::memory_order_acquire) != 0) return true;
        pthread_key_t key;
        if (pthread_key_create(&key, std::free) != 0) return false;
        unsigned none = 0;
        if (!key_plus_1_.compare_exchange_strong(none, key + 1, std::memory_order_acq_rel)) pthread_key_delete(key);
        return true;
    }

    std::atomic<unsigned> key_plus_1_ = 0;
};

} // namespace ork::threads
