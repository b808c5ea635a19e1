// SPDX-License-Identifier: MIT
// The kernel library in use, and its routines by name.
//
// It must leave with the core when a program dlclose()s the core. It calls back into the core, and from its first such
// call on glibc takes it to depend on the core; were the core to hold a handle on it, each would keep the other. So the
// dependency is made known the other way round as well: dlsym(RTLD_DEFAULT) called from the core makes the core depend
// on the library that has the symbol. From then on our handle is superfluous, and both are collected as one.
//
// No lock of ours is held exclusively around the dynamic loader's calls: they take its own lock, and a thread that has
// that one already, because it runs the constructors of another library, may be on its way here.
#include "loader/library.h"

#include <dlfcn.h>
#include <pthread.h>
#include <sched.h>
#include <time.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>

#include "export.h"
#include "loader/kernel.h"
#include "loader/open.h"
#include "ork/ork.h"
#include "services/at_fork.h"
#include "threads/pool.h"

namespace ork::loader {
namespace {

enum { untried = -2, publishing = -1 }; // besides ork_status
constinit std::atomic<int> status = untried;

// Written once, by the thread that publishes, before the status.
constinit const KernelLibrary* library = nullptr;
constinit char path[PATH_MAX] = "";
constinit char error[sizeof Outcome::error] = "";
constinit std::atomic<void*> handle = nullptr; // null once the core depends on the library
constinit std::atomic<void*> libm = nullptr;   // null until a routine of it is wanted

// Threads in here share this lock; a fork takes it whole, or the child would inherit a loader in the middle of its
// work.
constinit pthread_rwlock_t gate = PTHREAD_RWLOCK_INITIALIZER;
constinit std::atomic<pthread_t> gate_owner = 0; // the thread that forks

class Inside {
public:
    Inside() { pthread_rwlock_rdlock(&gate); }
    ~Inside() { pthread_rwlock_unlock(&gate); }
};

int publish(const Outcome& outcome)
{
    library = outcome.library;
    std::strcpy(path, outcome.path);
    std::strcpy(error, outcome.error);
    handle.store(outcome.handle, std::memory_order_relaxed);
    status.store(outcome.status, std::memory_order_release);
    return outcome.status;
}

int try_to_open()
{
    const Inside inside;
    Outcome outcome;
    open_library(outcome);
    int known = untried;
    if (status.compare_exchange_strong(known, publishing, std::memory_order_acq_rel)) return publish(outcome);
    if (outcome.handle) dlclose(outcome.handle);
    while ((known = status.load(std::memory_order_acquire)) == publishing) sched_yield();
    return known;
}

// With a handle of the moment, not by RTLD_DEFAULT alone: another library may have the name too, and then ours stays
// open.
void* look_up(const char* name)
{
    const Inside inside;
    void* opened = dlopen(path, RTLD_LAZY | RTLD_NOLOAD);
    if (opened == nullptr) return nullptr;
    void* address = dlsym(opened, name);
    if (address != nullptr && handle.load(std::memory_order_relaxed) != nullptr && dlsym(RTLD_DEFAULT, name) == address)
        if (void* superfluous = handle.exchange(nullptr)) dlclose(superfluous);
    dlclose(opened);
    return address;
}

template <class... Values>
[[noreturn]] void give_up(const char* format, Values... values)
{
    std::fprintf(stderr, format, values...);
    threads::leave_process(EXIT_FAILURE);
}

// Until a routine is looked up nothing ties the library to the core but our handle.
[[gnu::destructor]] void unload()
{
    for (auto* library : {&handle, &libm})
        if (void* opened = library->exchange(nullptr)) dlclose(opened);
}

// What ork_initialize found out, if it was called.
int known_status() { return status.load(std::memory_order_acquire); }

} // namespace

int initialize()
{
    const int known = known_status();
    if (known >= 0) return known;
    services::register_fork_handlers();
    return try_to_open();
}

void* find_kernel(const char* domain, const char* routine)
{
    if (initialize() != ORK_OK) give_up("ork: %s\n", error);
    char name[128];
    if (!compose_name(name, sizeof name, domain, library->tag, routine))
        give_up("ork: no routine has a name as long as %s\n", routine);
    void* address = look_up(name);
    if (address == nullptr) give_up("ork: the kernel library %s has no %s\n", path, name);
    return address;
}

void* find_in_libm(const char* routine)
{
    services::register_fork_handlers();
    const Inside inside;
    void* opened = libm.load(std::memory_order_acquire);
    if (opened == nullptr) {
        opened = dlopen("libm.so.6", RTLD_LAZY | RTLD_LOCAL);
        void* known = nullptr;
        if (opened != nullptr && !libm.compare_exchange_strong(known, opened, std::memory_order_acq_rel)) {
            dlclose(opened);
            opened = known;
        }
    }
    void* address = opened == nullptr ? nullptr : dlsym(opened, routine);
    if (address == nullptr) give_up("ork: no %s in the mathematics library of this system\n", routine);
    return address;
}

// The wait has an end: a program that forks in a constructor holds the dynamic loader's lock, which we may be waiting
// for.
void before_fork()
{
    timespec until;
    clock_gettime(CLOCK_REALTIME, &until);
    ++until.tv_sec;
    if (pthread_rwlock_timedwrlock(&gate, &until) == 0) gate_owner.store(pthread_self());
}

void after_fork_in_parent()
{
    if (gate_owner.load() != pthread_self()) return;
    gate_owner.store(0);
    pthread_rwlock_unlock(&gate);
}

// Made anew: the lock remembers its owner by a number that is another in the child.
void after_fork_in_child()
{
    gate_owner.store(0);
    gate = PTHREAD_RWLOCK_INITIALIZER;
}

} // namespace ork::loader

using namespace ork;

ORK_EXPORT int ork_initialize() { return loader::initialize(); }
ORK_EXPORT const char* ork_error_text() { return loader::known_status() > 0 ? loader::error : ""; }
ORK_EXPORT const char* ork_kernel_library() { return loader::known_status() >= 0 ? loader::path : ""; }
ORK_EXPORT int ork_code_path() { return loader::known_status() == ORK_OK ? loader::library->code_path : 0; }
