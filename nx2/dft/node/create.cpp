// SPDX-License-Identifier: MIT
// Nodes: made with every default set, and released.
//
// One block of memory holds the head, the nodes of the further dimensions and the arrays of lengths and of scales.
#include <cstring>

#include "dft/node/node.h"
#include "frame/export.h"

namespace ork::dft {
namespace {

struct Backends { // what a creation wrapper stores; its commit among the rest
    std::int32_t precision, domain;
    bool many;
};
constexpr Backends backends[2][2][2] = {
    {{{ORK_DFT_SINGLE, ORK_DFT_COMPLEX, false}, {ORK_DFT_SINGLE, ORK_DFT_COMPLEX, true}},
     {{ORK_DFT_SINGLE, ORK_DFT_REAL, false}, {ORK_DFT_SINGLE, ORK_DFT_REAL, true}}},
    {{{ORK_DFT_DOUBLE, ORK_DFT_COMPLEX, false}, {ORK_DFT_DOUBLE, ORK_DFT_COMPLEX, true}},
     {{ORK_DFT_DOUBLE, ORK_DFT_REAL, false}, {ORK_DFT_DOUBLE, ORK_DFT_REAL, true}}}};

// The block of a node of this rank, beginning with the head.
struct Block {
    std::int64_t nodes, dimensions, scales, bytes; // offsets of the arrays behind the head
    explicit Block(std::int64_t rank)
    {
        constexpr std::int64_t node = (sizeof(ork_dft_node) + 63) / 64 * 64;
        nodes = node;
        dimensions = nodes + (rank > 1 ? rank - 1 : 0) * node;
        scales = dimensions + rank * static_cast<std::int64_t>(sizeof(ork_dft_dimension));
        bytes = scales + rank * static_cast<std::int64_t>(sizeof(ork_dft_scale_record));
    }
};

// Fills a cleared block.
ork_dft_node* with_defaults(char* block, std::int32_t precision, std::int32_t domain, std::int64_t rank,
                            const std::int64_t* lengths, ork_dft_settings* settings)
{
    const Block at(rank);
    auto* head = reinterpret_cast<ork_dft_node*>(block);
    head->dimensions = reinterpret_cast<ork_dft_dimension*>(block + at.dimensions);
    head->scale_records = reinterpret_cast<ork_dft_scale_record*>(block + at.scales);
    std::int64_t size = 1;
    ork_dft_node** link = nullptr;
    for (std::int64_t d = 0; d < rank; ++d) {
        ork_dft_node* node = d == 0 ? head : reinterpret_cast<ork_dft_node*>(block + d * at.nodes);
        if (link != nullptr) *link = node;
        link = &node->next;
        head->dimensions[d] = {lengths[d], size, size, {0, 0}};
        head->scale_records[d].count = 1;
        node->index = d;
        node->length = lengths[d];
        node->stride[0] = node->stride[1] = size;
        size *= lengths[d];
    }
    head->size = size;
    head->status = ORK_DFT_UNCOMMITTED;
    head->domain = {domain, precision};
    head->rank = static_cast<std::int32_t>(rank);
    head->placement = ORK_DFT_INPLACE;
    head->storage = {ORK_DFT_COMPLEX_COMPLEX, ORK_DFT_COMPLEX_COMPLEX, ORK_DFT_REAL_REAL, 0};
    head->packed_format = ORK_DFT_CCS;
    head->workspace = ORK_DFT_ALLOW;
    head->transforms = 1;
    head->scales = {1, 1, 1, 1, 0};
    head->thread_limit = head->threads = 1;
    head->settings = settings;
    head->free = release_plan;
    return head;
}

template <std::int32_t precision, std::int32_t domain, bool many>
std::int64_t set_backends(ork_dft_node* node)
{
    node->backends = &backends[precision == ORK_DFT_DOUBLE][domain == ORK_DFT_REAL][many];
    return ORK_DFT_OK;
}

template <std::int32_t precision, std::int32_t domain, bool many>
std::int64_t create(ork_dft_node** node, std::int64_t rank, const std::int64_t* lengths, ork_dft_settings* settings)
{
    const std::int64_t status = ork_dft_nx2_dfti_create_node(node, precision, domain, rank, lengths, settings);
    return status != ORK_DFT_OK ? status : set_backends<precision, domain, many>(*node);
}

} // namespace
} // namespace ork::dft

using namespace ork::dft;

ORK_EXPORT std::int64_t ork_dft_nx2_dfti_create_node(ork_dft_node** node, std::int32_t precision, std::int32_t domain,
                                                     std::int64_t rank, const std::int64_t* lengths,
                                                     ork_dft_settings* settings)
{
    const std::int64_t bytes = Block(rank).bytes;
    auto* block = static_cast<char*>(ork_serv_calloc(1, static_cast<std::size_t>(bytes), 64, 0));
    if (block == nullptr) {
        // A node that was handed in serves again if it has room.
        if (*node == nullptr || settings == nullptr || settings->word[0] != 1 || (*node)->rank < rank)
            return ORK_DFT_NO_MEMORY;
        release_plan(*node);
        block = reinterpret_cast<char*>(*node);
        std::memset(block, 0, static_cast<std::size_t>(bytes));
    }
    *node = with_defaults(block, precision, domain, rank, lengths, settings);
    return ORK_DFT_OK;
}

ORK_EXPORT std::int64_t ork_dft_nx2_dfti_free_node(ork_dft_node** node)
{
    if (*node == nullptr) return ORK_DFT_OK;
    release_plan(*node);
    ork_serv_free(*node);
    *node = nullptr;
    return ORK_DFT_OK;
}

// Each suffix: precision s or d, domain c or r, one dimension or many.
#define CREATION_1D(suffix, precision, domain)                                                                         \
    ORK_EXPORT std::int64_t ork_dft_nx2_dfti_create_##suffix(ork_dft_node** node, std::int64_t length,                 \
                                                             ork_dft_settings* settings)                               \
    {                                                                                                                  \
        return create<precision, domain, false>(node, 1, &length, settings);                                           \
    }                                                                                                                  \
    ORK_EXPORT std::int64_t ork_dft_nx2_dfti_set_bkdlist_##suffix(ork_dft_node* node)                                  \
    {                                                                                                                  \
        return set_backends<precision, domain, false>(node);                                                           \
    }
#define CREATION_MD(suffix, precision, domain)                                                                         \
    ORK_EXPORT std::int64_t ork_dft_nx2_dfti_create_##suffix(ork_dft_node** node, std::int64_t rank,                   \
                                                             const std::int64_t* lengths, ork_dft_settings* settings)  \
    {                                                                                                                  \
        return create<precision, domain, true>(node, rank, lengths, settings);                                         \
    }                                                                                                                  \
    ORK_EXPORT std::int64_t ork_dft_nx2_dfti_set_bkdlist_##suffix(ork_dft_node* node)                                  \
    {                                                                                                                  \
        return set_backends<precision, domain, true>(node);                                                            \
    }
CREATION_1D(sc1d, ORK_DFT_SINGLE, ORK_DFT_COMPLEX)
CREATION_1D(sr1d, ORK_DFT_SINGLE, ORK_DFT_REAL)
CREATION_1D(dc1d, ORK_DFT_DOUBLE, ORK_DFT_COMPLEX)
CREATION_1D(dr1d, ORK_DFT_DOUBLE, ORK_DFT_REAL)
CREATION_MD(scmd, ORK_DFT_SINGLE, ORK_DFT_COMPLEX)
CREATION_MD(srmd, ORK_DFT_SINGLE, ORK_DFT_REAL)
CREATION_MD(dcmd, ORK_DFT_DOUBLE, ORK_DFT_COMPLEX)
CREATION_MD(drmd, ORK_DFT_DOUBLE, ORK_DFT_REAL)
