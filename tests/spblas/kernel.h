// SPDX-License-Identifier: MIT
// A member with a matrix in its arrays, format and integer width erased: what a test calls.
#pragma once

#include <memory>

#include "spblas/member.h"
#include "spblas/storage.h"

namespace ork::test {

// Sizes and ranges as the member takes them: blocks, and `first`, `last` 1-based and inclusive.
template <class T>
class Kernel {
public:
    virtual ~Kernel() = default;
    virtual bool found() const = 0;
    // `size` is the length of y; dia takes both.
    virtual void mvout(std::int64_t first, std::int64_t last, std::int64_t size, std::int64_t columns, T alpha,
                       const T* x, T* y, T beta) const = 0;
    virtual void mmout(std::int64_t first, std::int64_t last, std::int64_t m, std::int64_t n, T alpha, const T* b,
                       std::int64_t ldb, T* c, std::int64_t ldc, T beta) const = 0;
    virtual void svout(std::int64_t m, T* y) const = 0;
    virtual void smout(std::int64_t first, std::int64_t last, std::int64_t m, T* c, std::int64_t ldc) const = 0;
};

namespace detail {

template <Format format, class Int, class T>
class KernelOf final : public Kernel<T> {
    using Call = spblas::Calls<format, Int, T>;

public:
    KernelOf(const std::string& name, bool parallel, const Arrays<T>& arrays, const Arrangement& how)
        : address_(member<void(), Int, T>(name)), parallel_(parallel), stored_(arrays, how)
    {
    }

    bool found() const override { return address_ != nullptr; }

    void mvout(std::int64_t first, std::int64_t last, std::int64_t size, std::int64_t columns, T alpha, const T* x,
               T* y, T beta) const override
    {
        const Int f = Int(first), l = Int(last), m = Int(size), n = Int(columns);
        const auto matrix = std::tuple_cat(std::tuple(&alpha), stored_.template arguments<format>(),
                                           std::tuple(x, y, static_cast<const T*>(&beta)));
        if (!parallel_)
            call<typename Call::MvoutSeq>(std::tuple(&m, nullptr), matrix);
        else if constexpr (format == Format::dia)
            call<typename Call::MvoutPar>(std::tuple(&f, &l, nullptr, &m, &n), matrix);
        else
            call<typename Call::MvoutPar>(std::tuple(&f, &l, nullptr, &m), matrix);
    }

    void mmout(std::int64_t first, std::int64_t last, std::int64_t rows, std::int64_t columns, T alpha, const T* b,
               std::int64_t ldb, T* c, std::int64_t ldc, T beta) const override
    {
        const Int f = Int(first), l = Int(last), m = Int(rows), n = Int(columns), lb = Int(ldb), lc = Int(ldc);
        const auto matrix = std::tuple_cat(std::tuple(&alpha), stored_.template arguments<format>(),
                                           std::tuple(b, &lb, c, &lc, static_cast<const T*>(&beta)));
        if (parallel_)
            call<typename Call::MmoutPar>(std::tuple(&f, &l, &m, &n, nullptr), matrix);
        else
            call<typename Call::MmoutSeq>(std::tuple(&m, &l, nullptr), matrix);
    }

    void svout(std::int64_t rows, T* y) const override
    {
        const Int m = Int(rows);
        call<typename Call::SvoutSeq>(std::tuple(&m, nullptr), stored_.template arguments<format>(), std::tuple(y));
    }

    void smout(std::int64_t first, std::int64_t last, std::int64_t rows, T* c, std::int64_t ldc) const override
    {
        const Int f = Int(first), l = Int(last), m = Int(rows), lc = Int(ldc);
        call<typename Call::SmoutPar>(std::tuple(&f, &l, &m, nullptr), stored_.template arguments<format>(),
                                      std::tuple(c, &lc));
    }

private:
    template <class Signature, class... Tuples>
    void call(const Tuples&... tuples) const
    {
        std::apply(reinterpret_cast<Signature*>(address_), std::tuple_cat(tuples...));
    }

    void (*address_)();
    bool parallel_;
    Stored<Int, T> stored_;
};

template <class Int, class T>
std::unique_ptr<Kernel<T>> kernel_of(Format format, const std::string& name, bool parallel, const Arrays<T>& arrays,
                                     const Arrangement& how)
{
    switch (format) {
    case Format::csr:
        return std::make_unique<KernelOf<Format::csr, Int, T>>(name, parallel, arrays, how);
    case Format::coo:
        return std::make_unique<KernelOf<Format::coo, Int, T>>(name, parallel, arrays, how);
    case Format::bsr:
        return std::make_unique<KernelOf<Format::bsr, Int, T>>(name, parallel, arrays, how);
    case Format::bsc:
        return std::make_unique<KernelOf<Format::bsc, Int, T>>(name, parallel, arrays, how);
    case Format::dia:
        return std::make_unique<KernelOf<Format::dia, Int, T>>(name, parallel, arrays, how);
    default:
        return std::make_unique<KernelOf<Format::sky, Int, T>>(name, parallel, arrays, how);
    }
}

} // namespace detail

template <class Int, class T>
std::unique_ptr<Kernel<T>> kernel(Format format, Routine routine, Shape s, const Sparse<T>& a, const Arrangement& how)
{
    return detail::kernel_of<Int, T>(format, name_of(format, routine, s), is_parallel(routine, s),
                                     arrange(format, a, how), how);
}

} // namespace ork::test
