// SPDX-License-Identifier: MIT
#include "support/environment.h"

#include <sys/mman.h>
#include <ucontext.h>
#include <unistd.h>
#include <xmmintrin.h>

#include <cstdint>
#include <cstdlib>
#include <new>

namespace ork::test {

namespace {

constexpr unsigned flag_bits = 0x3f;
constexpr unsigned flush_to_zero = 0x8000, denormals_are_zero = 0x40, towards_zero = 0x6000;

std::uint16_t x87_control()
{
    std::uint16_t word;
    asm volatile("fnstcw %0" : "=m"(word));
    return word;
}

// The control word that the call met, and what it left.
testing::AssertionResult check_call(const std::function<void()>& function, unsigned control, unsigned allowed)
{
    const std::uint16_t x87 = x87_control();
    _mm_setcsr(control & ~flag_bits);
    function();
    const unsigned after = _mm_getcsr();
    const std::uint16_t x87_after = x87_control();
    if ((after & ~flag_bits) != (control & ~flag_bits))
        return testing::AssertionFailure()
               << std::hex << "MXCSR control changed from " << (control & ~flag_bits) << " to " << (after & ~flag_bits);
    if (x87_after != x87)
        return testing::AssertionFailure() << std::hex << "x87 control changed from " << x87 << " to " << x87_after;
    if ((after & flag_bits & ~allowed) != 0)
        return testing::AssertionFailure()
               << std::hex << "exception flags raised: " << (after & flag_bits) << ", allowed: " << allowed
               << " (MXCSR control " << (control & ~flag_bits) << ")";
    return testing::AssertionSuccess();
}

} // namespace

testing::AssertionResult keeps_fp_environment(const std::function<void()>& function, unsigned allowed,
                                              bool default_control_only)
{
    const unsigned caller = _mm_getcsr();
    const unsigned usual = 0x1f80;
    auto result = check_call(function, usual, allowed);
    if (result && !default_control_only)
        result = check_call(function, usual | towards_zero | flush_to_zero | denormals_are_zero, allowed);
    _mm_setcsr(caller);
    return result;
}

unsigned fp_flags_of(const std::function<void()>& function)
{
    const unsigned caller = _mm_getcsr();
    _mm_setcsr(caller & ~flag_bits);
    function();
    const unsigned raised = _mm_getcsr() & flag_bits;
    _mm_setcsr(caller);
    return raised;
}

namespace {

// Calls on a stack of another size are made with a context switch and not with a thread, whose stack would also have to
// hold the thread's own data.
struct StackCall {
    const std::function<void()>* function;
    ucontext_t caller, callee;
};

void enter(unsigned low, unsigned high)
{
    auto* call = reinterpret_cast<StackCall*>(static_cast<std::uintptr_t>(high) << 32 | low);
    (*call->function)();
}

} // namespace

void run_on_small_stack(std::size_t bytes, const std::function<void()>& function)
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    bytes *= 8;
#endif
    const std::size_t page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    bytes = (bytes + page - 1) / page * page;
    void* mapping = mmap(nullptr, bytes + page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_STACK, -1, 0);
    if (mapping == MAP_FAILED) throw std::bad_alloc();
    if (mprotect(mapping, page, PROT_NONE) != 0) std::abort();

    StackCall call{};
    call.function = &function;
    getcontext(&call.callee);
    call.callee.uc_stack.ss_sp = static_cast<char*>(mapping) + page;
    call.callee.uc_stack.ss_size = bytes;
    call.callee.uc_link = &call.caller;
    const auto address = reinterpret_cast<std::uintptr_t>(&call);
    makecontext(&call.callee, reinterpret_cast<void (*)()>(enter), 2, static_cast<unsigned>(address),
                static_cast<unsigned>(address >> 32));
    swapcontext(&call.caller, &call.callee);
    munmap(mapping, bytes + page);
}

} // namespace ork::test
