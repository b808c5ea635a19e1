// SPDX-License-Identifier: MIT
// Memory for the length of a call, from the buffers that are kept between calls.
#pragma once

#include <cstdint>

#include "ork/abi/services.h"

namespace ork::blas {

template <class T>
class WorkBuffer {
public:
    explicit WorkBuffer(std::int64_t count)
    {
        if (count > 0) data_ = static_cast<T*>(ork_serv_allocate(static_cast<std::size_t>(count) * sizeof(T), 64));
    }
    ~WorkBuffer()
    {
        if (data_ != nullptr) ork_serv_deallocate(data_);
    }
    WorkBuffer(const WorkBuffer&) = delete;
    WorkBuffer& operator=(const WorkBuffer&) = delete;

    T* data() const { return data_; } // null when there is no memory, or none was asked for

private:
    T* data_ = nullptr;
};

} // namespace ork::blas
