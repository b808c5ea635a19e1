// SPDX-License-Identifier: MIT
#include "spblas/coo_order.h"

#include <algorithm>
#include <cstring>

#include "ork/abi/services.h"
#include "spblas/vectors.h"

namespace ork::spblas {
namespace {

struct Copy {
    char* val;
    void *rowind, *colind;
    std::int64_t *order, *begin; // nnz and m + 1 numbers
};

// Counts rows, deals the entries out to them and sorts each row; returns the number of places.
template <class Int>
std::int64_t fill(const Call& call, const Copy& copy)
{
    const Int* rowind = static_cast<const Int*>(call.a->array[1]);
    const Int* colind = static_cast<const Int*>(call.a->array[2]);
    const std::int64_t nnz = call.a->number[0], base = call.kind.base, size = call.element();
    std::int64_t* const next = copy.begin;
    std::fill_n(next, call.m + 1, 0);
    for (std::int64_t k = 0; k < nnz; ++k) ++next[rowind[k] - base + 1];
    for (std::int64_t i = 0; i < call.m; ++i) next[i + 1] += next[i];
    for (std::int64_t k = 0; k < nnz; ++k) copy.order[next[rowind[k] - base]++] = k;
    for (std::int64_t i = 0, begin = 0; i < call.m; begin = next[i++])
        std::sort(copy.order + begin, copy.order + next[i], [colind](std::int64_t a, std::int64_t b) {
            return colind[a] != colind[b] ? colind[a] < colind[b] : a < b;
        });

    const char* val = static_cast<const char*>(call.a->array[0]);
    Int* rows = static_cast<Int*>(copy.rowind);
    Int* columns = static_cast<Int*>(copy.colind);
    std::int64_t places = 0;
    for (std::int64_t p = 0; p < nnz; ++p) {
        const std::int64_t k = copy.order[p];
        if (places > 0 && rows[places - 1] == rowind[k] && columns[places - 1] == colind[k]) {
            add(call.precision, 1, val + k * size, copy.val + (places - 1) * size);
            continue;
        }
        rows[places] = rowind[k];
        columns[places] = colind[k];
        std::memcpy(copy.val + places++ * size, val + k * size, static_cast<std::size_t>(size));
    }
    return places;
}

} // namespace

bool in_order(const Call& call)
{
    const Integers rowind = call.integers(1), colind = call.integers(2);
    for (std::int64_t k = 1; k < call.a->number[0]; ++k) {
        if (rowind[k] < rowind[k - 1]) return false;
        if (rowind[k] == rowind[k - 1] && colind[k] <= colind[k - 1]) return false;
    }
    return true;
}

OrderedCopy::OrderedCopy(const Call& call)
{
    const std::int64_t nnz = call.a->number[0], width = call.wide ? 8 : 4;
    constexpr std::int64_t alignment = 16, arrays = 5;
    std::int64_t bytes;
    memory_ = nullptr;
    if (__builtin_mul_overflow(nnz, call.element() + 8 + 2 * width, &bytes) ||
        __builtin_add_overflow(bytes, (call.m + 1) * 8 + arrays * alignment, &bytes))
        return;
    memory_ = ork_serv_allocate(static_cast<std::size_t>(bytes), 64);
    if (memory_ == nullptr) return;
    char* next = static_cast<char*>(memory_);
    const auto take = [&next](std::int64_t size) {
        void* taken = next;
        next += (size + alignment - 1) / alignment * alignment;
        return taken;
    };
    Copy copy;
    copy.val = static_cast<char*>(take(nnz * call.element()));
    copy.order = static_cast<std::int64_t*>(take(nnz * 8));
    copy.begin = static_cast<std::int64_t*>(take((call.m + 1) * 8));
    copy.rowind = take(nnz * width);
    copy.colind = take(nnz * width);
    const std::int64_t places = call.wide ? fill<std::int64_t>(call, copy) : fill<std::int32_t>(call, copy);
    matrix_ = coo(copy.val, copy.rowind, copy.colind, places);
}

OrderedCopy::~OrderedCopy()
{
    if (memory_ != nullptr) ork_serv_deallocate(memory_);
}

} // namespace ork::spblas
