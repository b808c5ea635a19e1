// SPDX-License-Identifier: MIT
// The kernels by name, one task with its arrays in guarded memory, and what it has to give.
#pragma once

#include <algorithm>
#include <cmath>
#include <dlfcn.h>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "conv/replaced_core.h"
#include "ork/abi/conv.h"
#include "support/compare.h"
#include "support/guarded.h"
#include "support/random.h"
#include "support/reference.h"

namespace ork::test {

using Int = std::int64_t;
using Ints = std::vector<std::int32_t>;

template <class Function>
Function* conv_kernel(const std::string& name)
{
    static void* library = dlopen(ORK_LIB_DIR "/libork_nx2.so", RTLD_LAZY | RTLD_LOCAL);
    void* address = library != nullptr ? dlsym(library, ("ork_conv_nx2_" + name).c_str()) : nullptr;
    if (address == nullptr) ADD_FAILURE() << "no export " << name;
    return reinterpret_cast<Function*>(address);
}

struct ConvKernels {
    using C = conv::Calls;
    C::newtaskx* newtaskx = conv_kernel<C::newtaskx>("newtaskx");
    C::newtask* newtask = conv_kernel<C::newtask>("newtask");
    C::edittask* edittask = conv_kernel<C::edittask>("edittask");
    C::exec* exec = conv_kernel<C::exec>("exec");
    C::execx* execx = conv_kernel<C::execx>("execx");
    C::copytask* copytask = conv_kernel<C::copytask>("copytask");
    C::deletetask* deletetask = conv_kernel<C::deletetask>("deletetask");
    C::method* method = conv_kernel<C::method>("method");
};
inline const ConvKernels& conv_kernels()
{
    static const ConvKernels kernels;
    return kernels;
}

inline const std::int32_t* or_null(const Ints& list) { return list.empty() ? nullptr : list.data(); }

// A task in numbers. Empty lists are not given.
struct Setup {
    Ints x, y, z = {}; // extents; by default z takes all that start and decimation leave
    std::int32_t job = ORK_CONV_CONVOLUTION, mode = ORK_CONV_DIRECT, internal = 0; // 0: the precision of the data
    Ints start = {}, decimation = {}, x_stride = {}, y_stride = {}, z_stride = {};

    std::size_t dims() const { return x.size(); }
    bool correlates() const { return job == ORK_CONV_CORRELATION; }
    Int first(std::size_t d) const { return !start.empty() ? start[d] : correlates() ? 1 - x[d] : 0; }
    Int step(std::size_t d) const { return decimation.empty() ? 1 : decimation[d]; }
    Ints outputs() const
    {
        Ints all = z;
        for (std::size_t d = 0; z.empty() && d < dims(); ++d) {
            const Int last = correlates() ? y[d] - 1 : x[d] + y[d] - 2;
            all.push_back(static_cast<std::int32_t>((last - first(d)) / step(d) + 1));
        }
        return all;
    }
    std::string describe() const
    {
        std::ostringstream text;
        const auto list = [&](const char* name, const Ints& numbers) {
            if (numbers.empty()) return;
            text << ' ' << name;
            for (const auto n : numbers) text << ' ' << n;
        };
        text << (correlates() ? "correlation" : "convolution") << ", mode " << mode << ", internal " << internal;
        list("x", x), list("y", y), list("z", outputs()), list("start", start), list("decimation", decimation);
        list("x stride", x_stride), list("y stride", y_stride), list("z stride", z_stride);
        return text.str();
    }
};

// Every index of these extents in turn, the first running fastest.
template <class Visit>
void for_each_index(const Ints& extents, Visit&& visit)
{
    std::vector<Int> index(extents.size());
    for (;;) {
        visit(index);
        std::size_t d = 0;
        while (d < extents.size() && ++index[d] == extents[d]) index[d++] = 0;
        if (d == extents.size()) return;
    }
}

// An array of these extents that ends, or begins, at an inaccessible page; element 0 stands where the strides want it.
template <class T>
struct Strided {
    Ints extents, strides;
    Int below = 0, above = 0; // of element 0
    Guarded<T> memory;

    Strided(const Ints& extents, const Ints& given, Guard side)
        : extents(extents), strides(given.empty() ? tight(extents) : given), below(reach(false)), above(reach(true)),
          memory(above - below + 1, side)
    {
    }
    static Ints tight(const Ints& extents)
    {
        Ints strides;
        for (std::int32_t stride = 1; const auto n : extents) strides.push_back(stride), stride *= n;
        return strides;
    }
    Int reach(bool up) const
    {
        Int sum = 0;
        for (std::size_t d = 0; d < extents.size(); ++d)
            if ((strides[d] > 0) == up) sum += Int{extents[d] - 1} * strides[d];
        return sum;
    }
    Int at(const std::vector<Int>& index) const // in memory
    {
        Int place = -below;
        for (std::size_t d = 0; d < extents.size(); ++d) place += index[d] * strides[d];
        return place;
    }
    T* zero() const { return memory.data() - below; }
    T& operator[](const std::vector<Int>& index) const { return memory[at(index)]; }
    void fill(std::uint64_t seed)
    {
        Random random(seed);
        for_each_index(extents, [&](const auto& index) { (*this)[index] = random.uniform<T>(); });
    }
};

struct Output {
    Expected<long double> sum;
    Int terms = 0;
};

template <class T>
struct Convolution {
    Setup setup;
    Strided<T> x, y, z;
    ork_conv_task* task = nullptr;

    explicit Convolution(const Setup& setup, Guard side = Guard::end)
        : setup(setup), x(setup.x, setup.x_stride, side), y(setup.y, setup.y_stride, side),
          z(setup.outputs(), setup.z_stride, side)
    {
        x.fill(1), y.fill(2);
        x.memory.read_only(), y.memory.read_only();
        const ConvKernels& call = conv_kernels();
        const std::int32_t precision = sizeof(Real<T>) == 8 ? ORK_CONV_DOUBLE : ORK_CONV_SINGLE;
        call.newtaskx(&task, setup.job, 0, setup.mode, is_complex<T> ? ORK_CONV_COMPLEX : ORK_CONV_REAL, precision,
                      static_cast<std::int32_t>(setup.dims()), setup.x.data(), setup.y.data(), z.extents.data(),
                      static_cast<std::int64_t>(reinterpret_cast<std::uintptr_t>(x.zero())), or_null(setup.x_stride));
        if (!setup.start.empty()) call.edittask(task, ORK_CONV_START, setup.start.data());
        if (!setup.decimation.empty()) call.edittask(task, ORK_CONV_DECIMATION, setup.decimation.data());
        if (setup.internal != 0) call.edittask(task, ORK_CONV_INTERNAL_PRECISION, &setup.internal);
    }
    ~Convolution() { conv_kernels().deletetask(&task); }
    Convolution(const Convolution&) = delete;

    // execx: of the x that the task was created with.
    std::int32_t exec(bool fixed_x = false)
    {
        const ConvKernels& call = conv_kernels();
        return fixed_x ? call.execx(task, y.zero(), or_null(setup.y_stride), z.zero(), or_null(setup.z_stride))
                       : call.exec(task, x.zero(), or_null(setup.x_stride), y.zero(), or_null(setup.y_stride), z.zero(),
                                   or_null(setup.z_stride));
    }

    // By the definition, in the order of for_each_index.
    std::vector<Output> expected() const
    {
        std::vector<Output> all;
        for_each_index(z.extents, [&](const std::vector<Int>& k) {
            Output output;
            std::vector<Int> from(k.size()), i(k.size()), j(k.size());
            Ints count(k.size());
            for (std::size_t d = 0; d < k.size(); ++d) {
                const Int m = setup.first(d) + k[d] * setup.step(d);
                from[d] = std::max<Int>(0, setup.correlates() ? -m : m - (setup.y[d] - 1));
                const Int to = std::min<Int>(setup.x[d] - 1, setup.correlates() ? setup.y[d] - 1 - m : m);
                count[d] = static_cast<std::int32_t>(to - from[d] + 1);
            }
            for_each_index(count, [&](const std::vector<Int>& index) {
                for (std::size_t d = 0; d < k.size(); ++d) {
                    const Int m = setup.first(d) + k[d] * setup.step(d);
                    i[d] = from[d] + index[d];
                    j[d] = setup.correlates() ? i[d] + m : m - i[d];
                }
                const Wide<long double> a(x[i]);
                output.sum.add(multiply<T>(setup.correlates() ? conj(a) : a, Wide<long double>(y[j])));
                ++output.terms;
            });
            all.push_back(output);
        });
        return all;
    }

    Real<T> epsilon() const { return std::numeric_limits<Real<T>>::epsilon(); }
    long double internal_epsilon() const
    {
        return setup.internal == ORK_CONV_DOUBLE ? std::numeric_limits<double>::epsilon() : epsilon();
    }

    // Whether every output is within bound(its sum), and nothing but outputs was written.
    template <class Bound>
    testing::AssertionResult is_within(Bound&& bound) const
    {
        const std::vector<Output> want = expected();
        std::vector<bool> output(static_cast<std::size_t>(z.memory.size()));
        std::ostringstream text;
        std::size_t number = 0;
        for_each_index(z.extents, [&](const std::vector<Int>& k) {
            const Output& sum = want[number++];
            output[static_cast<std::size_t>(z.at(k))] = true;
            const long double off = magnitude(Wide<long double>(z[k]) - sum.sum.value);
            if (!(off <= bound(sum)) && text.str().size() < 400)
                text << "\noutput " << number - 1 << ": " << show(z[k]) << ", off by " << static_cast<double>(off)
                     << " of " << static_cast<double>(bound(sum)) << ", " << sum.terms << " terms";
        });
        if (!text.str().empty()) return testing::AssertionFailure() << setup.describe() << text.str();
        return z.memory.unchanged_except([&](Int i) { return output[static_cast<std::size_t>(i)]; });
    }
    // Rounding errors of any order of summation, and of the result: half an epsilon for each operation on the way.
    testing::AssertionResult is_sum() const
    {
        return is_within([&](const Output& output) {
            return static_cast<long double>(output.terms + 3) * internal_epsilon() / 2 * output.sum.scale +
                   static_cast<long double>(epsilon()) / 2 * magnitude(output.sum.value);
        });
    }
    // The same for transforms, whose errors are proportional to the norms of x and y.
    testing::AssertionResult is_sum_by_transforms(long double epsilons) const
    {
        long double squares[2] = {};
        for_each_index(x.extents, [&](const auto& i) { squares[0] += std::norm(std::complex<long double>(x[i])); });
        for_each_index(y.extents, [&](const auto& i) { squares[1] += std::norm(std::complex<long double>(y[i])); });
        const long double size = std::sqrt(squares[0]) * std::sqrt(squares[1]);
        return is_within([&](const Output& output) {
            return epsilons * internal_epsilon() * size +
                   static_cast<long double>(epsilon()) * magnitude(output.sum.value);
        });
    }
};

} // namespace ork::test
