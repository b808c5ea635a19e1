// SPDX-License-Identifier: MIT
// C <- alpha op(A) op(B) + beta C of 8- or 16-bit integers with 32-bit C, alpha and beta, exact modulo 2^32. Both are
// widened to 16 bits: pmaddwd then multiplies and adds two at a time without losing a bit, where pmaddubsw would have
// to saturate 255 * 127 + 255 * 127.
#include <cstddef>

#include "blas/gemm/strips.h"
#include "blas/reduced/pack_words.h"
#include "frame/core_imports.h"
#include "frame/export.h"

namespace ork::reduced {

using gemm::columns_of;
using gemm::Op;
using gemm::rows_of;

using Sum = std::uint32_t; // signed integers modulo 2^32

// C <- beta C; beta = 0 does not read C.
void scale(Int m, Int n, Sum beta, Sum* c, Int ldc)
{
    const __m128i factor = _mm_set1_epi32(static_cast<int>(beta));
    for (Int j = 0; j < n; ++j, c += ldc) {
        Int i = 0;
        for (; i + 4 <= m; i += 4) {
            __m128i* x = reinterpret_cast<__m128i*>(c + i);
            _mm_storeu_si128(x, beta == 0 ? __m128i{} : _mm_mullo_epi32(_mm_loadu_si128(x), factor));
        }
        for (; i < m; ++i) c[i] = beta == 0 ? 0 : beta * c[i];
    }
}

template <class A, class B>
struct IntegerProduct {
    Int m, n, k;
    Sum alpha;
    Operand<A> a;
    Operand<B> b;
    Sum* c;
    Int ldc;
};

// Without work buffers.
template <class A, class B>
void add_plainly(const IntegerProduct<A, B>& p)
{
    for (Int j = 0; j < p.n; ++j)
        for (Int i = 0; i < p.m; ++i) {
            Sum sum = 0;
            for (Int l = 0; l < p.k; ++l) sum += static_cast<Sum>(Int(*p.a.at(i, l)) * *p.b.at(j, l));
            p.c[i + j * p.ldc] += p.alpha * sum;
        }
}

template <class A, class B>
void add_product(const IntegerProduct<A, B>& p)
{
    constexpr Int most_rows = 640, most_columns = 2048, most_depth = 512;
    const auto blocked = [](Int size, Int most, Int unit) { return round_up(size < most ? size : most, unit); };
    const Int mb = blocked(p.m, most_rows, 8), nb = blocked(p.n, most_columns, 8), kb = blocked(p.k, most_depth, 8);
    const Int a_stride = Unit::a_step * (kb / 2), b_stride = Unit::b_step * (kb / 2);
    const Int a_bytes = round_up(mb / 4 * a_stride * Int(sizeof(WordPair)), 4096);
    const Int b_bytes = nb / 8 * b_stride * Int(sizeof(WordPair));
    void* base =
        p.m * p.n * p.k < 4096 ? nullptr : ork_serv_allocate(static_cast<std::size_t>(a_bytes + b_bytes), 4096);
    if (base == nullptr) return add_plainly(p);
    auto* packed_a = static_cast<WordPair*>(base);
    auto* packed_b = reinterpret_cast<WordPair*>(static_cast<char*>(base) + a_bytes);
    for (Int j = 0; j < p.n; j += nb)
        for (Int l = 0; l < p.k; l += kb) {
            const Int columns = p.n - j < nb ? p.n - j : nb, depth = p.k - l < kb ? p.k - l : kb;
            const Int steps = round_up((depth + 1) / 2, Unit::k);
            pack_columns(p.b.from(j, l), columns, depth, packed_b, b_stride);
            for (Int i = 0; i < p.m; i += mb) {
                const Int rows = p.m - i < mb ? p.m - i : mb;
                pack_rows(p.a.from(i, l), rows, depth, packed_a, a_stride);
                Sum* c = p.c + i + j * p.ldc;
                if (p.alpha == 1) {
                    gemm::multiply_packed<gemm::Finish{false, true, false}, gemm::Arrangement::broadcast>(
                        rows, columns, steps, packed_a, a_stride, packed_b, b_stride, reinterpret_cast<WordPair*>(c),
                        p.ldc);
                    continue;
                }
                gemm::multiply_strips(rows, columns, steps, packed_a, a_stride, packed_b, b_stride,
                                      [&](Int row, Int count, Int column, Int width, const WordPair* sums) {
                                          for (Int q = 0; q < width; ++q)
                                              for (Int r = 0; r < count; ++r)
                                                  c[row + r + (column + q) * p.ldc] +=
                                                      p.alpha * std::bit_cast<Sum>(sums[r + q * gemm::strip_rows]);
                                      });
            }
        }
    ork_serv_deallocate(base);
}

template <class A, class B>
void integer_gemm(char transa, char transb, Int m, Int n, Int k, std::int32_t alpha, const A* a, Int lda, const B* b,
                  Int ldb, std::int32_t beta, std::int32_t* c, Int ldc)
{
    if (m <= 0 || n <= 0) return;
    Sum* sums = reinterpret_cast<Sum*>(c);
    if (beta != 1) scale(m, n, static_cast<Sum>(beta), sums, ldc);
    if (alpha == 0 || k <= 0) return;
    add_product(IntegerProduct<A, B>{m, n, k, static_cast<Sum>(alpha), rows_of(Op(transa), a, lda),
                                     columns_of(Op(transb), b, ldb), sums, ldc});
}

} // namespace ork::reduced

using Ptr = const std::int64_t*;
using Letter = const char*;
using Scalar = const std::int32_t*;

#define MEMBER(name, A, B)                                                                                             \
    ORK_EXPORT void ork_blas_nx2_xgemm_##name(Letter transa, Letter transb, Ptr m, Ptr n, Ptr k, Scalar alpha,         \
                                              const A* a, Ptr lda, const B* b, Ptr ldb, Scalar beta, std::int32_t* c,  \
                                              Ptr ldc)                                                                 \
    {                                                                                                                  \
        ork::reduced::integer_gemm(*transa, *transb, *m, *n, *k, *alpha, a, *lda, b, *ldb, *beta, c, *ldc);            \
    }
MEMBER(s8u8s32, std::int8_t, std::uint8_t)
MEMBER(s16s16s32, std::int16_t, std::int16_t)
