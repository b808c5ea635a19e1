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

} // namespace ork::blas::shapes
// clang-format on
