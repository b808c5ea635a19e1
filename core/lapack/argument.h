// SPDX-License-Identifier: MIT
// What an argument of a LAPACK routine is: its role and what makes it legal. Shapes (shapes.h) are arrays of these, and
// every entry, check and test of a routine is derived from them.
#pragma once

#include <cstddef>

#include "blas/argument.h"

namespace ork::lapack {

enum class Role {
    letter,    // legal when it is one of `legal`
    size,      // legal from 0 on, and up to the bound if there is one
    lead,      // leading dimension, legal from the bound on, at least 1
    elements,  // of a matrix or a vector
    pivots,    // row numbers
    work,      // room for elements
    work_size, // legal from the bound on, at least 1, or -1: the question how much that is
    info,      // always last; work_size, where there is one, stands before it
};

// A number: the argument `plain`, or `other` if the letter `option` isn't its first legal one.
struct Bound {
    const char* plain = nullptr;
    const char* option = nullptr;
    const char* other = nullptr;
};

struct Argument {
    Role role;
    const char* name;
    const char* legal = nullptr; // upper-case letters
    Bound bound = {};
    const char* unless = nullptr; // of a work_size: with this size zero 1 is enough
    bool written = false;

    // Whether a value can be illegal.
    constexpr bool is_checked() const
    {
        return role == Role::letter || role == Role::size || role == Role::lead || role == Role::work_size;
    }
};

constexpr Argument letter(const char* name, const char* legal) { return {Role::letter, name, legal}; }
constexpr Argument size(const char* name, Bound most = {}) { return {Role::size, name, nullptr, most}; }
constexpr Argument lead(const char* name, Bound least) { return {Role::lead, name, nullptr, least}; }
constexpr Argument input(const char* name) { return {Role::elements, name}; }
constexpr Argument output(const char* name) { return {Role::elements, name, nullptr, {}, nullptr, true}; }
constexpr Argument pivots_in(const char* name) { return {Role::pivots, name}; }
constexpr Argument pivots_out(const char* name) { return {Role::pivots, name, nullptr, {}, nullptr, true}; }
constexpr Argument work(const char* name) { return {Role::work, name, nullptr, {}, nullptr, true}; }
constexpr Argument work_size(const char* name, Bound least, const char* unless = nullptr)
{
    return {Role::work_size, name, nullptr, least, unless};
}
constexpr Argument info(const char* name) { return {Role::info, name, nullptr, {}, nullptr, true}; }

using blas::position;

} // namespace ork::lapack
