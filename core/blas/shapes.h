// SPDX-License-Identifier: MIT
// The argument lists of the BLAS, in Fortran order. One shape serves every routine that shares it; routines.inc says
// which routine has which.
#pragma once

#include "blas/argument.h"

// clang-format off
namespace ork::blas::shapes {

// Level 1
inline constexpr Argument axpy[] = {count("n"), scalar("alpha"), input("x"), stride("incx"), output("y"), stride("incy")};
inline constexpr Argument axpby[] = {count("n"), scalar("alpha"), input("x"), stride("incx"), scalar("beta"), output("y"), stride("incy")};
inline constexpr Argument scal[] = {count("n"), scalar("alpha"), output("x"), stride("incx")};
inline constexpr Argument scal_real[] = {count("n"), scalar("alpha", Element::real), output("x"), stride("incx")};
inline constexpr Argument copy[] = {count("n"), input("x"), stride("incx"), output("y"), stride("incy")};
inline constexpr Argument swap[] = {count("n"), output("x"), stride("incx"), output("y"), stride("incy")};
inline constexpr Argument dot[] = {count("n"), input("x"), stride("incx"), input("y"), stride("incy")};
inline constexpr Argument sdsdot[] = {count("n"), scalar("sb"), input("x"), stride("incx"), input("y"), stride("incy")};
inline constexpr Argument reduce[] = {count("n"), input("x"), stride("incx")};
inline constexpr Argument rot[] = {count("n"), output("x"), stride("incx"), output("y"), stride("incy"), scalar("c", Element::real), scalar("s")};
inline constexpr Argument rot_real[] = {count("n"), output("x"), stride("incx"), output("y"), stride("incy"), scalar("c", Element::real), scalar("s", Element::real)};
inline constexpr Argument rotm[] = {count("n"), output("x"), stride("incx"), output("y"), stride("incy"), input("param")};
inline constexpr Argument rotg[] = {output("a"), output("b"), output("c"), output("s")};
inline constexpr Argument rotg_complex[] = {output("a"), input("b"), output("c", Element::real), output("s")};
inline constexpr Argument rotmg[] = {output("d1"), output("d2"), output("x1"), scalar("y1"), output("param")};
inline constexpr Argument cabs1[] = {input("z")};

// Sparse vectors
inline constexpr Argument axpyi[] = {count("nz"), scalar("alpha"), compressed("x", false), indices("indx"), indexed("y", true)};
inline constexpr Argument doti[] = {count("nz"), compressed("x", false), indices("indx"), indexed("y", false)};
inline constexpr Argument gthr[] = {count("nz"), indexed("y", false), compressed("x", true), indices("indx")};
inline constexpr Argument gthrz[] = {count("nz"), indexed("y", true), compressed("x", true), indices("indx")};
inline constexpr Argument sctr[] = {count("nz"), compressed("x", false), indices("indx"), indexed("y", true)};
inline constexpr Argument roti[] = {count("nz"), compressed("x", true), indices("indx"), indexed("y", true), scalar("c"), scalar("s")};

// Level 2. By rows the matrix is stored as its transpose. A Hermitian one is conjugated by that, so hemv and its like are
// made of conjugates always, the routines with three operations only for the conjugate transpose; for real types nothing
// is conjugated.
inline constexpr Argument gemv[] = {
    transposition("trans", "NTC").turned_by_rows(),
    size("m").by_rows("n"),
    size("n").by_rows("m"),
    scalar("alpha").conjugated_by_rows(),
    input("a"),
    lead("lda", {.plain = "m"}),
    input("x").conjugated_by_rows({.option = "trans", .plain = "n", .other = "m"}),
    increment("incx"),
    scalar("beta").conjugated_by_rows(),
    output("y").conjugated_by_rows({.option = "trans", .plain = "m", .other = "n"}),
    increment("incy"),
};
inline constexpr Argument gemv_real[] = {
    transposition("trans", "NTC").turned_by_rows(),
    size("m").by_rows("n"),
    size("n").by_rows("m"),
    scalar("alpha"),
    input("a", Element::real),
    lead("lda", {.plain = "m"}),
    input("x"),
    increment("incx"),
    scalar("beta"),
    output("y"),
    increment("incy"),
};
inline constexpr Argument gbmv[] = {
    transposition("trans", "NTC").turned_by_rows(),
    size("m").by_rows("n"),
    size("n").by_rows("m"),
    band("kl").by_rows("ku"),
    band("ku").by_rows("kl"),
    scalar("alpha").conjugated_by_rows(),
    input("a"),
    lead("lda", {.plain = "kl", .plus = "ku", .add = 1}),
    input("x").conjugated_by_rows({.option = "trans", .plain = "n", .other = "m"}),
    increment("incx"),
    scalar("beta").conjugated_by_rows(),
    output("y").conjugated_by_rows({.option = "trans", .plain = "m", .other = "n"}),
    increment("incy"),
};
inline constexpr Argument symv[] = { // and hemv
    triangle("uplo"),
    size("n"),
    scalar("alpha").conjugated_by_rows(),
    input("a"),
    lead("lda", {.plain = "n"}),
    input("x").conjugated_by_rows({.plain = "n"}),
    increment("incx"),
    scalar("beta").conjugated_by_rows(),
    output("y").conjugated_by_rows({.plain = "n"}),
    increment("incy"),
};
inline constexpr Argument sbmv[] = { // and hbmv
    triangle("uplo"),
    size("n"),
    band("k"),
    scalar("alpha").conjugated_by_rows(),
    input("a"),
    lead("lda", {.plain = "k", .add = 1}),
    input("x").conjugated_by_rows({.plain = "n"}),
    increment("incx"),
    scalar("beta").conjugated_by_rows(),
    output("y").conjugated_by_rows({.plain = "n"}),
    increment("incy"),
};
inline constexpr Argument spmv[] = { // and hpmv
    triangle("uplo"),
    size("n"),
    scalar("alpha").conjugated_by_rows(),
    input("ap"),
    input("x").conjugated_by_rows({.plain = "n"}),
    increment("incx"),
    scalar("beta").conjugated_by_rows(),
    output("y").conjugated_by_rows({.plain = "n"}),
    increment("incy"),
};
inline constexpr Argument trmv[] = { // and trsv
    triangle("uplo"),
    transposition("trans", "NTC").turned_by_rows(),
    diagonal("diag"),
    size("n"),
    input("a"),
    lead("lda", {.plain = "n"}),
    output("x").conjugated_by_rows({.plain = "n"}),
    increment("incx"),
};
inline constexpr Argument tbmv[] = { // and tbsv
    triangle("uplo"),
    transposition("trans", "NTC").turned_by_rows(),
    diagonal("diag"),
    size("n"),
    band("k"),
    input("a"),
    lead("lda", {.plain = "k", .add = 1}),
    output("x").conjugated_by_rows({.plain = "n"}),
    increment("incx"),
};
inline constexpr Argument tpmv[] = { // and tpsv
    triangle("uplo"),
    transposition("trans", "NTC").turned_by_rows(),
    diagonal("diag"),
    size("n"),
    input("ap"),
    output("x").conjugated_by_rows({.plain = "n"}),
    increment("incx"),
};
// By rows A^T <- alpha y x^T + A^T.
inline constexpr Argument ger[] = {
    size("m").by_rows("n"),
    size("n").by_rows("m"),
    scalar("alpha"),
    input("x").by_rows("y"),
    increment("incx").by_rows("incy"),
    input("y").by_rows("x"),
    increment("incy").by_rows("incx"),
    output("a"),
    lead("lda", {.plain = "m"}),
};
// By rows A^T <- alpha conj(y) x^T + A^T, where x is the conjugate of a conjugate.
inline constexpr Argument gerc[] = {
    size("m").by_rows("n"),
    size("n").by_rows("m"),
    scalar("alpha"),
    input("x").by_rows("y").conjugated_by_rows({.plain = "m"}),
    increment("incx").by_rows("incy"),
    input("y").by_rows("x").conjugated_by_rows({.plain = "n"}),
    increment("incy").by_rows("incx"),
    output("a"),
    lead("lda", {.plain = "m"}),
};
inline constexpr Argument syr[] = { // and her
    triangle("uplo"),
    size("n"),
    scalar("alpha", Element::real),
    input("x").conjugated_by_rows({.plain = "n"}),
    increment("incx"),
    output("a"),
    lead("lda", {.plain = "n"}),
};
inline constexpr Argument spr[] = { // and hpr
    triangle("uplo"),
    size("n"),
    scalar("alpha", Element::real),
    input("x").conjugated_by_rows({.plain = "n"}),
    increment("incx"),
    output("ap"),
};
inline constexpr Argument syr2[] = { // and her2
    triangle("uplo"),
    size("n"),
    scalar("alpha").conjugated_by_rows(),
    input("x").conjugated_by_rows({.plain = "n"}),
    increment("incx"),
    input("y").conjugated_by_rows({.plain = "n"}),
    increment("incy"),
    output("a"),
    lead("lda", {.plain = "n"}),
};
inline constexpr Argument spr2[] = { // and hpr2
    triangle("uplo"),
    size("n"),
    scalar("alpha").conjugated_by_rows(),
    input("x").conjugated_by_rows({.plain = "n"}),
    increment("incx"),
    input("y").conjugated_by_rows({.plain = "n"}),
    increment("incy"),
    output("ap"),
};
// By rows the two products change places.
inline constexpr Argument gem2v[] = {
    size("m").by_rows("n"),
    size("n").by_rows("m"),
    scalar("alpha").conjugated_by_rows(),
    input("a"),
    lead("lda", {.plain = "m"}),
    input("x1").by_rows("x2").conjugated_by_rows({.plain = "n"}),
    increment("incx1").by_rows("incx2"),
    input("x2").by_rows("x1").conjugated_by_rows({.plain = "m"}),
    increment("incx2").by_rows("incx1"),
    scalar("beta").conjugated_by_rows(),
    output("y1").by_rows("y2").conjugated_by_rows({.plain = "m"}),
    increment("incy1").by_rows("incy2"),
    output("y2").by_rows("y1").conjugated_by_rows({.plain = "n"}),
    increment("incy2").by_rows("incy1"),
};

// Level 3. By rows C^T = alpha op(B)^T op(A)^T + beta C^T: A and B change places, and so do m and n.
inline constexpr Argument gemm[] = {
    transposition("transa", "NTC").by_rows("transb"),
    transposition("transb", "NTC").by_rows("transa"),
    size("m").by_rows("n"),
    size("n").by_rows("m"),
    size("k"),
    scalar("alpha"),
    input("a").by_rows("b"),
    lead("lda", {.option = "transa", .plain = "m", .other = "k"}).by_rows("ldb"),
    input("b").by_rows("a"),
    lead("ldb", {.option = "transb", .plain = "k", .other = "n"}).by_rows("lda"),
    scalar("beta"),
    output("c"),
    lead("ldc", {.plain = "m"}),
};
inline constexpr Argument gemmt[] = {
    triangle("uplo"),
    transposition("transa", "NTC").by_rows("transb"),
    transposition("transb", "NTC").by_rows("transa"),
    size("n"),
    size("k"),
    scalar("alpha"),
    input("a").by_rows("b"),
    lead("lda", {.option = "transa", .plain = "n", .other = "k"}).by_rows("ldb"),
    input("b").by_rows("a"),
    lead("ldb", {.option = "transb", .plain = "k", .other = "n"}).by_rows("lda"),
    scalar("beta"),
    output("c"),
    lead("ldc", {.plain = "n"}),
};
// By rows C^T = alpha B^T A^T + beta C^T, the triangular matrix likewise: the other side, the other triangle.
inline constexpr Argument symm[] = { // and hemm
    side("side"),
    triangle("uplo"),
    size("m").by_rows("n"),
    size("n").by_rows("m"),
    scalar("alpha"),
    input("a"),
    lead("lda", {.option = "side", .plain = "m", .other = "n"}),
    input("b"),
    lead("ldb", {.plain = "m"}),
    scalar("beta"),
    output("c"),
    lead("ldc", {.plain = "m"}),
};
inline constexpr Argument trmm[] = { // and trsm
    side("side"),
    triangle("uplo"),
    transposition("transa", "NTC"),
    diagonal("diag"),
    size("m").by_rows("n"),
    size("n").by_rows("m"),
    scalar("alpha"),
    input("a"),
    lead("lda", {.option = "side", .plain = "m", .other = "n"}),
    output("b"),
    lead("ldb", {.plain = "m"}),
};
inline constexpr Argument syrk[] = { // real
    triangle("uplo"),
    transposition("trans", "NTC").turned_by_rows(),
    size("n"),
    size("k"),
    scalar("alpha"),
    input("a"),
    lead("lda", {.option = "trans", .plain = "n", .other = "k"}),
    scalar("beta"),
    output("c"),
    lead("ldc", {.plain = "n"}),
};
inline constexpr Argument syrk_complex[] = {
    triangle("uplo"),
    transposition("trans", "NT").turned_by_rows(),
    size("n"),
    size("k"),
    scalar("alpha"),
    input("a"),
    lead("lda", {.option = "trans", .plain = "n", .other = "k"}),
    scalar("beta"),
    output("c"),
    lead("ldc", {.plain = "n"}),
};
inline constexpr Argument herk[] = {
    triangle("uplo"),
    transposition("trans", "NC").turned_by_rows(),
    size("n"),
    size("k"),
    scalar("alpha", Element::real),
    input("a"),
    lead("lda", {.option = "trans", .plain = "n", .other = "k"}),
    scalar("beta", Element::real),
    output("c"),
    lead("ldc", {.plain = "n"}),
};
inline constexpr Argument syr2k[] = { // real
    triangle("uplo"),
    transposition("trans", "NTC").turned_by_rows(),
    size("n"),
    size("k"),
    scalar("alpha"),
    input("a"),
    lead("lda", {.option = "trans", .plain = "n", .other = "k"}),
    input("b"),
    lead("ldb", {.option = "trans", .plain = "n", .other = "k"}),
    scalar("beta"),
    output("c"),
    lead("ldc", {.plain = "n"}),
};
inline constexpr Argument syr2k_complex[] = {
    triangle("uplo"),
    transposition("trans", "NT").turned_by_rows(),
    size("n"),
    size("k"),
    scalar("alpha"),
    input("a"),
    lead("lda", {.option = "trans", .plain = "n", .other = "k"}),
    input("b"),
    lead("ldb", {.option = "trans", .plain = "n", .other = "k"}),
    scalar("beta"),
    output("c"),
    lead("ldc", {.plain = "n"}),
};
inline constexpr Argument her2k[] = { // by rows the terms change places, and so does alpha with its conjugate
    triangle("uplo"),
    transposition("trans", "NC").turned_by_rows(),
    size("n"),
    size("k"),
    scalar("alpha").conjugated_by_rows(),
    input("a"),
    lead("lda", {.option = "trans", .plain = "n", .other = "k"}),
    input("b"),
    lead("ldb", {.option = "trans", .plain = "n", .other = "k"}),
    scalar("beta", Element::real),
    output("c"),
    lead("ldc", {.plain = "n"}),
};
inline constexpr Argument gemm_batch_strided[] = {
    transposition("transa", "NTC").by_rows("transb"),
    transposition("transb", "NTC").by_rows("transa"),
    size("m").by_rows("n"),
    size("n").by_rows("m"),
    size("k"),
    scalar("alpha"),
    input("a").by_rows("b"),
    lead("lda", {.option = "transa", .plain = "m", .other = "k"}).by_rows("ldb"),
    size("stridea").by_rows("strideb"),
    input("b").by_rows("a"),
    lead("ldb", {.option = "transb", .plain = "k", .other = "n"}).by_rows("lda"),
    size("strideb").by_rows("stridea"),
    scalar("beta"),
    output("c"),
    lead("ldc", {.plain = "m"}),
    size("stridec"),
    size("batch_size"),
};

// Operands of other types than C. Without a binding by rows: there the operands would change places.
inline constexpr Argument gemm_real[] = {
    transposition("transa", "NTC"),
    transposition("transb", "NTC"),
    size("m"),
    size("n"),
    size("k"),
    scalar("alpha"),
    input("a", Element::real),
    lead("lda", {.option = "transa", .plain = "m", .other = "k"}),
    input("b"),
    lead("ldb", {.option = "transb", .plain = "k", .other = "n"}),
    scalar("beta"),
    output("c"),
    lead("ldc", {.plain = "m"}),
};
inline constexpr Argument gemm_bytes[] = {
    transposition("transa", "NTC"),
    transposition("transb", "NTC"),
    size("m"),
    size("n"),
    size("k"),
    scalar("alpha"),
    input("a", Element::signed_byte),
    lead("lda", {.option = "transa", .plain = "m", .other = "k"}),
    input("b", Element::byte),
    lead("ldb", {.option = "transb", .plain = "k", .other = "n"}),
    scalar("beta"),
    output("c"),
    lead("ldc", {.plain = "m"}),
};
inline constexpr Argument gemm_short_words[] = {
    transposition("transa", "NTC"),
    transposition("transb", "NTC"),
    size("m"),
    size("n"),
    size("k"),
    scalar("alpha"),
    input("a", Element::short_word),
    lead("lda", {.option = "transa", .plain = "m", .other = "k"}),
    input("b", Element::short_word),
    lead("ldb", {.option = "transb", .plain = "k", .other = "n"}),
    scalar("beta"),
    output("c"),
    lead("ldc", {.plain = "m"}),
};
inline constexpr Argument gemm_half_words[] = {
    transposition("transa", "NTC"),
    transposition("transb", "NTC"),
    size("m"),
    size("n"),
    size("k"),
    scalar("alpha"),
    input("a", Element::half_word),
    lead("lda", {.option = "transa", .plain = "m", .other = "k"}),
    input("b", Element::half_word),
    lead("ldb", {.option = "transb", .plain = "k", .other = "n"}),
    scalar("beta"),
    output("c"),
    lead("ldc", {.plain = "m"}),
};
inline constexpr Argument gemm_small_floats[] = {
    transposition("transa", "NTC"),
    transposition("transb", "NTC"),
    size("m"),
    size("n"),
    size("k"),
    scalar("alpha"),
    input("a", Element::byte),
    lead("lda", {.option = "transa", .plain = "m", .other = "k"}),
    input("b", Element::byte),
    lead("ldb", {.option = "transb", .plain = "k", .other = "n"}),
    scalar("beta"),
    output("c"),
    lead("ldc", {.plain = "m"}),
};
inline constexpr Argument gemv_bytes[] = {
    transposition("trans", "NTC"),
    size("m"),
    size("n"),
    scalar("alpha"),
    input("a", Element::signed_byte),
    lead("lda", {.plain = "m"}),
    input("x", Element::byte),
    increment("incx"),
    scalar("beta"),
    output("y"),
    increment("incy"),
};
inline constexpr Argument gemv_half_words[] = {
    transposition("trans", "NTC"),
    size("m"),
    size("n"),
    scalar("alpha"),
    input("a", Element::half_word),
    lead("lda", {.plain = "m"}),
    input("x", Element::half_word),
    increment("incx"),
    scalar("beta"),
    output("y"),
    increment("incy"),
};

} // namespace ork::blas::shapes
// clang-format on
