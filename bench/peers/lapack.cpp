// SPDX-License-Identifier: MIT
#include "peers/lapack.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace ork::peers {
namespace {

enum class Kind { lu, cholesky, qr };

// |the product of the diagonal of a triangular factor|, as a logarithm: of all three factorisations it is a power of
// |det A|.
template <class T>
long double log_diagonal(const T* a, int n, int ld)
{
    long double sum = 0;
    for (int j = 0; j < n; ++j) sum += std::log(std::abs(std::complex<long double>(a[j + static_cast<long>(j) * ld])));
    return sum;
}

// log |det A|, by elimination with the largest pivot of each column.
template <class T>
long double log_determinant(const T* a, int n)
{
    using Wide = std::complex<long double>;
    std::vector<Wide> w(a, a + static_cast<long>(n) * n);
    const auto at = [&](int i, int j) -> Wide& { return w[static_cast<size_t>(i + j * n)]; };
    long double sum = 0;
    for (int j = 0; j < n; ++j) {
        int p = j;
        for (int i = j + 1; i < n; ++i)
            if (std::abs(at(i, j)) > std::abs(at(p, j))) p = i;
        for (int k = 0; k < n; ++k) std::swap(at(j, k), at(p, k));
        sum += std::log(std::abs(at(j, j)));
        for (int i = j + 1; i < n; ++i) {
            const Wide l = at(i, j) / at(j, j);
            for (int k = j + 1; k < n; ++k) at(i, k) -= l * at(j, k);
        }
    }
    return sum;
}

template <class T>
class Lapack : public Problem {
public:
    Lapack(const LapackCase& c, Kind kind)
        : routine_(c.routine), kind_(kind), m_(c.m), n_(c.n), elements_(static_cast<size_t>(c.m) * c.n),
          count_(std::clamp<size_t>((1 << 20) / (elements_ * sizeof(T)), 4, 1024)), original_(count_ * elements_),
          a_(count_ * elements_, 64), tau_(static_cast<size_t>(c.n), 128),
          work_(64 * static_cast<size_t>(c.n) + 64, 192), ipiv_(static_cast<size_t>(c.n))
    {
        Random random;
        random.fill(original_);
        if (kind_ == Kind::cholesky)
            for (size_t q = 0; q < count_; ++q)
                for (int j = 0; j < c.n; ++j)
                    original_[q * elements_ + static_cast<size_t>(j) * (c.n + 1)] = T(2 * c.n);
    }

    std::string symbol() const override { return routine_ + "_"; }
    double work() const override
    {
        const auto m = static_cast<double>(m_), n = static_cast<double>(n_);
        const double flops = kind_ == Kind::lu         ? n * n * (m - n / 3)
                             : kind_ == Kind::cholesky ? n * n * n / 3
                                                       : 2 * n * n * (m - n / 3);
        return is_complex<T> ? 4 * flops : flops;
    }
    // Square matrices only; of others nothing is known but the right to be timed beside them.
    std::string check(void* routine) override
    {
        run(routine, static_cast<long>(count_));
        if (m_ != n_) return {};
        const auto n = static_cast<int>(n_);
        for (size_t q = 0; q < count_; ++q) {
            std::vector<T> whole(original_.data() + q * elements_, original_.data() + (q + 1) * elements_);
            if (kind_ == Kind::cholesky) // the lower triangle decides
                for (int j = 0; j < n; ++j)
                    for (int i = 0; i < j; ++i) {
                        const T a = whole[static_cast<size_t>(j + i * n)];
                        if constexpr (is_complex<T>)
                            whole[static_cast<size_t>(i + j * n)] = std::conj(a);
                        else
                            whole[static_cast<size_t>(i + j * n)] = a;
                    }
            const long double want = log_determinant(whole.data(), n) / (kind_ == Kind::cholesky ? 2 : 1);
            const long double got = log_diagonal(a_.data() + q * elements_, n, n);
            const long double tolerance = 1e6L * std::numeric_limits<Real<T>>::epsilon();
            if (!(std::fabs(got - want) <= tolerance * n)) return "log |det| of a matrix: " + mismatch(q, got, want);
        }
        return {};
    }
    void run(void* routine, long calls) override
    {
        while (calls > 0) {
            const auto now = static_cast<size_t>(std::min<long>(calls, static_cast<long>(count_)));
            std::memcpy(a_.data(), original_.data(), now * elements_ * sizeof(T));
            switch (kind_) {
            case Kind::lu: {
                using Call = void(const int64_t*, const int64_t*, T*, const int64_t*, int64_t*, int64_t*);
                for (size_t q = 0; q < now; ++q)
                    reinterpret_cast<Call*>(routine)(&m_, &n_, a_.data() + q * elements_, &m_, ipiv_.data(), &info_);
                break;
            }
            case Kind::cholesky: {
                using Call = void(const char*, const int64_t*, T*, const int64_t*, int64_t*, size_t);
                for (size_t q = 0; q < now; ++q)
                    reinterpret_cast<Call*>(routine)("L", &n_, a_.data() + q * elements_, &n_, &info_, 1);
                break;
            }
            case Kind::qr: {
                using Call = void(const int64_t*, const int64_t*, T*, const int64_t*, T*, T*, const int64_t*, int64_t*);
                const auto size = static_cast<int64_t>(work_.size());
                for (size_t q = 0; q < now; ++q)
                    reinterpret_cast<Call*>(routine)(&m_, &n_, a_.data() + q * elements_, &m_, tau_.data(),
                                                     work_.data(), &size, &info_);
                break;
            }
            }
            calls -= static_cast<long>(now);
        }
    }
    std::vector<Limit> limits() override { return {}; }

private:
    std::string routine_;
    Kind kind_;
    int64_t m_, n_, info_ = 0;
    size_t elements_, count_;
    Array<T> original_, a_, tau_, work_;
    std::vector<int64_t> ipiv_;
};

} // namespace

const std::vector<std::string>& lapack_routines()
{
    static const std::vector<std::string> all = [] {
        std::vector<std::string> names;
        for (const char* stem : {"getrf", "potrf", "geqrf"})
            for (const char letter : {'d', 's', 'c', 'z'}) names.push_back(letter + std::string(stem));
        return names;
    }();
    return all;
}

std::unique_ptr<Problem> make_lapack(const LapackCase& c)
{
    const auto& known = lapack_routines();
    if (std::find(known.begin(), known.end(), c.routine) == known.end()) return nullptr;
    const std::string stem = c.routine.substr(1);
    const Kind kind = stem == "getrf" ? Kind::lu : stem == "potrf" ? Kind::cholesky : Kind::qr;
    switch (c.routine[0]) {
    case 's':
        return std::make_unique<Lapack<float>>(c, kind);
    case 'd':
        return std::make_unique<Lapack<double>>(c, kind);
    case 'c':
        return std::make_unique<Lapack<std::complex<float>>>(c, kind);
    default:
        return std::make_unique<Lapack<std::complex<double>>>(c, kind);
    }
}

} // namespace ork::peers
