// SPDX-License-Identifier: MIT
// Calls of the public routines through every binding, and what they must do, index by index.
#pragma once

#include <array>
#include <complex>
#include <cstdint>
#include <dlfcn.h>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/random.h"
#include "support/scalar.h"

namespace ork::test {

using Int = std::int64_t;
using Precisions = testing::Types<float, double, std::complex<float>, std::complex<double>>;
struct PrecisionNames {
    template <class T>
    static std::string GetName(int)
    {
        return precision_letter<T>();
    }
};

// A routine and its arguments in their order.
struct Routine {
    const char* stem;
    std::vector<std::string> arguments;
};
inline const std::vector<Routine> routines = {
    {"omatcopy", {"ordering", "trans", "rows", "cols", "alpha", "a", "lda", "b", "ldb"}},
    {"omatcopy2", {"ordering", "trans", "rows", "cols", "alpha", "a", "lda", "stridea", "b", "ldb", "strideb"}},
    {"imatcopy", {"ordering", "trans", "rows", "cols", "alpha", "b", "lda", "ldb"}},
    {"omatadd", {"ordering", "trans", "transb", "rows", "cols", "alpha", "a", "lda", "beta", "b", "ldb", "c", "ldc"}},
    {"omatcopy_batch_strided",
     {"ordering", "trans", "rows", "cols", "alpha", "a", "lda", "distancea", "b", "ldb", "distanceb", "size"}},
    {"imatcopy_batch_strided", {"ordering", "trans", "rows", "cols", "alpha", "b", "lda", "ldb", "distanceb", "size"}},
    {"omatadd_batch_strided",
     {"ordering", "trans", "transb", "rows", "cols", "alpha", "a", "lda", "distancea", "beta", "b", "ldb", "distanceb",
      "c", "ldc", "distancec", "size"}},
    {"omatcopy_batch", {"ordering", "trans", "rows", "cols", "alpha", "pa", "lda", "pb", "ldb", "groups", "size"}},
    {"imatcopy_batch", {"ordering", "trans", "rows", "cols", "alpha", "pb", "lda", "ldb", "groups", "size"}},
};

// How a routine is reached: its symbol is prefix + name + suffix in the library, or in the core.
struct Binding {
    const char* library;
    bool c, wide;
    std::string prefix, suffix;

    void* find(const std::string& name) const
    {
        void* handle = library == nullptr ? RTLD_DEFAULT : dlopen(library, RTLD_NOW | RTLD_LOCAL);
        void* address = dlsym(handle, (prefix + name + suffix).c_str());
        EXPECT_NE(address, nullptr) << prefix << name << suffix << " in " << (library ? library : "the core");
        return address;
    }
};
inline const std::vector<Binding> bindings = {
    {nullptr, false, false, "", "_"},
    {nullptr, false, false, "ork_blas_lp64_", ""},
    {nullptr, false, true, "", "_64_"},
    {nullptr, false, true, "ork_blas_", ""},
    {nullptr, true, false, "cblas_", ""},
    {nullptr, true, false, "ork_cblas_lp64_", ""},
    {nullptr, true, true, "cblas_", "64_"},
    {nullptr, true, true, "cblas_", "_64"},
    {nullptr, true, true, "ork_cblas_", ""},
    {ORK_LIB_DIR "/libblas.so.3", false, false, "", "_"},
    {ORK_LIB_DIR "/libblas.so.3", true, false, "cblas_", ""},
    {ORK_LIB_DIR "/libblas64.so.3", false, true, "", "_"},
    {ORK_LIB_DIR "/libblas64.so.3", true, true, "cblas_", ""},
};

// A call of routine `stem`; a batch of groups has one group, whose matrices lie at distances too.
template <class T>
struct Call {
    const Routine* routine;
    char ordering = 'C', trans = 'N', transb = 'N';
    Int rows = 0, cols = 0, lda = 0, ldb = 0, ldc = 0, stridea = 1, strideb = 1, size = 1, groups = 1;
    Int distancea = 0, distanceb = 0, distancec = 0;
    T alpha = some<T>(1, 0), beta = some<T>(1, 0);
    std::vector<T> a, b, c;

    // Operands with unused elements between columns or rows and `count` matrices where the routine takes several.
    Call(const char* stem, char ordering, char trans, char transb, Int rows, Int cols, Int count = 3, Int spare = 2)
        : ordering(ordering), trans(trans), transb(transb), rows(rows), cols(cols)
    {
        for (const Routine& r : routines)
            if (r.stem == std::string(stem)) routine = &r;
        if (is("omatcopy2")) stridea = 2, strideb = 3;
        size = batched() ? count : 1;
        const bool turned_a = added() && turned(trans), turned_b = turned(added() ? transb : trans);
        lda = length(turned_a) * stridea + spare;
        ldb = length(turned_b) * strideb + spare + 1;
        ldc = length(false) + spare;
        distancea = lda * length(!turned_a), distanceb = std::max(ldb * length(!turned_b), in_place() ? distancea : 0);
        distancec = added() ? ldc * length(true) : 0;
        Random random(7);
        for (const auto& [array, distance] : {std::pair{&a, distancea}, {&b, distanceb}, {&c, distancec}}) {
            array->resize(static_cast<std::size_t>(distance * size));
            for (T& x : *array) x = random.uniform<T>();
        }
    }
    bool is(const std::string& stem) const { return routine->stem == stem; }
    bool begins(const char* with) const { return std::string(routine->stem).starts_with(with); }
    bool added() const { return begins("omatadd"); }
    bool in_place() const { return begins("imatcopy"); }
    bool batched() const { return std::string(routine->stem).find("batch") != std::string::npos; }
    static bool turned(char trans) { return (trans & ~0x20) == 'T' || (trans & ~0x20) == 'C'; }
    Int length(bool transposed) const { return ((ordering & ~0x20) == 'C') != transposed ? rows : cols; }

    Int& integer(const std::string& name)
    {
        return name == "rows"        ? rows
               : name == "cols"      ? cols
               : name == "lda"       ? lda
               : name == "ldb"       ? ldb
               : name == "ldc"       ? ldc
               : name == "stridea"   ? stridea
               : name == "strideb"   ? strideb
               : name == "distancea" ? distancea
               : name == "distanceb" ? distanceb
               : name == "distancec" ? distancec
               : name == "groups"    ? groups
                                     : size;
    }
    char& letter(const std::string& name) { return name == "ordering" ? ordering : name == "trans" ? trans : transb; }
    static bool is_letter(const std::string& name) { return name == "ordering" || name.starts_with("trans"); }
    static bool is_scalar(const std::string& name) { return name == "alpha" || name == "beta"; }
    static bool is_array(const std::string& name) { return name.size() == 1 || name == "pa" || name == "pb"; }

    void make(const Binding& binding) { binding.wide ? make<std::int64_t>(binding) : make<std::int32_t>(binding); }

    // Element (i, j) of op(A) of matrix `index`, of whichever operand.
    T element(const std::vector<T>& from, Int distance, char op, Int ld, Int stride, Int index, Int i, Int j) const
    {
        const T x = from[index * distance + (turned(op) ? place(j, i, ld, stride) : place(i, j, ld, stride))];
        return (op & ~0x20) == 'C' || (op & ~0x20) == 'R' ? conjugated(x) : x;
    }
    Int place(Int i, Int j, Int ld, Int stride) const
    {
        return (ordering & ~0x20) == 'C' ? i * stride + j * ld : i * ld + j * stride;
    }
    static T times(T factor, T x) { return factor == some<T>(1, 0) ? x : plain_product(factor, x); }

    // Makes the call and compares with the formula; elements in none of the matrices must stay as they were.
    void expect_right(const Binding& binding)
    {
        const Call before = *this;
        make(binding);
        EXPECT_EQ(a, before.a);
        std::vector<T> want = added() ? before.c : before.b;
        std::vector<char> free(want.size()); // read, not written
        const bool transposed = !added() && turned(trans);
        const Int m = transposed ? cols : rows, n = transposed ? rows : cols;
        for (Int k = 0; k < size; ++k)
            for (Int i = 0; i < m; ++i)
                for (Int j = 0; j < n; ++j) {
                    if (added()) {
                        const T x = element(a, distancea, trans, lda, 1, k, i, j);
                        const T y = element(before.b, distanceb, transb, ldb, 1, k, i, j);
                        want[k * distancec + place(i, j, ldc, 1)] = plain_product(alpha, x) + plain_product(beta, y);
                    } else {
                        const auto& from = in_place() ? before.b : a;
                        const Int distance = in_place() ? distanceb : distancea;
                        const T x = element(from, distance, trans, lda, stridea, k, i, j);
                        want[k * distanceb + place(i, j, ldb, strideb)] = times(alpha, x);
                        if (in_place())
                            free[k * distanceb + (transposed ? place(j, i, lda, 1) : place(i, j, lda, 1))] = 1;
                    }
                }
        if (in_place())
            for (Int k = 0; k < size; ++k)
                for (Int i = 0; i < m; ++i)
                    for (Int j = 0; j < n; ++j) free[k * distanceb + place(i, j, ldb, 1)] = 0;
        const auto& got = added() ? c : b;
        Int wrong = 0;
        for (std::size_t i = 0; i < want.size(); ++i) wrong += !(got[i] == want[i]) && free[i] == 0;
        EXPECT_EQ(wrong, 0) << binding.prefix << precision_letter<T>() << routine->stem << binding.suffix << " "
                            << ordering << trans << transb << " " << rows << " x " << cols;
    }

private:
    // Every argument is a word: a value or an address. Real scalars of C are passed in registers of their own on
    // x86-64, so they may as well follow the words.
    template <class Integer>
    void make(const Binding& binding)
    {
        std::vector<const T*> pa;
        std::vector<T*> pb;
        for (Int k = 0; k < size; ++k) pa.push_back(a.data() + k * distancea), pb.push_back(b.data() + k * distanceb);
        const bool grouped = routine->arguments[5][0] == 'p';
        std::array<std::uintptr_t, 17> words{};
        std::array<Integer, 17> integers{};
        std::array<int, 17> enumerators{};
        std::size_t count = 0;
        for (std::size_t i = 0; i < routine->arguments.size(); ++i) {
            const std::string& name = routine->arguments[i];
            // In C what is an array in groups is an address, everything else a value.
            const bool value = binding.c && !(grouped && name != "ordering" && name != "groups");
            std::uintptr_t& word = words[count++];
            if (is_letter(name)) {
                const std::string letters = name == "ordering" ? "RC" : "NTCR";
                const auto at = letters.find(letter(name));
                enumerators[i] =
                    (name == "ordering" ? 101 : 111) + (at == std::string::npos ? 9 : static_cast<int>(at));
                word = value       ? static_cast<std::uintptr_t>(enumerators[i])
                       : binding.c ? reinterpret_cast<std::uintptr_t>(&enumerators[i])
                                   : reinterpret_cast<std::uintptr_t>(&letter(name));
            } else if (is_scalar(name)) {
                word = reinterpret_cast<std::uintptr_t>(name == "alpha" ? &alpha : &beta);
                if (value && !is_complex<T>) --count;
            } else if (is_array(name)) {
                word = name == "pa"   ? reinterpret_cast<std::uintptr_t>(pa.data())
                       : name == "pb" ? reinterpret_cast<std::uintptr_t>(pb.data())
                                      : reinterpret_cast<std::uintptr_t>((name == "a"   ? a
                                                                          : name == "b" ? b
                                                                                        : c)
                                                                             .data());
            } else {
                integers[i] = static_cast<Integer>(integer(name));
                word =
                    value ? static_cast<std::uintptr_t>(integers[i]) : reinterpret_cast<std::uintptr_t>(&integers[i]);
            }
        }
        void* const address = binding.find(precision_letter<T>() + std::string(routine->stem));
        if (address == nullptr) return;
        [&]<std::size_t... i>(std::index_sequence<i...>)
        {
            reinterpret_cast<void (*)(std::remove_reference_t<decltype(words[i])>..., Real<T>, Real<T>)>(address)(
                words[i]..., std::real(alpha), std::real(beta));
        }
        (std::make_index_sequence<17>());
    }
};

} // namespace ork::test
