// SPDX-License-Identifier: MIT
// The compact interface for element type T: each routine by the name that errors report it under.
#pragma once

#include <atomic>
#include <limits>

#include "blas/work_buffer.h"
#include "lapack/compact_call.h"
#include "lapack/compact_kernels.h"

namespace ork::lapack::compact {

template <class T>
Int size(const char* routine, Int ld, Int lines, Int format, Int nmat)
{
    Arguments arguments(routine);
    Int bytes = 0;
    const bool counts = ld >= 0 && lines >= 0 && nmat >= 0 && format >= 181 && format <= 183;
    arguments.size(1, ld).size(2, lines).batch(3, format, nmat);
    if (counts)
        arguments.want(4, !__builtin_mul_overflow(ld, lines, &bytes) && nmat <= std::numeric_limits<Int>::max() - 16 &&
                              !__builtin_mul_overflow(bytes, Batch<T>(format, nmat).packs, &bytes) &&
                              !__builtin_mul_overflow(bytes, Batch<T>::parts * (Int{16} << (format - 181)), &bytes));
    const Int wrong = arguments.report();
    return wrong != 0 ? wrong : bytes;
}

// By pack or unpack, whose matrices are at pointers or a stride apart.
template <auto& kernel, class T, class Pointer, class Packed>
Int convert(const char* routine, Int layout, Int m, Int n, Pointer const* pointers, Pointer strided, Int lda,
            Int stride, Packed packs, Int ldp, Int format, Int nmat)
{
    const bool has_stride = pointers == nullptr;
    const Int length = length_of(layout, m, n), lines = lines_of(layout, m, n), shift = has_stride ? 1 : 0;
    Arguments arguments(routine, layout);
    arguments.size(2, m).size(3, n).lead(5, lda, length);
    arguments.lead(7 + shift, ldp, length).batch(8 + shift, format, nmat);
    if (const Int wrong = arguments.report(); wrong != 0) return wrong;
    if (m == 0 || n == 0) return 0;

    const Batch<T> batch(format, nmat);
    const Int size = batch.size(ldp, lines);
    Division<T>(batch, static_cast<double>(m) * static_cast<double>(n)).run([&](Share share) {
        const Int begin = share.first * batch.width, end = std::min(nmat, (share.first + share.packs) * batch.width);
        if (!has_stride) {
            const Int count = end - begin;
            return kernel(&layout, &m, &n, pointers + begin, &lda, packs + share.first * size, &ldp, &format, &count);
        }
        constexpr Int most = 64; // whole packs of every width
        Pointer some[most];
        for (Int q = begin; q < end; q += most) {
            const Int count = std::min(most, end - q);
            for (Int k = 0; k < count; ++k) some[k] = strided + (q + k) * stride;
            kernel(&layout, &m, &n, some, &lda, packs + q / batch.width * size, &ldp, &format, &count);
        }
    });
    return 0;
}

// The first matrix that failed, over all threads.
class Failures {
public:
    // Looks at the last pivots of some packs that begin with matrix `begin`, from 0.
    template <class T>
    [[gnu::noinline]] void look(Int layout, Int m, Int n, const Part<T>* packs, Int lda, Int format, Int count,
                                Int begin)
    {
        Int found;
        kernels::pivots_compact_ps<T>(&layout, &m, &n, packs, &lda, &found, &format, &count);
        if (found == 0) return;
        found += begin;
        Int known = first_.load(std::memory_order_relaxed);
        while (found < known && !first_.compare_exchange_weak(known, found, std::memory_order_relaxed)) {
        }
    }
    Int first(Int nmat) const
    {
        const Int first = first_.load(std::memory_order_relaxed);
        return first <= nmat ? first : 0;
    }

private:
    std::atomic<Int> first_ = std::numeric_limits<Int>::max();
};

// Runs factor(packs of a, how many matrices) on all shares and looks for the first matrix that failed.
template <class T, class Factor>
Int factorise(Int layout, Int m, Int n, double work, Part<T>* a, Int lda, const Batch<T>& batch, Factor&& factor)
{
    Failures failures;
    const Int size = batch.size(lda, lines_of(layout, m, n));
    Division<T>(batch, work).run([&](Share share) {
        Part<T>* const packs = a + share.first * size;
        const Int count = share.packs * batch.width;
        factor(packs, count);
        failures.look<T>(layout, m, n, packs, lda, batch.format, count, share.first * batch.width);
    });
    return failures.first(batch.nmat);
}

inline double cube(Int m, Int n, Int k)
{
    return static_cast<double>(m) * static_cast<double>(n) * static_cast<double>(k);
}

template <class T>
Int getrfnp(const char* routine, Int layout, Int m, Int n, Part<T>* a, Int lda, Int format, Int nmat)
{
    Arguments arguments(routine, layout);
    arguments.size(2, m).size(3, n).lead(5, lda, length_of(layout, m, n)).batch(6, format, nmat);
    if (const Int wrong = arguments.report(); wrong != 0) return wrong;
    return factorise(layout, m, n, cube(m, n, std::min(m, n)) / 2, a, lda, Batch<T>(format, nmat),
                     [&](Part<T>* packs, Int count) {
                         Int info;
                         kernels::getrfnp_compact_ps<T>(&layout, &m, &n, packs, &lda, &info, &format, &count);
                     });
}

template <class T>
Int potrf(const char* routine, Int layout, char uplo, Int n, Part<T>* a, Int lda, Int format, Int nmat)
{
    Arguments arguments(routine, layout);
    arguments.letter(2, uplo, "UL").size(3, n).lead(5, lda, n).batch(6, format, nmat);
    if (const Int wrong = arguments.report(); wrong != 0) return wrong;
    return factorise(layout, n, n, cube(n, n, n) / 4, a, lda, Batch<T>(format, nmat), [&](Part<T>* packs, Int count) {
        Int info;
        kernels::potrf_compact_ps<T>(&layout, &uplo, &n, packs, &lda, &info, &format, &count);
    });
}

template <class T>
Int getrinp(const char* routine, Int layout, Int n, Part<T>* a, Int lda, Int format, Int nmat)
{
    Arguments arguments(routine, layout);
    arguments.size(2, n).lead(4, lda, n).batch(5, format, nmat);
    if (const Int wrong = arguments.report(); wrong != 0) return wrong;
    const Batch<T> batch(format, nmat);
    if (n == 0 || nmat == 0) return 0;
    const Division<T> division(batch, cube(n, n, n));
    const Int each = batch.size(3, n); // what the kernel asks for with lwork = -1
    blas::WorkBuffer<Part<T>> work(each * division.parts());
    if (work.data() == nullptr) return ORK_COMPACT_NO_MEMORY;
    division.run([&](Share share) {
        const Int count = share.packs * batch.width;
        Int info;
        kernels::getrinp_compact_ps<T>(&layout, &n, a + share.first * batch.size(lda, n), &lda,
                                       work.data() + share.part * each, &each, &info, &format, &count);
    });
    return 0;
}

template <class T>
Int geqrf(const char* routine, Int layout, Int m, Int n, Part<T>* a, Int lda, Part<T>* tau, Int format, Int nmat)
{
    Arguments arguments(routine, layout);
    arguments.size(2, m).size(3, n).lead(5, lda, length_of(layout, m, n)).batch(7, format, nmat);
    if (const Int wrong = arguments.report(); wrong != 0) return wrong;
    const Batch<T> batch(format, nmat);
    Division<T>(batch, cube(m, n, std::min(m, n))).run([&](Share share) {
        const Int count = share.packs * batch.width, lwork = 1;
        Int info;
        Part<T> work[1];
        kernels::geqrf_compact_ps<T>(&layout, &m, &n, a + share.first * batch.size(lda, lines_of(layout, m, n)), &lda,
                                     tau + share.first * batch.size(std::min(m, n), 1), work, &lwork, &info, &format,
                                     &count);
    });
    return 0;
}

template <class T>
Int gemm(const char* routine, Int layout, char transa, char transb, Int m, Int n, Int k, const T& alpha,
         const Part<T>* a, Int lda, const Part<T>* b, Int ldb, const T& beta, Part<T>* c, Int ldc, Int format, Int nmat)
{
    const bool plain_a = (transa & ~0x20) == 'N', plain_b = (transb & ~0x20) == 'N';
    const Int rows_a = plain_a ? m : k, columns_a = plain_a ? k : m;
    const Int rows_b = plain_b ? k : n, columns_b = plain_b ? n : k;
    Arguments arguments(routine, layout);
    arguments.letter(2, transa, "NTC").letter(3, transb, "NTC").size(4, m).size(5, n).size(6, k);
    arguments.lead(9, lda, length_of(layout, rows_a, columns_a)).lead(11, ldb, length_of(layout, rows_b, columns_b));
    arguments.lead(14, ldc, length_of(layout, m, n)).batch(15, format, nmat);
    if (const Int wrong = arguments.report(); wrong != 0) return wrong;
    const Batch<T> batch(format, nmat);
    const Int size_a = batch.size(lda, lines_of(layout, rows_a, columns_a));
    const Int size_b = batch.size(ldb, lines_of(layout, rows_b, columns_b));
    const Int size_c = batch.size(ldc, lines_of(layout, m, n));
    Division<T>(batch, cube(m, n, std::max<Int>(k, 1))).run([&](Share share) {
        const Int count = share.packs * batch.width;
        kernels::gemm_compact<T>()(&layout, &transa, &transb, &m, &n, &k, &alpha, a + share.first * size_a, &lda,
                                   b + share.first * size_b, &ldb, &beta, c + share.first * size_c, &ldc, &format,
                                   &count);
    });
    return 0;
}

// One triangular solve after another.
struct Solve {
    char uplo, trans, diag;
};
// On as many packs at a time as stay in a near cache, prepare(packs of a, how many matrices, the first of them) first.
template <class T, std::size_t steps, class Prepare>
void solve(const Solve (&solves)[steps], char side, Int layout, Int m, Int n, const T& alpha, const Part<T>* a, Int lda,
           Part<T>* b, Int ldb, const Batch<T>& batch, double work, Prepare&& prepare)
{
    const Int order = side == 'L' ? m : n;
    const Int size_a = batch.size(lda, order), size_b = batch.size(ldb, lines_of(layout, m, n));
    const Int near = std::max<Int>(1, (Int{1} << 17) / ((size_a + size_b + 1) * Int(sizeof(Part<T>))));
    work += static_cast<double>(steps) * cube(m, n, order) / 2;
    Division<T>(batch, work).run([&](Share share) {
        for (Int pack = share.first; pack < share.first + share.packs; pack += near) {
            const Int count = std::min(near, share.first + share.packs - pack) * batch.width;
            prepare(pack * size_a, count, pack * batch.width);
            for (std::size_t i = 0; i < steps; ++i) {
                const T factor = i == 0 ? alpha : T(1);
                kernels::trsm_compact_ps<T>(&layout, &side, &solves[i].uplo, &solves[i].trans, &solves[i].diag, &m, &n,
                                            &factor, a + pack * size_a, &lda, b + pack * size_b, &ldb, &batch.format,
                                            &count);
            }
        }
    });
}
constexpr auto prepared = [](Int, Int, Int) {};

template <class T>
Int trsm(const char* routine, Int layout, char side, char uplo, char transa, char diag, Int m, Int n, const T& alpha,
         const Part<T>* a, Int lda, Part<T>* b, Int ldb, Int format, Int nmat)
{
    side &= ~0x20;
    Arguments arguments(routine, layout);
    arguments.letter(2, side, "LR").letter(3, uplo, "UL").letter(4, transa, "NTC").letter(5, diag, "UN");
    arguments.size(6, m).size(7, n).lead(10, lda, side == 'L' ? m : n).lead(12, ldb, length_of(layout, m, n));
    arguments.batch(13, format, nmat);
    if (const Int wrong = arguments.report(); wrong != 0) return wrong;
    const Solve once[] = {{uplo, transa, diag}};
    solve<T>(once, side, layout, m, n, alpha, a, lda, b, ldb, Batch<T>(format, nmat), 0, prepared);
    return 0;
}

template <class T>
Int getrsnp(const char* routine, Int layout, char trans, Int n, Int nrhs, const Part<T>* a, Int lda, Part<T>* b,
            Int ldb, Int format, Int nmat)
{
    Arguments arguments(routine, layout);
    arguments.letter(2, trans, "NTC").size(3, n).size(4, nrhs).lead(6, lda, n).lead(8, ldb, length_of(layout, n, nrhs));
    arguments.batch(9, format, nmat);
    if (const Int wrong = arguments.report(); wrong != 0) return wrong;
    const bool plain = (trans & ~0x20) == 'N';
    const Solve lower{'L', trans, 'U'}, upper{'U', trans, 'N'};
    const Solve both[] = {plain ? lower : upper, plain ? upper : lower};
    solve<T>(both, 'L', layout, n, nrhs, T(1), a, lda, b, ldb, Batch<T>(format, nmat), 0, prepared);
    return 0;
}

template <class T>
Int potrs(const char* routine, Int layout, char uplo, Int n, Int nrhs, const Part<T>* a, Int lda, Part<T>* b, Int ldb,
          Int format, Int nmat)
{
    Arguments arguments(routine, layout);
    arguments.letter(2, uplo, "UL").size(3, n).size(4, nrhs).lead(6, lda, n).lead(8, ldb, length_of(layout, n, nrhs));
    arguments.batch(9, format, nmat);
    if (const Int wrong = arguments.report(); wrong != 0) return wrong;
    const bool upper = (uplo & ~0x20) == 'U';
    const Solve both[] = {{uplo, upper ? 'C' : 'N', 'N'}, {uplo, upper ? 'N' : 'C', 'N'}};
    solve<T>(both, 'L', layout, n, nrhs, T(1), a, lda, b, ldb, Batch<T>(format, nmat), 0, prepared);
    return 0;
}

template <class T>
Int gesvnp(const char* routine, Int layout, Int n, Int nrhs, Part<T>* a, Int lda, Part<T>* b, Int ldb, Int format,
           Int nmat)
{
    Arguments arguments(routine, layout);
    arguments.size(2, n).size(3, nrhs).lead(5, lda, n).lead(7, ldb, length_of(layout, n, nrhs));
    arguments.batch(8, format, nmat);
    if (const Int wrong = arguments.report(); wrong != 0) return wrong;
    Failures failures;
    const Solve both[] = {{'L', 'N', 'U'}, {'U', 'N', 'N'}};
    solve<T>(both, 'L', layout, n, nrhs, T(1), a, lda, b, ldb, Batch<T>(format, nmat), cube(n, n, n) / 2,
             [&](Int place, Int count, Int begin) {
                 Int info;
                 kernels::getrfnp_compact_ps<T>(&layout, &n, &n, a + place, &lda, &info, &format, &count);
                 failures.look<T>(layout, n, n, a + place, lda, format, count, begin);
             });
    return failures.first(nmat);
}

template <class T>
Int posv(const char* routine, Int layout, char uplo, Int n, Int nrhs, Part<T>* a, Int lda, Part<T>* b, Int ldb,
         Int format, Int nmat)
{
    Arguments arguments(routine, layout);
    arguments.letter(2, uplo, "UL").size(3, n).size(4, nrhs).lead(6, lda, n).lead(8, ldb, length_of(layout, n, nrhs));
    arguments.batch(9, format, nmat);
    if (const Int wrong = arguments.report(); wrong != 0) return wrong;
    Failures failures;
    const bool upper = (uplo & ~0x20) == 'U';
    const Solve both[] = {{uplo, upper ? 'C' : 'N', 'N'}, {uplo, upper ? 'N' : 'C', 'N'}};
    solve<T>(both, 'L', layout, n, nrhs, T(1), a, lda, b, ldb, Batch<T>(format, nmat), cube(n, n, n) / 4,
             [&](Int place, Int count, Int begin) {
                 Int info;
                 kernels::potrf_compact_ps<T>(&layout, &uplo, &n, a + place, &lda, &info, &format, &count);
                 failures.look<T>(layout, n, n, a + place, lda, format, count, begin);
             });
    return failures.first(nmat);
}

} // namespace ork::lapack::compact
