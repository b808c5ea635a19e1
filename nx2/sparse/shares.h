// SPDX-License-Identifier: MIT
// Rows of a product among the threads of a team.
#pragma once

#include "sparse/handle/exports.h"

namespace ork::sparse {

// Scratch for each thread, and what each does: a few shares a thread, each taken when the one before is done, since
// rows with as many entries may have any number of products. Every row is computed alike in whatever share it is.
template <class Int>
class Shares {
public:
    Shares() = default;
    Shares(const Shares&) = delete;
    Shares& operator=(const Shares&) = delete;
    ~Shares();

    // Rows with first[i] - first[0] entries before them, or, without `first`, alike, which is a share a thread;
    // `products` multiplications in all. False: no memory.
    bool start(const Team* team, std::int64_t rows, const Int* first, double products, std::int64_t work_bytes);

    // body(first, last, scratch) for all rows, each once.
    template <class Body>
    void run(const Body& body)
    {
        body_ = [](const void* context, Int first, Int last, void* work) {
            (*static_cast<const Body*>(context))(first, last, work);
        };
        context_ = &body;
        run_all();
    }

private:
    void run_all();
    void run_part(int number);
    std::int64_t boundary(std::int64_t share) const;
    double before(std::int64_t row) const;

    const Team* team_ = nullptr;
    std::int64_t rows_ = 0;
    const Int* first_ = nullptr;
    int parts_ = 1;
    std::int64_t shares_ = 1, stride_ = 0, next_ = 0;
    char* work_ = nullptr;
    void (*body_)(const void* context, Int first, Int last, void* work) = nullptr;
    const void* context_ = nullptr;
};

} // namespace ork::sparse
