// SPDX-License-Identifier: MIT
#include "pde/trig/side_by_side.h"

#include "pde/trig/lanes.h"
#include "pde/trig/real_dft.h"

namespace ork::pde {
namespace {

using dft::Index;

// x becomes C; of a sine the numbers at odd places are negated first.
template <int m, bool sine, class R>
[[gnu::noinline]] void half_step_cosines(Vec<R>* x)
{
    using V = Vec<R>;
    real_dft<m, sine, R>([=](auto j) ORK_INLINE_LAMBDA { return x[2 * j < m ? 2 * j : 2 * (m - 1 - j) + 1]; },
                         [=](auto k, dft::Split<R> y) ORK_INLINE_LAMBDA {
                             constexpr int low = 2 * k < m ? k : m - k;
                             constexpr R c = 2 * dft::root<R, 4 * m, low>.cos, s = 2 * dft::root<R, 4 * m, low>.sin;
                             if constexpr (k == 0) {
                                 x[0] = y.re + y.re;
                             } else if constexpr (2 * k == m) {
                                 x[k] = y.re * broadcast(c);
                             } else {
                                 const V re_c = y.re * broadcast(c), im_s = y.im * broadcast(s);
                                 const V re_s = y.re * broadcast(s), im_c = y.im * broadcast(c);
                                 x[low] = k == low ? re_c + im_s : re_c - im_s;
                                 x[m - low] = k == low ? re_s - im_c : re_s + im_c;
                             }
                         });
}

// Where the numbers of a line stand: inputs of C of length n/2, those of n/4, ... of 1, then the two ends.
template <int n>
struct Places {
    unsigned char at[n + 1];

    consteval Places() : at{}
    {
        at[0] = n - 1, at[n] = n;
        for (int i = 1; i < n; ++i) {
            int step = 1;
            while (i % (2 * step) == 0) step *= 2;
            at[i] = static_cast<unsigned char>(n - n / step + i / (2 * step));
        }
    }
};

template <class R, int n, bool sine>
class SideBySide {
    using V = Vec<R>;
    static constexpr int lanes = V::lanes, first = sine ? 1 : 0, end = sine ? n : n + 1;
    static constexpr Places<n> places{};

public:
    explicit SideBySide(R factor) : factor_(broadcast(factor)) {}

    void run(R* f, const Lines& lines)
    {
        Int k = 0;
        for (; k + lanes <= lines.count; k += lanes) {
            R* const at = f + k * lines.distance;
            if (lines.distance == 1)
                neighbours(at, lines.stride);
            else if (lines.stride == 1)
                rows(at, lines.distance);
            else
                anywhere(at, lines, lanes);
        }
        if (k < lines.count) anywhere(f + k * lines.distance, lines, lines.count - k);
    }

private:
    // Elements lie in a row each.
    [[gnu::always_inline]] void neighbours(R* f, Int stride)
    {
        for (int i = first; i < end; ++i) x_[places.at[i]] = load(f + i * stride);
        transform([=, factor = factor_](int k, V value) ORK_INLINE_LAMBDA { store(f + k * stride, value * factor); });
    }

    // Lines lie in a row each, of which squares are taken.
    void rows(R* f, Int distance)
    {
        constexpr int squares = first + (end - first) / lanes * lanes;
        for (int i = first; i < squares; i += lanes) {
            V x[lanes];
            for (int j = 0; j < lanes; ++j) x[j] = load(f + j * distance + i);
            transpose(x);
            for (int j = 0; j < lanes; ++j) x_[places.at[i + j]] = x[j];
        }
        R rest[end - squares + 1][lanes];
        for (int i = squares; i < end; ++i) {
            for (int j = 0; j < lanes; ++j) rest[i - squares][j] = f[j * distance + i];
            x_[places.at[i]] = load(rest[i - squares]);
        }
        transform([this](int k, V value) ORK_INLINE_LAMBDA { even_[k] = value; });
        for (int i = first; i < squares; i += lanes) {
            V x[lanes];
            for (int j = 0; j < lanes; ++j) x[j] = even_[i + j] * factor_;
            transpose(x);
            for (int j = 0; j < lanes; ++j) store(f + j * distance + i, x[j]);
        }
        for (int i = squares; i < end; ++i) {
            store(rest[i - squares], even_[i] * factor_);
            for (int j = 0; j < lanes; ++j) f[j * distance + i] = rest[i - squares][j];
        }
    }

    // Lanes without a line of their own repeat the last one.
    void anywhere(R* f, const Lines& lines, Int count)
    {
        R copy[(n + 1) * lanes];
        const auto line = [&](int j) { return f + (j < count ? j : count - 1) * lines.distance; };
        for (int j = 0; j < lanes; ++j)
            for (int i = first; i < end; ++i) copy[i * lanes + j] = line(j)[i * lines.stride];
        neighbours(copy, lanes);
        for (int j = 0; j < count; ++j)
            for (int i = first; i < end; ++i) line(j)[i * lines.stride] = copy[i * lanes + j];
    }

    template <class Put>
    [[gnu::always_inline]] void transform(Put put)
    {
        cosines<n / 2>();
        if (sine)
            even_[1] = x_[n - 2];
        else
            even_[0] = x_[n - 1] + x_[n], even_[1] = x_[n - 1] - x_[n];
        lengthen<sine ? 2 : 1>(put);
    }

    template <int m>
    [[gnu::always_inline]] void cosines()
    {
        half_step_cosines<m, sine, R>(x_ + n - 2 * m);
        if constexpr (m > 1) cosines<m / 2>();
    }

    // From length m to length n.
    template <int m, class Put>
    [[gnu::always_inline]] void lengthen(Put put)
    {
        const V* const c = x_ + n - 2 * m;
        const auto step = [=, this](auto to) ORK_INLINE_LAMBDA {
#pragma GCC unroll 4
            for (int k = first; k < m; ++k) {
                const V even = even_[k], odd = c[sine ? m - k : k];
                to(k, odd + even);
                to(2 * m - k, sine ? odd - even : even - odd);
            }
            to(m, sine ? c[0] : even_[m]);
        };
        if constexpr (2 * m == n) {
            step(put);
        } else {
            step([this](int k, V value) ORK_INLINE_LAMBDA { even_[k] = value; });
            lengthen<2 * m>(put);
        }
    }

    V factor_;
    V x_[n + 1], even_[n + 1];
};

template <bool sine, class R>
void of_length(Int n, R factor, R* f, const Lines& lines)
{
    switch (n) {
    case 8:
        return SideBySide<R, 8, sine>(factor).run(f, lines);
    case 16:
        return SideBySide<R, 16, sine>(factor).run(f, lines);
    case 32:
        return SideBySide<R, 32, sine>(factor).run(f, lines);
    case 64:
        return SideBySide<R, 64, sine>(factor).run(f, lines);
    default:
        return SideBySide<R, 128, sine>(factor).run(f, lines);
    }
}

} // namespace

bool goes_side_by_side(Int type, Int n) { return type < 2 && n >= 8 && n <= 128 && (n & (n - 1)) == 0; }

template <class R>
void transform_side_by_side(Int type, Int n, R factor, R* f, const Lines& lines)
{
    return type == 0 ? of_length<true>(n, factor, f, lines) : of_length<false>(n, factor, f, lines);
}

#define INSTANTIATE(R) template void transform_side_by_side(Int, Int, R, R*, const Lines&);
INSTANTIATE(float)
INSTANTIATE(double)

} // namespace ork::pde
