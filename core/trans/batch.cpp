// SPDX-License-Identifier: MIT
// Batches: the threads share the matrices. A few large ones are taken one after the other, each on all threads where
// its kernel asks for them.
#include "lapack/instantiate.h"
#include "trans/division.h"
#include "trans/drivers.h"
#include "trans/kernels.h"

namespace ork::trans {

namespace {

// Bytes of matrices that a further thread must have to write.
constexpr double bytes_per_thread = 512 * 1024;
// Matrices of this size take threads themselves.
constexpr double large_matrix = 5 << 20;
constexpr int most_shares = 256, shares_of_a_thread = 8;

// Cycles go through memory without order: what a transposition of another shape costs in place, beside a copy.
constexpr double cycle_cost = 8;

enum class Where { in_place, out_of_place };

// Calls for matrices first .. last - 1 of group g, matrix 0 of which is matrix `before` of the batch.
using Body = void(const void* context, Int g, Int before, Int first, Int last);

class Batch {
public:
    Batch(const Groups& groups, Int element, Where where, Body* body, const void* context)
        : groups_(groups), element_(element), where_(where), body_(body), context_(context)
    {
    }
    void run() const;

private:
    // Matrix `within` of group `group`, which begins with matrix `before` of the batch.
    struct Place {
        Int group = 0, before = 0, within = 0;
    };

    Int size(Int g) const { return std::max<Int>(0, groups_.size(g)); }
    double bytes(Int g) const;
    void run(Place first, const Place& last) const;

    const Groups& groups_;
    Int element_;
    Where where_;
    Body* body_;
    const void* context_;
};

double Batch::bytes(Int g) const
{
    const Int rows = groups_.rows(g), cols = groups_.cols(g);
    const bool cycles = where_ == Where::in_place && rows != cols && is_transposition(groups_.trans(g));
    return bytes_of(rows, cols, element_) * (cycles ? cycle_cost : 1);
}

void Batch::run(Place first, const Place& last) const
{
    for (; first.group < last.group; ++first.group, first.within = 0) {
        body_(context_, first.group, first.before, first.within, size(first.group));
        first.before += size(first.group);
    }
    if (first.within < last.within) body_(context_, first.group, first.before, first.within, last.within);
}

void Batch::run() const
{
    double total = 0;
    Int matrices = 0;
    for (Int g = 0; g < groups_.count; ++g) {
        total += bytes(g) * static_cast<double>(size(g));
        matrices += size(g);
    }
    const Place end{groups_.count, matrices, 0};
    const int threads = blas::affordable_threads(total, bytes_per_thread);
    const bool large = total >= large_matrix * static_cast<double>(matrices);
    if (threads == 1 || matrices == 1 || (where_ == Where::out_of_place && large && matrices < 4 * threads))
        return run(Place(), end);

    // Shares of about the same cost, each from its first matrix to the next share's.
    const auto shares = static_cast<int>(std::min({matrices, Int{threads} * shares_of_a_thread, Int{most_shares}}));
    Place begin[most_shares + 1];
    int share = 1;
    double done = 0;
    Int before = 0;
    for (Int g = 0; g < groups_.count; ++g) {
        const double all = bytes(g) * static_cast<double>(size(g));
        for (; share < shares && total * share < (done + all) * shares; ++share) {
            const double part = std::max(0.0, (total * share / shares - done) / all);
            begin[share] = {g, before, std::min(size(g), static_cast<Int>(part * static_cast<double>(size(g))))};
        }
        done += all;
        before += size(g);
    }
    for (; share <= shares; ++share) begin[share] = end;
    threads::run(shares, [&](int part) { run(begin[part], begin[part + 1]); });
}

// call(g, i) for matrix i of the batch, which is of group g.
template <class T, class Call>
void run_batch(const Groups& groups, Where where, Call call)
{
    const auto body = [](const void* context, Int g, Int before, Int first, Int last) {
        for (Int i = first; i < last; ++i) (*static_cast<const Call*>(context))(g, before + i);
    };
    Batch(groups, sizeof(T), where, body, &call).run();
}

} // namespace

template <class T>
void omatcopy_batch_strided_par(char ordering, char trans, Int rows, Int cols, T alpha, const T* a, Int lda,
                                Int stridea, T* b, Int ldb, Int strideb, Int size)
{
    const auto kernel = kernels::omatcopy<T>.get();
    run_batch<T>({&trans, &rows, &cols, &lda, &ldb, 1, &size}, Where::out_of_place, [&](Int, Int i) {
        kernel(ordering, trans, rows, cols, alpha, a + i * stridea, lda, b + i * strideb, ldb);
    });
}

template <class T>
void imatcopy_batch_strided_par(char ordering, char trans, Int rows, Int cols, T alpha, T* ab, Int lda, Int ldb,
                                Int stride, Int size)
{
    const auto kernel = kernels::imatcopy<T>.get();
    run_batch<T>({&trans, &rows, &cols, &lda, &ldb, 1, &size}, Where::in_place,
                 [&](Int, Int i) { kernel(ordering, trans, rows, cols, alpha, ab + i * stride, lda, ldb); });
}

template <class T>
void omatadd_batch_strided_par(char ordering, char transa, char transb, Int rows, Int cols, T alpha, const T* a,
                               Int lda, Int stridea, T beta, const T* b, Int ldb, Int strideb, T* c, Int ldc,
                               Int stridec, Int size)
{
    const auto kernel = kernels::omatadd<T>.get();
    run_batch<T>({&transa, &rows, &cols, &lda, &ldb, 1, &size}, Where::out_of_place, [&](Int, Int i) {
        kernel(ordering, transa, transb, rows, cols, alpha, a + i * stridea, lda, beta, b + i * strideb, ldb,
               c + i * stridec, ldc);
    });
}

template <class T>
void omatcopy_batch_par(char ordering, const Groups& groups, const T* alpha, const T* const* a, T* const* b)
{
    const auto kernel = kernels::omatcopy<T>.get();
    run_batch<T>(groups, Where::out_of_place, [&](Int g, Int i) {
        kernel(ordering, groups.trans(g), groups.rows(g), groups.cols(g), alpha[g], a[i], groups.lda(g), b[i],
               groups.ldb(g));
    });
}

template <class T>
void imatcopy_batch_par(char ordering, const Groups& groups, const T* alpha, T* const* ab)
{
    const auto kernel = kernels::imatcopy<T>.get();
    run_batch<T>(groups, Where::in_place, [&](Int g, Int i) {
        kernel(ordering, groups.trans(g), groups.rows(g), groups.cols(g), alpha[g], ab[i], groups.lda(g),
               groups.ldb(g));
    });
}

INSTANTIATE(omatcopy_batch_strided_par)
INSTANTIATE(imatcopy_batch_strided_par)
INSTANTIATE(omatadd_batch_strided_par)
INSTANTIATE(omatcopy_batch_par)
INSTANTIATE(imatcopy_batch_par)

} // namespace ork::trans
