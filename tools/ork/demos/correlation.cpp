// SPDX-License-Identifier: MIT
#include "demos/correlation.h"

#include <stdexcept>

#include "peers/measure.h"

namespace ork::tool {
namespace {

void expect_success(int32_t status)
{
    if (status != ORK_CONV_OK) throw std::runtime_error(ork_conv_status_text(status));
}

} // namespace

Correlation::Correlation(const std::vector<double>& x, const Extents& x_extents, const Extents& y_extents,
                         const Extents& first, const Extents& z_extents, int32_t mode)
    : x_(x)
{
    for (const int32_t n : z_extents) outputs_ *= static_cast<size_t>(n);
    expect_success(ork_conv_newtaskx(&task_, ORK_CONV_CORRELATION, 0, mode, ORK_CONV_REAL, ORK_CONV_DOUBLE,
                                     static_cast<int32_t>(x_extents.size()), x_extents.data(), y_extents.data(),
                                     z_extents.data(), x_.data(), nullptr));
    ork_conv_edittask(task_, ORK_CONV_START, first.data());
}

Correlation::~Correlation() { ork_conv_deletetask(&task_); }

std::vector<double> Correlation::operator()(const std::vector<double>& y) const
{
    std::vector<double> z(outputs_);
    expect_success(ork_conv_execx(task_, y.data(), nullptr, z.data(), nullptr));
    return z;
}

double Correlation::seconds(const std::vector<double>& y, int runs) const
{
    std::vector<double> all;
    for (int run = 0; run < runs; ++run) {
        const double start = peers::now(peers::Clock::wall);
        (*this)(y);
        all.push_back(peers::now(peers::Clock::wall) - start);
    }
    return peers::median(all);
}

} // namespace ork::tool
