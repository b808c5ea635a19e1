// SPDX-License-Identifier: MIT
#include "sparse/operand.h"

namespace ork::sparse {

ORK_EXPORT HandleCalls<Int>::convert_csr ORK_SPARSE_HANDLE_SYMBOL(convert_csr, ORK_SPARSE_SUFFIX);
ORK_EXPORT HandleCalls<Int>::convert_bsr ORK_SPARSE_HANDLE_SYMBOL(convert_bsr, ORK_SPARSE_SUFFIX);
ORK_EXPORT HandleCalls<Int>::optimize ORK_SPARSE_HANDLE_SYMBOL(optimize, ORK_SPARSE_SUFFIX);

template <class I>
int Operand<I>::take(const Matrix& a, const Wanted& w)
{
    const bool complex = a.precision == 'c' || a.precision == 'z', transposes = w.op == 1 || w.op == 2;
    const bool conjugates = complex && w.op >= 2, blocks = a.format == Format::bsr && !w.numbers;
    const int layout = w.layout < 0 ? a.layout : w.layout;
    const bool here = blocks ? !transposes && layout == a.layout
                             : (a.format == Format::csr || a.format == Format::csc) &&
                                   ((a.format == Format::csc) != transposes) == w.columns;
    lines_ = &a;
    if (here && !conjugates && (a.sorted || !w.ascending)) return record_done;
    const int status = blocks ? ORK_SPARSE_HANDLE_SYMBOL(convert_bsr, ORK_SPARSE_SUFFIX)(
                                    &a, w.op, static_cast<I>(a.block), layout, &copy_)
                              : ORK_SPARSE_HANDLE_SYMBOL(convert_csr, ORK_SPARSE_SUFFIX)(&a, w.op, w.columns, &copy_);
    if (status != record_done) return status;
    lines_ = copy_;
    if (!w.ascending || copy_->sorted) return record_done;
    return ORK_SPARSE_HANDLE_SYMBOL(optimize, ORK_SPARSE_SUFFIX)(copy_, 0);
}

template class Operand<Int>;

} // namespace ork::sparse
