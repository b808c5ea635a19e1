// SPDX-License-Identifier: MIT
#include "xblas/piece.h"

#include <algorithm>
#include <utility>

namespace ork::xblas {
namespace {

// The matrix as it lies in memory, by columns: a call by rows stores the transpose.
struct Stored {
    Int rows, columns, below, above; // above and below: diagonals beside the main one
    bool makes_rows;                 // elements of y belong to stored rows, otherwise to stored columns

    explicit Stored(const Call& c)
        : rows(c.m), columns(c.n), below(c.kl), above(c.ku),
          makes_rows((c.order == by_columns) == (c.option == no_trans))
    {
        if (c.order == by_rows) exchange();
    }
    void exchange()
    {
        std::swap(rows, columns);
        std::swap(below, above);
    }
    void put(Call& c)
    {
        if (c.order == by_rows) exchange();
        c.m = rows;
        c.n = columns;
        c.kl = below;
        c.ku = above;
    }
    Int outputs() const { return makes_rows ? rows : columns; }
    Int inputs() const { return makes_rows ? columns : rows; }
};

// From the first element of a vector of `length` in the caller's order to that of the part [first, first + count): with
// a negative increment both are the last ones in memory.
Int offset(Int length, Int increment, Int first, Int count)
{
    return (increment > 0 ? first : first + count - length) * increment;
}

template <class Pointer>
void advance(Pointer& address, Int elements, std::size_t element_size)
{
    if (address == nullptr) return;
    const auto moved = reinterpret_cast<std::uintptr_t>(address) + static_cast<std::uintptr_t>(elements) * element_size;
    address = reinterpret_cast<Pointer>(moved);
}

} // namespace

double products(const Routine& routine, const Call& call)
{
    const double width = routine.form == Form::band ? static_cast<double>(call.kl) + static_cast<double>(call.ku) + 1
                                                    : static_cast<double>(call.n);
    return static_cast<double>(call.m) * std::min(width, static_cast<double>(call.n)) * routine.products;
}

Int divisible(const Routine& routine, const Call& call)
{
    const Stored s(call);
    if (routine.form != Form::band) return s.outputs();
    const Int beyond = s.makes_rows ? s.below : s.above; // diagonals through elements of y after the last of x
    return s.outputs() - s.inputs() > beyond ? s.inputs() + beyond : s.outputs();
}

Call piece(const Routine& routine, const Call& call, Int first, Int count)
{
    Call part = call;
    Stored s(call);
    const Int outputs = s.outputs(), inputs = s.inputs();
    if (first + count == divisible(routine, call)) count = outputs - first;
    (s.makes_rows ? s.rows : s.columns) = count;
    advance(part.y, offset(outputs, call.incy, first, count), routine.element_size);
    if (routine.form != Form::band) {
        advance(part.a, s.makes_rows ? first : first * call.lda, routine.element_size);
    } else {
        // Element (i, j) is at a[above + i - j + j lda], so a part that starts at (i0, j0) starts at a[j0 lda] with
        // above + i0 - j0 diagonals above.
        const Int before = s.makes_rows ? s.below : s.above, after = s.makes_rows ? s.above : s.below;
        const Int from = std::max<Int>(0, first - before);
        const Int reach = inputs - (first + count) < after ? inputs : first + count + after;
        (s.makes_rows ? s.columns : s.rows) = reach - from;
        const Int shift = s.makes_rows ? first - from : from - first;
        s.above += shift;
        s.below -= shift;
        advance(part.a, (s.makes_rows ? from : first) * call.lda, routine.element_size);
        advance(part.x, offset(inputs, call.incx, from, reach - from), routine.element_size);
        advance(part.tail, offset(inputs, call.incx, from, reach - from), routine.element_size);
    }
    s.put(part);
    return part;
}

} // namespace ork::xblas
