// SPDX-License-Identifier: MIT
// The bindings of gemm_batch: groups of multiplies. Every argument of gemm is an array with an element a group, the
// matrices are arrays with an element a multiply, group after group. All groups are checked, as calls of gemm, before
// any is begun.
#pragma once

#include "blas/binding.h"
#include "blas/gemm_batch.h"

namespace ork::blas {

constexpr char letter(char c) { return c; }

// Op is a letter or a CBLAS_TRANSPOSE.
template <class Row, class Int, class Op>
struct Groups {
    using T = typename Row::Value;

    const Op *transa, *transb;
    const Int *m, *n, *k;
    const T* alpha;
    const T* const* a;
    const Int* lda;
    const T* const* b;
    const Int* ldb;
    const T* beta;
    T* const* c;
    const Int* ldc;
    Int count;
    const Int* size;

    // The column-major problems of the transposed matrices.
    Groups by_rows() const { return {transb, transa, n, m, k, alpha, b, ldb, a, lda, beta, c, ldc, count, size}; }

    // call(arguments of gemm...) for multiply `matrix` of group g.
    template <class Call>
    auto with(std::int64_t g, std::int64_t matrix, Call call) const
    {
        const char ta = letter(transa[g]), tb = letter(transb[g]);
        const std::int64_t sizes[] = {m[g], n[g], k[g], lda[g], ldb[g], ldc[g]};
        return call(&ta, &tb, &sizes[0], &sizes[1], &sizes[2], &alpha[g], matrix < 0 ? nullptr : a[matrix], &sizes[3],
                    matrix < 0 ? nullptr : b[matrix], &sizes[4], &beta[g], matrix < 0 ? nullptr : c[matrix], &sizes[5]);
    }

    // Place of the first illegal argument, counted from 1; 0 when there is none.
    int first_illegal() const
    {
        constexpr int count_place = Row::gemm::count + 1;
        if (count < 0) return count_place;
        for (Int g = 0; g < count; ++g) {
            if (size[g] < 0) return count_place + 1;
            const auto check = [](auto... arguments) {
                return blas::first_illegal<typename Row::gemm>(std::tuple(arguments...));
            };
            if (const int wrong = with(g, -1, check); wrong != 0) return wrong;
        }
        return 0;
    }

    void run() const
    {
        std::int64_t total = 0;
        double work = 0;
        for (Int g = 0; g < count; ++g) {
            total += size[g];
            work += static_cast<double>(m[g]) * static_cast<double>(n[g]) * static_cast<double>(k[g]) * size[g];
        }
        run_batch(total, work, [&](std::int64_t i) {
            std::int64_t g = 0, last = size[0];
            while (i >= last) last += size[++g];
            with(g, i, [](auto... arguments) { gemm<T>(arguments...); });
        });
    }
};

template <class Row, class Int>
inline void gemm_groups_fortran(const Groups<Row, Int, char>& groups)
{
    if (const int wrong = groups.first_illegal(); wrong != 0) [[unlikely]]
        return report_fortran<Int>(fortran_name<Row>.data(), fortran_name<Row>.size() - 1, wrong);
    groups.run();
}

template <class Row, class Int>
inline void gemm_groups_cblas(CBLAS_LAYOUT layout, const Groups<Row, Int, CBLAS_TRANSPOSE>& groups)
{
    const bool by_rows = layout == CblasRowMajor;
    if (!by_rows && layout != CblasColMajor) return report_cblas<Int>(cblas_name<Row>.data(), 1);
    const auto columns = by_rows ? groups.by_rows() : groups;
    if (const int wrong = columns.first_illegal(); wrong != 0) [[unlikely]] {
        const bool of_gemm = static_cast<std::size_t>(wrong) <= Row::gemm::count;
        const std::size_t place = by_rows && of_gemm ? source<typename Row::gemm>(wrong - 1) : wrong - 1;
        return report_cblas<Int>(cblas_name<Row>.data(), static_cast<int>(place) + 2);
    }
    columns.run();
}

} // namespace ork::blas
