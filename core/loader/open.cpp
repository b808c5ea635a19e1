// SPDX-License-Identifier: MIT
#include "loader/open.h"

#include <dlfcn.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "ork/ork.h"

namespace ork::loader {
namespace {

template <class... Values>
void refuse(Outcome& outcome, int status, const char* format, Values... values)
{
    outcome.status = status;
    std::snprintf(outcome.error, sizeof outcome.error, format, values...);
}

bool join(char (&path)[PATH_MAX], const char* folder, const char* file)
{
    return std::snprintf(path, sizeof path, "%s/%s", folder, file) < PATH_MAX;
}

// The folder that this core was loaded from, whatever became of the working directory since. Programs load numerical
// libraries with RTLD_LOCAL, and then the kernels' imports would not find the core: on the way it enters the global
// scope, where it stays after the handle is closed.
bool own_folder(const char* own_name, char (&folder)[PATH_MAX])
{
    void* core = dlopen(own_name, RTLD_LAZY | RTLD_NOLOAD | RTLD_GLOBAL);
    if (core == nullptr) return false;
    const bool known = dlinfo(core, RTLD_DI_ORIGIN, folder) == 0;
    dlclose(core);
    return known;
}

// Beside the core or, when the core was found through a link, beside the file that the link points to.
bool locate(const char* file, char (&path)[PATH_MAX])
{
    Dl_info self;
    char folder[PATH_MAX];
    if (!dladdr(reinterpret_cast<void*>(&ork_initialize), &self) || !own_folder(self.dli_fname, folder)) return false;
    if (!join(path, folder, file)) return false;
    if (access(path, F_OK) == 0) return true;

    const char* slash = std::strrchr(self.dli_fname, '/');
    char own[PATH_MAX], real[PATH_MAX];
    if (!join(own, folder, slash ? slash + 1 : self.dli_fname) || realpath(own, real) == nullptr) return true;
    *std::strrchr(real, '/') = 0;
    if (join(own, real, file) && access(own, F_OK) == 0) std::strcpy(path, own);
    return true;
}

} // namespace

void open_library(Outcome& outcome)
{
    const char* path = outcome.path;
    outcome.library = choose(services::detect_processor());
    if (outcome.library == nullptr)
        return refuse(outcome, ORK_NO_PROCESSOR, "this processor lacks SSE4.2, which every kernel library needs");
    if (!locate(outcome.library->file, outcome.path))
        return refuse(outcome, ORK_LIBRARY_MISSING, "can't tell the folder of the core, where %s should be",
                      outcome.library->file);
    if (access(path, F_OK) != 0)
        return refuse(outcome, ORK_LIBRARY_MISSING, "the kernel library %s does not exist", path);

    void* opened = dlopen(path, RTLD_LAZY | RTLD_LOCAL);
    if (opened == nullptr)
        return refuse(outcome, ORK_LIBRARY_FOREIGN, "can't open the kernel library %s: %s", path, dlerror());
    const auto version = reinterpret_cast<std::int32_t (*)()>(dlsym(opened, "dll_cpu_version"));
    if (version == nullptr)
        refuse(outcome, ORK_LIBRARY_FOREIGN, "%s is not a kernel library: it has no dll_cpu_version", path);
    else if (const int found = version(); found != outcome.library->code_path)
        refuse(outcome, ORK_LIBRARY_VERSION, "the kernel library %s serves code path %d, not %d", path, found,
               outcome.library->code_path);
    else
        outcome.handle = dlopen(path, RTLD_LAZY | RTLD_NOLOAD | RTLD_GLOBAL);
    dlclose(opened);
}

} // namespace ork::loader
