// SPDX-License-Identifier: MIT
// One measurement update of a hundred thousand Kalman filters: of each vehicle, position and velocity are predicted and
// measured, and S w = y is solved, S the covariance (6 x 6) of y, what was measured less what was predicted. w turns
// into the correction of the state, y' w into the test whether the measurement belongs to the vehicle at all.
//
// The vehicles are made up, from a fixed seed. A state x = (position, velocity) has uncertainties along axes of its
// own,
//
//     P0 = diag(U diag(s^2) U', V diag(t^2) V'),   s in 0.5 .. 4 m, t in 0.05 .. 0.5 m/s, U and V rotations,
//
// moves on by a second, P = F P0 F' + Q, F = [I I; 0 I], Q a random acceleration, and is measured with 0.5 .. 3 m and
// 0.05 .. 0.3 m/s: S = P + R. y = L z with S = L L' in long double and z normal, so y' w must be z' z.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <fmt/format.h>
#include <stdexcept>
#include <vector>

#include "demos/demo.h"
#include "ork/lapack.h"
#include "ork/lapack_compact.h"
#include "ork/ork.h"
#include "peers/measure.h"
#include "peers/problem.h"

namespace ork::tool {
namespace {

constexpr int64_t order = 6, vehicles = 100000, elements = order * order;
constexpr double eps = 0x1p-52;
constexpr int64_t columns = ORK_COMPACT_COLUMNS;
using Numbers = std::vector<double>;

struct Updates {
    Numbers covariance, innovation; // S and y of all vehicles
    Numbers distance;               // z' z
};

double between(peers::Random& random, double low, double high) { return low + (high - low) * (random.next() + 1) / 2; }

double normal(peers::Random& random) // Box and Muller
{
    const double radius = std::sqrt(-2 * std::log(between(random, 0x1p-53, 1)));
    return radius * std::cos(M_PI * random.next());
}

using Block = std::array<std::array<double, 3>, 3>;

// U diag(s^2) U' for a random rotation U, by the matrix of a quaternion.
Block spread(peers::Random& random, double low, double high)
{
    double q[4], length = 0;
    for (double& part : q) part = normal(random), length += part * part;
    for (double& part : q) part /= std::sqrt(length);
    const auto [w, x, y, z] = q;
    const double u[3][3] = {{1 - 2 * (y * y + z * z), 2 * (x * y - z * w), 2 * (x * z + y * w)},
                            {2 * (x * y + z * w), 1 - 2 * (x * x + z * z), 2 * (y * z - x * w)},
                            {2 * (x * z - y * w), 2 * (y * z + x * w), 1 - 2 * (x * x + y * y)}};
    Block c{};
    for (int axis = 0; axis < 3; ++axis) {
        const double s = between(random, low, high);
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 3; ++j) c[i][j] += u[i][axis] * s * s * u[j][axis];
    }
    return c;
}

void make_covariance(peers::Random& random, double* s)
{
    const Block position = spread(random, 0.5, 4), velocity = spread(random, 0.05, 0.5);
    const double acceleration = between(random, 0.1, 0.6), q = acceleration * acceleration; // m^2/s^3
    const double meters = between(random, 0.5, 3), speed = between(random, 0.05, 0.3);
    const auto at = [&](int i, int j) -> double& { return s[i + j * order]; };
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) {
            const double same = i == j;
            at(i, j) = position[i][j] + velocity[i][j] + same * (q / 3 + meters * meters);
            at(i + 3, j) = at(i, j + 3) = velocity[i][j] + same * q / 2;
            at(i + 3, j + 3) = velocity[i][j] + same * (q + speed * speed);
        }
    for (int j = 0; j < order; ++j)
        for (int i = 0; i < j; ++i) at(j, i) = at(i, j); // to the last bit
}

// L z, S = L L'.
void make_innovation(const double* s, const double* z, double* y)
{
    long double l[order][order] = {};
    for (int j = 0; j < order; ++j)
        for (int i = j; i < order; ++i) {
            long double sum = s[i + j * order];
            for (int k = 0; k < j; ++k) sum -= l[i][k] * l[j][k];
            l[i][j] = i == j ? std::sqrt(sum) : sum / l[j][j];
        }
    for (int i = 0; i < order; ++i) {
        long double sum = 0;
        for (int k = 0; k <= i; ++k) sum += l[i][k] * z[k];
        y[i] = static_cast<double>(sum);
    }
}

Updates make_updates()
{
    Updates u{Numbers(elements * vehicles), Numbers(order * vehicles), Numbers(vehicles)};
    peers::Random random;
    for (int64_t q = 0; q < vehicles; ++q) {
        double z[order];
        for (double& part : z) {
            part = normal(random);
            u.distance[static_cast<size_t>(q)] += part * part;
        }
        make_covariance(random, &u.covariance[static_cast<size_t>(q * elements)]);
        make_innovation(&u.covariance[static_cast<size_t>(q * elements)], z,
                        &u.innovation[static_cast<size_t>(q * order)]);
    }
    return u;
}

void require(int64_t status, const char* what)
{
    if (status != 0) throw std::runtime_error(fmt::format("{}: status {}", what, status));
}

// LAPACK's dgesv, a call a system, each on a copy of its matrix, which it overwrites.
class OneByOne {
public:
    void solve(const Updates& u, Numbers& w)
    {
        w = u.innovation;
        for (int64_t q = 0; q < vehicles; ++q) {
            double a[elements];
            int64_t pivots[order], info = 0;
            const int64_t one = 1;
            std::memcpy(a, &u.covariance[static_cast<size_t>(q * elements)], sizeof a);
            ork_lapack_dgesv(&order, &one, a, &order, pivots, &w[static_cast<size_t>(q * order)], &order, &info);
            require(info, "dgesv");
        }
    }
};

// In packs, by LU without exchanges of rows or by Cholesky.
class Packed {
public:
    explicit Packed(bool cholesky)
        : cholesky_(cholesky), format_(ork_compact_format()),
          a_(static_cast<size_t>(ork_compact_dsize(order, order, format_, vehicles)) / sizeof(double)),
          b_(static_cast<size_t>(ork_compact_dsize(order, 1, format_, vehicles)) / sizeof(double))
    {
    }
    void pack(const Updates& u)
    {
        ork_compact_dpack_strided(columns, order, order, u.covariance.data(), order, elements, a_.data(), order,
                                  format_, vehicles);
        ork_compact_dpack_strided(columns, order, 1, u.innovation.data(), order, order, b_.data(), order, format_,
                                  vehicles);
    }
    void solve()
    {
        if (cholesky_)
            require(ork_compact_dposv(columns, 'L', order, 1, a_.data(), order, b_.data(), order, format_, vehicles),
                    "posv");
        else
            require(ork_compact_dgesvnp(columns, order, 1, a_.data(), order, b_.data(), order, format_, vehicles),
                    "gesvnp");
    }
    void unpack(Numbers& w)
    {
        w.resize(static_cast<size_t>(order * vehicles));
        ork_compact_dunpack_strided(columns, order, 1, w.data(), order, order, b_.data(), order, format_, vehicles);
    }

private:
    bool cholesky_;
    int64_t format_;
    Numbers a_, b_;
};

// Largest |S w - y| over eps (|S| |w| + |y|), and the largest error of y' w, relative to z' z.
void verify(const std::string& way, const Updates& u, const Numbers& w, Report& report)
{
    double residual = 0, distance = 0;
    for (int64_t q = 0; q < vehicles; ++q) {
        const double *s = &u.covariance[static_cast<size_t>(q * elements)], *x = &w[static_cast<size_t>(q * order)];
        const double* y = &u.innovation[static_cast<size_t>(q * order)];
        long double product = 0;
        for (int i = 0; i < order; ++i) {
            long double sum = -static_cast<long double>(y[i]), size = std::fabs(y[i]);
            for (int k = 0; k < order; ++k) {
                const long double term = static_cast<long double>(s[i + k * order]) * x[k];
                sum += term, size += std::fabs(term);
            }
            keep_largest(residual, std::fabs(sum) / size / eps);
            product += static_cast<long double>(y[i]) * x[i];
        }
        const double want = u.distance[static_cast<size_t>(q)];
        keep_largest(distance, std::fabs(product - want) / want);
    }
    report.check("residual of every system, " + way + ", in units of rounding", residual, 4 * order);
    report.check("y' w against z' z, " + way, distance, 1e-9);
}

void verify_agreement(const std::string& way, const Numbers& w, const Numbers& other, Report& report)
{
    double worst = 0;
    for (size_t q = 0; q < w.size(); q += order) {
        double size = 0, apart = 0;
        for (size_t i = q; i < q + order; ++i) {
            size = std::max(size, std::fabs(other[i]));
            keep_largest(apart, std::fabs(w[i] - other[i]));
        }
        keep_largest(worst, apart / size);
    }
    report.check("solutions of dgesv and " + way + " apart", worst, 1e-10);
}

void compare(const Updates& u, Report& report)
{
    Numbers w;
    OneByOne single;
    Packed lu(false), cholesky(true);
    std::vector<double> singles, with_packing[2], in_packs[2];
    for (int round = 0; round < 7; ++round) {
        const auto time = [](auto&& work) { return peers::time_of([&](long) { work(); }, 1, peers::Clock::processor); };
        singles.push_back(time([&] { single.solve(u, w); }));
        for (Packed* packed : {&lu, &cholesky}) {
            const int i = packed == &cholesky;
            const double pack = time([&] { packed->pack(u); }), solve = time([&] { packed->solve(); });
            const double unpack = time([&] { packed->unpack(w); });
            in_packs[i].push_back(solve);
            with_packing[i].push_back(pack + solve + unpack);
        }
    }
    const auto line = [&](const char* what, const std::vector<double>& seconds) {
        const double median = peers::median(seconds);
        report.line(fmt::format("  {:<46}{:>8.2f} ms {:>7.2f} million systems a second {:>6.1f} times", what,
                                1e3 * median, static_cast<double>(vehicles) / median / 1e6,
                                peers::speed_ratio(seconds, singles)));
    };
    line("one by one, dgesv", singles);
    line("in packs, LU, packing included", with_packing[0]);
    line("in packs, Cholesky, packing included", with_packing[1]);
    line("in packs, LU, data already packed", in_packs[0]);
    line("in packs, Cholesky, data already packed", in_packs[1]);
    const double n = order;
    report.timing(peers::median(in_packs[0]), static_cast<double>(vehicles) * (2 * n * n * n / 3 + 2 * n * n));
}

void run(const Places&, Report& report)
{
    const int before = ork_set_num_threads_local(1); // a core against a core
    const Updates u = make_updates();
    Numbers single, lu, cholesky;
    OneByOne().solve(u, single);
    for (const bool by_cholesky : {false, true}) {
        Packed packed(by_cholesky);
        packed.pack(u);
        packed.solve();
        packed.unpack(by_cholesky ? cholesky : lu);
    }
    verify("one by one", u, single, report);
    verify("packs by LU", u, lu, report);
    verify("packs by Cholesky", u, cholesky, report);
    verify_agreement("LU", lu, single, report);
    verify_agreement("Cholesky", cholesky, single, report);

    // 12.59 is exceeded by the sum of six squares of normal numbers with a probability of 5 %.
    int64_t outside = 0;
    for (int64_t q = 0; q < vehicles; ++q) {
        double distance = 0;
        for (int64_t i = q * order; i < (q + 1) * order; ++i)
            distance += u.innovation[static_cast<size_t>(i)] * lu[static_cast<size_t>(i)];
        outside += distance > 12.5916;
    }
    const double share = 100 * static_cast<double>(outside) / static_cast<double>(vehicles);
    report.check("measurements outside of their 95 % gate, in per cent, from 5", std::fabs(share - 5), 0.3);
    report.line(fmt::format("  {} vehicles, one core; {:.2f} % of the measurements fall outside of a 95 % gate",
                            vehicles, share));
    compare(u, report);
    ork_set_num_threads_local(before);
}

} // namespace

const Demo kalman = {"kalman", "none; the vehicles are made up, from a fixed seed",
                     "the measurement update of 100000 Kalman filters: 6 x 6 systems one by one and in packs", run};

} // namespace ork::tool
