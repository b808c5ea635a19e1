// SPDX-License-Identifier: MIT
// Sine transforms of FFTW, all lines of a square (or of both directions of every plane) by one plan, and tridiagonal
// systems side by side, 16 at a time (-O3 -msse4.2). Rows begin at multiples of 16 bytes and are not a power of two
// apart.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <emmintrin.h>

#include "peers/poisson.h"

namespace ork::peers {
namespace {

struct Interface {
    void* (*plan)(int rank, const int* n, int howmany, double* in, const int* inembed, int istride, int idist,
                  double* out, const int* onembed, int ostride, int odist, const int* kind, unsigned flags);
    void (*execute)(void* plan);
    void (*destroy)(void* plan);

    bool open(const Library& library)
    {
        const auto get = [&](auto& routine, const char* name) {
            routine = reinterpret_cast<std::remove_reference_t<decltype(routine)>>(library.find(name));
            return routine != nullptr;
        };
        return get(plan, "fftw_plan_many_r2r") && get(execute, "fftw_execute") && get(destroy, "fftw_destroy_plan");
    }
};
constexpr int rodft00 = 7;
constexpr unsigned measure = 0;

constexpr int block = 16, registers = block / 2;

class FftwSolver final : public PoissonSolver {
public:
    FftwSolver(const Interface& api, const PoissonCase& c, const double* right_side)
        : api_(api), flat_(c.dimensions == 2), n_(static_cast<size_t>(c.n)), row_((n_ + block) / 2 * 2),
          plane_(row_ * n_), right_(plane_ * (flat_ ? 1 : n_)), f_(right_.size(), 1088), eigenvalue_(row_, 64),
          ratio_(n_ * block, 2112)
    {
        const int lengths[2] = {c.n, c.n}, embed[2] = {c.n, static_cast<int>(row_)}, kinds[2] = {rodft00, rodft00};
        const int distance = static_cast<int>(flat_ ? row_ : plane_), rank = flat_ ? 1 : 2;
        const int* inside = flat_ ? nullptr : embed;
        plan_ = api_.plan(rank, lengths, c.n, f_.data(), inside, 1, distance, f_.data(), inside, 1, distance, kinds,
                          measure);
        // Scaled by what the transforms there and back multiply by, and by h^2.
        const double side = c.n + 1.0, factor = 1 / (std::pow(2 * side, rank) * side * side);
        std::fill_n(right_.data(), right_.size(), 0.0);
        for (size_t line = 0; line < c.points() / n_; ++line)
            for (size_t i = 0; i < n_; ++i) right_[line * row_ + i] = factor * right_side[line * n_ + i];
        for (size_t i = 0; i < row_; ++i) {
            const double sine = std::sin(static_cast<double>(std::min(i, n_ - 1) + 1) * M_PI / (2 * side));
            eigenvalue_[i] = 4 * sine * sine;
        }
    }
    ~FftwSolver() override
    {
        if (plan_ != nullptr) api_.destroy(plan_);
    }
    FftwSolver(const FftwSolver&) = delete;
    FftwSolver& operator=(const FftwSolver&) = delete;

    bool ready() const { return plan_ != nullptr; }
    void run() override
    {
        std::memcpy(f_.data(), right_.data(), f_.size() * sizeof(double));
        api_.execute(plan_);
        const size_t rows = flat_ ? 1 : n_, stride = flat_ ? row_ : plane_;
        for (size_t j = 0; j < rows; ++j)
            for (size_t i = 0; i < n_; i += block)
                solve(f_.data() + j * row_ + i, stride, eigenvalue_.data() + i, flat_ ? 2 : 2 + eigenvalue_[j]);
        api_.execute(plan_);
    }
    double solution(int i, int j, int k) const override
    {
        return f_[static_cast<size_t>(i - 1) + row_ * static_cast<size_t>(j - 1) +
                  (flat_ ? 0 : plane_ * static_cast<size_t>(k - 1))];
    }

private:
    // (base + eigenvalue) v(j) - v(j-1) - v(j+1) = g(j) for 16 systems. Rows are long enough for whole blocks.
    void solve(double* g, size_t stride, const double* eigenvalue, double base)
    {
        __m128d d[registers], c[registers], v[registers];
        for (int r = 0; r < registers; ++r) {
            d[r] = _mm_add_pd(_mm_set1_pd(base), _mm_load_pd(eigenvalue + 2 * r));
            c[r] = v[r] = _mm_setzero_pd();
        }
        for (size_t j = 0; j < n_; ++j)
            for (int r = 0; r < registers; ++r) {
                double* p = g + j * stride + 2 * r;
                c[r] = _mm_div_pd(_mm_set1_pd(1), _mm_sub_pd(d[r], c[r]));
                v[r] = _mm_mul_pd(_mm_add_pd(_mm_load_pd(p), v[r]), c[r]);
                _mm_store_pd(&ratio_[j * block] + 2 * r, c[r]);
                _mm_store_pd(p, v[r]);
            }
        for (size_t j = n_ - 1; j-- > 0;)
            for (int r = 0; r < registers; ++r) {
                double* p = g + j * stride + 2 * r;
                v[r] = _mm_add_pd(_mm_load_pd(p), _mm_mul_pd(_mm_load_pd(&ratio_[j * block] + 2 * r), v[r]));
                _mm_store_pd(p, v[r]);
            }
    }

    Interface api_;
    bool flat_;
    size_t n_, row_, plane_;
    Array<double> right_, f_, eigenvalue_, ratio_;
    void* plan_;
};

} // namespace

std::unique_ptr<PoissonSolver> fftw_poisson(const Library& library, const PoissonCase& c, const double* right_side)
{
    Interface api;
    if (!api.open(library)) return nullptr;
    auto solver = std::make_unique<FftwSolver>(api, c, right_side);
    if (!solver->ready()) return nullptr;
    return solver;
}

} // namespace ork::peers
