#include "tests/support/FailingAllocator.h"

#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

thread_local long allocations = 0;
thread_local long untilFailure = 0; // 0: none is to fail
thread_local bool failed = false;

void* allocate(std::size_t bytes) noexcept
{
    ++allocations;
    if (untilFailure > 0 && --untilFailure == 0) {
        failed = true;
        return nullptr;
    }
    return std::malloc(bytes != 0 ? bytes : 1);
}

void* allocateOrThrow(std::size_t bytes)
{
    if (void* const memory = allocate(bytes)) {
        return memory;
    }
    throw std::bad_alloc();
}

} // namespace

void* operator new(std::size_t bytes)
{
    return allocateOrThrow(bytes);
}
void* operator new[](std::size_t bytes)
{
    return allocateOrThrow(bytes);
}
void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept
{
    return allocate(bytes);
}
void* operator new[](std::size_t bytes, const std::nothrow_t&) noexcept
{
    return allocate(bytes);
}
void operator delete(void* memory) noexcept
{
    std::free(memory);
}
void operator delete[](void* memory) noexcept
{
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept
{
    std::free(memory);
}
void operator delete(void* memory, const std::nothrow_t&) noexcept
{
    std::free(memory);
}
void operator delete[](void* memory, const std::nothrow_t&) noexcept
{
    std::free(memory);
}

namespace failing_allocator {

long countAllocations()
{
    const long counted = allocations;
    allocations = 0;
    return counted;
}

FailNth::FailNth(long n)
{
    failed = false;
    untilFailure = n;
}

FailNth::~FailNth()
{
    untilFailure = 0;
}

bool FailNth::hasFailed() const
{
    return failed;
}

} // namespace failing_allocator
