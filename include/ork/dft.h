/* SPDX-License-Identifier: MIT */
/* Fourier transforms: create a descriptor, say what the data look like, commit it, transform as often as you like.

       const int64_t n = 1000;
       ork_dft_descriptor* transform;
       ork_dft_create_descriptor(&transform, ORK_DFT_DOUBLE, ORK_DFT_COMPLEX, 1, &n);
       ork_dft_set_real(transform, ORK_DFT_BACKWARD_SCALE, 1.0 / n);
       ork_dft_commit_descriptor(transform);
       ork_dft_forward(transform, x);
       ork_dft_backward(transform, x); // x as it was
       ork_dft_free_descriptor(&transform);

   In r dimensions of lengths n0, n1, ... a forward transform is

       X[k0, k1, ...] = forward scale * sum over all j of x[j0, j1, ...] exp(-2 pi i (j0 k0 / n0 + j1 k1 / n1 + ...))

   and a backward one the same with + and the backward scale. Both scales are 1 unless set.

   ORDER OF DIMENSIONS. Dimension 0 is the one whose numbers are adjacent unless strides say otherwise, as in Fortran:
   a C array x[n2][n1][n0] has the lengths {n0, n1, n2}. With strides set, lengths may come in any order; only for real
   data it matters which one is dimension 0 (below).

   WHERE THE NUMBERS ARE. Element (j0, j1, ...) of transform t stands at

       strides[0] + j0 * strides[1] + j1 * strides[2] + ... + t * distance

   counted in elements of the array: complex numbers where the array holds interleaved complex numbers, else real ones.
   strides[0] is an offset; strides and distances may be negative, as long as offsets keep the positions in the array.
   Input strides and distance are of the array that a forward transform reads, output strides and distance of the one it
   writes; a backward transform goes the other way, so one descriptor serves both directions. Complex data in place have
   the input strides and distance only. Arrays need no more alignment than their numbers.

   REAL DATA. A forward transform takes real numbers to conjugate-even ones, X[n - k] = conj(X[k]), of which a half is
   stored; a backward one takes them back. How they are stored:

   - ORK_DFT_CONJUGATE_EVEN_STORAGE = ORK_DFT_COMPLEX_COMPLEX (default), CCE: X[k0, k1, ...] for k0 = 0 .. n0/2 and all
     k1, k2, ..., as interleaved complex numbers; output strides and distance count complex numbers.
   - ORK_DFT_COMPLEX_REAL: packed into real numbers as ORK_DFT_PACKED_FORMAT says, of rank 1 and 2 only. With R and
     I for the real and imaginary parts of X and h = n/2 rounded down, a transform of length n is stored as

         CCS   n even:  R0 0 R1 I1 R2 I2 ... R(h-1) I(h-1) Rh 0       n + 2 numbers
               n odd:   R0 0 R1 I1 R2 I2 ... Rh Ih                    n + 1
         Pack  n even:  R0 R1 I1 R2 I2 ... R(h-1) I(h-1) Rh           n
               n odd:   R0 R1 I1 R2 I2 ... Rh Ih                      n
         Perm  n even:  R0 Rh R1 I1 R2 I2 ... R(h-1) I(h-1)           n
               n odd:   as Pack

     In two dimensions along dimension 0 first: for each k1 the parts of X[k0, k1], k0 = 0 .. n0/2, stand at the
     positions of the packed vector of length n0. Those of 0 < k0 < n0/2 do so for k1 = 0 .. n1 - 1. X[0, k1] and, for
     even n0, X[n0/2, k1] are conjugate-even in k1 themselves, so each is a packed vector of length n1 down its column,
     the one of R0 or of R(n0/2). In CCS all else is 0: n0 + 2 by n1 + 2 numbers (+ 1 where a length is odd). Of n0 = 4,
     n1 = 3, dimension 0 to the right:

         CCS   R00  0    R10  I10  R20  0      Pack  R00  R10  I10  R20     Perm  R00  R20  R10  I10
               0    0    R11  I11  0    0            R01  R11  I11  R21           R01  R21  R11  I11
               R01  0    R12  I12  R21  0            I01  R12  I12  I21           I01  I21  R12  I12
               I01  0    0    0    I21  0

   A backward transform of one dimension reads no number that is 0 by symmetry.

   In place both sides begin at the same number, and so does every line of dimension 0: input offset, distance and
   strides but the first are twice those of the output in complex conjugate-even storage, and equal in packed formats.
   Default strides have it so.

   ERRORS. Every routine returns a status, ORK_DFT_NO_ERROR or an error class; ork_dft_error_class tells whether a
   status is of a class. The descriptor keeps a text that names the parameter and the value. A failed call leaves the
   descriptor as it was, a failed computation whatever it had written.

   THREADS. Several threads may compute with one committed descriptor at once. All else concerns one thread at a time.
   Results don't depend on the number of threads. */
#ifndef ORK_DFT_H
#define ORK_DFT_H

#include "ork/types.h"

ORK_BEGIN_DECLS

typedef struct ork_dft_descriptor ork_dft_descriptor;

/* Parameters. "At creation": can be read only. The rest may be set at any time; a committed descriptor must be
   committed again then. */
enum ork_dft_parameter {
    ORK_DFT_PRECISION = 1,            /* ORK_DFT_SINGLE or ORK_DFT_DOUBLE; at creation */
    ORK_DFT_FORWARD_DOMAIN = 2,       /* ORK_DFT_COMPLEX or ORK_DFT_REAL; at creation */
    ORK_DFT_DIMENSION = 3,            /* the rank, 1 to 7; at creation */
    ORK_DFT_LENGTHS = 4,              /* rank integers, 1 or more, whose product is less than 2^63 / 64; at creation */
    ORK_DFT_NUMBER_OF_TRANSFORMS = 5, /* 1 or more; default 1 */
    ORK_DFT_FORWARD_SCALE = 6,        /* a real number; default 1 */
    ORK_DFT_BACKWARD_SCALE = 7,
    ORK_DFT_PLACEMENT = 8,               /* ORK_DFT_INPLACE (default) or ORK_DFT_NOT_INPLACE */
    ORK_DFT_COMPLEX_STORAGE = 9,         /* of complex data: ORK_DFT_COMPLEX_COMPLEX (default) or ORK_DFT_REAL_REAL */
    ORK_DFT_CONJUGATE_EVEN_STORAGE = 10, /* of real data: ORK_DFT_COMPLEX_COMPLEX (default) or ORK_DFT_COMPLEX_REAL */
    ORK_DFT_INPUT_STRIDES = 12,          /* rank + 1 integers: offset, stride of dimension 0, of dimension 1, ... */
    ORK_DFT_OUTPUT_STRIDES = 13,
    ORK_DFT_INPUT_DISTANCE = 14, /* between the same elements of two transforms; must be set when there are several */
    ORK_DFT_OUTPUT_DISTANCE = 15,
    ORK_DFT_WORKSPACE = 16,     /* ORK_DFT_ALLOW (default), or ORK_DFT_AVOID: long transforms in little memory */
    ORK_DFT_ORDERING = 17,      /* ORK_DFT_ORDERED */
    ORK_DFT_NAME = 18,          /* a text of the user's, less than ORK_DFT_NAME_SIZE characters; default "" */
    ORK_DFT_VERSION = 19,       /* a text of less than ORK_DFT_NAME_SIZE characters; can be read only */
    ORK_DFT_COMMIT_STATUS = 20, /* ORK_DFT_COMMITTED or ORK_DFT_UNCOMMITTED; can be read only */
    ORK_DFT_PACKED_FORMAT = 21, /* ORK_DFT_CCS (default), ORK_DFT_PACK or ORK_DFT_PERM; ORK_DFT_CCE is for complex
                                   conjugate-even storage alone */
    ORK_DFT_THREAD_LIMIT = 25,  /* threads that a computation may use; 0 (default): as many as any other call */
    ORK_DFT_NUMBER_OF_USER_THREADS = 26 /* threads of the application that compute with the descriptor at once, for
                                           information; 1 or more, default 1 */
};

enum { ORK_DFT_NAME_SIZE = 64, ORK_DFT_MESSAGE_SIZE = 160 };

/* Values of parameters. */
enum {
    ORK_DFT_COMMITTED = 30,
    ORK_DFT_UNCOMMITTED = 31,
    ORK_DFT_COMPLEX = 32,
    ORK_DFT_REAL = 33,
    ORK_DFT_SINGLE = 35,
    ORK_DFT_DOUBLE = 36,
    ORK_DFT_COMPLEX_COMPLEX = 39, /* interleaved */
    ORK_DFT_COMPLEX_REAL = 40,    /* conjugate-even data packed into real arrays, as the packed format says */
    ORK_DFT_REAL_COMPLEX = 41,
    ORK_DFT_REAL_REAL = 42, /* real and imaginary parts in arrays of their own */
    ORK_DFT_INPLACE = 43,
    ORK_DFT_NOT_INPLACE = 44,
    ORK_DFT_ORDERED = 48,
    ORK_DFT_ALLOW = 51,
    ORK_DFT_AVOID = 52, /* no workspace of the size of the data */
    ORK_DFT_NONE = 53,
    ORK_DFT_CCS = 54,
    ORK_DFT_PACK = 55,
    ORK_DFT_PERM = 56,
    ORK_DFT_CCE = 57
};

/* Statuses, each a class of its own. */
enum ork_dft_error {
    ORK_DFT_NO_ERROR = 0,
    ORK_DFT_MEMORY_ERROR = 1,               /* no memory */
    ORK_DFT_INVALID_CONFIGURATION = 2,      /* a parameter or value that doesn't exist, or can't be set */
    ORK_DFT_INCONSISTENT_CONFIGURATION = 3, /* values that don't go together, or not with the call */
    ORK_DFT_MULTITHREADED_ERROR = 4,        /* the library's threads failed */
    ORK_DFT_BAD_DESCRIPTOR = 5,             /* null, freed, no descriptor at all, or not committed */
    ORK_DFT_UNIMPLEMENTED = 6,              /* legal, but not available */
    ORK_DFT_INTERNAL_ERROR = 7,
    ORK_DFT_NUMBER_OF_THREADS_ERROR = 8,
    ORK_DFT_LENGTH_ERROR = 9 /* a length or number of transforms below 1, or more numbers than can be addressed */
};

/* Creates a descriptor with rank lengths; ork_dft_create_descriptor_1d: with one. On failure *handle is null, and
   ork_dft_error_message tells what is known of the status. */
int64_t ork_dft_create_descriptor(ork_dft_descriptor** handle, int64_t precision, int64_t domain, int64_t rank,
                                  const int64_t* lengths);
int64_t ork_dft_create_descriptor_1d(ork_dft_descriptor** handle, int64_t precision, int64_t domain, int64_t length);
/* A second descriptor with the same parameters, uncommitted. */
int64_t ork_dft_copy_descriptor(const ork_dft_descriptor* handle, ork_dft_descriptor** copy);
/* Releases the descriptor and sets *handle to null. Not while another thread computes with it. */
int64_t ork_dft_free_descriptor(ork_dft_descriptor** handle);

/* Setting and reading. Arrays have as many integers as the parameter says; scales are double in either precision. */
int64_t ork_dft_set_integer(ork_dft_descriptor* handle, int64_t parameter, int64_t value);
int64_t ork_dft_set_integers(ork_dft_descriptor* handle, int64_t parameter, const int64_t* values);
int64_t ork_dft_set_real(ork_dft_descriptor* handle, int64_t parameter, double value);
int64_t ork_dft_set_text(ork_dft_descriptor* handle, int64_t parameter, const char* text);
int64_t ork_dft_get_integer(const ork_dft_descriptor* handle, int64_t parameter, int64_t* value);
int64_t ork_dft_get_integers(const ork_dft_descriptor* handle, int64_t parameter, int64_t* values);
int64_t ork_dft_get_real(const ork_dft_descriptor* handle, int64_t parameter, double* value);
int64_t ork_dft_get_text(const ork_dft_descriptor* handle, int64_t parameter, char* text);
/* The same for any parameter. Behind the parameter: to set, one of this header's values as it is, another integer as an
   int64_t, a scale as a double, an array as const int64_t*, a text as const char*; to read, a pointer to int64_t,
   double or char. */
int64_t ork_dft_set_value(ork_dft_descriptor* handle, int64_t parameter, ...);
int64_t ork_dft_get_value(const ork_dft_descriptor* handle, int64_t parameter, void* value);

/* Checks the parameters and plans. */
int64_t ork_dft_commit_descriptor(ork_dft_descriptor* handle);

/* Transforms. One array or a pair of real and imaginary parts, in place or not: whichever form is called must agree
   with placement and storage. Input is left as it is unless the transform is in place. */
int64_t ork_dft_forward(const ork_dft_descriptor* handle, void* inout);
int64_t ork_dft_backward(const ork_dft_descriptor* handle, void* inout);
int64_t ork_dft_forward_out(const ork_dft_descriptor* handle, const void* in, void* out);
int64_t ork_dft_backward_out(const ork_dft_descriptor* handle, const void* in, void* out);
int64_t ork_dft_forward_split(const ork_dft_descriptor* handle, void* re, void* im);
int64_t ork_dft_backward_split(const ork_dft_descriptor* handle, void* re, void* im);
int64_t ork_dft_forward_split_out(const ork_dft_descriptor* handle, const void* re, const void* im, void* out_re,
                                  void* out_im);
int64_t ork_dft_backward_split_out(const ork_dft_descriptor* handle, const void* re, const void* im, void* out_re,
                                   void* out_im);
/* The same with as many arrays, in the order above, as placement and storage ask for. */
int64_t ork_dft_compute_forward(const ork_dft_descriptor* handle, void* inout, ...);
int64_t ork_dft_compute_backward(const ork_dft_descriptor* handle, void* inout, ...);

/* 1 when the status belongs to the class, else 0. */
int64_t ork_dft_error_class(int64_t status, int64_t error_class);
/* What a status means, in one line of less than ORK_DFT_MESSAGE_SIZE characters. */
const char* ork_dft_error_message(int64_t status);
/* What went wrong in the last call that failed and changes the descriptor, with parameter and value; "" when none did.
   Of null, a freed descriptor or none: what is wrong with it. */
const char* ork_dft_descriptor_message(const ork_dft_descriptor* handle);

/* The names that the rest of the library calls; the precision is in the name and values are passed as for
   ork_dft_set_value. errormessage fills a buffer of `size` characters with the descriptor's message, or the status's
   when there is none. */
int64_t ork_dft_dfticreatedescriptor_s_1d(ork_dft_descriptor** handle, int64_t domain, int64_t length);
int64_t ork_dft_dfticreatedescriptor_d_1d(ork_dft_descriptor** handle, int64_t domain, int64_t length);
int64_t ork_dft_dfticreatedescriptor_s_md(ork_dft_descriptor** handle, int64_t domain, int64_t rank,
                                          const int64_t* lengths);
int64_t ork_dft_dfticreatedescriptor_d_md(ork_dft_descriptor** handle, int64_t domain, int64_t rank,
                                          const int64_t* lengths);
int64_t ork_dft_dftisetvalue(ork_dft_descriptor* handle, int64_t parameter, ...);
int64_t ork_dft_dfticommitdescriptor(ork_dft_descriptor* handle);
int64_t ork_dft_dfticomputeforward(const ork_dft_descriptor* handle, void* inout, ...);
int64_t ork_dft_dfticomputebackward(const ork_dft_descriptor* handle, void* inout, ...);
int64_t ork_dft_dftifreedescriptor(ork_dft_descriptor** handle);
int64_t ork_dft_dftierrorclass(int64_t status, int64_t error_class);
void ork_dft_dftierrormessage(const ork_dft_descriptor* handle, int64_t status, char* buffer, int64_t size);

ORK_END_DECLS

#endif
