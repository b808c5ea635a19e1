// SPDX-License-Identifier: MIT
// A call of the public interface, of any format, routine, precision and integer width, in one shape: widths and
// precisions are values, so that one driver a routine serves them all.
//
// Integers that a kernel takes by address are held in 64 bits. They come from the caller's own width, so on these
// little-endian processors the address of one is the address of the same number in 32 bits.
#pragma once

#include <cstdint>

#include "ork/abi/spblas.h"
#include "ork/spblas.h"

namespace ork::spblas {

enum class Precision : std::uint8_t { s, d, c, z };

constexpr bool is_complex(Precision p) { return p >= Precision::c; }
constexpr std::int64_t element_size(Precision p) { return p == Precision::s ? 4 : p == Precision::z ? 16 : 8; }

struct Variant {
    Precision precision;
    bool wide; // 64-bit integers
};

// An index array of either width.
class Integers {
public:
    Integers(const void* array, bool wide) : array_(array), wide_(wide) {}

    std::int64_t operator[](std::int64_t i) const
    {
        return wide_ ? static_cast<const std::int64_t*>(array_)[i] : static_cast<const std::int32_t*>(array_)[i];
    }
    const void* from(std::int64_t i) const { return static_cast<const char*>(array_) + i * (wide_ ? 8 : 4); }
    explicit operator bool() const { return array_ != nullptr; }

private:
    const void* array_;
    bool wide_;
};

// Where the arrays of a format stand:
//
//            array 0  1       2       3       number 0  1
//   csr            val  indx    pntrb   pntre
//   coo            val  rowind  colind          nnz
//   bsr, bsc       val  indx    pntrb   pntre   lb
//   dia            val  idiag                   lval      ndiag
//   sky            val  pntr
struct Matrix {
    Format format;
    const void* array[4];
    std::int64_t number[2];

    bool blocked() const { return format == Format::bsr || format == Format::bsc; }
    std::int64_t block() const { return blocked() ? number[0] : 1; }
};

// What a format has no use for is left as it is: the entries are many, and short.
inline Matrix csr(const void* val, const void* indx, const void* pntrb, const void* pntre)
{
    Matrix a;
    a.format = Format::csr;
    a.array[0] = val, a.array[1] = indx, a.array[2] = pntrb, a.array[3] = pntre;
    return a;
}
template <class Int>
inline Matrix csr(const void* val, const void* indx, const Int* ia)
{
    return csr(val, indx, ia, ia ? ia + 1 : nullptr);
}
inline Matrix blocks(Format format, std::int64_t lb, const void* val, const void* indx, const void* pntrb,
                     const void* pntre)
{
    Matrix a = csr(val, indx, pntrb, pntre);
    a.format = format;
    a.number[0] = lb;
    return a;
}
inline Matrix coo(const void* val, const void* rowind, const void* colind, std::int64_t nnz)
{
    Matrix a;
    a.format = Format::coo;
    a.array[0] = val, a.array[1] = rowind, a.array[2] = colind;
    a.number[0] = nnz;
    return a;
}
inline Matrix dia(const void* val, std::int64_t lval, const void* idiag, std::int64_t ndiag)
{
    Matrix a;
    a.format = Format::dia;
    a.array[0] = val, a.array[1] = idiag;
    a.number[0] = lval, a.number[1] = ndiag;
    return a;
}
inline Matrix sky(const void* val, const void* pntr)
{
    Matrix a;
    a.format = Format::sky;
    a.array[0] = val, a.array[1] = pntr;
    return a;
}

// How a function is called that has not the arguments of its routine.
struct Names {
    const char *routine, *arguments; // "csrmultd", "op base m n ..."
    const char *val, *indx, *pntr;   // of its matrix; no pntr: it has pntrb and pntre
};

// A vector is a column-major matrix of one column.
struct Call {
    Routine routine;
    Precision precision;
    bool wide;               // 64-bit integers
    int op, layout;          // ork_spblas_operation, ork_spblas_layout; no layout: 0
    ork_spblas_kind kind;    // of what the arrays hold
    std::int64_t m, n, nrhs; // of A, in blocks where there are some
    const Matrix* a;
    const void *alpha, *beta; // no beta: null
    const void* b;            // or x
    std::int64_t ldb;
    void* c; // or y
    std::int64_t ldc;
    const Names* names = nullptr;

    bool vectors() const { return routine == Routine::mvout || routine == Routine::svout; }
    bool solves() const { return routine == Routine::svout || routine == Routine::smout; }
    bool transposes() const { return op == ORK_SPBLAS_TRANS || op == ORK_SPBLAS_CONJ_TRANS; }
    bool row_major() const { return layout == ORK_SPBLAS_ROW_MAJOR; }
    std::int64_t element() const { return element_size(precision); }

    // Rows of C and of B.
    std::int64_t rows_of_c() const { return (transposes() ? n : m) * a->block(); }
    std::int64_t rows_of_b() const { return (transposes() ? m : n) * a->block(); }

    Integers integers(int array) const { return {a->array[array], wide}; }
};

// Rows, of bsc and of an upper skyline columns, of A that have entries of their own together; of coo entries.
std::int64_t slices(const Call& call);

// About how many entries are stored, in whole blocks.
double stored_entries(const Call& call);

} // namespace ork::spblas
