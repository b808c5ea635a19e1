// SPDX-License-Identifier: MIT
// How files of peer libraries are found and opened.
#pragma once

#include <dlfcn.h>
#include <filesystem>
#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

#include "peers/libraries.h"

namespace ork::peers {

// Sanitizers refuse RTLD_DEEPBIND, and without it a peer's inner calls would end in ork's symbols of the same names.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool can_isolate = false;
#else
constexpr bool can_isolate = true;
#endif
constexpr int isolated = RTLD_NOW | RTLD_LOCAL | RTLD_DEEPBIND;

// The first file of these names in the folders where distributions keep libraries.
std::optional<std::filesystem::path> locate(std::initializer_list<const char*> names);

// With everything that the handle has: BLAS symbols and transforms.
Library library(std::string name, std::string detail, Kind kind, void* handle);

SparseMaker ork_sparse(void* handle); // the same; with ork/sparse.h where the case is one of handles
// Through an analysed handle; null when the library has no handles, std::runtime_error when it refuses.
std::unique_ptr<SparseOperation> ork_handle(void* library, const SparseOperands& o);
TransformMaker ork_transforms(void* handle); // empty when it has not the whole interface
// Transforms through a handle's own interface: ork's, else FFTW's; empty when it has neither.
TransformMaker transforms_of(void* handle);

} // namespace ork::peers
