// SPDX-License-Identifier: MIT
#include "peers/compact.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "ork/lapack_compact.h"
#include "peers/limits.h"

namespace ork::peers {
namespace {

enum class Kind { lu, cholesky, qr };

#define ORK_BY_TYPE(routine)                                                                                           \
    [] {                                                                                                               \
        if constexpr (std::is_same_v<T, float>)                                                                        \
            return &ork_compact_s##routine;                                                                            \
        else if constexpr (std::is_same_v<T, double>)                                                                  \
            return &ork_compact_d##routine;                                                                            \
        else if constexpr (std::is_same_v<T, std::complex<float>>)                                                     \
            return &ork_compact_c##routine;                                                                            \
        else                                                                                                           \
            return &ork_compact_z##routine;                                                                            \
    }()

template <class T>
class Compact : public Problem {
    using R = Real<T>;
    using Wide = std::complex<long double>;

public:
    Compact(const CompactCase& c, Kind kind)
        : routine_(c.routine), kind_(kind), n_(c.order), count_(c.count), format_(ork_compact_format()),
          elements_(static_cast<size_t>(c.order) * c.order), a_(elements_ * count_), tau_(count_ * n_),
          packs_(static_cast<size_t>(ORK_BY_TYPE(size)(n_, n_, format_, count_)) / sizeof(R), 64),
          tau_packs_(static_cast<size_t>(ORK_BY_TYPE(size)(n_, 1, format_, count_)) / sizeof(R), 128),
          work_(64 * static_cast<size_t>(n_)), ipiv_(static_cast<size_t>(n_))
    {
        still();
    }
    std::string symbol() const override { return routine_; }
    double work() const override
    {
        const double n = static_cast<double>(n_), cube = n * n * n;
        const double flops = kind_ == Kind::lu ? 2 * cube / 3 : kind_ == Kind::cholesky ? cube / 3 : 4 * cube / 3;
        return static_cast<double>(count_) * (is_complex<T> ? 4 * flops : flops);
    }
    // By the product of the diagonal, which is a power of the determinant.
    std::string check(void* routine) override
    {
        Random random;
        random.fill(a_);
        for (int64_t q = 0; q < count_; ++q)
            for (int64_t j = 0; j < n_; ++j) {
                at(q, j, j) = static_cast<R>(2 * n_);
                for (int64_t i = 0; i < j && kind_ == Kind::cholesky; ++i) at(q, i, j) = conjugate(at(q, j, i));
            }
        const Array<T> before = copy_of(a_);
        pack();
        run(routine, 1);
        if (static_cast<CompactWay*>(routine)->call == CompactWay::Call::packs) ORK_BY_TYPE(unpack_strided)
        (ORK_COMPACT_COLUMNS, n_, n_, a_.data(), n_, n_ * n_, packs_.data(), n_, format_, count_);
        const long double tolerance = 1e5L * std::numeric_limits<R>::epsilon() * static_cast<long double>(n_);
        std::string fault;
        for (int64_t q = 0; q < count_ && fault.empty(); q += q < 64 || q >= count_ - 64 ? 1 : 97) {
            const long double want =
                log_determinant(before.data() + static_cast<size_t>(q) * elements_) / (kind_ == Kind::cholesky ? 2 : 1);
            long double got = 0;
            for (int64_t j = 0; j < n_; ++j) got += std::log(std::abs(Wide(at(q, j, j))));
            if (!(std::fabs(got - want) <= tolerance))
                fault = "log |det| of a matrix: " + mismatch(static_cast<size_t>(q), got, want);
        }
        still();
        return fault;
    }
    void run(void* routine, long calls) override
    {
        const auto& way = *static_cast<const CompactWay*>(routine);
        for (; calls > 0; --calls)
            if (way.call == CompactWay::Call::packs)
                in_packs();
            else
                one_by_one(way);
    }
    std::vector<Limit> limits() override
    {
        std::vector<Limit> all;
        for (const ArithmeticLoop& loop : arithmetic_loops(sizeof(R) == 4))
            all.push_back({[run = loop.run](long calls) { run(calls); }, static_cast<double>(loop.flops)});
        return all;
    }

private:
    T& at(int64_t q, int64_t i, int64_t j) { return a_[static_cast<size_t>((q * n_ + j) * n_ + i)]; }
    static T conjugate(T a)
    {
        if constexpr (is_complex<T>)
            return std::conj(a);
        else
            return a;
    }
    static Array<T> copy_of(const Array<T>& a)
    {
        Array<T> copy(a.size());
        std::copy_n(a.data(), a.size(), copy.data());
        return copy;
    }
    void pack()
    {
        ORK_BY_TYPE(pack_strided)
        (ORK_COMPACT_COLUMNS, n_, n_, a_.data(), n_, n_ * n_, packs_.data(), n_, format_, count_);
    }
    // Operands that stay as they are.
    void still()
    {
        Random random;
        random.fill(a_);
        for (int64_t q = 0; q < count_; ++q)
            for (int64_t j = 0; j < n_; ++j) {
                if (kind_ == Kind::cholesky)
                    for (int64_t i = 0; i < n_; ++i) at(q, i, j) = i == j ? R(1) : R(0);
                if (kind_ == Kind::lu) {
                    at(q, j, j) += R(2);
                    for (int64_t i = j + 1; i < n_; ++i) at(q, i, j) = 0;
                }
            }
        pack();
    }
    void in_packs()
    {
        switch (kind_) {
        case Kind::lu:
            ORK_BY_TYPE(getrfnp)(ORK_COMPACT_COLUMNS, n_, n_, packs_.data(), n_, format_, count_);
            break;
        case Kind::cholesky:
            ORK_BY_TYPE(potrf)(ORK_COMPACT_COLUMNS, 'L', n_, packs_.data(), n_, format_, count_);
            break;
        case Kind::qr:
            ORK_BY_TYPE(geqrf)(ORK_COMPACT_COLUMNS, n_, n_, packs_.data(), n_, tau_packs_.data(), format_, count_);
            break;
        }
    }
    void one_by_one(const CompactWay& way)
    {
        using Lu = void(const int64_t*, const int64_t*, T*, const int64_t*, int64_t*);
        using Exchanging = void(const int64_t*, const int64_t*, T*, const int64_t*, int64_t*, int64_t*);
        using Cholesky = void(const char*, const int64_t*, T*, const int64_t*, int64_t*, size_t);
        using Qr = void(const int64_t*, const int64_t*, T*, const int64_t*, T*, T*, const int64_t*, int64_t*);
        const auto size = static_cast<int64_t>(work_.size());
        for (int64_t q = 0; q < count_; ++q) {
            T* a = &at(q, 0, 0);
            if (kind_ == Kind::cholesky)
                reinterpret_cast<Cholesky*>(way.routine)("L", &n_, a, &n_, &info_, 1);
            else if (kind_ == Kind::qr)
                reinterpret_cast<Qr*>(way.routine)(&n_, &n_, a, &n_, tau_.data() + q * n_, work_.data(), &size, &info_);
            else if (way.call == CompactWay::Call::exchanging)
                reinterpret_cast<Exchanging*>(way.routine)(&n_, &n_, a, &n_, ipiv_.data(), &info_);
            else
                reinterpret_cast<Lu*>(way.routine)(&n_, &n_, a, &n_, &info_);
        }
    }
    long double log_determinant(const T* a) const
    {
        std::vector<Wide> w(a, a + elements_);
        const auto at = [&](int64_t i, int64_t j) -> Wide& { return w[static_cast<size_t>(i + j * n_)]; };
        long double sum = 0;
        for (int64_t j = 0; j < n_; ++j) { // the diagonal is heavy, no exchanges
            sum += std::log(std::abs(at(j, j)));
            for (int64_t i = j + 1; i < n_; ++i) {
                const Wide l = at(i, j) / at(j, j);
                for (int64_t k = j + 1; k < n_; ++k) at(i, k) -= l * at(j, k);
            }
        }
        return sum;
    }

    std::string routine_;
    Kind kind_;
    int64_t n_, count_, format_, info_ = 0;
    size_t elements_;
    Array<T> a_, tau_;
    Array<R> packs_, tau_packs_;
    Array<T> work_;
    std::vector<int64_t> ipiv_;
};

} // namespace

const std::vector<std::string>& compact_routines()
{
    static const std::vector<std::string> all = [] {
        std::vector<std::string> names;
        for (const char* stem : {"getrfnp", "potrf", "geqrf"})
            for (const char letter : {'d', 's', 'c', 'z'}) names.push_back(letter + std::string(stem));
        return names;
    }();
    return all;
}

std::unique_ptr<Problem> make_compact(const CompactCase& c)
{
    const auto& known = compact_routines();
    if (std::find(known.begin(), known.end(), c.routine) == known.end()) return nullptr;
    const std::string stem = c.routine.substr(1);
    const Kind kind = stem == "getrfnp" ? Kind::lu : stem == "potrf" ? Kind::cholesky : Kind::qr;
    switch (c.routine[0]) {
    case 's':
        return std::make_unique<Compact<float>>(c, kind);
    case 'd':
        return std::make_unique<Compact<double>>(c, kind);
    case 'c':
        return std::make_unique<Compact<std::complex<float>>>(c, kind);
    default:
        return std::make_unique<Compact<std::complex<double>>>(c, kind);
    }
}

} // namespace ork::peers
