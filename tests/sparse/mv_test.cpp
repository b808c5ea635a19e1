// SPDX-License-Identifier: MIT
// Products of compressed rows, slices and diagonals with a vector: the orders of addition bit for bit, what is read and
// what is not, shares that begin anywhere.
#include <algorithm>
#include <vector>

#include "sparse/kernel.h"
#include "support/compare.h"
#include "support/guarded.h"
#include "support/random.h"

namespace ork::test {
namespace {

using Index = std::int64_t;

template <class T>
T update(T sum, T alpha, T y, T beta)
{
    return beta == T(0) ? plain_product(sum, alpha) : plain_product(sum, alpha) + plain_product(y, beta);
}

// Compressed rows with every array flush with an inaccessible page.
template <class Int, class T>
struct Rows {
    std::vector<Index> begin;
    Guarded<T> vals;
    Guarded<Int> cols;
    Guarded<std::make_unsigned_t<Int>> rows_ptr;

    static constexpr Index first_pointer = 5; // any number
    static std::vector<Index> sum_up(const std::vector<Index>& lengths)
    {
        std::vector<Index> begin = {0};
        for (const Index length : lengths) begin.push_back(begin.back() + length);
        return begin;
    }
    static std::vector<std::make_unsigned_t<Int>> pointers(const std::vector<Index>& begin)
    {
        std::vector<std::make_unsigned_t<Int>> p;
        for (const Index b : begin) p.push_back(static_cast<std::make_unsigned_t<Int>>(b + first_pointer));
        return p;
    }
    static std::vector<Int> columns(Index count, Index n, Index base, Random& random)
    {
        std::vector<Int> c;
        for (Index k = 0; k < count; ++k) c.push_back(static_cast<Int>(random.integer(0, n - 1) + base));
        return c;
    }

    Rows(const std::vector<Index>& lengths, Index n, Index base, Random& random)
        : begin(sum_up(lengths)), vals(spread_values<T>(begin.back(), random.bits())),
          cols(columns(begin.back(), n, base, random)), rows_ptr(pointers(begin))
    {
    }
    Index rows() const { return static_cast<Index>(begin.size()) - 1; }

    // Row i times x in the stated order; x is indexed by the columns as they are stored.
    T sum(Index i, const T* x) const
    {
        const auto product = [&](Index k) { return plain_product(vals[k], x[cols[k]]); };
        Index k = begin[i];
        const Index end = begin[i + 1];
        T s = 0;
        if (end - k >= 8) {
            T acc[4][2] = {};
            for (; k + 8 <= end; k += 8)
                for (int j = 0; j < 8; ++j) acc[j / 2][j % 2] += product(k + j);
            const auto lane = [&](int l) { return (acc[0][l] + acc[2][l]) + (acc[1][l] + acc[3][l]); };
            s = lane(0) + lane(1);
        }
        for (; k < end; ++k) s += product(k);
        return s;
    }
};

const std::vector<Index>& all_lengths()
{
    static const std::vector<Index> lengths = [] {
        std::vector<Index> l = {0, 1, 7, 8, 9, 5, 5, 5, 5, 7, 7, 4, 4, 4, 6, 6, 0, 0, 15, 16, 17, 2, 3, 40};
        Random random(3);
        for (int i = 0; i < 60; ++i) l.push_back(random.integer(0, 25));
        return l;
    }();
    return lengths;
}

template <class T>
struct Scalars {
    T alpha, beta;
};
template <class T>
std::vector<Scalars<T>> scalars()
{
    if constexpr (is_complex<T>)
        return {{T(1), T(0)}, {T(-1.25f, 0.75f), T(0.5f, 0.3f)}};
    else
        return {{T(1), T(0)}, {T(-1.3), T(0.7)}, {T(0), T(1)}};
}

template <class C>
class SparseMv : public testing::Test {
protected:
    static constexpr auto nan = std::numeric_limits<Real<typename C::T>>::quiet_NaN();
    static constexpr auto infinity = std::numeric_limits<Real<typename C::T>>::infinity();
};
TYPED_TEST_SUITE(SparseMv, Cases, CaseNames);

TYPED_TEST(SparseMv, RowsInTheirOrder)
{
    using Int = typename TypeParam::Int;
    using T = typename TypeParam::T;
    constexpr Index n = 50, row_first = 3;
    for (const Index base : {0, 1}) {
        Random random(17);
        const Rows<Int, T> a(all_lengths(), n, base, random);
        const Guarded<T> x(uniform_values<T>(std::max<Index>(n, a.rows() + row_first), 4));
        const T* const from = x.data() - base;
        const auto old = uniform_values<T>(a.rows(), 5);
        const Int first = row_first, last = static_cast<Int>(row_first + a.rows());
        for (const auto [alpha, beta] : scalars<T>()) {
            std::vector<T> want(old.size());
            T dot = 0;
            for (Index i = 0; i < a.rows(); ++i) {
                want[i] = update(a.sum(i, from), alpha, old[i], beta);
                dot += plain_product(conjugated(from[row_first + i]), want[i]);
            }
            const auto unset = [&] { return beta == T(0) ? std::vector<T>(old.size(), T(this->nan)) : old; };
            Guarded<T> y(unset());
            KERNEL(csr_ng_n_mv_ker_beta)
            (first, last, nullptr, nullptr, alpha, y.data(), from, a.vals.data(), a.rows_ptr.data(), a.cols.data(),
             beta);
            expect_same_bits<T>(y, want, a.rows());
            Guarded<T> based(unset());
            KERNEL(csr_ng_n_mv_ker_b)
            (first, last, nullptr, static_cast<Int>(base), alpha, based.data(), x.data(), a.vals.data(),
             a.rows_ptr.data(), a.cols.data(), beta);
            expect_same_bits<T>(based, want, a.rows());
            Guarded<T> dotted(unset());
            T got = this->nan;
            KERNEL(csr_ng_n_dotmv_ker_beta)
            (first, last, nullptr, nullptr, alpha, dotted.data(), from, a.vals.data(), a.rows_ptr.data(), a.cols.data(),
             &got, beta);
            expect_same_bits<T>(dotted, want, a.rows());
            expect_same_bits(got, dot);
            if (beta != T(0)) continue;
            Guarded<T> plain(unset()), plain_dotted(unset());
            KERNEL(csr_ng_n_mv_ker)
            (first, last, nullptr, nullptr, alpha, plain.data(), from, a.vals.data(), a.rows_ptr.data(), a.cols.data());
            expect_same_bits<T>(plain, want, a.rows());
            KERNEL(csr_ng_n_dotmv_ker)
            (first, last, nullptr, nullptr, alpha, plain_dotted.data(), from, a.vals.data(), a.rows_ptr.data(),
             a.cols.data(), &(got = this->nan));
            expect_same_bits<T>(plain_dotted, want, a.rows());
            expect_same_bits(got, dot);
        }
    }
}

TYPED_TEST(SparseMv, EmptyRowsAndShares)
{
    using Int = typename TypeParam::Int;
    using T = typename TypeParam::T;
    const std::make_unsigned_t<Int> rows_ptr[] = {9, 9, 9};
    T y[2] = {T(3), T(4)}, x[2] = {}, dot = 7;
    KERNEL(csr_ng_n_mv_ker)(5, 5, nullptr, nullptr, T(1), y, x, nullptr, rows_ptr, nullptr);
    KERNEL(csr_ng_n_mv_ker)(5, 4, nullptr, nullptr, T(1), y, x, nullptr, rows_ptr, nullptr);
    KERNEL(csr_ng_n_dotmv_ker_beta)(0, 0, nullptr, nullptr, T(1), y, x, nullptr, rows_ptr, nullptr, &dot, T(1));
    EXPECT_EQ(y[0], T(3));
    EXPECT_EQ(y[1], T(4));
    expect_same_bits(dot, T(0));
    KERNEL(csr_ng_n_mv_ker)(0, 2, nullptr, nullptr, T(this->infinity), y, x, nullptr, rows_ptr, nullptr);
    EXPECT_TRUE(std::isnan(std::real(y[1])));
    KERNEL(csr_ng_n_mv_ker)(0, 2, nullptr, nullptr, T(-1), y, x, nullptr, rows_ptr, nullptr);
    if constexpr (!is_complex<T>) expect_same_bits(y[0], T(-0.0));
}

// Slices of a share. Lanes that are filled up have the value 0, those of the tail that are not read a column that would
// end the process.
template <class Int, class T>
struct Slices {
    Index h, first, rows;
    std::vector<std::make_unsigned_t<Int>> begin, end;
    std::vector<T> vals;
    std::vector<Int> cols;

    Slices(Index h, Index first, const std::vector<Index>& lengths, Index n, Random& random)
        : h(h), first(first), rows(static_cast<Index>(lengths.size()))
    {
        for (Index s = 0; s * h < rows; ++s) {
            Index width = 0;
            for (Index r = s * h; r < std::min(rows, s * h + h); ++r) width = std::max(width, lengths[r]);
            begin.push_back(static_cast<std::make_unsigned_t<Int>>(vals.size() + 11));
            for (Index g = 0; g < width; ++g)
                for (Index r = s * h; r < s * h + h; ++r) {
                    const bool outside = r >= rows;
                    vals.push_back(outside || g >= lengths[r] ? T(0) : random.spread<T>());
                    cols.push_back(outside ? std::numeric_limits<Int>::max()
                                           : static_cast<Int>(random.integer(0, n - 1)));
                }
            end.push_back(static_cast<std::make_unsigned_t<Int>>(vals.size() + 11));
        }
    }
    Index count() const { return static_cast<Index>(begin.size()); }
    Index tail() const { return rows % h; }

    T sum(Index row, const T* x) const
    {
        T s = 0;
        const Index slice = row / h, from = static_cast<Index>(begin[slice]) - 11,
                    to = static_cast<Index>(end[slice]) - 11;
        for (Index k = from + row % h; k < to; k += h) s += plain_product(vals[k], x[cols[k]]);
        return s;
    }
};

// The products of a slice to one number.
template <class T>
T slice_dot(const std::vector<T>& p)
{
    const auto lane = [&](int l) {
        const T low = p[l] + p[2 + l];
        return p.size() == 4 ? low : low + (p[4 + l] + p[6 + l]);
    };
    return lane(0) + lane(1);
}

TYPED_TEST(SparseMv, SlicesInTheirOrder)
{
    using Int = typename TypeParam::Int;
    using T = typename TypeParam::T;
    for (const Index h : {4, 8})
        for (const Index rows : {Index{0}, 3 * h, 3 * h + 1, 3 * h + h / 2, 4 * h - 1, Index{1}}) {
            SCOPED_TRACE(std::to_string(h) + " rows a slice, " + std::to_string(rows) + " rows");
            Random random(static_cast<std::uint64_t>(100 * h + rows));
            std::vector<Index> lengths;
            for (Index i = 0; i < rows; ++i) lengths.push_back(i / h == 1 ? 0 : random.integer(0, 9));
            const Index first = 2, n = (first + 5) * h;
            const Slices<Int, T> a(h, first, lengths, n, random);
            const Guarded<T> x(uniform_values<T>(n, 6)), vals(a.vals);
            const Guarded<Int> cols(a.cols);
            const auto old = uniform_values<T>(rows, 8);
            // A tail of h is a partial slice with all lanes, one above h leaves the last slice out.
            for (const Index tail : {a.tail(), h, h + 1})
                for (const auto [alpha, beta] : scalars<T>()) {
                    if (tail != a.tail() && (a.tail() != 0 || rows == 0)) continue;
                    const Index written = tail > h ? rows - h : rows, full = tail == 0 ? rows / h : a.count() - 1;
                    std::vector<T> want = old;
                    T dot = 0;
                    for (Index s = 0; s * h < written; ++s) {
                        std::vector<T> products;
                        for (Index r = s * h; r < std::min(written, s * h + h); ++r) {
                            want[r] = update(a.sum(r, x.data()), alpha, old[r], beta);
                            products.push_back(plain_product(conjugated(x[first * h + r]), want[r]));
                        }
                        if (s < full)
                            dot += slice_dot(products);
                        else
                            for (const T p : products) dot += p;
                    }
                    const auto unset = [&] {
                        std::vector<T> y = old;
                        if (beta == T(0)) std::fill_n(y.begin(), written, T(this->nan));
                        return y;
                    };
                    const auto call = [&](auto* kernel, auto fourth, T* y, auto... dot_of) {
                        kernel(static_cast<Int>(first), static_cast<Int>(first + a.count()), static_cast<Int>(tail),
                               fourth, vals.data(), cols.data(), a.begin.data(), a.end.data(), x.data(), y, dot_of...,
                               nullptr, alpha, beta);
                    };
                    Guarded<T> y(unset()), same(unset()), dotted(unset()), dotted_same(unset());
                    T got = this->nan, got_same = this->nan;
                    call(h == 8 ? KERNEL(xESB_SpMV_8) : KERNEL(xESB_SpMV_4), nullptr, y.data());
                    call(KERNEL(xESB_SpMV), static_cast<Int>(h), same.data());
                    call(h == 8 ? KERNEL(ESB_SpDOTMV_8) : KERNEL(ESB_SpDOTMV_4), nullptr, dotted.data(), &got);
                    call(KERNEL(ESB_SpDOTMV), static_cast<Int>(h), dotted_same.data(), &got_same);
                    expect_same_bits<T>(y, want, rows);
                    expect_same_bits<T>(same, want, rows);
                    expect_same_bits<T>(dotted, want, rows);
                    expect_same_bits<T>(dotted_same, want, rows);
                    expect_same_bits(got, dot);
                    expect_same_bits(got_same, dot);
                }
        }
}

TYPED_TEST(SparseMv, TransposedScattersAndScalesAlways)
{
    using Int = typename TypeParam::Int;
    using T = typename TypeParam::T;
    constexpr Index n = 21;
    for (const Index base : {0, 1})
        for (const auto [alpha, beta] : scalars<T>()) {
            Random random(23);
            const Rows<Int, T> a(all_lengths(), n, base, random); // columns repeat within a row
            const Guarded<T> x(uniform_values<T>(a.rows(), 4));
            const auto old = uniform_values<T>(n, 5);
            std::vector<T> want;
            for (const T y : old) want.push_back(beta == T(0) ? T(0) : plain_product(y, beta));
            std::vector<T> scaled = want;
            for (Index i = 0; i < a.rows(); ++i)
                for (Index k = a.begin[i]; k < a.begin[i + 1]; ++k)
                    want[a.cols[k] - base] += plain_product(a.vals[k], plain_product(x[i], alpha));
            Guarded<T> out(beta == T(0) ? std::vector<T>(n, T(this->nan)) : old);
            const auto call = [&](Int rows) {
                KERNEL(csr_ng_t_mv_ker)
                (rows, n, static_cast<Int>(base), beta, alpha, out.data(), x.data(), a.vals.data(), a.rows_ptr.data(),
                 a.cols.data());
            };
            call(static_cast<Int>(a.rows()));
            expect_same_bits<T>(out, want, n);
            std::copy(old.begin(), old.end(), out.data());
            call(0);
            expect_same_bits<T>(out, scaled, n);
        }
    T out[3] = {1, 2, 3};
    KERNEL(csr_ng_t_mv_ker)(0, 3, 0, T(this->nan), T(1), out, nullptr, nullptr, nullptr, nullptr);
    EXPECT_TRUE(std::isnan(std::real(out[2])));
}

TYPED_TEST(SparseMv, MergesPartsInTheirOrder)
{
    using Int = typename TypeParam::Int;
    using T = typename TypeParam::T;
    constexpr Index stride = 29, first = 3, last = 26;
    const Guarded<T> partials(spread_values<T>(5 * stride, 9));
    const auto old = uniform_values<T>(last, 10);
    for (const Index parts : {0, 1, 2, 5})
        for (const auto [alpha, beta] : scalars<T>()) {
            std::vector<T> want = old, added = old;
            for (Index i = first; i < last; ++i) {
                want[i] = update(partials[i], alpha, old[i], beta);
                for (Index p = 1; p < parts; ++p) want[i] += plain_product(alpha, partials[p * stride + i]);
                for (Index p = 0; p < parts; ++p) added[i] += partials[p * stride + i];
            }
            Guarded<T> y(old), sum(old);
            if (beta == T(0)) std::fill(y.data() + first, y.data() + last, T(this->nan));
            KERNEL(csr_mv_merge)
            (first, last, stride, static_cast<Int>(parts), alpha, beta, partials.data(), y.data());
            KERNEL(csr_mv_merge1)(first, last, stride, static_cast<Int>(parts), partials.data(), sum.data());
            expect_same_bits<T>(y, want, last);
            expect_same_bits<T>(sum, added, last);
        }
    T y[1] = {5};
    KERNEL(csr_mv_merge)(1, 1, 1, 2, T(1), T(0), partials.data(), y);
    KERNEL(csr_mv_merge)(1, 0, 1, 2, T(1), T(0), partials.data(), y);
    EXPECT_EQ(y[0], T(5));
    KERNEL(csr_mv_merge)(0, 1, 1, 1, T(1), T(this->nan), partials.data(), y);
    EXPECT_TRUE(std::isnan(std::real(y[0])));
}

TYPED_TEST(SparseMv, DiagonalsInTheirOrder)
{
    using Int = typename TypeParam::Int;
    using T = typename TypeParam::T;
    const std::vector<Int> distance = {-9, 3, 0, -1, 40, 1};
    const Index count = static_cast<Index>(distance.size());
    for (const Index rows : {5, 100, 161})
        for (const Index cols : {rows, rows - 4, rows + 50})
            for (const Index height : {Index{32}, Index{7}, rows + 3}) {
                const Index chunks = (rows + height - 1) / height;
                Guarded<T> vals(spread_values<T>(chunks * count * height, 12));
                const auto at = [&](Index i, Index d) -> T& {
                    return vals[(i / height * count + d) * height + i % height];
                };
                for (Index i = 0; i < chunks * height; ++i) // what lies outside is not read
                    for (Index d = 0; d < count; ++d)
                        if (i >= rows || i + distance[d] < 0 || i + distance[d] >= cols) at(i, d) = T(this->nan);
                const Guarded<T> x(uniform_values<T>(cols, 13));
                for (const auto [alpha, beta] : scalars<T>())
                    for (const Index first : {Index{0}, rows / 3}) {
                        const Index last = rows - first / 7;
                        const auto old = uniform_values<T>(last - first, 14);
                        std::vector<T> want;
                        for (Index i = first; i < last; ++i) {
                            T s = 0;
                            for (Index d = 0; d < count; ++d)
                                if (const Index j = i + distance[d]; j >= 0 && j < cols)
                                    s += plain_product(at(i, d), x[j]);
                            want.push_back(update(s, alpha, old[i - first], beta));
                        }
                        Guarded<T> y(beta == T(0) ? std::vector<T>(old.size(), T(this->nan)) : old);
                        KERNEL(dia_mv_ker)
                        (static_cast<Int>(first), static_cast<Int>(last), static_cast<Int>(cols),
                         static_cast<Int>(count), static_cast<Int>(height), distance.data(), vals.data(), x.data(),
                         y.data(), alpha, beta);
                        expect_same_bits<T>(y, want, last - first);
                    }
            }
}

} // namespace
} // namespace ork::test
