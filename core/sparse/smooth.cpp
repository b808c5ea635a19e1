// SPDX-License-Identifier: MIT
// Steps of symmetric Gauss-Seidel, of given factors and of successive over-relaxation. Compressed rows work as they
// are; what is something else, or stands for something else, and was not analysed is packed for the time of the call.
#include <cstring>

#include "export.h"
#include "ork/abi/services.h"
#include "sparse/handle.h"
#include "sparse/kernels.h"
#include "sparse/plain.h"
#include "sparse/solve_checks.h"
#include "sparse/solve_plan.h"
#include "spblas/drivers.h"
#include "spblas/vectors.h"

namespace ork::sparse {
namespace {

using Int = std::int64_t;
template <class T>
using Call = SolveCalls<Int, T>;

constinit Kernels<8> symgs_phases("mv_symgs_ker"), symgs_rows("csr__g_n_symgs_def"),
    symgs_mv_rows("csr__g_n_symgs_mv_def"), lu_phases("csr_lu_smoother_opt_ker"), lu_rows("csr_lu_smoother_def_ker"),
    lu_lower_blocks("bsr_ng_lu_smoother_lower_solve_def"), lu_upper_blocks("bsr_ng_lu_smoother_upper_solve_def"),
    sor_rows("csr_seq_fw_sor_def"), sor_triangle("csr_seq_sym_u_full_fw_sor");

const Int* ints(const void* array) { return static_cast<const Int*>(array); }

// Memory for `count` numbers, for the time of a call.
class Work {
public:
    Work(const Matrix& a, std::int64_t count)
        : memory_(ork_serv_allocate(static_cast<std::size_t>(count * element_size(a.precision)) + 64, 64))
    {
    }
    ~Work() { ork_serv_deallocate(memory_); }
    Work(const Work&) = delete;
    Work& operator=(const Work&) = delete;
    void* get() const { return memory_; }

private:
    void* memory_;
};

// The plan of an analysis, or one for the time of the call.
class Planning {
public:
    Planning(const Routine& r, const Matrix& a, const SolveKey& key) : plan_(find_plan(a, key))
    {
        if (plan_ != nullptr) return;
        switch (make_plan(a, key, false, own_)) {
        case Planned::done:
            plan_ = own_;
            break;
        case Planned::no_memory:
            status_ = no_memory(r);
            break;
        case Planned::diagonal:
            status_ = check_diagonal(r, a);
            if (status_ == ORK_SPARSE_SUCCESS)
                status_ = wrong_structure(r, {"a", -1, 0, "row", -1}, "the diagonal has no inverse");
            break;
        case Planned::useless:
            status_ = not_supported(r, "a", 0, "it has more entries than its integers count");
        }
    }
    ~Planning()
    {
        if (own_ != nullptr) release_plan(own_);
    }
    Planning(const Planning&) = delete;
    Planning& operator=(const Planning&) = delete;
    std::int64_t status() const { return status_; }
    const SolvePlan& plan() const { return *plan_; }

private:
    const SolvePlan* plan_;
    SolvePlan* own_ = nullptr;
    std::int64_t status_ = ORK_SPARSE_SUCCESS;
};

bool all_zero(const void* values, std::int64_t bytes)
{
    const char* const p = static_cast<const char*>(values);
    std::int64_t word = 0;
    std::int64_t i = 0;
    for (; i + 8 <= bytes; i += 8) {
        std::memcpy(&word, p + i, 8);
        if (word != 0) return false;
    }
    for (; i < bytes; ++i)
        if (p[i] != 0) return false;
    return true;
}

struct Step {
    int op;
    ork_sparse_kind kind;
    const void *alpha, *b;
    void *x, *y; // no product: null
};

std::int64_t symgs_planned(const Routine& r, const Matrix& a, const Step& s, bool from_zero)
{
    const Planning planning(r, a, solve_key(a, s.op, s.kind, true));
    if (planning.status() != ORK_SPARSE_SUCCESS) return planning.status();
    const SolvePlan& plan = planning.plan();
    const Work rest(a, plan.lanes());
    if (rest.get() == nullptr) return no_memory(r);
    with_type(a.precision, [&](auto t) {
        using T = decltype(t);
        auto* const kernel = symgs_phases.get<typename Call<T>::mv_symgs_ker>(a);
        const auto phase = [&](Phase phase, Direction direction) {
            run_shares(plan, direction, [&](std::int64_t first, std::int64_t last, int) {
                kernel(phase, first, last, plan.as<Int, T>(), *static_cast<const T*>(s.alpha),
                       static_cast<const T*>(s.b), static_cast<T*>(s.x), static_cast<T*>(rest.get()),
                       static_cast<T*>(s.y));
            });
        };
        phase(from_zero ? phase_from_zero : phase_forward, Direction::ascending);
        phase(phase_backward, Direction::descending);
        if (s.y != nullptr) phase(phase_product, Direction::free);
    });
    return ORK_SPARSE_SUCCESS;
}

[[gnu::noinline]] std::int64_t symgs(const Routine& r, ork_sparse_matrix_t handle, const Step& s, bool product)
{
    Checks check(r);
    check.operation("op", s.op);
    const Matrix* const a = check.handle("a", handle);
    check.kind("kind", s.kind, a);
    if (!check.failed()) check.square("a", a);
    check.given("alpha", s.alpha);
    if (check.failed()) return check.status();
    const std::int64_t n = rows_of(*a);
    check.given("b", s.b, n > 0);
    check.given("x", s.x, n > 0);
    check.given("y", s.y, product && n > 0);
    if (check.failed()) return check.status();
    if (n == 0) return ORK_SPARSE_SUCCESS;
    const bool from_zero = all_zero(s.x, n * element_size(a->precision));
    if (!InRows::stands(*a, s.op, s.kind, true) || find_plan(*a, solve_key(*a, s.op, s.kind, true)) != nullptr)
        return symgs_planned(r, *a, s, from_zero);
    if (const auto status = check_diagonal(r, *a)) return status;
    with_type(a->precision, [&](auto t) {
        using T = decltype(t);
        const T alpha = *static_cast<const T*>(s.alpha);
        const T *const values = static_cast<const T*>(a->values), *const b = static_cast<const T*>(s.b);
        T* const x = static_cast<T*>(s.x);
        if (product)
            symgs_mv_rows.get<typename Call<T>::csr__g_n_symgs_mv_def> (*a)(n, a->base, from_zero, alpha, values,
                                                                            ints(a->index), ints(a->first),
                                                                            ints(a->last), b, x, static_cast<T*>(s.y));
        else
            symgs_rows.get<typename Call<T>::csr__g_n_symgs_def> (*a)(
                n, a->base, from_zero, alpha, values, ints(a->index), ints(a->first), ints(a->last), b, x);
    });
    return ORK_SPARSE_SUCCESS;
}

struct Factors {
    const void *diagonal, *inverse;
    void* x;
    const void* b;
};

// z = b - A x, then the two solves.
std::int64_t lu_blocks(const Routine& r, const Matrix& a, const Factors& f)
{
    const std::int64_t n = rows_of(a);
    const Work z(a, n), work(a, a.block);
    PlainCall plain(a, spblas::Routine::mvout, ORK_SPBLAS_NO_TRANS, {});
    if (z.get() == nullptr || work.get() == nullptr || !plain.has_memory()) return no_memory(r);
    return with_type(a.precision, [&](auto t) {
        using T = decltype(t);
        const T one = T(1), minus = T(-1);
        std::memcpy(z.get(), f.b, static_cast<std::size_t>(n) * sizeof(T));
        plain.call.alpha = &minus, plain.call.beta = &one;
        plain.call.b = f.x, plain.call.c = z.get();
        if (const auto status = told_as(r, spblas::mv(plain.call))) return status;
        const BlockRows<Int, T> blocks = {a.base,        a.block,       a.layout,    static_cast<const T*>(a.values),
                                          ints(a.index), ints(a.first), ints(a.last)};
        for (auto* const solve : {&lu_lower_blocks, &lu_upper_blocks})
            solve->template get<typename Call<T>::bsr_ng_lu_smoother_lower_solve_def>(a)(
                0, a.rows, &blocks, static_cast<const T*>(f.diagonal), static_cast<const T*>(f.inverse),
                static_cast<T*>(z.get()), static_cast<T*>(work.get()));
        spblas::add(precision_of(a.precision), n, z.get(), f.x);
        return std::int64_t{ORK_SPARSE_SUCCESS};
    });
}

std::int64_t lu_planned(const Routine& r, const Matrix& a, int op, const ork_sparse_kind& kind, const Factors& f)
{
    const SolveKey key = solve_key(a, op, kind, true);
    const Work z(a, rows_of(a));
    if (z.get() == nullptr) return no_memory(r);
    if (InRows::stands(a, op, kind, true) && find_plan(a, key) == nullptr) {
        with_type(a.precision, [&](auto t) {
            using T = decltype(t);
            lu_rows.get<typename Call<T>::csr_lu_smoother_def_ker>(a)(
                a.rows, a.base, static_cast<const T*>(a.values), ints(a.index), ints(a.first), ints(a.last),
                static_cast<const T*>(f.diagonal), static_cast<const T*>(f.inverse), static_cast<const T*>(f.b),
                static_cast<T*>(f.x), static_cast<T*>(z.get()));
        });
        return ORK_SPARSE_SUCCESS;
    }
    const Planning planning(r, a, key);
    if (planning.status() != ORK_SPARSE_SUCCESS) return planning.status();
    with_type(a.precision, [&](auto t) {
        using T = decltype(t);
        auto* const kernel = lu_phases.get<typename Call<T>::csr_lu_smoother_opt_ker>(a);
        for (const Phase phase : {phase_forward, phase_backward})
            run_shares(planning.plan(), phase == phase_forward ? Direction::ascending : Direction::descending,
                       [&](std::int64_t first, std::int64_t last, int) {
                           kernel(phase, first, last, planning.plan().as<Int, T>(), static_cast<const T*>(f.diagonal),
                                  static_cast<const T*>(f.inverse), static_cast<const T*>(f.b), static_cast<T*>(f.x),
                                  static_cast<T*>(z.get()));
                       });
    });
    return ORK_SPARSE_SUCCESS;
}

[[gnu::noinline]] std::int64_t lu_smoother(const Routine& r, int op, ork_sparse_matrix_t handle,
                                           const ork_sparse_kind& kind, const Factors& f)
{
    Checks check(r);
    check.operation("op", op);
    const Matrix* const a = check.handle("a", handle);
    check.kind("kind", kind, a);
    if (!check.failed()) check.square("a", a);
    if (check.failed()) return check.status();
    const std::int64_t n = rows_of(*a);
    check.given("diagonal", f.diagonal, n > 0);
    check.given("inverse", f.inverse, n > 0);
    check.given("x", f.x, n > 0);
    check.given("b", f.b, n > 0);
    if (check.failed()) return check.status();
    if (n == 0) return ORK_SPARSE_SUCCESS;
    if (a->format != Format::bsr || a->block == 1) return lu_planned(r, *a, op, kind, f);
    if (op != ORK_SPBLAS_NO_TRANS && !(op == ORK_SPBLAS_CONJ && !is_complex(a->precision)))
        return not_supported(r, "op", op, "with blocks only 111, no transposition");
    if (kind.type != ORK_SPBLAS_GENERAL)
        return not_supported(r, "kind", kind.type, "with blocks only 0, a general matrix");
    return lu_blocks(r, *a, f);
}

struct Relaxation {
    int sweep;
    ork_sparse_kind kind;
    const void *omega, *alpha;
    void* x;
    const void* b;
};

// Of a symmetric matrix by its upper triangle alone.
std::int64_t relax_triangle(const Routine& r, const Matrix& a, const Relaxation& s)
{
    const Work work(a, a.rows);
    if (work.get() == nullptr) return no_memory(r);
    with_type(a.precision, [&](auto t) {
        using T = decltype(t);
        sor_triangle.get<typename Call<T>::csr_seq_sym_u_full_fw_sor>(a)(
            a.rows, a.base, *static_cast<const T*>(s.omega), static_cast<const T*>(a.values), ints(a.index),
            ints(a.first), ints(a.last), static_cast<const T*>(s.b), static_cast<T*>(s.x), static_cast<T*>(work.get()));
    });
    return ORK_SPARSE_SUCCESS;
}

void relax_rows(const Matrix& a, const Relaxation& s)
{
    with_type(a.precision, [&](auto t) {
        using T = decltype(t);
        auto* const kernel = sor_rows.get<typename Call<T>::csr_seq_fw_sor_def>(a);
        for (const int sweep : {ORK_SPARSE_FORWARD, ORK_SPARSE_BACKWARD})
            if ((s.sweep & sweep) != 0)
                kernel(a.rows, a.base, sweep == ORK_SPARSE_BACKWARD, *static_cast<const T*>(s.omega),
                       static_cast<const T*>(a.values), ints(a.index), ints(a.first), ints(a.last),
                       static_cast<const T*>(s.b), static_cast<T*>(s.x));
    });
}

[[gnu::noinline]] std::int64_t relax(const Routine& r, ork_sparse_matrix_t handle, const Relaxation& s)
{
    Checks check(r);
    if (s.sweep < ORK_SPARSE_FORWARD || s.sweep > ORK_SPARSE_SYMMETRIC)
        return wrong_argument(r, "sweep", s.sweep, "1 is forward, 2 backward, 3 both");
    const Matrix* const a = check.handle("a", handle);
    check.kind("kind", s.kind, a);
    if (!check.failed()) check.square("a", a);
    check.given("omega", s.omega);
    check.given("alpha", s.alpha);
    if (check.failed()) return check.status();
    const std::int64_t n = rows_of(*a);
    check.given("x", s.x, n > 0);
    check.given("b", s.b, n > 0);
    if (check.failed()) return check.status();
    if (n == 0) return ORK_SPARSE_SUCCESS;
    const bool triangle = a->format == Format::csr && s.kind.type == ORK_SPBLAS_SYMMETRIC &&
                          s.sweep == ORK_SPARSE_FORWARD && s.kind.uplo == ORK_SPBLAS_UPPER &&
                          s.kind.diag == ORK_SPBLAS_NON_UNIT;
    const bool needs_diagonal = s.kind.type == ORK_SPBLAS_GENERAL || s.kind.diag == ORK_SPBLAS_NON_UNIT;
    if (needs_diagonal)
        if (const auto status = check_diagonal(r, *a)) return status;
    const auto scale_x = [&] {
        if (!spblas::is_one(precision_of(a->precision), s.alpha))
            spblas::scaled_copy(precision_of(a->precision), n, s.alpha, s.x, s.x);
    };
    if (triangle) {
        scale_x();
        return relax_triangle(r, *a, s);
    }
    const InRows rows(*a, ORK_SPBLAS_NO_TRANS, s.kind, true, false);
    if (rows.get() == nullptr) return no_memory(r);
    scale_x();
    relax_rows(*rows.get(), s);
    return ORK_SPARSE_SUCCESS;
}

} // namespace
} // namespace ork::sparse

using namespace ork::sparse;

#define MEMBER(letter, Element, Scalar)                                                                                \
    ORK_EXPORT int64_t ork_sparse_##letter##_symgs(ork_spblas_operation op, ork_sparse_matrix_t a,                     \
                                                   ork_sparse_kind kind, Scalar alpha, const Element* b, Element* x)   \
    {                                                                                                                  \
        return symgs({"symgs", "op a kind alpha b x", #letter[0]}, a, {op, kind, address(alpha), b, x, nullptr},       \
                     false);                                                                                           \
    }                                                                                                                  \
    ORK_EXPORT int64_t ork_sparse_##letter##_symgs_mv(ork_spblas_operation op, ork_sparse_matrix_t a,                  \
                                                      ork_sparse_kind kind, Scalar alpha, const Element* b,            \
                                                      Element* x, Element* y)                                          \
    {                                                                                                                  \
        return symgs({"symgs_mv", "op a kind alpha b x y", #letter[0]}, a, {op, kind, address(alpha), b, x, y}, true); \
    }                                                                                                                  \
    ORK_EXPORT int64_t ork_sparse_##letter##_lu_smoother(ork_spblas_operation op, ork_sparse_matrix_t a,               \
                                                         ork_sparse_kind kind, const Element* diagonal,                \
                                                         const Element* inverse, Element* x, const Element* b)         \
    {                                                                                                                  \
        return lu_smoother({"lu_smoother", "op a kind diagonal inverse x b", #letter[0]}, op, a, kind,                 \
                           {diagonal, inverse, x, b});                                                                 \
    }                                                                                                                  \
    ORK_EXPORT int64_t ork_sparse_##letter##_sorv(ork_sparse_sweep sweep, ork_sparse_kind kind, ork_sparse_matrix_t a, \
                                                  Scalar omega, Scalar alpha, Element* x, const Element* b)            \
    {                                                                                                                  \
        return relax({"sorv", "sweep kind a omega alpha x b", #letter[0]}, a,                                          \
                     {sweep, kind, address(omega), address(alpha), x, b});                                             \
    }
ORK_SPARSE_PRECISIONS(MEMBER)
