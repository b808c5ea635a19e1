// SPDX-License-Identifier: MIT
#include "sparse/schedule.h"

#include <algorithm>
#include <bit>
#include <utility>

#include "ork/abi/services.h"

namespace ork::sparse {
namespace {

constexpr int delay = 4;
// Work is counted in entries and two for each row. A stage ends with threads waiting for each other, some 200 ns; a
// chunk takes several microseconds, and in large matrices more, of which there are some hundred stages still.
constexpr std::int64_t least_work = 10'000, most_work = 40'000, chunks_of_most = 200;
// Slices are useless when they are less than two thirds full.
constexpr double most_lanes = 1.5;
// Threads are useless below this.
constexpr double least_speed_up = 1.4;

// A set of numbers that are taken out from the least on: bits, with a bit for each word of them above that is not 0,
// and so on. Four words are touched for 16 million numbers, where a heap has a dozen branches that nobody foresees.
class Ascending {
public:
    static std::int64_t words(std::int64_t n)
    {
        std::int64_t sum = 0;
        do sum += n = (n + 63) / 64;
        while (n > 1);
        return sum + 1;
    }
    // words(n) of memory that is 0.
    void use(std::uint64_t* memory, std::int64_t n)
    {
        levels_ = 0;
        do {
            level_[levels_++] = memory;
            n = (n + 63) / 64;
            memory += n;
        } while (n > 1);
    }
    void add(std::int64_t number)
    {
        for (int l = 0; l < levels_; ++l, number /= 64) {
            std::uint64_t& word = level_[l][number / 64];
            const bool known = word != 0;
            word |= std::uint64_t{1} << (number % 64);
            if (known) return;
        }
    }
    // -1 when there is none.
    std::int64_t take()
    {
        if (level_[levels_ - 1][0] == 0) return -1;
        std::int64_t number = 0;
        for (int l = levels_; l-- > 0;) number = number * 64 + std::countr_zero(level_[l][number]);
        for (std::int64_t l = 0, n = number; l < levels_; ++l, n /= 64)
            if ((level_[l][n / 64] &= ~(std::uint64_t{1} << (n % 64))) != 0) break;
        return number;
    }

private:
    std::uint64_t* level_[12]; // 64^11 is more than there are numbers
    int levels_ = 0;
};

// Numbers of rows here are those of the solve's direction: row 0 is solved first.
template <class Int>
class Scheduler {
public:
    Scheduler(const SolveRows<Int>& rows, Triangle triangle, int threads, Schedule<Int>& schedule)
        : rows_(rows), n_(rows.count), triangle_(triangle), threads_(threads), schedule_(schedule),
          work_of_chunk_(std::clamp((entries() + 2 * n_) / chunks_of_most, least_work, most_work))
    {
    }
    ~Scheduler() { ork_serv_free(memory_); }

    Found run()
    {
        if (!take_memory()) return Found::no_memory;
        find_followers();
        for (std::int64_t i = 0; i < n_; ++i)
            if (open_[i] == 0) next_.add(i);
        for (std::int64_t stage = 0; solved_ < n_; ++stage) {
            std::int64_t free = 0, longest = 0;
            for (std::int64_t i; (i = next_.take()) >= 0;) pool_[free++] = static_cast<Int>(i);
            for (int t = 0; t < threads_; ++t) {
                for (std::int64_t p = free * t / threads_; p < free * (t + 1) / threads_; ++p) free_.add(pool_[p]);
                longest = std::max(longest, chunk(stage, t));
                if (lanes() > most_lanes * static_cast<double>(n_) + 64) return Found::useless;
            }
            span_ += longest;
        }
        schedule_.chunk_begin[schedule_.chunks] = schedule_.slices;
        if (threads_ > 1 && static_cast<double>(work_) < least_speed_up * static_cast<double>(span_))
            return Found::useless;
        return Found::schedule;
    }

private:
    using Range = typename SolveRows<Int>::Range;
    const SolveRows<Int>& rows_;
    const std::int64_t n_;
    const Triangle triangle_;
    const int threads_;
    Schedule<Int>& schedule_;
    const std::int64_t work_of_chunk_;

    void* memory_ = nullptr;
    Int* open_; // how many entries wait for rows that are not solved
    Int *followers_, *followers_begin_;
    Ascending free_, next_;        // free for this chunk, and for the next stage
    Int *pool_, *link_;            // free at the beginning of the stage; those that wait, in lists
    std::int64_t* seen_ = nullptr; // threads: the stage and thread that last solved what a row waits for
    std::int64_t solved_ = 0, work_ = 0, span_ = 0, capacity_;
    std::int64_t waiting_[delay];

    std::int64_t entries() const { return n_ > 0 ? rows_.last[n_ - 1] - rows_.first[0] : 0; } // at least the triangle's
    double lanes() const { return static_cast<double>(schedule_.slices) * slice_height; }
    std::int64_t row_of(std::int64_t i) const { return triangle_ == Triangle::upper ? n_ - 1 - i : i; }
    std::int64_t needed(std::int64_t k) const { return row_of(rows_.column(k)); }
    // The entries that name what row i of the triangle needs.
    Range needs(std::int64_t i) const { return rows_.side(triangle_ == Triangle::upper, row_of(i)); }
    // Of `both`: those that name rows which must not be solved before row i.
    Range precedes(std::int64_t i) const { return triangle_ == Triangle::both ? rows_.upper(i) : Range{0, 0}; }

    bool take_memory()
    {
        capacity_ = n_ + n_ / 2 + 64 * std::int64_t{1 + threads_} + slice_height * most_work;
        const std::int64_t wide = threads_ > 1 ? n_ : 0, words = Ascending::words(n_);
        const auto size = [](std::int64_t count, std::size_t element) {
            return static_cast<std::size_t>(count) * element;
        };
        memory_ = ork_serv_malloc(size(wide + 2 * words, 8) + size(entries() + 4 * n_ + 2, sizeof(Int)), 64);
        schedule_.order = static_cast<Int*>(ork_serv_malloc(size(capacity_, sizeof(Int)), 64));
        const std::int64_t chunks = threads_ > 1 ? n_ * threads_ : 1; // every stage solves a row
        schedule_.chunk_begin = static_cast<std::int64_t*>(ork_serv_malloc(size(chunks + 1, 8), 64));
        if (memory_ == nullptr || schedule_.order == nullptr || schedule_.chunk_begin == nullptr) return false;
        auto* const bits = static_cast<std::uint64_t*>(memory_);
        std::fill(bits, bits + 2 * words, std::uint64_t{0});
        free_.use(bits, n_), next_.use(bits + words, n_);
        seen_ = reinterpret_cast<std::int64_t*>(bits + 2 * words);
        std::fill(seen_, seen_ + wide, std::int64_t{-1});
        Int* at = reinterpret_cast<Int*>(seen_ + wide);
        const auto take = [&](std::int64_t count) { return std::exchange(at, at + count); };
        followers_begin_ = take(n_ + 2);
        open_ = take(n_), pool_ = take(n_), link_ = take(n_), followers_ = take(entries());
        schedule_.threads = threads_;
        return true;
    }

    void find_followers()
    {
        Int* const begin = followers_begin_; // one place later until the rows are filled in
        std::fill(begin, begin + n_ + 2, Int{0});
        for (std::int64_t i = 0; i < n_; ++i) {
            const Range range = needs(i);
            open_[i] = static_cast<Int>(range.size());
            for (std::int64_t k = range.begin; k < range.end; ++k) ++begin[needed(k) + 2];
        }
        for (std::int64_t i = 0; i < n_; ++i) begin[i + 2] = static_cast<Int>(begin[i + 2] + begin[i + 1]);
        for (std::int64_t i = 0; i < n_; ++i) {
            const Range range = needs(i), before = precedes(i);
            for (std::int64_t k = range.begin; k < range.end; ++k)
                followers_[begin[needed(k) + 1]++] = static_cast<Int>(i);
            for (std::int64_t k = before.begin; k < before.end; ++k) ++open_[rows_.column(k)];
        }
    }

    // The row that has waited longest.
    std::int64_t take_waiting(std::int64_t slice)
    {
        for (int d = 1; d <= delay; ++d)
            if (std::int64_t& list = waiting_[(slice + d) % delay]; list >= 0)
                return std::exchange(list, std::int64_t{link_[list]});
        return -1;
    }

    // Row j has one entry less to wait for. One that waits no longer is free in this chunk, unless another thread
    // solves something it needs in the same stage.
    void notify(std::int64_t j, std::int64_t stage, int thread, std::int64_t& list)
    {
        bool here = true;
        if (threads_ > 1) {
            const std::int64_t start = stage * (threads_ + 1), mine = start + thread, mixed = start + threads_;
            here = seen_[j] < start || seen_[j] == mine;
            seen_[j] = here ? mine : mixed;
        }
        if (--open_[j] != 0) return;
        if (here)
            link_[j] = static_cast<Int>(std::exchange(list, j));
        else
            next_.add(j);
    }

    // Returns its work.
    std::int64_t chunk(std::int64_t stage, int thread)
    {
        schedule_.chunk_begin[schedule_.chunks++] = schedule_.slices;
        std::fill(waiting_, waiting_ + delay, std::int64_t{-1});
        std::int64_t work = 0;
        for (std::int64_t slice = 0; threads_ == 1 || work < work_of_chunk_; ++slice) {
            if (lanes() + slice_height > static_cast<double>(capacity_)) break; // run() sees that it is useless
            Int* const lane = schedule_.order + schedule_.slices * slice_height;
            std::int64_t& list = waiting_[slice % delay];
            for (std::int64_t i = std::exchange(list, std::int64_t{-1}); i >= 0; i = link_[i]) free_.add(i);
            int count = 0;
            for (; count < slice_height; ++count) {
                std::int64_t i = free_.take();
                if (i < 0) i = take_waiting(slice);
                if (i < 0) break;
                lane[count] = static_cast<Int>(i);
            }
            if (count == 0) break;
            for (int l = 0; l < count; ++l) {
                const std::int64_t i = lane[l], row = row_of(i);
                for (std::int64_t k = followers_begin_[i]; k < followers_begin_[i + 1]; ++k)
                    notify(followers_[k], stage, thread, list);
                const Range before = precedes(i);
                for (std::int64_t k = before.begin; k < before.end; ++k) notify(rows_.column(k), stage, thread, list);
                work += rows_.last[row] - rows_.first[row] + 2;
                lane[l] = static_cast<Int>(row);
            }
            for (int l = count; l < slice_height; ++l) lane[l] = lane[0];
            ++schedule_.slices;
            solved_ += count;
        }
        for (std::int64_t i; (i = free_.take()) >= 0;) next_.add(i);
        for (std::int64_t i; (i = take_waiting(0)) >= 0;) next_.add(i);
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
