// SPDX-License-Identifier: MIT
// FFTW, opened at run time through its C interface: where it is found, and plans of it.
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string_view>

#include "peers/eigen.h"
#include "peers/opening.h"

namespace ork::peers {
namespace {

namespace fs = std::filesystem;

constexpr int forward = -1, backward = 1;
constexpr unsigned measure = 0;

// The entry points of one precision; a plan is opaque, data are passed as they lie in memory.
struct Interface {
    using PlanComplex = void*(int rank, const int* n, int howmany, void* in, const int*, int istride, int idist,
                              void* out, const int*, int ostride, int odist, int sign, unsigned flags);
    using PlanReal = void*(int rank, const int* n, int howmany, void* in, const int*, int istride, int idist, void* out,
                           const int*, int ostride, int odist, unsigned flags);
    PlanComplex* complex = nullptr;
    PlanReal *to_spectrum = nullptr, *from_spectrum = nullptr;
    void (*execute)(void* plan) = nullptr;
    void (*destroy)(void* plan) = nullptr;

    bool whole() const { return complex && to_spectrum && from_spectrum && execute && destroy; }
};

template <class Function>
void get(Function*& function, void* handle, const std::string& name)
{
    function = reinterpret_cast<Function*>(dlsym(handle, name.c_str()));
}

Interface open_interface(void* handle, const std::string& prefix)
{
    Interface api;
    if (handle == nullptr) return api;
    get(api.complex, handle, prefix + "_plan_many_dft");
    get(api.to_spectrum, handle, prefix + "_plan_many_dft_r2c");
    get(api.from_spectrum, handle, prefix + "_plan_many_dft_c2r");
    get(api.execute, handle, prefix + "_execute");
    get(api.destroy, handle, prefix + "_destroy_plan");
    return api;
}

class Plan : public Transform {
public:
    Plan(const Interface& api, void* plan) : api_(api), plan_(plan) {}
    ~Plan() override { api_.destroy(plan_); }
    Plan(const Plan&) = delete;
    Plan& operator=(const Plan&) = delete;
    void run() override { api_.execute(plan_); }

private:
    Interface api_;
    void* plan_;
};

std::unique_ptr<Transform> make(const Interface& api, const FftCase& c, void* in, void* out)
{
    if (!api.whole()) return nullptr;
    const int rank = static_cast<int>(c.lengths.size());
    const auto points = static_cast<int>(c.points()), spectrum = static_cast<int>(c.outer() * c.half_row());
    const int reals = c.in_place ? 2 * spectrum : points;
    const int* n = c.lengths.data();
    void* plan = !c.real ? api.complex(rank, n, c.batch, in, nullptr, 1, points, out, nullptr, 1, points,
                                       c.backward ? backward : forward, measure)
                 : c.backward
                     ? api.from_spectrum(rank, n, c.batch, in, nullptr, 1, spectrum, out, nullptr, 1, reals, measure)
                     : api.to_spectrum(rank, n, c.batch, in, nullptr, 1, reals, out, nullptr, 1, spectrum, measure);
    return plan ? std::make_unique<Plan>(api, plan) : nullptr;
}

TransformMaker fftw_transforms(void* handle_double, void* handle_single)
{
    const Interface in_double = open_interface(handle_double, "fftw"),
                    in_single = open_interface(handle_single, "fftwf");
    if (!in_double.whole() && !in_single.whole()) return {};
    return [=](const FftCase& c, void* in, void* out) { return make(c.single ? in_single : in_double, c, in, out); };
}

// Which instruction sets a build has is in its version: "fftw-3.3.10-sse2-avx".
std::string version_of(void* handle, const char* symbol)
{
    const auto* version = handle ? static_cast<const char*>(dlsym(handle, symbol)) : nullptr;
    return version ? version : "";
}

// Both precisions of one build; empty when neither is there or it is ork's drop-in.
std::optional<Library> open_build(const std::string& name, const std::optional<fs::path>& file_double,
                                  const std::optional<fs::path>& file_single)
{
    const auto open = [](const auto& file) -> void* {
        void* handle = file ? dlopen(file->c_str(), isolated) : nullptr;
        return handle && dlsym(handle, "ork_version") == nullptr ? handle : nullptr;
    };
    void *handle_double = open(file_double), *handle_single = open(file_single);
    TransformMaker make = fftw_transforms(handle_double, handle_single);
    if (!make) return std::nullopt;
    std::string version = version_of(handle_double, "fftw_version");
    if (version.empty()) version = version_of(handle_single, "fftwf_version");
    const bool wide = version.find("avx") != std::string::npos ||
                      version_of(handle_single, "fftwf_version").find("avx") != std::string::npos;
    return Library{name,
                   version + " (FFTW_MEASURE), " + (handle_double ? file_double : file_single)->parent_path().string(),
                   wide ? Kind::wide : Kind::peer,
                   [=](const char* symbol) {
                       void* handle = std::string_view(symbol).starts_with("fftwf_") ? handle_single : handle_double;
                       return handle != nullptr ? dlsym(handle, symbol) : nullptr;
                   },
                   make};
}

std::optional<fs::path> existing(const fs::path& file)
{
    std::error_code error;
    const fs::path real = fs::canonical(file, error);
    return error ? std::nullopt : std::optional(real);
}

} // namespace

TransformMaker transforms_of(void* handle)
{
    if (TransformMaker own = ork_transforms(handle)) return own;
    return fftw_transforms(handle, handle);
}

std::vector<Library> find_transform_peers(std::vector<std::string>& notes)
{
    std::vector<Library> found;
    if (can_isolate) {
        const char* set = std::getenv("ORK_PEERS");
        const fs::path folder = fs::path(set && *set ? set : ORK_SOURCE_PEERS) / "lib";
        if (auto narrow =
                open_build("FFTW-SSE2", existing(folder / "libfftw3.so.3"), existing(folder / "libfftw3f.so.3"));
            narrow && narrow->kind == Kind::peer)
            found.push_back(*narrow);
        else
            notes.push_back("FFTW limited to SSE2: not in " + folder.string() + "; scripts/fftw-sse2 makes it");
        if (auto system = open_build("FFTW", locate({"libfftw3.so.3"}), locate({"libfftw3f.so.3"})))
            found.push_back(*system);
        else
            notes.push_back("FFTW of the system: not found");
    } else {
        notes.push_back("peer libraries: left out of a build with sanitizers");
    }
    if (eigen_version() != nullptr)
        found.push_back({"Eigen-FFT",
                         std::string("Eigen ") + eigen_version() + " (its FFT module) compiled -O3 -msse4.2",
                         Kind::peer, [](const char*) { return static_cast<void*>(nullptr); }, eigen_transform});
    return found;
}

} // namespace ork::peers
