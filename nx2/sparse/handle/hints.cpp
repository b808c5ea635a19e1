// SPDX-License-Identifier: MIT
// What callers expect, in a record and for all new ones.
#include <cstring>

#include "sparse/handle/exports.h"
#include "sparse/record.h"

namespace ork::sparse {
namespace {

bool same_task(const Hint& a, const Hint& b)
{
    return a.task == b.task && a.op == b.op && a.type == b.type && a.uplo == b.uplo && a.diag == b.diag &&
           a.layout == b.layout && a.columns == b.columns;
}

void remove(Matrix* a, Hint* hint)
{
    --a->hint_count;
    std::memmove(hint, hint + 1, static_cast<std::size_t>(a->hints + a->hint_count - hint) * sizeof(Hint));
}

int append(Matrix* a, const Hint& hint)
{
    if (a->hint_count == a->hint_capacity) {
        const std::int32_t capacity = a->hint_capacity * 2 + 4;
        auto* const more = static_cast<Hint*>(new_array(capacity, sizeof(Hint)));
        if (more == nullptr) return record_no_memory;
        if (a->hint_count > 0) std::memcpy(more, a->hints, static_cast<std::size_t>(a->hint_count) * sizeof(Hint));
        ork_serv_free(a->hints);
        a->hints = more;
        a->hint_capacity = capacity;
    }
    a->hints[a->hint_count++] = hint;
    return record_done;
}

int set(Matrix* a, const Hint& hint)
{
    Hint* known = a->hints;
    Hint* const end = a->hints + a->hint_count;
    while (known != end && !same_task(*known, hint)) ++known;
    if (hint.calls == 0) {
        if (known != end) remove(a, known);
        return record_done;
    }
    if (known == end) return append(a, hint);
    known->calls = hint.calls;
    return record_done;
}

} // namespace

#define ORK_SPARSE_VECTOR_HINT(name)                                                                                   \
    ORK_SPARSE_HANDLE_EXPORT(HandleCalls, int, set_##name##_hint)                                                      \
    (Matrix * a, int op, int type, int uplo, int diag, std::int64_t calls)                                             \
    {                                                                                                                  \
        return set(a, {Task::name, op, type, uplo, diag, 0, 0, calls});                                                \
    }
#define ORK_SPARSE_MATRIX_HINT(name)                                                                                   \
    ORK_SPARSE_HANDLE_EXPORT(HandleCalls, int, set_##name##_hint)                                                      \
    (Matrix * a, int op, int type, int uplo, int diag, int layout, std::int64_t columns, std::int64_t calls)           \
    {                                                                                                                  \
        return set(a, {Task::name, op, type, uplo, diag, layout, columns, calls});                                     \
    }

ORK_SPARSE_VECTOR_HINT(mv)
ORK_SPARSE_VECTOR_HINT(dotmv)
ORK_SPARSE_VECTOR_HINT(sv)
ORK_SPARSE_VECTOR_HINT(symgs)
ORK_SPARSE_VECTOR_HINT(lu_smoother)
ORK_SPARSE_VECTOR_HINT(qr)
ORK_SPARSE_VECTOR_HINT(sorv)
ORK_SPARSE_MATRIX_HINT(mm)
ORK_SPARSE_MATRIX_HINT(sm)

ORK_SPARSE_HANDLE_EXPORT(HandleCalls, int, set_memory_hint)(Matrix* a, int memory)
{
    a->memory = static_cast<std::int8_t>(memory != 0);
    return record_done;
}

ORK_SPARSE_HANDLE_EXPORT(HandleCalls, void, ee_init)(Environment* environment)
{
    *environment = {.memory = 1, .verbose = 0, .calls = 100};
}

ORK_SPARSE_HANDLE_EXPORT(HandleCalls, int, set_verbose_mode)(Environment* environment, int mode)
{
    return __atomic_exchange_n(&environment->verbose, mode != 0 ? 1 : 0, __ATOMIC_RELAXED);
}

} // namespace ork::sparse
