#include "HeapCounter.h"

#include <cstdlib>
#include <new>

namespace {

thread_local std::size_t bytes = 0;
thread_local std::size_t allocations = 0;

} // namespace

void* operator new(std::size_t size)
{
    bytes += size;
    ++allocations;
    if (void* memory = std::malloc(size != 0 ? size : 1))
        return memory;
    throw std::bad_alloc();
}

void* operator new(std::size_t size, std::align_val_t alignment)
{
    bytes += size;
    ++allocations;
    const auto unit = static_cast<std::size_t>(alignment);
    if (void* memory = std::aligned_alloc(unit, (size + unit - 1) / unit * unit))
        return memory;
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::align_val_t) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t, std::align_val_t) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}

HeapCounter::HeapCounter(benchmark::State& state)
    : m_state(state), m_bytes(bytes), m_allocations(allocations)
{}

HeapCounter::~HeapCounter()
{
    const auto perOperation = [](std::size_t amount) {
        return benchmark::Counter(static_cast<double>(amount), benchmark::Counter::kAvgIterations);
    };
    m_state.counters["heap_bytes"] = perOperation(bytes - m_bytes);
    m_state.counters["heap_allocations"] = perOperation(allocations - m_allocations);
}

std::size_t HeapCounter::Bytes()
{
    return bytes;
}

std::size_t HeapCounter::Allocations()
{
    return allocations;
}
