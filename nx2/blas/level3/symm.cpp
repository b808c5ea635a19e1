// SPDX-License-Identifier: MIT
// C <- alpha A B + beta C or alpha B A + beta C, A symmetric or Hermitian, one triangle of it stored. Every element has
// the bits that gemm would give with all of A: blocks of depth one after another, in each of which the part of A before
// or behind the diagonal is read in place or transposed, and the square on the diagonal is completed beside it.
#include <cstddef>

#include "blas/gemm/multiply.h"
#include "blas/gemm/scale.h"
#include "frame/core_imports.h"
#include "frame/export.h"

namespace ork::level3 {

using namespace gemm;

// Without its other triangle.
template <class T, bool hermitian>
struct Symmetric {
    const T* a;
    Int lda;
    bool lower;

    // Elements (i, l), i >= first, l >= depth, all of them on one side of the diagonal, i as the outer direction.
    Operand<T> beside(Int first, Int depth) const
    {
        const bool stored = lower ? first > depth : first < depth;
        return {stored ? a + first + depth * lda : a + depth + first * lda, stored ? 1 : lda, stored ? lda : 1,
                hermitian && !stored};
    }

    // Rows [first, last) of the square at `corner` of order `size`: element (i, l) to square[i - first + l * ld]. In
    // tiles of 8 x 8, so that what is read across columns stays in the cache.
    void complete(Int corner, Int first, Int last, Int size, T* square, Int ld) const
    {
        constexpr Int edge = 8;
        const T* origin = a + corner * (lda + 1);
        for (Int l0 = 0; l0 < size; l0 += edge)
            for (Int i0 = first; i0 < last; i0 += edge) {
                const Int l_end = least(size, l0 + edge), i_end = least(last, i0 + edge);
                T* to = square - first;
                if (lower ? i0 >= l_end : i_end <= l0) { // all stored
                    for (Int l = l0; l < l_end; ++l)
                        for (Int i = i0; i < i_end; ++i) to[i + l * ld] = origin[i + l * lda];
                } else if (lower ? i_end <= l0 : i0 >= l_end) {
                    for (Int i = i0; i < i_end; ++i)
                        for (Int l = l0; l < l_end; ++l) to[i + l * ld] = conjugate<hermitian>(origin[l + i * lda]);
                } else if (i0 == l0 && i_end == l_end) { // on the diagonal: every stored element goes to two places
                    for (Int j = l0; j < l_end; ++j) {
                        const T* column = origin + j * lda;
                        for (Int i = lower ? j : i0; i < (lower ? i_end : j + 1); ++i) {
                            to[i + j * ld] = column[i];
                            to[j + i * ld] = conjugate<hermitian>(column[i]);
                        }
                        if constexpr (hermitian) to[j + j * ld] = {column[j].re, 0};
                    }
                } else {
                    for (Int l = l0; l < l_end; ++l)
                        for (Int i = i0; i < i_end; ++i) to[i + l * ld] = one(origin, i, l);
                }
            }
    }

private:
    T one(const T* origin, Int i, Int l) const
    {
        if constexpr (hermitian)
            if (i == l) return {origin[i + l * lda].re, 0};
        return i == l || (i > l) == lower ? origin[i + l * lda] : conjugate<hermitian>(origin[l + i * lda]);
    }
};

// Squares up to this order are completed on the stack.
constexpr Int small_square = 32;

// Room for rows of a square: all of them if there is memory, few otherwise.
template <class T>
class SquareBuffer {
public:
    explicit SquareBuffer(Int size) : rows_(size)
    {
        if (size <= small_square) return;
        heap_ = ork_serv_allocate(static_cast<std::size_t>(leading() * size) * sizeof(T), 64);
        if (heap_ == nullptr) rows_ = small_square * (small_square + padding) / size - padding;
    }
    ~SquareBuffer()
    {
        if (heap_ != nullptr) ork_serv_deallocate(heap_);
    }
    SquareBuffer(const SquareBuffer&) = delete;
    SquareBuffer& operator=(const SquareBuffer&) = delete;

    Int rows() const { return rows_; } // at a time
    Int leading() const { return rows_ + padding; }
    T* data() { return heap_ != nullptr ? static_cast<T*>(heap_) : stack_; }

private:
    static constexpr Int padding = is_complex<T> ? 1 : 3; // so that a row's elements fall on different cache sets
    static_assert(small_square * (small_square + padding) / 256 > padding); // the deepest block still fits somehow
    Int rows_;
    void* heap_ = nullptr;
    alignas(16) T stack_[small_square * (small_square + padding)];
};

template <bool hermitian, class T>
void symm(bool left, bool lower, Int m, Int n, T alpha, const T* a, Int lda, const T* b, Int ldb, T beta, T* c, Int ldc)
{
    if (m <= 0 || n <= 0) return;
    const bool clears = beta == T(0), adds = !(alpha == T(0));
    if (!(beta == T(1)) && !(clears && adds)) scale(m, n, beta, c, ldc);
    if (!adds) return;

    const Symmetric<T, hermitian> matrix{a, lda, lower};
    const Int order = left ? m : n, step = block_depth(order, Units<T>::k);
    SquareBuffer<T> square(order < step ? order : step);
    for (Int l = 0; l < order; l += step) {
        const Int depth = order - l < step ? order - l : step;
        // Rows (left) or columns (right) of C from `first` on; part(i, l) = element (first + i, l) of A.
        const auto add = [&](Int first, Int count, Operand<T> part) {
            if (count <= 0) return;
            if (left) {
                multiply(Product<T>{count, n, depth, alpha, part, {b + l, ldb, 1}, c + first, ldc, clears && l == 0});
            } else {
                part.conjugated = part.conjugated != hermitian; // A(l, i) instead of A(i, l)
                multiply(Product<T>{
                    m, count, depth, alpha, {b + l * ldb, 1, ldb}, part, c + first * ldc, ldc, clears && l == 0});
            }
        };
        add(0, l, matrix.beside(0, l));
        for (Int i = 0; i < depth; i += square.rows()) {
            const Int last = depth - i < square.rows() ? depth : i + square.rows();
            matrix.complete(l, i, last, depth, square.data(), square.leading());
            add(l + i, last - i, {square.data(), 1, square.leading()});
        }
        add(l + depth, order - l - depth, matrix.beside(l + depth, l));
    }
}

} // namespace ork::level3

using namespace ork;
using Ptr = const std::int64_t*;
using Letter = const char*;

#define MEMBER(routine, T, hermitian)                                                                                  \
    ORK_EXPORT void ork_blas_nx2_x##routine(Letter side, Letter uplo, Ptr m, Ptr n, const T* alpha, const T* a,        \
                                            Ptr lda, const T* b, Ptr ldb, const T* beta, T* c, Ptr ldc)                \
    {                                                                                                                  \
        level3::symm<hermitian>(gemm::is_letter(*side, 'L'), gemm::is_letter(*uplo, 'L'), *m, *n, *alpha, a, *lda, b,  \
                                *ldb, *beta, c, *ldc);                                                                 \
    }
MEMBER(ssymm, float, false)
MEMBER(dsymm, double, false)
MEMBER(csymm, Complex<float>, false)
MEMBER(zsymm, Complex<double>, false)
MEMBER(chemm, Complex<float>, true)
MEMBER(zhemm, Complex<double>, true)
