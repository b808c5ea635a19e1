// SPDX-License-Identifier: MIT
#include <charconv>
#include <fmt/format.h>
#include <optional>

#include "bench/family.h"

namespace ork::tool::bench {
namespace {

std::optional<Shape> shape_from(const std::string& text)
{
    int sides[3] = {0, 0, 0}, count = 0;
    const char *p = text.data(), *end = p + text.size();
    while (count < 3) {
        const auto [next, error] = std::from_chars(p, end, sides[count]);
        if (error != std::errc() || sides[count] < 1) break;
        ++count;
        p = next;
        if (p == end || *p != 'x') break;
        ++p;
    }
    if (p != end || count == 0) return std::nullopt;
    if (count == 1 || (count == 2 && sides[0] == sides[1])) return Shape{sides[0], sides[0], sides[0]};
    return Shape{sides[0], sides[1], sides[2]};
}

} // namespace

const std::vector<Family>& families()
{
    static const std::vector<Family> all = {
        {"gemm", "general matrix product, square and skinny", "GF/s", Field::dense, gemm_cases},
        {"level1", "vector routines in all precisions", "GB/s", Field::dense, level1_cases},
        {"level2", "matrix-vector routines; --routine for precisions, bands and packed triangles", "GF/s", Field::dense,
         level2_cases},
        {"level3", "matrix-matrix routines beside gemm", "GF/s", Field::dense, level3_cases},
        {"lapack", "LU, Cholesky and QR of small matrices one by one; --routine dgetrf,zpotrf,sgeqrf", "GF/s",
         Field::dense, lapack_cases},
        {"blocks", "rotations, reflectors, tridiagonal systems; --routine dlasr,dgtsv-many", "M/s", Field::dense,
         blocks_cases},
        {"factor", "LAPACK of any order; --routine dgetrf,dpotrf,dgeqrf,dgesv,dgetri", "GF/s", Field::dense,
         factor_cases},
        {"compact", "ten thousand small matrices in packs; --routine dgetrfnp,zpotrf,sgeqrf", "GF/s", Field::dense,
         compact_cases},
        {"trans", "matrix copy, transposition and addition; --routine zomatcopy,dimatcopy; --trans; --sizes all",
         "GB/s", Field::dense, trans_cases},
        {"xblas", "matrix-vector products in extra precision; --routine dgemv_x,zsymv_x; --trans", "Mmac/s",
         Field::dense, xblas_cases},
        {"threads", "two threads against one, eight callers at once", "GF/s", Field::dense, thread_cases},
        {"fft", "Fourier transforms; --kind for precision, real data, direction, --sizes all for every length", "GF/s",
         Field::transforms, fft_cases},
        {"trig", "sine and cosine transforms of types 0 to 5; --routine d0,s3", "GF/s", Field::transforms, trig_cases},
        {"poisson", "Poisson's equation on squares and cubes, u = 0 on the sides; --sizes 300x300,50x50x50", "Mpt/s",
         Field::transforms, poisson_cases},
        {"conv",
         "convolutions; --routine dconv,scorr,zauto (auto: against either method), --sizes 10000:64,256x256:9x9",
         "GF/s", Field::transforms, conv_cases},
        {"sparse",
         "sparse products and solves; --sizes lap2d:1200,fem:60000,file.mtx; --routine dmv,smm,dsv64; --trans", "GF/s",
         Field::sparse, sparse_cases},
        {"handles", "the same through analysed handles, peers in storage of their choice; also ddotmv, dsymgs", "GF/s",
         Field::handles, handle_cases},
        {"spgemm", "squares of sparse matrices through handles; --sizes lap3d:110,pow:8000:16", "GF/s", Field::handles,
         spgemm_cases},
    };
    return all;
}

std::string Shape::label() const
{
    if (square()) return fmt::format("{}", m);
    return k == 0 ? fmt::format("{}x{}", m, n) : fmt::format("{}x{}x{}", m, n, k);
}

std::vector<Shape> shapes_of(const std::vector<std::string>& sizes)
{
    std::vector<Shape> shapes;
    for (const std::string& size : sizes)
        if (const auto shape = shape_from(size)) shapes.push_back(*shape);
    return shapes;
}

Contest contest(std::unique_ptr<peers::Problem> problem, const std::vector<peers::Library>& libraries)
{
    const std::shared_ptr<peers::Problem> shared = std::move(problem);
    Contest result{{}, shared->work(), shared->limits(), shared, false};
    for (const peers::Library& library : libraries) {
        void* routine = library.find(shared->symbol().c_str());
        if (routine == nullptr) continue;
        result.contenders.push_back({library.name, library.kind,
                                     [p = shared.get(), routine](long calls) { p->run(routine, calls); },
                                     shared->check(routine)});
    }
    return result;
}

} // namespace ork::tool::bench
