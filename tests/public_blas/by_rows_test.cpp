// SPDX-License-Identifier: MIT
// C calls with matrices stored by rows do what the same calls do with the matrices stored by columns. All numbers are
// small integers, so that results are exact and equal in whatever order they are computed.
#include <algorithm>

#include "bindings.h"
#include "reports.h"

namespace ork::test {

namespace {

// Where element (i, j) of a matrix stands.
struct Storage {
    std::int64_t rows, columns, lead;
    std::int64_t below = -1, above = -1; // diagonals of a band
    bool packed = false, lower = false;  // one triangle

    // Negative where nothing is stored.
    std::int64_t place(bool by_rows, std::int64_t i, std::int64_t j) const
    {
        if (packed) {
            if (lower ? i < j : i > j) return -1;
            const std::int64_t a = by_rows ? j : i, b = by_rows ? i : j; // line b from its element a on
            return lower != by_rows ? a + b * (2 * rows - b - 1) / 2 : a + b * (b + 1) / 2;
        }
        if (below < 0) return by_rows ? i * lead + j : i + j * lead;
        if (i - j > below || j - i > above) return -1;
        return by_rows ? below + j - i + i * lead : above + i - j + j * lead;
    }
};

Storage storage_of(Call& call, std::size_t i)
{
    const TableRow& row = *call.row;
    const std::size_t uplo = row.place("uplo");
    const bool has_triangle = uplo < row.arguments.size(), lower = has_triangle && call.letters[uplo] == 'L';
    if (std::string_view(row.arguments[i].name) == "ap")
        return {call.integer("n"), call.integer("n"), 0, -1, -1, true, lower};
    const std::int64_t lead = call.integers[i + 1];
    if (row.has(Role::band)) {
        if (!has_triangle) return {call.integer("m"), call.integer("n"), lead, call.integer("kl"), call.integer("ku")};
        const std::int64_t n = call.integer("n"), k = call.integer("k");
        return {n, n, lead, lower ? k : 0, lower ? 0 : k};
    }
    // The rows are what the leading dimension must hold. The columns are the other size of a transposed operand; a
    // matrix as high as the result is wide as it, and all others are square.
    const blas::Extent rule = row.arguments[i + 1].extent;
    if (rule.option != nullptr) {
        const std::size_t option = row.place(rule.option);
        const bool plain = call.letters[option] == row.arguments[option].legal[0];
        const std::int64_t rows = call.integer(plain ? rule.plain : rule.other);
        const bool square = row.arguments[option].role == Role::side;
        return {rows, square ? rows : call.integer(plain ? rule.other : rule.plain), lead};
    }
    const std::int64_t rows = call.integer(rule.plain);
    return {rows, std::string_view(rule.plain) == "m" ? call.integer("n") : rows, lead};
}

// The same problem with its matrices stored by rows, in arrays that are 77 elsewhere.
Call stored_by_rows(Call& call)
{
    Call turned = call;
    turned.layout = CblasRowMajor;
    const std::int64_t copies = call.row->is("_batch") ? call.integer("batch_size") : 1;
    for (std::size_t i = 0; i < call.elements.size(); ++i) {
        if (!call.row->is_matrix(i)) continue;
        const Storage s = storage_of(call, i);
        const std::int64_t stride = copies > 1 ? call.integers[i + 2] : 0;
        call.visit(i, [&]<class T>(T* from) {
            turned.visit(i, [&]<class U>(U* to) {
                std::fill_n(to, call.room, U(77));
                for (std::int64_t copy = 0; copy < copies; ++copy)
                    for (std::int64_t r = 0; r < s.rows; ++r)
                        for (std::int64_t c = 0; c < s.columns; ++c)
                            if (s.place(false, r, c) >= 0)
                                to[s.place(true, r, c) + copy * stride] =
                                    reinterpret_cast<const U*>(from)[s.place(false, r, c) + copy * stride];
            });
        });
    }
    return turned;
}

bool equal_numbers(Call& a, Call& b, std::size_t i)
{
    bool equal = true;
    a.visit(i, [&]<class T>(T* x) {
        equal = std::equal(x, x + a.capacity(i), reinterpret_cast<const T*>(b.elements[i].data()));
    });
    return equal;
}

// What a solve divides by: exactly.
void make_units_of_diagonal(Call& call)
{
    const std::size_t a = std::min(call.row->place("a"), call.row->place("ap"));
    const Storage s = storage_of(call, a);
    call.visit(a, [&]<class T>(T* x) {
        for (std::int64_t j = 0; j < s.rows; ++j) {
            T& d = x[s.place(false, j, j)];
            if constexpr (is_complex<T>)
                d = j % 2 == 0 ? T(0, -1) : T(1, 0);
            else
                d = static_cast<T>(j % 2 == 0 ? -1 : 1);
        }
    });
}

TEST(Bindings, ByRowsAreTheProblemByColumns)
{
    for (const TableRow& row : table()) {
        if (!row.in_c || !row.is_checked) continue;
        // Vectors of more than 128 elements are conjugated in other memory than shorter ones.
        for (const auto& [n, incx, incy] : {std::tuple{4, 1, 1}, {1, 1, 1}, {5, -2, 3}, {131, 1, -1}}) {
            const bool large = n > 100, solve = row.is("trs") || row.is("tbs") || row.is("tps");
            if (large && (!row.has(Role::increment) || solve)) continue;
            Call call(row, large ? 150 * 150 : 1024);
            Random random(n);
            call.fill(random, true);
            std::int64_t size = n, diagonals = 2;
            for (std::size_t i = 0; i < row.arguments.size(); ++i) {
                const std::string_view name = row.arguments[i].name;
                switch (row.arguments[i].role) {
                case Role::size:
                    call.integers[i] = name == "batch_size" ? 3 : name.starts_with("stride") ? 300 : size++;
                    break;
                case Role::band:
                    call.integers[i] = diagonals--;
                    break;
                case Role::lead:
                    call.integers[i] = n + 6;
                    break;
                case Role::increment:
                    call.integers[i] = name[3] == 'x' ? incx : incy;
                    break;
                default:
                    break;
                }
            }
            for_each_letters(call, [&] {
                SCOPED_TRACE(std::string(row.name) + " " + std::string(call.letters.begin(), call.letters.end()) +
                             " n " + std::to_string(n));
                if (solve) make_units_of_diagonal(call);
                Call columns = call, by_rows = stored_by_rows(call);
                for (Call* c : {&columns, &by_rows}) invoke({nullptr, true, true, "cblas_", "_64"}, *c);
                Call want = stored_by_rows(columns);
                for (std::size_t i = 0; i < call.elements.size(); ++i)
                    EXPECT_TRUE(equal_numbers(by_rows, want, i)) << row.arguments[i].name;
            });
        }
    }
    EXPECT_TRUE(take_reports().empty());
}

} // namespace

} // namespace ork::test
