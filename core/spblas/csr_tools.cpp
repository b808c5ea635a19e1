// SPDX-License-Identifier: MIT
#include "spblas/csr_tools.h"

#include <algorithm>
#include <atomic>
#include <cstdio>

#include "loader/kernel.h"
#include "ork/abi/services.h"
#include "spblas/checks.h"
#include "spblas/error.h"
#include "spblas/members.h"
#include "spblas/split.h"
#include "threads/pool.h"

namespace ork::spblas {
namespace {

enum Tool { gemvout, multd, multd_t, symmvs, gauss, invdiag, sortrow, split };

// By tool, precision, width and base.
constinit std::atomic<void*> kernels[8][4][2][2] = {};

void* kernel_of(Tool tool, const Call& call)
{
    static constexpr const char* members[] = {
        "csr1ng__f__gemvout_par", "csrmultd_ker",     "csrmultd_ker_t",   "csrsymmvs",
        "csr%dgauss_seq",         "csr%dinvdiag_par", "csr%dsortrow_par", "csr%dsplit_par"};
    const int base = call.kind.base, precision = static_cast<int>(call.precision);
    std::atomic<void*>& known = kernels[tool][precision][call.wide][base];
    void* kernel = known.load(std::memory_order_acquire);
    if (kernel != nullptr) return kernel;
    char member[40] = {"sdcz"[precision]};
    std::snprintf(member + 1, sizeof member - 1, members[tool], base);
    kernel = loader::find_kernel(call.wide ? "spblas" : "spblas_lp64", member);
    known.store(kernel, std::memory_order_release);
    return kernel;
}

// A general matrix under the names that it has in the function.
Call general(Variant v, const Names& names, int base, std::int64_t m, std::int64_t n, const Matrix& a)
{
    Call call = {};
    call.routine = Routine::mvout;
    call.precision = v.precision, call.wide = v.wide;
    call.op = ORK_SPBLAS_NO_TRANS;
    call.kind = {ORK_SPBLAS_GENERAL, {}, {}, static_cast<ork_spblas_base>(base)};
    call.m = m, call.n = n, call.nrhs = 1;
    call.a = &a;
    call.names = &names;
    return call;
}

// body(addresses of first and last) for slices of the rows, 1-based and inclusive.
template <class Body>
void for_slices(const Call& call, double entries, Body body)
{
    const int parts = threads_for(entries);
    const auto run_slice = [&](Range range) {
        const std::int64_t first = range.first + 1, last = range.end();
        if (range.count > 0) body(&first, &last);
    };
    if (parts == 1) return run_slice({0, call.m});
    threads::run(parts, [&](int part) { run_slice(slice(call, parts, part)); });
}

} // namespace

std::int64_t product_in_three_arrays(Variant v, std::int64_t m, std::int64_t n, const Matrix& a, const void* x, void* y)
{
    static constexpr Names names = {"csrgemv", "m n val indx ia x y", "val", "indx", "ia"};
    const Call call = general(v, names, ORK_SPBLAS_BASE_1, m, n, a);
    if (const auto status = check_rows(call, call.kind.base)) return status;
    if (const auto status = n > 0 ? check_array(call, "x", x) : 0) return status;
    if (const auto status = check_array(call, "y", y)) return status;
    if (m == 0) return ORK_SPBLAS_SUCCESS;
    void* const kernel = kernel_of(gemvout, call);
    for_slices(call, stored_entries(call), [&](const std::int64_t* first, const std::int64_t* last) {
        invoke(kernel, first, last, nullptr, nullptr, nullptr, a.array[0], a.array[1], a.array[2], nullptr, x, y);
    });
    return ORK_SPBLAS_SUCCESS;
}

std::int64_t symmetric_in_three_arrays(Variant v, int uplo, std::int64_t m, const Matrix& a, const void* x, void* y)
{
    static constexpr Names names = {"csrsymmvs", "uplo m val indx ia x y", "val", "indx", "ia"};
    const Call call = general(v, names, ORK_SPBLAS_BASE_1, m, m, a);
    if (uplo != ORK_SPBLAS_UPPER && uplo != ORK_SPBLAS_LOWER)
        return wrong_argument(name_of(call), arguments_of(call), "uplo", uplo, "121 is upper, 122 lower");
    if (const auto status = check_rows(call, call.kind.base)) return status;
    if (const auto status = check_array(call, "x", x)) return status;
    if (const auto status = check_array(call, "y", y)) return status;
    if (m > 0)
        invoke(kernel_of(symmvs, call), uplo == ORK_SPBLAS_LOWER ? "L" : "U", &call.m, a.array[0], a.array[1],
               a.array[2], x, y);
    return ORK_SPBLAS_SUCCESS;
}

namespace {

// The kernels count columns from 1.
template <class Int>
void copy_plus_one(const void* from, std::int64_t count, void* to)
{
    std::transform(static_cast<const Int*>(from), static_cast<const Int*>(from) + count, static_cast<Int*>(to),
                   [](Int column) { return column + 1; });
}

// False when there is no memory.
bool run_dense_product(const Call& a, const Call& b, bool transpose, std::int64_t k, void* c, std::int64_t ldc)
{
    const void *ja = a.a->array[1], *jb = b.a->array[1];
    void* copies = nullptr;
    if (a.kind.base == ORK_SPBLAS_BASE_0) {
        const auto in_a = static_cast<std::int64_t>(stored_entries(a)),
                   in_b = static_cast<std::int64_t>(stored_entries(b));
        const std::int64_t width = a.wide ? 8 : 4;
        copies = ork_serv_allocate(static_cast<std::size_t>((in_a + in_b) * width), 64);
        if (copies == nullptr) return false;
        char* const second = static_cast<char*>(copies) + in_a * width;
        const auto copy = a.wide ? copy_plus_one<std::int64_t> : copy_plus_one<std::int32_t>;
        copy(ja, in_a, copies);
        copy(jb, in_b, second);
        ja = copies, jb = second;
    }
    const void *const *pa = a.a->array, *const *pb = b.a->array;
    if (transpose) {
        const std::int64_t first = 1;
        invoke(kernel_of(multd_t, a), &first, &a.m, &a.n, &k, pa[0], ja, pa[2], pb[0], jb, pb[2], c, &ldc);
    } else {
        // Each entry of A meets a row of B.
        const double row = stored_entries(b) / static_cast<double>(std::max<std::int64_t>(b.m, 1));
        void* const kernel = kernel_of(multd, a);
        for_slices(a, stored_entries(a) * (1 + row), [&](const std::int64_t* first, const std::int64_t* last) {
            invoke(kernel, first, last, &k, pa[0], ja, pa[2], pb[0], jb, pb[2], c, &ldc);
        });
    }
    if (copies != nullptr) ork_serv_deallocate(copies);
    return true;
}

} // namespace

std::int64_t dense_product(Variant v, int op, int base, std::int64_t m, std::int64_t n, std::int64_t k, const Matrix& a,
                           const Matrix& b, void* c, std::int64_t ldc)
{
    static constexpr const char* arguments = "op base m n k a ja ia b jb ib c ldc";
    static constexpr Names names_a = {"csrmultd", arguments, "a", "ja", "ia"},
                           names_b = {"csrmultd", arguments, "b", "jb", "ib"};
    const Call call = general(v, names_a, base, m, n, a);
    const auto wrong = [&](const char* name, std::int64_t value, const char* rule) {
        return wrong_argument(name_of(call), arguments_of(call), name, value, rule);
    };
    if (op != ORK_SPBLAS_NO_TRANS && op != ORK_SPBLAS_TRANS) return wrong("op", op, "111 or 112 here");
    if (k < 0) return wrong("k", k, "negative");
    if (const auto status = check_rows(call, base)) return status;
    const bool transpose = op == ORK_SPBLAS_TRANS;
    const Call second = general(v, names_b, base, transpose ? m : n, k, b);
    if (const auto status = check_rows(second, base)) return status;
    const std::int64_t rows = transpose ? n : m;
    if (rows > 0 && k > 0 && c == nullptr) return null_argument(name_of(call), arguments_of(call), "c");
    if (ldc < 1 || ldc < rows) return wrong("ldc", ldc, "less than the number of rows");
    if (rows == 0 || k == 0) return ORK_SPBLAS_SUCCESS;
    if (!run_dense_product(call, second, transpose, k, c, ldc)) return no_memory(name_of(call));
    return ORK_SPBLAS_SUCCESS;
}

std::int64_t sort_rows(Variant v, int base, std::int64_t m, std::int64_t n, const Matrix& a)
{
    static constexpr Names names = {"csrsort", "base m n val indx pntrb pntre", "val", "indx", nullptr};
    const Call call = general(v, names, base, m, n, a);
    if (const auto status = check_rows(call, base)) return status;
    if (m == 0) return ORK_SPBLAS_SUCCESS;
    void* const kernel = kernel_of(sortrow, call);
    const void* const* p = a.array;
    for_slices(call, stored_entries(call), [&](const std::int64_t* first, const std::int64_t* last) {
        invoke(kernel, first, last, p[0], p[1], p[2], p[3]);
    });
    return ORK_SPBLAS_SUCCESS;
}

std::int64_t invert_diagonal(Variant v, int base, std::int64_t m, const Matrix& a, void* d, std::int64_t* missing)
{
    static constexpr Names names = {"csrinvdiag", "base m val indx pntrb pntre d missing", "val", "indx", nullptr};
    const Call call = general(v, names, base, m, m, a);
    if (const auto status = check_rows(call, base)) return status;
    if (const auto status = check_array(call, "d", d)) return status;
    *missing = base - 1;
    if (m == 0) return ORK_SPBLAS_SUCCESS;
    void* const kernel = kernel_of(invdiag, call);
    const void* const* p = a.array;
    constexpr std::int64_t none = INT64_MAX;
    std::atomic<std::int64_t> least = none;
    for_slices(call, stored_entries(call), [&](const std::int64_t* first, const std::int64_t* last) {
        std::int64_t row = 0; // of which a kernel for 32 bits writes the lower half
        invoke(kernel, first, last, p[0], p[1], p[2], p[3], d, &row);
        if (row == 0) return;
        std::int64_t known = least.load(std::memory_order_relaxed);
        while (row < known && !least.compare_exchange_weak(known, row, std::memory_order_relaxed)) {
        }
    });
    if (least.load() != none) *missing = least.load() - 1 + base;
    return ORK_SPBLAS_SUCCESS;
}

std::int64_t gauss_sweep(Variant v, int base, std::int64_t m, std::int64_t backward, const void* omega, const Matrix& a,
                         const void* b, void* x)
{
    static constexpr Names names = {"csrgauss", "base m backward omega val indx pntrb pntre b x", "val", "indx",
                                    nullptr};
    const Call call = general(v, names, base, m, m, a);
    if (const auto status = check_rows(call, base)) return status;
    if (omega == nullptr) return null_argument(name_of(call), arguments_of(call), "omega");
    if (const auto status = check_array(call, "b", b)) return status;
    if (const auto status = check_array(call, "x", x)) return status;
    if (m == 0) return ORK_SPBLAS_SUCCESS;
    void* const kernel = kernel_of(gauss, call);
    const void* const* p = a.array;
    invoke(kernel, &call.m, &backward, omega, p[0], p[1], p[2], p[3], b, x);
    return ORK_SPBLAS_SUCCESS;
}

template <class Int>
std::int64_t split_matrix(Variant v, int base, std::int64_t m, const Matrix& a, const Triangles<Int>& p)
{
    static constexpr Names names = {"csrsplit", "base m val indx pntrb pntre lval lindx lpntr uval uindx upntr d",
                                    "val", "indx", nullptr};
    const Call call = general(v, names, base, m, m, a);
    if (const auto status = check_rows(call, base)) return status;
    if (const auto status = check_array(call, "lpntr", p.lpntr)) return status;
    if (const auto status = check_array(call, "upntr", p.upntr)) return status;
    if (m == 0) return ORK_SPBLAS_SUCCESS;
    void* const kernel = kernel_of(split, call);
    const double entries = stored_entries(call);
    const auto pass = [&](void* d) {
        for_slices(call, entries, [&](const std::int64_t* first, const std::int64_t* last) {
            invoke(kernel, first, last, a.array[0], a.array[1], a.array[2], a.array[3], p.lval, p.lindx, p.lpntr,
                   p.uval, p.uindx, p.upntr, d);
        });
    };
    pass(nullptr); // the numbers of entries
    p.lpntr[0] = p.upntr[0] = base;
    for (std::int64_t i = 0; i < m; ++i) {
        p.lpntr[i + 1] += p.lpntr[i];
        p.upntr[i + 1] += p.upntr[i];
    }
    if (p.d == nullptr) return ORK_SPBLAS_SUCCESS;
    const auto lacks = [&](const void* val, const void* indx, const Int* pntr) {
        return (val == nullptr || indx == nullptr) && pntr[m] != pntr[0];
    };
    const char* const lower = lacks(p.lval, p.lindx, p.lpntr) ? (p.lval ? "lindx" : "lval") : nullptr;
    const char* const upper = lacks(p.uval, p.uindx, p.upntr) ? (p.uval ? "uindx" : "uval") : nullptr;
    if (lower || upper) return null_argument(name_of(call), arguments_of(call), lower ? lower : upper);
    pass(p.d);
    return ORK_SPBLAS_SUCCESS;
}

template std::int64_t split_matrix(Variant, int, std::int64_t, const Matrix&, const Triangles<std::int32_t>&);
template std::int64_t split_matrix(Variant, int, std::int64_t, const Matrix&, const Triangles<std::int64_t>&);

} // namespace ork::spblas
