// SPDX-License-Identifier: MIT
// Threads: within a computation, and around descriptors.
#include <atomic>
#include <cstring>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "model.h"
#include "ork/ork.h"

namespace ork::test {

namespace {

struct Work {
    const char* name;
    int domain;
    Integers n;
    std::int64_t transforms;
    bool in_place;
};

// Long enough to be divided, short enough for any engine.
const Work works[] = {
    {"batch", ORK_DFT_COMPLEX, {256}, 401, true},
    {"batch of an odd length", ORK_DFT_COMPLEX, {105}, 333, false},
    {"one long", ORK_DFT_COMPLEX, {1 << 17}, 1, true},
    {"one long, not a power of two", ORK_DFT_COMPLEX, {200000}, 1, false},
    {"two dimensions", ORK_DFT_COMPLEX, {320, 384}, 1, true},
    {"three dimensions", ORK_DFT_COMPLEX, {30, 66, 32}, 2, false},
    {"real batch", ORK_DFT_REAL, {250}, 800, true},
    {"one long of real data", ORK_DFT_REAL, {1 << 18}, 1, false},
    {"two dimensions of real data", ORK_DFT_REAL, {500, 512}, 1, false},
};

// The array of results (both directions, one behind the other) of a computation that may use so many threads.
template <class R>
std::vector<R> results(const Work& work, int threads_at_commit, int threads, int thread_limit)
{
    const int before = ork_set_num_threads_local(threads_at_commit);
    Descriptor d(precision_of<R>, work.domain, work.n);
    const bool real = work.domain == ORK_DFT_REAL;
    Integers half = work.n;
    if (real) half[0] = half[0] / 2 + 1;
    const std::int64_t out_distance = product(half);
    const std::int64_t in_distance = real && work.in_place ? 2 * out_distance : product(work.n);
    d.set(ORK_DFT_PLACEMENT, work.in_place ? ORK_DFT_INPLACE : ORK_DFT_NOT_INPLACE);
    d.set(ORK_DFT_NUMBER_OF_TRANSFORMS, work.transforms).set(ORK_DFT_BACKWARD_SCALE, 0.3);
    d.set(ORK_DFT_INPUT_DISTANCE, in_distance).set(ORK_DFT_OUTPUT_DISTANCE, out_distance);
    d.set(ORK_DFT_THREAD_LIMIT, thread_limit).commit();
    const std::size_t size = std::size_t((2 * out_distance + in_distance) * work.transforms);
    std::vector<R> x = uniform_values<R>(std::int64_t(size), 3), y = x;
    ork_set_num_threads_local(threads);
    if (work.in_place) {
        EXPECT_EQ(ork_dft_forward(d, x.data()), 0);
        y = x;
        EXPECT_EQ(ork_dft_backward(d, x.data()), 0);
    } else {
        EXPECT_EQ(ork_dft_forward_out(d, x.data(), y.data()), 0);
        EXPECT_EQ(ork_dft_backward_out(d, y.data(), x.data()), 0);
    }
    ork_set_num_threads_local(before);
    y.insert(y.end(), x.begin(), x.end());
    return y;
}

template <class R>
class DftThreads : public testing::Test {
};
using Precisions = testing::Types<float, double>;
TYPED_TEST_SUITE(DftThreads, Precisions);

TYPED_TEST(DftThreads, TheirNumberDoesNotChangeABit)
{
    for (const Work& work : works) {
        SCOPED_TRACE(work.name);
        const auto serial = results<TypeParam>(work, 1, 1, 0);
        for (const auto& [at_commit, threads, limit] :
             {std::tuple{1, 2, 0}, {4, 1, 0}, {2, 3, 0}, {5, 5, 0}, {4, 4, 3}}) {
            SCOPED_TRACE(testing::Message() << at_commit << ", " << threads << ", limit " << limit);
            const auto got = results<TypeParam>(work, at_commit, threads, limit);
            EXPECT_EQ(std::memcmp(got.data(), serial.data(), serial.size() * sizeof(TypeParam)), 0);
        }
    }
}

// Counts the parts that a call hands out.
int parts_of(const Work& work, int threads, int thread_limit)
{
    int parts = 0;
    const auto count = [](void* user, int strands, ork_part run, void* context) {
        *static_cast<int*>(user) += strands;
        for (int i = 0; i < strands; ++i) run(context, i);
    };
    ork_set_parallel_backend(count, &parts);
    results<double>(work, threads, threads, thread_limit);
    ork_set_parallel_backend(nullptr, nullptr);
    return parts;
}

TEST(DftCallers, LongComputationsUseThreadsAndShortOnesDoNot)
{
    for (const Work& work : works) {
        SCOPED_TRACE(work.name);
        EXPECT_GE(parts_of(work, 2, 0), 4); // two directions
        EXPECT_EQ(parts_of(work, 1, 0), 0);
        EXPECT_EQ(parts_of(work, 2, 1), 0);
    }
    EXPECT_EQ(parts_of({"short", ORK_DFT_COMPLEX, {64}, 10, true}, 2, 0), 0);
}

// One descriptor in eight threads, while another eight commit and compute with descriptors of their own.
TEST(DftCallers, DescriptorsServeManyAtOnce)
{
    constexpr int callers = 8, rounds = 20;
    const auto make = [](std::int64_t n) {
        auto d = std::make_unique<Descriptor>(ORK_DFT_DOUBLE, ORK_DFT_COMPLEX, Integers{n});
        d->set(ORK_DFT_NUMBER_OF_TRANSFORMS, 80).set(ORK_DFT_INPUT_DISTANCE, n).commit();
        return d;
    };
    const std::int64_t lengths[] = {128, 129, 130, 131};
    const auto shared = make(128);
    const auto input = uniform_values<double>(2 * 80 * 131, 9);
    std::vector<std::vector<double>> want;
    for (const std::int64_t n : lengths) {
        want.push_back(input);
        EXPECT_EQ(ork_dft_forward(*make(n), want.back().data()), 0);
    }
    std::atomic<int> wrong = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 2 * callers; ++i)
        threads.emplace_back([&, i] {
            for (int round = 0; round < rounds; ++round) {
                const std::size_t which = i < callers ? 0 : std::size_t(round) % 4;
                auto x = input;
                const auto own = i < callers ? nullptr : make(lengths[which]);
                wrong += ork_dft_forward(own ? *own : *shared, x.data()) != 0 || x != want[which];
            }
        });
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(wrong, 0);
}

// The text of a failed creation is the calling thread's.
TEST(DftCallers, TextsOfFailedCreations)
{
    std::vector<std::thread> threads;
    std::atomic<int> wrong = 0;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&, i] {
            for (int round = 0; round < 200; ++round) {
                ork_dft_descriptor* none;
                wrong +=
                    ork_dft_create_descriptor_1d(&none, ORK_DFT_DOUBLE, ORK_DFT_COMPLEX, -i) != ORK_DFT_LENGTH_ERROR;
                const std::string text = "ORK_DFT_LENGTHS[0] = " + std::to_string(-i) + ": less than 1";
                wrong += ork_dft_descriptor_message(nullptr) != text;
            }
        });
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(wrong, 0);
}

} // namespace

} // namespace ork::test
