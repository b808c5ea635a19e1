// SPDX-License-Identifier: MIT
// C = alpha op(A) B + beta C. Rows of compressed rows or blocks are what threads divide and what is fastest, so an
// analysis keeps op(A) in that form where A is not.
#include <algorithm>
#include <new>

#include "export.h"
#include "ork/abi/services.h"
#include "sparse/analysis.h"
#include "sparse/handle.h"
#include "sparse/kernels.h"
#include "sparse/plain.h"
#include "spblas/drivers.h"

namespace ork::sparse {
namespace {

using Handles = HandleCalls<std::int64_t>;
constinit Kernels<2> convert_csr("convert_csr"), convert_bsr("convert_bsr");

// op(A) of a general matrix, with blocks in `layout`.
struct Plan {
    int op, layout;
    Matrix* rows;
};
void release(void* data)
{
    destroy(static_cast<Plan*>(data)->rows);
    ork_serv_free(data);
}

struct Product {
    int op;
    ork_sparse_kind kind;
    int layout;
    std::int64_t columns;
    const void *alpha, *b;
    std::int64_t ldb;
    const void* beta;
    void* c;
    std::int64_t ldc;
};

std::int64_t multiply(const Routine& r, const Matrix& a, const Product& p)
{
    PlainCall plain(a, spblas::Routine::mmout, p.op, p.kind, p.layout);
    if (!plain.has_memory()) return no_memory(r);
    spblas::Call& call = plain.call;
    call.nrhs = p.columns;
    call.alpha = p.alpha, call.beta = p.beta;
    call.b = p.b, call.ldb = p.ldb;
    call.c = p.c, call.ldc = p.ldc;
    return told_as(r, spblas::mm(call));
}

const Plan* plan_for(const Matrix& a, const Product& p)
{
    const Analysis* const analysis = analysis_of(a);
    const Plan* const plan = analysis != nullptr ? analysis->mm.get<Plan>() : nullptr;
    const bool fits = plan != nullptr && plan->op == p.op && p.kind.type == ORK_SPBLAS_GENERAL &&
                      (plan->rows->block == 1 || plan->layout == p.layout);
    return fits ? plan : nullptr;
}

[[gnu::noinline]] std::int64_t multiply(const Routine& r, ork_sparse_matrix_t handle, Product p)
{
    Checks check(r);
    check.operation("op", p.op);
    check.given("alpha", p.alpha);
    const Matrix* const a = check.handle("a", handle);
    check.kind("kind", p.kind, a);
    check.layout("layout", p.layout);
    if (check.failed()) return check.status();
    const bool across = transposes(p.op);
    check.given("b", p.b, p.columns > 0 && (across ? rows_of(*a) : cols_of(*a)) > 0);
    check.at_least("columns", p.columns, 0);
    check.dense("b", p.b, "ldb", p.ldb, p.layout, across ? rows_of(*a) : cols_of(*a), p.columns);
    check.given("beta", p.beta);
    check.dense("c", p.c, "ldc", p.ldc, p.layout, across ? cols_of(*a) : rows_of(*a), p.columns);
    if (check.failed()) return check.status();
    // A single column without gaps is the same in both layouts; kernels add its rows in registers in column-major only.
    if (p.columns == 1 && p.ldb == 1 && p.ldc == 1 && a->block == 1) {
        p.layout = ORK_SPBLAS_COL_MAJOR;
        p.ldb = p.ldc = std::max({a->rows, a->cols, std::int64_t{1}});
    }
    if (const Plan* plan = plan_for(*a, p)) {
        p.op = ORK_SPBLAS_NO_TRANS;
        return multiply(r, *plan->rows, p);
    }
    return multiply(r, *a, p);
}

// A as it is has its rows together, in the layout of the dense matrices.
bool is_fine(const Matrix& a, const Hint& hint)
{
    if (hint.op == ORK_SPBLAS_TRANS || hint.op == ORK_SPBLAS_CONJ_TRANS) return false;
    const int layout = a.layout == 0 ? ORK_SPBLAS_ROW_MAJOR : ORK_SPBLAS_COL_MAJOR;
    return a.format == Format::csr || (a.format == Format::bsr && (a.block == 1 || layout == hint.layout));
}

// A conversion takes about as long as a product with ten columns.
const Hint* hint_for_copy(const Matrix& a)
{
    const Hint* best = nullptr;
    double most = 20;
    for (const Hint* hint = a.hints; hint != a.hints + a.hint_count; ++hint) {
        const double columns = static_cast<double>(hint->calls) * static_cast<double>(hint->columns);
        if (hint->task != Task::mm || hint->type != ORK_SPBLAS_GENERAL || is_fine(a, *hint) || !(columns > most))
            continue;
        best = hint;
        most = columns;
    }
    return best;
}

} // namespace

std::int64_t analyse_mm(Matrix& a, Analysis& analysis)
{
    const Hint* const hint = may_copy(a) ? hint_for_copy(a) : nullptr;
    analysis.mm.clear();
    if (hint == nullptr) return ORK_SPARSE_SUCCESS;
    const int op = hint->op - ORK_SPBLAS_NO_TRANS;
    Matrix* rows = nullptr;
    const int status =
        a.format == Format::bsr
            ? convert_bsr.get<Handles::convert_bsr>(a)(&a, op, a.block, hint->layout == ORK_SPBLAS_COL_MAJOR, &rows)
            : convert_csr.get<Handles::convert_csr>(a)(&a, op, 0, &rows);
    void* const memory = rows != nullptr ? ork_serv_malloc(sizeof(Plan), 16) : nullptr;
    if (memory == nullptr) {
        destroy(rows);
        return status == 2 ? ORK_SPARSE_SUCCESS : ORK_SPARSE_NO_MEMORY; // 2: too large; works without
    }
    analysis.mm.set(new (memory) Plan{hint->op, hint->layout, rows}, release);
    analysis.description.bytes +=
        rows->entries * (rows->block * rows->block * element_size(a.precision) + a.index_bytes);
    describe(analysis, "mm: %s of op(A) in rows, since %lld calls are expected",
             rows->block > 1 ? "a copy in blocks" : "a copy", static_cast<long long>(hint->calls));
    return ORK_SPARSE_SUCCESS;
}

} // namespace ork::sparse

using namespace ork::sparse;

#define MEMBER(letter, Element, Scalar)                                                                                \
    ORK_EXPORT int64_t ork_sparse_##letter##_mm(ork_spblas_operation op, Scalar alpha, ork_sparse_matrix_t a,          \
                                                ork_sparse_kind kind, ork_spblas_layout layout, const Element* b,      \
                                                int64_t columns, int64_t ldb, Scalar beta, Element* c, int64_t ldc)    \
    {                                                                                                                  \
        return multiply({"mm", "op alpha a kind layout b columns ldb beta c ldc", #letter[0]}, a,                      \
                        {op, kind, layout, columns, address(alpha), b, ldb, address(beta), c, ldc});                   \
    }
ORK_SPARSE_PRECISIONS(MEMBER)
