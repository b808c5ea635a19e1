// SPDX-License-Identifier: MIT
// Convolution of real numbers on FFTW's transforms (-O3 -msse4.2): lines by overlap-save in the block size that turns
// out to be the best of five, the filter transformed in every call; grids padded to lengths of the primes up to 7.
#include <algorithm>
#include <complex>
#include <cstring>
#include <limits>
#include <type_traits>

#include "peers/conv.h"

namespace ork::peers {
namespace {

template <class T>
struct Interface {
    void* (*plan_r2c)(int rank, const int* n, T* in, std::complex<T>* out, unsigned flags);
    void* (*plan_c2r)(int rank, const int* n, std::complex<T>* in, T* out, unsigned flags);
    void (*execute_r2c)(void* plan, T* in, std::complex<T>* out);
    void (*execute_c2r)(void* plan, std::complex<T>* in, T* out);
    void (*destroy)(void* plan);

    bool open(const Library& library)
    {
        const std::string prefix = sizeof(T) == 4 ? "fftwf_" : "fftw_";
        const auto get = [&](auto& routine, const char* name) {
            routine =
                reinterpret_cast<std::remove_reference_t<decltype(routine)>>(library.find((prefix + name).c_str()));
            return routine != nullptr;
        };
        return get(plan_r2c, "plan_dft_r2c") && get(plan_c2r, "plan_dft_c2r") && get(execute_r2c, "execute_dft_r2c") &&
               get(execute_c2r, "execute_dft_c2r") && get(destroy, "destroy_plan");
    }
};
constexpr unsigned measure = 0;

int smooth(int n)
{
    for (;; ++n) {
        int m = n;
        for (const int p : {2, 3, 5, 7})
            while (m % p == 0) m /= p;
        if (m == 1) return n;
    }
}

// to = a b / n
template <class T>
void multiply(const std::complex<T>* a, const std::complex<T>* b, size_t count, T scale, std::complex<T>* to)
{
    for (size_t i = 0; i < count; ++i) {
        const T re = b[i].real() * scale, im = b[i].imag() * scale;
        to[i] = {a[i].real() * re - a[i].imag() * im, a[i].real() * im + a[i].imag() * re};
    }
}

template <class T>
struct Operands {
    std::vector<int> nx, ny;
    const T *x, *y;
    T* z;
};

// Blocks of n numbers; dimensions (rows, n) of a grid, in one piece.
template <class T>
class Blocks {
public:
    Blocks(const Interface<T>& api, const Operands<T>& o, std::vector<int> n)
        : api_(api), o_(o), n_(std::move(n)), rows_(n_.size() == 1 ? 1 : static_cast<size_t>(n_[0])),
          line_(static_cast<size_t>(n_.back())), pairs_(rows_ * (line_ / 2 + 1)), numbers_(rows_ * line_, 64),
          filter_(pairs_, 1088), signal_(pairs_, 2112)
    {
        const int rank = static_cast<int>(n_.size());
        forward_ = api_.plan_r2c(rank, n_.data(), numbers_.data(), signal_.data(), measure);
        backward_ = api_.plan_c2r(rank, n_.data(), signal_.data(), numbers_.data(), measure);
    }
    ~Blocks()
    {
        if (forward_ != nullptr) api_.destroy(forward_);
        if (backward_ != nullptr) api_.destroy(backward_);
    }
    Blocks(const Blocks&) = delete;
    Blocks& operator=(const Blocks&) = delete;

    bool ready() const { return forward_ != nullptr && backward_ != nullptr; }
    void run() { n_.size() == 1 ? line() : grid(); }

private:
    void line()
    {
        const long nx = o_.nx[0], ny = o_.ny[0], n = n_[0], all = nx + ny - 1;
        put(o_.y, 0, ny, 0);
        api_.execute_r2c(forward_, numbers_.data(), filter_.data());
        const bool single = n >= all;
        const long each = single ? all : n - ny + 1;
        for (long first = 0; first < all; first += each) {
            const long lead = single ? 0 : ny - 1, from = std::max(0L, first - lead),
                       to = std::min(nx, first - lead + n);
            put(o_.x, from, std::max(from, to), from - (first - lead));
            api_.execute_r2c(forward_, numbers_.data(), signal_.data());
            multiply(signal_.data(), filter_.data(), pairs_, T(1) / static_cast<T>(n), signal_.data());
            api_.execute_c2r(backward_, signal_.data(), numbers_.data());
            std::copy_n(numbers_.data() + lead, std::min(each, all - first), o_.z + first);
        }
    }
    // Elements from .. to - 1 from `at` on, zeros elsewhere.
    void put(const T* from, long begin, long end, long at)
    {
        std::fill_n(numbers_.data(), at, T{});
        std::copy(from + begin, from + end, numbers_.data() + at);
        std::fill(numbers_.data() + at + (end - begin), numbers_.data() + line_, T{});
    }

    void grid()
    {
        transform(o_.y, o_.ny, filter_.data());
        transform(o_.x, o_.nx, signal_.data());
        multiply(signal_.data(), filter_.data(), pairs_, T(1) / static_cast<T>(rows_ * line_), signal_.data());
        api_.execute_c2r(backward_, signal_.data(), numbers_.data());
        const auto length = static_cast<size_t>(o_.nx[0] + o_.ny[0] - 1),
                   rows = static_cast<size_t>(o_.nx[1] + o_.ny[1] - 1);
        for (size_t i = 0; i < rows; ++i) std::copy_n(&numbers_[i * line_], length, o_.z + i * length);
    }
    void transform(const T* from, const std::vector<int>& extents, std::complex<T>* to)
    {
        const auto length = static_cast<size_t>(extents[0]), rows = static_cast<size_t>(extents[1]);
        for (size_t i = 0; i < rows_; ++i) {
            T* row = &numbers_[i * line_];
            if (i < rows) std::copy_n(from + i * length, length, row);
            std::fill(row + (i < rows ? length : 0), row + line_, T{});
        }
        api_.execute_r2c(forward_, numbers_.data(), to);
    }

    Interface<T> api_;
    Operands<T> o_;
    std::vector<int> n_; // slowest first
    size_t rows_, line_, pairs_;
    Array<T> numbers_;
    Array<std::complex<T>> filter_, signal_;
    void *forward_ = nullptr, *backward_ = nullptr;
};

} // namespace

template <class T>
Entrant fftw_conv(const Library& library, const std::vector<int>& nx, const std::vector<int>& ny, const T* x,
                  const T* y, T* z)
{
    Interface<T> api;
    if (!api.open(library)) return {};
    const bool swapped = ny[0] > nx[0];
    const Operands<T> operands = swapped ? Operands<T>{ny, nx, y, x, z} : Operands<T>{nx, ny, x, y, z};
    std::vector<std::vector<int>> sizes;
    if (nx.size() == 2) {
        sizes.push_back({smooth(nx[1] + ny[1] - 1), smooth(nx[0] + ny[0] - 1)});
    } else {
        const int single = smooth(nx[0] + ny[0] - 1), filter = std::min(nx[0], ny[0]);
        int n = 128;
        while (n < 2 * filter) n *= 2;
        for (int i = 0; i < 5 && n < single; ++i, n *= 2) sizes.push_back({n});
        sizes.push_back({single});
    }
    std::shared_ptr<Blocks<T>> best;
    double least = std::numeric_limits<double>::max();
    for (const auto& size : sizes) {
        auto blocks = std::make_shared<Blocks<T>>(api, operands, size);
        if (!blocks->ready()) continue;
        const auto run = [&](long calls) {
            for (; calls > 0; --calls) blocks->run();
        };
        const long calls = calibrate(run, 2e-3);
        for (int sample = 0; sample < 3; ++sample) {
            const double seconds = time_of(run, calls) / static_cast<double>(calls);
            if (seconds < least) least = seconds, best = blocks;
        }
    }
    if (best == nullptr) return {};
    return [best](long calls) {
        for (; calls > 0; --calls) best->run();
    };
}

template Entrant fftw_conv(const Library&, const std::vector<int>&, const std::vector<int>&, const float*, const float*,
                           float*);
template Entrant fftw_conv(const Library&, const std::vector<int>&, const std::vector<int>&, const double*,
                           const double*, double*);

} // namespace ork::peers
