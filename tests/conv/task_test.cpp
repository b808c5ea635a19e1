// SPDX-License-Identifier: MIT
// Tasks by the kernel library's own exports: creation, edits, the order of checks, copies, release.
#include <array>
#include <climits>
#include <optional>
#include <utility>

#include "conv/reference.h"

namespace ork::test {
namespace {

using conv::Calls;

struct Task {
    ork_conv_task* p = nullptr;

    Task() = default;
    Task(std::int32_t job, Ints x, Ints y, Ints z, std::int32_t mode = ORK_CONV_DIRECT,
         std::int32_t precision = ORK_CONV_DOUBLE, std::int32_t domain = ORK_CONV_REAL)
    {
        const auto dims = static_cast<std::int32_t>(x.size());
        EXPECT_EQ(conv_kernels().newtask(&p, job, 0, mode, domain, precision, dims, x.data(), y.data(), z.data()), 0);
    }
    Task(const Task&) = delete;
    Task(Task&& other) noexcept : p(std::exchange(other.p, nullptr)) {}
    ~Task()
    {
        if (p != nullptr) {
            EXPECT_EQ(conv_kernels().deletetask(&p), 0);
        }
    }
    std::int32_t edit(std::int32_t parameter, const Ints& value)
    {
        return conv_kernels().edittask(p, parameter, value.data());
    }
    std::int32_t exec(const void* x, const void* y, void* z, const Ints& z_stride = {})
    {
        return conv_kernels().exec(p, x, nullptr, y, nullptr, z, or_null(z_stride));
    }
};

// Numbers that add up exactly.
const double x3[] = {1, 10, 100}, y5[] = {1, 2, 3, 4, 5};
constexpr double untouched = -4711;

std::vector<double> result(Task& task, std::size_t count)
{
    std::vector<double> z(count, untouched);
    EXPECT_EQ(task.exec(x3, y5, z.data()), 0);
    return z;
}

const std::vector<double> full_convolution = {1, 12, 123, 234, 345, 450, 500},
                          full_correlation = {100, 210, 321, 432, 543, 54, 5};

class ConvTask : public testing::Test {
protected:
    ConvTask() { replaced_core().reset(); }
    ~ConvTask() override { EXPECT_EQ(replaced_core().blocks, blocks_) << "not freed"; }

private:
    int blocks_ = replaced_core().blocks;
};

TEST_F(ConvTask, CreationFillsTheRecord)
{
    Ints x = {3, 4}, y = {5, 6}, z = {7, 8}, more = {9, 10};
    ork_conv_task* task = nullptr;
    ASSERT_EQ(
        conv_kernels().newtaskx(&task, 2, 77, 1, 2, 1, 2, x.data(), y.data(), z.data(), 0x123456789a, more.data()), 0);
    x = y = z = more = {0, 0}; // the caller's arrays are not referred to
    EXPECT_EQ((std::array{task->status, task->job, task->code, task->mode, task->parameter_4}),
              (std::array{0, 2, 77, 1, 0}));
    EXPECT_EQ((std::array{task->domain, task->precision, task->internal_precision, task->dims, task->committed}),
              (std::array{2, 1, 1, 2, 0}));
    EXPECT_EQ(task->start, nullptr);
    EXPECT_EQ(task->decimation, nullptr);
    EXPECT_EQ((std::array{task->xshape[0], task->xshape[1], task->yshape[0], task->yshape[1]}),
              (std::array{3, 4, 5, 6}));
    EXPECT_EQ((std::array{task->zshape[0], task->zshape[1], task->optional[0], task->optional[1]}),
              (std::array{7, 8, 9, 10}));
    EXPECT_EQ(task->extra, 0x123456789a);
    EXPECT_EQ(conv_kernels().deletetask(&task), 0);
    EXPECT_EQ(task, nullptr);

    const Task plain(1, {3}, {5}, {7});
    EXPECT_EQ(plain.p->extra, 0);
    EXPECT_EQ(plain.p->optional, nullptr);
}

TEST_F(ConvTask, NullArgumentsAndNoMemory)
{
    const std::int32_t n[] = {1};
    ork_conv_task* task = nullptr;
    EXPECT_EQ(conv_kernels().newtask(nullptr, 1, 0, 1, 1, 2, 1, n, n, n), ORK_CONV_NULL);
    EXPECT_EQ(conv_kernels().newtask(&task, 1, 0, 1, 1, 2, 1, nullptr, n, n), ORK_CONV_NULL);
    EXPECT_EQ(conv_kernels().newtask(&task, 1, 0, 1, 1, 2, 1, n, nullptr, n), ORK_CONV_NULL);
    EXPECT_EQ(conv_kernels().newtaskx(&task, 1, 0, 1, 1, 2, 1, n, n, nullptr, 0, n), ORK_CONV_NULL);
    replaced_core().allocations_left = 0;
    EXPECT_EQ(conv_kernels().newtask(&task, 1, 0, 1, 1, 2, 1, n, n, n), ORK_CONV_NO_TASK_MEMORY);
    replaced_core().reset();
    EXPECT_EQ(task, nullptr);

    EXPECT_EQ(conv_kernels().edittask(nullptr, ORK_CONV_MODE, n), ORK_CONV_NULL);
    EXPECT_EQ(conv_kernels().exec(nullptr, x3, n, x3, n, &task, n), ORK_CONV_NULL);
    EXPECT_EQ(conv_kernels().execx(nullptr, x3, n, &task, n), ORK_CONV_NULL);
    EXPECT_EQ(conv_kernels().deletetask(nullptr), ORK_CONV_NULL);
    EXPECT_EQ(conv_kernels().deletetask(&task), ORK_CONV_NULL);

    const Task good(1, {3}, {5}, {7});
    EXPECT_EQ(conv_kernels().copytask(nullptr, good.p), ORK_CONV_NULL);
    EXPECT_EQ(conv_kernels().copytask(&task, nullptr), ORK_CONV_NULL);
    replaced_core().allocations_left = 0;
    EXPECT_EQ(conv_kernels().copytask(&task, good.p), ORK_CONV_NO_TASK_MEMORY);
    EXPECT_EQ(task, nullptr);
}

TEST_F(ConvTask, DefaultsAndEditedOutputs)
{
    for (const std::int32_t mode : {ORK_CONV_DIRECT, ORK_CONV_FFT}) {
        SCOPED_TRACE(mode);
        const auto expect_near = [](const std::vector<double>& got, const std::vector<double>& want) {
            ASSERT_EQ(got.size(), want.size());
            for (std::size_t k = 0; k < got.size(); ++k) EXPECT_NEAR(got[k], want[k], 1e-10) << k;
        };
        Task convolution(ORK_CONV_CONVOLUTION, {3}, {5}, {7}, mode),
            correlation(ORK_CONV_CORRELATION, {3}, {5}, {7}, mode);
        expect_near(result(convolution, 7), full_convolution);
        // the first lag at which the arrays overlap: the last of x meets the first of y
        expect_near(result(correlation, 7), full_correlation);

        Task some(ORK_CONV_CORRELATION, {3}, {5}, {3}, mode);
        Ints start = {-1}, step = {2};
        EXPECT_EQ(some.edit(ORK_CONV_START, start), 0);
        EXPECT_EQ(some.edit(ORK_CONV_DECIMATION, step), 0);
        start[0] = step[0] = 1000; // copied
        expect_near(result(some, 3), {210, 432, 54});
        EXPECT_EQ(some.p->committed, 1);
        EXPECT_EQ(some.edit(ORK_CONV_START, {0}), 0);
        EXPECT_EQ(some.p->committed, 0);
        expect_near(result(some, 3), {321, 543, 5});
    }
}

TEST_F(ConvTask, EditsByParameter)
{
    for (std::int32_t parameter = -2; parameter <= 25; ++parameter) {
        SCOPED_TRACE(parameter);
        const bool known = parameter >= 1 && parameter <= 19;
        const bool editable = parameter == 3 || parameter == 4 || parameter == 5 || parameter == 6 || parameter == 9;
        const std::int32_t want = editable ? 0 : known ? ORK_CONV_FIXED_PARAMETER : ORK_CONV_BAD_EDIT;
        Task task(ORK_CONV_CONVOLUTION, {3}, {5}, {1});
        result(task, 1);
        EXPECT_EQ(task.edit(parameter, {2}), want);
        EXPECT_EQ(task.p->committed, 0);
        EXPECT_EQ(task.p->status, want);
        const std::int32_t values[] = {task.p->mode, task.p->parameter_4, task.p->start ? *task.p->start : 0,
                                       task.p->decimation ? *task.p->decimation : 1, task.p->internal_precision};
        EXPECT_EQ(values[0], parameter == 3 ? 2 : ORK_CONV_DIRECT);
        EXPECT_EQ(values[1], parameter == 4 ? 2 : 0);
        EXPECT_EQ(values[2], parameter == 5 ? 2 : 0);
        EXPECT_EQ(values[3], parameter == 6 ? 2 : 1);
        EXPECT_EQ(values[4], 2);
        double z = untouched;
        EXPECT_EQ(task.exec(x3, y5, &z), want);
        EXPECT_EQ(z == untouched, want != 0);
        // sticks, whatever the next edit is
        EXPECT_EQ(task.edit(ORK_CONV_MODE, {1}), want);

        Task other(ORK_CONV_CONVOLUTION, {3}, {5}, {1});
        const std::int32_t null_status = known ? ORK_CONV_BAD_EDIT : ORK_CONV_NULL;
        EXPECT_EQ(conv_kernels().edittask(other.p, parameter, nullptr), null_status);
        EXPECT_EQ(other.exec(x3, y5, &z), null_status);
        EXPECT_EQ(conv_kernels().execx(other.p, y5, nullptr, &z, nullptr), null_status);
    }
}

// A run that fails leaves a committed task: the next run is judged by itself, but edits wait until one has succeeded.
TEST_F(ConvTask, AfterARunThatFailed)
{
    Task task(ORK_CONV_CONVOLUTION, {3}, {5}, {7});
    double z[7];
    EXPECT_EQ(task.exec(nullptr, y5, z), ORK_CONV_NULL_X);
    EXPECT_EQ(task.p->status, ORK_CONV_NULL_X);
    EXPECT_EQ(task.edit(ORK_CONV_MODE, {2}), ORK_CONV_NULL_X);
    EXPECT_EQ(task.p->mode, 1);
    EXPECT_EQ(task.exec(x3, nullptr, z), ORK_CONV_NULL_Y);
    EXPECT_EQ(result(task, 7), full_convolution);
    EXPECT_EQ(task.edit(ORK_CONV_MODE, {2}), 0);
}

// Everything is wrong at first; what has been reported is mended, one thing after the other.
TEST_F(ConvTask, ChecksInTheirOrder)
{
    for (const std::int32_t job : {ORK_CONV_CONVOLUTION, ORK_CONV_CORRELATION})
        for (const std::int32_t domain : {ORK_CONV_REAL, ORK_CONV_COMPLEX})
            for (const std::int32_t mode : {ORK_CONV_AUTO, ORK_CONV_DIRECT, ORK_CONV_FFT})
                for (const std::size_t dims : {1, 3}) {
                    SCOPED_TRACE(testing::Message() << job << domain << mode << dims);
                    // the last dimension is the one that is wrong
                    const auto with_last = [&](std::int32_t most, std::int32_t last) {
                        Ints shape(dims, most);
                        shape[dims - 1] = last;
                        return shape;
                    };
                    const std::int32_t first = job == ORK_CONV_CONVOLUTION ? 0 : -2;
                    std::vector<std::array<double, 2>> x(27), y(27), z(8, {untouched, untouched});
                    std::int32_t precision = 3;
                    Ints nx = with_last(3, 0), ny = with_last(3, -1), nz = with_last(2, INT_MIN);
                    Ints start = with_last(first, first + 5), step = with_last(1, 0), stride = with_last(1, 0);
                    const void *px = nullptr, *py = nullptr;
                    void* pz = nullptr;
                    const auto run = [&] {
                        Task task(job, nx, ny, nz, mode, precision, domain);
                        EXPECT_EQ(task.edit(ORK_CONV_START, start), 0);
                        EXPECT_EQ(task.edit(ORK_CONV_DECIMATION, step), 0);
                        const std::int32_t status = task.exec(px, py, pz, stride);
                        EXPECT_EQ(task.p->status, status);
                        return status;
                    };
                    EXPECT_EQ(run(), ORK_CONV_UNSUPPORTED);
                    precision = 2;
                    EXPECT_EQ(run(), ORK_CONV_NULL_X);
                    px = x.data();
                    EXPECT_EQ(run(), ORK_CONV_BAD_X_SHAPE);
                    nx.back() = 3;
                    EXPECT_EQ(run(), ORK_CONV_NULL_Y);
                    py = y.data();
                    EXPECT_EQ(run(), ORK_CONV_BAD_Y_SHAPE);
                    ny.back() = 3;
                    EXPECT_EQ(run(), ORK_CONV_NULL_Z);
                    pz = z.data();
                    EXPECT_EQ(run(), ORK_CONV_BAD_Z_SHAPE);
                    nz.back() = 2;
                    EXPECT_EQ(run(), ORK_CONV_BAD_Z_STRIDE);
                    stride.back() = 4;
                    EXPECT_EQ(run(), ORK_CONV_BAD_START);
                    start.back() = first - 1;
                    EXPECT_EQ(run(), ORK_CONV_BAD_START);
                    start.back() = first + 3;
                    EXPECT_EQ(run(), ORK_CONV_BAD_DECIMATION);
                    step.back() = 2;
                    EXPECT_EQ(run(), ORK_CONV_BAD_DECIMATION);
                    for (const auto& number : z) EXPECT_EQ(number[0], untouched);
                    step.back() = 1;
                    if (dims == 3) stride = {1, 2, 4};
                    EXPECT_EQ(run(), ORK_CONV_OK);
                }
}

TEST_F(ConvTask, OutputsMustLieInTheFullResult)
{
    const auto status = [](std::int32_t job, std::int32_t nx, std::int32_t ny, std::int32_t nz,
                           std::optional<std::int32_t> start, std::int32_t step) {
        Task task(job, {nx}, {ny}, {nz});
        if (start) {
            EXPECT_EQ(task.edit(ORK_CONV_START, {*start}), 0);
        }
        EXPECT_EQ(task.edit(ORK_CONV_DECIMATION, {step}), 0);
        const std::vector<double> numbers(20);
        std::vector<double> z(20);
        return task.exec(numbers.data(), numbers.data(), z.data());
    };
    constexpr auto convolution = ORK_CONV_CONVOLUTION, correlation = ORK_CONV_CORRELATION;
    const struct {
        std::int32_t job, nx, ny, nz;
        std::optional<std::int32_t> start;
        std::int32_t step, want;
    } cases[] = {
        {convolution, 3, 4, 4, 0, 2, ORK_CONV_BAD_DECIMATION}, // number 6 of 0 .. 5
        {convolution, 4, 4, 4, 0, 2, ORK_CONV_OK},
        {convolution, 3, 4, 1, 5, INT_MAX, ORK_CONV_OK},
        {convolution, 3, 4, 1, 6, 1, ORK_CONV_BAD_START},
        {convolution, 3, 4, 1, -1, 1, ORK_CONV_BAD_START},
        {convolution, 3, 4, 1, INT_MIN, 1, ORK_CONV_BAD_START},
        {convolution, 3, 4, 1, 0, -1, ORK_CONV_BAD_DECIMATION},
        {convolution, 3, 4, 7, {}, 1, ORK_CONV_BAD_DECIMATION},
        {convolution, 3, 4, 5, 0, 1 << 30, ORK_CONV_BAD_DECIMATION}, // 2^32 is not 0
        {convolution, 3, 4, INT_MAX, 0, INT_MAX, ORK_CONV_BAD_DECIMATION},
        {correlation, 3, 4, 6, {}, 1, ORK_CONV_OK},
        {correlation, 3, 4, 7, {}, 1, ORK_CONV_BAD_DECIMATION},
        {correlation, 3, 4, 1, -2, 1, ORK_CONV_OK},
        {correlation, 3, 4, 1, -3, 1, ORK_CONV_BAD_START},
        {correlation, 3, 4, 1, 3, 1, ORK_CONV_OK},
        {correlation, 3, 4, 1, 4, 1, ORK_CONV_BAD_START},
        {correlation, 3, 4, 1, INT_MAX, 1, ORK_CONV_BAD_START},
        {correlation, 3, 4, 2, 3, 1, ORK_CONV_BAD_DECIMATION},
    };
    for (const auto& c : cases) EXPECT_EQ(status(c.job, c.nx, c.ny, c.nz, c.start, c.step), c.want) << &c - cases;
}

// A line of double numbers is not computed in single precision, unless it is so long that it is transformed like a
// grid; a grid is, in double.
TEST_F(ConvTask, WhatNoKernelIsFor)
{
    const auto status = [](std::int32_t job, std::int32_t precision, std::int32_t internal, std::int32_t mode, Ints x) {
        const Ints one(x.size(), 1);
        Task task(job, x, one, one, mode, precision);
        EXPECT_EQ(task.edit(ORK_CONV_INTERNAL_PRECISION, {internal}), 0);
        double z;
        return task.exec(nullptr, y5, &z); // null is looked at only where there is a kernel
    };
    constexpr auto none = ORK_CONV_UNSUPPORTED, some = ORK_CONV_NULL_X;
    for (const std::int32_t mode : {0, 1, 2, 3, -1}) {
        EXPECT_EQ(status(1, 2, 1, mode, {33554432}), none) << mode;
        EXPECT_EQ(status(1, 2, 1, mode, {33554433}), mode == ORK_CONV_FFT ? some : none) << mode;
        EXPECT_EQ(status(2, 2, 1, mode, {3, 3}), some) << mode;
        EXPECT_EQ(status(2, 1, 2, mode, {3}), some) << mode;
    }
    for (const std::int32_t wrong : {0, 3, -1}) {
        EXPECT_EQ(status(wrong, 2, 2, 1, {3, 3}), none);
        EXPECT_EQ(status(1, wrong, 2, 1, {3, 3}), none);
        EXPECT_EQ(status(1, 2, wrong, 1, {3, 3}), none);
    }
    const Ints eight(8, 1);
    for (const std::int32_t dims : {0, -1, 8, INT_MAX, INT_MIN}) {
        Task task;
        ASSERT_EQ(conv_kernels().newtask(&task.p, 1, 0, 1, 1, 2, dims, eight.data(), eight.data(), eight.data()), 0);
        EXPECT_EQ(task.edit(ORK_CONV_START, eight), 0);
        double z = untouched;
        EXPECT_EQ(task.exec(x3, y5, &z), none) << dims;
        EXPECT_EQ(z, untouched);
        EXPECT_EQ(conv_kernels().method(task.p), ORK_CONV_DIRECT);
    }
    Task seven(1, Ints(7, 1), Ints(7, 1), Ints(7, 1));
    EXPECT_EQ(result(seven, 1), std::vector<double>{1});
}

TEST_F(ConvTask, CopiesAreIndependent)
{
    std::optional<Task> task(std::in_place, ORK_CONV_CORRELATION, Ints{3}, Ints{5}, Ints{3});
    ASSERT_EQ(task->edit(ORK_CONV_START, {0}), 0);
    ASSERT_EQ(task->edit(ORK_CONV_DECIMATION, {2}), 0);
    result(*task, 3);
    Task copy, second;
    ASSERT_EQ(conv_kernels().copytask(&copy.p, task->p), 0);
    ASSERT_EQ(copy.edit(ORK_CONV_START, {-2}), 0);
    EXPECT_EQ(result(copy, 3), (std::vector<double>{100, 321, 543}));
    EXPECT_EQ(result(*task, 3), (std::vector<double>{321, 543, 5}));
    EXPECT_EQ(task->edit(7, {1}), ORK_CONV_FIXED_PARAMETER);
    EXPECT_EQ(conv_kernels().copytask(&second.p, task->p), 0);
    task.reset();
    EXPECT_EQ(result(copy, 3), (std::vector<double>{100, 321, 543}));
    EXPECT_EQ(second.p->status, ORK_CONV_FIXED_PARAMETER) << "the status is copied too";
}

// x's address and strides in the two carried fields.
TEST_F(ConvTask, FixedX)
{
    const double spread[] = {1, untouched, 10, untouched, 100};
    for (const std::int32_t mode : {ORK_CONV_DIRECT, ORK_CONV_FFT}) {
        const std::int32_t nx = 3, ny = 5, nz = 7, stride = 2, backward = -2;
        Task forward, reversed, copy;
        const auto extra = [](const double* p) {
            return static_cast<std::int64_t>(reinterpret_cast<std::uintptr_t>(p));
        };
        ASSERT_EQ(conv_kernels().newtaskx(&forward.p, 1, 0, mode, 1, 2, 1, &nx, &ny, &nz, extra(spread), &stride), 0);
        ASSERT_EQ(
            conv_kernels().newtaskx(&reversed.p, 2, 0, mode, 1, 2, 1, &nx, &ny, &nz, extra(spread + 4), &backward), 0);
        ASSERT_EQ(conv_kernels().copytask(&copy.p, forward.p), 0);
        for (int round = 0; round < 2; ++round)
            for (Task* task : {&forward, &reversed, &copy}) {
                double z[7];
                ASSERT_EQ(conv_kernels().execx(task->p, y5, nullptr, z, nullptr), 0);
                for (int k = 0; k < 7; ++k) EXPECT_NEAR(z[k], full_convolution[k], 1e-10) << k;
            }
        // any other x, by exec
        const double x[] = {2, 0, 0};
        double z[7];
        ASSERT_EQ(forward.exec(x, y5, z), 0);
        EXPECT_NEAR(z[4], 10, 1e-10);
        EXPECT_NEAR(z[5], 0, 1e-10);
        ASSERT_EQ(forward.edit(ORK_CONV_START, {0}), 0); // what was kept goes, and comes again
        ASSERT_EQ(conv_kernels().execx(forward.p, y5, nullptr, z, nullptr), 0);
        EXPECT_NEAR(z[2], 123, 1e-10);
    }
    Task none(ORK_CONV_CONVOLUTION, {3}, {5}, {7});
    double z[7];
    EXPECT_EQ(conv_kernels().execx(none.p, y5, nullptr, z, nullptr), ORK_CONV_NULL_X);
}

// The entries in mixed case are the core's routines: these choose the method of a task that leaves it open.
TEST_F(ConvTask, ForwardingEntriesReachTheCore)
{
    const std::int32_t nx = 3, ny = 5, nz = 7;
    ork_conv_task *task = nullptr, *fixed = nullptr, *copy = nullptr;
    ASSERT_EQ(conv_kernel<Calls::newtask>("NewTask")(&task, 1, 0, ORK_CONV_AUTO, 1, 2, 1, &nx, &ny, &nz), 0);
    ASSERT_EQ(conv_kernel<Calls::newtaskx>("NewTaskX")(&fixed, 1, 0, ORK_CONV_AUTO, 1, 2, 1, &nx, &ny, &nz,
                                                       static_cast<std::int64_t>(reinterpret_cast<std::uintptr_t>(x3)),
                                                       nullptr),
              0);
    double z[7];
    ASSERT_EQ(conv_kernel<Calls::exec>("Exec")(task, x3, nullptr, y5, nullptr, z, nullptr), 0);
    EXPECT_NE(task->mode, ORK_CONV_AUTO);
    EXPECT_EQ(std::vector<double>(z, z + 7), full_convolution);
    ASSERT_EQ(conv_kernel<Calls::execx>("ExecX")(fixed, y5, nullptr, z, nullptr), 0);
    EXPECT_NE(fixed->mode, ORK_CONV_AUTO);
    const std::int32_t direct = ORK_CONV_DIRECT;
    ASSERT_EQ(conv_kernel<Calls::edittask>("EditTask")(task, ORK_CONV_MODE, &direct), 0);
    EXPECT_EQ(task->automatic, 0);
    ASSERT_EQ(conv_kernel<Calls::copytask>("CopyTask")(&copy, task), 0);
    for (ork_conv_task** all : {&task, &fixed, &copy}) {
        EXPECT_EQ(conv_kernel<Calls::deletetask>("DeleteTask")(all), 0);
        EXPECT_EQ(*all, nullptr);
    }
}

// Extents whose product no memory holds are estimated without anything wrapping round.
TEST_F(ConvTask, HugeExtents)
{
    const Ints huge(7, INT_MAX), one(7, 1);
    for (const std::int32_t job : {ORK_CONV_CONVOLUTION, ORK_CONV_CORRELATION}) {
        const Task all(job, huge, huge, huge, ORK_CONV_AUTO), single(job, huge, one, one, ORK_CONV_AUTO);
        for (const Task* task : {&all, &single}) {
            const std::int32_t method = conv_kernels().method(task->p);
            EXPECT_TRUE(method == ORK_CONV_DIRECT || method == ORK_CONV_FFT) << method;
        }
    }
}

} // namespace
} // namespace ork::test
