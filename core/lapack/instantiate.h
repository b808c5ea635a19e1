// SPDX-License-Identifier: MIT
// INSTANTIATE(getrf) in a driver's source: the driver in all four precisions.
#pragma once

#include <complex>

#define INSTANTIATE(driver)                                                                                            \
    template decltype(driver<float>) driver<float>;                                                                    \
    template decltype(driver<double>) driver<double>;                                                                  \
    template decltype(driver<std::complex<float>>) driver<std::complex<float>>;                                        \
    template decltype(driver<std::complex<double>>) driver<std::complex<double>>;
