// SPDX-License-Identifier: MIT
#include "pdett/replaced_core.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "ork/abi/services.h"
#include "ork/dft.h"
#include "support/next_routine.h"

namespace ork::test {

ReplacedCore& replaced_core()
{
    static ReplacedCore core;
    return core;
}

namespace {

bool fails(const char* call) { return replaced_core().failing == call; }

} // namespace
} // namespace ork::test

using namespace ork::test;
#define CORES(name) next_routine<decltype(name)>(#name)

extern "C" {

// "<451:12>", "<452:>": number and first argument.
int64_t ork_serv_get_msg(char* buffer, size_t size, int64_t number, int64_t arguments, ...)
{
    std::va_list values;
    va_start(values, arguments);
    const char* argument = arguments > 0 ? va_arg(values, const char*) : "";
    va_end(values);
    return std::snprintf(buffer, size, "<%lld:%s>", static_cast<long long>(number), argument);
}

int ork_serv_format_print(int64_t channel, const char* format, ...)
{
    char text[8192];
    std::va_list values;
    va_start(values, format);
    const int length = std::vsnprintf(text, sizeof text, format, values);
    va_end(values);
    replaced_core().printed += channel == 0 ? text : "not to standard output";
    return length;
}

void* ork_serv_allocate(size_t size, size_t alignment)
{
    return replaced_core().no_memory ? nullptr : CORES(ork_serv_allocate)(size, alignment);
}

#define CREATE(p)                                                                                                      \
    int64_t ork_dft_dfticreatedescriptor_##p##_1d(ork_dft_descriptor** handle, int64_t domain, int64_t length)         \
    {                                                                                                                  \
        if (fails("create")) return replaced_core().failing_status;                                                    \
        ++replaced_core().descriptors;                                                                                 \
        replaced_core().lengths = length;                                                                              \
        replaced_core().settings.clear();                                                                              \
        return CORES(ork_dft_dfticreatedescriptor_##p##_1d)(handle, domain, length);                                   \
    }
CREATE(s)
CREATE(d)

int64_t ork_dft_dftisetvalue(ork_dft_descriptor* handle, int64_t parameter, ...)
{
    std::va_list values;
    va_start(values, parameter);
    const int64_t value = parameter == ORK_DFT_NUMBER_OF_USER_THREADS ? va_arg(values, int64_t) : va_arg(values, int);
    va_end(values);
    replaced_core().settings.emplace_back(parameter, value);
    if (replaced_core().failing == "set " + std::to_string(parameter)) return replaced_core().failing_status;
    return ork_dft_set_integer(handle, parameter, value);
}

int64_t ork_dft_dfticommitdescriptor(ork_dft_descriptor* handle)
{
    return fails("commit") ? replaced_core().failing_status : CORES(ork_dft_dfticommitdescriptor)(handle);
}
int64_t ork_dft_dfticomputeforward(const ork_dft_descriptor* handle, void* inout, ...)
{
    return fails("compute") ? replaced_core().failing_status : CORES(ork_dft_dfticomputeforward)(handle, inout);
}
int64_t ork_dft_dfticomputebackward(const ork_dft_descriptor* handle, void* inout, ...)
{
    return fails("compute") ? replaced_core().failing_status : CORES(ork_dft_dfticomputebackward)(handle, inout);
}
int64_t ork_dft_dftifreedescriptor(ork_dft_descriptor** handle)
{
    if (fails("free")) return replaced_core().failing_status;
    const int64_t status = CORES(ork_dft_dftifreedescriptor)(handle);
    if (status == 0) --replaced_core().descriptors;
    return status;
}
}
