#include "failingmemory.h"

#include <QtGlobal>

#include <cstddef>
#include <cstdlib>

namespace {

// Allocations to the failing one, with it. A program gets the number from its environment.
int left = qEnvironmentVariableIntValue("FAILING_ALLOCATION");

void *allocate(std::size_t size)
{
    if (left > 0 && --left == 0)
        throw std::bad_alloc();
    void *block = std::malloc(size == 0 ? 1 : size);
    if (!block)
        throw std::bad_alloc();
    return block;
}

} // namespace

void failAllocation(int n)
{
    left = n;
}

void *operator new(std::size_t size)
{
    return allocate(size);
}

void *operator new[](std::size_t size)
{
    return allocate(size);
}

// Of std::stable_sort, which can do without.
void *operator new(std::size_t size, const std::nothrow_t &) noexcept
{
    return std::malloc(size);
}

void operator delete(void *block) noexcept
{
    std::free(block);
}

void operator delete[](void *block) noexcept
{
    std::free(block);
}

void operator delete(void *block, std::size_t) noexcept
{
    std::free(block);
}

void operator delete[](void *block, std::size_t) noexcept
{
    std::free(block);
}
