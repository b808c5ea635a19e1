// SPDX-License-Identifier: MIT
// A = L U without pivoting. Blocks of columns and rows from the upper left on; every element first receives all
// products of earlier blocks, in registers, which is the order of the textbook's loop by columns.
#include "lapack/compact/tile.h"

namespace ork::lapack {
namespace {

template <class T, int n>
inline void factor_whole(const Matrix<Real<T>>& a)
{
    Tile<n, n, T> t;
    t.get(a);
    t.factor(false, [](int, Lanes<T>) {});
    t.put(a, 1);
}

template <class T>
struct Factors {
    using R = Real<T>;
    static constexpr int side = edge<T>, lanes = Vec<R>::lanes, parts = is_complex<T> ? 2 : 1;
    struct Reciprocals {
        R x[side][parts][lanes];
        Ends<R> ends() const { return {x[0][0], parts * lanes, lanes}; }
    };

    Int m, n;
    int count;
    Matrix<R> a[slices_together];
    Reciprocals pivots[slices_together];
    Ahead ahead;

    template <int size>
    void diagonal(Int j)
    {
        for (int g = 0; g < count; ++g) {
            Tile<size, size, T> t;
            const Matrix<R> corner = a[g].from(j, j);
            t.get(corner);
            t.template subtract<false>(a[g].from(j, 0), a[g].from(0, j), j);
            t.factor(j + size < m, [&](int c, Lanes<T> q) { q.put(pivots[g].x[c][0], lanes); });
            t.put(corner);
            ahead.step();
        }
    }
    // L below and U beside the block of columns from j on.
    template <int size>
    void beside(Int j)
    {
        in_tiles<side>(j + size, m, [&]<int rows>(Int i) {
            for (int g = 0; g < count; ++g) {
                solve<T, false, Diagonal::reciprocal, rows, size>(a[g].from(i, 0), a[g].from(0, j), j,
                                                                  pivots[g].ends());
                ahead.step();
            }
        });
        in_tiles<side>(j + size, n, [&]<int columns>(Int k) {
            for (int g = 0; g < count; ++g) {
                solve<T, false, Diagonal::unit, columns, size>(a[g].from(0, k).transposed(),
                                                               a[g].from(j, 0).transposed(), j, {});
                ahead.step();
            }
        });
    }
};

template <class T>
void factor(const Shape& shape, Int m, Int n, Real<T>* data, Int lda)
{
    if (m <= 0 || n <= 0) return;
    const auto array = shape.array<T>(data, lda, m, n);
    constexpr int smallest = is_complex<T> ? 3 : 5; // what still gains from being one tile, though it overflows
    if (m == n && n <= smallest)
        return with_size<smallest>(n, [&]<int order>() { one_by_one<T>(shape, false, array, factor_whole<T, order>); });
    const Int least = m < n ? m : n;
    in_groups<T>(shape, m * n, [&](const Group& group) {
        const Int blocks = (least + edge<T> - 1) / edge<T>;
        Factors<T> f{m, n, group.count, {}, {}, {array, group, blocks * blocks * group.count}};
        for (int g = 0; g < f.count; ++g)
            f.a[g] = array.matrix(group.slices[g].pack, group.slices[g].lane, shape.rows());
        in_tiles<edge<T>>(0, least, [&]<int size>(Int j) {
            f.template diagonal<size>(j);
            f.template beside<size>(j);
        });
    });
}

} // namespace

ORK_LAPACK_EXPORT(getrfnp_compact_ps)
(const Int* layout, const Int* m, const Int* n, R* a, const Int* lda, Int* info, const Int* format, const Int* nmat)
{
    *info = 0;
    factor<T>(Shape::of<R>(*layout, *format, *nmat), *m, *n, a, *lda);
}

} // namespace ork::lapack
