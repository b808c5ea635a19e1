// SPDX-License-Identifier: MIT
// Tracing of calls, and the clock that it uses.
#include <time.h>

#include <cstdio>

#include "export.h"
#include "ork/abi/services.h"
#include "ork/ork.h"
#include "services/setting.h"

namespace {
constinit ork::services::Setting verbose{"ORK_VERBOSE", 0};
}

ORK_EXPORT int64_t ork_serv_verbose_mode() { return verbose.get(); }

ORK_EXPORT int ork_set_verbose(int mode) { return verbose.set(mode); }

ORK_EXPORT double ork_serv_dsecnd()
{
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

// One call to stdio a line: lines of several threads do not mix.
ORK_EXPORT void ork_serv_print_verbose_info(double seconds, int64_t mode, const char* line)
{
    if (mode != 0) std::fprintf(stderr, "ORK_VERBOSE %s %.2fus\n", line, seconds * 1e6);
}
