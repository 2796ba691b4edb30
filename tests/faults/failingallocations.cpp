// SPDX-License-Identifier: BSD-3-Clause
// Compiled without sanitizers: their runtime allocates before it is ready for what it instruments.

#include "failingallocations.h"

#include <cerrno>
#include <cstdlib>
#include <new>

long Allocations::failAt = 0;
bool Allocations::failOn = false;
long Allocations::failed = 0;
long Allocations::live = 0;

namespace {

bool fails()
{
    if (Allocations::failAt == 0 || --Allocations::failAt > 0)
        return false;
    Allocations::failAt = Allocations::failOn ? 1 : 0;
    ++Allocations::failed;
    errno = ENOMEM;
    return true;
}

void *counted(void *memory)
{
    Allocations::live += memory != nullptr;
    return memory;
}

} // namespace

#define SYSTEM_NAME(prefix, name) prefix##name
#define SYSTEM_OF(prefix, name) SYSTEM_NAME(prefix, name)
#define SYSTEM(name) SYSTEM_OF(SYSTEM_PREFIX, name)

extern "C" {
void *SYSTEM(malloc)(size_t);
void *SYSTEM(calloc)(size_t, size_t);
void *SYSTEM(realloc)(void *, size_t);
void SYSTEM(free)(void *);

void *malloc(size_t size)
{
    return fails() ? nullptr : counted(SYSTEM(malloc)(size));
}
void *calloc(size_t count, size_t size)
{
    return fails() ? nullptr : counted(SYSTEM(calloc)(count, size));
}
void *realloc(void *memory, size_t size)
{
    if (fails())
        return nullptr;
    Allocations::live -= memory != nullptr;
    return counted(SYSTEM(realloc)(memory, size));
}
void free(void *memory)
{
    Allocations::live -= memory != nullptr;
    SYSTEM(free)(memory);
}
}

void *operator new(size_t size)
{
    if (void *const memory = malloc(size))
        return memory;
    throw std::bad_alloc();
}
void operator delete(void *memory) noexcept
{
    free(memory);
}
void operator delete(void *memory, size_t /*size*/) noexcept
{
    free(memory);
}
