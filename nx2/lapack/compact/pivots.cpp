// SPDX-License-Identifier: MIT
// The first matrix whose factorisation failed, by its last pivot.
#include <limits>

#include "lapack/compact/select.h"
#include "lapack/compact/slices.h"

namespace ork::lapack {
namespace {

// Signs of the lanes that are zero, infinite or NaN; in complex, both parts zero or one not finite.
template <class R>
inline int unusable(Lanes<R> x)
{
    const Vec<R> size = abs(x.x), finite = broadcast(std::numeric_limits<R>::max());
    return signs(either(above(size, finite), is_zero(size)));
}
template <class R>
inline int unusable(Lanes<Complex<R>> x)
{
    const Vec<R> re = abs(x.re), im = abs(x.im), finite = broadcast(std::numeric_limits<R>::max());
    const Vec<R> larger = select(above(re, im), re, im);
    return signs(either(above(larger, finite), is_zero(larger)));
}

} // namespace

ORK_LAPACK_EXPORT(pivots_compact_ps)
(const Int* layout, const Int* m, const Int* n, const R* a, const Int* lda, Int* first, const Int* format,
 const Int* nmat)
{
    *first = 0;
    const Shape shape = Shape::of<R>(*layout, *format, *nmat);
    const Int last = (*m < *n ? *m : *n) - 1;
    if (last < 0) return;
    const auto array = shape.array<T>(a, *lda, *m, *n);
    for (Int pack = 0; pack < shape.packs; ++pack)
        for (Int lane = 0; lane < shape.width; lane += Vec<R>::lanes) {
            const int bad = unusable(Lanes<T>::at(array.matrix(pack, lane, shape.rows()), last, last));
            if (bad == 0) continue;
            *first = pack * shape.width + lane + __builtin_ctz(static_cast<unsigned>(bad)) + 1;
            return;
        }
}

} // namespace ork::lapack
