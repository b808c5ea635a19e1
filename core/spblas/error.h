// SPDX-License-Identifier: MIT
// What the calling thread is told of its last failure.
#pragma once

#include <cstdint>

#include "spblas/call.h"

namespace ork::spblas {

// The names of a call's arguments in their order, with blanks between, for positions and texts.
struct Arguments {
    char text[128];
};
Arguments arguments_of(const Call& call);

// "ork_spblas_dcsrmv"
struct Name {
    char text[48];
};
Name name_of(const Call& call);

// Each records the failure and returns its status. `argument` is one of the names; behind a point the name may have a
// member.
[[gnu::cold]] std::int64_t wrong_argument(const Name& name, const Arguments& arguments, const char* argument,
                                          std::int64_t value, const char* rule);
[[gnu::cold]] std::int64_t null_argument(const Name& name, const Arguments& arguments, const char* argument);
[[gnu::cold]] std::int64_t no_memory(const Name& name);

// A position or row of -1 is left out.
struct Place {
    const char* array; // argument's name
    std::int64_t position, value;
    const char* line; // "row" or "column"
    std::int64_t row;
};
// The rule may have numbers in it as for printf.
[[gnu::cold, gnu::format(printf, 4, 5)]] std::int64_t wrong_structure(const Name& name, const Arguments& arguments,
                                                                      const Place& place, const char* rule, ...);

} // namespace ork::spblas
