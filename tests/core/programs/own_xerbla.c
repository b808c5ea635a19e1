/* SPDX-License-Identifier: MIT */
/* A program with an xerbla_ of its own, as LAPACK users write them. */
#include <stddef.h>
#include <stdint.h>
#include <stdio.h>

void ork_serv_xerbla(const char* routine, const int64_t* info, int64_t length);

void xerbla_(const char* routine, const int* info, size_t length)
{
    printf("own: %.*s %d\n", (int)length, routine, *info);
}

int main(void)
{
    const int64_t position = 11;
    ork_serv_xerbla("DGEMV", &position, 5);
    return 0;
}
