// SPDX-License-Identifier: MIT
// Results don't depend on the number of threads, nor on who else is calling.
#include <atomic>
#include <thread>

#include "call.h"
#include "ork/ork.h"

namespace ork::test {

namespace {

std::atomic<int> most_parts;

void run_parts(void*, int count, ork_part work, void* context)
{
    if (count > most_parts) most_parts = count;
    std::vector<std::thread> threads;
    for (int i = 0; i < count; ++i) threads.emplace_back([=] { work(context, i); });
    for (auto& t : threads) t.join();
}

// As many threads as asked for, whatever the machine has.
class Threads {
public:
    explicit Threads(int count)
    {
        ork_set_parallel_backend(count > 1 ? run_parts : nullptr, nullptr);
        ork_set_num_threads_local(count);
        most_parts = 0;
    }
    ~Threads()
    {
        ork_set_parallel_backend(nullptr, nullptr);
        ork_set_num_threads_local(0);
    }
};

template <class T>
class TransThreads : public testing::Test {
};
TYPED_TEST_SUITE(TransThreads, Precisions, PrecisionNames);

TYPED_TEST(TransThreads, NumberChangesNoBit)
{
    using T = TypeParam;
    const Int square = 1000, bytes = 8 << 20, wide = bytes / 17 / sizeof(T);
    for (const Routine& routine : routines)
        for (const auto& [rows, cols, count] : {std::tuple<Int, Int, Int>{square, bytes / square / sizeof(T), 1},
                                                {17, wide, 2},
                                                {wide, 17, 2},
                                                {40, 50, 300}})
            for (const auto& [ordering, trans] : {std::pair{'C', 'C'}, {'R', 'N'}}) {
                Call<T> call(routine.stem, ordering, trans, trans == 'N' ? 'T' : 'N', rows, cols, count);
                if (call.in_place() && trans == 'C' && rows != 40) continue; // long cycles take long
                if (!call.batched() && count == 300) continue;
                call.alpha = call.beta = some<T>(0.5F, 2);
                Call<T> want = call;
                const Threads one(1);
                want.make(bindings[2]);
                for (const int number : {2, 3}) {
                    const Threads several(number);
                    Call<T> got = call;
                    got.make(bindings[2]);
                    EXPECT_TRUE(got.b == want.b && got.c == want.c)
                        << routine.stem << " " << ordering << trans << " " << rows << " x " << cols << " on " << number;
                    if (call.size > 1 || !call.in_place()) {
                        EXPECT_GT(most_parts, 1) << routine.stem << " " << rows << " x " << cols;
                    }
                }
            }
}

TYPED_TEST(TransThreads, SumsOfWhatIsReadAlike)
{
    const Threads threads(3);
    Call<TypeParam> call("omatadd", 'C', 'R', 'N', 999, (24 << 20) / 999 / sizeof(TypeParam));
    call.expect_right(bindings[2]);
    EXPECT_GT(most_parts, 1);
}

TYPED_TEST(TransThreads, SquaresInPlace)
{
    using T = TypeParam;
    for (const Int n : {256, 257, 511, 700, 1024})
        for (const char trans : {'T', 'C'})
            for (const int number : {1, 2, 3}) {
                const Threads threads(number);
                Call<T> call("imatcopy", 'C', trans, 'N', n, n, 1, 8);
                call.ldb = call.lda;
                call.b.erase(call.b.begin()); // begins on another place of a line
                call.expect_right(bindings[2]);
                EXPECT_TRUE(n < 1024 || (most_parts > 1) == (number > 1));
            }
}

TYPED_TEST(TransThreads, ConcurrentCallersGetTheirOwnResults)
{
    std::vector<std::thread> callers;
    for (int i = 0; i < 6; ++i)
        callers.emplace_back([i] {
            for (const char* stem : {"omatcopy", "omatadd", "imatcopy", "omatcopy_batch"})
                Call<TypeParam>(stem, 'C', 'T', 'N', 400 + 10 * i, 600, 2).expect_right(bindings[4]);
        });
    for (auto& caller : callers) caller.join();
}

} // namespace

} // namespace ork::test
