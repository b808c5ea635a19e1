// SPDX-License-Identifier: MIT
#include "peers/blocks.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace ork::peers {
namespace {

constexpr long double eps = std::numeric_limits<double>::epsilon();

// Rotations of the rows of a matrix that are kept at length 1, m x n.
class Lasr final : public Problem {
public:
    explicit Lasr(const BlocksCase& c)
        : m_(c.m), n_(c.n), lda_(c.m + 1), a_(static_cast<size_t>(lda_ * n_)), start_(a_.size()),
          c_(static_cast<size_t>(m_), 64), s_(static_cast<size_t>(m_), 128)
    {
        Random random;
        random.fill(start_);
        for (size_t k = 0; k < c_.size(); ++k) c_[k] = std::cos(random.next()), s_[k] = std::sqrt(1 - c_[k] * c_[k]);
        std::copy_n(start_.data(), start_.size(), a_.data());
    }
    std::string symbol() const override { return "dlasr_lvf"; }
    double work() const override { return 1e3 * static_cast<double>((m_ - 1) * n_); }
    void run(void* routine, long calls) override
    {
        using Call = void(const int64_t*, const int64_t*, const double*, const double*, double*, const int64_t*);
        for (; calls > 0; --calls) reinterpret_cast<Call*>(routine)(&m_, &n_, c_.data(), s_.data(), a_.data(), &lda_);
    }
    std::string check(void* routine) override
    {
        std::copy_n(start_.data(), start_.size(), a_.data());
        run(routine, 1);
        for (int64_t j = 0; j < n_; ++j) {
            std::vector<long double> x(start_.data() + j * lda_, start_.data() + j * lda_ + m_);
            for (size_t k = 0; k + 1 < x.size(); ++k) {
                const long double t = x[k + 1];
                x[k + 1] = c_[k] * t - s_[k] * x[k];
                x[k] = s_[k] * t + c_[k] * x[k];
            }
            for (size_t k = 0; k < x.size(); ++k) {
                const double got = a_[static_cast<size_t>(j * lda_) + k];
                if (!(std::fabs(got - x[k]) <= 16 * eps * std::sqrt(static_cast<long double>(m_))))
                    return mismatch(k, got, x[k]);
            }
        }
        return {};
    }
    std::vector<Limit> limits() override { return {}; }

private:
    int64_t m_, n_, lda_;
    Array<double> a_, start_, c_, s_;
};

// n elements m apart of two vectors or three.
class Elements final : public Problem {
public:
    enum class Kind { lartv, rot2, rot3 };
    Elements(Kind kind, const BlocksCase& c)
        : kind_(kind), inc_(c.m), n_(c.n), x_(size(), 0), y_(size(), 1088), z_(size(), 2176), c_(size(), 3264),
          s_(size(), 192), x0_(size()), y0_(size()), z0_(size())
    {
        Random random;
        random.fill(x0_), random.fill(y0_), random.fill(z0_);
        for (size_t k = 0; k < c_.size(); ++k) c_[k] = std::cos(random.next()), s_[k] = std::sqrt(1 - c_[k] * c_[k]);
        tau_ = 2 / (1 + h_[0] * h_[0] + (kind == Kind::rot3 ? h_[1] * h_[1] : 0));
        reset();
    }
    std::string symbol() const override
    {
        return kind_ == Kind::lartv ? "dlartv_" : kind_ == Kind::rot2 ? "drot2" : "drot3";
    }
    double work() const override { return 1e3 * static_cast<double>(n_); }
    void run(void* routine, long calls) override
    {
        using I = const int64_t*;
        using D = const double*;
        for (; calls > 0; --calls) switch (kind_) {
            case Kind::lartv:
                reinterpret_cast<void (*)(I, double*, I, double*, I, D, D, I)>(routine)(
                    &n_, x_.data(), &inc_, y_.data(), &inc_, c_.data(), s_.data(), &inc_);
                break;
            case Kind::rot2:
                reinterpret_cast<void (*)(I, double*, I, double*, I, D, D)>(routine)(&n_, x_.data(), &inc_, y_.data(),
                                                                                     &inc_, &tau_, &h_[0]);
                break;
            case Kind::rot3:
                reinterpret_cast<void (*)(I, double*, I, double*, I, double*, I, D, D, D)>(routine)(
                    &n_, x_.data(), &inc_, y_.data(), &inc_, z_.data(), &inc_, &tau_, &h_[0], &h_[1]);
                break;
            }
    }
    std::string check(void* routine) override
    {
        reset();
        run(routine, 1);
        for (size_t k = 0; k < x_.size(); ++k) {
            long double x = x0_[k], y = y0_[k], z = z0_[k];
            if (k % static_cast<size_t>(inc_) == 0) {
                const long double u = x;
                if (kind_ == Kind::lartv) {
                    x = c_[k] * u + s_[k] * y, y = c_[k] * y - s_[k] * u;
                } else {
                    const long double third = kind_ == Kind::rot3 ? h_[1] : 0, sum = (x + h_[0] * y + third * z) * tau_;
                    x -= sum, y -= sum * h_[0], z -= sum * third;
                }
            }
            const long double distance = std::fabs(x_[k] - x) + std::fabs(y_[k] - y) + std::fabs(z_[k] - z);
            if (!(distance <= 32 * eps)) return mismatch(k, x_[k], x);
        }
        return {};
    }
    std::vector<Limit> limits() override { return {}; }

private:
    size_t size() const { return static_cast<size_t>((n_ - 1) * inc_ + 1); }
    void reset()
    {
        std::copy_n(x0_.data(), size(), x_.data());
        std::copy_n(y0_.data(), size(), y_.data());
        std::copy_n(z0_.data(), size(), z_.data());
    }

    Kind kind_;
    int64_t inc_, n_;
    Array<double> x_, y_, z_, c_, s_, x0_, y0_, z0_;
    double h_[2] = {0.5, -0.75}, tau_;
};

// A reflector of order m on n columns.
class Larfx final : public Problem {
public:
    explicit Larfx(const BlocksCase& c)
        : m_(c.m), n_(c.n), c_(static_cast<size_t>(m_ * n_)), start_(c_.size()), v_(static_cast<size_t>(m_), 64),
          work_(static_cast<size_t>(std::max(m_, n_)), 128)
    {
        Random random;
        random.fill(start_), random.fill(v_);
        double length = 0;
        for (size_t i = 0; i < v_.size(); ++i) length += v_[i] * v_[i];
        tau_ = 2 / length;
        std::copy_n(start_.data(), start_.size(), c_.data());
    }
    std::string symbol() const override { return "dlarfx_"; }
    double work() const override { return 1e3 * static_cast<double>(m_ * n_); }
    void run(void* routine, long calls) override
    {
        using Call = void(const char*, const int64_t*, const int64_t*, const double*, const double*, double*,
                          const int64_t*, double*, size_t);
        for (; calls > 0; --calls)
            reinterpret_cast<Call*>(routine)("L", &m_, &n_, v_.data(), &tau_, c_.data(), &m_, work_.data(), 1);
    }
    std::string check(void* routine) override
    {
        std::copy_n(start_.data(), start_.size(), c_.data());
        run(routine, 1);
        for (int64_t j = 0; j < n_; ++j) {
            long double sum = 0;
            for (int64_t i = 0; i < m_; ++i) sum += static_cast<long double>(v_[i]) * start_[i + j * m_];
            for (int64_t i = 0; i < m_; ++i) {
                const long double want = start_[i + j * m_] - tau_ * v_[i] * sum;
                if (!(std::fabs(c_[i + j * m_] - want) <= 16 * eps * static_cast<long double>(m_ + 4)))
                    return mismatch(static_cast<size_t>(i + j * m_), c_[i + j * m_], want);
            }
        }
        return {};
    }
    std::vector<Limit> limits() override { return {}; }

private:
    int64_t m_, n_;
    Array<double> c_, start_, v_, work_;
    double tau_;
};

// n tridiagonal systems of order m one after the other, diagonally dominant unless they are to be pivoted.
class Tridiagonal final : public Problem {
public:
    enum class Kind { many, gtsv, pivoted };
    Tridiagonal(Kind kind, const BlocksCase& c)
        : kind_(kind), n_(c.m), systems_(c.n), dl0_(size(), 0), d0_(size(), 1088), du0_(size(), 2176),
          b0_(size(), 3264), dl_(size(), 64), d_(size(), 1152), du_(size(), 2240), b_(size(), 3328),
          work_(32 * static_cast<size_t>(n_))
    {
        Random random;
        random.fill(dl0_), random.fill(d0_), random.fill(du0_), random.fill(b0_);
        for (size_t i = 0; i < size() && kind != Kind::pivoted; ++i) d0_[i] += d0_[i] < 0 ? -3 : 3;
    }
    std::string symbol() const override { return kind_ == Kind::many ? "dgtsvnp_many" : "dgtsv_"; }
    double work() const override { return 1e3 * static_cast<double>(n_ * systems_); }
    void run(void* routine, long calls) override
    {
        using I = const int64_t*;
        using D = const double*;
        const int64_t one = 1;
        const size_t bytes = size() * sizeof(double);
        for (; calls > 0; --calls) {
            std::memcpy(b_.data(), b0_.data(), bytes);
            if (kind_ == Kind::many) {
                reinterpret_cast<void (*)(const char*, I, I, D, D, D, double*, I, double*, int64_t*)>(routine)(
                    "C", &n_, &systems_, dl0_.data(), d0_.data(), du0_.data(), b_.data(), &n_, work_.data(), &info_);
                continue;
            }
            std::memcpy(dl_.data(), dl0_.data(), bytes);
            std::memcpy(d_.data(), d0_.data(), bytes);
            std::memcpy(du_.data(), du0_.data(), bytes);
            using Call = void(I, I, double*, double*, double*, double*, I, int64_t*);
            for (int64_t s = 0; s < systems_; ++s) // LAPACK counts dl from the second equation
                reinterpret_cast<Call*>(routine)(&n_, &one, dl_.data() + s * n_ + 1, d_.data() + s * n_,
                                                 du_.data() + s * n_, b_.data() + s * n_, &n_, &info_);
        }
    }
    std::string check(void* routine) override
    {
        run(routine, 1);
        for (int64_t s = 0; s < systems_; ++s) {
            long double most = 0;
            for (int64_t i = 0; i < n_; ++i) most = std::max(most, std::fabs(static_cast<long double>(b_[s * n_ + i])));
            for (int64_t i = 0; i < n_; ++i) {
                const auto at = static_cast<size_t>(s * n_ + i);
                long double sum = static_cast<long double>(d0_[at]) * b_[at] - b0_[at];
                if (i > 0) sum += static_cast<long double>(dl0_[at]) * b_[at - 1];
                if (i + 1 < n_) sum += static_cast<long double>(du0_[at]) * b_[at + 1];
                if (!(std::fabs(sum) <= 32 * eps * (6 * most + 1))) return "residual: " + mismatch(at, b_[at], sum);
            }
        }
        return {};
    }
    std::vector<Limit> limits() override { return {}; }

private:
    size_t size() const { return static_cast<size_t>(n_ * systems_) + 1; }

    Kind kind_;
    int64_t n_, systems_, info_ = 0;
    Array<double> dl0_, d0_, du0_, b0_, dl_, d_, du_, b_, work_;
};

} // namespace

const std::vector<BlocksRoutine>& blocks_routines()
{
    static const std::vector<BlocksRoutine> all = {
        {"dlasr", "dlasr_lvf", "dlasr_lvf", "rows x columns"},
        {"drot2", "drot2", "drot2", "increment x pairs"},
        {"drot3", "drot3", "drot3", "increment x triples"},
        {"dlartv", "dlartv_", "dlartv", "increment x pairs"},
        {"dlarfx", "dlarfx_", "dlarfx", "order x columns"},
        {"dgtsv", "dgtsv_", "dgtsv_small", "order x systems, dominant, one call each"},
        {"dgtsv-pivoted", "dgtsv_", "dgtsv_small", "order x systems, one call each"},
        {"dgtsv-many", "dgtsvnp_many", "dgtsvnp_many", "order x systems, dominant, one call"},
    };
    return all;
}

std::unique_ptr<Problem> make_blocks(const BlocksCase& c)
{
    if (c.routine == "dlasr") return std::make_unique<Lasr>(c);
    if (c.routine == "drot2") return std::make_unique<Elements>(Elements::Kind::rot2, c);
    if (c.routine == "drot3") return std::make_unique<Elements>(Elements::Kind::rot3, c);
    if (c.routine == "dlartv") return std::make_unique<Elements>(Elements::Kind::lartv, c);
    if (c.routine == "dlarfx") return std::make_unique<Larfx>(c);
    if (c.routine == "dgtsv") return std::make_unique<Tridiagonal>(Tridiagonal::Kind::gtsv, c);
    if (c.routine == "dgtsv-pivoted") return std::make_unique<Tridiagonal>(Tridiagonal::Kind::pivoted, c);
    if (c.routine == "dgtsv-many") return std::make_unique<Tridiagonal>(Tridiagonal::Kind::many, c);
    return nullptr;
}

} // namespace ork::peers
