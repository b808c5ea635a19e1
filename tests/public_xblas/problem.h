// SPDX-License-Identifier: MIT
// The routines of the table, callable through each binding, and problems of any shape for them.
#pragma once

#include <algorithm>
#include <complex>
#include <cstring>
#include <dlfcn.h>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "ork/xblas.h"
#include "support/random.h"
#include "support/scalar.h"
#include "xblas/call.h"

namespace ork::test {

using xblas::Argument, xblas::Call, xblas::Form, xblas::Kind;
using Int64 = std::int64_t;

// What was reported through this program's xerbla_ and xerbla_64_ since the last call: "xerbla_ BLAS_dgemv_x 3\n".
std::string take_reports();

struct Binding {
    const char *prefix, *suffix;
    bool c, wide;
};
inline constexpr Binding bindings[] = {{"BLAS_", "", true, false},
                                       {"BLAS_", "_64", true, true},
                                       {"blas_", "_", false, false},
                                       {"blas_", "_64_", false, true}};

template <class T, const Argument& argument, class Width>
auto c_value(const Call& call)
{
    if constexpr (argument.kind == Kind::trans)
        return static_cast<blas_trans_type>(call.option);
    else if constexpr (argument.kind == Kind::uplo)
        return static_cast<blas_uplo_type>(call.option);
    else if constexpr (argument.kind == Kind::prec)
        return static_cast<blas_prec_type>(call.prec);
    else if constexpr (argument.is_number())
        return static_cast<Width>(call.*argument.number);
    else if constexpr (argument.kind == Kind::output)
        return call.y;
    else if constexpr (argument.kind == Kind::scalar && !is_complex<T>)
        return *static_cast<const T*>(call.*argument.address);
    else
        return call.*argument.address;
}

template <const Argument& argument, class Width>
auto fortran_value(const Call& call)
{
    if constexpr (argument.is_number())
        return static_cast<Width>(call.*argument.number);
    else if constexpr (argument.kind == Kind::output)
        return static_cast<const void*>(call.y);
    else
        return call.*argument.address;
}

template <class T, const auto& shape, class Width>
void make_call(void* routine, bool c, const Call& call)
{
    [&]<std::size_t... i>(std::index_sequence<i...>)
    {
        if (c)
            return reinterpret_cast<void (*)(blas_order_type, decltype(c_value<T, shape[i], Width>(call))...)>(routine)(
                static_cast<blas_order_type>(call.order), c_value<T, shape[i], Width>(call)...);
        const std::tuple held(fortran_value<shape[i], Width>(call)...);
        const auto address = [](const auto& value) -> const void* {
            if constexpr (std::is_pointer_v<std::remove_cvref_t<decltype(value)>>)
                return value;
            else
                return &value;
        };
        reinterpret_cast<void (*)(decltype(address(std::get<i>(held)))...)>(routine)(address(std::get<i>(held))...);
    }
    (std::make_index_sequence<std::size(shape)>());
}

template <class T>
struct Member {
    std::string name; // dgemv_x
    Form form;
    bool two, hermitian; // two: x = head + tail
    void (*narrow)(void*, bool, const Call&);
    void (*wide)(void*, bool, const Call&);

    std::string stem() const { return name.substr(1); }
    void run(const Call& call, const Binding& binding) const
    {
        const std::string symbol = binding.prefix + name + binding.suffix;
        void* routine = dlsym(RTLD_DEFAULT, symbol.c_str());
        if (routine == nullptr) return void(ADD_FAILURE() << "no export " << symbol);
        (binding.wide ? wide : narrow)(routine, binding.c, call);
    }
};

template <class T>
const std::vector<Member<T>>& members()
{
    static const std::vector<Member<T>> list = [] {
        std::vector<Member<T>> all;
        const auto add = [&]<class U, const auto & shape>(const std::string& name)
        {
            if constexpr (std::is_same_v<T, U>) {
                const bool band = name.substr(1, 4) == "gbmv", dense = name.substr(1, 4) == "gemv";
                all.push_back({name,
                               band    ? Form::band
                               : dense ? Form::dense
                                       : Form::triangle,
                               name[5] == '2', name[1] == 'h', make_call<U, shape, std::int32_t>,
                               make_call<U, shape, std::int64_t>});
            }
        };
#define ROUTINE(n, routine, U, shape) add.template operator()<U, xblas::shapes::shape>(#routine);
#include "xblas/routines.inc"
        return all;
    }();
    return list;
}

// A legal call and what it points to. Elements of the matrix that the routine shouldn't read are NaN, and so are gaps
// between elements of vectors.
template <class T>
struct Problem {
    Call call;
    std::vector<T> a, x, tail, y;
    T alpha = some<T>(1, 0), beta = some<T>(0, 0);

    Problem(const Member<T>& member, Int64 m, Int64 n, Int64 kl, Int64 ku, Int64 order, Int64 option, Int64 incx = 1,
            Int64 incy = 1, std::uint64_t seed = 1)
        : member_(&member), random_(seed)
    {
        const bool triangle = member.form == Form::triangle, band = member.form == Form::band;
        call.order = order, call.option = option;
        call.m = triangle ? n : m, call.n = n;
        call.kl = band ? kl : 0, call.ku = band ? ku : 0;
        call.incx = incx, call.incy = incy, call.prec = blas_prec_extra;
        const bool by_columns = order == blas_colmajor;
        call.lda = (band ? kl + ku + 1 : by_columns ? call.m : call.n) + 2;
        a.assign(static_cast<std::size_t>(call.lda * (by_columns ? call.n : call.m)), nan());
        for (Int64 i = 0; i < call.m; ++i)
            for (Int64 j = 0; j < call.n; ++j)
                if (is_stored(i, j)) a[place(i, j)] = random_.template spread<T>(20);
        x = vector(inputs(), incx);
        tail = vector(inputs(), incx);
        for (T& t : tail) t *= std::numeric_limits<Real<T>>::epsilon();
        y = vector(outputs(), incy);
    }
    bool is_plain() const { return member_->form == Form::triangle || call.option == blas_no_trans; }
    Int64 inputs() const { return is_plain() ? call.n : call.m; }
    Int64 outputs() const { return is_plain() ? call.m : call.n; }

    // Points the call to this object's own members.
    const Call& made()
    {
        call.alpha = &alpha, call.beta = &beta, call.a = a.data(), call.x = x.data(), call.tail = tail.data();
        call.y = y.data();
        return call;
    }
    void run(const Binding& binding) { member_->run(made(), binding); }

    T& output(Int64 i) { return y[position(i, outputs(), call.incy)]; }

    // alpha op(A) x + beta y of now for each output, and the sum of the magnitudes in it.
    struct Expected {
        Wide<quad> value;
        quad size;
    };
    std::vector<Expected> expected()
    {
        std::vector<Expected> all;
        for (Int64 i = 0; i < outputs(); ++i) {
            Wide<quad> sum, result;
            quad size = 0;
            for (Int64 j = 0; j < inputs(); ++j)
                for (const auto* v : {&x, &tail}) {
                    if (v == &tail && !member_->two) continue;
                    const auto term = multiply<T>(element(i, j), Wide<quad>((*v)[position(j, inputs(), call.incx)]));
                    sum += term;
                    size += magnitude(term);
                }
            result = multiply<T>(Wide<quad>(alpha), sum);
            size *= magnitude(Wide<quad>(alpha));
            if (beta != T{}) {
                const auto term = multiply<T>(Wide<quad>(beta), Wide<quad>(output(i)));
                result += term;
                size += magnitude(term);
            }
            all.push_back({result, size});
        }
        return all;
    }

private:
    static T nan() { return some<T>(NAN, NAN); }
    static std::size_t position(Int64 i, Int64 length, Int64 inc)
    {
        return static_cast<std::size_t>(inc > 0 ? i * inc : (i + 1 - length) * inc);
    }
    std::vector<T> vector(Int64 length, Int64 inc)
    {
        std::vector<T> values(static_cast<std::size_t>((length - 1) * std::abs(inc) + 1), nan());
        for (Int64 i = 0; i < length; ++i) values[position(i, length, inc)] = random_.template spread<T>(20);
        return values;
    }
    bool is_stored(Int64 i, Int64 j) const
    {
        if (member_->form == Form::triangle) return call.option == blas_upper ? i <= j : i >= j;
        return member_->form == Form::dense || (i - j <= call.kl && j - i <= call.ku);
    }
    std::size_t place(Int64 i, Int64 j) const
    {
        const bool by_columns = call.order == blas_colmajor;
        if (member_->form == Form::band)
            return static_cast<std::size_t>(by_columns ? call.ku + i - j + j * call.lda
                                                       : call.kl + j - i + i * call.lda);
        return static_cast<std::size_t>(by_columns ? i + j * call.lda : j + i * call.lda);
    }
    // Of op(A).
    Wide<quad> element(Int64 i, Int64 j) const
    {
        if (member_->form == Form::triangle) {
            const Wide<quad> e = is_stored(i, j) ? a[place(i, j)] : a[place(j, i)];
            if (!member_->hermitian) return e;
            return i == j ? Wide<quad>(e.re) : is_stored(i, j) ? e : conj(e);
        }
        if (!is_plain()) std::swap(i, j);
        if (!is_stored(i, j)) return {};
        const Wide<quad> e = a[place(i, j)];
        return call.option == blas_conj_trans && is_complex<T> ? conj(e) : e;
    }

    const Member<T>* member_;
    Random random_;
};

// Options, orders and increments of a member's calls.
template <class T>
std::vector<Int64> options(const Member<T>& member)
{
    if (member.form == Form::triangle) return {blas_upper, blas_lower};
    return {blas_no_trans, blas_trans, blas_conj_trans};
}

using Precisions = testing::Types<float, double, std::complex<float>, std::complex<double>>;
struct PrecisionNames {
    template <class T>
    static std::string GetName(int)
    {
        return precision_letter<T>();
    }
};

} // namespace ork::test
