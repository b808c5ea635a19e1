// SPDX-License-Identifier: MIT
#include "support/fake_core.h"

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <limits>
#include <new>

#include "ork/abi/core_blas.h"
#include "ork/abi/core_lapack.h"
#include "ork/abi/dft.h"
#include "ork/abi/services.h"

namespace ork::test {

FakeCore& fake_core()
{
    static FakeCore core;
    return core;
}

void FreshCore::reset() { new (&fake_core()) FakeCore; } // atomics can't be assigned as a whole

} // namespace ork::test

using ork::test::fake_core;

namespace {

void* allocate(size_t size, size_t alignment, std::atomic<int>& live)
{
    auto& core = fake_core();
    ++core.allocations;
    core.last_size = static_cast<int64_t>(size);
    core.last_alignment = static_cast<int64_t>(alignment);
    if (core.fail_allocation_at > 0 && --core.fail_allocation_at == 0) return nullptr;
    ++live;
    return std::aligned_alloc(alignment, (size + alignment - 1) / alignment * alignment);
}

void release(void* ptr, std::atomic<int>& live)
{
    ++fake_core().deallocations;
    if (ptr == nullptr) return;
    --live;
    std::free(ptr);
}

} // namespace

extern "C" {

void* ork_serv_allocate(size_t size, size_t alignment)
{
    return allocate(size, alignment, fake_core().live_allocations);
}

void ork_serv_deallocate(void* ptr) { release(ptr, fake_core().live_allocations); }

void* ork_serv_malloc(size_t size, size_t alignment) { return allocate(size, alignment, fake_core().live_objects); }

void* ork_serv_calloc(size_t count, size_t size, size_t alignment, int64_t)
{
    void* memory = allocate(count * size, alignment, fake_core().live_objects);
    return memory == nullptr ? nullptr : std::memset(memory, 0, count * size);
}

void ork_serv_free(void* ptr) { release(ptr, fake_core().live_objects); }

int ork_serv_check_ptr_and_warn(const void* ptr, const char* name)
{
    fake_core().last_checked = name;
    return ptr == nullptr;
}

int64_t ork_serv_get_microarchitecture()
{
    ++fake_core().microarchitecture_queries;
    return fake_core().microarchitecture;
}

int64_t ork_serv_cache_info(ork_cache_info* info)
{
    ++fake_core().cache_queries;
    *info = {};
    info->levels = fake_core().cache_levels;
    info->cache_size = fake_core().cache_size;
    return 0;
}

int64_t ork_serv_get_cache_size(int level) { return level == 2 ? fake_core().level2_size.load() : 0; }

double ork_serv_libm_cos(double x) { return std::cos(x); }
double ork_serv_libm_sin(double x) { return std::sin(x); }
float ork_serv_libm_cosf(float x) { return std::cos(x); }
float ork_serv_libm_sinf(float x) { return std::sin(x); }

// Work memory comes as it is on a real machine: full of something else.
void* ork_dft_ufxMalloc(int64_t bytes)
{
    void* memory = allocate(static_cast<size_t>(bytes), 64, fake_core().live_work);
    return memory == nullptr ? nullptr : std::memset(memory, 0xff, static_cast<size_t>(bytes));
}

void ork_dft_ufxFree(void* memory) { release(memory, fake_core().live_work); }

#define THREADED_COMMIT(kind)                                                                                          \
    int32_t ork_dft_commit_node_##kind##_omp(ork_dft_node* node)                                                       \
    {                                                                                                                  \
        auto& core = fake_core();                                                                                      \
        ++core.threaded_commits;                                                                                       \
        if (core.threaded_commit_threads != 0) node->threads = core.threaded_commit_threads;                           \
        if (!core.threaded_commit_plans) return core.threaded_commit_status;                                           \
        return reinterpret_cast<ork_dft_commit*>(dlsym(RTLD_DEFAULT, "ork_dft_nx2_plan_node"))(node);                  \
    }
THREADED_COMMIT(s_c2c_1d)
THREADED_COMMIT(s_c2c_md)
THREADED_COMMIT(s_r2c_1d)
THREADED_COMMIT(s_r2c_md)
THREADED_COMMIT(d_c2c_1d)
THREADED_COMMIT(d_c2c_md)
THREADED_COMMIT(d_r2c_1d)
THREADED_COMMIT(d_r2c_md)
#undef THREADED_COMMIT

int64_t ork_serv_cbwr_get(int64_t what)
{
    ++fake_core().reproducibility_queries;
    return what == 1 ? fake_core().reproducibility.load() : 0;
}

int64_t ork_serv_cpu_detect() { return fake_core().processor; }

// Kernels ask for the safe minimum only.
float ork_lapack_slamch(const char* what)
{
    ++fake_core().lamch_queries;
    return *what == 'S' ? std::numeric_limits<float>::min() : 0;
}
double ork_lapack_dlamch(const char* what)
{
    ++fake_core().lamch_queries;
    return *what == 'S' ? std::numeric_limits<double>::min() : 0;
}

// A core's gemv is a kernel's, of whichever kernel library calls it.
#define GEMV(letter, T)                                                                                                \
    void ork_blas_##letter##gemv(const char* trans, const int64_t* m, const int64_t* n, const T* alpha, const T* a,    \
                                 const int64_t* lda, const T* x, const int64_t* incx, const T* beta, T* y,             \
                                 const int64_t* incy)                                                                  \
    {                                                                                                                  \
        ++fake_core().gemv_calls;                                                                                      \
        fake_core().gemv_elements += *m * *n;                                                                          \
        const auto kernel = reinterpret_cast<decltype(&ork_blas_##letter##gemv)>(                                      \
            dlsym(RTLD_DEFAULT, "ork_blas_nx2_x" #letter "gemv"));                                                     \
        kernel(trans, m, n, alpha, a, lda, x, incx, beta, y, incy);                                                    \
    }
GEMV(s, float)
GEMV(d, double)
GEMV(c, ork_complex_float)
GEMV(z, ork_complex_double)
#undef GEMV
}
