// SPDX-License-Identifier: MIT
// The bodies of the public entries: a Fortran or a C call turned into the canonical one (every argument by address,
// 64-bit integers, matrices by columns), checked, and handed to the row's body.
#pragma once

#include <tuple>

#include "blas/checks.h"
#include "blas/conjugates.h"
#include "blas/report.h"
#include "blas/routine.h"
#include "blas/sparse_blocks.h"

namespace ork::blas {

// How a canonical argument is held while the body runs: where the caller has it, or as a copy.
template <class T>
struct Address {
    T* address;
    T* get() const { return address; }
    T* by_rows() const { return address; }
};
template <class T>
struct Copy {
    T value;
    const T* get() const { return &value; }
    const T* by_rows() const { return &value; }
};
struct Letter {
    char letter, turned; // by columns and by rows
    const char* get() const { return &letter; }
    const char* by_rows() const { return &turned; }
};

template <class Row, class Int, std::size_t i>
inline auto hold_fortran(FortranType<Row, Int, i> argument)
{
    if constexpr (Row::arguments[i].is_integer() && !std::is_same_v<Int, std::int64_t>)
        return Copy<std::int64_t>{*argument};
    else
        return Address<std::remove_pointer_t<decltype(argument)>>{argument};
}

// A value that is none of the enumerators becomes a letter that no option accepts.
constexpr char letter(CBLAS_TRANSPOSE v)
{
    return v == CblasNoTrans ? 'N' : v == CblasTrans ? 'T' : v == CblasConjTrans ? 'C' : '?';
}
constexpr char letter(CBLAS_UPLO v) { return v == CblasUpper ? 'U' : v == CblasLower ? 'L' : '?'; }
constexpr char letter(CBLAS_DIAG v) { return v == CblasUnit ? 'U' : v == CblasNonUnit ? 'N' : '?'; }
constexpr char letter(CBLAS_SIDE v) { return v == CblasLeft ? 'L' : v == CblasRight ? 'R' : '?'; }

// The letter of the transposed problem; an illegal one stays illegal.
constexpr char opposite(const Argument& option, char letter)
{
    if (!is_in(letter_set(option.legal), letter)) return letter;
    return letter == option.legal[0] ? option.legal[1] : option.legal[0];
}

template <class Row, class Int, std::size_t i>
inline auto hold_cblas(CblasType<Row, Int, i> argument)
{
    constexpr Argument a = Row::arguments[i];
    if constexpr (a.is_option()) {
        const char c = letter(argument);
        return Letter{c, a.turned ? opposite(a, c) : c};
    } else if constexpr (a.is_integer()) {
        return Copy<std::int64_t>{argument};
    } else if constexpr (a.role == Role::scalar && !std::is_pointer_v<decltype(argument)>) {
        return Copy<decltype(argument)>{argument};
    } else if constexpr (a.role == Role::indices) {
        return Address<const Int>{argument};
    } else {
        auto address = static_cast<typename Row::template Pointer<i>>(argument);
        if constexpr (a.role == Role::indexed) ++address; // position 0 here is what the kernels call position 1
        return Address<std::remove_pointer_t<decltype(address)>>{address};
    }
}

// Runs a canonical call; the indices of a sparse vector may still be 32-bit.
template <class Row, class Int, class... Arguments>
inline typename Row::Result run(Arguments... a)
{
    if constexpr (Row::has(Role::indices) && !std::is_same_v<Int, std::int64_t>)
        return run_in_blocks<Row>(a...);
    else
        return Row::run(a...);
}

template <class Row, class Int, class... Parameters>
inline FortranResult<Row, Int> fortran(Parameters... p)
{
    const auto checked = [](auto... a) -> FortranResult<Row, Int> {
        if constexpr (Row::is_checked()) {
            if (const int wrong = first_illegal<Row>(std::tuple(a...)); wrong != 0) [[unlikely]]
                return report_fortran<Int>(fortran_name<Row>.data(), fortran_name<Row>.size() - 1, wrong);
        }
        return static_cast<FortranResult<Row, Int>>(run<Row, Int>(a...));
    };
    return [&]<std::size_t... i>(std::index_sequence<i...>) { return checked(hold_fortran<Row, Int, i>(p).get()...); }
    (std::make_index_sequence<Row::count>());
}

template <class Row, class Int, class... Parameters>
inline typename Row::Result cblas_call(Parameters... p)
{
    return [&]<std::size_t... i>(std::index_sequence<i...>)
    {
        return run<Row, Int>(hold_cblas<Row, Int, i>(p).get()...);
    }
    (std::make_index_sequence<Row::count>());
}

template <class Row, class Int, class... Parameters>
inline CblasResult<Row> cblas(Parameters... p)
{
    static_assert(!Row::is_checked(), "a routine that can be called wrongly has matrices, so it has a storage order");
    if constexpr (std::is_same_v<typename Row::Result, std::int64_t>) {
        const std::int64_t first = cblas_call<Row, Int>(p...);
        return first > 0 ? static_cast<CBLAS_INDEX>(first - 1) : 0;
    } else {
        return cblas_call<Row, Int>(p...);
    }
}

template <class Row, class Int, class... Parameters>
inline void cblas_sub(Parameters... p, void* result)
{
    *static_cast<typename Row::Result*>(result) = cblas_call<Row, Int>(p...);
}

// Where the argument at place i of the Fortran list stands in the C call of a row-major problem.
template <class Row>
constexpr std::size_t source(std::size_t i)
{
    const char* name = Row::arguments[i].row_major;
    return name == nullptr ? i : position(Row::arguments, name);
}

// A row-major problem is the column-major one of the transposed matrices: the same memory, some arguments exchanged.
template <class Row, class Int, class... Parameters>
inline void cblas_ordered(CBLAS_LAYOUT layout, Parameters... p)
{
    const auto report = [](std::size_t place) {
        report_cblas<Int>(cblas_name<Row>.data(), static_cast<int>(place) + 2); // the storage order is argument 1
    };
    [&]<std::size_t... i>(std::index_sequence<i...>)
    {
        const std::tuple held(hold_cblas<Row, Int, i>(p)...);
        if (layout == CblasColMajor) {
            const std::tuple call(std::get<i>(held).get()...);
            if (const int wrong = first_illegal<Row>(call); wrong != 0) [[unlikely]]
                return report(wrong - 1);
            run<Row, Int>(std::get<i>(call)...);
        } else if (layout == CblasRowMajor) {
            const std::tuple call(std::get<source<Row>(i)>(held).by_rows()...);
            if (const int wrong = first_illegal<Row>(call); wrong != 0) [[unlikely]]
                return report(source<Row>(wrong - 1));
            if constexpr (Row::has_conjugated()) {
                if (is_conjugated_by_rows<Row>(held)) return run_conjugated<Row>(std::get<i>(call)...);
            }
            run<Row, Int>(std::get<i>(call)...);
        } else {
            report_cblas<Int>(cblas_name<Row>.data(), 1);
        }
    }
    (std::make_index_sequence<Row::count>());
}

} // namespace ork::blas
