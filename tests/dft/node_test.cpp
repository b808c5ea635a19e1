// SPDX-License-Identifier: MIT
// Nodes: what creation sets, what a commit chooses and leaves behind, and what its failures do.
#include "dft/layout.h"

namespace ork::test {
namespace {

class Nodes : public testing::Test {
protected:
    FreshCore core;
};

TEST_F(Nodes, HaveEveryDefault)
{
    const auto check = [](ork_dft_node* node, int precision, int domain, const Ints& lengths) {
        ASSERT_NE(node, nullptr);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(node) % 64, 0U);
        EXPECT_EQ(node->domain.precision, precision);
        EXPECT_EQ(node->domain.domain, domain);
        EXPECT_EQ(node->rank, static_cast<Int>(lengths.size()));
        EXPECT_EQ(node->status, ORK_DFT_UNCOMMITTED);
        EXPECT_EQ(node->placement, ORK_DFT_INPLACE);
        EXPECT_EQ(node->storage.complex_storage, ORK_DFT_COMPLEX_COMPLEX);
        EXPECT_EQ(node->storage.conjugate_even_storage, ORK_DFT_COMPLEX_COMPLEX);
        EXPECT_EQ(node->packed_format, ORK_DFT_CCS);
        EXPECT_EQ(node->workspace, ORK_DFT_ALLOW);
        EXPECT_EQ(node->transforms, 1);
        EXPECT_EQ(node->scales.forward, 1);
        EXPECT_EQ(node->scales.backward, 1);
        EXPECT_EQ(node->threads, 1);
        EXPECT_NE(node->free, nullptr);
        EXPECT_NE(node->backends, nullptr);
        Int stride = 1;
        const ork_dft_node* dimension = node;
        for (std::size_t d = 0; d < lengths.size(); ++d, dimension = dimension->next) {
            const ork_dft_dimension& words = node->dimensions[d];
            EXPECT_EQ(words.length, lengths[d]);
            EXPECT_EQ(words.input_stride, stride);
            EXPECT_EQ(words.output_stride, stride);
            EXPECT_EQ(words.reserved[0] | words.reserved[1], 0);
            EXPECT_EQ(node->scale_records[d].count, 1);
            for (const unsigned char byte : node->scale_records[d].value) EXPECT_EQ(byte, 0);
            ASSERT_NE(dimension, nullptr);
            EXPECT_EQ(dimension->index, static_cast<Int>(d));
            EXPECT_EQ(dimension->length, lengths[d]);
            stride *= lengths[d];
        }
        EXPECT_EQ(dimension, nullptr);
        EXPECT_EQ(node->size, stride);
        // The list set on an existing node is the wrapper's own.
        const auto set = [&](ork_dft_set_backends* one, ork_dft_set_backends* many) {
            const void* own = node->backends;
            node->backends = nullptr;
            EXPECT_EQ((lengths.size() == 1 ? one : many)(node), 0);
            EXPECT_EQ(node->backends, own);
        };
        const bool real = domain == ORK_DFT_REAL;
        if (precision == ORK_DFT_DOUBLE)
            set(real ? ork_dft_nx2_dfti_set_bkdlist_dr1d : ork_dft_nx2_dfti_set_bkdlist_dc1d,
                real ? ork_dft_nx2_dfti_set_bkdlist_drmd : ork_dft_nx2_dfti_set_bkdlist_dcmd);
        else
            set(real ? ork_dft_nx2_dfti_set_bkdlist_sr1d : ork_dft_nx2_dfti_set_bkdlist_sc1d,
                real ? ork_dft_nx2_dfti_set_bkdlist_srmd : ork_dft_nx2_dfti_set_bkdlist_scmd);
    };
    for (const int domain : {ORK_DFT_COMPLEX, ORK_DFT_REAL})
        for (const Ints& lengths : {Ints{12}, Ints{3, 4}, Ints{2, 1, 3, 4, 5, 6, 7}}) {
            check(Node<double>(lengths, domain).get(), ORK_DFT_DOUBLE, domain, lengths);
            check(Node<float>(lengths, domain).get(), ORK_DFT_SINGLE, domain, lengths);
        }
    EXPECT_EQ(core->live_objects, 0);
}

TEST_F(Nodes, WithoutMemoryOnlyAnAllowedNodeServesAgain)
{
    ork_dft_node* node = nullptr;
    const auto create = [&](Int rank, ork_dft_settings* settings) {
        const Int lengths[] = {8, 9, 10};
        core->fail_allocation_at = 1;
        return ork_dft_nx2_dfti_create_dcmd(&node, rank, lengths, settings);
    };
    EXPECT_EQ(create(2, nullptr), ORK_DFT_NO_MEMORY);
    EXPECT_EQ(node, nullptr);
    EXPECT_EQ(ork_dft_nx2_dfti_create_dc1d(&node, 5, nullptr), 0);
    ork_dft_settings settings{};
    ork_dft_node* const first = node;
    EXPECT_EQ(create(1, &settings), ORK_DFT_NO_MEMORY);
    settings.word[0] = 1;
    EXPECT_EQ(create(2, &settings), ORK_DFT_NO_MEMORY); // has no room for a second dimension
    EXPECT_EQ(node, first);
    EXPECT_EQ(node->length, 5);
    ASSERT_EQ(ork_dft_nx2_commit_descriptor_core_d_c2c_1d(node), 0);
    EXPECT_EQ(create(1, &settings), ORK_DFT_OK);
    EXPECT_EQ(node, first);
    EXPECT_EQ(node->length, 8);
    EXPECT_EQ(node->status, ORK_DFT_UNCOMMITTED);
    EXPECT_EQ(ork_dft_nx2_dfti_free_node(&node), 0);
    EXPECT_EQ(node, nullptr);
    EXPECT_EQ(ork_dft_nx2_dfti_free_node(&node), 0);
    EXPECT_EQ(core->live_objects, 0);
}

// One complex transform of unit strides in place, unless changed.
ork_dft_facts facts(Int length)
{
    ork_dft_facts f{};
    f.length = f.size = length;
    f.stride[0] = f.stride[1] = f.head_stride[0] = f.head_stride[1] = 1;
    f.transforms = f.rank = 1;
    f.placement = ORK_DFT_INPLACE, f.complex_storage = ORK_DFT_COMPLEX_COMPLEX, f.workspace = ORK_DFT_ALLOW;
    return f;
}

TEST_F(Nodes, ChooseByLength)
{
    const auto choice = [](Int length, auto change) {
        ork_dft_facts f = facts(length);
        change(f);
        return ork_dft_nx2_choose_engine(&f);
    };
    const auto plain = [](ork_dft_facts&) {};
    const Int two_24 = 1 << 24, two_26 = 1 << 26;
    EXPECT_EQ(choice(2, plain), ORK_DFT_ENGINE_POWER_OF_TWO);
    EXPECT_EQ(choice(63, plain), ORK_DFT_ENGINE_LENGTH);
    EXPECT_EQ(choice(64, plain), ORK_DFT_ENGINE_POWER_OF_TWO);
    EXPECT_EQ(choice(65, plain), ORK_DFT_ENGINE_MIXED);
    EXPECT_EQ(choice(two_24 - 1, plain), ORK_DFT_ENGINE_MIXED);
    EXPECT_EQ(choice(two_24, plain), ORK_DFT_ENGINE_POWER_OF_TWO);
    EXPECT_EQ(choice(two_24 + 1, plain), ORK_DFT_ENGINE_FOUR_STEP);
    EXPECT_EQ(choice(2 * two_24, plain), ORK_DFT_ENGINE_POWER_OF_TWO);
    EXPECT_EQ(choice(two_26, plain), ORK_DFT_ENGINE_POWER_OF_TWO);
    EXPECT_EQ(choice(2 * two_26, plain), ORK_DFT_ENGINE_FOUR_STEP);

    const auto avoid = [](ork_dft_facts& f) { f.workspace = ORK_DFT_AVOID; };
    EXPECT_EQ(choice(15, avoid), ORK_DFT_ENGINE_LENGTH);
    EXPECT_EQ(choice(16, avoid), ORK_DFT_ENGINE_FOUR_STEP);
    EXPECT_EQ(choice(100, avoid), ORK_DFT_ENGINE_FOUR_STEP);
    // Whatever excludes the four-step engine.
    for (const auto& change :
         {+[](ork_dft_facts& f) { f.head_stride[0] = 2; }, +[](ork_dft_facts& f) { f.head_stride[1] = 2; },
          +[](ork_dft_facts& f) { f.rank = 2; }, +[](ork_dft_facts& f) { f.four_step_refused = 1; }}) {
        EXPECT_EQ(choice(two_24 + 1, change), ORK_DFT_ENGINE_MIXED);
        EXPECT_EQ(choice(2 * two_26, change), ORK_DFT_ENGINE_POWER_OF_TWO);
        EXPECT_EQ(choice(40,
                         [&](ork_dft_facts& f) {
                             avoid(f);
                             change(f);
                         }),
                  ORK_DFT_ENGINE_LENGTH);
    }
    const auto split = [](ork_dft_facts& f) { f.complex_storage = ORK_DFT_REAL_REAL; };
    const auto settings = [](ork_dft_facts& f) { f.alternative = 1; };
    for (const Int n : {Int{2}, Int{15}, Int{100}, two_24 + 1, 2 * two_26})
        EXPECT_EQ(choice(n, split), ORK_DFT_ENGINE_SPLIT);
    EXPECT_EQ(choice(60, settings), ORK_DFT_ENGINE_ALTERNATIVE);
    EXPECT_EQ(choice(100, settings), ORK_DFT_ENGINE_ALTERNATIVE);
    EXPECT_EQ(choice(64, settings), ORK_DFT_ENGINE_POWER_OF_TWO);
    EXPECT_EQ(choice(two_24 + 1, settings), ORK_DFT_ENGINE_FOUR_STEP);
}

TEST_F(Nodes, ChooseTheBatchedPlan)
{
    const auto applies = [](Int length, auto change) {
        ork_dft_facts f = facts(length);
        f.transforms = 10;
        change(f);
        return ork_dft_nx2_batched_applies(&f) != 0;
    };
    const auto plain = [](ork_dft_facts&) {};
    EXPECT_FALSE(applies(64, plain));
    EXPECT_TRUE(applies(65, plain));
    EXPECT_TRUE(applies(256, plain));
    EXPECT_FALSE(applies(257, plain));
    EXPECT_FALSE(applies(100, [](ork_dft_facts& f) { f.transforms = 1; }));
    EXPECT_FALSE(applies(100, [](ork_dft_facts& f) { f.placement = ORK_DFT_NOT_INPLACE; }));
    EXPECT_FALSE(applies(100, [](ork_dft_facts& f) { f.rank = 2; })); // the first dimension
    EXPECT_FALSE(applies(100, [](ork_dft_facts& f) { f.complex_storage = ORK_DFT_REAL_REAL; }));
    EXPECT_FALSE(applies(100, [](ork_dft_facts& f) { f.head_stride[0] = 2; }));
    // A further dimension: one transform, and out of place, will do; its own stride decides.
    const auto second = [&](Int stride, int placement) {
        return applies(100, [=](ork_dft_facts& f) {
            f.rank = 2, f.index = 1, f.transforms = 1, f.placement = placement;
            f.stride[placement == ORK_DFT_INPLACE ? 0 : 1] = stride;
            f.stride[placement == ORK_DFT_INPLACE ? 1 : 0] = 256;
        });
    };
    for (const int placement : {ORK_DFT_INPLACE, ORK_DFT_NOT_INPLACE}) {
        EXPECT_TRUE(second(128, placement));
        EXPECT_TRUE(second(3 * 128, placement));
        EXPECT_FALSE(second(256, placement));
        EXPECT_FALSE(second(5 * 512, placement));
    }
    EXPECT_FALSE(applies(100, [](ork_dft_facts& f) {
        f.rank = 2, f.index = 1, f.placement = ORK_DFT_NOT_INPLACE, f.head_stride[1] = 3;
    }));
    EXPECT_EQ(ork_dft_nx2_batch_of_length(65, 1), 31);
    EXPECT_EQ(ork_dft_nx2_batch_of_length(256, 8), 8);
    EXPECT_EQ(ork_dft_nx2_batch_of_length(256, 16), 16);
    EXPECT_EQ(ork_dft_nx2_batch_of_length(256, 48), 16);
    EXPECT_EQ(ork_dft_nx2_batch_of_length(100, 16), 20);
    EXPECT_EQ(ork_dft_nx2_batch_of_length(256, 32), 8);
}

TEST_F(Nodes, BatchedPlansHaveTablesThatDouble)
{
    const auto committed = [](Int length, Int transforms) {
        auto node = std::make_unique<Node<double>>(Ints{length});
        const Side side = dense({length}, transforms);
        set(*node, {side, side, true, false});
        EXPECT_EQ(node->commit(), ORK_DFT_OK);
        return node;
    };
    for (const auto& [transforms, sizes] : {std::pair<Int, int>{2, 2}, {7, 3}, {8, 4}, {4096, 13}, {5000, 13}}) {
        const auto node = committed(66, transforms);
        EXPECT_EQ((*node)->engine, ORK_DFT_ENGINE_BATCHED);
        const ork_dft_batched* batched = (*node)->batched;
        ASSERT_NE(batched, nullptr);
        EXPECT_NE((*node)->batched_engine, nullptr);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(batched) % 64, 0U);
        EXPECT_EQ(batched->batch, 31);
        EXPECT_EQ(batched->sizes, sizes);
        for (int i = 0; i < ORK_DFT_BATCH_SIZES; ++i) {
            EXPECT_EQ(batched->forward[i] != nullptr, i < sizes);
            EXPECT_EQ(batched->backward[i] != nullptr, i < sizes);
        }
        EXPECT_EQ((*node)->general, 0);
    }
    // Primes without a butterfly are declined, which the commit takes in silence.
    const auto declined = committed(67, 8);
    EXPECT_EQ((*declined)->engine, ORK_DFT_ENGINE_MIXED);
    EXPECT_EQ((*declined)->batched, nullptr);
    EXPECT_EQ((*declined)->batched_engine, nullptr);
    EXPECT_EQ((*declined)->general, 1);
    // In three dimensions work memory of all threads must be worth it.
    Node<double> small({2, 66, 1}), large({2, 66, 70});
    for (auto* node : {&small, &large}) {
        (*node)->threads = 64;
        ASSERT_EQ(node->commit(), ORK_DFT_OK);
    }
    EXPECT_EQ(small->next->engine, ORK_DFT_ENGINE_MIXED);
    large.get()->threads = 1;
    ASSERT_EQ(large.commit(), ORK_DFT_OK);
    EXPECT_EQ(large->next->engine, ORK_DFT_ENGINE_BATCHED);
}

TEST_F(Nodes, CommitSetsEntriesStepsAndDimensions)
{
    const auto check = [](auto& node, bool in_place, bool split, ork_dft_compute* forward, ork_dft_compute* backward) {
        node->placement = in_place ? ORK_DFT_INPLACE : ORK_DFT_NOT_INPLACE;
        node->storage.complex_storage = split ? ORK_DFT_REAL_REAL : ORK_DFT_COMPLEX_COMPLEX;
        ASSERT_EQ(node.commit(), ORK_DFT_OK);
        EXPECT_EQ(node->forward, forward);
        EXPECT_EQ(node->backward, backward);
        EXPECT_EQ(node->input_step, (in_place ? 1 : 2) * (split ? 2 : 1));
        EXPECT_EQ(node->output_step, node->input_step);
    };
    for (const bool split : {false, true}) {
        Node<double> z({12});
        check(z, true, split, ork_dft_nx2_xzforward, ork_dft_nx2_xzbackward);
        check(z, false, split, ork_dft_nx2_xzforward_out, ork_dft_nx2_xzbackward_out);
        Node<float> c({12});
        check(c, true, split, ork_dft_nx2_xcforward, ork_dft_nx2_xcbackward);
        check(c, false, split, ork_dft_nx2_xcforward_out, ork_dft_nx2_xcbackward_out);
    }
    Node<double> z({6, 10});
    z->option = 77, z->scales.forward = 0.5, z->workspace = ORK_DFT_AVOID, z->transforms = 1;
    check(z, true, false, ork_dft_nx2_xzforward, ork_dft_nx2_xzbackward);
    EXPECT_EQ(z->two_d, ork_dft_nx2_xzdft2d);
    check(z, false, false, ork_dft_nx2_xzforward_out, ork_dft_nx2_xzbackward_out);
    EXPECT_EQ(z->two_d, ork_dft_nx2_xzdft2d_out);
    EXPECT_EQ(z->next->status, ORK_DFT_COMMITTED);
    EXPECT_EQ(z->next->option, 77);
    EXPECT_EQ(z->next->scales.forward, 0.5);
    EXPECT_EQ(z->next->workspace, ORK_DFT_AVOID);
    EXPECT_EQ(z->next->placement, ORK_DFT_NOT_INPLACE);
    EXPECT_EQ(z->next->index, 1);
    EXPECT_GE(z->workspace_bytes, z->next->workspace_bytes);
    Node<float> cube({3, 4, 5});
    ASSERT_EQ(cube.commit(), ORK_DFT_OK);
    EXPECT_EQ(cube->two_d, nullptr);
    Node<double> real({6, 10}, ORK_DFT_REAL);
    real->dimensions[1].input_stride = 8, real->dimensions[1].output_stride = 4;
    ASSERT_EQ(real.commit(), ORK_DFT_OK);
    EXPECT_EQ(real->two_d_forward, ork_dft_nx2_xdzzdft2d);
    EXPECT_EQ(real->two_d_backward, ork_dft_nx2_xzzddft2d);
    real->storage.conjugate_even_storage = ORK_DFT_COMPLEX_REAL;
    ASSERT_EQ(real.commit(), ORK_DFT_OK);
    EXPECT_EQ(real->two_d_forward, ork_dft_nx2_xdzdft2d);
    EXPECT_EQ(real->two_d_backward, ork_dft_nx2_xzddft2d);
}

TEST_F(Nodes, WithTheSettingsFlagOnlyTheStatusIsSet)
{
    Node<double> node({100});
    node.settings().word[6] = 1;
    ASSERT_EQ(node.commit(), ORK_DFT_OK);
    EXPECT_EQ(node->status, ORK_DFT_COMMITTED);
    EXPECT_EQ(node->engine, ORK_DFT_ENGINE_ALTERNATIVE);
    EXPECT_EQ(node->forward, nullptr);
    EXPECT_EQ(node->input_step, 0);
    std::vector<double> x = uniform_values<double>(200), y = x;
    ASSERT_EQ(node.compute_in_pieces(ORK_DFT_FORWARD, {x.data()}, 1), ORK_DFT_OK);
    Node<double> plain({100});
    ASSERT_EQ(plain.commit(), ORK_DFT_OK);
    ASSERT_EQ(plain.compute_in_pieces(ORK_DFT_FORWARD, {y.data()}, 1), ORK_DFT_OK);
    EXPECT_EQ(x, y);
}

TEST_F(Nodes, OneTransformOnSeveralThreadsIsPlannedByTheCore)
{
    std::vector<float> x(200);
    Node<float> node({100});
    node->threads = 2;
    core->threaded_commit_threads = 3;
    ASSERT_EQ(node.commit(), ORK_DFT_OK);
    EXPECT_EQ(core->threaded_commits, 1);
    EXPECT_EQ(node->threads, 3);
    EXPECT_EQ(node.compute(ORK_DFT_FORWARD, {x.data()}), ORK_DFT_OK);

    // A core that plans nothing: committed, and every entry says so.
    core->threaded_commit_plans = false;
    ASSERT_EQ(node.commit(), ORK_DFT_OK);
    EXPECT_EQ(node->status, ORK_DFT_COMMITTED);
    EXPECT_EQ(node.compute(ORK_DFT_FORWARD, {x.data()}), ORK_DFT_NOT_PLANNED);
    EXPECT_EQ(node.compute(ORK_DFT_BACKWARD, {x.data()}), ORK_DFT_NOT_PLANNED);
    core->threaded_commit_status = 5;
    node->threads = 2, node->thread_limit = 4;
    EXPECT_EQ(node.commit(), 5);
    EXPECT_EQ(node->threads, 2);
    EXPECT_EQ(node->thread_limit, 4);
    EXPECT_NE(node->status, ORK_DFT_COMMITTED);

    // Several transforms, or one thread, are planned here.
    const int asked = core->threaded_commits;
    node->transforms = 2, node->input_distance = 100;
    EXPECT_EQ(node.commit(), ORK_DFT_OK);
    node->transforms = 1, node->threads = 1;
    EXPECT_EQ(node.commit(), ORK_DFT_OK);
    // Of several dimensions only the entry for one looks at the number of transforms alone.
    Node<double> matrix({4, 5});
    matrix->threads = 2;
    EXPECT_EQ(matrix.commit(), ORK_DFT_OK);
    EXPECT_EQ(core->threaded_commits, asked);
    EXPECT_EQ(ork_dft_nx2_commit_descriptor_core_d_c2c_1d(matrix.get()), 5);
    EXPECT_EQ(core->threaded_commits, asked + 1);
}

TEST_F(Nodes, OfAnotherKindThanTheEntryAreRefused)
{
    Node<double> node({8});
    EXPECT_EQ(ork_dft_nx2_commit_descriptor_core_s_c2c_1d(node.get()), ORK_DFT_INCONSISTENT);
    EXPECT_EQ(ork_dft_nx2_commit_descriptor_core_d_r2c_1d(node.get()), ORK_DFT_INCONSISTENT);
    EXPECT_EQ(node->status, ORK_DFT_UNCOMMITTED);
    EXPECT_EQ(node->plan, nullptr);
}

TEST_F(Nodes, UnknownPackedFormatsAreUnsupported)
{
    for (const int format : {53, 57, 0, -1}) {
        Node<double> node({8}, ORK_DFT_REAL);
        node->storage.conjugate_even_storage = ORK_DFT_COMPLEX_REAL;
        node->packed_format = format;
        node->threads = 7, node->thread_limit = 9;
        EXPECT_EQ(node.commit(), ORK_DFT_UNSUPPORTED);
        EXPECT_EQ(node->threads, 7);
        EXPECT_EQ(node->thread_limit, 9);
        EXPECT_NE(node->status, ORK_DFT_COMMITTED);
        EXPECT_EQ(core->live_objects, 1);                               // the node
        node->storage.conjugate_even_storage = ORK_DFT_COMPLEX_COMPLEX; // the format does not matter then
        EXPECT_EQ(node.commit(), ORK_DFT_OK);
    }
}

// A failure at every allocation of a commit: status 1, nothing kept, threads as they were; then it works.
template <class R>
void fail_everywhere(FreshCore& core, Node<R>& node)
{
    node->threads = 1, node->thread_limit = 5;
    const int before = core->live_objects;
    ASSERT_EQ(node.commit(), ORK_DFT_OK); // an older plan, which goes first
    int failures = 0;
    for (int at = 1; at < 200; ++at) {
        core->fail_allocation_at = at;
        const int status = node.commit();
        if (core->fail_allocation_at > 0) { // not reached
            core->fail_allocation_at = 0;
            EXPECT_EQ(status, ORK_DFT_OK);
            break;
        }
        // A plan that only a better one needed may be missing.
        if (status == ORK_DFT_OK) continue;
        ++failures;
        EXPECT_EQ(status, ORK_DFT_NO_MEMORY) << at;
        EXPECT_EQ(core->live_objects, before) << at;
        EXPECT_NE(node->status, ORK_DFT_COMMITTED);
        EXPECT_EQ(node->forward, nullptr);
        EXPECT_EQ(node->thread_limit, 5);
        EXPECT_EQ(node->threads, 1);
    }
    EXPECT_GE(failures, 1);
    ASSERT_EQ(node.commit(), ORK_DFT_OK);
    EXPECT_EQ(core->live_allocations, 0);
    EXPECT_EQ(core->live_work, 0);
}

TEST_F(Nodes, FailAtEveryAllocationOfACommit)
{
    for (const int domain : {ORK_DFT_COMPLEX, ORK_DFT_REAL})
        for (const Ints& lengths : {Ints{60}, Ints{64}, Ints{1009}, Ints{3000}, Ints{6, 66, 35}}) {
            Node<double> z(lengths, domain);
            fail_everywhere(core, z);
            Node<float> c(lengths, domain);
            fail_everywhere(core, c);
        }
    Node<double> batch({66});
    batch->transforms = 9, batch->input_distance = 66;
    fail_everywhere(core, batch);
    Node<double> four_step({144});
    four_step->workspace = ORK_DFT_AVOID;
    fail_everywhere(core, four_step);
    Node<float> packed({12, 10}, ORK_DFT_REAL);
    packed->storage.conjugate_even_storage = ORK_DFT_COMPLEX_REAL;
    fail_everywhere(core, packed);
}

TEST_F(Nodes, FailWithoutWorkMemoryAndLeaveNone)
{
    Node<double> node({8191}, ORK_DFT_COMPLEX); // long enough to need more than the stack
    ASSERT_EQ(node.commit(), ORK_DFT_OK);
    std::vector<double> x = uniform_values<double>(2 * 8191), y = x;
    for (int at = 1; at < 20; ++at) {
        core->fail_allocation_at = at;
        const int status = node.compute(ORK_DFT_FORWARD, {x.data()});
        EXPECT_EQ(core->live_work, 0);
        EXPECT_EQ(core->live_allocations, 0);
        if (core->fail_allocation_at > 0) {
            EXPECT_GT(at, 1);
            EXPECT_EQ(status, ORK_DFT_OK);
            break;
        }
        EXPECT_EQ(status, ORK_DFT_NO_MEMORY);
    }
    core->fail_allocation_at = 0;
}

} // namespace
} // namespace ork::test
