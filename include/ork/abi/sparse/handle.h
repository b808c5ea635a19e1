/* SPDX-License-Identifier: MIT */
// The record behind a handle, and the routines that make, fill, convert and release such records. They run on one
// thread, take memory from the core's ork_serv_malloc and check nothing but that memory; the core checks arguments and
// structure, decides what is worth analysing, and splits work among threads.
#ifndef ORK_ABI_SPARSE_HANDLE_H
#define ORK_ABI_SPARSE_HANDLE_H

#include <cstdint>

namespace ork::sparse {

enum class Format : std::int32_t { csr, csc, coo, bsr };

// What is expected to be called often, and how. Records of the same kind, op and matrix kind replace each other.
enum class Task : std::int32_t { mv, dotmv, mm, sv, sm, symgs, sorv, lu_smoother, qr, memory };
struct Hint {
    Task task;
    std::int32_t op, type, uplo, diag, layout; // as in the public header; what a task has no use for is 0
    std::int64_t columns;                      // of mm and sm
    std::int64_t calls;                        // expected; memory: 0 none beyond the caller's arrays, 1 as needed
};

// A matrix. Arrays are the caller's or, where owns_arrays, one block each of ork_serv_malloc.
//
//     csr   index: columns, first and last: the rows' entries are first[i] - base .. last[i] - base (exclusive)
//     csc   the same by columns: index holds rows
//     coo   first: rows, index: columns of `entries` entries in any order; last is null
//     bsr   csr of square blocks: rows, cols, entries, index, first, last count blocks
struct Matrix {
    static constexpr std::uint64_t alive = 0x6b726f2e6d747278; // "xrtm.ork"

    std::uint64_t mark; // alive, until the record is destroyed
    char precision;     // s d c z
    std::int8_t index_bytes;
    std::int8_t base;
    std::int8_t layout;      // of blocks: 0 row-major, 1 column-major
    std::int8_t owns_arrays; // values, first, last (unless it points into first), index
    std::int8_t sorted;      // 1: the columns of every row ascend (csc: rows of columns); 0: not known
    Format format;
    std::int64_t rows, cols, block; // block 1 but for bsr
    std::int64_t entries;
    void *values, *index, *first, *last;

    Hint* hints; // of ork_serv_malloc
    std::int32_t hint_count, hint_capacity;
    // Where the last check of the structure failed: row counted from the base and position, -1 when it did not.
    std::int64_t wrong_row, wrong_position;
    void* analysis; // the core's; destroy leaves it alone
};

template <class Int>
struct HandleCalls {
};

template <class Int, class T>
struct CreationCalls {
};

} // namespace ork::sparse

#endif
