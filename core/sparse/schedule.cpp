// SPDX-License-Identifier: MIT
#include "sparse/schedule.h"

#include <algorithm>
#include <functional>
#include <utility>

#include "ork/abi/services.h"

namespace ork::sparse {
namespace {

constexpr int delay = 4;
// Work is counted in entries and two for each row. A stage ends with threads waiting for each other, some 200 ns; a
// chunk takes several microseconds.
constexpr std::int64_t work_of_chunk = 10'000;
// Slices are useless when they are less than two thirds full.
constexpr double most_lanes = 1.5;
// Threads are useless below this.
constexpr double least_speed_up = 1.4;

// Numbers of rows here are those of the solve's direction: row 0 is solved first.
template <class Int>
class Scheduler {
public:
    Scheduler(const SolveRows<Int>& rows, Triangle triangle, int threads, Schedule<Int>& schedule)
        : rows_(rows), n_(rows.count), triangle_(triangle), threads_(threads), schedule_(schedule)
    {
    }
    ~Scheduler() { ork_serv_free(memory_); }

    Found run()
    {
        if (!take_memory()) return Found::no_memory;
        find_followers();
        std::int64_t free = 0;
        for (std::int64_t i = 0; i < n_; ++i)
            if (open_[i] == 0) pool_[free++] = static_cast<Int>(i);
        for (std::int64_t stage = 0; solved_ < n_; ++stage) {
            std::int64_t later = 0, longest = 0;
            for (int t = 0; t < threads_; ++t) {
                heap_size_ = 0;
                for (std::int64_t p = free * t / threads_; p < free * (t + 1) / threads_; ++p) push(pool_[p]);
                longest = std::max(longest, chunk(stage, t, later));
                if (lanes() > most_lanes * static_cast<double>(n_) + 64) return Found::useless;
            }
            std::swap(pool_, next_pool_);
            free = later;
            if (threads_ > 1) std::sort(pool_, pool_ + free);
            span_ += longest;
        }
        schedule_.chunk_begin[schedule_.chunks] = schedule_.slices;
        if (threads_ > 1 && static_cast<double>(work_) < least_speed_up * static_cast<double>(span_))
            return Found::useless;
        return Found::schedule;
    }

private:
    const SolveRows<Int>& rows_;
    const std::int64_t n_;
    const Triangle triangle_;
    const int threads_;
    Schedule<Int>& schedule_;

    void* memory_ = nullptr;
    Int* open_; // what a row waits for
    Int *followers_, *followers_begin_;
    Int *pool_, *next_pool_;       // free at the beginning of this and the next stage
    Int *heap_, *link_;            // free for this chunk; those that wait, in lists
    std::int64_t* seen_ = nullptr; // threads: the stage and thread that last solved what a row waits for
    std::int64_t heap_size_ = 0, solved_ = 0, work_ = 0, span_ = 0, capacity_;
    std::int64_t waiting_[delay];

    double lanes() const { return static_cast<double>(schedule_.slices) * slice_height; }
    std::int64_t row_of(std::int64_t i) const { return triangle_ == Triangle::upper ? n_ - 1 - i : i; }

    // needed(j) for each row that row i of the triangle needs.
    template <class Needed>
    void each_needed(std::int64_t i, Needed&& needed) const
    {
        rows_.each(row_of(i), [&](std::int64_t column, std::int64_t) {
            if (const std::int64_t j = row_of(column); j < i) needed(j);
        });
    }
    // follower(j) for each row that needs row i.
    template <class Follower>
    void each_follower(std::int64_t i, Follower&& follower) const
    {
        for (std::int64_t k = followers_begin_[i]; k < followers_begin_[i + 1]; ++k)
            follower(std::int64_t{followers_[k]});
        if (triangle_ == Triangle::both)
            rows_.each(i, [&](std::int64_t column, std::int64_t) {
                if (column > i) follower(column);
            });
    }

    bool take_memory()
    {
        std::int64_t entries = 0;
        for (std::int64_t i = 0; i < n_; ++i) each_needed(i, [&](std::int64_t) { ++entries; });
        capacity_ = n_ + n_ / 2 + 64 * std::int64_t{1 + threads_} + slice_height * work_of_chunk;
        const std::int64_t ints = entries + n_ + 2 + 5 * n_;
        const std::int64_t wide = threads_ > 1 ? n_ : 0;
        const auto size = [](std::int64_t count, std::size_t element) {
            return static_cast<std::size_t>(count) * element;
        };
        memory_ = ork_serv_malloc(size(wide, 8) + size(ints, sizeof(Int)), 64);
        schedule_.order = static_cast<Int*>(ork_serv_malloc(size(capacity_, sizeof(Int)), 64));
        const std::int64_t chunks = threads_ > 1 ? n_ * threads_ : 1; // every stage solves a row
        schedule_.chunk_begin = static_cast<std::int64_t*>(ork_serv_malloc(size(chunks + 1, 8), 64));
        if (memory_ == nullptr || schedule_.order == nullptr || schedule_.chunk_begin == nullptr) return false;
        seen_ = static_cast<std::int64_t*>(memory_);
        std::fill(seen_, seen_ + wide, std::int64_t{-1});
        Int* at = reinterpret_cast<Int*>(seen_ + wide);
        const auto take = [&](std::int64_t count) { return std::exchange(at, at + count); };
        followers_ = take(entries), followers_begin_ = take(n_ + 2);
        open_ = take(n_), pool_ = take(n_), next_pool_ = take(n_), heap_ = take(n_), link_ = take(n_);
        schedule_.threads = threads_;
        return true;
    }

    void find_followers()
    {
        Int* const begin = followers_begin_; // one place later until the rows are filled in
        std::fill(begin, begin + n_ + 2, Int{0});
        std::fill(open_, open_ + n_, Int{0});
        for (std::int64_t i = 0; i < n_; ++i) each_needed(i, [&](std::int64_t j) { ++open_[i], ++begin[j + 2]; });
        for (std::int64_t i = 0; i < n_; ++i) begin[i + 2] = static_cast<Int>(begin[i + 2] + begin[i + 1]);
        for (std::int64_t i = 0; i < n_; ++i)
            each_needed(i, [&](std::int64_t j) { followers_[begin[j + 1]++] = static_cast<Int>(i); });
        if (triangle_ == Triangle::both)
            for (std::int64_t i = 0; i < n_; ++i)
                rows_.each(i, [&](std::int64_t column, std::int64_t) {
                    if (column > i) ++open_[column];
                });
    }

    void push(Int i)
    {
        heap_[heap_size_++] = i;
        std::push_heap(heap_, heap_ + heap_size_, std::greater<Int>());
    }
    Int pop()
    {
        std::pop_heap(heap_, heap_ + heap_size_, std::greater<Int>());
        return heap_[--heap_size_];
    }
    // The rows that have waited longest: those that slice `slice` + 1 may have.
    Int take_waiting(std::int64_t slice)
    {
        for (int d = 1; d <= delay; ++d)
            if (std::int64_t& list = waiting_[(slice + d) % delay]; list >= 0)
                return static_cast<Int>(std::exchange(list, std::int64_t{link_[list]}));
        return -1;
    }

    // A row that row i, of this chunk, was the last it waited for is free here, unless another thread solves something
    // it needs in the same stage.
    void release(std::int64_t i, std::int64_t stage, int thread, std::int64_t slice, std::int64_t& later)
    {
        const std::int64_t mixed = stage * (threads_ + 1) + threads_, mine = stage * (threads_ + 1) + thread;
        each_follower(i, [&](std::int64_t j) {
            bool here = true;
            if (threads_ > 1) {
                const bool other = seen_[j] >= stage * (threads_ + 1) && seen_[j] != mine;
                seen_[j] = other ? mixed : mine;
                here = !other;
            }
            if (--open_[j] != 0) return;
            if (!here) {
                next_pool_[later++] = static_cast<Int>(j);
                return;
            }
            std::int64_t& list = waiting_[slice % delay];
            link_[j] = static_cast<Int>(list);
            list = j;
        });
    }

    // Returns its work.
    std::int64_t chunk(std::int64_t stage, int thread, std::int64_t& later)
    {
        schedule_.chunk_begin[schedule_.chunks++] = schedule_.slices;
        std::fill(waiting_, waiting_ + delay, std::int64_t{-1});
        std::int64_t work = 0;
        for (std::int64_t slice = 0; threads_ == 1 || work < work_of_chunk; ++slice) {
            if (lanes() + slice_height > static_cast<double>(capacity_)) break; // run() sees that it is useless
            Int* const lane = schedule_.order + schedule_.slices * slice_height;
            // Those that became free `delay` slices ago.
            for (std::int64_t i = std::exchange(waiting_[slice % delay], std::int64_t{-1}); i >= 0; i = link_[i])
                push(static_cast<Int>(i));
            int count = 0;
            for (; count < slice_height; ++count) {
                const Int i = heap_size_ > 0 ? pop() : take_waiting(slice);
                if (i < 0) break;
                lane[count] = i;
            }
            if (count == 0) break;
            for (int l = 0; l < count; ++l) {
                const std::int64_t row = row_of(lane[l]);
                release(lane[l], stage, thread, slice, later);
                work += rows_.last[row] - rows_.first[row] + 2;
                lane[l] = static_cast<Int>(row);
            }
            for (int l = count; l < slice_height; ++l) lane[l] = lane[0];
            ++schedule_.slices;
            solved_ += count;
        }
        while (heap_size_ > 0) next_pool_[later++] = heap_[--heap_size_];
        for (Int i; (i = take_waiting(0)) >= 0;) next_pool_[later++] = i;
        work_ += work;
        return work;
    }
};

} // namespace

template <class Int>
Schedule<Int>::~Schedule()
{
    ork_serv_free(order);
    ork_serv_free(chunk_begin);
}

template <class Int>
Found find_schedule(const SolveRows<Int>& rows, Triangle triangle, int threads, Schedule<Int>& schedule)
{
    return Scheduler<Int>(rows, triangle, threads, schedule).run();
}

template struct Schedule<std::int32_t>;
template struct Schedule<std::int64_t>;
template Found find_schedule(const SolveRows<std::int32_t>&, Triangle, int, Schedule<std::int32_t>&);
template Found find_schedule(const SolveRows<std::int64_t>&, Triangle, int, Schedule<std::int64_t>&);

} // namespace ork::sparse
