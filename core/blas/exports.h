// SPDX-License-Identifier: MIT
// Helpers of the files that define the exported entries: one function a row and binding, with as many parameters as the
// row says, and further names for it as aliases.
#pragma once

#include "blas/binding.h"
#include "blas/gemm_groups.h"
#include "blas/rows.h"
#include "export.h"

#define ORK_CONCAT_(a, b) a##b
#define ORK_CONCAT(a, b) ORK_CONCAT_(a, b)
#define ORK_STRING_(a) #a
#define ORK_STRING(a) ORK_STRING_(a)

// ORK_EACH(n, X, ...) is X(0, ...), X(1, ...) .. X(n - 1, ...).
#define ORK_EACH(n, X, ...) ORK_CONCAT(ORK_EACH_, n)(X, __VA_ARGS__)
#define ORK_EACH_1(X, ...) X(0, __VA_ARGS__)
#define ORK_EACH_2(X, ...) ORK_EACH_1(X, __VA_ARGS__), X(1, __VA_ARGS__)
#define ORK_EACH_3(X, ...) ORK_EACH_2(X, __VA_ARGS__), X(2, __VA_ARGS__)
#define ORK_EACH_4(X, ...) ORK_EACH_3(X, __VA_ARGS__), X(3, __VA_ARGS__)
#define ORK_EACH_5(X, ...) ORK_EACH_4(X, __VA_ARGS__), X(4, __VA_ARGS__)
#define ORK_EACH_6(X, ...) ORK_EACH_5(X, __VA_ARGS__), X(5, __VA_ARGS__)
#define ORK_EACH_7(X, ...) ORK_EACH_6(X, __VA_ARGS__), X(6, __VA_ARGS__)
#define ORK_EACH_8(X, ...) ORK_EACH_7(X, __VA_ARGS__), X(7, __VA_ARGS__)
#define ORK_EACH_9(X, ...) ORK_EACH_8(X, __VA_ARGS__), X(8, __VA_ARGS__)
#define ORK_EACH_10(X, ...) ORK_EACH_9(X, __VA_ARGS__), X(9, __VA_ARGS__)
#define ORK_EACH_11(X, ...) ORK_EACH_10(X, __VA_ARGS__), X(10, __VA_ARGS__)
#define ORK_EACH_12(X, ...) ORK_EACH_11(X, __VA_ARGS__), X(11, __VA_ARGS__)
#define ORK_EACH_13(X, ...) ORK_EACH_12(X, __VA_ARGS__), X(12, __VA_ARGS__)
#define ORK_EACH_14(X, ...) ORK_EACH_13(X, __VA_ARGS__), X(13, __VA_ARGS__)
#define ORK_EACH_15(X, ...) ORK_EACH_14(X, __VA_ARGS__), X(14, __VA_ARGS__)
#define ORK_EACH_16(X, ...) ORK_EACH_15(X, __VA_ARGS__), X(15, __VA_ARGS__)
#define ORK_EACH_17(X, ...) ORK_EACH_16(X, __VA_ARGS__), X(16, __VA_ARGS__)

#define ORK_PARAMETER(i, Type, row) Type<row, Int, i> a##i
#define ORK_TYPE(i, Type, row) Type<row, Int, i>
#define ORK_ARGUMENT(i, ...) a##i
#define ORK_PARAMETERS(n, Type, row) ORK_EACH(n, ORK_PARAMETER, Type, row)
#define ORK_TYPES(n, Type, row) ORK_EACH(n, ORK_TYPE, Type, row)
#define ORK_ARGUMENTS(n) ORK_EACH(n, ORK_ARGUMENT, )

// A further name of an exported function of this file.
#define ORK_ALIAS(name, symbol) ORK_EXPORT decltype(symbol) name __attribute__((alias(ORK_STRING(symbol))));
