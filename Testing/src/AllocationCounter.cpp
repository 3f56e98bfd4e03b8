#include "AllocationCounter.h"

#include <cstdlib>
#include <new>

namespace {

thread_local AllocationCounter* innermostCounter = nullptr;

} // namespace

AllocationCounter::AllocationCounter() : m_outer(innermostCounter)
{
    innermostCounter = this;
}

AllocationCounter::~AllocationCounter()
{
    innermostCounter = m_outer;
}

bool AllocationCounter::Note(std::size_t bytes)
{
    AllocationCounter* const counter = innermostCounter;
    if (counter == nullptr)
        return true;
    ++counter->m_count;
    counter->m_bytes += bytes;
    if (counter->m_untilFailure == 0)
        return true;
    if (counter->m_untilFailure > 1) {
        --counter->m_untilFailure;
        return true;
    }
    counter->m_untilFailure = counter->m_goOnFailing ? 1 : 0;
    return false;
}

#if defined(KARMP_COUNTS_ALLOCATIONS)
namespace {

void* Allocate(std::size_t bytes) noexcept
{
    return AllocationCounter::Note(bytes) ? std::malloc(bytes != 0 ? bytes : 1) : nullptr;
}

void* AllocateOrThrow(std::size_t bytes)
{
    if (void* const memory = Allocate(bytes))
        return memory;
    throw std::bad_alloc();
}

} // namespace

// All forms are replaced, since the runtime of a sanitizer has one of its own for each.
void* operator new(std::size_t bytes)
{
    return AllocateOrThrow(bytes);
}

void* operator new[](std::size_t bytes)
{
    return AllocateOrThrow(bytes);
}

void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept
{
    return Allocate(bytes);
}

void* operator new[](std::size_t bytes, const std::nothrow_t&) noexcept
{
    return Allocate(bytes);
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
#endif
