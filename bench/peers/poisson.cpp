// SPDX-License-Identifier: MIT
#include "peers/poisson.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

namespace ork::peers {
namespace {

// Of ork/pde.h, looked up by name so that an older build can be measured too.
struct Interface {
    using Handle = void*;
    int64_t (*init_2d)(double, double, double, double, int64_t, int64_t, const char*, double, int64_t*, double*);
    int64_t (*commit_2d)(Handle*, int64_t*, double*);
    int64_t (*solve_2d)(double*, const double*, const double*, const double*, const double*, Handle*, int64_t*,
                        double*);
    int64_t (*free_2d)(Handle*, int64_t*);
    int64_t (*init_3d)(double, double, double, double, double, double, int64_t, int64_t, int64_t, const char*, double,
                       int64_t*, double*);
    int64_t (*commit_3d)(Handle*, Handle*, int64_t*, double*);
    int64_t (*solve_3d)(double*, const double*, const double*, const double*, const double*, const double*,
                        const double*, Handle*, Handle*, int64_t*, double*);
    int64_t (*free_3d)(Handle*, Handle*, int64_t*);

    bool open(const Library& library)
    {
        const auto get = [&](auto& routine, const char* name) {
            routine = reinterpret_cast<std::remove_reference_t<decltype(routine)>>(library.find(name));
            return routine != nullptr;
        };
        return get(init_2d, "ork_d_init_helmholtz_2d") && get(commit_2d, "ork_d_commit_helmholtz_2d") &&
               get(solve_2d, "ork_d_helmholtz_2d") && get(free_2d, "ork_free_helmholtz_2d") &&
               get(init_3d, "ork_d_init_helmholtz_3d") && get(commit_3d, "ork_d_commit_helmholtz_3d") &&
               get(solve_3d, "ork_d_helmholtz_3d") && get(free_3d, "ork_free_helmholtz_3d");
    }
};

class OrkSolver final : public PoissonSolver {
public:
    OrkSolver(const Interface& api, const PoissonCase& c, const double* right_side)
        : api_(api), flat_(c.dimensions == 2), n_(c.n + 1), row_(static_cast<size_t>(c.n) + 2),
          right_(row_ * row_ * (flat_ ? 1 : row_)), f_(right_.size(), 1088), zero_(row_ * (flat_ ? 1 : row_)),
          rpar_(static_cast<size_t>(12 * n_ + 20))
    {
        std::fill_n(right_.data(), right_.size(), 0.0);
        std::fill_n(zero_.data(), zero_.size(), 0.0);
        const auto n = static_cast<size_t>(c.n);
        for (size_t line = 0; line < c.points() / n; ++line)
            std::copy_n(right_side + line * n, n, &right_[place(1, line % n + 1, line / n + 1)]);
        ready_ = flat_ ? api_.init_2d(0, 1, 0, 1, n_, n_, "DDDD", 0, ipar_, rpar_.data()) == 0 &&
                             api_.commit_2d(&x_, ipar_, rpar_.data()) == 0
                       : api_.init_3d(0, 1, 0, 1, 0, 1, n_, n_, n_, "DDDDDD", 0, ipar_, rpar_.data()) == 0 &&
                             api_.commit_3d(&x_, &y_, ipar_, rpar_.data()) == 0;
    }
    ~OrkSolver() override { flat_ ? api_.free_2d(&x_, ipar_) : api_.free_3d(&x_, &y_, ipar_); }
    OrkSolver(const OrkSolver&) = delete;
    OrkSolver& operator=(const OrkSolver&) = delete;

    bool ready() const { return ready_; }
    void run() override
    {
        std::memcpy(f_.data(), right_.data(), f_.size() * sizeof(double));
        const double* o = zero_.data();
        flat_ ? api_.solve_2d(f_.data(), o, o, o, o, &x_, ipar_, rpar_.data())
              : api_.solve_3d(f_.data(), o, o, o, o, o, o, &x_, &y_, ipar_, rpar_.data());
    }
    double solution(int i, int j, int k) const override
    {
        return f_[place(static_cast<size_t>(i), static_cast<size_t>(j), static_cast<size_t>(k))];
    }

private:
    size_t place(size_t i, size_t j, size_t k) const { return i + row_ * (j + (flat_ ? 0 : row_ * k)); }

    Interface api_;
    bool flat_, ready_;
    int64_t n_; // intervals
    size_t row_;
    Array<double> right_, f_, zero_, rpar_;
    int64_t ipar_[128];
    void *x_ = nullptr, *y_ = nullptr;
};

} // namespace

std::unique_ptr<PoissonSolver> ork_poisson(const Library& library, const PoissonCase& c, const double* right_side)
{
    Interface api;
    if (!api.open(library)) return nullptr;
    auto solver = std::make_unique<OrkSolver>(api, c, right_side);
    if (!solver->ready()) return nullptr;
    return solver;
}

std::string check(PoissonSolver& solver, const PoissonCase& c, const double* right_side)
{
    solver.run();
    const double h2 = 1.0 / ((c.n + 1.0) * (c.n + 1.0));
    const auto u = [&](int i, int j, int k) {
        const bool inside = std::min({i, j, k}) >= 1 && std::max({i, j, k}) <= c.n;
        return inside ? solver.solution(i, j, k) : 0.0;
    };
    double largest = 0, worst = 0;
    size_t at = 0, point = 0;
    for (int k = 1; k <= (c.dimensions == 2 ? 1 : c.n); ++k)
        for (int j = 1; j <= c.n; ++j)
            for (int i = 1; i <= c.n; ++i, ++point) {
                const double here = u(i, j, k);
                double left = (4 * here - u(i - 1, j, k) - u(i + 1, j, k) - u(i, j - 1, k) - u(i, j + 1, k)) / h2;
                if (c.dimensions == 3) left += (2 * here - u(i, j, k - 1) - u(i, j, k + 1)) / h2;
                largest = std::max(largest, std::fabs(here));
                const double off = std::fabs(left - right_side[point]);
                if (!(off <= worst)) worst = off, at = point;
            }
    const double bound = 128 * std::numeric_limits<double>::epsilon() * largest / h2;
    return worst <= bound && largest > 0 ? std::string() : "residual: " + mismatch(at, worst, 0);
}

} // namespace ork::peers
