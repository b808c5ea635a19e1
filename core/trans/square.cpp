// SPDX-License-Identifier: MIT
// A square transposed in place. It is divided into square tiles, and each tile above the diagonal changes places with
// its mirror image. Threads take them row of tiles by row of tiles, in shares of as many tiles.
#include "lapack/instantiate.h"
#include "trans/division.h"
#include "trans/drivers.h"

namespace ork::trans {

namespace {

constexpr double bytes_per_thread = 1 << 20;
constexpr Int side = 64;              // of a tile
constexpr int shares_of_a_thread = 8; // several, since the processors may have other work

// Tiles of an n x n matrix begin where lines of the cache do, if columns begin on equal places of lines; the first may
// be narrower.
class Tiles {
public:
    Tiles(Int n, Int element, const void* address)
        : n_(n), first_(elements_to_line(address, element)), count_((n - first_ + side - 1) / side + (first_ != 0))
    {
    }
    Int pairs() const { return count_ * (count_ + 1) / 2; }

    // Pairs of tiles first .. last - 1, a tile of the diagonal being its own mirror image: swap(row, column, rows,
    // columns) of the one above the diagonal.
    void run(Int first, Int last, void (*swap)(const void* context, Int, Int, Int, Int), const void* context) const
    {
        Int row = 0, column = first;
        while (column >= count_ - row) column -= count_ - row++;
        column += row;
        for (; first < last; ++first) {
            const Int i = begin(row), j = begin(column);
            swap(context, i, j, begin(row + 1) - i, begin(column + 1) - j);
            if (++column == count_) column = ++row;
        }
    }

private:
    Int begin(Int tile) const { return std::clamp<Int>(first_ == 0 ? tile * side : first_ + (tile - 1) * side, 0, n_); }

    Int n_, first_, count_;
};

} // namespace

template <class T>
Int imatcopy_square_t_par(char trans, Int n, T* ab, Int lda, typename CoreCalls<T>::SwapTiles* swap)
{
    const int threads = blas::affordable_threads(bytes_of(n, n, sizeof(T)), bytes_per_thread);
    if (threads == 1 || !is_transposition(trans)) return 0;
    const Tiles tiles(n, sizeof(T), ab);
    const auto exchange = [=](Int row, Int column, Int rows, Int columns) {
        swap(trans, rows, columns, ab + row + column * lda, ab + column + row * lda, lda);
    };
    const auto body = [](const void* context, Int row, Int column, Int rows, Int columns) {
        (*static_cast<const decltype(exchange)*>(context))(row, column, rows, columns);
    };
    const Int pairs = tiles.pairs(), parts = std::min<Int>(pairs, threads * shares_of_a_thread);
    threads::run(static_cast<int>(parts),
                 [&](int part) { tiles.run(pairs * part / parts, pairs * (part + 1) / parts, body, &exchange); });
    return 1;
}

INSTANTIATE(imatcopy_square_t_par)

} // namespace ork::trans
