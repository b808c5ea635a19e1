// SPDX-License-Identifier: MIT
// Illegal arguments are reported once, by name and position, and nothing is touched; legal ones are not refused.
#include <algorithm>
#include <cctype>

#include "call.h"
#include "reports.h"

namespace ork::test {

namespace {

using T = std::complex<double>;

Report report_of(const Binding& binding, const char* stem, std::int64_t position)
{
    std::string name = precision_letter<T>() + std::string(stem);
    if (!binding.c)
        for (char& letter : name) letter = static_cast<char>(std::toupper(letter));
    return {std::string(binding.c ? "cblas_xerbla" : "xerbla_") + (!binding.wide ? ""
                                                                   : binding.c   ? "64_"
                                                                                 : "64_"),
            (binding.c ? "cblas_" : "") + name, position};
}

void expect_refused(const Binding& binding, Call<T> call, const std::string& argument)
{
    const auto& list = call.routine->arguments;
    const auto position = std::find(list.begin(), list.end(), argument) - list.begin() + 1;
    const Call<T> before = call;
    (void)take_reports();
    call.make(binding);
    EXPECT_EQ(take_reports(), std::vector{report_of(binding, call.routine->stem, position)});
    EXPECT_TRUE(call.a == before.a && call.b == before.b && call.c == before.c);
}

// lda, ldb and ldc are one too short for what is stored: by columns or rows, transposed or not.
TEST(TransArguments, EachIllegalOneIsReportedByItsPosition)
{
    for (const Routine& routine : routines)
        for (const Binding& binding : bindings)
            for (const char ordering : {'C', 'R'})
                for (const char trans : {'N', 'T', 'C', 'R'})
                    for (const std::string& name : routine.arguments) {
                        Call<T> call(routine.stem, ordering, trans, trans == 'N' ? 'T' : 'R', 4, 6);
                        call.stridea = call.strideb = 1;
                        if (call.is_scalar(name) || call.is_array(name) || name.starts_with("distance")) continue;
                        SCOPED_TRACE(binding.prefix + routine.stem + binding.suffix + " " + ordering + trans + " " +
                                     name);
                        if (call.is_letter(name))
                            call.letter(name) = '?';
                        else if (name == "lda")
                            call.lda = call.length(call.added() && call.turned(trans)) - 1;
                        else if (name == "ldb")
                            call.ldb = call.length(call.turned(call.added() ? call.transb : trans)) - 1;
                        else if (name == "ldc")
                            call.ldc = call.length(false) - 1;
                        else
                            call.integer(name) = name.starts_with("stride") ? 0 : -1;
                        expect_refused(binding, call, name);
                    }
}

TEST(TransArguments, TheFirstOfSeveralIsReported)
{
    for (const Routine& routine : routines)
        for (const Binding& binding : {bindings[0], bindings[6]}) {
            const auto& list = routine.arguments;
            for (std::size_t first = 0; first < list.size(); ++first) {
                // The number of groups stands before all that is in them, and so does their size.
                const bool grouped = list[5][0] == 'p';
                if (grouped && list[first] != "ordering") continue;
                Call<T> call(routine.stem, 'C', 'T', 'N', 4, 6);
                std::string wrong;
                for (std::size_t i = first; i < list.size(); ++i) {
                    if (call.is_scalar(list[i]) || call.is_array(list[i]) || list[i].starts_with("distance")) continue;
                    if (wrong.empty()) wrong = list[i];
                    if (call.is_letter(list[i]))
                        call.letter(list[i]) = '?';
                    else if (list[i] != "size")
                        call.integer(list[i]) = -1;
                }
                if (wrong.empty() || wrong == "size") continue;
                SCOPED_TRACE(binding.prefix + routine.stem + " from " + list[first]);
                expect_refused(binding, call, wrong);
            }
        }
}

TEST(TransArguments, EmptyAndTightCallsAreLegal)
{
    for (const Routine& routine : routines)
        for (const Binding& binding : {bindings[0], bindings[8]})
            for (const auto& [rows, cols] : {std::pair<Int, Int>{0, 0}, {0, 3}, {3, 0}, {1, 1}, {2, 3}})
                for (const char ordering : {'C', 'R'})
                    for (const char trans : {'N', 'T'}) {
                        Call<T> call(routine.stem, ordering, trans, trans, rows, cols);
                        call.stridea = call.strideb = 1;
                        call.lda = std::max<Int>(1, call.length(call.added() && call.turned(trans)));
                        call.ldb = std::max<Int>(1, call.length(call.turned(trans)));
                        call.ldc = std::max<Int>(1, call.length(false));
                        (void)take_reports();
                        call.expect_right(binding);
                        if (call.batched()) {
                            call.size = 0;
                            call.expect_right(binding);
                        }
                        EXPECT_EQ(take_reports(), std::vector<Report>{});
                    }
}

} // namespace

} // namespace ork::test
