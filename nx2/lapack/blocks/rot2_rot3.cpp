// SPDX-License-Identifier: MIT
// Reflectors of order 2 and 3 on pairs and triples of elements: the rows (x, y, z) times I - tau h h^H.
#include "lapack/members.h"
#include "lapack/scalar.h"
#include "lapack/streams.h"

namespace ork::lapack {
namespace {

struct Rot2 {
    Factor<T> tau, h2, conj_h2;

    template <int width, class X>
    [[gnu::always_inline]] void at(X x, X y) const
    {
        const Vec<T> u = x.get(), v = y.get();
        const Vec<T> part = tau * sum(u, h2 * v);
        x.put(u - part);
        y.put(v - conj_h2 * part);
    }
};

struct Rot3 {
    Factor<T> tau, h2, h3, conj_h2, conj_h3;

    template <int width, class X>
    [[gnu::always_inline]] void at(X x, X y, X z) const
    {
        const Vec<T> u = x.get(), v = y.get(), w = z.get();
        const Vec<T> part = tau * sum(sum(u, h2 * v), h3 * w);
        x.put(u - part);
        y.put(v - conj_h2 * part);
        z.put(w - conj_h3 * part);
    }
};

Factor<T> conjugate(T a) { return Factor<T>(conj(a)); }

} // namespace
} // namespace ork::lapack

using namespace ork::lapack;

ORK_LAPACK_EXPORT(rot2)
(const Int* n, T* x, const Int* incx, T* y, const Int* incy, const T* tau, const T* h2)
{
    for_each_element<T>(*n, Rot2{ork::Factor<T>(*tau), ork::Factor<T>(*h2), conjugate(*h2)}, Stream<T>(x, *n, *incx),
                        Stream<T>(y, *n, *incy));
}

ORK_LAPACK_EXPORT(rot3)
(const Int* n, T* x, const Int* incx, T* y, const Int* incy, T* z, const Int* incz, const T* tau, const T* h2,
 const T* h3)
{
    for_each_element<T>(
        *n, Rot3{ork::Factor<T>(*tau), ork::Factor<T>(*h2), ork::Factor<T>(*h3), conjugate(*h2), conjugate(*h3)},
        Stream<T>(x, *n, *incx), Stream<T>(y, *n, *incy), Stream<T>(z, *n, *incz));
}
