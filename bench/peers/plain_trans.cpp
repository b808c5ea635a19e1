// SPDX-License-Identifier: MIT
// Matrices moved as anybody would move them, all by columns: one loop in the other, and tile by tile.
#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

#include "peers/trans.h"

namespace ork::peers {
namespace {

using Index = std::ptrdiff_t;

template <bool conjugate, class T>
inline T conjugated(T x)
{
    if constexpr (conjugate && is_complex<T>)
        return std::conj(x);
    else
        return x;
}
// Without the language's own handling of infinities.
template <class T>
inline T product(T a, T x)
{
    if constexpr (is_complex<T>)
        return {a.real() * x.real() - a.imag() * x.imag(), a.real() * x.imag() + a.imag() * x.real()};
    else
        return a * x;
}

// Calls body(j0, j1, i0, i1) for the tiles of n columns of length m; tile 0: for all at once.
template <int tile, class Body>
inline void tiles(Index m, Index n, const Body& body)
{
    if constexpr (tile == 0)
        body(0, n, 0, m);
    else
        for (Index j = 0; j < n; j += tile)
            for (Index i = 0; i < m; i += tile) body(j, std::min(n, j + tile), i, std::min(m, i + tile));
}

// f(x) of the elements x of an m x n matrix to its transpose.
template <int tile, class T, class F>
void transpose(Index m, Index n, const T* a, Index lda, T* b, Index ldb, const F& f)
{
    tiles<tile>(m, n, [&](Index j0, Index j1, Index i0, Index i1) {
        for (Index j = j0; j < j1; ++j)
            for (Index i = i0; i < i1; ++i) b[i * ldb + j] = f(a[j * lda + i]);
    });
}
template <class T, class F>
void copy(Index m, Index n, const T* a, Index lda, T* b, Index ldb, const F& f)
{
    for (Index j = 0; j < n; ++j)
        for (Index i = 0; i < m; ++i) b[j * ldb + i] = f(a[j * lda + i]);
}

// Calls body with the function of an element that letter and alpha make.
template <class T, class Body>
void with_function(char letter, T alpha, const Body& body)
{
    const bool conjugate = letter == 'C' || letter == 'R';
    if (alpha == T(1) && conjugate)
        body([](T x) { return conjugated<true>(x); });
    else if (alpha == T(1))
        body([](T x) { return x; });
    else if (conjugate)
        body([alpha](T x) { return product(alpha, conjugated<true>(x)); });
    else
        body([alpha](T x) { return product(alpha, x); });
}
bool transposes(char letter) { return letter == 'T' || letter == 'C'; }

template <int tile, class T>
void omatcopy(const char*, const char* trans, const int* m, const int* n, const T* alpha, const T* a, const int* lda,
              T* b, const int* ldb)
{
    with_function(*trans, *alpha, [&](const auto& f) {
        transposes(*trans) ? transpose<tile>(*m, *n, a, *lda, b, *ldb, f) : copy(*m, *n, a, *lda, b, *ldb, f);
    });
}

template <int tile, class T, class F>
void transpose_square(Index n, T* a, Index lda, const F& f)
{
    tiles<tile>(n, n, [&](Index j0, Index j1, Index i0, Index i1) {
        if (i0 > j0) return;
        for (Index j = j0; j < j1; ++j) {
            for (Index i = i0; i < std::min(i1, j); ++i) {
                const T x = f(a[j * lda + i]);
                a[j * lda + i] = f(a[i * lda + j]);
                a[i * lda + j] = x;
            }
            if (i0 <= j && j < i1) a[j * lda + j] = f(a[j * lda + j]);
        }
    });
}

template <int tile, class T>
void imatcopy(const char*, const char* trans, const int* m, const int* n, const T* alpha, T* a, const int* lda,
              const int* ldb)
{
    with_function(*trans, *alpha, [&](const auto& f) {
        if (transposes(*trans) && *m == *n && *lda == *ldb) return transpose_square<tile>(*n, a, *lda, f);
        if (!transposes(*trans) && *lda == *ldb) return copy(*m, *n, a, *lda, a, *ldb, f);
        std::vector<T> buffer(static_cast<size_t>(*m) * static_cast<size_t>(*n));
        if (transposes(*trans)) {
            transpose<tile>(*m, *n, a, *lda, buffer.data(), *n, f);
            copy(*n, *m, buffer.data(), *n, a, *ldb, [](T x) { return x; });
        } else {
            copy(*m, *n, a, *lda, buffer.data(), *m, f);
            copy(*m, *n, buffer.data(), *m, a, *ldb, [](T x) { return x; });
        }
    });
}

template <int tile, class T>
void omatadd(const char*, const char* transa, const char* transb, const int* m, const int* n, const T* alpha,
             const T* a, const int* lda, const T* beta, const T* b, const int* ldb, T* c, const int* ldc)
{
    const Index along_a = transposes(*transa) ? *lda : 1, across_a = transposes(*transa) ? 1 : *lda;
    const Index along_b = transposes(*transb) ? *ldb : 1, across_b = transposes(*transb) ? 1 : *ldb;
    const auto add = [&](const auto& f, const auto& g, Index step_a, Index step_b) {
        tiles<tile>(*m, *n, [&](Index j0, Index j1, Index i0, Index i1) {
            for (Index j = j0; j < j1; ++j)
                for (Index i = i0; i < i1; ++i)
                    c[j * *ldc + i] = f(a[j * across_a + i * step_a]) + g(b[j * across_b + i * step_b]);
        });
    };
    // Of the letters without conjugation, which are those that are measured.
    const T x = *alpha, y = *beta;
    const auto f = [x](T u) { return product(x, u); }, g = [y](T u) { return product(y, u); };
    along_a == 1 && along_b == 1 ? add(f, g, 1, 1) : add(f, g, along_a, along_b);
}

template <class Function>
void* address(Function* function)
{
    return reinterpret_cast<void*>(function);
}

template <int tile, class T>
void* find(const std::string& stem)
{
    return stem == "omatcopy_"   ? address(omatcopy<tile, T>)
           : stem == "imatcopy_" ? address(imatcopy<tile, T>)
           : stem == "omatadd_"  ? address(omatadd<tile, T>)
                                 : nullptr;
}

template <int tile>
void* find(const std::string& symbol)
{
    const std::string stem = symbol.substr(1);
    switch (symbol[0]) {
    case 's':
        return find<tile, float>(stem);
    case 'd':
        return find<tile, double>(stem);
    case 'c':
        return find<tile, std::complex<float>>(stem);
    case 'z':
        return find<tile, std::complex<double>>(stem);
    default:
        return nullptr;
    }
}

} // namespace

void* plain_trans_symbol(const std::string& symbol) { return find<0>(symbol); }
void* tiled_trans_symbol(const std::string& symbol) { return find<32>(symbol); }

} // namespace ork::peers
