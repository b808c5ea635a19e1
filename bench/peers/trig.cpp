// SPDX-License-Identifier: MIT
#include "peers/trig.h"

#include <algorithm>
#include <cmath>
#include <dlfcn.h>
#include <limits>

#include "ork/abi/pde.h"
#include "ork/ork.h"
#include "peers/libraries.h"
#include "peers/reference_dft.h"

namespace ork::peers {
namespace {

using pde::Int;

template <class Function>
Function* kernel(const std::string& name)
{
    if (ork_initialize() != ORK_OK) return nullptr;
    void* library = dlopen(ork_kernel_library(), RTLD_LAZY | RTLD_NOLOAD);
    if (library == nullptr) return nullptr;
    void* routine = dlsym(library, ("ork_pdett_nx2_" + name + "_trig_transform").c_str());
    dlclose(library);
    return reinterpret_cast<Function*>(routine);
}

template <class R>
class Trig final : public TrigProblem {
    using Calls = pde::TrigCalls<R>;

public:
    explicit Trig(const TrigCase& c)
        : case_(c), first_(c.type == 0 ? 1 : 0), count_(c.type == 0   ? c.n - 1
                                                        : c.type == 1 ? c.n + 1
                                                                      : c.n),
          f_(static_cast<size_t>(c.n) + 1), fpar_(static_cast<size_t>(5 * c.n / 2 + 2))
    {
        std::fill_n(f_.data(), f_.size(), R(0));
    }
    ~Trig() override
    {
        Int stat;
        if (handle_ != nullptr) kernel<typename Calls::free>("free")(&handle_, ipar_, &stat);
        if (plan_ != nullptr) destroy_(plan_);
    }
    Trig(const Trig&) = delete;
    Trig& operator=(const Trig&) = delete;

    double work() const override { return 2.5 * case_.n * std::log2(static_cast<double>(case_.n)); }

    Entrant ork() override
    {
        const std::string p = case_.single ? "s" : "d";
        const auto init = kernel<typename Calls::init>(p + "_init");
        const auto commit = kernel<typename Calls::commit>(p + "_commit");
        const auto run = kernel<typename Calls::forward>(p + (case_.backward ? "_backward" : "_forward"));
        if (init == nullptr || commit == nullptr || run == nullptr) return {};
        const Int n = case_.n, type = case_.type;
        Int stat;
        init(&n, &type, ipar_, fpar_.data(), &stat);
        ipar_[10] = 1;
        commit(f_.data(), &handle_, ipar_, fpar_.data(), &stat);
        if (stat != 0) return {};
        return [this, run](long calls) {
            for (Int status; calls > 0; --calls) run(f_.data(), &handle_, ipar_, fpar_.data(), &status);
        };
    }

    Entrant planned(const Library& fftw) override
    {
        const std::string prefix = case_.single ? "fftwf_" : "fftw_";
        const auto get = [&](const char* name) { return fftw.find((prefix + name).c_str()); };
        using Plan = void*(int n, R* in, R* out, int kind, unsigned flags);
        const auto plan = reinterpret_cast<Plan*>(get("plan_r2r_1d"));
        const auto execute = reinterpret_cast<void (*)(void*)>(get("execute"));
        destroy_ = reinterpret_cast<void (*)(void*)>(get("destroy_plan"));
        if (plan == nullptr || execute == nullptr || destroy_ == nullptr) return {};
        constexpr int forward[] = {7, 3, 4, 8, 6, 10}, backward[] = {7, 3, 5, 9, 6, 10}; // fftw_r2r_kind
        R* data = f_.data() + first_;
        plan_ = plan(count_, data, data, (case_.backward ? backward : forward)[case_.type], 0);
        std::fill_n(f_.data(), f_.size(), R(0));
        if (plan_ == nullptr) return {};
        return [execute, p = plan_](long calls) {
            for (; calls > 0; --calls) execute(p);
        };
    }

    // A sum of three unit vectors against the definition.
    std::string check(const Entrant& run) override
    {
        const int at[] = {0, count_ / 3, count_ - 1};
        std::fill_n(f_.data(), f_.size(), R(0));
        for (const int i : at) f_[static_cast<size_t>(first_ + i)] = 1;
        run(1);
        double worst = 0;
        for (int k = 0; k < count_; ++k) {
            double want = 0;
            for (int j = 0; j < 3; ++j)
                if (j == 0 || at[j] != at[j - 1]) want += element(k, at[j]);
            worst = std::max(worst, std::abs(static_cast<double>(f_[static_cast<size_t>(first_ + k)]) - want));
            if (!(worst < 100 * std::numeric_limits<R>::epsilon() * std::sqrt(case_.n))) worst = INFINITY;
        }
        std::fill_n(f_.data(), f_.size(), R(0));
        return worst < INFINITY ? "" : "the result is wrong";
    }

    // The sums are the real or imaginary parts of a Fourier transform of up to 8n numbers, most of them zero.
    double error(const Entrant& run) override
    {
        const bool both = case_.type > 3, halves = case_.type > 1, sine = case_.type % 5 == 0 || case_.type == 3;
        const auto place = [&](int i, bool half) { // of number i, in steps or half steps
            return static_cast<size_t>(!halves ? i + first_ : half ? 2 * i + 1 : i + (case_.type == 3 ? 1 : 0));
        };
        std::vector<LongPair> x(static_cast<size_t>(case_.n) * (both ? 8 : halves ? 4 : 2));
        Random random;
        for (int i = 0; i < count_; ++i) {
            R& value = f_[static_cast<size_t>(first_ + i)];
            value = random.next<R>();
            const bool end = case_.type == 1 && (i == 0 || i == case_.n);
            const bool half_end =
                halves && !both && !case_.backward && i == (case_.type == 2 ? 0 : case_.n - 1); // at whole steps
            x[place(i, both || case_.backward)].re = (end || half_end ? 1.0L : 2.0L) * static_cast<long double>(value);
        }
        reference_dft(x, {static_cast<int>(x.size())}, -1);
        run(1);
        long double error = 0, norm = 0;
        for (int k = 0; k < count_; ++k) {
            const LongPair& sum = x[place(k, both || !case_.backward)];
            const long double want = sine ? -sum.im : sum.re;
            const long double off = static_cast<long double>(f_[static_cast<size_t>(first_ + k)]) - want;
            error += off * off, norm += want * want;
        }
        std::fill_n(f_.data(), f_.size(), R(0));
        return static_cast<double>(std::sqrt(error / norm));
    }

private:
    // What element i adds to result k, both counted from 0.
    double element(int k, int i) const
    {
        const double pi = 3.141592653589793238462643, n = case_.n, half = (case_.backward ? i : k) + 0.5;
        const int whole = case_.backward ? k : i;
        switch (case_.type) {
        case 0:
            return 2 * std::sin(pi * std::fmod((k + 1.0) * (i + 1), 2 * n) / n);
        case 1:
            return (i == 0 || i == case_.n ? 1 : 2) * std::cos(pi * std::fmod(1.0 * k * i, 2 * n) / n);
        case 2:
            return (whole == 0 && !case_.backward ? 1 : 2) * std::cos(pi * std::fmod(half * whole, 2 * n) / n);
        case 3:
            return (whole == case_.n - 1 && !case_.backward ? 1 : 2) *
                   std::sin(pi * std::fmod(half * (whole + 1), 2 * n) / n);
        case 4:
            return 2 * std::cos(pi * std::fmod((k + 0.5) * (i + 0.5), 2 * n) / n);
        default:
            return 2 * std::sin(pi * std::fmod((k + 0.5) * (i + 0.5), 2 * n) / n);
        }
    }

    TrigCase case_;
    int first_, count_; // type 3 unscaled starts at the first number
    Array<R> f_, fpar_;
    Int ipar_[16] = {};
    ork_dft_descriptor* handle_ = nullptr;
    void* plan_ = nullptr;
    void (*destroy_)(void*) = nullptr;
};

} // namespace

std::unique_ptr<TrigProblem> make_trig(const TrigCase& c)
{
    if (c.type < 0 || c.type > 5 || c.n < 3) return nullptr;
    if (c.single) return std::make_unique<Trig<float>>(c);
    return std::make_unique<Trig<double>>(c);
}

} // namespace ork::peers
