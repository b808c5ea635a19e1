// SPDX-License-Identifier: MIT
// What an argument of a BLAS routine is: its role, its type and what makes it legal. Shapes (shapes.h) are arrays of
// these, and every binding, check and test of a routine is derived from them.
#pragma once

#include <cstddef>
#include <string_view>

namespace ork::blas {

enum class Role {
    transposition, // option letters
    triangle,
    diagonal,
    side,
    size,       // legal from 0 on where it is checked
    count,      // a size that level 1 does not check: below 1 there is nothing to do
    band,       // number of diagonals beside the main one, legal from 0 on
    stride,     // increment that may be anything
    increment,  // increment that may not be 0
    lead,       // leading dimension
    scalar,     // one input value, passed by value in C
    vector,     // elements of a vector or a matrix, or values passed by address in C too
    compressed, // values of a sparse vector
    indices,    // their positions in the dense one
    indexed,    // the dense one, addressed by positions that count from 1 in Fortran and from 0 in C
};

// The type of an element, for a row of type T.
enum class Element {
    value, // T
    real,  // the real type of T
    signed_byte,
    byte,       // also a number of 8 bits in a floating-point format
    short_word, // a signed integer
    half_word,  // a number of 16 bits in a floating-point format
};

// A number of elements: the argument `plain` if the option has its first legal letter or there is no option, `other` if
// it has not; plus the arguments `plus` and the constant `add`.
struct Extent {
    const char* option = nullptr;
    const char* plain = nullptr;
    const char* other = nullptr;
    const char* plus = nullptr;
    int add = 0;
};

struct Argument {
    Role role;
    const char* name;
    Element element = Element::value;
    bool written = false;
    const char* legal = nullptr;     // upper-case letters of an option
    Extent extent = {};              // least leading dimension, or 1; length of a vector that is conjugated
    const char* row_major = nullptr; // the C argument that takes this place when matrices are stored by rows
    bool turned = false;             // by rows an option also becomes the opposite one: U and L, L and R, N and T
    bool conjugated = false;         // replaced by its conjugate where a call by rows is made of conjugates

    constexpr Argument by_rows(const char* source) const
    {
        Argument a = *this;
        a.row_major = source;
        return a;
    }
    constexpr Argument turned_by_rows() const
    {
        Argument a = *this;
        a.turned = true;
        return a;
    }
    // For a call by rows of a complex routine that is none by columns with letters and arguments exchanged: the
    // transposed matrices are conjugated ones then, so the call is the conjugate of one by columns. An input vector is
    // conjugated in a copy, one that is written where it stands, before and after. See is_conjugated_by_rows.
    constexpr Argument conjugated_by_rows(Extent length = {}) const
    {
        Argument a = *this;
        a.conjugated = true;
        a.extent = length;
        return a;
    }
    constexpr bool is_option() const { return role <= Role::side; }
    constexpr bool is_integer() const { return role >= Role::size && role <= Role::lead; }
    // Whether a value of this argument can be illegal.
    constexpr bool is_checked() const
    {
        return is_option() || role == Role::size || role == Role::band || role == Role::increment || role == Role::lead;
    }
};

constexpr Argument transposition(const char* name, const char* legal)
{
    return {.role = Role::transposition, .name = name, .legal = legal};
}
constexpr Argument triangle(const char* name)
{
    return {.role = Role::triangle, .name = name, .legal = "UL", .turned = true};
}
constexpr Argument side(const char* name) { return {.role = Role::side, .name = name, .legal = "LR", .turned = true}; }
constexpr Argument diagonal(const char* name) { return {.role = Role::diagonal, .name = name, .legal = "UN"}; }
constexpr Argument size(const char* name) { return {.role = Role::size, .name = name}; }
constexpr Argument count(const char* name) { return {.role = Role::count, .name = name}; }
constexpr Argument band(const char* name) { return {.role = Role::band, .name = name}; }
constexpr Argument stride(const char* name) { return {.role = Role::stride, .name = name}; }
constexpr Argument increment(const char* name) { return {.role = Role::increment, .name = name}; }
constexpr Argument lead(const char* name, Extent least) { return {.role = Role::lead, .name = name, .extent = least}; }
constexpr Argument scalar(const char* name, Element e = Element::value)
{
    return {.role = Role::scalar, .name = name, .element = e};
}
constexpr Argument input(const char* name, Element e = Element::value)
{
    return {.role = Role::vector, .name = name, .element = e};
}
constexpr Argument output(const char* name, Element e = Element::value)
{
    return {.role = Role::vector, .name = name, .element = e, .written = true};
}
constexpr Argument indices(const char* name) { return {.role = Role::indices, .name = name}; }
constexpr Argument compressed(const char* name, bool written)
{
    return {.role = Role::compressed, .name = name, .written = written};
}
constexpr Argument indexed(const char* name, bool written)
{
    return {.role = Role::indexed, .name = name, .written = written};
}

// Position of an argument by its name; the number of arguments when there is none.
template <class Any, std::size_t length>
constexpr std::size_t position(const Any (&shape)[length], std::string_view name)
{
    std::size_t i = 0;
    while (i < length && name != shape[i].name) ++i;
    return i;
}

} // namespace ork::blas
