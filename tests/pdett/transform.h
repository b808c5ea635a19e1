// SPDX-License-Identifier: MIT
// The kernels by name, and one transform with its arrays.
#pragma once

#include <algorithm>
#include <dlfcn.h>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ork/abi/pde.h"
#include "pdett/replaced_core.h"
#include "support/random.h"

namespace ork::test {

using pde::Int;

inline void* trig_symbol(const std::string& name)
{
    static void* library = dlopen(ORK_LIB_DIR "/libork_nx2.so", RTLD_LAZY | RTLD_LOCAL);
    void* address =
        library != nullptr ? dlsym(library, ("ork_pdett_nx2_" + name + "_trig_transform").c_str()) : nullptr;
    if (address == nullptr) ADD_FAILURE() << "no export " << name;
    return address;
}

template <class R>
struct Kernels {
    using Calls = pde::TrigCalls<R>;
    typename Calls::init* init;
    typename Calls::commit *commit, *forward, *backward;
    typename Calls::lines* lines;
    typename Calls::free* free;

    explicit Kernels(const std::string& prefix = "", const std::string& p = sizeof(R) == 8 ? "d" : "s")
    {
        get(init, prefix + p + "_init");
        get(commit, prefix + p + "_commit");
        get(forward, prefix + p + "_forward");
        get(backward, prefix + p + "_backward");
        get(lines, p + "_lines");
        get(free, prefix + "free");
    }
    template <class Function>
    static void get(Function*& function, const std::string& name)
    {
        function = reinterpret_cast<Function*>(trig_symbol(name));
    }
};

// Initialised; everything else is the test's to call.
template <class R>
struct Trig {
    Kernels<R> call;
    Int n, type, stat = 1;
    std::vector<Int> ipar = std::vector<Int>(16, 4711);
    std::vector<R> fpar;
    std::vector<R> f;
    ork_dft_descriptor* handle = nullptr;

    Trig(Int n, Int type, const std::string& prefix = "")
        : call(prefix), n(n), type(type), fpar(static_cast<std::size_t>(std::max<Int>(5 * n / 2 + 2, 2))),
          f(static_cast<std::size_t>(std::max<Int>(n, 0)) + 1)
    {
        call.init(&n, &type, ipar.data(), fpar.data(), &stat);
        Random random(static_cast<std::uint64_t>(n * 6 + type));
        for (R& x : f) x = random.uniform<R>();
        if (type == 0 || type == 3) f.front() = 0;
        if (type == 0 || type == 2) f.back() = 0;
    }
    ~Trig()
    {
        if (handle != nullptr && replaced_core().failing.empty()) call.free(&handle, ipar.data(), &stat);
    }
    Trig(const Trig&) = delete;

    Int stored(Int status) const { return status == ipar[6] ? status : -1; } // stat, when ipar says the same
    Int commit()
    {
        call.commit(f.data(), &handle, ipar.data(), fpar.data(), &stat);
        return stored(stat);
    }
    Int forward(R* at = nullptr) { return compute(call.forward, at); }
    Int backward(R* at = nullptr) { return compute(call.backward, at); }
    Int compute(typename pde::TrigCalls<R>::forward* kernel, R* at)
    {
        kernel(at != nullptr ? at : f.data(), &handle, ipar.data(), fpar.data(), &stat);
        return stored(stat);
    }
    Int free()
    {
        call.free(&handle, ipar.data(), &stat);
        return stored(stat);
    }
};

using RealPrecisions = testing::Types<float, double>;

} // namespace ork::test
