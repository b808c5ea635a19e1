// SPDX-License-Identifier: MIT
// A routine of the kernel library in use, found by name at its first call:
//
//     constinit Kernel<double(const int64_t*, const double*, ...)> xddot{"blas", "xddot"};
//     double r = xddot(&n, x, &incx, y, &incy);
//
// After the first call a call costs one load and one predicted branch. When the library or the routine can't be had,
// the process ends with a message that names the file tried and EXIT_FAILURE; ork_initialize() asks first and never
// ends it.
#pragma once

#include <atomic>

namespace ork::loader {

// Address of ork_<domain>_<tag>_<routine>; loads the kernel library if need be. Never null.
void* find_kernel(const char* domain, const char* routine);

template <class Signature>
class Kernel;

template <class Result, class... Arguments>
class Kernel<Result(Arguments...)> {
public:
    using Pointer = Result (*)(Arguments...);

    constexpr Kernel(const char* domain, const char* routine) : domain_(domain), routine_(routine) {}

    Pointer get()
    {
        void* address = address_.load(std::memory_order_acquire);
        if (address == nullptr) [[unlikely]] {
            address = find_kernel(domain_, routine_);
            address_.store(address, std::memory_order_release);
        }
        return reinterpret_cast<Pointer>(address);
    }

    Result operator()(Arguments... arguments)
    {
        void* address = address_.load(std::memory_order_acquire);
        if (address == nullptr) [[unlikely]]
            return first_call(arguments...);
        return reinterpret_cast<Pointer>(address)(arguments...);
    }

private:
    // Out of line, so that every later call is a plain jump that saves no register.
    [[gnu::noinline, gnu::cold]] Result first_call(Arguments... arguments) { return get()(arguments...); }

    std::atomic<void*> address_ = nullptr;
    const char* domain_;
    const char* routine_;
};

} // namespace ork::loader
