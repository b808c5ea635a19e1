// SPDX-License-Identifier: MIT
// Finds the core's routine behind a forwarding entry of the same name (forward.S), on the entry's first call.
#include <dlfcn.h>
#include <sys/uio.h>
#include <unistd.h>

#include <cstring>
#include <initializer_list>

namespace {

// What the run-time says and does when a lazily bound import is missing: one line, exit status 127, no exit handlers
// (the caller may hold any lock). A caller that may run without a core asks for the core first.
[[noreturn]] void no_core(const char* name)
{
    const char* text[] = {"ork: ", name,
                          " needs the core library (libork_core.so.0), and none is loaded that has it\n"};
    iovec line[3];
    for (int i = 0; i < 3; ++i) line[i] = {const_cast<char*>(text[i]), std::strlen(text[i])};
    if (writev(STDERR_FILENO, line, 3) < 0) {
        // Nobody to tell; the exit status says the same.
    }
    _exit(127);
}

} // namespace

// Any number of threads may arrive here at once for the same slot; all of them store the same address.
extern "C" [[gnu::visibility("hidden")]] void* ork_forward_resolve(const char* name, const void* entry, void** slot)
{
    // The global scope and this library's own, in the order of loading: the main program's definition or a core in the
    // global scope; the entry itself when this library came first. Then whatever was loaded after this library.
    void* routine = dlsym(RTLD_DEFAULT, name);
    if (routine == entry || routine == nullptr) routine = dlsym(RTLD_NEXT, name);
    // A core that was opened for its opener alone. The handle is kept: the slot must not outlive the core.
    for (const char* core : {"libork_core.so.0", "libork_core.so"}) {
        if (routine != entry && routine != nullptr) break;
        if (void* handle = dlopen(core, RTLD_LAZY | RTLD_NOLOAD)) routine = dlsym(handle, name);
    }
    if (routine == entry || routine == nullptr) no_core(name);
    __atomic_store_n(slot, routine, __ATOMIC_RELEASE);
    return routine;
}
