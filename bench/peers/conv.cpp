// SPDX-License-Identifier: MIT
#include "peers/conv.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <limits>
#include <numeric>

#include "ork/conv.h"

namespace ork::peers {
namespace {

// Of ork/conv.h, looked up by name so that an older build can be measured too.
struct Interface {
    decltype(ork_conv_newtask)* create;
    decltype(ork_conv_exec)* exec;
    decltype(ork_conv_deletetask)* release;

    bool open(const Library& library)
    {
        const auto get = [&](auto& routine, const char* name) {
            routine = reinterpret_cast<std::remove_reference_t<decltype(routine)>>(library.find(name));
            return routine != nullptr;
        };
        return get(create, "ork_conv_newtask") && get(exec, "ork_conv_exec") && get(release, "ork_conv_deletetask");
    }
};

template <class T>
class Convolutions final : public ConvProblem {
public:
    explicit Convolutions(const ConvCase& c)
        : c_(c), x_(count(c.x), 64), y_(count(c.y), 1088), reversed_(x_.size(), 2112), z_(full_count(), 3136)
    {
        Random random;
        random.fill(x_), random.fill(y_);
        // What peers convolve, so that they correlate.
        for (size_t i = 0; i < x_.size(); ++i) {
            if constexpr (is_complex<T>)
                reversed_[i] = c.correlates ? std::conj(x_[x_.size() - 1 - i]) : x_[i];
            else
                reversed_[i] = c.correlates ? x_[x_.size() - 1 - i] : x_[i];
        }
    }

    double work() const override
    {
        return (is_complex<T> ? 8.0 : 2.0) * static_cast<double>(x_.size()) * static_cast<double>(y_.size());
    }

    // Against the sum itself, at places spread over the result and at its ends.
    std::string check(const Entrant& run) override
    {
        std::fill_n(z_.data(), z_.size(), T(std::numeric_limits<Real<T>>::quiet_NaN()));
        run(1);
        const auto& x = reversed_;
        const double bound = 64 * std::numeric_limits<Real<T>>::epsilon() *
                             std::sqrt(static_cast<double>(x_.size()) * static_cast<double>(y_.size()));
        const size_t step = z_.size() / 40 + 1;
        for (size_t k = 0; k < z_.size(); k = k + step < z_.size() || k + 1 == z_.size() ? k + step : z_.size() - 1) {
            std::complex<long double> sum = 0;
            for (size_t j = 0; j < y_.size(); ++j) {
                const auto i = partner(k, j);
                if (i >= 0)
                    sum += std::complex<long double>(x[static_cast<size_t>(i)]) * std::complex<long double>(y_[j]);
            }
            if (!(std::abs(std::complex<long double>(z_[k]) - sum) <= bound))
                return mismatch(k, std::real(std::complex<long double>(z_[k])), sum.real());
        }
        return {};
    }

    Entrant ork(const Library& library, int mode) override
    {
        Interface api;
        if (!api.open(library)) return {};
        const std::vector<int32_t> x(c_.x.begin(), c_.x.end()), y(c_.y.begin(), c_.y.end()), z = full();
        ork_conv_task* task = nullptr;
        if (api.create(&task, c_.correlates ? ORK_CONV_CORRELATION : ORK_CONV_CONVOLUTION, 0, mode,
                       is_complex<T> ? ORK_CONV_COMPLEX : ORK_CONV_REAL,
                       sizeof(Real<T>) == 8 ? ORK_CONV_DOUBLE : ORK_CONV_SINGLE, static_cast<int32_t>(x.size()),
                       x.data(), y.data(), z.data()) != ORK_CONV_OK)
            return {};
        const std::shared_ptr<ork_conv_task> owner(task, [api](ork_conv_task* t) { api.release(&t); });
        return [this, api, owner](long calls) {
            for (; calls > 0; --calls)
                api.exec(owner.get(), x_.data(), nullptr, y_.data(), nullptr, z_.data(), nullptr);
        };
    }
    Entrant fftw(const Library& library) override
    {
        if constexpr (is_complex<T>)
            return {};
        else
            return c_.x.size() > 2 ? Entrant()
                                   : fftw_conv<T>(library, c_.x, c_.y, reversed_.data(), y_.data(), z_.data());
    }
    Entrant plain() override { return line(plain_conv<T>); }
    Entrant by_hand() override
    {
        if constexpr (is_complex<T>)
            return {};
        else
            return line(hand_conv<T>);
    }

private:
    static size_t count(const std::vector<int>& extents)
    {
        return std::accumulate(extents.begin(), extents.end(), size_t{1},
                               [](size_t product, int n) { return product * static_cast<size_t>(n); });
    }
    std::vector<int32_t> full() const
    {
        std::vector<int32_t> z;
        for (size_t d = 0; d < c_.x.size(); ++d) z.push_back(c_.x[d] + c_.y[d] - 1);
        return z;
    }
    size_t full_count() const
    {
        const auto z = full();
        return count({z.begin(), z.end()});
    }
    // The element of x that meets element j of y in output k, or -1.
    long partner(size_t k, size_t j) const
    {
        long place = 0, stride = 1;
        for (size_t d = 0; d < c_.x.size(); ++d) {
            const auto nx = static_cast<size_t>(c_.x[d]), ny = static_cast<size_t>(c_.y[d]), nz = nx + ny - 1;
            const long i = static_cast<long>(k % nz) - static_cast<long>(j % ny);
            if (i < 0 || i >= c_.x[d]) return -1;
            place += i * stride, stride *= c_.x[d];
            k /= nz, j /= ny;
        }
        return place;
    }
    Entrant line(void (*run)(const T*, long, const T*, long, T*))
    {
        if (c_.x.size() != 1) return {};
        return [this, run](long calls) {
            for (; calls > 0; --calls)
                run(reversed_.data(), static_cast<long>(x_.size()), y_.data(), static_cast<long>(y_.size()), z_.data());
        };
    }

    ConvCase c_;
    Array<T> x_, y_, reversed_, z_;
};

} // namespace

std::unique_ptr<ConvProblem> make_conv(const ConvCase& c)
{
    switch (c.precision) {
    case 's':
        return std::make_unique<Convolutions<float>>(c);
    case 'd':
        return std::make_unique<Convolutions<double>>(c);
    case 'c':
        return std::make_unique<Convolutions<std::complex<float>>>(c);
    default:
        return std::make_unique<Convolutions<std::complex<double>>>(c);
    }
}

} // namespace ork::peers
