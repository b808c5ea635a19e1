// SPDX-License-Identifier: MIT
#include <algorithm>
#include <charconv>
#include <cmath>

#include "peers/sparse.h"

namespace ork::peers {
namespace {

struct Name {
    std::string kind;
    std::vector<int> numbers;
};

std::optional<Name> parse(const std::string& text)
{
    Name name{text.substr(0, text.find(':')), {}};
    const char *p = text.c_str() + name.kind.size(), *end = text.c_str() + text.size();
    while (p != end) {
        int number = 0;
        const auto [next, error] = std::from_chars(++p, end, number);
        if (error != std::errc() || number < 1 || (next != end && *next != ':')) return std::nullopt;
        name.numbers.push_back(number);
        p = next;
    }
    // Entries at most; all arrays of a case together take about 40 bytes an entry.
    constexpr double most = 1 << 28;
    const double n = name.numbers.empty() ? most : name.numbers[0];
    const double entries = name.kind == "lap2d"   ? 5 * n * n
                           : name.kind == "lap3d" ? 7 * n * n * n
                           : name.kind == "box3d" ? 27 * n * n * n
                           : name.kind == "fem"   ? 81 * n
                           : name.kind == "pow" && name.numbers.size() == 2
                               ? n * std::max(name.numbers[1], n >= name.numbers[1] ? 1 : 1 << 28)
                               : 2 * most;
    if (entries > most || name.numbers.size() != (name.kind == "pow" ? 2 : 1)) return std::nullopt;
    return name;
}

void end_row(CsrMatrix& a) { a.ptr.push_back(static_cast<int>(a.col.size())); }

void add(CsrMatrix& a, int column, double value)
{
    a.col.push_back(column);
    a.val.push_back(value);
}

// Neighbours of a point of an n^dimensions grid: those along one axis, or the whole cube around it.
CsrMatrix stencil(int n, int dimensions, bool cube)
{
    CsrMatrix a;
    a.rows = a.columns = dimensions == 2 ? n * n : n * n * n;
    a.symmetric = true;
    const double diagonal = cube ? 26 : 2 * dimensions;
    const int depth = dimensions == 2 ? 1 : n;
    for (int z = 0; z < depth; ++z)
        for (int y = 0; y < n; ++y)
            for (int x = 0; x < n; ++x) {
                for (int dz = dimensions == 2 ? 0 : -1; dz <= (dimensions == 2 ? 0 : 1); ++dz)
                    for (int dy = -1; dy <= 1; ++dy)
                        for (int dx = -1; dx <= 1; ++dx) {
                            if (!cube && std::abs(dx) + std::abs(dy) + std::abs(dz) > 1) continue;
                            const int u = x + dx, v = y + dy, w = z + dz;
                            if (u < 0 || u >= n || v < 0 || v >= n || w < 0 || w >= depth) continue;
                            add(a, (w * n + v) * n + u, dx == 0 && dy == 0 && dz == 0 ? diagonal : -1);
                        }
                end_row(a);
            }
    return a;
}

// Blocks of 3 x 3 between a node and its neighbours, as displacements of solid bodies have them. A block and its mirror
// are made of one number a pair of unknowns, so the matrix is symmetric; the diagonal is larger than its row's sum.
CsrMatrix finite_elements(int nodes)
{
    constexpr int unknowns = 3, lower = 4, band = 60;
    std::vector<std::vector<int>> neighbours(static_cast<size_t>(nodes));
    Random random;
    for (int i = 0; i < nodes; ++i) {
        auto& mine = neighbours[static_cast<size_t>(i)];
        mine.push_back(i);
        for (int k = 0; k < std::min(lower, i); ++k) {
            const int j = i - 1 - static_cast<int>(std::fabs(random.next()) * std::min(band, i));
            auto& others = neighbours[static_cast<size_t>(j)];
            if (std::find(mine.begin(), mine.end(), j) != mine.end()) continue;
            mine.push_back(j);
            others.push_back(i);
        }
    }
    CsrMatrix a;
    a.rows = a.columns = nodes * unknowns;
    a.symmetric = true;
    const auto coupling = [](int row, int column) {
        const auto low = static_cast<uint64_t>(std::min(row, column)),
                   high = static_cast<uint64_t>(std::max(row, column));
        const uint64_t mixed = (low * 0x9e3779b97f4a7c15u + high) * 0xd1342543de82ef95u;
        return static_cast<double>(static_cast<int64_t>(mixed) >> 11) * 0x1p-52; // (-1, 1)
    };
    for (int i = 0; i < nodes; ++i) {
        auto& mine = neighbours[static_cast<size_t>(i)];
        std::sort(mine.begin(), mine.end());
        for (int u = 0; u < unknowns; ++u) {
            const int row = i * unknowns + u;
            double sum = 1;
            size_t diagonal = 0;
            for (const int j : mine)
                for (int v = 0; v < unknowns; ++v) {
                    const int column = j * unknowns + v;
                    if (column == row) diagonal = a.col.size();
                    add(a, column, coupling(row, column));
                    if (column != row) sum += std::fabs(a.val.back());
                }
            a.val[diagonal] = sum;
            end_row(a);
        }
    }
    return a;
}

// Rows as long, and columns as often met, as the k-th power of a uniform number says: few are hubs. Where the hubs lie
// is scattered over all numbers.
CsrMatrix power_law(int n, int mean)
{
    CsrMatrix a;
    a.rows = a.columns = n;
    Random random;
    const auto uniform = [&] { return 0.5 * (1 + random.next()); };
    std::vector<int> row;
    for (int i = 0; i < n; ++i) {
        // u^(-1/2) has the mean 2 and no variance: cut at a quarter of the columns
        const double wanted = 0.5 * mean / std::sqrt(std::max(uniform(), 1e-12));
        const int length = std::clamp(static_cast<int>(wanted + uniform()), 1, std::max(1, n / 4));
        row.clear();
        for (int k = 0; k < length; ++k) {
            const double u = uniform();
            const auto rank = static_cast<uint64_t>(u * u * u * n);
            row.push_back(static_cast<int>(rank * 2654435761u % static_cast<uint64_t>(n)));
        }
        std::sort(row.begin(), row.end());
        row.erase(std::unique(row.begin(), row.end()), row.end());
        for (const int column : row) add(a, column, random.next());
        end_row(a);
    }
    return a;
}

} // namespace

bool is_generated(const std::string& name) { return parse(name).has_value(); }

CsrMatrix generate(const std::string& text)
{
    const auto name = parse(text);
    if (!name) return {};
    const int n = name->numbers[0];
    if (name->kind == "lap2d") return stencil(n, 2, false);
    if (name->kind == "lap3d") return stencil(n, 3, false);
    if (name->kind == "box3d") return stencil(n, 3, true);
    if (name->kind == "fem") return finite_elements(n);
    return power_law(n, name->numbers[1]);
}

CsrMatrix triangle(const CsrMatrix& a, char uplo)
{
    CsrMatrix t;
    t.rows = t.columns = a.rows;
    for (int i = 0; i < a.rows; ++i) {
        bool diagonal = false;
        const auto supply = [&](int column) {
            if (!diagonal && column != i) add(t, i, 0);
            diagonal = true;
        };
        for (int k = a.ptr[static_cast<size_t>(i)]; k < a.ptr[static_cast<size_t>(i) + 1]; ++k) {
            const int column = a.col[static_cast<size_t>(k)];
            if (uplo == 'U' ? column < i : column > i) continue;
            if (column >= i) supply(column);
            add(t, column, a.val[static_cast<size_t>(k)]);
        }
        supply(-1);
        end_row(t);
    }
    return t;
}

CsrMatrix dominated(CsrMatrix t)
{
    for (int i = 0; i < t.rows; ++i) {
        double others = 0, *diagonal = nullptr;
        for (int k = t.ptr[static_cast<size_t>(i)]; k < t.ptr[static_cast<size_t>(i) + 1]; ++k) {
            double& value = t.val[static_cast<size_t>(k)];
            if (t.col[static_cast<size_t>(k)] == i)
                diagonal = &value;
            else
                others += std::fabs(value);
        }
        if (diagonal != nullptr && (!(std::fabs(*diagonal) >= others) || *diagonal == 0)) *diagonal = 1 + others;
    }
    return t;
}

} // namespace ork::peers
