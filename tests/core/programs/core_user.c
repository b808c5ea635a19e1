/* SPDX-License-Identifier: MIT */
/* core_user <core> <action> [count]: opens the core as a program that is not linked with it does, in a scope of its
 * own. */
#include <dirent.h>
#include <dlfcn.h>
#include <malloc.h>
#include <pthread.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

#include "ork/ork.h"

typedef void (*gemm)(const char*, const char*, const int32_t*, const int32_t*, const int32_t*, const double*,
                     const double*, const int32_t*, const double*, const int32_t*, const double*, double*,
                     const int32_t*);

static void* core;

static void* routine(const char* name)
{
    void* address = dlsym(core, name);
    if (address == NULL) {
        fprintf(stderr, "%s\n", dlerror());
        exit(99);
    }
    return address;
}

static void open_core(const char* path)
{
    core = dlopen(path, RTLD_LAZY | RTLD_LOCAL);
    if (core == NULL) {
        fprintf(stderr, "%s\n", dlerror());
        exit(98);
    }
}

static int entries(const char* folder)
{
    DIR* directory = opendir(folder);
    int count = 0;
    for (struct dirent* entry; (entry = readdir(directory)) != NULL;) count += entry->d_name[0] != '.';
    closedir(directory);
    return count;
}

static long address_space_kib(int resident)
{
    long pages[2] = {0, 0};
    FILE* file = fopen("/proc/self/statm", "r");
    if (fscanf(file, "%ld %ld", pages, pages + 1) != 2) exit(97);
    fclose(file);
    return pages[resident] * (sysconf(_SC_PAGESIZE) / 1024);
}

static int mappings_of_ork(void)
{
    char line[4096];
    int count = 0;
    FILE* file = fopen("/proc/self/maps", "r");
    while (fgets(line, sizeof line, file)) count += strstr(line, "libork_") != NULL;
    fclose(file);
    return count;
}

/* A product of two n x n matrices of ones, large enough for two threads when n is 300; 0 when it is right. */
static int multiply(int32_t n)
{
    const double one = 1, zero = 0;
    const size_t count = (size_t)n * n;
    double* a = malloc(count * sizeof *a);
    double* c = malloc(count * sizeof *c);
    for (size_t i = 0; i < count; ++i) a[i] = 1;
    ((gemm)routine("ork_blas_lp64_dgemm"))("N", "N", &n, &n, &n, &one, a, &n, a, &n, &zero, c, &n);
    int wrong = 0;
    for (size_t i = 0; i < count; ++i) wrong += c[i] != n;
    free(a);
    free(c);
    return wrong != 0;
}

static int initialize(void)
{
    const int status = ((int (*)(void))routine("ork_initialize"))();
    printf("status %d\ntext %s\nlibrary %s\ncode path %d\n", status,
           ((const char* (*)(void))routine("ork_error_text"))(),
           ((const char* (*)(void))routine("ork_kernel_library"))(), ((int (*)(void))routine("ork_code_path"))());
    return ((int (*)(void))routine("ork_initialize"))() == status ? status : 96;
}

/* Opens, calls with two threads and closes; what is left must not grow from the tenth round on. */
static int rounds(const char* path, int count)
{
    long resident = 0, space = 0;
    int files = 0;
    mallopt(M_MMAP_THRESHOLD, 128 << 10); /* or the matrices move into the heap, which may keep their pages */
    mallopt(M_ARENA_MAX, 1);              /* or the first worker that allocates has malloc reserve 64 MiB, once */
    for (int round = 0; round < count; ++round) {
        open_core(path);
        ((void (*)(int))routine("ork_set_num_threads"))(2);
        if (round % 3 == 2) {
            if (((int (*)(void))routine("ork_initialize"))() != 0) return 1; /* opens the kernel library, calls none */
        } else if (multiply(300)) {
            return 2;
        }
        if (round == 0 && entries("/proc/self/task") != 2) return 3; /* not what this is a test of */
        dlclose(core);
        if (entries("/proc/self/task") != 1) return 4;
        if (mappings_of_ork() != 0) return 5;
        if (round == 10) {
            resident = address_space_kib(1);
            space = address_space_kib(0);
            files = entries("/proc/self/fd");
        }
    }
    printf("grown: resident %ld KiB, space %ld KiB, files %d\n", address_space_kib(1) - resident,
           address_space_kib(0) - space, entries("/proc/self/fd") - files);
    if (address_space_kib(1) - resident > 512 || address_space_kib(0) > space + 512) return 6;
    if (entries("/proc/self/fd") != files) return 7;
    const pid_t child = fork(); /* runs no handler of what is gone */
    if (child == 0) _exit(0);
    int status = 1;
    waitpid(child, &status, 0);
    return status;
}

static void* multiply_in_thread(void* wrong)
{
    *(int*)wrong = multiply(300);
    return NULL;
}

/* The first call of the process, which opens the kernel library and starts a worker, on a stack of 64 KiB. */
static int multiply_on_a_small_stack(void)
{
    int wrong = 1;
    pthread_t thread;
    pthread_attr_t small;
    pthread_attr_init(&small);
    pthread_attr_setstacksize(&small, 64 << 10);
    pthread_create(&thread, &small, multiply_in_thread, &wrong);
    pthread_join(thread, NULL);
    return wrong;
}

/* Forks some time after another thread began the process's first call, which opens the kernel library; the child calls
 * too. */
static int fork_in_the_first_call(int microseconds)
{
    int wrong = 1, status = 1;
    pthread_t thread;
    pthread_create(&thread, NULL, multiply_in_thread, &wrong);
    usleep(microseconds);
    const pid_t child = fork();
    if (child == 0) {
        alarm(20);
        _exit(multiply(300));
    }
    waitpid(child, &status, 0);
    pthread_join(thread, NULL);
    return wrong || status != 0;
}

int main(int argc, char** argv)
{
    if (argc < 3) return 95;
    const char* action = argv[2];
    if (strcmp(action, "rounds") == 0) return rounds(argv[1], atoi(argv[3]));

    const long before = address_space_kib(0);
    open_core(argv[1]);
    if (strcmp(action, "footprint") == 0) {
        printf("%ld KiB, %d threads\n", address_space_kib(0) - before, entries("/proc/self/task"));
        return address_space_kib(0) - before >= 2048 || entries("/proc/self/task") != 1;
    }
    if (strcmp(action, "moved") == 0 && chdir("/") != 0) return 94;
    if (strcmp(action, "initialize") == 0 || strcmp(action, "moved") == 0) return initialize();
    if (strcmp(action, "multiply") == 0) return multiply(300);
    if (strcmp(action, "small stack") == 0) return multiply_on_a_small_stack();
    if (strcmp(action, "fork") == 0) return fork_in_the_first_call(atoi(argv[3]));
    if (strcmp(action, "threads") == 0) {
        printf("%d", ((int (*)(void))routine("ork_get_max_threads"))());
        return 0;
    }
    return 93;
}
