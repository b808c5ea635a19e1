// SPDX-License-Identifier: MIT
// A task with a fixed x and tight arrays, and the full result that it has to give.
#pragma once

#include <complex>
#include <vector>

#include <gtest/gtest.h>

#include "ork/abi/conv.h"
#include "support/random.h"
#include "support/reference.h"

namespace ork::test {

using Ints = std::vector<std::int32_t>;

template <class T>
struct Task {
    std::int32_t job;
    Ints nx, ny, nz;
    std::vector<T> x, y;
    ork_conv_task* p = nullptr;

    Task(std::int32_t job, std::int32_t mode, const Ints& nx, const Ints& ny)
        : job(job), nx(nx), ny(ny), x(uniform_values<T>(elements(nx), 1)), y(uniform_values<T>(elements(ny), 2))
    {
        for (std::size_t d = 0; d < nx.size(); ++d) nz.push_back(nx[d] + ny[d] - 1);
        EXPECT_EQ(ork_conv_newtaskx(&p, job, 0, mode, is_complex<T> ? ORK_CONV_COMPLEX : ORK_CONV_REAL,
                                    sizeof(Real<T>) == 8 ? ORK_CONV_DOUBLE : ORK_CONV_SINGLE,
                                    static_cast<std::int32_t>(nx.size()), nx.data(), ny.data(), nz.data(), x.data(),
                                    nullptr),
                  0);
    }
    ~Task() { ork_conv_deletetask(&p); }
    Task(const Task&) = delete;

    static std::int64_t elements(const Ints& shape)
    {
        std::int64_t product = 1;
        for (const auto n : shape) product *= n;
        return product;
    }
    std::size_t outputs() const { return static_cast<std::size_t>(elements(nz)); }
    std::int32_t exec(T* z) { return ork_conv_exec(p, x.data(), nullptr, y.data(), nullptr, z, nullptr); }

    // In one and two dimensions. The scale is that of transforms: the product of the norms.
    std::vector<Expected<long double>> expected() const
    {
        const bool correlates = job == ORK_CONV_CORRELATION;
        const auto at = [](const Ints& n, std::size_t d) { return d < n.size() ? n[d] : 1; };
        std::vector<Expected<long double>> z(outputs());
        long double squares[2] = {};
        for (const T& a : x) squares[0] += std::norm(std::complex<long double>(a));
        for (const T& a : y) squares[1] += std::norm(std::complex<long double>(a));
        for (std::int32_t i1 = 0; i1 < at(nx, 1); ++i1)
            for (std::int32_t i0 = 0; i0 < nx[0]; ++i0)
                for (std::int32_t j1 = 0; j1 < at(ny, 1); ++j1)
                    for (std::int32_t j0 = 0; j0 < ny[0]; ++j0) {
                        // a lag of 1 - nx is output 0
                        const std::int32_t k0 = correlates ? j0 - i0 + nx[0] - 1 : i0 + j0;
                        const std::int32_t k1 = correlates ? j1 - i1 + at(nx, 1) - 1 : i1 + j1;
                        const Wide<long double> a(x[static_cast<std::size_t>(i1 * nx[0] + i0)]),
                            b(y[static_cast<std::size_t>(j1 * ny[0] + j0)]);
                        z[static_cast<std::size_t>(k1 * nz[0] + k0)].add(multiply<T>(correlates ? conj(a) : a, b));
                    }
        for (auto& output : z) output.scale = std::sqrt(squares[0] * squares[1]);
        return z;
    }
};

} // namespace ork::test
