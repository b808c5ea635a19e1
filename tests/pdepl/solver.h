// SPDX-License-Identifier: MIT
// What all solvers have: their arrays, at protected pages, and four stages.
#pragma once

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "hooks.h"
#include "ork/abi/pde.h"
#include "support/guarded.h"
#include "support/random.h"

namespace ork::test {

using pde::Int;

// Takes and gives vectors.
template <class T>
struct Array : Guarded<T> {
    using Guarded<T>::Guarded;
    Array& operator=(const std::vector<T>& values)
    {
        EXPECT_EQ(this->size(), static_cast<Int>(values.size()));
        std::copy(values.begin(), values.end(), this->data());
        return *this;
    }
    operator std::vector<T>() const { return this->values(); }
    bool operator==(const std::vector<T>& values) const { return this->values() == values; }
    T* begin() const { return this->data(); }
    T* end() const { return this->data() + this->size(); }
};

class Solver {
public:
    explicit Solver(Guard guard) : ipar(128, guard) {}
    virtual ~Solver() = default;
    Solver(const Solver&) = delete;
    Solver& operator=(const Solver&) = delete;

    virtual Int init() = 0;
    virtual Int commit() = 0;
    virtual Int solve() = 0;
    virtual Int free() = 0;

    virtual void fill() = 0; // a right-hand side and boundary values, the same every time
    virtual std::vector<double> solution() const = 0;
    virtual testing::AssertionResult kept_within_arrays() const = 0;
    virtual Int numbers() const = 0; // of the array of real numbers
    virtual double exchange_number(Int i, double value) = 0;

    void silence() { ipar[1] = ipar[2] = 0; }
    // Both places tell the status.
    Int agreed() const
    {
        EXPECT_EQ(stat, ipar[0]);
        return stat;
    }
    void ready(bool silent = false)
    {
        ASSERT_EQ(init(), pde::ok);
        if (silent) silence();
        ASSERT_EQ(commit(), pde::ok);
    }

    Array<Int> ipar;
    Int stat = 77;
};

template <class R>
class SolverOf : public Solver {
public:
    SolverOf(Int points, Int reals, Guard guard) : Solver(guard), f(points, guard), fpar(reals, guard)
    {
        f = std::vector<R>(static_cast<std::size_t>(f.size()));
    }
    void fill() override
    {
        Random random;
        for (R& value : f) value = random.uniform<R>();
        for (auto& side : bd)
            for (R& value : side) value = random.uniform<R>();
    }
    std::vector<double> solution() const override { return {f.begin(), f.end()}; }
    testing::AssertionResult kept_within_arrays() const override
    {
        testing::AssertionResult kept = f.unchanged_outside();
        if (kept) kept = fpar.unchanged_outside();
        if (kept) kept = ipar.unchanged_outside();
        return kept;
    }

    Int numbers() const override { return fpar.size(); }
    double exchange_number(Int i, double value) override { return std::exchange(fpar[i], static_cast<R>(value)); }

    Array<R> f, fpar;
    std::vector<Array<R>> bd; // of every side; read-only in a solve

protected:
    template <class Call>
    Int with_read_only_sides(Call&& call)
    {
        for (auto& side : bd) side.read_only();
        call();
        for (auto& side : bd) side.writable();
        return agreed();
    }
};

} // namespace ork::test
