// SPDX-License-Identifier: MIT
// Descriptors before they compute: what they hold, and what they refuse, with which class and text.
#include <climits>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "model.h"

namespace ork::test {

namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;

std::int64_t integer(const ork_dft_descriptor* d, int parameter)
{
    std::int64_t value = -1;
    EXPECT_EQ(ork_dft_get_integer(d, parameter, &value), 0) << ork_dft_descriptor_message(d);
    return value;
}

Integers integers(const ork_dft_descriptor* d, int parameter, std::size_t count)
{
    Integers values(count, -1);
    EXPECT_EQ(ork_dft_get_integers(d, parameter, values.data()), 0) << ork_dft_descriptor_message(d);
    return values;
}

TEST(Descriptors, HoldTheDocumentedDefaults)
{
    const Descriptor d(ORK_DFT_SINGLE, ORK_DFT_COMPLEX, {3, 4, 5});
    for (const auto& [parameter, value] :
         std::vector<std::pair<int, std::int64_t>>{{ORK_DFT_PRECISION, ORK_DFT_SINGLE},
                                                   {ORK_DFT_FORWARD_DOMAIN, ORK_DFT_COMPLEX},
                                                   {ORK_DFT_DIMENSION, 3},
                                                   {ORK_DFT_NUMBER_OF_TRANSFORMS, 1},
                                                   {ORK_DFT_PLACEMENT, ORK_DFT_INPLACE},
                                                   {ORK_DFT_COMPLEX_STORAGE, ORK_DFT_COMPLEX_COMPLEX},
                                                   {ORK_DFT_CONJUGATE_EVEN_STORAGE, ORK_DFT_COMPLEX_COMPLEX},
                                                   {ORK_DFT_PACKED_FORMAT, ORK_DFT_CCS},
                                                   {ORK_DFT_WORKSPACE, ORK_DFT_ALLOW},
                                                   {ORK_DFT_ORDERING, ORK_DFT_ORDERED},
                                                   {ORK_DFT_INPUT_DISTANCE, 0},
                                                   {ORK_DFT_OUTPUT_DISTANCE, 0},
                                                   {ORK_DFT_THREAD_LIMIT, 0},
                                                   {ORK_DFT_NUMBER_OF_USER_THREADS, 1},
                                                   {ORK_DFT_COMMIT_STATUS, ORK_DFT_UNCOMMITTED}})
        EXPECT_EQ(integer(d, parameter), value) << parameter;
    for (const int parameter : {ORK_DFT_FORWARD_SCALE, ORK_DFT_BACKWARD_SCALE}) {
        double scale = 0;
        EXPECT_EQ(ork_dft_get_value(d, parameter, &scale), 0);
        EXPECT_EQ(scale, 1);
    }
    char text[ORK_DFT_NAME_SIZE] = "x";
    EXPECT_EQ(ork_dft_get_text(d, ORK_DFT_NAME, text), 0);
    EXPECT_STREQ(text, "");
    EXPECT_EQ(ork_dft_get_text(d, ORK_DFT_VERSION, text), 0);
    EXPECT_THAT(text, testing::StartsWith("ork "));
    EXPECT_THAT(integers(d, ORK_DFT_LENGTHS, 3), ElementsAre(3, 4, 5));
    EXPECT_STREQ(ork_dft_descriptor_message(d), "");
}

// Dense, with room for the longer side where real data are in place.
TEST(Descriptors, DefaultStridesFollowTheLayout)
{
    const auto expect = [](const Descriptor& d, const Integers& in, const Integers& out) {
        EXPECT_EQ(integers(d, ORK_DFT_INPUT_STRIDES, 4), in);
        EXPECT_EQ(integers(d, ORK_DFT_OUTPUT_STRIDES, 4), out);
    };
    const Descriptor complex(ORK_DFT_DOUBLE, ORK_DFT_COMPLEX, {3, 4, 5});
    expect(complex, {0, 1, 3, 12}, {0, 1, 3, 12});
    Descriptor real(ORK_DFT_DOUBLE, ORK_DFT_REAL, {7, 4, 5});
    expect(real, {0, 1, 8, 32}, {0, 1, 4, 16});
    real.set(ORK_DFT_PLACEMENT, ORK_DFT_NOT_INPLACE);
    expect(real, {0, 1, 7, 28}, {0, 1, 4, 16});
    real.set(ORK_DFT_OUTPUT_STRIDES, Integers{2, 3, -5, 90});
    expect(real, {0, 1, 7, 28}, {2, 3, -5, 90});
    Descriptor packed(ORK_DFT_DOUBLE, ORK_DFT_REAL, {6, 4});
    packed.set(ORK_DFT_CONJUGATE_EVEN_STORAGE, ORK_DFT_COMPLEX_REAL);
    EXPECT_THAT(integers(packed, ORK_DFT_OUTPUT_STRIDES, 3), ElementsAre(0, 1, 8));
    EXPECT_THAT(integers(packed, ORK_DFT_INPUT_STRIDES, 3), ElementsAre(0, 1, 8));
    packed.set(ORK_DFT_PACKED_FORMAT, ORK_DFT_PERM);
    EXPECT_THAT(integers(packed, ORK_DFT_OUTPUT_STRIDES, 3), ElementsAre(0, 1, 6));
}

struct Refusal {
    int parameter;
    std::int64_t value, status;
    const char* name;
};

TEST(Descriptors, RefuseIllegalValuesByNameAndValue)
{
    const Descriptor d(ORK_DFT_DOUBLE, ORK_DFT_REAL, {8});
    constexpr std::int64_t invalid = ORK_DFT_INVALID_CONFIGURATION, threads = ORK_DFT_NUMBER_OF_THREADS_ERROR;
    std::vector<Refusal> refusals = {
        {ORK_DFT_NUMBER_OF_TRANSFORMS, 0, ORK_DFT_LENGTH_ERROR, "ORK_DFT_NUMBER_OF_TRANSFORMS"},
        {ORK_DFT_NUMBER_OF_TRANSFORMS, INT64_MIN, ORK_DFT_LENGTH_ERROR, "ORK_DFT_NUMBER_OF_TRANSFORMS"},
        {ORK_DFT_THREAD_LIMIT, -1, threads, "ORK_DFT_THREAD_LIMIT"},
        {ORK_DFT_THREAD_LIMIT, INT_MAX + std::int64_t{1}, threads, "ORK_DFT_THREAD_LIMIT"},
        {ORK_DFT_NUMBER_OF_USER_THREADS, 0, threads, "ORK_DFT_NUMBER_OF_USER_THREADS"},
        {ORK_DFT_PRECISION, ORK_DFT_SINGLE, invalid, "ORK_DFT_PRECISION"}, // can be read only
        {ORK_DFT_FORWARD_DOMAIN, ORK_DFT_REAL, invalid, "ORK_DFT_FORWARD_DOMAIN"},
        {ORK_DFT_DIMENSION, 2, invalid, "ORK_DFT_DIMENSION"},
        {ORK_DFT_COMMIT_STATUS, ORK_DFT_COMMITTED, invalid, "ORK_DFT_COMMIT_STATUS"},
        {ORK_DFT_FORWARD_SCALE, 1, invalid, "ORK_DFT_FORWARD_SCALE"}, // of another kind
        {ORK_DFT_INPUT_STRIDES, 1, invalid, "ORK_DFT_INPUT_STRIDES"},
        {ORK_DFT_NAME, 1, invalid, "ORK_DFT_NAME"},
        {0, 1, invalid, "parameter"},
        {11, 1, invalid, "parameter"},
        {-26, 1, invalid, "parameter"},
    };
    // All values of other parameters, and some that none has.
    for (const auto& [parameter, name, legal] : std::vector<std::tuple<int, const char*, Integers>>{
             {ORK_DFT_PLACEMENT, "ORK_DFT_PLACEMENT", {ORK_DFT_INPLACE, ORK_DFT_NOT_INPLACE}},
             {ORK_DFT_COMPLEX_STORAGE, "ORK_DFT_COMPLEX_STORAGE", {ORK_DFT_COMPLEX_COMPLEX, ORK_DFT_REAL_REAL}},
             {ORK_DFT_CONJUGATE_EVEN_STORAGE,
              "ORK_DFT_CONJUGATE_EVEN_STORAGE",
              {ORK_DFT_COMPLEX_COMPLEX, ORK_DFT_COMPLEX_REAL}},
             {ORK_DFT_WORKSPACE, "ORK_DFT_WORKSPACE", {ORK_DFT_ALLOW, ORK_DFT_AVOID}},
             {ORK_DFT_ORDERING, "ORK_DFT_ORDERING", {ORK_DFT_ORDERED}},
             {ORK_DFT_PACKED_FORMAT,
              "ORK_DFT_PACKED_FORMAT",
              {ORK_DFT_CCS, ORK_DFT_PACK, ORK_DFT_PERM, ORK_DFT_CCE}}}) {
        for (std::int64_t value = 28; value < 60; ++value)
            if (std::find(legal.begin(), legal.end(), value) == legal.end())
                refusals.push_back({parameter, value, invalid, name});
            else
                EXPECT_EQ(ork_dft_set_integer(d, parameter, value), 0) << ork_dft_descriptor_message(d);
        refusals.push_back({parameter, 0, invalid, name});
        refusals.push_back({parameter, legal[0] + (std::int64_t{1} << 32), invalid, name});
    }
    for (const Refusal& r : refusals) {
        SCOPED_TRACE(testing::Message() << r.parameter << " = " << r.value);
        std::int64_t before = 0, after = 0;
        const bool readable = ork_dft_get_integer(d, r.parameter, &before) == 0;
        EXPECT_EQ(ork_dft_set_integer(d, r.parameter, r.value), r.status);
        EXPECT_THAT(ork_dft_descriptor_message(d), HasSubstr(r.name));
        if (readable) {
            EXPECT_THAT(ork_dft_descriptor_message(d), HasSubstr(" = " + std::to_string(r.value) + ":"));
            EXPECT_EQ(ork_dft_get_integer(d, r.parameter, &after), 0);
            EXPECT_EQ(after, before);
        }
    }
}

TEST(Descriptors, RefuseNullPointersAndLongNames)
{
    const Descriptor d(ORK_DFT_DOUBLE, ORK_DFT_COMPLEX, {8});
    const auto refused = [&](std::int64_t status, const char* name) {
        EXPECT_EQ(status, ORK_DFT_INVALID_CONFIGURATION);
        EXPECT_THAT(ork_dft_descriptor_message(d), HasSubstr(name));
    };
    refused(ork_dft_set_integers(d, ORK_DFT_INPUT_STRIDES, nullptr), "ORK_DFT_INPUT_STRIDES");
    refused(ork_dft_set_integers(d, ORK_DFT_LENGTHS, Integers{9}.data()), "ORK_DFT_LENGTHS");
    refused(ork_dft_set_text(d, ORK_DFT_NAME, nullptr), "ORK_DFT_NAME");
    refused(ork_dft_set_text(d, ORK_DFT_VERSION, "2"), "ORK_DFT_VERSION");
    refused(ork_dft_get_real(d, ORK_DFT_FORWARD_SCALE, nullptr), "ORK_DFT_FORWARD_SCALE");
    refused(ork_dft_get_value(d, ORK_DFT_PLACEMENT, nullptr), "ORK_DFT_PLACEMENT");
    double real;
    refused(ork_dft_get_real(d, ORK_DFT_PLACEMENT, &real), "ORK_DFT_PLACEMENT");
    std::string name(ORK_DFT_NAME_SIZE - 1, 'n');
    EXPECT_EQ(ork_dft_set_text(d, ORK_DFT_NAME, name.c_str()), 0);
    refused(ork_dft_set_text(d, ORK_DFT_NAME, (name + "m").c_str()), "ORK_DFT_NAME = nnn");
    char kept[ORK_DFT_NAME_SIZE];
    EXPECT_EQ(ork_dft_get_text(d, ORK_DFT_NAME, kept), 0);
    EXPECT_EQ(kept, name);
}

TEST(Creation, RefusesByNameAndValueAndLeavesANullHandle)
{
    const auto refused = [](int precision, int domain, std::int64_t rank, const Integers& n, std::int64_t status,
                            const char* text) {
        SCOPED_TRACE(text);
        auto* handle = reinterpret_cast<ork_dft_descriptor*>(8);
        EXPECT_EQ(ork_dft_create_descriptor(&handle, precision, domain, rank, n.empty() ? nullptr : n.data()), status);
        EXPECT_EQ(handle, nullptr);
        EXPECT_THAT(ork_dft_descriptor_message(nullptr), HasSubstr(text));
        char message[ORK_DFT_MESSAGE_SIZE];
        ork_dft_dftierrormessage(nullptr, status, message, sizeof message);
        EXPECT_THAT(message, HasSubstr(text));
    };
    constexpr int z = ORK_DFT_DOUBLE, c = ORK_DFT_COMPLEX;
    refused(34, c, 1, {8}, ORK_DFT_INVALID_CONFIGURATION, "ORK_DFT_PRECISION = 34:");
    refused(z, 34, 1, {8}, ORK_DFT_INVALID_CONFIGURATION, "ORK_DFT_FORWARD_DOMAIN = 34:");
    refused(z, c, 0, {8}, ORK_DFT_INVALID_CONFIGURATION, "ORK_DFT_DIMENSION = 0:");
    refused(z, c, 8, {1, 1, 1, 1, 1, 1, 1, 1}, ORK_DFT_INVALID_CONFIGURATION, "ORK_DFT_DIMENSION = 8:");
    refused(z, c, 1, {}, ORK_DFT_INVALID_CONFIGURATION, "ORK_DFT_LENGTHS");
    refused(z, c, 1, {0}, ORK_DFT_LENGTH_ERROR, "ORK_DFT_LENGTHS[0] = 0:");
    refused(z, c, 3, {4, 5, -6}, ORK_DFT_LENGTH_ERROR, "ORK_DFT_LENGTHS[2] = -6:");
    refused(z, c, 2, {std::int64_t{1} << 32, std::int64_t{1} << 32}, ORK_DFT_LENGTH_ERROR,
            "ORK_DFT_LENGTHS[1] = 4294967296:");
    refused(z, c, 1, {std::int64_t{1} << 57}, ORK_DFT_LENGTH_ERROR, "ORK_DFT_LENGTHS[0] = 144115188075855872:");
    EXPECT_EQ(ork_dft_create_descriptor_1d(nullptr, z, c, 8), ORK_DFT_BAD_DESCRIPTOR);
}

TEST(Commit, RefusesWhatDoesNotGoTogether)
{
    struct Case {
        const char* text;
        std::int64_t status;
        int domain;
        Integers n;
        void (*set)(Descriptor&);
    };
    const Case cases[] = {
        {"ORK_DFT_INPUT_STRIDES[1] = 0:",
         ORK_DFT_INCONSISTENT_CONFIGURATION,
         ORK_DFT_COMPLEX,
         {8},
         [](Descriptor& d) {
             d.set(ORK_DFT_INPUT_STRIDES, Integers{0, 0});
         }},
        {"ORK_DFT_OUTPUT_STRIDES[2] = 0:",
         ORK_DFT_INCONSISTENT_CONFIGURATION,
         ORK_DFT_COMPLEX,
         {8, 2},
         [](Descriptor& d) {
             d.set(ORK_DFT_PLACEMENT, ORK_DFT_NOT_INPLACE).set(ORK_DFT_OUTPUT_STRIDES, Integers{0, 1, 0});
         }},
        {"ORK_DFT_INPUT_DISTANCE = 0:",
         ORK_DFT_INCONSISTENT_CONFIGURATION,
         ORK_DFT_COMPLEX,
         {8},
         [](Descriptor& d) { d.set(ORK_DFT_NUMBER_OF_TRANSFORMS, 2); }},
        {"ORK_DFT_OUTPUT_DISTANCE = 0:",
         ORK_DFT_INCONSISTENT_CONFIGURATION,
         ORK_DFT_REAL,
         {8},
         [](Descriptor& d) {
             d.set(ORK_DFT_NUMBER_OF_TRANSFORMS, 2).set(ORK_DFT_PLACEMENT, ORK_DFT_NOT_INPLACE);
             d.set(ORK_DFT_INPUT_DISTANCE, 8);
         }},
        {"ORK_DFT_INPUT_STRIDES",
         ORK_DFT_INCONSISTENT_CONFIGURATION,
         ORK_DFT_COMPLEX,
         {8},
         [](Descriptor& d) {
             d.set(ORK_DFT_INPUT_STRIDES, Integers{0, INT64_MAX / 7});
         }},
        {"ORK_DFT_INPUT_STRIDES",
         ORK_DFT_INCONSISTENT_CONFIGURATION,
         ORK_DFT_COMPLEX,
         {8},
         [](Descriptor& d) { d.set(ORK_DFT_NUMBER_OF_TRANSFORMS, INT64_MAX).set(ORK_DFT_INPUT_DISTANCE, INT64_MIN); }},
        {"ORK_DFT_INPUT_STRIDES[2] = 8: in place 2 times ORK_DFT_OUTPUT_STRIDES = 5",
         ORK_DFT_INCONSISTENT_CONFIGURATION,
         ORK_DFT_REAL,
         {8, 3},
         [](Descriptor& d) {
             d.set(ORK_DFT_INPUT_STRIDES, Integers{0, 1, 8});
         }},
        {"ORK_DFT_INPUT_DISTANCE = 8: in place 2 times ORK_DFT_OUTPUT_DISTANCE = 5",
         ORK_DFT_INCONSISTENT_CONFIGURATION,
         ORK_DFT_REAL,
         {8},
         [](Descriptor& d) {
             d.set(ORK_DFT_NUMBER_OF_TRANSFORMS, 2).set(ORK_DFT_INPUT_DISTANCE, 8).set(ORK_DFT_OUTPUT_DISTANCE, 5);
         }},
        {"ORK_DFT_PACKED_FORMAT = 57:",
         ORK_DFT_INCONSISTENT_CONFIGURATION,
         ORK_DFT_REAL,
         {8},
         [](Descriptor& d) {
             d.set(ORK_DFT_CONJUGATE_EVEN_STORAGE, ORK_DFT_COMPLEX_REAL).set(ORK_DFT_PACKED_FORMAT, ORK_DFT_CCE);
         }},
        {"ORK_DFT_CONJUGATE_EVEN_STORAGE = 40: of ORK_DFT_DIMENSION = 3",
         ORK_DFT_UNIMPLEMENTED,
         ORK_DFT_REAL,
         {8, 2, 2},
         [](Descriptor& d) { d.set(ORK_DFT_CONJUGATE_EVEN_STORAGE, ORK_DFT_COMPLEX_REAL); }},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        Descriptor d(ORK_DFT_DOUBLE, c.domain, c.n);
        c.set(d);
        EXPECT_EQ(ork_dft_commit_descriptor(d), c.status);
        EXPECT_THAT(ork_dft_descriptor_message(d), HasSubstr(c.text));
        EXPECT_EQ(integer(d, ORK_DFT_COMMIT_STATUS), ORK_DFT_UNCOMMITTED);
        double x[64] = {};
        EXPECT_EQ(ork_dft_compute_forward(d, x, x), ORK_DFT_BAD_DESCRIPTOR);
    }
}

// Offsets and distances that count for nothing are not looked at, nor is the output side of complex data in place.
TEST(Commit, AcceptsWhatDoesNotMatter)
{
    Descriptor d(ORK_DFT_DOUBLE, ORK_DFT_COMPLEX, {8, 1});
    d.set(ORK_DFT_INPUT_STRIDES, Integers{0, 1, 0}).set(ORK_DFT_OUTPUT_STRIDES, Integers{0, 0, 0}).commit();
    Descriptor real(ORK_DFT_DOUBLE, ORK_DFT_REAL, {8});
    real.set(ORK_DFT_INPUT_DISTANCE, 3).set(ORK_DFT_PACKED_FORMAT, ORK_DFT_CCE).commit();
}

TEST(Handles, NullFreedOrForeignOnesAreRefusedByEveryRoutine)
{
    ork_dft_descriptor* freed;
    ASSERT_EQ(ork_dft_create_descriptor_1d(&freed, ORK_DFT_DOUBLE, ORK_DFT_COMPLEX, 8), 0);
    ASSERT_EQ(ork_dft_commit_descriptor(freed), 0);
    ork_dft_descriptor* first = freed;
    ASSERT_EQ(ork_dft_free_descriptor(&first), 0);
    EXPECT_EQ(first, nullptr);
    alignas(64) char foreign[1024] = {};
    for (ork_dft_descriptor* d :
         {static_cast<ork_dft_descriptor*>(nullptr), freed, reinterpret_cast<ork_dft_descriptor*>(foreign),
          reinterpret_cast<ork_dft_descriptor*>(foreign + 1)}) {
        double x[16] = {}, real;
        std::int64_t n[3] = {0, 1, 1};
        char text[ORK_DFT_NAME_SIZE];
        ork_dft_descriptor *again = d, *copy;
        EXPECT_EQ(ork_dft_free_descriptor(&again), ORK_DFT_BAD_DESCRIPTOR);
        EXPECT_EQ(ork_dft_dftifreedescriptor(&again), ORK_DFT_BAD_DESCRIPTOR);
        EXPECT_EQ(ork_dft_copy_descriptor(d, &copy), ORK_DFT_BAD_DESCRIPTOR);
        EXPECT_EQ(copy, nullptr);
        for (const std::int64_t status : {ork_dft_set_integer(d, ORK_DFT_PLACEMENT, ORK_DFT_INPLACE),
                                          ork_dft_set_integers(d, ORK_DFT_INPUT_STRIDES, n),
                                          ork_dft_set_real(d, ORK_DFT_FORWARD_SCALE, 1),
                                          ork_dft_set_text(d, ORK_DFT_NAME, "x"),
                                          ork_dft_get_integer(d, ORK_DFT_PLACEMENT, n),
                                          ork_dft_get_integers(d, ORK_DFT_INPUT_STRIDES, n),
                                          ork_dft_get_real(d, ORK_DFT_FORWARD_SCALE, &real),
                                          ork_dft_get_text(d, ORK_DFT_NAME, text),
                                          ork_dft_set_value(d, ORK_DFT_PLACEMENT, ORK_DFT_INPLACE),
                                          ork_dft_get_value(d, ORK_DFT_PLACEMENT, n),
                                          ork_dft_dftisetvalue(d, ORK_DFT_PLACEMENT, ORK_DFT_INPLACE),
                                          ork_dft_commit_descriptor(d),
                                          ork_dft_dfticommitdescriptor(d),
                                          ork_dft_forward(d, x),
                                          ork_dft_backward(d, x),
                                          ork_dft_forward_out(d, x, x + 8),
                                          ork_dft_backward_split(d, x, x + 8),
                                          ork_dft_forward_split_out(d, x, x + 4, x + 8, x + 12),
                                          ork_dft_compute_forward(d, x),
                                          ork_dft_compute_backward(d, x),
                                          ork_dft_dfticomputeforward(d, x),
                                          ork_dft_dfticomputebackward(d, x)})
            EXPECT_EQ(status, ORK_DFT_BAD_DESCRIPTOR);
        if (d != nullptr) {
            EXPECT_THAT(ork_dft_descriptor_message(d), HasSubstr("freed"));
        }
    }
    ork_dft_descriptor* null = nullptr;
    EXPECT_EQ(ork_dft_free_descriptor(&null), ORK_DFT_BAD_DESCRIPTOR);
    EXPECT_EQ(ork_dft_free_descriptor(nullptr), ORK_DFT_BAD_DESCRIPTOR);
}

// More descriptors than a block has, each its own; freed ones make room.
TEST(Handles, ManyLiveAtOnce)
{
    std::vector<ork_dft_descriptor*> live(100);
    for (int round = 0; round < 2; ++round) {
        for (std::size_t i = 0; i < live.size(); ++i)
            ASSERT_EQ(ork_dft_create_descriptor_1d(&live[i], ORK_DFT_SINGLE, ORK_DFT_REAL, std::int64_t(i) + 1), 0);
        for (std::size_t i = 0; i < live.size(); ++i) {
            EXPECT_EQ(integers(live[i], ORK_DFT_LENGTHS, 1)[0], std::int64_t(i) + 1);
            EXPECT_EQ(ork_dft_free_descriptor(&live[i]), 0);
        }
    }
}

TEST(Handles, ACallMustAgreeWithPlacementAndStorage)
{
    Descriptor d(ORK_DFT_DOUBLE, ORK_DFT_COMPLEX, {2});
    double x[4] = {1, 2, 3, 4}, y[4] = {5, 6, 7, 8};
    const auto statuses = [&] {
        return Integers{ork_dft_forward(d, x), ork_dft_forward_out(d, x, y), ork_dft_forward_split(d, x, y),
                        ork_dft_forward_split_out(d, x, x + 2, y, y + 2)};
    };
    constexpr std::int64_t no = ORK_DFT_INCONSISTENT_CONFIGURATION, bad = ORK_DFT_BAD_DESCRIPTOR;
    EXPECT_THAT(statuses(), ElementsAre(bad, bad, bad, bad)); // not committed
    EXPECT_THAT(x, ElementsAre(1, 2, 3, 4));
    d.commit();
    EXPECT_THAT(statuses(), ElementsAre(0, no, no, no));
    EXPECT_THAT(x, ElementsAre(4, 6, -2, -2));
    d.set(ORK_DFT_PLACEMENT, ORK_DFT_NOT_INPLACE);
    EXPECT_THAT(statuses(), ElementsAre(bad, bad, bad, bad));
    d.commit();
    EXPECT_THAT(statuses(), ElementsAre(no, 0, no, no));
    EXPECT_EQ(ork_dft_forward_out(d, x, nullptr), ORK_DFT_INVALID_CONFIGURATION);
    EXPECT_EQ(ork_dft_compute_forward(d, x, nullptr), ORK_DFT_INVALID_CONFIGURATION);
    d.set(ORK_DFT_COMPLEX_STORAGE, ORK_DFT_REAL_REAL).commit();
    EXPECT_THAT(statuses(), ElementsAre(no, no, no, 0));
    d.set(ORK_DFT_PLACEMENT, ORK_DFT_INPLACE).commit();
    EXPECT_THAT(statuses(), ElementsAre(no, no, 0, no));
}

TEST(Handles, ACopyHasTheParametersAndIsNotCommitted)
{
    Descriptor d(ORK_DFT_SINGLE, ORK_DFT_COMPLEX, {3});
    d.set(ORK_DFT_FORWARD_SCALE, 0.5).set(ORK_DFT_INPUT_STRIDES, Integers{1, 2}).commit();
    ork_dft_descriptor* copy;
    ASSERT_EQ(ork_dft_copy_descriptor(d, &copy), 0);
    EXPECT_EQ(ork_dft_free_descriptor(d.address()), 0);
    EXPECT_EQ(integer(copy, ORK_DFT_COMMIT_STATUS), ORK_DFT_UNCOMMITTED);
    EXPECT_THAT(integers(copy, ORK_DFT_INPUT_STRIDES, 2), ElementsAre(1, 2));
    EXPECT_EQ(ork_dft_commit_descriptor(copy), 0);
    float x[12] = {0, 0, 2, 0, 0, 0, 2, 0, 0, 0, 2, 0};
    EXPECT_EQ(ork_dft_forward(copy, x), 0);
    EXPECT_EQ(x[2], 3);
    EXPECT_EQ(ork_dft_free_descriptor(&copy), 0);
}

// As the solvers do it.
TEST(OtherNames, MakeTheSameDescriptors)
{
    ork_dft_descriptor* d;
    const std::int64_t n[] = {4, 2};
    ASSERT_EQ(ork_dft_dfticreatedescriptor_s_md(&d, ORK_DFT_COMPLEX, 2, n), 0);
    EXPECT_EQ(integer(d, ORK_DFT_PRECISION), ORK_DFT_SINGLE);
    EXPECT_THAT(integers(d, ORK_DFT_LENGTHS, 2), ElementsAre(4, 2));
    EXPECT_EQ(ork_dft_dftifreedescriptor(&d), 0);
    ASSERT_EQ(ork_dft_dfticreatedescriptor_d_1d(&d, ORK_DFT_REAL, 4), 0);
    EXPECT_EQ(ork_dft_dftisetvalue(d, 21, ORK_DFT_PERM), 0);
    EXPECT_EQ(ork_dft_dftisetvalue(d, 10, ORK_DFT_COMPLEX_REAL), 0);
    EXPECT_EQ(ork_dft_dftisetvalue(d, 26, std::int64_t{2}), 0);
    EXPECT_EQ(ork_dft_set_value(d, ORK_DFT_FORWARD_SCALE, 2.0), 0);
    EXPECT_EQ(ork_dft_set_value(d, ORK_DFT_INPUT_STRIDES, Integers{0, 1}.data()), 0);
    EXPECT_EQ(ork_dft_set_value(d, ORK_DFT_NAME, "solver"), 0);
    EXPECT_EQ(integer(d, ORK_DFT_NUMBER_OF_USER_THREADS), 2);
    EXPECT_EQ(ork_dft_dfticommitdescriptor(d), 0) << ork_dft_descriptor_message(d);
    double x[4] = {1, 2, 4, 8};
    EXPECT_EQ(ork_dft_dfticomputeforward(d, x), 0);
    EXPECT_THAT(x, ElementsAre(30, -10, -6, 12));
    EXPECT_EQ(ork_dft_dfticomputebackward(d, x), 0);
    EXPECT_THAT(x, ElementsAre(8, 16, 32, 64));
    const std::int64_t status = ork_dft_dftisetvalue(d, 21, 99);
    EXPECT_EQ(ork_dft_dftierrorclass(status, ORK_DFT_INVALID_CONFIGURATION), 1);
    EXPECT_EQ(ork_dft_dftierrorclass(status, ORK_DFT_NO_ERROR), 0);
    char message[80];
    ork_dft_dftierrormessage(d, status, message, sizeof message);
    EXPECT_THAT(message, AllOf(HasSubstr("ORK_DFT_PACKED_FORMAT = 99"), testing::Not(HasSubstr("no error"))));
    ork_dft_dftierrormessage(d, ORK_DFT_MEMORY_ERROR, message, 5); // another status than the text is about, cut
    EXPECT_STREQ(message, "no m");
    EXPECT_EQ(ork_dft_dftifreedescriptor(&d), 0);
}

} // namespace

} // namespace ork::test
