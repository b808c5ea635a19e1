// SPDX-License-Identifier: MIT
#include "peers/trans.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "peers/libraries.h"

namespace ork::peers {
namespace {

// An element of an array by its position: 20 bits, so that small multiples and sums of them are exact.
template <class T>
T value_at(size_t position, uint64_t array)
{
    const auto part = [&](uint64_t which) {
        const uint64_t bits = (position + (array << 40) + (which << 50)) * 0x9e3779b97f4a7c15u;
        return static_cast<Real<T>>(static_cast<double>(bits >> 44) * 0x1p-19 - 1);
    };
    if constexpr (is_complex<T>)
        return {part(0), part(1)};
    else
        return part(0);
}
template <class T>
void fill(Array<T>& array, uint64_t which)
{
    for (size_t k = 0; k < array.size(); ++k) array[k] = value_at<T>(k, which);
}

bool transposes(char letter) { return letter == 'T' || letter == 'C'; }

// Element (i, j) of op of the matrix with columns of length m whose elements are value_at.
template <class T>
T element(char letter, int i, int j, int m, uint64_t which)
{
    const size_t position = transposes(letter) ? static_cast<size_t>(i) * m + j : static_cast<size_t>(j) * m + i;
    T x = value_at<T>(position, which);
    if constexpr (is_complex<T>)
        if (letter == 'C' || letter == 'R') x = std::conj(x);
    return x;
}

// Tile by tile, as large matrices are checked by several contenders.
template <class T, class Want>
std::string mismatch_in(const T* got, int m, int n, const Want& want)
{
    constexpr int tile = 64;
    for (int j0 = 0; j0 < n; j0 += tile)
        for (int i0 = 0; i0 < m; i0 += tile)
            for (int j = j0; j < std::min(n, j0 + tile); ++j)
                for (int i = i0; i < std::min(m, i0 + tile); ++i) {
                    const T x = got[static_cast<size_t>(j) * m + i], w = want(i, j);
                    if (!(x == w)) return mismatch(static_cast<size_t>(j) * m + i, std::real(x), std::real(w));
                }
    return {};
}

// FFTW's plans of rank 0 copy any two strided dimensions to any two others.
struct Dimension {
    std::ptrdiff_t n, is, os;
};
template <class T>
class Plan {
    using PlanReal = void*(int rank, const Dimension*, int many_rank, const Dimension* many, void* in, void* out,
                           const int* kinds, unsigned flags);
    using PlanComplex = void*(int rank, const Dimension*, int many_rank, const Dimension* many, void* in, void* out,
                              int sign, unsigned flags);

public:
    Plan(const Library& fftw, const std::array<Dimension, 2>& dimensions, T* in, T* out)
    {
        const std::string prefix = sizeof(Real<T>) == 4 ? "fftwf_" : "fftw_";
        const auto find = [&](const char* name) { return fftw.find((prefix + name).c_str()); };
        execute_ = reinterpret_cast<void (*)(void*)>(find("execute"));
        destroy_ = reinterpret_cast<void (*)(void*)>(find("destroy_plan"));
        void* make = find(is_complex<T> ? "plan_guru64_dft" : "plan_guru64_r2r");
        if (make == nullptr || execute_ == nullptr || destroy_ == nullptr) return;
        constexpr unsigned measure = 0;
        plan_ = is_complex<T>
                    ? reinterpret_cast<PlanComplex*>(make)(0, nullptr, 2, dimensions.data(), in, out, -1, measure)
                    : reinterpret_cast<PlanReal*>(make)(0, nullptr, 2, dimensions.data(), in, out, nullptr, measure);
    }
    ~Plan()
    {
        if (plan_ != nullptr) destroy_(plan_);
    }
    Plan(const Plan&) = delete;
    Plan& operator=(const Plan&) = delete;
    explicit operator bool() const { return plan_ != nullptr; }
    void run() const { execute_(plan_); }

private:
    void* plan_ = nullptr;
    void (*execute_)(void*) = nullptr;
    void (*destroy_)(void*) = nullptr;
};

template <class T>
class Trans : public TransProblem {
public:
    explicit Trans(const TransCase& c)
        : case_(c), size_(static_cast<size_t>(c.rows) * c.cols), alpha_{T(Real<T>(c.alpha))}
    {
    }
    std::string symbol() const override { return case_.routine + "_"; }
    std::string check(void* routine) override
    {
        return check(Entrant([this, routine](long calls) { run(routine, calls); }));
    }
    using TransProblem::check;
    Entrant planned(const Library&) override { return {}; }
    Entrant out_of_place(const Library&) override { return {}; }

protected:
    using Integer = const int*;
    double bytes() const { return static_cast<double>(size_ * sizeof(T)); }
    // dimensions by which op(A) is read from an m x n matrix and written to a tight one
    static std::array<Dimension, 2> dimensions(char letter, std::ptrdiff_t m, std::ptrdiff_t n)
    {
        if (transposes(letter)) return {{{n, m, 1}, {m, 1, n}}};
        return {{{n, m, m}, {m, 1, 1}}};
    }
    Limit memcpy_limit(T* to, const T* from) const
    {
        const size_t bytes = size_ * sizeof(T);
        return {[=](long calls) {
                    for (; calls > 0; --calls) {
                        std::memcpy(to, from, bytes);
                        asm volatile("" ::: "memory");
                    }
                },
                2 * static_cast<double>(bytes)};
    }

    TransCase case_;
    size_t size_;
    T alpha_;
};

template <class T>
class Omatcopy final : public Trans<T> {
    using Trans<T>::case_;
    using typename Trans<T>::Integer;

public:
    using Call = void(const char*, const char*, Integer, Integer, const T*, const T*, Integer, T*, Integer);
    explicit Omatcopy(const TransCase& c)
        : Trans<T>(c), a_(this->size_), b_(this->size_, 2176), ldb_(transposes(c.letters[0]) ? c.cols : c.rows)
    {
        fill(a_, 0);
        std::fill_n(b_.data(), b_.size(), T{}); // pages of its own
    }
    double work() const override { return 2 * this->bytes(); }
    void run(void* routine, long calls) override
    {
        for (; calls > 0; --calls)
            reinterpret_cast<Call*>(routine)("C", case_.letters.c_str(), &case_.rows, &case_.cols, &this->alpha_,
                                             a_.data(), &case_.rows, b_.data(), &ldb_);
    }
    std::string check(const Entrant& run) override
    {
        std::fill_n(b_.data(), b_.size(), T{});
        run(1);
        return mismatch_in(b_.data(), ldb_, case_.rows + case_.cols - ldb_, [&](int i, int j) {
            return this->alpha_ * element<T>(case_.letters[0], i, j, case_.rows, 0);
        });
    }
    std::vector<Limit> limits() override { return {this->memcpy_limit(b_.data(), a_.data())}; }
    Entrant planned(const Library& fftw) override
    {
        if (case_.alpha != 1 || case_.letters == "C" || case_.letters == "R") return {};
        const auto plan = std::make_shared<Plan<T>>(fftw, this->dimensions(case_.letters[0], case_.rows, case_.cols),
                                                    a_.data(), b_.data());
        fill(a_, 0); // planning tries
        if (!*plan) return {};
        return [plan](long calls) {
            for (; calls > 0; --calls) plan->run();
        };
    }

private:
    Array<T> a_, b_;
    int ldb_;
};

template <class T>
class Imatcopy final : public Trans<T> {
    using Trans<T>::case_;
    using typename Trans<T>::Integer;

public:
    using Call = void(const char*, const char*, Integer, Integer, const T*, T*, Integer, Integer);
    explicit Imatcopy(const TransCase& c) : Trans<T>(c), a_(this->size_), other_(this->size_, 2176)
    {
        fill(a_, 0);
        std::fill_n(other_.data(), other_.size(), T{});
        back_ = T(Real<T>(1 / c.alpha));
    }
    double work() const override { return 2 * this->bytes(); }
    void run(void* routine, long calls) override
    {
        const auto call = reinterpret_cast<Call*>(routine);
        const char* letters = case_.letters.c_str();
        const int* sides[] = {&case_.rows, &case_.cols};
        const bool swap = transposes(*letters);
        for (; calls > 0; --calls, ++done_) {
            const bool back = done_ % 2 == 1;
            const int *rows = sides[back && swap], *cols = sides[!(back && swap)];
            call("C", letters, rows, cols, back ? &back_ : &this->alpha_, a_.data(), rows, swap ? cols : rows);
        }
    }
    std::string check(const Entrant& run) override
    {
        if (done_ % 2 == 1) run(1);
        done_ = 0;
        fill(a_, 0);
        run(1);
        const char letter = case_.letters[0];
        const int m = transposes(letter) ? case_.cols : case_.rows, n = case_.rows + case_.cols - m;
        const std::string there = mismatch_in(
            a_.data(), m, n, [&](int i, int j) { return this->alpha_ * element<T>(letter, i, j, case_.rows, 0); });
        if (!there.empty()) return there;
        run(1);
        return mismatch_in(a_.data(), case_.rows, case_.cols,
                           [&](int i, int j) { return element<T>('N', i, j, case_.rows, 0); });
    }
    std::vector<Limit> limits() override { return {this->memcpy_limit(other_.data(), a_.data())}; }
    Entrant planned(const Library& fftw) override
    {
        if (case_.alpha != 1 || case_.letters != "T") return {};
        const auto make = [&](int m, int n) {
            return std::make_shared<Plan<T>>(fftw, this->dimensions('T', m, n), a_.data(), a_.data());
        };
        const auto there = make(case_.rows, case_.cols), back = make(case_.cols, case_.rows);
        fill(a_, 0);
        if (!*there || !*back) return {};
        return [this, there, back](long calls) {
            for (; calls > 0; --calls, ++done_) (done_ % 2 == 0 ? there : back)->run();
        };
    }
    Entrant out_of_place(const Library& library) override
    {
        std::string name = this->symbol();
        name.replace(1, 1, "o");
        const auto call = reinterpret_cast<typename Omatcopy<T>::Call*>(library.find(name.c_str()));
        if (call == nullptr) return {};
        return [this, call](long calls) {
            const int m = case_.rows, n = case_.cols, ldb = transposes(case_.letters[0]) ? n : m;
            for (; calls > 0; --calls)
                call("C", case_.letters.c_str(), &m, &n, &this->alpha_, a_.data(), &m, other_.data(), &ldb);
        };
    }

private:
    Array<T> a_, other_;
    T back_;
    long done_ = 0; // calls since the matrix was as it is at first
};

template <class T>
class Omatadd final : public Trans<T> {
    using Trans<T>::case_;
    using typename Trans<T>::Integer;

public:
    using Call = void(const char*, const char*, const char*, Integer, Integer, const T*, const T*, Integer, const T*,
                      const T*, Integer, T*, Integer);
    explicit Omatadd(const TransCase& c)
        : Trans<T>(c), a_(this->size_), b_(this->size_, 1088), c_(this->size_, 2176),
          lda_(transposes(c.letters[0]) ? c.cols : c.rows), ldb_(transposes(c.letters[1]) ? c.cols : c.rows)
    {
        fill(a_, 0);
        fill(b_, 1);
        std::fill_n(c_.data(), c_.size(), T{});
    }
    double work() const override { return 3 * this->bytes(); }
    void run(void* routine, long calls) override
    {
        for (; calls > 0; --calls)
            reinterpret_cast<Call*>(routine)("C", &case_.letters[0], &case_.letters[1], &case_.rows, &case_.cols,
                                             &this->alpha_, a_.data(), &lda_, &beta_, b_.data(), &ldb_, c_.data(),
                                             &case_.rows);
    }
    std::string check(const Entrant& run) override
    {
        std::fill_n(c_.data(), c_.size(), T{});
        run(1);
        return mismatch_in(c_.data(), case_.rows, case_.cols, [&](int i, int j) {
            return this->alpha_ * element<T>(case_.letters[0], i, j, lda_, 0) +
                   beta_ * element<T>(case_.letters[1], i, j, ldb_, 1);
        });
    }
    std::vector<Limit> limits() override { return {this->memcpy_limit(c_.data(), a_.data())}; }

private:
    Array<T> a_, b_, c_;
    int lda_, ldb_;
    T beta_ = T(-1);
};

template <class T>
std::unique_ptr<TransProblem> make(const TransCase& c)
{
    const std::string stem = c.routine.substr(1);
    if (stem == "omatcopy") return std::make_unique<Omatcopy<T>>(c);
    if (stem == "imatcopy") return std::make_unique<Imatcopy<T>>(c);
    return std::make_unique<Omatadd<T>>(c);
}

} // namespace

const std::vector<std::string>& trans_routines()
{
    static const std::vector<std::string> all = [] {
        std::vector<std::string> names;
        for (const char* stem : {"omatcopy", "imatcopy", "omatadd"})
            for (const char letter : {'d', 's', 'c', 'z'}) names.push_back(letter + std::string(stem));
        return names;
    }();
    return all;
}

bool is_case(const TransCase& c)
{
    const auto& known = trans_routines();
    return std::find(known.begin(), known.end(), c.routine) != known.end() &&
           c.letters.size() == (c.routine.ends_with("add") ? 2 : 1) &&
           c.letters.find_first_not_of(c.routine.ends_with("add") ? "NT" : "NTRC") == std::string::npos;
}

std::unique_ptr<TransProblem> make_trans(const TransCase& c)
{
    if (!is_case(c)) return nullptr;
    switch (c.routine[0]) {
    case 's':
        return make<float>(c);
    case 'd':
        return make<double>(c);
    case 'c':
        return make<std::complex<float>>(c);
    default:
        return make<std::complex<double>>(c);
    }
}

} // namespace ork::peers
