// SPDX-License-Identifier: MIT
// Matrices as a formula sees them, whatever of them is stored and how: the references of the level-2 and level-3
// problems, in long double.
#pragma once

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "peers/problem.h"

namespace ork::peers {

using Wide = std::complex<long double>;

inline long double magnitude(Wide x) { return std::fabs(x.real()) + std::fabs(x.imag()); }

// The problem of the precision that a routine's first letter names.
template <template <class> class P, class... Arguments>
std::unique_ptr<Problem> of_precision(char precision, const Arguments&... arguments)
{
    switch (precision) {
    case 's':
        return std::make_unique<P<float>>(arguments...);
    case 'd':
        return std::make_unique<P<double>>(arguments...);
    case 'c':
        return std::make_unique<P<std::complex<float>>>(arguments...);
    default:
        return std::make_unique<P<std::complex<double>>>(arguments...);
    }
}

// Every routine of a list in each of its precisions.
template <class Routines>
std::vector<std::string> names_of(const Routines& routines)
{
    std::vector<std::string> all;
    for (const auto& routine : routines)
        for (const char* p = routine.precisions; *p != 0; ++p) all.push_back(*p + std::string(routine.stem));
    return all;
}

enum class Form { general, symmetric, hermitian, triangular };
enum class Storage { dense, band, packed };

// Where elements stand: columns of a rectangle, of a band with kl diagonals below and ku above the main one, or of a
// packed triangle.
struct Layout {
    Form form = Form::general;
    Storage storage = Storage::dense;
    char uplo = 'L', diag = 'N';
    size_t rows = 0, columns = 0, kl = 0, ku = 0;

    size_t ld() const { return storage == Storage::band ? kl + ku + 1 : rows; }
    size_t size() const { return storage == Storage::packed ? rows * (rows + 1) / 2 : ld() * columns; }
    bool stored(size_t i, size_t j) const
    {
        if (form != Form::general && (uplo == 'L' ? i < j : i > j)) return false;
        return storage != Storage::band || (i <= j + kl && j <= i + ku);
    }
    size_t at(size_t i, size_t j) const
    {
        if (storage == Storage::dense) return i + j * rows;
        if (storage == Storage::band) return ku + i - j + j * ld();
        return uplo == 'U' ? i + j * (j + 1) / 2 : i - j + j * (2 * rows - j + 1) / 2;
    }
    // Numbers in memory that a product has to read.
    size_t read() const
    {
        if (storage != Storage::dense || form == Form::general) return size();
        return rows * (rows + 1) / 2;
    }
};

// op(M), element by element.
template <class T>
struct Matrix {
    const T* data;
    Layout layout;
    char trans = 'N';

    size_t rows() const { return trans == 'N' ? layout.rows : layout.columns; }
    size_t columns() const { return trans == 'N' ? layout.columns : layout.rows; }
    Wide operator()(size_t i, size_t j) const
    {
        if (trans != 'N') std::swap(i, j);
        const Wide value = element(i, j);
        return trans == 'C' ? std::conj(value) : value;
    }

private:
    Wide element(size_t i, size_t j) const
    {
        if (layout.form == Form::triangular && i == j && layout.diag == 'U') return 1;
        if (layout.stored(i, j)) {
            const Wide value = data[layout.at(i, j)];
            return layout.form == Form::hermitian && i == j ? Wide(value.real()) : value;
        }
        if (layout.form == Form::general || layout.form == Form::triangular || !layout.stored(j, i)) return 0;
        const Wide value = data[layout.at(j, i)];
        return layout.form == Form::hermitian ? std::conj(value) : value;
    }
};

// A vector of sums and of the magnitudes that went into them, to which rounding errors are proportional.
struct Sums {
    std::vector<Wide> value;
    std::vector<long double> size;

    explicit Sums(size_t n) : value(n, 0), size(n, 0) {}
    void add(size_t i, Wide term, long double magnitudes) { value[i] += term, size[i] += magnitudes; }
    void add(size_t i, const Sums& other, size_t j, Wide factor)
    {
        add(i, factor * other.value[j], magnitude(factor) * other.size[j]);
    }
};

template <class T>
Sums vector_of(const T* x, size_t n)
{
    Sums result(n);
    for (size_t i = 0; i < n; ++i) result.add(i, Wide(x[i]), magnitude(x[i]));
    return result;
}

template <class T>
Sums operator*(const Matrix<T>& matrix, const Sums& x)
{
    Sums y(matrix.rows());
    for (size_t j = 0; j < matrix.columns(); ++j)
        for (size_t i = 0; i < matrix.rows(); ++i) y.add(i, x, j, matrix(i, j));
    return y;
}

// What is wrong with `got` where `want` should be, if errors of sums of `terms` terms grow as their square root, which
// those of millions of random products do.
template <class T>
std::string compare(const Sums& got, const Sums& want, size_t terms)
{
    const long double eps = std::numeric_limits<Real<T>>::epsilon();
    const long double tolerance = eps * (16 + 2 * std::sqrt(static_cast<long double>(terms)));
    for (size_t i = 0; i < want.value.size(); ++i)
        if (!(magnitude(got.value[i] - want.value[i]) <= tolerance * (want.size[i] + got.size[i])))
            return mismatch(i, got.value[i].real(), want.value[i].real());
    return {};
}

// Values that repeated products with the matrix and its inverse leave bounded: a triangle gets a diagonal of modulus
// one and little beside it. What a routine may not look at holds a number that would show.
template <class T>
void fill(Array<T>& array, const Layout& layout, Random& random)
{
    std::fill(array.data(), array.data() + array.size(), T(999));
    const size_t row = layout.storage == Storage::band ? layout.kl + layout.ku + 1 : layout.rows;
    const auto beside = static_cast<Real<T>>(0.1 / std::sqrt(static_cast<double>(row)));
    for (size_t j = 0; j < layout.columns; ++j) {
        const size_t from = layout.storage == Storage::band && j > layout.ku ? j - layout.ku : 0;
        const size_t to = layout.storage == Storage::band ? std::min(layout.rows, j + layout.kl + 1) : layout.rows;
        for (size_t i = from; i < to; ++i) {
            if (!layout.stored(i, j)) continue;
            T& value = array[layout.at(i, j)];
            value = random.next<T>();
            if (layout.form != Form::triangular) continue;
            if (i != j)
                value *= beside;
            else if constexpr (is_complex<T>)
                value = value.real() < 0 ? T(0, 1) : T(0.6, -0.8);
            else
                value = value < 0 ? T(-1) : T(1);
        }
    }
}

} // namespace ork::peers
