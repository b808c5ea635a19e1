// SPDX-License-Identifier: MIT
// Eigen's decompositions in place behind LAPACK's signatures, of matrices whose order is known at compile time and of
// any.
#include <Eigen/Cholesky>
#include <Eigen/Core>
#include <Eigen/LU>
#include <Eigen/QR>
#include <algorithm>
#include <utility>

#include "peers/lapack.h"

namespace ork::peers {
namespace {

template <class T, int order>
struct Decompositions {
    using Matrix = Eigen::Matrix<T, order, order>;
    using Map = Eigen::Map<Matrix>;
    // Sizes of a fixed order are those of the type.
    static Map map(T* a, int64_t m, int64_t n)
    {
        if constexpr (order == Eigen::Dynamic)
            return Map(a, m, n);
        else
            return Map(a);
    }

    static void lu(const int64_t* m, const int64_t* n, T* a, const int64_t*, int64_t* ipiv, int64_t* info)
    {
        Map matrix = map(a, *m, *n);
        const Eigen::PartialPivLU<Eigen::Ref<Matrix>> result(matrix);
        // Kept as an application would, which needs it to solve.
        std::copy_n(result.permutationP().indices().data(), *n, reinterpret_cast<int*>(ipiv));
        *info = 0;
    }
    static void cholesky(const char*, const int64_t* n, T* a, const int64_t*, int64_t* info, size_t)
    {
        Map matrix = map(a, *n, *n);
        const Eigen::LLT<Eigen::Ref<Matrix>, Eigen::Lower> result(matrix);
        *info = result.info() != Eigen::Success;
    }
    static void qr(const int64_t* m, const int64_t* n, T* a, const int64_t*, T* tau, T*, const int64_t*, int64_t* info)
    {
        Map matrix = map(a, *m, *n);
        const Eigen::HouseholderQR<Eigen::Ref<Matrix>> result(matrix);
        std::copy_n(result.hCoeffs().data(), *n, tau);
        *info = 0;
    }
    static void* find(const std::string& stem)
    {
        return stem == "getrf"   ? reinterpret_cast<void*>(lu)
               : stem == "potrf" ? reinterpret_cast<void*>(cholesky)
                                 : reinterpret_cast<void*>(qr);
    }
};

template <class T, int... orders>
void* find(const std::string& stem, int fixed, std::integer_sequence<int, orders...>)
{
    void* found = fixed == 0 ? Decompositions<T, Eigen::Dynamic>::find(stem) : nullptr;
    ((fixed == orders ? void(found = Decompositions<T, orders>::find(stem)) : void()), ...);
    return found;
}

} // namespace

void* eigen_lapack_symbol(const std::string& symbol, int fixed)
{
    const auto& known = lapack_routines();
    const std::string routine = symbol.substr(0, symbol.size() - 1);
    if (std::find(known.begin(), known.end(), routine) == known.end()) return nullptr;
    // Beyond these the loops are the same, and the compiler takes minutes for each.
    using All = std::integer_sequence<int, 2, 3, 4, 6, 8>;
    using Some = std::integer_sequence<int, 2, 4>;
    const std::string stem = routine.substr(1);
    switch (symbol[0]) {
    case 's':
        return find<float>(stem, fixed, Some{});
    case 'd':
        return find<double>(stem, fixed, All{});
    case 'c':
        return find<std::complex<float>>(stem, fixed, Some{});
    default:
        return find<std::complex<double>>(stem, fixed, Some{});
    }
}

} // namespace ork::peers
