// SPDX-License-Identifier: MIT
#include "sparse/convert.h"

#include "sparse/handle/exports.h"
#include "sparse/to_blocks.h"

namespace ork::sparse {

ORK_SPARSE_HANDLE_EXPORT(HandleCalls, int, convert_csr)(const Matrix* a, int op, int by_columns, Matrix** result)
{
    return convert_lines<Int>(*a, op, by_columns != 0, result);
}

ORK_SPARSE_HANDLE_EXPORT(HandleCalls, int, convert_bsr)
(const Matrix* a, int op, Int block, int layout, Matrix** result)
{
    return convert_blocks<Int>(*a, op, block, layout, result);
}

} // namespace ork::sparse
