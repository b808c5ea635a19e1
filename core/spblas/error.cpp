// SPDX-License-Identifier: MIT
#include "spblas/error.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "export.h"
#include "threads/thread_record.h"

namespace ork::spblas {
namespace {

constinit threads::ThreadRecord<ork_spblas_error> records;

[[gnu::destructor]] void unload() { records.unload(); }

constexpr ork_spblas_error no_failure = {ORK_SPBLAS_SUCCESS, 0, 0, -1, -1, ""};

// Null when there is no memory for it: then the status alone says what is wrong.
ork_spblas_error* new_record(std::int64_t status)
{
    ork_spblas_error* const record = records.find_or_make();
    if (record == nullptr) return nullptr;
    *record = no_failure;
    record->status = status;
    return record;
}

// Of "op kind m n", "m" is 3.
std::int64_t position_of(const char* argument, const Arguments& arguments)
{
    const std::size_t length = std::strcspn(argument, ".");
    std::int64_t position = 1;
    for (const char* word = arguments.text;; ++position) {
        const std::size_t end = std::strcspn(word, " ");
        if (end == length && std::memcmp(word, argument, end) == 0) return position;
        if (word[end] == 0) return 0;
        word += end + 1;
    }
}

constexpr const char* formats[] = {"csr", "coo", "bsr", "bsc", "dia", "sky"};
constexpr const char* routines[] = {"mv", "mm", "sv", "sm"};

} // namespace

Name name_of(const Call& call)
{
    Name name;
    std::snprintf(name.text, sizeof name.text, "ork_spblas_%s%c%s%s", call.wide ? "" : "lp64_",
                  "sdcz"[static_cast<int>(call.precision)],
                  call.names ? call.names->routine : formats[static_cast<int>(call.a->format)],
                  call.names ? "" : routines[static_cast<int>(call.routine)]);
    return name;
}

Arguments arguments_of(const Call& call)
{
    static constexpr const char* matrix[] = {"val indx pntrb pntre",    "val rowind colind nnz",
                                             "lb val indx pntrb pntre", "lb val indx pntrb pntre",
                                             "val lval idiag ndiag",    "val pntr"};
    static constexpr const char* behind[] = {"x beta y", "b ldb beta c ldc", "x y", "b ldb c ldc"};
    const bool vectors = call.vectors();
    Arguments arguments;
    if (call.names) {
        std::snprintf(arguments.text, sizeof arguments.text, "%s", call.names->arguments);
        return arguments;
    }
    std::snprintf(arguments.text, sizeof arguments.text, "op kind%s m n%s alpha %s %s", vectors ? "" : " layout",
                  vectors ? "" : " nrhs", matrix[static_cast<int>(call.a->format)],
                  behind[static_cast<int>(call.routine)]);
    return arguments;
}

std::int64_t wrong_argument(const Name& name, const Arguments& arguments, const char* argument, std::int64_t value,
                            const char* rule)
{
    if (ork_spblas_error* record = new_record(ORK_SPBLAS_INVALID_ARGUMENT)) {
        record->argument = position_of(argument, arguments);
        record->value = value;
        std::snprintf(record->text, sizeof record->text, "%s: argument %d (%s) is %lld: %s", name.text,
                      static_cast<int>(record->argument), argument, static_cast<long long>(value), rule);
    }
    return ORK_SPBLAS_INVALID_ARGUMENT;
}

std::int64_t null_argument(const Name& name, const Arguments& arguments, const char* argument)
{
    if (ork_spblas_error* record = new_record(ORK_SPBLAS_INVALID_ARGUMENT)) {
        record->argument = position_of(argument, arguments);
        std::snprintf(record->text, sizeof record->text, "%s: argument %d (%s) is a null pointer", name.text,
                      static_cast<int>(record->argument), argument);
    }
    return ORK_SPBLAS_INVALID_ARGUMENT;
}

std::int64_t no_memory(const Name& name)
{
    if (ork_spblas_error* record = new_record(ORK_SPBLAS_NO_MEMORY))
        std::snprintf(record->text, sizeof record->text, "%s: out of memory", name.text);
    return ORK_SPBLAS_NO_MEMORY;
}

std::int64_t wrong_structure(const Name& name, const Arguments& arguments, const Place& place, const char* rule, ...)
{
    ork_spblas_error* record = new_record(ORK_SPBLAS_INVALID_STRUCTURE);
    if (record == nullptr) return ORK_SPBLAS_INVALID_STRUCTURE;
    record->argument = position_of(place.array, arguments);
    record->value = place.value;
    record->row = place.row;
    record->position = place.position;
    char* text = record->text;
    const char* const end = text + sizeof record->text;
    text += std::snprintf(text, end - text, "%s: ", name.text);
    if (place.position >= 0)
        text += std::snprintf(text, end - text, "%s[%lld] = %lld", place.array, static_cast<long long>(place.position),
                              static_cast<long long>(place.value));
    if (place.row >= 0)
        text += std::snprintf(text, end - text, "%s%s %lld", place.position >= 0 ? " in " : "", place.line,
                              static_cast<long long>(place.row));
    if (place.position >= 0 || place.row >= 0) text += std::snprintf(text, end - text, ": ");
    std::va_list values;
    va_start(values, rule);
    std::vsnprintf(text, end - text, rule, values);
    va_end(values);
    return ORK_SPBLAS_INVALID_STRUCTURE;
}

} // namespace ork::spblas

ORK_EXPORT const ork_spblas_error* ork_spblas_last_error()
{
    const ork_spblas_error* record = ork::spblas::records.find();
    return record ? record : &ork::spblas::no_failure;
}
