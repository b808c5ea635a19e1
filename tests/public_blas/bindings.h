// SPDX-License-Identifier: MIT
// Calls of any routine of the table through any of its bindings, with routine and argument values chosen at run time.
#pragma once

#include <complex>
#include <cstdint>
#include <span>
#include <string>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "blas/argument.h"
#include "ork/cblas.h"
#include "ork/ork.h"
#include "support/random.h"

namespace ork::test {

using blas::Argument;
using blas::Role;

struct Call;

// A row of the table.
struct TableRow {
    const char* name;
    bool in_c, in_fortran; // has names beside those that begin with ork_
    std::span<const Argument> arguments;
    void (*visit)(std::size_t argument, void* values, void* visitor, void (*apply)(void*, int type, void*));
    std::complex<double> (*invoke)(void* symbol, bool c, bool wide, Call& call);
    bool is_checked, is_sub; // has a storage order in C; its C name ends in _sub

    std::size_t place(std::string_view argument) const
    {
        std::size_t i = 0;
        while (i < arguments.size() && argument != arguments[i].name) ++i;
        return i;
    }
    bool has(Role role) const
    {
        for (const Argument& a : arguments)
            if (a.role == role) return true;
        return false;
    }
    bool is_matrix(std::size_t i) const
    {
        return std::string_view(arguments[i].name) == "ap" ||
               (arguments[i].role == Role::vector && i + 1 < arguments.size() && arguments[i + 1].role == Role::lead);
    }
    bool is(std::string_view stem) const { return std::string_view(name).find(stem) != std::string_view::npos; }
};

std::span<const TableRow> table();
const TableRow& row(std::string_view name);

// A set of symbols: Fortran or C conventions, an integer width, a library.
struct Binding {
    const char* library; // for dlopen; null: the core, which this program is linked to
    bool c;
    bool wide; // 64-bit integers
    const char *prefix, *suffix;

    std::string symbol(const TableRow& row) const;
    void* find(const TableRow& row) const;
};
std::ostream& operator<<(std::ostream& out, const Binding& b);

std::vector<Binding> bindings_of(const TableRow& row);

// Argument values of one call, in Fortran order, and room for elements behind each pointer, in a vector 10000 at most.
struct Call {
    using Wide = std::complex<double>;

    const TableRow* row;
    std::int64_t room;
    CBLAS_LAYOUT layout = CblasColMajor;
    std::vector<char> letters;
    std::vector<std::int64_t> integers;
    std::vector<std::vector<Wide>> elements; // storage only: holds values of the argument's own type
    std::vector<std::int64_t> positions;     // of a sparse vector, from 1

    explicit Call(const TableRow& row, std::int64_t room = 1024);

    std::int64_t capacity(std::size_t i) const; // values of argument i
    std::int64_t& integer(const char* name) { return integers[row->place(name)]; }
    bool same_elements(const Call& other) const;

    // function(T* values) with the type of argument i.
    template <class Function>
    void visit(std::size_t i, Function&& function)
    {
        row->visit(i, elements[i].data(), &function, [](void* visitor, int type, void* values) {
            Function& f = *static_cast<std::remove_reference_t<Function>*>(visitor);
            switch (type) {
            case 0:
                return f(static_cast<float*>(values));
            case 1:
                return f(static_cast<double*>(values));
            case 2:
                return f(static_cast<std::complex<float>*>(values));
            case 3:
                return f(static_cast<std::complex<double>*>(values));
            case 4:
                return f(static_cast<std::int8_t*>(values));
            case 5:
                return f(static_cast<std::uint8_t*>(values));
            case 6:
                return f(static_cast<std::int16_t*>(values));
            case 7:
                return f(static_cast<std::uint16_t*>(values));
            case 8:
                return f(static_cast<std::int32_t*>(values));
            }
        });
    }
    // Fractions everywhere, or small integers whose products and sums are exact.
    void fill(Random& random, bool exact = false);
};

// The result, if there is one, as a double or a complex double; positions count from 1 as in Fortran.
std::complex<double> invoke(const Binding& binding, Call& call);

// The same done by the kernel of the routine's name, which has Fortran's conventions too.
std::complex<double> invoke_kernel(Call& call);

// body(letters) for every combination of legal option letters.
template <class Body>
void for_each_letters(Call& call, Body&& body, std::size_t i = 0)
{
    while (i < call.letters.size() && !call.row->arguments[i].is_option()) ++i;
    if (i == call.letters.size()) return body();
    for (const char* letter = call.row->arguments[i].legal; *letter != 0; ++letter) {
        call.letters[i] = *letter;
        for_each_letters(call, body, i + 1);
    }
}

} // namespace ork::test
