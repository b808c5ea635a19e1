// SPDX-License-Identifier: MIT
// Band and packed storage as the tests see it: the kernels by element type, and matrices whose unreferenced places hold
// NaN.
#pragma once

#include <complex>
#include <functional>

#include "blas/level2_kernels.h"
#include "support/reference.h"
#include "support/strided.h"

namespace ork::test::banded {

// Real kernels under the names of the symmetric ones, complex under those of the Hermitian ones. std::complex and the
// boundary's pairs share their layout.
template <class T>
struct Kernels;

#define ORK_REAL_KERNELS(T, p)                                                                                         \
    template <>                                                                                                        \
    struct Kernels<T> {                                                                                                \
        using Raw = T;                                                                                                 \
        static constexpr auto gbmv = ork_blas_nx2_##p##gbmv;                                                           \
        static constexpr auto sbmv = ork_blas_nx2_##p##sbmv;                                                           \
        static constexpr auto spmv = ork_blas_nx2_##p##spmv;                                                           \
        static constexpr auto spr = ork_blas_nx2_##p##spr;                                                             \
        static constexpr auto spr2 = ork_blas_nx2_##p##spr2;                                                           \
        static constexpr auto tbmv = ork_blas_nx2_##p##tbmv;                                                           \
        static constexpr auto tbsv = ork_blas_nx2_##p##tbsv;                                                           \
        static constexpr auto tpmv = ork_blas_nx2_##p##tpmv;                                                           \
        static constexpr auto tpsv = ork_blas_nx2_##p##tpsv;                                                           \
        static constexpr auto gem2v = ork_blas_nx2_##p##gem2vu;                                                        \
    };
#define ORK_COMPLEX_KERNELS(T, raw, p)                                                                                 \
    template <>                                                                                                        \
    struct Kernels<T> {                                                                                                \
        using Raw = raw;                                                                                               \
        static constexpr auto gbmv = ork_blas_nx2_##p##gbmv;                                                           \
        static constexpr auto sbmv = ork_blas_nx2_##p##hbmv;                                                           \
        static constexpr auto spmv = ork_blas_nx2_##p##hpmv;                                                           \
        static constexpr auto spr = ork_blas_nx2_##p##hpr;                                                             \
        static constexpr auto spr2 = ork_blas_nx2_##p##hpr2;                                                           \
        static constexpr auto tbmv = ork_blas_nx2_##p##tbmv;                                                           \
        static constexpr auto tbsv = ork_blas_nx2_##p##tbsv;                                                           \
        static constexpr auto tpmv = ork_blas_nx2_##p##tpmv;                                                           \
        static constexpr auto tpsv = ork_blas_nx2_##p##tpsv;                                                           \
        static constexpr auto gem2v = ork_blas_nx2_##p##gem2vc;                                                        \
    };
ORK_REAL_KERNELS(float, s)
ORK_REAL_KERNELS(double, d)
ORK_COMPLEX_KERNELS(std::complex<float>, ork_complex_float, c)
ORK_COMPLEX_KERNELS(std::complex<double>, ork_complex_double, z)
#undef ORK_REAL_KERNELS
#undef ORK_COMPLEX_KERNELS

template <class T>
auto raw(T* p)
{
    return reinterpret_cast<typename Kernels<T>::Raw*>(p);
}
template <class T>
auto raw(const T* p)
{
    return reinterpret_cast<const typename Kernels<T>::Raw*>(p);
}

// A matrix in its storage, tight between guarded pages. Places that no kernel may look at keep the guard's NaN.
template <class T>
class Stored {
public:
    static Stored band(std::int64_t rows, std::int64_t columns, std::int64_t kl, std::int64_t ku, std::int64_t padding,
                       Guard side, std::size_t offset = 0)
    {
        const std::int64_t ld = kl + ku + 1 + padding;
        Stored s(columns == 0 ? 0 : (columns - 1) * ld + kl + ku + 1, side, offset);
        s.rows_ = rows, s.columns_ = columns, s.kl_ = kl, s.ku_ = ku, s.ld_ = ld;
        return s;
    }
    static Stored packed(std::int64_t n, char uplo, Guard side, std::size_t offset = 0)
    {
        Stored s(n * (n + 1) / 2, side, offset);
        s.rows_ = s.columns_ = n, s.packed_ = uplo;
        (uplo == 'L' ? s.kl_ : s.ku_) = n;
        return s;
    }

    T* data() const { return memory_.data(); }
    const std::int64_t& ld() const { return ld_; }
    bool holds(std::int64_t i, std::int64_t j) const
    {
        return 0 <= i && i < rows_ && 0 <= j && j < columns_ && i - j <= kl_ && j - i <= ku_;
    }
    T& operator()(std::int64_t i, std::int64_t j) const
    {
        if (packed_ == 'U') return memory_[i + j * (j + 1) / 2];
        if (packed_ == 'L') return memory_[i - j + j * (2 * rows_ - j + 1) / 2];
        return memory_[ku_ + i - j + j * ld_];
    }
    template <class Element>
    void fill(Element&& element)
    {
        each([&](std::int64_t i, std::int64_t j) { (*this)(i, j) = element(i, j); });
        memory_.remember();
    }
    template <class Body>
    void each(Body&& body) const
    {
        for (std::int64_t j = 0; j < columns_; ++j)
            for (std::int64_t i = 0; i < rows_; ++i)
                if (holds(i, j)) body(i, j);
    }
    void read_only() { memory_.read_only(); }
    testing::AssertionResult unchanged_outside() const
    {
        std::vector<bool> held(static_cast<std::size_t>(memory_.size()));
        each([&](std::int64_t i, std::int64_t j) { held[static_cast<std::size_t>(&(*this)(i, j) - data())] = true; });
        return memory_.unchanged_except([&](std::int64_t at) { return held[static_cast<std::size_t>(at)]; });
    }

    // Element (i, j) of op of the general, triangular ('N' or 'U' diagonal) or symmetric matrix.
    Wide<quad> element(char trans, std::int64_t i, std::int64_t j, char diag = 'N') const
    {
        if (trans != 'N') std::swap(i, j);
        if (i == j && diag == 'U') return Wide<quad>(1);
        const Wide<quad> value = holds(i, j) ? Wide<quad>((*this)(i, j)) : Wide<quad>();
        return trans == 'C' && is_complex<T> ? conj(value) : value;
    }
    Wide<quad> symmetric(std::int64_t i, std::int64_t j) const
    {
        if (i == j) return Wide<quad>(std::real((*this)(i, i)));
        if (holds(i, j)) return Wide<quad>((*this)(i, j));
        if (!holds(j, i)) return Wide<quad>();
        return is_complex<T> ? conj(Wide<quad>((*this)(j, i))) : Wide<quad>((*this)(j, i));
    }

private:
    Stored(std::int64_t size, Guard side, std::size_t offset) : memory_(size, side, offset) {}

    Guarded<T> memory_;
    std::int64_t rows_ = 0, columns_ = 0, kl_ = 0, ku_ = 0, ld_ = 0;
    char packed_ = 0;
};

// alpha * sum over j of the elements that `there` says exist times x(j), plus beta y(i) unless beta is 0.
template <class T, class Element, class There>
std::vector<Expected<>> product(std::int64_t rows, std::int64_t columns, T alpha, Element&& element, There&& there,
                                const std::vector<T>& x, T beta, const std::vector<T>& y)
{
    std::vector<Expected<>> want(static_cast<std::size_t>(rows));
    for (std::int64_t i = 0; i < rows; ++i) {
        Expected<>& sum = want[static_cast<std::size_t>(i)];
        for (std::int64_t j = 0; j < columns; ++j)
            if (there(i, j))
                sum.add(multiply<T>(Wide<quad>(alpha),
                                    multiply<T>(element(i, j), Wide<quad>(x[static_cast<std::size_t>(j)]))));
        if (beta != T{}) sum.add(multiply<T>(Wide<quad>(beta), Wide<quad>(y[static_cast<std::size_t>(i)])));
    }
    return want;
}

template <class T>
T scalar(double re, double im)
{
    if constexpr (is_complex<T>)
        return T(static_cast<Real<T>>(re), static_cast<Real<T>>(im));
    else
        return static_cast<T>(re);
}

template <class T>
const char* transpositions()
{
    return is_complex<T> ? "NTC" : "NT";
}

} // namespace ork::test::banded
