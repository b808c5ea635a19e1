// SPDX-License-Identifier: MIT
// Which entries a member uses, and how, as one number that is decided at compile time and read at run time: where the
// inner loop does not care for a letter, all members of a routine share one body.
#pragma once

#include <cstdint>

#include "spblas/rule.h"

namespace ork::spblas {

class Terms {
public:
    constexpr explicit Terms(Rule r)
    {
        const bool general = r.type == 'g', twice = r.type == 's' || r.type == 'h' || r.type == 'a';
        set(direct_bit, r.type != 'd' && !r.transpose);
        set(mirrored_bit, twice || r.transpose);
        set(filtered_bit, !general);
        set(lower_bit, r.lower);
        set(diagonal_bit, !general && r.type != 'a' && !r.unit);
        set(unit_bit, r.unit);
        set(conjugate_bit, r.conjugate);
        set(mirrored_conjugate_bit, r.conjugate != (r.type == 'h'));
        set(mirrored_minus_bit, r.type == 'a');
        set(negate_bit, r.negate);
        set(row_major_bit, r.row_major);
        set(base_bit, r.base == 1);
    }

    // An export has no argument to spare for these, but one that nobody reads.
    explicit Terms(const void* unread) : bits_(static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(unread))) {}
    const void* as_unread() const { return reinterpret_cast<const void*>(std::uintptr_t{bits_}); }

    // Every entry, or those of one triangle: where they are, at the transposed place, or both.
    bool direct() const { return has(direct_bit); }
    bool mirrored() const { return has(mirrored_bit); }

    // Not general: only the triangle's entries count, the diagonal's if diagonal(), and with unit() ones stand in.
    bool filtered() const { return has(filtered_bit); }
    bool lower() const { return has(lower_bit); }
    bool diagonal() const { return has(diagonal_bit); }
    bool unit() const { return has(unit_bit); }

    bool conjugate() const { return has(conjugate_bit); } // stored values; below, those of the transposed place
    bool mirrored_conjugate() const { return has(mirrored_conjugate_bit); }
    bool mirrored_minus() const { return has(mirrored_minus_bit); }

    bool row_major() const { return has(row_major_bit); }
    Terms of_vectors() const // whose members bear a letter of layout too, which follows the base
    {
        Terms t = *this;
        t.bits_ &= ~(std::uint32_t{1} << row_major_bit);
        return t;
    }
    int base() const { return has(base_bit); }

    // A triangular matrix whose last rows depend on the first: solved forward.
    bool forward() const { return lower() == direct(); }

    template <class T>
    T signed_alpha(T alpha) const
    {
        return has(negate_bit) ? T{} - alpha : alpha;
    }

private:
    enum Bit {
        direct_bit,
        mirrored_bit,
        filtered_bit,
        lower_bit,
        diagonal_bit,
        unit_bit,
        conjugate_bit,
        mirrored_conjugate_bit,
        mirrored_minus_bit,
        negate_bit,
        row_major_bit,
        base_bit
    };
    constexpr void set(Bit bit, bool value) { bits_ |= std::uint32_t{value} << bit; }
    bool has(Bit bit) const { return (bits_ >> bit & 1) != 0; }

    std::uint32_t bits_ = 0;
};

} // namespace ork::spblas
