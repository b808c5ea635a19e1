// SPDX-License-Identifier: MIT
// What a transform must give: sums in long double, and arrays in any layout with what lies between their elements.
#pragma once

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdint>
#include <functional>
#include <limits>
#include <numbers>
#include <numeric>
#include <vector>

#include <gtest/gtest.h>

#include "ork/dft.h"
#include "support/compare.h"
#include "support/random.h"

namespace ork::test {

using Integers = std::vector<std::int64_t>;
using Number = std::complex<long double>;
using Numbers = std::vector<Number>; // dimension 0 runs fastest

inline std::int64_t product(const Integers& n)
{
    return std::accumulate(n.begin(), n.end(), std::int64_t{1}, std::multiplies<>());
}

// Along every dimension in turn; sign -1 is forward.
inline Numbers dft(Numbers x, const Integers& n, int sign)
{
    std::int64_t stride = 1;
    for (const std::int64_t length : n) {
        Numbers root(static_cast<std::size_t>(length)), line(root.size());
        for (std::int64_t k = 0; k < length; ++k)
            root[static_cast<std::size_t>(k)] =
                std::polar(1.0L, sign * 2 * std::numbers::pi_v<long double> * static_cast<long double>(k) / length);
        for (std::int64_t first = 0; first < std::int64_t(x.size()); ++first) {
            if (first / stride % length != 0) continue;
            for (std::int64_t k = 0; k < length; ++k) {
                Number sum = 0;
                for (std::int64_t j = 0; j < length; ++j)
                    sum += x[std::size_t(first + j * stride)] * root[std::size_t(j * k % length)];
                line[std::size_t(k)] = sum;
            }
            for (std::int64_t k = 0; k < length; ++k) x[std::size_t(first + k * stride)] = line[std::size_t(k)];
        }
        stride *= length;
    }
    return x;
}

// Calls body(index by dimension, number in order) for all elements of the extents.
template <class Body>
void for_each_index(const Integers& n, Body body)
{
    Integers index(n.size(), 0);
    const std::int64_t count = product(n);
    for (std::int64_t i = 0; i < count; ++i) {
        body(index, i);
        for (std::size_t d = 0; d < n.size() && ++index[d] == n[d]; ++d) index[d] = 0;
    }
}

// One side of a transform: elements of `unit` real numbers (2 for interleaved complex; split parts are two sides) in an
// array that holds nothing but NaN elsewhere.
template <class R>
class Side {
public:
    Integers extents, strides; // strides with the offset first
    std::int64_t distance, transforms;
    int unit;

    Side(Integers extents_, Integers strides_, std::int64_t distance_, std::int64_t transforms_, int unit_)
        : extents(std::move(extents_)), strides(std::move(strides_)), distance(distance_), transforms(transforms_),
          unit(unit_)
    {
        std::int64_t low = 0, high = 0; // the begin of the array belongs to it
        for_all(
            [&](std::int64_t at, std::int64_t, std::int64_t) { low = std::min(low, at), high = std::max(high, at); });
        begin_ = -low;
        values_.assign(static_cast<std::size_t>((high - low + 1) * unit), std::numeric_limits<R>::quiet_NaN());
    }

    R* data() { return values_.data() + begin_ * unit; }
    R& at(std::int64_t element, int part = 0) { return data()[element * unit + part]; }

    // body(position, number within the transform, transform)
    template <class Body>
    void for_all(Body body) const
    {
        for (std::int64_t t = 0; t < transforms; ++t)
            for_each_index(extents, [&](const Integers& index, std::int64_t i) {
                std::int64_t at = strides[0] + t * distance;
                for (std::size_t d = 0; d < index.size(); ++d) at += index[d] * strides[d + 1];
                body(at, i, t);
            });
    }

    // Number of positions that hold something else than they did, elements apart.
    int changed_between(const std::vector<R>& before) const
    {
        std::vector<bool> element(values_.size(), false);
        for_all([&](std::int64_t at, std::int64_t, std::int64_t) {
            for (int part = 0; part < unit; ++part)
                element[static_cast<std::size_t>((begin_ + at) * unit + part)] = true;
        });
        int changed = 0;
        for (std::size_t i = 0; i < values_.size(); ++i)
            if (!element[i] && !same_bits(values_[i], before[i])) ++changed;
        return changed;
    }
    const std::vector<R>& values() const { return values_; }

private:
    std::vector<R> values_;
    std::int64_t begin_ = 0;
};

inline Integers dense(const Integers& n)
{
    Integers strides = {0};
    std::int64_t stride = 1;
    for (const std::int64_t length : n) strides.push_back(stride), stride *= length;
    return strides;
}

template <class R>
long double tolerance(std::int64_t n, long double norm)
{
    return 4 * std::numeric_limits<R>::epsilon() * (1 + std::log2(static_cast<long double>(n))) * norm;
}

inline long double norm(const Numbers& x)
{
    long double sum = 0;
    for (const Number& v : x) sum += std::norm(v);
    return std::sqrt(sum);
}

template <class R>
inline constexpr int precision_of = sizeof(R) == 4 ? ORK_DFT_SINGLE : ORK_DFT_DOUBLE;

// A descriptor for the length of a test.
class Descriptor {
public:
    Descriptor(int precision, int domain, const Integers& n)
    {
        EXPECT_EQ(ork_dft_create_descriptor(&handle_, precision, domain, std::int64_t(n.size()), n.data()), 0)
            << ork_dft_descriptor_message(nullptr);
    }
    ~Descriptor()
    {
        if (handle_ != nullptr) {
            EXPECT_EQ(ork_dft_free_descriptor(&handle_), 0);
        }
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    Descriptor& set(int parameter, std::int64_t value) { return ok(ork_dft_set_integer(handle_, parameter, value)); }
    Descriptor& set(int parameter, int value) { return set(parameter, std::int64_t{value}); }
    Descriptor& set(int parameter, double value) { return ok(ork_dft_set_real(handle_, parameter, value)); }
    Descriptor& set(int parameter, const Integers& values)
    {
        return ok(ork_dft_set_integers(handle_, parameter, values.data()));
    }
    Descriptor& commit() { return ok(ork_dft_commit_descriptor(handle_)); }

    operator ork_dft_descriptor*() const { return handle_; }
    ork_dft_descriptor** address() { return &handle_; }

private:
    Descriptor& ok(std::int64_t status)
    {
        EXPECT_EQ(status, 0) << ork_dft_descriptor_message(handle_);
        return *this;
    }
    ork_dft_descriptor* handle_ = nullptr;
};

} // namespace ork::test
