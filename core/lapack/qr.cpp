// SPDX-License-Identifier: MIT
// Householder QR by blocks of columns: a kernel factors a block, and what is right of it takes its reflectors as one.
#include "blas/work_buffer.h"
#include "lapack/crossover.h"
#include "lapack/drivers.h"
#include "lapack/instantiate.h"
#include "lapack/kernels.h"
#include "lapack/reflectors.h"
#include "lapack/scalar.h"

namespace ork::lapack {

namespace {

template <class T>
void factor_panel(Int m, Int n, Matrix<T> a, T* tau, T* work)
{
    Int info = 0;
    kernels::geqrf_small<T>(&m, &n, a.data, &a.lead, tau, work, &n, &info);
}

// memory: that of a block reflector, and of its application to n columns.
template <class T>
void factor(Int m, Int n, Matrix<T> a, T* tau, T* work, T* memory)
{
    const Int columns = std::min(m, n);
    for (Int j = 0; j < columns; j += qr_block) {
        const Int k = std::min(qr_block, columns - j), rows = m - j, right = n - j - k;
        const Matrix<T> block = a.from(j, j);
        factor_panel(rows, k, block, tau + j, work);
        if (right == 0) continue;
        const auto h = form_block<T>(rows, k, block, tau + j, memory);
        apply_block(Side::left, true, h, right, block.from(0, k), memory + h.memory(k));
    }
}

// Room for blocks of reflectors and their application to `others` columns or rows; without memory they are taken
// singly, for which the caller's work is enough.
template <class T>
class Room {
public:
    Room(Int k, Int others, T* work) : width(std::min(k, qr_block)), memory_(extent(width) + width * others)
    {
        if (memory_.data() == nullptr) {
            width = 1;
            block = single_;
            this->work = work;
        } else {
            block = memory_.data();
            this->work = block + extent(width);
        }
    }

    Int width;
    T *block, *work; // extent(width) and width * others elements

private:
    static constexpr Int extent(Int width) { return BlockReflector<T>::memory(width) + width * width; }
    blas::WorkBuffer<T> memory_;
    T single_[extent(1)];
};

template <class T>
void set_unit_columns(Int m, Int n, Int first, Matrix<T> a)
{
    for (Int j = first; j < n; ++j)
        for (Int i = 0; i < m; ++i) a(i, j) = i == j ? T(1) : T();
}

} // namespace

template <class T>
Int geqrf(Int m, Int n, T* a, Int lda, T* tau, T* work)
{
    if (m == 0 || n == 0) return 0;
    if (m > small_qr || n > small_qr) {
        const blas::WorkBuffer<T> memory(BlockReflector<T>::memory(qr_block) + qr_block * n);
        if (memory.data() != nullptr) {
            factor<T>(m, n, {a, lda}, tau, work, memory.data());
            return 0;
        }
    }
    factor_panel<T>(m, n, {a, lda}, tau, work);
    return 0;
}

// The last block first: the columns of Q behind it are in place then, and I - V T V^H is applied to them. Its own are
// the unit matrix's, so they become I - V (T V1^H) with a triangle in brackets.
template <class T>
Int orgqr(Int m, Int n, Int k, T* a, Int lda, const T* tau, T* work)
{
    if (n == 0) return 0;
    const Matrix<T> q{a, lda};
    set_unit_columns(m, n, k, q);
    if (k == 0) return 0;
    const Room<T> room(k, n, work);
    for (Int j = (k - 1) / room.width * room.width; j >= 0; j -= room.width) {
        const Int count = std::min(room.width, k - j), rows = m - j;
        const Matrix<T> block = q.from(j, j), triangle{room.block + BlockReflector<T>::memory(count), count};
        const auto h = form_block<T>(rows, count, block, tau + j, room.block);
        apply_block(Side::left, false, h, n - j - count, block.from(0, count), room.work);
        for (Int l = 0; l < count; ++l)
            for (Int i = 0; i < count; ++i) triangle(i, l) = -conjugated(h.top(l, i));
        multiply_triangle<T>('L', 'U', 'N', 'N', count, count, h.t, triangle);
        multiply_triangle<T>('R', 'U', 'N', 'N', rows - count, count, triangle, block.from(count, 0));
        set_unit_columns(count, count, 0, block);
        multiply<T>('N', 'N', count, count, count, 1, h.top, triangle, 1, block);
        for (Int l = j; l < j + count; ++l) std::fill_n(&q(0, l), j, T());
    }
    return 0;
}

template <class T>
Int ormqr(char side, char trans, Int m, Int n, Int k, const T* a, Int lda, const T* tau, T* c, Int ldc, T* work)
{
    if (m == 0 || n == 0 || k == 0) return 0;
    const bool left = side == 'L', adjoint_q = trans != 'N', forward = left == adjoint_q;
    const Int order = left ? m : n, others = left ? n : m;
    const Room<T> room(k, others, work);
    const Int blocks = (k + room.width - 1) / room.width;
    for (Int b = 0; b < blocks; ++b) {
        const Int j = (forward ? b : blocks - 1 - b) * room.width, count = std::min(room.width, k - j);
        const auto h = form_block<T>(order - j, count, Matrix<const T>{a, lda}.from(j, j), tau + j, room.block);
        const Matrix<T> part = left ? Matrix<T>{c + j, ldc} : Matrix<T>{c + j * ldc, ldc};
        apply_block(left ? Side::left : Side::right, adjoint_q, h, others, part, room.work);
    }
    return 0;
}

INSTANTIATE(geqrf)
INSTANTIATE(orgqr)
INSTANTIATE(ormqr)

} // namespace ork::lapack
