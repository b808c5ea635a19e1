// SPDX-License-Identifier: MIT
// optimize: hands the matrix to each of those who analyse, and tells what they found out.
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <new>

#include "export.h"
#include "ork/abi/services.h"
#include "sparse/analysis.h"
#include "sparse/environment.h"
#include "sparse/handle.h"
#include "sparse/kernels.h"

namespace ork::sparse {
namespace {

constinit Kernels<2> kernel_optimize("optimize");

// Made anew by each optimize; false when there is no memory.
bool have_analysis(Matrix& a)
{
    if (a.analysis == nullptr) {
        void* const memory = ork_serv_malloc(sizeof(Analysis), 64);
        if (memory == nullptr) return false;
        a.analysis = new (memory) Analysis{};
    }
    analysis_of(a)->description = {};
    return true;
}

std::int64_t analyse(Matrix& a)
{
    using Handles = HandleCalls<std::int64_t>;
    // Rows of arrays that are the handle's own may as well ascend; analyses then need not ask. What was analysed before
    // may know where entries stood.
    if (a.owns_arrays && !a.sorted) drop_analysis(a);
    a.divides = 0; // the caller's values may have changed
    if (kernel_optimize.get<Handles::optimize>(a)(&a, 0) != 0 || !have_analysis(a)) return ORK_SPARSE_NO_MEMORY;
    Analysis& analysis = *analysis_of(a);
    for (auto* const step : {analyse_mv, analyse_mm, analyse_solve})
        if (const auto status = step(a, analysis)) return status;
    return ORK_SPARSE_SUCCESS;
}

std::int64_t optimize(ork_sparse_matrix_t handle)
{
    const Routine r = {"optimize", "a"};
    Checks check(r);
    Matrix* const a = check.handle("a", handle);
    if (check.failed()) return check.status();
    const double start = ork_serv_dsecnd();
    if (analyse(*a) != ORK_SPARSE_SUCCESS) return no_memory(r);
    ork_sparse_description& d = analysis_of(*a)->description;
    d.seconds = ork_serv_dsecnd() - start;
    if (prints()) ork_serv_print(0, d.text);
    return ORK_SPARSE_SUCCESS;
}

std::int64_t tell(ork_sparse_matrix_t handle, ork_sparse_description* description)
{
    const Routine r = {"describe", "a description"};
    Checks check(r);
    const Matrix* const a = check.handle("a", handle);
    check.given("description", description);
    if (check.failed()) return check.status();
    if (const Analysis* analysis = analysis_of(*a)) {
        *description = analysis->description;
        return ORK_SPARSE_SUCCESS;
    }
    *description = {};
    description->padding = 1;
    constexpr const char* formats[] = {"csr", "csc", "coo", "bsr"};
    std::strcpy(description->layout, formats[static_cast<int>(a->format)]);
    std::strcpy(description->text, "not optimised: works in the arrays as they were handed over\n");
    return ORK_SPARSE_SUCCESS;
}

} // namespace

void describe(Analysis& analysis, const char* line, ...)
{
    auto& text = analysis.description.text;
    const std::size_t length = std::strlen(text);
    std::va_list values;
    va_start(values, line);
    std::vsnprintf(text + length, sizeof text - length, line, values);
    va_end(values);
    const std::size_t now = std::strlen(text);
    if (now + 1 < sizeof text) std::strcpy(text + now, "\n");
}

} // namespace ork::sparse

ORK_EXPORT int64_t ork_sparse_optimize(ork_sparse_matrix_t a) { return ork::sparse::optimize(a); }
ORK_EXPORT int64_t ork_sparse_describe(ork_sparse_matrix_t a, ork_sparse_description* description)
{
    return ork::sparse::tell(a, description);
}
