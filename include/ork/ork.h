/* SPDX-License-Identifier: MIT */
/* The library as a whole: start, threads, errors and settings. Nothing here need be called before the first routine. */
#ifndef ORK_ORK_H
#define ORK_ORK_H

#include <stddef.h>

#include "ork/types.h"

ORK_BEGIN_DECLS

/* The version of the core, such as "0.1.0". */
const char* ork_version(void);

/* Start. */
enum ork_status {
    ORK_OK = 0,
    ORK_NO_PROCESSOR = 1,    /* no kernel library serves this processor: SSE4.2 is the least */
    ORK_LIBRARY_MISSING = 2, /* the kernel library is not beside the core */
    ORK_LIBRARY_FOREIGN = 3, /* the file is there but is no kernel library, or can't be opened */
    ORK_LIBRARY_VERSION = 4  /* the file is a kernel library for another code path */
};
/* Finds and opens the kernel library for this processor, which the first routine that needs it does otherwise, and ends
   the process with a message when it can't; returns an ork_status, the same on every call. */
int ork_initialize(void);
/* Why ork_initialize failed, in one line with the file that was tried; "" as long as it did not. */
const char* ork_error_text(void);
/* The file of the kernel library, tried or in use; "" before ork_initialize. */
const char* ork_kernel_library(void);
/* The code path that the kernel library serves, 3 for SSE4.2; 0 when there is none. */
int ork_code_path(void);
/* Writes the processor's name, cut to size - 1 characters. */
void ork_processor_name(char* buffer, size_t size);

/* Threads: by default as many as ORK_NUM_THREADS says, else OMP_NUM_THREADS, else the processors that the affinity mask
   and the control group leave to this process; never more than 256. */
/* Sets the number of threads a call may use, the caller included; 0 or less goes back to the default. */
void ork_set_num_threads(int threads);
/* Sets the same for calls from this thread alone, 0 for as all others have it, and returns this thread's former value.
 */
int ork_set_num_threads_local(int threads);
/* The number of threads that a call from this thread may use now. */
int ork_get_max_threads(void);

typedef void (*ork_part)(void* context, int part);
/* Runs work(context, part) once for each part = 0 .. parts - 1, in any order and on any thread, and returns after the
 * last. */
typedef void (*ork_parallel_backend)(void* user, int parts, ork_part work, void* context);
/* Hands all parallel work to the application's own threads, or back to the library's when backend is null; calls of the
   library from inside a part run serial. Not while a call is under way. */
void ork_set_parallel_backend(ork_parallel_backend backend, void* user);
/* Runs work on the threads of the library, within the limits above. */
void ork_parallel_for(int parts, ork_part work, void* context);

/* Wrong arguments: the handler gets the routine's name and the position of the argument, from 1. Without one they are
   reported on standard error by xerbla_, which a program may also define itself. Returns the former handler. */
typedef void (*ork_argument_handler)(const char* routine, int position);
ork_argument_handler ork_set_xerbla(ork_argument_handler handler);

/* Settings. Each returns the former value; a negative value goes back to the default. */
/* 1: kernels that have a choice keep one fixed loop structure (variable ORK_CBWR); 0 is the default. */
int ork_set_reproducibility(int branch);
/* 1: calls that support it are traced on standard error (variable ORK_VERBOSE); 0 is the default. */
int ork_set_verbose(int mode);

/* Gives the memory that is kept for the next calls back to the system. */
void ork_free_buffers(void);

ORK_END_DECLS

#endif
