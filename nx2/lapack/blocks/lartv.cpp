// SPDX-License-Identifier: MIT
// Vectors of plane rotations.
#include "lapack/members.h"
#include "lapack/scalar.h"
#include "lapack/streams.h"

namespace ork::lapack {
namespace {

template <class T>
struct Rotations {
    template <int width, class X, class C, class S>
    [[gnu::always_inline]] void at(X x, X y, C c, S s) const
    {
        const Vec<T> u = x.get(), v = y.get(), sine = s.get();
        if constexpr (is_complex<T>) {
            const Vec<Real<T>> cosine = c.get_twice();
            const Vec<T> turned{cosine * v.v};
            x.put({sum(cosine * u.v, times(sine, v).v)});
            y.put(turned - times(conj(sine), u));
        } else {
            const Vec<T> cosine = c.get(), turned = cosine * v;
            x.put(sum(cosine * u, sine * v));
            y.put(turned - sine * u);
        }
    }
};

} // namespace
} // namespace ork::lapack

using namespace ork::lapack;

ORK_LAPACK_EXPORT(lartv)
(const Int* n, T* x, const Int* incx, T* y, const Int* incy, const R* c, const T* s, const Int* incc)
{
    for_each_element<T>(*n, Rotations<T>{}, Stream<T>(x, *n, *incx), Stream<T>(y, *n, *incy),
                        Stream<const R>(c, *n, *incc), Stream<const T>(s, *n, *incc));
}
