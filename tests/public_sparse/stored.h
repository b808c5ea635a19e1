// SPDX-License-Identifier: MIT
// Sparse matrices in arrays, at random, and what they stand for as dense ones. Values are small integers, so that sums
// and products of them are exact in every precision and order, and tests compare for equality.
#pragma once

#include <dlfcn.h>

#include <algorithm>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ork/sparse.h"
#include "support/random.h"
#include "support/scalar.h"

namespace ork::test {

using Index = std::int64_t;
using cfloat = std::complex<float>;
using cdouble = std::complex<double>;
inline constexpr ork_sparse_kind general_kind = {ORK_SPBLAS_GENERAL, {}, {}};
inline constexpr int operations[] = {ORK_SPBLAS_NO_TRANS, ORK_SPBLAS_TRANS, ORK_SPBLAS_CONJ_TRANS, ORK_SPBLAS_CONJ};
inline bool is_transposed(int op) { return op == ORK_SPBLAS_TRANS || op == ORK_SPBLAS_CONJ_TRANS; }
inline bool is_conjugated(int op) { return op == ORK_SPBLAS_CONJ || op == ORK_SPBLAS_CONJ_TRANS; }

template <class T>
auto scalar_argument(const T& value)
{
    if constexpr (is_complex<T>)
        return static_cast<const void*>(&value);
    else
        return value;
}

// ork_sparse_d_mm for "mm". Arguments must have the very types of the function's, but for enumerations and elements.
template <class T, class... Arguments>
std::int64_t call(const std::string& routine, Arguments... arguments)
{
    const std::string name = std::string("ork_sparse_") + precision_letter<T>() + "_" + routine;
    void* const address = dlsym(RTLD_DEFAULT, name.c_str());
    if (address == nullptr) {
        ADD_FAILURE() << "no " << name;
        return -1;
    }
    return reinterpret_cast<std::int64_t (*)(Arguments...)>(address)(arguments...);
}
template <class Int, class T, class... Arguments>
std::int64_t call_sized(const std::string& routine, Arguments... arguments)
{
    return call<T>(routine + (sizeof(Int) == 4 ? "_i4" : "_i8"), arguments...);
}

template <class T>
T conjugate_if(bool yes, T x)
{
    if constexpr (is_complex<T>)
        return yes ? std::conj(x) : x;
    else
        return x;
}

template <class T>
T small_integer(Random& random)
{
    if constexpr (is_complex<T>) {
        const auto re = static_cast<Real<T>>(random.integer(-4, 4));
        return {re, static_cast<Real<T>>(random.integer(-4, 4))};
    } else {
        return static_cast<T>(random.integer(-4, 4));
    }
}
template <class T>
std::vector<T> small_integers(Random& random, Index count)
{
    std::vector<T> values(static_cast<std::size_t>(count));
    for (T& x : values) x = small_integer<T>(random);
    return values;
}

// Column-major.
template <class T>
struct Dense {
    Index rows, cols;
    std::vector<T> values;

    Dense(Index rows, Index cols) : rows(rows), cols(cols), values(static_cast<std::size_t>(rows * cols)) {}
    T& at(Index i, Index j) { return values[static_cast<std::size_t>(i + j * rows)]; }
    const T& at(Index i, Index j) const { return values[static_cast<std::size_t>(i + j * rows)]; }

    Dense operated(int op) const
    {
        Dense result(is_transposed(op) ? cols : rows, is_transposed(op) ? rows : cols);
        for (Index i = 0; i < rows; ++i)
            for (Index j = 0; j < cols; ++j)
                (is_transposed(op) ? result.at(j, i) : result.at(i, j)) = conjugate_if(is_conjugated(op), at(i, j));
        return result;
    }
    // What a kind makes of the stored matrix.
    Dense of_kind(const ork_sparse_kind& kind) const
    {
        if (kind.type == ORK_SPBLAS_GENERAL) return *this;
        Dense result(rows, cols);
        for (Index i = 0; i < rows; ++i)
            for (Index j = 0; j < cols; ++j) {
                const bool stored = kind.uplo == ORK_SPBLAS_UPPER ? i < j : i > j;
                const T here = at(i, j), there = at(j, i);
                T& x = result.at(i, j);
                if (i == j)
                    x = kind.type == ORK_SPBLAS_SKEW ? T(0) : kind.diag == ORK_SPBLAS_UNIT ? T(1) : here;
                else if (kind.type == ORK_SPBLAS_DIAGONAL || (kind.type == ORK_SPBLAS_TRIANGULAR && !stored))
                    x = T(0);
                else
                    x = stored                              ? here
                        : kind.type == ORK_SPBLAS_SKEW      ? -there
                        : kind.type == ORK_SPBLAS_HERMITIAN ? conjugate_if(true, there)
                                                            : there;
            }
        return result;
    }
    bool operator==(const Dense&) const = default;

    friend void PrintTo(const Dense& a, std::ostream* out)
    {
        *out << a.rows << " x " << a.cols << ':';
        for (const T& value : a.values) *out << ' ' << value;
    }
};

enum class Format { csr, csc, coo, bsr };
inline constexpr Format all_formats[] = {Format::csr, Format::csc, Format::coo, Format::bsr};

struct Form {
    Format format;
    Index rows, cols; // blocks
    int base = 0;
    Index block = 1;
    int layout = ORK_SPBLAS_ROW_MAJOR;
    bool gaps = false, sorted = false; // sorted: and nothing twice
};

template <class Int, class T>
struct Stored {
    Form form;
    std::vector<Int> first, last, index; // coo: rows, none, columns
    std::vector<T> values;
    Index entries = 0;

    Stored() = default;
    // Rows that are empty, or have any columns in any order, some of them more than once.
    Stored(const Form& form, Random& random) : form(form)
    {
        const bool by_columns = form.format == Format::csc;
        const Index lines = by_columns ? form.cols : form.rows, others = by_columns ? form.rows : form.cols;
        const auto base = static_cast<Int>(form.base);
        for (Index i = 0; i < lines; ++i) {
            std::vector<Index> places;
            for (Index k = random.integer(0, 2) * random.integer(0, 5); k > 0 && others > 0; --k)
                places.push_back(random.integer(0, others - 1));
            if (form.sorted) {
                std::sort(places.begin(), places.end());
                places.erase(std::unique(places.begin(), places.end()), places.end());
            }
            if (form.format == Format::coo) {
                first.insert(first.end(), places.size(), static_cast<Int>(i + base));
            } else {
                for (Index gap = form.gaps ? random.integer(0, 3) : 0; gap > 0; --gap) append(-7, T(99));
                first.push_back(static_cast<Int>(index.size()) + base);
            }
            for (const Index j : places) append(static_cast<Int>(j + base), T(0), &random);
            if (form.format != Format::coo) last.push_back(static_cast<Int>(index.size()) + base);
            entries += static_cast<Index>(places.size());
        }
        if (form.format == Format::coo && !form.sorted)
            for (std::size_t k = 1; k < first.size(); ++k) {
                const auto other = static_cast<std::size_t>(random.integer(0, static_cast<Index>(k)));
                std::swap(first[k], first[other]);
                std::swap(index[k], index[other]);
            }
    }

    std::int64_t create(ork_sparse_matrix_t* a) const
    {
        const auto base = static_cast<ork_spblas_base>(form.base);
        const auto m = static_cast<Int>(form.rows), n = static_cast<Int>(form.cols);
        const Int *f = first.data(), *l = last.data(), *x = index.data();
        const T* v = values.data();
        switch (form.format) {
        case Format::csr:
            return call_sized<Int, T>("create_csr", a, base, m, n, f, l, x, v);
        case Format::csc:
            return call_sized<Int, T>("create_csc", a, base, m, n, f, l, x, v);
        case Format::coo:
            return call_sized<Int, T>("create_coo", a, base, m, n, static_cast<Int>(entries), f, x, v);
        default:
            return call_sized<Int, T>("create_bsr", a, base, form.layout, m, n, static_cast<Int>(form.block), f, l, x,
                                      v);
        }
    }

    // visit(row, column, value), counted from 0.
    template <class Visit>
    void for_each(Visit visit) const
    {
        const Index b = form.block, base = form.base;
        const auto block = [&](Index i, Index j, Index k) {
            for (Index r = 0; r < b; ++r)
                for (Index c = 0; c < b; ++c)
                    visit(i * b + r, j * b + c,
                          values[static_cast<std::size_t>(
                              k * b * b + (form.layout == ORK_SPBLAS_ROW_MAJOR ? r * b + c : c * b + r))]);
        };
        if (form.format == Format::coo)
            for (std::size_t k = 0; k < first.size(); ++k) visit(first[k] - base, index[k] - base, values[k]);
        for (std::size_t i = 0; i < last.size(); ++i)
            for (Index k = first[i] - base; k < last[i] - base; ++k) {
                const Index line = static_cast<Index>(i), other = index[static_cast<std::size_t>(k)] - base;
                form.format == Format::csc ? block(other, line, k) : block(line, other, k);
            }
    }

    Dense<T> dense() const
    {
        Dense<T> a(form.rows * form.block, form.cols * form.block);
        for_each([&](Index i, Index j, T value) { a.at(i, j) += value; });
        return a;
    }

private:
    void append(Int column, T value, Random* random = nullptr)
    {
        index.push_back(column);
        for (Index k = 0; k < form.block * form.block; ++k)
            values.push_back(random != nullptr ? small_integer<T>(*random) : value);
    }
};

// What a handle gives away; the test has failed if its format is another.
template <class Int, class T>
Stored<Int, T> exported(ork_sparse_matrix_t a, Format format)
{
    Stored<Int, T> s;
    ork_spblas_base base = {};
    ork_spblas_layout layout = ORK_SPBLAS_ROW_MAJOR;
    Int rows = -1, cols = -1, block = 1, count = 0, *first = nullptr, *last = nullptr, *index = nullptr;
    T* values = nullptr;
    const std::int64_t status =
        format == Format::csr ? call_sized<Int, T>("export_csr", a, &base, &rows, &cols, &first, &last, &index, &values)
        : format == Format::csc
            ? call_sized<Int, T>("export_csc", a, &base, &rows, &cols, &first, &last, &index, &values)
        : format == Format::coo
            ? call_sized<Int, T>("export_coo", a, &base, &rows, &cols, &count, &first, &index, &values)
            : call_sized<Int, T>("export_bsr", a, &base, &layout, &rows, &cols, &block, &first, &last, &index, &values);
    EXPECT_EQ(status, ORK_SPARSE_SUCCESS) << ork_sparse_last_error()->text;
    if (status != ORK_SPARSE_SUCCESS) return s;
    s.form = {format, rows, cols, static_cast<int>(base), block, static_cast<int>(layout)};
    const Index lines = format == Format::coo ? count : format == Format::csc ? cols : rows;
    s.first.assign(first, first + lines);
    if (format != Format::coo) s.last.assign(last, last + lines);
    Index length = format == Format::coo ? count : 0;
    for (std::size_t i = 0; i < s.last.size(); ++i) {
        length = std::max<Index>(length, s.last[i] - base);
        s.entries += s.last[i] - s.first[i];
    }
    s.index.assign(index, index + length);
    s.values.assign(values, values + length * block * block);
    return s;
}

// A handle that ends with its block.
class Handle {
public:
    Handle() = default;
    template <class Int, class T>
    explicit Handle(const Stored<Int, T>& s)
    {
        EXPECT_EQ(s.create(&handle_), ORK_SPARSE_SUCCESS) << ork_sparse_last_error()->text;
    }
    ~Handle()
    {
        if (handle_ != nullptr) {
            EXPECT_EQ(ork_sparse_destroy(handle_), ORK_SPARSE_SUCCESS);
        }
    }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    operator ork_sparse_matrix_t() const { return handle_; }
    ork_sparse_matrix_t* result() { return &handle_; }
    ork_sparse_matrix_t release() { return std::exchange(handle_, nullptr); }

private:
    ork_sparse_matrix_t handle_ = nullptr;
};

// A form at random; square: as many rows as columns.
inline Form random_form(Random& random, Index largest, bool square)
{
    Form f;
    f.format = all_formats[random.integer(0, 3)];
    f.rows = random.integer(0, largest);
    f.cols = square ? f.rows : random.integer(0, largest);
    f.base = static_cast<int>(random.integer(0, 1));
    f.block = f.format == Format::bsr ? random.integer(1, 4) : 1;
    f.layout = static_cast<int>(random.integer(ORK_SPBLAS_ROW_MAJOR, ORK_SPBLAS_COL_MAJOR));
    f.gaps = random.integer(0, 1) != 0;
    f.sorted = random.integer(0, 2) == 0;
    return f;
}

} // namespace ork::test
