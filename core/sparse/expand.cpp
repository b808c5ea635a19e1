// SPDX-License-Identifier: MIT
#include "sparse/expand.h"

#include <cstring>

#include "ork/abi/services.h"
#include "sparse/handle.h"
#include "sparse/kernels.h"

namespace ork::sparse {
namespace {

using Index = std::int64_t;
using Handles = HandleCalls<std::int64_t>;
constinit Kernels<2> convert_csr("convert_csr");

// Entries one by one, counted and then written. Values are bytes: what changes is signs.
template <class Int>
class Entries {
public:
    Entries(const Matrix& rows, const ork_sparse_kind& kind) : a_(rows), kind_(kind) {}

    Index count()
    {
        written_ = 0;
        walk(false);
        return written_;
    }
    void write(Int* row, Int* column, char* values)
    {
        row_ = row, column_ = column, values_ = values;
        written_ = 0;
        walk(true);
    }

private:
    void walk(bool writes)
    {
        const Int *first = static_cast<const Int*>(a_.first), *last = static_cast<const Int*>(a_.last),
                  *index = static_cast<const Int*>(a_.index);
        const char* const values = static_cast<const char*>(a_.values);
        const Index size = element_size(a_.precision);
        const bool skew = kind_.type == ORK_SPBLAS_SKEW, unit = !skew && kind_.diag == ORK_SPBLAS_UNIT;
        const bool mirrors = skew || kind_.type == ORK_SPBLAS_SYMMETRIC || kind_.type == ORK_SPBLAS_HERMITIAN;
        for (Index i = 0; i < a_.rows; ++i) {
            if (unit) put(writes, i, i, nullptr, false);
            for (Index k = Index{first[i]} - a_.base; k < Index{last[i]} - a_.base; ++k) {
                const Index j = Index{index[k]} - a_.base;
                const char* const value = values + k * size;
                if (i == j) {
                    if (!unit && !skew) put(writes, i, i, value, false);
                    continue;
                }
                if (kind_.type == ORK_SPBLAS_DIAGONAL || (j < i) != (kind_.uplo == ORK_SPBLAS_LOWER)) continue;
                put(writes, i, j, value, false);
                if (mirrors) put(writes, j, i, value, true);
            }
        }
    }

    // No value: one. Mirrored values change as the kind has it.
    void put(bool writes, Index row, Index column, const char* value, bool mirrored)
    {
        const Index at = written_++;
        if (!writes) return;
        row_[at] = static_cast<Int>(row), column_[at] = static_cast<Int>(column);
        const bool narrow = a_.precision == 's' || a_.precision == 'c';
        const Index size = element_size(a_.precision), real = narrow ? 4 : 8;
        char* const to = values_ + at * size;
        if (value == nullptr) {
            std::memset(to, 0, static_cast<std::size_t>(size));
            const float single = 1;
            const double one = 1;
            std::memcpy(to, narrow ? static_cast<const void*>(&single) : &one, static_cast<std::size_t>(real));
            return;
        }
        std::memcpy(to, value, static_cast<std::size_t>(size));
        if (!mirrored) return;
        const bool negative = kind_.type == ORK_SPBLAS_SKEW;
        if (negative) to[real - 1] ^= char(0x80); // the sign bit of a little-endian number
        if (size > real && (negative || kind_.type == ORK_SPBLAS_HERMITIAN)) to[size - 1] ^= char(0x80);
    }

    const Matrix& a_;
    ork_sparse_kind kind_;
    Int *row_, *column_;
    char* values_;
    Index written_;
};

template <class Int>
int expand_rows(const Matrix& rows, const ork_sparse_kind& kind, int op, Matrix** result)
{
    Entries<Int> entries(rows, kind);
    const Index count = entries.count();
    if (sizeof(Int) == 4 && count > INT32_MAX) return 2;
    const Index size = element_size(rows.precision), indices = (count + 1) * static_cast<Index>(sizeof(Int));
    const Index values_at = (2 * indices + 63) / 64 * 64;
    char* const memory =
        static_cast<char*>(ork_serv_malloc(static_cast<std::size_t>(values_at + count * size + 64), 64));
    if (memory == nullptr) return 1;
    Matrix all{};
    all.precision = rows.precision, all.index_bytes = rows.index_bytes;
    all.format = Format::coo;
    all.rows = rows.rows, all.cols = rows.cols, all.block = 1;
    all.entries = count;
    all.first = memory, all.index = memory + indices, all.values = memory + values_at;
    entries.write(reinterpret_cast<Int*>(memory), reinterpret_cast<Int*>(memory + indices), memory + values_at);
    const int status = convert_csr.get<Handles::convert_csr>(all)(&all, op - ORK_SPBLAS_NO_TRANS, 0, result);
    ork_serv_free(memory);
    return status;
}

} // namespace

int expand(const Matrix& a, const ork_sparse_kind& kind, int op, Matrix** result)
{
    Matrix* rows = nullptr; // of another format
    if (a.format != Format::csr)
        if (const int status = convert_csr.get<Handles::convert_csr>(a)(&a, 0, 0, &rows)) return status;
    const Matrix& used = rows != nullptr ? *rows : a;
    const int status = used.index_bytes == 4 ? expand_rows<std::int32_t>(used, kind, op, result)
                                             : expand_rows<std::int64_t>(used, kind, op, result);
    destroy(rows);
    return status;
}

} // namespace ork::sparse
