// SPDX-License-Identifier: MIT
// The exports that make records, give their arrays away and change their values.
#include "sparse/members.h"
#include "sparse/place.h"

namespace ork::sparse {
namespace {

#define ORK_SPARSE_LETTER_OF(letter) #letter[0]
#define ORK_SPARSE_LETTER(letter) ORK_SPARSE_LETTER_OF(letter)
constexpr char precision = ORK_SPARSE_LETTER(ORK_KERNEL_LETTER);

int create(Matrix** result, const Environment* environment, Format format, Int base, Int rows, Int cols, Int* first,
           Int* last, Int* index, T* values, Int block = 1, int layout = 0)
{
    Matrix* const a = new_record(environment, precision, sizeof(Int));
    if (a == nullptr) return record_no_memory;
    a->format = format;
    a->base = static_cast<std::int8_t>(base);
    a->layout = static_cast<std::int8_t>(layout);
    a->rows = rows, a->cols = cols, a->block = block;
    a->first = first, a->last = last, a->index = index, a->values = values;
    *result = a;
    return record_done;
}

template <class Number, class Value>
void tell(Number* number, Value value)
{
    if (number != nullptr) *number = static_cast<Number>(value);
}
template <class Element>
void tell(Element** array, void* pointer)
{
    if (array != nullptr) *array = static_cast<Element*>(pointer);
}

void tell_rows(const Matrix* a, Int* base, Int* rows, Int* cols, Int** first, Int** last, Int** index, T** values)
{
    tell(base, a->base);
    tell(rows, a->rows);
    tell(cols, a->cols);
    tell(first, a->first);
    tell(last, a->last);
    tell(index, a->index);
    tell(values, a->values);
}

// All values as they stand, without those in gaps.
int update_all(Matrix* a, const T* values)
{
    const std::int64_t bytes = entry_bytes(*a);
    const char* from = reinterpret_cast<const char*>(values);
    for (std::int64_t i = 0; i < lines_of(*a); ++i) {
        const auto range = line<Int>(*a, i);
        const std::int64_t length = (std::int64_t{range.last} - range.first) * bytes;
        if (length > 0) std::memcpy(value_at(*a, range.first), from, static_cast<std::size_t>(length));
        from += length;
    }
    return record_done;
}

} // namespace

ORK_SPARSE_EXPORT(int, create_csr)
(Matrix** result, const Environment* environment, Int base, Int rows, Int cols, Int* first, Int* last, Int* index,
 T* values)
{
    return create(result, environment, Format::csr, base, rows, cols, first, last, index, values);
}

ORK_SPARSE_EXPORT(int, create_csc)
(Matrix** result, const Environment* environment, Int base, Int rows, Int cols, Int* first, Int* last, Int* index,
 T* values)
{
    return create(result, environment, Format::csc, base, rows, cols, first, last, index, values);
}

ORK_SPARSE_EXPORT(int, create_coo)
(Matrix** result, const Environment* environment, Int base, Int rows, Int cols, Int entries, Int* row_index,
 Int* column_index, T* values)
{
    const int status =
        create(result, environment, Format::coo, base, rows, cols, row_index, nullptr, column_index, values);
    if (status == record_done) (*result)->entries = entries;
    return status;
}

ORK_SPARSE_EXPORT(int, create_bsr)
(Matrix** result, const Environment* environment, Int base, Int rows, Int cols, Int block, int layout, Int* first,
 Int* last, Int* index, T* values)
{
    return create(result, environment, Format::bsr, base, rows, cols, first, last, index, values, block, layout);
}

ORK_SPARSE_EXPORT(void, export_csr)
(const Matrix* a, Int* base, Int* rows, Int* cols, Int** first, Int** last, Int** index, T** values)
{
    tell_rows(a, base, rows, cols, first, last, index, values);
}

ORK_SPARSE_EXPORT(void, export_csc)
(const Matrix* a, Int* base, Int* rows, Int* cols, Int** first, Int** last, Int** index, T** values)
{
    tell_rows(a, base, rows, cols, first, last, index, values);
}

ORK_SPARSE_EXPORT(void, export_bsr)
(const Matrix* a, Int* base, Int* rows, Int* cols, Int* block, int* layout, Int** first, Int** last, Int** index,
 T** values)
{
    tell_rows(a, base, rows, cols, first, last, index, values);
    tell(block, a->block);
    tell(layout, a->layout);
}

ORK_SPARSE_EXPORT(int, set_value)(Matrix* a, Int row, Int column, T value)
{
    const std::int64_t position = find_place(*a, row, column);
    if (position < 0) return record_no_place;
    static_cast<T*>(a->values)[position] = value;
    return record_done;
}

ORK_SPARSE_EXPORT(int, update_values)
(Matrix* a, Int count, const Int* row_index, const Int* column_index, const T* values, std::int64_t* wrong)
{
    if (row_index == nullptr || column_index == nullptr) return update_all(a, values);
    for (Int k = 0; k < count; ++k)
        if (find_place(*a, row_index[k], column_index[k]) < 0) {
            *wrong = k;
            return record_no_place;
        }
    for (Int k = 0; k < count; ++k)
        static_cast<T*>(a->values)[find_place(*a, row_index[k], column_index[k])] = values[k];
    return record_done;
}

// s and d alone.
#if !ORK_KERNEL_COMPLEX
ORK_SPARSE_EXPORT(void, void_foo)() {}
#endif

} // namespace ork::sparse
