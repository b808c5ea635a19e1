// SPDX-License-Identifier: MIT
// Code that may crash, hang, exit or need limits of its own, run in a process of its own.
#pragma once

#include <sys/resource.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace ork::test {

struct ChildResult {
    int exit_code = -1; // -1 when a signal ended the child
    int signal = 0;     // SIGALRM when the time was up
    std::string out, err;

    bool timed_out() const;
    bool ok() const { return exit_code == 0; }
    // For the message of a failed expectation.
    std::string describe() const;
};

// Runs the function in a forked child; what it returns is the exit status. The child is ended by SIGALRM after
// `seconds`. Failed expectations inside the child don't count: return a status instead.
ChildResult run_child(const std::function<int()>& function, unsigned seconds = 30);

// Runs a program, found along PATH when it has no slash. `environment` is added to the caller's; an entry without '='
// removes the variable. `prepare` runs in the child before the program starts (limits, say).
ChildResult run_program(const std::vector<std::string>& arguments, const std::vector<std::string>& environment = {},
                        unsigned seconds = 60, const std::function<void()>& prepare = {});

// Soft limit of a resource (RLIMIT_AS, RLIMIT_NPROC, ...) for the life of the object. Sanitizers reserve terabytes, so
// a limit on the address space is not for their builds.
class ScopedLimit {
public:
    ScopedLimit(int resource, rlim_t soft);
    ~ScopedLimit();
    ScopedLimit(const ScopedLimit&) = delete;
    ScopedLimit& operator=(const ScopedLimit&) = delete;

private:
    int resource_;
    rlimit before_{};
};

inline constexpr bool sanitized =
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    true;
#else
    false;
#endif

} // namespace ork::test
