// SPDX-License-Identifier: MIT
// C <- alpha op(A) op(B) + beta C. The result is checked by Freivalds' method: for a vector v with entries of magnitude
// one, C v must equal alpha op(A) (op(B) v) + beta C0 v to rounding. That takes O(n^2) work in long double, so every
// size can be checked, and a wrong element can't hide: v has no zero.
#include <algorithm>
#include <cmath>
#include <limits>

#include "peers/limits.h"
#include "peers/problem.h"

namespace ork::peers {
namespace {

using Wide = std::complex<long double>;

template <class T>
using Gemm = void(const char* transa, const char* transb, const int* m, const int* n, const int* k, const T* alpha,
                  const T* a, const int* lda, const T* b, const int* ldb, const T* beta, T* c, const int* ldc,
                  size_t length_transa, size_t length_transb);

// op(M) as the product sees it, M stored column by column.
template <class T>
struct View {
    const T* data;
    size_t ld;
    char trans;

    T operator()(size_t row, size_t column) const
    {
        const T value = trans == 'N' ? data[row + column * ld] : data[column + row * ld];
        if constexpr (is_complex<T>) return trans == 'C' ? std::conj(value) : value;
        return value;
    }
};

// y <- M x and, in `size`, |M| |x|, whose rounding error bounds that of y.
template <class T>
void multiply(View<T> matrix, size_t rows, size_t columns, const std::vector<Wide>& x,
              const std::vector<long double>& size_x, std::vector<Wide>& y, std::vector<long double>& size_y)
{
    y.assign(rows, 0);
    size_y.assign(rows, 0);
    for (size_t j = 0; j < columns; ++j)
        for (size_t i = 0; i < rows; ++i) {
            const Wide value = matrix(i, j);
            y[i] += value * x[j];
            size_y[i] += (std::fabs(value.real()) + std::fabs(value.imag())) * size_x[j];
        }
}

template <class T>
class GemmProblem final : public Problem {
public:
    explicit GemmProblem(const GemmCase& c)
        : case_(c), m_(static_cast<size_t>(c.m)), n_(static_cast<size_t>(c.n)), k_(static_cast<size_t>(c.k)),
          a_(m_ * k_, 0), b_(k_ * n_, 1088), c_(m_ * n_, 2176), start_(m_ * n_)
    {
        Random random;
        random.fill(a_);
        random.fill(b_);
        random.fill(start_);
    }

    std::string symbol() const override { return std::string(1, case_.precision) + "gemm_"; }

    double work() const override { return (is_complex<T> ? 8.0 : 2.0) * case_.m * case_.n * case_.k; }

    void run(void* routine, long calls) override
    {
        const auto gemm = reinterpret_cast<Gemm<T>*>(routine);
        const int lda = case_.transa == 'N' ? case_.m : case_.k, ldb = case_.transb == 'N' ? case_.k : case_.n;
        const T alpha = static_cast<Real<T>>(case_.alpha), beta = static_cast<Real<T>>(case_.beta);
        for (; calls > 0; --calls)
            gemm(&case_.transa, &case_.transb, &case_.m, &case_.n, &case_.k, &alpha, a_.data(), &lda, b_.data(), &ldb,
                 &beta, c_.data(), &case_.m, 1, 1);
    }

    std::string check(void* routine) override
    {
        std::copy(start_.data(), start_.data() + start_.size(), c_.data());
        if (case_.beta == 0) std::fill(c_.data(), c_.data() + c_.size(), T(std::numeric_limits<Real<T>>::quiet_NaN()));
        run(routine, 1);
        std::vector<Wide> v(n_), bv, abv, cv, start_v;
        for (size_t j = 0; j < n_; ++j) v[j] = (j * 2654435761u >> 7) % 2 == 0 ? 1.0L : -1.0L;
        std::vector<long double> ones(n_, 1), size_b, size_ab, size_c, size_start;
        const View<T> a{a_.data(), case_.transa == 'N' ? m_ : k_, case_.transa};
        const View<T> b{b_.data(), case_.transb == 'N' ? k_ : n_, case_.transb};
        multiply(b, k_, n_, v, ones, bv, size_b);
        multiply(a, m_, k_, bv, size_b, abv, size_ab);
        multiply(View<T>{c_.data(), m_, 'N'}, m_, n_, v, ones, cv, size_c);
        multiply(View<T>{start_.data(), m_, 'N'}, m_, n_, v, ones, start_v, size_start);
        const long double alpha = case_.alpha, beta = case_.beta, eps = std::numeric_limits<Real<T>>::epsilon();
        for (size_t i = 0; i < m_; ++i) {
            const Wide want = alpha * abv[i] + beta * start_v[i];
            const long double bound = std::fabs(alpha) * size_ab[i] + std::fabs(beta) * size_start[i];
            if (!(std::abs(cv[i] - want) <= static_cast<long double>(k_ + 4) * eps * bound))
                return "row " + std::to_string(i) + ", sum over columns: " + mismatch(i, cv[i].real(), want.real());
        }
        return {};
    }

    std::vector<Limit> limits() override
    {
        std::vector<Limit> all;
        for (const ArithmeticLoop& loop : arithmetic_loops(sizeof(Real<T>) == 4))
            all.push_back({[run = loop.run](long calls) { run(calls); }, static_cast<double>(loop.flops)});
        return all;
    }

private:
    GemmCase case_;
    size_t m_, n_, k_;
    Array<T> a_, b_, c_, start_;
};

} // namespace

std::unique_ptr<Problem> make_gemm(const GemmCase& c)
{
    switch (c.precision) {
    case 's':
        return std::make_unique<GemmProblem<float>>(c);
    case 'd':
        return std::make_unique<GemmProblem<double>>(c);
    case 'c':
        return std::make_unique<GemmProblem<std::complex<float>>>(c);
    case 'z':
        return std::make_unique<GemmProblem<std::complex<double>>>(c);
    default:
        return nullptr;
    }
}

} // namespace ork::peers
