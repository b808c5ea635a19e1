// SPDX-License-Identifier: MIT
// The C library's allocation routines that the core calls, replaced for one program: they fail when told. Included by
// one source of it.
#pragma once

#include <sys/mman.h>

#include <cerrno>
#include <cstdlib>

#include "support/next_routine.h"

namespace {

thread_local int fail_at = 0; // 1: all allocations fail, 2: all after the first ...
thread_local int allocations = 0;
thread_local bool counting = false;

} // namespace

// The routines of sanitizers can't be stood before.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
namespace {

bool fails() { return counting && ++allocations >= fail_at; }

} // namespace

extern "C" int posix_memalign(void** memory, size_t alignment, size_t size)
{
    static auto* const real = ork::test::next_routine<int(void**, size_t, size_t)>("posix_memalign");
    return fails() ? ENOMEM : real(memory, alignment, size);
}

extern "C" void* mmap(void* address, size_t length, int protection, int flags, int file, off_t offset)
{
    static auto* const real = ork::test::next_routine<void*(void*, size_t, int, int, int, off_t)>("mmap");
    return fails() ? MAP_FAILED : real(address, length, protection, flags, file, offset);
}

#endif
