// SPDX-License-Identifier: MIT
// Vectors with increments and matrices with leading dimensions, tight in guarded pages, their padding poisoned with
// NaN.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <vector>

#include "support/guarded.h"
#include "support/random.h"

namespace ork::test {

// n elements with an increment, laid out as BLAS reads them: with a negative increment element 0 is the last in memory.
// With increment 0 all n elements are one.
template <class T>
class Vector {
public:
    Vector(std::int64_t n, std::int64_t inc, Guard side = Guard::end, std::size_t offset = 0)
        : n_(n < 0 ? 0 : n), inc_(inc), memory_(n <= 0 ? 0 : 1 + (n - 1) * std::abs(inc), side, offset)
    {
    }
    Vector(const std::vector<T>& values, std::int64_t inc, Guard side = Guard::end, std::size_t offset = 0)
        : Vector(static_cast<std::int64_t>(values.size()), inc, side, offset)
    {
        assign(values);
    }

    T* data() const { return memory_.data(); } // the lowest address, as a BLAS argument
    std::int64_t size() const { return n_; }
    const std::int64_t& inc() const { return inc_; }
    T& operator[](std::int64_t i) const { return memory_[position(i)]; }
    std::vector<T> values() const
    {
        std::vector<T> result;
        for (std::int64_t i = 0; i < n_; ++i) result.push_back((*this)[i]);
        return result;
    }

    void assign(const std::vector<T>& values)
    {
        for (std::int64_t i = 0; i < n_; ++i) (*this)[i] = values[static_cast<std::size_t>(i)];
        memory_.remember();
    }
    void read_only() { memory_.read_only(); }
    void writable() { memory_.writable(); }
    void remember() { memory_.remember(); }

    // The bytes between the elements and beside the vector are what they were.
    testing::AssertionResult padding_intact() const
    {
        const std::int64_t step = std::abs(inc_);
        return memory_.unchanged_except([&](std::int64_t i) { return step == 0 || i % step == 0; });
    }
    testing::AssertionResult unchanged() const { return memory_.unchanged(); }

private:
    std::int64_t position(std::int64_t i) const { return inc_ >= 0 ? i * inc_ : (n_ - 1 - i) * -inc_; }

    std::int64_t n_, inc_;
    Guarded<T> memory_;
};

// rows x columns, column-major, leading dimension ld >= rows; the last column ends with its last row.
template <class T>
class Matrix {
public:
    Matrix(std::int64_t rows, std::int64_t columns, std::int64_t ld, Guard side = Guard::end, std::size_t offset = 0)
        : rows_(rows), columns_(columns), ld_(ld),
          memory_(rows <= 0 || columns <= 0 ? 0 : (columns - 1) * ld + rows, side, offset)
    {
    }

    T* data() const { return memory_.data(); }
    std::int64_t rows() const { return rows_; }
    std::int64_t columns() const { return columns_; }
    const std::int64_t& ld() const { return ld_; }
    T& operator()(std::int64_t i, std::int64_t j) const { return memory_[i + j * ld_]; }
    // Tight, column by column.
    std::vector<T> values() const
    {
        std::vector<T> result;
        for (std::int64_t j = 0; j < columns_; ++j)
            for (std::int64_t i = 0; i < rows_; ++i) result.push_back((*this)(i, j));
        return result;
    }

    // Every element becomes element(); the padding stays NaN.
    template <class Element>
    void fill(Element&& element)
    {
        for (std::int64_t j = 0; j < columns_; ++j)
            for (std::int64_t i = 0; i < rows_; ++i) (*this)(i, j) = element();
        memory_.remember();
    }
    void fill(Random& random)
    {
        fill([&] { return random.uniform<T>(); });
    }
    void read_only() { memory_.read_only(); }
    void writable() { memory_.writable(); }
    void remember() { memory_.remember(); }

    testing::AssertionResult padding_intact() const
    {
        return memory_.unchanged_except([&](std::int64_t i) { return i % ld_ < rows_; });
    }
    // Only elements with may_change(i, j) may differ from what was remembered.
    template <class MayChange>
    testing::AssertionResult unchanged_except(MayChange&& may_change) const
    {
        return memory_.unchanged_except(
            [&](std::int64_t at) { return at % ld_ < rows_ && may_change(at % ld_, at / ld_); });
    }
    testing::AssertionResult unchanged() const { return memory_.unchanged(); }

private:
    std::int64_t rows_, columns_, ld_;
    Guarded<T> memory_;
};

} // namespace ork::test
