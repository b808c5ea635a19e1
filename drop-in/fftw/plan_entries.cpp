// SPDX-License-Identifier: MIT
// The routines that make plans. Flags don't matter: every plan is made alike, keeps its input, and takes no longer than
// a few transforms.
#include "plan.h"

namespace {

using namespace ork::fftw;

Array real(Number* x) { return {x, nullptr}; }
Array interleaved(Complex* x) { return {reinterpret_cast<Number*>(x), nullptr}; }

Problem problem(Kind kind, bool backward, Array in, Array out, bool split = false)
{
    Problem p;
    p.kind = kind;
    p.backward = backward;
    p.split = split;
    p.arrays = {in, out};
    return p;
}
Problem complex_problem(int sign, Complex* in, Complex* out)
{
    return problem(Kind::complex, sign == backward_sign, interleaved(in), interleaved(out));
}
Problem r2c_problem(Number* in, Complex* out) { return problem(Kind::r2c, false, real(in), interleaved(out)); }
Problem c2r_problem(Complex* in, Number* out) { return problem(Kind::c2r, true, interleaved(in), real(out)); }

Problem real_problem(Number* in, Number* out) { return problem(Kind::r2r, false, real(in), real(out)); }

// Dimension d of the caller's; kinds is null but for r2r.
bool add(Problem& p, const Dimension& dimension, const int* kinds, int d)
{
    if (p.kind != Kind::r2r) return p.add_dimension(dimension);
    const bool known = kinds != nullptr && kinds[d] >= 0 && kinds[d] <= static_cast<int>(RealKind::rodft11);
    return known && p.add_dimension(dimension, static_cast<RealKind>(kinds[d]));
}

// Row-major arrays `embed` around n (null: of the very size, or in place padded for the longer side) for one side.
struct Embedding {
    const int* embed;
    std::int64_t stride, distance;
};

Plan* many(Problem p, int rank, const int* n, int count, const Embedding& in, const Embedding& out,
           const int* kinds = nullptr)
{
    if (rank < 0 || n == nullptr || count < 0) return nullptr;
    const auto last = [&](bool complex_side) -> std::int64_t {
        const std::int64_t length = n[rank - 1];
        if (p.kind == Kind::complex || p.kind == Kind::r2r) return length;
        if (complex_side) return length / 2 + 1;
        return p.in_place() ? 2 * (length / 2 + 1) : length;
    };
    std::int64_t in_stride = in.stride, out_stride = out.stride;
    for (int d = rank - 1; d >= 0; --d) {
        if (!add(p, {n[d], in_stride, out_stride}, kinds, d)) return nullptr;
        in_stride *= in.embed ? in.embed[d] : d == rank - 1 ? last(p.complex_in()) : n[d];
        out_stride *= out.embed ? out.embed[d] : d == rank - 1 ? last(p.complex_out()) : n[d];
    }
    if (!p.add_loop({count, in.distance, out.distance})) return nullptr;
    return make_plan(p);
}

Plan* simple(const Problem& p, int rank, const int* n, const int* kinds = nullptr)
{
    return many(p, rank, n, 1, {nullptr, 1, 0}, {nullptr, 1, 0}, kinds);
}

template <class Int>
Plan* guru(Problem p, int rank, const IoDim<Int>* dimensions, int loops, const IoDim<Int>* loop,
           const int* kinds = nullptr)
{
    if (rank < 0 || loops < 0) return nullptr;
    for (int d = rank - 1; d >= 0; --d)
        if (!add(p, {dimensions[d].n, dimensions[d].is, dimensions[d].os}, kinds, d)) return nullptr;
    for (int l = loops - 1; l >= 0; --l)
        if (!p.add_loop({loop[l].n, loop[l].is, loop[l].os})) return nullptr;
    return make_plan(p);
}

} // namespace

ENTRY Plan* FFTW(plan_dft)(int rank, const int* n, Complex* in, Complex* out, int sign, unsigned)
{
    return simple(complex_problem(sign, in, out), rank, n);
}
ENTRY Plan* FFTW(plan_dft_1d)(int n, Complex* in, Complex* out, int sign, unsigned)
{
    return simple(complex_problem(sign, in, out), 1, &n);
}
ENTRY Plan* FFTW(plan_dft_2d)(int n0, int n1, Complex* in, Complex* out, int sign, unsigned)
{
    const int n[] = {n0, n1};
    return simple(complex_problem(sign, in, out), 2, n);
}
ENTRY Plan* FFTW(plan_dft_3d)(int n0, int n1, int n2, Complex* in, Complex* out, int sign, unsigned)
{
    const int n[] = {n0, n1, n2};
    return simple(complex_problem(sign, in, out), 3, n);
}
ENTRY Plan* FFTW(plan_many_dft)(int rank, const int* n, int howmany, Complex* in, const int* inembed, int istride,
                                int idist, Complex* out, const int* onembed, int ostride, int odist, int sign, unsigned)
{
    return many(complex_problem(sign, in, out), rank, n, howmany, {inembed, istride, idist}, {onembed, ostride, odist});
}

ENTRY Plan* FFTW(plan_dft_r2c)(int rank, const int* n, Number* in, Complex* out, unsigned)
{
    return simple(r2c_problem(in, out), rank, n);
}
ENTRY Plan* FFTW(plan_dft_r2c_1d)(int n, Number* in, Complex* out, unsigned)
{
    return simple(r2c_problem(in, out), 1, &n);
}
ENTRY Plan* FFTW(plan_dft_r2c_2d)(int n0, int n1, Number* in, Complex* out, unsigned)
{
    const int n[] = {n0, n1};
    return simple(r2c_problem(in, out), 2, n);
}
ENTRY Plan* FFTW(plan_dft_r2c_3d)(int n0, int n1, int n2, Number* in, Complex* out, unsigned)
{
    const int n[] = {n0, n1, n2};
    return simple(r2c_problem(in, out), 3, n);
}
ENTRY Plan* FFTW(plan_many_dft_r2c)(int rank, const int* n, int howmany, Number* in, const int* inembed, int istride,
                                    int idist, Complex* out, const int* onembed, int ostride, int odist, unsigned)
{
    return many(r2c_problem(in, out), rank, n, howmany, {inembed, istride, idist}, {onembed, ostride, odist});
}

ENTRY Plan* FFTW(plan_dft_c2r)(int rank, const int* n, Complex* in, Number* out, unsigned)
{
    return simple(c2r_problem(in, out), rank, n);
}
ENTRY Plan* FFTW(plan_dft_c2r_1d)(int n, Complex* in, Number* out, unsigned)
{
    return simple(c2r_problem(in, out), 1, &n);
}
ENTRY Plan* FFTW(plan_dft_c2r_2d)(int n0, int n1, Complex* in, Number* out, unsigned)
{
    const int n[] = {n0, n1};
    return simple(c2r_problem(in, out), 2, n);
}
ENTRY Plan* FFTW(plan_dft_c2r_3d)(int n0, int n1, int n2, Complex* in, Number* out, unsigned)
{
    const int n[] = {n0, n1, n2};
    return simple(c2r_problem(in, out), 3, n);
}
ENTRY Plan* FFTW(plan_many_dft_c2r)(int rank, const int* n, int howmany, Complex* in, const int* inembed, int istride,
                                    int idist, Number* out, const int* onembed, int ostride, int odist, unsigned)
{
    return many(c2r_problem(in, out), rank, n, howmany, {inembed, istride, idist}, {onembed, ostride, odist});
}

// A split complex transform is forward; a backward one is asked for by exchanging real and imaginary parts.
#define GURU(prefix, IoDim)                                                                                            \
    ENTRY Plan* FFTW(prefix##_dft)(int rank, const IoDim* dims, int loops, const IoDim* loop, Complex* in,             \
                                   Complex* out, int sign, unsigned)                                                   \
    {                                                                                                                  \
        return guru(complex_problem(sign, in, out), rank, dims, loops, loop);                                          \
    }                                                                                                                  \
    ENTRY Plan* FFTW(prefix##_split_dft)(int rank, const IoDim* dims, int loops, const IoDim* loop, Number* ri,        \
                                         Number* ii, Number* ro, Number* io, unsigned)                                 \
    {                                                                                                                  \
        return guru(problem(Kind::complex, false, {ri, ii}, {ro, io}, true), rank, dims, loops, loop);                 \
    }                                                                                                                  \
    ENTRY Plan* FFTW(prefix##_dft_r2c)(int rank, const IoDim* dims, int loops, const IoDim* loop, Number* in,          \
                                       Complex* out, unsigned)                                                         \
    {                                                                                                                  \
        return guru(r2c_problem(in, out), rank, dims, loops, loop);                                                    \
    }                                                                                                                  \
    ENTRY Plan* FFTW(prefix##_dft_c2r)(int rank, const IoDim* dims, int loops, const IoDim* loop, Complex* in,         \
                                       Number* out, unsigned)                                                          \
    {                                                                                                                  \
        return guru(c2r_problem(in, out), rank, dims, loops, loop);                                                    \
    }                                                                                                                  \
    ENTRY Plan* FFTW(prefix##_split_dft_r2c)(int rank, const IoDim* dims, int loops, const IoDim* loop, Number* in,    \
                                             Number* ro, Number* io, unsigned)                                         \
    {                                                                                                                  \
        return guru(problem(Kind::r2c, false, real(in), {ro, io}, true), rank, dims, loops, loop);                     \
    }                                                                                                                  \
    ENTRY Plan* FFTW(prefix##_split_dft_c2r)(int rank, const IoDim* dims, int loops, const IoDim* loop, Number* ri,    \
                                             Number* ii, Number* out, unsigned)                                        \
    {                                                                                                                  \
        return guru(problem(Kind::c2r, true, {ri, ii}, real(out), true), rank, dims, loops, loop);                     \
    }                                                                                                                  \
    ENTRY Plan* FFTW(prefix##_r2r)(int rank, const IoDim* dims, int loops, const IoDim* loop, Number* in, Number* out, \
                                   const int* kinds, unsigned)                                                         \
    {                                                                                                                  \
        return guru(real_problem(in, out), rank, dims, loops, loop, kinds);                                            \
    }
GURU(plan_guru, IoDim32)
GURU(plan_guru64, IoDim64)

ENTRY Plan* FFTW(plan_r2r)(int rank, const int* n, Number* in, Number* out, const int* kinds, unsigned)
{
    return simple(real_problem(in, out), rank, n, kinds);
}
ENTRY Plan* FFTW(plan_r2r_1d)(int n, Number* in, Number* out, int kind, unsigned)
{
    return simple(real_problem(in, out), 1, &n, &kind);
}
ENTRY Plan* FFTW(plan_r2r_2d)(int n0, int n1, Number* in, Number* out, int kind0, int kind1, unsigned)
{
    const int n[] = {n0, n1}, kinds[] = {kind0, kind1};
    return simple(real_problem(in, out), 2, n, kinds);
}
ENTRY Plan* FFTW(plan_r2r_3d)(int n0, int n1, int n2, Number* in, Number* out, int kind0, int kind1, int kind2,
                              unsigned)
{
    const int n[] = {n0, n1, n2}, kinds[] = {kind0, kind1, kind2};
    return simple(real_problem(in, out), 3, n, kinds);
}
ENTRY Plan* FFTW(plan_many_r2r)(int rank, const int* n, int howmany, Number* in, const int* inembed, int istride,
                                int idist, Number* out, const int* onembed, int ostride, int odist, const int* kinds,
                                unsigned)
{
    return many(real_problem(in, out), rank, n, howmany, {inembed, istride, idist}, {onembed, ostride, odist}, kinds);
}
