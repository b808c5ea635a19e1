// SPDX-License-Identifier: MIT
#include "sparse/copy.h"

#include "sparse/handle/exports.h"

namespace ork::sparse {

ORK_SPARSE_HANDLE_EXPORT(HandleCalls, void, destroy)(Matrix* a) { release_record(a); }

ORK_SPARSE_HANDLE_EXPORT(HandleCalls, int, copy)(const Matrix* a, Matrix** result)
{
    Matrix* const c = copy_lines<Int>(*a);
    if (c == nullptr) return record_no_memory;
    if (a->hint_count > 0) {
        c->hints = static_cast<Hint*>(new_array(a->hint_count, sizeof(Hint)));
        if (c->hints == nullptr) {
            release_record(c);
            return record_no_memory;
        }
        std::memcpy(c->hints, a->hints, static_cast<std::size_t>(a->hint_count) * sizeof(Hint));
        c->hint_count = c->hint_capacity = a->hint_count;
    }
    *result = c;
    return record_done;
}

} // namespace ork::sparse
