// SPDX-License-Identifier: MIT
// Many independent multiplies in one call. The threads share the multiplies where there are enough of them, otherwise
// each multiply in turn; its bits are the same in either case.
#pragma once

#include "blas/gemm.h"

namespace ork::blas {

// multiply(i) for i = 0 .. count - 1, which take `work` multiplications altogether.
template <class Multiply>
void run_batch(std::int64_t count, double work, Multiply multiply)
{
    const int threads = affordable_threads(work, gemm_work_per_thread);
    if (threads == 1 || count < 4 * threads) {
        for (std::int64_t i = 0; i < count; ++i) multiply(i);
        return;
    }
    const std::int64_t parts = std::min<std::int64_t>(count, 8 * threads); // several, since they may differ in size
    threads::run(static_cast<int>(parts), [&](int part) {
        for (std::int64_t i = count * part / parts; i < count * (part + 1) / parts; ++i) multiply(i);
    });
}

// Multiplies of one shape whose matrices lie at equal distances.
template <class T>
void gemm_batch_strided(const char* transa, const char* transb, const std::int64_t* m, const std::int64_t* n,
                        const std::int64_t* k, const T* alpha, const T* a, const std::int64_t* lda,
                        const std::int64_t* stridea, const T* b, const std::int64_t* ldb, const std::int64_t* strideb,
                        const T* beta, T* c, const std::int64_t* ldc, const std::int64_t* stridec,
                        const std::int64_t* batch_size)
{
    const double work = static_cast<double>(*m) * static_cast<double>(*n) * static_cast<double>(*k);
    run_batch(*batch_size, work * static_cast<double>(*batch_size), [&](std::int64_t i) {
        gemm<T>(transa, transb, m, n, k, alpha, a + i * *stridea, lda, b + i * *strideb, ldb, beta, c + i * *stridec,
                ldc);
    });
}

} // namespace ork::blas
