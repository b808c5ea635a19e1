// SPDX-License-Identifier: MIT
// Plans: made, released, and computed with.
#include "dft/engine/plan_data.h"
#include "frame/core_imports.h"

namespace ork::dft {

namespace {

template <class R>
bool build(Plan<R>& plan, const Recipe& recipe, Arena& arena, const RootTable& roots)
{
    bool done = true;
    switch (plan.method) {
    case Method::length:
        break;
    case Method::turn:
        build_turn(plan, recipe, arena, roots);
        break;
    case Method::halves:
        build_halves(plan, recipe, arena, roots);
        break;
    case Method::rader:
        done = build_rader(plan, arena);
        break;
    case Method::bluestein:
        done = build_bluestein(plan, arena);
        break;
    }
    if (plan.has_strided) plan.strided.build(arena, roots);
    return done;
}

bool is_prime(std::int64_t n)
{
    if (n % 2 == 0) return n == 2;
    for (std::int64_t p = 3; p * p <= n; p += 2)
        if (n % p == 0) return false;
    return n > 1;
}

// Longer transforms with strides are gathered, and done as contiguous ones.
constexpr std::int64_t longest_strided = 8192;

} // namespace

template <class R>
int make_plan(std::int64_t n, Plan<R>** result, bool strided)
{
    *result = nullptr;
    Recipe recipe = choose<R>(n);
    Plan<R> plan;
    plan.n = n;
    if (recipe.method == Method::bluestein && n < (std::int64_t{1} << 30) && small_primes(n - 1) && is_prime(n))
        recipe.method = Method::rader;
    plan.method = recipe.method;
    if (plan.method == Method::rader || plan.method == Method::bluestein) {
        const std::int64_t m = plan.method == Method::rader ? n - 1 : good_length<R>(2 * n - 1);
        if (make_plan(m, &plan.inner, false) != 0) return 1;
    }
    int radices[most_passes];
    const int passes = strided && n <= longest_strided ? choose_vertical<R>(n, radices) : 0;
    plan.has_strided = passes > 0;
    if (passes > 0) plan.strided.set(n, radices, passes);

    RootTable roots;
    const bool needs_roots = plan.has_strided || plan.method == Method::turn || plan.method == Method::halves;
    Arena count;
    count.take<Plan<R>>(1);
    build(plan, recipe, count, roots);
    void* memory = ork_serv_malloc(count.used(), 64);
    if (memory != nullptr) {
        Arena arena(memory);
        Plan<R>* made = arena.take<Plan<R>>(1);
        if ((!needs_roots || roots.make(n)) && build(plan, recipe, arena, roots)) {
            *made = plan;
            *result = made;
            return 0;
        }
        ork_serv_free(memory);
    }
    free_plan(plan.inner);
    return 1;
}

template <class R>
void free_plan(Plan<R>* plan)
{
    if (plan == nullptr) return;
    free_plan(plan->inner);
    ork_serv_free(plan);
}

template <class R>
std::int64_t length(const Plan<R>& plan)
{
    return plan.n;
}

template <class R>
std::size_t work_bytes(const Plan<R>& plan)
{
    switch (plan.method) {
    case Method::length:
        return 0;
    case Method::turn:
        return turn_work(plan);
    case Method::halves:
        return whole_lines(static_cast<std::size_t>(matrix_numbers(plan)) * sizeof(Complex<R>)) + halves_work(plan);
    default:
        return convolution_work(plan);
    }
}

template <class R>
void transform(const Plan<R>& plan, Direction direction, R scale, const Complex<R>* in, Complex<R>* out, void* work)
{
    const R* from = reals(in);
    R* to = reals(out);
    switch (plan.method) {
    case Method::length: {
        const auto& table = direction == Direction::forward ? LengthKernels<R>::forward : LengthKernels<R>::backward;
        table[static_cast<std::size_t>(plan.n)](in, out, nullptr, nullptr);
        break;
    }
    case Method::turn:
        run_turn(plan, direction, from, to, work);
        break;
    case Method::halves: {
        R* matrix = static_cast<R*>(work);
        void* rest =
            static_cast<char*>(work) + whole_lines(static_cast<std::size_t>(matrix_numbers(plan)) * sizeof(Complex<R>));
        run_half(plan, 0, direction, scale, 0, half_groups(plan, 0), from, to, matrix, rest);
        run_half(plan, 1, direction, scale, 0, half_groups(plan, 1), from, to, matrix, rest);
        return;
    }
    case Method::rader:
        run_rader(plan, direction, from, to, work);
        break;
    case Method::bluestein:
        run_bluestein(plan, direction, from, to, work);
        break;
    }
    if (scale != R(1)) scale_numbers(to, plan.n, scale);
}

// Batches with strides.

namespace {

template <class R>
bool is_interleaved(const Place<R>& place)
{
    return place.im == place.re + 1;
}
template <class R>
bool is_contiguous(const Place<R>& place)
{
    return is_interleaved(place) && place.stride == 2;
}

// Vectors side by side whose scratch fills half of the second cache at most.
constexpr std::int64_t scratch_cells = 32768;
template <class R>
std::int64_t vectors_at_once(std::int64_t n)
{
    const std::int64_t fitting = scratch_cells / n;
    return fitting < 1 ? 1 : fitting > group_vectors ? group_vectors : fitting;
}

// Transforms that are gathered at a time.
constexpr std::int64_t gathered_at_once = 8;
template <class R>
std::int64_t gathered(std::int64_t n)
{
    const std::int64_t fitting = 65536 / n;
    return fitting < 2 ? 2 : fitting > gathered_at_once ? gathered_at_once : fitting;
}
template <class R>
std::int64_t gathered_row(std::int64_t n) // numbers
{
    return static_cast<std::int64_t>(whole_lines(static_cast<std::size_t>(n) * sizeof(Complex<R>)) /
                                     sizeof(Complex<R>)) +
           64 / static_cast<std::int64_t>(sizeof(Complex<R>));
}

template <class R>
std::size_t strided_work(const Plan<R>& plan)
{
    if (plan.strided.passes() == 1) return 0;
    return static_cast<std::size_t>(vectors_at_once<R>(plan.n) * (plan.n + scratch_gap) * cell<R>) * sizeof(R);
}

template <class R>
void run_strided(const Plan<R>& plan, Direction direction, R scale, const Place<R>& in, const Place<R>& out,
                 std::int64_t count, void* work)
{
    constexpr std::int64_t l = lanes<R>;
    const std::int64_t n = plan.n;
    const bool backward = direction == Direction::backward;
    const auto run = [&](std::int64_t t, std::int64_t vectors, bool single) {
        Pass<R> a;
        a.in = in.re + t * in.distance;
        a.in_step = in.stride, a.in_next = l * in.distance, a.in_lane = single ? 0 : in.distance;
        // Numbers far apart that don't follow the last ones: nothing else would fetch them in time.
        a.ahead = 0;
        if (in.stride >= 256 && in.distance * static_cast<std::int64_t>(sizeof(R)) <= 16 && vectors >= 4) a.ahead = 2;
        a.scratch = static_cast<R*>(work), a.scratch_next = (n + scratch_gap) * cell<R>;
        a.vectors = vectors;
        R* to = out.re + t * out.distance;
        a.zero = to, a.zero_lane = a.out_lane = single ? 0 : out.distance;
        a.out = backward ? to + n * out.stride : to;
        a.out_step = backward ? -out.stride : out.stride, a.out_next = l * out.distance;
        plan.strided.run(a, !single && in.distance == 2 ? Row::ascending : Row::apart,
                         !single && out.distance == 2 ? Row::ascending : Row::apart);
        if (scale != R(1)) {
            const std::int64_t transforms = single ? 1 : vectors * l;
            for (std::int64_t k = 0; k < n; ++k)
                for (std::int64_t i = 0; i < transforms; ++i) {
                    R* number = to + k * out.stride + i * out.distance;
                    store<2>(number, load<2>(number) * broadcast(scale));
                }
        }
    };
    const std::int64_t most = vectors_at_once<R>(n), full = count / l;
    for (std::int64_t v = 0; v < full; v += most) run(v * l, v + most <= full ? most : full - v, false);
    if (count % l != 0) run(full * l, 1, true);
}

// Through contiguous memory, a few neighbours at a time so that their lines are used whole.
template <class R>
void run_gathered(const Plan<R>& plan, Direction direction, R scale, const Place<R>& in, const Place<R>& out,
                  std::int64_t count, void* work)
{
    const std::int64_t n = plan.n, most = gathered<R>(n), row = gathered_row<R>(n);
    auto* x = static_cast<Complex<R>*>(work);
    void* rest = x + most * row;
    for (std::int64_t t = 0; t < count; t += most) {
        const std::int64_t some = t + most <= count ? most : count - t;
        for (std::int64_t k = 0; k < n; ++k)
            for (std::int64_t i = 0; i < some; ++i) {
                const std::int64_t at = (t + i) * in.distance + k * in.stride;
                x[i * row + k] = {in.re[at], in.im[at]};
            }
        for (std::int64_t i = 0; i < some; ++i) transform(plan, direction, scale, x + i * row, x + i * row, rest);
        for (std::int64_t k = 0; k < n; ++k)
            for (std::int64_t i = 0; i < some; ++i) {
                const std::int64_t at = (t + i) * out.distance + k * out.stride;
                out.re[at] = x[i * row + k].re, out.im[at] = x[i * row + k].im;
            }
    }
}

} // namespace

template <class R>
std::size_t work_bytes(const Plan<R>& plan, std::int64_t)
{
    const std::size_t gathering =
        static_cast<std::size_t>(gathered<R>(plan.n) * gathered_row<R>(plan.n)) * sizeof(Complex<R>) + work_bytes(plan);
    const std::size_t strided = plan.has_strided ? strided_work(plan) : 0;
    return gathering > strided ? gathering : strided;
}

template <class R>
void transform(const Plan<R>& plan, Direction direction, R scale, const Place<R>& in, const Place<R>& out,
               std::int64_t count, void* work)
{
    if (is_contiguous(in) && is_contiguous(out)) {
        for (std::int64_t t = 0; t < count; ++t)
            transform(plan, direction, scale, reinterpret_cast<const Complex<R>*>(in.re + t * in.distance),
                      reinterpret_cast<Complex<R>*>(out.re + t * out.distance), work);
    } else if (plan.has_strided && is_interleaved(in) && is_interleaved(out)) {
        run_strided(plan, direction, scale, in, out, count, work);
    } else {
        run_gathered(plan, direction, scale, in, out, count, work);
    }
}

template <class R>
std::int64_t group(const Plan<R>&)
{
    return group_vectors * lanes<R>;
}

template <class R>
std::int64_t units(const Plan<R>& plan, int stage)
{
    return plan.method == Method::halves ? half_groups(plan, stage) : 0;
}

template <class R>
std::size_t shared_bytes(const Plan<R>& plan)
{
    return plan.method == Method::halves ? static_cast<std::size_t>(matrix_numbers(plan)) * sizeof(Complex<R>) : 0;
}

template <class R>
std::size_t staged_work_bytes(const Plan<R>& plan)
{
    return plan.method == Method::halves ? halves_work(plan) : 0;
}

template <class R>
void run_stage(const Plan<R>& plan, int stage, Direction direction, R scale, std::int64_t from, std::int64_t to,
               const Complex<R>* in, Complex<R>* out, void* shared, void* work)
{
    run_half(plan, stage, direction, scale, from, to, reals(in), reals(out), static_cast<R*>(shared), work);
}

#define INSTANTIATE(R)                                                                                                 \
    template int make_plan(std::int64_t, Plan<R>**, bool);                                                             \
    template void free_plan(Plan<R>*);                                                                                 \
    template std::int64_t length(const Plan<R>&);                                                                      \
    template std::size_t work_bytes(const Plan<R>&);                                                                   \
    template std::size_t work_bytes(const Plan<R>&, std::int64_t);                                                     \
    template void transform(const Plan<R>&, Direction, R, const Complex<R>*, Complex<R>*, void*);                      \
    template void transform(const Plan<R>&, Direction, R, const Place<R>&, const Place<R>&, std::int64_t, void*);      \
    template std::int64_t group(const Plan<R>&);                                                                       \
    template std::int64_t units(const Plan<R>&, int);                                                                  \
    template std::size_t shared_bytes(const Plan<R>&);                                                                 \
    template std::size_t staged_work_bytes(const Plan<R>&);                                                            \
    template void run_stage(const Plan<R>&, int, Direction, R, std::int64_t, std::int64_t, const Complex<R>*,          \
                            Complex<R>*, void*, void*);
INSTANTIATE(float)
INSTANTIATE(double)

} // namespace ork::dft
