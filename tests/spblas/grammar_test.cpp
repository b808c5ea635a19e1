// SPDX-License-Identifier: MIT
// Every member of the grammar by its name, against what its letters mean: values that must not be read are NaN, arrays
// end at inaccessible pages, and inputs are read-only.
#include <csignal>
#include <cstring>
#include <unistd.h>

#include "spblas/kernel.h"
#include "support/compare.h"
#include "support/environment.h"
#include "support/strided.h"

namespace ork::test {
namespace {

using spblas::is_parallel;
using spblas::scatters;

// A member that leaves its arrays ends the process: it says which one it was.
char running[64];
extern "C" void name_the_member(int signal)
{
    static_cast<void>(!write(STDERR_FILENO, running, std::strlen(running)));
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

int failures_so_far() { return testing::UnitTest::GetInstance()->current_test_info()->result()->total_part_count(); }

// One way of calling a member.
template <class T>
struct Setting {
    std::int64_t rows; // of values, not of blocks
    T alpha, beta;
    std::int64_t lb;
    std::int64_t rhs;
    bool everything; // also what doesn't depend on the numbers: environment, stack, empty ranges
};
template <class T>
const std::vector<Setting<T>>& settings()
{
    static const T alpha = scalar<T>(0.75, -1.25), beta = scalar<T>(-0.5, 1.5), imaginary = scalar<T>(-0.75, 0);
    static const std::vector<Setting<T>> list = {
        {13, alpha, T(0), 3, 3, false},
        {29, alpha, beta, 2, 9, true},
        {18, T(1), T(1), 5, 1, false},
        {7, T(0), is_complex<T> ? imaginary * scalar<T>(0, 1) : imaginary, 1, 4, false},
        {21, T(1), T(0), 4, 6, false},
        {1, beta, alpha, 8, 2, false},
        {26, is_complex<T> ? scalar<T>(0, 2) : T(2), alpha, 3, 17, false},
        {0, alpha, beta, 2, 3, false},
        {700, alpha, beta, 5, 2, false},
        {0, alpha, T(0), 3, 2, false},
    };
    return list;
}

struct Range {
    std::int64_t first, last;
};
// 1 .. count in pieces, some of them empty, in any order.
std::vector<Range> slices(std::int64_t count, Random& random)
{
    std::vector<Range> result;
    for (std::int64_t done = 0; done < count || result.empty();) {
        const std::int64_t next = std::min(count, done + random.integer(0, 1 + count / 3));
        result.push_back({done + 1, next});
        done = next;
        std::swap(result.back(),
                  result[static_cast<std::size_t>(random.integer(0, static_cast<std::int64_t>(result.size()) - 1))]);
    }
    return result;
}

template <class T>
class Check {
public:
    Check(Format format, Shape s, const Setting<T>& setting, const Sparse<T>& a, const Kernel<T>& kernel, Guard side,
          Random& random)
        : format_(format), s_(s), setting_(setting), a_(a), kernel_(kernel), model_(a, s), side_(side), random_(random)
    {
    }

    void run(Routine routine)
    {
        switch (routine) {
        case Routine::mvout:
            return mvout();
        case Routine::mmout:
            return mmout();
        case Routine::svout:
            return svout();
        default:
            return smout();
        }
    }

private:
    void in_environment(const std::function<void()>& call)
    {
        if (!setting_.everything) return;
        testing::AssertionResult kept = testing::AssertionSuccess();
        run_on_small_stack(small_stack, [&] { kept = keeps_fp_environment(call); });
        EXPECT_TRUE(kept);
    }

    void expect_product(std::int64_t rows, const auto& x, const auto& y, const auto& got, T beta, double more)
    {
        std::vector<Expected<Model::R>> want;
        std::vector<T> values;
        double most = 0;
        for (std::int64_t i = 0; i < rows; ++i) {
            want.push_back(model_.product(i, setting_.alpha, x, beta, y(i)));
            values.push_back(got(i));
            most = std::max(most, model_.terms(i));
        }
        expect_near<T>(values, want, most + more);
    }

    // What a solve found, multiplied again.
    void expect_solution(const std::vector<T>& b, const auto& got)
    {
        const T one(1);
        for (std::int64_t i = 0; i < model_.rows(); ++i) {
            const T wanted = b[static_cast<std::size_t>(i)];
            auto sum = model_.product(i, one, got, one, -wanted);
            const auto bound = static_cast<Model::R>(std::numeric_limits<Real<T>>::epsilon()) * sum.scale *
                               static_cast<Model::R>(model_.terms(i));
            if (!(magnitude(sum.value) <= bound))
                ADD_FAILURE() << "row " << i << " of the solution " << show(got(i)) << " is wrong by "
                              << static_cast<double>(magnitude(sum.value));
        }
    }

    std::vector<T> start(std::int64_t count)
    {
        const std::vector<T> values = uniform_values<T>(count, random_.bits());
        return setting_.beta == T(0) ? std::vector<T>(values.size(), not_a_number<T>()) : values;
    }

    void mvout()
    {
        const std::int64_t rows = model_.rows();
        const std::vector<T> begin = start(rows);
        const Guarded<T> y(begin, side_);
        Guarded<T> x(uniform_values<T>(model_.columns(), random_.bits()), side_);
        x.read_only();
        const auto call_sized = [&](Range range, std::int64_t m, std::int64_t n, const Guarded<T>& out, T beta) {
            kernel_.mvout(range.first, range.last, m, n, setting_.alpha, x.data(), out.data(), beta);
        };
        const auto call = [&](Range range, const Guarded<T>& out, T beta) {
            call_sized(range, format_ == Format::dia ? a_.rows : rows / a_.lb, a_.columns, out, beta);
        };
        const bool by_columns = format_ == Format::bsc || (format_ == Format::sky && s_.uplo == 'u');
        const std::int64_t count = format_ == Format::coo ? static_cast<std::int64_t>(a_.blocks.size())
                                   : by_columns           ? a_.columns
                                                          : a_.rows;
        in_environment([&] { call({1, count}, Guarded<T>(begin, side_), setting_.beta); });

        const bool parallel = is_parallel(Routine::mvout, s_), shared = !parallel || !scatters(format_, s_);
        auto ranges = parallel ? slices(count, random_) : std::vector<Range>{{1, count}};
        std::vector<T> sum;
        for (const Range range : ranges) {
            if (shared) {
                const std::vector<T> before = y.values();
                call(range, y, setting_.beta);
                for (std::int64_t i = 0; i < rows && parallel; ++i)
                    if (i < (range.first - 1) * a_.lb || i >= range.last * a_.lb)
                        expect_same_bits<T>(y[i], before[static_cast<std::size_t>(i)]);
                sum = y.values();
                continue;
            }
            // A y each, as concurrent calls have it: the first takes beta.
            const bool first = sum.empty();
            Guarded<T> own(first ? begin : std::vector<T>(begin.size(), not_a_number<T>()), side_);
            call(range, own, first ? setting_.beta : T(0));
            EXPECT_TRUE(own.unchanged_outside());
            if (first)
                sum = own.values();
            else
                for (std::size_t i = 0; i < sum.size(); ++i) sum[i] += own.data()[i];
        }
        EXPECT_TRUE(y.unchanged_outside());
        const auto at = [](const auto& values) {
            return [&](std::int64_t i) { return values[static_cast<std::size_t>(i)]; };
        };
        const auto x_at = [&](std::int64_t j) { return x[j]; };
        expect_product(rows, x_at, at(begin), at(sum), setting_.beta, static_cast<double>(ranges.size()));
        if (!setting_.everything || !parallel) return;

        for (const Range empty : {Range{1, 0}, Range{3, 2}, Range{4, 1}}) {
            Guarded<T> scaled(begin, side_), left(begin, side_);
            call(empty, scaled, setting_.beta);
            std::vector<T> want = begin;
            for (T& element : want) element = shared ? element : element * setting_.beta;
            expect_same_bits<T>(scaled, want, rows);
            for (const std::int64_t size : {0, -3}) call_sized(empty, size, size, left, setting_.beta);
            EXPECT_TRUE(left.unchanged());
        }
        if (format_ != Format::csr || shared) return;
        // Without a size y is not scaled, but the rows are worked on.
        Guarded<T> unscaled(begin, side_);
        call_sized({1, count}, 0, 0, unscaled, setting_.beta);
        expect_product(rows, x_at, at(begin), at(unscaled.values()), T(1), 0);
    }

    // Right-hand sides with NaN between them. Row r of j is at(r, j).
    struct Operand {
        Operand(std::int64_t rows, std::int64_t rhs, bool row_major, std::int64_t spare, Guard side)
            : row_major(row_major),
              values(row_major ? rhs : rows, row_major ? rows : rhs, (row_major ? rhs : rows) + spare, side)
        {
        }
        T& at(std::int64_t r, std::int64_t j) const { return row_major ? values(j, r) : values(r, j); }
        auto column(std::int64_t j) const
        {
            return [this, j](std::int64_t r) { return at(r, j); };
        }
        // Everything but the right-hand sides of the range is as it was.
        testing::AssertionResult changed_only(Range range) const
        {
            return values.unchanged_except([&](std::int64_t i, std::int64_t k) {
                const std::int64_t j = row_major ? i : k;
                return range.first - 1 <= j && j < range.last;
            });
        }
        bool row_major;
        Matrix<T> values;
    };
    Operand operand(std::int64_t rows, std::int64_t rhs)
    {
        return {rows, rhs, s_.layout == 'c', random_.integer(0, 3), side_};
    }

    void mmout()
    {
        const std::int64_t rows = model_.rows(), rhs = setting_.rhs;
        Operand b = operand(model_.columns(), rhs), c = operand(rows, rhs);
        b.values.fill(random_);
        b.values.read_only();
        if (setting_.beta != T(0)) c.values.fill(random_);
        const std::vector<T> begin = c.values.values();
        const auto call = [&](Range range) {
            kernel_.mmout(range.first, range.last, a_.rows, a_.columns, setting_.alpha, b.values.data(), b.values.ld(),
                          c.values.data(), c.values.ld(), setting_.beta);
        };
        in_environment([&] { call({1, rhs}); });
        std::size_t next = 0;
        if (setting_.beta != T(0)) c.values.fill([&] { return begin[next++]; });

        auto ranges = is_parallel(Routine::mmout, s_) ? slices(rhs, random_) : std::vector<Range>{{1, rhs}};
        for (const Range range : ranges) {
            call(range);
            EXPECT_TRUE(c.changed_only(range));
            c.values.remember();
        }
        for (std::int64_t j = 0; j < rhs; ++j)
            expect_product(
                rows, b.column(j),
                [&](std::int64_t i) {
                    return begin[static_cast<std::size_t>(c.row_major ? i * rhs + j : j * rows + i)];
                },
                c.column(j), setting_.beta, 0);
        if (!setting_.everything || !is_parallel(Routine::mmout, s_)) return;
        for (const Range empty : {Range{1, 0}, Range{3, 2}}) call(empty);
        EXPECT_TRUE(c.values.unchanged());
    }

    void svout()
    {
        const std::vector<T> begin = uniform_values<T>(model_.rows(), random_.bits());
        in_environment([&] { kernel_.svout(a_.rows, Guarded<T>(begin, side_).data()); });
        Guarded<T> y(begin, side_);
        kernel_.svout(a_.rows, y.data());
        EXPECT_TRUE(y.unchanged_outside());
        expect_solution(begin, [&](std::int64_t i) { return y[i]; });
        y.remember();
        for (const std::int64_t m : {0, -2}) kernel_.svout(m, y.data());
        EXPECT_TRUE(y.unchanged());
    }

    void smout()
    {
        const std::int64_t rows = model_.rows(), rhs = setting_.rhs;
        Operand c = operand(rows, rhs);
        c.values.fill(random_);
        const std::vector<T> begin = c.values.values();
        in_environment([&] { kernel_.smout(1, rhs, a_.rows, c.values.data(), c.values.ld()); });
        std::size_t next = 0;
        c.values.fill([&] { return begin[next++]; });
        for (const Range range : slices(rhs, random_)) {
            kernel_.smout(range.first, range.last, a_.rows, c.values.data(), c.values.ld());
            EXPECT_TRUE(c.changed_only(range));
            c.values.remember();
        }
        for (std::int64_t j = 0; j < rhs; ++j) {
            std::vector<T> b;
            for (std::int64_t i = 0; i < rows; ++i)
                b.push_back(begin[static_cast<std::size_t>(c.row_major ? i * rhs + j : j * rows + i)]);
            expect_solution(b, c.column(j));
        }
        if (!setting_.everything) return;
        for (const Range empty : {Range{1, 0}, Range{3, 2}})
            kernel_.smout(empty.first, empty.last, a_.rows, c.values.data(), c.values.ld());
        EXPECT_TRUE(c.values.unchanged());
    }

    Format format_;
    Shape s_;
    const Setting<T>& setting_;
    const Sparse<T>& a_;
    const Kernel<T>& kernel_;
    Model model_;
    Guard side_;
    Random& random_;
};

template <class Int, class T>
void check_member(Format format, Routine routine, Shape s)
{
    const std::string name = symbol_prefix<Int, T>() + name_of(format, routine, s) + "\n";
    running[name.copy(running, sizeof running - 1)] = 0;
    std::uint64_t seed = 0;
    for (const char letter : name) seed = seed * 31 + static_cast<unsigned char>(letter);
    Random random(seed);
    const bool blocked = format == Format::bsr || format == Format::bsc;
    const int before = failures_so_far();
    for (const Setting<T>& setting : settings<T>()) {
        // Which blocks of rows a large matrix is taken in has nothing to do with the integer.
        if (setting.rows > 100 && (sizeof(Int) == 4) != (sizeof(T) == 8)) continue;
        const std::int64_t lb = blocked ? setting.lb : 1, rows = (setting.rows + lb - 1) / lb;
        const std::int64_t columns = s.type == 'g' ? std::max<std::int64_t>(0, rows + random.integer(-6, 6)) : rows;
        const bool solve = routine == Routine::svout || routine == Routine::smout;
        // Products with a diagonal of ones and vectors take whole compressed rows and take the unused part off again.
        const bool finite =
            format == Format::csr && routine == Routine::mvout && s.diag == 'u' && (s.type == 's' || s.type == 'h');
        Structure structure{s, rows, columns, lb, solve, format == Format::sky, finite};
        if (format == Format::sky && s.type == 'd' && random.integer(0, 1) == 1) structure.shape.uplo = 'u';
        const Sparse<T> a = random_sparse<T>(structure, random);
        Arrangement how{s};
        how.side = both_guards[random.integer(0, 1)];
        how.start = random.integer(0, 5);
        how.gaps = random.integer(0, 1) == 1;
        how.spare = random.integer(0, 3);
        how.offset = static_cast<std::size_t>(random.integer(0, 3));
        SCOPED_TRACE(testing::Message() << name << rows << " x " << columns << " of blocks of " << lb << ", alpha "
                                        << setting.alpha << ", beta " << setting.beta << ", start " << how.start
                                        << (how.gaps ? ", gaps" : ""));
        const auto member = kernel<Int>(format, routine, s, a, how);
        if (member->found()) Check<T>(format, s, setting, a, *member, how.side, random).run(routine);
        if (failures_so_far() != before) return;
    }
}

template <class Int, class T>
void check_format(Format format)
{
    std::signal(SIGSEGV, name_the_member);
    for_each_member(is_complex<T>, [&](Format its, Routine routine, Shape s) {
        if (its == format) check_member<Int, T>(format, routine, s);
    });
    std::signal(SIGSEGV, SIG_DFL);
}

template <class C>
class Grammar : public testing::Test {
};
TYPED_TEST_SUITE(Grammar, Cases, CaseNames);

#define FORMAT(Name, format)                                                                                           \
    TYPED_TEST(Grammar, Name) { check_format<typename TypeParam::Int, typename TypeParam::T>(format); }
FORMAT(CompressedRows, Format::csr)
FORMAT(Coordinates, Format::coo)
FORMAT(BlocksByRows, Format::bsr)
FORMAT(BlocksByColumns, Format::bsc)
FORMAT(Diagonals, Format::dia)
FORMAT(Profiles, Format::sky)

} // namespace
} // namespace ork::test
