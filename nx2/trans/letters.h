// SPDX-License-Identifier: MIT
// The letters of the calls. A R of trans conjugates, a R of ordering is storage by rows.
#pragma once

namespace ork::trans {

// Case apart: no two of the letters that matter are told apart by this bit alone.
inline char folded(char letter) { return static_cast<char>(letter | 0x20); }

inline bool by_columns(char ordering) { return folded(ordering) == 'c'; }
inline bool by_rows(char ordering) { return folded(ordering) == 'r'; }

struct Operation {
    bool known, transposed, conjugated;
};
inline Operation operation(char trans)
{
    const char letter = folded(trans);
    return {letter == 'n' || letter == 'r' || letter == 't' || letter == 'c', letter == 't' || letter == 'c',
            letter == 'r' || letter == 'c'};
}

} // namespace ork::trans
