// SPDX-License-Identifier: MIT
// What the sources of the public entries share.
#pragma once

#include "export.h"
#include "ork/trans.h"
#include "trans/calls.h"

using namespace ork::trans;

// Of a complex element, which comes behind a void pointer, or of a real one.
template <class T>
inline T value(T scalar)
{
    return scalar;
}
template <class T>
inline T value(const void* scalar)
{
    return *static_cast<const T*>(scalar);
}
template <class T>
inline const T* elements(const void* array)
{
    return static_cast<const T*>(array);
}
template <class T>
inline T* elements(void* array)
{
    return static_cast<T*>(array);
}

// A further name of an exported function of this file.
#define ORK_STRING_(a) #a
#define ORK_STRING(a) ORK_STRING_(a)
#define ORK_ALIAS(name, symbol) ORK_EXPORT decltype(symbol) name __attribute__((alias(ORK_STRING(symbol))));
