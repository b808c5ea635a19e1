// SPDX-License-Identifier: MIT
// C = alpha op(A) + B: the entries of each row of C are counted, then a kernel makes them, row by row.
#include <algorithm>
#include <atomic>
#include <cstring>

#include "export.h"
#include "ork/abi/services.h"
#include "sparse/kernels.h"
#include "sparse/products.h"
#include "spblas/split.h"
#include "threads/pool.h"

namespace ork::sparse {
namespace {

using Handles = HandleCalls<std::int64_t>;
constinit Kernels<2> convert_csr("convert_csr"), convert_bsr("convert_bsr");
constinit Kernels<8> allocate("do_sp2m_allocate_C_handle"), make_arrays("update_C_handle_data_for_matmat"),
    add_sorted("add_sorted_ker"), add_unsorted("add_unsorted_ker");

template <class Int>
struct Pattern {
    const Int *cols, *first, *last;
    std::int64_t base;

    explicit Pattern(const Matrix& a)
        : cols(static_cast<const Int*>(a.index)), first(static_cast<const Int*>(a.first)),
          last(static_cast<const Int*>(a.last)), base(a.base)
    {
    }
    std::int64_t begin(std::int64_t i) const { return first[i] - base; }
    std::int64_t end(std::int64_t i) const { return last[i] - base; }
    std::int64_t column(std::int64_t k) const { return cols[k] - base; }
};

template <class Int>
std::int64_t count_sorted(const Pattern<Int>& a, const Pattern<Int>& b, std::int64_t i)
{
    std::int64_t count = 0;
    for (std::int64_t k = a.begin(i), l = b.begin(i); k < a.end(i) || l < b.end(i); ++count) {
        const std::int64_t in_a = k < a.end(i) ? a.column(k) : INT64_MAX, in_b = l < b.end(i) ? b.column(l) : INT64_MAX;
        k += in_a <= in_b, l += in_b <= in_a;
    }
    return count;
}

// place: 0 for all columns, before and after.
template <class Int>
std::int64_t count_unsorted(const Pattern<Int>& a, const Pattern<Int>& b, std::int64_t i, Int* place)
{
    std::int64_t count = b.end(i) - b.begin(i);
    for (std::int64_t l = b.begin(i); l < b.end(i); ++l) place[b.column(l)] = 1;
    for (std::int64_t k = a.begin(i); k < a.end(i); ++k) count += place[a.column(k)] == 0;
    for (std::int64_t l = b.begin(i); l < b.end(i); ++l) place[b.column(l)] = 0;
    return count;
}

struct Sum {
    const Matrix &a, &b;
    Matrix& c;
    bool sorted;
    int parts;
    char* places; // a column an integer for each part, unless sorted

    spblas::Range rows(int part) const { return spblas::strip(c.rows, 1, parts, part); }
    char* place(int part) const { return sorted ? nullptr : places + part * c.cols * c.index_bytes; }

    template <class Int>
    void count()
    {
        const Pattern<Int> pa(a), pb(b);
        Int* const counts = static_cast<Int*>(c.first) + 1;
        threads::run(parts, [&](int part) {
            const auto range = rows(part);
            Int* const mine = reinterpret_cast<Int*>(place(part));
            for (std::int64_t i = range.first; i < range.end(); ++i)
                counts[i] = static_cast<Int>(sorted ? count_sorted(pa, pb, i) : count_unsorted(pa, pb, i, mine));
        });
    }

    template <class T>
    void fill(T alpha)
    {
        using Calls = ProductCalls<std::int64_t, T>;
        auto* const merge = add_sorted.get<typename Calls::add_sorted_ker>(a);
        auto* const collect = add_unsorted.get<typename Calls::add_unsorted_ker>(a);
        const Lines la(a), lb(b), lc(c);
        threads::run(parts, [&](int part) {
            const auto range = rows(part);
            auto* const mine = reinterpret_cast<std::int64_t*>(place(part));
            for (std::int64_t i = range.first; i < range.end(); ++i) {
                const Line ra = la[i], rb = lb[i], rc = lc[i];
                const auto row = [&](auto* kernel, auto... work) {
                    kernel(a.block, c.cols, a.base, b.base, c.base, a.layout, b.layout, c.layout, 0, ra.count, ra.cols,
                           static_cast<const T*>(ra.vals), 0, rb.count, rb.cols, static_cast<const T*>(rb.vals),
                           rc.cols, static_cast<T*>(rc.vals), alpha, work...);
                };
                if (sorted)
                    row(merge);
                else
                    row(collect, mine);
            }
        });
    }

private:
    // A row where its entries stand, of either width, which kernels take by the signature of the wide ones.
    struct Line {
        std::int64_t count, *cols;
        void* vals;
    };
    struct Lines {
        const Matrix& m;
        const spblas::Integers first, last;
        explicit Lines(const Matrix& m) : m(m), first(m.first, m.index_bytes == 8), last(m.last, m.index_bytes == 8) {}
        Line operator[](std::int64_t i) const
        {
            const std::int64_t begin = first[i] - m.base, size = element_size(m.precision) * m.block * m.block;
            return {last[i] - m.base - begin,
                    reinterpret_cast<std::int64_t*>(static_cast<char*>(m.index) + begin * m.index_bytes),
                    static_cast<char*>(m.values) + begin * size};
        }
    };
};

// A ProductStatus. A and B of one format and size.
std::int64_t add_records(const Matrix& a, const Matrix& b, const void* alpha, Matrix** result)
{
    using Calls = ProductCalls<std::int64_t, double>; // signatures without a scalar are those of every precision
    Factors f;
    f.a = &a, f.b = &b;
    Matrix* c = nullptr;
    if (const auto status = allocate.get<Calls::do_sp2m_allocate_C_handle>(a)(&f, &c)) return status;
    // A merge costs as much as a product of a matrix with a vector, about.
    Sum sum = {a, b, *c, a.sorted && b.sorted, 1, nullptr};
    sum.parts = spblas::threads_for(static_cast<double>((a.entries + b.entries) * a.block * a.block));
    std::int64_t status = product_done;
    if (!sum.sorted) {
        sum.places = static_cast<char*>(ork_serv_calloc(static_cast<std::size_t>(sum.parts * c->cols),
                                                        static_cast<std::size_t>(c->index_bytes), 16, 0));
        if (sum.places == nullptr) status = product_no_memory;
    }
    const bool wide = a.index_bytes == 8;
    if (status == product_done) {
        wide ? sum.count<std::int64_t>() : sum.count<std::int32_t>();
        status = make_arrays.get<Calls::update_C_handle_data_for_matmat>(a)(product_counts | product_pattern, c);
    }
    if (status == product_done) {
        c->sorted = static_cast<std::int8_t>(sum.sorted);
        c->distinct = static_cast<std::int8_t>(sum.sorted && a.distinct && b.distinct);
        with_type(a.precision, [&](auto number) {
            std::memcpy(&number, alpha, sizeof number);
            sum.fill(number);
        });
        *result = c;
    } else {
        destroy(c);
    }
    ork_serv_free(sum.places);
    return status;
}

// op(A) in the format of A, which is csr or bsr; a RecordStatus of the kernels.
int turned(const Matrix& a, int op, Matrix** result)
{
    const int number = op - ORK_SPBLAS_NO_TRANS;
    if (a.format == Format::csr) return convert_csr.get<Handles::convert_csr>(a)(&a, number, 0, result);
    return convert_bsr.get<Handles::convert_bsr>(a)(&a, number, a.block, a.layout, result);
}

std::int64_t add(const Routine& r, int op, ork_sparse_matrix_t handle_a, const void* alpha,
                 ork_sparse_matrix_t handle_b, ork_sparse_matrix_t* result)
{
    Checks check(r);
    check.operation("op", op);
    const Matrix* const a = check.handle("a", handle_a);
    check.given("alpha", alpha);
    const Matrix* const b = check.handle("b", handle_b);
    check.given("c", result);
    if (!check.failed() && a->format != Format::csr && a->format != Format::bsr)
        check.fail(not_supported(r, "a", static_cast<int>(a->format), "sums are of csr or bsr matrices"));
    check.same_numbers(a, "b", b);
    check.same_format(a, "b", b);
    if (check.failed()) return check.status();
    const bool turns = transposes(op);
    if ((turns ? a->cols : a->rows) != b->rows || (turns ? a->rows : a->cols) != b->cols)
        return mismatch(r, "b", rows_of(*b), "op(A) is %lld by %lld",
                        static_cast<long long>(turns ? cols_of(*a) : rows_of(*a)),
                        static_cast<long long>(turns ? rows_of(*a) : cols_of(*a)));
    Matrix *copy = nullptr, *c = nullptr;
    std::int64_t status = product_done;
    if (turns || (op == ORK_SPBLAS_CONJ && is_complex(a->precision))) status = turned(*a, op, &copy);
    if (status == product_done) status = add_records(copy != nullptr ? *copy : *a, *b, alpha, &c);
    destroy(copy);
    return status != product_done ? status_of(r, *a, status) : publish(r, c, result);
}

} // namespace
} // namespace ork::sparse

#define MEMBER(letter, Element, Scalar)                                                                                \
    ORK_EXPORT int64_t ork_sparse_##letter##_add(ork_spblas_operation op, ork_sparse_matrix_t a, Scalar alpha,         \
                                                 ork_sparse_matrix_t b, ork_sparse_matrix_t* c)                        \
    {                                                                                                                  \
        return ork::sparse::add({"add", "op a alpha b c", #letter[0]}, op, a, ork::sparse::address(alpha), b, c);      \
    }
ORK_SPARSE_PRECISIONS(MEMBER)
