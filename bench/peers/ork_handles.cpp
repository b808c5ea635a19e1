// SPDX-License-Identifier: MIT
// The same through handles, hinted and optimised. Its work is not timed, but how long optimize took is kept.
#include <dlfcn.h>
#include <stdexcept>
#include <string>
#include <vector>

#include "ork/sparse.h"
#include "peers/measure.h"
#include "peers/opening.h"

namespace ork::peers {
namespace {

using Routine = SparseCase::Routine;

// Names of one precision and width.
template <class Int, class T>
struct Types;
template <>
struct Types<int32_t, double> {
    static constexpr const char *letter = "d", *width = "i4";
    using Create = decltype(ork_sparse_d_create_csr_i4);
    using Mv = decltype(ork_sparse_d_mv);
    using Dotmv = decltype(ork_sparse_d_dotmv);
    using Mm = decltype(ork_sparse_d_mm);
    using Sv = decltype(ork_sparse_d_sv);
    using Symgs = decltype(ork_sparse_d_symgs);
};
template <>
struct Types<int64_t, double> : Types<int32_t, double> {
    static constexpr const char* width = "i8";
    using Create = decltype(ork_sparse_d_create_csr_i8);
};
template <>
struct Types<int32_t, float> {
    static constexpr const char *letter = "s", *width = "i4";
    using Create = decltype(ork_sparse_s_create_csr_i4);
    using Mv = decltype(ork_sparse_s_mv);
    using Dotmv = decltype(ork_sparse_s_dotmv);
    using Mm = decltype(ork_sparse_s_mm);
    using Sv = decltype(ork_sparse_s_sv);
    using Symgs = decltype(ork_sparse_s_symgs);
};
template <>
struct Types<int64_t, float> : Types<int32_t, float> {
    static constexpr const char* width = "i8";
    using Create = decltype(ork_sparse_s_create_csr_i8);
};

template <class Int, class T>
class Handle : public SparseOperation {
public:
    using N = Types<Int, T>;

    Handle(void* library, const SparseOperands& o, const Int* col, const Int* ptr) : library_(library), o_(o)
    {
        constexpr const char* names[] = {"mv", "mm", "sv", "dotmv", "symgs"};
        const std::string prefix = std::string("ork_sparse_") + N::letter + "_";
        const auto create = find<typename N::Create>((prefix + "create_csr_" + N::width).c_str());
        routine_ = dlsym(library, (prefix + names[static_cast<int>(o.what.routine)]).c_str());
        if (create == nullptr || routine_ == nullptr) return;
        std::vector<double> seconds; // the first analysis of a process also opens kernels and gets new memory
        for (int repeat = 0; repeat < 3; ++repeat) {
            if (a_ != nullptr) find<decltype(ork_sparse_destroy)>("ork_sparse_destroy")(a_);
            a_ = nullptr;
            require(create(&a_, ORK_SPBLAS_BASE_0, o.m, o.n, ptr, ptr + 1, col, static_cast<const T*>(o.val)));
            if (o.what.calls == 0) return;
            require(hint());
            const double start = now(Clock::processor); // of all threads together
            require(find<decltype(ork_sparse_optimize)>("ork_sparse_optimize")(a_));
            seconds.push_back(now(Clock::processor) - start);
        }
        seconds_ = median(seconds);
    }
    ~Handle() override
    {
        if (a_) find<decltype(ork_sparse_destroy)>("ork_sparse_destroy")(a_);
    }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    bool ready() const { return a_ != nullptr; }
    Analysis analysis() const override
    {
        const ork_sparse_description d = describe();
        return {seconds_, d.layout, d.padding, d.bytes};
    }
    std::string storage() const override
    {
        std::string text = describe().text;
        while (!text.empty() && text.back() == '\n') text.pop_back();
        for (size_t at = 0; (at = text.find('\n', at)) != std::string::npos; at += 2) text.replace(at, 1, "; ");
        return text;
    }
    void run() override
    {
        const auto* x = static_cast<const T*>(o_.x);
        auto* y = static_cast<T*>(o_.y);
        switch (o_.what.routine) {
        case Routine::mv:
            reinterpret_cast<typename N::Mv*>(routine_)(operation(), 1, a_, kind(), x, 0, y);
            return;
        case Routine::dotmv:
            reinterpret_cast<typename N::Dotmv*>(routine_)(operation(), 1, a_, kind(), x, 0, y,
                                                           static_cast<T*>(o_.dot));
            return;
        case Routine::mm:
            reinterpret_cast<typename N::Mm*>(routine_)(operation(), 1, a_, kind(), layout(), x, o_.what.nrhs, o_.ldx,
                                                        0, y, o_.ldy);
            return;
        case Routine::sv:
            reinterpret_cast<typename N::Sv*>(routine_)(operation(), 1, a_, kind(), x, y);
            return;
        case Routine::symgs:
            reinterpret_cast<typename N::Symgs*>(routine_)(operation(), a_, kind(), 1, x, y);
        }
    }

private:
    template <class Function>
    Function* find(const char* name) const
    {
        return reinterpret_cast<Function*>(dlsym(library_, name));
    }
    ork_sparse_description describe() const
    {
        ork_sparse_description d{};
        find<decltype(ork_sparse_describe)>("ork_sparse_describe")(a_, &d);
        return d;
    }
    ork_spblas_operation operation() const { return o_.what.letter == 'T' ? ORK_SPBLAS_TRANS : ORK_SPBLAS_NO_TRANS; }
    ork_spblas_layout layout() const { return o_.what.letter == 'R' ? ORK_SPBLAS_ROW_MAJOR : ORK_SPBLAS_COL_MAJOR; }
    ork_sparse_kind kind() const
    {
        return {o_.what.routine == Routine::sv ? ORK_SPBLAS_TRIANGULAR
                : o_.what.letter == 'S'        ? ORK_SPBLAS_SYMMETRIC
                                               : ORK_SPBLAS_GENERAL,
                o_.what.letter == 'U' ? ORK_SPBLAS_UPPER : ORK_SPBLAS_LOWER, ORK_SPBLAS_NON_UNIT};
    }
    int64_t hint()
    {
        const int64_t calls = o_.what.calls;
        if (o_.what.routine == Routine::mm)
            return find<decltype(ork_sparse_set_mm_hint)>("ork_sparse_set_mm_hint")(a_, operation(), kind(), layout(),
                                                                                    o_.what.nrhs, calls);
        const char* name = o_.what.routine == Routine::mv      ? "ork_sparse_set_mv_hint"
                           : o_.what.routine == Routine::dotmv ? "ork_sparse_set_dotmv_hint"
                           : o_.what.routine == Routine::sv    ? "ork_sparse_set_sv_hint"
                                                               : "ork_sparse_set_symgs_hint";
        return find<decltype(ork_sparse_set_mv_hint)>(name)(a_, operation(), kind(), calls);
    }
    void require(int64_t status)
    {
        if (status == 0) return;
        const std::string text = find<decltype(ork_sparse_last_error)>("ork_sparse_last_error")()->text;
        if (a_) find<decltype(ork_sparse_destroy)>("ork_sparse_destroy")(a_);
        throw std::runtime_error(text);
    }

    void *library_, *routine_ = nullptr;
    SparseOperands o_;
    ork_sparse_matrix_t a_ = nullptr;
    double seconds_ = 0;
};

template <class Int, class T>
std::unique_ptr<SparseOperation> make(void* library, const SparseOperands& o, const Int* col, const Int* ptr)
{
    auto operation = std::make_unique<Handle<Int, T>>(library, o, col, ptr);
    if (!operation->ready()) return nullptr;
    return operation;
}

} // namespace

std::unique_ptr<SparseOperation> ork_handle(void* library, const SparseOperands& o)
{
    if (o.what.wide)
        return o.what.single ? make<int64_t, float>(library, o, o.col64, o.ptr64)
                             : make<int64_t, double>(library, o, o.col64, o.ptr64);
    return o.what.single ? make<int32_t, float>(library, o, o.col, o.ptr)
                         : make<int32_t, double>(library, o, o.col, o.ptr);
}

} // namespace ork::peers
