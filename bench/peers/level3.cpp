// SPDX-License-Identifier: MIT
// The matrix-matrix routines beside gemm. Results are checked as those of gemm are, by a vector with entries of
// magnitude one. B of a triangular product or solve starts afresh every 64 calls; the triangle (dense.h) keeps it
// bounded so long, and the copy is lost beside 64 products.
#include "peers/dense.h"
#include "peers/limits.h"

namespace ork::peers {
namespace {

enum class Kind { symmetric_product, rank_k, rank_2k, product_triangle, triangular_product, triangular_solve };

struct Routine {
    const char* stem;
    const char* precisions;
    Kind kind;
    bool hermitian;
};

constexpr Routine routines[] = {
    {"syrk", "sdcz", Kind::rank_k, false},
    {"herk", "cz", Kind::rank_k, true},
    {"trsm", "sdcz", Kind::triangular_solve, false},
    {"trmm", "sdcz", Kind::triangular_product, false},
    {"symm", "sdcz", Kind::symmetric_product, false},
    {"hemm", "cz", Kind::symmetric_product, true},
    {"syr2k", "sdcz", Kind::rank_2k, false},
    {"her2k", "cz", Kind::rank_2k, true},
    {"gemmt", "sdcz", Kind::product_triangle, false},
};

const Routine* find(const std::string& name)
{
    for (const Routine& routine : routines)
        if (name.size() > 1 && name.substr(1) == routine.stem &&
            std::string(routine.precisions).find(name[0]) != std::string::npos)
            return &routine;
    return nullptr;
}

// The letters that stand at each position.
std::vector<const char*> letters_of(const Routine& routine, bool complex)
{
    const char *other = complex ? (routine.hermitian ? "NC" : "NT") : "NTC", *any = "NTC";
    switch (routine.kind) {
    case Kind::symmetric_product:
        return {"LR", "LU"};
    case Kind::rank_k:
    case Kind::rank_2k:
        return {"LU", other};
    case Kind::product_triangle:
        return {"LU", any, any};
    default:
        return {"LR", "LU", any, "NU"};
    }
}

bool fits(const Routine& routine, const std::string& letters, bool complex)
{
    const auto allowed = letters_of(routine, complex);
    if (letters.size() != allowed.size()) return false;
    for (size_t i = 0; i < letters.size(); ++i)
        if (std::string(allowed[i]).find(letters[i]) == std::string::npos) return false;
    return true;
}

template <class T>
class Level3Problem final : public Problem {
public:
    Level3Problem(const Routine& routine, const Level3Case& c)
        : routine_(routine), name_(c.routine), letters_(c.letters), m_(c.m), n_(c.n), left_(c.letters[0] == 'L'),
          a_layout_(layout_of_a()), b_layout_(layout_of_b()), c_layout_(layout_of_c()),
          lda_(static_cast<int>(a_layout_.ld())), ldb_(static_cast<int>(b_layout_.ld())),
          ldc_(static_cast<int>(c_layout_.ld())), a_(a_layout_.size(), 0), b_(b_layout_.size(), 1088),
          c_(c_layout_.size(), 2176), start_(in_place() ? b_.size() : c_.size())
    {
        Random random;
        fill(a_, a_layout_, random);
        random.fill(b_);
        random.fill(start_);
    }

    std::string symbol() const override { return name_ + "_"; }

    double work() const override
    {
        const double factor = is_complex<T> ? 4 : 1, m = m_, n = n_;
        switch (routine_.kind) {
        case Kind::symmetric_product:
            return factor * 2 * m * n * (left_ ? m : n);
        case Kind::rank_k:
        case Kind::product_triangle:
            return factor * m * m * n;
        case Kind::rank_2k:
            return factor * 2 * m * m * n;
        default:
            return factor * m * n * (left_ ? m : n);
        }
    }

    void run(void* routine, long calls) override
    {
        while (calls > 0) {
            if (in_place()) std::copy(start_.data(), start_.data() + start_.size(), b_.data());
            const long stretch = std::min(calls, 64L);
            run_stretch(routine, stretch);
            calls -= stretch;
        }
    }

    std::string check(void* routine) override
    {
        // beta = 0 may not read C.
        std::fill(c_.data(), c_.data() + c_.size(), T(std::numeric_limits<Real<T>>::quiet_NaN()));
        run(routine, 1);
        return in_place()                                 ? check_in_place()
               : routine_.kind == Kind::symmetric_product ? check_product()
                                                          : check_triangle();
    }

    std::vector<Limit> limits() override
    {
        std::vector<Limit> all;
        for (const ArithmeticLoop& loop : arithmetic_loops(sizeof(Real<T>) == 4))
            all.push_back({[run = loop.run](long calls) { run(calls); }, static_cast<double>(loop.flops)});
        return all;
    }

private:
    bool in_place() const
    {
        return routine_.kind == Kind::triangular_product || routine_.kind == Kind::triangular_solve;
    }
    static Layout rectangle(int rows, int columns, char trans = 'N')
    {
        Layout layout;
        layout.rows = static_cast<size_t>(trans == 'N' ? rows : columns);
        layout.columns = static_cast<size_t>(trans == 'N' ? columns : rows);
        return layout;
    }
    Layout layout_of_a() const
    {
        if (!in_place() && routine_.kind != Kind::symmetric_product) return rectangle(m_, n_, letters_[1]);
        Layout layout = rectangle(left_ ? m_ : n_, left_ ? m_ : n_);
        layout.form = in_place() ? Form::triangular : routine_.hermitian ? Form::hermitian : Form::symmetric;
        layout.uplo = letters_[1];
        if (in_place()) layout.diag = letters_[3];
        return layout;
    }
    Layout layout_of_b() const
    {
        if (routine_.kind == Kind::product_triangle) return rectangle(n_, m_, letters_[2]);
        if (routine_.kind == Kind::rank_2k) return layout_of_a();
        return rectangle(m_, n_);
    }
    Layout layout_of_c() const
    {
        Layout layout = rectangle(m_, routine_.kind == Kind::symmetric_product || in_place() ? n_ : m_);
        if (routine_.kind == Kind::symmetric_product || in_place()) return layout;
        layout.form = Form::triangular;
        layout.uplo = letters_[0];
        return layout;
    }

    void run_stretch(void* routine, long calls)
    {
        const auto call = [&]<class... A>(A... arguments) {
            const auto function = reinterpret_cast<void (*)(A...)>(routine);
            for (; calls > 0; --calls) function(arguments...);
        };
        const T one(1), zero(0);
        const Real<T> real_one(1), real_zero(0);
        const T *a = a_.data(), *b = b_.data();
        const char* letter = letters_.data();
        const int *m = &m_, *n = &n_, *lda = &lda_, *ldb = &ldb_, *ldc = &ldc_;
        const bool real_scalars = routine_.hermitian && is_complex<T>;
        switch (routine_.kind) {
        case Kind::symmetric_product:
            return call(letter, letter + 1, m, n, &one, a, lda, b, ldb, &zero, c_.data(), ldc, size_t{1}, size_t{1});
        case Kind::rank_k:
            return real_scalars
                       ? call(letter, letter + 1, m, n, &real_one, a, lda, &real_zero, c_.data(), ldc, size_t{1},
                              size_t{1})
                       : call(letter, letter + 1, m, n, &one, a, lda, &zero, c_.data(), ldc, size_t{1}, size_t{1});
        case Kind::rank_2k:
            return real_scalars ? call(letter, letter + 1, m, n, &one, a, lda, b, ldb, &real_zero, c_.data(), ldc,
                                       size_t{1}, size_t{1})
                                : call(letter, letter + 1, m, n, &one, a, lda, b, ldb, &zero, c_.data(), ldc, size_t{1},
                                       size_t{1});
        case Kind::product_triangle:
            return call(letter, letter + 1, letter + 2, m, n, &one, a, lda, b, ldb, &zero, c_.data(), ldc, size_t{1},
                        size_t{1}, size_t{1});
        default:
            return call(letter, letter + 1, letter + 2, letter + 3, m, n, &one, a, lda, b_.data(), ldb, size_t{1},
                        size_t{1}, size_t{1}, size_t{1});
        }
    }

    static Sums signs(size_t n)
    {
        Sums v(n);
        for (size_t j = 0; j < n; ++j) v.add(j, (j * 2654435761u >> 7) % 2 == 0 ? 1.0L : -1.0L, 1);
        return v;
    }

    std::string check_product() const
    {
        const Matrix<T> a{a_.data(), a_layout_}, b{b_.data(), b_layout_}, c{c_.data(), c_layout_};
        const Sums v = signs(b.columns());
        return compare<T>(c * v, left_ ? a * (b * v) : b * (a * v), a.columns());
    }

    std::string check_in_place() const
    {
        const Matrix<T> a{a_.data(), a_layout_, letters_[2]}, x{b_.data(), b_layout_}, b{start_.data(), b_layout_};
        const Sums v = signs(b.columns());
        if (routine_.kind == Kind::triangular_product)
            return compare<T>(x * v, left_ ? a * (b * v) : b * (a * v), a.columns());
        return compare<T>(left_ ? a * (x * v) : x * (a * v), b * v, a.columns());
    }

    // What the product of the left and right factor adds to the triangle's product with v: row i times the sum of
    // v[j] column j over the columns that the triangle has in that row.
    static void add_triangle(Sums& y, const Matrix<T>& left, const Matrix<T>& right, char uplo, const Sums& v)
    {
        const size_t n = y.value.size(), depth = left.columns();
        Sums columns(depth);
        for (size_t step = 0; step < n; ++step) {
            const size_t i = uplo == 'L' ? step : n - 1 - step;
            for (size_t l = 0; l < depth; ++l) columns.add(l, v, i, right(l, i));
            for (size_t l = 0; l < depth; ++l) y.add(i, columns, l, left(i, l));
        }
    }

    std::string check_triangle() const
    {
        const char trans = letters_[1], uplo = letters_[0];
        const char turned = trans != 'N' ? 'N' : routine_.hermitian ? 'C' : 'T';
        const Matrix<T> a{a_.data(), a_layout_, trans}, c{c_.data(), c_layout_};
        const Sums v = signs(c.columns());
        Sums want(c.rows());
        if (routine_.kind == Kind::product_triangle) {
            add_triangle(want, a, {b_.data(), b_layout_, letters_[2]}, uplo, v);
        } else if (routine_.kind == Kind::rank_k) {
            add_triangle(want, a, {a_.data(), a_layout_, turned}, uplo, v);
        } else {
            add_triangle(want, a, {b_.data(), b_layout_, turned}, uplo, v);
            add_triangle(want, {b_.data(), b_layout_, trans}, {a_.data(), a_layout_, turned}, uplo, v);
        }
        for (size_t j = 0; j < c_layout_.columns; ++j)
            for (size_t i = 0; i < c_layout_.rows; ++i)
                if (!c_layout_.stored(i, j) && c_[i + j * c_layout_.rows] == c_[i + j * c_layout_.rows])
                    return "the other triangle has changed";
        return compare<T>(c * v, want, a.columns());
    }

    Routine routine_;
    std::string name_, letters_;
    int m_, n_;
    bool left_;
    Layout a_layout_, b_layout_, c_layout_;
    int lda_, ldb_, ldc_;
    Array<T> a_, b_, c_, start_;
};

} // namespace

bool is_case(const Level3Case& c)
{
    const Routine* routine = find(c.routine);
    return routine != nullptr && fits(*routine, c.letters, c.routine[0] == 'c' || c.routine[0] == 'z') && c.m > 0 &&
           c.n > 0;
}

std::unique_ptr<Problem> make_level3(const Level3Case& c)
{
    if (!is_case(c)) return nullptr;
    return of_precision<Level3Problem>(c.routine[0], *find(c.routine), c);
}

const std::vector<std::string>& level3_routines()
{
    static const std::vector<std::string> names = names_of(routines);
    return names;
}

} // namespace ork::peers
