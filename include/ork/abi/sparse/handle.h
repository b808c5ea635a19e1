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
//
// Rows stand in their order: base <= first[0] <= last[0] <= first[1] ..., so the arrays hold the entries between
// first[0] - base and last[rows - 1] - base, gaps among them.
struct Matrix {
    static constexpr std::uint64_t alive = 0x6b726f2e6d747278; // "xrtm.ork"

    std::uint64_t mark; // alive, until the record is destroyed
    char precision;     // s d c z
    std::int8_t index_bytes;
    std::int8_t base;
    std::int8_t layout;      // of blocks: 0 row-major, 1 column-major
    std::int8_t owns_arrays; // values, first, last (unless it points into first), index
    std::int8_t sorted;      // 1: the columns of every row ascend (csc: rows of columns; coo: rows, in them columns);
                             // 0: not known
    std::int8_t distinct;    // 1: sorted, and no place twice; 0: not known
    std::int8_t memory;      // 0: an analysis must not copy the matrix, 1: it may
    Format format;
    mutable std::int8_t
        divides; // 1: each diagonal entry is there once and not 0, as far as the core has seen; 0: not known
    std::int64_t rows, cols, block; // block 1 but for bsr
    std::int64_t entries;
    void *values, *index, *first, *last;

    Hint* hints; // of ork_serv_malloc
    std::int32_t hint_count, hint_capacity;
    // Where the last check of the structure failed: row counted from the base and position, -1 when it did not.
    std::int64_t wrong_row, wrong_position;
    void* analysis; // the core's; destroy leaves it alone

    // Row pointers in one array of rows + 1 numbers, as the kernels' rows_ptr is.
    bool one_pointer_array() const { return last == static_cast<char*>(first) + index_bytes; }
};

// Where a structure is wrong. Numbers as they stand in the arrays.
struct Fault {
    enum class Rule : std::int32_t {
        none,
        below_base, // first[position] = value is less than the base
        backwards,  // last[position] = value is less than first there
        overlap,    // first[position] = value is less than the end of the row before
        outside     // index[position] or, of coo, first[position] = value is no column or row
    } rule;
    enum class Array : std::int32_t { first, last, index } array;
    std::int64_t row, position, value; // row counted from the base; -1: not known
    std::int64_t least, most;          // what would have been right, as far as there are bounds
};

// What new records begin with, and who prints.
struct Environment {
    std::int32_t memory;  // Matrix::memory of new records
    std::int32_t verbose; // 1: analyses describe themselves
    std::int64_t calls;   // expected of a matrix without hints
};

// Statuses are 0: done, 1: no memory, 2: more rows, columns or entries than the integers count, 3: a place that is not
// stored; on failure nothing has changed and no result is written. op: 0 none, 1 transposed, 2 conjugate transposed, 3
// conjugated.
template <class Int>
struct HandleCalls {
    // Looks at the whole structure in its order. Right: 0, and `sorted`, `distinct` and `entries` (csr, csc, bsr: those
    // between the row pointers) are set. Wrong: 1, and the first fault is told, in wrong_row and wrong_position too.
    using get_error_info = int(Matrix* a, Fault* fault);

    // The record with its hints and the arrays that it owns; null is allowed.
    using destroy = void(Matrix* a);
    // A record with arrays of its own, without gaps. Hints are copied, the analysis is not.
    using copy = int(const Matrix* a, Matrix** result);
    // op(A) in compressed rows or, by_columns, columns. Where A has the entries of such a row (column) together, which
    // blocks have not, they keep their order; otherwise they are sorted, those of the same place in the order in which
    // they are stored. Blocks are opened, with the zeros in them.
    using convert_csr = int(const Matrix* a, int op, int by_columns, Matrix** result);
    // op(A) in square blocks, columns ascending and none twice; entries of the same place add up from 0 in the order in
    // which they are stored. Rows and columns are filled up to whole blocks with zeros.
    using convert_bsr = int(const Matrix* a, int op, Int block, int layout, Matrix** result);
    // Sorts the rows of a record that owns its arrays or, borrowed_too, of any. Entries of the same place keep their
    // order. Sets `sorted` and `distinct`. Of one that is sorted nothing is written.
    using optimize = int(Matrix* a, int borrowed_too);

    // Add a hint in place of one for the same; calls = 0 removes it. kind: as in the public header.
    using set_mv_hint = int(Matrix* a, int op, int type, int uplo, int diag, std::int64_t calls);
    using set_dotmv_hint = set_mv_hint;
    using set_sv_hint = set_mv_hint;
    using set_symgs_hint = set_mv_hint;
    using set_lu_smoother_hint = set_mv_hint;
    using set_qr_hint = set_mv_hint;
    using set_sorv_hint = set_mv_hint; // op: the sweep
    using set_mm_hint = int(Matrix* a, int op, int type, int uplo, int diag, int layout, std::int64_t columns,
                            std::int64_t calls);
    using set_sm_hint = set_mm_hint;
    using set_memory_hint = int(Matrix* a, int memory);

    // An environment with what holds when nobody says otherwise: memory may be taken, silent, 100 calls.
    using ee_init = void(Environment* environment);
    // Returns the former mode.
    using set_verbose_mode = int(Environment* environment, int mode);
};

template <class Int, class T>
struct CreationCalls {
    // A record on the caller's arrays, with what `environment` says (null: as ee_init). Nothing is looked at.
    using create_csr = int(Matrix** result, const Environment* environment, Int base, Int rows, Int cols, Int* first,
                           Int* last, Int* index, T* values);
    using create_csc = create_csr;
    using create_coo = int(Matrix** result, const Environment* environment, Int base, Int rows, Int cols, Int entries,
                           Int* row_index, Int* column_index, T* values);
    using create_bsr = int(Matrix** result, const Environment* environment, Int base, Int rows, Int cols, Int block,
                           int layout, Int* first, Int* last, Int* index, T* values);

    // The record's numbers and arrays where the address for them is not null.
    using export_csr = void(const Matrix* a, Int* base, Int* rows, Int* cols, Int** first, Int** last, Int** index,
                            T** values);
    using export_csc = export_csr;
    using export_bsr = void(const Matrix* a, Int* base, Int* rows, Int* cols, Int* block, int* layout, Int** first,
                            Int** last, Int** index, T** values);

    // Of the place (row, column), counted from the base in numbers, the first entry that is stored.
    using set_value = int(Matrix* a, Int row, Int column, T value);
    // Of many places, the last value of a place that comes twice; without them (null) all values as they stand, gaps
    // left out. *wrong is the first k whose place is not stored; nothing is written then.
    using update_values = int(Matrix* a, Int count, const Int* row_index, const Int* column_index, const T* values,
                              std::int64_t* wrong);

    // Nothing: what a task that needs no kernel is given to call. s and d.
    using void_foo = void();
};

} // namespace ork::sparse

#endif
