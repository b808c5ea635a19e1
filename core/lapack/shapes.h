// SPDX-License-Identifier: MIT
// The argument lists of LAPACK, in Fortran order. One shape serves every routine that shares it; routines.inc says
// which routine has which.
#pragma once

#include "lapack/argument.h"

// clang-format off
namespace ork::lapack::shapes {

inline constexpr Argument getrf[] = {size("m"), size("n"), output("a"), lead("lda", {"m"}), pivots_out("ipiv"), info("info")};
inline constexpr Argument getrfnp[] = {size("m"), size("n"), output("a"), lead("lda", {"m"}), info("info")};
inline constexpr Argument getrs[] = {letter("trans", "NTC"), size("n"), size("nrhs"), input("a"), lead("lda", {"n"}), pivots_in("ipiv"), output("b"), lead("ldb", {"n"}), info("info")};
inline constexpr Argument getri[] = {size("n"), output("a"), lead("lda", {"n"}), pivots_in("ipiv"), work("work"), work_size("lwork", {"n"}), info("info")};
inline constexpr Argument getrinp[] = {size("n"), output("a"), lead("lda", {"n"}), work("work"), work_size("lwork", {"n"}), info("info")};
inline constexpr Argument gesv[] = {size("n"), size("nrhs"), output("a"), lead("lda", {"n"}), pivots_out("ipiv"), output("b"), lead("ldb", {"n"}), info("info")};
inline constexpr Argument gtsv[] = {size("n"), size("nrhs"), output("dl"), output("d"), output("du"), output("b"), lead("ldb", {"n"}), info("info")};
inline constexpr Argument potrf[] = {letter("uplo", "UL"), size("n"), output("a"), lead("lda", {"n"}), info("info")}; // and potri
inline constexpr Argument potrs[] = {letter("uplo", "UL"), size("n"), size("nrhs"), input("a"), lead("lda", {"n"}), output("b"), lead("ldb", {"n"}), info("info")};
inline constexpr Argument posv[] = {letter("uplo", "UL"), size("n"), size("nrhs"), output("a"), lead("lda", {"n"}), output("b"), lead("ldb", {"n"}), info("info")};
inline constexpr Argument trtri[] = {letter("uplo", "UL"), letter("diag", "NU"), size("n"), output("a"), lead("lda", {"n"}), info("info")};
inline constexpr Argument geqrf[] = {size("m"), size("n"), output("a"), lead("lda", {"m"}), output("tau"), work("work"), work_size("lwork", {"n"}, "m"), info("info")};
inline constexpr Argument orgqr[] = {size("m"), size("n", {"m"}), size("k", {"n"}), output("a"), lead("lda", {"m"}), input("tau"), work("work"), work_size("lwork", {"n"}), info("info")};
inline constexpr Argument ormqr[] = {
    letter("side", "LR"), letter("trans", "NT"), size("m"), size("n"), size("k", {"m", "side", "n"}), input("a"), lead("lda", {"m", "side", "n"}),
    input("tau"), output("c"), lead("ldc", {"m"}), work("work"), work_size("lwork", {"n", "side", "m"}), info("info"),
};
inline constexpr Argument unmqr[] = {
    letter("side", "LR"), letter("trans", "NC"), size("m"), size("n"), size("k", {"m", "side", "n"}), input("a"), lead("lda", {"m", "side", "n"}),
    input("tau"), output("c"), lead("ldc", {"m"}), work("work"), work_size("lwork", {"n", "side", "m"}), info("info"),
};

} // namespace ork::lapack::shapes
// clang-format on
