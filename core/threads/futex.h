// SPDX-License-Identifier: MIT
// Sleeping on a word of memory. A wake may come late or for nothing, so callers look at the word again.
#pragma once

#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdint>

namespace ork::threads {

using Word = std::atomic<std::uint32_t>;

// Sleeps unless the word differs from `seen` by now. Leaves errno alone: a caller of BLAS may be about to read it.
inline void sleep_while(Word& word, std::uint32_t seen)
{
    const int saved = errno;
    syscall(SYS_futex, &word, FUTEX_WAIT_PRIVATE, seen, nullptr, nullptr, 0);
    errno = saved;
}

inline void wake(Word& word, int sleepers)
{
    const int saved = errno;
    syscall(SYS_futex, &word, FUTEX_WAKE_PRIVATE, sleepers, nullptr, nullptr, 0);
    errno = saved;
}

} // namespace ork::threads
