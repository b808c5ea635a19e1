// SPDX-License-Identifier: MIT
// The symbols through which illegal arguments are reported. Each is called through the symbol table, so that a
// definition in the executable takes its place; the library's own all end in one report through xerbla_.
#include "blas/report.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "export.h"
#include "ork/blas.h"
#include "ork/cblas.h"
#include "services/xerbla.h"

// What cblas_xerbla64_ is when no program defines it.
extern "C" __attribute__((visibility("hidden"))) void ork_own_cblas_xerbla(int64_t, const char*, const char*, ...);

namespace ork::blas {

template <>
void report_fortran<std::int32_t>(const char* routine, std::size_t, int position)
{
    services::report_argument(routine, position);
}

template <>
void report_fortran<std::int64_t>(const char* routine, std::size_t length, int position)
{
    const std::int64_t info = position;
    xerbla_64_(routine, &info, length);
}

// Handlers written for the reference renumber the arguments while RowMajorStrg is set, and testers set it themselves;
// the positions here are the caller's already.
template <>
void report_cblas<std::int32_t>(const char* routine, int position)
{
    RowMajorStrg = 0;
    cblas_xerbla(position, routine, "");
}

// A program for libblas64 has 64-bit integers under the plain names, so its own handler is cblas_xerbla. The position
// fills a register, of which a handler with 32-bit integers looks at the lower half.
template <>
void report_cblas<std::int64_t>(const char* routine, int position)
{
    RowMajorStrg = 0;
    auto* handler = cblas_xerbla64_;
    if (handler == ork_own_cblas_xerbla)
        handler = reinterpret_cast<decltype(handler)>(reinterpret_cast<void (*)()>(cblas_xerbla));
    handler(position, routine, "");
}

namespace {

void print_form(const char* form, std::va_list values)
{
    if (form != nullptr && *form != 0) std::vfprintf(stderr, form, values);
}

} // namespace

} // namespace ork::blas

using namespace ork::blas;

ORK_EXPORT void ork_blas_xerbla(const char* routine, const int64_t* position, size_t length)
{
    char name[65] = {};
    std::memcpy(name, routine, length < 64 ? length : 64);
    ork::services::report_argument(name, *position);
}

ORK_EXPORT void ork_cblas_lp64_xerbla(int32_t position, const char* routine, const char* form, ...)
{
    ork::services::report_argument(routine, position);
    std::va_list values;
    va_start(values, form);
    print_form(form, values);
    va_end(values);
}

ORK_EXPORT void ork_cblas_xerbla(int64_t position, const char* routine, const char* form, ...)
{
    ork::services::report_argument(routine, position);
    std::va_list values;
    va_start(values, form);
    print_form(form, values);
    va_end(values);
}

ORK_EXPORT decltype(ork_blas_xerbla) xerbla_64_ __attribute__((alias("ork_blas_xerbla")));
ORK_EXPORT decltype(ork_cblas_lp64_xerbla) cblas_xerbla __attribute__((alias("ork_cblas_lp64_xerbla")));
extern "C" decltype(ork_cblas_xerbla) ork_own_cblas_xerbla __attribute__((alias("ork_cblas_xerbla")));
ORK_EXPORT decltype(ork_cblas_xerbla) cblas_xerbla64_ __attribute__((alias("ork_cblas_xerbla")));
ORK_EXPORT decltype(ork_cblas_xerbla) cblas_xerbla_64 __attribute__((alias("ork_cblas_xerbla")));

__attribute__((visibility("default"))) int RowMajorStrg = 0;
__attribute__((visibility("default"))) int CBLAS_CallFromC = 0;
