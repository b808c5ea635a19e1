// SPDX-License-Identifier: MIT
// Calls by rows that are no call by columns with letters and arguments exchanged. By rows the memory of A holds, by
// columns, its transpose M. y <- alpha A^H x + beta y is then
//
//     conj(y) <- conj(alpha) M conj(x) + conj(beta) conj(y),
//
// and a Hermitian A is conj(M), so that everything with hemv, her and their like is the conjugate of a call by columns
// too. Which arguments are conjugated stands in the shapes.
#pragma once

#include <complex>
#include <string_view>

#include "blas/checks.h"
#include "blas/work_buffer.h"
#include "ork/abi/services.h"

namespace ork::blas {

template <class T>
inline void conjugate(std::int64_t n, const T* x, std::int64_t incx, T* y, std::int64_t incy)
{
    for (std::int64_t i = 0; i < n; ++i) y[i * incy] = std::conj(x[i * incx]);
}

// The first element of a vector, which is the last in memory when the increment is negative.
template <class T>
inline T* first_element(std::int64_t n, T* x, std::int64_t incx)
{
    return incx < 0 ? x - (n - 1) * incx : x;
}

// Argument i as it stands.
template <class Row, std::size_t i>
struct Unchanged {
    typename Row::template Canonical<i> argument;

    template <class Call>
    explicit Unchanged(const Call& call) : argument(std::get<i>(call))
    {
    }
    auto get() const { return argument; }
    static bool ok() { return true; }
};

template <class Row, std::size_t i>
struct ConjugatedScalar {
    typename Row::template Value<i> value;

    template <class Call>
    explicit ConjugatedScalar(const Call& call) : value(std::conj(*std::get<i>(call)))
    {
    }
    auto get() const { return &value; }
    static bool ok() { return true; }
};

// A copy without gaps of an input vector.
template <class Row, std::size_t i>
class ConjugatedCopy {
public:
    template <class Call>
    explicit ConjugatedCopy(const Call& call)
        : n_(extent<Row, i>(call)), more_(n_ > size_of_few ? n_ : 0),
          values_(n_ > size_of_few ? more_.data() : reinterpret_cast<T*>(few_))
    {
        const std::int64_t incx = *std::get<i + 1>(call);
        if (ork_serv_check_ptr_and_warn(values_, Row::name) == 0)
            conjugate(n_, first_element(n_, std::get<i>(call), incx), incx, values_, 1);
    }
    const auto* get() const { return values_; }
    bool ok() const { return values_ != nullptr; }

private:
    using T = typename Row::template Value<i>;
    static constexpr std::int64_t size_of_few = 128;
    std::int64_t n_;
    alignas(64) unsigned char few_[size_of_few * sizeof(T)];
    WorkBuffer<T> more_;
    T* values_;
};

// A vector that is written, conjugated as long as this object lives.
template <class Row, std::size_t i>
class ConjugatedInPlace {
public:
    template <class Call>
    explicit ConjugatedInPlace(const Call& call)
        : x_(std::get<i>(call)), n_(extent<Row, i>(call)), incx_(*std::get<i + 1>(call))
    {
        change();
    }
    ~ConjugatedInPlace() { change(); }
    ConjugatedInPlace(const ConjugatedInPlace&) = delete;
    ConjugatedInPlace& operator=(const ConjugatedInPlace&) = delete;
    auto get() const { return x_; }
    static bool ok() { return true; }

private:
    void change() const
    {
        auto* first = first_element(n_, x_, incx_);
        conjugate(n_, first, incx_, first, incx_);
    }
    typename Row::template Canonical<i> x_;
    std::int64_t n_, incx_;
};

// The increment of a copy.
template <class Row, std::size_t i>
struct UnitIncrement {
    std::int64_t value = 1;

    template <class Call>
    explicit UnitIncrement(const Call&)
    {
    }
    auto get() const { return &value; }
    static bool ok() { return true; }
};

template <class Row, std::size_t i>
constexpr auto conjugated_type()
{
    constexpr const auto& shape = Row::arguments;
    constexpr auto is_copied = [](const Argument& a) { return a.conjugated && a.role == Role::vector && !a.written; };
    if constexpr (is_copied(shape[i]))
        return std::type_identity<ConjugatedCopy<Row, i>>();
    else if constexpr (shape[i].conjugated && shape[i].role == Role::vector)
        return std::type_identity<ConjugatedInPlace<Row, i>>();
    else if constexpr (shape[i].conjugated)
        return std::type_identity<ConjugatedScalar<Row, i>>();
    else if constexpr (i > 0 && is_copied(shape[i == 0 ? 0 : i - 1]))
        return std::type_identity<UnitIncrement<Row, i>>();
    else
        return std::type_identity<Unchanged<Row, i>>();
}

// Runs the conjugate of the canonical call and gives the caller's vectors back conjugated. Does nothing but complain
// when there is no memory for the copies.
template <class Row, class... Arguments>
[[gnu::noinline]] void run_conjugated(Arguments... arguments)
{
    const std::tuple call(arguments...);
    [&]<std::size_t... i>(std::index_sequence<i...>)
    {
        const std::tuple<typename decltype(conjugated_type<Row, i>())::type...> held((void(i), call)...);
        if ((std::get<i>(held).ok() && ...)) Row::run(std::get<i>(held).get()...);
    }
    (std::make_index_sequence<Row::count>());
}

// Position of the option that decides whether a call by rows is made of conjugates: the letter C, where N and T are
// legal too. Without such an option every call by rows is.
template <class Row>
constexpr std::size_t conjugating_option()
{
    std::size_t i = 0;
    while (i < Row::count && !(Row::arguments[i].role == Role::transposition && Row::arguments[i].turned &&
                               std::string_view(Row::arguments[i].legal) == "NTC"))
        ++i;
    return i;
}

// `held` are the caller's arguments as the C binding holds them.
template <class Row, class Held>
inline bool is_conjugated_by_rows(const Held& held)
{
    constexpr std::size_t option = conjugating_option<Row>();
    if constexpr (!Row::has_conjugated())
        return false;
    else if constexpr (option < Row::count)
        return *std::get<option>(held).get() == 'C';
    else
        return true;
}

} // namespace ork::blas
