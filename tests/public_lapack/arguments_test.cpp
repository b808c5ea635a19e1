// SPDX-License-Identifier: MIT
// Illegal arguments are reported once, by name and position, and leave the outputs alone; legal ones are not refused.
// The table of routines says what there is to call.
#include <cctype>
#include <functional>
#include <mutex>
#include <sstream>
#include <utility>

#include "lapack.h"
#include "lapack/rows.h"
#include "ork/blas.h"

namespace {

std::mutex mutex;
std::string reports;

void keep(const char* through, const char* routine, std::size_t length, std::int64_t position)
{
    const std::lock_guard hold(mutex);
    reports += through + std::string(" ") + std::string(routine, length) + " " + std::to_string(position) + "\n";
}

} // namespace

std::string ork::test::take_reports()
{
    const std::lock_guard hold(mutex);
    return std::exchange(reports, {});
}

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

using lapack::Argument, lapack::Role;

struct TableRow {
    std::string name;
    std::vector<Argument> arguments;
    std::function<void(void* routine, void** arguments)> call; // every argument is an address
};

const std::vector<TableRow>& table()
{
    static const std::vector<TableRow> rows = [] {
        std::vector<TableRow> list;
        const auto add = [&]<class Row>(Row) {
            list.push_back(
                {Row::name, {std::begin(Row::arguments), std::end(Row::arguments)}, [](void* routine, void** a) {
                     [&]<std::size_t... i>(std::index_sequence<i...>)
                     {
                         reinterpret_cast<void (*)(std::remove_reference_t<decltype(a[i])>...)>(routine)(a[i]...);
                     }
                     (std::make_index_sequence<Row::count>());
                 }});
        };
#define ROUTINE(n, routine, ...) add(lapack::rows::routine());
#define OWN_ROUTINE ROUTINE
#include "lapack/routines.inc"
        return list;
    }();
    return rows;
}

std::string upper(std::string name)
{
    for (char& c : name) c = static_cast<char>(std::toupper(c));
    name.resize(std::max<std::size_t>(6, name.size()), ' ');
    return name;
}

// A legal call with sizes of 4 and leading dimensions of 5; everything may be changed before it is made.
template <class Int>
struct Call {
    static constexpr std::size_t room = 512; // bytes an argument
    const TableRow* row;
    std::vector<std::vector<unsigned char>> values;

    explicit Call(const TableRow& r) : row(&r)
    {
        for (const Argument& a : r.arguments) {
            values.emplace_back(room, static_cast<unsigned char>(0x40)); // small positive numbers
            if (a.role == Role::letter) values.back()[0] = static_cast<unsigned char>(a.legal[0]);
            if (a.role == Role::size) integer(a.name) = 4;
            if (a.role == Role::lead || a.role == Role::work_size) integer(a.name) = 5;
            if (a.role == Role::pivots)
                for (int i = 0; i < 4; ++i) reinterpret_cast<Int*>(values.back().data())[i] = 4;
        }
    }
    std::size_t place(const std::string& name) const
    {
        std::size_t i = 0;
        while (i < values.size() && name != row->arguments[i].name) ++i;
        return i;
    }
    Int& integer(const std::string& name) { return *reinterpret_cast<Int*>(at(place(name))); }
    void* at(std::size_t i) { return values[i].data(); }

    // info
    Int make()
    {
        std::vector<void*> addresses;
        for (auto& v : values) addresses.push_back(v.data());
        row->call(lapack_symbol((sizeof(Int) == 4 ? "ork_lapack_lp64_" : "ork_lapack_") + row->name), addresses.data());
        return integer("info");
    }
};

template <class Int>
void expect_refused(Call<Int> call, std::size_t place)
{
    (void)take_reports();
    const auto before = call.values;
    const auto position = static_cast<Int>(place + 1);
    EXPECT_EQ(call.make(), -position);
    std::ostringstream want;
    want << (sizeof(Int) == 4 ? "xerbla_ " : "xerbla_64_ ") << upper(call.row->name) << " " << position << "\n";
    EXPECT_EQ(take_reports(), want.str());
    for (std::size_t i = 0; i + 1 < before.size(); ++i)
        EXPECT_EQ(call.values[i], before[i]) << call.row->arguments[i].name << " was touched";
}

template <class Int>
void refuses_each_illegal_argument()
{
    for (const TableRow& row : table())
        for (std::size_t i = 0; i < row.arguments.size(); ++i) {
            const Argument& a = row.arguments[i];
            if (!a.is_checked()) continue;
            SCOPED_TRACE(row.name + " " + a.name);
            std::vector<Int> wrong = {-1, std::numeric_limits<Int>::min()};
            if (a.role == Role::letter) wrong = {'X', '?', ' ', '1', 0};
            if (a.role == Role::lead) wrong = {-1, 0, 3};
            if (a.role == Role::work_size) wrong = {-2, 0, 3};
            if (a.role == Role::size && a.bound.plain != nullptr) wrong.push_back(5);
            for (const Int value : wrong) {
                Call<Int> call(row);
                if (a.role == Role::letter)
                    *static_cast<char*>(call.at(i)) = static_cast<char>(value);
                else
                    call.integer(a.name) = value;
                expect_refused(call, i);
            }
        }
}

TEST(LapackArguments, EachIllegalOneIsReportedOnce)
{
    refuses_each_illegal_argument<std::int32_t>();
    refuses_each_illegal_argument<std::int64_t>();
}

// Of LAPACK's own list.
TEST(LapackArguments, PositionsAreLapacks)
{
    const std::pair<const char*, std::vector<int>> list[] = {{"dgetrf", {1, 2, 4}},
                                                             {"zgetrs", {1, 2, 3, 5, 8}},
                                                             {"dgetri", {1, 3, 6}},
                                                             {"sgesv", {1, 2, 4, 7}},
                                                             {"dgtsv", {1, 2, 7}},
                                                             {"cpotrf", {1, 2, 4}},
                                                             {"dpotrs", {1, 2, 3, 5, 7}},
                                                             {"dposv", {1, 2, 3, 5, 7}},
                                                             {"dpotri", {1, 2, 4}},
                                                             {"dtrtri", {1, 2, 3, 5}},
                                                             {"dgeqrf", {1, 2, 4, 7}},
                                                             {"cungqr", {1, 2, 3, 5, 8}},
                                                             {"dormqr", {1, 2, 3, 4, 5, 7, 10, 12}}};
    for (const auto& [name, positions] : list)
        for (const TableRow& row : table()) {
            if (row.name != name) continue;
            std::vector<int> checked;
            for (std::size_t i = 0; i < row.arguments.size(); ++i)
                if (row.arguments[i].is_checked()) checked.push_back(static_cast<int>(i) + 1);
            EXPECT_EQ(checked, positions) << name;
        }
}

TEST(LapackArguments, EmptyProblemsAndBothCasesAreLegal)
{
    for (const TableRow& row : table()) {
        SCOPED_TRACE(row.name);
        Call<std::int32_t> call(row);
        for (std::size_t i = 0; i < row.arguments.size(); ++i) {
            const Argument& a = row.arguments[i];
            if (a.role == Role::letter) *static_cast<char*>(call.at(i)) = static_cast<char>(a.legal[1] | 0x20);
            if (a.role == Role::size) call.integer(a.name) = 0;
            if (a.role == Role::lead || a.role == Role::work_size) call.integer(a.name) = 1;
        }
        (void)take_reports();
        EXPECT_EQ(call.make(), 0);
        EXPECT_EQ(take_reports(), "");
    }
}

// lwork = -1 answers in work(1), touches nothing else, and the answer is accepted; ormqr asks for the other side.
TEST(LapackArguments, WorkspaceQueries)
{
    for (const TableRow& row : table())
        for (const char side : {'L', 'R'}) {
            if (row.arguments.size() < 2 || row.arguments[row.arguments.size() - 2].role != Role::work_size) continue;
            SCOPED_TRACE(row.name + side);
            Call<std::int64_t> call(row);
            const bool sided = std::string(row.arguments[0].name) == "side";
            if (sided) *static_cast<char*>(call.at(0)) = side;
            if (sided) call.integer("m") = 5, call.integer("k") = 3, call.integer("n") = 4;
            const std::int64_t least = sided && side == 'R' ? 5 : 4;
            call.integer("lwork") = -1;
            const auto before = call.values;
            EXPECT_EQ(call.make(), 0);
            const std::size_t work = call.place("work");
            const bool single = row.name[0] == 's' || row.name[0] == 'c';
            const double answer = single ? *static_cast<float*>(call.at(work)) : *static_cast<double*>(call.at(work));
            EXPECT_EQ(answer, static_cast<double>(least));
            for (std::size_t i = 0; i + 1 < before.size(); ++i)
                EXPECT_TRUE(i == work || call.values[i] == before[i]) << row.arguments[i].name;
            call.integer("lwork") = least - 1;
            expect_refused(call, call.place("lwork"));
        }
    // Rounded up where the number has more digits than the element.
    const std::int64_t n = (1 << 24) + 1, lwork = -1;
    float answer = 0;
    float* const none = &answer;
    EXPECT_EQ((lapack<float>("geqrf", n, n, none, n, none, &answer, lwork)), 0);
    EXPECT_GE(answer, static_cast<float>(n));
    EXPECT_GE(static_cast<std::int64_t>(answer), n);
}

} // namespace

} // namespace ork::test
