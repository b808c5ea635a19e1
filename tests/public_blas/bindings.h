// SPDX-License-Identifier: MIT
// Calls of any routine of the table through any of its bindings, with argument values chosen at run time.
#pragma once

#include <dlfcn.h>

#include <complex>
#include <cstdint>
#include <cstring>
#include <string>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "blas/rows.h"
#include "ork/ork.h"

namespace ork::test {

using namespace ork::blas;

// A set of symbols: Fortran or C conventions, an integer width, a library.
struct Binding {
    const char* library; // for dlopen; null: the core, which this program is linked to
    bool c;
    bool wide; // 64-bit integers
    const char* suffix;

    std::string symbol(const std::string& routine) const { return (c ? "cblas_" : "") + routine + suffix; }
    void* find(const std::string& routine) const
    {
        void* handle = library == nullptr ? RTLD_DEFAULT : dlopen(library, RTLD_NOW | RTLD_LOCAL);
        void* address = handle == nullptr && library != nullptr ? nullptr : dlsym(handle, symbol(routine).c_str());
        EXPECT_NE(address, nullptr) << symbol(routine) << " in " << (library ? library : "the core");
        return address;
    }
};

inline std::ostream& operator<<(std::ostream& out, const Binding& b)
{
    return out << b.symbol("*") << " " << (b.library ? b.library : "core");
}

inline constexpr Binding bindings[] = {
    {nullptr, false, false, "_"},
    {nullptr, false, true, "_64_"},
    {nullptr, true, false, ""},
    {nullptr, true, true, "64_"},
    {nullptr, true, true, "_64"},
    {ORK_LIB_DIR "/libblas.so.3", false, false, "_"},
    {ORK_LIB_DIR "/libblas.so.3", true, false, ""},
    {ORK_LIB_DIR "/libblas64.so.3", false, true, "_"},
    {ORK_LIB_DIR "/libblas64.so.3", true, true, ""},
};

// Argument values of one call, in Fortran order, and room for 1024 elements behind each pointer.
template <class Row>
struct Call {
    static constexpr std::int64_t room = 1024;
    using Wide = std::complex<double>;

    CBLAS_LAYOUT layout = CblasColMajor;
    char letters[Row::count] = {};
    std::int64_t integers[Row::count] = {};
    std::vector<Wide> elements[Row::count]; // storage only: holds values of the argument's own type
    std::vector<std::int64_t> positions;    // of a sparse vector, from 1

    Call()
    {
        for (auto& e : elements) e.resize(room);
        for (std::size_t i = 0; i < Row::count; ++i)
            if (Row::arguments[i].is_option()) letters[i] = Row::arguments[i].legal[0];
    }

    static std::size_t place(const char* name) { return position(Row::arguments, name); }
    std::int64_t& integer(const char* name) { return integers[place(name)]; }

    template <std::size_t i>
    typename Row::template Value<i>* values()
    {
        return reinterpret_cast<typename Row::template Value<i>*>(elements[i].data());
    }
    bool same_elements(const Call& other) const
    {
        for (std::size_t i = 0; i < Row::count; ++i)
            if (std::memcmp(elements[i].data(), other.elements[i].data(), room * sizeof(Wide)) != 0) return false;
        return true;
    }
};

namespace detail {

template <class Enum>
Enum enumerator(char letter)
{
    struct {
        char letter;
        int value;
    } constexpr trans[] = {{'N', 111}, {'T', 112}, {'C', 113}}, uplo[] = {{'U', 121}, {'L', 122}},
                diag[] = {{'N', 131}, {'U', 132}}, side[] = {{'L', 141}, {'R', 142}};
    const auto find = [&](const auto& list) {
        for (const auto& entry : list)
            if (entry.letter == letter) return static_cast<Enum>(entry.value);
        return static_cast<Enum>(letter == 0 ? 0 : 1000 + letter);
    };
    if constexpr (std::is_same_v<Enum, CBLAS_TRANSPOSE>)
        return find(trans);
    else if constexpr (std::is_same_v<Enum, CBLAS_UPLO>)
        return find(uplo);
    else if constexpr (std::is_same_v<Enum, CBLAS_DIAG>)
        return find(diag);
    else
        return find(side);
}

template <class Row, class Int, std::size_t... i>
auto call_fortran(void* symbol, Call<Row>& call, std::index_sequence<i...>)
{
    Int integers[Row::count];
    std::vector<Int> positions(call.positions.begin(), call.positions.end());
    for (std::size_t j = 0; j < Row::count; ++j) integers[j] = static_cast<Int>(call.integers[j]);
    const auto argument = [&]<std::size_t j>() -> FortranType<Row, Int, j> {
        constexpr Argument a = Row::arguments[j];
        if constexpr (a.is_option())
            return &call.letters[j];
        else if constexpr (a.is_integer())
            return &integers[j];
        else if constexpr (a.role == Role::indices)
            return positions.data();
        else
            return call.template values<j>();
    };
    using Function = FortranResult<Row, Int> (*)(FortranType<Row, Int, i>...);
    return reinterpret_cast<Function>(symbol)(argument.template operator()<i>()...);
}

template <class Row, class Int, std::size_t... i>
auto call_c(void* symbol, Call<Row>& call, std::index_sequence<i...>)
{
    std::vector<Int> positions;
    for (const std::int64_t p : call.positions) positions.push_back(static_cast<Int>(p - 1));
    const auto argument = [&]<std::size_t j>() -> CblasType<Row, Int, j> {
        constexpr Argument a = Row::arguments[j];
        if constexpr (a.is_option())
            return enumerator<CblasType<Row, Int, j>>(call.letters[j]);
        else if constexpr (a.is_integer())
            return static_cast<Int>(call.integers[j]);
        else if constexpr (a.role == Role::indices)
            return positions.data();
        else if constexpr (std::is_pointer_v<CblasType<Row, Int, j>>)
            return call.template values<j>();
        else
            return *call.template values<j>();
    };
    using Result = typename Row::Result;
    if constexpr (Row::is_checked()) {
        reinterpret_cast<void (*)(CBLAS_LAYOUT, CblasType<Row, Int, i>...)>(symbol)(
            call.layout, argument.template operator()<i>()...);
    } else if constexpr (blas::is_complex<Result>) {
        Result result;
        reinterpret_cast<void (*)(CblasType<Row, Int, i>..., void*)>(symbol)(argument.template operator()<i>()...,
                                                                             &result);
        return result;
    } else {
        return reinterpret_cast<CblasResult<Row> (*)(CblasType<Row, Int, i>...)>(symbol)(
            argument.template operator()<i>()...);
    }
}

} // namespace detail

// The result, if there is one, as a double or a complex double; positions count from 1 as in Fortran.
template <class Row>
std::complex<double> invoke(const Binding& binding, void* symbol, Call<Row>& call)
{
    if (symbol == nullptr) return NAN;
    const auto run = [&]<class Int>(Int) {
        constexpr auto all = std::make_index_sequence<Row::count>();
        if constexpr (std::is_void_v<typename Row::Result>) {
            if (binding.c)
                detail::call_c<Row, Int>(symbol, call, all);
            else
                detail::call_fortran<Row, Int>(symbol, call, all);
            return std::complex<double>();
        } else if (binding.c) {
            const auto r = detail::call_c<Row, Int>(symbol, call, all);
            // C has no way to say that there is no such element: 0 is also the first one.
            if constexpr (std::is_same_v<decltype(r), const CBLAS_INDEX>)
                return std::complex<double>(static_cast<double>(r) + (call.integer("n") > 0));
            else
                return std::complex<double>(r);
        } else {
            return std::complex<double>(detail::call_fortran<Row, Int>(symbol, call, all));
        }
    };
    return binding.wide ? run(std::int64_t()) : run(std::int32_t());
}

template <class Row>
std::complex<double> invoke(const Binding& binding, Call<Row>& call)
{
    constexpr bool complex_result = blas::is_complex<typename Row::Result>;
    return invoke<Row>(binding, binding.find(std::string(Row::name) + (binding.c && complex_result ? "_sub" : "")),
                       call);
}

// The same done by the kernel of the routine's name, which has Fortran's conventions too.
template <class Row>
std::complex<double> invoke_kernel(Call<Row>& call)
{
    static void* const library = (ork_initialize(), dlopen(ork_kernel_library(), RTLD_NOW));
    void* symbol = nullptr;
    for (const char* prefix : {"ork_blas_nx2_x", "ork_blas_nx2_"})
        if (symbol == nullptr) symbol = dlsym(library, (std::string(prefix) + Row::name).c_str());
    EXPECT_NE(symbol, nullptr) << "no kernel " << Row::name;
    return invoke<Row>({nullptr, false, true, ""}, symbol, call);
}

// body.operator()<Row>() for every row of the table.
template <class Body>
void for_each_row(Body&& body)
{
#define ROUTINE(n, routine, ...) body.template operator()<blas::rows::routine>();
#define FUNCTION ROUTINE
#define COMPLEX_FUNCTION ROUTINE
#define ORDERED_ROUTINE ROUTINE
#define FORTRAN_ROUTINE ROUTINE
#define OWN_ROUTINE ROUTINE
#define EXTENSION_FUNCTION ROUTINE
#define EXTENSION_COMPLEX_FUNCTION ROUTINE
#include "blas/routines.inc"
}

} // namespace ork::test
