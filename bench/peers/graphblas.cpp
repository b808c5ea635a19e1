// SPDX-License-Identifier: MIT
#include "peers/graphblas.h"

#include <numeric>

#include "peers/opening.h"

namespace ork::peers {
namespace {

template <class Function>
bool get(Function*& function, void* handle, const char* name)
{
    function = reinterpret_cast<Function*>(dlsym(handle, name));
    return function != nullptr;
}

bool get_object(GraphBlas::Object& object, void* handle, const char* name)
{
    const auto* variable = static_cast<GraphBlas::Object*>(dlsym(handle, name));
    if (variable != nullptr) object = *variable;
    return variable != nullptr && object != nullptr;
}

bool start(GraphBlas& g, void* handle)
{
    int (*init)(int mode) = nullptr;
    int (*set)(int option, int value) = nullptr;
    void (*set_threads)(int) = nullptr;
    if (!get(init, handle, "GrB_init") || !get(set, handle, "GxB_Global_Option_set_INT32") ||
        !get(g.matrix_import_fp32, handle, "GrB_Matrix_import_FP32") ||
        !get(g.matrix_import_fp64, handle, "GrB_Matrix_import_FP64") || !get(g.matrix_new, handle, "GrB_Matrix_new") ||
        !get(g.matrix_wait, handle, "GrB_Matrix_wait") || !get(g.matrix_free, handle, "GrB_Matrix_free") ||
        !get(g.vector_new, handle, "GrB_Vector_new") || !get(g.vector_free, handle, "GrB_Vector_free") ||
        !get(g.vector_build_fp32, handle, "GrB_Vector_build_FP32") ||
        !get(g.vector_build_fp64, handle, "GrB_Vector_build_FP64") ||
        !get(g.vector_extract_fp32, handle, "GrB_Vector_extractTuples_FP32") ||
        !get(g.vector_extract_fp64, handle, "GrB_Vector_extractTuples_FP64") || !get(g.mxv, handle, "GrB_mxv") ||
        !get(g.mxm, handle, "GrB_mxm"))
        return false;
    if (get(set_threads, handle, "omp_set_num_threads")) set_threads(1);
    return init(GraphBlas::blocking) == 0 && set(GraphBlas::threads_option, 1) == 0 &&
           get_object(g.fp32, handle, "GrB_FP32") && get_object(g.fp64, handle, "GrB_FP64") &&
           get_object(g.plus_fp32, handle, "GrB_PLUS_FP32") && get_object(g.plus_fp64, handle, "GrB_PLUS_FP64") &&
           get_object(g.plus_times_fp32, handle, "GrB_PLUS_TIMES_SEMIRING_FP32") &&
           get_object(g.plus_times_fp64, handle, "GrB_PLUS_TIMES_SEMIRING_FP64") &&
           get_object(g.transpose_first, handle, "GrB_DESC_T0");
}

// The product stands in an object of the library's; that it is copied to y for the check is not timed.
class Operation : public SparseOperation {
public:
    Operation(const GraphBlas& api, const SparseOperands& o) : api_(api), o_(o)
    {
        const bool transposed = o.what.letter == 'T';
        const auto rows = static_cast<uint64_t>(transposed ? o.n : o.m),
                   columns = static_cast<uint64_t>(transposed ? o.m : o.n);
        GraphBlas::Object type = o.what.single ? api.fp32 : api.fp64;
        a_ = api.matrix(o.what.single, o.m, o.n, o.ptr, o.col, o.val);
        if (a_ == nullptr || api.vector_new(&x_, type, columns) != 0 || api.vector_new(&y_, type, rows) != 0) return;
        index_.resize(std::max(rows, columns));
        std::iota(index_.begin(), index_.end(), uint64_t{0});
        ready_ = (o.what.single
                      ? api.vector_build_fp32(x_, index_.data(), static_cast<const float*>(o.x), columns, api.plus_fp32)
                      : api.vector_build_fp64(x_, index_.data(), static_cast<const double*>(o.x), columns,
                                              api.plus_fp64)) == 0;
    }
    ~Operation() override
    {
        if (a_) api_.matrix_free(&a_);
        if (x_) api_.vector_free(&x_);
        if (y_) api_.vector_free(&y_);
    }
    Operation(const Operation&) = delete;
    Operation& operator=(const Operation&) = delete;

    bool ready() const { return ready_; }
    void run() override
    {
        api_.mxv(y_, nullptr, nullptr, o_.what.single ? api_.plus_times_fp32 : api_.plus_times_fp64, a_, x_,
                 o_.what.letter == 'T' ? api_.transpose_first : nullptr);
    }
    void finish() override
    {
        std::vector<uint64_t> index(index_.size());
        uint64_t count = index.size();
        const auto place = [&](auto* y, auto extract) {
            std::vector<std::decay_t<decltype(*y)>> value(count);
            if (extract(index.data(), value.data(), &count, y_) != 0) return;
            std::fill_n(y, o_.what.letter == 'T' ? o_.n : o_.m, 0); // rows without entries aren't stored
            for (uint64_t k = 0; k < count; ++k) y[index[k]] = value[k];
        };
        if (o_.what.single)
            place(static_cast<float*>(o_.y), api_.vector_extract_fp32);
        else
            place(static_cast<double*>(o_.y), api_.vector_extract_fp64);
    }

private:
    const GraphBlas& api_;
    SparseOperands o_;
    GraphBlas::Object a_ = nullptr, x_ = nullptr, y_ = nullptr;
    std::vector<uint64_t> index_;
    bool ready_ = false;
};

} // namespace

GraphBlas::Object GraphBlas::matrix(bool single, int rows, int columns, const int* ptr, const int* col,
                                    const void* val) const
{
    const auto m = static_cast<uint64_t>(rows), n = static_cast<uint64_t>(columns),
               entries = static_cast<uint64_t>(ptr[rows]);
    const std::vector<uint64_t> wide_ptr(ptr, ptr + rows + 1), wide_col(col, col + entries);
    Object a = nullptr;
    const int status =
        single ? matrix_import_fp32(&a, fp32, m, n, wide_ptr.data(), wide_col.data(), static_cast<const float*>(val),
                                    m + 1, entries, entries, compressed_rows)
               : matrix_import_fp64(&a, fp64, m, n, wide_ptr.data(), wide_col.data(), static_cast<const double*>(val),
                                    m + 1, entries, entries, compressed_rows);
    return status == 0 && matrix_wait(a, materialize) == 0 ? a : nullptr;
}

const GraphBlas* open_graphblas(std::vector<std::string>& notes)
{
    static const auto opened = [] {
        auto g = std::make_unique<GraphBlas>();
        const auto file = can_isolate ? locate({"libgraphblas.so.7", "libgraphblas.so"}) : std::nullopt;
        void* handle = file ? dlopen(file->c_str(), isolated) : nullptr;
        if (handle == nullptr || !start(*g, handle)) return std::unique_ptr<GraphBlas>();
        g->file = file->string();
        return g;
    }();
    if (opened == nullptr) notes.push_back("SuiteSparse:GraphBLAS: not found");
    return opened.get();
}

std::unique_ptr<SparseOperation> graphblas_sparse(const GraphBlas& api, const SparseOperands& o)
{
    if (o.what.wide || o.what.routine != SparseCase::Routine::mv || o.what.letter == 'S') return nullptr;
    auto operation = std::make_unique<Operation>(api, o);
    if (!operation->ready()) return nullptr;
    return operation;
}

} // namespace ork::peers
