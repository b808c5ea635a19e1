// SPDX-License-Identifier: MIT
// y = alpha op(A) x + beta y, and its dot product with x. Rows, slices and chunks of diagonals are divided among
// threads by their entries; each thread writes rows of its own.
#include <algorithm>

#include "export.h"
#include "loader/kernel.h"
#include "sparse/handle.h"
#include "sparse/kernels.h"
#include "sparse/mv_plan.h"
#include "sparse/plain.h"
#include "spblas/drivers.h"
#include "spblas/split.h"
#include "spblas/vectors.h"
#include "threads/pool.h"

namespace ork::sparse {
namespace {

using Index = std::int64_t;

constinit Kernels<8> rows_mv("csr_ng_n_mv_ker_b"), rows_dotmv("csr_ng_n_dotmv_ker_beta");
constinit Kernels<8> slices_mv("xESB_SpMV"), slices_dotmv("ESB_SpDOTMV"), diagonals_mv("dia_mv_ker");
constinit Kernels<8> blocks_mv[2] = {Kernels<8>("bsr0ng_n_mv_ker"), Kernels<8>("bsr1ng_n_mv_ker")};

constinit std::atomic<void*> dot_kernels[4];
constexpr const char* dot_names[4] = {"xsdot", "xddot", "xcdotc", "xzdotc"};

// The sum of conj(x_i) y_i.
template <class T>
T dot_of(char precision, Index n, const T* x, const T* y)
{
    const int number = precision_number(precision);
    void* kernel = dot_kernels[number].load(std::memory_order_acquire);
    if (kernel == nullptr) {
        kernel = loader::find_kernel("blas", dot_names[number]);
        dot_kernels[number].store(kernel, std::memory_order_release);
    }
    const Index one = 1;
    return reinterpret_cast<T (*)(const Index*, const T*, const Index*, const T*, const Index*)>(kernel)(&n, x, &one, y,
                                                                                                         &one);
}

template <class T>
struct Product {
    using Kernel = Calls<Index, T>;
    const MvPlan& plan;
    T alpha, beta;
    const T* x;
    T *y, *dots; // dots: one of each part, or null

    const T* vals(Index entry) const { return static_cast<const T*>(plan.vals) + entry; }
    const Index* indices(const void* array, Index at) const
    {
        return reinterpret_cast<const Index*>(static_cast<const char*>(array) + at * plan.index_bytes);
    }
    const std::uint64_t* pointers(Index line) const
    {
        return reinterpret_cast<const std::uint64_t*>(indices(plan.pointers, line));
    }
    Index entry(Index line) const
    {
        const spblas::Integers p(plan.pointers, plan.index_bytes == 8);
        return plan.rows > 0 ? p[line] - p[0] : 0;
    }
    template <class Signature>
    Signature* get(Kernels<8>& kernels) const
    {
        return kernels.get<Signature>(plan.precision, plan.index_bytes);
    }
    void dot_after(int part, Index first, Index last) const
    {
        if (dots != nullptr) dots[part] = dot_of(plan.precision, last - first, x + first, y + first);
    }

    void rows(int part, Index first, Index last) const
    {
        const Index k = entry(first);
        if (dots != nullptr)
            // Columns index x as they are stored, and so must the rows.
            get<typename Kernel::csr_ng_n_dotmv_ker_beta>(rows_dotmv)(
                first + plan.base, last + plan.base, nullptr, nullptr, alpha, y + first, x - plan.base, vals(k),
                pointers(first), indices(plan.cols, k), dots + part, beta);
        else
            get<typename Kernel::csr_ng_n_mv_ker_b>(rows_mv)(first, last, nullptr, plan.base, alpha, y + first, x,
                                                             vals(k), pointers(first), indices(plan.cols, k), beta);
    }
    void slices(int part, Index first, Index last) const
    {
        const Index k = entry(first), h = plan.height, tail = last == plan.count ? plan.rows % h : 0;
        if (dots != nullptr)
            get<typename Kernel::ESB_SpDOTMV>(slices_dotmv)(first, last, tail, h, vals(k), indices(plan.cols, k),
                                                            pointers(first), pointers(first + 1), x, y + first * h,
                                                            dots + part, nullptr, alpha, beta);
        else
            get<typename Kernel::xESB_SpMV>(slices_mv)(first, last, tail, h, vals(k), indices(plan.cols, k),
                                                       pointers(first), pointers(first + 1), x, y + first * h, nullptr,
                                                       alpha, beta);
    }
    void diagonals(int part, Index first, Index last) const
    {
        get<typename Kernel::dia_mv_ker>(diagonals_mv)(first, last, plan.columns, plan.count, plan.height,
                                                       indices(plan.cols, 0), vals(0), x, y + first, alpha, beta);
        dot_after(part, first, last);
    }
    void blocks(int part, Index first, Index last) const
    {
        const Index k = entry(first), order = plan.block;
        get<typename Kernel::bsr0ng_n_mv_ker>(blocks_mv[plan.base != 0])(first, last, order, plan.block_layout, alpha,
                                                                         y + first * order, x, vals(k * order * order),
                                                                         pointers(first), indices(plan.cols, k), beta);
        dot_after(part, first * order, last * order);
    }

    void run(int part, int parts) const
    {
        const bool slicing = plan.layout == Layout::slices;
        if (plan.layout == Layout::diagonals) {
            const spblas::Range range = spblas::strip(plan.rows, plan.height, parts, part);
            return diagonals(part, range.first, range.end());
        }
        const Index lines = slicing ? plan.count : plan.rows;
        const spblas::Integers p(plan.pointers, plan.index_bytes == 8);
        const auto total = static_cast<double>(lines > 0 ? p[lines] - p[0] + lines : 0);
        const spblas::Range share = spblas::share(p, lines, total, parts, part);
        const Index first = share.first, last = share.end();
        if (plan.layout == Layout::rows)
            rows(part, first, last);
        else if (slicing)
            slices(part, first, last);
        else
            blocks(part, first, last);
    }
};

template <class T>
void run(const MvPlan& plan, const void* alpha, const void* x, const void* beta, void* y, void* d)
{
    constexpr int most = 64; // threads of a dot product
    T dots[most] = {};
    const Product<T> product{plan,
                             *static_cast<const T*>(alpha),
                             *static_cast<const T*>(beta),
                             static_cast<const T*>(x),
                             static_cast<T*>(y),
                             d != nullptr ? dots : nullptr};
    int parts = spblas::threads_for(static_cast<double>(plan.stored));
    if (d != nullptr) parts = std::min(parts, most);
    if (parts == 1)
        product.run(0, 1);
    else
        threads::run(parts, [&](int part) { product.run(part, parts); });
    if (d == nullptr) return;
    T sum = dots[0];
    for (int part = 1; part < parts; ++part) sum += dots[part];
    *static_cast<T*>(d) = sum;
}

std::int64_t plain_product(const Routine& r, const Matrix& a, int op, const ork_sparse_kind& kind, const void* alpha,
                           const void* x, const void* beta, void* y)
{
    // In mm blocks may have either layout.
    const bool blocked = a.format == Format::bsr && a.block > 1;
    const int layout = !blocked ? 0 : a.layout == 0 ? ORK_SPBLAS_ROW_MAJOR : ORK_SPBLAS_COL_MAJOR;
    PlainCall plain(a, blocked ? spblas::Routine::mmout : spblas::Routine::mvout, op, kind, layout);
    if (!plain.has_memory()) return no_memory(r);
    spblas::Call& call = plain.call;
    call.alpha = alpha, call.beta = beta;
    call.b = x, call.c = y;
    call.ldb = layout == ORK_SPBLAS_COL_MAJOR ? std::max<Index>(call.rows_of_b(), 1) : 1;
    call.ldc = layout == ORK_SPBLAS_COL_MAJOR ? std::max<Index>(call.rows_of_c(), 1) : 1;
    return told_as(r, blocked ? spblas::mm(call) : spblas::mv(call));
}

struct Operands {
    int op;
    const void* alpha;
    ork_sparse_kind kind;
    const void *x, *beta;
    void *y, *d;
    bool dots;
};

[[gnu::noinline]] std::int64_t multiply(const Routine& r, ork_sparse_matrix_t handle, const Operands& o)
{
    Checks check(r);
    check.operation("op", o.op);
    check.given("alpha", o.alpha);
    const Matrix* const a = check.handle("a", handle);
    check.kind("kind", o.kind, a);
    if (check.failed()) return check.status();
    if (o.dots) check.square("a", a);
    const bool across = transposes(o.op);
    const Index columns = across ? rows_of(*a) : cols_of(*a), rows = across ? cols_of(*a) : rows_of(*a);
    check.given("x", o.x, columns > 0);
    check.given("beta", o.beta);
    check.given("y", o.y, rows > 0);
    check.given("d", o.d, o.dots);
    if (check.failed()) return check.status();

    MvPlan standing;
    const MvPlan* plan = nullptr;
    if (rows > 0 && !spblas::is_zero(precision_of(r.precision), o.alpha)) { // with alpha = 0 neither A nor x is read
        plan = mv_plan(*a, o.op, o.kind);
        if (plan == nullptr && as_it_stands(*a, o.op, o.kind, standing)) plan = &standing;
    }
    return with_type(r.precision, [&](auto number) -> std::int64_t {
        using T = decltype(number);
        if (plan != nullptr) {
            run<T>(*plan, o.alpha, o.x, o.beta, o.y, o.dots ? o.d : nullptr);
            return ORK_SPARSE_SUCCESS;
        }
        const std::int64_t status = plain_product(r, *a, o.op, o.kind, o.alpha, o.x, o.beta, o.y);
        if (status == ORK_SPARSE_SUCCESS && o.dots)
            *static_cast<T*>(o.d) =
                dot_of<T>(r.precision, rows, static_cast<const T*>(o.x), static_cast<const T*>(o.y));
        return status;
    });
}

} // namespace
} // namespace ork::sparse

using namespace ork::sparse;

#define MEMBER(letter, Element, Scalar)                                                                                \
    ORK_EXPORT int64_t ork_sparse_##letter##_mv(ork_spblas_operation op, Scalar alpha, ork_sparse_matrix_t a,          \
                                                ork_sparse_kind kind, const Element* x, Scalar beta, Element* y)       \
    {                                                                                                                  \
        return multiply({"mv", "op alpha a kind x beta y", #letter[0]}, a,                                             \
                        {op, address(alpha), kind, x, address(beta), y, nullptr, false});                              \
    }                                                                                                                  \
    ORK_EXPORT int64_t ork_sparse_##letter##_dotmv(ork_spblas_operation op, Scalar alpha, ork_sparse_matrix_t a,       \
                                                   ork_sparse_kind kind, const Element* x, Scalar beta, Element* y,    \
                                                   Element* d)                                                         \
    {                                                                                                                  \
        return multiply({"dotmv", "op alpha a kind x beta y d", #letter[0]}, a,                                        \
                        {op, address(alpha), kind, x, address(beta), y, d, true});                                     \
    }
ORK_SPARSE_PRECISIONS(MEMBER)
