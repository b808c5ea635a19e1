// SPDX-License-Identifier: MIT
// What parameters there are, what values they take, and where they are kept.
#include <algorithm>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "dft/descriptor.h"
#include "export.h"

namespace ork::dft {
namespace {

enum class Kind { choice, integer, integers, real, text };

struct Parameter {
    int number;
    const char* name; // without ORK_DFT_
    Kind kind;
    bool settable;
    int choices[4]; // of Kind::choice, 0 behind the last
};

constexpr bool fixed = false, free = true;
constexpr Parameter parameters[] = {
    {ORK_DFT_PRECISION, "PRECISION", Kind::choice, fixed, {ORK_DFT_SINGLE, ORK_DFT_DOUBLE}},
    {ORK_DFT_FORWARD_DOMAIN, "FORWARD_DOMAIN", Kind::choice, fixed, {ORK_DFT_COMPLEX, ORK_DFT_REAL}},
    {ORK_DFT_DIMENSION, "DIMENSION", Kind::integer, fixed, {}},
    {ORK_DFT_LENGTHS, "LENGTHS", Kind::integers, fixed, {}},
    {ORK_DFT_NUMBER_OF_TRANSFORMS, "NUMBER_OF_TRANSFORMS", Kind::integer, free, {}},
    {ORK_DFT_FORWARD_SCALE, "FORWARD_SCALE", Kind::real, free, {}},
    {ORK_DFT_BACKWARD_SCALE, "BACKWARD_SCALE", Kind::real, free, {}},
    {ORK_DFT_PLACEMENT, "PLACEMENT", Kind::choice, free, {ORK_DFT_INPLACE, ORK_DFT_NOT_INPLACE}},
    {ORK_DFT_COMPLEX_STORAGE, "COMPLEX_STORAGE", Kind::choice, free, {ORK_DFT_COMPLEX_COMPLEX, ORK_DFT_REAL_REAL}},
    {ORK_DFT_CONJUGATE_EVEN_STORAGE,
     "CONJUGATE_EVEN_STORAGE",
     Kind::choice,
     free,
     {ORK_DFT_COMPLEX_COMPLEX, ORK_DFT_COMPLEX_REAL}},
    {ORK_DFT_INPUT_STRIDES, "INPUT_STRIDES", Kind::integers, free, {}},
    {ORK_DFT_OUTPUT_STRIDES, "OUTPUT_STRIDES", Kind::integers, free, {}},
    {ORK_DFT_INPUT_DISTANCE, "INPUT_DISTANCE", Kind::integer, free, {}},
    {ORK_DFT_OUTPUT_DISTANCE, "OUTPUT_DISTANCE", Kind::integer, free, {}},
    {ORK_DFT_WORKSPACE, "WORKSPACE", Kind::choice, free, {ORK_DFT_ALLOW, ORK_DFT_AVOID}},
    {ORK_DFT_ORDERING, "ORDERING", Kind::choice, free, {ORK_DFT_ORDERED}},
    {ORK_DFT_NAME, "NAME", Kind::text, free, {}},
    {ORK_DFT_VERSION, "VERSION", Kind::text, fixed, {}},
    {ORK_DFT_COMMIT_STATUS, "COMMIT_STATUS", Kind::choice, fixed, {ORK_DFT_COMMITTED, ORK_DFT_UNCOMMITTED}},
    {ORK_DFT_PACKED_FORMAT,
     "PACKED_FORMAT",
     Kind::choice,
     free,
     {ORK_DFT_CCS, ORK_DFT_PACK, ORK_DFT_PERM, ORK_DFT_CCE}},
    {ORK_DFT_THREAD_LIMIT, "THREAD_LIMIT", Kind::integer, free, {}},
    {ORK_DFT_NUMBER_OF_USER_THREADS, "NUMBER_OF_USER_THREADS", Kind::integer, free, {}},
};

const Parameter* find(std::int64_t number)
{
    const auto found = std::find_if(std::begin(parameters), std::end(parameters),
                                    [&](const Parameter& parameter) { return parameter.number == number; });
    return found != std::end(parameters) ? found : nullptr;
}

const char* kind_name(Kind kind)
{
    switch (kind) {
    case Kind::choice:
    case Kind::integer:
        return "an integer";
    case Kind::integers:
        return "an array of integers";
    case Kind::real:
        return "a real number";
    case Kind::text:
        break;
    }
    return "a text";
}

// The field of a parameter of Kind::choice or integer that can be set.
std::int64_t& integer_of(Parameters& p, int parameter)
{
    switch (parameter) {
    case ORK_DFT_NUMBER_OF_TRANSFORMS:
        return p.transforms;
    case ORK_DFT_PLACEMENT:
        return p.placement;
    case ORK_DFT_COMPLEX_STORAGE:
        return p.complex_storage;
    case ORK_DFT_CONJUGATE_EVEN_STORAGE:
        return p.conjugate_even_storage;
    case ORK_DFT_INPUT_DISTANCE:
        return p.distance[input];
    case ORK_DFT_OUTPUT_DISTANCE:
        return p.distance[output];
    case ORK_DFT_WORKSPACE:
        return p.workspace;
    case ORK_DFT_ORDERING:
        return p.ordering;
    case ORK_DFT_PACKED_FORMAT:
        return p.packed_format;
    case ORK_DFT_THREAD_LIMIT:
        return p.thread_limit;
    case ORK_DFT_NUMBER_OF_USER_THREADS:
        return p.user_threads;
    case ORK_DFT_PRECISION:
        return p.precision;
    case ORK_DFT_FORWARD_DOMAIN:
        return p.domain;
    default:
        return p.rank;
    }
}

// A call on one parameter: the descriptor and the parameter's row, when the parameter exists and is of the kind.
struct Call {
    ork_dft_descriptor* descriptor;
    const Parameter* parameter = nullptr;
    std::int64_t status = ORK_DFT_NO_ERROR;

    Call(const ork_dft_descriptor* handle, std::int64_t number, const void* value)
        : descriptor(const_cast<ork_dft_descriptor*>(handle))
    {
        if (!alive(handle)) {
            status = ORK_DFT_BAD_DESCRIPTOR;
            return;
        }
        parameter = find(number);
        if (parameter == nullptr)
            status = fail(descriptor, ORK_DFT_INVALID_CONFIGURATION, "there is no parameter %lld",
                          static_cast<long long>(number));
        else if (value == nullptr)
            invalid("ORK_DFT_%s: the pointer to it is null", parameter->name);
    }

    bool ok() const { return status == ORK_DFT_NO_ERROR; }

    Call& of(Kind kind)
    {
        const bool agrees =
            ok() && (parameter->kind == kind || (parameter->kind == Kind::choice && kind == Kind::integer));
        if (ok() && !agrees) invalid("ORK_DFT_%s is %s", parameter->name, kind_name(parameter->kind));
        return *this;
    }

    template <class... Values>
    void invalid(const char* format, Values... values)
    {
        status = fail(descriptor, ORK_DFT_INVALID_CONFIGURATION, format, values...);
    }

    Parameters& all() const { return descriptor->parameters; }
    Side side() const { return parameter->number == ORK_DFT_INPUT_STRIDES ? input : output; }
    ork::dft::Direction direction() const { return parameter->number == ORK_DFT_FORWARD_SCALE ? forward : backward; }

    std::int64_t changed()
    {
        descriptor->state = ork_dft_descriptor::alive;
        return ORK_DFT_NO_ERROR;
    }
};

std::int64_t set_choice(Call& call, std::int64_t value)
{
    char list[100] = "";
    for (const int choice : call.parameter->choices) {
        if (choice == 0) break;
        if (choice == value) {
            integer_of(call.all(), call.parameter->number) = value;
            return call.changed();
        }
        const std::size_t length = std::strlen(list);
        std::snprintf(list + length, sizeof list - length, "%s%d", length ? ", " : "", choice);
    }
    call.invalid("ORK_DFT_%s = %lld: is none of %s", call.parameter->name, static_cast<long long>(value), list);
    return call.status;
}

std::int64_t set_number(Call& call, std::int64_t value)
{
    const char* name = call.parameter->name;
    const auto number = static_cast<long long>(value);
    switch (call.parameter->number) {
    case ORK_DFT_NUMBER_OF_TRANSFORMS:
        if (value < 1)
            return fail(call.descriptor, ORK_DFT_LENGTH_ERROR, "ORK_DFT_%s = %lld: less than 1", name, number);
        break;
    case ORK_DFT_THREAD_LIMIT:
    case ORK_DFT_NUMBER_OF_USER_THREADS:
        if (value < (call.parameter->number == ORK_DFT_THREAD_LIMIT ? 0 : 1) || value > INT_MAX)
            return fail(call.descriptor, ORK_DFT_NUMBER_OF_THREADS_ERROR, "ORK_DFT_%s = %lld: no number of threads",
                        name, number);
        break;
    default:
        break;
    }
    integer_of(call.all(), call.parameter->number) = value;
    return call.changed();
}

// `shown` stands for the value in the text, when there is one.
bool may_set(Call& call, const char* shown)
{
    if (call.ok() && !call.parameter->settable)
        call.invalid("ORK_DFT_%s%s can be read only", call.parameter->name, shown);
    return call.ok();
}

} // namespace
} // namespace ork::dft

using namespace ork::dft;

ORK_EXPORT int64_t ork_dft_set_integer(ork_dft_descriptor* handle, int64_t parameter, int64_t value)
{
    Call call(handle, parameter, &value);
    char shown[32];
    std::snprintf(shown, sizeof shown, " = %lld:", static_cast<long long>(value));
    if (!may_set(call.of(Kind::integer), shown)) return call.status;
    return call.parameter->kind == Kind::choice ? set_choice(call, value) : set_number(call, value);
}

ORK_EXPORT int64_t ork_dft_set_integers(ork_dft_descriptor* handle, int64_t parameter, const int64_t* values)
{
    Call call(handle, parameter, values);
    if (!may_set(call.of(Kind::integers), "")) return call.status;
    std::copy_n(values, call.all().rank + 1, call.all().own_strides[call.side()]);
    call.all().has_strides[call.side()] = true;
    return call.changed();
}

ORK_EXPORT int64_t ork_dft_set_real(ork_dft_descriptor* handle, int64_t parameter, double value)
{
    Call call(handle, parameter, &value);
    if (!may_set(call.of(Kind::real), "")) return call.status;
    call.all().scale[call.direction()] = value;
    return call.changed();
}

ORK_EXPORT int64_t ork_dft_set_text(ork_dft_descriptor* handle, int64_t parameter, const char* text)
{
    Call call(handle, parameter, text);
    if (!may_set(call.of(Kind::text), "")) return call.status;
    const std::size_t length = strnlen(text, ORK_DFT_NAME_SIZE);
    if (length == ORK_DFT_NAME_SIZE) {
        call.invalid("ORK_DFT_%s = %.40s...: has more than %d characters", call.parameter->name, text,
                     ORK_DFT_NAME_SIZE - 1);
        return call.status;
    }
    std::memcpy(call.all().name, text, length + 1);
    return call.changed();
}

ORK_EXPORT int64_t ork_dft_get_integer(const ork_dft_descriptor* handle, int64_t parameter, int64_t* value)
{
    Call call(handle, parameter, value);
    if (!call.of(Kind::integer).ok()) return call.status;
    if (parameter == ORK_DFT_COMMIT_STATUS)
        *value = handle->committed() ? ORK_DFT_COMMITTED : ORK_DFT_UNCOMMITTED;
    else
        *value = integer_of(call.all(), call.parameter->number);
    return ORK_DFT_NO_ERROR;
}

ORK_EXPORT int64_t ork_dft_get_integers(const ork_dft_descriptor* handle, int64_t parameter, int64_t* values)
{
    Call call(handle, parameter, values);
    if (!call.of(Kind::integers).ok()) return call.status;
    if (parameter == ORK_DFT_LENGTHS)
        std::copy_n(call.all().lengths, call.all().rank, values);
    else
        strides_of(call.all(), call.side(), values);
    return ORK_DFT_NO_ERROR;
}

ORK_EXPORT int64_t ork_dft_get_real(const ork_dft_descriptor* handle, int64_t parameter, double* value)
{
    Call call(handle, parameter, value);
    if (call.of(Kind::real).ok()) *value = call.all().scale[call.direction()];
    return call.status;
}

ORK_EXPORT int64_t ork_dft_get_text(const ork_dft_descriptor* handle, int64_t parameter, char* text)
{
    Call call(handle, parameter, text);
    if (call.of(Kind::text).ok())
        std::strcpy(text, parameter == ORK_DFT_VERSION ? "ork " ORK_VERSION : call.all().name);
    return call.status;
}

namespace {

std::int64_t set_value(ork_dft_descriptor* handle, std::int64_t parameter, std::va_list values)
{
    const Parameter* row = find(parameter);
    switch (row != nullptr ? row->kind : Kind::integer) {
    case Kind::choice: // as int, which an enumerator is and which the low half of a wider integer is as well
        return ork_dft_set_integer(handle, parameter, va_arg(values, int));
    case Kind::integers:
        return ork_dft_set_integers(handle, parameter, va_arg(values, const std::int64_t*));
    case Kind::real:
        return ork_dft_set_real(handle, parameter, va_arg(values, double));
    case Kind::text:
        return ork_dft_set_text(handle, parameter, va_arg(values, const char*));
    case Kind::integer:
        break;
    }
    return ork_dft_set_integer(handle, parameter, row != nullptr ? va_arg(values, std::int64_t) : 0);
}

} // namespace

ORK_EXPORT int64_t ork_dft_set_value(ork_dft_descriptor* handle, int64_t parameter, ...)
{
    std::va_list values;
    va_start(values, parameter);
    const int64_t status = set_value(handle, parameter, values);
    va_end(values);
    return status;
}

ORK_EXPORT int64_t ork_dft_dftisetvalue(ork_dft_descriptor* handle, int64_t parameter, ...)
{
    std::va_list values;
    va_start(values, parameter);
    const int64_t status = set_value(handle, parameter, values);
    va_end(values);
    return status;
}

ORK_EXPORT int64_t ork_dft_get_value(const ork_dft_descriptor* handle, int64_t parameter, void* value)
{
    const Parameter* row = find(parameter);
    switch (row != nullptr ? row->kind : Kind::integer) {
    case Kind::integers:
        return ork_dft_get_integers(handle, parameter, static_cast<int64_t*>(value));
    case Kind::real:
        return ork_dft_get_real(handle, parameter, static_cast<double*>(value));
    case Kind::text:
        return ork_dft_get_text(handle, parameter, static_cast<char*>(value));
    default:
        return ork_dft_get_integer(handle, parameter, static_cast<int64_t*>(value));
    }
}
