// SPDX-License-Identifier: MIT
// Results are checked with a vector: P L U x, L L^H x, A A^-1 x against A x or x; of QR, |R x| against |A x|.
#include "peers/factor.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include "ork/lapack.h"

namespace ork::peers {
namespace {

enum class Kind { lu, cholesky, qr, solve, inverse };

constexpr struct {
    const char* stem;
    Kind kind;
} stems[] = {{"getrf", Kind::lu},
             {"potrf", Kind::cholesky},
             {"geqrf", Kind::qr},
             {"gesv", Kind::solve},
             {"getri", Kind::inverse}};

void getrf(const int* n, float* a, int* ipiv, int* info) { ork_lapack_lp64_sgetrf(n, n, a, n, ipiv, info); }
void getrf(const int* n, double* a, int* ipiv, int* info) { ork_lapack_lp64_dgetrf(n, n, a, n, ipiv, info); }
void getrf(const int* n, std::complex<float>* a, int* ipiv, int* info)
{
    ork_lapack_lp64_cgetrf(n, n, a, n, ipiv, info);
}
void getrf(const int* n, std::complex<double>* a, int* ipiv, int* info)
{
    ork_lapack_lp64_zgetrf(n, n, a, n, ipiv, info);
}

template <class T>
class Factor final : public Problem {
public:
    Factor(const FactorCase& c, Kind kind)
        : routine_(c.routine), kind_(kind), n_(c.n), size_(static_cast<size_t>(c.n)), original_(size_ * size_),
          start_(size_ * size_, 64), a_(size_ * size_, 64), tau_(size_, 128), right_(size_), b_(size_, 256),
          work_(64 * size_ + 64, 192), ipiv_(size_)
    {
        Random random;
        random.fill(original_);
        random.fill(right_);
        for (size_t i = 0; i < size_; ++i)
            original_[i * (size_ + 1)] = kind == Kind::cholesky ? T(2 * c.n) : original_[i * (size_ + 1)] + T(1);
        std::copy_n(original_.data(), size_ * size_, start_.data());
        if (kind == Kind::inverse) getrf(&n_, start_.data(), ipiv_.data(), &info_);
    }

    std::string symbol() const override { return routine_ + "_"; }
    double work() const override
    {
        const double n = n_, cube = n * n * n * (is_complex<T> ? 4 : 1);
        switch (kind_) {
        case Kind::cholesky:
            return cube / 3;
        case Kind::lu:
        case Kind::solve:
            return 2 * cube / 3;
        default:
            return 4 * cube / 3;
        }
    }
    std::vector<Limit> limits() override { return {}; }

    void run(void* routine, long calls) override
    {
        const auto call = [&]<class... A>(A... arguments) { reinterpret_cast<void (*)(A...)>(routine)(arguments...); };
        const int lwork = static_cast<int>(work_.size()), one = 1;
        for (; calls > 0; --calls) {
            std::copy_n(start_.data(), size_ * size_, a_.data());
            switch (kind_) {
            case Kind::lu:
                call(&n_, &n_, a_.data(), &n_, ipiv_.data(), &info_);
                break;
            case Kind::cholesky:
                call("L", &n_, a_.data(), &n_, &info_, size_t{1});
                break;
            case Kind::qr:
                call(&n_, &n_, a_.data(), &n_, tau_.data(), work_.data(), &lwork, &info_);
                break;
            case Kind::solve:
                std::copy_n(right_.data(), size_, b_.data());
                call(&n_, &one, a_.data(), &n_, ipiv_.data(), b_.data(), &n_, &info_);
                break;
            case Kind::inverse:
                call(&n_, a_.data(), &n_, ipiv_.data(), work_.data(), &lwork, &info_);
                break;
            }
        }
    }

    std::string check(void* routine) override
    {
        run(routine, 1);
        if (info_ != 0) return "info is not 0";
        const Vector x(right_.data(), right_.data() + size_);
        const auto everywhere = [](size_t, size_t) { return true; };
        const auto upper = [](size_t i, size_t j) { return i <= j; };
        const auto lower = [](size_t i, size_t j) { return i >= j; };
        const auto below = [](size_t i, size_t j) { return i > j; };
        switch (kind_) {
        case Kind::lu: {
            const Vector ux = times(a_, x, upper);
            Vector y = times(a_, ux, below);
            for (size_t i = 0; i < size_; ++i) y[i] += ux[i];
            for (size_t i = size_; i-- > 0;) std::swap(y[i], y[static_cast<size_t>(ipiv_[i]) - 1]);
            return compare(y, times(original_, x, everywhere));
        }
        case Kind::cholesky: {
            Vector want = times(original_, x, lower);
            const Vector other = times_adjoint(original_, x, below);
            for (size_t i = 0; i < size_; ++i) want[i] += other[i];
            return compare(times(a_, times_adjoint(a_, x, lower), lower), want);
        }
        case Kind::qr:
            return compare({norm(times(a_, x, upper))}, {norm(times(original_, x, everywhere))});
        case Kind::solve:
            return compare(times(original_, Vector(b_.data(), b_.data() + size_), everywhere), x);
        default:
            return compare(times(original_, times(a_, x, everywhere), everywhere), x);
        }
    }

private:
    using Wide = std::complex<long double>;
    using Vector = std::vector<Wide>;

    static Wide norm(const Vector& x)
    {
        long double sum = 0;
        for (const Wide& e : x) sum += std::norm(e);
        return std::sqrt(sum);
    }
    // Of the elements (i, j) for which `wanted` says so.
    template <class Wanted>
    Vector times(const Array<T>& a, const Vector& x, Wanted wanted) const
    {
        Vector y(size_);
        for (size_t j = 0; j < size_; ++j)
            for (size_t i = 0; i < size_; ++i)
                if (wanted(i, j)) y[i] += Wide(a[i + j * size_]) * x[j];
        return y;
    }
    template <class Wanted>
    Vector times_adjoint(const Array<T>& a, const Vector& x, Wanted wanted) const
    {
        Vector y(size_);
        for (size_t j = 0; j < size_; ++j)
            for (size_t i = 0; i < size_; ++i)
                if (wanted(i, j)) y[j] += std::conj(Wide(a[i + j * size_])) * x[i];
        return y;
    }
    std::string compare(const Vector& got, const Vector& want) const
    {
        long double size = 1;
        for (const Wide& e : want) size = std::max(size, std::abs(e));
        const long double tolerance =
            (kind_ == Kind::solve || kind_ == Kind::inverse ? 1e3L : 30) * n_ * std::numeric_limits<Real<T>>::epsilon();
        for (size_t i = 0; i < want.size(); ++i)
            if (!(std::abs(got[i] - want[i]) <= tolerance * size)) return mismatch(i, got[i].real(), want[i].real());
        return {};
    }

    std::string routine_;
    Kind kind_;
    int n_, info_ = 0;
    size_t size_;
    Array<T> original_, start_, a_, tau_, right_, b_, work_;
    std::vector<int> ipiv_;
};

} // namespace

const std::vector<std::string>& factor_stems()
{
    static const std::vector<std::string> all = [] {
        std::vector<std::string> names;
        for (const auto& s : stems) names.emplace_back(s.stem);
        return names;
    }();
    return all;
}

std::unique_ptr<Problem> make_factor(const FactorCase& c)
{
    for (const auto& s : stems) {
        if (c.routine.substr(1) != s.stem) continue;
        switch (c.routine[0]) {
        case 's':
            return std::make_unique<Factor<float>>(c, s.kind);
        case 'd':
            return std::make_unique<Factor<double>>(c, s.kind);
        case 'c':
            return std::make_unique<Factor<std::complex<float>>>(c, s.kind);
        case 'z':
            return std::make_unique<Factor<std::complex<double>>>(c, s.kind);
        }
    }
    return nullptr;
}

} // namespace ork::peers
