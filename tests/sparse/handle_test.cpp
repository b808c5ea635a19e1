// SPDX-License-Identifier: MIT
// Records behind handles, by the exports that make, look at, sort, convert, change and release them. What conversions
// compute is compared with dense matrices through the public handles as well.
#include <map>
#include <vector>

#include "sparse/kernel.h"

namespace ork::test {
namespace {

using sparse::Environment;
using sparse::Fault;
using sparse::Hint;
using sparse::Matrix;
using sparse::Task;

template <class Element, class Integer>
struct Variant {
    using T = Element;
    using Int = Integer;
};
template <class V>
class SparseRecords : public testing::Test {
};
using Variants =
    testing::Types<Variant<float, std::int32_t>, Variant<double, std::int32_t>,
                   Variant<std::complex<float>, std::int32_t>, Variant<std::complex<double>, std::int32_t>,
                   Variant<float, std::int64_t>, Variant<double, std::int64_t>,
                   Variant<std::complex<float>, std::int64_t>, Variant<std::complex<double>, std::int64_t>>;
TYPED_TEST_SUITE(SparseRecords, Variants);

// 3 x 4 from 1, a gap before row 2, an empty row, one place twice:  [ . 5 . 1+2 ]
//                                                                   [ . . .  .  ]
//                                                                   [ 4 . . .   ]
template <class Int, class T>
struct Example {
    std::vector<Int> first = {1, 4, 5}, last = {4, 4, 6}, index = {4, 2, 4, 99, 1};
    std::vector<T> values = {1, 5, 2, 77, 4};
    Matrix* a = nullptr;

    Example()
    {
        EXPECT_EQ(KERNEL(create_csr)(&a, nullptr, 1, 3, 4, first.data(), last.data(), index.data(), values.data()), 0);
    }
    ~Example() { HANDLE_KERNEL(destroy)(a); }
};

// The places of a record of compressed rows or columns in their order.
template <class Int, class T>
std::vector<std::tuple<Int, Int, T>> places(Matrix* a)
{
    std::vector<std::tuple<Int, Int, T>> all;
    const Int *first = static_cast<Int*>(a->first), *last = static_cast<Int*>(a->last),
              *index = static_cast<Int*>(a->index);
    const bool by_columns = a->format == sparse::Format::csc;
    for (Int i = 0; i < (by_columns ? a->cols : a->rows); ++i)
        for (Int k = first[i] - a->base; k < last[i] - a->base; ++k)
            all.emplace_back(i, index[k], static_cast<T*>(a->values)[k]);
    return all;
}

TYPED_TEST(SparseRecords, AreLookedAtAndSorted)
{
    using Int = typename TypeParam::Int;
    using T = typename TypeParam::T;
    using Places = std::vector<std::tuple<Int, Int, T>>;
    Example<Int, T> example;
    Matrix* const a = example.a;
    ASSERT_NE(a, nullptr);
    EXPECT_EQ(a->mark, Matrix::alive);
    EXPECT_EQ(a->precision, *precision_letter<T>());
    EXPECT_EQ(a->index_bytes, static_cast<int>(sizeof(Int)));
    Fault fault;
    ASSERT_EQ(HANDLE_KERNEL(get_error_info)(a, &fault), 0);
    EXPECT_EQ(a->entries, 4);
    EXPECT_EQ(a->sorted, 0);
    EXPECT_EQ(HANDLE_KERNEL(optimize)(a, 0), 0); // arrays of the caller
    EXPECT_EQ(example.index[0], 4);
    EXPECT_EQ(HANDLE_KERNEL(optimize)(a, 1), 0);
    EXPECT_EQ((places<Int, T>(a)), (Places{{0, 2, T(5)}, {0, 4, T(1)}, {0, 4, T(2)}, {2, 1, T(4)}}));
    EXPECT_EQ(example.index[3], 99) << "a gap was written";
    EXPECT_EQ(a->sorted, 1);
    EXPECT_EQ(a->distinct, 0);

    example.index[4] = 5;
    ASSERT_EQ(HANDLE_KERNEL(get_error_info)(a, &fault), 1);
    EXPECT_EQ(fault.rule, Fault::Rule::outside);
    EXPECT_EQ(std::tuple(fault.row, fault.position, fault.value, fault.least, fault.most), std::tuple(3, 4, 5, 1, 4));
    EXPECT_EQ(std::pair(a->wrong_row, a->wrong_position), std::pair(std::int64_t(3), std::int64_t(4)));
}

TYPED_TEST(SparseRecords, AreConvertedCopiedAndChanged)
{
    using Int = typename TypeParam::Int;
    using T = typename TypeParam::T;
    using Places = std::vector<std::tuple<Int, Int, T>>;
    Example<Int, T> example;
    Matrix *const a = example.a, *c = nullptr;
    Fault fault;
    ASSERT_EQ(HANDLE_KERNEL(get_error_info)(a, &fault), 0);
    ASSERT_EQ(HANDLE_KERNEL(set_mv_hint)(a, 0, 0, 0, 0, 5), 0);
    ASSERT_EQ(HANDLE_KERNEL(copy)(a, &c), 0);
    EXPECT_EQ((places<Int, T>(c)), (Places{{0, 4, T(1)}, {0, 2, T(5)}, {0, 4, T(2)}, {2, 1, T(4)}}));
    EXPECT_EQ(c->hint_count, 1);
    EXPECT_TRUE(c->owns_arrays && c->one_pointer_array());
    HANDLE_KERNEL(destroy)(c);

    ASSERT_EQ(HANDLE_KERNEL(convert_csr)(a, 0, 1, &c), 0);
    EXPECT_EQ(c->format, sparse::Format::csc);
    EXPECT_EQ((places<Int, T>(c)), (Places{{0, 3, T(4)}, {1, 1, T(5)}, {3, 1, T(1)}, {3, 1, T(2)}}));
    HANDLE_KERNEL(destroy)(c);

    ASSERT_EQ(HANDLE_KERNEL(convert_bsr)(a, 2, 3, 1, &c), 0); // conjugate transposed, 4 x 3 filled up to 6 x 3
    EXPECT_EQ(std::tuple(c->rows, c->cols, c->block, c->layout), (std::tuple{2, 1, 3, 1}));
    ASSERT_EQ((std::vector<Int>(static_cast<Int*>(c->first), static_cast<Int*>(c->first) + 3)),
              (std::vector<Int>{1, 2, 3}));
    std::vector<T> blocks(18, T(0));
    blocks[6] = 4, blocks[1] = 5, blocks[9] = 3; // (0, 2), (1, 0), (3, 0)
    EXPECT_EQ((std::vector<T>(static_cast<T*>(c->values), static_cast<T*>(c->values) + 18)), blocks);
    ASSERT_EQ(KERNEL(set_value)(c, 4, 1, T(8)), 0);
    EXPECT_EQ(static_cast<T*>(c->values)[9], T(8));
    HANDLE_KERNEL(destroy)(c);

    EXPECT_EQ(KERNEL(set_value)(a, 2, 2, T(8)), 3);
    EXPECT_EQ(KERNEL(set_value)(a, 1, 4, T(8)), 0);
    std::int64_t wrong = -1;
    const Int rows[] = {3, 1, 2}, columns[] = {1, 2, 2};
    const T numbers[] = {6, 7, 9, 10};
    EXPECT_EQ(KERNEL(update_values)(a, 3, rows, columns, numbers, &wrong), 3);
    EXPECT_EQ(wrong, 2);
    EXPECT_EQ(example.values, (std::vector<T>{8, 5, 2, 77, 4})) << "a refused update wrote";
    EXPECT_EQ(KERNEL(update_values)(a, 2, rows, columns, numbers, &wrong), 0);
    EXPECT_EQ(example.values, (std::vector<T>{8, 7, 2, 77, 6}));
    EXPECT_EQ(KERNEL(update_values)(a, 4, nullptr, nullptr, numbers, &wrong), 0);
    EXPECT_EQ(example.values, (std::vector<T>{6, 7, 9, 77, 10}));
}

TYPED_TEST(SparseRecords, AreMadeAndExported)
{
    using Int = typename TypeParam::Int;
    using T = typename TypeParam::T;
    std::vector<Int> first = {0, 1, 2}, index = {1, 0};
    std::vector<T> values(8);
    Int base = 9, rows = 9, cols = 9, block = 9, *f = nullptr, *l = nullptr, *x = nullptr;
    int layout = 9;
    T* v = nullptr;
    const Environment spare = {.memory = 0, .verbose = 0, .calls = 1};
    Matrix* a = nullptr;
    ASSERT_EQ(
        KERNEL(create_bsr)(&a, &spare, 0, 2, 3, 2, 1, first.data(), first.data() + 1, index.data(), values.data()), 0);
    EXPECT_EQ(a->memory, 0);
    KERNEL(export_bsr)(a, &base, &rows, &cols, &block, &layout, &f, &l, &x, &v);
    EXPECT_EQ(std::tuple(base, rows, cols, block, layout), (std::tuple{0, 2, 3, 2, 1}));
    EXPECT_EQ(std::tuple(f, l, x, v), (std::tuple{first.data(), first.data() + 1, index.data(), values.data()}));
    HANDLE_KERNEL(destroy)(a);
    ASSERT_EQ(KERNEL(create_csc)(&a, nullptr, 0, 3, 2, first.data(), first.data() + 1, index.data(), values.data()), 0);
    EXPECT_EQ(a->memory, 1);
    KERNEL(export_csc)(a, nullptr, &rows, nullptr, nullptr, nullptr, &x, nullptr);
    EXPECT_EQ(rows, 3);
    HANDLE_KERNEL(destroy)(a);
    ASSERT_EQ(KERNEL(create_coo)(&a, nullptr, 0, 3, 2, 2, first.data(), index.data(), values.data()), 0);
    EXPECT_EQ(a->entries, 2);
    HANDLE_KERNEL(destroy)(a);
    HANDLE_KERNEL(destroy)(nullptr);
    if constexpr (!is_complex<T>) KERNEL(void_foo)();
}

TYPED_TEST(SparseRecords, KeepHints)
{
    using Int = typename TypeParam::Int;
    using T = typename TypeParam::T;
    Example<Int, T> example;
    Matrix* const a = example.a;
    using Setter = int(Matrix*, int, int, int, int, std::int64_t);
    const std::map<Task, Setter*> setters = {
        {Task::mv, HANDLE_KERNEL(set_mv_hint)},     {Task::dotmv, HANDLE_KERNEL(set_dotmv_hint)},
        {Task::sv, HANDLE_KERNEL(set_sv_hint)},     {Task::symgs, HANDLE_KERNEL(set_symgs_hint)},
        {Task::sorv, HANDLE_KERNEL(set_sorv_hint)}, {Task::lu_smoother, HANDLE_KERNEL(set_lu_smoother_hint)},
        {Task::qr, HANDLE_KERNEL(set_qr_hint)}};
    for (int round = 0; round < 2; ++round) // the second one replaces
        for (const auto& [task, set] : setters)
            for (int op = 111; op <= 114; ++op) ASSERT_EQ(set(a, op, 3, 121, 131, op + round), 0);
    ASSERT_EQ(HANDLE_KERNEL(set_mm_hint)(a, 111, 0, 0, 0, 101, 8, 3), 0);
    ASSERT_EQ(HANDLE_KERNEL(set_sm_hint)(a, 111, 0, 0, 0, 101, 8, 3), 0);
    ASSERT_EQ(a->hint_count, 4 * 7 + 2);
    for (int i = 0; i < 4 * 7; ++i) EXPECT_EQ(a->hints[i].calls, a->hints[i].op + 1);
    ASSERT_EQ(setters.at(Task::mv)(a, 112, 3, 121, 131, 0), 0); // takes it back
    EXPECT_EQ(a->hint_count, 4 * 7 + 1);
    for (int i = 0; i < a->hint_count; ++i) EXPECT_FALSE(a->hints[i].task == Task::mv && a->hints[i].op == 112);
    ASSERT_EQ(HANDLE_KERNEL(set_memory_hint)(a, 0), 0);
    EXPECT_EQ(a->memory, 0);
    Environment e = {};
    HANDLE_KERNEL(ee_init)(&e);
    EXPECT_EQ(std::tuple(e.memory, e.verbose, e.calls), (std::tuple{1, 0, 100}));
    EXPECT_EQ(HANDLE_KERNEL(set_verbose_mode)(&e, 1), 0);
    EXPECT_EQ(HANDLE_KERNEL(set_verbose_mode)(&e, 0), 1);
}

} // namespace
} // namespace ork::test
