// SPDX-License-Identifier: MIT
// Every binding, order, option and sign of an increment against sums in 113 bits, and the same bits from any number of
// threads.
#include <atomic>
#include <thread>

#include "ork/ork.h"
#include "problem.h"

namespace ork::test {

namespace {

template <class T>
class XblasProducts : public testing::Test {
protected:
    ~XblasProducts() override
    {
        ork_set_parallel_backend(nullptr, nullptr);
        ork_set_num_threads_local(0);
    }
};
TYPED_TEST_SUITE(XblasProducts, Precisions, PrecisionNames);

// One rounding at the end, and what the internal precision loses of the terms' size.
template <class T>
double bound(Int64 prec, Int64 terms)
{
    const auto epsilon = static_cast<double>(std::numeric_limits<Real<T>>::epsilon());
    if (prec == blas_prec_extra) return 0x1p-104 * 4 * static_cast<double>(terms + 4);
    return (prec == blas_prec_double ? 0x1p-52 : epsilon) * 4 * static_cast<double>(terms + 4);
}

template <class T>
void expect_near(Problem<T>& problem, const std::vector<typename Problem<T>::Expected>& want)
{
    const double loss = bound<T>(problem.call.prec, 2 * problem.inputs());
    for (Int64 i = 0; i < problem.outputs(); ++i) {
        const auto& [value, size] = want[static_cast<std::size_t>(i)];
        const quad off = magnitude(Wide<quad>(problem.output(i)) - value);
        const quad most = std::numeric_limits<Real<T>>::epsilon() * magnitude(value) + loss * size;
        EXPECT_TRUE(off <= most) << "element " << i << " is off by " << static_cast<double>(off) << " of "
                                 << static_cast<double>(magnitude(value));
    }
}

// First the product, and then what rounding took of it: y <- A x - y, all of whose leading digits cancel.
TYPED_TEST(XblasProducts, MatchSumsInQuadruplePrecision)
{
    using T = TypeParam;
    unsigned calls = 0;
    for (const auto& member : members<T>())
        for (const Int64 order : {blas_colmajor, blas_rowmajor})
            for (const Int64 option : options(member))
                for (const auto& [incx, incy] : {std::pair{1, 1}, {2, -3}, {-1, 2}})
                    for (const Int64 prec :
                         {blas_prec_extra, blas_prec_double, blas_prec_indigenous, blas_prec_single}) {
                        const Binding& binding = bindings[calls++ % (order == blas_colmajor ? 4 : 2)];
                        SCOPED_TRACE(testing::Message()
                                     << binding.prefix << member.name << binding.suffix << " " << order << " " << option
                                     << " " << incx << " " << incy << " " << prec);
                        Problem<T> p(member, 11, 7, 2, 3, order, option, incx, incy, calls);
                        p.call.prec = prec;
                        p.alpha = some<T>(1.5F, -0.5F);
                        p.beta = some<T>(0.25F, 2);
                        auto want = p.expected();
                        p.run(binding);
                        expect_near(p, want);
                        p.alpha = some<T>(1, 0);
                        p.beta = some<T>(0, 0);
                        p.run(binding);
                        p.beta = some<T>(-1, 0);
                        want = p.expected();
                        p.run(binding);
                        expect_near(p, want);
                    }
}

std::atomic<int> parts_run;

void run_parts(void*, int count, ork_part work, void* context)
{
    parts_run += count;
    std::vector<std::thread> threads;
    for (int i = 0; i < count; ++i) threads.emplace_back([=] { work(context, i); });
    for (auto& t : threads) t.join();
}

// Bands narrower and wider than their matrices, and with rows and columns that they don't reach.
TYPED_TEST(XblasProducts, ThreadsChangeNoBit)
{
    using T = TypeParam;
    struct Sizes {
        Int64 m, n, kl, ku;
    };
    for (const auto& member : members<T>())
        for (const auto& [m, n, kl, ku] :
             {Sizes{301, 263, 110, 77}, {2000, 60, 30, 20}, {300, 1500, 20, 100}, {200, 170, 5, 400}})
            for (const Int64 order : {blas_colmajor, blas_rowmajor})
                for (const Int64 option : {options(member)[0], options(member)[1]})
                    for (const auto& [incx, incy] : {std::pair{1, 1}, {-2, 1}, {1, -2}}) {
                        if (member.form == Form::triangle && m != 301) continue;
                        SCOPED_TRACE(testing::Message() << member.name << " " << m << " x " << n << " " << order << " "
                                                        << option << " " << incx << " " << incy);
                        Problem<T> problem(member, m, n, kl, ku, order, option, incx, incy);
                        problem.beta = some<T>(2, 0);
                        Problem<T> serial = problem;
                        ork_set_num_threads_local(1);
                        serial.run(bindings[1]);
                        ork_set_parallel_backend(run_parts, nullptr);
                        for (const int threads : {2, 3, 7}) {
                            ork_set_num_threads_local(threads);
                            Problem<T> threaded = problem;
                            parts_run = 0;
                            threaded.run(bindings[0]);
                            EXPECT_EQ(parts_run > 1, member.form != Form::triangle);
                            EXPECT_EQ(std::memcmp(threaded.y.data(), serial.y.data(), serial.y.size() * sizeof(T)), 0)
                                << threads << " threads";
                        }
                        ork_set_parallel_backend(nullptr, nullptr);
                    }
}

} // namespace

} // namespace ork::test
