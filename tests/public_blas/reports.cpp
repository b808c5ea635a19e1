// SPDX-License-Identifier: MIT
#include "reports.h"

#include <mutex>
#include <ostream>
#include <utility>

#include "ork/blas.h"
#include "ork/cblas.h"

namespace ork::test {

namespace {

std::mutex mutex;
std::vector<Report> reports;

void keep(const char* through, std::string routine, std::int64_t position)
{
    const std::lock_guard hold(mutex);
    reports.push_back({through, std::move(routine), position});
}

} // namespace

std::vector<Report> take_reports()
{
    const std::lock_guard hold(mutex);
    return std::exchange(reports, {});
}

void PrintTo(const Report& report, std::ostream* out)
{
    *out << report.through << "(\"" << report.routine << "\", " << report.position << ")";
}

} // namespace ork::test

using ork::test::keep;

void xerbla_(const char* routine, const int32_t* position, size_t length)
{
    keep("xerbla_", {routine, length}, *position);
}
void xerbla_64_(const char* routine, const int64_t* position, size_t length)
{
    keep("xerbla_64_", {routine, length}, *position);
}
void cblas_xerbla(int32_t position, const char* routine, const char*, ...) { keep("cblas_xerbla", routine, position); }
void cblas_xerbla64_(int64_t position, const char* routine, const char*, ...)
{
    keep("cblas_xerbla64_", routine, position);
}
