// SPDX-License-Identifier: MIT
#include "peers/opening.h"

#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <stdexcept>
#include <sys/mman.h>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

#include "ork/ork.h"
#include "peers/eigen.h"

namespace ork::peers {
namespace {

namespace fs = std::filesystem;

// Sets an environment variable for the time of a scope.
class Setting {
public:
    Setting(const char* name, const char* value) : name_(name)
    {
        if (const char* old = std::getenv(name)) before_ = old;
        setenv(name, value, 1);
    }
    ~Setting() { before_ ? setenv(name_, before_->c_str(), 1) : unsetenv(name_); }
    Setting(const Setting&) = delete;
    Setting& operator=(const Setting&) = delete;

private:
    const char* name_;
    std::optional<std::string> before_;
};

template <class Function>
Function* entry(void* handle, const char* name)
{
    return reinterpret_cast<Function*>(dlsym(handle, name));
}

// A copy of the library in memory, opened: the loader takes it for another library, so one file can be loaded several
// times with different settings. Nothing is left behind whatever way the process ends. The descriptor stays open
// because the loader knows libraries by their path, and the path of a reused descriptor would find the old one.
void* open_copy(const fs::path& file)
{
    const int from = open(file.c_str(), O_RDONLY | O_CLOEXEC);
    struct stat status {};
    const int to = memfd_create("ork-peer", MFD_CLOEXEC);
    bool copied = from >= 0 && to >= 0 && fstat(from, &status) == 0;
    for (off_t done = 0; copied && done < status.st_size;)
        copied = sendfile(to, from, &done, static_cast<size_t>(status.st_size - done)) > 0;
    if (from >= 0) close(from);
    return copied ? dlopen(("/proc/self/fd/" + std::to_string(to)).c_str(), isolated) : nullptr;
}

void add_openblas(std::vector<Library>& found, std::vector<std::string>& notes)
{
    const auto file = locate({"openblas-pthread/libopenblas.so.0", "openblas-serial/libopenblas.so.0",
                              "openblas-openmp/libopenblas.so.0", "libopenblas.so.0", "libopenblas.so"});
    if (!file) {
        notes.push_back("OpenBLAS: not found");
        return;
    }
    const Setting threads("OPENBLAS_NUM_THREADS", "1");
    // The last one is free to use what the processor has; older versions choose narrower kernels than they could for
    // processors newer than themselves, so AVX-512 is asked for by name. "" leaves the choice to the library.
    const char* widest = __builtin_cpu_supports("avx512vl") ? "SkylakeX" : "";
    for (const char* set : {"Nehalem", "Core2", "Barcelona", widest}) {
        const bool wide = set == widest;
        std::optional<Setting> choice;
        if (*set != '\0') choice.emplace("OPENBLAS_CORETYPE", set);
        void* handle = open_copy(*file);
        const auto corename = handle ? entry<char*()>(handle, "openblas_get_corename") : nullptr;
        const auto config = handle ? entry<char*()>(handle, "openblas_get_config") : nullptr;
        const auto set_threads = handle ? entry<void(int)>(handle, "openblas_set_num_threads") : nullptr;
        if (!corename || !config || !set_threads) {
            notes.push_back("OpenBLAS: " + file->string() + " can't be used");
            return;
        }
        if (!wide && strcasecmp(corename(), set) != 0) {
            notes.push_back("OpenBLAS: asked for " + std::string(set) + ", got " + corename() + "; left out");
            continue;
        }
        set_threads(1);
        const std::string version = std::string(config()).substr(0, std::string(config()).find(' ', 9));
        found.push_back(library(wide ? "OB-wide" : "OB-" + std::string(set),
                                version + " with " + corename() + " kernels, " + file->string(),
                                wide ? Kind::wide : Kind::peer, handle));
    }
}

// BLIS chooses its kernels by number; which number is penryn depends on the version. Empty when all is well.
std::string open_blis(const fs::path& file, void** handle, std::string* version)
{
    *handle = dlopen(file.c_str(), isolated);
    if (*handle == nullptr) return "can't be opened";
    const auto name = entry<const char*(int)>(*handle, "bli_arch_string");
    const auto init = entry<void()>(*handle, "bli_init");
    const auto query = entry<int()>(*handle, "bli_arch_query_id");
    const auto threads = entry<void(long)>(*handle, "bli_thread_set_num_threads");
    const auto describe = entry<const char*()>(*handle, "bli_info_get_version_str");
    if (!name || !init || !query || !threads || !describe) return "is of an unknown version";
    int id = 0;
    constexpr int limit = 100;
    for (; id < limit; ++id) { // "generic" ends the library's list of names
        if (name(id) == nullptr || std::strcmp(name(id), "generic") == 0) return "has no penryn kernels";
        if (std::strcmp(name(id), "penryn") == 0) break;
    }
    if (id == limit) return "has no penryn kernels";
    const Setting choice("BLIS_ARCH_TYPE", std::to_string(id).c_str());
    init();
    if (query() != id) return "would not use its penryn kernels";
    threads(1);
    *version = describe();
    return {};
}

void add_blis(std::vector<Library>& found, std::vector<std::string>& notes)
{
    const auto file = locate({"blis-pthread/libblis.so.4", "blis-serial/libblis.so.4", "blis-openmp/libblis.so.4",
                              "libblis.so.4", "libblis.so"});
    if (!file) {
        notes.push_back("BLIS: not found");
        return;
    }
    const Setting threads("BLIS_NUM_THREADS", "1");
    void* handle = nullptr;
    std::string version;
    // It aborts the process when it was built without the kernels asked for: let a child find out.
    const pid_t child = fork();
    if (child == 0) {
        const int null = open("/dev/null", O_WRONLY);
        dup2(null, STDOUT_FILENO);
        dup2(null, STDERR_FILENO);
        _exit(open_blis(*file, &handle, &version).empty() ? 0 : 1);
    }
    int status = 0;
    const bool usable =
        child > 0 && waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
    const std::string trouble = usable ? open_blis(*file, &handle, &version) : "has no usable penryn kernels";
    if (!trouble.empty()) {
        notes.push_back("BLIS: " + file->string() + " " + trouble);
        return;
    }
    found.push_back(library("BLIS-penryn", "BLIS " + version + ", " + file->string(), Kind::peer, handle));
}

void add_reference(std::vector<Library>& found, std::vector<std::string>& notes)
{
    // The plain soname may lead to any BLAS, ork's own included: only a library of the reference's own folder will do.
    const auto file = locate({"blas/libblas.so.3"});
    void* handle = file ? dlopen(file->c_str(), isolated) : nullptr;
    if (handle == nullptr || dlsym(handle, "openblas_get_config") || dlsym(handle, "bli_init")) {
        notes.push_back("reference BLAS: not found");
        return;
    }
    std::string detail = "reference BLAS, " + file->string();
    // Its LAPACK wants the libblas.so.3 that is in already, and finds BLAS symbols too.
    if (const auto lapack = locate({"lapack/liblapack.so.3"}))
        if (void* both = dlopen(lapack->c_str(), isolated)) {
            handle = both;
            detail += ", reference LAPACK, " + lapack->string();
        }
    found.push_back(library("REF", detail, Kind::peer, handle));
}

} // namespace

std::optional<fs::path> locate(std::initializer_list<const char*> names)
{
    static constexpr const char* roots[] = {"/usr/local/lib", "/usr/lib/x86_64-linux-gnu", "/usr/lib64", "/usr/lib"};
    for (const char* root : roots)
        for (const char* name : names) {
            std::error_code error;
            const fs::path file = fs::canonical(fs::path(root) / name, error);
            if (!error && fs::is_regular_file(file)) return file;
        }
    return std::nullopt;
}

Library library(std::string name, std::string detail, Kind kind, void* handle)
{
    return {
        std::move(name),       std::move(detail), kind, [handle](const char* symbol) { return dlsym(handle, symbol); },
        transforms_of(handle), ork_sparse(handle)};
}

Library core_library()
{
    Dl_info info{};
    void* handle = nullptr;
    if (dladdr(reinterpret_cast<void*>(&ork_version), &info) != 0 && info.dli_fname != nullptr)
        handle = dlopen(info.dli_fname, RTLD_NOW | RTLD_NOLOAD);
    return library("ork", "ork " + std::string(ork_version()) + ", " + (info.dli_fname ? info.dli_fname : "?"),
                   Kind::subject, handle ? handle : RTLD_DEFAULT);
}

void* lapack_kernel(const std::string& name)
{
    if (ork_initialize() != ORK_OK) return nullptr;
    void* library = dlopen(ork_kernel_library(), RTLD_LAZY | RTLD_NOLOAD);
    if (library == nullptr) return nullptr;
    void* routine = dlsym(library, ("ork_lapack_ps_nx2_" + name).c_str());
    dlclose(library);
    return routine;
}

Library open_library(const std::string& file)
{
    void* handle = dlopen(fs::absolute(file).c_str(), can_isolate ? isolated : RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr) throw std::runtime_error(dlerror());
    return library(fs::path(file).stem().stem(), fs::absolute(file), Kind::peer, handle);
}

std::vector<Library> find_peers(std::vector<std::string>& notes)
{
    std::vector<Library> found;
    if (can_isolate) {
        add_openblas(found, notes);
        add_blis(found, notes);
        add_reference(found, notes);
    } else {
        notes.push_back("peer libraries: left out of a build with sanitizers");
    }
    if (eigen_version() != nullptr)
        found.push_back({"Eigen",
                         std::string("Eigen ") + eigen_version() + " compiled -O3 -msse4.2",
                         Kind::peer,
                         eigen_symbol,
                         {}});
    else
        notes.push_back("Eigen: not found when ork was built");
    return found;
}

} // namespace ork::peers
