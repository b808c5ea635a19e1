/* SPDX-License-Identifier: MIT */
/* A program that uses FFTW, compiled against its header and compared with plain sums; -DSINGLE for single precision.
   Prints what differs, then the version of the library that it ran on. */
#include <complex.h>
#include <fftw3.h>
#include <math.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#ifdef SINGLE
#define F(name) fftwf_##name
typedef float Real;
static const double epsilon = 0x1p-23;
#else
#define F(name) fftw_##name
typedef double Real;
static const double epsilon = 0x1p-52;
#endif
typedef F(complex) Complex;

enum { most = 4096 };
static int failures = 0;

static void check(const char* what, int fine)
{
    if (fine) return;
    printf("wrong: %s\n", what);
    ++failures;
}

static double number(int i) { return (double)(i * 7919L % 1000) / 500 - 1; }
static void fill(Real* x, int count)
{
    for (int i = 0; i < count; ++i) x[i] = (Real)number(i);
}

/* Element k of the transform of an array of `rank` dimensions n, the last one contiguous. */
static double complex sum_at(const double complex* x, int rank, const int* n, int k, int sign)
{
    int count = 1;
    for (int d = 0; d < rank; ++d) count *= n[d];
    double complex sum = 0;
    for (int j = 0; j < count; ++j) {
        double turns = 0;
        for (int d = rank - 1, jj = j, kk = k; d >= 0; jj /= n[d], kk /= n[d], --d)
            turns += (double)((long)(jj % n[d]) * (kk % n[d]) % n[d]) / n[d];
        sum += x[j] * cexp(sign * 2 * acos(-1) * turns * I);
    }
    return sum;
}

static int is_close(double complex got, double complex want, int count)
{
    return cabs(got - want) <= 40 * epsilon * count;
}

static Complex *in, *out;
static Real *real_in, *real_out;
static double complex model[most];

/* Compares numbers of the output, every 7th of more than 100, with sums over the model. */
static int agrees(int rank, const int* n, int sign, const Complex* got, int stride)
{
    int count = 1;
    for (int d = 0; d < rank; ++d) count *= n[d];
    for (int k = 0; k<count; k += count> 100 ? 7 : 1)
        if (!is_close(got[k * stride], sum_at(model, rank, n, k, sign), count)) return 0;
    return 1;
}

static void complex_plans(void)
{
    const int cases[][4] = {{1, 1}, {1, 12}, {1, 64}, {1, 97}, {1, 360}, {2, 6, 10}, {3, 4, 3, 5}, {4, 2, 3}};
    for (unsigned c = 0; c < sizeof cases / sizeof *cases; ++c)
        for (int sign = -1; sign <= 1; sign += 2)
            for (int in_place = 0; in_place < 2; ++in_place) {
                int rank = cases[c][0], count = 1, n[4] = {cases[c][1], cases[c][2], cases[c][3], 2};
                if (rank == 4) n[2] = 1;
                for (int d = 0; d < rank; ++d) count *= n[d];
                Complex* to = in_place ? in : out;
                F(plan)
                plan = rank == 1   ? F(plan_dft_1d)(n[0], in, to, sign, FFTW_ESTIMATE)
                       : rank == 2 ? F(plan_dft_2d)(n[0], n[1], in, to, sign, FFTW_MEASURE)
                       : rank == 3 ? F(plan_dft_3d)(n[0], n[1], n[2], in, to, sign, FFTW_PATIENT)
                                   : F(plan_dft)(rank, n, in, to, sign, FFTW_ESTIMATE | FFTW_UNALIGNED);
                check("complex plan", plan != NULL);
                if (plan == NULL) continue;
                fill((Real*)in, 2 * count);
                for (int i = 0; i < count; ++i) model[i] = in[i];
                F(execute)(plan);
                check(in_place ? "complex in place" : "complex", agrees(rank, n, sign, to, 1));
                for (int i = 0; i < count; ++i) in[i + 2] = model[i];
                F(execute_dft)(plan, in + 2, in_place ? in + 2 : out + 4);
                check("complex, new arrays", agrees(rank, n, sign, in_place ? in + 2 : out + 4, 1));
                F(destroy_plan)(plan);
            }
}

/* 5 transforms of 3 x 8 between each other's elements, embedded in larger arrays, in place and not. */
static void many_complex(void)
{
    const int n[] = {3, 8}, inembed[] = {3, 10}, onembed[] = {4, 9};
    for (int in_place = 0; in_place < 2; ++in_place) {
        const int ostride = in_place ? 5 : 1, odist = in_place ? 1 : 40;
        F(plan)
        plan = F(plan_many_dft)(2, n, 5, in, inembed, 5, 1, in_place ? in : out, in_place ? inembed : onembed, ostride,
                                odist, FFTW_FORWARD, FFTW_ESTIMATE);
        check("many plan", plan != NULL);
        if (plan == NULL) return;
        fill((Real*)in, 2 * 5 * 30);
        double complex kept[5][24];
        for (int t = 0; t < 5; ++t)
            for (int i = 0; i < 24; ++i) kept[t][i] = in[t + 5 * (i / 8 * 10 + i % 8)];
        F(execute)(plan);
        for (int t = 0; t < 5; ++t) {
            memcpy(model, kept[t], sizeof kept[t]);
            for (int k = 0; k < 24; ++k) {
                const Complex* got = in_place ? in + t + 5 * (k / 8 * 10 + k % 8) : out + t * 40 + k / 8 * 9 + k % 8;
                check("many", is_close(*got, sum_at(model, 2, n, k, -1), 24));
            }
        }
        F(destroy_plan)(plan);
    }
}

static void real_plans(void)
{
    const int cases[][4] = {{1, 1}, {1, 2}, {1, 15}, {1, 100}, {2, 6, 9}, {2, 5, 8}, {3, 3, 4, 6}};
    for (unsigned c = 0; c < sizeof cases / sizeof *cases; ++c)
        for (int in_place = 0; in_place < 2; ++in_place) {
            const int rank = cases[c][0], *n = cases[c] + 1, last = n[rank - 1], half = last / 2 + 1;
            int lines = 1;
            for (int d = 0; d < rank - 1; ++d) lines *= n[d];
            const int count = lines * last, row = in_place ? 2 * half : last;
            Real* x = in_place ? (Real*)out : real_in;
            F(plan)
            forward = rank == 1   ? F(plan_dft_r2c_1d)(n[0], x, out, FFTW_ESTIMATE)
                      : rank == 2 ? F(plan_dft_r2c_2d)(n[0], n[1], x, out, FFTW_ESTIMATE)
                                  : F(plan_dft_r2c_3d)(n[0], n[1], n[2], x, out, FFTW_ESTIMATE);
            F(plan)
            backward = rank == 1   ? F(plan_dft_c2r_1d)(n[0], out, x, FFTW_ESTIMATE)
                       : rank == 2 ? F(plan_dft_c2r_2d)(n[0], n[1], out, x, FFTW_ESTIMATE)
                                   : F(plan_dft_c2r_3d)(n[0], n[1], n[2], out, x, FFTW_ESTIMATE);
            check("real plans", forward != NULL && backward != NULL);
            if (forward == NULL || backward == NULL) continue;
            for (int i = 0; i < count; ++i) {
                x[i / last * row + i % last] = (Real)number(i);
                model[i] = x[i / last * row + i % last];
            }
            F(execute)(forward);
            for (int k = 0; k < lines * half; ++k)
                check(in_place ? "r2c in place" : "r2c",
                      is_close(out[k], sum_at(model, rank, n, k / half * last + k % half, -1), count));
            F(execute)(backward);
            for (int i = 0; i < count; ++i)
                check(in_place ? "c2r in place" : "c2r",
                      is_close(x[i / last * row + i % last], count * model[i], count * count));
            F(destroy_plan)(forward);
            F(destroy_plan)(backward);
        }
}

static void many_real(void)
{
    const int n[] = {4, 6};
    F(plan) forward = F(plan_many_dft_r2c)(2, n, 3, real_in, NULL, 1, 24, out, NULL, 3, 1, FFTW_ESTIMATE);
    F(plan) backward = F(plan_many_dft_c2r)(2, n, 3, out, NULL, 3, 1, real_out, NULL, 2, 50, FFTW_ESTIMATE);
    check("many real plans", forward != NULL && backward != NULL);
    if (forward == NULL || backward == NULL) return;
    fill(real_in, 72);
    F(execute)(forward);
    for (int t = 0; t < 3; ++t) {
        for (int i = 0; i < 24; ++i) model[i] = real_in[24 * t + i];
        for (int k = 0; k < 16; ++k)
            check("many r2c", is_close(out[t + 3 * k], sum_at(model, 2, n, k / 4 * 6 + k % 4, -1), 24));
    }
    F(execute_dft_c2r)(backward, out, real_out);
    for (int t = 0; t < 3; ++t)
        for (int i = 0; i < 24; ++i)
            check("many c2r", is_close(real_out[50 * t + 2 * i], 24 * real_in[24 * t + i], 500));
    F(destroy_plan)(forward);
    F(destroy_plan)(backward);
}

/* Two loops around a transform of 6 x 4, transposed on the way; then in place, which moves all numbers. */
static void guru_plans(void)
{
    const F(iodim64) dims[] = {{6, 4, 1}, {4, 1, 6}}, loops[] = {{3, 24, 48}, {2, 72, 24}};
    const int n[] = {6, 4};
    for (int in_place = 0; in_place < 2; ++in_place) {
        F(plan) plan = F(plan_guru64_dft)(2, dims, 2, loops, in, in_place ? in : out, FFTW_BACKWARD, FFTW_ESTIMATE);
        check("guru plan", plan != NULL || in_place); /* FFTW itself has no such plan */
        if (plan == NULL) continue;
        fill((Real*)in, 2 * 144);
        double complex kept[144];
        for (int i = 0; i < 144; ++i) kept[i] = in[i];
        F(execute)(plan);
        for (int a = 0; a < 3; ++a)
            for (int b = 0; b < 2; ++b) {
                memcpy(model, kept + 24 * a + 72 * b, 24 * sizeof *kept);
                for (int k = 0; k < 24; ++k) {
                    const Complex* to = (in_place ? in : out) + 48 * a + 24 * b;
                    check(in_place ? "guru in place" : "guru",
                          is_close(to[k / 4 + k % 4 * 6], sum_at(model, 2, n, k, 1), 24));
                }
            }
        F(destroy_plan)(plan);
    }
    /* Rank 0 copies: a transposition, in place as well. */
    const F(iodim) transpose[] = {{3, 3, 1}, {3, 1, 3}};
    F(plan) plan = F(plan_guru_dft)(0, NULL, 2, transpose, in, in, FFTW_FORWARD, FFTW_ESTIMATE);
    check("transposition", plan != NULL);
    if (plan == NULL) return;
    for (int i = 0; i < 9; ++i) in[i] = i;
    F(execute)(plan);
    check("transposed", in[1] == 3 && in[3] == 1 && in[5] == 7 && in[8] == 8);
    F(destroy_plan)(plan);
}

static void split_plans(void)
{
    const F(iodim) dim = {10, 1, 1}, loop = {2, 10, 12};
    const int n = 10;
    Real *ri = real_in, *ii = real_in + 100, *ro = real_out, *io = real_out + 100;
    F(plan) plan = F(plan_guru_split_dft)(1, &dim, 1, &loop, ri, ii, ro, io, FFTW_ESTIMATE);
    F(plan) forward = F(plan_guru_split_dft_r2c)(1, &dim, 1, &loop, ri, ro, io, FFTW_ESTIMATE);
    const F(iodim) back = {2, 12, 10};
    F(plan) backward = F(plan_guru_split_dft_c2r)(1, &dim, 1, &back, ro, io, ii, FFTW_ESTIMATE);
    check("split plans", plan != NULL && forward != NULL && backward != NULL);
    if (plan == NULL || forward == NULL || backward == NULL) return;
    fill(real_in, 200);
    F(execute)(plan);
    for (int t = 0; t < 2; ++t) {
        for (int i = 0; i < 10; ++i) model[i] = ri[10 * t + i] + I * ii[10 * t + i];
        for (int k = 0; k < 10; ++k)
            check("split", is_close(ro[12 * t + k] + I * io[12 * t + k], sum_at(model, 1, &n, k, -1), 10));
    }
    F(execute_split_dft)(plan, ii, ri, io, ro); /* backward: the parts exchanged */
    for (int k = 0; k < 10; ++k) {
        for (int i = 0; i < 10; ++i) model[i] = ri[i] + I * ii[i];
        check("split backward", is_close(ro[k] + I * io[k], sum_at(model, 1, &n, k, 1), 10));
    }
    F(execute)(forward);
    for (int i = 0; i < 10; ++i) model[i] = ri[10 + i];
    for (int k = 0; k < 6; ++k)
        check("split r2c", is_close(ro[12 + k] + I * io[12 + k], sum_at(model, 1, &n, k, -1), 10));
    F(execute)(backward);
    for (int i = 0; i < 20; ++i) check("split c2r", is_close(ii[i], 10 * ri[i], 100));
    F(destroy_plan)(plan);
    F(destroy_plan)(forward);
    F(destroy_plan)(backward);
}

/* Number k of a transform of n real numbers, by FFTW's manual. */
static double real_sum_at(const double* x, int n, int kind, int k)
{
    const double pi = acos(-1);
    double sum = 0;
    for (int j = 0; j < n; ++j) {
        double term = 0;
        const int h = k <= n / 2 ? k : n - k;
        switch (kind) {
        case FFTW_R2HC:
            term = k <= n / 2 ? cos(2 * pi * (j * h % n) / n) : -sin(2 * pi * (j * h % n) / n);
            break;
        case FFTW_HC2R:
            term = j == 0       ? 1
                   : 2 * j < n  ? 2 * cos(2 * pi * (j * k % n) / n)
                   : 2 * j == n ? cos(pi * k)
                                : -2 * sin(2 * pi * ((n - j) * k % n) / n);
            break;
        case FFTW_DHT:
            term = cos(2 * pi * (j * k % n) / n) + sin(2 * pi * (j * k % n) / n);
            break;
        case FFTW_REDFT00:
            term = (j == 0 || j == n - 1 ? 1 : 2) * cos(pi * j * k / (n - 1));
            break;
        case FFTW_REDFT10:
            term = 2 * cos(pi * (j + 0.5) * k / n);
            break;
        case FFTW_REDFT01:
            term = j == 0 ? 1 : 2 * cos(pi * j * (k + 0.5) / n);
            break;
        case FFTW_REDFT11:
            term = 2 * cos(pi * (j + 0.5) * (k + 0.5) / n);
            break;
        case FFTW_RODFT00:
            term = 2 * sin(pi * (j + 1) * (k + 1) / (n + 1));
            break;
        case FFTW_RODFT10:
            term = 2 * sin(pi * (j + 0.5) * (k + 1) / n);
            break;
        case FFTW_RODFT01:
            term = (j == n - 1 ? 1 : 2) * sin(pi * (j + 1) * (k + 0.5) / n);
            break;
        case FFTW_RODFT11:
            term = 2 * sin(pi * (j + 0.5) * (k + 0.5) / n);
            break;
        }
        sum += x[j] * term;
    }
    return sum;
}

static void real_to_real_plans(void)
{
    const int sizes[] = {1, 2, 3, 4, 5, 8, 12, 31, 64, 100};
    static double x[most], y[most];
    for (int kind = FFTW_R2HC; kind <= FFTW_RODFT11; ++kind)
        for (unsigned s = 0; s < sizeof sizes / sizeof *sizes; ++s) {
            const int n = sizes[s];
            F(plan) plan = F(plan_r2r_1d)(n, real_in, real_out, (F(r2r_kind))kind, FFTW_ESTIMATE);
            if (kind == FFTW_REDFT00 && n == 1) {
                check("no REDFT00 of one number", plan == NULL);
                continue;
            }
            fill(real_in, n);
            for (int j = 0; j < n; ++j) x[j] = real_in[j];
            F(execute)(plan);
            int fine = 1;
            for (int k = 0; k < n; ++k) fine &= is_close(real_out[k], real_sum_at(x, n, kind, k), n);
            F(execute_r2r)(plan, real_in, real_out + 256);
            fine &= memcmp(real_out, real_out + 256, (size_t)n * sizeof(Real)) == 0;
            if (!fine) printf("kind %d, n = %d: ", kind, n);
            check("plan_r2r_1d", fine);
            F(destroy_plan)(plan);
        }
    /* Two transforms of 6 x 5 numbers, kinds of their own, each matrix within 7 x 9 in, 8 x 6 out with strides 2 and 1;
       then in place, where the strides change. */
    for (int in_place = 0; in_place < 2; ++in_place) {
        const int n[] = {6, 5}, in_embed[] = {7, 9}, out_embed[] = {8, 6};
        const F(r2r_kind) kinds[] = {FFTW_RODFT10, FFTW_REDFT00};
        Real* to = in_place ? real_in : real_out;
        F(plan) plan = F(plan_many_r2r)(2, n, 2, real_in, in_embed, 2, 150, to, out_embed, 1, 60, kinds, FFTW_MEASURE);
        if (plan == NULL && in_place && strstr(F(version), "ork") == NULL) continue; /* FFTW has no plan for it */
        fill(real_in, 400);
        for (int j = 0; j < 400; ++j) x[j] = real_in[j];
        F(execute)(plan);
        int fine = 1;
        for (int t = 0; t < 2; ++t) {
            double line[6];
            for (int i = 0; i < 6; ++i)
                for (int k = 0; k < 5; ++k) {
                    for (int j = 0; j < 5; ++j) line[j] = x[150 * t + 2 * (9 * i + j)];
                    y[5 * i + k] = real_sum_at(line, 5, kinds[1], k);
                }
            for (int i = 0; i < 6; ++i)
                for (int k = 0; k < 5; ++k) {
                    for (int j = 0; j < 6; ++j) line[j] = y[5 * j + k];
                    fine &= is_close(to[60 * t + 6 * i + k], real_sum_at(line, 6, kinds[0], i), 30);
                }
        }
        check(in_place ? "plan_many_r2r in place" : "plan_many_r2r", fine);
        F(destroy_plan)(plan);
    }
}

static void refused_plans(void)
{
    const int n[] = {4, 0};
    const F(r2r_kind) kind = FFTW_REDFT00;
    check("length 0", F(plan_dft_1d)(0, in, out, FFTW_FORWARD, FFTW_ESTIMATE) == NULL);
    check("length -1", F(plan_dft_1d)(-1, in, out, FFTW_FORWARD, FFTW_ESTIMATE) == NULL);
    check("lengths 4, 0", F(plan_dft)(2, n, in, out, FFTW_FORWARD, FFTW_ESTIMATE) == NULL);
    check("rank -1", F(plan_dft)(-1, n, in, out, FFTW_FORWARD, FFTW_ESTIMATE) == NULL);
    F(plan) real = F(plan_r2r_1d)(8, real_in, real_out, kind, FFTW_ESTIMATE);
    F(destroy_plan)(real); /* whether there is one or not */
    F(plan) none = F(plan_many_dft)(1, n, 0, in, NULL, 1, 4, out, NULL, 1, 4, FFTW_FORWARD, FFTW_ESTIMATE);
    check("no transforms", none != NULL);
    out[0] = 5;
    if (none != NULL) F(execute)(none);
    check("no transforms, nothing written", out[0] == 5);
    F(destroy_plan)(none);
}

static void surroundings(void)
{
    F(plan) plan = F(plan_dft_1d)(24, NULL, NULL, FFTW_FORWARD, FFTW_ESTIMATE);
    check("plan of null arrays", plan != NULL);
    double add = -1, multiply = -1, fused = -1;
    F(flops)(plan, &add, &multiply, &fused);
    check("flops", add >= 0 && multiply >= 0 && fused >= 0 && F(estimate_cost)(plan) >= 0 && F(cost)(plan) >= 0);
    char* text = F(sprint_plan)(plan);
    check("sprint_plan", text != NULL && strlen(text) > 0);
    free(text);
    F(fprint_plan)(plan, stderr);
    F(destroy_plan)(plan);
    check("alignment_of", F(alignment_of)(real_in) == 0 && F(alignment_of)(real_in + 1) != 0);
    text = F(export_wisdom_to_string)();
    check("wisdom", text != NULL && F(import_wisdom_from_string)(text) == 1);
    free(text);
    check("no wisdom", F(import_wisdom_from_string)("nonsense") == 0);
    check("no file", F(import_wisdom_from_filename)("/nonexistent/wisdom") == 0 &&
                         F(export_wisdom_to_filename)("/nonexistent/wisdom") == 0);
    FILE* file = tmpfile();
    if (file != NULL) {
        F(export_wisdom_to_file)(file);
        rewind(file);
        check("wisdom by file", F(import_wisdom_from_file)(file) == 1);
        fclose(file);
    }
    F(set_timelimit)(1.0);
    F(forget_wisdom)();
}

int main(void)
{
    check("init_threads", F(init_threads)() != 0);
    F(make_planner_thread_safe)();
    in = F(alloc_complex)(most);
    out = F(alloc_complex)(most);
    real_in = F(alloc_real)(most);
    real_out = F(malloc)(most * sizeof(Real));
    for (int threads = 1; threads <= 2; ++threads) {
        F(plan_with_nthreads)(threads);
        check("planner_nthreads", F(planner_nthreads)() == threads);
        complex_plans();
        many_complex();
        real_plans();
        many_real();
        guru_plans();
        split_plans();
        real_to_real_plans();
    }
    refused_plans();
    surroundings();
    F(free)(in);
    F(free)(out);
    F(free)(real_in);
    F(free)(real_out);
    F(cleanup_threads)();
    F(cleanup)();
    printf("%s\n", F(version));
    return failures != 0;
}
