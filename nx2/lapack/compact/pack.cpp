// SPDX-License-Identifier: MIT
// Matrices into packs and back: a square of numbers at a time changes rows and columns in registers. A line is a
// column, or a row where matrices are stored by rows; its k-th real number goes to place k w of the pack's line,
// imaginary parts included.
#include "lapack/compact/slices.h"

namespace ork::lapack {
namespace {

template <class T>
struct Copy {
    using R = Real<T>;
    static constexpr Int lanes = Vec<R>::lanes, parts = is_complex<T> ? 2 : 1;
    Shape shape;
    Int lines, length; // of a line, in real numbers
    Int lda, ldp, packs, count;

    Copy(Int layout, Int m, Int n, Int lda, Int ldp, Int format, Int nmat)
        : shape(Shape::of<R>(layout, format, nmat)), lines(shape.rows() ? m : n),
          length((shape.rows() ? n : m) * parts), lda(lda), ldp(ldp), packs(0), count(nmat)
    {
        const bool exists = shape.width > 0 && (layout == by_rows || layout == by_columns) && nmat > 0;
        if (exists && m > 0 && n > 0) packs = (nmat + shape.width - 1) / shape.width;
    }
    // slice(first matrix, how many of its lanes have one, where it begins in the packs)
    template <class Slice>
    void each(Slice&& slice) const
    {
        const Int size = ldp * lines * shape.width * parts;
        for (Int pack = 0; pack < packs; ++pack)
            for (Int lane = 0; lane < shape.width; lane += lanes) {
                const Int first = pack * shape.width + lane, left = count - first;
                slice(first, left < 0 ? 0 : left < lanes ? left : lanes, pack * size + lane);
            }
    }
};

template <class T>
void pack(const Copy<T>& copy, const T* const* a, Real<T>* packs)
{
    using R = Real<T>;
    constexpr Int lanes = Copy<T>::lanes, parts = Copy<T>::parts;
    const Int width = copy.shape.width;
    copy.each([&](Int first, Int present, Int offset) {
        for (Int line = 0; line < copy.lines; ++line) {
            R* to = packs + offset + line * copy.ldp * width * parts;
            Int k = 0;
            if (present == lanes)
                for (; k + lanes <= copy.length; k += lanes) {
                    Vec<R> x[lanes];
#pragma GCC unroll 4
                    for (Int q = 0; q < lanes; ++q) x[q] = load(reals(a[first + q] + line * copy.lda) + k);
                    transpose(x);
#pragma GCC unroll 4
                    for (Int q = 0; q < lanes; ++q) store(to + (k + q) * width, x[q]);
                }
            for (; k < copy.length; ++k)
                for (Int q = 0; q < lanes; ++q)
                    to[k * width + q] =
                        q < present ? reals(a[first + q] + line * copy.lda)[k] : R(k == line * parts ? 1 : 0);
        }
    });
}

template <class T>
void unpack(const Copy<T>& copy, T* const* a, const Real<T>* packs)
{
    using R = Real<T>;
    constexpr Int lanes = Copy<T>::lanes, parts = Copy<T>::parts;
    const Int width = copy.shape.width;
    copy.each([&](Int first, Int present, Int offset) {
        for (Int line = 0; line < copy.lines; ++line) {
            const R* from = packs + offset + line * copy.ldp * width * parts;
            Int k = 0;
            if (present == lanes)
                for (; k + lanes <= copy.length; k += lanes) {
                    Vec<R> x[lanes];
#pragma GCC unroll 4
                    for (Int q = 0; q < lanes; ++q) x[q] = load(from + (k + q) * width);
                    transpose(x);
#pragma GCC unroll 4
                    for (Int q = 0; q < lanes; ++q) store(reals(a[first + q] + line * copy.lda) + k, x[q]);
                }
            for (; k < copy.length; ++k)
                for (Int q = 0; q < present; ++q) reals(a[first + q] + line * copy.lda)[k] = from[k * width + q];
        }
    });
}

} // namespace

ORK_LAPACK_EXPORT(pack_compact_ps)
(const Int* layout, const Int* m, const Int* n, const T* const* a, const Int* lda, R* packs, const Int* ldp,
 const Int* format, const Int* nmat)
{
    pack<T>({*layout, *m, *n, *lda, *ldp, *format, *nmat}, a, packs);
}

ORK_LAPACK_EXPORT(unpack_compact_ps)
(const Int* layout, const Int* m, const Int* n, T* const* a, const Int* lda, const R* packs, const Int* ldp,
 const Int* format, const Int* nmat)
{
    unpack<T>({*layout, *m, *n, *lda, *ldp, *format, *nmat}, a, packs);
}

} // namespace ork::lapack
