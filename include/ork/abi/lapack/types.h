/* SPDX-License-Identifier: MIT */
#ifndef ORK_ABI_LAPACK_TYPES_H
#define ORK_ABI_LAPACK_TYPES_H

#include <cstdint>

namespace ork::lapack {

using Int = std::int64_t;

template <class T>
struct PartOf {
    using type = T;
};
template <template <class> class Pair, class R>
struct PartOf<Pair<R>> {
    using type = R;
};
// The real type of an element: its own, or that of both parts of a complex one.
template <class T>
using Part = typename PartOf<T>::type;

} // namespace ork::lapack

#endif
