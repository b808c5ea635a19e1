// SPDX-License-Identifier: MIT
// librsb and the finding of all sparse peers. librsb keeps matrices in a form of its own, blocks of several kinds of
// storage with 16- or 32-bit indices; it is measured so, and held to plain compressed rows. Where handles are compared
// it may try forms until it finds none that is faster.
#include <dlfcn.h>

#include "peers/eigen.h"
#include "peers/graphblas.h"
#include "peers/measure.h"
#include "peers/opening.h"

namespace ork::peers {
namespace {

// Of rsb.h.
enum Flags { lower = 0x10, upper = 0x20, triangular = 0x8, symmetric = 0x400000, plain_rows = 0x4000 };
enum Order { row_major = 0, column_major = 0x4000000 };
constexpr int executing_threads = 9;

struct Interface {
    int (*init)(void*) = nullptr;
    int (*set)(int option, const void* value) = nullptr;
    void* (*from_csr)(const void* val, const int* ptr, const int* col, int entries, char type, int rows, int columns,
                      int block_rows, int block_columns, int flags, int* error) = nullptr;
    void* (*free)(void*) = nullptr;
    int (*info)(const void*, const char* what, void* text, size_t size) = nullptr;
    int (*mv)(int op, const void* alpha, const void* a, const void* x, int incx, const void* beta, void* y,
              int incy) = nullptr;
    int (*mm)(int op, const void* alpha, const void* a, int nrhs, int order, const void* b, int ldb, const void* beta,
              void* c, int ldc) = nullptr;
    int (*sv)(int op, const void* alpha, const void* a, const void* x, int incx, void* y, int incy) = nullptr;
    // replaces *a by a faster form if it finds one
    int (*tune)(void** a, double* gain, int* threads, int rounds, double seconds, int op, const void* alpha,
                const void* given, int nrhs, int order, const void* b, int ldb, const void* beta, void* c,
                int ldc) = nullptr;
    int (*tune_solve)(void** a, double* gain, int* threads, int rounds, double seconds, int op, const void* alpha,
                      const void* given, int nrhs, int order, const void* b, int ldb, const void* beta, void* c,
                      int ldc) = nullptr;
};

template <class Function>
bool get(Function*& function, void* handle, const char* name)
{
    function = reinterpret_cast<Function*>(dlsym(handle, name));
    return function != nullptr;
}

class Operation : public SparseOperation {
public:
    Operation(const Interface& api, const SparseOperands& o, bool plain) : api_(api), o_(o)
    {
        const int kind = o.what.letter == 'S'   ? lower | symmetric
                         : o.what.letter == 'L' ? lower | triangular
                         : o.what.letter == 'U' ? upper | triangular
                                                : 0;
        int error = 0;
        a_ = api.from_csr(o.val, o.ptr, o.col, o.ptr[o.m], o.what.single ? 'S' : 'D', o.m, o.n, 1, 1,
                          kind | (plain ? plain_rows : 0), &error);
        if (a_ != nullptr && o.what.handle && !plain) tune();
    }
    ~Operation() override { api_.free(a_); }
    Operation(const Operation&) = delete;
    Operation& operator=(const Operation&) = delete;

    bool ready() const { return a_ != nullptr; }
    void run() override
    {
        const void *one = scalar(1), *zero = scalar(0);
        switch (o_.what.routine) {
        case SparseCase::Routine::mv:
            api_.mv(o_.what.letter == 'T' ? 'T' : 'N', one, a_, o_.x, 1, zero, o_.y, 1);
            return;
        case SparseCase::Routine::mm:
            api_.mm('N', one, a_, o_.what.nrhs, o_.what.letter == 'R' ? row_major : column_major, o_.x, o_.ldx, zero,
                    o_.y, o_.ldy);
            return;
        case SparseCase::Routine::sv:
            api_.sv('N', one, a_, o_.x, 1, o_.y, 1);
            return;
        case SparseCase::Routine::dotmv:
        case SparseCase::Routine::symgs:
            return; // it has neither
        }
    }
    Analysis analysis() const override { return {tuning_}; }
    // "(coo:1, csr:1, hw:1, ...), ..., subm: 4": kinds of blocks, 16-bit indices, how many blocks
    std::string storage() const override
    {
        char text[1024] = "";
        if (api_.info(a_, "RSB_MIF_MATRIX_INFO__TO__CHAR_P", text, sizeof(text)) != 0) return {};
        const std::string all = text;
        const auto has = [&](const char* what) { return all.find(what) != std::string::npos; };
        std::string result = has("coo:1") && has("csr:1") ? "CSR and COO" : has("coo:1") ? "COO" : "CSR";
        if (has("hw:1")) result += ", 16-bit indices";
        if (const size_t at = all.find("subm: "); at != std::string::npos && all.compare(at, 8, "subm: 1,") != 0)
            result += ", blocks: " + all.substr(at + 6, all.find(',', at) - at - 6);
        return result;
    }

private:
    const void* scalar(int value) const // 0 or 1
    {
        static constexpr double numbers[] = {0, 1};
        static constexpr float singles[] = {0, 1};
        return o_.what.single ? static_cast<const void*>(singles + value) : numbers + value;
    }
    // Up to three rounds, about two seconds; the number of threads stays.
    void tune()
    {
        const bool solve = o_.what.routine == SparseCase::Routine::sv;
        const int order = o_.what.letter == 'R' ? row_major : column_major;
        double gain = 1;
        const double start = now(Clock::processor);
        (solve ? api_.tune_solve : api_.tune)(&a_, &gain, nullptr, 3, 2.0, o_.what.letter == 'T' ? 'T' : 'N', scalar(1),
                                              nullptr, o_.what.nrhs, order, o_.x, o_.ldx, scalar(0), o_.y, o_.ldy);
        tuning_ = now(Clock::processor) - start;
    }

    Interface api_;
    SparseOperands o_;
    void* a_;
    double tuning_ = 0;
};

void add_librsb(std::vector<Library>& found, std::vector<std::string>& notes)
{
    const auto file = locate({"librsb.so.0", "librsb.so"});
    void* handle = file ? dlopen(file->c_str(), isolated) : nullptr;
    Interface api;
    if (handle == nullptr || !get(api.init, handle, "rsb_lib_init") || !get(api.set, handle, "rsb_lib_set_opt") ||
        !get(api.from_csr, handle, "rsb_mtx_alloc_from_csr_const") || !get(api.free, handle, "rsb_mtx_free") ||
        !get(api.info, handle, "rsb_mtx_get_info_str") || !get(api.mv, handle, "rsb_spmv") ||
        !get(api.mm, handle, "rsb_spmm") || !get(api.sv, handle, "rsb_spsv") ||
        !get(api.tune, handle, "rsb_tune_spmm") || !get(api.tune_solve, handle, "rsb_tune_spsm")) {
        notes.push_back("librsb: not found");
        return;
    }
    const int one = 1;
    // its own setting leaves the threads of its OpenMP library spinning
    void (*set_threads)(int) = nullptr;
    if (get(set_threads, handle, "omp_set_num_threads")) set_threads(1);
    if (api.init(nullptr) != 0 || api.set(executing_threads, &one) != 0) {
        notes.push_back("librsb: " + file->string() + " can't be held to one thread");
        return;
    }
    for (const bool plain : {false, true}) {
        Library library{plain ? "RSB-CSR" : "RSB",
                        "librsb, " + file->string() +
                            (plain ? ", its storage limited to compressed rows" : ", in the storage of its choice"),
                        Kind::peer,
                        [](const char*) { return static_cast<void*>(nullptr); },
                        {}};
        library.sparse = [api, plain](const SparseOperands& o) -> std::unique_ptr<SparseOperation> {
            if (o.what.wide || o.what.routine == SparseCase::Routine::dotmv ||
                o.what.routine == SparseCase::Routine::symgs)
                return nullptr;
            auto operation = std::make_unique<Operation>(api, o, plain);
            if (!operation->ready()) return nullptr;
            return operation;
        };
        found.push_back(library);
    }
}

} // namespace

std::vector<Library> find_sparse_peers(std::vector<std::string>& notes)
{
    std::vector<Library> found;
    if (can_isolate)
        add_librsb(found, notes);
    else
        notes.push_back("peer libraries: left out of a build with sanitizers");
    const auto add = [&](const char* name, const std::string& detail, SparseMaker maker) {
        found.push_back({name, detail, Kind::peer, [](const char*) { return static_cast<void*>(nullptr); }, {}});
        found.back().sparse = std::move(maker);
    };
    if (eigen_version() != nullptr)
        add("Eigen", std::string("Eigen ") + eigen_version() + " (its sparse module) compiled -O3 -msse4.2",
            eigen_sparse);
    else
        notes.push_back("Eigen: not found when ork was built");
    add("plain", "plain loops compiled -O3 -msse4.2", plain_sparse);
    return found;
}

std::vector<Library> find_handle_peers(std::vector<std::string>& notes)
{
    std::vector<Library> found = find_sparse_peers(notes);
    const auto add = [&](const char* name, const std::string& detail, SparseMaker maker) {
        found.push_back({name, detail, Kind::peer, [](const char*) { return static_cast<void*>(nullptr); }, {}});
        found.back().sparse = std::move(maker);
    };
    for (Library& library : found)
        if (library.name == "RSB") library.detail += ", tuned by itself for each case of handles";
    if (const GraphBlas* api = open_graphblas(notes))
        add("GraphBLAS", "SuiteSparse:GraphBLAS, " + api->file,
            [api](const SparseOperands& o) { return graphblas_sparse(*api, o); });
    const Library core = core_library();
    if (core.sparse)
        add("legacy", "ork/spblas.h: ork's products and solves in the caller's own arrays",
            [make = core.sparse](SparseOperands o) {
                o.what.handle = false;
                return make(o);
            });
    return found;
}

} // namespace ork::peers
