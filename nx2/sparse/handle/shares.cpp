// SPDX-License-Identifier: MIT
#include "sparse/shares.h"

#include <algorithm>

#include "frame/core_imports.h"

namespace ork::sparse {

template <class I>
Shares<I>::~Shares()
{
    ork_serv_free(work_);
}

template <class I>
bool Shares<I>::start(const Team* team, std::int64_t rows, const I* first, double products, std::int64_t work_bytes)
{
    // Below, waking a thread costs more than it takes over (as of products with vectors).
    constexpr double products_per_thread = 50'000;
    team_ = team, rows_ = rows, first_ = first;
    const double most = team != nullptr ? static_cast<double>(team->most) : 1;
    parts_ = static_cast<int>(std::max(1.0, std::min({most, products / products_per_thread, 1024.0})));
    shares_ = parts_ == 1 || first == nullptr ? parts_ : 4 * parts_;
    stride_ = (work_bytes + 127) / 64 * 64;
    work_ =
        static_cast<char*>(ork_serv_calloc(static_cast<std::size_t>(parts_), static_cast<std::size_t>(stride_), 16, 0));
    return work_ != nullptr;
}

template <class I>
void Shares<I>::run_all()
{
    next_ = 0;
    if (parts_ == 1) return run_part(0);
    team_->run(
        parts_, [](void* shares, int number) { static_cast<Shares<I>*>(shares)->run_part(number); }, this);
}

template <class I>
void Shares<I>::run_part(int number)
{
    for (;;) {
        const std::int64_t share = __atomic_fetch_add(&next_, 1, __ATOMIC_RELAXED);
        if (share >= shares_) return;
        const std::int64_t from = boundary(share), to = boundary(share + 1);
        if (from < to) body_(context_, static_cast<I>(from), static_cast<I>(to), work_ + number * stride_);
    }
}

template <class I>
std::int64_t Shares<I>::boundary(std::int64_t share) const
{
    if (share == 0) return 0;
    if (share == shares_) return rows_;
    const double wanted = before(rows_ - 1) * static_cast<double>(share) / static_cast<double>(shares_);
    std::int64_t low = 0, high = rows_;
    while (low < high) {
        const std::int64_t middle = low + (high - low) / 2;
        if (before(middle) < wanted)
            low = middle + 1;
        else
            high = middle;
    }
    return low;
}

// A row counts as one entry more than it has, for what it costs when it is empty.
template <class I>
double Shares<I>::before(std::int64_t row) const
{
    const std::int64_t entries = first_ != nullptr && row > 0 ? std::int64_t{first_[row]} - first_[0] : 0;
    return static_cast<double>(row + entries);
}

template class Shares<Int>;

} // namespace ork::sparse
