// SPDX-License-Identifier: MIT
// The level-1 routines. Calls repeated on the same vectors leave them bounded: alpha alternates between a number and
// the number that undoes it, rotations keep lengths.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include "peers/limits.h"
#include "peers/problem.h"

namespace ork::peers {
namespace {

enum class Kind { axpy, scal, copy, swap, dot, dotc, rot, nrm2, asum, iamax };

struct Routine {
    const char* name;
    Kind kind;
    char precision;           // of the vectors
    bool real_factor = false; // alpha of a complex scal is real
};

// clang-format off
constexpr Routine routines[] = {
    {"sdot", Kind::dot, 's'},     {"ddot", Kind::dot, 'd'},     {"cdotu", Kind::dot, 'c'},   {"zdotu", Kind::dot, 'z'},
    {"cdotc", Kind::dotc, 'c'},   {"zdotc", Kind::dotc, 'z'},
    {"saxpy", Kind::axpy, 's'},   {"daxpy", Kind::axpy, 'd'},   {"caxpy", Kind::axpy, 'c'},  {"zaxpy", Kind::axpy, 'z'},
    {"sscal", Kind::scal, 's'},   {"dscal", Kind::scal, 'd'},   {"cscal", Kind::scal, 'c'},  {"zscal", Kind::scal, 'z'},
    {"csscal", Kind::scal, 'c', true}, {"zdscal", Kind::scal, 'z', true},
    {"scopy", Kind::copy, 's'},   {"dcopy", Kind::copy, 'd'},   {"ccopy", Kind::copy, 'c'},  {"zcopy", Kind::copy, 'z'},
    {"sswap", Kind::swap, 's'},   {"dswap", Kind::swap, 'd'},   {"cswap", Kind::swap, 'c'},  {"zswap", Kind::swap, 'z'},
    {"srot", Kind::rot, 's'},     {"drot", Kind::rot, 'd'},     {"csrot", Kind::rot, 'c'},   {"zdrot", Kind::rot, 'z'},
    {"snrm2", Kind::nrm2, 's'},   {"dnrm2", Kind::nrm2, 'd'},   {"scnrm2", Kind::nrm2, 'c'}, {"dznrm2", Kind::nrm2, 'z'},
    {"sasum", Kind::asum, 's'},   {"dasum", Kind::asum, 'd'},   {"scasum", Kind::asum, 'c'}, {"dzasum", Kind::asum, 'z'},
    {"isamax", Kind::iamax, 's'}, {"idamax", Kind::iamax, 'd'}, {"icamax", Kind::iamax, 'c'},{"izamax", Kind::iamax, 'z'},
};
// clang-format on

Traffic traffic_of(Kind kind)
{
    switch (kind) {
    case Kind::axpy:
        return Traffic::update_from;
    case Kind::scal:
        return Traffic::update;
    case Kind::copy:
        return Traffic::copy;
    case Kind::swap:
    case Kind::rot:
        return Traffic::exchange;
    case Kind::dot:
    case Kind::dotc:
        return Traffic::load_two;
    default:
        return Traffic::load;
    }
}

using Wide = std::complex<long double>;

template <class T>
long double absolute(const T& x)
{
    const Wide w = x;
    return std::fabs(w.real()) + std::fabs(w.imag());
}

size_t span(int n, int inc) { return n == 0 ? 1 : 1 + static_cast<size_t>(n - 1) * static_cast<size_t>(std::abs(inc)); }

template <class T>
class Level1Problem final : public Problem {
public:
    Level1Problem(const Routine& routine, int n, int incx, int incy)
        : routine_(routine), n_(n), incx_(incx), incy_(incy), x_(std::max(span(n, incx), room), 0),
          y_(std::max(span(n, incy), room), 2176), x0_(x_.size()), y0_(y_.size())
    {
        Random random;
        random.fill(x0_);
        random.fill(y0_);
        reset();
        if constexpr (is_complex<T>) {
            alpha_[0] = T(0, 2); // alpha_[0] alpha_[1] = 1 for scal
            alpha_[1] = T(0, Real<T>(-0.5));
        }
        if (routine.kind == Kind::axpy) alpha_[1] = -alpha_[0];
    }

    std::string symbol() const override { return std::string(routine_.name) + "_"; }
    double work() const override { return bytes_moved(traffic_of(routine_.kind), static_cast<size_t>(n_) * sizeof(T)); }

    bool two_vectors() const override
    {
        const Traffic pattern = traffic_of(routine_.kind);
        return pattern != Traffic::load && pattern != Traffic::update;
    }

    void run(void* routine, long calls) override
    {
        using R = Real<T>;
        switch (routine_.kind) {
        case Kind::axpy: {
            const auto f =
                reinterpret_cast<void (*)(const int*, const T*, const T*, const int*, T*, const int*)>(routine);
            for (; calls > 0; --calls) f(&n_, &alpha_[calls & 1], x_.data(), &incx_, y_.data(), &incy_);
            break;
        }
        case Kind::scal:
            if (routine_.real_factor) {
                const auto f = reinterpret_cast<void (*)(const int*, const R*, T*, const int*)>(routine);
                for (; calls > 0; --calls) f(&n_, &factor_[calls & 1], x_.data(), &incx_);
            } else {
                const auto f = reinterpret_cast<void (*)(const int*, const T*, T*, const int*)>(routine);
                for (; calls > 0; --calls) f(&n_, &alpha_[calls & 1], x_.data(), &incx_);
            }
            break;
        case Kind::copy: {
            const auto f = reinterpret_cast<void (*)(const int*, const T*, const int*, T*, const int*)>(routine);
            for (; calls > 0; --calls) f(&n_, x_.data(), &incx_, y_.data(), &incy_);
            break;
        }
        case Kind::swap: {
            const auto f = reinterpret_cast<void (*)(const int*, T*, const int*, T*, const int*)>(routine);
            for (; calls > 0; --calls) f(&n_, x_.data(), &incx_, y_.data(), &incy_);
            break;
        }
        case Kind::rot: {
            const auto f =
                reinterpret_cast<void (*)(const int*, T*, const int*, T*, const int*, const R*, const R*)>(routine);
            for (; calls > 0; --calls) f(&n_, x_.data(), &incx_, y_.data(), &incy_, &cosine_, &sine_);
            break;
        }
        case Kind::dot:
        case Kind::dotc: {
            const auto f = reinterpret_cast<T (*)(const int*, const T*, const int*, const T*, const int*)>(routine);
            for (; calls > 0; --calls) result_ = f(&n_, x_.data(), &incx_, y_.data(), &incy_);
            break;
        }
        case Kind::nrm2:
        case Kind::asum: {
            const auto f = reinterpret_cast<R (*)(const int*, const T*, const int*)>(routine);
            for (; calls > 0; --calls) result_ = f(&n_, x_.data(), &incx_);
            break;
        }
        case Kind::iamax: {
            const auto f = reinterpret_cast<int (*)(const int*, const T*, const int*)>(routine);
            for (; calls > 0; --calls) position_ = f(&n_, x_.data(), &incx_);
            break;
        }
        }
    }

    std::string check(void* routine) override
    {
        reset();
        result_ = T(std::numeric_limits<Real<T>>::quiet_NaN());
        position_ = -1;
        run(routine, 1);
        switch (routine_.kind) {
        case Kind::dot:
        case Kind::dotc:
        case Kind::nrm2:
        case Kind::asum:
            return check_result();
        case Kind::iamax:
            return check_position();
        default:
            return check_vectors();
        }
    }

    std::vector<Limit> limits() override
    {
        // The rate of the level that the vectors sit in; short ones are all held to the first level's.
        const size_t bytes = std::max<size_t>(static_cast<size_t>(n_) * sizeof(T), room * sizeof(T)) / 128 * 128;
        const Traffic pattern = traffic_of(routine_.kind);
        std::vector<Limit> all;
        for (const Stream candidate : candidates(pattern, bytes * (two_vectors() ? 2 : 1)))
            all.push_back({[this, candidate, bytes](long calls) {
                               traffic(candidate, reinterpret_cast<char*>(x_.data()),
                                       reinterpret_cast<char*>(y_.data()), bytes, calls);
                           },
                           bytes_moved(candidate.pattern, bytes)});
        return all;
    }

private:
    static constexpr size_t room = 8192 / sizeof(T);
    static constexpr long double eps = std::numeric_limits<Real<T>>::epsilon();

    void reset()
    {
        std::copy(x0_.data(), x0_.data() + x0_.size(), x_.data());
        std::copy(y0_.data(), y0_.data() + y0_.size(), y_.data());
    }

    size_t at(int i, int inc) const
    {
        return static_cast<size_t>(inc >= 0 ? int64_t{i} * inc : int64_t{i - n_ + 1} * inc);
    }

    std::string check_result() const
    {
        Wide sum = 0;
        long double size = 0;
        for (int i = 0; i < n_; ++i) {
            const Wide x = x0_[at(i, incx_)], y = y0_[at(i, incy_)];
            if (routine_.kind == Kind::asum)
                sum += absolute(x);
            else if (routine_.kind == Kind::nrm2)
                sum += std::norm(x);
            else
                sum += (routine_.kind == Kind::dotc ? std::conj(x) : x) * y;
            size += routine_.kind == Kind::dot || routine_.kind == Kind::dotc ? absolute(x) * absolute(y) : 0;
        }
        if (routine_.kind == Kind::nrm2) sum = std::sqrt(sum.real());
        if (size == 0) size = sum.real();
        const Wide got = result_;
        if (!(std::abs(got - sum) <= (n_ + 8) * eps * size)) return mismatch(0, got.real(), sum.real());
        return {};
    }

    std::string check_position() const
    {
        int want = n_ > 0 ? 1 : 0;
        for (int i = 1; want > 0 && i < n_; ++i)
            if (absolute(x0_[at(i, incx_)]) > absolute(x0_[at(want - 1, incx_)])) want = i + 1;
        // Two complex elements whose |re| + |im| differ by less than rounding may stand for each other.
        if (position_ == want) return {};
        if (is_complex<T> && position_ >= 1 && position_ <= n_) {
            const long double a = absolute(x0_[at(position_ - 1, incx_)]), b = absolute(x0_[at(want - 1, incx_)]);
            if (b - a <= 2 * eps * b) return {};
        }
        return mismatch(0, position_, want);
    }

    std::string check_vectors() const
    {
        std::vector<Wide> x(x0_.data(), x0_.data() + x0_.size()), y(y0_.data(), y0_.data() + y0_.size());
        const Wide alpha = routine_.real_factor ? Wide(factor_[1]) : Wide(alpha_[1]); // of a single call
        for (int i = 0; i < n_; ++i) {
            Wide& u = x[at(i, incx_)];
            Wide& v = y[at(i, incy_)];
            const Wide u0 = u, v0 = v;
            switch (routine_.kind) {
            case Kind::axpy:
                v += alpha * u;
                break;
            case Kind::scal:
                u *= alpha;
                break;
            case Kind::copy:
                v = u;
                break;
            case Kind::swap:
                std::swap(u, v);
                break;
            default:
                u = static_cast<long double>(cosine_) * u0 + static_cast<long double>(sine_) * v0;
                v = static_cast<long double>(cosine_) * v0 - static_cast<long double>(sine_) * u0;
            }
        }
        for (size_t i = 0; i < x.size(); ++i)
            if (!(absolute(Wide(x_[i]) - x[i]) <= 16 * eps))
                return "x: " + mismatch(i, Wide(x_[i]).real(), x[i].real());
        for (size_t i = 0; i < y.size(); ++i)
            if (!(absolute(Wide(y_[i]) - y[i]) <= 16 * eps))
                return "y: " + mismatch(i, Wide(y_[i]).real(), y[i].real());
        return {};
    }

    Routine routine_;
    int n_, incx_, incy_;
    Array<T> x_, y_, x0_, y0_;
    T alpha_[2] = {T(2), T(Real<T>(0.5))};
    Real<T> factor_[2] = {Real<T>(2), Real<T>(0.5)};
    Real<T> cosine_ = Real<T>(0.6), sine_ = Real<T>(0.8);
    T result_{};
    int position_ = 0;
};

} // namespace

std::unique_ptr<Problem> make_level1(const Level1Case& c)
{
    for (const Routine& routine : routines) {
        if (c.routine != routine.name) continue;
        switch (routine.precision) {
        case 's':
            return std::make_unique<Level1Problem<float>>(routine, c.n, c.incx, c.incy);
        case 'd':
            return std::make_unique<Level1Problem<double>>(routine, c.n, c.incx, c.incy);
        case 'c':
            return std::make_unique<Level1Problem<std::complex<float>>>(routine, c.n, c.incx, c.incy);
        default:
            return std::make_unique<Level1Problem<std::complex<double>>>(routine, c.n, c.incx, c.incy);
        }
    }
    return nullptr;
}

const std::vector<std::string>& level1_routines()
{
    static const std::vector<std::string> names = [] {
        std::vector<std::string> all;
        for (const Routine& routine : routines) all.emplace_back(routine.name);
        return all;
    }();
    return names;
}

} // namespace ork::peers
