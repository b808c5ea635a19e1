/* SPDX-License-Identifier: MIT */
/* The list ORK_ROUTINES for the four precisions: included by ork/trans.h with ORK_NAME and ORK_INT defined.
   ORK_ROUTINE(omatcopy) is the name, ORK_ELEMENT the type of an element; by C's conventions ORK_SCALAR is a scalar and
   ORK_ARRAY what a pointer to elements points to. */
#define ORK_ROUTINE(stem) ORK_NAME(s##stem)
#define ORK_ELEMENT float
#define ORK_SCALAR float
#define ORK_ARRAY float
#include ORK_ROUTINES
#undef ORK_ROUTINE
#undef ORK_ELEMENT
#undef ORK_SCALAR
#undef ORK_ARRAY

#define ORK_ROUTINE(stem) ORK_NAME(d##stem)
#define ORK_ELEMENT double
#define ORK_SCALAR double
#define ORK_ARRAY double
#include ORK_ROUTINES
#undef ORK_ROUTINE
#undef ORK_ELEMENT
#undef ORK_SCALAR
#undef ORK_ARRAY

#define ORK_ROUTINE(stem) ORK_NAME(c##stem)
#define ORK_ELEMENT ork_complex_float
#define ORK_SCALAR const void*
#define ORK_ARRAY void
#include ORK_ROUTINES
#undef ORK_ROUTINE
#undef ORK_ELEMENT
#undef ORK_SCALAR
#undef ORK_ARRAY

#define ORK_ROUTINE(stem) ORK_NAME(z##stem)
#define ORK_ELEMENT ork_complex_double
#define ORK_SCALAR const void*
#define ORK_ARRAY void
#include ORK_ROUTINES
#undef ORK_ROUTINE
#undef ORK_ELEMENT
#undef ORK_SCALAR
#undef ORK_ARRAY
