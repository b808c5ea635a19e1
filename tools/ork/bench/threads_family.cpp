// SPDX-License-Identifier: MIT
// Threads: ork against itself, products and transforms. The ratios are the speed-up of more threads over one, and what
// is left of the throughput when eight callers share the workers.
#include <algorithm>
#include <fmt/format.h>
#include <thread>

#include "bench/family.h"
#include "ork/ork.h"

namespace ork::tool::bench {
namespace {

std::unique_ptr<peers::Problem> square(int n) { return peers::make_gemm({'d', 'N', 'N', n, n, n, 1, 0}); }

// The peer of this case is ork on one thread.
Contest speed_up(const peers::Library& ork, int n, int threads)
{
    const std::shared_ptr<peers::Problem> problem = square(n);
    void* routine = ork.find(problem->symbol().c_str());
    Contest contest{{}, problem->work(), {}, problem, true};
    if (routine == nullptr) return contest;
    for (const int count : {threads, 1}) {
        ork_set_num_threads(count);
        contest.contenders.push_back({fmt::format("{} thread{}", count, count > 1 ? "s" : ""),
                                      count == 1 ? peers::Kind::peer : peers::Kind::subject,
                                      [p = problem.get(), routine, count](long calls) {
                                          ork_set_num_threads(count);
                                          p->run(routine, calls);
                                      },
                                      problem->check(routine)});
    }
    return contest;
}

Contest transform_speed_up(const peers::Library& ork, const peers::FftCase& what, int threads)
{
    struct Operands {
        peers::FftProblem problem;
        std::vector<std::unique_ptr<peers::Transform>> transforms;
    };
    const auto operands = std::make_shared<Operands>(Operands{peers::FftProblem(what), {}});
    Contest contest{{}, what.work(), {}, operands, true};
    if (!ork.transform) return contest;
    for (const int count : {threads, 1}) {
        ork_set_num_threads(count);
        auto transform = ork.transform(what, operands->problem.in(), operands->problem.out());
        if (transform == nullptr) return contest;
        contest.contenders.push_back({fmt::format("{} thread{}", count, count > 1 ? "s" : ""),
                                      count == 1 ? peers::Kind::peer : peers::Kind::subject,
                                      [t = transform.get(), count](long calls) {
                                          ork_set_num_threads(count);
                                          for (; calls > 0; --calls) t->run();
                                      },
                                      operands->problem.check(*transform)});
        operands->transforms.push_back(std::move(transform));
    }
    operands->problem.settle();
    return contest;
}

// Eight callers at once, each free to use every worker, against two ways without contention: the callers held to one
// thread each, and the same products one after another on all threads.
Contest callers(const peers::Library& ork, int n, int threads)
{
    constexpr size_t count = 8;
    const auto problems = std::make_shared<std::vector<std::unique_ptr<peers::Problem>>>();
    for (size_t i = 0; i < count; ++i) problems->push_back(square(n));
    void* routine = ork.find(problems->front()->symbol().c_str());
    Contest contest{{}, problems->front()->work() * count, {}, problems, true};
    if (routine == nullptr) return contest;
    const auto at_once = [all = problems.get(), routine](long calls, int limit) {
        std::vector<std::thread> callers;
        for (auto& problem : *all)
            callers.emplace_back([p = problem.get(), routine, calls, limit] {
                if (limit > 0) ork_set_num_threads_local(limit);
                p->run(routine, calls);
            });
        for (std::thread& caller : callers) caller.join();
    };
    ork_set_num_threads(threads);
    std::string fault;
    for (auto& problem : *problems)
        if (fault.empty()) fault = problem->check(routine);
    contest.contenders = {
        {"8 callers", peers::Kind::subject,
         [at_once, threads](long calls) {
             ork_set_num_threads(threads);
             at_once(calls, 0);
         },
         fault},
        {"8 x 1 thread", peers::Kind::peer, [at_once](long calls) { at_once(calls, 1); }, ""},
        {"in turn", peers::Kind::peer,
         [all = problems.get(), routine, threads](long calls) {
             ork_set_num_threads(threads);
             for (auto& problem : *all) problem->run(routine, calls);
         },
         ""},
    };
    return contest;
}

const peers::Library& subject(const std::vector<peers::Library>& libraries)
{
    return libraries.front(); // ork comes first in every measurement
}

} // namespace

std::vector<Case> thread_cases(const Selection& selection)
{
    constexpr int threads = 2;
    const auto wanted = [&](const std::string& routine) {
        const auto& all = selection.routines;
        return all.empty() || std::find(all.begin(), all.end(), routine) != all.end();
    };
    std::vector<int> sizes;
    for (const Shape& s : shapes_of(selection.sizes))
        if (s.square()) sizes.push_back(s.m);
    if (selection.sizes.empty())
        sizes = selection.quick ? std::vector<int>{256} : std::vector<int>{64, 128, 256, 512, 1024, 2048};
    std::vector<Case> cases;
    if (wanted("dgemm")) {
        for (const int n : sizes)
            cases.push_back({"dgemm", "2 threads / 1", fmt::format("{}", n), static_cast<double>(n),
                             [n](const auto& libraries) { return speed_up(subject(libraries), n, threads); }});
        for (const int n : sizes)
            if (n >= 64 && n <= 1024)
                cases.push_back({"dgemm", "8 callers", fmt::format("{}", n), static_cast<double>(n),
                                 [n](const auto& libraries) { return callers(subject(libraries), n, threads); }});
    }
    std::vector<std::string> data = selection.sizes;
    if (data.empty()) data = {"65536", "1048576", "1024x1024", "100*1000"};
    for (const char* kind : {"cd", "cs", "rd", "rs"})
        for (const std::string& size : data)
            // those that nobody asked for by name are for the full run
            if (const auto what = peers::fft_case(kind, size);
                what && (selection.routines.empty() ? !selection.quick && selection.sizes.empty() : wanted(kind)))
                cases.push_back({kind, "2 threads / 1", size, 0, [what](const auto& libraries) {
                                     return transform_speed_up(subject(libraries), *what, threads);
                                 }});
    return cases;
}

} // namespace ork::tool::bench
