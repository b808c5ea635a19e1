// SPDX-License-Identifier: MIT
// A Rule for bodies that decide while they run. It fits a register: exports hand it over in place of the argument that
// no kernel reads, and so become jumps.
#pragma once

#include <cstdint>

#include "spblas/rule.h"

namespace ork::spblas {

struct Form {
    std::int8_t base;
    char type;
    bool lower, unit, transpose, conjugate, negate, row_major;
};
static_assert(sizeof(Form) == sizeof(void*));

constexpr Form form(Rule r)
{
    return {static_cast<std::int8_t>(r.base), r.type, r.lower, r.unit, r.transpose, r.conjugate, r.negate, r.row_major};
}
template <class T>
constexpr Form form(const char* member)
{
    return form(rule<T>(letters(member)));
}

} // namespace ork::spblas
