// SPDX-License-Identifier: MIT
#include "sparse/error.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "export.h"
#include "threads/thread_record.h"

namespace ork::sparse {
namespace {

constinit threads::ThreadRecord<ork_sparse_error> records;

[[gnu::destructor]] void unload() { records.unload(); }

constexpr ork_sparse_error no_failure = {ORK_SPARSE_SUCCESS, 0, 0, -1, -1, ""};

// Of "op alpha a kind", "kind.uplo" is 4.
std::int64_t position_of(const char* argument, const char* arguments)
{
    const std::size_t length = std::strcspn(argument, ".");
    std::int64_t position = 1;
    for (const char* word = arguments;; ++position) {
        const std::size_t end = std::strcspn(word, " ");
        if (end == length && std::memcmp(word, argument, end) == 0) return position;
        if (word[end] == 0) return 0;
        word += end + 1;
    }
}

// The thread's record with a new failure in it, whose text is written piece by piece. Without memory for it the status
// alone says what is wrong.
class Failure {
public:
    Failure(std::int64_t status, const Routine& routine, const char* argument) : record_(records.find_or_make())
    {
        if (record_ == nullptr) return;
        *record_ = no_failure;
        record_->status = status;
        if (argument != nullptr) record_->argument = position_of(argument, routine.arguments);
        add("ork_sparse_");
        if (routine.precision != 0) add("%c_", routine.precision);
        add("%s", routine.name);
        if (routine.index_bytes != 0) add("_i%d", routine.index_bytes);
        add(": ");
    }

    [[gnu::format(printf, 2, 3)]] void add(const char* format, ...)
    {
        std::va_list values;
        va_start(values, format);
        add_list(format, values);
        va_end(values);
    }
    void add_list(const char* format, std::va_list values)
    {
        if (record_ == nullptr || length_ >= sizeof record_->text) return;
        const int more = std::vsnprintf(record_->text + length_, sizeof record_->text - length_, format, values);
        if (more > 0) length_ += static_cast<std::size_t>(more);
    }
    void add_argument(const char* name, std::int64_t value)
    {
        if (record_ == nullptr) return;
        record_->value = value;
        add("argument %d (%s) is %lld: ", static_cast<int>(record_->argument), name, static_cast<long long>(value));
    }
    ork_sparse_error* record() { return record_; }

private:
    ork_sparse_error* record_;
    std::size_t length_ = 0;
};

} // namespace

#define ORK_FAIL_BY_VALUE(status)                                                                                      \
    Failure failure(status, routine, argument);                                                                        \
    failure.add_argument(argument, value);                                                                             \
    std::va_list values;                                                                                               \
    va_start(values, rule);                                                                                            \
    failure.add_list(rule, values);                                                                                    \
    va_end(values);                                                                                                    \
    return status

std::int64_t wrong_argument(const Routine& routine, const char* argument, std::int64_t value, const char* rule, ...)
{
    ORK_FAIL_BY_VALUE(ORK_SPARSE_INVALID_ARGUMENT);
}

std::int64_t mismatch(const Routine& routine, const char* argument, std::int64_t value, const char* rule, ...)
{
    ORK_FAIL_BY_VALUE(ORK_SPARSE_MISMATCH);
}

std::int64_t not_supported(const Routine& routine, const char* argument, std::int64_t value, const char* rule, ...)
{
    ORK_FAIL_BY_VALUE(ORK_SPARSE_NOT_SUPPORTED);
}

std::int64_t null_argument(const Routine& routine, const char* argument)
{
    Failure failure(ORK_SPARSE_INVALID_ARGUMENT, routine, argument);
    failure.add("argument %d (%s) is a null pointer", static_cast<int>(position_of(argument, routine.arguments)),
                argument);
    return ORK_SPARSE_INVALID_ARGUMENT;
}

std::int64_t not_a_handle(const Routine& routine, const char* argument, const char* rule)
{
    Failure failure(ORK_SPARSE_NOT_A_HANDLE, routine, argument);
    failure.add("argument %d (%s) %s", static_cast<int>(position_of(argument, routine.arguments)), argument, rule);
    return ORK_SPARSE_NOT_A_HANDLE;
}

std::int64_t no_memory(const Routine& routine)
{
    Failure failure(ORK_SPARSE_NO_MEMORY, routine, nullptr);
    failure.add("out of memory");
    return ORK_SPARSE_NO_MEMORY;
}

std::int64_t wrong_structure(const Routine& routine, const Place& place, const char* rule, ...)
{
    Failure failure(ORK_SPARSE_INVALID_STRUCTURE, routine, place.array);
    if (ork_sparse_error* record = failure.record()) {
        record->value = place.value;
        record->row = place.row;
        record->position = place.position;
    }
    if (place.position >= 0)
        failure.add("%s[%lld] = %lld", place.array, static_cast<long long>(place.position),
                    static_cast<long long>(place.value));
    if (place.row >= 0)
        failure.add("%s%s %lld", place.position >= 0 ? " in " : "", place.line, static_cast<long long>(place.row));
    if (place.position >= 0 || place.row >= 0) failure.add(": ");
    std::va_list values;
    va_start(values, rule);
    failure.add_list(rule, values);
    va_end(values);
    return ORK_SPARSE_INVALID_STRUCTURE;
}

} // namespace ork::sparse

ORK_EXPORT const ork_sparse_error* ork_sparse_last_error()
{
    const ork_sparse_error* record = ork::sparse::records.find();
    return record ? record : &ork::sparse::no_failure;
}
