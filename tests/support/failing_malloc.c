/* Preloaded into a program under test: allocations larger than
 * FAIL_ALLOCATIONS_OVER bytes fail, as they would when memory runs out. */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <stddef.h>
#include <stdlib.h>

static size_t limit(void)
{
    static size_t value;
    if (!value) {
        const char* text = getenv("FAIL_ALLOCATIONS_OVER");
        value = text ? (size_t)strtoull(text, NULL, 10) : (size_t)-1;
    }
    return value;
}

void* malloc(size_t size)
{
    static void* (*real)(size_t);
    if (!real)
        real = (void* (*)(size_t))dlsym(RTLD_NEXT, "malloc");
    return size > limit() ? NULL : real(size);
}

void* realloc(void* memory, size_t size)
{
    static void* (*real)(void*, size_t);
    if (!real)
        real = (void* (*)(void*, size_t))dlsym(RTLD_NEXT, "realloc");
    return size > limit() ? NULL : real(memory, size);
}
