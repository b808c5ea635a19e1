// SPDX-License-Identifier: MIT
#include "sparse/mv_plan.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "ork/abi/services.h"
#include "sparse/environment.h"
#include "sparse/expand.h"
#include "sparse/handle.h"
#include "sparse/kernels.h"
#include "sparse/layout.h"
#include "spblas/call.h"

namespace ork::sparse {
namespace {

using Index = std::int64_t;
using Handles = HandleCalls<std::int64_t>;
constinit Kernels<2> convert_csr("convert_csr"), convert_bsr("convert_bsr");

// What an analysis takes, in products: filling a layout, and before it op(A) or what a kind stands for in rows.
constexpr double products_of_layout = 6, products_of_operation = 20, products_of_kind = 60;
// A layout that promises less is not worth the memory, nor the risk that the model is wrong.
constexpr double least_gain = 0.08;

struct Key {
    int op;
    ork_sparse_kind kind;
    bool operator==(const Key& k) const
    {
        return op == k.op && kind.type == k.kind.type && kind.uplo == k.kind.uplo && kind.diag == k.kind.diag;
    }
};

// Calls that mean the same have one key.
Key key_of(const Matrix& a, int op, ork_sparse_kind kind)
{
    if (!is_complex(a.precision)) {
        if (op == ORK_SPBLAS_CONJ) op = ORK_SPBLAS_NO_TRANS;
        if (op == ORK_SPBLAS_CONJ_TRANS) op = ORK_SPBLAS_TRANS;
    }
    const bool conjugates = op == ORK_SPBLAS_CONJ || op == ORK_SPBLAS_CONJ_TRANS;
    switch (kind.type) {
    case ORK_SPBLAS_SYMMETRIC:
    case ORK_SPBLAS_DIAGONAL:
        op = conjugates ? ORK_SPBLAS_CONJ : ORK_SPBLAS_NO_TRANS;
        break;
    case ORK_SPBLAS_HERMITIAN:
        op = transposes(op) != conjugates ? ORK_SPBLAS_CONJ : ORK_SPBLAS_NO_TRANS;
        break;
    default:
        break;
    }
    if (kind.type == ORK_SPBLAS_GENERAL || kind.type == ORK_SPBLAS_DIAGONAL) kind.uplo = {};
    if (kind.type == ORK_SPBLAS_GENERAL || kind.type == ORK_SPBLAS_SKEW) kind.diag = {};
    return {op, kind};
}

struct Plans {
    MvPlan* first;
};

void release_arrays(MvPlan& plan)
{
    destroy(plan.source);
    ork_serv_free(plan.memory);
    plan.source = nullptr, plan.memory = nullptr, plan.bytes = 0;
}

void release(void* data)
{
    Plans* const plans = static_cast<Plans*>(data);
    for (MvPlan* plan = plans->first; plan != nullptr;) {
        MvPlan* const next = plan->next;
        release_arrays(*plan);
        ork_serv_free(plan);
        plan = next;
    }
    ork_serv_free(plans);
}

// What a product costs without a plan, as layout.h counts.
double plain_cost(const Matrix& a, const Key& key, double rows)
{
    const double n = static_cast<double>(std::max(a.rows, a.cols)), nnz = static_cast<double>(a.entries);
    if (a.format == Format::coo) return 3 * nnz + n;
    if (key.kind.type == ORK_SPBLAS_GENERAL)
        return transposes(key.op) == (a.format == Format::csc) ? rows : 1.7 * nnz + 3 * n;
    if (key.kind.type == ORK_SPBLAS_TRIANGULAR) return 1.5 * nnz + 3 * n;
    if (key.kind.type == ORK_SPBLAS_DIAGONAL) return nnz + n;
    return 1.85 * nnz + 4 * n;
}

constexpr const char* name_of(Layout layout)
{
    switch (layout) {
    case Layout::rows:
        return "csr";
    case Layout::blocks:
        return "bsr";
    case Layout::slices:
        return "slices";
    default:
        return "diagonals";
    }
}

// op(A), general, in rows: `plan` is in Layout::rows or blocks afterwards. False without memory, or too_large where op
// and kind make more entries than the integers count.
bool convert(const Matrix& a, const Key& key, MvPlan& plan, bool& too_large)
{
    Matrix* rows = nullptr;
    int status;
    if (key.kind.type != ORK_SPBLAS_GENERAL)
        status = expand(a, key.kind, key.op, &rows);
    else if (a.format == Format::bsr && a.block > 1)
        status = convert_bsr.get<Handles::convert_bsr>(a)(&a, key.op - ORK_SPBLAS_NO_TRANS, a.block, a.layout, &rows);
    else
        status = convert_csr.get<Handles::convert_csr>(a)(&a, key.op - ORK_SPBLAS_NO_TRANS, 0, &rows);
    too_large = status == 2;
    if (status != 0) return false;
    if (!rows->distinct) rows->distinct = rows->sorted && a.distinct; // slices do without, diagonals do not
    as_it_stands(*rows, ORK_SPBLAS_NO_TRANS, {}, plan);
    plan.source = rows;
    plan.bytes = rows->entries * (rows->block * rows->block * element_size(a.precision) + a.index_bytes) +
                 (rows->rows + 1) * a.index_bytes;
    return true;
}

enum class Outcome { useful, useless, no_memory };

// Fills plan for its key and calls.
Outcome build(const Matrix& a, MvPlan& plan, Costs& costs)
{
    const Key key{plan.op, plan.kind};
    const double calls = plan.calls;
    const bool stands = as_it_stands(a, plan.op, plan.kind, plan);
    const double before = stands ? 0 : key.kind.type == ORK_SPBLAS_GENERAL ? products_of_operation : products_of_kind;
    if (!stands && (!may_copy(a) || calls < before)) return Outcome::useless;
    bool too_large = false;
    if (!stands && !convert(a, key, plan, too_large)) return too_large ? Outcome::useless : Outcome::no_memory;
    if (plan.layout == Layout::blocks || plan.entries == 0) return Outcome::useful;

    costs = costs_of(plan, stands ? a.distinct : plan.source->distinct);
    const double plain = stands ? costs.rows : plain_cost(a, key, costs.rows);
    const double slices = std::min(costs.slices4, costs.slices8), best = std::min(slices, costs.diagonals);
    const auto pays = [&](double cost, double products) {
        const double gain = 1 - cost / plain;
        return gain >= least_gain && gain * calls >= products;
    };
    if (may_copy(a) && best < costs.rows * (1 - least_gain) && pays(best, before + products_of_layout)) {
        const Index most = a.index_bytes == 4 ? INT32_MAX : INT64_MAX;
        const bool by_four = costs.slices4 < costs.slices8;
        bool done = true;
        if (best == costs.diagonals)
            done = into_diagonals(plan, costs);
        else if (const Index stored = by_four ? costs.stored4 : costs.stored8; stored <= most)
            done = into_slices(plan, by_four ? 4 : 8, stored);
        if (!done) {
            release_arrays(plan);
            return Outcome::no_memory;
        }
        if (plan.memory != nullptr) {
            destroy(plan.source);
            plan.source = nullptr;
            return Outcome::useful;
        }
    }
    if (stands || pays(costs.rows, before)) return Outcome::useful;
    release_arrays(plan);
    return Outcome::useless;
}

constexpr const char* operations[] = {"A", "A transposed", "A conjugate-transposed", "A conjugated"};
constexpr const char* types[] = {"", "symmetric ", "Hermitian ", "triangular ", "skew ", "diagonal "};

void tell(Analysis& analysis, const MvPlan& plan, const Costs& costs, bool first)
{
    ork_sparse_description& d = analysis.description;
    const double padding = plan.entries > 0 ? static_cast<double>(plan.stored) / static_cast<double>(plan.entries) : 1;
    d.bytes += plan.bytes;
    if (first) {
        std::strcpy(d.layout, name_of(plan.layout));
        d.slice_height = plan.layout == Layout::slices ? plan.height : 0;
        d.padding = padding;
    }
    const char *const type = types[plan.kind.type], *const op = operations[plan.op - ORK_SPBLAS_NO_TRANS];
    switch (plan.layout) {
    case Layout::slices:
        describe(analysis, "mv with %s%s: slices of %d rows, padded by %.1f %%, at %.2f of the cost of rows", type, op,
                 static_cast<int>(plan.height), 100 * (padding - 1),
                 std::min(costs.slices4, costs.slices8) / costs.rows);
        break;
    case Layout::diagonals:
        describe(analysis, "mv with %s%s: %d diagonals, padded by %.1f %%, at %.2f of the cost of rows", type, op,
                 static_cast<int>(plan.count), 100 * (padding - 1), costs.diagonals / costs.rows);
        break;
    case Layout::blocks:
        describe(analysis, "mv with %s%s: blocks of order %d%s", type, op, static_cast<int>(plan.block),
                 plan.source != nullptr ? ", a copy" : " as they stand");
        break;
    default:
        describe(analysis,
                 "mv with %s%s: rows%s; slices would take %.2f of their cost with padding of %.0f %%, diagonals %s",
                 type, op, plan.source != nullptr ? ", a copy" : " as they stand",
                 std::min(costs.slices4, costs.slices8) / costs.rows,
                 100 * (static_cast<double>(costs.stored8) / static_cast<double>(std::max<Index>(plan.entries, 1)) - 1),
                 costs.diagonal_count > 0 ? "more" : "are too many or unknown");
    }
}

// Values have changed in place: the copies are made anew.
bool refresh(const Matrix& a, void* data)
{
    for (MvPlan* plan = static_cast<Plans*>(data)->first; plan != nullptr; plan = plan->next) {
        if (plan->source == nullptr && plan->memory == nullptr) continue;
        release_arrays(*plan);
        Costs costs;
        if (build(a, *plan, costs) != Outcome::useful) return false;
    }
    return true;
}

// Adds a plan; false without memory.
bool add(const Matrix& a, Analysis& analysis, Plans& plans, const Key& key, double calls)
{
    for (const MvPlan* plan = plans.first; plan != nullptr; plan = plan->next)
        if (Key{plan->op, plan->kind} == key) return true;
    void* const memory = ork_serv_malloc(sizeof(MvPlan), 64);
    if (memory == nullptr) return false;
    MvPlan* const plan = new (memory) MvPlan{};
    plan->op = key.op, plan->kind = key.kind, plan->calls = calls;
    Costs costs{1, 1, 1, 1, 0, 0, 0, {}}; // of what has no other layout
    const Outcome outcome = build(a, *plan, costs);
    if (outcome != Outcome::useful) {
        ork_serv_free(plan);
        return outcome == Outcome::useless;
    }
    tell(analysis, *plan, costs, plans.first == nullptr);
    MvPlan** last = &plans.first; // what was asked for first is found first
    while (*last != nullptr) last = &(*last)->next;
    *last = plan;
    return true;
}

} // namespace

bool as_it_stands(const Matrix& a, int op, const ork_sparse_kind& kind, MvPlan& plan)
{
    const bool plain = op == ORK_SPBLAS_NO_TRANS || (op == ORK_SPBLAS_CONJ && !is_complex(a.precision));
    if (!plain || kind.type != ORK_SPBLAS_GENERAL || !a.one_pointer_array()) return false;
    if (a.format != Format::csr && a.format != Format::bsr) return false;
    plan.layout = a.block > 1 ? Layout::blocks : Layout::rows;
    plan.precision = a.precision, plan.index_bytes = a.index_bytes;
    plan.base = a.base, plan.block_layout = a.layout;
    plan.rows = a.rows, plan.columns = a.cols, plan.block = a.block;
    plan.entries = plan.stored = a.entries * a.block * a.block;
    plan.height = plan.count = 0;
    const Index before = a.rows > 0 ? spblas::Integers(a.first, a.index_bytes == 8)[0] - a.base : 0;
    plan.vals = static_cast<const char*>(a.values) + before * a.block * a.block * element_size(a.precision);
    plan.cols = static_cast<const char*>(a.index) + before * a.index_bytes;
    plan.pointers = a.first;
    return true;
}

const MvPlan* mv_plan(const Matrix& a, int op, const ork_sparse_kind& kind)
{
    const Analysis* const analysis = analysis_of(a);
    const Plans* const plans = analysis != nullptr ? analysis->mv.get<Plans>() : nullptr;
    if (plans == nullptr) return nullptr;
    const Key key = key_of(a, op, kind);
    for (const MvPlan* plan = plans->first; plan != nullptr; plan = plan->next)
        if (Key{plan->op, plan->kind} == key) return plan;
    return nullptr;
}

std::int64_t analyse_mv(Matrix& a, Analysis& analysis)
{
    analysis.mv.clear();
    void* const memory = ork_serv_malloc(sizeof(Plans), 16);
    if (memory == nullptr) return ORK_SPARSE_NO_MEMORY;
    Plans* const plans = new (memory) Plans{};
    analysis.mv.set(plans, release, refresh);
    bool hinted = false, done = true;
    for (const Hint* hint = a.hints; hint != a.hints + a.hint_count && done; ++hint) {
        if (hint->task != Task::mv && hint->task != Task::dotmv) continue;
        hinted = true;
        const ork_sparse_kind kind{static_cast<ork_spblas_type>(hint->type), static_cast<ork_spblas_uplo>(hint->uplo),
                                   static_cast<ork_spblas_diag>(hint->diag)};
        done = add(a, analysis, *plans, key_of(a, hint->op, kind), static_cast<double>(hint->calls));
    }
    if (!hinted && a.hint_count == 0)
        done = add(a, analysis, *plans, key_of(a, ORK_SPBLAS_NO_TRANS, {}), static_cast<double>(environment().calls));
    if (done) return ORK_SPARSE_SUCCESS;
    analysis.mv.clear();
    return ORK_SPARSE_NO_MEMORY;
}

} // namespace ork::sparse
