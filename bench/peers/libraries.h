// SPDX-License-Identifier: MIT
// The libraries that a measurement compares: ork itself, and the BLAS and transform libraries found on this machine,
// each held to the 128-bit kernels that ork is limited to, one thread each.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "peers/fft.h"
#include "peers/sparse.h"

namespace ork::peers {

enum class Kind {
    subject, // ork
    peer,    // held to SSE, so a fair comparison
    wide,    // free to use wider registers: shown for honesty, never the best peer
};

struct Library {
    std::string name;   // heads a column: "OB-Core2"
    std::string detail; // version and file
    Kind kind;
    std::function<void*(const char* symbol)> find; // a Fortran BLAS symbol with 32-bit integers, or null
    TransformMaker transform;                      // may be empty
    SparseMaker sparse = {};                       // may be empty
};

// libork_core as this program is linked with it.
Library core_library();

// ork_lapack_ps_<tag>_<name> of the kernel library that the core has loaded, null when it has none.
void* lapack_kernel(const std::string& name);

// Every peer for BLAS that could be found, opened and shown to use the kernels it was asked for. Call it before any
// thread is started: kernel sets are chosen by environment variables, which are put back afterwards, and one candidate
// is tried in a child process first. `notes` says why a candidate is missing.
std::vector<Library> find_peers(std::vector<std::string>& notes);

// The same for Fourier transforms: FFTW limited to SSE2 in build/peers or the folder that ORK_PEERS names (it is made
// by scripts/fftw-sse2), the system's FFTW, Eigen. Planning takes as long as FFTW_MEASURE does.
std::vector<Library> find_transform_peers(std::vector<std::string>& notes);

// The same for sparse matrices: librsb, in its own storage and in compressed rows, Eigen, plain loops.
std::vector<Library> find_sparse_peers(std::vector<std::string>& notes);
// Those, SuiteSparse:GraphBLAS, and ork's own kernels in the caller's arrays: what a handle must not be slower than.
std::vector<Library> find_handle_peers(std::vector<std::string>& notes);

// Any other library with Fortran BLAS symbols or the FFTW interface, an earlier build of ork for instance. Throws
// std::runtime_error.
Library open_library(const std::string& file);

} // namespace ork::peers
