// SPDX-License-Identifier: MIT
// Descriptors made, copied and released.
#include <algorithm>

#include "dft/descriptor.h"
#include "dft/kernels.h"
#include "export.h"

namespace ork::dft {
namespace {

constinit ork_dft_settings settings = {}; // none: what a core may ask for by them we have no need of

std::int64_t create_node(const Parameters& p, ork_dft_node** node)
{
    const bool real = p.real();
    if (p.precision == ORK_DFT_SINGLE) {
        if (p.rank == 1)
            return (real ? kernels::dfti_create_sr1d : kernels::dfti_create_sc1d)(node, p.lengths[0], &settings);
        return (real ? kernels::dfti_create_srmd : kernels::dfti_create_scmd)(node, p.rank, p.lengths, &settings);
    }
    if (p.rank == 1)
        return (real ? kernels::dfti_create_dr1d : kernels::dfti_create_dc1d)(node, p.lengths[0], &settings);
    return (real ? kernels::dfti_create_drmd : kernels::dfti_create_dcmd)(node, p.rank, p.lengths, &settings);
}

std::int64_t create(const Parameters& parameters, ork_dft_descriptor** handle)
{
    ork_dft_node* node = nullptr;
    ork_dft_descriptor* descriptor = create_node(parameters, &node) == ORK_DFT_OK ? new_descriptor() : nullptr;
    if (descriptor == nullptr) {
        kernels::dfti_free_node(&node);
        return fail_without_descriptor(ORK_DFT_MEMORY_ERROR, "no memory for a descriptor");
    }
    descriptor->node = node;
    descriptor->parameters = parameters;
    descriptor->state = ork_dft_descriptor::alive;
    *handle = descriptor;
    return ORK_DFT_NO_ERROR;
}

std::int64_t check(std::int64_t precision, std::int64_t domain, std::int64_t rank, const std::int64_t* lengths)
{
    const auto invalid = [](const char* name, std::int64_t value, const char* what) {
        return fail_without_descriptor(ORK_DFT_INVALID_CONFIGURATION, "ORK_DFT_%s = %lld: %s", name,
                                       static_cast<long long>(value), what);
    };
    if (precision != ORK_DFT_SINGLE && precision != ORK_DFT_DOUBLE)
        return invalid("PRECISION", precision, "is none of 35, 36");
    if (domain != ORK_DFT_COMPLEX && domain != ORK_DFT_REAL)
        return invalid("FORWARD_DOMAIN", domain, "is none of 32, 33");
    if (rank < 1 || rank > most_dimensions) return invalid("DIMENSION", rank, "is none of 1 to 7");
    if (lengths == nullptr)
        return fail_without_descriptor(ORK_DFT_INVALID_CONFIGURATION, "ORK_DFT_LENGTHS: the pointer to it is null");
    std::int64_t product = 1;
    for (int d = 0; d < rank; ++d) {
        const auto length = static_cast<long long>(lengths[d]);
        if (length < 1)
            return fail_without_descriptor(ORK_DFT_LENGTH_ERROR, "ORK_DFT_LENGTHS[%d] = %lld: less than 1", d, length);
        if (__builtin_mul_overflow(product, lengths[d], &product) || product >= most_numbers)
            return fail_without_descriptor(ORK_DFT_LENGTH_ERROR,
                                           "ORK_DFT_LENGTHS[%d] = %lld: 2^57 or more numbers with the lengths before",
                                           d, length);
    }
    return ORK_DFT_NO_ERROR;
}

} // namespace
} // namespace ork::dft

using namespace ork::dft;

ORK_EXPORT int64_t ork_dft_create_descriptor(ork_dft_descriptor** handle, int64_t precision, int64_t domain,
                                             int64_t rank, const int64_t* lengths)
{
    if (handle == nullptr) return fail_without_descriptor(ORK_DFT_BAD_DESCRIPTOR, "the pointer to the handle is null");
    *handle = nullptr;
    if (const int64_t status = check(precision, domain, rank, lengths)) return status;
    Parameters parameters;
    parameters.precision = precision;
    parameters.domain = domain;
    parameters.rank = rank;
    std::copy_n(lengths, rank, parameters.lengths);
    return create(parameters, handle);
}

ORK_EXPORT int64_t ork_dft_create_descriptor_1d(ork_dft_descriptor** handle, int64_t precision, int64_t domain,
                                                int64_t length)
{
    return ork_dft_create_descriptor(handle, precision, domain, 1, &length);
}

ORK_EXPORT int64_t ork_dft_copy_descriptor(const ork_dft_descriptor* handle, ork_dft_descriptor** copy)
{
    if (copy == nullptr) return fail_without_descriptor(ORK_DFT_BAD_DESCRIPTOR, "the pointer to the handle is null");
    *copy = nullptr;
    if (!alive(handle)) return fail_without_descriptor(ORK_DFT_BAD_DESCRIPTOR, "what is to be copied is no descriptor");
    return create(handle->parameters, copy);
}

ORK_EXPORT int64_t ork_dft_free_descriptor(ork_dft_descriptor** handle)
{
    if (handle == nullptr || !alive(*handle)) return ORK_DFT_BAD_DESCRIPTOR;
    kernels::dfti_free_node(&(*handle)->node);
    delete_descriptor(*handle);
    *handle = nullptr;
    return ORK_DFT_NO_ERROR;
}

ORK_EXPORT int64_t ork_dft_dfticreatedescriptor_s_1d(ork_dft_descriptor** handle, int64_t domain, int64_t length)
{
    return ork_dft_create_descriptor(handle, ORK_DFT_SINGLE, domain, 1, &length);
}

ORK_EXPORT int64_t ork_dft_dfticreatedescriptor_d_1d(ork_dft_descriptor** handle, int64_t domain, int64_t length)
{
    return ork_dft_create_descriptor(handle, ORK_DFT_DOUBLE, domain, 1, &length);
}

ORK_EXPORT int64_t ork_dft_dfticreatedescriptor_s_md(ork_dft_descriptor** handle, int64_t domain, int64_t rank,
                                                     const int64_t* lengths)
{
    return ork_dft_create_descriptor(handle, ORK_DFT_SINGLE, domain, rank, lengths);
}

ORK_EXPORT int64_t ork_dft_dfticreatedescriptor_d_md(ork_dft_descriptor** handle, int64_t domain, int64_t rank,
                                                     const int64_t* lengths)
{
    return ork_dft_create_descriptor(handle, ORK_DFT_DOUBLE, domain, rank, lengths);
}

ORK_EXPORT int64_t ork_dft_dftifreedescriptor(ork_dft_descriptor** handle) { return ork_dft_free_descriptor(handle); }
