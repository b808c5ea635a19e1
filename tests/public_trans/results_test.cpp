// SPDX-License-Identifier: MIT
// Results of every routine through every binding.
#include "call.h"
#include "support/process.h"

namespace ork::test {

namespace {

template <class T>
class TransResults : public testing::Test {
};
TYPED_TEST_SUITE(TransResults, Precisions, PrecisionNames);

TYPED_TEST(TransResults, EveryBindingFollowsTheFormula)
{
    using T = TypeParam;
    for (const Routine& routine : routines)
        for (const Binding& binding : bindings)
            for (const char ordering : {'C', 'R'})
                for (const char trans : {'N', 'T', 'C', 'R'}) {
                    Call<T> call(routine.stem, ordering, trans, trans == 'T' ? 'C' : 'T', 5, 7);
                    call.alpha = trans == 'N' ? some<T>(1, 0) : some<T>(-1.5F, 0.75F);
                    call.beta = some<T>(2, -0.5F);
                    call.expect_right(binding);
                }
}

TYPED_TEST(TransResults, LettersOfEitherCase)
{
    for (const char* stem : {"omatcopy", "imatcopy", "omatadd"})
        for (const char ordering : {'c', 'r'})
            for (const char trans : {'n', 't', 'c', 'r'})
                Call<TypeParam>(stem, ordering, trans, trans, 4, 3).expect_right(bindings[0]);
}

// In one array: the inputs of a batch may be the same matrix, the next matrix may lie before.
TYPED_TEST(TransResults, DistancesMayBeZeroOrNegative)
{
    using T = TypeParam;
    const Int n = 4, lead = 5, distance = 20;
    Random random(3);
    std::vector<T> a(lead * n), b(3 * distance);
    for (T& x : a) x = random.uniform<T>();
    const Int none = 0, back = -distance, count = 3;
    const T one = some<T>(1, 0);
    const std::string name = precision_letter<T>() + std::string("omatcopy_batch_strided_64_");
    using Routine = void(const char*, const char*, const Int*, const Int*, const T*, const T*, const Int*, const Int*,
                         T*, const Int*, const Int*, const Int*);
    auto* routine = reinterpret_cast<Routine*>(dlsym(RTLD_DEFAULT, name.c_str()));
    routine("C", "T", &n, &n, &one, a.data(), &lead, &none, b.data() + 2 * distance, &lead, &back, &count);
    for (Int k = 0; k < count; ++k)
        for (Int i = 0; i < n; ++i)
            for (Int j = 0; j < n; ++j) EXPECT_EQ(b[k * distance + i + j * lead], a[j + i * lead]);
}

// Groups of unlike shapes, letters, factors and numbers of matrices, in place and out of place, through C.
TYPED_TEST(TransResults, GroupsDiffer)
{
    using T = TypeParam;
    const int trans[] = {111, 112, 111, 114}; // N T N R
    const std::int32_t rows[] = {2, 3, 5, 1}, cols[] = {3, 4, 0, 6}, size[] = {2, 3, 1, 2};
    const std::int32_t lda[] = {3, 4, 5, 2}, ldb[] = {2, 5, 5, 1};
    const T alpha[] = {some<T>(1, 0), some<T>(2, 1), some<T>(3, 0), some<T>(1, 0)};
    for (const bool in_place : {false, true}) {
        constexpr Int room = 40;
        Random random(5);
        std::vector<T> a(8 * room), b(8 * room);
        for (T& x : a) x = random.uniform<T>();
        if (in_place) b = a;
        std::vector<const T*> pa;
        std::vector<T*> pb;
        for (Int k = 0; k < 8; ++k) pa.push_back(&a[k * room]), pb.push_back(&b[k * room]);
        const std::string stem = in_place ? "imatcopy_batch" : "omatcopy_batch";
        void* const routine = dlsym(RTLD_DEFAULT, ("cblas_" + (precision_letter<T>() + stem)).c_str());
        ASSERT_NE(routine, nullptr);
        using I = std::int32_t;
        if (in_place)
            reinterpret_cast<void (*)(int, const int*, const I*, const I*, const T*, T**, const I*, const I*, I,
                                      const I*)>(routine)(102, trans, rows, cols, alpha, pb.data(), lda, ldb, 4, size);
        else
            reinterpret_cast<void (*)(int, const int*, const I*, const I*, const T*, const T**, const I*, T**, const I*,
                                      I, const I*)>(routine)(102, trans, rows, cols, alpha, pa.data(), lda, pb.data(),
                                                             ldb, 4, size);
        Int matrix = 0, wrong = 0;
        for (int g = 0; g < 4; ++g)
            for (int k = 0; k < size[g]; ++k, ++matrix)
                for (Int i = 0; i < rows[g]; ++i)
                    for (Int j = 0; j < cols[g]; ++j) {
                        const T x = a[matrix * room + i + j * lda[g]];
                        const T want = Call<T>::times(alpha[g], trans[g] == 114 ? conjugated(x) : x);
                        const Int place = trans[g] == 112 ? j + i * ldb[g] : i + j * ldb[g];
                        wrong += !(b[matrix * room + place] == want);
                    }
        EXPECT_EQ(wrong, 0) << stem;
    }
}

TEST(TransDropIn, RunsAProgramThatKnowsNothingOfOrk)
{
    const auto run = run_program({ORK_BIN_DIR "/ork_trans_c_program"});
    EXPECT_TRUE(run.ok()) << run.describe();
}

} // namespace

} // namespace ork::test
