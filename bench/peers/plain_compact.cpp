// SPDX-License-Identifier: MIT
// Factorisations of one small matrix as plain loops by columns, without exchanges of rows; the compiler makes of them
// what it can.
#include <cmath>
#include <type_traits>

#include "peers/compact.h"

namespace ork::peers {
namespace {

template <class T>
struct Plain {
    using R = Real<T>;

    static T conjugate(T a)
    {
        if constexpr (is_complex<T>)
            return {a.real(), -a.imag()};
        else
            return a;
    }

    static void lu(const int64_t* m, const int64_t* n, T* a, const int64_t* lda, int64_t* info)
    {
        const int64_t rows = *m, columns = *n, ld = *lda;
        for (int64_t j = 0; j < rows && j < columns; ++j) {
            const T q = T(1) / a[j + j * ld];
            for (int64_t i = j + 1; i < rows; ++i) a[i + j * ld] *= q;
            for (int64_t k = j + 1; k < columns; ++k) {
                const T u = a[j + k * ld];
                for (int64_t i = j + 1; i < rows; ++i) a[i + k * ld] -= a[i + j * ld] * u;
            }
        }
        *info = 0;
    }
    static void cholesky(const char*, const int64_t* n, T* a, const int64_t* lda, int64_t* info)
    {
        const int64_t order = *n, ld = *lda;
        for (int64_t j = 0; j < order; ++j) {
            const R d = std::sqrt(std::real(a[j + j * ld]));
            a[j + j * ld] = d;
            for (int64_t i = j + 1; i < order; ++i) a[i + j * ld] /= d;
            for (int64_t k = j + 1; k < order; ++k) {
                const T l = conjugate(a[k + j * ld]);
                for (int64_t i = k; i < order; ++i) a[i + k * ld] -= a[i + j * ld] * l;
            }
        }
        *info = 0;
    }
    static void qr(const int64_t* m, const int64_t* n, T* a, const int64_t* lda, T* tau, T*, const int64_t*,
                   int64_t* info)
    {
        const int64_t rows = *m, columns = *n, ld = *lda;
        for (int64_t j = 0; j < rows && j < columns; ++j) {
            T* v = a + j * ld;
            R sum = std::imag(v[j]) * std::imag(v[j]);
            for (int64_t i = j + 1; i < rows; ++i) sum += std::real(v[i] * conjugate(v[i]));
            tau[j] = 0;
            if (sum == 0) continue;
            const R x = std::real(v[j]), norm = std::sqrt(sum + x * x), beta = x < 0 ? norm : -norm;
            const T scale = T(1) / (v[j] - beta);
            tau[j] = (beta - v[j]) / beta;
            for (int64_t i = j + 1; i < rows; ++i) v[i] *= scale;
            v[j] = beta;
            for (int64_t k = j + 1; k < columns; ++k) {
                T* c = a + k * ld;
                T w = c[j];
                for (int64_t i = j + 1; i < rows; ++i) w += conjugate(v[i]) * c[i];
                w *= conjugate(tau[j]);
                c[j] -= w;
                for (int64_t i = j + 1; i < rows; ++i) c[i] -= v[i] * w;
            }
        }
        *info = 0;
    }
    static void* find(const std::string& stem)
    {
        return stem == "getrfnp" ? reinterpret_cast<void*>(lu)
               : stem == "potrf" ? reinterpret_cast<void*>(cholesky)
                                 : reinterpret_cast<void*>(qr);
    }
};

} // namespace

void* plain_factorisation(const std::string& routine)
{
    const std::string stem = routine.substr(1);
    switch (routine[0]) {
    case 's':
        return Plain<float>::find(stem);
    case 'd':
        return Plain<double>::find(stem);
    case 'c':
        return Plain<std::complex<float>>::find(stem);
    default:
        return Plain<std::complex<double>>::find(stem);
    }
}

} // namespace ork::peers
