/* Preloaded into a program under test: allocations fail as they would when
 * memory runs out. FAIL_ALLOCATIONS_OVER=N fails those larger than N bytes;
 * FAIL_AFTER_ALLOCATIONS=K lets K allocations through and fails every one
 * after them. */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <stddef.h>
#include <stdlib.h>

static size_t setting(const char* name)
{
    const char* text = getenv(name);
    return text ? (size_t)strtoull(text, NULL, 10) : (size_t)-1;
}

static int fails(size_t size)
{
    static size_t over, after, made;
    if (!over) {
        over = setting("FAIL_ALLOCATIONS_OVER");
        after = setting("FAIL_AFTER_ALLOCATIONS");
    }
    return size > over || made++ >= after;
}

void* malloc(size_t size)
{
    static void* (*real)(size_t);
    if (!real)
        real = (void* (*)(size_t))dlsym(RTLD_NEXT, "malloc");
    return fails(size) ? NULL : real(size);
}

void* realloc(void* memory, size_t size)
{
    static void* (*real)(void*, size_t);
    if (!real)
        real = (void* (*)(void*, size_t))dlsym(RTLD_NEXT, "realloc");
    return fails(size) ? NULL : real(memory, size);
}
