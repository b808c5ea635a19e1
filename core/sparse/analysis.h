// SPDX-License-Identifier: MIT
// What optimize found out about a matrix: one part for each of those who analyse, which only they look into.
#pragma once

#include <cstdint>
#include <utility>

#include "ork/abi/sparse.h"
#include "ork/sparse.h"

namespace ork::sparse {

// Data of one owner, and how it is released. Empty where nothing was analysed.
class Part {
public:
    // Called after values changed in place: brings copies of them up to date and returns true, or returns false and the
    // part is released. Without it the part is released.
    using Refresh = bool (*)(const Matrix& a, void* data);

    constexpr Part() = default;
    ~Part() { clear(); }
    Part(const Part&) = delete;
    Part& operator=(const Part&) = delete;

    template <class Data>
    Data* get() const
    {
        return static_cast<Data*>(data_);
    }
    // Takes the place of what was there.
    void set(void* data, void (*release)(void*), Refresh refresh = nullptr)
    {
        clear();
        data_ = data, release_ = release, refresh_ = refresh;
    }
    void clear()
    {
        if (data_ != nullptr) release_(std::exchange(data_, nullptr));
    }
    void values_changed(const Matrix& a)
    {
        if (data_ != nullptr && !(refresh_ != nullptr && refresh_(a, data_))) clear();
    }

private:
    void* data_ = nullptr;
    void (*release_)(void*) = nullptr;
    Refresh refresh_ = nullptr;
};

struct Analysis {
    Part mv;       // mv_plan.*: the layout that products take
    Part solve;    // levels of solves and smoothers
    Part products; // structure of results that come again
    Part mm;
    ork_sparse_description description; // layout "" until mv has been analysed
};

inline Analysis* analysis_of(const Matrix& a) { return static_cast<Analysis*>(a.analysis); }

// Appends a line to the description's text, as far as there is room.
[[gnu::format(printf, 2, 3)]] void describe(Analysis& analysis, const char* line, ...);

// What optimize calls, in this order, each in its owner's file. Each looks at the hints (a.hints) and fills its part,
// or clears it when it has nothing to say; adds to description.bytes what it keeps; returns ORK_SPARSE_SUCCESS, or
// ORK_SPARSE_NO_MEMORY with its part empty or as it was, and records nothing: optimize does.
std::int64_t analyse_mv(Matrix& a, Analysis& analysis);    // mv, dotmv; also when there is no hint at all
std::int64_t analyse_mm(Matrix& a, Analysis& analysis);    // mm
std::int64_t analyse_solve(Matrix& a, Analysis& analysis); // sv, sm, symgs, sorv, lu_smoother

// Calls that the hints expect of a task, all kinds and ops together.
std::int64_t calls_expected(const Matrix& a, Task task);
inline bool may_copy(const Matrix& a) { return a.memory != ORK_SPARSE_MEMORY_NONE; }

} // namespace ork::sparse
