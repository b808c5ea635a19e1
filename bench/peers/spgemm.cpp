// SPDX-License-Identifier: MIT
#include "peers/spgemm.h"

#include <algorithm>
#include <numeric>
#include <stdexcept>

#include "ork/sparse.h"
#include "peers/graphblas.h"

namespace ork::peers {
namespace {

std::vector<double> multiply(int rows, const int* first, const int* last, const int* col, const double* val,
                             const std::vector<double>& x)
{
    std::vector<double> y(static_cast<size_t>(rows));
    for (int i = 0; i < rows; ++i)
        for (int k = first[i]; k < last[i]; ++k) y[static_cast<size_t>(i)] += val[k] * x[static_cast<size_t>(col[k])];
    return y;
}

class Ork : public Spgemm {
public:
    explicit Ork(const CsrMatrix& a) : rows_(a.rows)
    {
        check(ork_sparse_d_create_csr_i4(&a_, ORK_SPBLAS_BASE_0, a.rows, a.columns, a.ptr.data(), a.ptr.data() + 1,
                                         a.col.data(), a.val.data()));
    }
    ~Ork() override { ork_sparse_destroy(a_); }
    Ork(const Ork&) = delete;
    Ork& operator=(const Ork&) = delete;

    void run() override { ork_sparse_destroy(make()); }
    std::vector<double> times(const std::vector<double>& x) override
    {
        const ork_sparse_matrix_t c = make();
        std::vector<double> y(static_cast<size_t>(rows_));
        check(ork_sparse_d_mv(ORK_SPBLAS_NO_TRANS, 1, c, {}, x.data(), 0, y.data()));
        ork_sparse_destroy(c);
        return y;
    }

private:
    static void check(int64_t status)
    {
        if (status != ORK_SPARSE_SUCCESS) throw std::runtime_error(ork_sparse_last_error()->text);
    }
    ork_sparse_matrix_t make()
    {
        ork_sparse_matrix_t c = nullptr;
        check(ork_sparse_spmm(ORK_SPBLAS_NO_TRANS, a_, a_, &c));
        return c;
    }

    int rows_;
    ork_sparse_matrix_t a_ = nullptr;
};

// Rows added up in a dense one, as every textbook has it; their columns sorted.
class Plain : public Spgemm {
public:
    explicit Plain(const CsrMatrix& a) : a_(a), sum_(static_cast<size_t>(a.columns)), row_of_(sum_.size(), -1) {}
    void run() override
    {
        make();
        std::vector<int>().swap(ptr_), std::vector<int>().swap(col_), std::vector<double>().swap(val_);
    }
    std::vector<double> times(const std::vector<double>& x) override
    {
        make();
        return multiply(a_.rows, ptr_.data(), ptr_.data() + 1, col_.data(), val_.data(), x);
    }

private:
    void make()
    {
        std::fill(row_of_.begin(), row_of_.end(), -1);
        ptr_.assign(1, 0), col_.clear(), val_.clear();
        const int *ptr = a_.ptr.data(), *col = a_.col.data();
        const double* val = a_.val.data();
        for (int i = 0; i < a_.rows; ++i) {
            for (int k = ptr[i]; k < ptr[i + 1]; ++k)
                for (int l = ptr[col[k]]; l < ptr[col[k] + 1]; ++l) {
                    const auto j = static_cast<size_t>(col[l]);
                    if (row_of_[j] != i) row_of_[j] = i, sum_[j] = 0, col_.push_back(col[l]);
                    sum_[j] += val[k] * val[l];
                }
            std::sort(col_.begin() + ptr_.back(), col_.end());
            for (size_t k = val_.size(); k < col_.size(); ++k) val_.push_back(sum_[static_cast<size_t>(col_[k])]);
            ptr_.push_back(static_cast<int>(col_.size()));
        }
    }

    const CsrMatrix& a_;
    std::vector<double> sum_, val_;
    std::vector<int> row_of_, ptr_, col_;
};

// Its results come with rows in no order, which it sorts when somebody wants it; that is not counted.
class GraphBlasProduct : public Spgemm {
public:
    GraphBlasProduct(const GraphBlas& api, const CsrMatrix& a)
        : api_(api), n_(static_cast<uint64_t>(a.rows)),
          a_(api.matrix(false, a.rows, a.columns, a.ptr.data(), a.col.data(), a.val.data()))
    {
        if (a_ == nullptr) throw std::runtime_error("GrB_Matrix_import: refused");
    }
    ~GraphBlasProduct() override { api_.matrix_free(&a_); }
    GraphBlasProduct(const GraphBlasProduct&) = delete;
    GraphBlasProduct& operator=(const GraphBlasProduct&) = delete;

    void run() override
    {
        GraphBlas::Object c = make();
        api_.matrix_free(&c);
    }
    std::vector<double> times(const std::vector<double>& x) override
    {
        GraphBlas::Object c = make(), in = nullptr, out = nullptr;
        std::vector<uint64_t> index(n_);
        std::iota(index.begin(), index.end(), uint64_t{0});
        std::vector<double> value(n_), y(n_);
        uint64_t count = n_;
        const bool done = api_.vector_new(&in, api_.fp64, n_) == 0 && api_.vector_new(&out, api_.fp64, n_) == 0 &&
                          api_.vector_build_fp64(in, index.data(), x.data(), n_, api_.plus_fp64) == 0 &&
                          api_.mxv(out, nullptr, nullptr, api_.plus_times_fp64, c, in, nullptr) == 0 &&
                          api_.vector_extract_fp64(index.data(), value.data(), &count, out) == 0;
        for (uint64_t k = 0; done && k < count; ++k) y[index[k]] = value[k];
        api_.vector_free(&in), api_.vector_free(&out), api_.matrix_free(&c);
        return y;
    }
    std::string storage() const override { return "rows unsorted"; }

private:
    GraphBlas::Object make()
    {
        GraphBlas::Object c = nullptr;
        if (api_.matrix_new(&c, api_.fp64, n_, n_) != 0 ||
            api_.mxm(c, nullptr, nullptr, api_.plus_times_fp64, a_, a_, nullptr) != 0)
            throw std::runtime_error("GrB_mxm: failed");
        return c;
    }

    const GraphBlas& api_;
    uint64_t n_;
    GraphBlas::Object a_;
};

} // namespace

std::unique_ptr<Spgemm> make_spgemm(const Library& library, const CsrMatrix& a)
{
    if (library.kind == Kind::subject) return std::make_unique<Ork>(a);
    if (library.name == "Eigen") return eigen_spgemm(a);
    if (library.name == "plain") return std::make_unique<Plain>(a);
    if (library.name != "GraphBLAS") return nullptr;
    std::vector<std::string> notes;
    const GraphBlas* const api = open_graphblas(notes);
    return api != nullptr ? std::make_unique<GraphBlasProduct>(*api, a) : nullptr;
}

} // namespace ork::peers
