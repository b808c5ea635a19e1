// SPDX-License-Identifier: MIT
#include "sparse/solve_plan.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>
#include <utility>

#include "ork/abi/services.h"
#include "sparse/analysis.h"
#include "sparse/handle.h"
#include "sparse/kernels.h"

namespace ork::sparse {
namespace {

constexpr std::int64_t far_bytes = 8 << 20;
// Padding costs what entries cost, of which the registers of a slice save about half; from memory little.
constexpr double most_padding = 1.5, most_padding_far = 1.3;
// Entries, and two for each row: shorter work is done before another thread is awake.
constexpr std::int64_t least_for_threads = 400'000;
constexpr int most_threads = 8;

// A diagonal whose inverse has all digits and is finite.
bool invert(float d, float& inverse)
{
    inverse = 1 / d;
    return std::isnormal(inverse) && std::isnormal(d);
}
bool invert(double d, double& inverse)
{
    inverse = 1 / d;
    return std::isnormal(inverse) && std::isnormal(d);
}
// Smith's division: no square can overflow.
template <class R>
bool invert(std::complex<R> d, std::complex<R>& inverse)
{
    const R re = d.real(), im = d.imag();
    const R large = std::max(std::fabs(re), std::fabs(im));
    if (!std::isnormal(large) || !std::isnormal(R(1) / large) || re != re || im != im) return false;
    if (std::fabs(re) >= std::fabs(im)) {
        const R r = im / re, size = re + im * r;
        inverse = {1 / size, -r / size};
    } else {
        const R r = re / im, size = im + re * r;
        inverse = {r / size, -1 / size};
    }
    return true;
}

template <class Int>
class Middle {
public:
    explicit Middle(std::int64_t rows) : memory_(ork_serv_malloc(static_cast<std::size_t>(rows + 1) * sizeof(Int), 64))
    {
    }
    ~Middle() { ork_serv_free(memory_); }
    Middle(const Middle&) = delete;
    Middle& operator=(const Middle&) = delete;
    Int* get() const { return static_cast<Int*>(memory_); }

private:
    void* memory_;
};

// Slices of `height` rows in the order of a plan.
template <class Int>
class Packer {
public:
    Packer(const SolveRows<Int>& rows, const SolvePlan& plan)
        : rows_(rows), slices_(plan.packed.slices), height_(plan.packed.height),
          order_(reinterpret_cast<const Int*>(plan.packed.order)), from_far_(!plan.key.whole)
    {
    }

    // Numbers of a packed triangle, and where its slices begin; -1 when there are more than the integers count. Adds
    // the triangle's entries, those of rows that are repeated too, to `entries`.
    std::int64_t begin(bool upper, Int* begin, std::int64_t& entries) const
    {
        std::int64_t stored = 0;
        for (std::int64_t s = 0; s < slices_; ++s) {
            std::int64_t width = 0;
            for (std::int64_t l = 0; l < height_; ++l) {
                const std::int64_t count = rows_.side(upper, order_[s * height_ + l]).size();
                width = std::max(width, count);
                entries += count;
            }
            begin[s] = static_cast<Int>(stored);
            stored += width * height_;
            if (stored > (sizeof(Int) == 4 ? INT32_MAX : INT64_MAX)) return -1;
        }
        begin[slices_] = static_cast<Int>(stored);
        return stored;
    }

    // Copies the triangles that there are and the diagonal, if wanted, row by row; false when a row has not one
    // diagonal entry. E is anything of the numbers' size.
    template <class E>
    bool fill(const Matrix& a, const SolvePlan& plan, E* diagonal) const
    {
        const E* const values = static_cast<const E*>(a.values);
        bool right = true;
        for (std::int64_t s = 0; s < slices_; ++s) {
            fetch_rows(s, values);
            if (plan.packed.lower.vals != nullptr) fill_slice(s, false, values, plan.packed.lower);
            if (plan.packed.upper.vals != nullptr) fill_slice(s, true, values, plan.packed.upper);
            for (std::int64_t p = s * height_; diagonal != nullptr && p < (s + 1) * height_; ++p) {
                const auto range = rows_.diagonal(order_[p]);
                right &= range.size() == 1;
                diagonal[p] = range.size() == 1 ? values[range.begin] : E{};
            }
        }
        return right;
    }

private:
    // What slices ahead will copy: rows that follow each other in a slice's order stand apart.
    template <class E>
    void fetch_rows(std::int64_t s, const E* values) const
    {
        constexpr std::int64_t ahead = 8;
        if (s + 2 * ahead >= slices_) return;
        for (std::int64_t l = 0; l < height_; ++l) {
            const std::int64_t later = order_[(s + 2 * ahead) * height_ + l], soon = order_[(s + ahead) * height_ + l];
            __builtin_prefetch(rows_.first + later), __builtin_prefetch(rows_.last + later);
            __builtin_prefetch(rows_.middle + later);
            __builtin_prefetch(values + rows_.middle[soon]), __builtin_prefetch(rows_.index + rows_.middle[soon]);
        }
    }

    template <class E>
    void fill_slice(std::int64_t s, bool upper, const E* values, const PackedTriangle<std::int64_t, double>& t) const
    {
        const Int* const begin = reinterpret_cast<const Int*>(t.begin);
        E* const vals = reinterpret_cast<E*>(const_cast<double*>(t.vals));
        Int* const cols = reinterpret_cast<Int*>(const_cast<std::int64_t*>(t.cols));
        const std::int64_t at = begin[s], end = begin[s + 1];
        Int any = 0; // a column of the slice, for rows that have none
        bool none = false;
        for (std::int64_t l = 0; l < height_; ++l) {
            const auto range = rows_.side(upper, order_[s * height_ + l]);
            std::int64_t to = at + l;
            const std::int64_t step = upper && from_far_ ? -1 : 1;
            for (std::int64_t k = step < 0 ? range.end - 1 : range.begin; to < at + l + range.size() * height_;
                 k += step, to += height_)
                vals[to] = values[k], cols[to] = static_cast<Int>(rows_.column(k));
            if (range.size() > 0)
                any = cols[at + l];
            else
                none = true;
            for (; to < end; to += height_) vals[to] = E{}, cols[to] = cols[at + l];
        }
        if (!none || at == end) return;
        for (std::int64_t l = 0; l < height_; ++l)
            if (rows_.side(upper, order_[s * height_ + l]).size() == 0)
                for (std::int64_t to = at + l; to < end; to += height_) cols[to] = any;
    }

    const SolveRows<Int>& rows_;
    const std::int64_t slices_, height_;
    const Int* order_;
    // Of a triangle alone the entries towards the diagonal come last: of rows in turn they have just been solved.
    const bool from_far_;
};

bool takes_unit(const SolveKey& key) { return !key.whole && key.kind.diag == ORK_SPBLAS_UNIT; }

template <class Int>
Planned fill_plan(const Matrix& a, const SolveRows<Int>& rows, SolvePlan& plan)
{
    struct Wide {
        std::uint64_t half[2];
    };
    const Packer<Int> packer(rows, plan);
    const double* const diagonal = plan.packed.diagonal != nullptr ? plan.packed.diagonal : plan.packed.inverse;
    const auto fill = [&](auto element) {
        return packer.fill(a, plan, reinterpret_cast<decltype(element)*>(const_cast<double*>(diagonal)));
    };
    const std::int64_t size = element_size(a.precision);
    const bool right = size == 4 ? fill(std::uint32_t{}) : size == 8 ? fill(std::uint64_t{}) : fill(Wide{});
    if (plan.packed.inverse == nullptr) return Planned::done;
    if (!right) return Planned::diagonal;
    return with_type(a.precision, [&](auto t) {
        const auto* const d = reinterpret_cast<const decltype(t)*>(diagonal);
        auto* const inverse = reinterpret_cast<decltype(t)*>(const_cast<double*>(plan.packed.inverse));
        for (std::int64_t p = 0; p < plan.lanes(); ++p)
            if (!invert(d[p], inverse[p])) return Planned::diagonal;
        return Planned::done;
    });
}

// Takes the memory of a plan whose order is known, and fills it.
template <class Int>
Planned pack(const Matrix& a, const SolveRows<Int>& rows, const Schedule<Int>& schedule, int height, SolvePlan& plan)
{
    const std::int64_t n = a.rows, slices = height == 1 ? n : schedule.slices, lanes = slices * height;
    plan.packed.slices = slices, plan.packed.height = height;
    plan.rows = n, plan.chunks = schedule.chunks, plan.threads = schedule.threads;
    const int triangles = plan.key.whole ? 2 : 1;
    const auto size = [](std::int64_t count, std::size_t element) {
        return (static_cast<std::size_t>(count) * element + 63) / 64 * 64;
    };
    // The order, and where slices begin, have to be known before the sizes of the rest.
    const std::size_t order_bytes = size(lanes, sizeof(Int)), begin_bytes = size(slices + 1, sizeof(Int)),
                      chunk_bytes = size(schedule.chunks + 1, 8);
    char* const head = static_cast<char*>(ork_serv_malloc(order_bytes + triangles * begin_bytes + chunk_bytes, 64));
    if (head == nullptr) return Planned::no_memory;
    plan.memory = head;
    Int* const order = reinterpret_cast<Int*>(head);
    const bool reversed = plan.upper && !plan.key.whole;
    for (std::int64_t s = 0; s < slices; ++s)
        for (int l = 0; l < height; ++l)
            order[s * height + l] =
                height == 1 ? static_cast<Int>(s) : schedule.order[(reversed ? slices - 1 - s : s) * height + l];
    auto* const chunk_begin = reinterpret_cast<std::int64_t*>(head + order_bytes + triangles * begin_bytes);
    for (std::int64_t c = 0; c <= plan.chunks; ++c)
        chunk_begin[c] = height == 1 ? c * slices
                         : reversed  ? slices - schedule.chunk_begin[plan.chunks - c]
                                     : schedule.chunk_begin[c];
    plan.chunk_begin = chunk_begin;
    plan.packed.order = reinterpret_cast<std::int64_t*>(order);

    const Packer<Int> packer(rows, plan);
    std::int64_t stored[2] = {}, entries = 0;
    for (int t = 0; t < triangles; ++t) {
        Int* const begin = reinterpret_cast<Int*>(head + order_bytes + t * begin_bytes);
        const bool upper = plan.key.whole ? t == 1 : plan.upper;
        stored[t] = packer.begin(upper, begin, entries);
        if (stored[t] < 0) return Planned::useless;
        (upper ? plan.packed.upper : plan.packed.lower).begin = reinterpret_cast<std::int64_t*>(begin);
    }
    plan.padding = entries > 0 ? static_cast<double>(stored[0] + stored[1]) / static_cast<double>(entries) : 1;
    const bool far = (stored[0] + stored[1]) * (element_size(a.precision) + std::int64_t{sizeof(Int)}) > far_bytes;
    if (plan.padding > (far ? most_padding_far : most_padding)) return Planned::useless;
    const auto number = static_cast<std::size_t>(element_size(a.precision));
    const std::size_t vals_bytes = size(stored[0], number) + size(stored[1], number);
    const std::size_t cols_bytes = size(stored[0], sizeof(Int)) + size(stored[1], sizeof(Int));
    const std::size_t lane_bytes = size(lanes, number);
    char* at = static_cast<char*>(ork_serv_malloc(vals_bytes + cols_bytes + 2 * lane_bytes, 64));
    if (at == nullptr) return Planned::no_memory;
    plan.values_memory = at;
    const auto take = [&](std::size_t bytes) { return std::exchange(at, at + bytes); };
    for (int t = 0; t < triangles; ++t) {
        auto& triangle = (plan.key.whole ? t == 1 : plan.upper) ? plan.packed.upper : plan.packed.lower;
        triangle.vals = reinterpret_cast<double*>(take(size(stored[t], number)));
        triangle.cols = reinterpret_cast<std::int64_t*>(take(size(stored[t], sizeof(Int))));
    }
    plan.packed.inverse = takes_unit(plan.key) ? nullptr : reinterpret_cast<double*>(take(lane_bytes));
    plan.packed.diagonal = plan.key.whole ? reinterpret_cast<double*>(take(lane_bytes)) : nullptr;
    plan.bytes = static_cast<std::int64_t>(order_bytes + triangles * begin_bytes + chunk_bytes + vals_bytes +
                                           cols_bytes + 2 * lane_bytes);
    plan.packed.far = plan.bytes > far_bytes;
    return fill_plan(a, rows, plan);
}

void release_memory(SolvePlan& plan)
{
    ork_serv_free(plan.memory);
    ork_serv_free(plan.values_memory);
    plan.memory = plan.values_memory = nullptr;
}

// Slices where enough rows are free at a time, for threads where that helps; otherwise rows as they follow each other.
template <class Int>
Planned make(const Matrix& rows, bool lasting, SolvePlan& plan)
{
    const Middle<Int> middle(rows.rows);
    if (middle.get() == nullptr) return Planned::no_memory;
    const SolveRows<Int> view(rows, middle.get());
    const Triangle triangle = plan.key.whole ? Triangle::both : plan.upper ? Triangle::upper : Triangle::lower;
    const auto packed = [&](const Schedule<Int>& schedule, int height) {
        return pack(rows, view, schedule, height, plan);
    };
    int threads = rows.entries + 2 * rows.rows >= least_for_threads ? std::min(threads::limit(), most_threads) : 1;
    while (lasting) {
        Schedule<Int> schedule;
        const Found found = find_schedule(view, triangle, threads, schedule);
        if (found == Found::no_memory) return Planned::no_memory;
        if (found == Found::schedule) {
            const Planned status = packed(schedule, slice_height);
            if (status != Planned::useless) return status;
            release_memory(plan);
            break;
        }
        if (threads == 1) break;
        threads = 1;
    }
    Schedule<Int> in_turn;
    in_turn.chunks = 1;
    return packed(in_turn, 1);
}

template <class Int>
bool refill(const Matrix& rows, SolvePlan& plan)
{
    const Middle<Int> middle(rows.rows);
    return middle.get() != nullptr && fill_plan(rows, SolveRows<Int>(rows, middle.get()), plan) == Planned::done;
}

struct Plans {
    SolvePlan* first;
};
void release_plans(void* data)
{
    auto* const plans = static_cast<Plans*>(data);
    for (SolvePlan* plan = plans->first; plan != nullptr;) release_plan(std::exchange(plan, plan->next));
    ork_serv_free(plans);
}
bool refresh_plans(const Matrix& a, void* data)
{
    for (SolvePlan* plan = static_cast<Plans*>(data)->first; plan != nullptr; plan = plan->next)
        if (!refresh_plan(a, *plan)) return false;
    return true;
}

// The matrix of a hint; false where there is nothing to plan.
bool wants_plan(const Matrix& a, const Hint& hint)
{
    const bool whole = hint.task == Task::symgs || hint.task == Task::lu_smoother;
    if (hint.task != Task::sv && !whole) return false;
    if (hint.task == Task::lu_smoother && a.format == Format::bsr && a.block > 1) return false;
    return hint.calls > 0 && a.rows == a.cols && (whole || hint.type == ORK_SPBLAS_TRIANGULAR);
}

constexpr const char* names[] = {"sv", "symgs"};

std::int64_t add_plan(Matrix& a, Analysis& analysis, Plans& plans, const SolveKey& key, std::int64_t calls)
{
    for (const SolvePlan* plan = plans.first; plan != nullptr; plan = plan->next)
        if (plan->key == key) return ORK_SPARSE_SUCCESS;
    // A schedule pays where it saves half a solve each time.
    constexpr std::int64_t least_calls = 20;
    SolvePlan* plan = nullptr;
    const char* const name = names[key.whole];
    switch (make_plan(a, key, calls >= least_calls, plan)) {
    case Planned::no_memory:
        return ORK_SPARSE_NO_MEMORY;
    case Planned::done:
        break;
    default:
        describe(analysis, "%s: not analysed, for a diagonal that is missing, repeated, 0 or cannot be inverted", name);
        return ORK_SPARSE_SUCCESS;
    }
    plan->next = std::exchange(plans.first, plan);
    analysis.description.bytes += plan->bytes;
    if (plan->packed.height == 1)
        describe(analysis, "%s: rows in turn, %s", name,
                 calls >= least_calls ? "since too few can be solved at a time" : "since few calls are expected");
    else
        describe(analysis, "%s: four independent rows at a time, %.2f numbers for each entry, for %d thread%s", name,
                 plan->padding, plan->threads, plan->threads == 1 ? "" : "s");
    return ORK_SPARSE_SUCCESS;
}

} // namespace

SolveKey solve_key(const Matrix& a, int op, ork_sparse_kind kind, bool whole)
{
    if (!is_complex(a.precision)) op = transposes(op) ? ORK_SPBLAS_TRANS : ORK_SPBLAS_NO_TRANS;
    if (kind.type == ORK_SPBLAS_GENERAL) kind.uplo = {};
    if (kind.type == ORK_SPBLAS_GENERAL || kind.type == ORK_SPBLAS_SKEW) kind.diag = {};
    if (kind.type == ORK_SPBLAS_SYMMETRIC && op == ORK_SPBLAS_TRANS) op = ORK_SPBLAS_NO_TRANS;
    return {op, kind, whole};
}

Planned make_plan(const Matrix& a, const SolveKey& key, bool lasting, SolvePlan*& result)
{
    const InRows rows(a, key.op, key.kind, key.whole, true);
    void* const memory = rows.get() != nullptr ? ork_serv_malloc(sizeof(SolvePlan), 64) : nullptr;
    if (memory == nullptr) return Planned::no_memory;
    auto* const plan = new (memory) SolvePlan{};
    plan->key = key;
    plan->upper = rows.is_upper();
    const Planned status = a.index_bytes == 4 ? make<std::int32_t>(*rows.get(), lasting, *plan)
                                              : make<std::int64_t>(*rows.get(), lasting, *plan);
    if (status == Planned::done)
        result = plan;
    else
        release_plan(plan);
    return status;
}

void release_plan(SolvePlan* plan)
{
    release_memory(*plan);
    ork_serv_free(plan);
}

bool refresh_plan(const Matrix& a, SolvePlan& plan)
{
    const InRows rows(a, plan.key.op, plan.key.kind, plan.key.whole, true);
    if (rows.get() == nullptr) return false;
    return a.index_bytes == 4 ? refill<std::int32_t>(*rows.get(), plan) : refill<std::int64_t>(*rows.get(), plan);
}

const SolvePlan* find_plan(const Matrix& a, const SolveKey& key)
{
    const Analysis* const analysis = analysis_of(a);
    const Plans* const plans = analysis != nullptr ? analysis->solve.get<Plans>() : nullptr;
    for (const SolvePlan* plan = plans != nullptr ? plans->first : nullptr; plan != nullptr; plan = plan->next)
        if (plan->key == key) return plan;
    return nullptr;
}

std::int64_t analyse_solve(Matrix& a, Analysis& analysis)
{
    analysis.solve.clear();
    if (!may_copy(a)) return ORK_SPARSE_SUCCESS;
    for (const Hint* hint = a.hints; hint != a.hints + a.hint_count; ++hint) {
        if (!wants_plan(a, *hint)) continue;
        if (analysis.solve.get<Plans>() == nullptr) {
            void* const memory = ork_serv_calloc(1, sizeof(Plans), 16, 0);
            if (memory == nullptr) return ORK_SPARSE_NO_MEMORY;
            analysis.solve.set(memory, release_plans, refresh_plans);
        }
        const ork_sparse_kind kind = {static_cast<ork_spblas_type>(hint->type),
                                      static_cast<ork_spblas_uplo>(hint->uplo),
                                      static_cast<ork_spblas_diag>(hint->diag)};
        const SolveKey key = solve_key(a, hint->op, kind, hint->task != Task::sv);
        if (const auto status = add_plan(a, analysis, *analysis.solve.get<Plans>(), key, hint->calls)) {
            analysis.solve.clear();
            return status;
        }
    }
    return ORK_SPARSE_SUCCESS;
}

} // namespace ork::sparse
