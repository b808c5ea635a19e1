// SPDX-License-Identifier: MIT
// Without memory for blocks the work is done with what the caller gave.
#include <fstream>
#include <unistd.h>

#include "lapack.h"
#include "ork/ork.h"
#include "support/process.h"

namespace ork::test {

namespace {

// Bytes of address space in use.
std::size_t used()
{
    std::size_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    return pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

bool is_small(const Vector& got, const Vector& want)
{
    Vector difference(got.size());
    for (std::size_t i = 0; i < got.size(); ++i) difference[i] = got[i] - want[i];
    return largest(difference) <= 1e-9L * static_cast<long double>(got.size());
}

TEST(LapackMemory, IsNotNeeded)
{
    if (sanitized) GTEST_SKIP() << "sanitizers reserve more than any limit";
    const auto result = run_child([] {
        using T = double;
        const std::int64_t n = 300;
        auto a = random_matrix<T>(n, n);
        for (std::int64_t i = 0; i < n; ++i) a(i, i) += 30;
        Dense<T> lu = a, qr = a, q = a, c = a;
        const Vector x = random_vector(n), ax = product(a, x), y = random_vector(n, 3);
        std::vector<std::int64_t> ipiv(n);
        std::vector<T> tau(n), work(n);
        lapack<T>("getrf", n, n, lu.data(), lu.lead, ipiv.data());
        ork_set_num_threads(1);
        ork_free_buffers();
        int info = 0;
        {
            const ScopedLimit limit(RLIMIT_AS, used());
            info |= lapack<T>("getri", n, lu.data(), lu.lead, ipiv.data(), work.data(), n) != 0;
            info |= lapack<T>("geqrf", n, n, qr.data(), qr.lead, tau.data(), work.data(), n) != 0;
            q.values = qr.values;
            c.values = a.values;
            info |= lapack<T>("ormqr", 'L', 'T', n, n, n, qr.data(), qr.lead, tau.data(), c.data(), c.lead, work.data(),
                              n) != 0;
            info |= lapack<T>("orgqr", n, n, n, q.data(), q.lead, tau.data(), work.data(), n) != 0;
        }
        if (info != 0) return 1;
        if (!is_small(product(a, product(lu, x)), x)) return 2;
        if (!is_small(product(q, product(qr, x, on_and_above)), ax)) return 3;
        if (!is_small(product(c, x), product(qr, x, on_and_above))) return 4;
        return is_small(product(q, product(q, y), 'C'), y) ? 0 : 5;
    });
    EXPECT_TRUE(result.ok()) << result.describe();
}

} // namespace

} // namespace ork::test
