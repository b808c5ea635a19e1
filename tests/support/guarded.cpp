// SPDX-License-Identifier: MIT
#include "support/guarded.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>

namespace ork::test {

namespace {

// Every aligned group of these bytes is a quiet NaN as a float and as a double, so an unwritten element shows in sums.
constexpr std::byte fill_byte{0xff};

} // namespace

GuardedBytes::GuardedBytes(std::size_t bytes, Guard side, std::size_t offset) : bytes_(bytes)
{
    const std::size_t page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    accessible_ = (bytes + offset + page - 1) / page * page;
    if (accessible_ == 0) accessible_ = page;
    mapped_ = accessible_ + 2 * page;
    void* address = mmap(nullptr, mapped_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (address == MAP_FAILED) throw std::bad_alloc();
    mapping_ = static_cast<std::byte*>(address);
    pages_ = mapping_ + page;
    writable();
    std::memset(pages_, static_cast<int>(fill_byte), accessible_);
    data_ = side == Guard::begin ? pages_ + offset : pages_ + accessible_ - offset - bytes;
    remember();
}

GuardedBytes::GuardedBytes(GuardedBytes&& other) noexcept
    : mapping_(std::exchange(other.mapping_, nullptr)), mapped_(other.mapped_), pages_(other.pages_),
      accessible_(other.accessible_), data_(other.data_), bytes_(other.bytes_),
      remembered_(std::move(other.remembered_))
{
}

GuardedBytes::~GuardedBytes()
{
    if (mapping_ != nullptr) munmap(mapping_, mapped_);
}

void GuardedBytes::read_only()
{
    if (mprotect(pages_, accessible_, PROT_READ) != 0) std::abort();
}

void GuardedBytes::writable()
{
    if (mprotect(pages_, accessible_, PROT_READ | PROT_WRITE) != 0) std::abort();
}

void GuardedBytes::remember() { remembered_.assign(pages_, pages_ + accessible_); }

} // namespace ork::test
