// SPDX-License-Identifier: MIT
// Products of records: operands as rows, then the kernels of products.cpp in shares.
#include "sparse/dense_products.h"
#include "sparse/members.h"
#include "sparse/operand.h"
#include "sparse/shares.h"
#include "sparse/whole.h"

namespace ork::sparse {

#define KERNEL(stem) ORK_SPARSE_SYMBOL(ORK_KERNEL_LETTER, stem, ORK_SPARSE_SUFFIX)
#define DECLARE(stem) ORK_EXPORT Call::stem KERNEL(stem);
DECLARE(csr__g_n_spmm_notr_row_struct)
DECLARE(csr__g_n_spmm_notr_row_pattern)
DECLARE(csr__g_n_spmm_notr_row)
DECLARE(csr__g_n_spmm_notr_row_values)
DECLARE(csr__g_n_syrk_notr_struct)
DECLARE(csr__g_n_syrk_notr_row)
DECLARE(csr__g_n_sypr_notr_row_struct)
DECLARE(csr__g_n_sypr_notr_row_pattern)
DECLARE(csr__g_n_sypr_notr_row)
DECLARE(csr__g_n_sypr_notr_row_values)
DECLARE(csr_ng_n_spmmd_alf_c_ker)
DECLARE(csr_ng_n_spmmd_alf_f_ker)
DECLARE(bsr_ng_n_spmmd_c_ker)
DECLARE(bsr_ng_n_spmmd_f_ker)
DECLARE(csr__g_n_syrkd_alf_c_ker)
DECLARE(csr__g_n_syrkd_alf_f_ker)
DECLARE(csr__g_t_syrkd_alf_c_ker)
DECLARE(csr__g_t_syrkd_alf_f_ker)
DECLARE(csr__g_n_syprd_c_ker)
DECLARE(csr__g_n_syprd_f_ker)

DECLARE(bsr__g_n_spmm_notr_row_rrr)
DECLARE(bsr__g_n_spmm_notr_row_rcr)
DECLARE(bsr__g_n_spmm_notr_row_crr)
DECLARE(bsr__g_n_spmm_notr_row_ccc)
DECLARE(bsr__g_n_spmm_notr_row_rrr_values)
DECLARE(bsr__g_n_spmm_notr_row_rcr_values)
DECLARE(bsr__g_n_spmm_notr_row_crr_values)
DECLARE(bsr__g_n_spmm_notr_row_ccc_values)
DECLARE(bsr__g_n_syrk_notr_rr)
DECLARE(bsr__g_n_syrk_notr_cc)
DECLARE(bsr__g_n_sypr_notr_rr)
DECLARE(bsr__g_n_sypr_notr_rc)
DECLARE(bsr__g_n_sypr_notr_cr)
DECLARE(bsr__g_n_sypr_notr_cc)
DECLARE(bsr__g_n_sypr_notr_rr_values)
DECLARE(bsr__g_n_sypr_notr_rc_values)
DECLARE(bsr__g_n_sypr_notr_cr_values)
DECLARE(bsr__g_n_sypr_notr_cc_values)
#undef DECLARE

namespace {

std::int64_t rows_of_op(const Matrix& a, int op) { return op == 1 || op == 2 ? a.cols : a.rows; }
std::int64_t cols_of_op(const Matrix& a, int op) { return op == 1 || op == 2 ? a.rows : a.cols; }
constexpr int hermitian = 2;

// The lines of C (rows, of csc columns) and the operands whose rows they are made of.
class SparseProduct {
public:
    std::int64_t prepare(const Team* team, const Factors& f)
    {
        form_ = f.form;
        int status = record_done;
        const Matrix& a = *f.a;
        block_ = static_cast<Int>(a.format == Format::bsr ? a.block : 1);
        blocks_ = a.format == Format::bsr;
        if (form_ == ProductForm::product) {
            const Matrix& b = *f.b;
            // (A B)^T = B^T A^T: the columns of C are those of B times the columns of A.
            const bool columns = a.format == Format::csc;
            const Matrix &first = columns ? b : a, &second = columns ? a : b;
            const int op_first = columns ? f.op_b : f.op_a, op_second = columns ? f.op_a : f.op_b;
            lines_ = columns ? cols_of_op(b, f.op_b) : rows_of_op(a, f.op_a);
            columns_ = columns ? rows_of_op(a, f.op_a) : cols_of_op(b, f.op_b);
            status = left_.take(first, {.op = op_first, .columns = columns});
            if (status == record_done) status = right_.take(second, {.op = op_second, .columns = columns});
        } else {
            const int op = f.op_a == 0 ? 0 : hermitian;
            lines_ = columns_ = rows_of_op(a, op);
            inner_ = cols_of_op(a, op);
            status = left_.take(a, {.op = op});
            if (status == record_done) status = right_.take(a, {.op = hermitian - op, .ascending = true});
            if (status == record_done && form_ == ProductForm::triple) {
                Matrix* const whole = Whole<Int, T>(*f.b, f.upper_b != 0, f.symmetric_b != 0).make();
                if (whole == nullptr) return product_no_memory;
                middle_.own(whole);
            }
        }
        if (status != record_done) return status == record_too_large ? product_too_large : product_no_memory;
        const Matrix &left = left_.record(), &right = right_.record();
        const double row =
            static_cast<double>(right.entries) / static_cast<double>(std::max<std::int64_t>(lines_of(right), 1));
        const double products = static_cast<double>(left.entries) * (1 + row) * block_ * block_ * block_;
        const bool triple = form_ == ProductForm::triple;
        const std::int64_t work = triple ? triple_work<Int, T>(lines_, inner_, block_) : product_work<Int, T>(columns_);
        return shares_.start(team, lines_, static_cast<const Int*>(left.first), triple ? 2 * products : products, work)
                   ? product_done
                   : product_no_memory;
    }

    void count(Int* counts)
    {
        const Rows<Int, T> a = left_.rows<T>(), b = right_.rows<T>(), middle = middle_rows();
        shares_.run([&](Int first, Int last, void* work) {
            Int* const out = counts + first;
            switch (form_) {
            case ProductForm::product:
                return KERNEL(csr__g_n_spmm_notr_row_struct)(first, last, columns(), &a, &b, out, work);
            case ProductForm::square:
                return KERNEL(csr__g_n_syrk_notr_struct)(first, last, columns(), &a, &b, out, work);
            case ProductForm::triple:
                return KERNEL(csr__g_n_sypr_notr_row_struct)(first, last, columns(), inner(), &a, &middle, &b, out,
                                                             work);
            }
        });
    }

    // Columns alone; the values are 0 then.
    void fill_pattern(const Matrix& c)
    {
        if (form_ == ProductForm::square) {
            fill(c);
        } else {
            const Rows<Int, T> a = left_.rows<T>(), b = right_.rows<T>(), middle = middle_rows();
            const Result<Int, T> result = result_in(c);
            shares_.run([&](Int first, Int last, void* work) {
                if (form_ == ProductForm::product)
                    KERNEL(csr__g_n_spmm_notr_row_pattern)(first, last, columns(), &a, &b, &result, work);
                else
                    KERNEL(csr__g_n_sypr_notr_row_pattern)
                (first, last, columns(), inner(), &a, &middle, &b, &result, work);
            });
        }
        std::memset(c.values, 0, static_cast<std::size_t>(c.entries * entry_bytes(c)));
    }

    // Columns and values.
    void fill(const Matrix& c)
    {
        const Rows<Int, T> a = left_.rows<T>(), b = right_.rows<T>(), middle = middle_rows();
        const Result<Int, T> result = result_in(c);
        shares_.run([&](Int first, Int last, void* work) {
            switch (form_) {
            case ProductForm::product:
                if (blocks_) return kernel_of_blocks()(first, last, columns(), block_, &a, &b, &result, nullptr, work);
                return KERNEL(csr__g_n_spmm_notr_row)(first, last, columns(), &a, &b, &result, nullptr, work);
            case ProductForm::square:
                if (blocks_)
                    return (left_.record().layout == row_major ? KERNEL(bsr__g_n_syrk_notr_rr)
                                                               : KERNEL(bsr__g_n_syrk_notr_cc))(
                        first, last, columns(), block_, &a, &b, &result, nullptr, work);
                return KERNEL(csr__g_n_syrk_notr_row)(first, last, columns(), &a, &b, &result, nullptr, work);
            case ProductForm::triple:
                if (blocks_)
                    return kernel_of_triple_blocks()(first, last, columns(), inner(), block_, &a, &middle, &b, &result,
                                                     nullptr, work);
                return KERNEL(csr__g_n_sypr_notr_row)(first, last, columns(), inner(), &a, &middle, &b, &result,
                                                      nullptr, work);
            }
        });
    }

    // Values of a pattern that is there.
    void fill_values(const Matrix& c)
    {
        if (form_ == ProductForm::square) return fill(c); // the same columns again
        const Rows<Int, T> a = left_.rows<T>(), b = right_.rows<T>(), middle = middle_rows();
        const Result<Int, T> result = result_in(c);
        shares_.run([&](Int first, Int last, void* work) {
            if (form_ == ProductForm::product) {
                if (blocks_) return values_of_blocks()(first, last, columns(), block_, &a, &b, &result, work);
                return KERNEL(csr__g_n_spmm_notr_row_values)(first, last, columns(), &a, &b, &result, work);
            }
            if (blocks_)
                return values_of_triple_blocks()(first, last, columns(), inner(), block_, &a, &middle, &b, &result,
                                                 work);
            return KERNEL(csr__g_n_sypr_notr_row_values)(first, last, columns(), inner(), &a, &middle, &b, &result,
                                                         work);
        });
    }

private:
    Int columns() const { return static_cast<Int>(columns_); }
    Int inner() const { return static_cast<Int>(inner_); }
    Rows<Int, T> middle_rows() const { return form_ == ProductForm::triple ? middle_.rows<T>() : Rows<Int, T>{}; }
    static Result<Int, T> result_in(const Matrix& c)
    {
        return {static_cast<T*>(c.values), static_cast<Int*>(c.index), static_cast<const Int*>(c.first),
                static_cast<const Int*>(c.last), static_cast<Int>(c.base)};
    }

    // 0 to 3: rr, rc, cr, cc.
    static int layouts(const Operand<Int>& a, const Operand<Int>& b)
    {
        return 2 * a.record().layout + b.record().layout;
    }
    Call::bsr__g_n_spmm_notr_row_rrr* kernel_of_blocks() const
    {
        const int l = layouts(left_, right_);
        return l == 0   ? KERNEL(bsr__g_n_spmm_notr_row_rrr)
               : l == 1 ? KERNEL(bsr__g_n_spmm_notr_row_rcr)
               : l == 2 ? KERNEL(bsr__g_n_spmm_notr_row_crr)
                        : KERNEL(bsr__g_n_spmm_notr_row_ccc);
    }
    Call::bsr__g_n_spmm_notr_row_rrr_values* values_of_blocks() const
    {
        const int l = layouts(left_, right_);
        return l == 0   ? KERNEL(bsr__g_n_spmm_notr_row_rrr_values)
               : l == 1 ? KERNEL(bsr__g_n_spmm_notr_row_rcr_values)
               : l == 2 ? KERNEL(bsr__g_n_spmm_notr_row_crr_values)
                        : KERNEL(bsr__g_n_spmm_notr_row_ccc_values);
    }
    Call::bsr__g_n_sypr_notr_rr* kernel_of_triple_blocks() const
    {
        const int l = layouts(left_, middle_);
        return l == 0   ? KERNEL(bsr__g_n_sypr_notr_rr)
               : l == 1 ? KERNEL(bsr__g_n_sypr_notr_rc)
               : l == 2 ? KERNEL(bsr__g_n_sypr_notr_cr)
                        : KERNEL(bsr__g_n_sypr_notr_cc);
    }
    Call::bsr__g_n_sypr_notr_rr_values* values_of_triple_blocks() const
    {
        const int l = layouts(left_, middle_);
        return l == 0   ? KERNEL(bsr__g_n_sypr_notr_rr_values)
               : l == 1 ? KERNEL(bsr__g_n_sypr_notr_rc_values)
               : l == 2 ? KERNEL(bsr__g_n_sypr_notr_cr_values)
                        : KERNEL(bsr__g_n_sypr_notr_cc_values);
    }

    ProductForm form_;
    std::int64_t lines_, columns_, inner_ = 0;
    Int block_;
    bool blocks_;
    Operand<Int> left_, right_, middle_; // of a triple product: A, A^H and B
    Shares<Int> shares_;
};

void release_entries(Matrix& c)
{
    ork_serv_free(c.index);
    ork_serv_free(c.values);
    c.index = c.values = nullptr;
    c.entries = 0;
}

} // namespace

ORK_SPARSE_EXPORT(std::int64_t, do_sp2m_allocate_C_handle)(const Factors* f, Matrix** result)
{
    const Matrix& a = *f->a;
    const bool product = f->form == ProductForm::product;
    Matrix* const c = new_record(nullptr, a.precision, sizeof(Int));
    if (c == nullptr) return product_no_memory;
    c->base = a.base, c->memory = a.memory;
    const bool kept = a.format == Format::bsr || (product && a.format == Format::csc);
    c->format = kept ? a.format : Format::csr;
    c->rows = rows_of_op(a, f->op_a);
    c->cols = product ? cols_of_op(*f->b, f->op_b) : c->rows;
    c->block = a.block;
    c->layout = product && f->b->layout == row_major ? std::int8_t{row_major} : a.layout;
    c->owns_arrays = c->sorted = c->distinct = 1;
    const std::int64_t lines = lines_of(*c);
    Int* const first = static_cast<Int*>(new_array(lines + 1, sizeof(Int)));
    if (first == nullptr) {
        release_record(c);
        return product_no_memory;
    }
    for (std::int64_t i = 0; i <= lines; ++i) first[i] = static_cast<Int>(c->base);
    c->first = first, c->last = first + 1;
    *result = c;
    return product_done;
}

ORK_SPARSE_EXPORT(std::int64_t, update_C_handle_data_for_matmat)(std::int32_t steps, Matrix* c)
{
    Int* const first = static_cast<Int*>(c->first);
    const std::int64_t lines = lines_of(*c);
    if ((steps & product_counts) != 0) {
        const std::int64_t most = sizeof(Int) == 4 ? INT32_MAX : INT64_MAX;
        std::int64_t sum = c->base;
        first[0] = static_cast<Int>(c->base);
        for (std::int64_t i = 1; i <= lines; ++i) {
            if (first[i] > most - sum) return product_too_large;
            sum += first[i];
            first[i] = static_cast<Int>(sum);
        }
        release_entries(*c);
    }
    if ((steps & product_pattern) != 0) {
        const std::int64_t entries = std::int64_t{first[lines]} - c->base;
        void *const index = new_array(entries, sizeof(Int)), *const values = new_array(entries, entry_bytes(*c));
        if (index == nullptr || values == nullptr) {
            ork_serv_free(index);
            ork_serv_free(values);
            return product_no_memory;
        }
        release_entries(*c);
        c->index = index, c->values = values, c->entries = entries;
    }
    return product_done;
}

ORK_SPARSE_EXPORT(std::int64_t, do_sp2m)(const Team* team, const Factors* f, std::int32_t steps, Matrix* c)
{
    SparseProduct product;
    if (const auto status = product.prepare(team, *f)) return status;
    if ((steps & product_counts) != 0) {
        product.count(static_cast<Int*>(c->first) + 1);
        if (const auto status = KERNEL(update_C_handle_data_for_matmat)(product_counts, c)) return status;
    }
    if ((steps & product_pattern) != 0) {
        if (const auto status = KERNEL(update_C_handle_data_for_matmat)(product_pattern, c)) return status;
        if ((steps & product_values) != 0)
            product.fill(*c);
        else
            product.fill_pattern(*c);
    } else if ((steps & product_values) != 0) {
        product.fill_values(*c);
    }
    return product_done;
}

namespace {

// body(first, last, scratch) for rows of the dense C. Without a factor whose rows these are: equal numbers of them.
template <class Body>
std::int64_t in_shares(const Team* team, const Operand<Int>* left, std::int64_t rows, double products,
                       std::int64_t work, Body body)
{
    Shares<Int> shares;
    const Int* const first = left != nullptr ? static_cast<const Int*>(left->record().first) : nullptr;
    if (!shares.start(team, rows, first, products, work)) return product_no_memory;
    shares.run(body);
    return product_done;
}

std::int64_t status_of(int record)
{
    return record == record_done ? product_done : record == record_too_large ? product_too_large : product_no_memory;
}

struct DenseFactors {
    const Team* team;
    const Factors& f;
    T alpha, beta;
    int layout;
    T* c;
    Int ldc;
};

double products_of(const Matrix& a, const Matrix& b)
{
    const double block = static_cast<double>(a.block);
    return static_cast<double>(a.entries) * block * block * block *
           (1 + static_cast<double>(b.entries) / static_cast<double>(std::max<std::int64_t>(lines_of(b), 1)));
}

std::int64_t dense_product(const DenseFactors& d)
{
    const Matrix &a = *d.f.a, &b = *d.f.b;
    Operand<Int> left, right;
    int status = left.take(a, {.op = d.f.op_a, .layout = d.layout});
    if (status == record_done) status = right.take(b, {.op = d.f.op_b, .layout = d.layout});
    if (status != record_done) return status_of(status);
    const Rows<Int, T> rows_a = left.rows<T>(), rows_b = right.rows<T>();
    const std::int64_t rows = rows_of_op(a, d.f.op_a);
    const Int columns = static_cast<Int>(cols_of_op(b, d.f.op_b)), block = static_cast<Int>(a.block);
    const bool blocks = a.format == Format::bsr, by_rows = d.layout == row_major;
    return in_shares(d.team, &left, rows, products_of(left.record(), right.record()), 0,
                     [&](Int first, Int last, void*) {
                         if (blocks)
                             (by_rows ? KERNEL(bsr_ng_n_spmmd_c_ker) : KERNEL(bsr_ng_n_spmmd_f_ker))(
                                 first, last, columns, block, d.alpha, &rows_a, &rows_b, d.beta, d.c, d.ldc);
                         else
                             (by_rows ? KERNEL(csr_ng_n_spmmd_alf_c_ker) : KERNEL(csr_ng_n_spmmd_alf_f_ker))(
                                 first, last, columns, d.alpha, &rows_a, &rows_b, d.beta, d.c, d.ldc);
                     });
}

std::int64_t dense_square(const DenseFactors& d)
{
    const Matrix& a = *d.f.a;
    const bool by_rows = d.layout == row_major, transposed = d.f.op_a != 0;
    Operand<Int> left, right;
    int status = left.take(a, {.numbers = true});
    if (status == record_done && !transposed)
        status = right.take(a, {.op = hermitian, .ascending = true, .numbers = true});
    if (status != record_done) return status_of(status);
    const Rows<Int, T> rows_a = left.rows<T>();
    const Int rows = static_cast<Int>(left.record().rows), cols = static_cast<Int>(left.record().cols);
    if (transposed) {
        const double row = static_cast<double>(left.record().entries) / std::max(1.0, static_cast<double>(rows));
        return in_shares(d.team, nullptr, cols, static_cast<double>(left.record().entries) * row, 0,
                         [&](Int first, Int last, void*) {
                             (by_rows ? KERNEL(csr__g_t_syrkd_alf_c_ker) : KERNEL(csr__g_t_syrkd_alf_f_ker))(
                                 first, last, cols, rows, d.alpha, &rows_a, d.beta, d.c, d.ldc);
                         });
    }
    const Rows<Int, T> rows_ah = right.rows<T>();
    return in_shares(d.team, &left, rows, products_of(left.record(), right.record()), 0,
                     [&](Int first, Int last, void*) {
                         (by_rows ? KERNEL(csr__g_n_syrkd_alf_c_ker) : KERNEL(csr__g_n_syrkd_alf_f_ker))(
                             first, last, rows, d.alpha, &rows_a, &rows_ah, d.beta, d.c, d.ldc);
                     });
}

std::int64_t dense_triple(const DenseFactors& d)
{
    Operand<Int> left;
    const int op = d.f.op_a == 0 ? 0 : hermitian, status = left.take(*d.f.a, {.op = op, .numbers = true});
    if (status != record_done) return status_of(status);
    const Rows<Int, T> a = left.rows<T>();
    // Not those of the record, which may be columns in place of the rows of its transpose.
    const std::int64_t order = rows_of_op(*d.f.a, op) * d.f.a->block, columns = cols_of_op(*d.f.a, op) * d.f.a->block;
    const double products = static_cast<double>(left.record().entries) * static_cast<double>(columns + order / 2);
    return in_shares(d.team, &left, order, products, columns * std::int64_t{sizeof(T)},
                     [&](Int first, Int last, void* work) {
                         (d.layout == row_major ? KERNEL(csr__g_n_syprd_c_ker) : KERNEL(csr__g_n_syprd_f_ker))(
                             first, last, static_cast<Int>(order), static_cast<Int>(columns), d.alpha, &a,
                             static_cast<const T*>(d.f.dense_b), static_cast<Int>(d.f.row_b),
                             static_cast<Int>(d.f.column_b), d.beta, d.c, d.ldc, work);
                     });
}

} // namespace

ORK_SPARSE_EXPORT(std::int64_t, spmmd)
(const Team* team, const Factors* f, const T* alpha, const T* beta, std::int32_t layout, T* c, std::int64_t ldc)
{
    const bool upper = f->form != ProductForm::product;
    if (*alpha == T{}) {
        const Matrix& a = *f->a;
        const std::int64_t rows = rows_of_op(a, f->op_a) * a.block;
        const std::int64_t columns = upper ? rows : cols_of_op(*f->b, f->op_b) * f->b->block;
        DenseResult<T>::in_layout(layout, c, ldc).prepare(upper, 0, rows, columns, *beta);
        return product_done;
    }
    const DenseFactors d = {team, *f, *alpha, *beta, layout, c, static_cast<Int>(ldc)};
    return !upper ? dense_product(d) : f->form == ProductForm::square ? dense_square(d) : dense_triple(d);
}

} // namespace ork::sparse
