// SPDX-License-Identifier: MIT
// Many tridiagonal systems side by side (tridiagonal.h).
#include "blas/gemm/product.h"
#include "lapack/members.h"
#include "lapack/tridiagonal.h"

namespace ork::lapack {
namespace {

using tridiagonal::Task;

// A task writes what it says and no other of its operands.
template <Task task>
Int run(char layout, Int n, Int systems, const T* dl, const T* d, const T* du, T* b, Int ld, T* scratch)
{
    const TridiagonalSystems<T> a{n, dl, const_cast<T*>(d), const_cast<T*>(du), b, ld};
    if (gemm::is_letter(layout, 'I')) return tridiagonal::Interleaved<task, T>::run(a, systems, scratch);
    return tridiagonal::Consecutive<task, T>::run(a, systems, scratch);
}

} // namespace
} // namespace ork::lapack

using namespace ork::lapack;

ORK_LAPACK_EXPORT(gtsvnp_many)
(const char* layout, const Int* n, const Int* systems, const T* dl, const T* d, const T* du, T* b, const Int* ld,
 T* work, Int* info)
{
    *info = run<Task::solve>(*layout, *n, *systems, dl, d, du, b, *ld, work);
}

ORK_LAPACK_EXPORT(gttrfnp_many)
(const char* layout, const Int* n, const Int* systems, const T* dl, T* d, T* du, const Int* ld, Int* info)
{
    *info = run<Task::factor>(*layout, *n, *systems, dl, d, du, nullptr, *ld, nullptr);
}

ORK_LAPACK_EXPORT(gttrsnp_many)
(const char* layout, const Int* n, const Int* systems, const T* dl, const T* d, const T* du, T* b, const Int* ld)
{
    run<Task::apply>(*layout, *n, *systems, dl, d, du, b, *ld, nullptr);
}
