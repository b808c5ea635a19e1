// SPDX-License-Identifier: MIT
#include "peers/sparse.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "peers/reading.h"

namespace ork::peers {
namespace {

using Routine = SparseCase::Routine;

// What a correct sum of `terms` products may differ from the exact one, relative to the sum of their absolute values.
long double rounding(const SparseCase& c, size_t terms)
{
    return static_cast<long double>(terms + 2) * (c.single ? 0x1p-24L : 0x1p-53L);
}

double element(const SparseCase& c, const void* array, size_t i)
{
    return c.single ? static_cast<double>(static_cast<const float*>(array)[i]) : static_cast<const double*>(array)[i];
}

// Values are rounded once, so that single precision is checked with the matrix that it was given.
CsrMatrix stored(const SparseCase& c, const CsrMatrix& whole)
{
    CsrMatrix a = c.letter == 'S'            ? triangle(whole, 'L')
                  : c.routine == Routine::sv ? dominated(triangle(whole, c.letter))
                                             : whole;
    if (c.single)
        for (double& value : a.val) value = static_cast<double>(static_cast<float>(value));
    return a;
}

} // namespace

std::optional<SparseCase> sparse_case(const std::string& routine, const std::string& letters, bool handle)
{
    struct Known {
        const char *name, *letters;
        Routine routine;
        bool of_handles;
    };
    constexpr Known all[] = {{"mv", "NTS", Routine::mv, false},
                             {"sv", "LU", Routine::sv, false},
                             {"mm", "RC", Routine::mm, false},
                             {"dotmv", "NS", Routine::dotmv, true},
                             {"symgs", "N", Routine::symgs, true}};
    SparseCase c;
    if (routine.empty() || (routine[0] != 'd' && routine[0] != 's') || letters.empty()) return std::nullopt;
    c.single = routine[0] == 's';
    c.wide = routine.ends_with("64");
    c.handle = handle;
    c.letter = letters[0];
    const std::string name = routine.substr(1, routine.size() - (c.wide ? 3 : 1)), number = letters.substr(1);
    for (const Known& known : all) {
        if (name != known.name || std::strchr(known.letters, c.letter) == nullptr || known.of_handles > handle)
            continue;
        c.routine = known.routine;
        if (c.routine != Routine::mm) return number.empty() ? std::optional(c) : std::nullopt;
        for (const int count : {1, 2, 4, 8, 16, 32})
            if (number == std::to_string(count)) {
                c.nrhs = count;
                return c;
            }
    }
    return std::nullopt;
}

SparseProblem::SparseProblem(const SparseCase& what, const CsrMatrix& whole)
    : a_(stored(what, whole)), x_rows_(static_cast<size_t>(what.letter == 'T' ? a_.rows : a_.columns)),
      y_rows_(static_cast<size_t>(what.letter == 'T' ? a_.columns : a_.rows)),
      val_(a_.entries() * (what.single ? 4 : 8)),
      // offsets that keep the streams off each other's cache sets
      x_(x_rows_ * static_cast<size_t>(what.nrhs) * (what.single ? 4 : 8), 1088),
      y_(y_rows_ * static_cast<size_t>(what.nrhs) * (what.single ? 4 : 8), 2176)
{
    if (what.wide) {
        ptr64_.assign(a_.ptr.begin(), a_.ptr.end());
        col64_.assign(a_.col.begin(), a_.col.end());
    }
    Random random;
    const auto fill = [&](auto* val, auto* x) {
        for (size_t k = 0; k < a_.entries(); ++k) val[k] = static_cast<std::decay_t<decltype(*val)>>(a_.val[k]);
        for (size_t i = 0; i < x_rows_ * static_cast<size_t>(what.nrhs); ++i)
            x[i] = random.next<std::decay_t<decltype(*x)>>();
    };
    if (what.single)
        fill(reinterpret_cast<float*>(val_.data()), reinterpret_cast<float*>(x_.data()));
    else
        fill(reinterpret_cast<double*>(val_.data()), reinterpret_cast<double*>(x_.data()));
    const bool by_rows = what.letter == 'R';
    operands_ = {what,
                 a_.rows,
                 a_.columns,
                 a_.ptr.data(),
                 a_.col.data(),
                 ptr64_.data(),
                 col64_.data(),
                 val_.data(),
                 x_.data(),
                 y_.data(),
                 by_rows ? what.nrhs : static_cast<int>(x_rows_),
                 by_rows ? what.nrhs : static_cast<int>(y_rows_),
                 dot_.data()};
}

double SparseProblem::flops() const
{
    const auto entries = static_cast<double>(a_.entries());
    // an entry of the triangle counts twice, but for the diagonal
    const double product = operands_.what.letter == 'S' ? 4 * entries - 2 * a_.rows : 2 * entries;
    if (operands_.what.routine == Routine::dotmv) return product + 2 * a_.rows;
    if (operands_.what.routine == Routine::symgs) return 2 * product;
    return product * operands_.what.nrhs;
}

double SparseProblem::bytes() const
{
    const double index = operands_.what.wide ? 8 : 4;
    return static_cast<double>(val_.size() + x_.size() + y_.size()) + index * static_cast<double>(a_.entries()) +
           index * static_cast<double>(a_.ptr.size());
}

double SparseProblem::x_at(size_t row, size_t rhs) const
{
    const auto ld = static_cast<size_t>(operands_.ldx);
    return element(operands_.what, x_.data(), operands_.what.letter == 'R' ? row * ld + rhs : rhs * ld + row);
}

std::string SparseProblem::check_product(size_t rhs, const std::vector<double>& y)
{
    const bool transposed = operands_.what.letter == 'T', mirrored = operands_.what.letter == 'S';
    std::vector<long double> want(y_rows_, 0), size(y_rows_, 0);
    std::vector<size_t> terms(y_rows_, 0);
    const auto term = [&](size_t row, size_t column, long double value) {
        want[row] += value * x_at(column, rhs);
        size[row] += std::fabs(value * x_at(column, rhs));
        ++terms[row];
    };
    for (size_t i = 0; i < static_cast<size_t>(a_.rows); ++i)
        for (auto k = static_cast<size_t>(a_.ptr[i]); k < static_cast<size_t>(a_.ptr[i + 1]); ++k) {
            const auto j = static_cast<size_t>(a_.col[k]);
            transposed ? term(j, i, a_.val[k]) : term(i, j, a_.val[k]);
            if (mirrored && i != j) term(j, i, a_.val[k]);
        }
    for (size_t i = 0; i < y_rows_; ++i)
        if (!(std::fabs(y[i] - want[i]) <= rounding(operands_.what, terms[i]) * size[i]))
            return mismatch(i, y[i], want[i]);
    return {};
}

// Row by row the computed y solves a system that differs from A by rounding.
std::string SparseProblem::check_solution(const std::vector<double>& y)
{
    for (size_t i = 0; i < y_rows_; ++i) {
        long double sum = 0, size = std::fabs(x_at(i, 0));
        for (auto k = static_cast<size_t>(a_.ptr[i]); k < static_cast<size_t>(a_.ptr[i + 1]); ++k) {
            const long double product = static_cast<long double>(a_.val[k]) * y[static_cast<size_t>(a_.col[k])];
            sum += product;
            size += std::fabs(product);
        }
        const auto terms = static_cast<size_t>(a_.ptr[i + 1] - a_.ptr[i]);
        if (!(std::fabs(sum - x_at(i, 0)) <= rounding(operands_.what, terms + 2) * size))
            return mismatch(i, sum, x_at(i, 0));
    }
    return {};
}

// Both sweeps from 0 in long double, and beside them how far rounding may lead astray.
std::string SparseProblem::check_sweep(const std::vector<double>& y)
{
    std::vector<long double> want(y_rows_, 0), error(y_rows_, 0);
    const auto relax = [&](size_t i) {
        long double sum = x_at(i, 0), size = std::fabs(sum), inherited = 0, diagonal = 0;
        for (auto k = static_cast<size_t>(a_.ptr[i]); k < static_cast<size_t>(a_.ptr[i + 1]); ++k) {
            const auto j = static_cast<size_t>(a_.col[k]);
            if (j == i) {
                diagonal = a_.val[k];
                continue;
            }
            sum -= a_.val[k] * want[j];
            size += std::fabs(a_.val[k] * want[j]);
            inherited += std::fabs(a_.val[k]) * error[j];
        }
        want[i] = sum / diagonal;
        error[i] = (rounding(operands_.what, static_cast<size_t>(a_.ptr[i + 1] - a_.ptr[i]) + 4) * (size + inherited) +
                    inherited) /
                   std::fabs(diagonal);
    };
    for (size_t i = 0; i < y_rows_; ++i) relax(i);
    for (size_t i = y_rows_; i-- > 0;) relax(i);
    for (size_t i = 0; i < y_rows_; ++i)
        if (!(std::fabs(y[i] - want[i]) <= error[i])) return mismatch(i, y[i], want[i]);
    return {};
}

// With y as it was written.
std::string SparseProblem::check_dot(const std::vector<double>& y)
{
    long double want = 0, size = 0;
    for (size_t i = 0; i < y_rows_; ++i) {
        want += static_cast<long double>(x_at(i, 0)) * y[i];
        size += std::fabs(static_cast<long double>(x_at(i, 0)) * y[i]);
    }
    const double dot = element(operands_.what, dot_.data(), 0);
    if (!(std::fabs(dot - want) <= rounding(operands_.what, y_rows_) * size))
        return "dot product: " + mismatch(0, dot, want);
    return {};
}

std::string SparseProblem::check(SparseOperation& operation)
{
    // NaN: an element not written shows, and so does one that is read; but a sweep starts from y
    std::memset(y_.data(), operands_.what.routine == Routine::symgs ? 0 : 0xff, y_.size());
    std::memset(dot_.data(), 0xff, sizeof(double));
    operation.run();
    operation.finish();
    const auto ld = static_cast<size_t>(operands_.ldy);
    std::vector<double> y(y_rows_);
    for (size_t rhs = 0; rhs < static_cast<size_t>(operands_.what.nrhs); ++rhs) {
        for (size_t i = 0; i < y_rows_; ++i)
            y[i] = element(operands_.what, y_.data(), operands_.what.letter == 'R' ? i * ld + rhs : rhs * ld + i);
        const std::string fault = operands_.what.routine == Routine::sv      ? check_solution(y)
                                  : operands_.what.routine == Routine::symgs ? check_sweep(y)
                                                                             : check_product(rhs, y);
        if (!fault.empty()) return fault;
        if (operands_.what.routine == Routine::dotmv) return check_dot(y);
    }
    return {};
}

std::vector<SparseOperands> SparseProblem::one_by_one()
{
    std::vector<SparseOperands> all;
    const size_t size = operands_.what.single ? 4 : 8;
    for (size_t rhs = 0; rhs < static_cast<size_t>(operands_.what.nrhs); ++rhs) {
        SparseOperands one = operands_;
        one.what.routine = Routine::mv;
        one.what.letter = 'N';
        one.what.nrhs = 1;
        one.x = x_.data() + rhs * x_rows_ * size;
        one.y = y_.data() + rhs * y_rows_ * size;
        all.push_back(one);
    }
    return all;
}

std::vector<Limit> SparseProblem::read_limits()
{
    const auto bytes_of = [](const void* data, size_t bytes) { return Reading{static_cast<const char*>(data), bytes}; };
    const size_t index = operands_.what.wide ? 8 : 4;
    const auto* columns = operands_.what.wide ? static_cast<const void*>(col64_.data()) : a_.col.data();
    const auto* pointers = operands_.what.wide ? static_cast<const void*>(ptr64_.data()) : a_.ptr.data();
    const std::vector<Reading> all = {bytes_of(val_.data(), val_.size()), bytes_of(columns, a_.entries() * index),
                                      bytes_of(pointers, a_.ptr.size() * index), bytes_of(x_.data(), x_.size()),
                                      bytes_of(y_.data(), y_.size())};
    std::vector<Limit> limits;
    for (const ReadingWay& way : reading_ways())
        limits.push_back({[all, way](long calls) {
                              for (; calls > 0; --calls) read(all, way);
                          },
                          flops()});
    return limits;
}

} // namespace ork::peers
