// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cmath>
#include <numeric>
#include <stdexcept>

#include "demos/pagerank.h"
#include "ork/cblas.h"
#include "peers/measure.h"
#include "sparse_handle.h"

namespace ork::tool {
namespace {

constexpr double enough = 1e-12;
constexpr int most_iterations = 1000; // 0.85^170 is 1e-12

// r = damping (P' r + what dead ends hold, spread evenly) + (1 - damping) / n until r stays. product: y = alpha P' x +
// y.
template <class Product>
Ranking iterate(const Graph& graph, const Product& product)
{
    const size_t n = graph.nodes();
    const double start = peers::now(peers::Clock::wall), each = 1 / static_cast<double>(n);
    Ranking r;
    std::vector<double> next(n);
    r.rank.assign(n, each);
    while (r.iterations < most_iterations && !(r.change <= enough)) {
        double stranded = 0;
        for (const size_t node : graph.dead_ends) stranded += r.rank[node];
        std::fill(next.begin(), next.end(), (1 - damping + damping * stranded) * each);
        product(damping, r.rank.data(), next.data());
        r.rank.swap(next);
        cblas_daxpy(static_cast<int>(n), -1, r.rank.data(), 1, next.data(), 1);
        r.change = cblas_dasum(static_cast<int>(n), next.data(), 1);
        ++r.iterations;
        if (std::isnan(r.change)) break;
    }
    r.seconds = peers::now(peers::Clock::wall) - start;
    return r;
}

void set_chances(Graph& graph)
{
    peers::CsrMatrix& a = graph.links;
    a.val.resize(a.entries());
    for (size_t i = 0; i < graph.nodes(); ++i) {
        const int first = a.ptr[i], last = a.ptr[i + 1];
        std::fill(a.val.begin() + first, a.val.begin() + last, 1.0 / std::max(1, last - first));
        if (first == last) graph.dead_ends.push_back(i);
    }
}

} // namespace

Graph nearest_neighbours(const Images& images, int count)
{
    if (images.count <= count) throw std::runtime_error("fewer images than neighbours to be found");
    const auto n = static_cast<size_t>(images.count);
    std::vector<int> rows(n * pixels_each); // image after image
    for (int i = 0; i < images.count; ++i)
        for (int j = 0; j < pixels_each; ++j) rows[static_cast<size_t>(i * pixels_each + j)] = images.pixel(i, j);
    Graph graph;
    graph.links.rows = graph.links.columns = images.count;
    std::vector<std::pair<int, int>> others; // squared distance and number: in this order neighbours are chosen
    for (size_t i = 0; i < n; ++i) {
        others.clear();
        for (size_t j = 0; j < n; ++j) {
            int squares = 0;
            for (size_t p = 0; p < pixels_each; ++p) {
                const int d = rows[i * pixels_each + p] - rows[j * pixels_each + p];
                squares += d * d;
            }
            if (j != i) others.emplace_back(squares, static_cast<int>(j));
        }
        std::partial_sort(others.begin(), others.begin() + count, others.end());
        std::vector<int> nearest;
        for (int k = 0; k < count; ++k) nearest.push_back(others[static_cast<size_t>(k)].second);
        std::sort(nearest.begin(), nearest.end());
        graph.links.col.insert(graph.links.col.end(), nearest.begin(), nearest.end());
        graph.links.ptr.push_back(static_cast<int>(graph.links.col.size()));
    }
    set_chances(graph);
    return graph;
}

Graph links_of(const peers::CsrMatrix& matrix)
{
    Graph graph;
    graph.links.rows = graph.links.columns = matrix.rows;
    for (int i = 0; i < matrix.rows; ++i) {
        const auto row = static_cast<size_t>(i);
        for (auto k = static_cast<size_t>(matrix.ptr[row]); k < static_cast<size_t>(matrix.ptr[row + 1]); ++k)
            if (matrix.col[k] != i) graph.links.col.push_back(matrix.col[k]);
        graph.links.ptr.push_back(static_cast<int>(graph.links.col.size()));
    }
    set_chances(graph);
    return graph;
}

Ranking rank_by_handle(const Graph& graph)
{
    constexpr ork_sparse_kind general = {ORK_SPBLAS_GENERAL, ORK_SPBLAS_LOWER, ORK_SPBLAS_NON_UNIT};
    const SparseHandle links(graph.links);
    const double start = peers::now(peers::Clock::wall);
    require_sparse(ork_sparse_set_mv_hint(links.get(), ORK_SPBLAS_TRANS, general, 200));
    require_sparse(ork_sparse_optimize(links.get()));
    const double analysis = peers::now(peers::Clock::wall) - start;
    Ranking r = iterate(graph, [&](double alpha, const double* x, double* y) {
        require_sparse(ork_sparse_d_mv(ORK_SPBLAS_TRANS, alpha, links.get(), general, x, 1, y));
    });
    r.analysis = analysis;
    r.storage = links.describe().layout;
    return r;
}

Ranking rank_by_arrays(const Graph& graph)
{
    constexpr ork_spblas_kind general = {ORK_SPBLAS_GENERAL, ORK_SPBLAS_LOWER, ORK_SPBLAS_NON_UNIT, ORK_SPBLAS_BASE_0};
    const peers::CsrMatrix& a = graph.links;
    return iterate(graph, [&](double alpha, const double* x, double* y) {
        const int64_t status = ork_spblas_lp64_dcsrmv(ORK_SPBLAS_TRANS, general, a.rows, a.columns, alpha, a.val.data(),
                                                      a.col.data(), a.ptr.data(), a.ptr.data() + 1, x, 1, y);
        if (status != ORK_SPBLAS_SUCCESS) throw std::runtime_error(ork_spblas_last_error()->text);
    });
}

std::vector<size_t> order_of(const std::vector<double>& rank)
{
    std::vector<size_t> order(rank.size());
    std::iota(order.begin(), order.end(), size_t{0});
    std::stable_sort(order.begin(), order.end(), [&](size_t a, size_t b) { return rank[a] > rank[b]; });
    return order;
}

} // namespace ork::tool
