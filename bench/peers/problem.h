// SPDX-License-Identifier: MIT
// One case of a benchmark: operands, the call, and what it takes for the result to be right. Every library runs on the
// same arrays.
#pragma once

#include <complex>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "peers/measure.h"

namespace ork::peers {

// What bounds the case on this machine: something to run beside it, and the work that one of its calls does.
struct Limit {
    Entrant run;
    double work;
};

class Problem {
public:
    virtual ~Problem() = default;
    virtual std::string symbol() const = 0;            // the Fortran BLAS name: "dgemm_"
    virtual bool two_vectors() const { return false; } // of level 1: takes x and y
    virtual double work() const = 0;                   // of one call: flops, or bytes read and written
    virtual std::string check(void* routine) = 0;      // what is wrong with its result; empty when it is right
    virtual void run(void* routine, long calls) = 0;   // values stay bounded however many calls there are
    virtual std::vector<Limit> limits() = 0;           // candidates; the fastest is the limit
};

// An array at a chosen distance from a page boundary, so that no two operands fall on the same cache sets.
template <class T>
class Array {
public:
    explicit Array(size_t size, size_t offset = 0) : size_(size)
    {
        void* block = std::aligned_alloc(4096, (size * sizeof(T) + offset + 128 + 4095) / 4096 * 4096);
        if (block == nullptr) throw std::bad_alloc();
        block_.reset(static_cast<char*>(block));
        data_ = reinterpret_cast<T*>(block_.get() + offset);
    }
    T* data() { return data_; }
    const T* data() const { return data_; }
    size_t size() const { return size_; }
    T& operator[](size_t i) { return data_[i]; }
    const T& operator[](size_t i) const { return data_[i]; }

private:
    struct Free {
        void operator()(char* block) const { std::free(block); }
    };
    std::unique_ptr<char, Free> block_;
    T* data_;
    size_t size_;
};

template <class T>
struct RealOf {
    using type = T;
};
template <class T>
struct RealOf<std::complex<T>> {
    using type = T;
};
template <class T>
using Real = typename RealOf<T>::type;
template <class T>
constexpr bool is_complex = !std::is_same_v<T, Real<T>>;

// Values in (-1, 1), the same in every run.
class Random {
public:
    double next()
    {
        state_ = state_ * 6364136223846793005u + 1442695040888963407u;
        return static_cast<double>(static_cast<int64_t>(state_) >> 11) * 0x1p-52;
    }
    template <class T>
    T next()
    {
        if constexpr (is_complex<T>) {
            const auto re = static_cast<Real<T>>(next());
            return {re, static_cast<Real<T>>(next())};
        } else {
            return static_cast<T>(next());
        }
    }
    template <class T>
    void fill(Array<T>& array)
    {
        auto* parts = reinterpret_cast<Real<T>*>(array.data());
        for (size_t i = 0; i < array.size() * sizeof(T) / sizeof(Real<T>); ++i) parts[i] = static_cast<Real<T>>(next());
    }

private:
    uint64_t state_ = 2024;
};

struct GemmCase {
    char precision; // s d c z
    char transa, transb;
    int m, n, k;
    double alpha, beta;
};
std::unique_ptr<Problem> make_gemm(const GemmCase& c);

struct Level1Case {
    std::string routine; // "daxpy", "scnrm2", "zdotc"
    int n, incx,
        incy; // positive incx for the routines of one vector, whose meaning differs between libraries otherwise
};
std::unique_ptr<Problem> make_level1(const Level1Case& c); // null for a routine it doesn't know
const std::vector<std::string>& level1_routines();

// Letters as the routine takes them, one after the other: "N" for gemv, "LNN" for trsv, "" for ger.
struct Level2Case {
    std::string routine; // "dgemv", "chemv", "ztbsv"
    std::string letters;
    int m, n; // a band's order and its diagonals on each side; other triangles have m = n
};
std::unique_ptr<Problem> make_level2(const Level2Case& c); // null for a case that there isn't
bool is_case(const Level2Case& c);
bool is_band(const std::string& level2_routine);
const std::vector<std::string>& level2_routines();

// m x n is B or C of symm, trmm and trsm; order m of C and depth n of the others.
struct Level3Case {
    std::string routine; // "dtrsm", "zherk"
    std::string letters; // "LLNN", "LN"
    int m, n;
};
std::unique_ptr<Problem> make_level3(const Level3Case& c);
bool is_case(const Level3Case& c);
const std::vector<std::string>& level3_routines();

// "element 3 is 0.5, not 0.25"
std::string mismatch(size_t position, long double got, long double want);

} // namespace ork::peers
