// SPDX-License-Identifier: MIT
// Routines that divide their work among threads give the bits of one thread.
#include <atomic>
#include <thread>

#include "bindings.h"

namespace ork::test {

namespace {

std::atomic<int> most_parts;

// A thread for every part.
void run_parts(void*, int count, ork_part work, void* context)
{
    most_parts = std::max<int>(most_parts, count);
    std::vector<std::thread> threads;
    for (int i = 0; i < count; ++i) threads.emplace_back([=] { work(context, i); });
    for (auto& t : threads) t.join();
}

class Threads : public testing::Test {
protected:
    Threads() { ork_set_parallel_backend(run_parts, nullptr); }
    ~Threads() override
    {
        ork_set_parallel_backend(nullptr, nullptr);
        ork_set_num_threads_local(0);
    }
};

// Large enough for several threads.
Call large_call(const TableRow& row)
{
    const bool products = !row.has(Role::increment);
    std::int64_t n = 150, lead = 200;
    const std::size_t element = std::min(row.place("a"), row.arguments.size() - 1);
    if (!products) {
        std::size_t bytes = 0; // of an element of A
        Call(row, 1).visit(element, [&]<class T>(T*) { bytes = sizeof(T); });
        n = static_cast<std::int64_t>(std::sqrt((row.is("trmv") ? 34 << 20 : 18 << 20) / bytes)), lead = n + 45;
    }
    Call call(row, lead * lead * (row.is("_batch") ? 3 : 1));
    Random random(n);
    call.fill(random);
    std::int64_t size = n;
    for (std::size_t i = 0; i < row.arguments.size(); ++i) {
        const std::string_view name = row.arguments[i].name;
        switch (row.arguments[i].role) {
        case Role::size:
            call.integers[i] = name == "batch_size" ? 3 : name.starts_with("stride") ? lead * lead : size;
            size += 21;
            break;
        case Role::lead:
            call.integers[i] = lead;
            break;
        case Role::increment:
            call.integers[i] = name[3] == 'x' ? 1 : -2;
            break;
        default:
            break;
        }
    }
    if (row.is("trs")) // keeps solutions small
        call.visit(element, [&]<class T>(T* a) {
            for (std::int64_t j = 0; j < lead; ++j) a[j * (lead + 1)] = static_cast<T>(50);
        });
    return call;
}

TEST_F(Threads, ChangeNoBit)
{
    for (const TableRow& row : table()) {
        if (!row.is_checked || !row.has(Role::lead) || row.has(Role::band)) continue;
        const Binding binding = bindings_of(row)[1];
        Call call = large_call(row);
        most_parts = 0;
        for_each_letters(call, [&] {
            SCOPED_TRACE(std::string(row.name) + " " + std::string(call.letters.begin(), call.letters.end()));
            Call want = call;
            ork_set_num_threads_local(1);
            invoke(binding, want);
            EXPECT_FALSE(want.same_elements(call));
            for (const int threads : row.has(Role::increment) ? std::vector{3} : std::vector{2, 3}) {
                Call got = call;
                ork_set_num_threads_local(threads);
                invoke(binding, got);
                EXPECT_TRUE(got.same_elements(want)) << threads << " threads";
            }
        });
        bool serial = row.is("gemv_"); // of narrow elements
        for (const char* stem : {"symv", "hemv", "trsv", "her", "gem2v"})
            serial |= std::string_view(row.name).substr(1).starts_with(stem) || row.name == std::string_view(stem);
        serial &= !row.is("herk") && !row.is("her2k");
        EXPECT_EQ(most_parts > 1, !serial) << row.name;
    }
}

// An infinity times a complex alpha is NaN in part, times herk's real one it is not.
TEST_F(Threads, ChangeNoBitOfHerkWithInfinities)
{
    for (const char* name : {"cherk", "zherk"}) {
        Call call = large_call(row(name));
        call.visit(row(name).place("a"), []<class T>(T* a) { a[3] = static_cast<T>(INFINITY); });
        Call want = call;
        const Binding binding = bindings_of(row(name))[1];
        ork_set_num_threads_local(1);
        invoke(binding, want);
        ork_set_num_threads_local(2);
        invoke(binding, call);
        EXPECT_TRUE(call.same_elements(want)) << name;
    }
}

} // namespace

} // namespace ork::test
