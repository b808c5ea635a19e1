// SPDX-License-Identifier: MIT
// Arrays beside inaccessible pages: a read or write one byte past the guarded side ends the process with SIGSEGV, and
// the bytes that share the array's pages carry a pattern, so stray writes on the other side show as well.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

namespace ork::test {

// Which side of the array touches an inaccessible page. The other side is page-bound too, but not flush.
enum class Guard { end, begin };
inline constexpr Guard both_guards[] = {Guard::end, Guard::begin};

class GuardedBytes {
public:
    // `offset` moves the array that many bytes away from the guarded page, to choose its alignment: the begin of a
    // Guard::begin array is `offset` past a page boundary, the end of a Guard::end array `offset` before one.
    GuardedBytes(std::size_t bytes, Guard side, std::size_t offset = 0);
    ~GuardedBytes();
    GuardedBytes(GuardedBytes&&) noexcept;
    GuardedBytes& operator=(GuardedBytes&&) = delete;

    std::byte* data() const { return data_; }
    std::size_t size() const { return bytes_; }

    // From here on a write to the array or its pages ends the process; writable() lifts it.
    void read_only();
    void writable();

    // Takes the present content as what unchanged_except() compares with. The constructor has done it once.
    void remember();
    // True when every byte of the pages is as remembered, but those for which may_change says so (position in the
    // array).
    template <class MayChange>
    testing::AssertionResult unchanged_except(MayChange&& may_change) const;
    testing::AssertionResult unchanged() const
    {
        return unchanged_except([](std::size_t) { return false; });
    }
    // True when no byte beside the array has changed, whatever became of the array itself.
    testing::AssertionResult unchanged_outside() const
    {
        return unchanged_except([](std::size_t) { return true; });
    }

private:
    std::byte* mapping_ = nullptr;
    std::size_t mapped_ = 0; // bytes, the two guard pages included
    std::byte* pages_ = nullptr;
    std::size_t accessible_ = 0;
    std::byte* data_ = nullptr;
    std::size_t bytes_ = 0;
    std::vector<std::byte> remembered_; // of all accessible pages
};

template <class MayChange>
testing::AssertionResult GuardedBytes::unchanged_except(MayChange&& may_change) const
{
    const std::ptrdiff_t begin = data_ - pages_;
    for (std::size_t i = 0; i < accessible_; ++i) {
        if (pages_[i] == remembered_[i]) continue;
        const std::ptrdiff_t position = static_cast<std::ptrdiff_t>(i) - begin;
        const bool inside = position >= 0 && position < static_cast<std::ptrdiff_t>(bytes_);
        if (inside && may_change(static_cast<std::size_t>(position))) continue;
        return testing::AssertionFailure()
               << "byte " << position << " of an array of " << bytes_ << " bytes changed from "
               << static_cast<int>(remembered_[i]) << " to " << static_cast<int>(pages_[i]);
    }
    return testing::AssertionSuccess();
}

// `count` elements, guarded. The elements start out as the fill pattern (quiet NaN for floating-point types).
template <class T>
class Guarded {
    static_assert(std::is_trivially_copyable_v<T>);

public:
    explicit Guarded(std::int64_t count, Guard side = Guard::end, std::size_t offset = 0)
        : bytes_(static_cast<std::size_t>(count < 0 ? 0 : count) * sizeof(T), side, offset)
    {
    }
    Guarded(const std::vector<T>& values, Guard side = Guard::end, std::size_t offset = 0)
        : Guarded(static_cast<std::int64_t>(values.size()), side, offset)
    {
        for (std::size_t i = 0; i < values.size(); ++i) data()[i] = values[i];
        remember();
    }

    T* data() const { return reinterpret_cast<T*>(bytes_.data()); }
    std::int64_t size() const { return static_cast<std::int64_t>(bytes_.size() / sizeof(T)); }
    T& operator[](std::int64_t i) const { return data()[i]; }
    std::span<T> span() const { return {data(), static_cast<std::size_t>(size())}; }
    std::vector<T> values() const { return {data(), data() + size()}; }

    void read_only() { bytes_.read_only(); }
    void writable() { bytes_.writable(); }
    void remember() { bytes_.remember(); }

    // Only elements with may_change(index) may differ from what was remembered, and nothing beside the array.
    template <class MayChange>
    testing::AssertionResult unchanged_except(MayChange&& may_change) const
    {
        return bytes_.unchanged_except(
            [&](std::size_t byte) { return may_change(static_cast<std::int64_t>(byte / sizeof(T))); });
    }
    testing::AssertionResult unchanged() const { return bytes_.unchanged(); }
    testing::AssertionResult unchanged_outside() const { return bytes_.unchanged_outside(); }

private:
    GuardedBytes bytes_;
};

} // namespace ork::test
