#include "support/AllocationCounter.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>

// The heap functions of the C library are wrapped here, for the whole program: `new`, OpenCV and Qt all end
// in them.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define COUNTS_ALLOCATIONS 0
#else
#define COUNTS_ALLOCATIONS 1
#endif

namespace {

thread_local bool counting = false;
thread_local std::size_t blocks = 0;
thread_local std::size_t largestBlock = 0;

} // namespace

AllocationCounter::AllocationCounter()
{
    blocks = 0;
    largestBlock = 0;
    counting = true;
}

AllocationCounter::~AllocationCounter()
{
    counting = false;
}

bool AllocationCounter::works()
{
    return COUNTS_ALLOCATIONS;
}

std::size_t AllocationCounter::count() const
{
    return blocks;
}

std::size_t AllocationCounter::largest() const
{
    return largestBlock;
}

#if COUNTS_ALLOCATIONS

namespace {

void note(std::size_t size)
{
    if (!counting)
        return;
    ++blocks;
    largestBlock = std::max(largestBlock, size);
}

} // namespace

extern "C" {

void *__libc_malloc(std::size_t size);
void *__libc_calloc(std::size_t count, std::size_t size);
void *__libc_realloc(void *block, std::size_t size);
void *__libc_memalign(std::size_t alignment, std::size_t size);

void *malloc(std::size_t size)
{
    note(size);
    return __libc_malloc(size);
}

void *calloc(std::size_t count, std::size_t size)
{
    note(count * size);
    return __libc_calloc(count, size);
}

void *realloc(void *block, std::size_t size)
{
    note(size);
    return __libc_realloc(block, size);
}

void *memalign(std::size_t alignment, std::size_t size)
{
    note(size);
    return __libc_memalign(alignment, size);
}

void *aligned_alloc(std::size_t alignment, std::size_t size)
{
    note(size);
    return __libc_memalign(alignment, size);
}

int posix_memalign(void **block, std::size_t alignment, std::size_t size)
{
    note(size);
    *block = __libc_memalign(alignment, size);
    return *block ? 0 : ENOMEM;
}

} // extern "C"

#endif
