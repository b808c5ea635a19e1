// SPDX-License-Identifier: MIT
// ORK_EXPORT marks a routine that the core exports under its C name; everything else stays hidden.
#pragma once

#define ORK_EXPORT extern "C" __attribute__((visibility("default")))
