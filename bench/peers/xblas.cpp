// SPDX-License-Identifier: MIT
#include "peers/xblas.h"

#include <algorithm>
#include <cmath>
#include <dlfcn.h>
#include <limits>

#include "ork/abi/xblas.h"
#include "ork/ork.h"

namespace ork::peers {
namespace {

using Int = xblas::Int;
using Wide = long double;

enum class Kind { general, band, symmetric, hermitian };

template <class T>
class Xblas final : public Problem {
public:
    Xblas(const XblasCase& c, Kind kind)
        : symbol_(c.routine), kind_(kind), trans_(c.letter == 'N'   ? 111
                                                  : c.letter == 'T' ? 112
                                                                    : 113),
          uplo_(c.letter == 'U' ? 121 : 122), m_(c.m), n_(kind == Kind::band ? c.m : c.n), diagonals_(c.n),
          lda_(kind == Kind::band ? 2 * c.n + 1 : c.m), a_(static_cast<size_t>(lda_ * n_)),
          x_(static_cast<size_t>(trans_ == 111 || triangle() ? n_ : m_), 64),
          y_(static_cast<size_t>(trans_ == 111 || triangle() ? m_ : n_), 128)
    {
        Random random;
        random.fill(a_), random.fill(x_);
        if (kind == Kind::hermitian)
            for (Int j = 0; j < n_; ++j) reinterpret_cast<Real<T>*>(&a_[static_cast<size_t>(j * (lda_ + 1))])[1] = 0;
    }

    std::string symbol() const override { return symbol_; }
    // Products of real numbers, for figures in millions a second.
    double work() const override
    {
        double terms = 0;
        if (kind_ == Kind::band)
            for (Int j = 0; j < n_; ++j)
                terms += static_cast<double>(std::min(n_ - 1, j + diagonals_) - std::max<Int>(0, j - diagonals_) + 1);
        else
            terms = static_cast<double>(m_) * static_cast<double>(n_);
        return (is_complex<T> ? 4e3 : 1e3) * terms;
    }
    void run(void* routine, long calls) override
    {
        using Calls = xblas::Calls<T>;
        const Int one = 1, extra = 214;
        const T alpha(1), beta(0);
        const T *a = a_.data(), *x = x_.data();
        for (; calls > 0; --calls)
            if (kind_ == Kind::general)
                reinterpret_cast<typename Calls::gemv_x*>(routine)(&trans_, &m_, &n_, &alpha, a, &lda_, x, &one, &beta,
                                                                   y_.data(), &one, &extra);
            else if (kind_ == Kind::band)
                reinterpret_cast<typename Calls::gbmv_x*>(routine)(&trans_, &m_, &n_, &diagonals_, &diagonals_, &alpha,
                                                                   a, &lda_, x, &one, &beta, y_.data(), &one, &extra);
            else
                reinterpret_cast<typename Calls::symv_x*>(routine)(&uplo_, &n_, &alpha, a, &lda_, x, &one, &beta,
                                                                   y_.data(), &one, &extra);
    }
    // Against long double, to the rounding of y and what long double itself may have lost.
    std::string check(void* routine) override
    {
        std::fill_n(y_.data(), y_.size(), T(std::numeric_limits<Real<T>>::quiet_NaN()));
        run(routine, 1);
        for (size_t k = 0; k < y_.size(); ++k) {
            Wide re = 0, im = 0, sizes = 0;
            for (size_t t = 0; t < x_.size(); ++t) {
                const std::complex<Wide> a = element(static_cast<Int>(k), static_cast<Int>(t)), x = x_[t];
                re += a.real() * x.real() - a.imag() * x.imag();
                im += a.real() * x.imag() + a.imag() * x.real();
                sizes += std::abs(a) * std::abs(x);
            }
            const std::complex<Wide> got = y_[k];
            const Wide lost = static_cast<Wide>(2 * x_.size()) * std::numeric_limits<Wide>::epsilon() * sizes;
            const Wide unit = std::numeric_limits<Real<T>>::epsilon();
            if (!(std::fabs(got.real() - re) <= lost + unit * std::fabs(re))) return mismatch(k, got.real(), re);
            if (!(std::fabs(got.imag() - im) <= lost + unit * std::fabs(im))) return mismatch(k, got.imag(), im);
        }
        return {};
    }
    std::vector<Limit> limits() override { return {}; }

private:
    bool triangle() const { return kind_ == Kind::symmetric || kind_ == Kind::hermitian; }
    // op(A)(k, t)
    std::complex<Wide> element(Int k, Int t) const
    {
        const bool mirrored = triangle() ? (uplo_ == 121 ? k > t : k < t) : trans_ != 111;
        const Int i = mirrored ? t : k, j = mirrored ? k : t;
        if (kind_ == Kind::band && std::abs(i - j) > diagonals_) return 0;
        const Int place = kind_ == Kind::band ? diagonals_ + i - j + j * lda_ : i + j * lda_;
        const std::complex<Wide> a = a_[static_cast<size_t>(place)];
        const bool conjugate = triangle() ? kind_ == Kind::hermitian && mirrored : trans_ == 113;
        return conjugate ? std::conj(a) : a;
    }

    std::string symbol_;
    Kind kind_;
    Int trans_, uplo_, m_, n_, diagonals_, lda_;
    Array<T> a_, x_, y_;
};

} // namespace

std::unique_ptr<Problem> make_xblas(const XblasCase& c)
{
    const std::string stem = c.routine.empty() ? "" : c.routine.substr(1);
    const bool triangle = stem == "symv_x" || stem == "hemv_x";
    if (std::string(triangle ? "UL" : "NTC").find(c.letter) == std::string::npos) return nullptr;
    if (triangle && c.m != c.n) return nullptr;
    Kind kind;
    if (stem == "gemv_x")
        kind = Kind::general;
    else if (stem == "gbmv_x")
        kind = Kind::band;
    else if (stem == "symv_x")
        kind = Kind::symmetric;
    else if (stem == "hemv_x" && (c.routine[0] == 'c' || c.routine[0] == 'z'))
        kind = Kind::hermitian;
    else
        return nullptr;
    switch (c.routine[0]) {
    case 's':
        return std::make_unique<Xblas<float>>(c, kind);
    case 'd':
        return std::make_unique<Xblas<double>>(c, kind);
    case 'c':
        return std::make_unique<Xblas<std::complex<float>>>(c, kind);
    case 'z':
        return std::make_unique<Xblas<std::complex<double>>>(c, kind);
    default:
        return nullptr;
    }
}

void* xblas_kernel(const std::string& symbol)
{
    if (ork_initialize() != ORK_OK) return nullptr;
    void* library = dlopen(ork_kernel_library(), RTLD_LAZY | RTLD_NOLOAD);
    if (library == nullptr) return nullptr;
    void* routine = dlsym(library, ("ork_xblas_nx2_blas_" + symbol).c_str());
    dlclose(library);
    return routine;
}

} // namespace ork::peers
