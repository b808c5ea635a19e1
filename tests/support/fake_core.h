// SPDX-License-Identifier: MIT
// A core for kernel tests: the services that kernels import, some of which can be made to fail or to answer otherwise.
#pragma once

#include <atomic>
#include <cstdint>

namespace ork::test {

struct FakeCore {
    std::atomic<int> fail_allocation_at = 0; // 1: the next allocation returns null, 2: the one after it ..., 0: none
    std::atomic<int> live_allocations = 0;   // handed out and not yet returned
    std::atomic<int> live_objects = 0;       // the same of malloc and calloc, whose memory free takes back
    std::atomic<int> live_work = 0;          // the same of the transforms' work memory
    std::atomic<int64_t> microarchitecture = 0;
    std::atomic<int64_t> cache_levels = 3;
    std::atomic<int64_t> cache_size = 32 << 20; // bytes
    std::atomic<int64_t> level2_size = 1 << 20;

    std::atomic<int64_t> reproducibility = 0; // the branch in force
    std::atomic<int64_t> processor = 3;       // what the processor has, as ork_serv_cpu_detect answers

    // What the commit of transforms whose threads a core chooses does, and how often it has been asked.
    std::atomic<bool> threaded_commit_plans = true;
    std::atomic<int32_t> threaded_commit_status = 0;  // returned instead when it doesn't plan
    std::atomic<int32_t> threaded_commit_threads = 0; // stored in the node unless 0
    std::atomic<int> threaded_commits = 0;

    // Calls so far, failed ones included.
    std::atomic<int> allocations = 0;
    std::atomic<int> deallocations = 0; // of null too
    std::atomic<int> microarchitecture_queries = 0;
    std::atomic<int> cache_queries = 0;
    std::atomic<int> reproducibility_queries = 0;
    std::atomic<int> lamch_queries = 0;
    std::atomic<int> gemv_calls = 0;
    std::atomic<int64_t> gemv_elements = 0; // m * n of all of them

    std::atomic<int64_t> last_size = 0; // bytes and alignment that the latest allocation asked for
    std::atomic<int64_t> last_alignment = 0;
    std::atomic<const char*> last_checked = nullptr; // the name under which a pointer was checked last
};

// The one that this program's kernels talk to.
FakeCore& fake_core();

// Starts a test with a fresh core and leaves a fresh one behind.
class FreshCore {
public:
    FreshCore() { reset(); }
    ~FreshCore() { reset(); }
    FreshCore(const FreshCore&) = delete;
    FreshCore& operator=(const FreshCore&) = delete;

    FakeCore* operator->() const { return &fake_core(); }

private:
    static void reset();
};

} // namespace ork::test
