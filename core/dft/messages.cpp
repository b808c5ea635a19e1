// SPDX-License-Identifier: MIT
// Texts of errors: of a status in general, of a descriptor's latest error, and of a creation that left no descriptor.
#include <cstdarg>
#include <cstdio>

#include "dft/descriptor.h"
#include "export.h"
#include "threads/thread_record.h"

namespace ork::dft {
namespace {

// Of failed creations.
constinit threads::ThreadRecord<Message> messages;

[[gnu::destructor]] void unload() { messages.unload(); }

void write(Message* message, std::int64_t status, const char* format, std::va_list values)
{
    message->status = status;
    std::vsnprintf(message->text, sizeof message->text, format, values);
}

constexpr Message no_message = {};
constexpr Message of_no_descriptor = {ORK_DFT_BAD_DESCRIPTOR, "the descriptor was freed, or is none"};

// What is kept about a handle, whatever it is.
const Message& message_of(const ork_dft_descriptor* handle)
{
    if (handle != nullptr) return alive(handle) ? handle->message : of_no_descriptor;
    const Message* message = messages.find();
    return message != nullptr ? *message : no_message;
}

} // namespace

std::int64_t fail(ork_dft_descriptor* descriptor, std::int64_t status, const char* format, ...)
{
    std::va_list values;
    va_start(values, format);
    write(&descriptor->message, status, format, values);
    va_end(values);
    return status;
}

std::int64_t fail_without_descriptor(std::int64_t status, const char* format, ...)
{
    Message* const message = messages.find_or_make();
    if (message == nullptr) return status;
    std::va_list values;
    va_start(values, format);
    write(message, status, format, values);
    va_end(values);
    return status;
}

} // namespace ork::dft

using namespace ork::dft;

ORK_EXPORT int64_t ork_dft_error_class(int64_t status, int64_t error_class) { return status == error_class; }
ORK_EXPORT int64_t ork_dft_dftierrorclass(int64_t status, int64_t error_class) { return status == error_class; }

ORK_EXPORT const char* ork_dft_error_message(int64_t status)
{
    switch (status) {
    case ORK_DFT_NO_ERROR:
        return "no error";
    case ORK_DFT_MEMORY_ERROR:
        return "no memory";
    case ORK_DFT_INVALID_CONFIGURATION:
        return "a parameter or value that does not exist or cannot be set";
    case ORK_DFT_INCONSISTENT_CONFIGURATION:
        return "values that do not go together, or not with the call";
    case ORK_DFT_MULTITHREADED_ERROR:
        return "the library's threads failed";
    case ORK_DFT_BAD_DESCRIPTOR:
        return "no descriptor, a freed one, or one that is not committed";
    case ORK_DFT_UNIMPLEMENTED:
        return "not available";
    case ORK_DFT_INTERNAL_ERROR:
        return "internal error";
    case ORK_DFT_NUMBER_OF_THREADS_ERROR:
        return "a number of threads that cannot be";
    case ORK_DFT_LENGTH_ERROR:
        return "a length or number of transforms below 1, or more numbers than can be addressed";
    default:
        return "no status of this library";
    }
}

ORK_EXPORT const char* ork_dft_descriptor_message(const ork_dft_descriptor* handle) { return message_of(handle).text; }

// The kept text only when it is about this status: computations keep none.
ORK_EXPORT void ork_dft_dftierrormessage(const ork_dft_descriptor* handle, int64_t status, char* buffer, int64_t size)
{
    if (buffer == nullptr || size < 1) return;
    const Message& kept = message_of(handle);
    const bool about_it = status != ORK_DFT_NO_ERROR && kept.status == status;
    std::snprintf(buffer, static_cast<size_t>(size), "%s", about_it ? kept.text : ork_dft_error_message(status));
}
