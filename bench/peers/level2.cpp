// SPDX-License-Identifier: MIT
// The matrix-vector routines. Calls repeated on the same operands leave them bounded: products overwrite y (beta = 0),
// updates alternate between alpha and -alpha, and the vector of a triangular product or solve starts afresh every 64
// calls, which the triangle (dense.h) takes far from overflow and underflow.
#include "peers/dense.h"
#include "peers/limits.h"

namespace ork::peers {
namespace {

enum class Kind { product, update, update2, triangular_product, triangular_solve };

struct Routine {
    const char* stem;
    const char* precisions;
    Kind kind;
    Form form;
    Storage storage;
};

// clang-format off
constexpr Routine routines[] = {
    {"gemv", "sdcz", Kind::product, Form::general, Storage::dense},
    {"ger",  "sd",   Kind::update,  Form::general, Storage::dense},
    {"geru", "cz",   Kind::update,  Form::general, Storage::dense},
    {"gerc", "cz",   Kind::update,  Form::general, Storage::dense},
    {"symv", "sd",   Kind::product, Form::symmetric, Storage::dense},
    {"hemv", "cz",   Kind::product, Form::hermitian, Storage::dense},
    {"syr",  "sd",   Kind::update,  Form::symmetric, Storage::dense},
    {"her",  "cz",   Kind::update,  Form::hermitian, Storage::dense},
    {"syr2", "sd",   Kind::update2, Form::symmetric, Storage::dense},
    {"her2", "cz",   Kind::update2, Form::hermitian, Storage::dense},
    {"trmv", "sdcz", Kind::triangular_product, Form::triangular, Storage::dense},
    {"trsv", "sdcz", Kind::triangular_solve,   Form::triangular, Storage::dense},
    {"gbmv", "sdcz", Kind::product, Form::general,   Storage::band},
    {"sbmv", "sd",   Kind::product, Form::symmetric, Storage::band},
    {"hbmv", "cz",   Kind::product, Form::hermitian, Storage::band},
    {"tbmv", "sdcz", Kind::triangular_product, Form::triangular, Storage::band},
    {"tbsv", "sdcz", Kind::triangular_solve,   Form::triangular, Storage::band},
    {"spmv", "sd",   Kind::product, Form::symmetric, Storage::packed},
    {"hpmv", "cz",   Kind::product, Form::hermitian, Storage::packed},
    {"spr",  "sd",   Kind::update,  Form::symmetric, Storage::packed},
    {"hpr",  "cz",   Kind::update,  Form::hermitian, Storage::packed},
    {"spr2", "sd",   Kind::update2, Form::symmetric, Storage::packed},
    {"hpr2", "cz",   Kind::update2, Form::hermitian, Storage::packed},
    {"tpmv", "sdcz", Kind::triangular_product, Form::triangular, Storage::packed},
    {"tpsv", "sdcz", Kind::triangular_solve,   Form::triangular, Storage::packed},
};
// clang-format on

bool one_of(char letter, const char* letters) { return std::string(letters).find(letter) != std::string::npos; }

const Routine* find(const std::string& name)
{
    for (const Routine& routine : routines)
        if (name.size() > 1 && name.substr(1) == routine.stem && one_of(name[0], routine.precisions)) return &routine;
    return nullptr;
}

bool fits(const Routine& routine, const std::string& letters)
{
    if (routine.form == Form::triangular)
        return letters.size() == 3 && one_of(letters[0], "LU") && one_of(letters[1], "NTC") && one_of(letters[2], "NU");
    if (routine.form != Form::general) return letters.size() == 1 && one_of(letters[0], "LU");
    return routine.kind == Kind::update ? letters.empty() : letters.size() == 1 && one_of(letters[0], "NTC");
}

Layout layout_of(const Routine& routine, const Level2Case& c)
{
    const bool band = routine.storage == Storage::band;
    Layout layout{routine.form, routine.storage};
    layout.rows = static_cast<size_t>(c.m);
    layout.columns = routine.form != Form::general || band ? layout.rows : static_cast<size_t>(c.n);
    if (band) layout.kl = layout.ku = static_cast<size_t>(c.n);
    if (routine.form != Form::general) {
        layout.uplo = c.letters[0];
        (layout.uplo == 'L' ? layout.ku : layout.kl) = 0;
    }
    if (routine.form == Form::triangular) layout.diag = c.letters[2];
    return layout;
}

template <class T>
class Level2Problem final : public Problem {
public:
    Level2Problem(const Routine& routine, const Level2Case& c)
        : routine_(routine), name_(c.routine), layout_(layout_of(routine, c)), m_(c.m),
          n_(static_cast<int>(layout_.columns)), k_(static_cast<int>(std::max(layout_.kl, layout_.ku))),
          ld_(static_cast<int>(layout_.ld())), uplo_(layout_.uplo), diag_(layout_.diag),
          trans_(routine.form == Form::triangular                                ? c.letters[1]
                 : routine.form == Form::general && routine.kind != Kind::update ? c.letters[0]
                                                                                 : 'N'),
          a_(std::max(layout_.size(), room), 0), x_(longer(), 1088), y_(longer(), 2176), start_(a_.size()),
          x0_(x_.size())
    {
        Random random;
        fill(start_, layout_, random);
        random.fill(x0_);
        random.fill(y_);
        reset();
    }

    std::string symbol() const override { return name_ + "_"; }

    double work() const override
    {
        double stored = 0;
        for (size_t j = 0; j < layout_.columns; ++j) {
            const size_t from = layout_.storage == Storage::band && j > layout_.ku ? j - layout_.ku : 0;
            const size_t to =
                layout_.storage == Storage::band ? std::min(layout_.rows, j + layout_.kl + 1) : layout_.rows;
            const size_t below = layout_.form == Form::general || layout_.uplo == 'U' ? from : j;
            const size_t above = layout_.form == Form::general || layout_.uplo == 'L' ? to : j + 1;
            stored += static_cast<double>(above - below);
        }
        const double factor = is_complex<T> ? 4 : 1, order = n_;
        if (routine_.kind == Kind::update2) return factor * 4 * stored;
        if (routine_.kind == Kind::product && routine_.form != Form::general) return factor * (4 * stored - 2 * order);
        return factor * (2 * stored - (routine_.form == Form::triangular ? order : 0));
    }

    void run(void* routine, long calls) override
    {
        const bool restart = routine_.form == Form::triangular;
        while (calls > 0) {
            if (restart) std::copy(x0_.data(), x0_.data() + n_, x_.data());
            const long stretch = std::min(calls, 64L);
            run_stretch(routine, stretch);
            calls -= stretch;
        }
    }

    std::string check(void* routine) override
    {
        reset();
        if (routine_.kind == Kind::product)
            std::fill(y_.data(), y_.data() + y_.size(), T(std::numeric_limits<Real<T>>::quiet_NaN()));
        run(routine, 1);
        if (routine_.kind == Kind::update || routine_.kind == Kind::update2) return check_update();
        const Matrix<T> a{a_.data(), layout_, trans_};
        const Sums x0 = vector_of(x0_.data(), a.columns());
        if (routine_.kind == Kind::product) return compare<T>(vector_of(y_.data(), a.rows()), a * x0, a.columns());
        const Sums x = vector_of(x_.data(), a.columns());
        return routine_.kind == Kind::triangular_product ? compare<T>(x, a * x0, a.columns())
                                                         : compare<T>(a * x, x0, a.columns());
    }

    std::vector<Limit> limits() override
    {
        // Reading the matrix, or reading and writing it, at the rate of the level that it sits in; but arithmetic,
        // where even the first level could feed more than that. Twice as many flops as numbers is where both meet.
        const size_t bytes = std::max(layout_.read(), room) * sizeof(T) / 128 * 128;
        const bool writes = routine_.kind == Kind::update || routine_.kind == Kind::update2;
        const double intensity = work() / static_cast<double>(layout_.read() * sizeof(T) / sizeof(Real<T>));
        std::vector<Limit> all;
        if (!writes && intensity > 2.1 && bytes <= cache_sizes().l3) {
            for (const ArithmeticLoop& loop : arithmetic_loops(sizeof(Real<T>) == 4))
                all.push_back({[run = loop.run](long calls) { run(calls); }, static_cast<double>(loop.flops)});
            return all;
        }
        const double passes = static_cast<double>(bytes) / static_cast<double>(layout_.read() * sizeof(T));
        for (const Stream candidate : candidates(writes ? Traffic::update : Traffic::load, bytes))
            all.push_back({[this, candidate, bytes](long calls) {
                               auto* p = reinterpret_cast<char*>(a_.data());
                               traffic(candidate, p, p, bytes, calls);
                           },
                           work() * passes});
        return all;
    }

private:
    static constexpr size_t room = 8192 / sizeof(T);

    size_t longer() const { return std::max(layout_.rows, layout_.columns); }

    void reset()
    {
        std::copy(start_.data(), start_.data() + start_.size(), a_.data());
        std::copy(x0_.data(), x0_.data() + x0_.size(), x_.data());
    }

    void run_stretch(void* routine, long calls)
    {
        const T *x = x_.data(), one(1), zero(0);
        T *a = a_.data(), *y = y_.data();
        const int *m = &m_, *n = &n_, *k = &k_, *ld = &ld_, *inc = &inc_;
        const auto repeat = [&](auto* function, auto... arguments) {
            for (; calls > 0; --calls) function(arguments...);
        };
        const auto call = [&]<class... A>(A... arguments) {
            repeat(reinterpret_cast<void (*)(A...)>(routine), arguments...);
        };
        switch (routine_.kind) {
        case Kind::product:
            if (routine_.form == Form::general)
                return routine_.storage == Storage::band
                           ? call(&trans_, m, n, k, k, &one, a, ld, x, inc, &zero, y, inc, size_t{1})
                           : call(&trans_, m, n, &one, a, ld, x, inc, &zero, y, inc, size_t{1});
            if (routine_.storage == Storage::band)
                return call(&uplo_, n, k, &one, a, ld, x, inc, &zero, y, inc, size_t{1});
            if (routine_.storage == Storage::packed) return call(&uplo_, n, &one, a, x, inc, &zero, y, inc, size_t{1});
            return call(&uplo_, n, &one, a, ld, x, inc, &zero, y, inc, size_t{1});
        case Kind::triangular_product:
        case Kind::triangular_solve:
            if (routine_.storage == Storage::band)
                return call(&uplo_, &trans_, &diag_, n, k, a, ld, x_.data(), inc, size_t{1}, size_t{1}, size_t{1});
            if (routine_.storage == Storage::packed)
                return call(&uplo_, &trans_, &diag_, n, a, x_.data(), inc, size_t{1}, size_t{1}, size_t{1});
            return call(&uplo_, &trans_, &diag_, n, a, ld, x_.data(), inc, size_t{1}, size_t{1}, size_t{1});
        default:
            break;
        }
        const auto update = [&]<class... A>(A... arguments) {
            const auto function = reinterpret_cast<void (*)(A...)>(routine);
            for (; calls > 0; --calls) {
                sign_ = -sign_;
                alpha_ = static_cast<Real<T>>(sign_), real_alpha_ = static_cast<Real<T>>(sign_);
                function(arguments...);
            }
        };
        const Real<T>* real_alpha = &real_alpha_;
        const T* alpha = &alpha_;
        const bool packed = routine_.storage == Storage::packed;
        if (routine_.form == Form::general) return update(m, n, alpha, x, inc, y, inc, a, ld);
        if (routine_.kind == Kind::update2)
            return packed ? update(&uplo_, n, alpha, x, inc, y, inc, a, size_t{1})
                          : update(&uplo_, n, alpha, x, inc, y, inc, a, ld, size_t{1});
        return packed ? update(&uplo_, n, real_alpha, x, inc, a, size_t{1})
                      : update(&uplo_, n, real_alpha, x, inc, a, ld, size_t{1});
    }

    // Every element, stored or not: those that a routine may not touch must be what they were.
    std::string check_update() const
    {
        const bool conjugated = name_.back() == 'c' || layout_.form == Form::hermitian;
        const auto turned = [&](Wide v) { return conjugated ? std::conj(v) : v; };
        const long double alpha = sign_, eps = std::numeric_limits<Real<T>>::epsilon();
        for (size_t j = 0; j < layout_.columns; ++j)
            for (size_t i = 0; i < layout_.rows; ++i) {
                const bool stored = layout_.stored(i, j);
                if (!stored && layout_.storage != Storage::dense) continue;
                const size_t at = layout_.at(i, j);
                Wide want = start_[at];
                if (stored && layout_.form == Form::hermitian && i == j) want = want.real();
                if (stored && routine_.kind == Kind::update2)
                    want += alpha * (Wide(x_[i]) * turned(y_[j]) + Wide(y_[i]) * turned(x_[j]));
                else if (stored)
                    want += alpha * Wide(x_[i]) * turned(layout_.form == Form::general ? y_[j] : x_[j]);
                if (!(magnitude(Wide(a_[at]) - want) <= (stored ? 32 * eps : 0)))
                    return mismatch(at, Wide(a_[at]).real(), want.real());
            }
        return {};
    }

    Routine routine_;
    std::string name_;
    Layout layout_;
    int m_, n_, k_, ld_, inc_ = 1, sign_ = -1;
    char uplo_, diag_, trans_;
    Array<T> a_, x_, y_, start_, x0_;
    T alpha_{};
    Real<T> real_alpha_{};
};

} // namespace

bool is_case(const Level2Case& c)
{
    const Routine* routine = find(c.routine);
    if (routine == nullptr || !fits(*routine, c.letters) || c.m < 1 || c.n < 0) return false;
    return routine->storage == Storage::band || routine->form == Form::general ? c.n > 0 : c.m == c.n;
}

bool is_band(const std::string& name)
{
    const Routine* routine = find(name);
    return routine != nullptr && routine->storage == Storage::band;
}

std::unique_ptr<Problem> make_level2(const Level2Case& c)
{
    if (!is_case(c)) return nullptr;
    return of_precision<Level2Problem>(c.routine[0], *find(c.routine), c);
}

const std::vector<std::string>& level2_routines()
{
    static const std::vector<std::string> names = names_of(routines);
    return names;
}

} // namespace ork::peers
