// SPDX-License-Identifier: MIT
// The pool: a list of jobs that have parts left, and workers that look for one they may join.
//
// A caller links its job, works on its parts like any worker, and unlinks it when none is left; then it waits for the
// parts that others are still at. Helping is bounded twice: by the caller's own limit, and by the process's, counting
// callers as well, because a worker that helps one of eight callers on two processors only takes time from the others.
#include "threads/pool.h"

#include <limits.h>
#include <pthread.h>
#include <sched.h>
#include <signal.h>
#include <sys/prctl.h>
#include <unistd.h>
#include <x86intrin.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstdlib>

#include "export.h"
#include "ork/ork.h"
#include "services/at_fork.h"
#include "threads/futex.h"
#include "threads/limits.h"
#include "threads/thread_word.h"

namespace ork::threads {
namespace {

using Body = void (*)(void* context, int part);

constexpr std::uint32_t caller_sleeps = 1u << 31;
constexpr unsigned exception_flags = 0x3f; // of MXCSR; its other bits are the rounding mode and the like

// Lives on its caller's stack.
struct Job {
    Body body;
    void* context;
    int parts;
    int limit;        // threads, the caller included
    unsigned control; // MXCSR of the caller, flags cleared
    bool may_spin = false;
    std::atomic<std::int64_t> next_part = 0;
    std::atomic<unsigned> flags = 0; // raised by helpers
    Word helpers = 0;                // at it now, plus caller_sleeps; raised under the lock, lowered as the last access
    Job* previous = nullptr;
    Job* next = nullptr;

    bool has_parts() const { return next_part.load(std::memory_order_relaxed) < parts; }
};

struct Pool {
    pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
    // Guarded by the mutex
    Job* jobs = nullptr;
    int running = 0; // threads at parts, callers and workers
    int workers = 0;
    int refusals_to_skip = 0; // calls that do not try to start threads, after one that could not
    ork_parallel_backend backend = nullptr;
    void* backend_user = nullptr;
    pthread_t threads[most_threads] = {};

    std::atomic<bool> closing = false;           // the library is being unloaded or the process ends
    std::atomic<bool> leaving = false;           // leave_process was called
    alignas(64) Word epoch = 0;                  // raised when a job was linked or got room
    std::atomic<int> spinning = 0, sleeping = 0; // workers without a job
};

constinit Pool pool;

class Locked {
public:
    Locked() { pthread_mutex_lock(&pool.mutex); }
    ~Locked() { pthread_mutex_unlock(&pool.mutex); }
};

// Watches a word for some 100 microseconds, a few times what it takes to wake a thread that sleeps; true when it
// changed. After the first few the processor is offered to others at each look: the thread that is to change the word
// may be waiting for this very one. On processors that were busy otherwise two threads took two to ten times as long
// for calls of 10 to 50 microseconds when it was not offered, and about as long as one thread when it was; on idle ones
// there is no difference.
template <class Changed>
bool spin_until(Changed changed)
{
    constexpr std::uint64_t cycles = 300'000, cycles_alone = 10'000;
    const std::uint64_t start = __rdtsc();
    for (std::uint64_t spent = 0; spent < cycles; spent = __rdtsc() - start) {
        if (changed()) return true;
        if (spent < cycles_alone)
            _mm_pause();
        else
            sched_yield();
    }
    return false;
}

void work(Job& job)
{
    for (std::int64_t part; (part = job.next_part.fetch_add(1, std::memory_order_relaxed)) < job.parts;)
        job.body(job.context, static_cast<int>(part));
}

// In the caller's rounding mode, and with its flags.
void work_for(Job& job)
{
    const unsigned own = _mm_getcsr();
    _mm_setcsr(job.control);
    while (job.has_parts() && !pool.closing.load(std::memory_order_relaxed)) {
        const std::int64_t part = job.next_part.fetch_add(1, std::memory_order_relaxed);
        if (part < job.parts) job.body(job.context, static_cast<int>(part));
    }
    if (const unsigned raised = _mm_getcsr() & exception_flags) job.flags.fetch_or(raised, std::memory_order_relaxed);
    _mm_setcsr(own);
}

int room_in_process(const Job& job) { return std::max(process_limit(), job.limit) - pool.running; }

// A job that one more worker may join; under the lock.
Job* job_with_room()
{
    for (Job* job = pool.jobs; job; job = job->next)
        if (job->has_parts() && static_cast<int>(job->helpers.load(std::memory_order_relaxed)) < job->limit - 1 &&
            room_in_process(*job) > 0)
            return job;
    return nullptr;
}

// Wakes up to `wanted` workers that have no job. A worker goes to sleep only if the epoch is still what it was when it
// last looked at the list, so none is missed.
void call_workers(int wanted)
{
    if (wanted <= 0) return;
    pool.epoch.fetch_add(1);
    const int asleep = std::min(wanted - pool.spinning.load(), pool.sleeping.load());
    if (asleep > 0) wake(pool.epoch, asleep);
}

void wait_for_job(std::uint32_t seen, bool may_spin)
{
    if (may_spin) {
        pool.spinning.fetch_add(1);
        const bool called = spin_until([&] { return pool.epoch.load(std::memory_order_relaxed) != seen; });
        pool.spinning.fetch_sub(1);
        if (called) return;
    }
    pool.sleeping.fetch_add(1);
    sleep_while(pool.epoch, seen);
    pool.sleeping.fetch_sub(1);
}

void* worker(void*)
{
    prctl(PR_SET_NAME, "ork-worker");
    set_thread_word({.local_limit = 0, .in_part = true});
    pthread_mutex_lock(&pool.mutex);
    while (!pool.closing.load(std::memory_order_relaxed)) {
        const std::uint32_t seen = pool.epoch.load();
        Job* job = job_with_room();
        if (job == nullptr) {
            const bool may_spin = pool.running + pool.spinning.load() < processors();
            pthread_mutex_unlock(&pool.mutex);
            wait_for_job(seen, may_spin);
            pthread_mutex_lock(&pool.mutex);
            continue;
        }
        job->helpers.fetch_add(1, std::memory_order_relaxed);
        ++pool.running;
        pthread_mutex_unlock(&pool.mutex);
        work_for(*job);
        // After this the job may be gone; a wake of memory that has become something else wakes nobody or for nothing.
        if (job->helpers.fetch_sub(1, std::memory_order_release) == caller_sleeps + 1) wake(job->helpers, 1);
        pthread_mutex_lock(&pool.mutex);
        --pool.running;
    }
    pthread_mutex_unlock(&pool.mutex);
    return nullptr;
}

// Starts workers until there are `wanted`; under the lock. Signals stay with the application's threads. Fewer is no
// error.
void start_workers(int wanted)
{
    if (pool.workers >= wanted || pool.closing.load()) return;
    if (pool.refusals_to_skip > 0) {
        --pool.refusals_to_skip;
        return;
    }
    sigset_t all, old;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &old);
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, 256 << 10);
    while (pool.workers < wanted) {
        pthread_t* thread = &pool.threads[pool.workers];
        int failed = pthread_create(thread, &attributes, worker, nullptr);
        if (failed == EINVAL) failed = pthread_create(thread, nullptr, worker, nullptr); // much thread-local data
        if (failed) {
            pool.refusals_to_skip = 1000;
            break;
        }
        ++pool.workers;
    }
    pthread_attr_destroy(&attributes);
    pthread_sigmask(SIG_SETMASK, &old, nullptr);
}

void link(Job& job)
{
    int wanted;
    {
        Locked lock;
        ++pool.running;
        wanted = std::min({job.limit - 1, job.parts - 1, room_in_process(job)});
        start_workers(wanted);
        job.may_spin = pool.running < processors();
        job.next = pool.jobs;
        if (pool.jobs) pool.jobs->previous = &job;
        pool.jobs = &job;
    }
    call_workers(wanted);
}

void unlink(Job& job)
{
    bool others;
    {
        Locked lock;
        --pool.running;
        (job.previous ? job.previous->next : pool.jobs) = job.next;
        if (job.next) job.next->previous = job.previous;
        others = pool.jobs != nullptr && job_with_room() != nullptr;
    }
    if (others) call_workers(1);
}

void wait_for_helpers(Job& job)
{
    const auto done = [&] { return job.helpers.load(std::memory_order_acquire) == 0; };
    if (done() || (job.may_spin && spin_until(done))) return;
    std::uint32_t left = job.helpers.fetch_or(caller_sleeps, std::memory_order_acquire) | caller_sleeps;
    while (left != caller_sleeps) {
        sleep_while(job.helpers, left);
        left = job.helpers.load(std::memory_order_acquire);
    }
}

// One thread's share of a call whose parts are run by the application's threads.
void strand(void* context, int)
{
    const ThreadWord self = thread_word();
    set_thread_word({self.local_limit, true});
    work_for(*static_cast<Job*>(context));
    set_thread_word(self);
}

// Stops the workers. Those in a part finish it, so a call under way ends right, by its caller's own work. A worker that
// leaves the process itself, or waits for another thread to do so, can't be waited for.
[[gnu::destructor]] void close_pool()
{
    int workers;
    {
        Locked lock;
        pool.closing.store(true);
        workers = pool.workers;
        pool.workers = 0;
    }
    pool.epoch.fetch_add(1);
    wake(pool.epoch, INT_MAX);
    for (int i = 0; i < workers; ++i)
        if (pool.leaving.load())
            pthread_detach(pool.threads[i]);
        else
            pthread_join(pool.threads[i], nullptr);
}

} // namespace

void run(int parts, Body body, void* context)
{
    const int threads = std::min(limit(), parts);
    if (threads <= 1) {
        for (int part = 0; part < parts; ++part) body(context, part);
        return;
    }
    services::register_fork_handlers();
    Job job{body, context, parts, threads, _mm_getcsr() & ~exception_flags};
    const ThreadWord self = thread_word();
    set_thread_word({self.local_limit, true});
    ork_parallel_backend backend;
    void* user;
    {
        Locked lock;
        backend = pool.backend;
        user = pool.backend_user;
    }
    if (backend) {
        backend(user, threads, strand, &job);
        work(job); // what it left
    } else {
        link(job);
        work(job);
        unlink(job);
        wait_for_helpers(job);
    }
    set_thread_word(self);
    if (const unsigned raised = job.flags.load(std::memory_order_relaxed)) _mm_setcsr(_mm_getcsr() | raised);
}

// From a worker, exit() would wait for that worker; and two threads must not both run exit().
void leave_process(int code)
{
    if (pool.closing.load()) _exit(code);
    if (pool.leaving.exchange(true))
        for (;;) pause();
    std::exit(code);
}

void before_fork() { pthread_mutex_lock(&pool.mutex); }

void after_fork_in_parent() { pthread_mutex_unlock(&pool.mutex); }

void after_fork_in_child()
{
    pool.jobs = nullptr; // of threads that do not exist here
    pool.running = pool.workers = pool.refusals_to_skip = 0;
    pool.spinning.store(0);
    pool.sleeping.store(0);
    forget_processors();
    pthread_mutex_unlock(&pool.mutex);
}

} // namespace ork::threads

using ork::threads::pool;

ORK_EXPORT void ork_set_parallel_backend(ork_parallel_backend backend, void* user)
{
    ork::threads::Locked lock;
    pool.backend = backend;
    pool.backend_user = user;
}

ORK_EXPORT void ork_parallel_for(int parts, ork_part work, void* context) { ork::threads::run(parts, work, context); }
