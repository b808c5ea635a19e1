// SPDX-License-Identifier: MIT
// What the calling thread is told of its last failure with a handle.
#pragma once

#include <cstdint>

#include "ork/sparse.h"

namespace ork::sparse {

// A public function as its caller knows it: of Routine{"create_csr", "a base rows", 'd', 4} texts begin with
// ork_sparse_d_create_csr_i4. `arguments` are the names of all its arguments in their order.
struct Routine {
    const char *name, *arguments;
    char precision = 0;   // s d c z; 0: has none
    char index_bytes = 0; // 4 8; 0: knows no indices
};

// Each records the failure and returns its status. `argument` is one of the names; behind a point it may have a member
// ("kind.uplo"). The rule is for people and may have numbers in it as for printf.
[[gnu::cold, gnu::format(printf, 4, 5)]] std::int64_t wrong_argument(const Routine& routine, const char* argument,
                                                                     std::int64_t value, const char* rule, ...);
[[gnu::cold]] std::int64_t null_argument(const Routine& routine, const char* argument);
[[gnu::cold]] std::int64_t no_memory(const Routine& routine);
// Two handles, or a handle and the function, do not fit each other.
[[gnu::cold, gnu::format(printf, 4, 5)]] std::int64_t mismatch(const Routine& routine, const char* argument,
                                                               std::int64_t value, const char* rule, ...);
[[gnu::cold, gnu::format(printf, 4, 5)]] std::int64_t not_supported(const Routine& routine, const char* argument,
                                                                    std::int64_t value, const char* rule, ...);
[[gnu::cold]] std::int64_t not_a_handle(const Routine& routine, const char* argument, const char* rule);

// A position or row of -1 is left out of the text.
struct Place {
    const char* array; // argument's name
    std::int64_t position, value;
    const char* line; // "row" or "column"
    std::int64_t row; // counted from the base
};
[[gnu::cold, gnu::format(printf, 3, 4)]] std::int64_t wrong_structure(const Routine& routine, const Place& place,
                                                                      const char* rule, ...);

} // namespace ork::sparse
