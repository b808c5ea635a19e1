/* SPDX-License-Identifier: MIT */
/* What a core provides to the kernel libraries that it loads. Kernels bind each routine on its first call, so a core
   may leave out what its kernels never reach. Sizes are in bytes. */
#ifndef ORK_ABI_SERVICES_H
#define ORK_ABI_SERVICES_H

#include <stdarg.h>
#include <stddef.h>
#include <stdint.h>

#include "ork/types.h"

ORK_BEGIN_DECLS

/* Memory. `alignment` is a power of two; a null result means failure. malloc, calloc and allocate may be mixed with
   their own release only: malloc and calloc with free, allocate with deallocate. calloc clears count * size bytes; its
   settings word is reserved and 0. */
void* ork_serv_malloc(size_t size, size_t alignment);
void* ork_serv_calloc(size_t count, size_t size, size_t alignment, int64_t settings);
void ork_serv_free(void* ptr);
/* Work buffers of the blocked multiply: released ones are kept for the next call, so their pages are not faulted in
 * anew. */
void* ork_serv_allocate(size_t size, size_t alignment);
void ork_serv_deallocate(void* ptr);
/* 0 when ptr is usable; otherwise warns once under `name` (text such as "out of memory") and returns 1. */
int ork_serv_check_ptr_and_warn(const void* ptr, const char* name);

/* Processor and caches. */
typedef struct ork_cache_info {
    int64_t levels;     /* cache levels that were found; 0 when nothing is known */
    int64_t line;       /* bytes of a line */
    int64_t l1_data;    /* bytes, per core */
    int64_t cache_size; /* bytes of the last level that one core may fill */
    int64_t l2;         /* bytes, per core */
    int64_t l3;         /* bytes, 0 when there is none */
} ork_cache_info;
int64_t ork_serv_cache_info(ork_cache_info* info); /* returns 0 and fills info */
int64_t ork_serv_get_cache_size(int level);        /* bytes of level 1 (data), 2 or 3; 0 when absent */
int64_t ork_serv_get_microarchitecture(void);      /* processor-model code; 66 selects the second GEMM kernel row */
int64_t ork_serv_cpu_detect(void);                 /* 0, 1: SSE4.2; 2: AVX2; 3: AVX-512 */
int64_t ork_serv_cbwr_get(int64_t what);           /* what = 1: the reproducibility branch in force, 1 or another */

/* Reports. info is the 1-based position of the wrong argument. */
void ork_serv_xerbla(const char* routine, const int64_t* info, int64_t routine_length);
int64_t ork_serv_lsame(const char* a, const char* b); /* 1 when the letters agree, case apart */

/* Messages, printing and files. The *_s forms take the size of the destination, always end it with a zero and return
   the number of characters that were written, or -1 when the text was cut. get_msg writes catalogue message `number`,
   at most size - 1 characters. Its `arguments` arguments are texts (const char*), filled in one after the other: the
   caller has formatted integers with "%lli" into fields of 22 characters and real numbers with "%.7g". Arguments that
   the message doesn't use are ignored; where it asks for more, "?" stands. */
int64_t ork_serv_get_msg(char* buffer, size_t size, int64_t number, int64_t arguments, ...);
int ork_serv_print(int64_t channel, const char* text); /* channel 0: standard output, 1: standard error */
int ork_serv_format_print(int64_t channel, const char* format, ...);
int ork_serv_printf_s(const char* format, ...);
int ork_serv_sprintf_s(char* buffer, size_t size, const char* format, ...);
int ork_serv_snprintf_s(char* buffer, size_t size, size_t count, const char* format, ...);
int ork_serv_strncpy_s(char* to, size_t size, const char* from, size_t count);
int ork_serv_strncat_s(char* to, size_t size, const char* from, size_t count);
void* ork_serv_fopen(const char* path, const char* mode);
int ork_serv_fprintf_s(void* file, const char* format, ...);
int ork_serv_fclose(void* file);

/* Tracing. */
int64_t ork_serv_verbose_mode(void);
double ork_serv_dsecnd(void); /* seconds of a monotonic clock */
void ork_serv_print_verbose_info(double seconds, int64_t mode, const char* line);

/* One lock of the core. */
void ork_serv_lock(void);
void ork_serv_unlock(void);

/* Mathematics in correctly scaled arguments. sincospi: sin and cos of pi * x. */
double ork_serv_libm_sin(double x);
double ork_serv_libm_cos(double x);
float ork_serv_libm_sinf(float x);
float ork_serv_libm_cosf(float x);
void ork_serv_libm_sincospi(double x, double* sine, double* cosine);

ORK_END_DECLS

#endif
