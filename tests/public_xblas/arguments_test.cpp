// SPDX-License-Identifier: MIT
// Illegal arguments are reported once, by name and position, and leave y alone; legal ones are not refused.
#include <cctype>
#include <map>
#include <utility>

#include "ork/blas.h"
#include "problem.h"

namespace {

std::string reports;

void keep(const char* through, const char* routine, std::size_t length, std::int64_t position)
{
    reports += through + std::string(" ") + std::string(routine, length) + " " + std::to_string(position) + "\n";
}

} // namespace

std::string ork::test::take_reports() { return std::exchange(reports, {}); }

// This program's own, which take the library's place.
void xerbla_(const char* routine, const int32_t* position, size_t length)
{
    keep("xerbla_", routine, length, *position);
}
void xerbla_64_(const char* routine, const int64_t* position, size_t length)
{
    keep("xerbla_64_", routine, length, *position);
}

namespace ork::test {

namespace {

struct Step {
    Int64 Call::*argument;
    int position; // in C
};

// Order and positions of XBLAS.
const std::map<std::string, std::vector<Step>>& steps()
{
    static const std::map<std::string, std::vector<Step>> all = [] {
        const auto list = [](const std::vector<int>& positions) {
            const bool triangle = positions.size() == 7, band = positions.size() == 10;
            std::vector<Int64 Call::*> arguments = {&Call::order, &Call::option};
            if (!triangle) arguments.push_back(&Call::m);
            arguments.push_back(&Call::n);
            if (band) arguments.insert(arguments.end(), {&Call::kl, &Call::ku});
            arguments.insert(arguments.end(), {&Call::incx, &Call::incy, &Call::lda, &Call::prec});
            std::vector<Step> result;
            for (std::size_t i = 0; i < positions.size(); ++i) result.push_back({arguments[i], positions[i]});
            return result;
        };
        return std::map<std::string, std::vector<Step>>{
            {"gemv_x", list({1, 2, 3, 4, 9, 12, 7, 13})},        {"gemv2_x", list({1, 2, 3, 4, 10, 13, 7, 14})},
            {"gbmv_x", list({1, 2, 3, 4, 5, 6, 11, 14, 9, 15})}, {"gbmv2_x", list({1, 2, 3, 4, 5, 6, 12, 15, 9, 16})},
            {"symv_x", list({1, 2, 3, 8, 11, 6, 12})},           {"symv2_x", list({1, 2, 3, 9, 12, 6, 13})},
            {"hemv_x", list({1, 2, 3, 8, 11, 6, 12})},           {"hemv2_x", list({1, 2, 3, 9, 12, 6, 13})}};
    }();
    return all;
}

std::vector<Int64> illegal(Int64 Call::*argument, const Call& legal, bool triangle)
{
    if (argument == &Call::order) return {100, 103, 0};
    if (argument == &Call::option)
        return triangle ? std::vector<Int64>{120, 123, 111} : std::vector<Int64>{110, 114, 121};
    if (argument == &Call::n && !triangle) return {-1, 0};
    if (argument == &Call::incx || argument == &Call::incy) return {0};
    if (argument == &Call::lda) return {-1, 0, legal.lda - 3}; // two more than needed in a Problem
    if (argument == &Call::prec) return {210, 215, 0};
    return {-1, std::numeric_limits<std::int32_t>::min()};
}

template <class T>
class XblasArguments : public testing::Test {
protected:
    static void expect_report(Problem<T>& problem, const Member<T>& member, const Binding& binding, int position)
    {
        std::string name = binding.prefix + member.name;
        if (!binding.c)
            for (char& c : name) c = static_cast<char>(std::toupper(c));
        const auto before = problem.y;
        problem.run(binding);
        EXPECT_EQ(take_reports(), (binding.wide ? "xerbla_64_ " : "xerbla_ ") + name + " " +
                                      std::to_string(position - !binding.c) + "\n");
        EXPECT_EQ(std::memcmp(before.data(), problem.y.data(), before.size() * sizeof(T)), 0) << name;
    }
};
TYPED_TEST_SUITE(XblasArguments, Precisions, PrecisionNames);

TYPED_TEST(XblasArguments, EachIllegalOneIsReportedOnceInXblasOrder)
{
    for (const auto& member : members<TypeParam>())
        for (const Binding& binding : bindings)
            for (const Int64 order : {blas_colmajor, blas_rowmajor}) {
                if (!binding.c && order == blas_rowmajor) continue;
                const bool triangle = member.form == Form::triangle;
                Problem<TypeParam> legal(member, 5, 4, 1, 2, order, options(member)[1]);
                Problem<TypeParam> all_wrong = legal;
                const auto& list = steps().at(member.stem());
                for (const Step& step : list) {
                    if (step.argument == &Call::order && !binding.c) continue;
                    for (const Int64 value : illegal(step.argument, legal.call, triangle)) {
                        SCOPED_TRACE(testing::Message() << binding.prefix << member.name << binding.suffix << " "
                                                        << step.position << " is " << value);
                        Problem<TypeParam> wrong = legal;
                        wrong.call.*step.argument = value;
                        this->expect_report(wrong, member, binding, step.position);
                        all_wrong.call.*step.argument = value;
                    }
                }
                for (const Step& step : list) { // mended one after the other
                    SCOPED_TRACE(testing::Message() << member.name << " mended up to " << step.position);
                    if (step.argument == &Call::order && !binding.c) continue;
                    this->expect_report(all_wrong, member, binding, step.position);
                    all_wrong.call.*step.argument = legal.call.*step.argument;
                }
                all_wrong.run(binding);
                EXPECT_EQ(take_reports(), "");
            }
}

TYPED_TEST(XblasArguments, TheLeastLeadingDimensionAndEmptyProblemsAreLegal)
{
    for (const auto& member : members<TypeParam>())
        for (const Int64 order : {blas_colmajor, blas_rowmajor}) {
            SCOPED_TRACE(member.name);
            Problem<TypeParam> least(member, 3, 5, 1, 2, order, options(member)[0]);
            least.call.lda -= 2;
            for (auto& e : least.a) e = TypeParam{};
            least.run(bindings[0]);
            Problem<TypeParam> empty(member, 3, 5, 1, 2, order, options(member)[0]);
            (member.form == Form::triangle ? empty.call.n : empty.call.m) = 0;
            if (member.form != Form::band && (order == blas_colmajor || member.form == Form::triangle))
                empty.call.lda = 0;
            const auto before = empty.y;
            empty.run(bindings[1]);
            EXPECT_EQ(take_reports(), "");
            EXPECT_EQ(std::memcmp(before.data(), empty.y.data(), before.size() * sizeof(TypeParam)), 0);
        }
}

} // namespace

} // namespace ork::test
