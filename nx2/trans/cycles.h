// SPDX-License-Identifier: MIT
// Transposition of a matrix that is not square in its own memory, along the cycles of the permutation that it is.
//
// Element p = i + m j of an m x n matrix by columns belongs at s(p) = n i + j = n p mod (m n - 1). Every cycle of s is
// walked once, from a leader. Leaders of a small matrix are the first elements without a mark, a bit each. Those of a
// large one are computed: with N = m n - 1, the elements p with gcd(p, N) = N / d are N / d times the units modulo d,
// on which s multiplies by n, so that the cycles are the cosets of the powers of n in the group of units (Windley,
// Computer Journal 2 (1959); Brenner, Algorithm 467, CACM 16 (1973)). By the Chinese remainder theorem that group is a
// product of cyclic groups, one or (for 2^e) two for every prime power in d; in exponents of their generators the
// powers of n are the multiples of one vector v, and the cosets are Z^k modulo the lattice of v and the orders. A
// triangular basis of that lattice, of diagonal h, has the points 0 <= x < h as representatives.
//
// Work: one multiplication and one division by an invariant for an element moved, and a remainder that grows as the
// square root of N.
#pragma once

#include <cstring>

#include "trans/element.h"
#include "trans/strided.h"

namespace ork::trans {

using Word = std::uint64_t;
using Wide = unsigned __int128;

// Quotients by the same divisor: a product with its reciprocal, which is too large by one at most.
class Divisor {
public:
    explicit Divisor(Word d) : d_(d), reciprocal_(~Word{0} / d + (d > 1 ? 1 : 0)) {}
    Word quotient(Word a) const
    {
        if (d_ == 1) return a;
        const Word q = static_cast<Word>(static_cast<Wide>(a) * reciprocal_ >> 64);
        return q - (q * d_ > a ? 1 : 0);
    }

private:
    Word d_, reciprocal_;
};

// Of numbers below the modulus. By the instruction: the compiler would call a routine of its run-time.
inline Word product(Word a, Word b, Word modulus)
{
    const Wide whole = static_cast<Wide>(a) * b;
    Word quotient = static_cast<Word>(whole), rest = static_cast<Word>(whole >> 64);
    asm("divq %2" : "+a"(quotient), "+d"(rest) : "r"(modulus) : "cc");
    return rest;
}
inline Word power(Word a, Word exponent, Word modulus)
{
    Word result = 1 % modulus;
    for (; exponent != 0; exponent /= 2, a = product(a, a, modulus))
        if (exponent % 2 != 0) result = product(result, a, modulus);
    return result;
}

struct Factorization {
    static constexpr int most = 16; // the product of the first 16 primes has 63 bits
    Word prime[most];
    int exponent[most];
    int count = 0;

    explicit Factorization(Word n)
    {
        for (Word p = 2; p * p <= n; p += p == 2 ? 1 : 2) {
            if (n % p != 0) continue;
            prime[count] = p, exponent[count] = 0;
            for (; n % p == 0; n /= p) ++exponent[count];
            ++count;
        }
        if (n > 1) prime[count] = n, exponent[count++] = 1;
    }
};

// Generates the units modulo q^e for every e, q odd.
inline Word primitive_root(Word q)
{
    const Factorization orders(q - 1);
    const Word square = q < (Word{1} << 32) ? q * q : 0; // a larger one has the exponent 1
    for (Word g = 2;; ++g) {
        bool generates = square == 0 || power(g, q - 1, square) != 1;
        for (int i = 0; i < orders.count && generates; ++i) generates = power(g, (q - 1) / orders.prime[i], q) != 1;
        if (generates) return g;
    }
}

// The exponent of g that gives a modulo `modulus`, below the order of g: baby steps in a table, giant steps over them
// (Shanks).
inline Word logarithm(Word g, Word a, Word modulus, Word order)
{
    struct Step {
        Word value, exponent;
    };
    constexpr Word most = 512;
    const Word count = order < most ? order : most;
    Step steps[most];
    Word value = 1 % modulus;
    for (Word k = 0; k < count; ++k, value = product(value, g, modulus)) {
        Word at = k; // sorted by value
        for (; at > 0 && steps[at - 1].value > value; --at) steps[at] = steps[at - 1];
        steps[at] = {value, k};
    }
    const Word giant = power(g, order - count % order, modulus); // g to the power of minus count
    for (Word k = 0;; k += count, a = product(a, giant, modulus)) {
        Word low = 0, high = count;
        while (high - low > 1) {
            const Word middle = (low + high) / 2;
            (steps[middle].value <= a ? low : high) = middle;
        }
        if (steps[low].value == a) return (k + steps[low].exponent) % order;
    }
}

// visit(p, length) for one p of every cycle of multiplication by n modulo N, 0 < p < N.
class Leaders {
public:
    Leaders(Word n, Word N) : n_(n), N_(N), factors_(N)
    {
        for (int i = 0; i < factors_.count; ++i) add_cyclic_groups(i);
    }

    template <class Visit>
    void each(const Visit& visit)
    {
        int exponents[Factorization::most] = {};
        for (;;) { // all d > 1
            int i = 0;
            while (i < factors_.count && exponents[i] == factors_.exponent[i]) exponents[i++] = 0;
            if (i == factors_.count) return;
            ++exponents[i];
            cosets(exponents, visit);
        }
    }

private:
    // Units modulo prime[factor]^e that are powers of the generator: so many, n being the log-th power. Both are for
    // the largest e and hold for smaller ones modulo the order there.
    struct Cyclic {
        int factor;
        Word generator, log;
        bool is_sign; // of the units modulo a power of two: the powers of -1, the others are those of 5
    };
    static constexpr int most = Factorization::most + 1;

    static Word order(const Cyclic& group, Word prime, int e)
    {
        if (prime != 2) {
            Word result = prime - 1;
            for (int k = 1; k < e; ++k) result *= prime;
            return result;
        }
        if (group.is_sign) return e >= 2 ? 2 : 1;
        return e >= 3 ? Word{1} << (e - 2) : 1;
    }

    void add_cyclic_groups(int factor)
    {
        const Word q = factors_.prime[factor];
        Word modulus = 1;
        for (int k = 0; k < factors_.exponent[factor]; ++k) modulus *= q;
        if (q != 2) {
            const Word g = primitive_root(q);
            groups_[count_++] = {factor, g, logarithm(g, n_ % modulus, modulus, modulus / q * (q - 1)), false};
            return;
        }
        const bool negative = modulus >= 4 && n_ % 4 == 3;
        const Word rest = negative ? modulus - n_ % modulus : n_ % modulus;
        groups_[count_++] = {factor, modulus - 1, negative ? 1U : 0U, true};
        groups_[count_++] = {factor, 5 % modulus, modulus >= 8 ? logarithm(5, rest, modulus, modulus / 4) : 0, false};
    }

    template <class Visit>
    void cosets(const int* exponents, const Visit& visit)
    {
        Word d = 1;
        for (int i = 0; i < factors_.count; ++i)
            for (int k = 0; k < exponents[i]; ++k) d *= factors_.prime[i];

        // Orders, the vector of n, and generators modulo d that are 1 modulo the other prime powers.
        int k = 0;
        Word orders[most], v[most], generators[most];
        for (int i = 0; i < count_; ++i) {
            const Cyclic& group = groups_[i];
            const int e = exponents[group.factor];
            if (e == 0) continue;
            const Word size = order(group, factors_.prime[group.factor], e);
            if (size == 1) continue;
            Word modulus = 1;
            for (int l = 0; l < e; ++l) modulus *= factors_.prime[group.factor];
            orders[k] = size, v[k] = group.log % size;
            generators[k++] = lifted(group.is_sign ? modulus - 1 : group.generator % modulus, modulus, d);
        }

        // The basis: Euclid's algorithm on each column in turn, below it the orders still reduce what is to the right.
        Word diagonal[most];
        for (int i = 0; i < k; ++i) {
            Word row[most] = {};
            row[i] = orders[i];
            while (v[i] != 0) {
                const Word quotient = row[i] / v[i];
                row[i] %= v[i];
                for (int l = i + 1; l < k; ++l)
                    row[l] =
                        (row[l] + product(quotient % orders[l], orders[l] - v[l] % orders[l], orders[l])) % orders[l];
                for (int l = i; l < k; ++l) {
                    const Word swapped = row[l];
                    row[l] = v[l], v[l] = swapped;
                }
            }
            diagonal[i] = row[i];
        }

        Word units = 1, cycles = 1;
        for (int i = 0; i < k; ++i) units *= orders[i], cycles *= diagonal[i];
        Word x[most] = {}, unit[most + 1]; // unit[i]: the product of the powers from i on
        for (int i = 0; i <= k; ++i) unit[i] = 1 % d;
        for (;;) {
            visit(N_ / d * unit[0], units / cycles);
            int i = 0;
            while (i < k && x[i] + 1 == diagonal[i]) ++i;
            if (i == k) return;
            ++x[i], unit[i] = product(unit[i], generators[i], d);
            while (i > 0) --i, x[i] = 0, unit[i] = unit[i + 1];
        }
    }

    // a modulo m, 1 modulo d / m, which is prime to m.
    static Word lifted(Word a, Word m, Word d)
    {
        const Word other = d / m;
        // 1 + other t = a modulo m: t = (a - 1) / other there; the inverse by Euclid's algorithm.
        std::int64_t inverse = 0, next = 1;
        Word r = m, s = other % m;
        while (s != 0) {
            const Word quotient = r / s, rest = r % s;
            const std::int64_t last = inverse - static_cast<std::int64_t>(quotient) * next;
            inverse = next, next = last, r = s, s = rest;
        }
        const Word positive = inverse < 0 ? m - static_cast<Word>(-inverse) % m : static_cast<Word>(inverse) % m;
        const Word t = product((a + m - 1) % m, positive, m);
        return (1 + other * t) % d;
    }

    Word n_, N_;
    Factorization factors_;
    Cyclic groups_[most];
    int count_ = 0;
};

// Where element p of the m x n matrix stands, and where it belongs.
struct Place {
    Divisor rows;
    Word m, n, lda;

    Place(Int m, Int n, Int lda)
        : rows(static_cast<Word>(m)), m(static_cast<Word>(m)), n(static_cast<Word>(n)), lda(static_cast<Word>(lda))
    {
    }
    Word at(Word p) const
    {
        const Word j = rows.quotient(p);
        return p - j * m + j * lda;
    }
    Word target(Word p) const
    {
        const Word j = rows.quotient(p);
        return (p - j * m) * n + j;
    }
    Word last() const { return m * n - 1; }
};

// walk(leader, length) for every cycle; length is zero where it is not known.
template <class Walk>
void each_cycle(const Place& place, const Walk& walk)
{
    const Word last = place.last();
    constexpr Word most_marks = 2048;
    if (last >= most_marks) return Leaders(place.n, last).each(walk);
    Word marks[most_marks / 64] = {};
    for (Word leader = 1; leader < last; ++leader) {
        if ((marks[leader / 64] >> leader % 64 & 1) != 0) continue;
        for (Word p = place.target(leader); p != leader; p = place.target(p)) marks[p / 64] |= Word{1} << p % 64;
        walk(leader, 0);
    }
}

// Along single elements.
template <class T, class F>
class Walk {
public:
    Walk(T* a, const Place& place, const F& f) : a_(a), place_(place), f_(f) {}

    void operator()(Word leader, Word length) const
    {
        if (length >= 8 * arcs) return by_arcs(leader, length);
        Vec<T> carried = take(leader);
        Word p = leader;
        finish(p, leader, carried);
    }

private:
    // A step waits for the address that the last one has computed: four parts of a cycle go on side by side. Each ends
    // where the next begins, with the element that was taken from there before.
    static constexpr int arcs = 4;

    Vec<T> take(Word p) const { return f_(load<1>(a_ + place_.at(p))); }
    void step(Word& p, Vec<T>& carried) const
    {
        p = place_.target(p);
        T* const at = a_ + place_.at(p);
        const Vec<T> next = f_(load<1>(at));
        store<1>(at, carried);
        carried = next;
    }
    void finish(Word p, Word leader, Vec<T> carried) const
    {
        const Walk self = *this; // in registers: vector stores may alias anything
        while (self.place_.target(p) != leader) self.step(p, carried);
        store<1>(self.a_ + self.place_.at(leader), carried);
    }
    void by_arcs(Word leader, Word length) const
    {
        const Walk self = *this;
        const Word steps = length / arcs, last = place_.last(), stride = power(place_.n % last, steps, last);
        Word p[arcs];
        Vec<T> carried[arcs];
        for (int k = 0; k < arcs; ++k)
            p[k] = k == 0 ? leader : product(p[k - 1], stride, last), carried[k] = take(p[k]);
        for (Word s = 1; s < steps; ++s)
#pragma GCC unroll 4
            for (int k = 0; k < arcs; ++k) self.step(p[k], carried[k]);
        for (int k = 0; k + 1 < arcs; ++k) store<1>(a_ + place_.at(place_.target(p[k])), carried[k]);
        finish(p[arcs - 1], leader, carried[arcs - 1]);
    }

    T* a_;
    Place place_;
    F f_;
};

// Along chunks of `width` adjacent elements, which the places count.
template <class T>
class WalkChunks {
public:
    static constexpr int most = 128;

    WalkChunks(T* a, const Place& place, int width) : a_(a), place_(place), width_(width) {}

    void operator()(Word leader, Word) const
    {
        T carried[2][most];
        int full = 0;
        move(carried[full], chunk(leader));
        for (Word p = place_.target(leader); p != leader; p = place_.target(p), full ^= 1) {
            move(carried[full ^ 1], chunk(p));
            move(chunk(p), carried[full]);
        }
        move(chunk(leader), carried[full]);
    }

private:
    T* chunk(Word p) const { return a_ + place_.at(p) * static_cast<Word>(width_); }
    void move(T* to, const T* from) const
    {
        std::memcpy(static_cast<void*>(to), from, static_cast<std::size_t>(width_) * sizeof(T));
    }

    T* a_;
    Place place_;
    int width_;
};

// The m x n matrix at a becomes the n x m one, in the same m n places: element q of the result, by columns, stands
// where element q of the matrix stood. m, n > 1.
template <class T, class F>
[[gnu::noinline]] void transpose_by_cycles(Int m, Int n, T* a, Int lda, const F& f)
{
    const Place place(m, n, lda);
    put(a, a, f); // the first and the last stay
    put(a + place.at(place.last()), a + place.at(place.last()), f);
    each_cycle(place, Walk<T, F>(a, place, f));
}

} // namespace ork::trans
