// SPDX-License-Identifier: MIT
// Opens the kernel library and looks its routines up.
//
// The kernel library must leave with the core when a program dlclose()s it. It calls back into the core, and from its
// first such call on glibc takes it to depend on the core; were the core to hold a handle on it, each would keep the
// other. So the dependency is made known the other way round as well: dlsym(RTLD_DEFAULT) called from the core makes
// the core depend on the library that has the symbol. From then on our handle is superfluous, and both are collected as
// one.
#include "loader/library.h"

#include <dlfcn.h>
#include <limits.h>
#include <pthread.h>
#include <unistd.h>

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "export.h"
#include "loader/kernel.h"
#include "loader/table.h"
#include "ork/ork.h"
#include "services/at_fork.h"
#include "threads/pool.h"

namespace ork::loader {
namespace {

constexpr int untried = -1;
constinit std::atomic<int> status = untried;

// Written once, before `status`.
constinit const KernelLibrary* library = nullptr;
constinit char path[PATH_MAX] = "";
constinit char error[PATH_MAX + 512] = "";

constinit pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
constinit void* handle = nullptr; // guarded by mutex; null once the core depends on the library

template <class... Values>
int refuse(int why, const char* format, Values... values)
{
    std::snprintf(error, sizeof error, format, values...);
    return why;
}

bool join(char* to, const char* folder, const char* file)
{
    return std::snprintf(to, PATH_MAX, "%s/%s", folder, file) < PATH_MAX;
}

// Finds the library's file in the folder that this core was loaded from, whatever became of the working directory
// since, or beside the file that a link there points to. Programs load numerical libraries with RTLD_LOCAL, and then
// the kernels' imports would not find the core, so on the way the core enters the global scope, where it stays without
// a handle.
bool locate(const char* file)
{
    Dl_info self;
    if (!dladdr(reinterpret_cast<void*>(&ork_initialize), &self)) return false;
    void* core = dlopen(self.dli_fname, RTLD_LAZY | RTLD_NOLOAD | RTLD_GLOBAL);
    if (core == nullptr) return false;
    char folder[PATH_MAX];
    const bool known = dlinfo(core, RTLD_DI_ORIGIN, folder) == 0;
    dlclose(core);
    if (!known || !join(path, folder, file)) return false;
    if (access(path, F_OK) == 0) return true;

    char own[PATH_MAX], real[PATH_MAX], beside[PATH_MAX];
    const char* name = std::strrchr(self.dli_fname, '/');
    if (!join(own, folder, name ? name + 1 : self.dli_fname) || realpath(own, real) == nullptr) return true;
    *std::strrchr(real, '/') = 0;
    if (join(beside, real, file) && access(beside, F_OK) == 0) std::strcpy(path, beside);
    return true;
}

int open()
{
    library = choose(services::detect_processor());
    if (library == nullptr)
        return refuse(ORK_NO_PROCESSOR, "this processor lacks SSE4.2, which every kernel library needs");
    if (!locate(library->file))
        return refuse(ORK_LIBRARY_MISSING, "can't tell the folder of the core, where %s should be", library->file);
    if (access(path, F_OK) != 0) return refuse(ORK_LIBRARY_MISSING, "the kernel library %s does not exist", path);

    void* opened = dlopen(path, RTLD_LAZY | RTLD_LOCAL);
    if (opened == nullptr) return refuse(ORK_LIBRARY_FOREIGN, "can't open the kernel library %s: %s", path, dlerror());
    const auto version = reinterpret_cast<std::int32_t (*)()>(dlsym(opened, "dll_cpu_version"));
    if (version == nullptr) {
        dlclose(opened);
        return refuse(ORK_LIBRARY_FOREIGN, "%s is not a kernel library: it has no dll_cpu_version", path);
    }
    if (const int found = version(); found != library->code_path) {
        dlclose(opened);
        return refuse(ORK_LIBRARY_VERSION, "the kernel library %s serves code path %d, not %d", path, found,
                      library->code_path);
    }
    handle = dlopen(path, RTLD_LAZY | RTLD_NOLOAD | RTLD_GLOBAL);
    dlclose(opened);
    return ORK_OK;
}

// With a handle of the moment once ours is given up, never by RTLD_DEFAULT alone: another library may have the name
// too.
void* look_up(const char* name)
{
    if (handle == nullptr) {
        void* again = dlopen(path, RTLD_LAZY | RTLD_NOLOAD);
        void* address = again ? dlsym(again, name) : nullptr;
        if (again) dlclose(again);
        return address;
    }
    void* address = dlsym(handle, name);
    if (address != nullptr && dlsym(RTLD_DEFAULT, name) == address) {
        dlclose(handle);
        handle = nullptr;
    }
    return address;
}

[[noreturn]] void give_up(const char* message, const char* name = "")
{
    std::fprintf(stderr, "ork: %s%s\n", message, name);
    threads::leave_process(EXIT_FAILURE);
}

// Until a routine is looked up nothing ties the library to the core but our handle.
[[gnu::destructor]] void unload()
{
    if (handle) dlclose(handle);
}

} // namespace

int initialize()
{
    int known = status.load(std::memory_order_acquire);
    if (known != untried) return known;
    services::register_fork_handlers();
    pthread_mutex_lock(&mutex);
    known = status.load(std::memory_order_relaxed);
    if (known == untried) {
        known = open();
        status.store(known, std::memory_order_release);
    }
    pthread_mutex_unlock(&mutex);
    return known;
}

void* find_kernel(const char* domain, const char* routine)
{
    if (initialize() != ORK_OK) give_up(error);
    char name[128];
    if (!compose_name(name, sizeof name, domain, library->tag, routine))
        give_up("no routine has a name as long as ", routine);
    pthread_mutex_lock(&mutex);
    void* address = look_up(name);
    pthread_mutex_unlock(&mutex);
    if (address == nullptr) {
        std::fprintf(stderr, "ork: the kernel library %s has no %s\n", path, name);
        threads::leave_process(EXIT_FAILURE);
    }
    return address;
}

void before_fork() { pthread_mutex_lock(&mutex); }
void after_fork() { pthread_mutex_unlock(&mutex); }

} // namespace ork::loader

using namespace ork;

ORK_EXPORT int ork_initialize() { return loader::initialize(); }

ORK_EXPORT const char* ork_error_text()
{
    return loader::status.load(std::memory_order_acquire) > 0 ? loader::error : "";
}

ORK_EXPORT const char* ork_kernel_library()
{
    return loader::status.load(std::memory_order_acquire) >= 0 ? loader::path : "";
}

ORK_EXPORT int ork_code_path()
{
    return loader::status.load(std::memory_order_acquire) == ORK_OK ? loader::library->code_path : 0;
}

ORK_EXPORT void ork_processor_name(char* buffer, size_t size)
{
    if (size > 0) std::snprintf(buffer, size, "%s", services::detect_processor().name);
}
