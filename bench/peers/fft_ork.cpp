// SPDX-License-Identifier: MIT
// Transforms of ork through its public descriptors, looked up by name so that an older build can be measured too.
#include <dlfcn.h>

#include "ork/dft.h"
#include "peers/opening.h"

namespace ork::peers {
namespace {

struct Interface {
    decltype(&ork_dft_create_descriptor) create = nullptr;
    decltype(&ork_dft_set_integer) set = nullptr;
    decltype(&ork_dft_set_integers) set_all = nullptr;
    decltype(&ork_dft_commit_descriptor) commit = nullptr;
    decltype(&ork_dft_free_descriptor) free = nullptr;
    decltype(&ork_dft_forward) forward = nullptr, backward = nullptr;
    decltype(&ork_dft_forward_out) forward_out = nullptr, backward_out = nullptr;
};

template <class Function>
bool get(Function*& function, void* handle, const char* name)
{
    function = reinterpret_cast<Function*>(dlsym(handle, name));
    return function != nullptr;
}

class Descriptor : public Transform {
public:
    Descriptor(const Interface& api, const FftCase& c, void* in, void* out)
        : api_(api), backward_(c.backward), in_(in), out_(in == out ? nullptr : out)
    {
        ready_ = describe(c) && api_.commit(handle_) == ORK_DFT_NO_ERROR;
    }
    ~Descriptor() override { api_.free(&handle_); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    bool ready() const { return ready_; }
    void run() override
    {
        if (out_ != nullptr)
            (backward_ ? api_.backward_out : api_.forward_out)(handle_, in_, out_);
        else
            (backward_ ? api_.backward : api_.forward)(handle_, in_);
    }

private:
    bool describe(const FftCase& c)
    {
        // ork's dimension 0 is the one of adjacent numbers, here the last
        const std::vector<int64_t> lengths(c.lengths.rbegin(), c.lengths.rend());
        const auto rank = static_cast<int64_t>(lengths.size());
        bool good = api_.create(&handle_, c.single ? ORK_DFT_SINGLE : ORK_DFT_DOUBLE,
                                c.real ? ORK_DFT_REAL : ORK_DFT_COMPLEX, rank, lengths.data()) == ORK_DFT_NO_ERROR;
        const auto set = [&](int64_t parameter, int64_t value) {
            good = good && api_.set(handle_, parameter, value) == ORK_DFT_NO_ERROR;
        };
        const auto strides = [&](int64_t parameter, int64_t row) {
            std::vector<int64_t> all = {0, 1};
            for (int64_t d = 1, step = row; d < rank; step *= lengths[static_cast<size_t>(d)], ++d) all.push_back(step);
            good = good && api_.set_all(handle_, parameter, all.data()) == ORK_DFT_NO_ERROR;
        };
        if (c.real) {
            // "input" is what a forward transform reads, whichever way this one goes
            const auto spectrum = static_cast<int64_t>(c.half_row()), outer = static_cast<int64_t>(c.outer());
            const int64_t reals = c.in_place ? 2 * spectrum : lengths[0];
            set(ORK_DFT_CONJUGATE_EVEN_STORAGE, ORK_DFT_COMPLEX_COMPLEX);
            strides(ORK_DFT_INPUT_STRIDES, reals);
            strides(ORK_DFT_OUTPUT_STRIDES, spectrum);
            set(ORK_DFT_INPUT_DISTANCE, reals * outer);
            set(ORK_DFT_OUTPUT_DISTANCE, spectrum * outer);
        } else {
            set(ORK_DFT_INPUT_DISTANCE, static_cast<int64_t>(c.points()));
            set(ORK_DFT_OUTPUT_DISTANCE, static_cast<int64_t>(c.points()));
        }
        set(ORK_DFT_NUMBER_OF_TRANSFORMS, c.batch);
        set(ORK_DFT_PLACEMENT, c.in_place ? ORK_DFT_INPLACE : ORK_DFT_NOT_INPLACE);
        return good;
    }

    Interface api_;
    bool backward_, ready_ = false;
    void *in_, *out_;
    ork_dft_descriptor* handle_ = nullptr;
};

} // namespace

TransformMaker ork_transforms(void* handle)
{
    Interface api;
    if (!get(api.create, handle, "ork_dft_create_descriptor") || !get(api.set, handle, "ork_dft_set_integer") ||
        !get(api.set_all, handle, "ork_dft_set_integers") || !get(api.commit, handle, "ork_dft_commit_descriptor") ||
        !get(api.free, handle, "ork_dft_free_descriptor") || !get(api.forward, handle, "ork_dft_forward") ||
        !get(api.backward, handle, "ork_dft_backward") || !get(api.forward_out, handle, "ork_dft_forward_out") ||
        !get(api.backward_out, handle, "ork_dft_backward_out"))
        return {};
    return [api](const FftCase& c, void* in, void* out) -> std::unique_ptr<Transform> {
        auto transform = std::make_unique<Descriptor>(api, c, in, out);
        if (!transform->ready()) return nullptr;
        return transform;
    };
}

} // namespace ork::peers
