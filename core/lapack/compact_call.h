// SPDX-License-Identifier: MIT
// A call of the compact interface: its arguments checked, its packs divided among threads.
#pragma once

#include <algorithm>
#include <cstdint>

#include "ork/abi/lapack/types.h"
#include "ork/lapack_compact.h"
#include "services/xerbla.h"
#include "threads/pool.h"

namespace ork::lapack::compact {

// Remembers the first illegal argument; to be asked in the order of positions. Out of line: forty-eight routines ask.
class Arguments {
public:
    Arguments(const char* routine, Int layout) : routine_(routine)
    {
        want(1, layout == ORK_COMPACT_ROWS || layout == ORK_COMPACT_COLUMNS);
    }
    explicit Arguments(const char* routine) : routine_(routine) {}

    [[gnu::noinline]] Arguments& want(Int position, bool legal)
    {
        if (!legal && wrong_ == 0) wrong_ = position;
        return *this;
    }
    [[gnu::noinline]] Arguments& size(Int position, Int n) { return want(position, n >= 0); }
    [[gnu::noinline]] Arguments& lead(Int position, Int ld, Int length)
    {
        return want(position, ld >= std::max<Int>(1, length));
    }
    [[gnu::noinline]] Arguments& letter(Int position, char given, const char* legal)
    {
        bool found = false;
        for (; *legal != 0; ++legal) found = found || (given & ~0x20) == *legal;
        return want(position, found);
    }
    // The last two of every routine.
    [[gnu::noinline]] Arguments& batch(Int position, Int format, Int nmat)
    {
        return want(position, format >= 181 && format <= 183).size(position + 1, nmat);
    }
    // 0, or minus the position, which is reported.
    [[gnu::noinline]] Int report() const
    {
        if (wrong_ != 0) [[unlikely]]
            services::report_argument(routine_, wrong_);
        return -wrong_;
    }

private:
    const char* routine_;
    Int wrong_ = 0;
};

inline Int length_of(Int layout, Int m, Int n) { return layout == ORK_COMPACT_ROWS ? n : m; } // of a line
inline Int lines_of(Int layout, Int m, Int n) { return layout == ORK_COMPACT_ROWS ? m : n; }

// nmat matrices in whole packs of one format.
template <class T>
struct Batch {
    static constexpr Int parts = sizeof(T) / sizeof(Part<T>);
    Int format, width, nmat, packs;

    Batch(Int format, Int nmat)
        : format(format), width((Int{16} << (format - 181)) / Int(sizeof(Part<T>))), nmat(nmat),
          packs((nmat + width - 1) / width)
    {
    }
    // Real numbers of a pack with that many lines.
    Int size(Int ld, Int lines) const { return ld * lines * width * parts; }
};

// Which packs a thread works on.
struct Share {
    Int part, first, packs;
};

// `work`: multiplications of one matrix, about. A thread more is worth waking when it saves this many (an element moved
// counts as one): 40 microseconds of them.
inline constexpr double work_per_thread = 4e5;

template <class T>
class Division {
public:
    [[gnu::noinline]] Division(const Batch<T>& batch, double work) : batch_(batch)
    {
        const double whole = work * static_cast<double>(batch.nmat * Batch<T>::parts * Batch<T>::parts);
        if (whole >= 2 * work_per_thread)
            parts_ = static_cast<int>(std::min(
                {static_cast<double>(threads::limit()), whole / work_per_thread, static_cast<double>(batch.packs)}));
    }
    int parts() const { return parts_; }

    // body(share) for every part. One copy of the body serves a thread and many.
    template <class Body>
    void run(Body&& body) const
    {
        struct Context {
            const Division& division;
            Body& body;
        } context{*this, body};
        const auto part_of = [](void* context, int part) {
            const auto& [division, body] = *static_cast<Context*>(context);
            const Int packs = division.batch_.packs, first = packs * part / division.parts_;
            body(Share{part, first, packs * (part + 1) / division.parts_ - first});
        };
        if (batch_.packs == 0) return;
        void (*const work)(void*, int) = part_of;
        if (parts_ == 1) return work(&context, 0);
        threads::run(parts_, work, &context);
    }

private:
    const Batch<T>& batch_;
    int parts_ = 1;
};

} // namespace ork::lapack::compact
