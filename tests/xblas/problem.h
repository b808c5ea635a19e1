// SPDX-License-Identifier: MIT
// A product of any kind: its operands in guarded arrays that hold nothing else, the call, and what y must become.
#pragma once

#include <algorithm>
#include <cstring>

#include "support/guarded.h"
#include "support/random.h"
#include "xblas/recipe.h"

namespace ork::test {

enum class Kind { general, band, symmetric, hermitian };

template <class T>
struct Problem {
    Kind kind = Kind::general;
    bool two = false; // vectors
    Int order = by_columns, trans = 111, uplo = 121, m = 1, n = 1, kl = 0, ku = 0, prec = extra;
    Int pad = 0, incx = 1, incy = 1;
    T alpha = T(1), beta = T(0);
    Guard side = Guard::end;
    std::uint64_t seed = 1;

    bool triangle() const { return kind == Kind::symmetric || kind == Kind::hermitian; }
    bool transposed() const { return !triangle() && trans != 111; }
    Int length() const { return transposed() ? n : m; }
    Int terms() const { return transposed() ? m : n; }
    Int lda() const { return pad + (kind == Kind::band ? kl + ku + 1 : order == by_columns ? m : n); }
    // Whether A(i, j) is there, and where; triangles are asked about stored elements only.
    bool inside(Int i, Int j) const { return kind != Kind::band || (j <= i + ku && i <= j + kl); }
    bool stored(Int i, Int j) const { return inside(i, j) && (!triangle() || i == j || (i > j) == (uplo == 122)); }
    Int place(Int i, Int j) const
    {
        if (kind == Kind::band) return order == by_columns ? ku + i - j + j * lda() : kl + j - i + i * lda();
        return order == by_columns ? i + j * lda() : i * lda() + j;
    }
    std::string name() const
    {
        const char* stems[] = {"gemv", "gbmv", "symv", "hemv"};
        return stems[static_cast<int>(kind)] + std::string(two ? "2_x" : "_x");
    }

    // Numbers of all sizes, some zero, some the last one's opposite, some with 27 digits, where splitting has to
    // choose.
    static T value(Random& random, T last)
    {
        const auto digits27 = static_cast<Real<T>>((1 << 26) + 1);
        switch (random.integer(0, 7)) {
        case 0:
            return T{};
        case 1:
            return -last;
        case 2:
            return random.spread<T>() * digits27;
        default:
            return random.spread<T>();
        }
    }

    // Runs the call and compares y bit for bit. What must not be read is NaN, or behind a protected page.
    void check() const
    {
        Random random(seed);
        std::vector<T> whole(static_cast<std::size_t>(m * n));
        const auto at = [&](Int i, Int j) -> T& { return whole[static_cast<std::size_t>(i + j * m)]; };
        Int low = 0, high = -1;
        for (Int j = 0; j < n; ++j)
            for (Int i = 0; i < m; ++i) {
                at(i, j) = value(random, i > 0 ? at(i - 1, j) : T(1));
                if (!stored(i, j)) continue;
                low = high < 0 ? place(i, j) : std::min(low, place(i, j));
                high = std::max(high, place(i, j));
            }
        const Int x_size = terms() == 0 ? 0 : (terms() - 1) * std::abs(incx) + 1;
        const Int y_size = length() == 0 ? 0 : (length() - 1) * std::abs(incy) + 1;
        Guarded<T> a(high < 0 ? 0 : high - low + 1, side), head(x_size, side), tail(x_size, side), y(y_size, side);
        const auto of = [](Guarded<T>& v, Int size, Int k, Int inc) -> T& {
            return v.data()[inc > 0 ? k * inc : size - 1 + k * inc];
        };
        std::vector<T> x_head(static_cast<std::size_t>(terms())), x_tail(x_head), before;
        T last(1);
        for (T& x : x_head) x = last = value(random, last);
        for (T& x : x_tail) x = last = value(random, last);
        // Every other time the second half of the terms takes the first one away: what is left is nothing but errors of
        // additions, of which the last one shows.
        if (seed % 2 == 0 && !triangle())
            for (Int t = (terms() + 1) / 2; t < terms(); ++t) {
                const Int from = t - (terms() + 1) / 2;
                x_head[static_cast<std::size_t>(t)] = x_head[static_cast<std::size_t>(from)];
                x_tail[static_cast<std::size_t>(t)] = x_tail[static_cast<std::size_t>(from)];
                for (Int k = 0; k < length(); ++k)
                    (transposed() ? at(t, k) : at(k, t)) = -(transposed() ? at(from, k) : at(k, from));
            }
        if (!(alpha == T{})) { // otherwise A and x remain NaN
            for (Int j = 0; j < n; ++j)
                for (Int i = 0; i < m; ++i)
                    if (stored(i, j)) a.data()[place(i, j) - low] = at(i, j);
            for (Int k = 0; k < terms(); ++k) {
                of(head, x_size, k, incx) = x_head[static_cast<std::size_t>(k)];
                of(tail, x_size, k, incx) = x_tail[static_cast<std::size_t>(k)];
            }
        }
        for (Int k = 0; k < length(); ++k) {
            before.push_back(value(random, T(1)));
            if (!(beta == T{})) of(y, y_size, k, incy) = before.back(); // otherwise y remains NaN
        }
        a.read_only(), head.read_only(), tail.read_only();
        y.remember();

        call(a.data() - low, lda(), head.data(), tail.data(), y.data(), order);
        EXPECT_TRUE(y.unchanged_except([&](Int k) { return k % std::abs(incy) == 0; }));
        const auto expect_y = [&] {
            for (Int k = 0; k < length(); ++k) {
                const T want =
                    expected_element(prec, element(k, at, x_head, x_tail, before[static_cast<std::size_t>(k)]));
                const T got = of(y, y_size, k, incy);
                if (alpha == T{} && beta == T(1)) // untouched, not recomputed
                    ASSERT_EQ(got, before[static_cast<std::size_t>(k)]) << describe() << " element " << k;
                else
                    ASSERT_EQ(std::memcmp(&got, &want, sizeof got), 0)
                        << describe() << " element " << k << ": " << got << ", not " << want;
            }
        };
        expect_y();
        if (order != by_columns || testing::Test::HasFatalFailure()) return;
        for (Int k = 0; k < length(); ++k)
            if (!(beta == T{})) of(y, y_size, k, incy) = before[static_cast<std::size_t>(k)];
        call(a.data() - low, lda(), head.data(), tail.data(), y.data(), 0);
        expect_y();
    }

    // order 0: the form without.
    void call(const T* a, Int leading, const T* head, const T* tail, T* y, Int order_or_0) const
    {
        const Int* o = order_or_0 == 0 ? nullptr : &order_or_0;
        const T *al = &alpha, *be = &beta;
        const std::string stem = name();
        using C = xblas::Calls<T>;
        const Int *ld = &leading, *t = &trans, *u = &uplo, *ix = &incx, *iy = &incy, *p = &prec;
        if (kind == Kind::general && !two)
            call_kernel<T, typename C::gemv_x>(stem, o, t, &m, &n, al, a, ld, head, ix, be, y, iy, p);
        else if (kind == Kind::general)
            call_kernel<T, typename C::gemv2_x>(stem, o, t, &m, &n, al, a, ld, head, tail, ix, be, y, iy, p);
        else if (kind == Kind::band && !two)
            call_kernel<T, typename C::gbmv_x>(stem, o, t, &m, &n, &kl, &ku, al, a, ld, head, ix, be, y, iy, p);
        else if (kind == Kind::band)
            call_kernel<T, typename C::gbmv2_x>(stem, o, t, &m, &n, &kl, &ku, al, a, ld, head, tail, ix, be, y, iy, p);
        else if (!two)
            call_kernel<T, typename C::symv_x>(stem, o, u, &n, al, a, ld, head, ix, be, y, iy, p);
        else
            call_kernel<T, typename C::symv2_x>(stem, o, u, &n, al, a, ld, head, tail, ix, be, y, iy, p);
    }

    std::string describe() const
    {
        std::string text = precision_letter<T>() + name();
        for (const auto& [what, number] : {std::pair{"order", order},
                                           {"trans", trans},
                                           {"uplo", uplo},
                                           {"m", m},
                                           {"n", n},
                                           {"kl", kl},
                                           {"ku", ku},
                                           {"prec", prec},
                                           {"incx", incx},
                                           {"incy", incy},
                                           {"seed", static_cast<Int>(seed)}})
            text += std::string(" ") + what + " " + std::to_string(number);
        return text;
    }

private:
    template <class At>
    Element<T> element(Int k, const At& at, const std::vector<T>& head, const std::vector<T>& tail, T y) const
    {
        Element<T> e{{}, {}, {}, alpha, beta, y};
        for (Int t = 0; t < terms(); ++t) {
            const Int i = transposed() ? t : k, j = transposed() ? k : t;
            if (!inside(i, j)) continue;
            T a = stored(i, j) ? at(i, j) : at(j, i);
            if ((transposed() && trans == 113) || (kind == Kind::hermitian && !stored(i, j))) a = conjugated(a);
            if (kind == Kind::hermitian && i == j) a = T(static_cast<Real<T>>(real_of(a)));
            e.a.push_back(a);
            e.head.push_back(head[static_cast<std::size_t>(t)]);
            if (two) e.tail.push_back(tail[static_cast<std::size_t>(t)]);
        }
        return e;
    }
};

} // namespace ork::test
