// SPDX-License-Identifier: MIT
// A square transposed in place. It is divided into square tiles, and each tile above the diagonal changes places with
// its mirror image. Threads take them column of tiles by column of tiles, in shares of as many tiles.
#include "lapack/instantiate.h"
#include "trans/division.h"
#include "trans/drivers.h"

namespace ork::trans {

namespace {

// Bytes of the matrix that a further thread must have: 2 MiB take more than 100 microseconds.
constexpr double bytes_per_thread = 1 << 20;
constexpr int shares_of_a_thread = 8; // several, since the processors may have other work

// Tiles of an n x n matrix begin where lines of the cache do, if columns begin on equal places of lines; the first may
// be narrower. Their sides are some of those of the blocks in which the kernels exchange what comes from memory.
class Tiles {
public:
    Tiles(Int n, Int element, const void* address)
        : n_(n), side_(element == 4   ? 128
                       : element == 8 ? 96
                                      : 64),
          first_(elements_to_line(address, element)), count_((n - first_ + side_ - 1) / side_ + (first_ != 0))
    {
    }
    Int pairs() const { return count_ * (count_ + 1) / 2; }

    // Pairs of tiles first .. last - 1, a tile of the diagonal being its own mirror image: swap(row, column, rows,
    // columns) for those of one column that are above the diagonal, and for those on it.
    void run(Int first, Int last, void (*swap)(const void* context, Int, Int, Int, Int), const void* context) const
    {
        Int column = 0;
        while (first > column) first -= ++column, last -= column;
        for (; last > 0; last -= ++column, first = 0) {
            const Int end = std::min(last, column), row = begin(first), j = begin(column),
                      columns = begin(column + 1) - j;
            if (first < end) swap(context, row, j, begin(end) - row, columns);
            if (last > column) swap(context, j, j, columns, columns);
        }
    }

private:
    Int begin(Int tile) const
    {
        return std::clamp<Int>(first_ == 0 ? tile * side_ : first_ + (tile - 1) * side_, 0, n_);
    }

    Int n_, side_, first_, count_;
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
